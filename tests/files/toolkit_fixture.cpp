#include "tests/files/toolkit_fixture.h"

#include <cstring>

#include "files/dmpath.h"
#include "files/path_state.h"
#include "frame/error_log.h"
#include "frame/modules.h"
#include "platform/os/test_values.h"
#include "talm/base.hpp"
#include "vx/err.h"
#include "vx/openfile.h"
#include "vx/path.h"
#include "vx/tools.h"

namespace vx::test {

uint32_t FolderManager::GetFolder(int32_t number, char *buffer, int32_t size)
{
    const std::string &text = folders.at(static_cast<size_t>(number));
    if (text.empty() || text.size() >= static_cast<size_t>(size))
        return 1;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return 0;
}

ToolkitFixture::ToolkitFixture() : current_(std::filesystem::current_path())
{
    // The errors of one test must not count as repeats of another's.
    static int64_t seconds = 1'000'000'000;
    os::setTestClock(1'000'000 * (seconds += 100));
    if (VxToolsErrID() < 0 || VxToolsMsgID() < 0) {
        EXPECT_TRUE(frame::loadTexts(frame::modules().tools, "Tools.ALERT", "Tools.MSG"));
    }
    VxErrClear();
    std::filesystem::current_path(folder.native());
    TalmSetUserFolderMgr(&folders);
}

ToolkitFixture::~ToolkitFixture()
{
    for (int32_t number : functions_)
        HESKET::Talm::Ap::Base::Instance().SetFunction(number, nullptr);
    for (int32_t number : variables_)
        HESKET::Talm::Ap::Base::Instance().SetVariable(number, nullptr);
    TalmSetUserFolderMgr(nullptr);
    VxPathFree();
    files::pathState = {};
    files::freeSearchPaths();
    files::resetSearchPaths();
    VgPathUserFolder[0] = '\0';
    f_free();
    VxErrClear();
    os::setTestClock(-1);
    std::filesystem::current_path(current_);
}

void ToolkitFixture::setHostFunction(int32_t number, void *function)
{
    HESKET::Talm::Ap::Base::Instance().SetFunction(number, function);
    functions_.push_back(number);
}

void ToolkitFixture::hostVariable(int32_t number, const void *address)
{
    HESKET::Talm::Ap::Base::Instance().SetVariable(number, const_cast<void *>(address));
    variables_.push_back(number);
}

std::vector<std::string> ToolkitFixture::errors()
{
    std::vector<std::string> texts;
    for (const frame::ErrorRecord &record : frame::errorState().pending)
        texts.emplace_back(record.text);
    VxErrClear();
    return texts;
}

std::vector<std::string> ToolkitFixture::registered()
{
    std::vector<std::string> texts;
    for (const VxPathNode *node = files::pathState.first; node; node = node->next)
        texts.emplace_back(node->text);
    return texts;
}

}
