/* Taking back what was done in design files, and doing it again.
 *
 * The journal of a session holds steps, the last one on top. A step is what one command added, rewrote and deleted in
 * all files that are open to be written: from its beginning to the time when control is back in the host, or from one
 * mark to the next. Taking a step back makes every element what it was before, at its position; levels and styles stay.
 * What is taken back or done again is in memory at once and in the files when the running command is finished, as every
 * change. The journal isn't in the files: a file that is closed takes its part of all steps along. */
#ifndef HOST_MDL_UNDO_H
#define HOST_MDL_UNDO_H

#include "types.h"

enum { MDL_UNDO_NONE = 1 }; /* there is no such step */

/* What is changed from now on is another step; its name is what getUndoName and getRedoName tell. Null: no name, as
 * without a mark. A step in which nothing is changed isn't kept. */
MDL_EXPORT int mdlUndo_mark(const char *name) MDL_NOEXCEPT;

/* Takes back the last step. MDL_UNDO_NONE when there is none; MDL_ERROR, with a line in the message centre and all as
 * it was, when one of its files can't be written any more. */
MDL_EXPORT int mdlUndo_undo(void) MDL_NOEXCEPT;
/* Does the step that was taken back last again, with the same results. It is gone when something else was changed. */
MDL_EXPORT int mdlUndo_redo(void) MDL_NOEXCEPT;
/* The name of the step that undo or redo would take, into `name` (`size` bytes). MDL_UNDO_NONE without one, MDL_ERROR
 * for a name that was cut. */
MDL_EXPORT int mdlUndo_getUndoName(char *name, int32_t size) MDL_NOEXCEPT;
MDL_EXPORT int mdlUndo_getRedoName(char *name, int32_t size) MDL_NOEXCEPT;

/* Brings back the last element that was deleted in the active model and hasn't been brought back, at the position that
 * it had; 0 when there is none. It is taken out of its step and can be done again as one of its own. */
MDL_EXPORT FilePos mdlUndo_lastDelete(void) MDL_NOEXCEPT;
/* The same for the last deletion or rewrite, whichever it was: an element that was rewritten is what it was before.
 * Elements that a rewrite has added behind it stay. */
MDL_EXPORT FilePos mdlUndo_lastChange(void) MDL_NOEXCEPT;

#endif
