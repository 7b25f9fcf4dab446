#include <cstring>

#include "tests/text/str_model.h"

using namespace vx::test;

namespace {

using StrFields = OnEveryPage;
INSTANTIATE_TEST_SUITE_P(Pages, StrFields, testing::Values(932, 936, 949, 950, 1252, 65001));

/** The caller's array in a block of its exact size. */
struct FieldArray {
    FieldArray(size_t fieldWidth, size_t capacity) : width(fieldWidth), bytes(width * capacity, '#') {}

    std::vector<std::string> first(int32_t count) const
    {
        std::vector<std::string> fields;
        for (const char *field = bytes.data(); count > 0; --count, field += width)
            fields.emplace_back(field, strnlen(field, width));
        return fields;
    }

    size_t width;
    std::string bytes;
};

/** Up to `capacity` fields, whole. */
Chars splitAt(const std::string &s, const Chars &delimiters, size_t capacity)
{
    Chars fields(1);
    for (const std::string &ch : split(s)) {
        if (ch == "\r" || fields.size() > capacity)
            break;
        if (std::ranges::count(delimiters, ch))
            fields.emplace_back();
        else
            fields.back() += ch;
    }
    if (fields.back().empty() || fields.size() > capacity)
        fields.pop_back();
    return fields;
}

TEST_P(StrFields, DelimitersEndFieldsOnlyAsWholeCharacters)
{
    for (const std::string &s : texts(3000, 16)) {
        const Chars delimiters = {anyChar(s), any(2) ? anyChar(s) : ","};
        const size_t width = 1 + any(6);
        const size_t capacity = 1 + any(6);
        const Chars uncut = splitAt(s, delimiters, capacity);
        Chars expected = uncut;
        for (std::string &field : expected)
            field = whole(field, width - 1);
        auto check = [&](auto parse) {
            FieldArray fields(width, capacity);
            int32_t count = static_cast<int32_t>(capacity);
            ASSERT_EQ(parse(fields.bytes.data(), &count), expected != uncut);
            ASSERT_EQ(fields.first(count), expected);
            const std::string rest = fields.bytes.substr(expected.size() * width);
            ASSERT_EQ(rest, std::string(rest.size(), '\0'));
        };
        const int32_t w = static_cast<int32_t>(width);
        check([&](char *fields, int32_t *count) {
            return VxStrParseUtil(s.c_str(), value(delimiters[0]), value(delimiters[1]), w, fields, count);
        });
        // A half character and what follows it would be another delimiter.
        if (split(join(delimiters)) == delimiters)
            check([&](char *fields, int32_t *count) {
                return VxStrParse3(s.c_str(), join(delimiters).c_str(), w, fields, count);
            });
    }
}

TEST(StrFieldsBytes, TheFixedFormsHaveTheWidthsOfTheirNames)
{
    const std::tuple<size_t, uint32_t (*)(const char *, char *, int32_t *), bool> forms[] = { // trims or not
        {32, [](const char *s, char *f, int32_t *n) { return VxStrParse(s, ',', f, n); }, false},
        {32, [](const char *s, char *f, int32_t *n) { return VxStrParse2(s, ';', ',', f, n); }, false},
        {32, [](const char *s, char *f, int32_t *n) { return VxStrParse2_Clean(s, ';', ',', f, n); }, true},
        {80, [](const char *s, char *f, int32_t *n) { return VxStrParse80(s, ',', f, n); }, false},
        {80, [](const char *s, char *f, int32_t *n) { return VxStrParse80_Clean(s, ',', f, n); }, true},
        {128, [](const char *s, char *f, int32_t *n) { return VxStrParse128(s, ',', f, n); }, false},
        {256, [](const char *s, char *f, int32_t *n) { return VxStrParse256(s, ',', f, n); }, false},
        {256, [](const char *s, char *f, int32_t *n) { return VxStrParse256_Clean(s, ',', f, n); }, true},
    };
    for (const auto &[width, parse, trims] : forms)
        for (size_t length : {width - 1, width}) {
            SCOPED_TRACE(testing::Message() << length << " bytes for a field of " << width);
            const std::string last(length, 'x');
            FieldArray fields(width, 3);
            int32_t count = 3;
            EXPECT_EQ(parse((" a ,," + last).c_str(), fields.bytes.data(), &count), length == width);
            EXPECT_EQ(fields.first(count),
                      (std::vector<std::string>{trims ? "a" : " a ", "", last.substr(0, width - 1)}));
        }
}

TEST_P(StrFields, WordsAreWhatStandsBetweenWhiteSpace)
{
    for (const std::string &s : texts(2000, 10)) {
        std::vector<std::string> words(1);
        for (const std::string &ch : split(s)) {
            if (!isBlank(ch))
                words.back() += ch;
            else if (!words.back().empty())
                words.emplace_back();
        }
        Buffer buffer(s);
        char *p = buffer.data();
        const int32_t leading = VxStrSkipBlank(&p);
        const int32_t first = VxStrSkipToBlank(&p);
        ASSERT_EQ(std::string(p - first, static_cast<size_t>(first)), words[0]);
        ASSERT_EQ(p, buffer.data() + leading + first);
        words.insert(words.begin(), "");
        words.push_back("");
        for (int32_t n = 0; n < std::ssize(words); ++n) {
            const std::string &word = words[static_cast<size_t>(n)];
            ASSERT_EQ(VxStrElem(s.c_str(), n), word);
            ASSERT_EQ(VxStrElemIs(s.c_str(), word.c_str(), n), !word.empty());
            ASSERT_EQ(VxStrElemIs(s.c_str(), (word + "x").c_str(), n), 0);
        }
    }
}

TEST(StrFieldsDeathTest, AWordThatTheBufferCannotHoldStopsTheProcess)
{
    EXPECT_EQ(VxStrElem((" " + std::string(255, 'w')).c_str(), 1), std::string(255, 'w'));
    EXPECT_DEATH(VxStrElem((" " + std::string(256, 'w')).c_str(), 1), "256");
}

TEST_P(StrFields, StepsGoByCharactersAndDelimiters)
{
    for (const std::string &s : texts(2000, 8)) {
        const char *p = s.c_str();
        for (const std::string &ch : split(s)) {
            ASSERT_EQ(VxStrNext(p), p + ch.size());
            ASSERT_EQ(VxStrPrev(s.c_str(), p + ch.size()), p);
            p += ch.size();
        }
        ASSERT_EQ(VxStrNext(p), nullptr);
        ASSERT_EQ(VxStrPrev(s.c_str(), s.c_str()), nullptr);

        Buffer buffer(s);
        const std::string ch = anyChar(s);
        const int32_t delimiter = value(ch);
        char *walk = buffer.data();
        std::vector<char *> places;
        while (char *place = VxStrchr(walk, delimiter)) {
            places.push_back(place);
            ASSERT_EQ(VxStrMovePtr(&walk, delimiter), 0u);
            ASSERT_EQ(walk, place + ch.size());
        }
        ASSERT_EQ(VxStrMovePtr(&walk, delimiter), 1u);
        while (VxStrMovePtrRev(buffer.data(), &walk, delimiter) == 0) {
            ASSERT_FALSE(places.empty());
            ASSERT_EQ(walk, places.back());
            places.pop_back();
        }
        ASSERT_TRUE(places.empty());
    }
}

}
