/* Views and drawing of descriptors into dialog windows. */
#ifndef HOST_MDL_VIEW_H
#define HOST_MDL_VIEW_H

#include "types.h"

/* The matrix of a standard view: 1 top, 2 bottom, 3 left, 4 right, 5 front, 6 back. */
MDL_EXPORT int mdlView_getStandard(RotMatrix *matrix, int32_t view) MDL_NOEXCEPT;

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

#endif
