// The nearest point of drawn elements, and elements made from end points.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mclib/geometry/lines.h"
#include "tests/support/library_fixture.h"

namespace {

constexpr double pi = std::numbers::pi;

class GeometryElements : public LibraryTest {
  protected:
    // Appends the element, in a class of its own, to the descriptor.
    void append(int32_t elementClass) {
        mdlElement_setProperties(&element, nullptr, nullptr, &elementClass, nullptr, nullptr, nullptr, nullptr,
                                 nullptr);
        if (descriptor)
            mdlElmdscr_appendElement(descriptor, &element);
        else
            mdlElmdscr_new(&descriptor, nullptr, &element);
    }
    void appendLine(Point3d from, Point3d to, int32_t elementClass = 0) {
        const Point3d points[2] = {from, to};
        mdlLine_create(&element, nullptr, points);
        append(elementClass);
    }
    ~GeometryElements() override { mdlElmdscr_freeAll(&descriptor); }

    MSElementBuffer element;
    ElementDescr* descriptor = nullptr;
};

}  // namespace

TEST_F(GeometryElements, NearestPointTellsPlaceAndBearingOfTheWantedClass) {
    appendLine({0, 0, 0}, {1000, 0, 0});
    appendLine({0, 50, 0}, {0, 1050, 0}, 2);
    Point3d p = {-20, 300, 0};
    EXPECT_NEAR(*mclibGeo_getNearestPointP(&p, descriptor, 1u << 2 | 1u), pi / 2, 1e-12);
    EXPECT_NEAR(p.x, 0, 1e-9);
    EXPECT_NEAR(p.y, 300, 1e-9);
    p = {-20, 300, 0};
    EXPECT_NEAR(*mclibGeo_getNearestPointP(&p, descriptor, 1u), 0, 1e-12);
    EXPECT_NEAR(p.y, 0, 1e-9);
    p = {-20, 300, 0};
    mclibGeo_getNearestPointP(&p, descriptor, 1u << 5);
    EXPECT_EQ(p.x, -20);  // nothing of that class: the point stays
}

TEST_F(GeometryElements, NearestPointLooksThroughAllRunsOfALongElement) {
    // A flat curve of far more stroked points than one run takes.
    const Point3d center = {0, 0, 0};
    mdlEllipse_create(&element, nullptr, &center, 1e8, 1e8, nullptr, 0);
    append(0);
    Point3d* points = nullptr;
    int32_t count = 0;
    mdlElement_stroke(&points, &count, &element, 10);
    dlmSystem_mdlFree(points);
    EXPECT_GT(count, MDL_MAX_POINTS);
    for (const double angle : {0.1, 2.0, 4.0, 6.0}) {
        Point3d p = {0.5e8 * std::cos(angle), 0.5e8 * std::sin(angle), 0};
        mclibGeo_getNearestPointP(&p, descriptor, 1u);
        EXPECT_NEAR(std::atan2(p.y, p.x), std::remainder(angle, 2 * pi), 1e-3);
        EXPECT_NEAR(std::hypot(p.x, p.y), 1e8, 20);
    }
}

TEST_F(GeometryElements, NearestPointIsAsNearInMasterUnits) {
    openDesignFile();
    const Point3d center = {0, 0, 0};
    const double metre = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    mdlEllipse_create(&element, nullptr, &center, 100 * metre, 100 * metre, nullptr, 0);
    append(0);
    for (const double unit : {1.0, metre}) {
        mdlCurrTrans_begin();
        mdlCurrTrans_scale(unit, unit, unit);
        for (const double angle : {0.1, 2.0, 4.0, 6.0}) {
            Point3d p = {50 * metre / unit * std::cos(angle), 50 * metre / unit * std::sin(angle), 0};
            mclibGeo_getNearestPointP(&p, descriptor, 1u);
            EXPECT_NEAR(std::hypot(p.x, p.y) * unit / metre, 100, 0.01);
        }
        mdlCurrTrans_end();
    }
}

TEST_F(GeometryElements, LineAndArcKeepTheBuffersLook) {
    const Point3d points[2] = {{0, 0, 0}, {1, 1, 0}};
    mdlLine_create(&element, nullptr, points);
    uint32_t color = 5;
    mdlElement_setSymbology(&element, &color, nullptr, nullptr);
    EXPECT_EQ(mclibGeo_createLineByEndpoints(&element, 1, 2, 30, 4, 10), MCLIB_SUCCESS);
    Point3d ends[2];
    int32_t count = 0;
    mdlLinear_extract(ends, &count, &element, 2);
    EXPECT_EQ(count, 2);
    EXPECT_NEAR(ends[0].x, 1, 1e-9);
    EXPECT_NEAR(ends[0].y, 20, 1e-9);
    EXPECT_NEAR(ends[1].y, 40, 1e-9);

    struct Case {
        double R, sweep;
    };
    for (const Case& c : {Case{1000, pi / 2}, Case{-1000, -pi / 2}}) {
        EXPECT_EQ(mclibGeo_createArcByEndpoints(&element, 0, 0, 1000, 100, c.R / 10 * 1, 10), MCLIB_SUCCESS);
        Point3d center;
        double axis1, axis2, start, sweep;
        mdlArc_extract(&center, &axis1, &axis2, nullptr, &start, &sweep, &element);
        EXPECT_NEAR(axis1, 1000, 1e-6);
        EXPECT_NEAR(sweep, c.sweep, 1e-9);
        EXPECT_NEAR(center.x, c.R > 0 ? 0 : 1000, 1e-6);
        uint32_t kept = 0;
        mdlElement_getSymbology(&kept, nullptr, nullptr, &element);
        EXPECT_EQ(kept, 5u);
    }
    EXPECT_EQ(mclibGeo_createArcByEndpoints(&element, 0, 0, 10, 0, 2, 1), MCLIB_ERROR);
}
