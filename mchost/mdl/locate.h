/* Locating: which element a point means, for the modify commands of state.h.
 *
 * A point means the element of the active model that lies nearest to it as the view shows it, within 10 pixels of the
 * view, and that passes the rules of the command that runs: the mask, the rule for locked elements, and then the
 * post-locate function. Of a complex element the component that lies nearest is pointed at; elements that are equally
 * near are taken in the order of the file. The rules belong to the command: one that starts has none. */
#ifndef HOST_MDL_LOCATE_H
#define HOST_MDL_LOCATE_H

#include "elmdscr.h"
#include "state.h"

/* ---- rules, of the command that runs ---- */

/* The post-locate function: says of an element that has passed the other rules whether the command takes it; the next
 * one is asked about when it doesn't. `element` is the component that was pointed at, or the element that isn't
 * complex, and `position` its position. While it runs, that element is the located one. */
enum { MDL_LOCATE_POST = 4 };
enum { MDL_LOCATE_REJECT = 0, MDL_LOCATE_ACCEPT = 2 };
typedef int (*MdlPostLocateFunction)(const MSElementBuffer *element, ModelRef *model, FilePos position);
/* Sets or, with null, takes away a function; cast. MDL_ERROR for another number. */
MDL_EXPORT int mdlLocate_setFunction(int32_t number, MdlStateFunction function) MDL_NOEXCEPT;
/* No element passes before a mask says which types do, and none that is locked or lies in a file that is open to be
 * read only; the user is told why. */
MDL_EXPORT int mdlLocate_noElemNoLocked(void) MDL_NOEXCEPT;
/* The types of elements that pass, as they lie in the model: what stands in a cell is of type 2 here. A count of 0 lets
 * all pass. MDL_ERROR for a negative count. */
MDL_EXPORT int mdlLocate_setElemSearchMask(int32_t count, const int32_t *types) MDL_NOEXCEPT;
/* Begins to locate: nothing is located any more. The rules stay. */
MDL_EXPORT int mdlLocate_init(void) MDL_NOEXCEPT;
/* Whether points that are to locate an element are snapped, as others are (0: they aren't, as in a command that
 * starts). */
MDL_EXPORT int mdlAccuSnap_enableLocate(int32_t on) MDL_NOEXCEPT;

/* ---- what was located ---- */

/* Component positions: while an element is the located one, each of its components has a position, the element's with
 * MDL_COMPONENT_OFFSET and its number in depth-first order, from 1, added. No element of a model has one that high. */
enum { MDL_COMPONENT_OFFSET = 0x40000000 };
/* The position of the element that was located last, or of its component that was pointed at (the element's own when it
 * has none), and its model in modelP (may be null). 0 when nothing is located, for another number, and when the element
 * isn't there any more. */
enum { MDL_FILE_POS_ELEMENT = 1, MDL_FILE_POS_COMPONENT = 5 };
MDL_EXPORT FilePos mdlElement_getFilePos(int32_t which, ModelRef **modelP) MDL_NOEXCEPT;

/* ---- elements by reference ----
 * A reference stands for an element of an open model, or for a component while its element is the located one. There is
 * nothing to give back; of one whose element or model is gone nothing is told any more. */

typedef struct ElementRef ElementRef;
/* Null when nothing lies at the position. `model` null is the active one. */
MDL_EXPORT ElementRef *mdlModelRef_getElementRef(ModelRef *model, FilePos position) MDL_NOEXCEPT;
MDL_EXPORT int elementRef_isComplexComponent(ElementRef *element) MDL_NOEXCEPT; /* 1 or 0 */
/* The element of the model that a component belongs to, however deep it lies; null for what is no component. */
MDL_EXPORT ElementRef *elementRef_getParent(ElementRef *element) MDL_NOEXCEPT;
/* Copies the element, without components. The number of bytes; 0, with `out` as it was, when they are more than
 * maxBytes. */
MDL_EXPORT uint32_t elementRef_getElement(ElementRef *element, MSElementBuffer *out, uint32_t maxBytes) MDL_NOEXCEPT;

#endif
