#include "frame/alert_file.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "platform/ascii.h"
#include "text/codepage.h"
#include "vx/lang.h"

namespace vx::frame {

namespace {

constexpr size_t maxLine = 255;

std::string_view skipBlanks(std::string_view text) noexcept
{
    auto printing = text.find_first_not_of(" \t\r\v\f");
    return printing == text.npos ? std::string_view{} : text.substr(printing);
}

/** All of `field` is one decimal number, blanks around it aside. */
bool parseNumber(std::string_view field, int32_t &number) noexcept
{
    field = skipBlanks(field);
    const char *end = field.data() + field.size();
    auto [rest, error] = std::from_chars(field.data(), end, number);
    return error == std::errc{} && skipBlanks({rest, static_cast<size_t>(end - rest)}).empty();
}

/** The text's first `limit` bytes, fewer where that would split a character. */
size_t cutLength(const char *text, size_t length, size_t limit) noexcept
{
    return length <= limit ? length : text::boundaryBefore(text::codePage(), text, limit);
}

}

bool beginsWithTag(std::string_view line, std::string_view tag) noexcept
{
    return !tag.empty() && line.size() >= tag.size() &&
           std::equal(tag.begin(), tag.end(), line.begin(),
                      [](char a, char b) { return ascii::lower(a) == ascii::lower(b); });
}

bool parseAlertLine(std::string_view line, std::string_view tag, AlertEntry &entry) noexcept
{
    line = skipBlanks(line);
    if (line.empty() || line.front() == '#')
        return false;
    if (line.front() == '[') {
        if (!beginsWithTag(line, tag))
            return false;
        line.remove_prefix(tag.size());
    }
    auto comma = line.find(',');
    if (comma == line.npos || !parseNumber(line.substr(0, comma), entry.number))
        return false;
    entry.text = line.substr(comma + 1);
    entry.severity = 0;
    auto second = entry.text.find(',');
    if (second == entry.text.npos)
        return true;
    // Between the commas stands a severity, nothing, or already the text, which may hold commas too.
    std::string_view field = entry.text.substr(0, second);
    if (skipBlanks(field).empty() || parseNumber(field, entry.severity))
        entry.text.remove_prefix(second + 1);
    return true;
}

int AlertLines::byte() noexcept
{
    if (position_ == filled_) {
        filled_ = std::fread(buffer_.data(), 1, buffer_.size(), stream_);
        position_ = 0;
        if (filled_ == 0)
            return EOF;
    }
    return static_cast<unsigned char>(buffer_[position_++]);
}

bool AlertLines::next(std::string_view &line) noexcept
{
    size_t length = 0;
    int c = byte();
    if (c == EOF)
        return false;
    for (; c != EOF && c != '\n'; c = byte())
        if (length < line_.size() - 1)
            line_[length++] = static_cast<char>(c);
    line_[length] = '\0';
    // A zero byte ends a text wherever it stands.
    length = cutLength(line_.data(), std::strlen(line_.data()), maxLine);
    while (length > 0 && line_[length - 1] == '\r')
        --length;
    line = {line_.data(), length};
    return true;
}

AlertFile::AlertFile(const char *path) noexcept
{
    if (os::openFile(path, "rb", stream_) != os::Error::none)
        stream_ = nullptr;
}

AlertFile::~AlertFile()
{
    if (stream_)
        std::fclose(stream_);
}

bool AlertFile::find(int32_t number, std::string_view tag, AlertText &out) noexcept
{
    if (!stream_)
        return false;
    std::rewind(stream_);
    AlertLines lines(stream_);
    AlertEntry entry;
    bool found = false;
    for (std::string_view line; lines.next(line);) {
        if (!parseAlertLine(line, tag, entry))
            continue;
        if (entry.number != number) {
            if (found)
                break;
            continue;
        }
        found = true;
        out.severity = entry.severity;
        out.text[entry.text.copy(out.text, maxLine)] = '\0';
        if (tag.empty())
            break;
    }
    return found;
}

LanguageTag::LanguageTag() noexcept
{
    if (VxLangGet(nullptr, 0, text_, sizeof text_) != 0)
        text_[0] = '\0';
}

}
