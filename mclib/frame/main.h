/* Start-up: registering an application, and what the library tells of itself.
 *
 * Every application calls mclibMain_initMcLib once in its main function, before any other call. The library keeps one
 * block of state for each running application and finds it by the host's current application, so a call always works on
 * behalf of the application that makes it. At most 49 applications run side by side. Texts that are returned are the
 * library's own. */
#ifndef MCLIB_MAIN_H
#define MCLIB_MAIN_H

#include "mclib/frame/export.h"

/* mclibMain_initMcLibExtended with resource mode 0. */
MCLIB_EXPORT int mclibMain_initMcLib(const char *applicationName, int argc, char **argv);
/* Registers the calling application and sets everything up: its state, its own resource file (opened with rscMode), the
 * shared blocks with the first application, dialog hooks, published structures, the new-design-file hook and message
 * titles. argv[1] names the list that loaded the application: with "MS_INITAPPS" or "MS_DGNAPPS" no design file is open
 * yet, and deferred functions wait for it. Offers to define MC_DIR when it isn't defined. Returns 0; MCLIB_ERROR when
 * no block is to be had (49 applications registered, or out of memory): the application isn't registered then, and must
 * end. */
MCLIB_EXPORT int mclibMain_initMcLibExtended(const char *applicationName, int argc, char **argv, int rscMode);
/* The current application's block; null, with a line on the console, when it isn't registered. */
MCLIB_EXPORT GlobalData *mclibMain_getGlobalDataP(void);
/* The name that the current application registered with; null when it isn't registered. */
MCLIB_EXPORT char *mclibMain_getApplicationName(void);
/* The library's version line; the next call overwrites it. */
MCLIB_EXPORT char *mclibMain_getMclibVersion(void);
/* Full path of the loaded library; the next call overwrites it. */
MCLIB_EXPORT char *mclibMain_getMclibLocation(void);
/* 1 while the application was loaded before a design file and none has been opened for it yet. */
MCLIB_EXPORT int32_t mclibMain_currentAppIsInitApp(void);
/* Defers f to the first new design file. The eleventh function and later ones are dropped. */
MCLIB_EXPORT void mclibMain_addInitApp(void (*f)(void));
/* Defers f for an application that waits for its first design file; calls it at once for any other. */
MCLIB_EXPORT void mclibMain_execFuncOrAddToInitApps(void (*f)(void));
/* The new-design-file hook that registration gives to the host. Only state 1 (the file is open) has an effect. */
MCLIB_EXPORT void mclibMain_newDesignFile(char *fileName, int state);
/* Before a shared dialog opens: closes other applications' copies of it, and points mgdP at the current application. */
MCLIB_EXPORT void mclibMain_updateBeforeDialogOpen(int dialogId);
/* The function that the current application wants called when the active plot scale changes; null for none. */
MCLIB_EXPORT void mclibMain_setScaleFunction(void (*f)(double oldScale, double newScale));

#endif
