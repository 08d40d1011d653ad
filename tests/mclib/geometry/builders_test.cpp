// Elements built by attribute, user data on elements, descriptors in rectangles, and measured texts.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/geometry/builders.h"
#include "mclib/geometry/elmdscr.h"
#include "mclib/geometry/plotfence.h"
#include "mclib/geometry/textsize.h"
#include "mclib/geometry/userdata.h"
#include "tests/support/library_fixture.h"

namespace {

constexpr int redLine = 1, text = 2;

class Builders : public LibraryTest {
  protected:
    Builders() {
        openDesignFile();
        mclibElmAttr_setGroupeNames(1, "Group", 1, 0);
        ElmAttrData data{};
        data.color = 3;
        data.useFlags = ATTR_USE_COLOR;
        mclibElmAttr_addAttribute(redLine, "line", 1, ATTR_KIND_SYMBOLOGY, 0, nullptr, 0, &data);
        data.useFlags = ATTR_USE_SIZE | ATTR_USE_JUST;
        data.textHeight = data.textWidth = 100;
        data.textJust = 2;
        mclibElmAttr_addAttribute(text, "text", 1, ATTR_KIND_TEXT, 0, nullptr, 0, &data);
    }
    ~Builders() override { mdlElmdscr_freeAll(&ed); }

    static void makeLine(double x1, double y1, double x2, double y2) {
        const Point3d ends[2] = {{x1, y1, 0}, {x2, y2, 0}};
        mclibElement_createLine(ends, redLine, nullptr);
    }
    // A descriptor that begins with a line.
    void startDescr(double x1 = 0, double y1 = 0, double x2 = 10, double y2 = 0) {
        makeLine(x1, y1, x2, y2);
        ASSERT_EQ(mdlElmdscr_new(&ed, nullptr, dgnBufP), MDL_SUCCESS);
    }
    std::vector<int> types() const {
        std::vector<int> found;
        for (const ElementDescr* node = ed; node != nullptr; node = node->next) {
            found.push_back(mdlElement_getType(node->element));
        }
        return found;
    }

    ElementDescr* ed = nullptr;
};

TEST_F(Builders, EachBuilderDressesItsElementAndAppendsIt) {
    startDescr();
    const Point3d points[4] = {{0, 0, 0}, {100, 0, 0}, {100, 100, 0}, {0, 100, 0}};
    mclibElement_createLineString(points, 3, redLine, ed);
    mclibElement_createArc(&points[0], 50, 0, 1, redLine, ed);
    mclibElement_createEllipse(&points[0], 50, redLine, ed);
    EXPECT_EQ(mdlElement_isFilled(dgnBufP), 0);
    mclibElement_createEllipseExtended(&points[0], 50, 1, redLine, ed);
    EXPECT_EQ(mdlElement_isFilled(dgnBufP), 1);
    mclibElement_createShape(points, 4, 1, redLine, ed);
    mclibElement_createArcByCenter(&points[1], &points[0], &points[3], 0, nullptr, redLine, ed);
    EXPECT_EQ(mclibElement_createText(&points[0], "abc", 1, nullptr, text, ed), MCLIB_SUCCESS);
    constexpr int centred = 7, unknown = 99;
    EXPECT_EQ(mclibElement_createText(&points[0], "abc", 1, &centred, unknown, ed), MCLIB_ERROR);
    EXPECT_EQ(types(), (std::vector<int>{MDL_LINE, MDL_LINE_STRING, MDL_ARC, MDL_ELLIPSE, MDL_ELLIPSE, MDL_SHAPE,
                                         MDL_ARC, MDL_TEXT}));
    for (const ElementDescr* node = ed; node->next != nullptr; node = node->next) {
        EXPECT_EQ(node->element->head.color, 3) << mdlElement_getType(node->element);
    }
}

TEST_F(Builders, AnArcByItsCentreLeavesTheSharedBufferAlone) {
    startDescr();
    const Point3d start = {100, 0, 0}, centre = {0, 0, 0}, end = {0, 100, 0};
    mclibElement_createArcByCenter(&start, &centre, &end, 0, nullptr, redLine, ed);
    EXPECT_EQ(mdlElement_getType(dgnBufP), MDL_LINE);
    double sweep = 0;
    mdlArc_extract(nullptr, nullptr, nullptr, nullptr, nullptr, &sweep, ed->next->element);
    EXPECT_NEAR(sweep, M_PI / 2, 1e-9);
}

TEST_F(Builders, AOneOffJustificationLeavesTheAttributeAsItWas) {
    startDescr();
    const int centred = 7;
    const Point3d origin = {5, 5, 0};
    mclibElement_createText(&origin, "abc", 1, &centred, text, ed);
    int32_t just = -1;
    mdlText_extract(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &just, nullptr, nullptr, dgnBufP);
    EXPECT_EQ(just, centred);
    ElmAttrData after{};
    mclibElmAttr_extractData(text, &after);
    EXPECT_EQ(after.textJust, 2);

    const size_t before = types().size();
    mclibElement_createText(&origin, "abc", 1, &centred, 99, ed);
    mclibElement_createText(&origin, std::string(256, 'x').c_str(), 1, &centred, text, ed);
    EXPECT_EQ(types().size(), before);
    mclibElmAttr_extractData(text, &after);
    EXPECT_EQ(after.textJust, 2);
}

TEST_F(Builders, SymbologyComesByLevelOrFromALevel) {
    makeLine(0, 0, 1, 0);
    EXPECT_EQ(mclibElement_setSymbologyByLevel(dgnBufP), MDL_SUCCESS);
    EXPECT_EQ(dgnBufP->head.color, ATTR_BY_LEVEL);
    EXPECT_EQ(dgnBufP->head.weight, ATTR_BY_LEVEL);
    EXPECT_EQ(dgnBufP->head.style, int32_t{ATTR_STYLE_BY_LEVEL});
    LevelId level = 0;
    ASSERT_EQ(mdlLevel_create(&level, mdlModelRef_getActive(), L"Axis"), MDL_SUCCESS);
    const uint32_t color = 5, weight = 6;
    const int32_t style = 2;
    mdlLevel_setElementSymbology(mdlModelRef_getActive(), level, &color, &style, nullptr, &weight, nullptr);
    mclibElement_setSymbologyFromLevel(dgnBufP, level + 100);
    EXPECT_EQ(dgnBufP->head.color, ATTR_BY_LEVEL);
    mclibElement_setSymbologyFromLevel(dgnBufP, level);
    EXPECT_EQ(dgnBufP->head.color, 5);
    EXPECT_EQ(dgnBufP->head.weight, 6);
    EXPECT_EQ(dgnBufP->head.style, 2);
}

// ---- user data ----

TEST_F(Builders, UserDataComesBackPaddedToEightBytes) {
    struct Case {
        unsigned written;
        int read;
    };
    std::string bytes(8189, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 + 1);
    for (const Case& c : {Case{0, 0}, Case{1, 8}, Case{8, 8}, Case{9, 16}, Case{8184, 8184}, Case{8188, 8192}}) {
        makeLine(0, 0, 10, 10);
        ASSERT_EQ(mclibAttrib_appendElementUserData(-2, 77, dgnBufP, bytes.data(), c.written), MCLIB_SUCCESS)
            << c.written;
        std::string read(8192, 'x');
        int key2 = 0, size = 0;
        ASSERT_EQ(mclibAttrib_extractElementUserData(dgnBufP, -2, &key2, read.data(), &size), MCLIB_SUCCESS);
        EXPECT_EQ(size, c.read);
        EXPECT_EQ(key2, 77);
        EXPECT_EQ(read.substr(0, c.written), bytes.substr(0, c.written));
        EXPECT_EQ(read.substr(c.written, size - c.written), std::string(size - c.written, '\0'));
    }
    makeLine(0, 0, 10, 10);
    const uint32_t before = mdlElement_bytes(dgnBufP);
    EXPECT_EQ(mclibAttrib_appendElementUserData(1, 1, dgnBufP, bytes.data(), 8189), MCLIB_ERROR);
    EXPECT_EQ(mdlElement_bytes(dgnBufP), before);
    EXPECT_EQ(front().consoleText, "Userdata er for stor. buffersize=8189\n");
}

TEST_F(Builders, OnlyTheFirstBlockOfUserDataIsLookedAt) {
    makeLine(0, 0, 10, 10);
    int key2 = 5, size = 6;
    char data[8192] = "as it was";
    EXPECT_EQ(mclibAttrib_extractElementUserData(dgnBufP, 1, &key2, data, &size), MCLIB_ERROR);
    mclibAttrib_appendElementUserData(1, 0, dgnBufP, "one", 3);
    mclibAttrib_appendElementUserData(2, 0, dgnBufP, "two", 3);
    EXPECT_EQ(mclibAttrib_extractElementUserData(dgnBufP, 2, &key2, data, &size), MCLIB_ERROR);
    EXPECT_STREQ(data, "as it was");
    EXPECT_EQ(key2, 5);
    EXPECT_EQ(mclibAttrib_extractElementUserData(dgnBufP, 1, &key2, data, &size), MCLIB_SUCCESS);
    EXPECT_STREQ(data, "one");

    MSElementBuffer stripped;
    EXPECT_EQ(mclibElement_stripAttributes(&stripped, dgnBufP), MDL_SUCCESS);
    EXPECT_EQ(mclibAttrib_extractElementUserData(&stripped, 1, &key2, data, &size), MCLIB_ERROR);
    EXPECT_EQ(stripped.head.color, 3);
}

TEST_F(Builders, ACellKeepsItsNamesWhenItLosesItsLinkages) {
    const Point3d origin = {1, 2, 0};
    ASSERT_EQ(mdlCell_create(dgnBufP, L"ARROW", &origin, 0), MDL_SUCCESS);
    mdlCell_setDescription(dgnBufP, L"an arrow");
    mclibAttrib_appendElementUserData(1, 0, dgnBufP, "one", 3);
    MSElementBuffer stripped;
    mclibElement_stripAttributes2(&stripped, dgnBufP);
    wchar_t name[512] = L"", description[512] = L"";
    mdlCell_extractName(name, 512, &stripped);
    mdlCell_extractDescription(description, 512, &stripped);
    EXPECT_STREQ(name, L"ARROW");
    EXPECT_STREQ(description, L"an arrow");
    EXPECT_EQ(mclibAttrib_extractElementUserData(&stripped, 1, nullptr, nullptr, nullptr), MCLIB_ERROR);
}

// ---- plot fences ----

struct Found {
    std::vector<double> corners = {};  // x of each fence's first point
    int reply = 0;
};

int noteFence(MSElementBuffer* element, FilePos position, ModelRef* model, void* userArg) {
    auto& found = *static_cast<Found*>(userArg);
    Point3d points[8];
    int32_t count = 0;
    mdlLinear_extract(points, &count, element, 8);
    EXPECT_NE(position, 0u);
    EXPECT_EQ(model, mdlModelRef_getActive());
    found.corners.push_back(points[0].x);
    if (found.reply != 0) dlmSystem_mdlFree(element);
    return found.reply;
}

TEST_F(Builders, PlotFencesAreShapesWithTheirMark) {
    for (int i = 0; i < 300; ++i) {
        const double x = i * 10;
        const Point3d corners[4] = {{x, 0, 0}, {x + 5, 0, 0}, {x + 5, 5, 0}, {x, 5, 0}};
        mclibElement_createShape(corners, 4, 0, redLine, nullptr);
        if (i % 100 == 50) mclibAttrib_appendElementUserData(MCLIB_PLOT_FENCE, 1, dgnBufP, "x", 1);
        if (i % 100 == 51) mclibAttrib_appendElementUserData(MCLIB_PLOT_FENCE + 1, 1, dgnBufP, "x", 1);
        ASSERT_NE(mdlElement_add(dgnBufP), 0u);
    }
    makeLine(0, 0, 1, 1);
    mclibAttrib_appendElementUserData(MCLIB_PLOT_FENCE, 1, dgnBufP, "x", 1);
    mdlElement_add(dgnBufP);

    Found found;
    EXPECT_EQ(mclibUtil_findAllPlotFence(noteFence, &found), 0);
    EXPECT_EQ(found.corners, (std::vector<double>{500, 1500, 2500}));
    Found first{.reply = 1};
    mclibUtil_findAllPlotFence(noteFence, &first);
    EXPECT_EQ(first.corners, (std::vector<double>{500}));
}

// ---- descriptors and texts ----

TEST_F(Builders, ADescriptorIsFittedIntoARectangle) {
    startDescr(0, 0, 2, 1);
    Point3d box[3] = {{1000, 2000, 0}, {1100, 2000, 0}, {1100, 2100, 0}};
    mclibElemDscr_placeElementDescr(box, 1, ed);
    Point3d range[2];
    ASSERT_EQ(mclibElemDscr_getRange(range, ed), MDL_SUCCESS);
    EXPECT_NEAR(range[0].x, 1000, 1e-6);
    EXPECT_NEAR(range[1].x, 1100, 1e-6);
    EXPECT_NEAR(range[0].y, 2025, 1e-6);
    EXPECT_NEAR(range[1].y, 2075, 1e-6);
}

TEST_F(Builders, AnEmptyRectangleBecomesOneWideInTheCallersArray) {
    startDescr(10, 10, 12, 11);
    Point3d box[3] = {{5, 6, 0}, {5, 6, 0}, {5, 6, 0}};
    mclibElemDscr_placeElementDescr(box, 0, ed);
    EXPECT_EQ(box[2].x, 6);
    EXPECT_EQ(box[2].y, 7);
    Point3d range[2];
    mclibElemDscr_getRange(range, ed);
    EXPECT_NEAR(range[0].x, 5, 1e-9);  // scaled by a half about the origin
    EXPECT_NEAR(range[1].y, 5.5, 1e-9);
}

TEST_F(Builders, ATextIsAsWideAsItsWidestLine) {
    double width = 0, height = 0, total = 0, one = 0;
    int just = -1;
    mclibUtil_extractTextSize("mm", 1, text, 50, &one, nullptr, nullptr, nullptr);
    mclibUtil_extractTextSize("i\nmm\\nmi", 1, text, 50, &width, &height, &total, &just);
    EXPECT_GT(one, 0);
    EXPECT_NEAR(width, one, 1e-9);
    EXPECT_NEAR(height, 100, 1e-9);
    EXPECT_NEAR(total, 2 * 50 + 3 * 100, 1e-9);
    EXPECT_EQ(just, 2);
    mclibUtil_extractTextSize(("i\n" + std::string(510, 'm')).c_str(), 1, text, 50, &width, &height, &total, nullptr);
    EXPECT_NEAR(width, 255 * one, 1e-6);  // more letters than a text element holds
    EXPECT_NEAR(height, 100, 1e-9);
    total = -1;
    mclibUtil_extractTextSize("mm", 1, text, 50, nullptr, nullptr, &total, nullptr);
    EXPECT_EQ(total, -1);
    mclibUtil_extractTextSize("mm", 1, 99, 50, &width, &height, &total, nullptr);
    EXPECT_EQ(width, 0);
    EXPECT_EQ(height, 0);
}

}  // namespace
