#include "expr/number.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/ascii.h"
#include "expr/tree.h"
#include "platform/os/os.h"

namespace vx::expr {

namespace {

constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int32_t largestExactPower = 22;
constexpr int32_t mostDigits = 15;

/**
 * Up to 15 digits and a power of ten up to 22 are both exact as doubles, so
 * that their one product or quotient is correctly rounded (W. Clinger, How to
 * Read Floating Point Numbers Accurately, PLDI 1990).
 * @return false when the token is not of that form
 */
bool exactValue(std::string_view token, double &value) noexcept
{
    int64_t digits = 0;
    int32_t count = 0, afterPoint = 0;
    size_t at = 0;
    bool point = false;
    for (; at < token.size(); ++at) {
        char c = token[at];
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (!ascii::isDigit(c))
            break;
        if (++count > mostDigits)
            return false;
        digits = digits * 10 + (c - '0');
        afterPoint += point;
    }
    int32_t exponent = 0;
    if (at < token.size()) {
        if (token[at] != 'e' || ++at == token.size())
            return false;
        bool negative = token[at] == '-';
        at += token[at] == '-' || token[at] == '+';
        if (at == token.size() || token.size() - at > 2)
            return false;
        for (; at < token.size(); ++at) {
            if (!ascii::isDigit(token[at]))
                return false;
            exponent = exponent * 10 + (token[at] - '0');
        }
        if (negative)
            exponent = -exponent;
    }
    exponent -= afterPoint;
    if (count == 0 || exponent > largestExactPower || exponent < -largestExactPower)
        return false;
    auto exact = static_cast<double>(digits);
    value = exponent < 0 ? exact / powersOfTen[-exponent] : exact * powersOfTen[exponent];
    return true;
}

}

double numberValue(std::string_view token) noexcept
{
    double value;
    if (exactValue(token, value))
        return value;
    char text[textBufferSize];
    size_t length = std::min(token.size(), sizeof text - 1);
    std::memcpy(text, token.data(), length);
    text[length] = '\0';
    return os::parseDouble(text, nullptr);
}

}
