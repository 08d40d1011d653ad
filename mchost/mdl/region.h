/* Closed elements: whether they are, what they are filled with, and what lies in two of them. */
#ifndef HOST_MDL_REGION_H
#define HOST_MDL_REGION_H

#include "elmdscr.h"

/* 1 for a shape, an ellipse, a complex shape and a line string that ends where it began, 0 for another element. Of a
 * descriptor its first element is looked at. */
MDL_EXPORT int mdlElmdscr_isClosed(const ElementDescr *ed) MDL_NOEXCEPT;

/* ---- fill ----
 * A filled element has a fill colour of its own, or is filled with the colour of its outline. */

/* Fills the shapes, ellipses and complex shapes of the chain. MDL_ERROR when there is none. */
MDL_EXPORT int mdlElmdscr_addFill(ElementDescr *ed) MDL_NOEXCEPT;
/* The colour that a filled element is filled with. MDL_ERROR for one that isn't filled. */
MDL_EXPORT int mdlElement_getFillColor(uint32_t *colorP, const MSElementBuffer *element) MDL_NOEXCEPT;
/* MDL_ERROR, with the element as it was, for one that isn't filled or has no room for it. */
MDL_EXPORT int mdlElement_setFillColor(MSElementBuffer *element, const uint32_t *color) MDL_NOEXCEPT;
/* The same for the filled elements of the chain and their components. */
MDL_EXPORT int mdlElmdscr_setFillColor(ElementDescr *ed, const uint32_t *color) MDL_NOEXCEPT;

/* ---- what two closed elements have in common ---- */

/* What an intersection fails with. */
enum { MDL_REGION_OPEN = 1, MDL_REGION_NO_PLANE = 2, MDL_REGION_TOO_LARGE = 3, MDL_REGION_NO_MEMORY = 4 };
/* The area of `shape` that lies in `other`, as seen along z, as a new chain of shapes in the plane of `shape` that the
 * caller frees; *outPP null when they have none in common. Curves are followed within `tolerance` (UOR). Outlines that
 * cross themselves are inside where an odd number of turns goes round; an area with holes comes as one shape whose
 * outline goes to each hole and back. The shapes have the level, the look and the fill of `shape`. 0, or
 * MDL_REGION_...: one of them isn't closed, `shape` is seen edge on, the result has more corners than a shape takes, or
 * memory is out. */
MDL_EXPORT int mdlElmdscr_intersectShapes(ElementDescr **outPP, const ElementDescr *shape, const ElementDescr *other,
                                          double tolerance) MDL_NOEXCEPT;

#endif
