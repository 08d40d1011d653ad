/* The drawings that a program is called for: design files, patterns of names, folders, and lists of all these.
 *
 * A folder stands for the design files in it (suffix .mcd, in any letter case) and, behind them, for those of its
 * folders, in order of their names and without hidden ones. A pattern has `*`, `?` or `[` in it, also in names of
 * folders. Each file and each folder counts once, whatever names lead to it. */
#ifndef HOST_MDL_DRAWING_NAMES_H
#define HOST_MDL_DRAWING_NAMES_H

#include "types.h"

typedef struct MdlDrawingNames MdlDrawingNames;

MDL_EXPORT MdlDrawingNames *mdlDrawingNames_create(void) MDL_NOEXCEPT; /* null when out of memory */
MDL_EXPORT void mdlDrawingNames_free(MdlDrawingNames *names) MDL_NOEXCEPT; /* null does nothing */
/* Adds what a name of the host stands for. A name that is neither a folder nor a pattern is taken as it stands, whether
 * or not there is such a file. MDL_ERROR, with a line in the message centre, when nothing fits the pattern, when there
 * is no design file in the folder, and when not all of it can be read; what could be is added even so. */
MDL_EXPORT int mdlDrawingNames_add(MdlDrawingNames *names, const char *name) MDL_NOEXCEPT;
/* The same for each line of a text file, as it stands or else beside the list. Blank lines and those that begin with
 * `#` are passed over, blanks around a name dropped. MDL_ERROR, with lines, also when the list can't be read. */
MDL_EXPORT int mdlDrawingNames_addList(MdlDrawingNames *names, const char *fileName) MDL_NOEXCEPT;

MDL_EXPORT int32_t mdlDrawingNames_count(const MdlDrawingNames *names) MDL_NOEXCEPT;
/* Names of the host, in the order that they were added in; null beyond the last. Valid as long as `names`. */
MDL_EXPORT const char *mdlDrawingNames_get(const MdlDrawingNames *names, int32_t index) MDL_NOEXCEPT;

#endif
