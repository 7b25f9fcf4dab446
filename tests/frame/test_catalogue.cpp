#include "frame/catalogue.h"

#include <random>

#include <gtest/gtest.h>

#include "frame/message_table.h"
#include "tests/support/captured_output.h"
#include "tests/support/conversions.h"
#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"
#include "text/lang.h"
#include "vx/lang.h"
#include "vx/msg.h"

using namespace vx;
using frame::Catalogue;

namespace {

using Texts = std::vector<std::string>;

Texts read(std::string_view file, std::string_view tag = "")
{
    std::vector<char> bytes(file.begin(), file.end());
    bytes.push_back('\0');
    Catalogue catalogue(std::move(bytes), tag);
    Texts texts;
    for (int32_t i = 0; i < catalogue.count(); ++i)
        texts.emplace_back(catalogue.text(i));
    EXPECT_EQ(catalogue.text(catalogue.count()), nullptr);
    EXPECT_EQ(catalogue.text(-1), nullptr);
    return texts;
}

TEST(CatalogueFormat, AMessagesNumberIsItsPosition)
{
    EXPECT_EQ(read("7,zero\n7,one\r\nx,two, and more\n,three"), (Texts{"zero", "one", "two, and more", "three"}));
}

TEST(CatalogueFormat, WhatDefinesNoTextTakesNoNumber)
{
    EXPECT_EQ(read("0,zero\n1,\n2\n\n#3,comment\n4 # ,comment\n5,five # not one\n6,\r\n7, \n"),
              (Texts{"zero", "five # not one", " "}));
    EXPECT_EQ(read("# only\n# comments\n"), Texts{});
    EXPECT_EQ(read("# no end"), Texts{});
}

TEST(CatalogueFormat, BlanksBehindTheHeadersCommentsAreSkipped)
{
    EXPECT_EQ(read("# a\n \t\r\n # b, c\n\n  0,zero\n"), (Texts{"zero"}));
}

TEST(CatalogueFormat, ATranslationReplacesTheMessageAboveIt)
{
    const char file[] = "0,zero\n[It]0,nulla\n[FR]0,zero fr\n1,one\n\n# comment\n[fr]x,un\n2,two\n[Fr]2,\n[Fr\n[Fr]\n3,three";
    EXPECT_EQ(read(file, "[Fr]"), (Texts{"zero fr", "un", "two", "three"}));
    EXPECT_EQ(read(file), (Texts{"zero", "one", "two", "three"}));
    EXPECT_EQ(read(file, "[De]"), (Texts{"zero", "one", "two", "three"}));
}

TEST(CatalogueFormat, ASecondTranslationIsAMessage)
{
    EXPECT_EQ(read("0,zero\n[Fr]0,a\n[Fr]0,b\n[Fr]0,c\n1,one\n[Fr]1,un", "[Fr]"), (Texts{"a", "b", "c", "un"}));
    EXPECT_EQ(read("[Fr]0,a\n0,zero\n[Fr]0,b", "[Fr]"), (Texts{"a", "b"}));
}

TEST(CatalogueFormat, EveryTruncationIsRead)
{
    const std::string file = "# head\n0,zero\r\n[Fr]0,un\r\n1,one\n";
    for (size_t size = 0; size <= file.size(); ++size) {
        Texts texts = read(file.substr(0, size), "[Fr]");
        EXPECT_EQ(texts.size(), size < 10 ? 0u : size < 28 ? 1u : 2u) << size;
    }
}

// Lines of every kind in any order, against what each kind means.
TEST(CatalogueFormat, ReadingAgreesWithAModelOnRandomFiles)
{
    unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        std::string file = random() % 2 ? "# head, line\n" : "";
        Texts expected;
        bool awaits = false;
        for (auto i = random() % 40; i > 0; --i) {
            std::string text = "text " + std::to_string(random());
            const char *end = random() % 2 ? "\n" : "\r\n";
            switch (random() % 8) {
            case 0: file += std::string("x#,comment") + end; break;
            case 1: file += std::string("[It]1,") + text + end; break;
            case 2: file += std::string("1,") + end; break;
            case 3: file += std::string("no comma") + end; break;
            case 4:
            case 5:
                file += "[fR]1," + text + end;
                if (awaits)
                    expected.back() = text;
                else
                    expected.push_back(text);
                awaits = false;
                break;
            default:
                file += "1," + text + end;
                expected.push_back(text);
                awaits = true;
            }
        }
        EXPECT_EQ(read(file, "[Fr]"), expected) << file;
    }
}

TEST(CatalogueFormat, BinaryNoiseIsReadWithoutHarm)
{
    unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::string alphabet("1,\n\r#[]Fr \0\xFF\x81x", 15);
    for (int round = 0; round < 300; ++round) {
        std::string file(random() % 3000, ' ');
        for (char &c : file)
            c = alphabet[random() % alphabet.size()];
        Texts alone = read("0,first\n" + file + "\n1,last\n", "[Fr]");
        ASSERT_GE(alone.size(), 2u);
        EXPECT_EQ(alone.back(), "last");
    }
}

/** No catalogue loaded, no language, and a folder for files. */
class Catalogues : public testing::Test {
protected:
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

TEST_F(Catalogues, ALookUpNeverFails)
{
    int32_t id = load("0,zero\n1,one\n");
    EXPECT_STREQ(VxMsg(id, 0), "zero");
    EXPECT_STREQ(VxMsg(id, 1), "one");
    for (int32_t number : {-1, 2, INT32_MAX, INT32_MIN})
        EXPECT_STREQ(VxMsg(id, number), " ");
    for (int32_t unknown : {-1, id + 1, 1000, INT32_MAX, INT32_MIN})
        EXPECT_STREQ(VxMsg(unknown, 0), " ");
}

TEST_F(Catalogues, ACatalogueIsKnownByTheNameGiven)
{
    load("0,zero\n");
    std::string name = folder_.text("Test.MSG"), other = name;
    other.back() = 'g';
    EXPECT_STREQ(VxMsgFile(name.c_str(), 0), "zero");
    EXPECT_STREQ(VxMsgFile(name.c_str(), 1), " ");
    EXPECT_STREQ(VxMsgFile(other.c_str(), 0), " ");
    EXPECT_STREQ(VxMsgFile(nullptr, 0), " ");
}

TEST_F(Catalogues, AFileWithoutMessagesLeavesTheId)
{
    for (const char *text : {"", "x", "\n", "# comment\n", "0,\n1\n"})
        EXPECT_EQ(load(text), -1) << text;
    std::filesystem::create_directory(folder_.native() / "Folder.MSG");
    int32_t id = -1;
    EXPECT_EQ(VxMsgLoadFile(folder_.text("Folder.MSG").c_str(), &id), 0u);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(load("0,zero"), 0);
}

TEST_F(Catalogues, AMissingFileIsPrinted)
{
    int32_t id = -1;
    std::string missing = folder_.text("missing"), endless(5000, 'n');
    test::CapturedOutput output;
    EXPECT_EQ(VxMsgLoadFile(missing.c_str(), &id), 1u);
    EXPECT_EQ(VxMsgLoadFile(endless.c_str(), &id), 1u);
    EXPECT_EQ(VxMsgLoadFile(nullptr, &id), 1u);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(output.text(),
              "Unable to load message file " + missing + ".\nUnable to load message file " + endless + ".\n");
}

TEST_F(Catalogues, ThereIsRoomFor130)
{
    for (int32_t i = 0; i < 130; ++i)
        ASSERT_EQ(load("0,zero"), i);
    int32_t id = -1;
    test::CapturedOutput output;
    EXPECT_EQ(VxMsgLoadFile(folder_.text("Test.MSG").c_str(), &id), 1u);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(output.text(), "Unable to load more than 130 message files.\n");
    EXPECT_STREQ(VxMsg(129, 0), "zero");
    EXPECT_EQ(VxMsgFree(), 0u);
    EXPECT_STREQ(VxMsg(0, 0), " ");
    EXPECT_EQ(load("0,again"), 0);
}

TEST_F(Catalogues, TheLanguageAtLoadingDecides)
{
    std::string file = "0,plain\n";
    Texts tags(27);
    for (int32_t row = 1; row <= 26; ++row) {
        char tag[9];
        text::languageState.current = row;
        VxLangGet(nullptr, 0, tag, sizeof tag);
        tags[static_cast<size_t>(row)] = tag;
        file += std::string(tag) + "0,text of " + tag + "\n";
    }
    for (int32_t row = 1; row <= 26; ++row) {
        text::languageState.current = row;
        int32_t id = load(file);
        text::languageState.current = 0;
        EXPECT_EQ(VxMsg(id, 0), "text of " + tags[static_cast<size_t>(row)]);
    }
    EXPECT_STREQ(VxMsg(load(file), 0), "plain");
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
    const struct {
        int32_t number;
        const char *conversions;
    } formats[] = {{2, "s"}, {3, "s"}, {4, "s"}, {45, "s"}, {46, "s"}, {124, "dd"}, {125, "d"}};
    Texts conversions(230);
    for (const auto &format : formats)
        conversions[static_cast<size_t>(format.number)] = format.conversions;
    for (int32_t number = 0; number < 230; ++number) {
        const char *text = VxMsg(id, number);
        // The label stands before the text, ended by a comma and begun by the end of the line above.
        const char *label = text - 1;
        while (label > bytes.data() && label[-1] != '\0' && label[-1] != '\n')
            --label;
        EXPECT_EQ(std::string(label, text), std::to_string(number) + ",");
        EXPECT_EQ(test::conversions(text), conversions[static_cast<size_t>(number)]) << number;
    }
    EXPECT_STREQ(VxMsg(id, 230), " ");
    EXPECT_LT(std::string(VxMsg(id, 166)).size(), 48u);
    for (const char *name : {"Pelmor.MSG", "PelmorFailure.MSG", "Math.MSG", "Dmgr.MSG"}) {
        int32_t other = -1;
        EXPECT_EQ(VxMsgLoadFile(name, &other), 0u);
        EXPECT_GE(other, 0) << name;
    }
}

}
