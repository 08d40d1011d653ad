/* Commands: who gets the user's points.
 *
 * One command runs at a time. An application starts it and tells the functions that the host calls at a data point, at
 * a reset and when the cursor moves; they are called as that application, with points in UOR of the active model and
 * views counted from 0. Outside of any other command the default command runs, which does nothing with a point. An
 * application that ends, and another design file, end the command that runs. */
#ifndef HOST_MDL_STATE_H
#define HOST_MDL_STATE_H

#include "types.h"

/* Where the last data point or cursor was, for the functions of the command that runs. */
typedef struct MdlStateData {
    Point3d point; /* UOR */
    int32_t view;  /* 0 to 7 */
} MdlStateData;
MDL_EXPORT MdlStateData *statedataP;

/* The functions of a command, by the number that mdlState_setFunction takes. */
enum { MDL_STATE_DATA_POINT = 1, MDL_STATE_RESET = 2, MDL_STATE_DYNAMICS = 4 };
typedef void (*MdlDataPointFunction)(Point3d *point, int32_t view);
typedef void (*MdlResetFunction)(void);
/* What it displays with the draw mode that it is given, MDL_DYNAMICS, is seen until the cursor moves again. */
typedef void (*MdlDynamicsFunction)(Point3d *point, int32_t view, int32_t drawMode);
typedef void (*MdlStateFunction)(void); /* any of them, cast */

/* Starts a command of the current application, in place of the one that runs: it has a data point function, and no
 * others; its dynamics are off and the prompt is empty. `restart` is what mdlState_restartCurrentCommand calls, and may
 * be null. `command` and `prompt` are numbers of messages: they are taken and not used, prompts come by
 * mdlOutput_prompt. */
MDL_EXPORT int mdlState_startPrimitive(MdlDataPointFunction dataPoint, MdlResetFunction restart, int32_t command,
                                       int32_t prompt) MDL_NOEXCEPT;
/* Sets or, with null, takes away a function of the command that runs. A reset without a function for it ends the
 * command. MDL_ERROR for another number, and when no command runs. */
MDL_EXPORT int mdlState_setFunction(int32_t state, MdlStateFunction function) MDL_NOEXCEPT;
/* Starts the command that runs anew, by its restart function; the default command when it has none. */
MDL_EXPORT int mdlState_restartCurrentCommand(void) MDL_NOEXCEPT;
/* Ends the command that runs: what its dynamics showed is gone, and the prompt empty. */
MDL_EXPORT int mdlState_startDefaultCommand(void) MDL_NOEXCEPT;

/* The prompt: what the command that runs asks for. */
MDL_EXPORT int mdlOutput_prompt(const char *text) MDL_NOEXCEPT;

#endif
