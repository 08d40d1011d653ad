/* String lists and list models. */
#ifndef HOST_MDL_LISTS_H
#define HOST_MDL_LISTS_H

#include "types.h"

/* ---- string lists: members counted from 0, each with a text and a fixed number of 32-bit info fields ---- */

/* A list of `count` empty members with `infoFields` info fields each (zero). Null when out of memory, and for more than
 * 16,777,216. */
MDL_EXPORT StringList *mdlStringList_create(int32_t count, int32_t infoFields) MDL_NOEXCEPT;
MDL_EXPORT void mdlStringList_destroy(StringList *list) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlStringList_size(const StringList *list) MDL_NOEXCEPT; /* 0 for null */
/* Inserts `count` empty members before `index` (-1: at the end). The index of the first one goes to indexP: -1 when the
 * list is full (65,535 members, those that it was made with, or the limit that was set) or memory runs out, and
 * MDL_ERROR is then the result. */
MDL_EXPORT int mdlStringList_insertMember(int32_t *indexP, StringList *list, int32_t index, int32_t count) MDL_NOEXCEPT;
MDL_EXPORT int mdlStringList_deleteMember(StringList *list, int32_t index, int32_t count) MDL_NOEXCEPT;
/* Sets text (null: leave) and info fields (null: leave) of a member. */
MDL_EXPORT int mdlStringList_setMember(StringList *list, int32_t index, const char *text,
                                       const int32_t *info) MDL_NOEXCEPT;
/* The text in *textP (the list's own, valid until it changes) and all info fields copied to info. Either may be
 * null. */
MDL_EXPORT int mdlStringList_getMember(const char **textP, int32_t *info, const StringList *list,
                                       int32_t index) MDL_NOEXCEPT;
MDL_EXPORT int mdlStringList_setInfoField(StringList *list, int32_t index, int32_t field, int32_t value) MDL_NOEXCEPT;
MDL_EXPORT int mdlStringList_getInfoField(int32_t *valueP, const StringList *list, int32_t index,
                                          int32_t field) MDL_NOEXCEPT;
/* The most members that the list may hold: 16,777,216 at most. */
MDL_EXPORT void mdlStringList_setLimit(StringList *list, int32_t limit) MDL_NOEXCEPT;

/* ---- list models: rows and columns counted from 0; a cell has a display text and a 32-bit value ---- */

MDL_EXPORT ListModel *mdlListModel_create(int32_t columns) MDL_NOEXCEPT;
MDL_EXPORT void mdlListModel_destroy(ListModel *model) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlListModel_rowCount(const ListModel *model) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlListModel_columnCount(const ListModel *model) MDL_NOEXCEPT;
/* Appends an empty row; its index, or -1. */
MDL_EXPORT int32_t mdlListModel_addRow(ListModel *model) MDL_NOEXCEPT;
MDL_EXPORT int mdlListModel_removeRow(ListModel *model, int32_t row) MDL_NOEXCEPT;
MDL_EXPORT int mdlListModel_setText(ListModel *model, int32_t row, int32_t column, const char *text) MDL_NOEXCEPT;
/* The cell's text, the model's own; null for no such cell. */
MDL_EXPORT const char *mdlListModel_getText(const ListModel *model, int32_t row, int32_t column) MDL_NOEXCEPT;
MDL_EXPORT int mdlListModel_setValue(ListModel *model, int32_t row, int32_t column, int32_t value) MDL_NOEXCEPT;
MDL_EXPORT int mdlListModel_getValue(int32_t *valueP, const ListModel *model, int32_t row, int32_t column) MDL_NOEXCEPT;
/* Gives the cell an editor of that item type and id (0x64547874 is a text item). */
MDL_EXPORT int mdlListModel_setEditor(ListModel *model, int32_t row, int32_t column, uint32_t itemType,
                                      int32_t itemId) MDL_NOEXCEPT;

#endif
