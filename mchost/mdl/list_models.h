/* List models, continued: rows in between, and which cells can be edited. */
#ifndef HOST_MDL_LIST_MODELS_H
#define HOST_MDL_LIST_MODELS_H

#include "lists.h"

/* Inserts an empty row in front of `row` (as many as there are rows: at the end). MDL_ERROR for another place, and when
 * out of memory. */
MDL_EXPORT int mdlListModel_insertRow(ListModel *model, int32_t row) MDL_NOEXCEPT;
/* 1 for a cell that has an editor (mdlListModel_setEditor), else 0. */
MDL_EXPORT int mdlListModel_hasEditor(const ListModel *model, int32_t row, int32_t column) MDL_NOEXCEPT;

#endif
