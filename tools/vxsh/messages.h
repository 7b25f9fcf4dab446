#pragma once

// What the toolkit reports while it works: its errors go to the event log,
// and from there into a list of this program.

#include <string>
#include <vector>

namespace vxsh {

/** Collects the texts of errors and warnings of this thread and of others while it lives. One at a time. */
class Messages {
public:
    Messages();
    ~Messages();
    Messages(const Messages &) = delete;
    Messages &operator=(const Messages &) = delete;

    /** The texts since the last call, oldest first; the toolkit's pending errors are cleared. */
    static std::vector<std::string> take();

    /** The same in one line, or `otherwise` when there are none. */
    static std::string takeLine(const std::string &otherwise);
};

}
