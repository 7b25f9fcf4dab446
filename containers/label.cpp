// Labels: which of them were recorded, and copies.

#include <new>
#include <string_view>

#include "containers/id_state.h"
#include "vx/id.h"
#include "vx/mem.h"

namespace vx::containers {

namespace {

LabelLog logged;

bool whole(const VxLbl *label) noexcept
{
    return label && label->size >= static_cast<int32_t>(sizeof(VxLbl));
}

std::string_view bytesOf(const VxLbl &label) noexcept
{
    return {reinterpret_cast<const char *>(&label), static_cast<size_t>(label.size)};
}

}

LabelLog &labelLog() noexcept
{
    return logged;
}

}

using namespace vx::containers;

uint32_t VxLblLog(const VxLbl *label)
{
    if (!whole(label))
        return 1;
    try {
        logged.labels.emplace(bytesOf(*label));
    } catch (const std::bad_alloc &) {
        return 1;
    }
    return 0;
}

int32_t VxLblIsLogged(const VxLbl *label)
{
    return whole(label) && logged.labels.find(bytesOf(*label)) != logged.labels.end();
}

uint32_t VxLblDup(const VxLbl *label, VxLbl **copy)
{
    if (!copy)
        return 1;
    *copy = nullptr;
    if (!whole(label))
        return 1;
    void *block = nullptr;
    if (VxMemDup(label->size, label, &block))
        return 1;
    *copy = static_cast<VxLbl *>(block);
    return 0;
}

int32_t VxLblSize(const VxLbl *label)
{
    return label ? label->size : 0;
}
