// Reading folders.

#include "files/folder.h"

#include <algorithm>
#include <cstring>

#include "files/path_text.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr size_t nameSize = 256;

class Walk {
public:
    ~Walk() { os::closeFolder(walk_); }
    Walk() = default;
    Walk(const Walk &) = delete;
    Walk &operator=(const Walk &) = delete;

    bool open(const char *path) noexcept { return os::openFolder(path, walk_) == os::Error::none; }

    /** notFound behind the last. */
    os::Error next(os::FolderEntry &entry) noexcept { return os::readFolder(walk_, entry); }

private:
    os::FolderWalk walk_;
};

/** Ignoring case; names that are equal then, by their bytes. */
bool inOrder(const Entry &a, const Entry &b) noexcept
{
    int32_t order = VxStrcasecmp(a.name.c_str(), b.name.c_str());
    return order ? order < 0 : a.name < b.name;
}

}

bool readFolder(const char *path, std::vector<Entry> &entries)
{
    Walk walk;
    if (!path || !walk.open(path))
        return false;
    os::FolderEntry entry;
    os::Error error;
    while ((error = walk.next(entry)) == os::Error::none)
        entries.push_back({entry.name, entry.folder, entry.link});
    std::sort(entries.begin(), entries.end(), inOrder);
    return error == os::Error::notFound;
}

std::string inFolder(std::string_view dir, std::string_view name)
{
    std::string path(dir);
    if (!path.empty() && !endsInSeparator(path.c_str()) && path.back() != '/')
        path += separator;
    return path += name;
}

bool makeNameList(const std::vector<std::string> &names, VxList **list)
{
    constexpr int32_t arrayLayout = 2;
    constexpr int32_t increment = 64;
    int32_t capacity = static_cast<int32_t>(names.size());
    if (VxListMk(arrayLayout, nameSize, capacity, increment, nullptr, list))
        return false;
    for (const std::string &name : names) {
        char element[nameSize] = "";
        if (name.size() >= sizeof element)
            continue;
        name.copy(element, name.size());
        if (VxListSet(*list, (*list)->count, element)) {
            VxListDel(list);
            return false;
        }
    }
    return true;
}

}
