// Finding files by name.

#include <cstring>

#include "files/candidates.h"
#include "files/host_calls.h"
#include "files/path_state.h"
#include "files/path_text.h"
#include "vx/lang.h"
#include "vx/path.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::files {

namespace {

constexpr size_t findSize = Candidates::longest;
constexpr size_t findInSize = 256;
constexpr int32_t pdmSize = 256;

struct Locale {
    char text[8];

    Locale() noexcept
    {
        if (VxLangGetLocale(text, sizeof text))
            text[0] = '\0';
    }
};

enum class Direct { no, found, search };

/** What is settled without a search: the empty name, names with a folder, names that are there as given. */
Direct findDirect(char *name, int32_t size) noexcept
{
    if (!name || size < 1)
        return Direct::no;
    if (!*name)
        return join(name, static_cast<size_t>(size), {pathState.root}) ? Direct::found : Direct::no;
    if (exists(name))
        return Direct::found;
    return firstSeparator(name) ? Direct::no : Direct::search;
}

}

}

using namespace vx;
using namespace vx::files;

int32_t VxPathFind(char *name, int32_t size)
{
    Direct direct = findDirect(name, size);
    if (direct != Direct::search)
        return direct == Direct::found;

    Candidates search(name, size, findSize);
    if (search.found({pathState.root, "languages\\", Locale().text, "\\", name}))
        return 1;
    for (const VxPathNode *entry = pathState.first; entry; entry = entry->next)
        if (search.found({entry->text, name}))
            return 1;
    auto *fallback = hostFunction<int32_t(const char *, char *, int32_t)>(68);
    return fallback ? fallback(name, name, size) : 0;
}

int32_t VxPathFindIn(char *name, int32_t size, const char *subdir, int32_t mode)
{
    Direct direct = findDirect(name, size);
    if (direct != Direct::search)
        return direct == Direct::found;

    Candidates search(name, size, findInSize);
    if (search.found({".\\local\\", name}))
        return 1;
    if (subdir && search.found({".\\", subdir, "\\", name}))
        return 1;
    if (mode == 2)
        return 0;
    const char *root = pathState.root;
    if (subdir) {
        if (search.found({root, "languages\\", Locale().text, "\\", subdir, "\\", name}))
            return 1;
        if (mode == 0)
            return search.taken({root, subdir, "\\", name});
        if (search.found({root, subdir, "\\", name}))
            return 1;
    }
    for (const VxPathNode *entry = pathState.first; entry; entry = entry->next) {
        if (search.found({entry->text, name}))
            return 1;
        if (subdir && search.found({entry->text, subdir, "\\", name}))
            return 1;
    }
    return 0;
}

int32_t VxPathFindPDM(char *name, int32_t size, char *aux, int32_t auxSize, int32_t a, int32_t b)
{
    if (VgPathFindPDMSkip) {
        VgPathFindPDMSkip = 0;
        return 0;
    }
    const int32_t *active = hostVariable<int32_t>(5);
    using Resolver = int32_t(const char *, const char *, char *, char *, int32_t, int32_t);
    auto *resolve = hostFunction<Resolver>(69);
    if (!name || size < 1 || !active || *active != 1 || !resolve)
        return 0;
    char path[pdmSize] = "";
    char resolvedAux[pdmSize] = "";
    if (resolve(name, aux, path, resolvedAux, a, b) != 0)
        return 0;
    if (std::strlen(path) >= static_cast<size_t>(size))
        return 0;
    join(name, static_cast<size_t>(size), {path});
    if (aux)
        VxStrCpy(aux, resolvedAux, auxSize);
    return 1;
}

int32_t VxPathLangExist(const char *locale)
{
    char directory[findSize];
    return locale && join(directory, sizeof directory, {pathState.root, "languages\\", locale, "\\text"}) &&
           VxPathIsDir(directory);
}
