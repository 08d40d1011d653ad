// Which elements are base elements of symbols, and where their boxes are told from.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "mchost/mdl/model.h"
#include "tests/mclib/design/symbol_drawing.h"

namespace {

using testing::ElementsAre;

class BaseElements : public SymbolTest {};

TEST_F(BaseElements, BoxesAreToldFromTheOriginAndGrowWithTheSize) {
    const struct {
        int32_t group;
        Point3d origin;
        double size;
        std::function<void()> draw;
    } cases[] = {
        {SEARCH_GROUP_LINE,
         {1020, 5, 0},
         20,
         [] {
             addLine({1010, 0, 0}, {1030, 10, 0});
         }},
        {SEARCH_GROUP_CIRCLE,
         {2010, 30, 0},
         4,
         [] {
             addEllipse({2010, 30, 0}, 4, 2);
         }},
        {SEARCH_GROUP_RECTANGLE,
         {2990, -7, 0},
         20,
         [] {
             addBox({3010, 5, 0}, -20, -12);
         }},
        {SEARCH_GROUP_TEXT,
         {4000, 0, 0},
         3,
         [] {
             addText("W", {4000, 0, 0}, {.height = 3});
         }},
    };
    for (const auto& c : cases) {
        c.draw();
        addText("T", {c.origin.x + 10 * c.size, c.origin.y, 0}, {.height = 0.1});
        SymbolSearch search(c.group, {textsLike("T")});
        search.low = {{9.99, -0.01, 0}};
        search.high = {{10.01, 0.01, 0}};
        EXPECT_EQ(count(search), 0u);
        search.spec.flags = SEARCH_SCALE_REGIONS;
        EXPECT_EQ(count(search), 1u) << "group " << c.group;
    }
}

TEST_F(BaseElements, SizesLieWithinTheirLimits) {
    addText("W", {}, {.height = 10});
    addLine({0, 0, 0}, {6, 8, 0});
    addBox({0, 0, 0}, 10, 4);
    addEllipse({0, 0, 0}, 10, 4);
    for (int32_t group = SEARCH_GROUP_LINE; group <= SEARCH_GROUP_TEXT; ++group) {
        const bool hasSecond = group == SEARCH_GROUP_CIRCLE || group == SEARCH_GROUP_RECTANGLE;
        const struct {
            double leastA, mostA, leastB, mostB;
            bool isFound;
        } cases[] = {{10, 10, 4, 4, true},
                     {-1, -1, -1, -1, true},
                     {-1, 11, 3, -1, true},
                     {10.001, -1, -1, -1, false},
                     {-1, 9.999, -1, -1, false},
                     {0, 0, 0, 0, false},
                     {-1, -1, 4.001, -1, !hasSecond},
                     {-1, -1, -1, 3.999, !hasSecond}};
        for (const auto& c : cases) {
            SymbolSearch search(group);
            search.spec.minSizeA = c.leastA;
            search.spec.maxSizeA = c.mostA;
            search.spec.minSizeB = c.leastB;
            search.spec.maxSizeB = c.mostB;
            EXPECT_EQ(count(search), c.isFound ? 1u : 0u) << "group " << group << ", case " << &c - cases;
        }
    }
}

TEST_F(BaseElements, TakesRectanglesAlongTheAxes) {
    const struct {
        const char* what;
        std::vector<Point3d> corners;
        size_t found;
    } cases[] = {
        {"square", {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, 1},
        {"another way round", {{0, 4, 0}, {0, 0, 0}, {10, 0, 0}, {10, 4, 0}}, 1},
        {"a corner 0.9% off", {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0.09, 10, 0}}, 1},
        {"a corner 2% off", {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0.2, 10, 0}}, 0},
        {"turned", {{5, 0, 0}, {10, 5, 0}, {5, 10, 0}, {0, 5, 0}}, 0},
        {"a bow tie", {{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}}, 0},
        {"a triangle", {{0, 0, 0}, {10, 0, 0}, {0, 10, 0}}, 0},
        {"five corners", {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 10, 0}, {0, 10, 0}}, 0},
    };
    addText("T");
    for (const auto& c : cases) {
        const FilePos shape = addShape(c.corners);
        SymbolSearch search(SEARCH_GROUP_RECTANGLE);
        EXPECT_EQ(count(search), c.found) << c.what;
        mdlElement_undoableDelete(nullptr, shape, 0);
    }
}

struct ArcPart {
    Point3d center;
    double radius, sweep;
};

TEST_F(BaseElements, CompletesCirclesFromArcs) {
    const struct {
        const char* what;
        std::vector<ArcPart> arcs;  // each goes on where the one before it ends
        size_t found;
    } cases[] = {
        {"two halves", {{{0, 0, 0}, 5, pi}, {{0, 0, 0}, 5, pi}}, 1},
        {"four quarters, clockwise", {4, {{0, 0, 0}, 5, -pi / 2}}, 1},
        {"one arc all round", {{{0, 0, 0}, 5, 2 * pi}}, 1},
        {"6.2657 in all", {{{0, 0, 0}, 5, 3}, {{0, 0, 0}, 5, 3.2658}}, 1},
        {"6.2 in all", {{{0, 0, 0}, 5, 2}, {{0, 0, 0}, 5, 2}, {{0, 0, 0}, 5, 2.2}}, 0},
        {"more than all round", {{{0, 0, 0}, 5, pi}, {{0, 0, 0}, 5, pi + 0.02}}, 0},
        {"radii 0.9% apart", {{{0, 0, 0}, 5, pi}, {{0, 0, 0}, 5.045, pi}}, 1},
        {"radii 2% apart", {{{0, 0, 0}, 5, pi}, {{0, 0, 0}, 5.1, pi}}, 0},
        {"centres 1.8% apart", {{{0, 0, 0}, 5, pi}, {{0.09, -0.09, 0}, 5, pi}}, 1},
        {"centres 2.2% apart", {{{0, 0, 0}, 5, pi}, {{0, 0.11, 0}, 5, pi}}, 0},
        {"a half alone", {{{0, 0, 0}, 5, pi}}, 0},
    };
    addText("T");
    for (const auto& c : cases) {
        std::vector<FilePos> positions;
        double start = 0.3;
        for (const ArcPart& arc : c.arcs) {
            positions.push_back(addArc(arc.center, arc.radius, start, arc.sweep));
            start += arc.sweep;
        }
        SymbolSearch search(SEARCH_GROUP_CIRCLE);
        EXPECT_EQ(count(search), c.found) << c.what;
        for (const Report& report : reports) {
            EXPECT_EQ(report.position, positions.front());
            EXPECT_EQ(report.type, MDL_ELLIPSE);
            EXPECT_NEAR(std::hypot(report.center.x, report.center.y), 0, 1e-3);
            EXPECT_NEAR(report.axis1, 5, 1e-3);
            EXPECT_NEAR(report.axis2, 5, 1e-3);
        }
        for (const FilePos position : positions) mdlElement_undoableDelete(nullptr, position, 0);
    }
}

TEST_F(BaseElements, AnEllipseKeepsItsRotation) {
    addText("T");
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, 0.5);
    add([&](MSElementBuffer* e) {
        const Point3d center = {0, 0, 0};
        return mdlEllipse_create(e, nullptr, &center, 5, 3, &turned, 0);
    });
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    ASSERT_EQ(count(search), 1u);
    EXPECT_NEAR(reports[0].rotation.form[1][0], std::sin(0.5), 1e-9);
}

TEST_F(BaseElements, ArcsFarAboveEachOtherAreNoCircle) {
    ASSERT_EQ(mdlSystem_createDesignFile(path("solid.mcd").c_str(), 1), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(path("solid.mcd").c_str(), 0), MDL_SUCCESS);
    addText("T");
    addArc({0, 0, 100}, 5, 0, pi);
    addArc({0, 0, 0}, 5, pi, pi);
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    EXPECT_EQ(count(search), 0u);
    addArc({0, 0, 100}, 5, pi, pi);
    EXPECT_EQ(count(search), 1u) << "the boxes of texts reach all the way up";
}

TEST_F(BaseElements, AnArcThatWasLookedAtIsNotTriedByItself) {
    addText("T");
    addArc({0, 0, 0}, 5, 0, pi / 2);
    addArc({0, 0, 0}, 7, 0, 2 * pi);
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    EXPECT_EQ(count(search), 0u);
    search.spec.minSizeA = 6;
    EXPECT_EQ(count(search), 0u) << "limits don't keep an arc from looking around";
    addArc({60, 0, 0}, 3, 0, 2 * pi);
    search.low = {{-70, -70, 0}};
    search.spec.minSizeA = -1;
    EXPECT_EQ(count(search), 1u);
}

TEST_F(BaseElements, CompoundElementsCountByTheirParts) {
    using Parts = std::vector<Part>;
    const Part line = [](MSElementBuffer* e) {
        const Point3d ends[] = {{0, 0, 0}, {10, 0, 0}};
        return mdlLine_create(e, nullptr, ends);
    };
    const auto box = [](bool isClosed) -> Part {
        return [=](MSElementBuffer* e) {
            const Point3d corners[] = {{0, 0, 0}, {10, 0, 0}, {10, 4, 0}, {0, 4, 0}, {0, isClosed ? 0 : 0.01, 0}};
            return mdlLineString_create(e, nullptr, corners, 5);
        };
    };
    const auto arc = [](double radius, double sweep) -> Part {
        return [=](MSElementBuffer* e) {
            const Point3d center = {0, 0, 0};
            return mdlArc_create(e, nullptr, &center, radius, radius, nullptr, 0, sweep);
        };
    };
    const Part ellipse = [](MSElementBuffer* e) {
        const Point3d center = {0, 0, 0};
        return mdlEllipse_create(e, nullptr, &center, 5, 3, nullptr, 0);
    };
    const Part text = [](MSElementBuffer* e) {
        return mdlText_create(e, nullptr, "T", nullptr, nullptr, nullptr, nullptr, 0);
    };
    const struct {
        const char* what;
        int32_t group;
        Parts parts;
        size_t found;
    } cases[] = {
        {"a line behind a box", SEARCH_GROUP_LINE, {box(true), line}, 1},
        {"a box behind a line", SEARCH_GROUP_RECTANGLE, {line, box(true)}, 1},
        {"an open box", SEARCH_GROUP_RECTANGLE, {box(false)}, 0},
        {"arcs with others between them", SEARCH_GROUP_CIRCLE, {arc(5, pi), arc(7, 1), line, arc(5.04, -pi)}, 1},
        {"arcs that don't go round", SEARCH_GROUP_CIRCLE, {arc(5, pi), arc(5, 3)}, 0},
        {"a circle of another size", SEARCH_GROUP_CIRCLE, {arc(4, pi), arc(4, pi)}, 0},
        {"an ellipse, as a circle", SEARCH_GROUP_CIRCLE, {ellipse}, 1},
        {"a text", SEARCH_GROUP_TEXT, {text}, 0},
    };
    addText("note", {3, 3, 0});
    for (const auto& c : cases) {
        const FilePos position = addCompound(c.parts);
        SymbolSearch search(c.group, {textsLike("note")});
        std::strcpy(search.spec.pattern, "T");
        if (c.group == SEARCH_GROUP_CIRCLE) search.spec.minSizeA = search.spec.maxSizeA = 5;
        ASSERT_EQ(count(search), c.found) << c.what;
        for (const Report& report : reports) {
            EXPECT_EQ(report.position, position);
            EXPECT_EQ(report.axis2, report.axis1);
        }
        mdlElement_undoableDelete(nullptr, position, 0);
    }
}

TEST_F(BaseElements, TextsCountByTheirPattern) {
    addText("note");
    for (const char* text : {"PUMP 1", "pump 2", "Pump x"}) addText(text, {10, 0, 0});
    const struct {
        const char* pattern;
        uint32_t flags;
        size_t found;
    } cases[] = {{"PUMP_#", 0, 2},
                 {"PUMP_#", SEARCH_CASE_SENSITIVE, 1},
                 {"PUMP#", SEARCH_CASE_SENSITIVE, 0},
                 {"PUMP#", SEARCH_IGNORE_BLANKS, 2}};
    for (const auto& c : cases) {
        SymbolSearch search(SEARCH_GROUP_TEXT, {textsLike("note")});
        std::strcpy(search.spec.pattern, c.pattern);
        search.spec.flags = c.flags;
        EXPECT_EQ(count(search), c.found) << c.pattern << ", " << c.flags;
    }
}

TEST_F(BaseElements, TakesTheLookAndPlaceThatAreAskedFor) {
    addText("T");
    const auto addColored = [](uint32_t color, uint32_t level, double x) {
        return add([&](MSElementBuffer* e) {
            const Point3d ends[] = {{x, 0, 0}, {x + 1, 0, 0}};
            mdlLine_create(e, nullptr, ends);
            mdlElement_setProperties(e, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
            return mdlElement_setSymbology(e, &color, nullptr, nullptr);
        });
    };
    const FilePos red = addColored(3, 1, 0), low = addColored(0, 9, 1), far = addColored(0, 1, 30);
    SymbolSearch search(SEARCH_GROUP_LINE);
    search.spec.color = 3;
    EXPECT_EQ(count(search), 1u);
    EXPECT_EQ(reports[0].position, red);
    search.spec.color = -1;
    MdlBitMask* levels = mdlBitMask_create();
    mdlBitMask_setBit(levels, 8, 1);
    search.spec.levelMask = levels;
    EXPECT_EQ(count(search), 1u);
    EXPECT_EQ(reports[0].position, low);
    mdlBitMask_free(&levels);
    search.spec.levelMask = nullptr;
    search.spec.flags = SEARCH_USE_RANGE;  // by the same corners as a place
    search.low = {{-40, -10, 0}};
    search.high = {{29, 10, 0}};
    EXPECT_EQ(count(search), 2u);
    search.high = {{31, 10, 0}};
    EXPECT_EQ(count(search), 3u);
    EXPECT_EQ(reports.back().position, far);
}

}  // namespace
