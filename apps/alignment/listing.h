// The station list of a road: a row for each multiple of a step and for each end of an element, with station,
// coordinates, bearing in gon, radius, and what begins there.
#pragma once

#include "drawing.h"
#include "road.h"

namespace alignment {

// As a table on the console.
void printStations(const Road& road, double step);

// As a page of texts, for a device that makes lines and columns of them. A unit of the page is a millimetre on paper.
struct ListPage {
    Page page;
    double width, height;
};
// Without a page, after a message, when it can't be made. Changes the attribute of the road's texts.
ListPage stationPage(const Road& road, double step);

}  // namespace alignment
