// Where the program, its data and the user's folders are: the registry's start.

#include <cerrno>
#include <cstring>

#include "files/host_calls.h"
#include "files/path_list.h"
#include "files/path_state.h"
#include "files/path_text.h"
#include "platform/os/os.h"
#include "vx/file.h"
#include "vx/lang.h"
#include "vx/path.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::files {

namespace {

constexpr size_t workSize = 512;
constexpr int32_t folderSize = 260;

constexpr int32_t toolkitCategory = 6;
constexpr int32_t logStep = 8;
constexpr int32_t logFailure = 9;

void log(const char *text)
{
    EsPut(toolkitCategory, logStep, "%s", text);
}

/** Puts the registry and the current directory back unless the start is kept. */
class OldState {
public:
    explicit OldState(const char *directory) noexcept : paths_(pathState), directory_(directory)
    {
        std::memcpy(userFolder_, VgPathUserFolder, sizeof userFolder_);
    }

    ~OldState()
    {
        if (kept_)
            return;
        freeList(pathState.first);
        pathState = paths_;
        std::memcpy(VgPathUserFolder, userFolder_, sizeof userFolder_);
        if (*directory_)
            os::setCurrentDirectory(directory_);
    }

    OldState(const OldState &) = delete;
    OldState &operator=(const OldState &) = delete;

    void keepNew() noexcept { kept_ = true; }

private:
    PathState paths_;
    char userFolder_[sizeof VgPathUserFolder];
    const char *directory_;
    bool kept_ = false;
};

void readProgram(char (&program)[261])
{
    if (os::executablePath(program, sizeof program) == os::Error::none)
        return;
    EsPut(toolkitCategory, logFailure, "GetModuleFileNameEx failed (%d)\n", errno);
    program[0] = '\0';
}

void readCurrentDirectory(char (&directory)[folderSize])
{
    if (os::currentDirectory(directory, sizeof directory) == os::Error::none) {
        VxStrCpy(VgPathUserFolder, directory, sizeof VgPathUserFolder);
        return;
    }
    EsPut(toolkitCategory, logFailure, "GetCurrentDirectory failed (%d)\n", errno);
    directory[0] = '\0';
}

void setInstallPath(const char *program)
{
    VxPathDir(program, pathState.install, sizeof pathState.install);
    if (endsInSeparator(pathState.install))
        *lastSeparator(pathState.install) = '\0';
}

/** Whether the running program is the application itself, not a foreign process that loaded it. */
bool isApplication(const char *program)
{
    char name[256];
    const char *expected = hostVariable<char>(1);
    return VxPathSplit(program, nullptr, nullptr, name, nullptr) == 0 && *name && expected &&
           std::strcmp(name, expected) == 0;
}

uint32_t registerUnder(const char *directory, const char *folder)
{
    char path[workSize];
    const char *between = endsInSeparator(directory) ? "" : "\\";
    return !join(path, sizeof path, {directory, between, folder}) || VxPathSet(path);
}

/** The folder `steps` ("\\..\\..") away from `directory`. */
void canonicalFrom(const char *directory, const char *steps, char (&out)[workSize])
{
    if (join(out, sizeof out, {directory, steps}))
        VxPathReal2(out, sizeof out);
}

uint32_t setRoot(const char *directory, const char *folder)
{
    if (registerUnder(directory, folder))
        return 1;
    // Registered first into an empty list, so it stands at the front as it was stored.
    VxStrCpy(pathState.root, pathState.first->text, sizeof pathState.root);
    return 0;
}

uint32_t startDevelopment(const char *directory)
{
    log("Debug/Release build ...\n");
    log(VgInstance ? "development environment(Instance) ...\n" : "development environment ...\n");

    char source[workSize];
    char build[workSize];
    canonicalFrom(directory, "\\..\\..", source);
    canonicalFrom(directory, "\\..\\..\\..", build);
    if (setRoot(source, "driver\\") || VxPathSet(pathState.install) || registerUnder(source, "qa\\"))
        return 1;

    const int32_t *version = hostVariable<int32_t>(2);
    char qa[32];
    VxSprintf(qa, sizeof qa, "HK_QA\\%d\\", (version ? *version : TsCadVer) / 100);
    if (registerUnder(build, qa))
        return 1;
    EsPut(toolkitCategory, logStep, "SrcPath=%s\nBinPath=%s\n", source, build);
    return 0;
}

/** Make the user's work folder and go there; a secondary instance stays where it was started. */
uint32_t enterWorkFolder()
{
    log(VgInstance ? "install environment(Instance) ...\n" : "install environment ...\n");
    char folder[folderSize];
    if (userFolder(4, folder))
        VxPathCheck(folder);
    if (!VgInstance) {
        // The whole chain: a new user has none of it yet.
        if (VxPathMk(folder))
            return 1;
        if (os::setCurrentDirectory(folder) != os::Error::none)
            EsPut(toolkitCategory, logFailure, "SetCurrentDirectory failed (%d)\n", errno);
    }
    if (userFolder(5, folder))
        VxStrCpy(VgPathUserFolder, folder, sizeof VgPathUserFolder);
    return 0;
}

uint32_t startProduct()
{
    log("Production build ...\n");
    if (!VgTplCompile && enterWorkFolder())
        return 1;
    return setRoot(pathState.install, "");
}

uint32_t registerUserFolder(int32_t number)
{
    char folder[folderSize];
    userFolder(number, folder);
    return VxPathSet(folder);
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t VxPathInit(void)
{
    if (pathState.first)
        return 0;
    char program[261];
    char current[folderSize] = "";
    OldState old(current);
    readProgram(program);
    readCurrentDirectory(current);
    setInstallPath(program);

    const char *directory = isApplication(program) ? pathState.install : current;
    uint32_t failed = VxPathIsDebug(lastComponent(directory)) ? startDevelopment(directory) : startProduct();
    if (failed)
        return 1;
    old.keepNew();
    registerUserFolder(9);
    return registerUserFolder(10);
}

uint32_t VxPathLogLang(void)
{
    char locale[8];
    if (VxLangGetLocale(locale, sizeof locale))
        locale[0] = '\0';
    char path[workSize];
    auto log = [&](std::initializer_list<std::string_view> parts) {
        if (join(path, sizeof path, parts))
            VxPathSet(path);
    };

    const char *root = pathState.root;
    log({root, "languages\\", locale, "\\"});
    for (const char *folder : {"doc", "resource"})
        log({root, "languages\\", locale, "\\", folder, "\\"});
    log({root, "languages\\en_US\\resource\\"});
    for (const char *folder : {"text", "icons", "cam_config", "supp", "output_def"})
        log({root, "languages\\", locale, "\\", folder, "\\"});
    for (const char *folder : {"output_def", "supp", "templates", "stamp/icons"}) {
        log({".\\", folder, "\\"});
        log({root, folder, "\\"});
    }
    return 0;
}

uint32_t VxPathInstallGet(char *buffer, int32_t size)
{
    return VxStrCpy(buffer, pathState.install, size);
}

int32_t VxPathIsDebug(const char *name)
{
    if (!name)
        return 0;
    std::string_view text = name;
    return text.starts_with("Debug") || text.starts_with("Release") || text.starts_with("RelNoOpt");
}
