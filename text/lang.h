#pragma once

// The state of the current language, for those who must look at or reset it.

#include <atomic>
#include <cstdint>

namespace vx::text {

struct LanguageState {
    /** Row of the language table; 0 while no language is set. */
    std::atomic<int32_t> current{0};
    /** The toolkit's code page before VxLangSet() put the language's in its place. */
    int32_t codePageBefore = 0;
};

extern LanguageState languageState;

}
