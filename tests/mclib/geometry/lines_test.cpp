// Lines, circles, corners and ends.
#include "mclib/geometry/lines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace {

constexpr double pi = std::numbers::pi;
// Coordinates here are below 1e4, so sums of a few of them round below this.
constexpr double tolerance = 1e-9;

struct Place {
    int status;
    double x = 7, y = 7, angle = 7;
};

Place at(double x1, double y1, double x2, double y2, double R1, double R2, double A, double s) {
    Place p;
    p.status = mclibGeo_getElementCoord(&p.x, &p.y, &p.angle, x1, y1, x2, y2, R1, R2, A, s);
    return p;
}

void expectPlace(const Place& p, double x, double y, double angle) {
    EXPECT_EQ(p.status, MCLIB_SUCCESS);
    EXPECT_NEAR(p.x, x, tolerance);
    EXPECT_NEAR(p.y, y, tolerance);
    EXPECT_NEAR(p.angle, angle, tolerance);
}

void expectNoPlace(const Place& p) {
    EXPECT_EQ(p.status, MCLIB_ERROR);
    EXPECT_EQ(p.x, 0);
    EXPECT_EQ(p.y, 0);
    EXPECT_EQ(p.angle, 7);
}

}  // namespace

TEST(Geometry, ElementsAreToldApartExactly) {
    EXPECT_EQ(mclibGeo_getElementType(0, 0, 0), GEO_LINE);
    EXPECT_EQ(mclibGeo_getElementType(0, 100, 0), GEO_LINE);
    EXPECT_EQ(mclibGeo_getElementType(100, 0, 0), GEO_CIRCLE);
    EXPECT_EQ(mclibGeo_getElementType(0, 100, 50), GEO_CLOTHOID);
    EXPECT_EQ(mclibGeo_getElementType(100, 0, -50), GEO_CLOTHOID);
    EXPECT_EQ(mclibGeo_getElementType(100, 100, 50), GEO_LINE);
    EXPECT_EQ(mclibGeo_getElementType(100, 100 + 1e-13, 50), GEO_CLOTHOID);
}

TEST(Geometry, BearingsAndQuadrantsGoAround) {
    struct Case {
        double dx, dy, angle;
        int quadrant;
    };
    for (const Case& c :
         {Case{0, 0, 0, 1}, Case{1, 0, 0, 1}, Case{0, 1, pi / 2, 1}, Case{-1, 1, 3 * pi / 4, 2}, Case{-1, 0, pi, 2},
          Case{-1, -1, 5 * pi / 4, 3}, Case{0, -1, 3 * pi / 2, 4}, Case{1, -1, 7 * pi / 4, 4}}) {
        double angle = -1;
        EXPECT_EQ(mclibGeo_getCircleQuadrant(&angle, c.dx, c.dy), c.quadrant) << c.dx << ' ' << c.dy;
        EXPECT_DOUBLE_EQ(angle, c.angle) << c.dx << ' ' << c.dy;
    }
}

TEST(Geometry, LineHasStationsFromEndToEnd) {
    expectPlace(at(1, 2, 4, 6, 0, 0, 0, 0), 1, 2, std::atan2(4, 3));
    expectPlace(at(1, 2, 4, 6, 0, 0, 0, 5), 4, 6, std::atan2(4, 3));
    expectPlace(at(10, 0, 0, 0, 0, 0, 0, 4), 6, 0, pi);
    expectNoPlace(at(1, 2, 4, 6, 0, 0, 0, 5 + 1e-9));
    expectNoPlace(at(1, 2, 4, 6, 0, 0, 0, -1e-9));
    expectNoPlace(at(1, 2, 4, 6, 0, 0, 0, std::nan("")));
    expectNoPlace(at(1, 2, 1, 2, 0, 0, 0, 0));
    expectNoPlace(at(0, 0, INFINITY, 0, 0, 0, 0, 1));
    expectNoPlace(at(0, 0, 1e200, 1e200, 0, 0, 0, 1));
}

TEST(Geometry, CircleHasStationsFromEndToEnd) {
    expectPlace(at(0, 0, 10, 10, 10, 0, 0, 0), 0, 0, 2 * pi);
    expectPlace(at(0, 0, 10, 10, 10, 0, 0, 5 * pi), 10, 10, 5 * pi / 2);
    expectPlace(at(0, 0, 10, 10, -10, 0, 0, 5 * pi), 10, 10, 0);
    expectNoPlace(at(0, 0, 10, 10, 10, 0, 0, 5 * pi + 1e-6));
    expectNoPlace(at(0, 0, 10, 10, 10, 0, 0, -1e-9));
    expectNoPlace(at(3, 3, 3, 3, 10, 0, 0, 0));
    expectNoPlace(at(0, 0, 30, 0, 10, 0, 0, 0));
    expectNoPlace(at(0, 0, 30, 0, INFINITY, 0, 0, 0));
    double x = 7, y = 7, angle = 7;
    EXPECT_EQ(mclibGeo_getCircleCoord(&x, &y, &angle, 0, 0, 1, 1, 0, 0), MCLIB_ERROR);
    EXPECT_EQ(x, 7);
}

// Arcs of both turns in all directions: a step along the arc agrees with the bearing, every point lies on the circle,
// and the last one on the second end. The radius's sign decides on which side the centre lies.
TEST(Geometry, RandomArcsKeepTheirSideAndEnds) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> coordinate(-1000, 1000), factor(0.5001, 20);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const double x1 = coordinate(random), y1 = coordinate(random), x2 = coordinate(random), y2 = coordinate(random);
        const double chord = std::hypot(x2 - x1, y2 - y1);
        const double R = chord * factor(random) * (i % 2 ? 1 : -1);
        double xc, yc;
        ASSERT_EQ(mclibGeo_getCircleCenter(&xc, &yc, x1, y1, x2, y2, R), MCLIB_SUCCESS);
        const double cross = (x2 - x1) * (yc - y1) - (y2 - y1) * (xc - x1);
        EXPECT_GT(cross * R, 0);
        const double length = 2 * std::fabs(R) * std::asin(chord / (2 * std::fabs(R)));
        for (const double t : {0.0, 0.3, 1.0}) {
            const Place p = at(x1, y1, x2, y2, R, 0, 0, t * length);
            ASSERT_EQ(p.status, MCLIB_SUCCESS);
            EXPECT_NEAR(std::hypot(p.x - xc, p.y - yc), std::fabs(R), 1e-8);
            const double nx = -std::sin(p.angle) * R, ny = std::cos(p.angle) * R;
            EXPECT_NEAR(std::hypot(p.x + nx - xc, p.y + ny - yc), 0, 1e-7) << "the centre lies across the tangent";
            if (t == 0) {
                EXPECT_NEAR(std::hypot(p.x - x1, p.y - y1), 0, 1e-7);
            }
            if (t == 1) {
                EXPECT_NEAR(std::hypot(p.x - x2, p.y - y2), 0, 1e-7);
            }
        }
    }
}

// ---- coordinates of a map: millions of metres, whose last digits are lost when elements are worked out ----

class MapGeometry : public testing::Test {
  protected:
    double random(double from, double to) { return std::uniform_real_distribution<double>(from, to)(engine); }

    std::mt19937 engine{4};
};

struct MapOrigin {
    double x, y;
};
constexpr MapOrigin mapOrigins[] = {{0, 0}, {1e5, 1e5}, {5.7e5, 6.6e6}, {1e7, 1e7}};

// The station that a caller works out from centre and bearings, and the length as it is told.
std::vector<double> endStations(double x1, double y1, double x2, double y2, double R, double sweep) {
    double xc = 0, yc = 0, b1 = 0, b2 = 0;
    EXPECT_EQ(mclibGeo_getCircleCenter(&xc, &yc, x1, y1, x2, y2, R), MCLIB_SUCCESS);
    EXPECT_NEAR(std::hypot(x1 - xc, y1 - yc), std::fabs(R), 1e-7);
    EXPECT_NEAR(std::hypot(x2 - xc, y2 - yc), std::fabs(R), 1e-7);
    mclibGeo_getCircleQuadrant(&b1, x1 - xc, y1 - yc);
    mclibGeo_getCircleQuadrant(&b2, x2 - xc, y2 - yc);
    double turn = R > 0 ? b2 - b1 : b1 - b2;
    if (turn < 0) turn += 2 * pi;
    return {turn * std::fabs(R), sweep * std::fabs(R)};
}

TEST_F(MapGeometry, HalfCirclesAndEndStationsOfArcsAreTaken) {
    for (const MapOrigin& o : mapOrigins) {
        for (const double size : {1.0, 5.0, 20.0, 100.0, 1e3, -1e5}) {
            SCOPED_TRACE(testing::Message() << o.x << ' ' << size);
            for (int i = 0; i < 200; ++i) {
                const double R = i % 2 ? size : -size, sweep = i % 4 < 2 ? pi : random(0.1, 3.0), b = random(0, 2 * pi);
                const double x1 = o.x + random(0, 1), y1 = o.y + random(0, 1), chord = 2 * size * std::sin(sweep / 2);
                const double x2 = x1 + chord * std::cos(b), y2 = y1 + chord * std::sin(b);
                for (const double s : endStations(x1, y1, x2, y2, R, sweep)) {
                    const Place p = at(x1, y1, x2, y2, R, 0, 0, s);
                    ASSERT_EQ(p.status, MCLIB_SUCCESS);
                    // Near a half circle the length is some 14 times as far off as the chord.
                    ASSERT_NEAR(std::hypot(p.x - x2, p.y - y2), 0, 1e-6);
                }
                ASSERT_EQ(at(x1, y1, x2, y2, R, 0, 0, sweep * std::fabs(R) * (1 + 1e-6) + 1e-3).status, MCLIB_ERROR);
                ASSERT_EQ(
                    at(x1, y1, x1 + (x2 - x1) * 2.1 * size / chord, y1 + (y2 - y1) * 2.1 * size / chord, R, 0, 0, 0)
                        .status,
                    MCLIB_ERROR);
            }
        }
    }
}

TEST_F(MapGeometry, EndStationsOfLinesAndClothoidsAreTaken) {
    for (const MapOrigin& o : mapOrigins) {
        SCOPED_TRACE(o.x);
        for (int i = 0; i < 1000; ++i) {
            const double x1 = o.x + random(0, 1), y1 = o.y + random(0, 1), b = random(0, 2 * pi);
            const double L = random(1, 300), R = random(30, 2000);
            const double x2 = x1 + L * std::cos(b), y2 = y1 + L * std::sin(b);
            const Place end = at(x1, y1, x2, y2, 0, 0, 0, L);
            ASSERT_EQ(end.status, MCLIB_SUCCESS);
            ASSERT_NEAR(std::hypot(end.x - x2, end.y - y2), 0, 1e-7);
            ASSERT_EQ(at(x1, y1, x2, y2, 0, 0, 0, L + 1e-6).status, MCLIB_ERROR);
            ASSERT_EQ(at(x1, y1, x2, y2, 0, R, std::sqrt(R * L), L).status, MCLIB_SUCCESS);
            ASSERT_EQ(at(x1, y1, x2, y2, R, 3 * R, std::sqrt(R * L), L / 3).status, MCLIB_SUCCESS);
            ASSERT_EQ(at(x1, y1, x2, y2, 0, R, std::sqrt(R * L), L + 1e-6).status, MCLIB_ERROR);
        }
    }
}

// An arc that ends at the highest or rightmost point of its circle.
TEST_F(MapGeometry, SolversReachTheEndsOfTheirOwnArc) {
    for (const MapOrigin& o : mapOrigins) {
        SCOPED_TRACE(o.x);
        for (int i = 0; i < 1000; ++i) {
            const double R = random(5, 2000), b = random(-1.2, -0.1);
            const double xc = o.x + random(0, 1), yc = o.y + random(0, 1);
            const double x1 = xc + R * std::cos(b), y1 = yc + R * std::sin(b);
            double value = 0;
            ASSERT_EQ(mclibGeo_getCircleX(&value, x1, y1, xc, yc + R, R, yc + R), MCLIB_SUCCESS);
            ASSERT_EQ(mclibGeo_getCircleY(&value, y1, x1, yc + R, xc, -R, yc + R), MCLIB_SUCCESS);
        }
    }
}

TEST_F(MapGeometry, SteepLinesAndFlatArcsKeepTheirDigits) {
    for (const double lean : {1e-2, 1e-4, 1e-6}) {
        double value = 0;
        const double x1 = 5.7e5, y1 = 6.6e6, share = 0.3;
        mclibGeo_getLinearY(&value, x1, y1, x1 + 100 * lean, y1 + 100, x1 + 100 * lean * share);
        EXPECT_NEAR(value, y1 + 100 * share, 2e-10 / lean);  // the digits of x itself
        mclibGeo_getLinearX(&value, y1, x1, y1 + 100, x1 + 100 * lean, x1 + 100 * lean * share);
        EXPECT_NEAR(value, y1 + 100 * share, 2e-10 / lean);
    }
    for (const double R : {1e9, 1e12, -1e14}) {
        const Place start = at(3, 4, 103, 4, R, 0, 0, 0), middle = at(3, 4, 103, 4, R, 0, 0, 50);
        EXPECT_EQ(start.x, 3);
        EXPECT_EQ(start.y, 4);
        EXPECT_NEAR(middle.x, 53, 1e-9);
        EXPECT_NEAR(middle.y, 4 - 50.0 * 50.0 / (2 * R), 1e-9);
    }
}

TEST(Geometry, CentreLiesOnTheSideOfTheTurn) {
    double x, y;
    EXPECT_EQ(mclibGeo_getCircleCenter(&x, &y, 0, 0, 10, 10, 10), MCLIB_SUCCESS);
    EXPECT_NEAR(x, 0, tolerance);
    EXPECT_NEAR(y, 10, tolerance);
    EXPECT_EQ(mclibGeo_getCircleCenter(&x, &y, 0, 0, 10, 10, -10), MCLIB_SUCCESS);
    EXPECT_NEAR(x, 10, tolerance);
    EXPECT_NEAR(y, 0, tolerance);
    // A half circle, whose chord rounding may make a little longer than the diameter.
    EXPECT_EQ(mclibGeo_getCircleCenter(&x, &y, 0, 0, 0.3, 0.4, std::nextafter(0.25, 0)), MCLIB_SUCCESS);
    EXPECT_NEAR(x, 0.15, 1e-6);
    EXPECT_EQ(mclibGeo_getCircleCenter(&x, &y, 5, 5, 5, 5, 10), MCLIB_ERROR);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
}

TEST(Geometry, SolversStoreTheValueAndTellTheRange) {
    struct Case {
        const char* name;
        int (*solve)(double*, double, double, double, double, double);
        double x1, y1, x2, y2, given;
        int status;
        double value;
    };
    const auto circleX = [](double* v, double x1, double y1, double x2, double y2, double g) {
        return mclibGeo_getCircleX(v, x1, y1, x2, y2, 10, g);
    };
    const auto circleXRight = [](double* v, double x1, double y1, double x2, double y2, double g) {
        return mclibGeo_getCircleX(v, x1, y1, x2, y2, -10, g);
    };
    const auto circleY = [](double* v, double x1, double y1, double x2, double y2, double g) {
        return mclibGeo_getCircleY(v, x1, y1, x2, y2, 10, g);
    };
    constexpr double untouched = 99;
    for (const Case& c : {
             Case{"y within", mclibGeo_getLinearY, 0, 0, 10, 5, 4, 0, 2},
             Case{"y at the end", mclibGeo_getLinearY, 0, 0, 10, 5, 10, 0, 5},
             Case{"y above", mclibGeo_getLinearY, 0, 0, 10, 5, 12, GEO_ABOVE, 6},
             Case{"y above, turned about", mclibGeo_getLinearY, 10, 5, 0, 0, 12, GEO_ABOVE, 6},
             Case{"y below", mclibGeo_getLinearY, 10, 5, 0, 0, -2, GEO_BELOW, -1},
             Case{"y, equal points", mclibGeo_getLinearY, 1, 1, 1, 1, 1, MCLIB_ERROR, untouched},
             Case{"x above", mclibGeo_getLinearX, 0, 0, 10, 5, 6, GEO_ABOVE, 12},
             Case{"x of a vertical line", mclibGeo_getLinearX, 3, 0, 3, 5, 2, 0, 5},
             Case{"x of a horizontal line", mclibGeo_getLinearX, 0, 2, 5, 2, 2, MCLIB_ERROR, untouched},
             Case{"circle's right half", circleX, 0, 0, 10, 10, 10, 0, 10},
             Case{"circle's left half", circleXRight, 0, 0, 10, 10, 0, 0, 0},
             Case{"circle above", circleX, 0, 0, 10, 10, 16, GEO_ABOVE, 8},
             Case{"circle's upper half", circleY, 0, 0, 10, 10, -6, GEO_BELOW, 18},
             Case{"circle at its top", circleY, 0, 0, 10, 10, 0, 0, 20},
             Case{"circle doesn't reach", circleY, 0, 0, 10, 10, 10.1, MCLIB_ERROR, untouched},
             Case{"no circle", circleX, 0, 0, 30, 0, 0, MCLIB_ERROR, untouched},
         }) {
        double value = untouched;
        EXPECT_EQ(c.solve(&value, c.x1, c.y1, c.x2, c.y2, c.given), c.status) << c.name;
        EXPECT_NEAR(value, c.value, tolerance) << c.name;
    }
    double a = 1, b = 1;
    EXPECT_EQ(mclibGeo_getLinearAB(&a, &b, 2, 2, 2, 2), MCLIB_ERROR);
    EXPECT_EQ(a, 0);
    EXPECT_EQ(b, 0);
}

TEST(Geometry, FramesTurnThereAndBack) {
    double x, y;
    mclibGeo_coordLocalToGlobal(&x, &y, 3, 0, pi / 2);
    EXPECT_NEAR(x, 0, tolerance);
    EXPECT_NEAR(y, 3, tolerance);
    mclibGeo_coordGlobalToLocal(&x, &y, x, y, pi / 2);
    EXPECT_NEAR(x, 3, tolerance);
    EXPECT_NEAR(y, 0, tolerance);
}

// The arc's ends lie on both lines, at the radius from the centre, and the lines are tangents there.
TEST(Geometry, FilletTouchesBothLinesOnEitherSide) {
    for (const double turn : {0.2, 1.5, 3.0, -0.2, -1.5, -3.0}) {
        for (const double first : {0.0, 2.0, 3.1, -2.0, -3.1}) {
            SCOPED_TRACE(testing::Message() << turn << ' ' << first);
            const double second = first + turn;
            Point3d p[5] = {{-100 * std::cos(first), -100 * std::sin(first), 1},
                            {0, 0, 2},
                            {0, 0, 3},
                            {100 * std::cos(second), 100 * std::sin(second), 4},
                            {0, 0, 5}};
            mclibGeo_createFillet(p, 5);
            const double t = 5 * std::fabs(std::tan(turn / 2));
            EXPECT_NEAR(p[1].x, -t * std::cos(first), tolerance);
            EXPECT_NEAR(p[2].y, t * std::sin(second), tolerance);
            for (const int end : {1, 2}) {
                const double bearing = end == 1 ? first : second;
                const double dx = p[4].x - p[end].x, dy = p[4].y - p[end].y;
                EXPECT_NEAR(std::hypot(dx, dy), 5, tolerance);
                EXPECT_NEAR(dx * std::cos(bearing) + dy * std::sin(bearing), 0, tolerance);
            }
            EXPECT_EQ(p[4].z, 5);
        }
    }
}

TEST(Geometry, PositiveTrimsShorten) {
    Point3d p[2] = {{0, 0, 0}, {10, 0, 0}};
    mclibGeo_trimVector(p, 2, -3);
    EXPECT_DOUBLE_EQ(p[0].x, 2);
    EXPECT_DOUBLE_EQ(p[1].x, 13);
}
