#pragma once

// Folders: their entries in the order of listings, and lists of names.

#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os/os.h"
#include "vx/list.h"

namespace vx::files {

struct Entry {
    std::string name;
    bool folder; ///< also of a link that leads to one
    bool link;
};

/**
 * The entries of a folder, without "." and "..", in the order of listings.
 * Throws std::bad_alloc.
 * @return false when the folder cannot be read
 */
bool readFolder(const char *path, std::vector<Entry> &entries);

/** `dir` and `name` with one separator between them. */
std::string inFolder(std::string_view dir, std::string_view name);

/** Make a list of names, char[256] each; longer ones are left out. False, and null, without memory. */
bool makeNameList(const std::vector<std::string> &names, VxList **list);

/** Run a body that may need memory; `failure` is the result when there is none. */
template <typename Result, typename Body> Result withMemory(Result failure, Body body)
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return failure;
    }
}

}
