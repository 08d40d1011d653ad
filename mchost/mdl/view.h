/* Views, and drawing of descriptors into dialog windows.
 *
 * There are eight views, 0 to 7 (1 to 8 for people), whether or not somebody shows them in windows. Each shows the
 * active model turned by a rotation, from a point on (the lower left corner, at the back) as far as its extent along
 * its own axes: x to the right, y up, z towards whoever looks. What lies before or behind the extent is shown too. A
 * view that wasn't looked at so far is fitted at the first look. The design file keeps its views: with the next change
 * that is stored, and when it is saved or closed; a file that can't be written keeps those it has. They can't be taken
 * back by undo. A new file has view 0 open, which shows everything from above. While no design file is open the views
 * are the session's own.
 *
 * Calls give MDL_ERROR, and change nothing, for a number that isn't a view and for values that a view can't have. */
#ifndef HOST_MDL_VIEW_H
#define HOST_MDL_VIEW_H

#include "bitmask.h"
#include "types.h"

/* The matrix of a standard view: 1 top, 2 bottom, 3 left, 4 right, 5 front, 6 back. */
MDL_EXPORT int mdlView_getStandard(RotMatrix *matrix, int32_t view) MDL_NOEXCEPT;

/* ---- where a view looks ---- */

MDL_EXPORT int mdlView_isOpen(int32_t view) MDL_NOEXCEPT; /* 1 or 0 */
MDL_EXPORT int mdlView_setOpen(int32_t view, int32_t open) MDL_NOEXCEPT;
/* From the axes of the model to those of the view: its rows are the axes of the view. */
MDL_EXPORT int mdlRMatrix_fromView(RotMatrix *matrix, int32_t view) MDL_NOEXCEPT;
/* Turns the view about the middle of what it shows. MDL_ERROR for what isn't a rotation. */
MDL_EXPORT int mdlView_setRotation(int32_t view, const RotMatrix *rotation) MDL_NOEXCEPT;
/* The area, in UOR; the first look at a view fits it. */
MDL_EXPORT int mdlView_getArea(Point3d *origin, Point3d *extent, int32_t view) MDL_NOEXCEPT;
/* x and y of the extent are 0.001 to 1e15, its z is at least 0. */
MDL_EXPORT int mdlView_setArea(int32_t view, const Point3d *origin, const Point3d *extent) MDL_NOEXCEPT;
/* The rectangle between two points (UOR) as the view sees them. */
MDL_EXPORT int mdlView_setWindow(int32_t view, const Point3d *corner, const Point3d *opposite) MDL_NOEXCEPT;
/* All that the view shows, and a small margin; of an empty model 100 by 75 master units. */
MDL_EXPORT int mdlView_fit(int32_t view) MDL_NOEXCEPT;
/* Shows things so many times as large (below 1: smaller); what is at `about` (UOR; null: in the middle) stays there. */
MDL_EXPORT int mdlView_zoom(int32_t view, double factor, const Point3d *about) MDL_NOEXCEPT;
/* Moves the view over the model, along its own axes, UOR. */
MDL_EXPORT int mdlView_pan(int32_t view, double right, double up) MDL_NOEXCEPT;
MDL_EXPORT int mdlView_setCenter(int32_t view, const Point3d *center) MDL_NOEXCEPT; /* UOR */

/* ---- pixels: of whoever shows the view, from the upper left corner, y downwards ---- */

/* The size that the view is shown in; 800 by 600 when nobody tells another one. The file doesn't keep it. The area is
 * shown as large as fits, in the middle, and what lies beside it where there is room. */
MDL_EXPORT int mdlView_getSize(int32_t *widthP, int32_t *heightP, int32_t view) MDL_NOEXCEPT;
MDL_EXPORT int mdlView_setSize(int32_t view, int32_t width, int32_t height) MDL_NOEXCEPT; /* 1 to 30000 */
MDL_EXPORT double mdlView_getPixelSize(int32_t view) MDL_NOEXCEPT; /* UOR; 0 for what isn't a view */
MDL_EXPORT int mdlView_pixelFromPoint(double *xP, double *yP, const Point3d *point, int32_t view) MDL_NOEXCEPT;
/* In UOR, in the plane through the model's origin that lies squarely before the view. */
MDL_EXPORT int mdlView_pointFromPixel(Point3d *point, double x, double y, int32_t view) MDL_NOEXCEPT;

/* ---- what a view shows ---- */

enum {
    MDL_VIEW_CONSTRUCTIONS = 1, /* elements of class 1 */
    MDL_VIEW_DIMENSIONS = 2,    /* dimensions, and elements of class 2 */
    MDL_VIEW_TEXTS = 3,
    MDL_VIEW_FILLS = 4,
    MDL_VIEW_WEIGHTS = 5,       /* off: all lines are thin */
    MDL_VIEW_STYLES = 6,        /* off: all lines are solid */
    MDL_VIEW_REFERENCES = 7,
    MDL_VIEW_LEVEL_SYMBOLOGY = 10 /* what levels override counts (mdlLevel_setSymbology); off in a new view */
};
/* 1 or 0; -1 for another control, and for what isn't a view. */
MDL_EXPORT int mdlView_getDisplayControl(int32_t view, int32_t control) MDL_NOEXCEPT;
MDL_EXPORT int mdlView_setDisplayControl(int32_t view, int32_t control, int32_t on) MDL_NOEXCEPT;

/* Levels are on or off in each view by their names: those of that name in attached models go with the active one's,
 * unless the attachment has them off (mdlRefFile_setLevelOn). 1 or 0; 0 also for a level that the model (null: the
 * active one) hasn't. */
MDL_EXPORT int mdlView_isLevelOn(int32_t view, ModelRef *model, LevelId level) MDL_NOEXCEPT;
/* MDL_ERROR for a level that the model hasn't. */
MDL_EXPORT int mdlView_setLevelOn(int32_t view, ModelRef *model, LevelId level, int32_t on) MDL_NOEXCEPT;
/* Bit `level - 1` for each level of the model (null: the active one) that is on in the view. It stands until the next
 * call; mdlBitMask_clone keeps it. `mode` is 2. Null for what isn't a view or a model. */
MDL_EXPORT const MdlBitMask *mdlView_getLevelDisplayMask(ModelRef *model, int32_t view, int32_t mode) MDL_NOEXCEPT;

/* Has the view shown anew, with the elements as they are now; -1: all that are open. */
MDL_EXPORT int mdlView_update(int32_t view) MDL_NOEXCEPT;

/* ---- drawing ---- */

typedef struct ViewFlags { uint32_t words[3]; } ViewFlags;
/* Draws the descriptor into the rectangle of a dialog's window: `origin` is the lower left corner of the volume shown,
 * `extent` its size along the axes of `matrix`. The picture is as large as fits, and centred. What was drawn stands in
 * the window's display list: lines as wide and dashed as on paper (see below), and texts, which fill their boxes.
 * `flags`, `is3d` and `lastArg` are taken and not used. */
MDL_EXPORT int mdlElmdscr_displayToWindow(MdlDialog *window, const DialogRect *rect, const ViewFlags *flags,
                                          ElementDescr *ed, const RotMatrix *matrix, const Point3d *origin,
                                          const Point3d *extent, int32_t is3d, int32_t lastArg) MDL_NOEXCEPT;

/* What an element is drawn with in a window. */
typedef struct MdlElementLook {
    int32_t color; /* colour index */
    double gray;   /* 0 (black) to 1 (white): its outline is filled with this grey and has no line; below 0: not so */
} MdlElementLook;
/* Asked about each element that is about to be drawn: what it changes in *look counts; other than 0 leaves the element
 * out. */
typedef int (*MdlElementLookFunction)(MdlElementLook *look, const MSElementBuffer *element, void *userArg);
/* The paper that a window shows: how many pixels a millimetre of it has, and who is asked about the looks of elements
 * (null: nobody). Without one a millimetre has as many as on a screen of 96 dots in an inch. */
typedef struct MdlPaper {
    double pixelsPerMm;
    MdlElementLookFunction look;
    void *userArg;
} MdlPaper;
/* Counts for what is drawn into the window from now on; null ends it. */
MDL_EXPORT int mdlWindow_setPaper(MdlDialog *window, const MdlPaper *paper) MDL_NOEXCEPT;

/* The picture of a descriptor, or of the whole active model when ed is null, as a file: the kind follows the suffix,
 * ".png" or ".svg" or ".pdf". `range` (UOR) null is the whole extent and a small margin. widthMm is the picture's width
 * in millimetres, its height follows; dpi is for PNG. It looks as on paper: white background, pen widths by weight and
 * dashes by style in millimetres, texts in their boxes; colour index 0 is black, 1 to 15 are fixed colours, and the 16
 * repeat. 0, or MDL_ERROR, with a line in the message centre, when it can't be written or there is nothing to show; a
 * file of that name is then as it was. */
MDL_EXPORT int mdlPicture_write(const char *fileName, const ElementDescr *ed, const Range3d *range, double widthMm,
                                double dpi) MDL_NOEXCEPT;
/* The picture of a view, so many pixels (of 96 in an inch) wide and high; both 0: as large as it is shown. All as the
 * view has it: from where it looks, levels and display controls, references with their clips, and over that what
 * commands show: elements that are erased are left out, highlighted ones are highlighted, and what moves in the
 * dynamics of the command that runs is there. Else as mdlPicture_write. */
MDL_EXPORT int mdlPicture_writeView(const char *fileName, int32_t view, int32_t width, int32_t height) MDL_NOEXCEPT;

#endif
