// The contract between the page walker and a print device.
#pragma once

#include <cstdint>

#include "mchost/mdl/types.h"

struct LineStyle;  // mclib/print/styles.h

// A polyline. gray from 0 (black) to 1 (white) asks for the closed outline to be filled; any other value for a line.
struct Stroke {
    const Point3d* points;
    int32_t count;  // at least 2
    double width;   // of the pen
    const LineStyle* style;
    double gray;
};
constexpr bool isGray(double gray) {
    return 0.0 <= gray && gray <= 1.0;
}

// A text on its base line.
struct Label {
    double x, y;
    char* text;     // HP-GL replaces letters in it
    double height;  // 1.3 times the height of the text's box
    double angle;
    int32_t just;          // 0 centred, 1 right-aligned, else left-aligned
    const Point3d* shape;  // the five points of its box, turned about the sheet's origin so that the text lies level
    double size;           // as the host tells it
    double pageAngle;      // direction of reading of the page
};

// What a print device does. Lengths are millimetres on the paper, x right, y up, origin at the sheet's lower left
// corner; angles are degrees, counter-clockwise. A driver keeps one module-wide output; what is drawn while it isn't
// open does nothing. A null member: the device has no such operation.
struct PrintDriver {
    bool quarterTurn;                                     // the walker turns the picture
    int32_t (*open)(const char* fileName, int pageCode);  // 1, or 0 when the file can't be opened
    void (*newPage)();
    void (*close)();
    int32_t (*jobStatus)();  // MCLIB_SUCCESS or MCLIB_ERROR: was all of the last job written?
    void (*stroke)(const Stroke&);
    void (*label)(const Label&);
};

extern const PrintDriver psDriver, hpglDriver, asciiDriver, pclDriver;
