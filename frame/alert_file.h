#pragma once

// Reading alert files; their format is described in vx/err.h.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/os/os.h"

namespace vx::frame {

struct AlertEntry {
    int32_t number;
    int32_t severity;
    std::string_view text; ///< points into the line
};

/**
 * Read one line, without its line break. `tag` is the current language's
 * ("[Fr]"), empty for none.
 * @return false for a comment, a blank line, another language's line, or one that is no entry
 */
bool parseAlertLine(std::string_view line, std::string_view tag, AlertEntry &entry) noexcept;

/** The lines of a stream, each at most 255 bytes; what a longer line has beyond is dropped. */
class AlertLines {
public:
    explicit AlertLines(std::FILE *stream) noexcept : stream_(stream) {}

    /** The next line without its line break, valid until the next call; false at the end. */
    bool next(std::string_view &line) noexcept;

private:
    int byte() noexcept;

    std::FILE *stream_;
    std::array<char, 4096> buffer_;
    size_t position_ = 0, filled_ = 0;
    // A little longer than a line, so that the cut sees whether it would split a character.
    std::array<char, 255 + 8> line_;
};

/** What a look-up found. The text is cut to 512 bytes, at a character. */
struct AlertText {
    int32_t severity = 0;
    char text[512 + 1] = "";
};

/** An alert file while errors are looked up in it. */
class AlertFile {
public:
    AlertFile() = default;
    explicit AlertFile(const char *path) noexcept;
    ~AlertFile();
    AlertFile(const AlertFile &) = delete;
    AlertFile &operator=(const AlertFile &) = delete;

    bool isOpen() const noexcept { return stream_ != nullptr; }

    /** The entry of `number` in the language of `tag`, else the plain one; false when there is none. */
    bool find(int32_t number, std::string_view tag, AlertText &out) noexcept;

private:
    std::FILE *stream_ = nullptr;
};

/** The current language's tag, empty when no language is set. */
class LanguageTag {
public:
    LanguageTag() noexcept;
    operator std::string_view() const noexcept { return text_; }

private:
    char text_[8 + 1] = "";
};

/** `line` begins with the tag, whatever the case of ASCII letters; never for an empty tag. */
bool beginsWithTag(std::string_view line, std::string_view tag) noexcept;

}
