#pragma once

#include <cstdint>

#include "text/codepage.h"

namespace vx::test {

/** A code page for a scope. */
class CodePageScope {
public:
    explicit CodePageScope(int32_t number) { text::setCodePage(number, -1); }
    ~CodePageScope() { text::setCodePage(0, -1); }
    CodePageScope(const CodePageScope &) = delete;
    CodePageScope &operator=(const CodePageScope &) = delete;
};

}
