// Desktop entries and file URIs as freedesktop.org describes them.

#include "platform/os/desktop_entry.h"

namespace vx::os {

namespace {

/** A value of type string: no line breaks, no blank in front. */
std::string asValue(std::string_view text)
{
    std::string value;
    for (char c : text) {
        switch (c) {
        case '\\': value += "\\\\"; break;
        case '\n': value += "\\n"; break;
        case '\r': value += "\\r"; break;
        case '\t': value += "\\t"; break;
        case ' ': value += value.empty() ? "\\s" : " "; break;
        default: value += c;
        }
    }
    return value;
}

/** One word of a command line, as Exec quotes it. */
std::string asWord(std::string_view text)
{
    std::string word = "\"";
    for (char c : text) {
        if (std::string_view("\"`$\\").find(c) != std::string_view::npos)
            word += '\\';
        word += c;
        if (c == '%')
            word += '%';
    }
    return word + '"';
}

void addLine(std::string &text, std::string_view key, std::string_view value)
{
    if (!value.empty())
        text.append(key).append("=").append(asValue(value)).append("\n");
}

}

std::string desktopEntryText(const DesktopEntry &entry)
{
    std::string text = "[Desktop Entry]\nVersion=1.0\n";
    addLine(text, "Type", entry.isProgram ? "Application" : "Link");
    addLine(text, "Name", entry.name);
    addLine(text, "Comment", entry.comment);
    if (!entry.isProgram) {
        addLine(text, "URL", fileUri(entry.target));
        return text;
    }
    std::string command = asWord(entry.target);
    for (const std::string &argument : entry.arguments)
        command += " " + asWord(argument);
    addLine(text, "Exec", command);
    addLine(text, "Path", entry.folder);
    return text + "Terminal=false\n";
}

std::string fileUri(std::string_view path)
{
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                       "-_.~/!$&'()*+,:=@";
    constexpr char digits[] = "0123456789ABCDEF";
    std::string uri = "file://";
    for (char c : path) {
        if (plain.find(c) != plain.npos) {
            uri += c;
            continue;
        }
        auto byte = static_cast<unsigned char>(c);
        uri += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return uri;
}

}
