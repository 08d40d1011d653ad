// The application find, run by mchost as a user would: texts in many drawings, listed and replaced.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/text.h"
#include "mchost/session/session.h"
#include "tests/support/application_test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

struct Text {
    std::string text;
    double x = 0, y = 0, height = 2.5;
    uint32_t color = 0;
    const wchar_t* level = L"Default";
    int32_t locked = 0;
};

class Find : public ApplicationTest {
  protected:
    Find() : ApplicationTest("find") {}

    static void makeText(const Text& text) {
        constexpr double uor = 10000;
        const TextSize size = {1, text.height * uor, text.height * uor, 1};
        const Point3d origin = {text.x * uor, text.y * uor, 0};
        ASSERT_EQ(mdlText_create(dgnBufP, nullptr, text.text.c_str(), &origin, nullptr, &size, nullptr, 0), 0);
        ASSERT_EQ(mdlElement_setSymbology(dgnBufP, &text.color, nullptr, nullptr), 0);
        LevelId level = 0;
        if (!mdlLevel_isValidByName(nullptr, text.level)) mdlLevel_create(&level, nullptr, text.level);
        ASSERT_EQ(mdlLevel_getIdFromName(&level, nullptr, 0, text.level), 0);
        ASSERT_EQ(mdlElement_setProperties(dgnBufP, &level, nullptr, nullptr, &text.locked, nullptr, nullptr, nullptr,
                                           nullptr),
                  0);
    }
    // A drawing with these texts, and with a cell of others behind them.
    void draw(const std::string& name, const std::vector<Text>& texts, const std::vector<Text>& inCell = {}) const {
        const host::Session session;
        const std::string file = (folder_ / name).string();
        fs::create_directories(fs::path(file).parent_path());
        ASSERT_EQ(mdlSystem_createDesignFile(file.c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_SUCCESS);
        for (const Text& text : texts) {
            makeText(text);
            ASSERT_NE(mdlElement_add(dgnBufP), 0u);
        }
        if (!inCell.empty()) addCell(inCell);
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    static void addCell(const std::vector<Text>& texts) {
        ElementDescr* cell = nullptr;
        ASSERT_EQ(mdlCell_create(dgnBufP, L"TITLE", nullptr, 0), MDL_SUCCESS);
        ASSERT_EQ(mdlElmdscr_new(&cell, nullptr, dgnBufP), MDL_SUCCESS);
        for (const Text& text : texts) {
            makeText(text);
            ASSERT_EQ(mdlElmdscr_appendElement(cell, dgnBufP), MDL_SUCCESS);
        }
        ASSERT_EQ(mdlCell_setRange(cell, nullptr), MDL_SUCCESS);
        ASSERT_NE(mdlElmdscr_add(cell), 0u);
        mdlElmdscr_freeAll(&cell);
    }
    // The texts that a call lists, in their order, each with a blank behind it.
    std::string found(const std::string& arguments) const {
        const Outcome outcome = run(arguments + " --format json --out found.json --overwrite");
        EXPECT_NE(outcome.status, 2) << outcome.output;
        return shell(
                   "sqlite3 :memory: \"select group_concat(json_extract(value, '$.text') || ' ', '') "
                   "from json_each(readfile('found.json'))\" | tr -d '\\n'")
            .output;
    }
    std::string texts(const std::string& drawing) const { return found("'*' " + drawing); }
};

TEST_F(Find, ListsTextsOfADrawingAndOfItsCells) {
    draw("a.mcd", {{"V-017", 1, 2}, {"Say \"hi\", Bj\xF8rn", 3, 4}}, {{"V-018", 10, 20.5}, {"DN 250", 30, 40}});
    EXPECT_EQ(run("'v-*' a.mcd").output,
              "file   position  text   errors  level     x     y\n"
              "a.mcd         1  V-017       0  Default   1     2\n"
              "a.mcd         3  V-018       0  Default  10  20.5\n"
              "2 texts in 1 of 1 drawing\n");
    EXPECT_EQ(run("'*hi*' a.mcd --format csv").output,
              "file,position,text,errors,level,x,y\n"
              "a.mcd,2,\"Say \"\"hi\"\", Bj\xC3\xB8rn\",0,Default,3,4\n");
    EXPECT_EQ(found("'*hi*' a.mcd"), "Say \"hi\", Bj\xC3\xB8rn ");
}

TEST_F(Find, TakesTextsOfTheLookAndPlaceThatAreAskedFor) {
    draw("a.mcd",
         {{"AB", 0, 0, 2.5, 1}, {"Ab", 10, 0, 5, 2, L"Notes"}, {"AC", 20, 0, 5, 1, L"Notes"}, {"AXB", 30, 10, 10, 3}});
    const struct {
        const char *arguments, *texts;
    } cases[] = {
        {"ab", "AB Ab "},
        {"Ab --case", "Ab "},
        {"ab --near 1", "AB Ab AC AXB "},
        {"'*' --level Notes", "Ab AC "},
        {"'*' --level Notes --level Default", "AB Ab AC AXB "},
        {"'*' --colour 1", "AB AC "},
        {"'*' --height 5", "Ab AC "},
        {"'*' --height 2.5..5", "AB Ab AC "},
        {"'*' --height 6..", "AXB "},
        {"'*' --height ..4", "AB "},
        {"'*' --area 35,25,8,-1", "Ab AC AXB "},
        {"'*' --area 40,12,50,13", "AXB "},  // in part
        {"'*' --area 100,100,200,200", ""},
        {"'*C'", "AC "},
    };
    for (const auto& c : cases) EXPECT_EQ(found(std::string(c.arguments) + " a.mcd"), c.texts);
}

TEST_F(Find, LooksInFilesPatternsFoldersAndLists) {
    for (const char* name : {"b.mcd", "a.mcd", "job/d.mcd", "job/sub/e.MCD", "job/.hidden/f.mcd", "job/.g.mcd"})
        draw(name, {{name}});
    write("job/notes.txt", "no drawing");
    fs::create_directory_symlink("..", folder_ / "job/sub/up");
    write("list.txt", "# of the job\n b.mcd\njob/sub\n");
    EXPECT_EQ(found("'*' b.mcd a.mcd b.mcd"), "b.mcd a.mcd ");
    EXPECT_EQ(found("'*' '?.mcd'"), "a.mcd b.mcd ");
    EXPECT_EQ(found("'*' job"), "job/d.mcd job/sub/e.MCD ");
    EXPECT_EQ(found("'*' --list list.txt"), "b.mcd job/sub/e.MCD job/d.mcd ");
    EXPECT_EQ(found("'*' job job/sub"), "job/d.mcd job/sub/e.MCD ");
}

TEST_F(Find, TellsWhatCannotBeSearchedAndSearchesTheRest) {
    draw("a.mcd", {{"here"}});
    write("b.mcd", "this is no drawing");
    fs::create_directory(folder_ / "empty");
    const struct {
        const char* arguments;
        int status;
        const char* told;
    } cases[] = {
        {"here a.mcd", 0, "here"},
        {"there a.mcd", 1, "0 texts in 0 of 1 drawing"},
        {"here b.mcd nix.mcd a.mcd", 2, "1 text in 1 of 1 drawing"},
        {"here b.mcd a.mcd", 2, "\"b.mcd\": it isn't a design file"},
        {"here 'x*.mcd' a.mcd", 2, "no file has such a name"},
        {"here empty a.mcd", 2, "there is no drawing (.mcd) in this folder"},
        {"here a.mcd --list nix", 2, "nix"},
        {"here a.mcd --level Nowhere", 1, "no drawing has a level of that name"},
        {"here", 2, "the drawings are missing"},
        {"", 2, "the pattern is missing"},
        {"here a.mcd --near -1", 2, "--near takes"},
        {"here a.mcd --height 5..2", 2, "--height takes"},
        {"here a.mcd --height 2,5", 2, "a point divides"},
        {"here a.mcd --area 1,2,3", 2, "--area takes"},
        {"here a.mcd --format xml", 2, "--format takes"},
        {"here a.mcd --dry-run", 2, "--replace is missing"},
        {"'h*' a.mcd --replace '**'", 2, "--replace has more * or ?"},
        {"here a.mcd --replace x --near 1", 2, "leave --near out"},
        {"here a.mcd --out b.mcd", 2, "there already"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = run(c.arguments);
        EXPECT_EQ(outcome.status, c.status) << c.arguments << '\n' << outcome.output;
        EXPECT_THAT(outcome.output, HasSubstr(c.told)) << c.arguments;
    }
}

// ---- replacing ----

TEST_F(Find, ReplacesTextsAndCarriesOverWhatWildcardsTook) {
    draw("a.mcd", {{"V-017"}, {"V-x"}}, {{"v-018"}, {"other"}, {"V-019"}});
    draw("b.mcd", {{"none"}});
    const std::string before = read("a.mcd"), other = read("b.mcd");
    const Outcome dry = run("'V-###' a.mcd b.mcd --replace '??? valve' --dry-run");
    EXPECT_THAT(dry.output, HasSubstr("v-018  018 valve"));
    EXPECT_THAT(dry.output, HasSubstr("3 texts to change in 1 of 2 drawings"));
    EXPECT_EQ(read("a.mcd"), before);
    const Outcome outcome = run("'V-###' a.mcd b.mcd --replace '??? valve' --backup");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(texts("a.mcd"), "017 valve V-x 018 valve other 019 valve ");
    EXPECT_EQ(read("a.mcd.bak"), before);
    EXPECT_EQ(read("b.mcd"), other);
    EXPECT_FALSE(fs::exists(folder_ / "b.mcd.bak"));
    EXPECT_EQ(run("'* valve' a.mcd --replace 'V*' --backup").status, 0);
    EXPECT_EQ(read("a.mcd.bak"), before);  // kept beside the second one
    EXPECT_TRUE(fs::exists(folder_ / "a.mcd.bak2"));
}

TEST_F(Find, TagsAreTextsToo) {
    draw("a.mcd", {{"V-1"}});
    {
        const host::Session session;
        ASSERT_EQ(mdlSystem_newDesignFile((folder_ / "a.mcd").c_str(), 0), MDL_SUCCESS);
        for (const MdlTagValue& value :
             {MdlTagValue{MDL_TAG_STRING, 0, 0, 0, "V-2"}, MdlTagValue{MDL_TAG_LONG, 0, 12, 0, ""},
              MdlTagValue{MDL_TAG_DOUBLE, 0, 0, 2, ""}}) {
            ASSERT_EQ(mdlTag_create(dgnBufP, nullptr, &value, nullptr, nullptr, nullptr, nullptr, 1), MDL_SUCCESS);
            ASSERT_NE(mdlElement_add(dgnBufP), 0u);
        }
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    EXPECT_EQ(texts("a.mcd"), "V-1 V-2 12 2.000 ");
    EXPECT_EQ(run("'V-*' a.mcd --replace 'Valve *'").status, 0);
    EXPECT_THAT(run("'##' a.mcd --replace 'no ?'").output,
                HasSubstr("\"12\" stays as it is: it is a tag that holds a"));
    EXPECT_EQ(texts("a.mcd"), "Valve 1 Valve 2 12 2.000 ");
}

TEST_F(Find, NumbersAndDatesSheets) {
    for (const char* name : {"job/1.mcd", "job/2.mcd"}) draw(name, {}, {{"Sheet 9 of 9"}, {"Date: 01.02.2003"}});
    EXPECT_EQ(run("'Sheet # of #' job --replace 'Sheet <page> of <pages>'").status, 0);
    EXPECT_EQ(run("'Date:*' job --replace 'Date: <date:%Y|*%%> <date>'").status, 0);
    const std::string today = shell("date '+%Y|*%% %Y-%m-%d' | tr -d '\\n'").output;
    EXPECT_EQ(texts("job"), "Sheet 1 of 2 Date: " + today + " Sheet 2 of 2 Date: " + today + " ");
}

TEST_F(Find, TextsThatCannotBeReplacedStayAndAreTold) {
    draw("a.mcd", {{"one"}, {"one", 0, 0, 2.5, 0, L"Default", 1}, {std::string(199, 'o')}, {"o"}});
    const std::string dots(60, '.');
    const Outcome outcome = run("'o*' a.mcd --replace 'three" + dots + "*'");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.output, HasSubstr("element 2: \"one\" stays as it is: the element is locked"));
    EXPECT_THAT(outcome.output, HasSubstr("stays as it is: the new text has more than 255 characters"));
    EXPECT_EQ(texts("a.mcd"), "three" + dots + "ne one " + std::string(199, 'o') + " three" + dots + " ");
    draw("b.mcd", {{"one"}});
    fs::permissions(folder_ / "b.mcd", fs::perms::owner_read);
    EXPECT_EQ(run("one b.mcd --replace two").status, geteuid() == 0 ? 0 : 2);  // permissions don't stop root
}

TEST_F(Find, AReplacementThatIsKilledLeavesEachDrawingOldOrNew) {
    constexpr int drawings = 30;
    for (int i = 0; i < drawings; ++i) draw("job/" + std::to_string(100 + i) + ".mcd", {{"old"}}, {{"old"}});
    for (const char* after : {"0.02", "0.03", "0.04", "0.05", "0.06", "0.08"}) {
        shell(std::string("timeout -s KILL ") + after + " '" BUILD_DIR "/bin/mchost' find old job --replace new");
        const std::string all = texts("job");
        ASSERT_EQ(all.size(), drawings * std::string("old old ").size()) << all;
        for (size_t at = 0; at < all.size(); at += 8)
            EXPECT_THAT(all.substr(at, 8), testing::AnyOf("old old ", "new new "));
        run("new job --replace old");
    }
}

// ---- the open drawing ----

TEST_F(Find, AHitOfTheDialogIsShownSelectedAndReplaced) {
    draw("a.mcd", {{"V-1"}, {"far", 500, 500}}, {{"V-2", 900, 900}, {"V-3", 900, 890}});
    write("lines.txt",
          "picture view 1 whole.png\nfound=2\npicture view 1 one.png\nnew text=Valve *\nreplace\nfound=1\n"
          "picture dialog.png\nreplace all\nundo\nclose\n");
    const Outcome outcome = run("'V-*'", "--open a.mcd --answers lines.txt");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("3.  V-3"));
    EXPECT_NE(read("whole.png"), read("one.png"));
    EXPECT_THAT(outcome.output, HasSubstr("Taken back: Replace texts."));
    EXPECT_EQ(texts("a.mcd"), "V-1 far Valve 2 V-3 ");
}

TEST_F(Find, TheDialogTellsWhatIsMissing) {
    draw("a.mcd", {{"V-1"}});
    const struct {
        const char *lines, *told;
    } cases[] = {
        {"search\n", "Write the pattern"},
        {"texts=V*\nerrors=-1\nsearch\n", "must be 0 or more"},
        {"texts=V*\nsearch\nreplace all\n", "Write the new text"},
        {"texts=V*\nsearch\nnew text=**\nreplace all\n", "more * or ?"},
        {"texts=V*\nsearch\nnew text=X\nreplace\n", "Choose a text"},
    };
    for (const auto& c : cases) {
        write("lines.txt", std::string(c.lines) + "close\n");
        const Outcome outcome = run("", "--open a.mcd --answers lines.txt");
        EXPECT_EQ(outcome.status, 1) << c.lines;
        EXPECT_THAT(outcome.output, HasSubstr(c.told)) << c.lines;
    }
    EXPECT_EQ(texts("a.mcd"), "V-1 ");
}

TEST_F(Find, TheExampleFindsTheNumberThatIsWrittenWrongly) {
    ASSERT_EQ(shell("'" PROJECT_SOURCE_DIR "/apps/find/examples/sheets' '" BUILD_DIR "/bin/mchost' job").output, "");
    EXPECT_EQ(found("'valve_V-###' job"), "Valve V-017 Valve V-018 Valve V-017 ");
    EXPECT_EQ(found("'valve_V-###' job --near 2"), "Valve V-017 Valve V-018 Vavle V-021 Valve V-017 ");
}

}  // namespace
