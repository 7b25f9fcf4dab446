#pragma once

#include <array>

#include "files/dmpath.h"
#include "files/path_state.h"
#include "frame/error_log.h"
#include "frame/modules.h"
#include "talm/base.hpp"
#include "tests/support/test.h"
#include "vx/err.h"
#include "vx/file.h"
#include "vx/mem.h"
#include "vx/openfile.h"
#include "vx/path.h"
#include "vx/posix.hpp"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::test {

/** User folders as a test sets them; the others do not exist. */
struct FolderManager final : IUserFolderMgr {
    std::array<std::string, 32> folders;

    uint32_t GetFolder(int32_t number, char *buffer, int32_t size) override
    {
        const std::string &text = folders.at(static_cast<size_t>(number));
        if (text.empty() || text.size() >= static_cast<size_t>(size))
            return 1;
        std::memcpy(buffer, text.c_str(), text.size() + 1);
        return 0;
    }
};

/** The Tools texts loaded, a fresh current folder, an empty registry, and a host without functions. */
struct ToolkitFixture : testing::Test {
    ToolkitFixture()
    {
        // The errors of one test must not count as repeats of another's.
        static int64_t seconds = 1'000'000'000;
        os::setTestClock(1'000'000 * (seconds += 100));
        if (VxToolsErrID() < 0 || VxToolsMsgID() < 0) {
            EXPECT_TRUE(frame::loadTexts(frame::modules().tools, "Tools.ALERT", "Tools.MSG"));
        }
        VxErrClear();
        fs::current_path(folder.native());
        TalmSetUserFolderMgr(&folders);
    }

    ~ToolkitFixture() override
    {
        TalmSetUserFolderMgr(nullptr);
        VxPathFree();
        files::pathState = {};
        files::freeSearchPaths();
        files::resetSearchPaths();
        VgPathUserFolder[0] = '\0';
        f_free();
        VxErrClear();
        os::setTestClock(-1);
        fs::current_path(current_);
    }

    /** The texts of the errors filed since the start of the test or the last call. */
    static Texts errors()
    {
        Texts texts;
        for (const frame::ErrorRecord &record : frame::errorState().pending)
            texts.emplace_back(record.text);
        VxErrClear();
        return texts;
    }

    /** The registered directories, in order. */
    static Texts registered()
    {
        Texts texts;
        for (const VxPathNode *node = files::pathState.first; node; node = node->next)
            texts.emplace_back(node->text);
        return texts;
    }

    Host host;
    TempFolder folder; ///< current while the test runs
    FolderManager folders;

private:
    fs::path current_ = fs::current_path();
};

/**
 * What a function leaves in a buffer of this size that holds `text` before,
 * "!" in front when it fails: its result is not 0, or it is "not found".
 */
template <typename Function> std::string out(Function function, int32_t size = 300, const char *text = "")
{
    char buffer[600];
    snprintf(buffer, sizeof buffer, "%s", text);
    auto result = function(buffer, size);
    bool failed = std::is_unsigned_v<decltype(result)> ? result != 0 : result == 0;
    return (failed ? "!" : "") + std::string(buffer);
}

/** What a search makes of a name in a buffer: a path, or "none". */
template <typename Search> std::string found(Search search, const std::string &name, int32_t size = 512)
{
    std::string text = out(search, size, name.c_str());
    EXPECT_TRUE(text[0] != '!' || text.substr(1) == name) << "a miss changes nothing";
    return text[0] == '!' ? "none" : text;
}

}
