#pragma once

// The list of recent documents that desktops share, an XML file.

#include <string>

namespace vx::os {

/** Texts are UTF-8. */
struct RecentUse {
    std::string uri;         ///< of the document
    std::string application; ///< that used it
    std::string command;     ///< that opens a document, with %u in its place
    std::string time;        ///< 2026-11-21T13:52:01.000000Z
};

/**
 * Note a use in the list's text; an empty one becomes a list. What others
 * noted stays. False, and nothing changed, for a text that is no such list.
 */
bool noteRecentUse(std::string &list, const RecentUse &use);

}
