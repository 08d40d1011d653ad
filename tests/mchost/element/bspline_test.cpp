#include <algorithm>

#include "tests/mchost/element/fixture.h"

namespace {

// A clothoid of parameter a by plain integration of its bearing.
std::vector<Point3d> clothoid(double a, double length, int count) {
    std::vector<Point3d> points{{0, 0, 0}};
    constexpr int substeps = 200;
    Point3d p{0, 0, 0};
    const double h = length / (count - 1) / substeps;
    for (int i = 0; i < (count - 1) * substeps; ++i) {
        const double middle = (i + 0.5) * h, bearing = middle * middle / (2 * a * a);
        p.x += h * std::cos(bearing);
        p.y += h * std::sin(bearing);
        if ((i + 1) % substeps == 0) points.push_back(p);
    }
    return points;
}

struct Fit {
    BsplineCurve curve{};
    double mean = -1, most = -1;
    int status;
    Fit(const std::vector<Point3d>& points, int32_t order, int32_t poles, const double* params = nullptr) {
        curve.order = order;
        curve.numPoles = poles;
        status = mdlBspline_leastSquaresToCurve(&curve, &mean, &most, points.data(), params,
                                                static_cast<int32_t>(points.size()));
    }
    ~Fit() { mdlBspline_freeCurve(&curve); }
};

TEST(BsplineFit, AsManyPolesAsPointsGoThroughThem) {
    const auto points = clothoid(200, 150, 60);
    for (const int32_t order : {2, 3, 4, 6}) {
        Fit fit(points, order, 60);
        ASSERT_EQ(fit.status, MDL_SUCCESS);
        EXPECT_LT(fit.most, 1e-9) << order;
        EXPECT_EQ(fit.curve.numKnots, 60 + order);
        expectNear(fit.curve.poles[0], points.front(), 0);
        expectNear(fit.curve.poles[59], points.back(), 0);
    }
}

TEST(BsplineFit, ThousandPointsOfAClothoidStayTrueBetweenThem) {
    const auto dense = clothoid(250, 200, 1999);
    std::vector<Point3d> points;
    for (size_t i = 0; i < dense.size(); i += 2) points.push_back(dense[i]);
    Fit fit(points, 4, 1000);
    ASSERT_EQ(fit.status, MDL_SUCCESS);
    TestElement e;
    ASSERT_EQ(mdlBspline_createCurve(e, nullptr, &fit.curve), MDL_SUCCESS);
    const auto line = strokeOf(e, 1e-7);
    double worst = 0;
    for (size_t i = 1; i < dense.size(); i += 50) worst = std::max(worst, distanceToPolyline(dense[i], line));
    EXPECT_LT(worst, 1e-6);
}

TEST(BsplineFit, FewerPolesSmoothAndTellTheErrors) {
    auto points = clothoid(200, 150, 200);
    Fit smooth(points, 4, 12);
    ASSERT_EQ(smooth.status, MDL_SUCCESS);
    EXPECT_LT(smooth.most, 1e-3);
    points[100].y += 0.5;
    Fit bumped(points, 4, 12);
    EXPECT_GT(bumped.most, 0.3);
    EXPECT_LT(bumped.mean, bumped.most);
    Point3d end;
    ASSERT_EQ(mdlBspline_evaluateCurvePoint(&end, &bumped.curve, 1), MDL_SUCCESS);
    expectNear(end, points.back(), 0);
}

TEST(BsplineFit, SmallAndOddCasesAreSettled) {
    const auto points = clothoid(200, 150, 5);
    Fit more(points, 4, 50);
    EXPECT_EQ(more.status, MDL_SUCCESS);
    EXPECT_EQ(more.curve.numPoles, 5);
    Fit high(points, 15, 5);
    EXPECT_EQ(high.status, MDL_SUCCESS);
    EXPECT_EQ(high.curve.order, 5) << "no more than there are poles";
    Fit line({{0, 0, 0}, {3, 4, 0}}, 4, 2);
    EXPECT_EQ(line.status, MDL_SUCCESS);
    Point3d middle;
    mdlBspline_evaluateCurvePoint(&middle, &line.curve, 0.5);
    expectNear(middle, {1.5, 2, 0}, 1e-12);
    const double given[] = {0, 0.1, 0.2, 0.6, 1}, falling[] = {0, 0.2, 0.1, 0.6, 1};
    EXPECT_EQ(Fit(points, 3, 5, given).status, MDL_SUCCESS);
    for (const int status :
         {Fit({{0, 0, 0}}, 4, 1).status, Fit(points, 1, 5).status, Fit(points, 16, 5).status, Fit(points, 4, 0).status,
          Fit(points, 3, 5, falling).status, Fit({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}}, 2, 3).status,
          Fit({{0, 0, 0}, {NAN, 0, 0}, {1, 0, 0}}, 2, 3).status})
        EXPECT_EQ(status, MDL_ERROR);
    EXPECT_EQ(Fit({{0, 0, 0}, {0, 0, 0}}, 2, 2).curve.poles, nullptr);
}

TEST(BsplineElements, CurveComesBackInEverySystem) {
    const auto points = clothoid(200, 150, 20);
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        SCOPED_TRACE(kind);
        TestSystem system(kind);
        Fit fit(points, 4, 20);
        TestElement e;
        ASSERT_EQ(mdlBspline_createCurve(e, nullptr, &fit.curve), MDL_SUCCESS);
        BsplineCurve back{};
        ASSERT_EQ(mdlBspline_extractCurve(&back, e), MDL_SUCCESS);
        EXPECT_EQ(back.order, 4);
        for (int i = 0; i < 20; ++i) expectNear(back.poles[i], fit.curve.poles[i], 1e-9);
        mdlBspline_freeCurve(&back);
        EXPECT_EQ(back.knots, nullptr);
        const auto line = strokeOf(e, 0.001);
        expectNear(line.front(), points.front(), 1e-9);
        expectNear(line.back(), points.back(), 1e-9);
    }
}

TEST(BsplineElements, RationalCircleIsStrokedToTolerance) {
    const double w = std::sqrt(0.5);
    Point3d poles[] = {{10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
    double knots[] = {0, 0, 0, 1, 1, 1}, weights[] = {1, w, 1};
    BsplineCurve quarter{};
    quarter.rational = 1, quarter.order = 3, quarter.numPoles = 3, quarter.numKnots = 6;
    quarter.poles = poles, quarter.knots = knots, quarter.weights = weights;
    TestElement e;
    ASSERT_EQ(mdlBspline_createCurve(e, nullptr, &quarter), MDL_SUCCESS);
    const auto line = strokeOf(e, 1e-3);
    EXPECT_LT(line.size(), 200u);
    for (size_t i = 0; i < line.size(); ++i) {
        EXPECT_NEAR(std::hypot(line[i].x, line[i].y), 10, 1e-9);
        if (i == 0) continue;
        EXPECT_NEAR(std::hypot((line[i].x + line[i - 1].x) / 2, (line[i].y + line[i - 1].y) / 2), 10, 1.001e-3);
    }
}

TEST(BsplineElements, PolynomialIsStrokedToTolerance) {
    Point3d poles[] = {{0, 0, 0}, {100, 300, 0}, {200, -300, 0}, {300, 300, 0}, {400, 0, 0}};
    double knots[] = {0, 0, 0, 0, 0.3, 1, 1, 1, 1};
    BsplineCurve wave{};
    wave.order = 4, wave.numPoles = 5, wave.numKnots = 9, wave.poles = poles, wave.knots = knots;
    TestElement e;
    ASSERT_EQ(mdlBspline_createCurve(e, nullptr, &wave), MDL_SUCCESS);
    for (const double tolerance : {5.0, 0.1, 0.001}) {
        const auto line = strokeOf(e, tolerance);
        double worst = 0;
        for (int i = 0; i <= 1000; ++i) {
            Point3d p;
            mdlBspline_evaluateCurvePoint(&p, &wave, i / 1000.0);
            worst = std::max(worst, distanceToPolyline(p, line));
        }
        EXPECT_LE(worst, tolerance);
        EXPECT_GT(worst, tolerance / 20) << "not many more points than needed";
    }
}

TEST(BsplineElements, RefuseCurvesThatAreNone) {
    Point3d poles[] = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    double knots[] = {0, 0, 0, 1, 1, 1}, falling[] = {0, 0, 1, 0, 1, 1}, weights[] = {1, 0, 1};
    BsplineCurve good{};
    good.order = 3, good.numPoles = 3, good.numKnots = 6, good.poles = poles, good.knots = knots;
    const auto refused = [&](auto change) {
        BsplineCurve curve = good;
        change(curve);
        TestElement e;
        return mdlBspline_createCurve(e, nullptr, &curve) == MDL_ERROR && mdlElement_bytes(e) == 0;
    };
    EXPECT_TRUE(refused([](BsplineCurve& c) { c.order = 1; }));
    EXPECT_TRUE(refused([](BsplineCurve& c) { c.order = 4; }));
    EXPECT_TRUE(refused([](BsplineCurve& c) { c.numPoles = -3; }));
    EXPECT_TRUE(refused([](BsplineCurve& c) { c.numPoles = 2000000000; }));
    EXPECT_TRUE(refused([](BsplineCurve& c) { c.numKnots = 5; }));
    EXPECT_TRUE(refused([](BsplineCurve& c) { c.poles = nullptr; }));
    EXPECT_TRUE(refused([&](BsplineCurve& c) { c.knots = falling; }));
    EXPECT_TRUE(refused([&](BsplineCurve& c) { c.rational = 1, c.weights = weights; }));
    std::vector<Point3d> many(4100);
    std::vector<double> knotsOfMany(4103);
    for (size_t i = 0; i < knotsOfMany.size(); ++i) knotsOfMany[i] = static_cast<double>(i);
    EXPECT_TRUE(refused([&](BsplineCurve& c) {
        c.numPoles = 4100, c.numKnots = 4103, c.poles = many.data(), c.knots = knotsOfMany.data();
    })) << "more bytes than an element has";
    Point3d p;
    EXPECT_EQ(mdlBspline_evaluateCurvePoint(&p, &good, NAN), MDL_ERROR);
    EXPECT_EQ(mdlBspline_evaluateCurvePoint(&p, &good, 1.5), MDL_ERROR);
}

}  // namespace
