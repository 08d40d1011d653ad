/* Views and drawing of descriptors into dialog windows. */
#ifndef HOST_MDL_VIEW_H
#define HOST_MDL_VIEW_H

#include "types.h"

/* The matrix of a standard view: 1 top, 2 bottom, 3 left, 4 right, 5 front, 6 back. */
MDL_EXPORT int mdlView_getStandard(RotMatrix *matrix, int32_t view);

typedef struct ViewFlags { uint32_t words[3]; } ViewFlags;
/* Draws the descriptor into the rectangle of a dialog's window: `origin` is the lower left corner of the volume shown,
 * `extent` its size along the axes of `matrix`. The picture is as large as fits, and centred. What was drawn stands in
 * the window's display list: lines, and texts in the dialog's font; a text that is much smaller than that font is drawn
 * as its box. `flags`, `is3d` and `lastArg` are taken and not used. */
MDL_EXPORT int mdlElmdscr_displayToWindow(MdlDialog *window, const DialogRect *rect, const ViewFlags *flags,
                                          ElementDescr *ed, const RotMatrix *matrix, const Point3d *origin,
                                          const Point3d *extent, int32_t is3d, int32_t lastArg);

/* The picture of a descriptor, or of the whole active model when ed is null, as a file: the kind follows the suffix,
 * ".png" or ".svg" or ".pdf". `range` (UOR) null is the whole extent and a small margin. widthMm is the picture's width in
 * millimetres, its height follows; dpi is for PNG. It looks as on paper: white background, pen widths by weight and
 * dashes by style in millimetres, texts in their boxes; colour index 0 is black, 1 to 15 are fixed colours, and the 16
 * repeat. 0, or MDL_ERROR, with a line in the message centre, when it can't be written or there is nothing to show; a
 * file of that name is then as it was. */
MDL_EXPORT int mdlPicture_write(const char *fileName, const ElementDescr *ed, const Range3d *range, double widthMm,
                                double dpi);

#endif
