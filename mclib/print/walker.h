// The page walker: reads the elements of a page and gives them to a print device.
#pragma once

#include "mchost/mdl/elmdscr.h"
#include "mclib/print/driver.h"

namespace mc {

// A box on the paper, in millimetres.
struct PaperBox {
    double x, y, width, height;
};

}  // namespace mc

namespace mc::print {

// A page and its place: scaled evenly to fit the box, in the middle of it, the level with code 63 first.
struct PaperPage {
    const ElementDescr* descr;  // in design coordinates
    PaperBox box;
    bool turned = false;   // by a quarter, counter-clockwise
    double pageAngle = 0;  // the direction of reading as it lies on the paper, in degrees
};

void walkPage(const PrintDriver& driver, void* job, const PaperPage& page);

}  // namespace mc::print
