// The settings store as a key file: VX_REGISTRY_FILE, else
// $HOME/.config/vx/registry.ini. Sections are keys, lines are name=value; the
// machine's keys stand under HKEY_LOCAL_MACHINE. Backslashes and blanks mean
// themselves, so that keys and paths can be written by hand; only line breaks
// in values are encoded, as %0A and %0D (and the % of a text that would read
// so as %25).

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

#include "platform/os/fault.h"
#include "platform/os/os.h"
#include "platform/os/posix/descriptor.h"
#include "platform/os/posix/error.h"
#include "platform/os/posix/locks.h"
#include "platform/os/posix/replace.h"

namespace vx::os {

namespace {

constexpr std::string_view machinePrefix = "HKEY_LOCAL_MACHINE\\";

// ---------------------------------------------------------------- values as one line

struct Code {
    std::string_view written;
    char byte;
};
constexpr Code codes[] = {{"%0A", '\n'}, {"%0D", '\r'}, {"%25", '%'}};

const Code *codeAt(std::string_view text) noexcept
{
    for (const Code &code : codes)
        if (text.starts_with(code.written))
            return &code;
    return nullptr;
}

std::string encode(std::string_view text)
{
    std::string line;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n')
            line += "%0A";
        else if (text[i] == '\r')
            line += "%0D";
        else if (codeAt(text.substr(i)))
            line += "%25";
        else
            line += text[i];
    }
    return line;
}

std::string decode(std::string_view line)
{
    std::string text;
    while (!line.empty()) {
        const Code *code = codeAt(line);
        text += code ? code->byte : line[0];
        line.remove_prefix(code ? code->written.size() : 1);
    }
    return text;
}

// ---------------------------------------------------------------- the file's lines

char lower(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameText(std::string_view a, std::string_view b) noexcept
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i]))
            return false;
    return true;
}

/** Where a value stands in the file's text, or where it belongs. */
struct Place {
    bool found = false;
    bool keyFound = false;
    size_t begin = 0; ///< of the value's line, or of the gap at the end of its key
    size_t end = 0;   ///< behind the line's break
    std::string_view value;
};

std::string_view sectionOf(std::string_view line) noexcept
{
    size_t close = line.rfind(']');
    return close == line.npos ? std::string_view() : line.substr(1, close - 1);
}

Place locate(std::string_view text, std::string_view key, std::string_view name) noexcept
{
    Place place;
    place.begin = place.end = text.size();
    bool inKey = false;
    for (size_t begin = 0; begin < text.size();) {
        size_t end = text.find('\n', begin);
        size_t next = end == text.npos ? text.size() : end + 1;
        std::string_view line = text.substr(begin, end == text.npos ? end : end - begin);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        size_t equals = line.find('=');
        if (line.starts_with('[')) {
            inKey = sameText(sectionOf(line), key);
            place.keyFound |= inKey;
        } else if (inKey && !line.starts_with('#') && !line.starts_with(';') && equals != line.npos &&
                   sameText(line.substr(0, equals), name)) {
            return {true, true, begin, next, line.substr(equals + 1)};
        }
        if (inKey && !line.empty())
            place.begin = place.end = next;
        begin = next;
    }
    return place;
}

void put(std::string &text, std::string_view key, std::string_view name, std::string_view value)
{
    Place place = locate(text, key, name);
    std::string lines;
    if (place.begin > 0 && text[place.begin - 1] != '\n')
        lines += '\n';
    if (!place.keyFound) {
        if (!text.empty())
            lines += '\n';
        lines.append("[").append(key).append("]\n");
    }
    lines.append(name).append("=").append(encode(value)).append("\n");
    text.replace(place.begin, place.end - place.begin, lines);
}

// ---------------------------------------------------------------- the file

std::string fileName()
{
    if (const char *named = std::getenv("VX_REGISTRY_FILE"); named && *named)
        return named;
    const char *home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.config/vx/registry.ini";
}

/** The whole file; an absent one is empty. */
Error readWhole(const std::string &name, std::string &text)
{
    Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0)
        return errno == ENOENT || errno == ENOTDIR ? Error::none : errorOf(errno);
    char piece[4096];
    for (;;) {
        ssize_t n = read(file.get(), piece, sizeof piece);
        if (n == 0)
            return Error::none;
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errorOf(errno);
        text.append(piece, static_cast<size_t>(n));
    }
}

/** The folders above `name` that are missing. */
Error makeFolders(const std::string &name)
{
    for (size_t slash = name.find('/', 1); slash != name.npos; slash = name.find('/', slash + 1))
        if (mkdir(name.substr(0, slash).c_str(), 0777) != 0 && errno != EEXIST)
            return errorOf(errno);
    return Error::none;
}

Error update(const std::string &name, std::string_view key, std::string_view setting, std::string_view value)
{
    if (Error error = makeFolders(name); error != Error::none)
        return error;
    // A file of its own, since the store itself is replaced while it is held.
    Descriptor held(open((name + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (held.get() < 0 || !holdWhenFree(held.get()))
        return errorOf(errno);
    std::string text;
    if (Error error = readWhole(name, text); error != Error::none)
        return error;
    put(text, key, setting, value);
    return replaceNative(name.c_str(), text.data(), text.size()) == 0 ? Error::none : errorOf(errno);
}

std::string sectionName(SettingsRoot root, const char *key)
{
    return root == SettingsRoot::machine ? std::string(machinePrefix) + key : std::string(key);
}

bool writable(std::string_view key, std::string_view name) noexcept
{
    bool oneLine = key.find_first_of("\r\n") == key.npos && name.find_first_of("\r\n=") == name.npos;
    bool readsBack = name.empty() || std::string_view("[#;").find(name[0]) == std::string_view::npos;
    return oneLine && readsBack;
}

/** Run a body that may need memory. */
template <typename Body> Error guarded(Body body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        errno = ENOMEM;
        return Error::noMemory;
    }
}

Error fail(int code) noexcept
{
    errno = code;
    return errorOf(code);
}

}

Error readSetting(SettingsRoot root, const char *key, const char *name, char *out, size_t size) noexcept
{
    VX_OS_VERB("readSetting");
    if (!out || size == 0)
        return fail(EINVAL);
    out[0] = '\0';
    if (!key || !name)
        return fail(EINVAL);
    return guarded([&] {
        std::string text;
        if (Error error = readWhole(fileName(), text); error != Error::none)
            return error;
        Place place = locate(text, sectionName(root, key), name);
        if (!place.found)
            return fail(ENOENT);
        std::string value = decode(place.value);
        if (value.size() >= size)
            return fail(ENAMETOOLONG);
        value.copy(out, value.size());
        out[value.size()] = '\0';
        return Error::none;
    });
}

Error writeSetting(SettingsRoot root, const char *key, const char *name, const char *text) noexcept
{
    VX_OS_VERB("writeSetting");
    if (!key || !name || !text || !writable(key, name))
        return fail(EINVAL);
    return guarded([&] { return update(fileName(), sectionName(root, key), name, text); });
}

}
