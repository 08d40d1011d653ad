// The parts of labels in the drawing: each is one cell with frame, texts, symbol, then leaders, each with its head
// behind it.
#pragma once

#include <vector>

#include <mchost/mdl/elmdscr.h>

namespace labels {

// The last point of the first leader, in UOR. False when the cell has no leader.
bool endOfLeader(Point3d& end, ElementDescr* arrow);

// From one point to another (UOR), as the view shows it: radians from the right, counter-clockwise.
double bearing(const Point3d& from, const Point3d& to, int view);

// How leaders and heads are made; headSize and divisor as the library has them.
struct LeaderLook {
    int lineAttribute, headAttribute;
    int head;
    double headSize, divisor;
};
// Appends a leader from its tip (points in UOR) to where the first one ends, and its head. False when it can't be.
bool appendLeader(ElementDescr* arrow, std::vector<Point3d> points, const LeaderLook& look, int view);

}  // namespace labels
