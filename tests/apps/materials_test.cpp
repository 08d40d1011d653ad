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
                 sum = text.find("Sum of Bends|40.0"), tees = text.find("Tees"), all = text.find("Sum of all|45.0");
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
    const std::string wide =
        table(items + "ITEM B; a description that is wider than its column, and goes on below it\n");
    EXPECT_LT(wide.find('\f'), wide.find("B|a description that is wider than"));
    EXPECT_THAT(wide, HasSubstr("below it"));
    const std::string forced = table("GROUP \"A\"\nITEM A; a\nNEWPAGE\nGROUP \"B\"\nITEM B; b\n");
    EXPECT_LT(forced.find('\f'), forced.find("B|b"));
}

TEST_F(Materials, AGroupThatGoesOnHasItsHeadingAgain) {
    std::string items = "SUM GROUPS\nGROUP \"Bends\"\n";
    for (int i = 1; i <= 27; ++i) items += "ITEM A" + std::to_string(i) + "; text; ; 1; pc; 1\n";
    const std::string sumAlone = table(items);
    EXPECT_THAT(sumAlone.substr(sumAlone.find('\f')),
                AllOf(HasSubstr("Bends (continued)"), HasSubstr("Sum of Bends|27.0")));
    const std::string more = table(items + "ITEM A28; text\nGROUP \"Tees\"\nITEM B; tee\n");
    EXPECT_LT(more.find("Bends (continued)"), more.find("A28|text"));
    EXPECT_THAT(more, Not(HasSubstr("Tees (continued)")));
}

TEST_F(Materials, NumbersHaveTheDecimalsThatTheyNeed) {
    const std::string items =
        "ITEM 1; a; ; 1480; m; 0.03\nITEM 2; b; ; 34; m; 1.05\nITEM 3; c; ; 2; pc; 1234567.5\nITEM 4; d; ; 0.0005; m3; "
        "2400\n";
    EXPECT_THAT(table(items), AllOf(HasSubstr("1480|m|0.03|44.4"), HasSubstr("34|m|1.05|35.7"),
                                    HasSubstr("2|pc|1234567.5|2469135.0"), HasSubstr("0.0005|m3|2400.0|1.2")));
    EXPECT_THAT(table("DECIMALS 2\nTHOUSANDS \",\"\n" + items),
                AllOf(HasSubstr("1,480|m|0.03|44.40"), HasSubstr("2|pc|1,234,567.50|2,469,135.00")));
    // Points stand below each other.
    write("list.txt", items);
    EXPECT_EQ(run("list.txt --out list.txt2 --device ascii --overwrite").status, 0);
    const auto pointOf = [&](const std::string& number) {
        const std::string text = read("list.txt2");
        const size_t at = text.find(number);
        return at - text.rfind('\n', at) + number.find('.');
    };
    EXPECT_NEAR(static_cast<double>(pointOf("44.4")), static_cast<double>(pointOf("1.2\n")), 1.0);
}

TEST_F(Materials, AListWithoutItemsIsAnEmptyForm) {
    EXPECT_THAT(table("TITLE \"Nothing\"\nSUM ALL\n"), AllOf(HasSubstr("1 of 1"), HasSubstr("Nothing")));
    EXPECT_THAT(run("list.txt --out list.ps").output, HasSubstr("list.txt: there is no ITEM in it"));
}

TEST_F(Materials, RowsAndWidthsAreThoseOfTheForm) {
    const std::string sources = PROJECT_SOURCE_DIR "/examples/forms/";
    // The form of the current folder goes before the one that is installed.
    const auto compile = [&](const std::string& change) {
        return shell("sed '" + change + "' " + sources +
                     "material_list_a4.toml > form.toml && '" BUILD_DIR "/bin/mccel' -o forms.cel " + sources +
                     "common.toml form.toml");
    };
    std::string items;
    for (int i = 1; i <= 69; ++i) items += "ITEM A" + std::to_string(i) + "; text; ; 1; pc; 10\n";
    for (const auto& [rows, pages] : {std::pair("20", "4"), std::pair("33", "3")}) {
        ASSERT_EQ(compile(std::string("s/repeat = 28/repeat = ") + rows + "/").status, 0);
        const std::string text = table(items, "--library forms.cel");
        EXPECT_EQ(countOf("text", text), 69u) << rows;
        EXPECT_EQ(countOf("\f", text) + 1, static_cast<size_t>(std::stoi(pages))) << rows;
    }
    const std::string wide = "ITEM 1; a description that fits on the usual form\n";
    EXPECT_THAT(table(wide), HasSubstr("a description that fits on the usual form"));
    ASSERT_EQ(compile("s/\\[76, 36\\], \\[76, 239\\]/[46, 36], [46, 239]/").status, 0);
    EXPECT_THAT(table(wide), HasSubstr("a description that fits\n"));
    ASSERT_EQ(compile("s/repeat = 28/repeat = 3/").status, 0);
    const Outcome few = run("list.txt --out list.ps --library forms.cel");
    EXPECT_EQ(few.status, 1);
    EXPECT_THAT(few.output, HasSubstr("forms.cel: cell MATLIST-A4 has 3 rows of items, and at least 4 are needed"));
}

TEST_F(Materials, WhatDoesntFitIsTold) {
    write("list.txt",
          "PROJECT client \"1\"\nPROJECT client \"2\"\nPROJECT client \"3\"\nPROJECT client \"4\"\n"
          "ITEM 1; a; ; ; ; ; steel; note\nITEM 1; b\n");
    const Outcome outcome = run("list.txt --out list.ps");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("A4 has no place for material, note, client line 4: use --form A3"));
    EXPECT_THAT(outcome.output, HasSubstr("list.txt, line 6: another item has the mark 1, that of list.txt, line 5"));
    EXPECT_THAT(run("list.txt --form A3 --out a3.ps").output, Not(HasSubstr("no place")));
    const std::string long30(30, 'W');
    for (const std::string& line :
         std::vector<std::string>{"ITEM 1; a; ; 1; " + long30, "ITEM " + long30 + "; a",
                                  "ITEM 1; a; ; 123456789012.345; pc", "PROJECT drawn-sign \"" + long30 + "\""}) {
        write("wide.txt", "\n" + line + "\n");
        const Outcome refused = run("wide.txt --out wide.ps");
        EXPECT_EQ(refused.status, 1) << line;
        EXPECT_THAT(refused.output, AllOf(HasSubstr("wide.txt, line 2: \""), HasSubstr("doesn't fit into its field")))
            << line;
    }
}

TEST_F(Materials, TheSuffixTellsTheDevice) {
    write("list.txt", "ITEM 1; a\n");
    for (const auto& [file, begins] : {std::pair("a.PS", "%!PS"), std::pair("a.hpgl", "IN;"),
                                       std::pair("a.pcl",
                                                 "\x1b"
                                                 "E")}) {
        EXPECT_EQ(run(std::string("list.txt --out ") + file).status, 0) << file;
        EXPECT_TRUE(read(file).starts_with(begins)) << file;
    }
    for (const auto& [arguments, told] :
         {std::pair("--out a.pdf", "a.pdf: a .pdf file can't be made here; make a .ps file"),
          std::pair("--out a.csv", "make a .txt file"), std::pair("--out -", "standard output"),
          std::pair("--out b.ps --device pcl", ".ps is the suffix of postscript files"),
          std::pair("--out b.pcl --form A3", "PCL files are for A4 paper"),
          std::pair("--out b.ps --copies 2", "--copies goes with --print"),
          std::pair("--print cat", "a command with %s for the file")}) {
        const Outcome refused = run(std::string("list.txt ") + arguments);
        EXPECT_EQ(refused.status, 2) << arguments;
        EXPECT_THAT(refused.output, HasSubstr(told)) << arguments;
    }
    EXPECT_THAT(files(), ElementsAre("a.PS", "a.hpgl", "a.pcl", "list.txt"));
}

TEST_F(Materials, ALogoOfOnesOwn) {
    write("logo.toml", "[[cell]]\nname = \"LOGO\"\ndraw = [ { text = \"OUR OFFICE\", box = [0, 0, 39, 12] } ]\n");
    ASSERT_EQ(shell("'" BUILD_DIR "/bin/mccel' -o logo.cel logo.toml").status, 0);
    const std::string text = table("ITEM 1; a\n", "--logo ./logo.cel");
    EXPECT_THAT(text, AllOf(HasSubstr("OUR OFFICE"), Not(HasSubstr("NORDVIK"))));
    EXPECT_THAT(run("list.txt --logo list.txt --out list.ps").output, HasSubstr("list.txt: this is no cell library"));
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
        {"ITEM 1; a; ; 1,5; pc", "line 1, column 14: the number must be a number, or a formula behind \"=\"; a point"},
        {"ITEM 1; a; ; -4; pc; 1.5", "line 1, column 14: the number is -4, and can't be below 0"},
        {"ITEM 1; a; ; 4; pc; =0-1.5", "line 1, column 21: the mass is -1.5, and can't be below 0"},
        {"ITEM 1; =strupr(; ; 1", "line 1, column 17: a bracket isn't closed"},
        {"ITEM 1; =\"x\"+; ; 1", "line 1, column 10: an element of the tag string is missing"},
        {"ITEM 1; =\"x\"+foo; ; 1",
         "line 1, column 14: there is no text \"foo\"; there are NUM, MASS, MARK, DIM, UNIT"},
        {"ITEM 1; Pipe; 3\"; 4; pc", "line 1, column 16: this quote isn't closed"},
        {"ITEM 1; \xc5\x81\xc3\xb3\x64\xc5\xba", "line 1, column 9: the letter U+0141"},
        {"ITEM 1; Gr\xc3\xb6\xc3\x9f\x65 \xf0\x9f\x98\x80 m\xc2\xb2", "line 1, column 15: the letter U+1F600"},
        {"ITEM 1; a\x01", "line 1, column 10: a control character"},
        {"ITEM 1;a;b;1;pc;1;m;n;o", "line 1, column 23: nothing more is expected here"},
        {"ITEM", "the mark is missing"},
        {"NUMBER NUM 1", "\"NUM\" is a column of each item"},
        {"SORT size", "there is no column \"size\"; there are mark, description"},
        {"PROJECT place \"x\"", "\"place\" isn't a text of the title block; there are number, client"},
        {"PROJECT number \"1\"\nPROJECT number \"2\"", "there is 1 line of \"number\" already"},
        {"TITLE \"a\"\nTITLE \"b\"", "line 2, column 1: there is a TITLE already"},
        {"DECIMALS 7", "column 10: the number of decimals must be 0 to 6"},
        {"THOUSANDS \".\"", "column 11: between thousands stands one sign"},
        {"SUM PAGES", "SUM is followed by GROUPS or ALL"},
        {"TOTAL NUM/0\nITEM 1; a; ; 1; pc; 1", "the total can't be worked out: a division by 0"},
        {"PIPE 1", "a line begins with a keyword, one of TITLE, PROJECT"},
    };
    for (const auto& [list, told] : cases) {
        write("list.txt", list + "\n");
        const Outcome outcome = run("list.txt --out list.ps");
        EXPECT_EQ(outcome.status, 1) << list;
        EXPECT_THAT(outcome.output, HasSubstr(told)) << list;
        EXPECT_THAT(outcome.output, Not(testing::AnyOf(HasSubstr("cmParse"), HasSubstr("Missing end")))) << list;
    }
    EXPECT_THAT(files(), ElementsAre("list.txt"));
}

TEST_F(Materials, WhatIsNoListIsToldAsSuch) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {".", ".: this is a folder"},
        {"/dev/null", "/dev/null: this is a device"},
        {"-", "-: standard input isn't read"},
        {"nowhere.txt", "nowhere.txt: there is no such file"},
        {"wide.txt", "wide.txt: the file is UTF-16; save it as UTF-8"},
        {"binary.txt", "binary.txt: this is no text file"},
        {"many.txt", "and 280 more errors"},
        {"self.txt", "self.txt, line 1: the file that %include names can't be opened"},
    };
    write("wide.txt", std::string("\xff\xfeI\0T\0", 6));
    write("binary.txt", std::string("a\0b", 3));
    std::string many;
    for (int i = 0; i < 300; ++i) many += "WRONG\n";
    write("many.txt", many);
    write("self.txt", "%include self.txt\n");
    for (const auto& [list, told] : cases) {
        const Outcome outcome = run("'" + list + "' --out list.ps");
        EXPECT_NE(outcome.status, 0) << list;
        EXPECT_THAT(outcome.output, HasSubstr(told)) << list;
        EXPECT_LT(countOf("\n", outcome.output), 70u) << list;
    }
    EXPECT_THAT(table("\xef\xbb\xbf  # indented\nITEM 1; \"quoted; text\"; \"3\"\" x\"\n"),
                HasSubstr("1|quoted; text|3\" x\n"));
}

TEST_F(Materials, LettersThatADeviceHasntAreRefused) {
    write("list.txt", "TITLE \"\xc3\xa6\xc3\xb8\xc3\xa5\"\nITEM 1; m\xc2\xb2\n");
    EXPECT_THAT(run("list.txt --out list.hpgl").output,
                HasSubstr("list.txt, line 2, column 10: the letter \"\xc2\xb2\" (B2"));
    EXPECT_EQ(run("list.txt --out list.ps", "--set MC_PSENCODING=0").status, 1);
    write("euro.txt", "ITEM 1; 5 \xe2\x82\xac\n");
    EXPECT_THAT(run("euro.txt --out list.pcl").output, HasSubstr("euro.txt, line 1, column 11: the letter"));
    EXPECT_EQ(run("list.txt --out list.ps").status, 0);
    EXPECT_THAT(read("list.ps"), HasSubstr("8#262/twosuperior"));
    EXPECT_EQ(run("list.txt --out table.txt").status, 0);
    EXPECT_THAT(read("table.txt"), AllOf(HasSubstr("m\xc2\xb2"), HasSubstr("\xc3\xa6\xc3\xb8\xc3\xa5")));
}

TEST_F(Materials, WhatCantBeDoneLeavesFilesAlone) {
    write("list.txt", "ITEM 1; a\n");
    write("kept.ps", "kept");
    EXPECT_THAT(run("list.txt --out kept.ps").output, HasSubstr("kept.ps: the file is there already"));
    const Outcome noForm = run(example + " --out list.ps --library nowhere.cel");
    EXPECT_EQ(countOf("nowhere.cel", noForm.output), 1u) << noForm.output;
    EXPECT_THAT(run(example + " --out list.ps --library logo.cel").output,
                HasSubstr("logo.cel: the library has no cell MATLIST-A4"));
    EXPECT_EQ(run("list.txt --library nowhere.cel").status, 1) << "the preview";
    EXPECT_EQ(run("list.txt --out list.ps --library nowhere.cel").status, 1);
    EXPECT_EQ(run("list.txt --out no/folder/list.ps").status, 1);
    EXPECT_EQ(run("list.txt --device fax").status, 2);
    EXPECT_EQ(run("--help 2>&1 >/dev/null").output + std::to_string(run("--help").status), "0");
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
    // What is printed alone leaves no file.
    EXPECT_EQ(run("list.2026.txt --print LPT1", "--set MC_SPOOL=spool").status, 0);
    EXPECT_THAT(files(), ElementsAre("list.2026.txt", "lists", "spool"));
    EXPECT_EQ(shell("ls spool/LPT1").output, "list.2026.ps\n");
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
