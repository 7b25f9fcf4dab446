// Commands in a shell.

#include <cstdlib>
#include <new>
#include <string>

#include "platform/os/os.h"
#include "talm/base.h"
#include "vx/err.h"
#include "vx/sys.h"
#include "vx/tools.h"

using namespace vx;

namespace {

constexpr int32_t errorCommandNotRun = 19;
constexpr int32_t eventLevel = EsLevelWarning;
constexpr int32_t redirectsOutput = 3;
constexpr const char *discardedOutput = "nulls";
constexpr size_t mostLogged = 511;

/** Standard error, diverted for as long as it is needed and put back in any case. */
class CapturedErrors {
public:
    CapturedErrors() = default;
    ~CapturedErrors()
    {
        if (before_.handle >= 0 && !restore())
            os::forget(before_);
        if (captured_.handle >= 0)
            os::forget(captured_);
    }
    CapturedErrors(const CapturedErrors &) = delete;
    CapturedErrors &operator=(const CapturedErrors &) = delete;

    bool begin() noexcept { return os::captureStandardError(before_, captured_) == os::Error::none; }
    bool restore() noexcept { return os::restoreStandardError(before_) == os::Error::none; }

    /** What was written, as far as it fits `size`. */
    bool read(char *out, size_t size, size_t &length) const noexcept
    {
        return os::readCaptured(captured_, out, size, length) == os::Error::none;
    }

private:
    os::SavedStream before_;
    os::CapturedText captured_;
};

/** Put the file for output that nobody reads behind a command. */
bool redirectOutput(std::string &command)
{
    const char *folder = std::getenv("TEMP");
    std::string file = folder && *folder ? std::string(folder) + "\\" + discardedOutput : discardedOutput;
    char word[4096];
    if (os::shellWord(file.c_str(), word, sizeof word) != os::Error::none)
        return false;
    command.append(" > ").append(word);
    return true;
}

/** Run a command; what it wrote to standard error when it failed goes to the event log. */
bool run(const std::string &command, int32_t &result)
{
    CapturedErrors errors;
    char text[mostLogged + 1];
    size_t length = 0;
    bool good = errors.begin() && os::runCommand(command.c_str(), result) == os::Error::none &&
                (result == 0 || errors.read(text, sizeof text, length)) && errors.restore();
    if (!good)
        return false;
    if (length > mostLogged)
        os::securityFailure("A command failed with more error text than is taken.\n");
    if (length > 0) {
        text[length] = '\0';
        EsLogGeneral("Tools", eventLevel, "%s", text);
    }
    return true;
}

}

int32_t VxSysCmd(const char *command, int32_t redirect)
{
    if (!command)
        return 1;
    int32_t result = 0;
    try {
        std::string text = command;
        bool complete = !(redirect & redirectsOutput) || redirectOutput(text);
        if (complete && run(text, result))
            return result;
    } catch (const std::bad_alloc &) {
        // Told like every other step that failed.
    }
    VxErrLogNum(VxToolsErrID(), errorCommandNotRun, "VxSysCmd", 0);
    return 1;
}

uint32_t VxSysCmdHddn(const char *command, int32_t *exitCode)
{
    os::Program shell;
    int32_t code = 0;
    if (!command || os::startShell(command, shell) != os::Error::none)
        return 1;
    if (os::waitForProgram(shell, code) != os::Error::none) {
        os::forget(shell);
        return 1;
    }
    if (exitCode)
        *exitCode = code;
    return 0;
}
