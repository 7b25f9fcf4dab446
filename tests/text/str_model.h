#pragma once

// A naive model of texts: a text split into characters first, so that no
// operation on the pieces can tear one apart. And texts made to be torn: the
// bytes of delimiters and letters as second halves, stray bytes, halves alone.

#include <algorithm>
#include <iostream>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/code_page.h"
#include "text/codepage.h"
#include "vx/str.h"

namespace vx::test {

using Chars = std::vector<std::string>;

inline Chars split(const std::string &s)
{
    Chars chars;
    for (size_t at = 0; at < s.size(); at += chars.back().size())
        chars.push_back(s.substr(at, static_cast<size_t>(text::charBytes(text::codePage(), s.c_str() + at))));
    return chars;
}

template <typename Iterator> std::string join(Iterator first, Iterator last)
{
    return std::accumulate(first, last, std::string());
}

inline std::string join(const Chars &chars)
{
    return join(chars.begin(), chars.end());
}

inline bool isBlank(const std::string &ch)
{
    return ch.find_first_of(" \t\n\v\f\r") == 0 || ch == text::codePage().ideographicSpace;
}

/** The number that stands for a character in the interface. */
inline int32_t value(const std::string &ch)
{
    auto append = [](uint32_t bytes, char byte) { return bytes << 8 | static_cast<uint8_t>(byte); };
    return static_cast<int32_t>(std::accumulate(ch.begin(), ch.end(), 0u, append));
}

/** The longest run of whole characters from the front that has at most `bytes` bytes. */
inline std::string whole(const std::string &s, size_t bytes)
{
    std::string kept;
    for (const std::string &ch : split(s)) {
        if (kept.size() + ch.size() > bytes)
            break;
        kept += ch;
    }
    return kept;
}

/** The text without halves of characters, which at a cut cannot be told from torn ones. */
inline std::string withoutHalves(const std::string &s)
{
    Chars chars = split(s);
    std::erase_if(chars, [](const auto &ch) { return ch.size() == 1 && (ch[0] & 0x80) != 0; });
    return join(chars);
}

/** A writable copy in a block of exactly `size` bytes, filled up with `#`: writing past it is caught. */
class Buffer {
public:
    Buffer(const std::string &s, size_t size) : bytes_(size, '#')
    {
        s.copy(bytes_.data(), size);
        if (s.size() < size)
            bytes_[s.size()] = '\0';
    }
    explicit Buffer(const std::string &s) : Buffer(s, s.size() + 1) {}

    char *data() { return bytes_.data(); }
    int32_t size() const { return static_cast<int32_t>(bytes_.size()); }
    size_t room() const { return bytes_.size() - 1; }
    std::string text() const { return bytes_.data(); }
    bool operator==(const Buffer &) const = default;

private:
    std::vector<char> bytes_;
};

/** What a text becomes when `edit` works on it in place. */
template <typename Edit> std::string edited(const std::string &s, Edit edit)
{
    Buffer buffer(s);
    edit(buffer.data());
    return buffer.text();
}

class OnEveryPage : public testing::TestWithParam<int32_t> {
protected:
    ~OnEveryPage() override
    {
        if (HasFailure())
            std::cout << "seed " << seed << "\n";
    }

    unsigned any(size_t below) { return static_cast<unsigned>(random_() % below); }

    std::string anyPiece()
    {
        static const char *const pieces[] = {
            " ",     "\t",    "\r",     "\n",   ",",    "|",        "\\",     "\\n",  "a",         "A",
            "e",     "@",     "1",      "09",   ".",    "\201",     "\201@",  "\201|", "\201\\",   "\260A",
            "\260a", "\xA1\xA1", "\xA1@", "\xC3", "\xC3\xA9", "\xE2\x82", "\x80", "\xFF", "\xFE\xFE",
            "\xE3\x80\x80", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"};
        return pieces[any(std::size(pieces))];
    }

    std::string anyText(size_t pieces)
    {
        std::string s;
        for (size_t n = any(pieces + 1); n > 0; --n)
            s += anyPiece();
        return s;
    }

    std::vector<std::string> texts(size_t count, size_t pieces)
    {
        std::vector<std::string> result(count);
        std::ranges::generate(result, [&] { return anyText(pieces); });
        return result;
    }

    /** A character of the text, or another one. */
    std::string anyChar(const std::string &s)
    {
        Chars chars = split(any(4) ? s : anyText(3));
        return chars.empty() ? "," : chars[any(chars.size())];
    }

private:
    static constexpr unsigned seed = 20261121;

    CodePageScope page_{GetParam()};
    std::mt19937 random_{seed};
};

}
