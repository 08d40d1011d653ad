#include "tests/mchost/element/fixture.h"

namespace {

struct Arc {
    Point3d center{};
    double axis1 = 0, axis2 = 0, start = 0, sweep = 0;
    RotMatrix rotation{};

    explicit Arc(const MSElementBuffer* e) {
        EXPECT_EQ(mdlArc_extract(&center, &axis1, &axis2, &rotation, &start, &sweep, e), MDL_SUCCESS);
    }
    Point3d at(double part) const {
        const double angle = start + part * sweep;
        Point3d p{axis1 * std::cos(angle), axis2 * std::sin(angle), 0};
        mdlRMatrix_rotatePoint(&p, &rotation);
        return {center.x + p.x, center.y + p.y, center.z + p.z};
    }
};

TEST(Arcs, ValuesComeBackInEverySystem) {
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        SCOPED_TRACE(kind);
        TestSystem system(kind);
        TestElement e;
        const Point3d center{3, 4, 0};
        RotMatrix turned;
        mdlRMatrix_fromAngle(&turned, 0.3);
        ASSERT_EQ(mdlArc_create(e, nullptr, &center, 20, 10, &turned, 0.5, -2.5), MDL_SUCCESS);
        const Arc arc(e);
        expectNear(arc.center, center, 1e-9);
        EXPECT_NEAR(arc.axis1, 20, 1e-9);
        EXPECT_NEAR(arc.axis2, 10, 1e-9);
        EXPECT_NEAR(arc.start, 0.5, 1e-9);
        EXPECT_NEAR(arc.sweep, -2.5, 1e-12);
        EXPECT_NEAR(arc.rotation.form[1][0], std::sin(0.3), 1e-9);
    }
}

// A circle seen in another system is an ellipse there, and the same points.
TEST(Arcs, DescribeTheSamePointsInAnotherSystem) {
    TestElement e;
    const Point3d center{900, -400, 0};
    ASSERT_EQ(mdlArc_create(e, nullptr, &center, 50, 50, nullptr, 1.0, 3.0), MDL_SUCCESS);
    const Arc world(e);
    for (int kind = 1; kind < TestSystem::kinds; ++kind) {
        SCOPED_TRACE(kind);
        TestSystem system(kind);
        const Arc inside(e);
        const Transform* toWorld;
        mdlCurrTrans_getAddresses(&toWorld, nullptr);
        EXPECT_NEAR(std::fabs(inside.rotation.form[2][2]), 1, 1e-12);
        EXPECT_GT(inside.rotation.form[2][2], 0) << "seen from above";
        for (double part : {0.0, 0.3, 1.0}) {
            const Point3d p = inside.at(part), w = world.at(part);
            const auto& f = toWorld->form;
            expectNear({f[0][0] * p.x + f[0][1] * p.y + f[0][3], f[1][0] * p.x + f[1][1] * p.y + f[1][3], w.z}, w,
                       1e-7);
        }
    }
}

TEST(Arcs, ByCenterTurnsTheWayAsked) {
    const Point3d start{10, 0, 0}, center{0, 0, 0}, end{0, 25, 0};
    struct Case {
        int32_t clockwise;
        double sweep;
    };
    for (const Case& c : {Case{0, M_PI / 2}, Case{1, -3 * M_PI / 2}}) {
        TestElement e;
        ASSERT_EQ(mdlArc_createByCenter(e, nullptr, &start, &center, &end, c.clockwise, nullptr), MDL_SUCCESS);
        const Arc arc(e);
        EXPECT_NEAR(arc.sweep, c.sweep, 1e-12);
        expectNear(arc.at(0), start, 1e-12);
        expectNear(arc.at(1), {0, 10, 0}, 1e-12);
    }
    TestElement e;
    EXPECT_EQ(mdlArc_createByCenter(e, nullptr, &center, &center, &end, 0, nullptr), MDL_ERROR);
    ASSERT_EQ(mdlArc_createByCenter(e, nullptr, &start, &center, &start, 0, nullptr), MDL_SUCCESS);
    EXPECT_NEAR(Arc(e).sweep, 2 * M_PI, 1e-12) << "back to the start is a full turn";
}

TEST(Arcs, RefuseWhatIsNoArc) {
    TestElement e;
    const Point3d center{0, 0, 0}, bad{NAN, 0, 0};
    EXPECT_EQ(mdlArc_create(e, nullptr, &center, 0, 1, nullptr, 0, 1), MDL_ERROR);
    EXPECT_EQ(mdlArc_create(e, nullptr, &center, 1, -1, nullptr, 0, 1), MDL_ERROR);
    EXPECT_EQ(mdlArc_create(e, nullptr, &center, 1, 1, nullptr, 0, 0), MDL_ERROR);
    EXPECT_EQ(mdlArc_create(e, nullptr, &center, 1, 1, nullptr, 0, 7), MDL_ERROR);
    EXPECT_EQ(mdlArc_create(e, nullptr, &center, 1, 1, nullptr, INFINITY, 1), MDL_ERROR);
    EXPECT_EQ(mdlArc_create(e, nullptr, &bad, 1, 1, nullptr, 0, 1), MDL_ERROR);
    EXPECT_EQ(mdlEllipse_create(e, nullptr, &center, NAN, 1, nullptr, 0), MDL_ERROR);
    EXPECT_EQ(mdlElement_bytes(e), 0u) << "nothing was written";
}

TEST(Arcs, StrokesKeepTheToleranceInUnitsOfTheSystem) {
    for (int kind = 0; kind < TestSystem::kinds; ++kind)
        for (double tolerance : {1.0, 0.01, 1e-5}) {
            SCOPED_TRACE(testing::Message() << kind << " " << tolerance);
            TestSystem system(kind);
            TestElement e;
            const Point3d center{3, 4, 0};
            ASSERT_EQ(mdlArc_create(e, nullptr, &center, 100, 20, nullptr, 0.2, 4), MDL_SUCCESS);
            const auto points = strokeOf(e, tolerance);
            ASSERT_GE(points.size(), 2u);
            const Arc arc(e);
            expectNear(points.front(), arc.at(0), 1e-9);
            expectNear(points.back(), arc.at(1), 1e-9);
            double worst = 0;
            for (int i = 0; i <= 300; ++i) worst = std::fmax(worst, distanceToPolyline(arc.at(i / 300.0), points));
            EXPECT_LE(worst, tolerance * 1.0001);
            if (tolerance < 1) {
                EXPECT_LE(points.size(), 4 * std::sqrt(100 / tolerance));
            }
        }
}

TEST(Arcs, FullEllipseEndsOnItsFirstPoint) {
    TestElement e;
    const Point3d center{0.1, 0.2, 0};
    ASSERT_EQ(mdlEllipse_create(e, nullptr, &center, 7, 5, nullptr, 0), MDL_SUCCESS);
    const auto points = strokeOf(e, 0.01);
    expectNear(points.front(), points.back(), 0);
    EXPECT_TRUE(strokeOf(e, 0).empty());
    EXPECT_TRUE(strokeOf(e, NAN).empty());
    EXPECT_GE(strokeOf(e, 1e9).size(), 5u) << "a dot still goes round";
}

TEST(Arcs, AnEllipseIsAWholeTurnInEverySystem) {
    TestElement e;
    const Point3d center{3, 4, 0};
    RotMatrix turn;
    mdlRMatrix_fromAngle(&turn, 0.4);
    ASSERT_EQ(mdlEllipse_create(e, nullptr, &center, 7, 5, &turn, 0), MDL_SUCCESS);
    for (const double sy : {1.0, -1.0, 2.0}) {
        mdlCurrTrans_begin();
        mdlCurrTrans_scale(1, sy, 1);
        const Arc ellipse(e);
        EXPECT_EQ(ellipse.start, 0) << sy;
        EXPECT_NEAR(ellipse.sweep, 2 * M_PI, 1e-15) << sy;
        mdlCurrTrans_end();
    }
}

TEST(Arcs, RangeTouchesTheArcAndNoMore) {
    DescriptorHolder d;
    TestElement e;
    const Point3d center{0, 0, 0};
    mdlArc_create(e, nullptr, &center, 10, 10, nullptr, M_PI / 4, M_PI / 2);
    ASSERT_EQ(mdlElmdscr_new(&d.ed, nullptr, e), MDL_SUCCESS);
    Point3d low, high;
    ASSERT_EQ(mdlElmdscr_computeRange(&low, &high, d.ed, nullptr), MDL_SUCCESS);
    expectNear(low, {-std::sqrt(50), std::sqrt(50), 0}, 1e-12);
    expectNear(high, {std::sqrt(50), 10, 0}, 1e-12);
    const Transform turn{{{0, -1, 0, 5}, {1, 0, 0, 0}, {0, 0, 1, 0}}};
    ASSERT_EQ(mdlElmdscr_computeRange(&low, &high, d.ed, &turn), MDL_SUCCESS);
    expectNear(low, {-5, -std::sqrt(50), 0}, 1e-12);
}

}  // namespace
