// Random formulas against an evaluator that was written apart from the
// toolkit's: plain recursion while the formula's text is made.

#include <array>
#include <cmath>
#include <random>
#include <string>

#include <gtest/gtest.h>

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
        int which = pick(7);
        Made first = make(depth - 1);
        if (which == 4)
            return call(first);
        if (which == 6)
            return square(first);
        Made second = make(depth - 1);
        if (which < 2)
            return sum(first, second);
        return which < 4 ? product(first, second) : choice(first, second, make(depth - 1));
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

    /** What joins two formulas; both sides fail from left to right, before the operation does. */
    Made joined(const Made &l, char sign, const Made &r)
    {
        return {group(l) + blank() + sign + blank() + group(r), l.error ? l.error : r.error, 0.0, {}};
    }

    /** A sum or a comparison, whose sides agree in their dimension. */
    Made sum(const Made &l, const Made &r)
    {
        int which = pick(4);
        Made made = joined(l, "+-<>"[which], r);
        if (!made.error && !l.isPlain() && !r.isPlain() && l.dimension != r.dimension)
            made.error = 83;
        const double values[] = {l.value + r.value, l.value - r.value, 1.0 * (l.value < r.value),
                                 1.0 * (l.value > r.value)};
        made.value = values[which];
        if (which < 2)
            made.dimension = l.isPlain() ? r.dimension : l.dimension;
        return made;
    }

    Made product(const Made &l, const Made &r)
    {
        bool quotient = pick(2);
        Made made = joined(l, quotient ? '/' : '*', r);
        if (!made.error && quotient && std::fabs(r.value) <= 1e-12)
            made.error = 191;
        made.value = quotient ? l.value / r.value : l.value * r.value;
        made.dimension = combined(l.dimension, quotient ? -1 : 1, r.dimension);
        return made;
    }

    Made call(const Made &x)
    {
        static const char *const names[] = {"sin", "ln", "!", "abs", "-", "sqrt"};
        const int failures[] = {0, x.value <= 1e-12 ? 188 : 0, 0, 0, 0, x.value < -1e-12 ? 189 : 0};
        // The toolkit's own factor: a comparison of sines near zero shows the last bit.
        const double values[] = {std::sin(x.value * 0.017453292519943295),
                                 std::log(x.value),
                                 1.0 * (std::fabs(x.value) <= 1e-12),
                                 std::fabs(x.value),
                                 -x.value,
                                 x.value < 1e-12 ? 0.0 : std::sqrt(x.value)};
        const double exponents[] = {0, 0, 0, 1, 1, 0.5};
        int which = pick(6);
        Made made{names[which] + group(x), x.error ? x.error : failures[which], values[which],
                  combined({}, exponents[which], x.dimension)};
        return made.text.size() > 500 ? x : made; // arguments have a limit
    }

    Made square(const Made &x)
    {
        return {group(x) + "^2", x.error, x.value * x.value, combined({}, 2, x.dimension)};
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
    Variables variables({{"width", {3, 1, 0, 0, 10}}, {"hole count", {4, 0, 0, 0, 1}}});
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
