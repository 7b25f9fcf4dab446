// Reading folders in the manner of POSIX.

#include "vx/posix.h"

#include <cstdlib>
#include <cstring>

#include "files/folder.h"
#include "files/path_text.h"
#include "platform/os/os.h"
#include "vx/file.h"
#include "vx/mem.h"
#include "vx/path.h"
#include "vx/str.h"

/** One open folder. */
struct VxDir {
    char path[260];
    bool started; ///< the names were read, if they could be
    std::vector<std::string> names;
    size_t next;
    VxDirEnt entry;
};

namespace vx::files {

namespace {

/** The folders that are open, the one to be read on top. */
struct FolderStack {
    VxDir levels[255];
    int32_t open = 0;

    /** The one to be read; null when none is open. */
    VxDir *top() noexcept { return open > 0 ? &levels[open - 1] : nullptr; }
};

FolderStack folderStack;

void setName(VxDirEnt &entry, const std::string &name) noexcept
{
    entry.name[name.copy(entry.name, sizeof entry.name - 1)] = '\0';
}

/** All names of a folder, "." and ".." in front; false when it cannot be read. */
bool readNames(const char *path, std::vector<std::string> &names)
{
    std::vector<Entry> entries;
    if (!readFolder(path, entries))
        return false;
    names.reserve(entries.size() + 2);
    names.emplace_back(".");
    names.emplace_back("..");
    for (Entry &entry : entries)
        names.push_back(std::move(entry.name));
    return true;
}

bool namedAsCurrentDirectory(const char *path) noexcept
{
    char current[4096 + 1];
    return os::currentDirectory(current, sizeof current) == os::Error::none &&
           std::strcmp(lastComponent(path), lastComponent(current)) == 0;
}

void start(VxDir &level)
{
    level.started = true;
    withMemory(false, [&] {
        bool current = namedAsCurrentDirectory(level.path);
        return readNames(current ? "." : level.path, level.names);
    });
}

/** Records in a growing array, freed unless they are given away. */
class Records {
public:
    Records() = default;
    ~Records()
    {
        for (int32_t i = 0; i < count_; ++i)
            VxMemFree(reinterpret_cast<void **>(&records_[i]));
        VxMemFree(reinterpret_cast<void **>(&records_));
    }
    Records(const Records &) = delete;
    Records &operator=(const Records &) = delete;

    bool add(const VxDirEnt &entry)
    {
        void *copy = nullptr;
        if (!makeRoom() || VxMemDup(sizeof entry, &entry, &copy))
            return false;
        records_[count_++] = static_cast<VxDirEnt *>(copy);
        return true;
    }

    int32_t count() const noexcept { return count_; }

    VxDirEnt **release(int (*compare)(const void *, const void *))
    {
        if (compare && count_ > 1)
            std::qsort(records_, static_cast<size_t>(count_), sizeof *records_, compare);
        VxDirEnt **records = records_;
        records_ = nullptr;
        count_ = 0;
        return records;
    }

private:
    bool makeRoom()
    {
        constexpr int32_t least = 16;
        if (count_ < capacity_)
            return true;
        int32_t wanted = capacity_ ? 2 * capacity_ : least;
        int32_t bytes = wanted * static_cast<int32_t>(sizeof *records_);
        if (VxMemResize(bytes, reinterpret_cast<void **>(&records_)))
            return false;
        capacity_ = wanted;
        return true;
    }

    VxDirEnt **records_ = nullptr;
    int32_t count_ = 0;
    int32_t capacity_ = 0;
};

}

}

using namespace vx;
using namespace vx::files;

VxDir *vxopendir(const char *path)
{
    constexpr int32_t most = sizeof folderStack.levels / sizeof *folderStack.levels;
    VxStat status;
    if (vxstat(path, &status) != 0 || folderStack.open == most)
        return nullptr;
    VxDir &level = folderStack.levels[folderStack.open];
    if (VxStrCpy(level.path, path, sizeof level.path))
        return nullptr;
    VxPathCheck(level.path);
    level.started = false;
    level.next = 0;
    ++folderStack.open;
    return &level;
}

VxDirEnt *vxreaddir(VxDir *)
{
    VxDir *level = folderStack.top();
    if (!level)
        return nullptr;
    if (!level->started)
        start(*level);
    if (level->next >= level->names.size())
        return nullptr;
    setName(level->entry, level->names[level->next++]);
    return &level->entry;
}

int32_t vxclosedir(VxDir *)
{
    VxDir *level = folderStack.top();
    if (!level)
        return 0;
    level->names = {};
    --folderStack.open;
    return 0;
}

int32_t vxscandir(const char *dir, VxDirEnt ***list, int32_t (*filter)(const VxDirEnt *),
                  int (*compare)(const void *, const void *))
{
    if (!list)
        return -1;
    *list = nullptr;
    return withMemory(-1, [&]() -> int32_t {
        std::vector<std::string> names;
        if (!readNames(dir, names))
            return -1;
        Records records;
        for (const std::string &name : names) {
            VxDirEnt entry{};
            setName(entry, name);
            if ((!filter || filter(&entry)) && !records.add(entry))
                return -1;
        }
        int32_t count = records.count();
        *list = records.release(compare);
        return count;
    });
}
