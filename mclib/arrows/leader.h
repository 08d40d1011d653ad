// One leader of an arrow that is being changed: taken out of its cell, drawn anew with its head, put back.
#pragma once

#include "mclib/arrows/edit_state.h"

namespace mc::arrows {

// Fills in the leader from a line string and the elements behind it, up to the next leader, which stay where they are.
// False when memory is out, which the user has been told.
bool takeLeader(Leader& leader, const ElementDescr* lineString);
// Takes the located leader and its head out of the cell and off the screen, and finds what the data point of the
// command means in it: the segment, and the nearer of its ends. False when there is nothing to find.
bool detachLeader(EditState& edit);
// Takes it out alone.
void removeLeader(EditState& edit);
// The head as it is now is what it turns from: it lies along the first segment, from the tip to `next`.
bool keepHead(Leader& leader, const Point3d& next);

// Where the frame takes the end of a leader that comes from `previous`; `end` for an arrow without a frame. The current
// system is that of the view.
Point3d fittedToFrame(const FoundFrame& frame, const Point3d& previous, const Point3d& end);
FoundFrame movedFrame(FoundFrame frame, const Point3d& offset);
Point3d sum(const Point3d& a, const Point3d& b);

// Shows the leader in the draw mode with its vertex at the point, and the head, which is turned along the first segment
// when it was kept.
void drawLeader(EditState& edit, const Point3d& point, int view, int drawMode);
// Appends leader and head to the cell. False when memory is out, which the user has been told: the cell lacks them
// then.
bool putBack(EditState& edit);

}  // namespace mc::arrows
