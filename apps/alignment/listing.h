// The station list of a road as a table on the console.
#pragma once

#include "road.h"

namespace alignment {

// A row for each multiple of `step` and for each end of an element: station, coordinates, bearing in gon, radius, and
// what begins there.
void printStations(const Road& road, double step);

}  // namespace alignment
