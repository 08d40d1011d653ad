#include <cstring>

#include "tests/mchost/element/fixture.h"

namespace {

const std::vector<Point3d> zigzag{{0, 0, 0}, {10, 5, 1}, {20, -5, 2}, {30, 0.125, 3}};

TEST(LinearElements, PointsComeBackInEverySystem) {
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        SCOPED_TRACE(kind);
        TestSystem system(kind);
        TestElement e;
        ASSERT_EQ(mdlLineString_create(e, nullptr, zigzag.data(), 4), MDL_SUCCESS);
        Point3d points[4];
        int32_t count = 0;
        ASSERT_EQ(mdlLinear_extract(points, &count, e, 4), MDL_SUCCESS);
        ASSERT_EQ(count, 4);
        for (int i = 0; i < 4; ++i) expectNear(points[i], zigzag[static_cast<size_t>(i)], 1e-9);
    }
}

TEST(LinearElements, CoordinatesAreStoredInUor) {
    TestElement e;
    {
        TestSystem system(1);
        ASSERT_EQ(mdlLine_create(e, nullptr, zigzag.data()), MDL_SUCCESS);
    }
    Point3d ends[2];
    int32_t count = 0;
    mdlLinear_extract(ends, &count, e, 2);
    expectNear(ends[1], {1000 + 250, -500 + 125, 21}, 1e-9);
}

TEST(LinearElements, ShapeIsClosedOnce) {
    const std::vector<Point3d> open{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}},
        closed{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 0, 0}};
    for (const auto& points : {open, closed}) {
        TestElement e;
        ASSERT_EQ(mdlShape_create(e, nullptr, points.data(), static_cast<int32_t>(points.size()), 1), MDL_SUCCESS);
        int32_t count = 0;
        Point3d found[4];
        mdlLinear_extract(found, &count, e, 4);
        EXPECT_EQ(count, 4);
        expectNear(found[3], {0, 0, 0}, 0);
        EXPECT_EQ(mdlElement_isFilled(e), 1);
    }
}

TEST(LinearElements, ExtractGivesNoMoreThanThereIsRoomFor) {
    TestElement e;
    mdlLineString_create(e, nullptr, zigzag.data(), 4);
    Point3d points[2] = {{7, 7, 7}, {7, 7, 7}};
    int32_t count = 0;
    EXPECT_EQ(mdlLinear_extract(points, &count, e, 1), MDL_SUCCESS);
    EXPECT_EQ(count, 4);
    expectNear(points[1], {7, 7, 7}, 0);
    EXPECT_EQ(mdlLinear_extract(points, &count, e, -3), MDL_SUCCESS);
    EXPECT_EQ(mdlLinear_extract(nullptr, &count, e, 4), MDL_SUCCESS);
}

TEST(LinearElements, RefusedCallsLeaveTheElement) {
    TestElement e;
    ASSERT_EQ(mdlLine_create(e, nullptr, zigzag.data()), MDL_SUCCESS);
    const auto before = std::make_unique<MSElementBuffer>(*e.get());
    std::vector<Point3d> many(MDL_MAX_POINTS + 1), bad = zigzag;
    for (size_t i = 0; i < many.size(); ++i) many[i].x = static_cast<double>(i);
    bad[2].y = NAN;
    EXPECT_EQ(mdlLineString_create(e, nullptr, zigzag.data(), 1), MDL_ERROR);
    EXPECT_EQ(mdlLineString_create(e, nullptr, zigzag.data(), 0), MDL_ERROR);
    EXPECT_EQ(mdlLineString_create(e, nullptr, zigzag.data(), -4), MDL_ERROR);
    EXPECT_EQ(mdlLineString_create(e, nullptr, many.data(), MDL_MAX_POINTS + 1), MDL_ERROR);
    EXPECT_EQ(mdlShape_create(e, nullptr, many.data(), MDL_MAX_POINTS, 0), MDL_ERROR) << "no room to close it";
    EXPECT_EQ(mdlShape_create(e, nullptr, zigzag.data(), 2, 0), MDL_ERROR);
    EXPECT_EQ(mdlLineString_create(e, nullptr, bad.data(), 4), MDL_ERROR);
    EXPECT_EQ(mdlLineString_create(e, nullptr, nullptr, 4), MDL_ERROR);
    EXPECT_EQ(std::memcmp(before.get(), e.get(), sizeof *before), 0);
    EXPECT_EQ(mdlLineString_create(e, nullptr, many.data(), MDL_MAX_POINTS), MDL_SUCCESS);
}

TEST(LinearElements, ElementMayBeItsOwnTemplate) {
    TestElement e;
    mdlShape_create(e, nullptr, zigzag.data(), 4, 1);
    const uint32_t color = 6, weight = 3, level = 12;
    const int32_t style = 2, elementClass = 2;
    mdlElement_setSymbology(e, &color, &weight, &style);
    mdlElement_setProperties(e, &level, nullptr, &elementClass, nullptr, nullptr, nullptr, nullptr, nullptr);
    ASSERT_EQ(mdlLine_create(e, e, zigzag.data()), MDL_SUCCESS);
    uint32_t c, w, l;
    int32_t s, k;
    mdlElement_getSymbology(&c, &w, &s, e);
    mdlElement_getProperties(&l, nullptr, &k, nullptr, nullptr, nullptr, nullptr, nullptr, e);
    EXPECT_EQ(c, color);
    EXPECT_EQ(w, weight);
    EXPECT_EQ(s, style);
    EXPECT_EQ(l, level);
    EXPECT_EQ(k, elementClass);
    EXPECT_EQ(mdlElement_getType(e), MDL_LINE);
    EXPECT_EQ(mdlElement_isFilled(e), 0) << "a line has no fill";
}

TEST(LinearElements, NearestPointLiesOnTheSegmentThatIsNamed) {
    struct Case {
        Point3d from, nearest;
        int32_t segment;
    };
    const std::vector<Point3d> corner{{0, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 10, 0}};
    for (const Case& c : {Case{{4, 3, 0}, {4, 0, 0}, 0}, Case{{-5, -5, 0}, {0, 0, 0}, 0},
                          Case{{12, 8, 0}, {10, 8, 0}, 2}, Case{{20, 20, 0}, {10, 10, 0}, 2}}) {
        TestElement e;
        mdlLineString_create(e, nullptr, corner.data(), 4);
        Point3d p = c.from, ends[2];
        int32_t index = -1;
        ASSERT_EQ(mdlLinear_getClosestSegment(&p, ends, &index, e), MDL_SUCCESS);
        expectNear(p, c.nearest, 1e-12);
        EXPECT_EQ(index, c.segment);
        expectNear(ends[1], corner[static_cast<size_t>(c.segment) + 1], 0);
    }
}

TEST(Symbology, ByLevelValuesAndNullsAndBadOnes) {
    TestElement e;
    mdlLine_create(e, nullptr, zigzag.data());
    const uint32_t byLevel = 0xFFFFFFFF, tooHeavy = 70000;
    const int32_t styleByLevel = 0x7FFFFFFF;
    ASSERT_EQ(mdlElement_setSymbology(e, &byLevel, &byLevel, &styleByLevel), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_setSymbology(e, nullptr, &tooHeavy, nullptr), MDL_ERROR);
    EXPECT_EQ(mdlElement_setSymbology(e, nullptr, nullptr, nullptr), MDL_SUCCESS);
    EXPECT_EQ(e.get()->head.color, -1);
    EXPECT_EQ(e.get()->head.weight, -1);
    uint32_t weight = 0;
    mdlElement_getSymbology(nullptr, &weight, nullptr, e);
    EXPECT_EQ(weight, byLevel);
}

}  // namespace
