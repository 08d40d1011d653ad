/* The plot scale that all applications share, and the list that the user chooses from; dialogs reach it as mcScaleP. */
#ifndef MCLIB_PRINT_SCALE_H
#define MCLIB_PRINT_SCALE_H

#include "mchost/mdl/types.h"

typedef struct mclibPlotScale {
    int32_t activeIndex;  /* row of the active scale */
    double activeScale;   /* the number behind "1:" */
    ListModel *scaleList; /* column 0 the name, such as "1:500"; column 1 the value, such as "500.000000" */
} mclibPlotScale;

#endif
