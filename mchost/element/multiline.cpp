// Multi-lines, as the lines that show them.
#include <memory>
#include <span>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/element/build.h"
#include "mchost/element/compound.h"
#include "mchost/mdl/compound.h"

namespace host {
namespace {

bool isSamePlace(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y;
}

std::vector<Point3d> withoutRepeats(std::span<const Point3d> points) {
    std::vector<Point3d> run;
    for (const Point3d& p : points)
        if (run.empty() || !isSamePlace(run.back(), p)) run.push_back(p);
    return run;
}

// To the left of the way from a to b, of length 1.
Point3d leftOf(const Point3d& a, const Point3d& b) {
    const double l = std::hypot(b.x - a.x, b.y - a.y);
    return {-(b.y - a.y) / l, (b.x - a.x) / l, 0};
}

// By how much a line beside two segments is off the point where these meet, for an offset of 1.
Point3d corner(const Point3d& before, const Point3d& behind) {
    constexpr double sharpest = 0.0152;  // 1 + cos of the angle between the normals, at 10 degrees
    const double opening = 1 + dot(before, behind);
    return opening < sharpest ? before : (before + behind) * (1 / opening);
}

// Where lines beside the run have their points, for an offset of 1.
std::vector<Point3d> asideOf(const std::vector<Point3d>& run) {
    const size_t last = run.size() - 1;
    std::vector<Point3d> left, aside;
    for (size_t i = 0; i < last; ++i) left.push_back(leftOf(run[i], run[i + 1]));
    aside.push_back(left.front());
    for (size_t i = 1; i < last; ++i) aside.push_back(corner(left[i - 1], left[i]));
    aside.push_back(left.back());
    if (last > 2 && isSamePlace(run.front(), run.back()))
        aside.front() = aside.back() = corner(left.back(), left.front());
    return aside;
}

}  // namespace
}  // namespace host

using namespace host;

int mdlMultiline_create(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* points, int32_t count,
                        const double* offsets, int32_t offsetCount) noexcept {
    if (!out || !points || !offsets || count < 2 || count > MDL_MAX_POINTS || offsetCount < 1) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::vector<Point3d> run = withoutRepeats({points, static_cast<size_t>(count)});
        if (run.size() < 2) return MDL_ERROR;
        const std::vector<Point3d> aside = asideOf(run);
        const auto scratch = std::make_unique_for_overwrite<MSElementBuffer>();
        NewParts parts;
        for (const double offset : std::span(offsets, static_cast<size_t>(offsetCount))) {
            std::vector<Point3d> line;
            for (size_t i = 0; i < run.size(); ++i) line.push_back(run[i] + aside[i] * offset);
            const int status =
                mdlLineString_create(scratch.get(), templateP, line.data(), static_cast<int32_t>(line.size()));
            if (status != MDL_SUCCESS || !parts.add(scratch.get())) return MDL_ERROR;
        }
        return parts.store(out, templateP, MDL_MULTILINE);
    });
}
