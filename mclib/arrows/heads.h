// Heads of leaders.
#pragma once

#include "mclib/arrows/arrows.h"

namespace mc::arrows {

struct HeadRequest {
    Point3d tip;  // UOR
    int view;
    double angle;  // of the leader from its tip, in the view
    int type;
    double scale, size;
    double width;  // half width of heads 7 to 9
    int attrId;
};

// A new descriptor, the caller's own; null for a head that draws nothing. False when it can't be made whole.
bool makeHead(ElementDescr*& head, const HeadRequest& request);

}  // namespace mc::arrows
