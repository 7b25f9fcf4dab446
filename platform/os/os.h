#pragma once

// The seam to the operating system: small verbs without policy, each
// implemented once in posix/ and once in win32/. No system type, no toolkit
// rule and no message stands here; the caller knows what a failure means.
//
// Paths are texts in the toolkit's spelling: backslashes, the process code
// page, perhaps a drive. They become native names inside this folder only
// (native_path.h), and native names come back in the toolkit's spelling.
//
// A verb that fails says so with an Error other than none and leaves errno as
// the system set it. In test builds any verb can be refused (fault.h), and
// the values that it reports be replaced (test_values.h).

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace vx::os {

enum class Error : int32_t {
    none = 0,
    notFound,
    accessDenied,
    exists,
    busy, ///< held by another opening that does not share
    nameTooLong,
    notDirectory,
    isDirectory,
    noSpace,
    noMemory,
    otherDevice, ///< two names that lie on two devices
    invalid,     ///< an argument or a name that the system cannot express
    unsupported,
    other
};

// ---------------------------------------------------------------- time

struct CalendarTime {
    int32_t year;  ///< in full: 2026
    int32_t month; ///< 1 to 12
    int32_t day;   ///< 1 to 31
    int32_t hour, minute, second;
    int32_t weekday; ///< 0 Sunday
};

/** Seconds since 1970-01-01 00:00 UTC. */
int64_t wallSeconds() noexcept;

/** Microseconds since 1970-01-01 00:00 UTC. */
int64_t wallMicroseconds() noexcept;

/** The local calendar time of `seconds`. */
Error localTime(int64_t seconds, CalendarTime &out) noexcept;

/** Microseconds of processor time that the process has used. */
int64_t processorMicroseconds() noexcept;

enum class TimeForm { date, time };

/** The local date or time of day of `seconds` as the user's locale writes it. */
Error localTimeText(int64_t seconds, TimeForm form, char *out, size_t size) noexcept;

// ---------------------------------------------------------------- texts of the system

/** What errno `code` means, or null where the system has no text. Valid until this thread's next call. */
const char *errorText(int32_t code) noexcept;

/** Codes 0 to this number less one have texts. */
int32_t errorTextCount() noexcept;

/** The code page of the user's locale: 65001 for UTF-8, 0 for the plain C locale or one without a number. */
int32_t localeCodePage() noexcept;

/** vsnprintf under the C locale whatever the process's is: the length needed, negative on failure. */
int32_t formatArgs(char *out, size_t size, const char *format, va_list args) noexcept;

/** As formatArgs(), to a stream: bytes written, negative on failure. */
int32_t printArgs(FILE *stream, const char *format, va_list args) noexcept;

/** strtod under the C locale whatever the process's is. */
double parseDouble(const char *text, char **end) noexcept;

/** The debugger's output; on systems without one the sink set here, by default none. */
void debuggerOutput(const char *text) noexcept;
void setDebuggerSink(void (*sink)(const char *text)) noexcept;

// ---------------------------------------------------------------- memory

size_t pageSize() noexcept;

struct MemoryStatus {
    uint64_t totalVirtual, availableVirtual; ///< address space of this process, bytes
    uint64_t totalPageFile;                  ///< physical memory and swap, bytes
    uint64_t totalPhysical;                  ///< bytes
};
Error memoryStatus(MemoryStatus &out) noexcept;

/**
 * Ask for the largest pages that the system has in place of the usual ones, in
 * a block of many megabytes that is about to be filled. Nothing changes but
 * the time that takes; a failure can be ignored.
 */
Error preferLargePages(void *block, size_t size) noexcept;

/** Bytes that the heap really gave for `block`, which malloc made. */
size_t usableSize(const void *block) noexcept;

struct Mapping {
    void *view = nullptr;
    int64_t size = 0;
    void *file = nullptr;    ///< opaque to callers
    void *mapping = nullptr; ///< opaque to callers
    bool writable = false;
};
enum class MapMode { read, write, readWrite };

/** Map a whole file; `write` and `readWrite` make a missing file. An empty file is `invalid`. */
Error mapFile(const char *path, MapMode mode, Mapping &out) noexcept;

/** Flush a writable view, unmap and close; every step is taken, the first failure told. */
Error unmapFile(Mapping &mapping) noexcept;

// ---------------------------------------------------------------- files

struct FileStatus {
    uint64_t device, inode;
    uint32_t mode; ///< type in 0xF000: 0x4000 directory, 0x8000 file; permissions in 0777
    uint32_t links;
    int64_t size;
    int64_t accessed, modified, changed; ///< seconds since 1970
};
Error fileStatus(const char *path, FileStatus &out) noexcept;

enum class Access { exists, read, write };
Error access(const char *path, Access wanted) noexcept;

/**
 * Open a stream so that openings through this verb do not clash, in this
 * process or another: any number may read a file, or one may write it. An
 * opening that clashes is `accessDenied` (EACCES). Programs that do not open
 * through the toolkit are not kept out where the system's locks are advisory.
 *
 * `mode` is fopen's; of the further letters c, n, t, N, S, R and T have no
 * effect and D removes the name at once. Nothing is truncated before the file
 * is held, and a file that was made for an opening that then fails goes again.
 * Folders are refused; devices are opened, but not held.
 */
Error openFile(const char *path, const char *mode, FILE *&stream) noexcept;

Error removeFile(const char *path) noexcept;

/** Give a file or folder another name on the same device; a file that has the name already is replaced. */
Error renameFile(const char *from, const char *to) noexcept;

/**
 * Give a file a second name; a file that has the name already is replaced.
 * `unsupported` or `accessDenied` where the file system has no second names.
 */
Error linkFile(const char *existing, const char *name) noexcept;

/**
 * Put these bytes in place of a file's content, or make the file, so that
 * whoever opens it finds the old content or the new and never a part. Where
 * `path` is a link, the file it leads to is replaced; permissions stay. A file
 * without write permission is `accessDenied`. On failure nothing has changed.
 */
Error replaceFile(const char *path, const void *bytes, size_t size) noexcept;

/**
 * Add bytes to the end of a file that openFile() gave for appending, past the
 * stream's buffer and in one write: all of them, or none.
 */
Error appendWhole(FILE *stream, const void *bytes, size_t size) noexcept;

Error makeDirectory(const char *path) noexcept;

/** Remove an empty folder; a link to a folder is `notDirectory`. */
Error removeDirectory(const char *path) noexcept;

/** One entry of a folder. */
struct FolderEntry {
    char name[256];
    bool folder; ///< also of a link that leads to one
    bool link;   ///< what it leads to may come, go and change without the folder's own status changing
};

/** A walk over a folder's entries; opaque to callers. */
struct FolderWalk {
    void *handle = nullptr;
};
Error openFolder(const char *path, FolderWalk &out) noexcept;

/**
 * The next entry, in the system's order; `notFound` behind the last one. "."
 * and "..", and names with a backslash, are left out. What comes and goes
 * during the walk is met or not.
 */
Error readFolder(FolderWalk &walk, FolderEntry &out) noexcept;
void closeFolder(FolderWalk &walk) noexcept;

/** Bytes of the device that holds an existing path: what this user may still write, and all. */
Error diskSpace(const char *path, int64_t &available, int64_t &total) noexcept;

enum Attribute : uint32_t {
    readOnlyAttribute = 0x1, ///< of files
    hiddenAttribute = 0x2,
    directoryAttribute = 0x10,
    archiveAttribute = 0x20,
};

/** The attributes of a file or folder, those above. */
Error fileAttributes(const char *path, uint32_t &attributes) noexcept;

/**
 * Set read-only, hidden and archive. `unsupported` when the file system has
 * no place for the last two; the first is then set all the same.
 */
Error setFileAttributes(const char *path, uint32_t attributes) noexcept;

// ---------------------------------------------------------------- positions of streams

enum class Origin { begin, current, end };

/** fseek and ftell for files of any size. */
Error seekStream(FILE *stream, int64_t offset, Origin origin) noexcept;
Error tellStream(FILE *stream, int64_t &position) noexcept;

/** Flush a stream, through to the device. */
Error syncStream(FILE *stream) noexcept;

// ---------------------------------------------------------------- files without streams

/** An open file; opaque to callers. */
struct Handle {
    intptr_t value = -1;

    bool isOpen() const noexcept { return value >= 0; }
};

enum HandleMode : uint32_t {
    readAccess = 0x1,
    writeAccess = 0x2,
    shareRead = 0x4,  ///< others may open it for reading meanwhile
    shareWrite = 0x8, ///< and for writing
    createNew = 0x10, ///< fail with `exists` when there is one; else an existing file is opened
};

/** Open a file, held as openFile() holds it; to read it where no access is named. Folders are refused. */
Error openHandle(const char *path, uint32_t mode, Handle &out) noexcept;

/** Close it, in any case, and forget it; the error is that of writing late. */
Error closeHandle(Handle &handle) noexcept;

/** Close it without asking. */
void dropHandle(Handle &handle) noexcept;

Error handleStatus(Handle handle, FileStatus &out) noexcept;

/** Read at an offset: as many bytes as there are, up to `size`; 0 at the end. */
Error readHandle(Handle handle, int64_t offset, void *bytes, size_t size, size_t &got) noexcept;

/** Copy at most `most` bytes from one offset to another, within the system where it can: 0 at the end. */
Error copyBytes(Handle from, int64_t fromOffset, Handle to, int64_t toOffset, size_t most,
                size_t &copied) noexcept;

/** Cut or extend a file to a size. */
Error resizeHandle(Handle handle, int64_t size) noexcept;

/** Give `to` the permissions and the times of last access and change of `from`. */
Error copyTimesAndPermissions(Handle from, Handle to) noexcept;

/** A file that is on its way to take the place of another: see beginReplacement(). */
struct Replacement {
    Handle file; ///< the new file, for writing
    Handle old;  ///< what it will replace, held, for reading where that is allowed; not open when nothing is
    char name[4096 + 32]; ///< native, opaque to callers; empty when nothing is left to remove
    char target[4096 + 1];
};

/**
 * Make a new, empty file beside `path`, to be filled and then to take its
 * name by commitReplacement(), or to be given up by dropReplacement(). What
 * has the name, or where it is a link the file that it leads to, is held
 * meanwhile; only files can be replaced. The new file has its permissions.
 */
Error beginReplacement(const char *path, Replacement &out) noexcept;

/**
 * Give the new file its name. With `durable`, whatever happens to the power
 * then, the name leads to the old content or to all of the new. On failure
 * nothing has changed, and the new file is still to be dropped.
 */
Error commitReplacement(Replacement &replacement, bool durable) noexcept;

/** Close what is open, and remove the new file unless it has its name. */
void dropReplacement(Replacement &replacement) noexcept;

// ---------------------------------------------------------------- places

/** The process's current directory, without a final separator unless it is a root. */
Error currentDirectory(char *out, size_t size) noexcept;
Error setCurrentDirectory(const char *path) noexcept;

/** Full path of the running program. */
Error executablePath(char *out, size_t size) noexcept;

/** The long form of an existing path where the system has short ones, else the path itself. */
Error longPath(const char *path, char *out, size_t size) noexcept;

/** The system's folder for temporary files, without a final separator unless it is a root. */
Error temporaryFolder(char *out, size_t size) noexcept;

// ---------------------------------------------------------------- what the system is

struct SystemName {
    char system[257], node[257], release[257], version[257], machine[257];
};

/** The system, this machine's name in the network, and the processor. */
Error systemName(SystemName &out) noexcept;

/** Have the clock step by a millisecond or less, until it is told not to; many systems' clocks always do. */
Error fineClock(bool fine) noexcept;

// ---------------------------------------------------------------- standard streams

/** What standard error was before it was redirected; opaque to callers. */
struct SavedStream {
    intptr_t handle = -1;
};

/** Send standard error to a file, which is emptied. A failure leaves standard error as it was. */
Error redirectStandardError(const char *path, SavedStream &before) noexcept;

/** Put back and release what redirectStandardError() gave. A failure keeps it. */
Error restoreStandardError(SavedStream &before) noexcept;

/** Release it without putting it back. */
void forget(SavedStream &before) noexcept;

/** What was written to standard error while it was captured; opaque to callers. */
struct CapturedText {
    intptr_t handle = -1;
};

/**
 * Keep what this process and the programs that it starts write to standard
 * error. However much that is, writing to it never waits. A failure leaves
 * standard error as it was.
 */
Error captureStandardError(SavedStream &before, CapturedText &captured) noexcept;

/** The first `size` bytes written so far, or all there are; `length` tells how many. */
Error readCaptured(const CapturedText &captured, char *out, size_t size, size_t &length) noexcept;

void forget(CapturedText &captured) noexcept;

// ---------------------------------------------------------------- settings

/**
 * The system's settings store: the registry, or on other systems a key file
 * whose sections are the keys. Keys and names are compared ignoring the case
 * of ASCII letters; a value is any text. Processes that write at once do not
 * lose each other's values.
 */
enum class SettingsRoot { user, machine };

/** A value: `notFound` without one, `nameTooLong` for one that does not fit; `out` is then empty. */
Error readSetting(SettingsRoot root, const char *key, const char *name, char *out, size_t size) noexcept;

/**
 * Set a value, with its key when needed. A key or name that could not be read
 * back is `invalid`: one with a line break; in a key file also a name with "="
 * or with "[", "#" or ";" in front. On failure nothing has changed.
 */
Error writeSetting(SettingsRoot root, const char *key, const char *name, const char *text) noexcept;

/** The name of the n-th key directly below `key`, from 0; `notFound` when it has no more. */
Error subkeyName(SettingsRoot root, const char *key, int32_t n, char *out, size_t size) noexcept;

// ---------------------------------------------------------------- processors and threads

/** How many processors this process may use; at least 1. */
int32_t processorCount() noexcept;

/** The processor that this thread runs on, counted from 0, negative when the system does not tell. */
int32_t currentProcessor() noexcept;

/** Processors by number, as many as fit; others are none. */
class ProcessorSet {
public:
    static constexpr int32_t size = 1024;

    void add(int32_t processor) noexcept
    {
        if (processor >= 0 && processor < size)
            words_[processor / 64] |= uint64_t{1} << (processor % 64);
    }
    bool has(int32_t processor) const noexcept { return words_[processor / 64] >> (processor % 64) & 1; }

private:
    uint64_t words_[size / 64] = {};
};

/**
 * Move this thread to a processor that is not among these, when it may use
 * one. It is as free afterwards as it was: the system may move it again.
 */
Error leaveProcessors(const ProcessorSet &taken) noexcept;

/** What a loop does that waits for another processor's next store. */
void relaxProcessor() noexcept;

/** A thread; stays where it is from startThread() to joinThread(). */
struct Thread {
    void (*main)(void *argument) noexcept = nullptr;
    void *argument = nullptr;
    bool runs = false;
    uintptr_t handle = 0; ///< opaque to callers
};

/** Let a new thread run `main`; a failure leaves `runs` false. */
Error startThread(Thread &thread) noexcept;

/** Wait for its end. */
void joinThread(Thread &thread) noexcept;

// ---------------------------------------------------------------- programs

/** Run a command by std::system and wait: its exit code, 128 and the signal's number for one. */
Error runCommand(const char *command, int32_t &exitCode) noexcept;

/**
 * A path as a word of such a command, in the process code page; quoted where
 * it holds what the shell gives a meaning.
 */
Error shellWord(const char *path, char *out, size_t size) noexcept;

/** A program that was started; opaque to callers. */
struct Program {
    intptr_t handle = -1;
};

enum class Shown { yes, no };

/**
 * Start a program, without a shell, with the words of `arguments`, whose last
 * is null. The first is the program: a path in the toolkit's spelling, or a
 * name that is looked for where the system looks for programs. All words reach
 * it as they are. It gets the standard streams and no other open file; one
 * that is not shown has no window, no input, and its output goes nowhere.
 */
Error startProgram(const char *const *arguments, Shown shown, Program &program) noexcept;

/** As startProgram(), not shown: a command in the shell that COMSPEC names, else in the system's. */
Error startShell(const char *command, Program &program) noexcept;

/** Wait for its end: its exit code, 128 and the signal's number for one. The program is then forgotten. */
Error waitForProgram(Program &program, int32_t &exitCode) noexcept;

/** Let it go on by itself. */
void forget(Program &program) noexcept;

/**
 * Call `visit` for each process whose program can be told, with its full path,
 * until it answers false.
 */
Error eachProcess(bool (*visit)(void *context, uint32_t id, const char *program), void *context) noexcept;

// ---------------------------------------------------------------- the system and its user

struct SystemDescription {
    bool windows;         ///< what of the fields below stands for
    char name[256];       ///< not Windows: the distribution and the kernel, in the process code page
    int32_t version[3];   ///< Windows' or the kernel's: major, minor, build
    bool server;          ///< Windows: a server edition
    uint32_t productType; ///< Windows: what GetProductInfo tells, else 0
    bool has64Bits;
};
Error describeSystem(SystemDescription &out) noexcept;

/** The login name of the user whom this process runs for. */
Error userName(char *out, size_t size) noexcept;

// ---------------------------------------------------------------- the desktop

/** Put a file, given with its full path, in front of the user's recent documents. */
Error addRecentDocument(const char *path) noexcept;

struct Shortcut {
    const char *target;
    const char *const *arguments; ///< the last is null
    const char *workFolder;       ///< may be empty
    const char *description;      ///< may be empty
};

/**
 * Make or replace a shortcut. The ending that shortcuts have on the system is
 * put in place of another system's or behind a name without one.
 */
Error createShortcut(const char *path, const Shortcut &shortcut) noexcept;

// ---------------------------------------------------------------- fatal signals

/** The signals that end a process, named alike on every system. */
enum class Signal : int32_t { interrupt, illegalInstruction, abort, floatingPoint, segmentation, terminate };

/**
 * Have `handler` called for every Signal, once and on a stack of its own
 * where the system has one. When it returns, what stood before takes over and
 * the signal is raised again. A second call only changes the handler.
 */
Error installFatalHandler(void (*handler)(Signal)) noexcept;

/** Put back what stood before installFatalHandler(). */
void removeFatalHandler() noexcept;

/** Text to standard error without buffers and locks: what a signal handler may do. */
void emergencyOutput(const char *text) noexcept;

/** Message to standard error, no signal handlers, end of the process: for faults that must not go on. */
[[noreturn]] void securityFailure(const char *message) noexcept;

}
