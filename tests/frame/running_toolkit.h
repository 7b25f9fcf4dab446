#pragma once

#include <filesystem>
#include <string_view>

#include "tests/support/temp_folder.h"

namespace vx::test {

/**
 * A process as a host finds it before the toolkit's start, with the user's
 * files in a fresh folder. Afterwards everything is put back, also what a
 * test left started.
 */
class BeforeStart {
public:
    BeforeStart();
    ~BeforeStart();
    BeforeStart(const BeforeStart &) = delete;
    BeforeStart &operator=(const BeforeStart &) = delete;

    /** Load these lines as the user's options; the installation's defaults stay out of it. */
    void setOptions(std::string_view lines) const;

    /** What a host does before the first module; true when all went well. */
    bool prepare() const;

    TempFolder folder;

private:
    Environment user_;
    std::filesystem::path current_;
};

}
