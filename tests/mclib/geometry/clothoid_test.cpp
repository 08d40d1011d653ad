// Clothoids, held against a plain integration of their curvature.
#include "mclib/geometry/clothoid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "mchost/mdl/system.h"
#include "mclib/geometry/lines.h"

namespace {

constexpr double pi = std::numbers::pi;
constexpr double printed = 5e-5;  // half a digit of a value that is given with four decimals

struct Point {
    double x, y;
};

// The ten terms of the series as they are written down, in long double.
Point wordedSum(double l, double A) {
    const auto term = [&](int power, long double denominator) {
        return std::pow(static_cast<long double>(l), power) / (denominator * std::pow((long double)A, power - 1));
    };
    return {
        static_cast<double>(term(1, 1) - term(5, 40) + term(9, 3456) - term(13, 599040) + term(17, 175472640)),
        static_cast<double>(term(3, 6) - term(7, 336) + term(11, 42240) - term(15, 9676800) + term(19, 3530960640.0L))};
}

// A curve whose curvature runs evenly from k1 to k2, from (0, 0) along +x: Simpson's rule over its bearing.
Point integrated(double k1, double k2, double length, double s) {
    constexpr int steps = 2000;
    long double x = 0, y = 0;
    for (int i = 0; i <= steps; ++i) {
        const long double u = static_cast<long double>(s) * i / steps;
        const long double bearing = k1 * u + (k2 - k1) * u * u / (2 * static_cast<long double>(length));
        const int weight = i == 0 || i == steps ? 1 : i % 2 ? 4 : 2;
        x += weight * std::cos(bearing);
        y += weight * std::sin(bearing);
    }
    return {static_cast<double>(x * s / (3 * steps)), static_cast<double>(y * s / (3 * steps))};
}

// An element laid out from (x1, y1) in a direction: its ends follow from the integration.
struct Element {
    double x1, y1, x2, y2, R1, R2, A, bearing, length;

    Element(double x, double y, double direction, double r1, double r2, double a)
        : x1(x), y1(y), R1(r1), R2(r2), A(a), bearing(direction) {
        double L1, L2;
        mclibGeo_getKlotoideLength(&L1, &L2, R1, R2, A);
        length = L2 - L1;
        const Point end = at(length);
        x2 = end.x;
        y2 = end.y;
    }
    double k(double R) const { return R == 0 ? 0 : 1 / R; }
    // The point at a distance from the first end.
    Point at(double s) const {
        const Point p = integrated(k(R1), k(R2), length, s);
        return {x1 + p.x * std::cos(bearing) - p.y * std::sin(bearing),
                y1 + p.x * std::sin(bearing) + p.y * std::cos(bearing)};
    }
    // The station of that point: the length from where the radius is infinite.
    double station(double s) const {
        const double L1 = R1 == 0 ? 0 : A * A / std::fabs(R1);
        const double L2 = R2 == 0 ? 0 : A * A / std::fabs(R2);
        return L2 > L1 ? L1 + s : L1 - s;
    }
};

const std::vector<std::pair<double, double>> radii = {{0, 100},   {0, -100},    {100, 0},   {-100, 0},
                                                      {300, 120}, {-300, -120}, {120, 300}, {-120, -300}};

// The series is cut after five terms; up to l = A they leave less than this.
constexpr double truncation = 1e-6;

}  // namespace

TEST(Clothoid, SeriesKeepsToTheWordedSum) {
    for (const double A : {0.5, 100.0, -250.0, 1e4})
        for (double l = 0; l <= 2 * std::fabs(A); l += std::fabs(A) / 64) {
            double x, y;
            ASSERT_EQ(mclibGeo_KlotCoord(&x, &y, 0, 100, A, l, 100), MCLIB_SUCCESS);
            const Point expected = wordedSum(l, A);
            ASSERT_NEAR(x, expected.x, 1e-14 * l) << A << ' ' << l;
            ASSERT_NEAR(y, expected.y, 1e-14 * l) << A << ' ' << l;
        }
}

TEST(Clothoid, PointsRunAwayFromTheOriginOnTheSideOfTheTurn) {
    const Point expected[] = {{0, 0}, {24.9976, 0.2604}, {49.9219, 2.0810}, {74.4089, 6.9916}, {97.5288, 16.3714}};
    struct Case {
        double R1, R2, side;
    };
    for (const Case& c : {Case{0, 100, 1}, Case{0, -100, -1}, Case{100, 0, -1}, Case{-100, 0, 1}}) {
        Point3d points[5];
        for (Point3d& p : points) p.z = 7;
        ASSERT_EQ(mclibGeo_getKlotPoints(points, 5, c.R1, c.R2, 100), MCLIB_SUCCESS);
        for (int i = 0; i < 5; ++i) {
            EXPECT_NEAR(points[i].x, expected[i].x, printed);
            EXPECT_NEAR(points[i].y, c.side * expected[i].y, printed);
            EXPECT_EQ(points[i].z, 7);
        }
    }
}

TEST(Clothoid, LengthsAndReferenceRadius) {
    double L1, L2;
    EXPECT_EQ(mclibGeo_getKlotoideLength(&L1, &L2, -50, 200, -100), 0);
    EXPECT_EQ(L1, 50);
    EXPECT_EQ(L2, 200);
    EXPECT_EQ(mclibGeo_getKlotoideLength(&L1, &L2, 100, 0, 100), 0);
    EXPECT_EQ(L1, 0);
    EXPECT_EQ(L2, 100);
    EXPECT_EQ(*mclibGeo_getKlotoideRadiusP(-300, 300), -300);
    EXPECT_EQ(*mclibGeo_getKlotoideRadiusP(300, -301), -301);
    EXPECT_EQ(*mclibGeo_getKlotoideRadiusP(0, -5), -5);
}

TEST(Clothoid, StationGivesThePointAndTheBearingAtTheStart) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> coordinate(-5000, 5000), direction(0, 2 * pi);
    for (const auto& [R1, R2] : radii)
        for (int i = 0; i < 5; ++i) {
            const Element e(coordinate(random), coordinate(random), direction(random), R1, R2, 90);
            SCOPED_TRACE(testing::Message() << R1 << ' ' << R2);
            for (const double t : {0.0, 0.25, 0.7, 1.0}) {
                double x, y, angle;
                // Within rounding the last station is the last one that is accepted.
                const double s = t == 1 ? e.station(e.length * (1 - 1e-14)) : e.station(t * e.length);
                ASSERT_EQ(mclibGeo_getElementCoord(&x, &y, &angle, e.x1, e.y1, e.x2, e.y2, R1, R2, 90, s), 0) << t;
                const Point expected = e.at(t * e.length);
                EXPECT_NEAR(x, expected.x, truncation) << t;
                EXPECT_NEAR(y, expected.y, truncation) << t;
                // Towards a straight end the bearing is that of a short chord.
                EXPECT_NEAR(std::remainder(angle - e.bearing, 2 * pi), 0, R2 == 0 ? 1e-4 : 1e-8);
                EXPECT_GE(angle, 0);
                EXPECT_LE(angle, 2 * pi);
            }
        }
}

TEST(Clothoid, GivenStationsOfTheTightEndFirst) {
    struct Case {
        double s, x, y;
    };
    for (const Case& c : {Case{0, 97.5288, 16.3714}, Case{100, 0, 0}, Case{25, 73.8163, 8.4552}}) {
        double x, y, angle;
        ASSERT_EQ(mclibGeo_getKlotCoord(&x, &y, &angle, 0, 0, 97.5288, 16.3714, 100, 0, 100, c.s), MCLIB_SUCCESS);
        EXPECT_NEAR(x, c.x, printed);
        EXPECT_NEAR(y, c.y, printed);
        EXPECT_NEAR(angle, 6.1159, printed);
    }
}

TEST(Clothoid, WhatIsNoStationIsRefused) {
    const auto status = [](double R1, double R2, double A, double s, double* x) {
        double y, angle;
        return mclibGeo_getKlotCoord(x, &y, &angle, 0, 0, 90, 10, R1, R2, A, s);
    };
    double x = 7;
    for (const double A : {0.0, 1e-170, 1e170}) EXPECT_EQ(status(0, 100, A, 0, &x), MCLIB_ERROR);
    EXPECT_EQ(x, 7);
    struct Case {
        double R1, R2, s;
        int status;
    };
    for (const Case& c : {Case{0, 100, 100, 0}, Case{0, 100, 100 + 1e-6, MCLIB_ERROR}, Case{0, 100, -1e-9, MCLIB_ERROR},
                          Case{0, 0, 0, MCLIB_ERROR}, Case{100, -100, 50, MCLIB_ERROR}, Case{200, 100, 50, 0},
                          Case{200, 100, 49.9, MCLIB_ERROR}, Case{0, 100, NAN, MCLIB_ERROR}}) {
        x = 7;
        EXPECT_EQ(status(c.R1, c.R2, 100, c.s, &x), c.status) << c.R1 << ' ' << c.R2 << ' ' << c.s;
        if (c.status != 0) {
            EXPECT_EQ(x, 0);
        }
    }
}

// The curve that the host fits runs between the ends, on the element.
TEST(Clothoid, CurveBetweenEndPointsLiesOnTheElement) {
    for (const auto& [R1, R2] : radii) {
        SCOPED_TRACE(testing::Message() << R1 << ' ' << R2);
        const Element e(1000, -500, 2.5, R1, R2, 90);
        BsplineCurve curve;
        ASSERT_EQ(mclibGeo_createKlotoideByEndpoints(&curve, 20, 4, e.x1, e.y1, e.x2, e.y2, R1, R2, 90), MCLIB_SUCCESS);
        EXPECT_EQ(curve.order, 4);
        EXPECT_EQ(curve.curveDisplay, 1);
        for (const double t : {0.0, 0.4, 1.0}) {
            Point3d p;
            mdlBspline_evaluateCurvePoint(&p, &curve, t);
            const Point expected = e.at(t * e.length);
            // The parameter is the chord length, nearly the arc length.
            EXPECT_NEAR(p.x, expected.x, 0.01);
            EXPECT_NEAR(p.y, expected.y, 0.01);
            EXPECT_EQ(p.z, 0);
        }
        mdlBspline_freeCurve(&curve);
    }
}

TEST(Clothoid, PointsInTravelOrderArePlaced) {
    Point3d points[3];
    ASSERT_EQ(mclibGeo_createKlotoide(points, 3, 1000, 2000, 100, 0, 100, pi / 2, 10, 0), MCLIB_SUCCESS);
    // Unturned from (0, 0): the tight end first, and the straight end at (97.5288, -16.3714), less the shift.
    EXPECT_NEAR(points[0].x, 1000, printed);
    EXPECT_NEAR(points[0].y, 1990, printed);
    EXPECT_NEAR(points[2].x, 1016.3714, printed);
    EXPECT_NEAR(points[2].y, 2087.5288, printed);
    EXPECT_EQ(points[1].z, 0);
}

TEST(Clothoid, TangentCurveStartsAlongTheTangent) {
    BsplineCurve curve;
    ASSERT_EQ(mclibGeo_createKlotoideByTangent(&curve, 5, 4, 10, 20, 10, 30, 0, 100, 100), MCLIB_SUCCESS);
    Point3d end;
    mdlBspline_evaluateCurvePoint(&end, &curve, 1);
    EXPECT_NEAR(end.x, 10 - 16.3714, printed);
    EXPECT_NEAR(end.y, 20 + 97.5288, printed);
    mdlBspline_freeCurve(&curve);
}

TEST(Clothoid, TangentCurveStartsAtItsPointWhicheverRadii) {
    for (const auto& [R1, R2] : radii) {
        SCOPED_TRACE(testing::Message() << R1 << ' ' << R2);
        BsplineCurve curve;
        ASSERT_EQ(mclibGeo_createKlotoideByTangent(&curve, 9, 4, 10, 20, 20, 30, R1, R2, 100), MCLIB_SUCCESS);
        Point3d start;
        mdlBspline_evaluateCurvePoint(&start, &curve, 0);
        EXPECT_NEAR(start.x, 10, printed);
        EXPECT_NEAR(start.y, 20, printed);
        mdlBspline_freeCurve(&curve);
    }
}

TEST(Clothoid, ImpossibleRequestsStoreNothing) {
    Point3d points[2] = {{7, 7, 7}, {7, 7, 7}};
    EXPECT_EQ(mclibGeo_getKlotPoints(points, 0, 0, 100, 100), MCLIB_SUCCESS);
    EXPECT_EQ(mclibGeo_getKlotPoints(points, -1, 0, 100, 100), MCLIB_SUCCESS);
    EXPECT_EQ(mclibGeo_getKlotPoints(points, 1, 0, 100, 100), MCLIB_ERROR);
    EXPECT_EQ(mclibGeo_getKlotPoints(points, 2, 0, 100, 0), MCLIB_ERROR);
    EXPECT_EQ(mclibGeo_createKlotoide(points, 2, 0, 0, 100, -200, 100, 0, 0, 0), MCLIB_ERROR);
    EXPECT_EQ(points[0].x, 7);
    BsplineCurve curve;
    EXPECT_EQ(mclibGeo_createKlotoideByEndpoints(&curve, 5, 4, 0, 0, 1, 1, 0, 100, 0), MCLIB_ERROR);
    EXPECT_EQ(curve.poles, nullptr);
}
