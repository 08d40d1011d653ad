/* Cell libraries: where they lie, the one that is attached, its cells in lists and dialogs, and descriptors joined into
 * a cell.
 *
 * Libraries lie along the search path of the configuration variable MC_CELL; without it in the folder "cell\" of the
 * product's folder MC_DIR, whose value ends in a separator; without that in "c:\markacad\cell\". */
#ifndef MCLIB_CELLS_H
#define MCLIB_CELLS_H

#include "mclib/frame/export.h"
#include "mchost/mdl/elmdscr.h"

/* The value of MC_CELL, or the folder by the rules above, with its last separator. Always 0; what doesn't fit `size`
 * bytes is cut. */
MCLIB_EXPORT int mclibCell_getMcCellPath(char *pathP, int size);
/* The full name of a library file; with MC_CELL the extension may be left out. `pathP` has room for 256 bytes and the
 * name. MCLIB_ERROR when there is no such file; `pathP` is empty then, also when the product's folder is longer, or
 * holds the name that was tried. */
MCLIB_EXPORT int mclibCell_getCellPathAndName(char *pathP, const char *nameP);
/* Attaches the library of that file name (with extension, at most 255 characters), unless a file of the same name, in
 * any case and folder, is attached. An empty name does nothing. 0, or the host's result of attaching, also for a file
 * that isn't found. */
MCLIB_EXPORT int mclibCell_loadCellLibraryIfNeeded(const char *nameP);
/* Fills the list with the cells of the attached library, in its order and without the cell named "default": a row of
 * `membersPerRow` members for each, the first the name, the second the description. The number of rows, 0 without a
 * library; MCLIB_ERROR, with the list as it was, when `membersPerRow` is below 2. */
MCLIB_EXPORT int mclibCell_getStringlistFromLib(StringList *listP, int membersPerRow);
/* Prints that it isn't needed, and gives MCLIB_ERROR. For applications that still call it. */
MCLIB_EXPORT int mclibCell_getFilePosFromStringlist(void);
/* Draws a cell of the attached library in the rectangle of an item, `inset` pixels further in when that is above 0.
 * crossMode: 1 a vertical line through the middle of the item, 2 a horizontal one, 3 both, others none. MCLIB_ERROR,
 * with only the frame drawn, when the library has no such cell. */
MCLIB_EXPORT int mclibCell_drawCell(const char *nameP, MdlDialog *windowP, const MdlItem *itemP, int inset,
                                    int crossMode);
/* Appends copies of the elements of both descriptors (null: none), cell headers left out, to the cell, and undoes the
 * rotation of its header about its origin. MCLIB_ERROR when an element can't be appended; those before it stay. A part
 * of the cell itself can't. */
MCLIB_EXPORT int mclibCell_mergeCells(ElementDescr *cellEdP, ElementDescr *firstEdP, ElementDescr *secondEdP);

#endif
