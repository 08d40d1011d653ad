// The application materials, run by mchost as a user would.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/application_test.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string example = PROJECT_SOURCE_DIR "/apps/materials/examples/watermain.txt";
const std::string plotAnswers = PROJECT_SOURCE_DIR "/apps/materials/examples/plot.answers";

size_t countOf(const std::string& part, const std::string& text) {
    size_t count = 0;
    for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

class Materials : public ApplicationTest {
  protected:
    Materials() : ApplicationTest("materials") {}

    // Prints a list as text and gives its lines without the blanks between columns: "1.01|Bend|4|pc".
    std::string table(const std::string& list, const std::string& arguments = "") const {
        write("list.txt", list);
        const Outcome outcome = run("list.txt --device ascii --out table.txt --overwrite " + arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        std::string out;
        for (const char c : read("table.txt")) {
            if (c != ' ' && out.ends_with("  ")) {
                out.resize(out.find_last_not_of(' ') + 1);
                out += '|';
            }
            out += c;
        }
        return out;
    }
};

TEST_F(Materials, PrintsTheExampleOnEachDevice) {
    const std::vector<std::pair<std::string, std::string>> devices = {
        {"postscript", ".ps"}, {"pcl", ".pcl"}, {"hpgl", ".hpgl"}, {"ascii", ".txt"}};
    for (const auto& [device, suffix] : devices) {
        const Outcome outcome = run(example + " --device " + device + " --out list");
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_THAT(outcome.output, HasSubstr("made list" + suffix + ": 139 items, 7 pages"));
    }
    EXPECT_THAT(files(), ElementsAre("list.hpgl", "list.pcl", "list.ps", "list.txt"));
    EXPECT_THAT(read("list.txt"), AllOf(HasSubstr("1 of 7"), HasSubstr("7 of 7"), HasSubstr("Granlia waterworks")));
    EXPECT_EQ(countOf("\f", read("list.txt")), 6u);
    if (!canRun("gs")) GTEST_SKIP() << "Ghostscript isn't there";
    EXPECT_EQ(shell("gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=bbox list.ps 2>&1 | grep -c '^%%BoundingBox'").output,
              "7\n");
}

TEST_F(Materials, FieldsAreWorkedOut) {
    const std::string text = table(
        "NUMBER LP 6\nTEXT PIPE \"Pipe\"\nTOTAL NUM*MASS*2\n"
        "ITEM 1; =PIPE+\", \"+DIM+\" \"+NUM; DN 250; =TRUNC(20.5/LP)+1; pc; =LP*48.0\n"
        "ITEM 2; \"a; b\" in quotes; ; 12.50; m;\n");
    EXPECT_THAT(text, HasSubstr("1|Pipe, DN 250 4|DN 250|4|pc|288.0|2304.0"));
    EXPECT_THAT(text, HasSubstr("2|\"a; b\" in quotes|12.5|m"));
}

TEST_F(Materials, ItemsAreMergedSortedAndSummed) {
    const std::string text = table(
        "SORT mark\nMERGE\nSUM GROUPS\nSUM ALL\n"
        "GROUP \"Bends\"\nITEM P10; b; ; 1; pc; 5\nITEM P2; a; ; 2; pc; 10\nITEM P10; b; ; 3; pc; 5\n"
        "GROUP \"Tees\"\nITEM P10; b; ; 1; pc; 5\n");
    const size_t two = text.find("P2|a|2|pc|10.0|20.0"), ten = text.find("P10|b|4|pc|5.0|20.0"),
                 sum = text.find("Sum|40.0"), tees = text.find("Tees"), all = text.find("Sum of all|45.0");
    EXPECT_TRUE(two < ten && ten < sum && sum < tees && tees < all && all != text.npos) << text;
    EXPECT_THAT(text, HasSubstr("Mass of this page, kg|45.0"));
    const std::string falling = table("SORT -total\nITEM A; a; ; 1; pc; 5\nITEM B; b; ; 2; pc; 5\n");
    EXPECT_LT(falling.find("B|b"), falling.find("A|a"));
}

TEST_F(Materials, PagesBreakBetweenItemsThatStayWhole) {
    // 27 items leave one row: neither a heading nor an item of two rows may stand there alone.
    std::string items;
    for (int i = 1; i <= 27; ++i) items += "ITEM A" + std::to_string(i) + "; text\n";
    const std::string heading = table(items + "GROUP \"Bends\"\nITEM B; bend\n");
    EXPECT_LT(heading.find('\f'), heading.find("Bends"));
    const std::string wide = table(items + "ITEM B; a description that is wider than its column on the form\n");
    EXPECT_LT(wide.find('\f'), wide.find("B|a description that is wider than"));
    EXPECT_THAT(wide, HasSubstr("its column on the form"));
    const std::string forced = table("GROUP \"A\"\nITEM A; a\nNEWPAGE\nGROUP \"B\"\nITEM B; b\n");
    EXPECT_LT(forced.find('\f'), forced.find("B|b"));
}

TEST_F(Materials, AListWithoutItemsIsAnEmptyForm) {
    EXPECT_THAT(table("TITLE \"Nothing\"\nSUM ALL\n"), AllOf(HasSubstr("1 of 1"), HasSubstr("Nothing")));
}

TEST_F(Materials, RangesTakeTheirPages) {
    EXPECT_EQ(run(example + " --pages 2-3 --device ascii --out part.txt").status, 0);
    EXPECT_THAT(read("part.txt"), AllOf(HasSubstr("2 of 7"), HasSubstr("3 of 7"), Not(HasSubstr("1 of 7"))));
    const Outcome beyond = run(example + " --pages 7-8 --out beyond.ps");
    EXPECT_EQ(beyond.status, 2);
    EXPECT_THAT(beyond.output, HasSubstr("there are 7 pages, so --pages can't take 8"));
    EXPECT_THAT(files(), ElementsAre("part.txt"));
}

TEST_F(Materials, AWrongLineIsShownAndNothingIsMade) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"ITEM 1; a; ; four; pc", "line 1, column 14: the number must be a number, or a formula behind \"=\""},
        {"ITEM 1; a; ; =2*x; pc", "line 1, column 17: no parameter and no function has this name"},
        {"ITEM 1; =strupr(; ; 1", "line 1, column 10: an element of the tag string is missing"},
        {"ITEM 1;a;b;1;pc;1;m;n;o", "line 1, column 23: nothing more is expected here"},
        {"ITEM", "the mark is missing"},
        {"NUMBER NUM 1", "\"NUM\" is a column of each item"},
        {"SORT size", "there is no column \"size\"; there are mark, description"},
        {"PROJECT place \"x\"", "\"place\" isn't a text of the title block; there are number, client"},
        {"PROJECT number \"1\"\nPROJECT number \"2\"", "there are 1 lines of \"number\" already"},
        {"SUM PAGES", "SUM is followed by GROUPS or ALL"},
        {"TOTAL NUM/0\nITEM 1; a; ; 1; pc; 1", "the total can't be worked out: a division by 0"},
        {"PIPE 1", "a line begins with a keyword, one of TITLE, PROJECT"},
    };
    for (const auto& [list, told] : cases) {
        write("list.txt", list + "\n");
        const Outcome outcome = run("list.txt --out list.ps");
        EXPECT_EQ(outcome.status, 1) << list;
        EXPECT_THAT(outcome.output, HasSubstr(told)) << list;
    }
    EXPECT_THAT(files(), ElementsAre("list.txt"));
}

TEST_F(Materials, WhatCantBeDoneLeavesFilesAlone) {
    write("list.txt", "ITEM 1; a\n");
    write("kept.ps", "kept");
    EXPECT_THAT(run("list.txt --out kept.ps").output, HasSubstr("kept.ps: the file is there already"));
    const Outcome noForm = run(example + " --out list.ps --library nowhere.cel");
    EXPECT_EQ(countOf("nowhere.cel", noForm.output), 1u) << noForm.output;
    EXPECT_EQ(run("list.txt --out list.ps --library nowhere.cel").status, 1);
    EXPECT_EQ(run("list.txt --out no/folder/list.ps").status, 1);
    EXPECT_EQ(run("list.txt --device fax").status, 2);
    const Outcome preview = run("list.txt --pages 1");
    EXPECT_EQ(preview.status, 2);
    EXPECT_THAT(preview.output, HasSubstr("--pages goes with --out or --print"));
    EXPECT_THAT(files(), ElementsAre("kept.ps", "list.txt"));
    EXPECT_EQ(read("kept.ps"), "kept");
}

TEST_F(Materials, WhatAKilledRunLeftGoesWithTheNextOne) {
    write("list.txt", "ITEM 1; a\n");
    for (const char* left : {".mcpart-killed", ".mcpart-lives"}) {
        std::filesystem::create_directories(folder_ / left);
        write(std::string(left) + "/list.ps", "half a");
    }
    EXPECT_EQ(
        shell("exec 9<.mcpart-lives; flock 9; '" BUILD_DIR "/bin/mchost' materials list.txt --out list.ps").status, 0);
    EXPECT_THAT(files(), ElementsAre(".mcpart-lives", "list.ps", "list.txt"));
}

TEST_F(Materials, NamesMayHaveAnyLettersOfTheLanguages) {
    write("bl\xc3\xa5.txt", "ITEM 1; r\xc3\xb8r\n");
    const Outcome outcome = run("bl\xc3\xa5.txt --out gr\xc3\xb8nn.ps");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("made gr\xc3\xb8nn.ps: 1 item, 1 page\n"));
    EXPECT_THAT(files(), ElementsAre("bl\xc3\xa5.txt", "gr\xc3\xb8nn.ps"));
}

TEST_F(Materials, TheFileIsNamedAsTheUserMeans) {
    shell("mkdir lists && printf 'ITEM 1; a\\n' > list.2026.txt && mkdir -p spool/LPT1");
    for (const char* out : {"--out lists", "--out lists/one", "--out lists/two.eps"})
        EXPECT_EQ(run(std::string("list.2026.txt ") + out).status, 0) << out;
    EXPECT_EQ(shell("ls lists").output, "list.2026.ps\none.ps\ntwo.eps\n");
    EXPECT_EQ(run("list.2026.txt --print LPT1", "--set MC_SPOOL=spool").status, 0);
    EXPECT_THAT(files(), ElementsAre("list.2026.ps", "list.2026.txt", "lists", "spool"));
}

TEST_F(Materials, TheLibraryMayBeAPath) {
    shell("mkdir office && cp '" BUILD_DIR "/lib/cell/forms.cel' office/ours.cel");
    write("list.txt", "ITEM 1; a\n");
    const Outcome outcome = run("list.txt --out list.ps --library office/ours.cel");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, Not(HasSubstr("Can't attach")));  // the logo is found where it always is
}

TEST_F(Materials, SendsTheFileToAPrinter) {
    shell("mkdir -p spool/LPT1");
    write("list.txt", "ITEM 1; a\n");
    const Outcome outcome = run("list.txt --print LPT1 --copies 2", "--set MC_SPOOL=spool");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(shell("ls spool/LPT1").output, "list-2.ps\nlist.ps\n");
}

TEST_F(Materials, ThePreviewPlotsAllPagesAndLeavesNothingInTheDrawing) {
    const Outcome outcome =
        run(example, "--set MS_USERPREF=user.rsc --set MS_PLTFILES=./ --new plan.mcd --answers " + plotAnswers);
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(shell("ls plan_*.pdf | wc -l").output, "7\n");
    EXPECT_THAT(outcome.output, Not(HasSubstr("can't be done")));
    const Outcome again = run(example + " --device ascii --out list.txt", "--open plan.mcd");
    EXPECT_EQ(again.status, 0) << again.output;
    EXPECT_THAT(read("list.txt"), HasSubstr("plan.mcd"));
}

}  // namespace
