#include <cinttypes>
#include <string>
#include <vector>

#include "files/open_files.h"
#include "tests/files/toolkit_fixture.h"
#include "tests/support/captured_output.h"
#include "tests/support/each_refusal.h"
#include "vx/openfile.h"

using namespace vx;

namespace {

struct OpenFiles : test::ToolkitFixture {
    OpenFiles() { folder.write("f", "12"); }

    static std::string report()
    {
        test::CapturedOutput output;
        EXPECT_EQ(f_report(), 0);
        return output.text();
    }

    std::string line(FILE *stream) const
    {
        char address[32];
        snprintf(address, sizeof address, "%" PRIxPTR, reinterpret_cast<uintptr_t>(stream));
        return std::string(address) + " = " + folder.text("f") + "\n";
    }

    const std::string header = "----- open files -----\n";
};

TEST_F(OpenFiles, FilesAreListedInOrderUntilTheyAreClosed)
{
    EXPECT_EQ(f_open("none", "r"), nullptr);
    EXPECT_EQ(report(), "") << "no list before the first file";
    std::vector<FILE *> streams;
    std::string others;
    for (int i = 0; i < 20; ++i) {
        streams.push_back(f_open(i % 2 ? "f" : "./f", "r"));
        others += i ? line(streams.back()) : "";
    }
    EXPECT_EQ(report(), header + line(streams[0]) + others);
    EXPECT_EQ(f_close(streams[0]), 0);
    EXPECT_EQ(report(), header + others);
    for (size_t i = 1; i < streams.size(); ++i)
        EXPECT_EQ(f_close(streams[i]), 0);
}

TEST_F(OpenFiles, TrackingNeverChangesOpeningAndClosing)
{
    FILE *stream = nullptr;
    test::eachRefusal(
        fault::Kind::allocation, nullptr, [&] { stream = f_open("f", "r"); },
        [&](bool refused) {
            ASSERT_NE(stream, nullptr);
            EXPECT_EQ(report(), refused ? (files::openFiles.list ? header : "") : header + line(stream));
            f_free();
            EXPECT_EQ(report(), "");
            EXPECT_EQ(fgetc(stream), '1') << "the file itself stays open";
            EXPECT_EQ(f_close(stream), 0);
        });
}

} // namespace
