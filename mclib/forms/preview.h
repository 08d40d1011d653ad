/* The preview: a paged result of an application, most often a material list, shown page by page on a sheet of the
 * printer set-up. From there the user prints, plots, places pages in the drawing and edits the pages' title blocks.
 *
 * The application gives the names of its pages and a function that makes a page. Its functions must stay valid while
 * the dialog is open, and are called in its own context. They are module-wide: one preview serves at a time, and an
 * application that opens it closes that of another one and replaces its functions. */
#ifndef MCLIB_PREVIEW_H
#define MCLIB_PREVIEW_H

#include "mchost/mdl/elmdscr.h"
#include "mclib/frame/export.h"

/* Makes page number `page` (from 0), whose name is `name`: a new descriptor, which is the library's from then on, in
 * *result; null for no page. inDrawing is 1 when the page will stay in the drawing, else 0. `result` itself is null
 * while pages go to a spreadsheet: the function then only fills its form. */
typedef void (*McPageFunction)(int page, char *name, ElementDescr **result, int inDrawing);
/* The user asks for a new list of pages: fills the array, which has room for 100, with pointers to names that stay the
 * application's, and gives their number; 0 or less to change nothing. */
enum { PREVIEW_MOST_NAMES = 100 };
typedef int (*McPageListFunction)(char **names);
/* Draws a page of a print job itself, with the calls of the print devices (mclib/print/ps.h and its neighbours). */
typedef void (*McUserPrintFunction)(int page);

/* Opens the preview on the first page. The names are copied. Either function may be null: there are then no pages to be
 * made, or no new list. The dialog, which isn't modal and is open when the call returns; null when it can't be opened,
 * and, after a message, for different names that are the same in their first 80 letters: the design file keeps no more
 * of a name, so their title blocks would be one. */
MCLIB_EXPORT MdlDialog *mclibPreview_dialogOpen(int pageCount, char *const *pageNames, McPageFunction pageFunction,
                                                McPageListFunction pageListFunction);
/* The same on page number firstShown, from 0; a number outside the list is held to it. */
MCLIB_EXPORT MdlDialog *mclibPreview_dialogOpenExtended(int pageCount, int firstShown, char *const *pageNames,
                                                        McPageFunction pageFunction,
                                                        McPageListFunction pageListFunction);
/* A function that print jobs call for each page, in place of making and printing it; nothing goes to a printer then.
 * Null for none. To be called behind the opening, which clears it. */
MCLIB_EXPORT void mclibPreview_setUserPrintFunction(McUserPrintFunction function);

/* Prints pages without the dialog, as a print job of the preview does: within the margins of the printer set-up, and
 * turned where that asks for it. The pages from number `first` to `last`, counted from 0, both included and held to the
 * list, go to `fileName` for `device` (PRINT_... of mclib/print/print.h, not the host's plotter), in a text file behind
 * each other with a form feed between them; nothing goes to a printer. A file of that name is replaced when all pages
 * are printed, and stays as it was when they aren't. To be called while no preview is open, since it takes the names
 * and the function over from it. MCLIB_ERROR, after a message, when the file can't be written, when the margins leave
 * nothing of the sheet, and when different names are the same in their first 80 letters, which is what the design file
 * keeps of a name; without one when a page wasn't made. */
MCLIB_EXPORT int mclibPreview_printPages(int pageCount, char *const *pageNames, McPageFunction pageFunction,
                                         const char *fileName, int device, int first, int last);

#endif
