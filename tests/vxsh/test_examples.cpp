// The examples beside the same part computed here, in millimetres, kilograms
// and radians.

#include <cmath>
#include <numbers>

#include "tests/vxsh/program.h"

namespace vx::test {

namespace {

using std::numbers::pi;

constexpr double inch = 25.4;
constexpr double degree = pi / 180;

/** Name to value and unit, as vxsh prints them. No example's value holds a comma that counts. */
class Example {
public:
    explicit Example(const std::string &file)
    {
        Outcome run = vxsh({"run", "--csv", VX_EXAMPLES "/" + file});
        EXPECT_EQ(run.status, 0) << run.err;
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);) {
            size_t first = line.find(','), last = line.rfind(',');
            values_[line.substr(0, first)] = {line.substr(first + 1, last - first - 1),
                                              line.substr(last + 1)};
        }
    }

    void expect(const std::string &name, double value, const std::string &unit = "")
    {
        ASSERT_TRUE(values_.count(name)) << name;
        EXPECT_NEAR(std::stod(values_[name].first), value, 1e-12 * std::max(1.0, std::fabs(value))) << name;
        EXPECT_EQ(values_[name].second, unit) << name;
    }

    void expect(const std::string &name, const std::string &text)
    {
        EXPECT_EQ(values_[name].first, text) << name;
    }

private:
    std::map<std::string, std::pair<std::string, std::string>> values_;
};

}

TEST(Examples, spurGearPair)
{
    const double m = 2.5, z1 = 18, z2 = 45, alpha = 20 * degree, b = 25.4, bore = 15;
    const double d1 = m * z1, d2 = m * z2, a = (d1 + d2) / 2;
    const double tip1 = d1 + 2 * m, tip2 = d2 + 2 * m;
    const double base1 = d1 * std::cos(alpha), base2 = d2 * std::cos(alpha);
    // Each gear's share of the path of contact is a leg of the triangle of tip and base radius.
    const double share1 = std::sqrt(tip1 * tip1 - base1 * base1) / 2;
    const double share2 = std::sqrt(tip2 * tip2 - base2 * base2) / 2;
    const double path = share1 + share2 - a * std::sin(alpha);
    const double volume = pi * (d1 * d1 - bore * bore) / 4 * b;

    Example gears("sample.vxp");
    gears.expect("title", "\"Spur gears, module 2.5, 18 to 45\"");
    gears.expect("centre distance", a, "mm");
    gears.expect("wheel root diameter", d2 - 2 * 1.25 * m, "mm");
    gears.expect("wheel base diameter", base2, "mm");
    gears.expect("tooth thickness", pi * m / 2, "mm");
    gears.expect("path of contact", path, "mm");
    gears.expect("contact ratio", path / (pi * m * std::cos(alpha)));
    gears.expect("fewest teeth", std::ceil(2 / std::pow(std::sin(alpha), 2)));
    gears.expect("undercut", "no");
    gears.expect("pinion volume", volume / 1000, "cm^3");
    gears.expect("pinion mass", volume * 7850e-9 * 1000, "gm");
    gears.expect("offset", "56.25 0 0");
}

TEST(Examples, vBeltDrive)
{
    const double d = 112, D = 250, C = 20 * inch;
    const double lean = std::asin((D - d) / (2 * C));
    const double length = 2 * C * std::cos(lean) + d / 2 * (pi - 2 * lean) + D / 2 * (pi + 2 * lean);
    const double belt = std::ceil(length / 50) * 50;
    const double k = 4 * belt - 2 * pi * (D + d);

    Example drive("v-belt.vxp");
    drive.expect("lean", lean / degree, "deg");
    drive.expect("large wrap", 180 + 2 * lean / degree, "deg");
    drive.expect("travel per second", pi * d * 1450 / 60 / 1000, "m");
    drive.expect("ideal length", length, "mm");
    drive.expect("centre distance", (k + std::sqrt(k * k - 32 * (D - d) * (D - d))) / 16, "mm");
    drive.expect("belts", std::ceil(7.5 * 1.2 / (3.1 * 0.98)));
    drive.expect("order", "\"3 belts, length 1600 mm\"");
}

TEST(Examples, bracket)
{
    const double t = 2, r = 3, k = 0.4, width = 1.5 * inch;
    const double allowance = pi / 2 * (r + k * t);
    const double blank = 40 + 60 - (2 * (r + t) - allowance);
    const double holes = 3 * pi * 3.3 * 3.3;
    const double area = blank * width - holes;

    Example bracket("bracket.vxp");
    bracket.expect("bend allowance", allowance, "mm");
    bracket.expect("blank length", blank, "mm");
    bracket.expect("hole area", holes, "mm^2");
    bracket.expect("blank area", area / 100, "cm^2");
    bracket.expect("mass", area * t * 2.7e-3, "gm");
    bracket.expect("weight class", "medium");
    bracket.expect("pitch", "36 0 0");
    bracket.expect("middle", "30 19.05 0");
    bracket.expect("stiffness", width * t * t * t / 12, "mm^4");
}

}
