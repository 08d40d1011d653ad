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

/* Makes an option button as wide as its widest entry needs. */
MDL_EXPORT int mdlDialog_optionButtonSetExtent(MdlItem *item) MDL_NOEXCEPT;

/* The height of an item in units of which a row of a list box has 6. */
MDL_EXPORT void mdlDialog_itemSetHeight(MdlItem *item, int32_t units) MDL_NOEXCEPT;
/* Presses a push button as its user would. MDL_ERROR when it can't be pressed now. */
MDL_EXPORT int mdlDialog_itemPress(MdlItem *item) MDL_NOEXCEPT;

#endif
