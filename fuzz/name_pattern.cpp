// Patterns and names of foreign bytes in every kind of code page: a name that
// is escaped matches itself, and "*" matches what a pattern does.

#include "fuzz/fuzz.h"
#include "text/codepage.h"
#include "vx/posix.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr int32_t pages[] = {65001, 932, 1252};
    constexpr int32_t noEscape = 0x2;
    if (size < 2)
        return 0;
    vx::text::setCodePage(pages[data[0] % 3], -1);
    int32_t flags = data[1] & 0x17;
    const std::string text(textFrom(2, data, size));
    size_t middle = text.find('\n');
    std::string pattern = text.substr(0, middle);
    std::string name = middle == text.npos ? pattern : text.substr(middle + 1);

    auto matches = [&](const char *by) { return VX::fnmatch(by, name.c_str(), flags) == 0; };
    require(!matches(pattern.c_str()) || (flags & 0x5) || matches("*"));

    std::string literal;
    const vx::text::CodePage &page = vx::text::codePage();
    for (const char *p = name.c_str(); *p;) {
        auto bytes = static_cast<size_t>(vx::text::charBytes(page, p));
        // Half a character takes the backslash behind it as its other half.
        if (bytes == 1 && page.has(*p, vx::text::CodePage::leadByte))
            return 0;
        literal.append("\\").append(p, bytes);
        p += bytes;
    }
    flags &= ~noEscape;
    require(matches(literal.c_str()));
    return 0;
}
