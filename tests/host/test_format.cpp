#include "host/format.h"

#include <clocale>
#include <cmath>
#include <cstdarg>
#include <ctime>
#include <climits>

#include "host/local_time.h"
#include "tests/support/test.h"

namespace {

std::string ours(const char *format, ...)
{
    std::pmr::string out;
    va_list args;
    va_start(args, format);
    talm::appendFormatted(out, format, args);
    va_end(args);
    return std::string(out);
}

std::string printfs(const char *format, ...)
{
    char out[8192];
    va_list args;
    va_start(args, format);
    std::vsnprintf(out, sizeof out, format, args);
    va_end(args);
    return out;
}

/** All combinations of flags, widths and precisions before this conversion. */
template <typename Value> void compareAll(const char *lengthAndType, std::initializer_list<Value> values)
{
    const char flags[] = "-+ #0";
    for (unsigned set = 0; set < 32; ++set)
        for (const char *width : {"", "1", "9", "40"})
            for (const char *precision : {"", ".", ".0", ".3", ".17"}) {
                std::string format = "<%";
                for (unsigned i = 0; i < 5; ++i)
                    if (set >> i & 1)
                        format += flags[i];
                format = format + width + precision + lengthAndType + ">";
                for (Value value : values)
                    ASSERT_EQ(ours(format.c_str(), value), printfs(format.c_str(), value)) << format;
            }
}

TEST(Format, EveryConversionWritesWhatPrintfWrites)
{
    compareAll<int>("d", {0, 7, INT_MIN});
    compareAll<int>("hhi", {0, 300, -129});
    compareAll<long>("ld", {0, LONG_MIN});
    compareAll<intmax_t>("jd", {-3});
    compareAll<unsigned>("x", {0, 255, 0xFFFFFFFF});
    compareAll<size_t>("zu", {0, SIZE_MAX});
    compareAll<unsigned long>("lo", {8});
    compareAll<double>("f", {0.0, -0.0, -123456.789, 1e300, std::nan(""), HUGE_VAL});
    compareAll<double>("e", {0.0, -1.25e-9, 1e300});
    compareAll<double>("a", {0.0, -0.1});
    compareAll<long double>("Lg", {1.5L, -1e-30L});
    compareAll<const char *>("s", {"", "abc", "a long text with % in it"});
    compareAll<const void *>("p", {nullptr, "address"});
}

TEST(Format, WidthsMayComeFromArguments)
{
    EXPECT_EQ(ours("%*d|%-*d|%*d", 5, 1, 5, 2, -5, 3), printfs("%*d|%-*d|%*d", 5, 1, 5, 2, -5, 3));
    EXPECT_EQ(ours("%.*s|%.*f", 2, "abc", -1, 0.5), printfs("%.*s|%.*f", 2, "abc", -1, 0.5));
}

TEST(Format, NoLocaleChangesANumber)
{
    ASSERT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8")) << "LOCPATH names the locale that the build makes";
    EXPECT_EQ(ours("%.2e %'d %8.3f", 1.5, 1234567, 2.5), "1.50e+00 1234567    2.500");
    std::setlocale(LC_ALL, "C");
}

TEST(Format, HostileFormatsDoNoHarm)
{
    int stored = 5;
    EXPECT_EQ(ours("a%nb", &stored), "ab");
    EXPECT_EQ(stored, 5);
    EXPECT_EQ(ours("%s", static_cast<const char *>(nullptr)), "(null)");
    EXPECT_EQ(ours("%999999999d", 1).size(), 4096U);
    EXPECT_EQ(ours("%*d", INT_MIN, 1).size(), 4096U);
    for (const char *cut : {"%", "%-", "%5", "%5.", "%ll", "%h", "%!"})
        EXPECT_EQ(ours((std::string("x") + cut).c_str(), 1), "x") << cut;
}

TEST(LocalTime, AgreesWithTheSystemInEveryKindOfZone)
{
    vx::test::Random random;
    for (const char *zone : {"CET-1CEST,M3.5.0,M10.5.0/3", "<+0545>-5:45", "NZST-12NZDT,M9.5.0,M4.1.0/3"}) {
        vx::test::Environment environment("TZ", zone);
        tzset();
        for (int i = 0; i < 5000; ++i) {
            const auto time = static_cast<time_t>(random());
            char theirs[32], text[32];
            std::strftime(theirs, sizeof theirs, "%Y-%m-%d %H:%M:%S", std::localtime(&time));
            talm::localTimeText(time, text, sizeof text);
            ASSERT_STREQ(text, theirs) << zone << " " << time;
        }
    }
    tzset();
}

}
