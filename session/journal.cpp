// The session journal.

#include "session/journal.h"

#include <cstring>
#include <new>
#include <string>

#include "files/host_calls.h"
#include "files/path_list.h"
#include "platform/os/os.h"
#include "vx/config.h"
#include "vx/err.h"
#include "vx/file.h"
#include "vx/journal.h"
#include "vx/msg.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::session {

constinit Journal journal{};

namespace {

constexpr int32_t pathSize = 256;
constexpr int32_t mostFiles = 1000;
constexpr double defaultLimit = 100; ///< MiB
constexpr double mebibyte = 1048576;

constexpr int32_t errorNoDirectory = 65;
constexpr int32_t messageManyFiles = 100;
constexpr int32_t hostKeepsJournal = 41;

bool written(const char *path)
{
    return *files::findLink(&journal.files, path) != nullptr;
}

/** The folder that a canonical path lies in; a root keeps its separator. */
void folderOf(const char *path, char (&folder)[pathSize])
{
    VxPathDir(path, folder, sizeof folder);
    bool drive = std::strlen(folder) == 2 && folder[1] == ':';
    if (!*folder || drive)
        VxStrCat(folder, "\\", sizeof folder);
}

/** Note that this session writes the journal; without memory the next line tries again. */
void noteFirstWrite()
{
    if (!journal.firstWrite)
        return;
    if (journal.fileCount > mostFiles) {
        VxFprintf(stderr, "%s\n", VxMsg(VxToolsMsgID(), messageManyFiles));
    } else {
        VxPathNode *node = files::makeNode(journal.path);
        if (!node)
            return;
        node->next = journal.files;
        journal.files = node;
        ++journal.fileCount;
    }
    journal.firstWrite = 0;
}

double sizeLimit()
{
    double mebibytes = defaultLimit;
    if (VxConfigVal("Vx.SessionJournalSize", &mebibytes))
        mebibytes = defaultLimit;
    return mebibytes * mebibyte;
}

/** The line that a new journal starts with; false when the time cannot be told. */
bool stamp(std::string &text)
{
    os::CalendarTime now;
    if (os::localTime(os::wallSeconds(), now) != os::Error::none)
        return false;
    char line[64];
    VxSprintf(line, sizeof line, "[%04d-%02d-%02d %02d:%02d:%02d] log start!\r\n", now.year, now.month,
              now.day, now.hour, now.minute, now.second);
    text += line;
    return true;
}

uint32_t append(const std::string &text, bool missing)
{
    FILE *stream = nullptr;
    if (VxFileOpen(&stream, journal.path, "a+b"))
        return 1;
    noteFirstWrite();
    bool done = os::appendWhole(stream, text.data(), text.size()) == os::Error::none;
    // While it is still held: the next line is to find no file again, and stamp it.
    if (!done && missing)
        os::removeFile(journal.path);
    return VxFileClose(&stream, 0) != 0 || !done;
}

/** Put `text` in place of a journal that has become too large, which stays when that fails. */
uint32_t startAnew(const std::string &text)
{
    if (os::replaceFile(journal.path, text.data(), text.size()) != os::Error::none)
        return 1;
    noteFirstWrite();
    return 0;
}

uint32_t print(const char *line)
{
    os::FileStatus status{};
    os::Error error = os::fileStatus(journal.path, status);
    bool missing = error == os::Error::notFound;
    if (error != os::Error::none && !missing)
        return 1;
    std::string text;
    if (missing && !stamp(text))
        return 1;
    text.append(line).append("\r\n");
    return static_cast<double>(status.size) > sizeLimit() ? startAnew(text) : append(text, missing);
}

}

}

using namespace vx;
using namespace vx::session;

uint32_t VxJnlPathSet(const char *path)
{
    if (!path)
        return 1;
    if (VxStrIsBlank(path)) {
        if (!files::hostSays(hostKeepsJournal))
            journal.path[0] = '\0';
        return 0;
    }
    char real[pathSize];
    if (VxPathErr(path, sizeof real, 1) || VxPathReal(1, path, real, sizeof real))
        return 1;
    char folder[pathSize];
    folderOf(real, folder);
    if (!VxPathIsDir(folder)) {
        VxErrStr(errorNoDirectory, folder);
        return 1;
    }
    if (VxStrcasecmp(real, journal.path) == 0)
        return 0;
    VxStrCpy(journal.path, real, sizeof journal.path);
    journal.firstWrite = !written(real);
    return 0;
}

uint32_t VxJnlPrint(const char *line)
{
    if (!line || VxStrIsBlank(journal.path))
        return 0;
    try {
        return print(line);
    } catch (const std::bad_alloc &) {
        return 1;
    }
}

uint32_t VxJnlExit(void)
{
    files::freeList(journal.files);
    journal.fileCount = 0;
    journal.path[0] = '\0';
    journal.firstWrite = 1;
    return 0;
}
