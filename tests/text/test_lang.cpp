#include "vx/lang.h"
#include "vx/lang.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/os/os.h"
#include "platform/os/test_values.h"
#include "tests/support/code_page.h"
#include "tests/support/temp_folder.h"
#include "text/lang.h"

using namespace vx;

namespace {

/** No language set, no code page set, and a current folder with language files for some locales. */
class Language : public testing::Test {
protected:
    Language()
    {
        VxLangFree();
        os::currentDirectory(before_, sizeof before_);
        for (const char *locale : {"en_US", "ja_JP", "ko_KR", "th_TH", "zh_CN", "zh_CHS", "zh_TW", "xx_XX"})
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

TEST_F(Language, TheTableHasTheseTexts)
{
    const struct {
        int32_t codePage;
        const char *tag, *suffix, *name, *locale;
    } rows[] = {
        {0, "", "", "", ""},
        {0, "[en]", "", "English", "en_US"},
        {0, "[Nl]", "_Nld", "Dutch", "nl_NL"},
        {0, "[Da]", "_Dan", "Danish", "da_DK"},
        {0, "[Fr]", "_Fra", "French", "fr_FR"},
        {0, "[de]", "_Deu", "German", "de_DE"},
        {0, "[It]", "_Ita", "Italian", "it_IT"},
        {0, "[Jp]", "_Jpn", "Japanese", "ja_JP"},
        {0, "[Ko]", "_Kor", "Korean", "ko_KR"},
        {0, "[Pt]", "_Ptb", "Portuguese", "pt_PT"},
        {0, "[Es]", "_Esn", "Spanish", "es_ES"},
        {936, "[Chs]", "_Chs", "Chinese-simplified", "zh_CHS"},
        {950, "[Cht]", "_Cht", "Chinese-traditional", "zh_TW"},
        {936, "[Ch]", "_Chs", "Chinese", "zh_CN"},
        {874, "[Th]", "_Tha", "Thai", "th_TH"},
        {1253, "[El]", "_Ell", "Greek", "el_GR"},
        {0, "[Fi]", "_Fin", "Finnish", "fi_FI"},
        {0, "[Ru]", "_Rus", "Russian", "ru_RU"},
        {0, "[Cs]", "_Csy", "Czech", "cs_CZ"},
        {0, "[Hu]", "_Hun", "Hungarian", "hu_HU"},
        {0, "[Is]", "_Isl", "Icelandic", "is_IS"},
        {0, "[No]", "_Nor", "Norwegian", "no_NO"},
        {0, "[Pl]", "_Plk", "Polish", "pl_PL"},
        {0, "[Sk]", "_Sky", "Slovak", "sk_SK"},
        {0, "[Sv]", "_Sve", "Swedish", "sv_SE"},
        {1254, "[Tr]", "_Trk", "Turkish", "tr_TR"},
        {0, "[Lv]", "_Lav", "Latvia", "lv_LV"},
    };
    int32_t index = 0;
    for (const auto &row : rows) {
        text::languageState.current = index++;
        char name[32], tag[16], suffix[16];
        EXPECT_EQ(VxLangGet(name, sizeof name, tag, sizeof tag), 0u);
        EXPECT_EQ(VxLangString(suffix, sizeof suffix), 0u);
        EXPECT_STREQ(name, row.name);
        EXPECT_STREQ(tag, row.tag);
        EXPECT_STREQ(suffix, row.suffix);
        EXPECT_EQ(locale(), row.locale);
    }
}

TEST_F(Language, IsSetOnceFromALocaleThatHasFiles)
{
    for (const char *refused : {"", "fr_FR", "xx_XX", "en_us", "English"}) {
        EXPECT_EQ(VxLangSet(refused), 1u) << refused;
        EXPECT_EQ(locale(), "");
    }
    EXPECT_EQ(VxLangSet(nullptr), 1u);
    EXPECT_EQ(VxLangSet("zh_CN"), 0u);
    EXPECT_EQ(text::languageState.current, 13);
    EXPECT_EQ(VxLangSet("en_US"), 1u);
    EXPECT_EQ(locale(), "zh_CN");
    EXPECT_EQ(VxLangFree(), 0u);
    EXPECT_EQ(VxLangSet("en_US"), 0u);
    EXPECT_EQ(locale(), "en_US");
}

TEST_F(Language, BringsItsCodePageAndTakesItAway)
{
    VX::CodePageSet(1251, 1252);
    change("en_US");
    EXPECT_EQ(VxLangGetCodePage(), 1251);
    change("zh_TW");
    EXPECT_EQ(VxLangGetCodePage(), 950);
    VxLangFree();
    EXPECT_EQ(VxLangGetCodePage(), 1251);

    change("zh_TW");
    VX::CodePageSet(1253, 1252);
    VxLangFree();
    EXPECT_EQ(VxLangGetCodePage(), 1253) << "the host's later choice stands";
}

TEST_F(Language, TheCodePageIsTheToolkitsElseTheSystemsElseWestern)
{
    VX::CodePageSet(932, 1250);
    EXPECT_EQ(VxLangGetCodePage(), 932);
    VX::CodePageSet(0, 1250);
    EXPECT_EQ(VxLangGetCodePage(), 1250);
    VX::CodePageSet(0, 0);
    EXPECT_EQ(VxLangGetCodePage(), 1252);
}

TEST_F(Language, IsChangedComparesLocalesAndHoldsTheTwoOfSimplifiedChineseForOne)
{
    EXPECT_EQ(VxLangIsChanged(""), 0);
    EXPECT_EQ(VxLangIsChanged("en_US"), 1);
    EXPECT_EQ(VxLangIsChanged(nullptr), 0);
    change("en_US");
    EXPECT_EQ(VxLangIsChanged("en_US"), 0);
    EXPECT_EQ(VxLangIsChanged("en_us"), 1);
    for (const char *chinese : {"zh_CN", "zh_CHS"}) {
        change(chinese);
        EXPECT_EQ(VxLangIsChanged("zh_CN"), 0);
        EXPECT_EQ(VxLangIsChanged("zh_CHS"), 0);
        EXPECT_EQ(VxLangIsChanged("zh_TW"), 1);
    }
}

TEST_F(Language, VerifiesNamesAndTheDoubleByteKind)
{
    EXPECT_EQ(VxLangVerify(nullptr), 0);
    EXPECT_EQ(VxLangVerify("DoubleByte"), 0);
    for (const char *locale : {"ko_KR", "ja_JP", "zh_CN", "zh_CHS", "zh_TW", "th_TH"}) {
        change(locale);
        EXPECT_EQ(VxLangVerify("DoubleByte"), 1) << locale;
    }
    EXPECT_EQ(VxLangVerify("Thai"), 1);
    EXPECT_EQ(VxLangVerify("thai"), 0);
    for (const char *locale : {"zh_CN", "zh_CHS"}) {
        change(locale);
        EXPECT_EQ(VxLangVerify("Chinese"), 1);
        EXPECT_EQ(VxLangVerify("Chinese-simplified"), 1);
        EXPECT_EQ(VxLangVerify("Chinese-traditional"), 0);
    }
    change("zh_TW");
    EXPECT_EQ(VxLangVerify("Chinese"), 0);
    EXPECT_EQ(VxLangVerify("Chinese-traditional"), 1);
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
    EXPECT_EQ(from({"host", "/lang:zh_TW"}), 0u);
    EXPECT_EQ(locale(), "zh_TW");
    for (const char *word : {"-lang=", "-lang=fr_FR", "-lang", "lang=en_US", "-lang:en_US"}) {
        EXPECT_EQ(from({"host", word}), 1u) << word;
        EXPECT_EQ(locale(), "");
    }
    EXPECT_EQ(from({"-lang=en_US"}), 1u) << "the program's own name";
    EXPECT_EQ(VxLangFromCmd(2, nullptr), 1u);
}

TEST_F(Language, TextsThatDoNotFitAreCutAndReported)
{
    change("en_US");
    char name[8], tag[4];
    EXPECT_EQ(VxLangGet(name, sizeof name, nullptr, 0), 0u);
    EXPECT_STREQ(name, "English");
    EXPECT_EQ(VxLangGet(name, 7, tag, sizeof tag), 1u);
    EXPECT_STREQ(name, "Englis");
    EXPECT_STREQ(tag, "[en");
    EXPECT_EQ(VxLangGet(nullptr, 0, tag, 0), 1u);
    EXPECT_EQ(VxLangGetLocale(name, 5), 1u);
    EXPECT_EQ(VxLangString(nullptr, 8), 1u);
}

}
