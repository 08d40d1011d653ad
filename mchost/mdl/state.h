/* Commands: who gets the user's points.
 *
 * One command runs at a time. An application starts it and tells the functions that the host calls at a data point, at
 * a reset and when the cursor moves; they are called as that application, with points in UOR of the active model and
 * views counted from 0. A primitive command takes each point for its own; a modify command locates an element first.
 * Outside of any other command the default command runs, which does nothing with a point. An
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

/* The string lists of an application that hold its command messages and its prompts. What a command does at a data
 * point or a reset can be taken back as one step (undo.h), which has its command message for a name; a command without
 * one that a function of another command starts has the name of that. */
enum { MDL_COMMAND_MESSAGES = 1, MDL_PROMPT_MESSAGES = 2 };

/* Starts a command of the current application, in place of the one that runs: it has a data point function, and no
 * others; its dynamics are off. `restart` is what mdlState_restartCurrentCommand calls, and may be null. The messages
 * are members of the two string lists: what the command does, and what it asks for. 0 and one that isn't there show
 * nothing. */
MDL_EXPORT int mdlState_startPrimitive(MdlDataPointFunction dataPoint, MdlResetFunction restart, int32_t commandMessage,
                                       int32_t promptMessage) MDL_NOEXCEPT;
/* Starts a command that changes what lies in the drawing. It begins with locating: a data point locates an element by
 * the rules of locate.h, which are given behind this call; a point that means none is told, and the next one is waited
 * for. The element is highlighted, `show` is called, and from then on `dynamics` at each move of the cursor. The next
 * data point accepts: `clean` is called, then `accept` with the point. An accept function that doesn't restart the
 * command or start another one is called again at the next data point; without one, and when the element was deleted,
 * the command locates again.
 * A reset while an element is located calls `clean` and `reset`, and when neither starts anything else the command
 * locates again. A reset while it locates calls `reset`, and ends it when that is null. All functions may be null, and
 * mdlState_setFunction sets those of a data point (accept), a reset and dynamics until the command locates again. */
MDL_EXPORT int mdlState_startModifyCommand(MdlResetFunction reset, MdlDataPointFunction accept,
                                           MdlDynamicsFunction dynamics, MdlStateFunction show, MdlStateFunction clean,
                                           int32_t commandMessage, int32_t promptMessage, int32_t reserved1,
                                           int32_t reserved2) MDL_NOEXCEPT;
/* Sets or, with null, takes away a function of the command that runs. A reset without a function for it ends a command
 * that has nothing located. MDL_ERROR for another number, and when no command runs. */
MDL_EXPORT int mdlState_setFunction(int32_t state, MdlStateFunction function) MDL_NOEXCEPT;
/* Starts the command that runs anew. A modify command locates again, with the functions that it was started with and
 * its rules for locating; nothing is located or shown any more, and its messages are shown again. Another command is
 * started by its restart function; the default command when it has none. Also from within any of its functions. */
MDL_EXPORT int mdlState_restartCurrentCommand(void) MDL_NOEXCEPT;
/* Ends the command that runs: what its dynamics showed is gone, and the prompt empty. */
MDL_EXPORT int mdlState_startDefaultCommand(void) MDL_NOEXCEPT;

/* The prompt: what the command that runs asks for. */
MDL_EXPORT int mdlOutput_prompt(const char *text) MDL_NOEXCEPT;

#endif
