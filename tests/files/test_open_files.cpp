#include <cinttypes>

#include "files/open_files.h"
#include "tests/files/toolkit_fixture.h"

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
    FILE *first = f_open("f", "r");
    FILE *second = f_open("./f", "r");
    EXPECT_EQ(report(), header + line(first) + line(second));
    EXPECT_EQ(f_close(first), 0);
    EXPECT_EQ(report(), header + line(second));
    EXPECT_EQ(f_close(second), 0);
    EXPECT_EQ(report(), header);
}

TEST_F(OpenFiles, TrackingNeverChangesOpeningAndClosing)
{
    FILE *stream = nullptr;
    auto open = [&] { stream = f_open("f", "r"); };
    test::eachRefusal(fault::Kind::allocation, nullptr, open, [&](bool refused) {
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(report(), refused ? (files::openFiles.list ? header : "") : header + line(stream));
        f_free();
        EXPECT_EQ(report(), "");
        EXPECT_EQ(fgetc(stream), '1') << "the file itself stays open";
        EXPECT_EQ(f_close(stream), 0);
    });
}

}
