// What can't be an element of a road, and where elements don't meet.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "road.h"

namespace alignment {

// Why seven numbers are no element, and which of them (0 to 6) shows it.
struct Impossibility {
    int number;
    std::string why;
};
std::optional<Impossibility> impossibility(const Element& element, double tolerance);

// A joint between two elements that don't meet.
struct Gap {
    double station;
    double distance;  // metres
    double angle;     // radians, the second element's bearing less the first's, -pi to pi
};
// The joints whose distance or angle is over the road's tolerances.
std::vector<Gap> gaps(const Road& road);

}  // namespace alignment
