#include "checks.h"

#include <cmath>
#include <cstdio>

#include <mclib/mclib.h>

namespace alignment {

namespace {

enum Number { X1, Y1, X2, Y2, R1, R2, A };

template <class... Values>
Impossibility because(int number, const char* format, Values... values) {
    char why[256];
    std::snprintf(why, sizeof why, format, values...);
    return {number, why};
}

std::optional<Impossibility> circleImpossibility(const Element& e, double chord, double tolerance) {
    if (e.r1 == 0) return because(R1, "an element with A = 0 has one radius, but R1 is 0 and R2 is %g", e.r2);
    if (e.r1 != e.r2) return because(R2, "an element with A = 0 has one radius, but R1 is %g and R2 is %g", e.r1, e.r2);
    if (chord <= 2 * std::abs(e.r1) + tolerance) return {};
    return because(R1, "the ends are %.3f m apart, more than the diameter of %.3f m", chord, 2 * std::abs(e.r1));
}

std::optional<Impossibility> clothoidImpossibility(const Element& e, double chord, double tolerance) {
    if (e.a < 0) return because(A, "A can't be below 0");
    if (e.r1 == e.r2) return because(R2, "a clothoid has two different radii, but both are %g", e.r1);
    if (e.r1 * e.r2 < 0) return because(R2, "a clothoid can't turn both ways; divide it where it is straight");
    Point3d ends[2];
    double l1 = 0, l2 = 0;
    mclibGeo_getKlotoideLength(&l1, &l2, e.r1, e.r2, e.a);
    mclibGeo_getKlotPoints(ends, 2, e.r1, e.r2, e.a);
    const double ownChord = std::hypot(ends[1].x - ends[0].x, ends[1].y - ends[0].y);
    if (std::abs(ownChord - chord) <= tolerance) return {};
    return because(A, "R1, R2 and A make a clothoid %.3f m long with a chord of %.3f m, but its ends are %.3f m apart",
                   l2 - l1, ownChord, chord);
}

double halfTurn(double angle) {
    return std::remainder(angle, 2 * M_PI);
}

}  // namespace

std::optional<Impossibility> impossibility(const Element& e, double tolerance) {
    const double chord = std::hypot(e.x2 - e.x1, e.y2 - e.y1);
    if (chord == 0) return because(X2, "the element has no length: both ends are the same point");
    if (e.a != 0) return clothoidImpossibility(e, chord, tolerance);
    if (e.r1 != 0 || e.r2 != 0) return circleImpossibility(e, chord, tolerance);
    return {};
}

std::vector<Gap> gaps(const Road& road) {
    std::vector<Gap> found;
    for (size_t i = 1; i < road.elements.size(); ++i) {
        const Element& before = road.elements[i - 1];
        const Element& behind = road.elements[i];
        const double distance = std::hypot(behind.x1 - before.x2, behind.y1 - before.y2);
        const double angle = halfTurn(behind.bearing - before.bearingAt(before.length));
        if (distance > road.gapTolerance || std::abs(angle) > road.angleTolerance) {
            found.push_back({behind.start, distance, angle});
        }
    }
    return found;
}

}  // namespace alignment
