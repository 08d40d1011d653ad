/* Text elements, their measures, and text styles.
 *
 * A text has one line. Its origin is the place that its justification names on its box: left, centre or right; top,
 * centre or base line. The box reaches from the base line to the text height, and is as wide as the characters of its
 * font at the text width. */
#ifndef HOST_MDL_TEXT_H
#define HOST_MDL_TEXT_H

#include "types.h"

/* Justification codes: left 0 top, 1 centre, 2 base; 3 to 5 the same at the left margin; 6 to 8 centred; 9 to 11 right
 * margin; 12 to 14 right. */
typedef struct TextSize {
    int32_t mode;   /* 1: width and height are given */
    double width;   /* of a character, in units of the current transform */
    double height;
    double aspect;
} TextSize;

typedef struct TextParams {
    int32_t font;       /* -1: the active one */
    int32_t just;       /* -1: the active one, which is 2 */
    int32_t textStyle;  /* number of the text style; -1 none */
    int32_t styleFields; /* which fields follow the style; -1 none */
    uint32_t flags;     /* TEXT_FLAG_... */
    double slant;       /* radians */
    double lineSpacing;
} TextParams;
enum { TEXT_FLAG_SLANT = 0x08 };

/* A text element. text null is an empty text; origin null is (0, 0, 0); rotation null is none; size null takes active
 * parameter 11 for both; params null the active settings. The last argument is 0. MDL_ERROR for more than 255
 * characters, or a size that isn't above 0. */
MDL_EXPORT int mdlText_createWide(MSElementBuffer *out, const MSElementBuffer *templateP, const wchar_t *text,
                                  const Point3d *origin, const RotMatrix *rotation, const TextSize *size,
                                  const TextParams *params, int32_t reserved);
/* What a text element holds. lowerLeft: the box's lower left corner; origin: the point that the justification places;
 * width and height: those of the box; text: up to 255 characters and a NUL; params: as it was made; just: its
 * justification; textHeight: the text height; charWidth: the width of a character. */
MDL_EXPORT int mdlText_extract(Point3d *lowerLeft, Point3d *origin, double *width, double *height, char *text,
                               RotMatrix *rotation, TextParams *params, int32_t *just, double *textHeight,
                               double *charWidth, const MSElementBuffer *element);
/* The box as five points: lower left, lower right, upper right, upper left, lower left, turned as the text is. The
 * pointers are spare and 0: origin out, view. */
MDL_EXPORT int mdlText_extractShape(Point3d *shape, Point3d *origin, const MSElementBuffer *element, int32_t reserved,
                                    int32_t view);

/* ---- text styles of a model ---- */
typedef struct MdlTextStyle MdlTextStyle;
/* The style of that name, to be given back with mdlTextStyle_free; null when the model hasn't one. */
MDL_EXPORT MdlTextStyle *mdlTextStyle_getByName(const wchar_t *name, ModelRef *model);
MDL_EXPORT void mdlTextStyle_free(MdlTextStyle *style);
/* Text parameters and size of a style; width and height in UOR, 0 when the style leaves them open. */
MDL_EXPORT int mdlTextStyle_getTextParamWideFromStyle(TextParams *params, TextSize *size, const MdlTextStyle *style);
/* Adds or replaces a text style in the model. */
MDL_EXPORT int mdlTextStyle_define(ModelRef *model, const wchar_t *name, const TextParams *params, const TextSize *size);

/* Windows-1252 to wide text and back, at most size - 1 characters and a NUL. A wide character without a code becomes
 * "?". 0, or MDL_ERROR when the text was cut. */
MDL_EXPORT int mdlCnv_convertMultibyteToUnicode(const char *text, int length, wchar_t *wide, int size);
MDL_EXPORT int mdlCnv_convertUnicodeToMultibyte(const wchar_t *wide, int length, char *text, int size);

#endif
