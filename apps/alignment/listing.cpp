#include "listing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "host/mdl/system.h"
#include "mclib.h"

namespace alignment {

namespace {

constexpr double sameStation = 1e-6;    // metres
constexpr double straightRadius = 1e7;  // beyond this a radius counts as infinite

std::string radiusText(double curvature) {
    if (std::abs(curvature) < 1 / straightRadius) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", 1 / curvature);
    return text;
}

const char* kindName(const Element& e) {
    static constexpr std::array<const char*, 3> names = {"straight", "circle", "clothoid"};
    return names[e.kind() - GEO_LINE];
}

void printRow(const Place& p, const char* begins) {
    toolSubsystem_printf("%12.3f %14.3f %14.3f %11.5f %11s%s%s\n", p.station, p.x, p.y, gonFromNorth(p.bearing),
                         radiusText(p.curvature).c_str(), *begins == '\0' ? "" : "  ", begins);
}

}  // namespace

void printStations(const Road& road, double step) {
    toolSubsystem_printf("%s\n", road.project.c_str());
    toolSubsystem_printf("Lengths in metres, x east, y north; bearings in gon, clockwise from north;\n");
    toolSubsystem_printf("radii positive to the left, - on a straight.\n\n");
    toolSubsystem_printf("%12s %14s %14s %11s %11s  %s\n", "station", "x", "y", "bearing", "radius", "begins");
    for (const Element& e : road.elements) {
        printRow(placeOn(e, 0), kindName(e));
        for (const double station : roundStations(road, step)) {
            if (station > e.start + sameStation && station < e.start + e.length - sameStation) {
                printRow(placeOn(e, station - e.start), "");
            }
        }
    }
    printRow(placeOn(road.elements.back(), road.elements.back().length), "end");
}

}  // namespace alignment
