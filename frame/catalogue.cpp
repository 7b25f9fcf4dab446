#include "frame/catalogue.h"

#include <cstring>

#include "frame/alert_file.h"

namespace vx::frame {

namespace {

/** The text behind a line's label, or null for a comment or a line without a text. */
const char *textOf(const char *line) noexcept
{
    const char *mark = std::strpbrk(line, ",#");
    return mark && *mark == ',' && mark[1] ? mark + 1 : nullptr;
}

char *skipHeader(char *p) noexcept
{
    while (*p == '#') {
        p += std::strcspn(p, "\n");
        p += std::strspn(p, "\n\r\t ");
    }
    return p;
}

}

Catalogue::Catalogue(std::vector<char> bytes, std::string_view tag) : bytes_(std::move(bytes))
{
    char *end = bytes_.data() + bytes_.size() - 1;
    for (char *line = skipHeader(bytes_.data()); line < end;) {
        auto left = static_cast<size_t>(end - line);
        auto feed = static_cast<char *>(std::memchr(line, '\n', left));
        char *lineEnd = feed ? feed : end;
        *lineEnd = '\0';
        if (lineEnd > line && lineEnd[-1] == '\r')
            lineEnd[-1] = '\0';
        readLine(line, tag);
        line = lineEnd + 1;
    }
}

void Catalogue::readLine(char *line, std::string_view tag)
{
    bool tagged = *line == '[';
    if (tagged && !beginsWithTag(line, tag))
        return;
    const char *text = textOf(line);
    if (!text)
        return;
    if (tagged && awaitsTranslation_)
        texts_.back() = text;
    else
        texts_.push_back(text);
    awaitsTranslation_ = !tagged;
}

const char *Catalogue::text(int64_t number) const noexcept
{
    return number >= 0 && number < count() ? texts_[static_cast<size_t>(number)] : nullptr;
}

}
