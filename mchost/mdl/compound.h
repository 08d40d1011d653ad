/* Elements that hold the plain elements which show them: compound elements (type 35), dimensions (33) and multi-lines
 * (36).
 *
 * Each is one element, in one piece with what it holds: it is read, transformed, copied and deleted as a whole. What it
 * holds are lines, line strings, shapes, arcs, ellipses, texts and B-splines; all take their level from it, and those
 * of a dimension and a multi-line colour, weight and style too. The builders give MDL_ERROR for more than an element
 * can hold. */
#ifndef HOST_MDL_COMPOUND_H
#define HOST_MDL_COMPOUND_H

#include "elmdscr.h"
#include "text.h"

/* The elements that show one of the three, as a new chain that the caller frees. `model` null is the active one.
 * MDL_ERROR, with *edPP null, for an element of another type, a damaged one, and when memory is out. */
MDL_EXPORT MDL_CHECKED int mdlElmdscr_fromCompoundElement(ElementDescr **edPP, const MSElementBuffer *element,
                                                          ModelRef *model) MDL_NOEXCEPT;

/* A compound element of copies of the elements of a chain. MDL_ERROR when one of them isn't of the types above. */
MDL_EXPORT MDL_CHECKED int mdlCompound_create(MSElementBuffer *out, const MSElementBuffer *templateP,
                                              const ElementDescr *parts) MDL_NOEXCEPT;

/* A dimension of the distance between two points: extension lines, the dimension line through `through` with an arrow
 * at either end, and the text over it, which reads from below or from the right. text null is the distance in master
 * units of the active model, with at most three decimals. size null is the active text size; arrows and gaps go by its
 * height. All lies in the plane of ends[0] parallel to the xy plane of the current transform. MDL_ERROR when the ends
 * aren't apart there, or for a text that a text element doesn't take. */
MDL_EXPORT MDL_CHECKED int mdlDimension_create(MSElementBuffer *out, const MSElementBuffer *templateP,
                                               const Point3d *ends, const Point3d *through, const wchar_t *text,
                                               const TextSize *size) MDL_NOEXCEPT;

/* Lines beside each other along a run of points: one for each offset, to the left of the run, as seen from above (units
 * of the current transform; below 0: to the right). They meet at the corners of the run, where that is sharper than
 * about 10 degrees cut square, and in a ring when the last point is the first. MDL_ERROR for fewer than two points that
 * differ, and no offset. */
MDL_EXPORT MDL_CHECKED int mdlMultiline_create(MSElementBuffer *out, const MSElementBuffer *templateP,
                                               const Point3d *points, int32_t count, const double *offsets,
                                               int32_t offsetCount) MDL_NOEXCEPT;

#endif
