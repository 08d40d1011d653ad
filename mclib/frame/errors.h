/* Messages to the user, collected lists of lines, and allocation that asks the user when memory runs out.
 *
 * Wording lives in string lists of the application's resources and is addressed by list and number; a string is used as
 * a printf format for the values that follow. A message has at most 511 characters before and 1,023 after formatting,
 * and at most 24 lines; what is longer is cut. */
#ifndef MCLIB_ERROR_H
#define MCLIB_ERROR_H

#include "mclib/frame/export.h"

/* Flags of a message box: one of each group; the lowest set bit of a group counts. */
enum {
    MSGBOX_KIND_1 = 1,
    MSGBOX_KIND_2 = 2,
    MSGBOX_KIND_4 = 4,
    MSGBOX_KIND_8 = 8, /* title and icon */
    MSGBOX_FIRST_16 = 16,
    MSGBOX_FIRST_32 = 32,
    MSGBOX_FIRST_64 = 64, /* first button: texts 25, 26, 27 */
    MSGBOX_SECOND_128 = 128,
    MSGBOX_SECOND_256 = 256,
    MSGBOX_SECOND_512 = 512, /* second button: texts 28, 29, 30 */
    MSGBOX_NOTICE = 17
};
/* Replies, and the results when no box was shown. */
enum { MSGBOX_FIRST = 3, MSGBOX_SECOND = 4, MCLIB_NOT_SHOWN = 20000, MCLIB_STORED = 20001 };
/* Modes of the list calls. */
enum { LIST_COLLECT = 0, LIST_SHOW = 1, LIST_NOTHING = 2, LIST_CONSOLE = 3 };

/* Shows a modal box; the reply, MSGBOX_FIRST or MSGBOX_SECOND. */
MCLIB_EXPORT int mclibError_msgBoxPrintf(int flags, const char *format, ...) __attribute__((format(printf, 2, 3)));
/* The same with a string of a list; MCLIB_NOT_SHOWN when it can't be loaded. */
MCLIB_EXPORT int mclibError_rscMsgBoxPrintf(int flags, int listId, int messageId, ...);
/* LIST_COLLECT adds each line of the text to the collected lines (MCLIB_STORED, or MCLIB_NOT_SHOWN when one couldn't be
 * stored); LIST_SHOW opens the list dialog with this text as its head (its reply); LIST_NOTHING does nothing; any other
 * mode prints the first line on the console. The lines belong to no application, and go when the dialog closes. */
MCLIB_EXPORT int mclibError_listPrintf(int mode, const char *format, ...) __attribute__((format(printf, 2, 3)));
MCLIB_EXPORT int mclibError_rscListPrintf(int mode, int listId, int messageId, ...);
/* Sets the title of the boxes of a kind (1, 2, 4 or 8) for the current application, at most 512 characters. */
MCLIB_EXPORT void mclibError_setTitle(int kind, const char *format, ...) __attribute__((format(printf, 2, 3)));

/* A zero-filled block, to be freed with dlmSystem_mdlFree. When memory runs out the message is shown with two buttons:
 * the second ends the application. Null then. */
MCLIB_EXPORT void *mclibMem_mallocRscErrorPrintf(size_t size, int listId, int messageId, ...);
/* Grows a block; the new part is zero-filled. newSize must not be below oldSize. Null, with the old block as it was,
 * when memory runs out. */
MCLIB_EXPORT void *mclibMem_reallocRscErrorPrintf(void *p, size_t oldSize, size_t newSize, int listId, int messageId,
                                                  ...);

/* Member n of the language texts; empty when there is none. The next call overwrites it. */
MCLIB_EXPORT char *mclibUtil_getLanguageText(int n);

#endif
