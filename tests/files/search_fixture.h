#pragma once

#include "tests/files/toolkit_fixture.h"
#include "vx/dmpath.h"

namespace vx::test {

/** An empty list of search paths, to be saved in paths.txt. */
struct SearchFixture : ToolkitFixture {
    SearchFixture()
    {
        shown.clear();
        host(71, [](const char *text) { shown.emplace_back(text); });
        folders.folders[14] = folder.text("paths.txt");
    }

    /** Whether that made a new entry. */
    static int32_t add(std::string path, int32_t atFront = 0)
    {
        int32_t added = 7;
        EXPECT_EQ(DmPathSet(path.data(), atFront, &added), 0u);
        return added;
    }

    static Texts entries()
    {
        Texts texts;
        char text[256];
        for (int32_t first = 1; DmPathGet(&first, text, sizeof text) == 0;)
            texts.emplace_back(text);
        return texts;
    }

    static std::string active()
    {
        return out([](char *to, int32_t size) { return DmPathActiveGet(to, size); });
    }

    /** What the user was shown. */
    static inline Texts shown;
};

}
