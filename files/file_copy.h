#pragma once

#include "platform/os/os.h"

namespace vx::files {

/** A new file on its way to the name of another; gone at the end of its scope unless it was committed. */
class Successor {
public:
    Successor() = default;
    ~Successor() { os::dropReplacement(replacement_); }
    Successor(const Successor &) = delete;
    Successor &operator=(const Successor &) = delete;

    bool begin(const char *path) noexcept
    {
        return os::beginReplacement(path, replacement_) == os::Error::none;
    }

    /** Fill it with all of a file, whose times and permissions it gets. */
    bool fillFrom(os::Handle source) noexcept;

    bool commit(bool durable) noexcept
    {
        return os::commitReplacement(replacement_, durable) == os::Error::none;
    }

    /** What it replaces; not open when nothing is. */
    os::Handle old() const noexcept { return replacement_.old; }

private:
    os::Replacement replacement_{};
};

enum class Durable { no, yes };

/** Copy a file over another or to a new name; a failure leaves what was there. */
bool copyFile(const char *from, const char *to, Durable durable) noexcept;

}
