#include "vx/msg.h"

#include "frame/catalogue.h"
#include "frame/map_state.h"
#include "frame/message_table.h"
#include "frame/modules.h"
#include "tests/support/test.h"
#include "text/lang.h"
#include "vx/tools.h"

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

struct Window {
    int calls;
    int32_t kind, result, answer;
    char text[100];
} window;

struct Messages : testing::Test {
    Messages() : catalogue_(frame::modules().tools.messages)
    {
        VxMsgFree();
        VxMsgLoadFile("Tools.MSG", &frame::modules().tools.messages);
        window = {};
        VgMsgGuiIsUp = 1;
        host_(106, [](int32_t kind, int32_t, const char *text, int32_t *answer) {
            window = {window.calls + 1, kind, window.result, window.answer, {}};
            std::strncpy(window.text, text, sizeof window.text - 1);
            *answer = window.answer;
            return window.result;
        });
    }

    ~Messages() override
    {
        VgMsgGuiIsUp = 0;
        frame::modules().tools.messages = catalogue_;
        VxMsgFree();
    }

    test::Host host_;

    int32_t catalogue_;
};

TEST_F(Messages, AMessageGoesToTheWindowElseItIsPrintedAndAQuestionAnsweredYes)
{
    test::CapturedOutput output;
    EXPECT_EQ(VxMessage("100%d"), 0u);
    EXPECT_TRUE(window.kind == 1 && window.text == std::string("100%d"));
    window.result = -3;
    EXPECT_EQ(VxMessage("again"), 1u);
    VgMsgGuiIsUp = 0;
    EXPECT_EQ(VxMessage("no window"), 0u);
    VgMsgGuiIsUp = 1;
    host_(106, nullptr);
    EXPECT_FALSE(VxMessage("no function") || VxMessage2(1));
    EXPECT_EQ(output.text(), "no window\nno function\n");
}

TEST_F(Messages, AQuestionIsAskedWithRealLineBreaksAndOnlyAPositiveAnswerIsYes)
{
    for (auto [answer, failed, result] : {std::tuple{1, 0, 0u}, {0, 0, 1u}, {-1, 0, 1u}, {1, 1, 1u}}) {
        window.answer = answer;
        window.result = failed;
        EXPECT_EQ(VxMessage2(1), result) << answer << ", " << failed;
        EXPECT_EQ(window.kind, 2);
        EXPECT_STREQ(window.text, "The file already exists.\nDo you want to replace it?");
    }
    for (int32_t number : {11, INT32_MAX, INT32_MIN}) {
        VxMessage2(number);
        EXPECT_STREQ(window.text, " ") << number;
    }
}

TEST_F(Messages, WithoutMemoryNothingIsAsked)
{
    window.answer = 1;
    test::refusingEachAllocation([] {
        int before = window.calls;
        uint32_t result = VxMessage2(1);
        EXPECT_EQ(result, window.calls == before ? 1u : 0u);
    });
}

struct Maps : testing::Test {
    Maps() { folder_.write("file", "contents"); }
    ~Maps() override
    {
        while (!frame::maps().open.empty())
            VxUnMap(frame::maps().open.back().view);
    }

    test::TempFolder folder_;
    std::string file_ = folder_.text("file");
};

TEST_F(Maps, AFileIsSeenThroughItsViewAndWhatIsWrittenReachesIt)
{
    for (int32_t mode : {0, 1, 2}) {
        SCOPED_TRACE(mode);
        folder_.write("file", "contents");
        int64_t size = 0;
        auto view = static_cast<char *>(VxMap(file_.c_str(), mode, &size));
        ASSERT_TRUE(view && size == 8);
        EXPECT_EQ(mode == 1 ? "contents" : std::string(view, 8), "contents");
        if (mode != 0)
            view[0] = 'C';
        EXPECT_EQ(VxUnMap(view), 0u);
        EXPECT_EQ(VxUnMap(view), 1u);
        EXPECT_EQ(folder_.read("file"), mode == 0 ? "contents" : "Contents");
    }
}

TEST_F(Maps, WhatCannotBeMappedGivesNull)
{
    folder_.write("empty", "");
    int64_t size = -7;
    for (int32_t mode : {0, 1, 2})
        EXPECT_EQ(VxMap(folder_.text("empty").c_str(), mode, &size), nullptr);
    EXPECT_EQ(VxMap(folder_.text("missing").c_str(), 0, &size), nullptr);
    EXPECT_FALSE(fs::exists(folder_.native() / "missing"));
    EXPECT_TRUE(!VxMap(nullptr, 0, &size) && !VxMap(file_.c_str(), 0, nullptr));
    EXPECT_TRUE(size == -7 && VxUnMap(&size) == 1);
}

TEST_F(Maps, ThereIsRoomFor1023)
{
    int64_t size = 0;
    for (int i = 0; i < 1023; ++i)
        ASSERT_NE(VxMap(file_.c_str(), 0, &size), nullptr);
    EXPECT_EQ(VxMap(file_.c_str(), 0, &size), nullptr);
    EXPECT_EQ(VxUnMap(frame::maps().open[500].view), 0u);
    EXPECT_NE(VxMap(file_.c_str(), 0, &size), nullptr);
}

TEST_F(Maps, ARefusalLeavesTheTableAsItWas)
{
    auto body = [&] {
        int64_t size = -7;
        void *view = VxMap(file_.c_str(), 0, &size);
        EXPECT_EQ(size, view ? 8 : -7);
        EXPECT_EQ(frame::maps().open.size(), view ? 1u : 0u);
        VxUnMap(view);
        EXPECT_TRUE(frame::maps().open.empty());
        frame::maps().open.shrink_to_fit();
    };
    frame::maps().open.shrink_to_fit();
    test::refusingEachAllocation(body);
    test::refusingEachVerb(body, "mapFile");
}

}
