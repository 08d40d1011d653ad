// The geometry of alignments on elements of the host: lines and arcs made, and the nearest point found.
#include <algorithm>

#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/transform.h"
#include "mclib/frame/current_units.h"
#include "mclib/frame/util.h"
#include "mclib/geometry/plane.h"

namespace mc {

namespace {

constexpr double strokeTolerance = 0.01;  // master units

// One search at a time: the bearing is handed out and lives until the next one; the buffer holds the run in hand.
struct NearestState {
    double bearing;
    MSElementBuffer run;
};
NearestState state;

struct Search {
    Point3d from, nearest;
    double distance;
    double tolerance;  // in units of the current transform
    uint32_t classMask;
    bool found;
};

void searchRun(Search& search, const Point3d* points, int32_t count) {
    if (mdlLineString_create(&state.run, nullptr, points, count) != MDL_SUCCESS) return;
    Point3d closest = search.from;
    Point3d segment[2];
    if (mdlLinear_getClosestSegment(&closest, segment, nullptr, &state.run) != MDL_SUCCESS) return;
    const double distance = mdlVec_distance(&closest, &search.from);
    if (!(distance < search.distance)) return;
    search.distance = distance;
    search.nearest = closest;
    search.found = true;
    state.bearing = bearingOf({segment[1].x - segment[0].x, segment[1].y - segment[0].y});
}

int searchComponent(MSElementBuffer* element, void* argument, int32_t, int32_t, ElementDescr*) {
    auto& search = *static_cast<Search*>(argument);
    int32_t elementClass = 0;
    mdlElement_getProperties(nullptr, nullptr, &elementClass, nullptr, nullptr, nullptr, nullptr, nullptr, element);
    if (!(search.classMask >> (elementClass & 31) & 1)) return 0;
    Point3d* points = nullptr;
    int32_t left = 0;
    const int status = mdlElement_stroke(&points, &left, element, search.tolerance);
    const mdl::HostPtr<Point3d[]> owned(points);
    if (status != MDL_SUCCESS) return 0;
    for (const Point3d* run = points; left >= 2;) {
        const int32_t count = std::min<int32_t>(left, MDL_MAX_POINTS);
        searchRun(search, run, count);
        run += count;
        left -= count;
    }
    return 0;
}

}  // namespace

}  // namespace mc

using namespace mc;

double* mclibGeo_getNearestPointP(Point3d* pointP, ElementDescr* edP, uint32_t classMask) {
    const double tolerance = inCurrentUnits(*mclibUtil_masterToUORP(strokeTolerance));
    Search search = {*pointP, {}, *fc_rmaxui4P, tolerance, classMask, false};
    mdlElmdscr_operation(edP, searchComponent, &search, MDL_DESCR_ALL);
    if (search.found) *pointP = search.nearest;
    return &state.bearing;
}

int mclibGeo_createLineByEndpoints(MSElementBuffer* elmP, double x1, double y1, double x2, double y2, double yScale) {
    const Point3d points[2] = {{x1, y1 * yScale, 0}, {x2, y2 * yScale, 0}};
    mdlLine_create(elmP, elmP, points);
    return MCLIB_SUCCESS;
}

int mclibGeo_createArcByEndpoints(MSElementBuffer* elmP, double x1, double y1, double x2, double y2, double R,
                                  double yScale) {
    y1 *= yScale;
    y2 *= yScale;
    const double radius = R * yScale;
    Point2d center;
    if (mclibGeo_getCircleCenter(&center.x, &center.y, x1, y1, x2, y2, radius) != MCLIB_SUCCESS) return MCLIB_ERROR;
    const double start = bearingOf(Point2d{x1, y1} - center);
    double sweep = bearingOf(Point2d{x2, y2} - center) - start;
    if (R > 0 && sweep < 0) sweep += 2 * pi;
    if (R < 0 && sweep > 0) sweep -= 2 * pi;
    const Point3d origin = {center.x, center.y, 0};
    mdlArc_create(elmP, elmP, &origin, std::fabs(radius), std::fabs(radius), nullptr, start, sweep);
    return MCLIB_SUCCESS;
}
