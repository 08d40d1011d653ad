// The page walker: elements of a design file become lines of a PostScript file.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "mchost/mdl/cell.h"
#include "mchost/mdl/elmdscr.h"
#include "mclib/print/ps_prolog.h"
#include "tests/mclib/print/page_fixture.h"
#include "tests/support/cell_file.h"

using namespace mc;

namespace {

constexpr double pi = std::numbers::pi;

// What the points in the corners of the sheet write.
constexpr const char* cornerLines =
    "[] 0 setdash\n0.28 setlinewidth\n0.00 0.00 moveto\n0.00 0.00 lineto\nstroke\n"
    "[] 0 setdash\n0.28 setlinewidth\n566.93 283.46 moveto\n566.93 283.46 lineto\nstroke\n";

class Print : public PageTest {
  protected:
    std::string job(const PaperBox& box = {0, 0, 200, 100}, int pages = 1) {
        return PageTest::job(PRINT_POSTSCRIPT, box, pages);
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

// The background of a page and looks by level come from levels that a session has without a design file too.
TEST_F(Print, APageLooksTheSameWithAndWithoutADesignFile) {
    CellFile library;
    constexpr int32_t byLevel = -1, styleByLevel = 0x7FFFFFFF;
    mdlCell_create(&element, L"FORM", nullptr, 0);
    mdlElmdscr_new(&page, nullptr, &element);
    const auto add = [&](const wchar_t* level, double size, int32_t color, int32_t weight, int32_t style) {
        const Point3d points[3] = {{0, 0, 0}, {size, 0, 0}, {size, size, 0}};
        mdlShape_create(&element, nullptr, points, 3, 0);
        element.head.level = library.draft().level(level);
        element.head.color = color;
        element.head.weight = static_cast<int16_t>(weight);
        element.head.style = style;
        mdlElmdscr_appendElement(page, &element);
    };
    add(L"Lines", 200000, byLevel, byLevel, styleByLevel);
    add(L"63", 50000, 115, 0, 0);
    library.draft().setLevelSymbology(library.draft().level(L"Lines"), 3, 2, 6);
    ASSERT_TRUE(library.draft().add(page));
    library.write(path("form.cel"));
    ASSERT_EQ(mdlCell_attachLibraryEx(nullptr, path("form.cel").c_str(), 0, 1, 2), MDL_SUCCESS);
    std::string jobs[2];
    for (std::string& job : jobs) {
        mdlElmdscr_freeAll(&page);
        ASSERT_EQ(mdlCell_getElmDscr(&page, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 1,
                                     L"FORM", nullptr),
                  MDL_SUCCESS);
        job = this->job();
        mdlSystem_closeDesignFile();
    }
    EXPECT_EQ(jobs[1], jobs[0]);
    const size_t grey = jobs[1].find("0.85 setgray"), dashes = jobs[1].find("[5.76 3.6] 0 setdash\n4.25 setlinewidth");
    EXPECT_LT(grey, dashes) << jobs[1];
    EXPECT_NE(dashes, std::string::npos) << jobs[1];
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
             Case{7, "56.69", "24.80", "_dtfc"},
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
    const std::string all = job({10, 20, 50, 100});
    EXPECT_NE(all.find("\n28.35 162.99 moveto\n"), all.npos);
    EXPECT_NE(all.find("\n170.08 233.86 moveto\n"), all.npos);
}

TEST_F(Print, PageWithoutHeightIsFittedByItsWidth) {
    line(0, 5000, 1000, 5000);
    const std::string all = job({10, 20, 100, 50});
    EXPECT_NE(all.find("28.35 127.56 moveto\n311.81 127.56 lineto\n"), all.npos) << all.substr(psProlog.size());
}

TEST_F(Print, PageWithoutExtentPrintsNothing) {
    const std::string empty = std::string(psProlog) + "showpage\n";
    EXPECT_EQ(job(), empty);
    line(5000, 5000, 5000, 5000);
    EXPECT_EQ(job(), empty);
    mdlElmdscr_freeAll(&page);
    corners();
    EXPECT_EQ(job({0, 0, 0, 0}), empty);
    EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR);  // no transform is left open
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
