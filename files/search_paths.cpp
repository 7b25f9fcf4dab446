// The user's search paths.

#include "files/dmpath.h"

#include <cstring>
#include <new>
#include <string>

#include "files/host_calls.h"
#include "files/path_list.h"
#include "files/path_text.h"
#include "platform/os/os.h"
#include "vx/config.h"
#include "vx/dmpath.h"
#include "vx/file.h"
#include "vx/msg.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::files {

constinit SearchPaths searchPaths{};

void resetSearchPaths() noexcept
{
    searchPaths.active[0] = '\0';
    searchPaths.component[0] = '\0';
    searchPaths.checkActiveOnly = 0;
    searchPaths.searchList = 1;
}

void freeSearchPaths() noexcept
{
    freeList(searchPaths.first);
    searchPaths.next = &searchPaths.first;
    searchPaths.cacheUsers = 0;
    searchPaths.cache.reset();
    searchPaths.answers.reset();
}

char *subdirectoryMark(char *path) noexcept
{
    size_t length = std::strlen(path);
    if (length < 4 || std::strcmp(path + length - 3, "...") != 0)
        return nullptr;
    char *mark = path + length - 4;
    bool slash = *mark == '/';
    return slash || lastSeparator(path) == mark ? mark : nullptr;
}

bool cutSubdirectoryMark(char *path) noexcept
{
    char *mark = subdirectoryMark(path);
    if (!mark)
        return false;
    bool root = mark == path || (mark == path + 2 && hasDrive(path));
    mark[root ? 1 : 0] = '\0';
    return true;
}

namespace {

constexpr int32_t pathSize = 256;
constexpr int32_t workSize = 1024;
constexpr int32_t folderSize = 260;
constexpr int32_t savedListFolder = 14;

constexpr int32_t messageListFile = 45;
constexpr int32_t messageBadPath = 46;

constexpr int32_t hostManagesPaths = 28;
constexpr int32_t hostShowsText = 71;

/** Show a toolkit message about a path to the user, when the host can. */
void show(int32_t message, const char *path)
{
    auto *showText = hostFunction<void(const char *)>(hostShowsText);
    if (!showText)
        return;
    char text[workSize];
    VxSprintf(text, sizeof text, VxMsg(VxToolsMsgID(), message), path);
    showText(text);
}

bool setText(char (&to)[pathSize], const char *from) noexcept
{
    if (!from || std::strlen(from) >= sizeof to)
        return false;
    VxStrCpy(to, from, sizeof to);
    return true;
}

/** Room in the list for `entry`, which it does not hold yet. */
bool insert(const char *entry, bool atFront) noexcept
{
    VxPathNode *node = makeNode(entry);
    if (!node)
        return false;
    VxPathNode **link = atFront ? &searchPaths.first : endOf(&searchPaths.first);
    node->next = *link;
    *link = node;
    return true;
}

/** What the cache has no memory for now, the next search enters. */
void enterNow(const char *entry) noexcept
{
    try {
        enterIntoCache(entry);
    } catch (const std::bad_alloc &) {
    }
}

/** One line of the saved list; what is beyond the buffer is passed over. */
bool readLine(FILE *file, char (&line)[pathSize])
{
    if (!std::fgets(line, sizeof line, file))
        return false;
    if (std::strchr(line, '\n'))
        return true;
    for (int c = std::fgetc(file); c != '\n' && c != EOF;)
        c = std::fgetc(file);
    return true;
}

uint32_t addLines(FILE *file)
{
    char line[pathSize];
    while (readLine(file, line)) {
        VxStrRem(line);
        int32_t added;
        if (*line && *line != '#' && DmPathSet(line, 0, &added))
            return 1;
    }
    return 0;
}

std::string savedText()
{
    std::string text = "\n";
    for (const VxPathNode *entry = searchPaths.first; entry; entry = entry->next)
        text.append(entry->text).append("\n\n");
    return text;
}

bool save(const char *file)
{
    try {
        std::string text = savedText();
        return os::replaceFile(file, text.data(), text.size()) == os::Error::none;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t DmPathInit(void)
{
    char name[folderSize];
    if (!userFolder(savedListFolder, name) || !VxFileExists(name))
        return 0;
    FILE *file = nullptr;
    if (VxFileOpen(&file, name, "r")) {
        show(messageListFile, name);
        return 0;
    }
    uint32_t failed = addLines(file);
    if (std::ferror(file))
        show(messageListFile, name);
    VxFileClose(&file, 0);
    return failed;
}

uint32_t DmPathSet(char *path, int32_t atFront, int32_t *added)
{
    if (added)
        *added = 0;
    if (!path)
        return 1;
    bool withSubdirectories = cutSubdirectoryMark(path);
    char directory[workSize];
    if (VxPathReal(0, path, directory, sizeof directory) || std::strlen(directory) >= pathSize) {
        show(messageBadPath, path);
        return 0;
    }
    char entry[pathSize];
    VxStrCpy(entry, directory, sizeof entry);
    if (withSubdirectories && !subdirectoryMark(entry) && VxPathCompose(entry, sizeof entry, "...", 0)) {
        setText(searchPaths.active, directory);
        show(messageBadPath, path);
        return 0;
    }
    if (!*findLink(&searchPaths.first, entry)) {
        if (!insert(entry, atFront != 0))
            return 1;
        if (added)
            *added = 1;
        enterNow(entry);
    }
    setText(searchPaths.active, directory);
    return 0;
}

uint32_t DmPathAdd(const char *path)
{
    if (!path)
        return 1;
    int32_t added = 0;
    try {
        std::string copy = path;
        if (DmPathSet(copy.data(), 1, &added))
            return 1;
    } catch (const std::bad_alloc &) {
        return 1;
    }
    if (added)
        DmPathSave(0);
    return 0;
}

uint32_t DmPathDel(const char *path)
{
    if (!path)
        return 1;
    VxPathNode **link = findLink(&searchPaths.first, path);
    if (!*link)
        return 0;
    if (searchPaths.next == &(*link)->next)
        searchPaths.next = link;
    removeAt(link);
    return 0;
}

uint32_t DmPathActive(const char *path)
{
    return !setText(searchPaths.active, path);
}

uint32_t DmCompPathActive(const char *path)
{
    return !setText(searchPaths.component, path);
}

int32_t DmPathIsLogged(char *path, int32_t size)
{
    return VxPathReal2(path, size) == 0 && *findLink(&searchPaths.first, path);
}

uint32_t DmPathGet(int32_t *first, char *out, int32_t size)
{
    if (!first || !out || size < 1)
        return 1;
    if (*first)
        searchPaths.next = &searchPaths.first;
    *first = 0;
    VxPathNode *entry = *searchPaths.next;
    if (!entry || !join(out, static_cast<size_t>(size), {entry->text}))
        return 1;
    searchPaths.next = &entry->next;
    return 0;
}

uint32_t DmPathSave(int32_t force)
{
    if (!force && VxConfigNo("Vx.AutoSavePaths"))
        return 0;
    if (hostSays(hostManagesPaths))
        return 0;
    char name[folderSize];
    if (userFolder(savedListFolder, name) && save(name))
        return 0;
    show(messageListFile, name);
    return 1;
}

uint32_t DmPathActiveGet(char *out, int32_t size)
{
    return VxStrCpy(out, searchPaths.active, size);
}

uint32_t DmCompPathRestore(void)
{
    searchPaths.component[0] = '\0';
    return 0;
}

int32_t DmPathCheckActiveOnlySet(int32_t flag)
{
    return searchPaths.checkActiveOnly = flag;
}

int32_t DmPathSearchSet(int32_t flag)
{
    return searchPaths.searchList = flag;
}

int32_t DmPathCheckActiveOnlyGet(void)
{
    return searchPaths.checkActiveOnly;
}

int32_t DmPathSearchGet(void)
{
    return searchPaths.searchList;
}
