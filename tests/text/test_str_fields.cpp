#include "vx/str.h"

#include <algorithm>
#include <cstring>

#include <gtest/gtest.h>

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

struct Expected {
    std::vector<std::string> fields;
    bool cut = false;
};

Expected splitAt(const std::string &s, const Chars &delimiters, size_t width, size_t capacity)
{
    Expected expected;
    std::string field;
    auto complete = [&] {
        expected.fields.push_back(whole(field, width - 1));
        expected.cut |= expected.fields.back() != field;
        field.clear();
    };
    for (const std::string &ch : split(s)) {
        if (ch == "\r" || expected.fields.size() == capacity)
            break;
        if (std::find(delimiters.begin(), delimiters.end(), ch) != delimiters.end())
            complete();
        else
            field += ch;
    }
    if (!field.empty() && expected.fields.size() < capacity)
        complete();
    return expected;
}

TEST_P(StrFields, DelimitersEndFieldsOnlyAsWholeCharacters)
{
    for (const std::string &s : texts(3000, 16)) {
        const Chars delimiters = {anyChar(s), any(2) ? anyChar(s) : ","};
        const size_t width = 1 + any(6);
        const size_t capacity = 1 + any(6);
        const Expected expected = splitAt(s, delimiters, width, capacity);
        auto check = [&](auto parse) {
            FieldArray fields(width, capacity);
            int32_t count = static_cast<int32_t>(capacity);
            ASSERT_EQ(parse(fields.bytes.data(), &count), expected.cut);
            ASSERT_EQ(fields.first(count), expected.fields);
            const std::string rest = fields.bytes.substr(expected.fields.size() * width);
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
    const struct {
        size_t width;
        uint32_t (*parse)(const char *, char *, int32_t *);
        bool trims;
    } forms[] = {
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
        for (size_t n = 0; n <= words.size() + 1; ++n) {
            const std::string word = n >= 1 && n <= words.size() ? words[n - 1] : "";
            ASSERT_EQ(VxStrElem(s.c_str(), static_cast<int32_t>(n)), word);
            ASSERT_EQ(VxStrElemIs(s.c_str(), word.c_str(), static_cast<int32_t>(n)), !word.empty());
            ASSERT_EQ(VxStrElemIs(s.c_str(), (word + "x").c_str(), static_cast<int32_t>(n)), 0);
        }
        Buffer buffer(s);
        char *p = buffer.data();
        const int32_t leading = VxStrSkipBlank(&p);
        const int32_t first = VxStrSkipToBlank(&p);
        ASSERT_EQ(std::string(p - first, static_cast<size_t>(first)), words[0]);
        ASSERT_EQ(p, buffer.data() + leading + first);
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
        for (; !places.empty(); places.pop_back()) {
            ASSERT_EQ(VxStrMovePtrRev(buffer.data(), &walk, delimiter), 0u);
            ASSERT_EQ(walk, places.back());
        }
        ASSERT_EQ(VxStrMovePtrRev(buffer.data(), &walk, delimiter), 1u);
    }
}

}
