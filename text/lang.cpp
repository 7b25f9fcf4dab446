// The languages of the toolkit and the one in force. What a language brings
// along is its code page; catalogues and folders ask for tag, suffix and locale.

#include "vx/lang.h"
#include "vx/lang.hpp"

#include <initializer_list>
#include <string_view>

#include "text/codepage.h"
#include "text/lang.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::text {

LanguageState languageState;

namespace {

struct Language {
    int32_t index;
    int32_t codePage; ///< 0 leaves the process's
    const char *tag;
    const char *suffix;
    const char *name;
    const char *locale;
};

// Catalogues and folders in the field are named by these texts, so their
// irregularities stay: tags of either case, one suffix for two rows of Chinese.
constexpr Language languages[] = {
    {0, 0, "", "", "", ""},
    {1, 0, "[en]", "", "English", "en_US"},
    {2, 0, "[Nl]", "_Nld", "Dutch", "nl_NL"},
    {3, 0, "[Da]", "_Dan", "Danish", "da_DK"},
    {4, 0, "[Fr]", "_Fra", "French", "fr_FR"},
    {5, 0, "[de]", "_Deu", "German", "de_DE"},
    {6, 0, "[It]", "_Ita", "Italian", "it_IT"},
    {7, 0, "[Jp]", "_Jpn", "Japanese", "ja_JP"},
    {8, 0, "[Ko]", "_Kor", "Korean", "ko_KR"},
    {9, 0, "[Pt]", "_Ptb", "Portuguese", "pt_PT"},
    {10, 0, "[Es]", "_Esn", "Spanish", "es_ES"},
    {11, 936, "[Chs]", "_Chs", "Chinese-simplified", "zh_CHS"},
    {12, 950, "[Cht]", "_Cht", "Chinese-traditional", "zh_TW"},
    {13, 936, "[Ch]", "_Chs", "Chinese", "zh_CN"},
    {14, 874, "[Th]", "_Tha", "Thai", "th_TH"},
    {15, 1253, "[El]", "_Ell", "Greek", "el_GR"},
    {16, 0, "[Fi]", "_Fin", "Finnish", "fi_FI"},
    {17, 0, "[Ru]", "_Rus", "Russian", "ru_RU"},
    {18, 0, "[Cs]", "_Csy", "Czech", "cs_CZ"},
    {19, 0, "[Hu]", "_Hun", "Hungarian", "hu_HU"},
    {20, 0, "[Is]", "_Isl", "Icelandic", "is_IS"},
    {21, 0, "[No]", "_Nor", "Norwegian", "no_NO"},
    {22, 0, "[Pl]", "_Plk", "Polish", "pl_PL"},
    {23, 0, "[Sk]", "_Sky", "Slovak", "sk_SK"},
    {24, 0, "[Sv]", "_Sve", "Swedish", "sv_SE"},
    {25, 1254, "[Tr]", "_Trk", "Turkish", "tr_TR"},
    {26, 0, "[Lv]", "_Lav", "Latvia", "lv_LV"},
    {-1, 0, "", "", "", ""},
};

constexpr int32_t chineseSimplified = 11, chinese = 13;

const Language &currentLanguage() noexcept
{
    return languages[languageState.current];
}

const Language *findLanguage(std::string_view locale) noexcept
{
    for (const Language *row = &languages[1]; row->index >= 0; ++row)
        if (row->locale == locale)
            return row;
    return nullptr;
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> choices) noexcept
{
    for (std::string_view choice : choices)
        if (text == choice)
            return true;
    return false;
}

/** What a language changes in the process. */
void setUp(const Language &language) noexcept
{
    if (language.codePage == 0)
        return;
    languageState.codePageBefore = multibyteCodePage();
    setMultibyteCodePage(language.codePage);
}

/** Undo setUp(), unless the host has chosen another code page since. */
void tearDown(const Language &language) noexcept
{
    if (language.codePage != 0 && multibyteCodePage() == language.codePage)
        setMultibyteCodePage(languageState.codePageBefore);
}

}

}

using namespace vx::text;

uint32_t VxLangSet(const char *locale)
{
    if (!locale || !*locale || languageState.current != 0)
        return 1;
    const Language *language = findLanguage(locale);
    if (!language || !VxPathLangExist(locale))
        return 1;
    languageState.current = language->index;
    setUp(*language);
    return 0;
}

uint32_t VxLangGet(char *name, int32_t nameSize, char *tag, int32_t tagSize)
{
    const Language &language = currentLanguage();
    uint32_t nameCut = name ? VxStrCpy(name, language.name, nameSize) : 0;
    uint32_t tagCut = tag ? VxStrCpy(tag, language.tag, tagSize) : 0;
    return nameCut | tagCut;
}

uint32_t VxLangString(char *buf, int32_t size)
{
    return VxStrCpy(buf, currentLanguage().suffix, size);
}

uint32_t VxLangGetLocale(char *buf, int32_t size)
{
    return VxStrCpy(buf, currentLanguage().locale, size);
}

int32_t VxLangIsChanged(const char *locale)
{
    if (!locale)
        return 0;
    const Language &language = currentLanguage();
    if (language.index == chineseSimplified || language.index == chinese)
        return !isOneOf(locale, {"zh_CN", "zh_CHS"});
    return locale != std::string_view(language.locale);
}

int32_t VxLangVerify(const char *kind)
{
    if (!kind)
        return 0;
    std::string_view name = currentLanguage().name;
    if (kind == std::string_view("DoubleByte"))
        return isOneOf(name, {"Korean", "Japanese", "Chinese", "Chinese-simplified", "Chinese-traditional",
                              "Thai"});
    if (isOneOf(name, {"Chinese", "Chinese-simplified"}))
        return isOneOf(kind, {"Chinese", "Chinese-simplified"});
    return kind == name;
}

int32_t VxLangGetCodePage()
{
    return codePage().number;
}

uint32_t VxLangFromCmd(int32_t argc, char **argv)
{
    if (!argv)
        return 1;
    for (int32_t i = 1; i < argc && argv[i]; ++i) {
        std::string_view argument = argv[i];
        if (argument.starts_with("-lang=") || argument.starts_with("/lang:"))
            return VxLangSet(argv[i] + 6);
    }
    return 1;
}

uint32_t VxLangFree()
{
    tearDown(currentLanguage());
    languageState.current = 0;
    return 0;
}

void VX::CodePageSet(int32_t multibyte, int32_t system)
{
    setCodePage(multibyte, system);
}
