// The page walker: elements of a design file become lines of a PostScript file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <optional>
#include <sstream>

#include "frame/main.h"
#include "host/mdl/elmdscr.h"
#include "host/mdl/level.h"
#include "host/mdl/model.h"
#include "host/mdl/system.h"
#include "host/mdl/text.h"
#include "host/mdl/transform.h"
#include "print/print.h"
#include "print/ps_prolog.h"
#include "tests/support/session_fixture.h"

namespace {

constexpr double pi = std::numbers::pi;

int registerMain(int argc, char** argv) {
    return mclibMain_initMcLib("print test", argc, argv);
}

// The look of an element. Level: the code of its level, made when it isn't there.
struct Look {
    uint32_t color = 0, weight = 0;
    int32_t style = 0, level = 0;
};

// A page of an application with a design file. Its sheet is 200 by 100 mm and its elements are given in thousandths of
// a millimetre, so that a box of the sheet's size has them in their places.
class Print : public SessionTest {
  protected:
    Print() : SessionTest({{"MS_APPRSC", BUILD_DIR "/lib/mclib.rsc"}, {"MC_DIR", "c:\\mc\\"}}) {
        session().startApplication("print", registerMain, "USER", {});
        scope.emplace(application("print"));
        EXPECT_EQ(mdlSystem_createDesignFile(path("page.mcd").c_str(), 0), MDL_SUCCESS);
        EXPECT_EQ(mdlSystem_newDesignFile(path("page.mcd").c_str(), 0), MDL_SUCCESS);
    }
    ~Print() override {
        mdlElmdscr_freeAll(&page);
        scope.reset();
    }

    static LevelId levelOf(int32_t code) {
        LevelId id = 0;
        ModelRef* model = mdlModelRef_getActive();
        if (mdlLevel_getIdFromCode(&id, model, code) != MDL_SUCCESS)
            mdlLevel_create(&id, model, (L"Level " + std::to_wstring(code)).c_str());
        return id;
    }

    void setLook(const Look& look) {
        mdlElement_setSymbology(&element, &look.color, &look.weight, &look.style);
        const uint32_t level = levelOf(look.level);
        mdlElement_setProperties(&element, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    void append(const Look& look) {
        setLook(look);
        if (page)
            mdlElmdscr_appendElement(page, &element);
        else
            mdlElmdscr_new(&page, nullptr, &element);
    }
    void line(double x1, double y1, double x2, double y2, const Look& look = {}) {
        const Point3d points[2] = {{x1, y1, 0}, {x2, y2, 0}};
        mdlLine_create(&element, nullptr, points);
        append(look);
    }
    void shape(bool filled, const Look& look) {
        const Point3d points[3] = {{10000, 10000, 0}, {20000, 10000, 0}, {20000, 20000, 0}};
        mdlShape_create(&element, nullptr, points, 3, filled);
        append(look);
    }
    void text(const wchar_t* characters, int32_t just, double angle = 0) {
        const Point3d origin = {20000, 10000, 0};
        RotMatrix rotation;
        mdlRMatrix_fromAngle(&rotation, angle);
        const TextSize size = {1, 2500, 2500, 1};
        const TextParams params = {0, just, -1, -1, 0, 0, 0};
        ASSERT_EQ(mdlText_createWide(&element, nullptr, characters, &origin, &rotation, &size, &params, 0),
                  MDL_SUCCESS);
        append({});
    }

    // Two short strokes in the corners of the sheet, which give the page its extent.
    static constexpr const char* cornerLines =
        "[] 0 setdash\n0.28 setlinewidth\n0.00 0.00 moveto\n0.00 0.00 lineto\nstroke\n"
        "[] 0 setdash\n0.28 setlinewidth\n566.93 283.46 moveto\n566.93 283.46 lineto\nstroke\n";
    void corners() {
        line(0, 0, 0, 0);
        line(200000, 100000, 200000, 100000);
    }

    // The whole file of a job that prints the page into the box, a number of times.
    std::string job(const Point3d& at = {0, 0, 0}, double width = 200, double height = 100, int pages = 1) {
        EXPECT_EQ(mclibPrint_fopen(path("page.ps").c_str(), PRINT_POSTSCRIPT), 1);
        for (int i = 0; i < pages; ++i) {
            if (i > 0) mclibPrint_newPage();
            mclibPrint_printElementDescr(page, at.x, at.y, width, height);
        }
        mclibPrint_fclose();
        EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_SUCCESS);
        return readFile("page.ps");
    }

    // What the elements behind the corners' strokes wrote.
    std::string printed() {
        std::string all = job();
        const std::string end = "showpage\n";
        EXPECT_TRUE(all.starts_with(psProlog));
        all = all.substr(psProlog.size(), all.size() - psProlog.size() - end.size());
        const size_t at = all.find(cornerLines);
        EXPECT_NE(at, all.npos) << all;
        return all.erase(at, std::string(cornerLines).size());
    }

    MSElementBuffer element;
    ElementDescr* page = nullptr;

  private:
    std::optional<host::ApplicationScope> scope;
};

std::string linePath(const char* dash, const char* width) {
    return std::string("[") + dash + "] 0 setdash\n" + width +
           " setlinewidth\n85.04 113.39 moveto\n226.77 113.39 lineto\nstroke\n";
}

std::string shapePath(const std::string& gray) {
    const std::string path =
        "0.28 setlinewidth\n28.35 28.35 moveto\n56.69 28.35 lineto\n56.69 56.69 lineto\n28.35 28.35 lineto\n";
    return gray.empty() ? "[] 0 setdash\n" + path + "stroke\n"
                        : "[] 0 setdash\n" + gray + " setgray\n" + path + "closepath fill\n0.00 setgray\n";
}

}  // namespace

TEST_F(Print, WeightsAndStylesBeyondTheTablesHaveADefault) {
    struct Case {
        uint32_t weight;
        int32_t style;
        const char *dash, *width;
    };
    for (const Case& c : {Case{2, 0, "", "0.99"}, Case{15, 6, "14.16 3.6 0.72 3.6 0.72 3.6", "17.01"},
                          Case{16, 7, "14.16 5.76 7.2 5.76", "0.99"}, Case{0, 8, "", "0.28"}}) {
        mdlElmdscr_freeAll(&page);
        corners();
        line(30000, 40000, 80000, 40000, {.weight = c.weight, .style = c.style});
        EXPECT_EQ(printed(), linePath(c.dash, c.width)) << c.weight << ' ' << c.style;
    }
}

TEST_F(Print, GreyOfAShapeComesFromFillColourAndLevel) {
    struct Case {
        bool filled;
        uint32_t color;
        int32_t level;
        const char* gray;
    };
    for (const Case& c :
         {Case{false, 3, 0, ""}, Case{true, 3, 0, "0.00"}, Case{true, 150, 0, "0.00"}, Case{true, 150, 63, "0.50"},
          Case{false, 150, 63, "0.50"}, Case{false, 100, 63, "1.00"}, Case{false, 200, 63, "0.00"},
          Case{false, 99, 63, ""}, Case{true, 99, 63, "0.00"}, Case{false, 201, 63, ""}}) {
        mdlElmdscr_freeAll(&page);
        corners();
        shape(c.filled, {.color = c.color, .level = c.level});
        EXPECT_EQ(printed(), shapePath(c.gray)) << c.filled << ' ' << c.color << ' ' << c.level;
    }
}

TEST_F(Print, BackgroundLevelIsDrawnOnceAndFirst) {
    corners();
    line(30000, 40000, 80000, 40000);
    shape(false, {.level = 63});
    const std::string all = job();
    const size_t background = all.find(shapePath("")), front = all.find(linePath("", "0.28"));
    EXPECT_EQ(background, psProlog.size());
    EXPECT_NE(front, all.npos);
    EXPECT_EQ(all.find(shapePath(""), background + 1), all.npos);
    EXPECT_EQ(all.find(linePath("", "0.28"), front + 1), all.npos);
}

TEST_F(Print, TextsStandOnTheirBaseLine) {
    // Text origin (20, 10) mm, box 2.5 mm high.
    struct Case {
        int32_t just;
        const char *x, *y, *procedure;
    };
    for (const Case& c : {
             Case{0, "56.69", "21.26", "_dtfl"},
             Case{1, "56.69", "24.80", "_dtfl"},
             Case{2, "56.69", "28.35", "_dtfl"},
             Case{3, "56.69", "21.26", "_dtfl"},
             Case{5, "56.69", "28.35", "_dtfl"},
             Case{6, "56.69", "21.26", "_dtfc"},
             Case{7, "56.69", "24.80", "_dtfc"},
             Case{8, "56.69", "28.35", "_dtfc"},
             Case{9, "56.69", "21.26", "_dtfr"},
             Case{11, "56.69", "28.35", "_dtfr"},
             Case{12, "56.69", "21.26", "_dtfr"},
             Case{13, "56.69", "24.80", "_dtfr"},
             Case{14, "56.69", "28.35", "_dtfr"},
         }) {
        mdlElmdscr_freeAll(&page);
        corners();
        text(L"Side 1", c.just);
        EXPECT_EQ(printed(), std::string(c.x) + ' ' + c.y + " (Side 1) 9.21 0.00 " + c.procedure + '\n') << c.just;
    }
    mdlElmdscr_freeAll(&page);
    corners();
    text(L" \u00e6(\\", 0, pi / 2);  // turned: across the text is to its right
    EXPECT_EQ(printed(), "63.78 28.35 ( \xE6\\(\\\\) 9.21 90.00 _dtfl\n");
    mdlElmdscr_freeAll(&page);
    corners();
    text(L"   ", 2);
    EXPECT_EQ(printed(), "");
}

TEST_F(Print, ComplexShapeIsDrawnAsAWholeAndACellByItsParts) {
    corners();
    const Point3d corner[3] = {{10000, 10000, 0}, {20000, 10000, 0}, {20000, 20000, 0}};
    for (const int type : {MDL_COMPLEX_SHAPE, MDL_CELL_HEADER}) {
        mdlElmdscr_freeAll(&page);
        corners();
        ElementDescr* group = nullptr;
        mdlCell_create(&element, L"group", &corner[0], 0);
        element.head.type = static_cast<uint16_t>(type);
        setLook({});
        mdlElmdscr_new(&group, nullptr, &element);
        for (int i = 0; i < 3; ++i) {
            const Point3d side[2] = {corner[i], corner[(i + 1) % 3]};
            mdlLine_create(&element, nullptr, side);
            setLook({});
            mdlElmdscr_appendElement(group, &element);
        }
        mdlElmdscr_appendDscr(page, group);
        const std::string lines = printed();
        if (type == MDL_COMPLEX_SHAPE)
            EXPECT_EQ(lines, shapePath(""));
        else
            EXPECT_EQ(std::count(lines.begin(), lines.end(), '['), 3) << lines;
    }
}

TEST_F(Print, PageIsFittedIntoTheMiddleOfItsBox) {
    corners();
    // 200 by 100 into 50 by 100 at (10, 20): a quarter of the size, 25 high, from y = 57.5.
    const std::string all = job({10, 20, 0}, 50, 100);
    EXPECT_NE(all.find("\n28.35 162.99 moveto\n"), all.npos);
    EXPECT_NE(all.find("\n170.08 233.86 moveto\n"), all.npos);
}

TEST_F(Print, PageWithoutHeightIsFittedByItsWidth) {
    line(0, 5000, 1000, 5000);
    const std::string all = job({10, 20, 0}, 100, 50);
    EXPECT_NE(all.find("28.35 127.56 moveto\n311.81 127.56 lineto\n"), all.npos) << all.substr(psProlog.size());
}

TEST_F(Print, PageWithoutExtentPrintsNothing) {
    const std::string empty = std::string(psProlog) + "showpage\n";
    EXPECT_EQ(job(), empty);
    line(5000, 5000, 5000, 5000);
    EXPECT_EQ(job(), empty);
    mdlElmdscr_freeAll(&page);
    corners();
    EXPECT_EQ(job({0, 0, 0}, 0, 0), empty);
    EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR);  // no transform is left open
}

TEST_F(Print, PagePrintedTwiceGivesTheSameBytes) {
    corners();
    text(L"twice", 7, 0.3);
    shape(true, {.color = 120, .level = 63});
    const std::string once = job(), twice = job({0, 0, 0}, 200, 100, 2);
    EXPECT_EQ(job(), once);
    const std::string body = once.substr(psProlog.size());
    EXPECT_EQ(twice, std::string(psProlog) + body + body);
}

TEST_F(Print, PageSizesByCode) {
    double width = 1, height = 2;
    mclibPrint_getPageSize(&width, &height, 13);
    mclibPrint_getPageSize(&width, &height, 0);
    EXPECT_EQ(width, 1);
    EXPECT_EQ(height, 2);
    mclibPrint_getPageSize(&width, &height, 11);
    EXPECT_EQ(width, 148.5);
    EXPECT_EQ(height, 210);
}

TEST_F(Print, DeviceWithoutDriverTakesAWholeJob) {
    corners();
    for (const int device : {2, 3, 6, 7, -1}) {
        EXPECT_EQ(mclibPrint_fopen(path("nothing.out").c_str(), device), 1);
        mclibPrint_printElementDescr(page, 0, 0, 10, 10);
        mclibPrint_newPage();
        mclibPrint_fclose();
        EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_SUCCESS);
    }
    EXPECT_EQ(readFile("nothing.out"), "");
}

TEST_F(Print, FileThatCantBeOpenedOrWrittenIsTold) {
    corners();
    for (int i = 0; i < 2000; ++i) line(0, 0, 200000, i);
    struct Case {
        std::string file;
        int opened;
    };
    for (const Case& c : {Case{path("no folder/page.ps"), 0}, Case{"/dev/full", 1}}) {
        front().clear();
        EXPECT_EQ(mclibPrint_fopen(c.file.c_str(), PRINT_POSTSCRIPT), c.opened);
        mclibPrint_printElementDescr(page, 0, 0, 10, 10);
        mclibPrint_fclose();
        EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_ERROR);
        EXPECT_NE(front().consoleText.find(c.file), std::string::npos) << front().consoleText;
    }
}

TEST_F(Print, WithoutARegisteredApplicationNothingIsPrinted) {
    const host::ApplicationScope other(application("stranger"));
    EXPECT_EQ(mclibPrint_fopen(path("stranger.ps").c_str(), PRINT_POSTSCRIPT), 0);
    mclibPrint_printElementDescr(page, 0, 0, 10, 10);
    mclibPrint_newPage();
    mclibPrint_fclose();
    EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_ERROR);
    EXPECT_EQ(readFile("stranger.ps"), "");
}

// One page with each kind of element, as a whole file. Ghostscript must take it without a word.
TEST_F(Print, WholePageIsTheGoldenAndRenders) {
    corners();
    shape(false, {.color = 130, .level = 63});
    line(30000, 40000, 80000, 40000, {.weight = 3, .style = 4});
    text(L"Bl\u00e5b\u00e6r (100 %) \\ \u00d8", 7, pi / 6);
    const Point3d center = {120000, 50000, 0};
    mdlArc_create(&element, nullptr, &center, 30000, 20000, nullptr, 0, pi / 2);
    append({.weight = 1});
    mdlEllipse_create(&element, nullptr, &center, 10000, 10000, nullptr, 1);
    append({});
    const std::string file = job();
    const std::string golden = TEST_SOURCE_DIR "/golden/page.ps";
    std::ostringstream expected;
    expected << std::ifstream(golden, std::ios::binary).rdbuf();
    if (file != expected.str()) {
        std::ofstream(BUILD_DIR "/page.ps", std::ios::binary) << file;
        ADD_FAILURE() << "to accept the new page: cp " BUILD_DIR "/page.ps " << golden;
    }
    if (std::system("command -v gs >/dev/null") != 0) GTEST_SKIP() << "Ghostscript isn't installed: not rendered";
    const std::string render =
        "timeout 60 gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=png16m -r36 -sOutputFile=" + path("page.png") + ' ' +
        path("page.ps") + " > " + path("gs.log") + " 2>&1";
    EXPECT_EQ(std::system(render.c_str()), 0) << readFile("gs.log");
    EXPECT_EQ(readFile("gs.log"), "");
    EXPECT_GT(readFile("page.png").size(), 500u);
}
