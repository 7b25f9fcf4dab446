#pragma once

// Lines typed by a person, with editing and a history that outlives the session.

#include <memory>
#include <optional>
#include <string>

namespace vxsh {

class LineEditor {
public:
    /** @param historyFile  native name; empty for a history of this session only */
    explicit LineEditor(std::string historyFile);
    ~LineEditor();
    LineEditor(const LineEditor &) = delete;
    LineEditor &operator=(const LineEditor &) = delete;

    /** The next line without its end, or nothing when the input has ended. */
    std::optional<std::string> read();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}
