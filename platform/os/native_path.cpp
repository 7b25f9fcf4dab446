#include "platform/os/native_path.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/ascii.h"
#include "platform/os/native_text.h"
#include "text/codepage.h"

namespace vx::os {

namespace {

/** A text that grows in a caller's buffer and remembers when it did not fit. */
class Writer {
public:
    Writer(char *out, size_t size) noexcept : out_(out), room_(size ? size - 1 : 0), fits_(size > 0) {}

    void put(std::string_view bytes) noexcept
    {
        if (bytes.size() > room_ - length_) {
            fits_ = false;
            return;
        }
        std::memcpy(out_ + length_, bytes.data(), bytes.size());
        length_ += bytes.size();
    }

    /** Terminate; false when something did not fit, and then the text is empty. */
    bool finish() noexcept
    {
        if (room_ > 0 || fits_)
            out_[fits_ ? length_ : 0] = '\0';
        return fits_;
    }

private:
    char *out_;
    size_t room_;
    size_t length_ = 0;
    bool fits_;
};

struct Drive {
    char letter;
    std::string_view folder; ///< without a final slash
};

/** Call `visit` for each entry of the drive map until it answers true. */
template <typename Visit> void eachDrive(Visit visit) noexcept
{
    const char *map = std::getenv("VX_DRIVE_MAP");
    std::string_view rest = map ? map : "";
    while (!rest.empty()) {
        std::string_view entry = rest.substr(0, rest.find(';'));
        rest.remove_prefix(entry.size() < rest.size() ? entry.size() + 1 : rest.size());
        if (entry.size() < 3 || !ascii::isLetter(entry[0]) || entry[1] != '=')
            continue;
        std::string_view folder = entry.substr(2);
        while (folder.size() > 1 && folder.back() == '/')
            folder.remove_suffix(1);
        if (visit(Drive{ascii::upper(entry[0]), folder}))
            return;
    }
}

}

NativePath::NativePath(const char *path) noexcept : error_(Error::none)
{
    text_[0] = '\0';
    if (!path) {
        error_ = Error::invalid;
        return;
    }
    Writer out(text_, sizeof text_);
    if (ascii::isLetter(path[0]) && path[1] == ':') {
        bool mapped = false;
        eachDrive([&](const Drive &drive) {
            if (drive.letter != ascii::upper(path[0]))
                return false;
            mapped = true;
            out.put(drive.folder);
            return true;
        });
        if (!mapped) {
            error_ = Error::notFound;
            return;
        }
        path += 2;
        if (*path != '\\' && *path != '/')
            out.put("/");
    }

    const text::CodePage &page = text::codePage();
    CharRoom room;
    while (*path) {
        int bytes = text::charBytes(page, path);
        out.put(*path == '\\' ? "/" : utf8Char(page, path, bytes, room));
        path += bytes;
    }
    if (!out.finish())
        error_ = Error::nameTooLong;
}

Error fromNative(const char *native, char *out, size_t size) noexcept
{
    if (!native || !out || size == 0)
        return Error::invalid;
    Writer text(out, size);
    std::string_view path = native;
    Drive best{'\0', {}};
    eachDrive([&](const Drive &drive) {
        bool under =
            path.starts_with(drive.folder) &&
            (path.size() == drive.folder.size() || path[drive.folder.size()] == '/' || drive.folder == "/");
        if (under && drive.folder.size() > best.folder.size())
            best = drive;
        return false;
    });
    if (best.letter) {
        char prefix[2] = {best.letter, ':'};
        text.put({prefix, 2});
        native += best.folder == "/" ? 0 : best.folder.size();
        if (!*native)
            text.put("\\");
    }

    const text::CodePage &utf8 = *text::findCodePage(65001);
    const text::CodePage &page = text::codePage();
    CharRoom room;
    while (*native) {
        int bytes = text::charBytes(utf8, native);
        text.put(*native == '/' ? "\\" : pageChar(page, native, bytes, room));
        native += bytes;
    }
    return text.finish() ? Error::none : Error::nameTooLong;
}

}
