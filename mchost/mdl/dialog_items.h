/* Items of dialogs, continued: list boxes whose rows are chosen, buttons that are pressed and sized by a program. */
#ifndef HOST_MDL_DIALOG_ITEMS_H
#define HOST_MDL_DIALOG_ITEMS_H

#include "dialog.h"

/* A cell of a list box, both numbers from 0. */
typedef struct MdlCell {
    int32_t column, row;
} MdlCell;

/* In how many columns the list box shows its list (0: as before), and whether more than one row may be chosen (1 or 0;
 * -1: as before). */
MDL_EXPORT int mdlDialog_listBoxSetInfo(MdlItem *item, int32_t columns, int32_t several) MDL_NOEXCEPT;
/* The chosen rows in the order in which they were chosen, in a new block that the caller frees with dlmSystem_mdlFree;
 * null and 0 for none. MDL_ERROR, with null and 0, for another item or when out of memory. */
MDL_EXPORT int mdlDialog_listBoxGetSelections(MdlCell **cellsP, int32_t *countP, const MdlItem *item) MDL_NOEXCEPT;
/* The first row in sight. */
MDL_EXPORT int mdlDialog_listBoxSetTopRow(MdlItem *item, int32_t row) MDL_NOEXCEPT;

/* Shows a list model, in place of any list: its rows and columns. The model stays its owner's, who shows it anew when
 * its rows have become more or fewer. */
MDL_EXPORT int mdlDialog_listBoxSetListModelP(MdlItem *item, ListModel *model) MDL_NOEXCEPT;
/* Has the user edit the text of a cell of the list model that has an editor; ITEM_CELL_EDITED follows when the new text
 * stands in the model. MDL_ERROR for another cell. */
MDL_EXPORT int mdlDialog_listBoxEditCell(MdlItem *item, int32_t row, int32_t column) MDL_NOEXCEPT;

/* Makes an option button as wide as its widest entry needs. */
MDL_EXPORT int mdlDialog_optionButtonSetExtent(MdlItem *item) MDL_NOEXCEPT;

/* The height of an item in units of which a row of a list box has 6. */
MDL_EXPORT void mdlDialog_itemSetHeight(MdlItem *item, int32_t units) MDL_NOEXCEPT;
/* Presses a push button as its user would. MDL_ERROR when it can't be pressed now. */
MDL_EXPORT int mdlDialog_itemPress(MdlItem *item) MDL_NOEXCEPT;

/* ---- all dialogs ---- */

/* The open dialogs of all applications, modal ones too, counted from 0 in order of opening; null behind the last. */
MDL_EXPORT MdlDialog *mdlDialog_getOpen(int32_t index) MDL_NOEXCEPT;
/* Takes the values of all items whose access strings begin with a published name, in all open dialogs, and shows
 * them. */
MDL_EXPORT int mdlDialog_synchShown(const char *publishedName) MDL_NOEXCEPT;

#endif
