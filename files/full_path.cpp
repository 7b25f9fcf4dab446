// Full paths by their text.

#include "files/full_path.h"

#include <cstring>
#include <string_view>

#include "files/path_text.h"
#include "platform/os/os.h"
#include "text/codepage.h"

namespace vx::files {

namespace {

constexpr size_t workSize = 4096 + 1;

/** The text up to the next separator of either kind. */
std::string_view nextComponent(const text::CodePage &page, const char *path) noexcept
{
    const char *end = path;
    while (*end && !isSeparator(*end))
        end += text::charBytes(page, end);
    return {path, static_cast<size_t>(end - path)};
}

const char *skipSeparators(const char *path) noexcept
{
    while (isSeparator(*path))
        ++path;
    return path;
}

/** A full path that grows by components. */
class Folded {
public:
    Folded() noexcept { text_[0] = '\0'; }

    /** Take over drive, share or root from `path`; what is left of it, or null when it starts with none. */
    const char *takeRoot(const char *path) noexcept
    {
        if (hasDrive(path)) {
            put({path, 2});
            path += 2;
            if (!isSeparator(*path))
                return nullptr;
        } else if (isSeparator(path[0]) && isSeparator(path[1]) && path[2] && !isSeparator(path[2])) {
            path = takeShare(path + 2);
        } else if (!isSeparator(*path)) {
            return nullptr;
        }
        put("\\");
        root_ = length_;
        return skipSeparators(path);
    }

    /** Fold what stands behind the root. */
    void takeComponents(const char *path) noexcept
    {
        const text::CodePage &page = text::codePage();
        bool separatorLast = false;
        for (path = skipSeparators(path); *path;) {
            std::string_view component = nextComponent(page, path);
            path += component.size();
            separatorLast = isSeparator(*path);
            path = skipSeparators(path);
            if (component == "..")
                dropLast();
            else if (component != ".")
                append(component);
        }
        if (separatorLast && length_ > root_)
            put("\\");
    }

    std::string_view text() const noexcept { return {text_, length_}; }
    bool fits() const noexcept { return fits_; }

private:
    /** "\\server\share" from "server\share\..."; the share cannot be folded away. */
    const char *takeShare(const char *path) noexcept
    {
        const text::CodePage &page = text::codePage();
        std::string_view server = nextComponent(page, path);
        path = skipSeparators(path + server.size());
        std::string_view share = nextComponent(page, path);
        put("\\\\");
        put(server);
        if (!share.empty()) {
            put("\\");
            put(share);
        }
        return path + share.size();
    }

    void append(std::string_view component) noexcept
    {
        if (length_ > root_)
            put("\\");
        put(component);
    }

    void dropLast() noexcept
    {
        const char *last = lastSeparator(text_ + root_);
        length_ = last ? static_cast<size_t>(last - text_) : root_;
        text_[length_] = '\0';
    }

    void put(std::string_view bytes) noexcept
    {
        if (bytes.size() >= sizeof text_ - length_) {
            fits_ = false;
            return;
        }
        bytes.copy(text_ + length_, bytes.size());
        length_ += bytes.size();
        text_[length_] = '\0';
    }

    char text_[workSize];
    size_t length_ = 0;
    size_t root_ = 0;
    bool fits_ = true;
};

/** "D:x" starts in the current directory when that lies on D:, else at the drive's root. */
bool sameDrive(const char *path, const char *current) noexcept
{
    constexpr int caseBit = 0x20;
    return hasDrive(current) && (path[0] | caseBit) == (current[0] | caseBit);
}

bool foldInto(Folded &folded, const char *path) noexcept
{
    if (const char *rest = folded.takeRoot(path)) {
        folded.takeComponents(rest);
        return folded.fits();
    }
    char current[workSize];
    if (os::currentDirectory(current, sizeof current) != os::Error::none)
        return false;
    bool onDrive = hasDrive(path);
    if (onDrive && !sameDrive(path, current)) {
        char drive[] = {path[0], ':', separator, '\0'};
        std::memcpy(current, drive, sizeof drive);
    }
    folded = Folded();
    const char *rest = folded.takeRoot(current);
    if (!rest)
        return false;
    folded.takeComponents(rest);
    folded.takeComponents(onDrive ? path + 2 : path);
    return folded.fits();
}

}

bool fullPath(const char *path, char *out, size_t size) noexcept
{
    Folded folded;
    if (!foldInto(folded, path))
        return false;
    std::string_view text = folded.text();
    if (text.size() > longestPath || text.size() >= size)
        return false;
    text.copy(out, text.size());
    out[text.size()] = '\0';
    return true;
}

bool canonicalPath(const char *path, char *out, size_t size) noexcept
{
    char full[longestPath + 1];
    if (!fullPath(path, full, sizeof full))
        return false;
    char longForm[longestPath + 1];
    bool hasLongForm = os::longPath(full, longForm, sizeof longForm) == os::Error::none;
    std::string_view text = hasLongForm ? longForm : full;
    if (text.size() >= size)
        return false;
    text.copy(out, text.size());
    out[text.size()] = '\0';
    return true;
}

}
