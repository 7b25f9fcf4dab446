#include <gtest/gtest.h>

#include "platform/os/os.h"
#include "tests/support/code_page.h"
#include "tests/support/temp_folder.h"
#include "vx/lang.h"
#include "vx/lang.hpp"

using namespace vx;

namespace {

/** No language set, no code page set, and a current folder with language files for some locales. */
class Language : public testing::Test {
protected:
    Language()
    {
        VxLangFree();
        os::currentDirectory(before_, sizeof before_);
        for (const char *locale : {"en_US", "ja_JP", "ko_KR", "zh_CN", "zh_CHS", "zh_TW", "xx_XX"})
            folder_.write(std::string("languages/") + locale + "/text/Tools.MSG", "");
        os::setCurrentDirectory(folder_.text().c_str());
    }

    ~Language() override
    {
        VxLangFree();
        os::setCurrentDirectory(before_);
    }

    void change(const char *locale)
    {
        VxLangFree();
        ASSERT_EQ(VxLangSet(locale), 0u) << locale;
    }

    static std::string locale()
    {
        char text[16];
        EXPECT_EQ(VxLangGetLocale(text, sizeof text), 0u);
        return text;
    }

private:
    test::CodePageScope page_{0};
    test::TempFolder folder_;
    char before_[4096];
};

TEST_F(Language, IsSetOnceFromALocaleThatHasFiles)
{
    const char *const refusedOnes[] = {"", "fr_FR", "xx_XX", "en_us", "English", nullptr};
    for (const char *refused : refusedOnes) {
        EXPECT_EQ(VxLangSet(refused), 1u);
        EXPECT_EQ(locale(), "");
    }
    EXPECT_EQ(VxLangSet("zh_CN"), 0u);
    EXPECT_EQ(VxLangSet("en_US"), 1u);
    char name[8], tag[8], suffix[8];
    EXPECT_EQ(VxLangGet(name, sizeof name, tag, sizeof tag), 0u);
    EXPECT_EQ(VxLangString(suffix, sizeof suffix), 0u);
    EXPECT_EQ(locale() + name + tag + suffix, "zh_CNChinese[Ch]_Chs");
    change("en_US");
    EXPECT_EQ(locale(), "en_US");
}

TEST_F(Language, BringsItsCodePageAndTakesItAway)
{
    VX::CodePageSet(1251, 1252);
    change("en_US");
    EXPECT_EQ(VxLangGetCodePage(), 1251);
    change("zh_TW");
    EXPECT_EQ(VxLangGetCodePage(), 950);
    change("en_US");
    EXPECT_EQ(VxLangGetCodePage(), 1251);

    change("zh_TW");
    VX::CodePageSet(1253, 1252);
    VxLangFree();
    EXPECT_EQ(VxLangGetCodePage(), 1253) << "the host's later choice stands";
}

TEST_F(Language, TheTwoLocalesOfSimplifiedChineseAreOneLanguage)
{
    const char *kinds[] = {"DoubleByte", "English", "Chinese", "Chinese-simplified", "Chinese-traditional"};
    const std::pair<const char *, std::array<int32_t, 5>> cases[] = { // met by each of the kinds
        {"en_US", {0, 1, 0, 0, 0}},  {"ja_JP", {1, 0, 0, 0, 0}}, {"zh_CN", {1, 0, 1, 1, 0}},
        {"zh_CHS", {1, 0, 1, 1, 0}}, {"zh_TW", {1, 0, 0, 0, 1}}};
    for (const auto &[locale, met] : cases) {
        change(locale);
        for (size_t i = 0; i < met.size(); ++i)
            EXPECT_EQ(VxLangVerify(kinds[i]), met[i]) << locale << ", " << kinds[i];
        for (const char *simplified : {"zh_CN", "zh_CHS"})
            EXPECT_EQ(VxLangIsChanged(simplified), !met[3]) << locale;
        EXPECT_EQ(VxLangIsChanged(locale), 0);
    }
}

TEST_F(Language, IsTakenFromTheFirstArgumentThatNamesOne)
{
    auto from = [](std::vector<const char *> words) {
        VxLangFree();
        words.push_back(nullptr);
        auto argv = const_cast<char **>(words.data());
        return VxLangFromCmd(static_cast<int32_t>(words.size() - 1), argv);
    };
    EXPECT_EQ(from({"host", "part", "-lang=ja_JP", "-lang=ko_KR"}), 0u);
    EXPECT_EQ(locale(), "ja_JP");
    for (const char *word : {"-lang=", "-lang=fr_FR", "-lang", "lang=en_US", "-lang:en_US"}) {
        EXPECT_EQ(from({"host", word}), 1u) << word;
        EXPECT_EQ(locale(), "");
    }
    EXPECT_EQ(from({"-lang=en_US"}), 1u) << "the program's own name";
}

}
