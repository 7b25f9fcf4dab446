#include <cinttypes>
#include <string>
#include <vector>

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

    std::string line(FILE *stream, const char *name = "f")
    {
        char address[32];
        snprintf(address, sizeof address, "%" PRIxPTR, reinterpret_cast<uintptr_t>(stream));
        return std::string(address) + " = " + folder.text(name) + "\n";
    }

    const std::string header = "----- open files -----\n";
};

TEST_F(OpenFiles, FilesAreListedUntilTheyAreClosed)
{
    EXPECT_EQ(report(), "") << "no list before the first file";
    FILE *first = f_open("./f", "r");
    FILE *second = f_open("f", "r");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(report(), header + line(first) + line(second));
    EXPECT_EQ(f_close(first), 0);
    EXPECT_EQ(report(), header + line(second));
    EXPECT_EQ(f_close(nullptr), 0);
    EXPECT_EQ(f_close(second), 0);
    EXPECT_EQ(report(), header);
}

TEST_F(OpenFiles, ManyFilesAreListedInOrder)
{
    std::vector<FILE *> streams;
    std::string expected = header;
    for (int i = 0; i < 20; ++i) {
        streams.push_back(f_open("f", "r"));
        expected += line(streams.back());
    }
    EXPECT_EQ(report(), expected);
    for (FILE *stream : streams)
        EXPECT_EQ(f_close(stream), 0);
}

TEST_F(OpenFiles, WhatIsNotTrackedIsClosedAllTheSame)
{
    FILE *stream = f_open("f", "r");
    EXPECT_EQ(f_free(), 0);
    EXPECT_EQ(report(), "");
    EXPECT_EQ(fgetc(stream), '1') << "the file itself stays open";
    EXPECT_EQ(f_close(stream), 0);
    EXPECT_EQ(f_open("none", "r"), nullptr);
    EXPECT_EQ(f_open(nullptr, "r"), nullptr);
    EXPECT_EQ(report(), "") << "a failed opening makes no list";
}

TEST_F(OpenFiles, WithoutMemoryTheFileIsOpenAndOnlyNotListed)
{
    FILE *stream = nullptr;
    int bytes = 0;
    test::eachRefusal(
        fault::Kind::allocation, nullptr, [&] { stream = f_open("f", "r"); },
        [&](bool) {
            ASSERT_NE(stream, nullptr);
            bytes += fgetc(stream) == '1';
            EXPECT_EQ(f_close(stream), 0);
            f_free();
        });
    EXPECT_GT(bytes, 1);
}

}
