// The list of registered search directories.

#include "vx/path.h"

#include <cstring>

#include "files/host_calls.h"
#include "files/path_list.h"
#include "files/path_state.h"
#include "files/path_text.h"
#include "vx/err.h"
#include "vx/str.h"

namespace vx::files {

constinit PathState pathState{};

namespace {

constexpr int32_t longestDirectory = 255;
constexpr int32_t givenSize = 260; ///< what a caller may pass, before it is found too long

/** What the memory error names: the size of a node in the reference layout. */
constexpr int32_t reportedNodeSize = 260;

}

}

using namespace vx;
using namespace vx::files;

char VgPathUserFolder[260] = "";
char VgPathTemp[260] = "";

uint32_t VxPathSet(const char *path)
{
    char directory[givenSize + 1];
    if (VxStrCpy(directory, path, givenSize))
        return 1;
    if (!*directory)
        return 0;
    VxPathCheck(directory);
    VxPathAddDelim(directory);
    if (std::strlen(directory) > longestDirectory) {
        VxPrintf("\nVxPathSet: Path exceeds %d characters.\n", longestDirectory);
        return 1;
    }
    VxPathNode **link = findLink(&pathState.first, directory);
    if (*link)
        return 0;
    VxPathNode *node = makeNode(directory);
    if (!node) {
        VxErrInt(1, reportedNodeSize);
        return 1;
    }
    *link = node;
    if (auto *registered = hostFunction<void(const char *)>(67))
        registered(path);
    return 0;
}

uint32_t VxPathDel(const char *path)
{
    return VxPathDelUtil(&pathState.first, path);
}

uint32_t VxPathDelUtil(VxPathNode **list, const char *path)
{
    if (!list || !path)
        return 1;
    char directory[givenSize];
    if (VxStrCpy(directory, path, givenSize))
        return 0;
    VxPathCheck(directory);
    VxPathNode **link = findLink(list, directory);
    if (*link)
        removeAt(link);
    return 0;
}

int32_t VxPathLogged(char *path)
{
    if (!path)
        return 0;
    VxPathCheck(path);
    char directory[givenSize + 1];
    if (VxStrCpy(directory, path, givenSize))
        return 0;
    VxPathAddDelim(directory);
    return *findLink(&pathState.first, directory) != nullptr;
}

uint32_t VxPathFree(void)
{
    freeList(pathState.first);
    return 0;
}

int32_t VxPathLen(void)
{
    return longestDirectory;
}
