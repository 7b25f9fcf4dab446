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
    busy,       ///< held by another opening that does not share
    nameTooLong,
    notDirectory,
    isDirectory,
    noSpace,
    noMemory,
    invalid,    ///< an argument or a name that the system cannot express
    unsupported,
    other
};

// ---------------------------------------------------------------- time

struct CalendarTime {
    int32_t year;   ///< in full: 2026
    int32_t month;  ///< 1 to 12
    int32_t day;    ///< 1 to 31
    int32_t hour, minute, second;
    int32_t weekday; ///< 0 Sunday
};

/** Seconds since 1970-01-01 00:00 UTC. */
int64_t wallSeconds() noexcept;

/** Microseconds since 1970-01-01 00:00 UTC. */
int64_t wallMicroseconds() noexcept;

/** The local calendar time of `seconds`. */
Error localTime(int64_t seconds, CalendarTime &out) noexcept;

// ---------------------------------------------------------------- texts of the system

/** What errno `code` means, or null when the system has no text for it. Valid until this thread's next call. */
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

/**
 * Put these bytes in place of a file's content, or make the file, so that
 * whoever opens it finds the old content or the new and never a part. Where
 * `path` is a link, the file it leads to is replaced; permissions stay. A file
 * without write permission is `accessDenied`. On failure nothing has changed.
 */
Error replaceFile(const char *path, const void *bytes, size_t size) noexcept;

Error makeDirectory(const char *path) noexcept;

/** The process's current directory, without a final separator unless it is a root. */
Error currentDirectory(char *out, size_t size) noexcept;
Error setCurrentDirectory(const char *path) noexcept;

/** Full path of the running program. */
Error executablePath(char *out, size_t size) noexcept;

/** The long form of an existing path where the system has short ones, else the path itself. */
Error longPath(const char *path, char *out, size_t size) noexcept;

/** The system's folder for temporary files, without a final separator unless it is a root. */
Error temporaryFolder(char *out, size_t size) noexcept;

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
