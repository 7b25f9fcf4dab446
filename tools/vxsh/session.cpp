#include "tools/vxsh/session.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "talm/base.hpp"
#include "talm/config.hpp"
#include "vx/config.h"
#include "vx/lang.hpp"
#include "vx/mem.h"
#include "vx/path.h"
#include "vx/tools.h"

namespace vxsh {

namespace {

using HESKET::Talm::Ap::Base;

/** Host variable 1: the toolkit finds its texts beside a program of this name. */
constexpr int32_t executableName = 1;
char programName[] = "vxsh";

/** The user's documents, among the numbered folders of the manager. */
constexpr int32_t workFolder = 5;

/** In the order of their start; they end in the reverse order. */
const struct Module {
    const char *name;
    uint32_t (*init)();
    uint32_t (*exit)();
} modules[] = {
    {"texts", [] { return VxToolsInit(); }, VxToolsExit},
    {"numerics", [] { return VxMathInit(); }, VxMathExit},
    {"search paths", [] { return VxDmgrInit(); }, VxDmgrExit},
    {"memory reserve", VxMemInit, VxMemExit},
};

/** The user's locale for characters, as the environment names it; empty for none. */
std::string_view characterLocale()
{
    for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char *value = std::getenv(name); value && *value)
            return value;
    return "";
}

/** Texts are UTF-8 where the user's locale says so, installed or not, and where it names no code page. */
void chooseCodePage()
{
    constexpr int32_t utf8 = 65001;
    std::string_view locale = characterLocale();
    bool saysUtf8 = locale.ends_with("UTF-8") || locale.ends_with("utf8");
    if (saysUtf8 || locale.empty() || locale == "C" || locale == "POSIX")
        VX::CodePageSet(utf8, utf8);
}

std::string withSeparators(std::string path, char from, char to)
{
    std::replace(path.begin(), path.end(), from, to);
    return path;
}

}

Session::Session()
{
    Base::Instance().SetVariable(executableName, programName);
    // The user's folders are neither made nor entered: a command works where it was called.
    VgTplCompile = 1;
    if (std::string missing = start(); !missing.empty())
        failure_ = "The toolkit cannot start: no " + missing + ". " + Messages::takeLine("");
}

/** What could not be started; empty when everything was. */
std::string Session::start()
{
    chooseCodePage();
    // Every option has a value of its own where there is no option file.
    VxAcmLoad();
    if (VxPathInit())
        return "folders";
    if (VxLangSet("en_US"))
        return "language beside the program";
    VxPathLogLang();
    for (const Module &module : modules) {
        ++started_;
        if (module.init())
            return module.name;
    }
    return "";
}

Session::~Session()
{
    while (started_ > 0)
        modules[--started_].exit();
}

std::string userFolder()
{
    char folder[260] = "";
    if (GetIUserFolderMgr()->GetFolder(workFolder, folder, static_cast<int32_t>(std::size(folder))))
        return "";
    return nativePath(folder);
}

std::string toolkitPath(std::string native)
{
    return withSeparators(std::move(native), '/', '\\');
}

std::string nativePath(std::string toolkit)
{
    return withSeparators(std::move(toolkit), '\\', '/');
}

}
