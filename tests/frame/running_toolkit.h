#pragma once

#include "files/path_state.h"
#include "frame/modules.h"
#include "tests/support/test.h"
#include "vx/config.h"
#include "vx/lang.h"
#include "vx/path.h"
#include "vx/tools.h"

namespace vx::test {

/**
 * A process as a host finds it before the toolkit's start, with the user's
 * files in a fresh folder. Afterwards everything is put back, also what a
 * test left started.
 */
class BeforeStart {
public:
    BeforeStart()
    {
        stopAll();
        for (int32_t file = 0; file < 4; ++file)
            TalmSetOptionFile(file, (folder.native() / (std::to_string(file) + ".opt")).c_str());
    }
    ~BeforeStart()
    {
        stopAll();
        for (int32_t file = 0; file < 4; ++file)
            TalmSetOptionFile(file, nullptr);
        fs::current_path(current_);
    }
    BeforeStart(const BeforeStart &) = delete;
    BeforeStart &operator=(const BeforeStart &) = delete;

    /** Load these lines as the user's options; the installation's defaults stay out of it. */
    void setOptions(std::string_view lines) const
    {
        folder.write("0.opt", lines);
        GetIConfigMgr()->Load(0);
    }

    /** What a host does before the first module; true when all went well. */
    bool prepare() const
    {
        folder.write("3.opt", "");
        return VxAcmLoad() == 0 && VxPathInit() == 0 && VxLangSet("en_US") == 0 && VxPathLogLang() == 0;
    }

    TempFolder folder;

private:
    static void stopAll()
    {
        VxDmgrExit();
        VxMathExit();
        VxToolsExit();
        os::removeFatalHandler();
        files::pathState.install[0] = files::pathState.root[0] = '\0';
        frame::modules() = {};
    }

    Environment user_{"VX_USER_DIR", folder.native().c_str()};
    fs::path current_ = fs::current_path();
};

}
