#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "talm/config.hpp"
#include "tests/support/temp_folder.h"

namespace vx::test {

/** User folders as a test sets them; the others do not exist. */
struct FolderManager final : IUserFolderMgr {
    std::array<std::string, 32> folders;

    uint32_t GetFolder(int32_t number, char *buffer, int32_t size) override;
};

/** The Tools texts loaded, a fresh current folder, an empty registry, and a host without functions. */
class ToolkitFixture : public testing::Test {
protected:
    ToolkitFixture();
    ~ToolkitFixture() override;

    /** Install a host function or variable until the end of the test. */
    template <typename Function> void host(int32_t number, Function *function)
    {
        setHostFunction(number, reinterpret_cast<void *>(function));
    }
    void hostVariable(int32_t number, const void *address);

    /** The texts of the errors filed since the start of the test or the last call. */
    std::vector<std::string> errors();

    /** The registered directories, in order. */
    static std::vector<std::string> registered();

    TempFolder folder; ///< current while the test runs
    FolderManager folders;

private:
    void setHostFunction(int32_t number, void *function);

    std::filesystem::path current_;
    std::vector<int32_t> functions_, variables_;
};

}
