/* The dialogs that applications share to choose files and members of lists, and small calls on dialogs.
 *
 * All of them run until the user has ended them. Titles and labels may be null or empty: the dialog then shows its own.
 * Directories are host paths; a filter is one or more patterns divided by `;`, such as "*.mcd;*.cel". A list that is
 * given back is the caller's. */
#ifndef MCLIB_DIALOGS_H
#define MCLIB_DIALOGS_H

#include "mchost/mdl/file_dialogs.h"
#include "mclib/frame/export.h"

/* ---- files ---- */

/* Has the user choose files of one folder. With `result` the dialog begins with `filter` and `directory` ("c:\" when
 * there is no such folder); without, with what the last one had. A new list of the full names, in the order in which
 * they were chosen; `list`, which stays the caller's and may be null, when the user chose nothing and agreed; null when
 * the dialog was cancelled. `result` gets reply, filter and directory unless it was cancelled. */
MCLIB_EXPORT StringList *mclibDialog_selectFiles(FileDialogResult *result, StringList *list, const char *title,
                                                 const char *filter, const char *directory);
/* Has the user search a folder and all below it. A directory in `result` is where the dialog begins, with its filter;
 * otherwise `directory` is a configuration variable, whose first folder counts, or a folder ("c:\" when there is none),
 * and `filter` counts. A new list of the files that stood in the dialog when the user agreed, else null. Files of a
 * folder's folders come in front of its own, and each pattern of the filter has its own search; a folder that several
 * ways lead to is gone through once. `result` gets reply, filter and directory unless the dialog was cancelled. */
MCLIB_EXPORT StringList *mclibDialog_searchFiles(FileDialogResult *result, const char *title, const char *filter,
                                                 const char *directory);
/* The same, beginning where the user left the record `id` of the application's preference file; the defaults count as
 * long as the record has no directory. */
MCLIB_EXPORT StringList *mclibUpf_defSearchFiles(const char *title, const char *defaultFilter,
                                                 const char *defaultDirectory, int32_t id);

/* ---- members of a list ---- */

/* Has the user choose one row of a list that `fill` makes; the list is destroyed here. `rows` rows are in sight, and
 * each has `columns` members (0: as the dialog is laid out). The number of the row, whose first member is copied to
 * `result` as far as `resultSize` bytes hold it with its NUL; -1 when the dialog was cancelled, when `fill` made no
 * list, and for a list without members. */
MCLIB_EXPORT int32_t mclibDialog_selectFromStringListSingle(char *result, int resultSize,
                                                            void (*fill)(StringList **listP, void *userArg),
                                                            void *userArg, const char *title, const char *label,
                                                            int rows, int columns);
/* Has the user choose any number of rows. A new list of them, in the order in which they were chosen, with `infoFields`
 * info fields each, taken over from the list that `fill` made; null for none. */
MCLIB_EXPORT StringList *mclibDialog_selectFromStringListMulti(void (*fill)(StringList **listP, void *userArg,
                                                                            int infoFields),
                                                               void *userArg, int infoFields, const char *title,
                                                               const char *label);

/* ---- items and menus ---- */

/* Fills an option button with members `offset`, `offset + step` and so on of the list, in place of its entries; their
 * values are 0, 1 and so on. setExtent non-zero: makes the button as wide as its entries need. MCLIB_ERROR without such
 * a button, with an empty list (the button is then empty), and for a step below 1. */
MCLIB_EXPORT int mclibDialog_optionButtonInsertFromStringlist(StringList *list, int step, int offset, MdlDialog *dialog,
                                                              int32_t itemId, int setExtent);
/* Enable and show the item of that type (ITEM_...) and id; nothing happens where there is none. */
MCLIB_EXPORT void mclibDialog_itemEnableByTypeAndId(MdlDialog *dialog, int32_t type, int32_t id, int enable);
MCLIB_EXPORT void mclibDialog_itemShowByTypeAndId(MdlDialog *dialog, int32_t type, int32_t id, int show);
/* Puts the application's menu `menuId` into the host's menu bar, in front of the host's help. Its handle goes to *menuP
 * (null: nowhere); null when there is no such menu. */
MCLIB_EXPORT void mclibDialog_insertPdm(void **menuP, int32_t menuId);
/* Takes the menu that was put there last out again, if there is one. */
MCLIB_EXPORT void mclibDialog_deletePdm(void);

#endif
