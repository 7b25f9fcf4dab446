#include "frame/catalogue.h"

#include "frame/message_table.h"
#include "tests/support/test.h"
#include "text/lang.h"
#include "vx/msg.h"

using namespace vx;
using frame::Catalogue;

namespace {

constexpr char translations[] = "0,zero\n[It]0,nulla\n[FR]0,zero fr\n1,one\n\n# comment\n[fr]x,un\n2,two\n"
                                "[Fr]2,\n[Fr\n[Fr]\n3,three";

Texts read(std::string_view file, std::string_view tag = "")
{
    std::vector<char> bytes(file.begin(), file.end());
    bytes.push_back('\0');
    Catalogue catalogue(std::move(bytes), tag);
    Texts texts;
    for (int32_t i = 0; i < catalogue.count(); ++i)
        texts.emplace_back(catalogue.text(i));
    EXPECT_TRUE(!catalogue.text(catalogue.count()) && !catalogue.text(-1));
    return texts;
}

TEST(CatalogueFormat, AMessagesNumberIsItsPositionAmongTheLinesThatDefineOne)
{
    const Texts translated = {"zero fr", "un", "two", "three"};
    const std::tuple<const char *, const char *, const char *, Texts> cases[] = {
        {"labels do not count",
         "7,zero\n7,one\r\nx,two, and more\n,three",
         "",
         {"zero", "one", "two, and more", "three"}},
        {"no text, no number",
         "0,zero\n1,\n2\n\n#3,comment\n4 # ,comment\n5,five # not one\n6,\r\n7, \n",
         "",
         {"zero", "five # not one", " "}},
        {"comments only", "# only\n# comments\n", "", {}},
        {"blanks behind the first comments", "# a\n \t\r\n # b, c\n\n  0,zero\n", "", {"zero"}},
        {"a translation replaces the message above it", translations, "[Fr]", translated},
        {"without a language none counts", translations, "", {"zero", "one", "two", "three"}},
        {"a second translation is a message",
         "0,zero\n[Fr]0,a\n[Fr]0,b\n[Fr]0,c\n1,one\n[Fr]1,un",
         "[Fr]",
         {"a", "b", "c", "un"}},
        {"so is one without a message above", "[Fr]0,a\n0,zero\n[Fr]0,b", "[Fr]", {"a", "b"}},
    };
    for (const auto &[what, file, tag, texts] : cases)
        EXPECT_EQ(read(file, tag), texts) << what;
}

/** No catalogue loaded, no language, and a folder for files. */
struct Catalogues : testing::Test {
    Catalogues() { VxMsgFree(); }
    ~Catalogues() override
    {
        VxMsgFree();
        text::languageState.current = 0;
    }

    int32_t load(std::string_view text, const char *name = "Test.MSG")
    {
        folder_.write(name, text);
        int32_t id = -1;
        EXPECT_EQ(VxMsgLoadFile(folder_.text(name).c_str(), &id), 0u);
        return id;
    }

    test::TempFolder folder_;
};

TEST_F(Catalogues, ALookUpByIdOrByNameNeverFails)
{
    constexpr int32_t german = 5;
    text::languageState.current = german;
    const int32_t id = load("0,zero\n1,one\n[de]1,eins\n");
    text::languageState.current = 0;
    EXPECT_STREQ(VxMsg(id, 1), "eins") << "the language at loading decides";
    EXPECT_STREQ(VxMsgFile(folder_.text("Test.MSG").c_str(), 1), "eins");
    for (int32_t bad : {-1, 2, INT32_MAX, INT32_MIN})
        EXPECT_EQ(VxMsg(id, bad) + std::string(VxMsg(bad, 0)), "  ");
    EXPECT_EQ(VxMsgFile("Other.MSG", 0) + std::string(VxMsgFile(nullptr, 0)), "  ");
}

TEST_F(Catalogues, AMissingFileAndOneTooManyArePrinted)
{
    int32_t id = -1;
    const std::string missing = folder_.text("missing"), endless(5000, 'n');
    test::CapturedOutput output;
    for (const char *name : {missing.c_str(), endless.c_str(), static_cast<const char *>(nullptr)})
        EXPECT_EQ(VxMsgLoadFile(name, &id), 1u);
    for (int32_t i = 0; i < 130; ++i)
        ASSERT_EQ(load("0,zero"), i);
    EXPECT_EQ(VxMsgLoadFile(folder_.text("Test.MSG").c_str(), &id), 1u);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(output.text(), "Unable to load message file " + missing + ".\n" +
                                 "Unable to load message file " + endless + ".\n" +
                                 "Unable to load more than 130 message files.\n");
    VxMsgFree();
    EXPECT_EQ(load("# a file without messages leaves the id"), -1);
    EXPECT_EQ(load("0,again"), 0);
}

TEST_F(Catalogues, WhatCannotBeReadLeavesTheId)
{
    folder_.write("Test.MSG", "0,zero\n1,one\n");
    std::string name = folder_.text("Test.MSG");
    auto body = [&] {
        VxMsgFree();
        int32_t id = -1;
        uint32_t result = VxMsgLoadFile(name.c_str(), &id);
        bool there = *VxMsg(0, 0) == 'z';
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(id, there ? 0 : -1);
    };
    test::refusingEachAllocation(body);
    test::refusingEachVerb(body, "openFile");
    test::refusingEachVerb(body, "fileStatus");
}

TEST_F(Catalogues, TheShippedTextsStandAtTheirLabels)
{
    int32_t id = -1;
    ASSERT_EQ(VxMsgLoadFile("Tools.MSG", &id), 0u) << "run from the folder of the product";
    const std::vector<char> &bytes = frame::messages().entries[static_cast<size_t>(id)].catalogue.bytes();
    for (int32_t number = 0; number < 230; ++number) {
        const char *text = VxMsg(id, number);
        // The label stands before the text, ended by a comma and begun by the end of the line above.
        const char *label = text - 1;
        while (label > bytes.data() && label[-1] != '\0' && label[-1] != '\n')
            --label;
        EXPECT_EQ(std::string(label, text), std::to_string(number) + ",");
    }
}

}
