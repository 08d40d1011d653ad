#include "mclib/geometry/clothoid.h"

#include <algorithm>

#include "mchost/mdl/owned.hpp"
#include "mclib/frame/errors.h"
#include "mclib/geometry/plane.h"

namespace mc {

namespace {

struct Lengths {
    double l1, l2;  // series lengths of the ends, l1 <= l2
};

Lengths endLengths(double R1, double R2, double A) {
    const double a = R1 != 0 ? A * A / std::fabs(R1) : 0;
    const double b = R2 != 0 ? A * A / std::fabs(R2) : 0;
    return {std::min(a, b), std::max(a, b)};
}

double referenceRadius(double R1, double R2) {
    return std::fabs(R2) > std::fabs(R1) ? R2 : R1;
}

// +1, or -1 where the series frame is mirrored.
double sideOf(double R1, double R2, double reference) {
    return (reference == R2 && reference < 0) != (reference == R1 && reference > 0) ? -1 : 1;
}

// The series as two polynomials in (l/A)^4: x = l p, y = side (l/A)^2 l q.
struct Series {
    double inverseA2;  // 1 / A^2
    double side;

    Point2d at(double l) const {
        const double u = l * l * inverseA2, t = u * u;
        const double p = 1 + t * (-1.0 / 40 + t * (1.0 / 3456 + t * (-1.0 / 599040 + t * (1.0 / 175472640))));
        const double q = 1.0 / 6 + t * (-1.0 / 336 + t * (1.0 / 42240 + t * (-1.0 / 9676800 + t * (1.0 / 3530960640))));
        return {l * p, side * (l * u) * q};
    }
};

// A whose square, and its inverse, are numbers.
bool isParameter(double A) {
    return std::isfinite(A * A) && std::isfinite(1 / (A * A));
}

bool canGenerate(int nPoints, double A) {
    return isParameter(A) && nPoints != 1;
}

// ---- placing an element ----

// An element that can be laid out: which end is the tight one, and its curve in the series frame.
struct Layout {
    bool tightSecond;  // travelled away from the series' origin
    Lengths lengths;
    Series series;
};

bool turnOppositeWays(double R1, double R2) {
    return R1 * R2 < 0;
}

Layout layoutOf(double R1, double R2, double A) {
    const bool tightSecond = R1 == 0 || (R2 != 0 && std::fabs(R2) < std::fabs(R1));
    const double side = tightSecond ? std::copysign(1.0, R2) : -std::copysign(1.0, R1);
    return {tightSecond, endLengths(R1, R2, A), {1 / (A * A), side}};
}

// A point of the series in a frame in which the element runs in travel order: turned about when its tight end is first.
Point2d inTravelFrame(const Layout& layout, Point2d series) {
    return layout.tightSecond ? series : layout.series.at(layout.lengths.l2) - series;
}

// The travel frame's place of the element's first end.
Point2d startOf(const Layout& layout) {
    return layout.tightSecond ? layout.series.at(layout.lengths.l1) : Point2d{0, 0};
}

// The angle that lays the curve's chord along the bearing from (x1, y1) to (x2, y2).
double chordTurn(const Layout& layout, double x1, double y1, double x2, double y2) {
    const Point2d chord = layout.series.at(layout.lengths.l2) - layout.series.at(layout.lengths.l1);
    return bearingOf({x2 - x1, y2 - y1}) - bearingOf(chord);
}

// The direction of travel at the first end, in the travel frame. Of a curve towards its straight end it is that of a
// short chord, the last 1/10000 of its length; of a partial one it is the clothoid's angle l^2 / (2 A^2).
double startBearing(const Layout& layout, double R1, double R2) {
    if (R1 == 0) return 0;
    const auto& [side, lengths] = std::pair(layout.series.side, layout.lengths);
    if (R2 == 0) return bearingOf(layout.series.at(lengths.l2) - layout.series.at(0.9999 * lengths.l2));
    const double l = layout.tightSecond ? lengths.l1 : lengths.l2;
    return side * l * l * layout.series.inverseA2 / 2;
}

// ---- curves ----

using PointArray = mdl::HostPtr<Point3d[]>;

PointArray allocatePoints(int count) {
    const size_t bytes = static_cast<size_t>(std::max(count, 0)) * sizeof(Point3d);
    return PointArray(static_cast<Point3d*>(mclibMem_mallocRscErrorPrintf(bytes, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY)));
}

int fitCurve(BsplineCurve& curve, int nPoints, int order, double x0, double y0, double R1, double R2, double A,
             double angle, Point2d shift) {
    curve = {};
    if (!isParameter(A)) return MCLIB_ERROR;
    curve.curveDisplay = 1;
    curve.order = order;
    curve.numPoles = nPoints;
    const PointArray points = allocatePoints(nPoints);
    if (!points) return MCLIB_ERROR;
    const int status = mclibGeo_createKlotoide(points.get(), nPoints, x0, y0, R1, R2, A, angle, shift.x, shift.y);
    if (status != MCLIB_SUCCESS) return status;
    double meanError, maxError;
    return mdlBspline_leastSquaresToCurve(&curve, &meanError, &maxError, points.get(), nullptr, nPoints);
}

}  // namespace

}  // namespace mc

using namespace mc;

// ---- lengths and the series ----

double* mclibGeo_getKlotoideRadiusP(double R1, double R2) {
    static double radius;
    radius = referenceRadius(R1, R2);
    return &radius;
}

int mclibGeo_getKlotoideLength(double* L1P, double* L2P, double R1, double R2, double A) {
    const Lengths lengths = endLengths(R1, R2, A);
    *L1P = lengths.l1;
    *L2P = lengths.l2;
    return MCLIB_SUCCESS;
}

int mclibGeo_KlotCoord(double* xP, double* yP, double R1, double R2, double A, double l, double Rref) {
    if (!isParameter(A)) return MCLIB_ERROR;
    const Point2d p = Series{1 / (A * A), sideOf(R1, R2, Rref)}.at(l);
    *xP = p.x;
    *yP = p.y;
    return MCLIB_SUCCESS;
}

// ---- points ----

int mclibGeo_getKlotPoints(Point3d* pointsP, int nPoints, double R1, double R2, double A) {
    if (nPoints <= 0) return MCLIB_SUCCESS;
    if (!canGenerate(nPoints, A)) return MCLIB_ERROR;
    const auto [l1, l2] = endLengths(R1, R2, A);
    const Series series = {1 / (A * A), sideOf(R1, R2, referenceRadius(R1, R2))};
    const double step = (l2 - l1) / (nPoints - 1);
    const auto put = [&](int i, double l) {
        const Point2d p = series.at(l);
        pointsP[i].x = p.x;
        pointsP[i].y = p.y;
    };
    for (int i = 0; i < nPoints - 1; ++i) put(i, l1 + i * step);
    put(nPoints - 1, l2);
    return MCLIB_SUCCESS;
}

int mclibGeo_createKlotoide(Point3d* pointsP, int nPoints, double x0, double y0, double R1, double R2, double A,
                            double angle, double xShift, double yShift) {
    if (nPoints <= 0) return MCLIB_SUCCESS;
    if (!canGenerate(nPoints, A) || turnOppositeWays(R1, R2)) return MCLIB_ERROR;
    const PointArray series = allocatePoints(nPoints);
    if (!series) return MCLIB_ERROR;
    mclibGeo_getKlotPoints(series.get(), nPoints, R1, R2, A);
    // The series frame of a partial clothoid is that of its wide end; the tight end decides which way it turns.
    const Layout layout = layoutOf(R1, R2, A);
    const double mirror = sideOf(R1, R2, referenceRadius(R1, R2)) * layout.series.side;
    const double c = std::cos(angle), n = std::sin(angle);
    const Point3d last = series[nPoints - 1];
    for (int i = 0; i < nPoints; ++i) {
        const Point3d& p = series[layout.tightSecond ? i : nPoints - 1 - i];
        const double x = (layout.tightSecond ? p.x : last.x - p.x) - xShift;
        const double y = mirror * (layout.tightSecond ? p.y : last.y - p.y) - yShift;
        pointsP[i] = {c * x - n * y + x0, n * x + c * y + y0, 0};
    }
    return MCLIB_SUCCESS;
}

// ---- curves ----

int mclibGeo_createKlotoideByEndpoints(BsplineCurve* curveP, int nPoints, int order, double x1, double y1, double x2,
                                       double y2, double R1, double R2, double A) {
    const Layout layout = layoutOf(R1, R2, A);
    return fitCurve(*curveP, nPoints, order, x1, y1, R1, R2, A, chordTurn(layout, x1, y1, x2, y2), startOf(layout));
}

int mclibGeo_createKlotoideByTangent(BsplineCurve* curveP, int nPoints, int order, double x1, double y1, double x2,
                                     double y2, double R1, double R2, double A) {
    const Layout layout = layoutOf(R1, R2, A);
    return fitCurve(*curveP, nPoints, order, x1, y1, R1, R2, A, bearingOf({x2 - x1, y2 - y1}), startOf(layout));
}

// ---- stations ----

int mclibGeo_getKlotCoord(double* xP, double* yP, double* angleP, double x1, double y1, double x2, double y2, double R1,
                          double R2, double A, double s) {
    if (!isParameter(A)) return MCLIB_ERROR;
    *xP = *yP = 0;
    if ((R1 == 0 && R2 == 0) || turnOppositeWays(R1, R2)) return MCLIB_ERROR;
    const Layout layout = layoutOf(R1, R2, A);
    const auto [l1, l2] = layout.lengths;
    const std::optional<double> station = stationWithin(s, l1, l2, slackOf(l2, {x1, y1, x2, y2}));
    if (!station) return MCLIB_ERROR;
    const double turn = chordTurn(layout, x1, y1, x2, y2);
    const Point2d p =
        turned(inTravelFrame(layout, layout.series.at(*station)) - startOf(layout), turn) + Point2d{x1, y1};
    double bearing = turn + startBearing(layout, R1, R2);
    if (bearing > 2 * pi || bearing < 0) bearing = std::fmod(bearing, 2 * pi);
    if (bearing < 0) bearing += 2 * pi;
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(bearing)) return MCLIB_ERROR;
    *xP = p.x;
    *yP = p.y;
    *angleP = bearing;
    return MCLIB_SUCCESS;
}
