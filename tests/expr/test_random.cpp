// Random formulas against an evaluator that was written apart from the
// toolkit's: plain recursion while the formula's text is made.

#include <array>
#include <cmath>
#include <random>

#include "tests/expr/formula.h"

using namespace vx::test;

namespace {

using Dimension = std::array<double, 3>;

/** A formula's text beside what it must come to. */
struct Made {
    std::string text;
    int error = 0;
    double value = 0.0; ///< in base units
    Dimension dimension{};

    bool isPlain() const { return dimension == Dimension{}; }
};

Dimension combined(const Dimension &l, double factor, const Dimension &r)
{
    return {l[0] + factor * r[0], l[1] + factor * r[1], l[2] + factor * r[2]};
}

class Maker {
public:
    explicit Maker(unsigned seed) : random_(seed) {}

    Made make(int depth)
    {
        if (depth == 0)
            return leaf();
        // One after the other, so that a seed makes the same formulas with every compiler.
        const int which = pick(7);
        const Made first = make(depth - 1);
        if (which < 2)
            return unary(first);
        const Made second = make(depth - 1);
        return which < 6 ? binary(first, second) : choice(first, second, make(depth - 1));
    }

private:
    int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    std::string blank() { return pick(3) ? "" : " "; }
    std::string group(const Made &made) { return "(" + blank() + made.text + blank() + ")"; }

    Made leaf()
    {
        static const Made names[] = {{"width", 0, 30, {1, 0, 0}}, {"[hole count]", 0, 4, {}}};
        static const Made units[] = {
            {".cm", 0, 10, {1, 0, 0}}, {".in", 0, 25.4, {1, 0, 0}}, {".kg", 0, 1, {0, 0, 1}}};
        if (pick(4) == 0)
            return names[pick(2)];
        Made made = pick(3) ? Made{"", 0, 1, {}} : units[pick(3)];
        double number = pick(40) / 8.0;
        made.value *= number;
        made.text = std::to_string(number) + made.text;
        return made;
    }

    /** Both sides fail from left to right, before the operation does. */
    Made binary(const Made &l, const Made &r)
    {
        // Sums and comparisons agree in their dimension; a plain number takes the other's.
        const bool agree = l.dimension == r.dimension || l.isPlain() || r.isPlain();
        const Dimension common = l.isPlain() ? r.dimension : l.dimension;
        const struct {
            char sign;
            bool fails;
            int error;
            double value;
            Dimension dimension;
        } operations[] = {
            {'+', !agree, 83, l.value + r.value, common},
            {'-', !agree, 83, l.value - r.value, common},
            {'<', !agree, 83, 1.0 * (l.value < r.value), {}},
            {'>', !agree, 83, 1.0 * (l.value > r.value), {}},
            {'*', false, 0, l.value * r.value, combined(l.dimension, 1, r.dimension)},
            {'/', !(std::fabs(r.value) > 1e-12), 191, l.value / r.value,
             combined(l.dimension, -1, r.dimension)},
        };
        const auto &[sign, fails, error, value, dimension] = operations[pick(6)];
        return {group(l) + blank() + sign + blank() + group(r),
                l.error ? l.error : r.error ? r.error : fails * error, value, dimension};
    }

    Made unary(const Made &x)
    {
        // The toolkit's own factor: a comparison of sines near zero shows the last bit.
        const double sine = std::sin(x.value * 0.017453292519943295);
        const struct {
            const char *before, *behind;
            int error;
            double value, exponent;
        } operations[] = {
            {"sin", "", 0, sine, 0},
            {"ln", "", x.value <= 1e-12 ? 188 : 0, std::log(x.value), 0},
            {"!", "", 0, 1.0 * (std::fabs(x.value) <= 1e-12), 0},
            {"abs", "", 0, std::fabs(x.value), 1},
            {"-", "", 0, -x.value, 1},
            {"sqrt", "", x.value < -1e-12 ? 189 : 0, x.value < 1e-12 ? 0.0 : std::sqrt(x.value), 0.5},
            {"", "^2", 0, x.value * x.value, 2},
        };
        const auto &[before, behind, error, value, exponent] = operations[pick(7)];
        Made made{before + group(x) + behind, x.error ? x.error : error, value,
                  combined({}, exponent, x.dimension)};
        return made.text.size() > 500 ? x : made; // arguments have a limit
    }

    Made choice(const Made &condition, const Made &yes, const Made &no)
    {
        Made made = std::fabs(condition.value) > 1e-12 ? yes : no;
        made.error = condition.error ? condition.error : made.error;
        made.text = group(condition) + " then " + group(yes) + " else " + group(no);
        return made;
    }

    std::mt19937 random_;
};

TEST(RandomFormulas, ComeToWhatANaiveEvaluatorSays)
{
    const unsigned seed = 20261123;
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    // A factor that rounds nothing: sines are compared to the last bit.
    Variables variables({{"width", {3.75, 1, 0, 0, 8}}, {"hole count", {4, 0, 0, 0, 1}}});
    Maker maker(seed);
    int evaluated = 0;
    for (int run = 0; run < 20000; ++run) {
        Made made = maker.make(1 + run % 4);
        Outcome outcome = evaluate(made.text);
        ASSERT_EQ(outcome.error, made.error) << made.text;
        if (made.error)
            continue;
        ASSERT_NEAR(outcome.value, made.value, 1e-9 * (1.0 + std::fabs(made.value))) << made.text;
        ++evaluated;
    }
    EXPECT_GT(evaluated, 5000);
}

}
