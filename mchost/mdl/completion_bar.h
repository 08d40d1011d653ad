/* Long work: the completion bar, a text and how much is done, which front ends show as a line of the message field. */
#ifndef HOST_MDL_COMPLETION_BAR_H
#define HOST_MDL_COMPLETION_BAR_H

#include "types.h"

typedef struct MdlCompletionBar MdlCompletionBar;

/* Opens the bar at 0 percent, with a text (null: none yet). Null without memory. */
MDL_EXPORT MdlCompletionBar *mdlDialog_openCompletionBar(const char *text) MDL_NOEXCEPT;
/* Shows another text (null: the one before) at so many percent, held between 0 and 100. Null does nothing. */
MDL_EXPORT void mdlDialog_completionBarUpdate(MdlCompletionBar *bar, const char *text, int32_t percent) MDL_NOEXCEPT;
/* Takes the bar away and frees it; null does nothing. */
MDL_EXPORT void mdlDialog_closeCompletionBar(MdlCompletionBar *bar) MDL_NOEXCEPT;

/* Makes room for graphics while a work goes over many files (`on` 1), and gives it back behind it (0). Front ends that
 * show text and drawings side by side, as all do, have it anyhow. */
MDL_EXPORT void mdlSystem_enterGraphicsExtended(int32_t on) MDL_NOEXCEPT;

#endif
