#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/os/fault.h"
#include "platform/os/os.h"
#include "platform/os/test_values.h"
#include "platform/windows_names.h"
#include "tests/support/temp_folder.h"
#include "vx/sys.h"

using namespace vx;

namespace {

/** The text that a getter gives; "(1)" when it fails, and then with an empty buffer. */
template <typename Getter> std::string textOf(Getter get, int32_t size = 512)
{
    char text[512] = "?";
    if (get(text, size) == 0)
        return text;
    EXPECT_STREQ(text, "");
    return "(1)";
}

TEST(System, DescribesItselfByDistributionAndKernel)
{
    utsname kernel;
    ASSERT_EQ(uname(&kernel), 0);
    std::string info = textOf(VxWinOsInfo);
    EXPECT_NE(info.find(std::string(kernel.sysname) + " " + kernel.release + ", 64-bit"), std::string::npos)
        << info;
    int32_t numbers[3] = {-1, -1, -1};
    EXPECT_EQ(VxWinOs(&numbers[0], &numbers[1], &numbers[2]), 0);
    std::string front = std::to_string(numbers[0]) + "." + std::to_string(numbers[1]);
    EXPECT_TRUE(std::string(kernel.release).starts_with(front));
    EXPECT_EQ(VxIsWindows(), 1);
    EXPECT_EQ(VxIsWindows64Bit(), 1);
    EXPECT_EQ(VxWinOsIsVistaWin7(), 0);
    auto fits = static_cast<int32_t>(info.size());
    EXPECT_EQ(textOf(VxWinOsInfo, fits + 1), info);
    EXPECT_EQ(textOf(VxWinOsInfo, fits), "(1)");
}

TEST(System, OfWindowsIsNamedWithItsEdition)
{
    struct Case {
        int32_t version[2];
        bool server;
        uint32_t type;
        bool has64Bits;
        int32_t product;
        const char *info;
    };
    const Case cases[] = {
        {{6, 0}, false, 0x06, false, 60, "Windows Vista Business Edition, 32-bit"},
        {{6, 1},
         true,
         0x08,
         true,
         61,
         "Windows Server 2008 R2 Datacenter Server Edition (full installation), 64-bit"},
        {{6, 3}, false, 0xABCDABCD, true, 63, "Windows 8.1, 64-bit"},
        {{10, 0}, true, 0, true, 100, "Windows Server 2016 Technical Preview, 64-bit"},
        {{5, 1}, false, 0, false, 51, "Windows 5.1, 32-bit"},
    };
    for (const Case &one : cases) {
        os::SystemDescription system{true,       "",       {one.version[0], one.version[1], 7},
                                     one.server, one.type, one.has64Bits};
        os::setTestSystem(&system);
        int32_t build = 0;
        EXPECT_EQ(VxWinOs(nullptr, nullptr, &build), one.product);
        EXPECT_EQ(build, 7);
        EXPECT_EQ(textOf(VxWinOsInfo), one.info);
        EXPECT_EQ(VxWinOsIsVistaWin7(), one.product == 60 || one.product == 61);
        EXPECT_EQ(VxIsWindows64Bit(), one.has64Bits);
        os::setTestSystem(nullptr);
    }
}

TEST(System, KnowsItsUser)
{
    std::string name = textOf(VxUserName);
    const passwd *user = getpwuid(geteuid());
    EXPECT_EQ(name, user ? user->pw_name : std::getenv("USER"));
    EXPECT_EQ(textOf(VxUserName, static_cast<int32_t>(name.size())), "(1)");
}

TEST(System, WhatCannotBeAskedIsAFailure)
{
    fault::refuseFrom(fault::Kind::verb, 1);
    std::string user = textOf(VxUserName), info = textOf(VxWinOsInfo), server = textOf(VxFindSmtpServer);
    int32_t numbers = VxWinOs(nullptr, nullptr, nullptr) + VxIsWindows64Bit();
    std::string programs = textOf(VxProgramFileDir);
    fault::refuse(fault::Kind::verb, 0);
    EXPECT_EQ(user + info + server, "(1)(1)(1)");
    EXPECT_EQ(numbers, 0);
    EXPECT_EQ(programs, "C:\\Program Files");
    for (auto get : {VxUserName, VxWinOsInfo, VxFindSmtpServer, VxProgramFileDir}) {
        char byte = 'x';
        EXPECT_EQ(get(nullptr, 9) + get(&byte, 0), 2u);
        EXPECT_EQ(byte, 'x');
    }
}

struct UserSettings : testing::Test {
    test::TempFolder folder;
    test::Environment file{"VX_REGISTRY_FILE", (folder.native() / "registry.ini").c_str()};
};

TEST_F(UserSettings, TellWhereProgramsLie)
{
    EXPECT_EQ(textOf(VxProgramFileDir), "C:\\Program Files");
    EXPECT_EQ(textOf(VxProgramFileDir, 16), "(1)");
    VxRegistrySet(1, "Software\\Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir", "D:\\apps");
    EXPECT_EQ(textOf(VxProgramFileDir, 8), "D:\\apps");
    EXPECT_EQ(textOf(VxProgramFileDir, 7), "(1)");
}

TEST_F(UserSettings, TellTheMailAccountThatHasAServerAndTheOneThatHasAnAddress)
{
    EXPECT_EQ(textOf(VxFindSmtpServer), "(1)");
    folder.write("registry.ini", "[Software\\Microsoft\\Internet Account Manager\\Accounts\\00000001]\n"
                                 "Account Name=directory\nSMTP Server=\n"
                                 "[software\\microsoft\\internet account manager\\ACCOUNTS\\00000002\\Sub]\n"
                                 "SMTP Server=not an account\n"
                                 "[Software\\Microsoft\\Internet Account Manager\\Accounts\\00000003]\n"
                                 "SMTP Server=mail.example.org\n"
                                 "[Software\\Microsoft\\Internet Account Manager\\Accounts\\00000004]\n"
                                 "SMTP Email Address=ann@example.org\nSMTP Display Name=Ann \xC3\x84.\n");
    EXPECT_EQ(textOf(VxFindSmtpServer), "mail.example.org");
    EXPECT_EQ(textOf(VxFindSmtpServer, 16), "(1)");
    char address[64], name[64], org[64] = "?";
    EXPECT_EQ(VxFindSmtpUserInfo(address, 64, name, 64, org, 64), 0u);
    EXPECT_STREQ(address, "ann@example.org");
    EXPECT_STREQ(name, "Ann \xC3\x84.");
    EXPECT_STREQ(org, "");
    EXPECT_EQ(VxFindSmtpUserInfo(address, 64, name, 7, org, 64), 1u) << "the name does not fit";
    EXPECT_EQ(std::string(address) + name + org, "");
    EXPECT_EQ(VxFindSmtpUserInfo(address, 64, nullptr, 64, org, 64), 1u);
}

TEST(Options, AreValidWhenTheyStandInTheList)
{
    EXPECT_EQ(VxValidOption("MM", "in, mm ,cm"), 1);
    EXPECT_EQ(VxValidOption("cm", "in,mm,cm"), 1);
    EXPECT_EQ(VxValidOption("in", "in"), 1);
    for (const char *option : {"", " ", "m", "mmm", "in,mm", ","})
        EXPECT_EQ(VxValidOption(option, "in,,mm,cm,"), 0) << option;
    EXPECT_EQ(VxValidOption(nullptr, "a") + VxValidOption("a", nullptr) + VxValidOption("a", ""), 0);
}

}
