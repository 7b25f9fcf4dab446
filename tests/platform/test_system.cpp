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

TEST(System, DescribesItselfByDistributionKernelAndUser)
{
    utsname kernel;
    ASSERT_EQ(uname(&kernel), 0);
    std::string info = textOf(VxWinOsInfo);
    const std::string kernelText = std::string(kernel.sysname) + " " + kernel.release + ", 64-bit";
    EXPECT_NE(info.find(kernelText), std::string::npos) << info;
    auto fits = static_cast<int32_t>(info.size());
    EXPECT_EQ(textOf(VxWinOsInfo, fits + 1), info);
    EXPECT_EQ(textOf(VxWinOsInfo, fits), "(1)");
    int32_t major = -1, minor = -1, build = -1;
    EXPECT_EQ(VxWinOs(&major, &minor, &build), 0);
    EXPECT_EQ(std::string(kernel.release).find(std::to_string(major) + "." + std::to_string(minor)), 0u);
    const passwd *user = getpwuid(geteuid());
    EXPECT_EQ(textOf(VxUserName), user ? user->pw_name : std::getenv("USER"));
}

TEST(System, OfWindowsIsNamedWithItsEdition)
{
    const std::tuple<os::SystemDescription, int32_t, const char *> cases[] = {
        // With the numbers, server or not, edition, 64 bits or not: the product and its text.
        {{true, "", {6, 0, 7}, false, 0x06, false}, 60, "Windows Vista Business Edition, 32-bit"},
        {{true, "", {6, 3, 7}, false, 0xABCDABCD, true}, 63, "Windows 8.1, 64-bit"},
        {{true, "", {5, 1, 7}, false, 0, false}, 51, "Windows 5.1, 32-bit"},
    };
    for (const auto &[system, product, info] : cases) {
        os::setTestSystem(&system);
        int32_t build = 0;
        EXPECT_EQ(VxWinOs(nullptr, nullptr, &build), product);
        EXPECT_EQ(std::pair(build, textOf(VxWinOsInfo)), std::pair(7, std::string(info)));
        EXPECT_EQ(VxWinOsIsVistaWin7(), product == 60);
        os::setTestSystem(nullptr);
    }
}

TEST(UserSettings, TellMailAccountsAndWhereProgramsLie)
{
    test::TempFolder folder;
    test::Environment file{"VX_REGISTRY_FILE", (folder.native() / "registry.ini").c_str()};
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
    EXPECT_EQ(std::string(address) + name + org, "ann@example.orgAnn \xC3\x84.");
    EXPECT_EQ(VxFindSmtpUserInfo(address, 64, name, 7, org, 64), 1u) << "the name does not fit";
    EXPECT_EQ(std::string(address) + name + org, "");
    EXPECT_EQ(textOf(VxProgramFileDir), "C:\\Program Files");
    VxRegistrySet(1, "Software\\Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir", "D:\\apps");
    EXPECT_EQ(textOf(VxProgramFileDir), "D:\\apps");
    fault::refuseFrom(fault::Kind::verb, 1);
    std::string refused = textOf(VxUserName) + textOf(VxWinOsInfo) + textOf(VxFindSmtpServer);
    fault::refuse(fault::Kind::verb, 0);
    EXPECT_EQ(refused, "(1)(1)(1)");
}

TEST(Options, AreValidWhenTheyStandInTheList)
{
    EXPECT_EQ(VxValidOption("MM", "in, mm ,cm"), 1);
    for (const char *option : {"", " ", "m", "mmm", "in,mm", ","})
        EXPECT_EQ(VxValidOption(option, "in,,mm,cm,"), 0) << option;
}
}
