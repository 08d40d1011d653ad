#include "sheet.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include <mclib/mclib.h>
#include <mclib/app/tell.hpp>

namespace alignment {

using mcapp::fail;

namespace {

constexpr double clearance = 20;  // between the road and the frame, millimetres: room for texts

Point3d turned(double x, double y, double angle) {
    return {x * std::cos(angle) - y * std::sin(angle), x * std::sin(angle) + y * std::cos(angle), 0};
}

// The road's extent along axes that are turned by an angle.
struct Extent {
    double x1, y1, x2, y2;
    double width() const { return x2 - x1; }
    double height() const { return y2 - y1; }
};

Extent extentOf(const Road& road, double angle) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    Extent extent = {infinite, infinite, -infinite, -infinite};
    const auto add = [&](double x, double y) {
        const Point3d p = turned(x, y, -angle);
        extent = {std::min(extent.x1, p.x), std::min(extent.y1, p.y), std::max(extent.x2, p.x),
                  std::max(extent.y2, p.y)};
    };
    constexpr int pieces = 32;
    for (const Element& e : road.elements) {
        for (int i = 0; i <= pieces; ++i) {
            const Place place = placeOn(e, e.length * i / pieces);
            add(place.x, place.y);
        }
    }
    return extent;
}

// The scale at which the road just fits.
double neededScale(const Extent& extent, const Sheet& sheet) {
    const double width = sheet.width() - 2 * clearance;
    const double height = sheet.height() - stripHeight - 2 * clearance;
    return 1000 * std::max(extent.width() / width, extent.height() / height);
}

// The next scale upwards that drawings have: 1, 2, 2.5 or 5 times a power of ten.
double usualScale(double atLeast) {
    for (double power = 1;; power *= 10) {
        for (const double factor : {1.0, 2.0, 2.5, 5.0}) {
            if (factor * power >= atLeast) return factor * power;
        }
    }
}

// The angle that needs the smallest scale, of all that keep north above the horizontal.
double bestAngle(const Road& road, const Sheet& sheet) {
    double best = 0, least = std::numeric_limits<double>::infinity();
    for (int degree = -89; degree <= 89; ++degree) {
        const double angle = degree * M_PI / 180;
        const double needed = neededScale(extentOf(road, angle), sheet);
        if (needed < least) {
            least = needed;
            best = angle;
        }
    }
    return best;
}

}  // namespace

std::optional<Paper> paperSize(const std::string& name, bool portrait) {
    static constexpr std::array<const char*, 6> names = {"A0", "A1", "A2", "A3", "A4", "A5"};
    const auto found = std::ranges::find(names, name);
    if (found == names.end()) return {};
    Paper paper = {name, 0, 0};
    const auto row = static_cast<int>(found - names.begin());
    mclibPrint_getPageSize(&paper.width, &paper.height, 2 * row + (portrait ? 1 : 2));
    return paper;
}

Point3d Sheet::ground(double x, double y) const {
    const Point3d p = turned(metres(x - width() / 2), metres(y - height() / 2), angle);
    return {centre.x + p.x, centre.y + p.y, 0};
}

Point3d Sheet::onSheet(double x, double y) const {
    const Point3d p = turned(x - centre.x, y - centre.y, -angle);
    return {p.x * 1000 / scale + width() / 2, p.y * 1000 / scale + height() / 2, 0};
}

std::optional<Sheet> layOut(const Road& road, const Paper& paper) {
    Sheet sheet = {paper, road.scale};
    if (neededScale(extentOf(road, 0), sheet) > road.scale) sheet.angle = bestAngle(road, sheet);
    const Extent extent = extentOf(road, sheet.angle);
    const double needed = neededScale(extent, sheet);
    if (needed > road.scale) {
        char text[256];
        std::snprintf(text, sizeof text, "the road doesn't fit on %s at 1:%g; use --scale %g or a larger --paper",
                      paper.name.c_str(), road.scale, usualScale(needed));
        fail(text);
        return {};
    }
    // The middle of the road lies above the frame's by half the strip.
    sheet.centre =
        turned((extent.x1 + extent.x2) / 2, (extent.y1 + extent.y2) / 2 - sheet.metres(stripHeight / 2), sheet.angle);
    return sheet;
}

}  // namespace alignment
