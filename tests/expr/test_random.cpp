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

/** A formula's text beside what it must come to. */
struct Made {
    std::string text;
    int error = 0;
    double value = 0.0; ///< in base units
    std::array<double, 3> dimension{};

    bool isPlain() const { return dimension == std::array<double, 3>{}; }
};

class Maker {
public:
    explicit Maker(unsigned seed) : random_(seed) {}

    Made make(int depth)
    {
        if (depth == 0)
            return leaf();
        switch (pick(8)) {
        case 0:
        case 1: return sum(make(depth - 1), make(depth - 1));
        case 2:
        case 3: return product(make(depth - 1), make(depth - 1));
        case 4: return call(make(depth - 1));
        case 5: return choice(make(depth - 1), make(depth - 1), make(depth - 1));
        case 6: return power(make(depth - 1));
        default: return comparison(make(depth - 1), make(depth - 1));
        }
    }

private:
    int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    std::string blank() { return pick(3) ? "" : " "; }
    std::string group(const Made &made) { return "(" + blank() + made.text + blank() + ")"; }

    /** Both sides fail from left to right, before the operation does. */
    static bool failed(Made &made, const Made &l, const Made &r)
    {
        made.error = l.error ? l.error : r.error;
        return made.error != 0;
    }

    Made leaf()
    {
        struct Unit {
            const char *suffix;
            double factor;
            std::array<double, 3> dimension;
        };
        static const Unit units[] = {{".cm", 10, {1, 0, 0}}, {".in", 25.4, {1, 0, 0}}, {".kg", 1, {0, 0, 1}}};
        static const std::pair<const char *, Made> names[] = {{"width", {"", 0, 30, {1, 0, 0}}},
                                                              {"[hole count]", {"", 0, 4, {}}}};
        Made made;
        if (pick(4) == 0) {
            const auto &name = names[pick(2)];
            made = name.second;
            made.text = name.first;
            return made;
        }
        int number = pick(40);
        made.value = number / 8.0;
        made.text = std::to_string(made.value);
        if (pick(3) == 0) {
            const Unit &unit = units[pick(3)];
            made.text += unit.suffix;
            made.value *= unit.factor;
            made.dimension = unit.dimension;
        }
        return made;
    }

    Made sum(const Made &l, const Made &r)
    {
        bool minus = pick(2);
        Made made{l.text + blank() + (minus ? "-" : "+") + blank() + group(r), 0, 0.0, {}};
        // The left side may swallow what follows, as a conditional does.
        made.text = group(l) + made.text.substr(l.text.size());
        if (failed(made, l, r))
            return made;
        if (!l.isPlain() && !r.isPlain() && l.dimension != r.dimension)
            made.error = 83;
        made.value = minus ? l.value - r.value : l.value + r.value;
        made.dimension = l.isPlain() ? r.dimension : l.dimension;
        return made;
    }

    Made product(const Made &l, const Made &r)
    {
        bool quotient = pick(2);
        Made made{group(l) + (quotient ? "/" : "*") + group(r), 0, 0.0, {}};
        if (failed(made, l, r))
            return made;
        if (quotient && std::fabs(r.value) <= 1e-12)
            made.error = 191;
        made.value = quotient ? l.value / r.value : l.value * r.value;
        for (size_t i = 0; i < 3; ++i)
            made.dimension[i] = quotient ? l.dimension[i] - r.dimension[i] : l.dimension[i] + r.dimension[i];
        return made;
    }

    Made call(const Made &x)
    {
        static const char *const names[] = {"sin", "sqrt", "abs", "ln", "-", "!"};
        int which = pick(6);
        Made made{names[which] + group(x), x.error, x.value, {}};
        if (made.text.size() > 500) // arguments have a limit
            return x;
        if (made.error)
            return made;
        switch (which) {
        case 0: made.value = std::sin(x.value * 3.14159265358979323846 / 180); break;
        case 1:
            made.error = x.value < -1e-12 ? 189 : 0;
            made.value = x.value < 1e-12 ? 0.0 : std::sqrt(x.value);
            for (size_t i = 0; i < 3; ++i)
                made.dimension[i] = x.dimension[i] / 2;
            break;
        case 2:
            made.value = std::fabs(x.value);
            made.dimension = x.dimension;
            break;
        case 3:
            made.error = x.value <= 1e-12 ? 188 : 0;
            made.value = std::log(x.value);
            break;
        case 4:
            made.value = -x.value;
            made.dimension = x.dimension;
            made.text = "(" + made.text + ")";
            break;
        default:
            made.value = std::fabs(x.value) <= 1e-12;
            made.text = "(" + made.text + ")";
            break;
        }
        return made;
    }

    Made power(const Made &x)
    {
        Made made{group(x) + "^2", x.error, x.value * x.value, {}};
        for (size_t i = 0; i < 3; ++i)
            made.dimension[i] = x.dimension[i] * 2;
        return made;
    }

    Made choice(const Made &condition, const Made &yes, const Made &no)
    {
        Made made = std::fabs(condition.value) > 1e-12 ? yes : no;
        made.error = condition.error ? condition.error : made.error;
        made.text = "(" + group(condition) + " then " + group(yes) + " else " + group(no) + ")";
        return made;
    }

    Made comparison(const Made &l, const Made &r)
    {
        bool less = pick(2);
        Made made{"(" + group(l) + (less ? "<" : ">") + group(r) + ")", 0, 0.0, {}};
        if (failed(made, l, r))
            return made;
        if (!l.isPlain() && !r.isPlain() && l.dimension != r.dimension)
            made.error = 83;
        made.value = less ? l.value < r.value : l.value > r.value;
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
