// A horizontal alignment: its elements, what they are drawn with, and where a station lies.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace alignment {

// What the drawing needs an attribute for; the names stand behind USE in the input.
enum class Role { straight, circle, clothoid, tick, station, boundary, label, frame, grid, title, text };
constexpr auto roleNames = std::to_array<const char*>({
    "STRAIGHT",
    "CIRCLE",
    "CLOTHOID",
    "TICK",
    "STATION",
    "BOUNDARY",
    "LABEL",
    "FRAME",
    "GRID",
    "TITLE",
    "TEXT",
});
constexpr size_t roleCount = roleNames.size();
static_assert(static_cast<size_t>(Role::text) + 1 == roleCount);

// An element as the library takes it: metres, x east, y north; a positive radius turns left, 0 is infinite.
struct Element {
    double x1, y1, x2, y2, r1, r2, a;
    int attribute;         // drawn with
    double start, length;  // station of the first end, arc length
    double bearing;        // of the tangent at the first end: radians, counter-clockwise from east
    std::string origin;    // the line of the input that tells it, such as "road.txt, line 5"

    int kind() const;  // GEO_LINE, GEO_CIRCLE, GEO_CLOTHOID
    double curvatureAt(double distance) const;
    double bearingAt(double distance) const;
};

struct Road {
    std::string project, title = "Horizontal alignment", date;
    double scale = 0;  // 1 : scale
    double startStation = 0;
    double gapTolerance = 0.001;     // metres
    double angleTolerance = 0.0032;  // radians: 0.2 gon
    std::array<int, roleCount> attributes{};
    std::vector<Element> elements;

    int attributeOf(Role role) const { return attributes[static_cast<size_t>(role)]; }
    double endStation() const;
};

// A point of the road.
struct Place {
    double station, x, y;
    double bearing;    // radians, counter-clockwise from east
    double curvature;  // 1 / radius, positive to the left
};

// Sets length and bearing of an element that impossibility() finds nothing against; an arc whose ends are farther apart
// than its diameter, within the tolerance, becomes a half circle between them. False when the numbers are out of range.
bool measure(Element& element);
// The place at a distance from the element's first end, 0 to its length.
Place placeOn(const Element& element, double distance);
// The place at a station of the road; stations beyond an end give that end.
Place placeAt(const Road& road, double station);
// Stations that are multiples of `step`, from the road's first to its last.
std::vector<double> roundStations(const Road& road, double step);

// A bearing as surveyors write it: gon, clockwise from north, 0 to 400.
double gonFromNorth(double bearing);

}  // namespace alignment
