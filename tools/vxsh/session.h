#pragma once

// The toolkit from its start to its end.

#include <string>

#include "tools/vxsh/messages.h"

namespace vxsh {

/** Starts the toolkit as an application does, and ends it in the reverse order. */
class Session {
public:
    Session();
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /** Why the toolkit could not be started; empty when it was. */
    const std::string &failure() const { return failure_; }

private:
    std::string start();

    Messages messages_;
    std::string failure_;
    int started_ = 0; ///< modules that are to be ended
};

/** The user's own folder for files of this program, as the system writes it; empty when there is none. */
std::string userFolder();

/** The toolkit's spelling of a native path, and the other way round. */
std::string toolkitPath(std::string native);
std::string nativePath(std::string toolkit);

}
