#pragma once

// Shortcuts of the freedesktop kind: the text of a .desktop file.

#include <string>
#include <string_view>
#include <vector>

namespace vx::os {

/** Texts are UTF-8, paths native. */
struct DesktopEntry {
    std::string name;
    std::string comment;
    std::string target;
    bool isProgram;                     ///< else a document or folder, which is shown
    std::vector<std::string> arguments; ///< of a program
    std::string folder;                 ///< where a program starts; may be empty
};

std::string desktopEntryText(const DesktopEntry &entry);

/** The file: address of a full native path. */
std::string fileUri(std::string_view path);

}
