/* Plots: what a fence's view shows inside it, references with their clips too, on a page of paper, by a plotter.
 *
 * A plotter is told by a plot driver file, a text file with the suffix ".plt". Its lines are "name = value"; a line
 * that begins with "#" and an empty one are passed over; letter case counts in values only. What a line doesn't give
 * has the value in parentheses:
 *
 *   output       pdf, png or svg: the kind of picture that a page becomes (pdf)
 *   extension    suffix of a plot file's name, with its "." or without; empty for none (that of the kind of picture)
 *   resolution   dots in an inch, 10 to 2400, for png (300)
 *   name         output name: the file, without its suffix, that plots go to (none)
 *   printer      system printer that plots go to: its name, "\\server\printer", or a port such as LPT1 (none)
 *   paper        a size of paper: "NAME WIDTH HEIGHT" in millimetres; may stand many times (A0 to A5, upright)
 *   default      the paper to begin with (A4 where there is one, else the first)
 *   margin       what the plotter can't reach on each side, in millimetres (0)
 *
 * A file with another entry, a value out of range or a line without "=" is refused, with its name and line in the
 * message centre. */
#ifndef HOST_MDL_PLOT_H
#define HOST_MDL_PLOT_H

#include "types.h"
#include "view.h"

typedef struct MdlPlotDesc MdlPlotDesc; /* how to plot: plotter, paper, fence, copies */
typedef struct MdlPlotter MdlPlotter;   /* the plotter of a description */

enum { MDL_PLOT_TEXT_BYTES = 256 }; /* least size of the buffers below, which get NUL-ended text */

/* ---- the description ----
 * Owned by the caller, and given back with mdlPlotDesc_destroy. */

/* A description with the active settings and the plotter of a plot driver file; null, with a line in the message
 * centre, when the file can't be read. */
MDL_EXPORT MdlPlotDesc *mdlPlotDesc_createFromTCBAndPltFile(const char *pltFile) MDL_NOEXCEPT;
MDL_EXPORT void mdlPlotDesc_destroy(MdlPlotDesc *descr) MDL_NOEXCEPT; /* null does nothing */

/* The paper by its name in the driver file, in any letter case; MDL_ERROR, with the paper as it was, when the plotter
 * hasn't got it. */
MDL_EXPORT int mdlPlotDesc_setPaperSize(MdlPlotDesc *descr, const char *name) MDL_NOEXCEPT;
/* The name of the paper. */
MDL_EXPORT int mdlPlotDesc_getPaperSize(char *buffer, const MdlPlotDesc *descr) MDL_NOEXCEPT;
/* The unit of lengths on paper: 4 millimetres, the only one here; MDL_ERROR for another. */
MDL_EXPORT int mdlPlotDesc_setUnits(MdlPlotDesc *descr, int32_t units) MDL_NOEXCEPT;
/* What the view adds to the drawing; all zero is nothing. Taken and not used: plots show elements alone,
 * as the view has them. */
MDL_EXPORT int mdlPlotDesc_setViewFlags(MdlPlotDesc *descr, const ViewFlags *flags) MDL_NOEXCEPT;
/* Takes the fence (fence.h) as the area to plot; `use` 0 lets go of the area. MDL_ERROR without a fence, and for one
 * without extent in its view. */
MDL_EXPORT int mdlPlotDesc_setFenceFromTCB(MdlPlotDesc *descr, int32_t use) MDL_NOEXCEPT;
/* Copies that a system printer makes; MDL_ERROR below 1. A file is written once. */
MDL_EXPORT int mdlPlotDesc_setNumCopies(MdlPlotDesc *descr, int32_t copies) MDL_NOEXCEPT;
/* Makes the plot as large as the paper takes, upright or turned, whichever is larger; it stands in the middle. A
 * description that wasn't maximised plots in this way too. MDL_ERROR without an area. */
MDL_EXPORT int mdlPlotDesc_maximize(MdlPlotDesc *descr) MDL_NOEXCEPT;
/* Plots the area of the active model: into the file `fileName`, whatever its suffix, or with null to the system printer
 * of the plotter (as PDF), or without one to the file of its output name. A file is there complete or as it was before.
 * 0, or MDL_ERROR with a line in the message centre: no area, a folder that isn't there, a full disk, a printer that
 * refuses. */
MDL_EXPORT int mdlPlotDesc_plot(MdlPlotDesc *descr, const char *fileName) MDL_NOEXCEPT;

/* The name of the system printer; MDL_ERROR, with an empty text, when the plotter has none. */
MDL_EXPORT int mdlPlotDesc_getSysPrinter(char *buffer, const MdlPlotDesc *descr) MDL_NOEXCEPT;

/* The plotter of the description, and the description's own as long as it lives; a plotter that is set is copied. A
 * paper that the new plotter hasn't got becomes its default one. */
MDL_EXPORT MdlPlotter *mdlPlotDesc_getPlotter(MdlPlotDesc *descr) MDL_NOEXCEPT;
MDL_EXPORT int mdlPlotDesc_setPlotter(MdlPlotDesc *descr, const MdlPlotter *plotter) MDL_NOEXCEPT;

/* ---- the plotter ---- */

enum {
    MDL_PLOTTER_HAS_OUTPUT_NAME = 0x1002, /* integer: 1 when it has an output name */
    MDL_PLOTTER_IS_SYSTEM = 0x1021,       /* integer: 1 when plots go to a system printer */
    MDL_PLOTTER_OUTPUT_NAME = 0x7003,     /* text */
    MDL_PLOTTER_EXTENSION = 0x700B        /* text: as in the driver file */
};
/* MDL_ERROR, with the value untouched, for another number. */
MDL_EXPORT int mdlPlotter_getInt(int32_t *value, const MdlPlotter *plotter, int32_t which) MDL_NOEXCEPT;
/* The length of the text; 0 for an empty one, -1 for another number. */
MDL_EXPORT int mdlPlotter_getString(char *buffer, const MdlPlotter *plotter, int32_t which) MDL_NOEXCEPT;
/* Lets the user choose the system printer of the plotter, in the host's own dialog: `answer` becomes 2 when one was
 * chosen and 1 when not. MDL_ERROR when the system has no printer or nobody can answer. `mode` and `owner` are taken
 * and not used. */
MDL_EXPORT int mdlPlotter_showSystemPrintdlg(int32_t *answer, MdlPlotter *plotter, int32_t mode,
                                             int32_t owner) MDL_NOEXCEPT;

#endif
