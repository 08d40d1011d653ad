// Pages placed in the drawing, and plotted through the host.
#include <cmath>
#include <filesystem>
#include <set>

#include "mchost/command/command.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/fence.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/scan.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/view.h"
#include "mclib/forms/preview.h"
#include "mclib/frame/global_data.h"
#include "tests/mclib/forms/preview_fixture.h"
#include "tests/support/drawn.h"

using namespace mc;

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr double uor = 10000;  // in a master unit
enum { PLACE = 20010, PRINT = 20007, RANGE = 20012, PAGES_PER_ROW = 20010 };

struct Placed {
    int type;
    uint32_t graphicGroup;
    Range3d range;
};

class PlacingTest : public PreviewTest {
  protected:
    // All elements of the drawing, in its order.
    static std::vector<Placed> drawing() {
        std::vector<Placed> found;
        ScanCriteria* scan = mdlScanCriteria_create();
        FilePos positions[512];
        int32_t words = sizeof positions / 2;
        mdlScanCriteria_scan(scan, positions, &words, nullptr);
        mdlScanCriteria_free(&scan);
        for (int32_t i = 0; i < words / 2; ++i) {
            ElementDescr* ed = nullptr;
            mdlElmdscr_read(&ed, positions[i], nullptr);
            Placed placed{mdlElement_getType(ed->element), ed->element->head.graphicGroup, {}};
            mdlElmdscr_computeRange(&placed.range.low, &placed.range.high, ed, nullptr);
            found.push_back(placed);
            mdlElmdscr_freeAll(&ed);
        }
        return found;
    }
    static std::vector<Placed> ofType(int type) {
        std::vector<Placed> found;
        for (const Placed& element : drawing())
            if (element.type == type) found.push_back(element);
        return found;
    }

    void startPlacing(int range, int pagesPerRow) {
        answers.setValue(ITEM_OPTION_BUTTON, RANGE, std::to_string(range))
            .setValue(ITEM_TEXT, PAGES_PER_ROW, std::to_string(pagesPerRow))
            .press(-3);
        press(dialog(), PLACE);
        ASSERT_TRUE(host::commandRuns());
    }

    // Left and upper edge of each sheet whose corners are marked, in millimetres.
    static std::vector<std::pair<double, double>> sheets() {
        std::vector<std::pair<double, double>> found;
        const std::vector<Placed> lines = ofType(MDL_LINE);
        for (size_t i = 0; i + 8 <= lines.size(); i += 8) {
            RangeBounds bounds;
            for (size_t line = i; line < i + 8; ++line) bounds.add(lines[line].range);
            found.emplace_back(bounds.left / uor + 2, bounds.top / uor - 2);
        }
        return found;
    }

  private:
    struct RangeBounds {
        double left = HUGE_VAL, top = -HUGE_VAL;
        void add(const Range3d& r) { left = std::min(left, r.low.x), top = std::max(top, r.high.y); }
    };
};

const std::vector<TestPage> fourPages = {
    {"One", 100000, 150000}, {"Two", 100000, 150000}, {"Three", 100000, 150000}, {"Four", 100000, 150000}};

TEST_F(PlacingTest, APageFillsThePrintableAreaOfASheetThatHangsAtThePoint) {
    set("mclibpsd->marginLeft", "30");
    set("mclibpsd->marginRight", "10");
    set("mclibpsd->marginTop", "17");
    set("mclibpsd->marginBottom", "20");
    openPreview({{"One", 100000, 150000}});
    startPlacing(0, 1);
    EXPECT_EQ(front().field(2), "Give the upper left corner of the first sheet");
    host::giveDataPoint({100 * uor, 400 * uor, 0}, 0);
    EXPECT_FALSE(host::commandRuns());
    EXPECT_THAT(sheets(), ElementsAre(std::pair(100.0, 400.0)));
    const std::vector<Placed> frames = ofType(MDL_LINE_STRING);
    ASSERT_EQ(frames.size(), 1u);
    // 170 by 260 mm are free on A4, and 170 by 255 is the largest place for it.
    const Range3d& page = frames[0].range;
    EXPECT_NEAR(page.low.x / uor, 130, 1e-6);
    EXPECT_NEAR(page.high.x / uor, 300, 1e-6);
    EXPECT_NEAR(page.high.y / uor, 400 - 17 - 2.5, 1e-6);
    EXPECT_NEAR(page.low.y / uor, 400 - 297 + 20 + 2.5, 1e-6);
}

TEST_F(PlacingTest, SheetsOfARangeLieInRowsFromTheTop) {
    const struct {
        int pagesPerRow;
        std::vector<std::pair<double, double>> sheets;
    } cases[] = {
        {3, {{0, 0}, {210, 0}, {420, 0}, {0, -297}}},
        {1, {{0, 0}, {0, -297}, {0, -594}, {0, -891}}},
        {2, {{0, 0}, {210, 0}, {0, -297}, {210, -297}}},
    };
    openPreview(fourPages);
    for (const auto& c : cases) {
        const std::string name = path(std::to_string(c.pagesPerRow) + ".mcd");
        mdlSystem_createDesignFile(name.c_str(), 0);
        mdlSystem_newDesignFile(name.c_str(), 0);
        startPlacing(1, c.pagesPerRow);
        host::giveDataPoint({0, 0, 0}, 0);
        const auto found = sheets();
        ASSERT_EQ(found.size(), c.sheets.size()) << c.pagesPerRow;
        for (size_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(found[i].first, c.sheets[i].first, 1e-6) << c.pagesPerRow << " in a row, sheet " << i;
            EXPECT_NEAR(found[i].second, c.sheets[i].second, 1e-6) << c.pagesPerRow << " in a row, sheet " << i;
        }
    }
}

TEST_F(PlacingTest, EachSheetHasItsGraphicGroup) {
    openPreview(fourPages);
    startPlacing(1, 2);
    host::giveDataPoint({0, 0, 0}, 0);
    std::set<uint32_t> groups;
    const std::vector<Placed> lines = ofType(MDL_LINE);
    ASSERT_EQ(lines.size(), 32u);
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].graphicGroup, lines[i / 8 * 8].graphicGroup);
        groups.insert(lines[i].graphicGroup);
    }
    EXPECT_EQ(groups.size(), 4u);
}

TEST_F(PlacingTest, ATurnedSheetLiesAside) {
    set("mclibpsd->orientation", "0");
    openPreview(fourPages);
    startPlacing(1, 3);
    host::moveCursor({0, 0, 0}, 0);
    ASSERT_EQ(host::dynamicElements().size(), 4u);
    Range3d first, last;
    mdlElmdscr_computeRange(&first.low, &first.high, host::dynamicElements()[0].get(), nullptr);
    mdlElmdscr_computeRange(&last.low, &last.high, host::dynamicElements()[3].get(), nullptr);
    EXPECT_NEAR(first.high.x / uor, 297, 1e-6);
    EXPECT_NEAR(first.low.y / uor, -210, 1e-6);
    EXPECT_NEAR(last.low.x / uor, 0, 1e-6);
    EXPECT_NEAR(last.high.y / uor, -210, 1e-6);
    EXPECT_TRUE(drawing().empty()) << "moving the cursor adds nothing";
    host::giveReset();
    EXPECT_FALSE(host::commandRuns());
    EXPECT_TRUE(drawing().empty());
}

TEST_F(PlacingTest, ATurnedViewTurnsTheSheet) {
    RotMatrix quarter;
    mdlRMatrix_fromAngle(&quarter, *fc_piover2P);
    ASSERT_EQ(mdlView_setRotation(4, &quarter), MDL_SUCCESS);
    openPreview({{"One", 100000, 150000}});
    startPlacing(0, 1);
    host::giveDataPoint({0, 0, 0}, 4);
    // Right in the view is down in the model, and down in the view is left.
    const Range3d page = ofType(MDL_LINE_STRING).at(0).range;
    EXPECT_GT(page.high.x - page.low.x, page.high.y - page.low.y);
    EXPECT_LT(page.high.x, 0);
    EXPECT_LT(page.high.y, 0);
}

TEST_F(PlacingTest, APageThatIsNotMadeLeavesItsSheetEmpty) {
    openPreview({{"One", 100000, 150000}, {"None", 0, 0}, {"Three", 100000, 150000}});
    startPlacing(1, 3);
    host::giveDataPoint({0, 0, 0}, 0);
    EXPECT_EQ(sheets().size(), 3u);
    const std::vector<Placed> pages = ofType(MDL_LINE_STRING);
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_GT(pages[1].range.low.x / uor, 420);
}

TEST_F(PlacingTest, MarginsThatLeaveNothingOfTheSheetAreTold) {
    set("mclibpsd->marginLeft", "205");
    openPreview(fourPages);
    startPlacing(1, 1);
    const int before = front().dialogs;
    answers.press(-3);
    host::giveDataPoint({0, 0, 0}, 0);
    EXPECT_EQ(front().dialogs, before + 1) << "once, not for each page";
    EXPECT_TRUE(ofType(MDL_LINE_STRING).empty());
    EXPECT_FALSE(host::commandRuns());
}

TEST_F(PlacingTest, ThePageOnShowIsNotPlacedOnceThePreviewIsClosed) {
    openPreview(fourPages);
    startPlacing(0, 1);
    mdlWindow_close(preview, 0, 1);
    host::giveDataPoint({0, 0, 0}, 0);
    EXPECT_TRUE(drawing().empty()) << "neither a page nor the marks of its sheet";
    EXPECT_FALSE(host::commandRuns());
}

TEST_F(PlacingTest, WithoutADesignFileNothingStarts) {
    openPreview(fourPages);
    mdlSystem_closeDesignFile();
    for (const char* device : {"0", "6"}) {
        set("mclibpsd->deviceType", device);
        answerBox();  // before anything is asked
        press(dialog(), device == std::string("0") ? PLACE : PRINT);
        EXPECT_THAT(told, HasSubstr("No design file is open")) << device;
        EXPECT_FALSE(host::commandRuns());
        told.clear();
    }
}

// ---- plots ----

class PlottingTest : public PlacingTest {
  protected:
    PlottingTest() {
        fs::create_directory(path("plots"));
        mdlSystem_defineCfgVar("MS_PLTFILES", path("plots").c_str(), 4);
        mdlSystem_defineCfgVar("MS_USERPREF", path("user.prf").c_str(), 4);
    }

    // The set-up of a plot, as the user would leave it behind.
    void setUp(const std::string& driver, int pageSize = 9) {
        const std::string file = writeFile("test.plt", driver);
        answers.check([=, this](host::Dialog&) {
            set("mclibpsd->deviceType", "6");
            set("mclibpsd->pageSize", std::to_string(pageSize));
            set("mclibpsd->plotterFile", file);
        });
        answers.press(-3);
        mclibPrintSet_dialogOpen();
    }
    void startPlot(int range) {
        answers.setValue(ITEM_OPTION_BUTTON, RANGE, std::to_string(range)).press(-3);  // how
        answers.press(-3);                                                             // the notice
        press(dialog(), PRINT);
    }
    void plot(int range) {
        startPlot(range);
        host::giveDataPoint({0, 0, 0}, 0);
    }
    std::vector<std::string> plots() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(path("plots"))) names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }
};

TEST_F(PlottingTest, EachPageBecomesAFileAndNoneStaysInTheDrawing) {
    setUp("output = pdf\n");
    openPreview(fourPages);
    const Point3d ends[] = {{0, 0, 0}, {uor, uor, 0}};
    mdlLine_create(dgnBufP, nullptr, ends);
    ASSERT_NE(mdlElement_add(dgnBufP), 0u);
    plot(1);
    EXPECT_THAT(plots(), ElementsAre("test_Four.pdf", "test_One.pdf", "test_Three.pdf", "test_Two.pdf"));
    EXPECT_THAT(front().consoleText, HasSubstr("Plotted: " + path("plots/test_Two.pdf") + "\n"));
    ASSERT_EQ(drawing().size(), 1u) << "the line that was there before";
    EXPECT_EQ(drawing()[0].type, MDL_LINE);
    EXPECT_FALSE(host::commandRuns());
    EXPECT_EQ(mdlFence_isActive(), 0);
    EXPECT_EQ(mclibMain_getGlobalDataP()->plotDescr, nullptr);
    EXPECT_EQ(mclibMain_getGlobalDataP()->plotList, nullptr);
}

TEST_F(PlottingTest, ThePaperIsThatOfTheSetUp) {
    const struct {
        int pageSize;
        const char* mediaBox;
    } cases[] = {{9, "595.275"}, {7, "841.889"}, {11, "419.527"}, {8, "595.275"}};
    for (const auto& c : cases) {
        setUp("output = pdf\n", c.pageSize);
        openPreview({{"Page", 100000, 150000}});
        plot(0);
        EXPECT_THAT(readFile("plots/test_Page.pdf"), HasSubstr(std::string("/MediaBox [ 0 0 ") + c.mediaBox))
            << c.pageSize;
    }
}

TEST_F(PlottingTest, APlotThatFailsOnOnePageGoesOnOrEndsAndLeavesNothing) {
    setUp("output = png\nresolution = 20\nextension =\n");
    openPreview(fourPages);
    fs::create_directory(path("plots/test_Two.000"));
    for (const bool goesOn : {true, false}) {
        std::string told;
        startPlot(1);
        answers.check([&](host::Dialog& box) { told += textDrawnIn(box); });
        answers.press(goesOn ? -3 : -4);
        host::giveDataPoint({0, 0, 0}, 0);
        EXPECT_THAT(told, HasSubstr("Two"));
        EXPECT_TRUE(drawing().empty());
        EXPECT_EQ(fs::exists(path("plots/test_Three.000")), goesOn);
        EXPECT_TRUE(fs::exists(path("plots/test_One.000")));
        for (const char* name : {"One", "Three", "Four"}) fs::remove(path(std::string("plots/test_") + name + ".000"));
    }
}

TEST_F(PlottingTest, AResetGivesUpThePlot) {
    setUp("output = pdf\n");
    openPreview(fourPages);
    startPlot(1);
    EXPECT_TRUE(host::commandRuns());
    host::giveReset();
    EXPECT_FALSE(host::commandRuns());
    EXPECT_EQ(mclibMain_getGlobalDataP()->plotDescr, nullptr);
    EXPECT_TRUE(plots().empty());
    plot(0);
    EXPECT_THAT(plots(), ElementsAre("test_One.pdf"));
}

TEST_F(PlottingTest, PlacingInTheDrawingGivesUpAPlotThatWaits) {
    setUp("output = pdf\n");
    openPreview(fourPages);
    startPlot(0);
    startPlacing(0, 1);
    EXPECT_EQ(mclibMain_getGlobalDataP()->plotDescr, nullptr);
    host::giveDataPoint({0, 0, 0}, 0);
    EXPECT_TRUE(plots().empty());
    EXPECT_EQ(sheets().size(), 1u);
}

TEST_F(PlottingTest, APlotterThatCannotBeReadStartsNothing) {
    setUp("output = paper\n");
    openPreview(fourPages);
    press(dialog(), PRINT);
    EXPECT_FALSE(host::commandRuns());
    EXPECT_THAT(front().messages.back().brief, HasSubstr("pdf, png or svg"));
}

TEST_F(PlottingTest, AnOutputNameOfThePlotterTakesEachPage) {
    setUp("output = pdf\nname = " + path("plots/sheet") + "\n");
    openPreview(fourPages);
    plot(0);
    EXPECT_THAT(plots(), ElementsAre("sheet.pdf"));
}

TEST_F(PlottingTest, ASystemPrinterGetsAJobForEachPage) {
    fs::create_directories(path("spool/office/wide"));
    mdlSystem_defineCfgVar("MC_SPOOL", path("spool").c_str(), 4);
    setUp("printer = \\\\office\\wide\n");
    openPreview(fourPages);
    answers.setValue(ITEM_TEXT, 20011, "0").press(-3);
    answerBox();
    press(dialog(), PRINT);
    EXPECT_THAT(told, HasSubstr("copies is less than 1"));
    plot(1);
    EXPECT_TRUE(plots().empty());
    EXPECT_EQ(std::distance(fs::directory_iterator(path("spool/office/wide")), {}), 4);
    EXPECT_TRUE(drawing().empty());
}

}  // namespace
