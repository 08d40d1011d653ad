// The application symbols, run by mchost as a user would: symbols of drawings counted into lists that materials prints,
// doubtful ones marked, and input that is wrong.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "mchost/mdl/transform.h"
#include "tests/apps/label_drawing.h"
#include "tests/support/application_test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

const std::string examples = PROJECT_SOURCE_DIR "/apps/symbols/examples/";

class Symbols : public ApplicationTest {
  protected:
    Symbols() : ApplicationTest("symbols") {}

    // A drawing with a circle of radius 5 for each text, which stands below it.
    void draw(const std::string& name, const std::vector<const char*>& texts) const {
        const host::Session session;
        const std::string file = (folder_ / name).string();
        fs::create_directories(fs::path(file).parent_path());
        ASSERT_EQ(mdlSystem_createDesignFile(file.c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_SUCCESS);
        const mdl::CurrTransScope masterUnits(mdl::CurrTransScope::Begin::masterUnits);
        double x = 0;
        for (const char* text : texts) {
            const Point3d center = {x, 0, 0}, below = {x, -9, 0};
            const TextSize size = {1, 2, 2, 1};
            ASSERT_EQ(mdlEllipse_create(dgnBufP, nullptr, &center, 5, 5, nullptr, 0), MDL_SUCCESS);
            ASSERT_NE(mdlElement_add(dgnBufP), 0u);
            ASSERT_EQ(mdlText_create(dgnBufP, nullptr, text, &below, nullptr, &size, nullptr, 0), MDL_SUCCESS);
            ASSERT_NE(mdlElement_add(dgnBufP), 0u);
            x += 100;
        }
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    // Lines of a file of symbols for those circles.
    static std::string kind(const std::string& name, const std::string& pattern, const std::string& item) {
        return "SYMBOL \"" + name + "\"\nBASE circle 5\nBOX -1 -10 20 -6\nTEXT " + pattern + "\nITEM " + item + "\n";
    }
    // The items of the list that is made.
    std::string items(const std::string& lines, const std::string& drawings) const {
        write("s.txt", lines);
        const Outcome outcome = run("s.txt " + drawings + " --overwrite");
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return read("s-list.txt");
    }
};

TEST_F(Symbols, TheExampleGoesFromDrawingsToPages) {
    if (!canRun("python3")) GTEST_SKIP() << "there is no python3";
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "python3 can't load libraries that have sanitizers";
#endif
    ASSERT_EQ(shell("MCLIB_LIBRARIES=" BUILD_DIR "/lib python3 " + examples + "plant.py plant").status, 0);
    const std::string before = read("plant/sheet-1.mcd");
    const Outcome outcome = run(examples + "plant.txt plant --mark doubtful");
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("52 symbols in 3 drawings"));
    EXPECT_THAT(outcome.output, HasSubstr("pump \"P-1O3\", \"5.5 kW\", 1 error; it isn't counted"));
    EXPECT_EQ(read("plant/sheet-1.mcd"), before);
    EXPECT_FALSE(fs::exists(folder_ / "doubtful/sheet-3.mcd")) << "nothing is in doubt there";
    {
        const Drawing marked(folder_ / "doubtful/sheet-2.mcd");
        ASSERT_EQ(marked.count(), 1u);
        EXPECT_EQ(marked.text(0, 1), "gate valve \"V-2O7\", \"DN 50\", 1 error");
        EXPECT_NEAR(marked.points(0, 2)[0].x, 190, 0.01);
    }
    const Outcome printed = shell("'" BUILD_DIR "/bin/mchost' materials plant-list.txt --out plant-pages.txt");
    ASSERT_EQ(printed.status, 0) << printed.output;
    const std::string pages = read("plant-pages.txt");
    EXPECT_THAT(pages, testing::ContainsRegex("Sum of Pumps +1160\\.0"));  // 8 of 145 kg
    EXPECT_THAT(pages, testing::ContainsRegex("Pressure gauge 0 to 10 bar +DN 15 +9 +pc"));
}

TEST_F(Symbols, CountsByItemInTheOrderOfTheKinds) {
    draw("a.mcd", {"V-17", "P-2", "V-17", "V-9"});
    draw("b.mcd", {"V-9", "v-17", "P-1"});
    const std::string pumps = "GROUP \"Pumps\"\n" + kind("pump", "\"P-*\"", "<1>; Pump <1*>; ; <count>");
    EXPECT_EQ(items("LIST TITLE \"T\"\n" + pumps + "GROUP \"Valves\"\n" +
                        kind("valve", "\"V-*\"", "; Valve; <1*>; <count>; pc"),
                    "a.mcd b.mcd"),
              "TITLE \"T\"\n\nGROUP \"Pumps\"\nITEM P-1; Pump 1; ; 1\nITEM P-2; Pump 2; ; 1\n"
              "\nGROUP \"Valves\"\nITEM ; Valve; 17; 3; pc\nITEM ; Valve; 9; 2; pc\n");
    EXPECT_EQ(items(kind("all", "\"*\"", "; All; ; <count>"), "'?.mcd'"), "\nITEM ; All; ; 7\n");
}

TEST_F(Symbols, TakesTheKindThatFitsBest) {
    draw("a.mcd", {"ABC", "ABX"});
    const std::string near = kind("near", "\"A\" near 3", "; near; ; <count>"),
                      nearer = kind("nearer", "\"AB\" near 3", "; nearer; ; <count>"),
                      exact = kind("exact", "\"ABC\"", "; exact; ; <count>");
    EXPECT_THAT(items(near + nearer + exact, "a.mcd"), HasSubstr("\nITEM ; exact; ; 1\n\n# In doubt"));
    EXPECT_THAT(items(near + nearer + exact, "a.mcd"), Not(HasSubstr("\"ABC\"")));
    const std::string doubts = items(near + nearer, "a.mcd");
    EXPECT_THAT(doubts, HasSubstr("at 0.0, 0.0: nearer \"ABC\", 1 error\n"));
    EXPECT_THAT(doubts, Not(HasSubstr("ITEM")));
}

TEST_F(Symbols, MaterialsReadsTextsWithSignsOfItsOwn) {
    const std::vector<const char*> texts = {"3\" pipe", "a; b", "=1+1", "end\\", "<count>", "# no", "\xD8 50"};
    draw("a.mcd", texts);
    items(kind("all", "\"*\"", "<1>; \"text <1>\"; ; <count>; pc; 1"), "a.mcd");
    const Outcome outcome = shell("'" BUILD_DIR "/bin/mchost' materials s-list.txt --out pages.txt");
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    const std::string pages = read("pages.txt");
    for (const char* text : {"3\" pipe", "a; b", "=1+1", "end\\", "<count>", "# no", "\xC3\x98 50"})
        EXPECT_THAT(pages, HasSubstr("text " + std::string(text)));
    write("s.txt", kind("all", "\"*\"", "; =\"<1>\"; ; <count>"));
    const Outcome refused = run("s.txt a.mcd --overwrite");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.output, HasSubstr("a.mcd: the text \"a; b\" of a symbol \"all\""));
    EXPECT_THAT(refused.output, HasSubstr("so no list is made"));
}

TEST_F(Symbols, ReadsSizesLooksAndLevels) {
    draw("a.mcd", {"A"});
    const auto found = [&](const std::string& base, const std::string& text) {
        write("s.txt", "SYMBOL \"s\"\nBASE " + base + "\nBOX -20 -20 20 20\nTEXT " + text + "\nITEM <count>\n");
        const Outcome outcome = run("s.txt a.mcd --overwrite");
        EXPECT_THAT(outcome.output, HasSubstr(outcome.status == 0 ? "made s-list.txt" : "there is no such symbol"));
        return outcome.status == 0;
    };
    for (const char* base : {"circle 5.04", "circle 4..6 ..5", "circle * 5", "circle 5 colour 0 level \"Default\"",
                             "text \"A\" 2", "text \"a\" 1.. weight 0"})
        EXPECT_TRUE(found(base, "\"A\"")) << base;
    for (const char* base : {"circle 5.06", "circle 5.01..", "circle 5 ..4.9", "circle 5 colour 1",
                             "circle 5 level \"Valves\"", "text \"a\" 2 case", "line *", "rectangle * *"})
        EXPECT_FALSE(found(base, "\"A\"")) << base;
    EXPECT_TRUE(found("circle 5", "\"A\" height 2 style 0"));
    EXPECT_FALSE(found("circle 5", "\"A\" height 3.."));
    EXPECT_FALSE(found("circle 5", "\"A\" level \"Valves\""));
    EXPECT_THAT(run("s.txt a.mcd --overwrite").output, HasSubstr("no drawing has the level \"Valves\""));
}

TEST_F(Symbols, TellsWhatIsWrongInAFile) {
    draw("a.mcd", {"A"});
    const struct {
        const char *lines, *told;
    } cases[] = {
        {"BASE circle 5\n", "line 1, column 6: BASE belongs to a symbol"},
        {"SYMBOL pump\n", "line 1, column 8: the name of the symbol is missing"},
        {"SYMBOL \"s\"\nBASE ball 5\n", "line 2, column 6: a base element is one of line, circle, rectangle, text"},
        {"SYMBOL \"s\"\nBASE circle 5..4\n", "column 13: the size must be a number, a range"},
        {"SYMBOL \"s\"\nBASE circle 1,5\n", "a point divides its decimals"},
        {"SYMBOL \"s\"\nBASE circle -5\n", "the size must be a number"},
        {"SYMBOL \"s\"\nBASE line 5\nBASE line 6\n", "line 3, column 6: the symbol has a base element already"},
        {"SYMBOL \"s\"\nBOX 1 2 3\n", "line 2, column 10: its upper side is missing"},
        {"SYMBOL \"s\"\nTEXT \"[AB\"\n", "line 2, column 7: no text fits, as this [ has no ]"},
        {"SYMBOL \"s\"\nTEXT \"A\" near -1\n", "column 15: the number of errors must be 0 or more"},
        {"SYMBOL \"s\"\nTEXT \"A\" nearly\n", "column 10: this must be one of weight"},
        {"SYMBOL \"s\"\nITEM 1;2;3;4;5;6;7;8;9\n", "an item has at most 8 fields"},
        {"SYMBOL \"s\"\nBASE line 5\nBOX 0 0 1 1\nTEXT \"A\"\nITEM <2>; <count>\n",
         "line 1: the symbol \"s\" has an item with <2>, and 1 TEXT"},
        {"SYMBOL \"s\"\nBASE line 5\nBOX 0 0 1 1\nTEXT \"A\"\nITEM <1*>; <count>\n", "no star in the pattern"},
        {"SYMBOL \"s\"\nBASE line 5\nBOX 0 0 1 1\nTEXT \"A\"\nITEM <1>\n", "an item without <count>"},
        {"SYMBOL \"s\"\nSYMBOL \"t\"\n", "the symbol \"t\" has no base element: BASE is missing"},
        {"GROUP \"g\"\n", "there are no symbols in this file"},
    };
    for (const auto& c : cases) {
        write("s.txt", c.lines);
        const Outcome outcome = run("s.txt a.mcd");
        EXPECT_EQ(outcome.status, 1) << c.lines;
        EXPECT_THAT(outcome.output, HasSubstr(c.told));
        EXPECT_FALSE(fs::exists(folder_ / "s-list.txt"));
    }
}

TEST_F(Symbols, NothingIsMadeWhenADrawingCannotBeCounted) {
    draw("a.mcd", {"A"});
    write("s.txt", kind("s", "\"A\"", "<count>"));
    write("bad.mcd", "no drawing");
    for (const char* drawings : {"a.mcd none.mcd", "a.mcd bad.mcd", "'x*.mcd'"}) {
        const Outcome outcome = run(std::string("s.txt ") + drawings);
        EXPECT_EQ(outcome.status, 1) << drawings;
        EXPECT_FALSE(fs::exists(folder_ / "s-list.txt")) << drawings;
    }
    EXPECT_THAT(run("s.txt a.mcd bad.mcd").output, HasSubstr("bad.mcd"));
    write("s-list.txt", "mine");
    EXPECT_THAT(run("s.txt a.mcd").output, HasSubstr("--overwrite"));
    EXPECT_EQ(read("s-list.txt"), "mine");
    for (const char* out : {"made", "made.txt", ".", "./"}) run("s.txt a.mcd --overwrite --out " + std::string(out));
    EXPECT_EQ(files(), (std::vector<std::string>{"a.mcd", "bad.mcd", "made.txt", "s-list.txt", "s.txt"}));
    EXPECT_NE(read("s-list.txt"), "mine");
    EXPECT_EQ(run("s.txt").status, 2);
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run("s.txt a.mcd --mark").status, 2);
    EXPECT_THAT(run("s.txt b.mcd", "--open a.mcd").output, HasSubstr("a drawing is open"));
}

TEST_F(Symbols, MarksCopiesOfDrawingsOfTheSameName) {
    draw("one/a.mcd", {"AX"});
    draw("two/a.mcd", {"A", "AY", "AZ"});
    write("s.txt", kind("s", "\"A\" near 1", "<count>"));
    const std::string before = read("two/a.mcd");
    EXPECT_EQ(run("s.txt one two --mark one").status, 1) << "a copy would take the place of its drawing";
    const Outcome outcome = run("s.txt one two --mark marked");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(Drawing(folder_ / "marked/a.mcd").count(), 1u);
    EXPECT_EQ(Drawing(folder_ / "marked/a-2.mcd").count(), 2u);
    EXPECT_FALSE(fs::exists(folder_ / "one/a-2.mcd"));
    EXPECT_EQ(read("two/a.mcd"), before);
    EXPECT_EQ(run("s.txt one --mark marked --overwrite").status, 0);
}

}  // namespace
