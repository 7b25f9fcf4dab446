#include <random>

#include <gtest/gtest.h>

#include "platform/os/test_values.h"
#include "tests/text/conversions.h"
#include "text/codepage.h"

using namespace vx;
using vx::test::everyCodePage;

namespace {

const text::CodePage &pageOf(int32_t number)
{
    return *text::findCodePage(number);
}

std::string encoded(const text::CodePage &page, char32_t character)
{
    char bytes[4];
    int n = text::encode(page, character, bytes);
    return {bytes, static_cast<size_t>(n)};
}

/** Some bytes, most of them beyond ASCII and many of them at the borders of the ranges. */
std::string noise(std::mt19937 &random)
{
    const std::string edges = "\x40\x5C\x7E\x80\x81\x9F\xA0\xA1\xC2\xE0\xED\xEF\xF0\xF4\xF5\xFC\xFD\xFE\xFF";
    std::string bytes;
    for (size_t n = random() % 16; n > 0; --n) {
        const auto kind = random() % 4, any = random() % 0x80;
        const char byte = static_cast<char>(kind == 1 && any > 0 ? any : 0x80 + any);
        bytes += kind == 0 ? edges[any % edges.size()] : byte;
    }
    return bytes;
}

TEST(CodePage, WalkingBackMeetsTheBoundariesOfWalkingForward)
{
    std::mt19937 random(20261121);
    for (int32_t number : everyCodePage) {
        SCOPED_TRACE(number);
        const text::CodePage &page = pageOf(number);
        for (int run = 0; run < 2000; ++run) {
            const std::string bytes = noise(random);
            const char *p = bytes.c_str();
            size_t boundary = 0, previous = 0;
            for (size_t at = 0; at <= bytes.size(); ++at) {
                size_t next = boundary + static_cast<size_t>(text::charBytes(page, p + boundary));
                if (next <= at && boundary < bytes.size()) {
                    previous = boundary;
                    boundary = next;
                }
                ASSERT_EQ(text::boundaryBefore(page, p, at), boundary) << "at " << at;
                bool whole = text::charBytes(page, p + boundary) == 1;
                ASSERT_EQ(text::byteType(page, p, at), at != boundary ? text::ByteType::trail
                                                       : whole        ? text::ByteType::single
                                                                      : text::ByteType::lead);
                ASSERT_TRUE(at != boundary || text::prevChar(page, p, p + at) == p + previous);
            }
        }
    }
}

TEST(CodePage, NoCharacterReachesPastTheTerminator)
{
    for (int32_t number : everyCodePage)
        for (int byte = 0; byte < 256; ++byte) {
            const char lone[] = {static_cast<char>(byte), '\0'};
            EXPECT_EQ(text::charBytes(pageOf(number), lone), 1) << number << ": " << byte;
        }
}

TEST(CodePage, EveryCharacterComesBackFromUnicode)
{
    for (int32_t number : everyCodePage) {
        const text::CodePage &page = pageOf(number);
        for (int pair = 0x8000; pair < 0x10000; ++pair) {
            const char bytes[] = {static_cast<char>(pair >> 8), static_cast<char>(pair), '\0'};
            char32_t character, again = 0;
            if (!text::decode(page, bytes, text::charBytes(page, bytes), character))
                continue;
            // A page that has a character twice gives the usual code of the two.
            const std::string back = encoded(page, character);
            EXPECT_TRUE(text::decode(page, back.c_str(), static_cast<int>(back.size()), again));
            ASSERT_EQ(again, character) << number << ": " << std::hex << pair;
        }
    }
}

TEST(CodePage, WhatIsEncodedIsOneCharacterAndComesBack)
{
    for (int32_t number : everyCodePage) {
        const text::CodePage &page = pageOf(number);
        for (char32_t character = 0; character < 0x110100; ++character) {
            char bytes[5] = {};
            char32_t back;
            const int n = text::encode(page, character, bytes);
            ASSERT_TRUE(n == 0 || (text::charBytes(page, bytes) == n && text::decode(page, bytes, n, back) &&
                                   back == character))
                << number << " U+" << std::hex << static_cast<uint32_t>(character);
        }
        EXPECT_EQ(encoded(page, 0xD800) + encoded(page, 0x110000), "");
        EXPECT_EQ(encoded(page, 0x10FFFF), number == 65001 ? "\xF4\x8F\xBF\xBF" : "");
    }
}

TEST(CodePage, TheTablesHoldWhatThePagesAreKnownFor)
{
    const std::tuple<int32_t, const char *, char32_t> known[] = {
        {874, "\xA1", 0x0E01},     {1250, "\x8A", 0x0160},    {1251, "\xC0", 0x0410},
        {1252, "\x80", 0x20AC},    {1252, "\x81", 0x0081},    {1253, "\xFF", 0xF8FB},
        {1254, "\xFD", 0x0131},    {1255, "\xE0", 0x05D0},    {1256, "\xC7", 0x0627},
        {1257, "\xF0", 0x0161},    {1258, "\xFE", 0x20AB},    {932, "\xB1", 0xFF71},
        {932, "\x83\x5C", 0x30BD}, {932, "\xF0\x40", 0xE000}, {932, "\xFA\x5C", 0x7E8A},
        {936, "\xB0\xA1", 0x554A}, {936, "\xA2\xAB", 0xE766}, {949, "\xB0\xA1", 0xAC00},
        {949, "\xC9\xA1", 0xE000}, {950, "\xA4\x40", 0x4E00}, {950, "\xF9\xF9", 0x2550},
    };
    for (auto [number, bytes, character] : known) {
        const text::CodePage &page = pageOf(number);
        char32_t found = 0;
        EXPECT_TRUE(text::decode(page, bytes, text::charBytes(page, bytes), found) && found == character)
            << number << " U+" << std::hex << static_cast<uint32_t>(character);
        EXPECT_EQ(encoded(page, character), bytes);
    }
}

TEST(CodePage, ThePageInForceIsTheOneSetElseTheSystemsElseWestern)
{
    constexpr int32_t noSuchPage = 437;
    const std::array<int32_t, 3> cases[] = {
        {936, 1250, 936}, {0, 1250, 1250},          {0, 0, 1252},
        {0, -1, 1257},    {noSuchPage, 1250, 1250}, {0, noSuchPage, 1252}};
    os::setTestLocaleCodePage(1257);
    for (auto [multibyte, system, inForce] : cases) {
        text::setCodePage(multibyte, system);
        EXPECT_EQ(text::codePage().number, inForce) << multibyte << ", " << system;
        EXPECT_EQ(text::multibyteCodePage(), multibyte == noSuchPage ? 0 : multibyte);
    }
    os::setTestLocaleCodePage(-1);
    text::setCodePage(0, -1);
}

}
