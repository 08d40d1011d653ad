/* Plot fences: shapes that carry user data of the kind MCLIB_PLOT_FENCE. */
#ifndef MCLIB_PLOTFENCE_H
#define MCLIB_PLOTFENCE_H

#include "mclib/frame/export.h"

/* key1 of the block that makes a shape a plot fence. */
enum { MCLIB_PLOT_FENCE = 6 };
/* Calls the function, on behalf of the calling application, for each plot fence of the active model and of the
 * references that are shown: its element (a block of just mdlElement_bytes, in the coordinates of the active model),
 * file position and model, and userArg. A result other than 0 ends the search of that model, and the next one follows;
 * the element is then the function's, to be freed with dlmSystem_mdlFree. After a result of 0 it is gone. Gives 0. */
MCLIB_EXPORT int mclibUtil_findAllPlotFence(int (*callback)(MSElementBuffer *element, FilePos position, ModelRef *model,
                                                            void *userArg),
                                            void *userArg);

#endif
