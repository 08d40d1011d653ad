/* The plot scale that all applications share, and the list that the user chooses from; dialogs reach it as mcScaleP.
 *
 * The list comes from the scale file that the variable MC_PLOTSCALES names, looked for along MC_DATA, with the first
 * application of a session; without one it is a list from 1:1 to 1:10000. An option button of any dialog shows and
 * changes the scale with the id 20016, the access string "mcScaleP->activeIndex" and the hook 20097
 * (mclib/print/scale_dialog.cpp). A change reaches the applications by their scale functions
 * (mclibMain_setScaleFunction). */
#ifndef MCLIB_PRINT_SCALE_H
#define MCLIB_PRINT_SCALE_H

#include "mchost/mdl/types.h"
#include "mclib/frame/export.h"
#include "mclib/frame/resource_files.h"

typedef struct mclibPlotScale {
    int32_t activeIndex;  /* row of the active scale */
    double activeScale;   /* the number behind "1:" */
    ListModel *scaleList; /* column 0 the name, such as "1:500"; column 1 the value, such as "500.000000" */
} mclibPlotScale;

/* The active scale, to be read; null before an application has registered. */
MCLIB_EXPORT double *mclibPlotScale_getActiveScaleP(void);
/* Makes a scale of the list active, and tells all applications, with includeCurrent 0 all others. The scale that is
 * active already tells nobody. MCLIB_ERROR, with nothing changed, when no row has this value. */
MCLIB_EXPORT int mclibPlotScale_setActiveScale(double scale, int includeCurrent);
/* Takes the list of an open scale file in place of the one in use; the other applications hear of another active scale.
 * MCLIB_ERROR, with the list as it was, when the file has none. */
MCLIB_EXPORT int mclibPlotScale_readSettings(McHandle *file);
/* Stores the list in a resource file that is open for writing. The result of mclibResource_addStringList; MCLIB_ERROR
 * without a list. */
MCLIB_EXPORT int mclibPlotScale_saveSettings(McHandle *file);
/* Has the user edit the list, and read, save and make scale files. */
MCLIB_EXPORT void mclibPlotScale_dialogOpen(void);

#endif
