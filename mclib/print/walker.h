// The page walker: reads the elements of a page and gives them to a print device.
#pragma once

#include "mchost/mdl/elmdscr.h"
#include "mclib/print/driver.h"

// A box on the paper, in millimetres.
struct PaperBox {
    double x, y, width, height;
};

void walkPage(const PrintDriver& driver, ElementDescr* page, const PaperBox& box);
