#include "platform/os/native_path.h"

#include "tests/support/test.h"

using namespace vx;

namespace {

std::string back(const char *native)
{
    char out[300];
    return os::fromNative(native, out, sizeof out) == os::Error::none ? out : "(does not fit)";
}

TEST(NativePath, DrivesGoThroughTheMapAndComeBackByTheLongestPrefix)
{
    test::Environment map("VX_DRIVE_MAP", "D=/mnt/d;p=/srv/p/;Q=/mnt/d/q");
    EXPECT_STREQ(os::NativePath("d:\\a").c_str(), "/mnt/d/a");
    EXPECT_STREQ(os::NativePath("P:a").c_str(), "/srv/p/a");
    EXPECT_EQ(os::NativePath("X:\\a").error(), os::Error::notFound);
    for (auto [native, text] : {std::pair{"/mnt/d/a", "D:\\a"}, {"/mnt/d/q/b", "Q:\\b"}, {"/mnt/d", "D:\\"},
                                {"/mnt/data", "\\mnt\\data"}})
        EXPECT_EQ(back(native), text);
}

TEST(NativePath, WhatTheCodePageLacksBecomesAQuestionMark)
{
    for (auto [number, text] : {std::pair{1252, "\\tmp\\?"}, {65001, "\\tmp\\\xE5\x9B\xB3"}}) {
        test::CodePageScope page(number);
        EXPECT_EQ(back("/tmp/\xE5\x9B\xB3"), text);
    }
}

TEST(NativePath, TheLongestNameFitsAndOneMoreDoesNot)
{
    std::string name(4096, 'a');
    EXPECT_EQ(os::NativePath(name.c_str()).error(), os::Error::none);
    name += 'a';
    EXPECT_EQ(os::NativePath(name.c_str()).error(), os::Error::nameTooLong);
    char out[5];
    EXPECT_EQ(os::fromNative("/abc", out, sizeof out), os::Error::none);
    EXPECT_EQ(os::fromNative("/abcd", out, sizeof out), os::Error::nameTooLong);
    EXPECT_STREQ(out, "");
}

}
