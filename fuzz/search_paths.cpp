// A saved list of search paths with any bytes: its entries are canonical and
// stand there once, and what is saved of it is what the next start reads.

#include <algorithm>
#include <cstdio>
#include <random>

#include "fuzz/fuzz.h"
#include "files/dmpath.h"
#include "vx/dmpath.h"
#include "vx/str.h"

namespace {

const std::string &savedFile()
{
    static const std::string file = [] {
        const std::string number = std::to_string(std::random_device{}());
        std::string name = "/dev/shm/vx-fuzz-" + number;
        setenv("VX_FOLDER_14", ("\\dev\\shm\\vx-fuzz-" + number).c_str(), 1);
        std::atexit([] { std::remove(savedFile().c_str()); });
        return name;
    }();
    return file;
}

std::vector<std::string> nextStart()
{
    vx::files::freeSearchPaths();
    require(DmPathInit() == 0);
    std::vector<std::string> entries;
    char text[256];
    for (int32_t first = 1; DmPathGet(&first, text, sizeof text) == 0;)
        entries.emplace_back(text);
    return entries;
}

/**
 * A value of the environment may bring in a "$" that is none, and "\." at the
 * end white space in front of it; and of a directory that is named as the mark
 * of subdirectories each start cuts a piece.
 */
bool isStorable(const std::string &entry)
{
    std::string trimmed = entry;
    VxStrRem(trimmed.data());
    return entry.find_first_of("$\n\r") == entry.npos && trimmed.c_str() == entry &&
           !(vx::files::cutSubdirectoryMark(trimmed.data()) && vx::files::subdirectoryMark(trimmed.data()));
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FILE *file = std::fopen(savedFile().c_str(), "wb");
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    std::vector<std::string> entries = nextStart();
    for (size_t i = 0; i < entries.size(); ++i)
        for (size_t j = 0; j < i; ++j)
            require(VxStrcasecmp(entries[i].c_str(), entries[j].c_str()) != 0);
    require(DmPathSave(1) == 0);
    require(!std::ranges::all_of(entries, isStorable) || nextStart() == entries);
    return 0;
}
