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

#endif
