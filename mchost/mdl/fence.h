/* The fence: an area of the active model, seen in one view. There is one at a time; it goes with its design file. */
#ifndef HOST_MDL_FENCE_H
#define HOST_MDL_FENCE_H

#include "element.h"

/* The view that a fence is made in, 0 to 7; it is kept for the fences to come. MDL_ERROR for another number. */
MDL_EXPORT int mdlFence_setView(int32_t view) MDL_NOEXCEPT;
/* Makes the fence from a shape (type 6) in UOR, whatever the current transform, in place of the one before. MDL_ERROR,
 * with the fence as it was, when it isn't a shape or no design file is open. */
MDL_EXPORT int mdlFence_fromShape(const MSElementBuffer *shape) MDL_NOEXCEPT;
/* Takes the fence away; MDL_ERROR when there was none. `redisplay` is taken and not used. */
MDL_EXPORT int mdlFence_clear(int32_t redisplay) MDL_NOEXCEPT;
/* 1 while there is a fence, else 0. */
MDL_EXPORT int mdlFence_isActive(void) MDL_NOEXCEPT;

#endif
