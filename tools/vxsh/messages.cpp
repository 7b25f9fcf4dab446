#include "tools/vxsh/messages.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "talm/base.h"
#include "vx/err.h"

namespace vxsh {

namespace {

struct Collected {
    std::mutex lock;
    std::vector<std::string> texts;
} collected;

bool matters(int32_t level)
{
    return level == EsLevelWarning || level == EsLevelError || level == EsLevelFailure;
}

extern "C" void collect(void *, const EsRecord *record)
{
    if (!matters(record->level))
        return;
    std::lock_guard guard(collected.lock);
    // An error is noted plainly and again in a section of its own.
    if (collected.texts.empty() || collected.texts.back() != record->text)
        collected.texts.emplace_back(record->text);
}

}

Messages::Messages()
{
    EsSinkCallback(collect, nullptr);
}

Messages::~Messages()
{
    EsSinkCallback(nullptr, nullptr);
    std::lock_guard guard(collected.lock);
    collected.texts.clear();
}

std::vector<std::string> Messages::take()
{
    VxErrDisplay();
    std::lock_guard guard(collected.lock);
    return std::exchange(collected.texts, {});
}

std::string Messages::takeLine(const std::string &otherwise)
{
    std::string line;
    for (const std::string &text : take())
        line += (line.empty() ? "" : " ") + text;
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line.empty() ? otherwise : line;
}

}
