// Desktop bookmarks as freedesktop.org describes them. The list is edited as
// text, so that whatever others keep in it stays as it is.

#include "platform/os/recent_list.h"

#include <charconv>
#include <cstdint>
#include <string_view>

#include "text/codepage.h"

namespace vx::os {

namespace {

constexpr std::string_view emptyList =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<xbel version=\"1.0\"\n"
    "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
    "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"\n"
    ">\n"
    "</xbel>\n";
constexpr std::string_view listEnd = "</xbel>";
constexpr std::string_view bookmarkStart = "<bookmark ";
constexpr std::string_view bookmarkEnd = "</bookmark>";
constexpr std::string_view applicationStart = "<bookmark:application ";
constexpr std::string_view applicationsEnd = "</bookmark:applications>";

/** A text as an attribute's value; what XML cannot hold becomes "_". */
std::string escaped(const std::string &text)
{
    const text::CodePage &utf8 = *text::findCodePage(65001);
    std::string out;
    int bytes;
    for (const char *p = text.c_str(); *p; p += bytes) {
        bytes = text::charBytes(utf8, p);
        auto byte = static_cast<unsigned char>(*p);
        switch (*p) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\'': out += "&apos;"; break;
        default:
            if (byte < 0x20 || (bytes == 1 && byte >= 0x80))
                out += '_';
            else
                out.append(p, static_cast<size_t>(bytes));
        }
    }
    return out;
}

/** A part of the list's text. */
struct Span {
    size_t begin = 0, end = 0;

    bool found() const noexcept { return end > begin; }
};

/** The start tag at `begin`, to behind its ">"; quotes may hold such, but no "<". */
Span tagAt(std::string_view list, size_t begin) noexcept
{
    char quote = '\0';
    for (size_t i = begin; i < list.size() && (i == begin || list[i] != '<'); ++i) {
        if (quote)
            quote = list[i] == quote ? '\0' : quote;
        else if (list[i] == '"' || list[i] == '\'')
            quote = list[i];
        else if (list[i] == '>')
            return {begin, i + 1};
    }
    return {};
}

/** The value of a tag's attribute, without its quotes. */
Span attribute(std::string_view list, Span tag, std::string_view name) noexcept
{
    for (size_t at = list.find(name, tag.begin); at < tag.end; at = list.find(name, at + 1)) {
        size_t quote = at + name.size() + 1;
        bool whole = std::string_view(" \t\r\n").find(list[at - 1]) != std::string_view::npos;
        if (!whole || quote >= tag.end || list[quote - 1] != '=')
            continue;
        size_t end = list.find(list[quote], quote + 1);
        return end < tag.end ? Span{quote + 1, end} : Span{};
    }
    return {};
}

bool hasAttribute(std::string_view list, Span tag, std::string_view name, std::string_view value) noexcept
{
    Span found = attribute(list, tag, name);
    return found.found() && list.substr(found.begin, found.end - found.begin) == value;
}

void setAttribute(std::string &list, size_t tagBegin, std::string_view name, const std::string &value)
{
    if (Span found = attribute(list, tagAt(list, tagBegin), name); found.found())
        list.replace(found.begin, found.end - found.begin, value);
}

/** The first tag in a part of the list that begins so and has the attribute. */
Span findTag(std::string_view list, Span part, std::string_view start, std::string_view name,
             std::string_view value) noexcept
{
    for (size_t at = list.find(start, part.begin); at < part.end; at = list.find(start, at + 1))
        if (Span tag = tagAt(list, at); hasAttribute(list, tag, name, value))
            return tag;
    return {};
}

std::string attributeText(std::string_view name, const std::string &value)
{
    return " " + std::string(name) + "=\"" + value + "\"";
}

std::string applicationText(const RecentUse &use)
{
    return "          " + std::string(applicationStart.substr(0, applicationStart.size() - 1)) +
           attributeText("name", escaped(use.application)) + attributeText("exec", escaped(use.command)) +
           attributeText("modified", use.time) + attributeText("count", "1") + "/>\n";
}

std::string bookmarkText(const RecentUse &use)
{
    return "  <bookmark" + attributeText("href", escaped(use.uri)) + attributeText("added", use.time) +
           attributeText("modified", use.time) + attributeText("visited", use.time) +
           ">\n"
           "    <info>\n"
           "      <metadata owner=\"http://freedesktop.org\">\n"
           "        <mime:mime-type type=\"application/octet-stream\"/>\n"
           "        <bookmark:applications>\n" +
           applicationText(use) +
           "        </bookmark:applications>\n"
           "      </metadata>\n"
           "    </info>\n"
           "  </bookmark>\n";
}

void countUse(std::string &list, Span application, const RecentUse &use)
{
    Span count = attribute(list, application, "count");
    uint32_t uses = 0;
    if (count.found())
        std::from_chars(list.data() + count.begin, list.data() + count.end, uses);
    setAttribute(list, application.begin, "count", std::to_string(uses + 1));
    setAttribute(list, application.begin, "modified", use.time);
    setAttribute(list, application.begin, "exec", escaped(use.command));
}

/** Note a use in the document's own bookmark; one without a list of applications only gets the time. */
void noteInBookmark(std::string &list, Span bookmark, const RecentUse &use)
{
    Span application = findTag(list, bookmark, applicationStart, "name", escaped(use.application));
    size_t end = list.find(applicationsEnd, bookmark.begin);
    if (application.found())
        countUse(list, application, use);
    else if (end < bookmark.end)
        list.insert(list.find_last_not_of(" \t", end - 1) + 1, applicationText(use));
    setAttribute(list, bookmark.begin, "modified", use.time);
    setAttribute(list, bookmark.begin, "visited", use.time);
}

/** Where the list's end tag stands; npos for a text that is no list. */
size_t endOf(std::string_view list) noexcept
{
    size_t end = list.rfind(listEnd);
    bool whole = end != list.npos && list.find_first_not_of(" \t\r\n", end + listEnd.size()) == list.npos;
    size_t start = list.find("<xbel");
    return whole && start < end && tagAt(list, start).found() ? end : list.npos;
}

}

bool noteRecentUse(std::string &list, const RecentUse &use)
{
    if (list.empty())
        list = emptyList;
    size_t end = endOf(list);
    if (end == list.npos)
        return false;
    Span bookmark = findTag(list, {0, end}, bookmarkStart, "href", escaped(use.uri));
    if (!bookmark.found()) {
        list.insert(end, bookmarkText(use));
        return true;
    }
    if (list[bookmark.end - 2] == '/') {
        list.replace(bookmark.begin, bookmark.end - bookmark.begin, bookmarkText(use));
        return true;
    }
    size_t close = list.find(bookmarkEnd, bookmark.end);
    if (close >= end)
        return false;
    noteInBookmark(list, {bookmark.begin, close}, use);
    return true;
}

}
