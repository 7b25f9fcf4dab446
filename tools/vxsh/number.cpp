#include "tools/vxsh/number.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace vxsh {

namespace {

/** Exponents nearer to zero than this are none. */
constexpr double tolerance = 1e-12;

void append(std::string &text, std::string_view unit, double exponent)
{
    if (!text.empty())
        text += '*';
    text += unit;
    if (std::fabs(exponent - 1) > tolerance)
        text += '^' + formatNumber(exponent);
}

}

std::string formatNumber(double number)
{
    char text[64];
    auto [end, error] = std::to_chars(text, text + sizeof text, number, std::chars_format::general, 15);
    return {text, end};
}

std::string formatCount(size_t count)
{
    std::string text = std::to_string(count);
    for (size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, 1, ',');
    return text;
}

std::string baseUnit(const VxDimNum &quantity)
{
    const struct {
        std::string_view unit;
        double exponent;
    } parts[] = {{"kg", quantity.mass_exp}, {"mm", quantity.len_exp}, {"deg", quantity.ang_exp}};

    std::string above, below;
    int divisors = 0;
    for (auto [unit, exponent] : parts) {
        if (exponent > tolerance) {
            append(above, unit, exponent);
        } else if (exponent < -tolerance) {
            append(below, unit, -exponent);
            ++divisors;
        }
    }
    if (below.empty())
        return above;
    if (divisors > 1)
        below = '(' + below + ')';
    return (above.empty() ? "1" : above) + '/' + below;
}

}
