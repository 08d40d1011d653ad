// The parts of labels in the drawing: each is one cell with frame, texts, symbol, then leaders, each with its head
// behind it. Places are UOR.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <mchost/mdl/elmdscr.h>

namespace labels {

// ---- elements ----

// The points of an element that has a line or an outline; of a text its box.
std::vector<Point3d> pointsOf(const MSElementBuffer* element);
// From one point to another, as the view shows it: radians from the right, counter-clockwise.
double bearing(const Point3d& from, const Point3d& to, int view);
std::string cellName(const MSElementBuffer* cell);

// Appends copies of elements up to `end`. False when not all could be.
bool appendCopies(ElementDescr* label, const ElementDescr* first, const ElementDescr* end);

// ---- labels ----

// The first leader; null for a cell that has none, which is no label, and for what is no cell.
ElementDescr* firstLeader(const ElementDescr* label);
inline bool isLabel(const ElementDescr* ed) {
    return firstLeader(ed);
}
// The last point of the first leader. False when there is none.
bool endOfLeader(Point3d& end, const ElementDescr* label);
void removeLeaders(ElementDescr* label);

// The first component behind the label's frame and its texts; null when nothing follows. A symbol, the frames and texts
// of labels that were collected in it, leaders.
ElementDescr* endOfText(const ElementDescr* label);

// A box along the axes of a view.
struct Extent {
    double left, bottom, right, top;
    int view;
    Point3d middle() const;
    bool has(const Point3d& point) const;
};
// Of elements up to `end`. Nothing when they take no place.
std::optional<Extent> extentOf(const ElementDescr* first, const ElementDescr* end, int view);
// Of all frames, texts and symbols.
std::optional<Extent> textExtent(const ElementDescr* label, int view);

// Moves frame, texts and symbol, and the ends of the leaders with them; tips stay. False when it can't be done.
bool moveText(ElementDescr*& label, const Point3d& way);

// How leaders and heads are made; headSize and divisor as the library has them.
struct LeaderLook {
    int lineAttribute, headAttribute;
    int head;
    double headSize, divisor;
};
// Appends a leader from its tip to where the first one ends, and its head. False when it can't be.
bool appendLeader(ElementDescr* label, std::vector<Point3d> points, const LeaderLook& look, int view);

}  // namespace labels
