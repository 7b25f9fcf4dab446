// Free names, temporary files and files in known places.

#include <cstring>
#include <mutex>
#include <random>

#include "files/path_state.h"
#include "files/path_text.h"
#include "platform/os/os.h"
#include "text/codepage.h"
#include "vx/file.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr int32_t candidateSize = 512;
constexpr int32_t lastNumber = 999;
constexpr int32_t lastPatternNumber = 999999;

constexpr int32_t rounds = 4;
constexpr int32_t namesOfRound = 25;
constexpr int32_t counterEnd = 0x8000;
constexpr int32_t temporaryRoom = 8; ///< "hk", a random number and the terminator

/** Where the numbers of temporary names come from. */
struct TemporaryNames {
    std::mutex mutex;
    int32_t counter = -1; ///< -1: not seeded yet
    std::minstd_rand random;
    uint32_t seeds = 0;

    /** The host's own sequence of random numbers is left alone. */
    void seed() noexcept
    {
        // The time stands still between two rounds, for all that is known.
        random.seed(static_cast<uint32_t>(os::wallMicroseconds()) + ++seeds);
        counter = static_cast<int32_t>(random() % counterEnd);
    }
};

TemporaryNames temporaryNames;

int32_t nextTemporaryNumber() noexcept
{
    std::lock_guard lock(temporaryNames.mutex);
    if (temporaryNames.counter < 0)
        temporaryNames.seed();
    return temporaryNames.counter++;
}

void seedTemporaryNumbers() noexcept
{
    std::lock_guard lock(temporaryNames.mutex);
    temporaryNames.seed();
}

/** Make "hk%d" with the next number behind the `length` bytes of a folder in `out`; null when it is taken. */
FILE *makeTemporary(char *out, size_t length, size_t size, const char *mode) noexcept
{
    char number[16];
    VxSprintf(number, sizeof number, "hk%d", nextTemporaryNumber());
    FILE *stream = nullptr;
    if (join(out + length, size - length, {number}))
        os::openFile(out, mode, stream);
    return stream;
}

/** Make a new file in the folder whose name, with its final separator, stands in `out`: its name follows. */
FILE *makeTemporaryIn(char *out, size_t size, const char *mode) noexcept
{
    size_t length = std::strlen(out);
    if (size - length < temporaryRoom)
        return nullptr;
    for (int32_t round = 0; round < rounds; ++round) {
        for (int32_t n = 0; n < namesOfRound; ++n)
            if (FILE *stream = makeTemporary(out, length, size, mode))
                return stream;
        seedTemporaryNumbers();
    }
    out[length] = '\0';
    return nullptr;
}

/** The folder part of a path with its final separator, or ".\"; false when it does not fit. */
bool folderOf(const char *path, char *out, int32_t size) noexcept
{
    char copy[candidateSize];
    if (VxStrCpy(copy, path, sizeof copy))
        return false;
    VxPathCheck(copy);
    const char *last = lastSeparator(copy);
    std::string_view folder = last ? std::string_view(copy, static_cast<size_t>(last - copy) + 1) : ".\\";
    return join(out, static_cast<size_t>(size), {folder});
}

/** A pattern for names taken apart at its one "%d", which may have a width: "%03d". */
struct NumberPattern {
    std::string_view before, after;
    char number[16]; ///< a format that is safe to use
};

bool parsePattern(std::string_view pattern, NumberPattern &out) noexcept
{
    constexpr size_t widest = 2;
    size_t percent = pattern.find('%');
    if (percent == pattern.npos)
        return false;
    size_t end = pattern.find_first_not_of("0123456789", percent + 1);
    bool number = end != pattern.npos && pattern[end] == 'd' && end - percent - 1 <= widest;
    if (!number || pattern.find('%', end) != pattern.npos)
        return false;
    out.before = pattern.substr(0, percent);
    out.after = pattern.substr(end + 1);
    return join(out.number, sizeof out.number, {pattern.substr(percent, end + 1 - percent)});
}

/** dir\name, or false when it does not fit. */
bool candidateIn(const char *dir, const char *name, char (&out)[candidateSize]) noexcept
{
    return VxStrCpy(out, dir, sizeof out) == 0 && VxPathCompose(out, sizeof out, name, 0) == 0;
}

/** Take `parts` as the place of a file if there is one. */
bool foundAt(std::initializer_list<std::string_view> parts, char *out, int32_t size) noexcept
{
    char candidate[candidateSize];
    return join(candidate, sizeof candidate, parts) && VxFileExists(candidate) &&
           std::strlen(candidate) < static_cast<size_t>(size) && VxStrCpy(out, candidate, size) == 0;
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t VxFileUniqueName(const char *dir, const char *base, const char *ext, char *out, int32_t size)
{
    if (!dir || !base || !ext || !out || size < 1)
        return 1;
    for (int32_t n = 1; n <= lastNumber; ++n) {
        char number[8];
        VxSprintf(number, sizeof number, "%03d", n);
        char candidate[candidateSize];
        if (!join(out, static_cast<size_t>(size), {base, number, ".", ext}) ||
            !candidateIn(dir, out, candidate))
            return 1;
        if (!VxFileExists(candidate))
            return 0;
    }
    return 1;
}

uint32_t VxFileUniqueName2(const char *dir, const char *pattern, char *out, int32_t size)
{
    NumberPattern parts;
    if (!dir || !pattern || !out || size < 1 || !parsePattern(pattern, parts))
        return 1;
    for (int32_t n = 1; n <= lastPatternNumber; ++n) {
        char number[128];
        VxSprintf(number, sizeof number, parts.number, n);
        char candidate[candidateSize];
        if (!join(out, static_cast<size_t>(size), {parts.before, number, parts.after}) ||
            !candidateIn(dir, out, candidate))
            return 1;
        FILE *made = nullptr;
        os::Error error = os::openFile(candidate, "wbx", made);
        if (error == os::Error::none)
            return std::fclose(made) != 0;
        if (error != os::Error::exists)
            return 1;
    }
    return 1;
}

uint32_t VxFileTemp(const char *path, int32_t size, char *out)
{
    if (!path || !out || size < 1 || !folderOf(path, out, size))
        return 1;
    FILE *stream = makeTemporaryIn(out, static_cast<size_t>(size), "w+bcx");
    if (!stream)
        return 1;
    bool synced = os::syncStream(stream) == os::Error::none;
    bool closed = std::fclose(stream) == 0;
    if (synced && closed)
        return 0;
    os::removeFile(out);
    return 1;
}

FILE *VxFileTmp(void)
{
    char name[candidateSize];
    if (os::temporaryFolder(name, sizeof name - 1) != os::Error::none)
        return nullptr;
    VxPathAddDelim(name);
    return makeTemporaryIn(name, sizeof name, "w+bDx");
}

int32_t VxFileFind(const char *dir, const char *name, char *out, int32_t size)
{
    if (!dir || !name || !out || size < 1)
        return 0;
    char local[candidateSize];
    if (join(local, sizeof local, {".\\", dir}) && VxPathReal(0, local, local, sizeof local) == 0) {
        const char *between = endsInSeparator(local) ? "" : "\\";
        if (foundAt({local, between, name}, out, size))
            return 1;
    }
    const char *between = *dir && !endsInSeparator(dir) ? "\\" : "";
    return foundAt({pathState.root, dir, between, name}, out, size);
}

const char *VxZip(int32_t unzip)
{
    static thread_local char tool[16];
    VxStrCpy(tool, unzip ? "unzip.exe" : "zip.exe", sizeof tool);
    return tool;
}
