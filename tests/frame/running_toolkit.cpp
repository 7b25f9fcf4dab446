#include "tests/frame/running_toolkit.h"

#include "files/path_state.h"
#include "frame/modules.h"
#include "platform/os/os.h"
#include "talm/config.hpp"
#include "vx/config.h"
#include "vx/lang.h"
#include "vx/path.h"
#include "vx/tools.h"

namespace vx::test {

namespace {

void stopAll()
{
    VxDmgrExit();
    VxMathExit();
    VxToolsExit();
    os::removeFatalHandler();
    files::pathState.install[0] = '\0';
    files::pathState.root[0] = '\0';
    frame::modules() = {};
}

}

BeforeStart::BeforeStart()
    : user_("VX_USER_DIR", folder.native().c_str()), current_(std::filesystem::current_path())
{
    stopAll();
    for (int32_t file = 0; file < 4; ++file)
        TalmSetOptionFile(file, (folder.native() / (std::to_string(file) + ".opt")).c_str());
}

BeforeStart::~BeforeStart()
{
    stopAll();
    for (int32_t file = 0; file < 4; ++file)
        TalmSetOptionFile(file, nullptr);
    std::filesystem::current_path(current_);
}

void BeforeStart::setOptions(std::string_view lines) const
{
    folder.write("0.opt", lines);
    GetIConfigMgr()->Load(0);
}

bool BeforeStart::prepare() const
{
    folder.write("3.opt", "");
    return VxAcmLoad() == 0 && VxPathInit() == 0 && VxLangSet("en_US") == 0 && VxPathLogLang() == 0;
}

}
