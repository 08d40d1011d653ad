// Print jobs of the preview: which pages they take, what is on paper, and where the file goes.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "mchost/mdl/elmdscr.h"
#include "mchost/session/memory.h"
#include "mclib/frame/global_data.h"
#include "mclib/print/print.h"
#include "tests/mclib/forms/preview_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const TestPage one{"one", 180000, 277000}, two{"two", 277000, 180000}, three{"three", 180000, 277000};
const TestPage none{"none", 0, 0};
constexpr int allPages = 1, fromTo = 2;

// How many times `what` stands in `text`.
size_t countOf(const std::string& text, const std::string& what) {
    size_t count = 0;
    for (size_t at = text.find(what); at != text.npos; at = text.find(what, at + 1)) ++count;
    return count;
}

class PrintJob : public PreviewTest {
  protected:
    // The user changes the set-up, which is stored, before the preview opens.
    void setUp(const std::vector<std::pair<const char*, std::string>>& values) {
        answers
            .check([&](host::Dialog&) {
                for (const auto& [access, value] : values) set(access, value);
            })
            .press(-3);
        EXPECT_EQ(mclibPrintSet_dialogOpen(), 3);
    }
    // Steps in the print dialog up to its OK: the range, and the file, which isn't sent anywhere.
    void answerPrintDialog(int range) {
        answers.setValue(ITEM_OPTION_BUTTON, 20012, std::to_string(range))
            .setValue(ITEM_TOGGLE, 20006, "1")
            .setValue(ITEM_TEXT, 20013, path("out.ps"));
    }
    // What the job of that range writes.
    std::string print(int range) {
        answerPrintDialog(range);
        answers.press(-3);
        press(dialog(), 20007);
        EXPECT_TRUE(answers.finished());
        return readFile("out.ps");
    }
};

TEST_F(PrintJob, PrintsThePageOnShow) {
    openPreview({one, two, three}, 2);
    const std::string onShow = print(0);
    EXPECT_EQ(countOf(onShow, "showpage"), 1u);
    EXPECT_THAT(onShow, HasSubstr("three"));
    EXPECT_THAT(testApplication.made, ElementsAre(2));  // when it was shown
    EXPECT_EQ(front().fields.front(), std::pair(0, std::string("Printing three")));
    EXPECT_EQ(front().field(0), "");
    press(dialog(), -4);
    openPreview({three});
    EXPECT_EQ(print(allPages), onShow);
}

TEST_F(PrintJob, MakesEachPageOfARangeAnew) {
    openPreview({one, two, three});
    EXPECT_EQ(countOf(print(allPages), "showpage"), 3u);
    EXPECT_THAT(testApplication.made, ElementsAre(0, 0, 1, 2));
    EXPECT_THAT(testApplication.currentNames, ElementsAre("one", "one", "two", "three"));
    testApplication.made.clear();
    answerPrintDialog(fromTo);
    answers.setValue(ITEM_OPTION_BUTTON, 20013, "1").setValue(ITEM_OPTION_BUTTON, 20014, "2").press(-3);
    press(dialog(), 20007);
    EXPECT_EQ(countOf(readFile("out.ps"), "showpage"), 2u);
    EXPECT_THAT(testApplication.made, ElementsAre(1, 2));
}

TEST_F(PrintJob, PagesThatCannotBeMadeTakeNoSheet) {
    openPreview({none, one, none, three});
    EXPECT_EQ(countOf(print(allPages), "showpage"), 2u);
    answerPrintDialog(0);
    answers.press(-3);
    answerBox();
    press(dialog(), 20007);
    EXPECT_THAT(told, HasSubstr("None of these pages could be made"));
    EXPECT_EQ(countOf(readFile("out.ps"), "showpage"), 2u) << "the file of before stays";
}

TEST_F(PrintJob, TakesTheStoredSetUpAndNotOneThatWasCancelled) {
    setUp({{"mclibpsd->pageSize", "10"}, {"mclibpsd->deviceType", "5"}});
    openPreview({two});
    answers.setValue(ITEM_OPTION_BUTTON, 20005, "4").press(-4);
    press(dialog(), 20006);
    double width, height;
    mclibPrint_getPageSize(&width, &height, 1);
    EXPECT_THAT(print(0), HasSubstr("\33&l26a1O")) << "PCL on A4, landscape";
    EXPECT_TRUE(front().files.questions.empty());
}

TEST_F(PrintJob, WhatLeavesNothingToPrintIsToldAndMakesNoFile) {
    openPreview({one});
    const struct {
        const char *access, *value, *told;
    } cases[] = {{"mclibpsd->marginLeft", "300", "margins leave nothing"},
                 {"mclibpsd->copies", "0", "copies is less than 1"},
                 {"mclibpsd->copies", "-3", "copies is less than 1"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.access) + c.value);
        told.clear();
        answers.check([&](host::Dialog&) {
            set("mclibpsd->fileName", path("out.ps"));
            set("mclibpsd->printerName", "$(NOWHERE)");
            set(c.access, c.value);
        });
        answers.press(-3);
        answerBox();
        press(dialog(), 20007);
        EXPECT_THAT(told, HasSubstr(c.told));
        EXPECT_EQ(readFile("out.ps"), "");
    }
}

TEST_F(PrintJob, WithoutAPrinterTheFileIsKeptAndToldByItsPathInThisSystem) {
    std::filesystem::create_directories(path("drive_c/temp"));
    openPreview({one});
    for (const char* printer : {"\\\\server\\printer", ""}) {
        answers
            .check([&](host::Dialog&) {
                set("mclibpsd->fileName", "c:\\temp\\mc.ps");
                set("mclibpsd->printerName", printer);
            })
            .press(-3);
        told.clear();
        answerBox();
        press(dialog(), 20007);
        EXPECT_THAT(told, HasSubstr("No printer is chosen"));
        EXPECT_THAT(told, HasSubstr(path("drive_c/temp/mc.ps")));
        EXPECT_EQ(countOf(readFile("drive_c/temp/mc.ps"), "showpage"), 1u);
    }
}

TEST_F(PrintJob, PagesOfATextFileStandBehindEachOther) {
    testApplication.pages = {one, two, three};
    std::vector<char*> names;
    for (TestPage& page : testApplication.pages) names.push_back(page.name.data());
    const std::string file = path("out.txt");
    EXPECT_EQ(mclibPreview_printPages(3, names.data(), makeTestPage, file.c_str(), PRINT_ASCII, 0, 2), MCLIB_SUCCESS);
    EXPECT_EQ(readFile("out.txt"), "one\n\ftwo\n\fthree\n");
}

TEST_F(PrintJob, APageThatMemoryRanOutForIsNotPrinted) {
    const auto makeTwo = [](int page, char*, ElementDescr** result, int) {
        const Point3d ends[2] = {{0, 0, 0}, {1000, 1000, 0}};
        mdlLine_create(dgnBufP, nullptr, ends);
        EXPECT_EQ(mdlElmdscr_new(result, nullptr, dgnBufP), MDL_SUCCESS);
        if (page == 0) return;
        host::failMemoryFrom(1);
        dlmSystem_mdlFree(dlmSystem_mdlMalloc(8));
        host::failMemoryFrom(0);
    };
    char first[] = "first", second[] = "second";
    char* const names[] = {first, second};
    EXPECT_EQ(mclibPreview_printPages(2, names, makeTwo, path("out.ps").c_str(), PRINT_POSTSCRIPT, 0, 1), MCLIB_ERROR);
    EXPECT_FALSE(std::filesystem::exists(path("out.ps")));
    EXPECT_EQ(mclibPreview_printPages(2, names, makeTwo, path("out.ps").c_str(), PRINT_POSTSCRIPT, 0, 0),
              MCLIB_SUCCESS);
    std::ofstream(path("out.ps")) << "kept";
    EXPECT_EQ(mclibPreview_printPages(2, names, makeTwo, path("out.ps").c_str(), PRINT_POSTSCRIPT, 0, 1), MCLIB_ERROR);
    EXPECT_EQ(readFile("out.ps"), "kept");
    EXPECT_EQ(session().exitStatus(), 1);
}

TEST_F(PrintJob, TurnsAPageForItsSheetAndBackAgain) {
    for (const char* orientation : {"2", "1"}) {
        SCOPED_TRACE(orientation);
        setUp({{"mclibpsd->orientation", orientation}});
        openPreview({two});
        const GlobalData& data = *mclibMain_getGlobalDataP();
        Point3d before[2], after[2];
        mdlElmdscr_computeRange(&before[0], &before[1], data.previewDescr, nullptr);
        print(0);
        EXPECT_EQ(data.pageAngle, 0.0) << "what the application prints by itself isn't turned";
        mdlElmdscr_computeRange(&after[0], &after[1], data.previewDescr, nullptr);
        for (int corner = 0; corner < 2; ++corner) {
            EXPECT_NEAR(after[corner].x, before[corner].x, 1e-6);
            EXPECT_NEAR(after[corner].y, before[corner].y, 1e-6);
        }
    }
}

// The boxes around the ink of a PostScript file's pages, in points, as Ghostscript finds them.
std::vector<DialogRect> inkBoxes(const std::string& file) {
    std::vector<DialogRect> boxes;
    std::FILE* lines =
        popen(("timeout 60 gs -q -dBATCH -dNOPAUSE -dSAFER -sDEVICE=bbox '" + file + "' 2>&1").c_str(), "r");
    char line[256];
    for (DialogRect box{}; lines && std::fgets(line, sizeof line, lines);)
        if (std::sscanf(line, "%%%%BoundingBox: %d %d %d %d", &box.left, &box.bottom, &box.right, &box.top) == 4)
            boxes.push_back(box);
    if (lines) pclose(lines);
    return boxes;
}

TEST_F(PrintJob, EveryPageFillsTheSheetWithinItsMargins) {
    if (std::system("gs --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "Ghostscript isn't installed";
    openPreview({one, two, three});  // the second is turned
    print(allPages);
    const auto boxes = inkBoxes(path("out.ps"));
    ASSERT_EQ(boxes.size(), 3u);
    constexpr double point = 72 / 25.4;
    for (const DialogRect& box : boxes) {
        EXPECT_NEAR(box.left, 20 * point, 2);
        EXPECT_NEAR(box.bottom, 10 * point, 2);
        EXPECT_NEAR(box.right, 200 * point, 2);
        EXPECT_NEAR(box.top, 287 * point, 2);
    }
}

TEST_F(PrintJob, AUserPrintFunctionStandsForEveryPage) {
    openPreview({one, two, three}, 1);
    mclibPreview_setUserPrintFunction(drawTestPage);
    print(allPages);
    EXPECT_THAT(testApplication.drawn, ElementsAre(0, 1, 2));
    EXPECT_THAT(testApplication.made, ElementsAre(1));  // when it was shown
    EXPECT_STREQ(mclibMain_getGlobalDataP()->currentPageName, "three");
    print(0);
    EXPECT_THAT(testApplication.drawn, ElementsAre(0, 1, 2, 1));
    openPreview({one});  // clears it
    print(allPages);
    EXPECT_EQ(testApplication.drawn.size(), 4u);
}

TEST_F(PrintJob, WithoutAPageFunctionARangeIsEmpty) {
    char name[] = "one";
    char* names[] = {name};
    preview = mclibPreview_dialogOpen(1, names, nullptr, nullptr);
    mclibPreview_setUserPrintFunction(drawTestPage);
    answerPrintDialog(allPages);
    answers.press(-3);
    answerBox();
    press(dialog(), 20007);
    EXPECT_THAT(testApplication.drawn, IsEmpty());
    press(dialog(), 20009);  // nor is there a new list
    EXPECT_EQ(get("mgdP->previewPage"), "0");
}

TEST_F(PrintJob, ACancelledDialogPrintsNothing) {
    openPreview({one});
    answerPrintDialog(allPages);
    answers.press(-4);
    press(dialog(), 20007);
    EXPECT_EQ(readFile("out.ps"), "");
    EXPECT_THAT(testApplication.made, ElementsAre(0));
}

TEST_F(PrintJob, SendsTheFileToThePrinterUnlessItIsKept) {
    mdlSystem_defineCfgVar("PRINT_TARGET", path("printed.ps").c_str(), 4);
    setUp({{"mclibpsd->printerName", "$(PRINT_TARGET)"}, {"mclibpsd->fileOnly", "0"}});
    openPreview({one});
    print(0);
    EXPECT_EQ(readFile("printed.ps"), "");
    const auto printAndSend = [&] {
        answers.check([&](host::Dialog&) { set("mclibpsd->fileName", path("out.ps")); }).press(-3);
        press(dialog(), 20007);
    };
    printAndSend();
    EXPECT_EQ(countOf(readFile("printed.ps"), "showpage"), 1u);
    EXPECT_EQ(readFile("printed.ps"), readFile("out.ps"));
    mdlSystem_defineCfgVar("PRINT_TARGET", path("no/such/folder").c_str(), 4);
    answers.check([&](host::Dialog&) { set("mclibpsd->fileName", path("out.ps")); }).press(-3).press(-3);
    press(dialog(), 20007);
    EXPECT_TRUE(answers.finished());  // a box told of it
    mclibPreview_setUserPrintFunction(drawTestPage);
    printAndSend();  // nothing is sent, so there is no box
}

TEST_F(PrintJob, ATextJobIsThePageOnShowInAFileThatTheUserNames) {
    openPreview({one, two}, 1);
    set("mclibpsd->deviceType", "4");
    set("mclibpsd->fileOnly", "0");  // and yet it goes to no printer
    set("mgdP->fileDialogP->printRange", "1");
    front().files.answer(path("list.txt"));
    press(dialog(), 20007);
    EXPECT_EQ(front().dialogs, 0);  // no range was asked for, and no failed printer was told of
    EXPECT_THAT(readFile("list.txt"), HasSubstr("two"));
    EXPECT_EQ(get("mgdP->fileDialogP->printRange"), "0");
    EXPECT_THAT(testApplication.made, ElementsAre(1));  // when it was shown
    ASSERT_EQ(front().files.questions.size(), 1u);
    EXPECT_EQ(front().files.questions[0].title, "Save the page as text");
    EXPECT_EQ(front().files.questions[0].filter, "*.txt");
    std::remove(path("list.txt").c_str());
    front().files.cancel();
    press(dialog(), 20007);
    EXPECT_EQ(readFile("list.txt"), "");
}

TEST_F(PrintJob, AFileThatCannotBeWrittenIsTold) {
    openPreview({one});
    answerPrintDialog(allPages);
    answers.setValue(ITEM_TEXT, 20013, path("no/such/out.ps")).press(-3);
    answerBox();
    press(dialog(), 20007);
    EXPECT_THAT(told, HasSubstr("can't be opened:\n" + path("no/such/out.ps")));
    EXPECT_THAT(testApplication.made, ElementsAre(0));
}

}  // namespace
