#include "road.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <mclib/mclib.h>

namespace alignment {

namespace {

double curvature(double radius) {
    return radius == 0 ? 0 : 1 / radius;
}

// The series length of a clothoid at a distance from its first end: it falls towards a straight or wider second end.
double seriesLength(const Element& e, double distance) {
    double l1 = 0, l2 = 0;
    mclibGeo_getKlotoideLength(&l1, &l2, e.r1, e.r2, e.a);
    const bool tightens = std::abs(curvature(e.r2)) > std::abs(curvature(e.r1));
    return std::clamp(tightens ? l1 + distance : l2 - distance, l1, l2);
}

// The point at a distance from the first end, and the bearing that the library gives there. False when it finds none.
bool pointOn(const Element& e, double distance, double& x, double& y, double& angle) {
    const double s = e.kind() == GEO_CLOTHOID ? seriesLength(e, distance) : distance;
    return mclibGeo_getElementCoord(&x, &y, &angle, e.x1, e.y1, e.x2, e.y2, e.r1, e.r2, e.a, s) == MCLIB_SUCCESS;
}

}  // namespace

int Element::kind() const {
    return mclibGeo_getElementType(r1, r2, a);
}

double Element::curvatureAt(double distance) const {
    if (kind() != GEO_CLOTHOID) return curvature(r1);
    return curvature(r1) + (curvature(r2) - curvature(r1)) * distance / length;
}

double Element::bearingAt(double distance) const {
    return bearing + distance * (curvatureAt(0) + curvatureAt(distance)) / 2;
}

double Road::endStation() const {
    return elements.empty() ? startStation : elements.back().start + elements.back().length;
}

bool measure(Element& e) {
    const double chord = std::hypot(e.x2 - e.x1, e.y2 - e.y1);
    double x = 0, y = 0, l1 = 0, l2 = 0;
    switch (e.kind()) {
        case GEO_LINE: e.length = chord; break;
        case GEO_CIRCLE:
            if (chord > 2 * std::abs(e.r1)) e.r1 = e.r2 = std::copysign(chord / 2, e.r1);
            e.length = 2 * std::abs(e.r1) * std::asin(chord / (2 * std::abs(e.r1)));
            break;
        default: mclibGeo_getKlotoideLength(&l1, &l2, e.r1, e.r2, e.a); e.length = l2 - l1;
    }
    return pointOn(e, e.length, x, y, e.bearing) && pointOn(e, 0, x, y, e.bearing);
}

Place placeOn(const Element& e, double distance) {
    distance = std::clamp(distance, 0.0, e.length);
    Place place = {e.start + distance, e.x1, e.y1, e.bearingAt(distance), e.curvatureAt(distance)};
    if (distance == 0) return place;
    double x = 0, y = 0, angle = 0;
    if (distance == e.length || !pointOn(e, distance, x, y, angle)) x = e.x2, y = e.y2;
    place.x = x;
    place.y = y;
    return place;
}

Place placeAt(const Road& road, double station) {
    const auto behind = std::ranges::upper_bound(road.elements, station, {}, &Element::start);
    const Element& element = behind == road.elements.begin() ? *behind : *std::prev(behind);
    return placeOn(element, station - element.start);
}

std::vector<double> roundStations(const Road& road, double step) {
    std::vector<double> stations;
    const double nothing = step * 1e-9;  // a station that is round but for rounding counts
    for (double n = std::ceil((road.startStation - nothing) / step); n * step <= road.endStation() + nothing; ++n) {
        stations.push_back(n * step + 0.0);  // not -0
    }
    return stations;
}

double gonFromNorth(double bearing) {
    const double gon = std::fmod(100.0 - bearing * 200.0 / M_PI, 400.0);
    return gon < 0 ? gon + 400.0 : gon;
}

}  // namespace alignment
