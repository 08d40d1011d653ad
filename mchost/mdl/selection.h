/* The selection set: elements of the active model that the user has chosen, for commands that work on many. They are
 * highlighted. What is deleted isn't in it any more, and another design file has none. */
#ifndef HOST_MDL_SELECTION_H
#define HOST_MDL_SELECTION_H

#include "types.h"

MDL_EXPORT int mdlSelect_isActive(void) MDL_NOEXCEPT; /* 1 while something is selected, else 0 */
/* The positions in order of the file, the model of each, and their number: arrays by malloc, which the caller frees
 * with free. Null and 0, with 0, when nothing is selected; MDL_ERROR when memory is out. */
MDL_EXPORT int mdlSelect_returnPositions(FilePos **positionsP, ModelRef ***modelsP, int32_t *countP) MDL_NOEXCEPT;

/* `model` null is the active one, and no other can be given. MDL_ERROR when no element lies at the position. */
MDL_EXPORT int mdlSelect_addElement(FilePos position, ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT int mdlSelect_removeElement(FilePos position, ModelRef *model) MDL_NOEXCEPT; /* also for one not in it */
MDL_EXPORT int mdlSelect_freeAll(void) MDL_NOEXCEPT; /* nothing is selected */
MDL_EXPORT int mdlSelect_allElements(void) MDL_NOEXCEPT;
/* Selects, beside what is selected, the elements that lie in the fence (fence.h) as its view shows them, with all of
 * their components. MDL_ERROR without a fence. */
MDL_EXPORT int mdlSelect_byFence(void) MDL_NOEXCEPT;

#endif
