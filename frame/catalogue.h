#pragma once

// One message catalogue; the format is described in vx/msg.h.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vx::frame {

class Catalogue {
public:
    Catalogue() = default;

    /** Read the contents of a file, one zero byte behind them. `tag` is the current language's, or empty. */
    Catalogue(std::vector<char> bytes, std::string_view tag);

    const std::vector<char> &bytes() const noexcept { return bytes_; }
    int32_t count() const noexcept { return static_cast<int32_t>(texts_.size()); }

    /** The text of a message, or null when there is no such number. */
    const char *text(int64_t number) const noexcept;

private:
    void readLine(char *line, std::string_view tag);

    std::vector<char> bytes_;
    std::vector<const char *> texts_; ///< into bytes_
    /** The last message has not yet been translated. */
    bool awaitsTranslation_ = false;
};

}
