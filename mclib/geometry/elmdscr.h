/* Descriptors: their range, fitting into a rectangle, drawing in a dialog's window. */
#ifndef MCLIB_ELMDSCR_H
#define MCLIB_ELMDSCR_H

#include "mclib/frame/export.h"

/* The range of the whole descriptor in UOR: low corner, then high. The host's result. */
MCLIB_EXPORT int mclibElemDscr_getRange(Point3d *range, const ElementDescr *ed);
/* Scales the descriptor evenly so that it just fits the rectangle with the corners box[0] and box[2], and, with
 * `translate`, moves it to the rectangle's middle; without, it is scaled about the origin. A rectangle without width or
 * height becomes 1 wide or high, in box[2] itself; an extent of the descriptor below 0.001 counts as 0.0001. A
 * descriptor without a range stays as it is. MCLIB_SUCCESS, or the failure of the host, which leaves it as it is. */
MCLIB_EXPORT int mclibElemDscr_placeElementDescr(Point3d *box, int translate, ElementDescr *ed);
/* Draws the descriptor, seen from the top, into a rectangle of the dialog's window. viewFlags: three words, or null for
 * the usual ones. lastArg goes to the host: -1 or 0. The host's result; MCLIB_ERROR for a descriptor without a
 * range. */
MCLIB_EXPORT int mclibElemDscr_drawElementDescr(MdlDialog *window, const DialogRect *rect, ElementDescr *ed,
                                                const uint32_t *viewFlags, int lastArg);

#endif
