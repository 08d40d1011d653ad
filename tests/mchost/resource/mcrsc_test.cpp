// The compiler of resource files, run as a program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "mchost/mdl/dialog.h"
#include "mchost/resource/container.h"
#include "tests/support/compiler_fixture.h"

namespace {

namespace fs = std::filesystem;

class Mcrsc : public CompilerTest {
  protected:
    Mcrsc() : CompilerTest("mcrsc") {}
};

TEST_F(Mcrsc, CompilesListsOfTwoLanguagesAndADialog) {
    source("en.toml", "language = \"en\"\n[[list]]\nid = 7\n[list.text]\n1 = \"Blue %d%%\"\n");
    source("no.toml", "language = \"no\"\n[[list]]\nid = 7\n[list.text]\n1 = \"Bl\xc3\xa5 %d%% \xe2\x82\xac\"\n");
    source("d.toml",
           "[[dialog]]\nid = 5\nwidth = 10\nheight = 20\ntitle = { en = \"Choose\", no = \"Velg\" }\n"
           "[[dialog.item]]\nkind = \"option button\"\nid = 1\nx = 1\ny = 2\nwidth = 30\naccess = \"p->kind\"\n"
           "rows = [ { value = 4, label = \"Four\" } ]\n"
           "[hooks]\nadd = 9\n[[menu]]\nid = 6\nentry = [ { value = 1, hook = \"add\", label = \"Add\" } ]\n");
    const Outcome outcome = run("-o out.rsc en.toml no.toml d.toml");
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(outcome.output, "");
    const host::ResourceContents contents = host::readContainer(folder / "out.rsc");
    EXPECT_EQ(contents.strings.at({7, 1}).textIn("no"), "Bl\xe5 %d%% \x80");
    const host::DialogLayout& dialog = contents.dialogs.at(5);
    EXPECT_EQ(dialog.title.textIn("no"), "Velg");
    ASSERT_EQ(dialog.items.size(), 1u);
    EXPECT_EQ(dialog.items[0].kind, ITEM_OPTION_BUTTON);
    EXPECT_EQ(dialog.items[0].height, 20);
    EXPECT_EQ(dialog.items[0].rows.at(0).value, 4);
    EXPECT_EQ(contents.menus.at(6).entries.at(0).hook, 9);
}

TEST_F(Mcrsc, EachFaultIsOneLineAndTheOldFileStays) {
    const std::string head = "language = \"en\"\n[[list]]\nid = 20005\n[list.text]\n";
    const std::string dialog = "[[dialog]]\nid = 5\nwidth = 10\nheight = 20\n";
    struct Case {
        std::string text;
        const char* line;
    };
    const Case cases[] = {
        {head + "14 = \"\xe6\x97\xa5\"\n",
         "x.toml:5: list 20005, number 14: the character \"\xe6\x97\xa5\" has no code"},
        {head + "14 = \"" + std::string(512, 'a') + "\"\n", "number 14: has 512 characters; 511 is the most"},
        {head + "1 = \"a\"\n1 = \"b\"\n", "x.toml:6"},
        {head + "1 = \"a\"\n01 = \"b\"\n", "has a text in en already"},
        {head + "one = \"a\"\n", "number one: a message goes under a whole number"},
        {head + "99999999999 = \"a\"\n", "a message goes under a whole number"},
        {head + "1 = 5\n", "must be a text in quotes"},
        {head + "1 = \"a\\u0000b\"\n", "holds a NUL"},
        {"[[list]]\nid = 1\n[list.text]\n1 = \"a\"\n", "\"language\" is missing"},
        {"language = \"no\"\n[[list]]\nid = 1\n[list.text]\n1 = \"a\"\n", "list 1, number 1: has no English text"},
        {dialog + "titel = \"x\"\n", "x.toml:5: unknown key \"titel\""},
        {dialog + "title = { no = \"x\" }\n", "dialog 5, title: has no English text"},
        {dialog + dialog, "dialog 5: comes twice"},
        {dialog + "[[dialog.item]]\nkind = \"buton\"\nid = 1\nx = 1\ny = 1\nwidth = 1\n",
         "unknown item kind \"buton\""},
        {dialog + "[[dialog.item]]\nkind = \"text\"\nid = 1\nx = 1\ny = 1\n", "\"width\" is missing"},
        {dialog + "[[dialog.item]]\nkind = \"text\"\nid = 1\nx = 1\ny = 1\nwidth = 1\nformat = \"%d %d\"\n",
         "dialog 5, text 1: the format \"%d %d\" must have one conversion"},
        {dialog + "[[dialog.item]]\nkind = \"text\"\nid = 1\nx = 1\ny = 1\nwidth = 1\nrows = [ { value = 1 } ]\n",
         "dialog 5, text 1: only option buttons have rows"},
        {"[[icon]]\nid = 1\nsign = \"i\"\nrows = [\"##\", \"#\"]\n", "must have as many columns as rows"},
        {"[[menu]]\nid = 6\n", "menu 6: has no entries"},
        {"[[icon\n", "x.toml:1: "},
        {dialog + "hook = \"none\"\n", "x.toml:5: there is no hook \"none\" in [hooks] of any source"},
        {dialog + "name = \"two words\"\n", "the name \"two words\" must be letters and digits"},
        {dialog + "name = \"box\"\n[[dialog.item]]\nkind = \"text\"\nid = 1\nname = \"id\"\nx = 1\ny = 1\nwidth = 1\n",
         "the name \"id\" comes twice in \"box\""},
        {head + "1 = { name = \"one\", text = \"a\" }\n", "the dialog or list of \"one\" has no name itself"},
        {"language = \"en\"\n[[list]]\nid = 7\nname = \"l\"\n[list.text]\n1 = { name = \"one\", text = \"%y\" }\n",
         "takes a value of a kind that no C++ type stands for"},
    };
    source("good.toml", head + "1 = \"kept\"\n");
    ASSERT_EQ(run("-o out.rsc good.toml").status, 0);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        source("x.toml", c.text);
        const Outcome outcome = run("-o out.rsc x.toml");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.output, testing::HasSubstr(c.line));
        EXPECT_EQ(host::readContainer(folder / "out.rsc").strings.at({20005, 1}).textIn("en"), "kept");
    }
}

TEST_F(Mcrsc, NamesOfNumbersBecomeConstants) {
    const std::string dialog =
        "[[dialog]]\nid = 5\nname = \"choice\"\nwidth = 10\nheight = 20\nhook = \"choose\"\n"
        "[[dialog.item]]\nkind = \"text\"\nid = 7\nname = \"size\"\nx = 1\ny = 2\nwidth = 30\nhook = 12\n";
    source("d.toml", dialog);
    source("m.toml",
           "language = \"en\"\n[hooks]\nchoose = 11\n[[list]]\nid = 3\nname = \"told\"\n[list.text]\n"
           "1 = { name = \"plain\", text = \"100%%\" }\n2 = { name = \"values\", text = \"%-*s %5.2f %ld\" }\n");
    ASSERT_EQ(run("-o out.rsc --names ids.h d.toml m.toml").output, "");
    const auto read = [&] {
        std::ifstream file(folder / "ids.h");
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    for (const char* line :
         {"namespace ids::choice {\nconstexpr int32_t id{5};\nconstexpr mdl::ItemId size{1683257460, 7};\n",
          "namespace ids::hooks {\nconstexpr int32_t choose{11};\n", "constexpr mdl::Message<3> plain{1};\n",
          "constexpr mdl::Message<3, int, const char*, double, long> values{2};\n"})
        EXPECT_THAT(read(), testing::HasSubstr(line));
    const host::DialogLayout layout = host::readContainer(folder / "out.rsc").dialogs.at(5);
    EXPECT_EQ(layout.hook, 11);
    EXPECT_EQ(layout.items.at(0).hook, 12);

    const auto written = fs::last_write_time(folder / "ids.h");
    source("d.toml", "# the same names\n" + dialog);
    ASSERT_EQ(run("-o out.rsc --names ids.h d.toml m.toml").status, 0);
    EXPECT_EQ(fs::last_write_time(folder / "ids.h"), written);
    EXPECT_EQ(run("-o out.rsc --names no/ids.h d.toml m.toml").output,
              "mcrsc: no/ids.h: can't be written; make sure that its folder is there and can be written to, and that "
              "there is room\n");
}

TEST_F(Mcrsc, ATranslationMustTakeTheSameValues) {
    struct Case {
        const char *english, *norwegian;
        int status;
    };
    const Case cases[] = {
        {"%s at %d", "%s ved %d", 0},    {"%s at %d", "%d ved %s", 1}, {"%5.2f m", "%.3f meter", 0},
        {"100%% of %s", "%s: 100%%", 0}, {"%d files", "filer", 1},     {"%ld", "%d", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.english);
        source("en.toml", std::string("language = \"en\"\n[[list]]\nid = 1\n[list.text]\n1 = \"") + c.english + "\"\n");
        source("no.toml",
               std::string("language = \"no\"\n[[list]]\nid = 1\n[list.text]\n1 = \"") + c.norwegian + "\"\n");
        EXPECT_EQ(run("-o out.rsc en.toml no.toml").status, c.status);
    }
}

TEST_F(Mcrsc, TellsWrongCallsFromFilesThatCannotBeUsed) {
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run("-o out.rsc").status, 2);
    EXPECT_EQ(run("--help").status, 0);
    const Outcome missing = run("-o out.rsc missing.toml");
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.output, testing::HasSubstr("mcrsc: missing.toml: "));
    source("good.toml", "");
    EXPECT_EQ(run("-o no/such/out.rsc good.toml").status, 1);
}

}  // namespace
