// Programs: started by the C library's shell or without one, and looked for
// among those that run.

#include "platform/os/os.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/os/fault.h"
#include "platform/os/native_path.h"
#include "platform/os/native_text.h"
#include "platform/os/posix/error.h"
#include "platform/os/posix/native_file.h"

namespace vx::os {

namespace {

constexpr size_t pathSize = 4096 + 1;
constexpr int32_t signalled = 128;
constexpr int firstOwnDescriptor = STDERR_FILENO + 1;

int32_t exitCodeOf(int status) noexcept
{
    return WIFSIGNALED(status) ? signalled + WTERMSIG(status) : WEXITSTATUS(status);
}

// ---------------------------------------------------------------- programs that nobody waits for

struct Forgotten {
    std::mutex mutex;
    std::vector<pid_t> programs;
};

Forgotten &forgotten() noexcept
{
    static Forgotten state;
    return state;
}

/** Take the ends of forgotten programs, so that the system can drop what it keeps of them. */
void reapForgotten() noexcept
{
    std::lock_guard lock(forgotten().mutex);
    std::erase_if(forgotten().programs, [](pid_t id) { return waitpid(id, nullptr, WNOHANG) != 0; });
}

// ---------------------------------------------------------------- starting

/** What a program starts with: the standard streams, no other file, no blocked signal. */
class StartSettings {
public:
    explicit StartSettings(Shown shown) noexcept
    {
        if (posix_spawn_file_actions_init(&files_) != 0 || posix_spawnattr_init(&attributes_) != 0)
            return;
        bool set = true;
        if (shown == Shown::no) {
            set = opens(STDIN_FILENO, O_RDONLY) && opens(STDOUT_FILENO, O_WRONLY) &&
                  posix_spawn_file_actions_adddup2(&files_, STDOUT_FILENO, STDERR_FILENO) == 0;
        }
        sigset_t none, standard;
        sigemptyset(&none);
        sigemptyset(&standard);
        sigaddset(&standard, SIGPIPE);
        good_ = set && posix_spawn_file_actions_addclosefrom_np(&files_, firstOwnDescriptor) == 0 &&
                posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF) == 0 &&
                posix_spawnattr_setsigmask(&attributes_, &none) == 0 &&
                posix_spawnattr_setsigdefault(&attributes_, &standard) == 0;
    }
    ~StartSettings()
    {
        posix_spawn_file_actions_destroy(&files_);
        posix_spawnattr_destroy(&attributes_);
    }
    StartSettings(const StartSettings &) = delete;
    StartSettings &operator=(const StartSettings &) = delete;

    /** 0 or an errno value. */
    int start(const char *program, char *const *arguments, pid_t &id) const noexcept
    {
        return good_ ? posix_spawnp(&id, program, &files_, &attributes_, arguments, environ) : ENOMEM;
    }

private:
    bool opens(int descriptor, int flags) noexcept
    {
        return posix_spawn_file_actions_addopen(&files_, descriptor, "/dev/null", flags, 0) == 0;
    }

    posix_spawn_file_actions_t files_{};
    posix_spawnattr_t attributes_{};
    bool good_ = false;
};

/** Start a program with words that are UTF-8 already. */
Error start(const char *name, std::vector<std::string> &words, Shown shown, Program &program)
{
    reapForgotten();
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    StartSettings settings(shown);
    pid_t id = -1;
    if (int code = settings.start(name, arguments.data(), id); code != 0)
        return fail(code);
    program.handle = id;
    return Error::none;
}

}

Error runCommand(const char *command, int32_t &exitCode) noexcept
{
    VX_OS_VERB("runCommand");
    return guarded([&] {
        int status = std::system(toUtf8(command).c_str());
        if (status == -1)
            return errorOf(errno);
        exitCode = exitCodeOf(status);
        return Error::none;
    });
}

Error shellWord(const char *path, char *out, size_t size) noexcept
{
    VX_OS_VERB("shellWord");
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%=";
    NativePath native(path);
    if (native.error() != Error::none)
        return refusePath(native.error());
    char word[pathSize];
    fromUtf8(native.c_str(), word, sizeof word);
    bool quoted = std::any_of(word, word + std::strlen(word), [&](char c) {
        return static_cast<signed char>(c) >= 0 && plain.find(c) == plain.npos;
    });
    return guarded([&] {
        std::string text = quoted ? "'" : "";
        for (const char *p = word; *p; ++p)
            text += quoted && *p == '\'' ? "'\\''" : std::string(1, *p);
        text += quoted ? "'" : "";
        if (text.size() >= size)
            return fail(ENAMETOOLONG);
        std::memcpy(out, text.c_str(), text.size() + 1);
        return Error::none;
    });
}

Error startProgram(const char *const *arguments, Shown shown, Program &program) noexcept
{
    VX_OS_VERB("startProgram");
    if (!arguments || !arguments[0] || !*arguments[0])
        return fail(EINVAL);
    NativePath name(arguments[0]);
    if (name.error() != Error::none)
        return refusePath(name.error());
    return guarded([&] {
        std::vector<std::string> words{name.c_str()};
        for (const char *const *word = arguments + 1; *word; ++word)
            words.push_back(toUtf8(*word));
        return start(name.c_str(), words, shown, program);
    });
}

Error startShell(const char *command, Program &program) noexcept
{
    VX_OS_VERB("startShell");
    const char *named = std::getenv("COMSPEC");
    NativePath shell(named && *named ? named : "/bin/sh");
    if (shell.error() != Error::none)
        return refusePath(shell.error());
    return guarded([&] {
        std::vector<std::string> words{shell.c_str(), "-c", toUtf8(command)};
        return start(shell.c_str(), words, Shown::no, program);
    });
}

Error waitForProgram(Program &program, int32_t &exitCode) noexcept
{
    VX_OS_VERB("waitForProgram");
    int status = 0;
    pid_t ended;
    do
        ended = waitpid(static_cast<pid_t>(program.handle), &status, 0);
    while (ended < 0 && errno == EINTR);
    program = Program{};
    if (ended < 0)
        return errorOf(errno);
    exitCode = exitCodeOf(status);
    return Error::none;
}

void forget(Program &program) noexcept
{
    if (program.handle < 0)
        return;
    try {
        std::lock_guard lock(forgotten().mutex);
        forgotten().programs.push_back(static_cast<pid_t>(program.handle));
    } catch (const std::bad_alloc &) {
        // Its end is then taken with the end of this process.
    }
    program = Program{};
}

Error eachProcess(bool (*visit)(void *context, uint32_t id, const char *program), void *context) noexcept
{
    VX_OS_VERB("eachProcess");
    std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir("/proc"), closedir);
    if (!folder)
        return errorOf(errno);
    while (const dirent *entry = readdir(folder.get())) {
        uint32_t id = 0;
        const char *end = entry->d_name + std::strlen(entry->d_name);
        if (std::from_chars(entry->d_name, end, id).ptr != end)
            continue;
        // A process that has ended meanwhile or is somebody else's tells nothing.
        char link[sizeof "/proc/4294967295/exe"];
        std::snprintf(link, sizeof link, "/proc/%u/exe", id);
        char native[pathSize], program[pathSize];
        ssize_t length = readlink(link, native, sizeof native - 1);
        if (length <= 0)
            continue;
        native[length] = '\0';
        if (fromNative(native, program, sizeof program) == Error::none && !visit(context, id, program))
            break;
    }
    return Error::none;
}

}
