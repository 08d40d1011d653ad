/* Snapping: points that an element has, near a point that is given.
 *
 * A point is snapped to the element that lies nearest to it as the view shows it, within 10 pixels of the view, in the
 * active model or in what is attached to it: to the one of its points, of a kind, that lies nearest. Modes that are on
 * snap all points that a command gets and every move of the cursor; a point that no element is near to stays. */
#ifndef HOST_MDL_SNAP_H
#define HOST_MDL_SNAP_H

#include "types.h"

enum {
    MDL_SNAP_VERTEX = 1,       /* a vertex of a line, line string or shape; an end of an arc or a curve; the origin of a
                                * text */
    MDL_SNAP_END = 2,          /* an end of what isn't closed */
    MDL_SNAP_MIDDLE = 3,       /* the middle of the segment, or of the arc or curve, that lies nearest */
    MDL_SNAP_CENTRE = 4,       /* the centre of an arc, an ellipse, or of the range of a shape or a text */
    MDL_SNAP_INTERSECTION = 5, /* where two elements that are both near cross in the view; on the nearer one */
    MDL_SNAP_NEAREST = 6       /* the point of the element itself that lies nearest */
};

/* Snaps *point (UOR) in one mode, whatever modes are on. MDL_ERROR, with the point as it was, when no element that is
 * near has such a point, and for another mode or view. */
MDL_EXPORT int mdlSnap_toElement(Point3d *point, int32_t view, int32_t mode) MDL_NOEXCEPT;
/* The modes that are on, as a sum of 1 << MDL_SNAP_...; 0, as in a new session, none. With several the point counts
 * that lies nearest. MDL_ERROR for another bit. */
MDL_EXPORT int mdlSnap_setModes(uint32_t modes) MDL_NOEXCEPT;
MDL_EXPORT uint32_t mdlSnap_getModes(void) MDL_NOEXCEPT;

#endif
