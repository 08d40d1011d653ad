// Lines, line strings and shapes.
#include <algorithm>

#include "mchost/element/build.h"

using namespace host;

namespace {

bool allFinite(const Point3d* points, int32_t count) {
    const Transform& toWorld = currentToWorld();
    double taints = 0;
    for (int32_t i = 0; i < count; ++i) taints += taint(applyToPoint(toWorld, points[i]));
    return taints == 0;
}

void storePoints(uint8_t* to, const Point3d* points, int32_t count) {
    const Transform toWorld = currentToWorld();
    for (int32_t i = 0; i < count; ++i) {
        const Point3d p = applyToPoint(toWorld, points[i]);
        std::memcpy(to + static_cast<size_t>(i) * sizeof p, &p, sizeof p);
    }
}

// A line string or shape; `stored` is above `count` when the first point is to close it.
int finishVertices(NewElement&& made, const Point3d* points, int32_t count, int32_t stored) {
    const VerticesBody vertices{static_cast<uint32_t>(stored), 0};
    uint8_t* body = made.body(sizeof vertices + static_cast<size_t>(stored) * sizeof(Point3d));
    if (!body) return MDL_ERROR;
    std::memcpy(body, &vertices, sizeof vertices);
    body += sizeof vertices;
    storePoints(body, points, count);
    if (stored > count) std::memcpy(body + static_cast<size_t>(count) * sizeof(Point3d), body, sizeof(Point3d));
    return MDL_SUCCESS;
}

}  // namespace

int mdlLine_create(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* points) noexcept {
    if (!out || !points || !allFinite(points, 2)) return MDL_ERROR;
    const Transform& toWorld = currentToWorld();
    const LineBody line{{applyToPoint(toWorld, points[0]), applyToPoint(toWorld, points[1])}};
    return finish(NewElement(out, templateP, MDL_LINE), line);
}

int mdlLineString_create(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* points,
                         int32_t count) noexcept {
    if (!out || !points || count < 2 || count > MDL_MAX_POINTS || !allFinite(points, count)) return MDL_ERROR;
    return finishVertices(NewElement(out, templateP, MDL_LINE_STRING), points, count, count);
}

int mdlShape_create(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* points, int32_t count,
                    int32_t fillMode) noexcept {
    if (!out || !points || count < 3 || count > MDL_MAX_POINTS || !allFinite(points, count)) return MDL_ERROR;
    const int32_t stored = points[0] == points[count - 1] ? count : count + 1;
    if (stored < 4 || stored > MDL_MAX_POINTS) return MDL_ERROR;
    NewElement made(out, templateP, MDL_SHAPE);
    made.setFilled(fillMode != 0);
    return finishVertices(std::move(made), points, count, stored);
}

int mdlLinear_extract(Point3d* points, int32_t* countP, const MSElementBuffer* element, int32_t size) noexcept {
    const auto vertices = element ? verticesOf(element) : std::nullopt;
    if (!vertices) return MDL_ERROR;
    const Transform& fromWorld = currentFromWorld();
    const auto wanted = std::min(static_cast<uint32_t>(std::max(size, 0)), vertices->size());
    for (uint32_t i = 0; points && i < wanted; ++i) points[i] = applyToPoint(fromWorld, (*vertices)[i]);
    if (countP) *countP = static_cast<int32_t>(vertices->size());
    return MDL_SUCCESS;
}

int mdlLinear_getClosestSegment(Point3d* pointP, Point3d* segment, int32_t* segmentIndexP,
                                const MSElementBuffer* element) noexcept {
    const auto vertices = pointP && element ? verticesOf(element) : std::nullopt;
    if (!vertices || vertices->size() < 2 || !isFinite(*pointP)) return MDL_ERROR;
    const Transform& fromWorld = currentFromWorld();
    double best = HUGE_VAL;
    Point3d nearest, ends[2];
    int32_t index = -1;
    Point3d a = applyToPoint(fromWorld, (*vertices)[0]);
    for (uint32_t i = 1; i < vertices->size(); ++i) {
        const Point3d b = applyToPoint(fromWorld, (*vertices)[i]);
        const Point3d candidate = nearestOnSegment(*pointP, a, b);
        if (const double d = distance(*pointP, candidate); d < best) {
            best = d, nearest = candidate, ends[0] = a, ends[1] = b;
            index = static_cast<int32_t>(i) - 1;
        }
        a = b;
    }
    if (index < 0) return MDL_ERROR;
    *pointP = nearest;
    if (segment) segment[0] = ends[0], segment[1] = ends[1];
    if (segmentIndexP) *segmentIndexP = index;
    return MDL_SUCCESS;
}
