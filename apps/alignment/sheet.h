// The sheet: how a road lies on paper, in which direction it is turned, and what stands around it.
#pragma once

#include <optional>
#include <string>

#include <mchost/mdl/types.h>
#include "road.h"

namespace alignment {

struct Paper {
    std::string name;      // such as "A3"
    double width, height;  // millimetres
};
// A paper size by name, "A0" to "A5", lying or standing. Nothing for another name. Print files are for
// the paper that was asked for last.
std::optional<Paper> paperSize(const std::string& name, bool portrait);

constexpr double margin = 10;       // from the paper's edge to the frame, millimetres
constexpr double stripHeight = 22;  // of the title strip along the lower edge

// A sheet at its place on the ground. Sheet coordinates are millimetres inside the frame, from its lower left corner;
// ground coordinates are metres.
struct Sheet {
    Paper paper;
    double scale;      // 1 : scale
    double angle = 0;  // from east to the sheet's lower edge, radians
    Point3d centre{};  // of the frame, on the ground
    double width() const { return paper.width - 2 * margin; }
    double height() const { return paper.height - 2 * margin; }
    double metres(double millimetres) const { return millimetres * scale / 1000; }
    Point3d ground(double x, double y) const;
    Point3d onSheet(double x, double y) const;
};

// The sheet with the whole road on it: north upwards if it fits that way, else turned so that the road runs along the
// sheet. Nothing, after a message with the scale that would do, when it doesn't fit.
std::optional<Sheet> layOut(const Road& road, const Paper& paper);

}  // namespace alignment
