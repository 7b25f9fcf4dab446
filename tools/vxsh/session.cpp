#include "tools/vxsh/session.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

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
    {"its texts", [] { return VxToolsInit(); }, VxToolsExit},
    {"the numerics", [] { return VxMathInit(); }, VxMathExit},
    {"the search paths", [] { return VxDmgrInit(); }, VxDmgrExit},
    {"the memory reserve", VxMemInit, VxMemExit},
};

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
    if (!start())
        failure_ = Messages::takeLine("the toolkit cannot start: " + failure_);
}

bool Session::start()
{
    // Every option has a value of its own where there is no option file.
    VxAcmLoad();
    failure_ = "its folders";
    if (VxPathInit())
        return false;
    failure_ = "its language";
    if (VxLangSet("en_US"))
        return false;
    VxPathLogLang();
    for (const Module &module : modules) {
        failure_ = module.name;
        ++started_;
        if (module.init())
            return false;
    }
    failure_.clear();
    return true;
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
