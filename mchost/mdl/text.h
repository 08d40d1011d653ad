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

enum { MDL_TEXT_CHARACTERS = 255 }; /* most characters of a text element */

/* A text element. text null is an empty text; origin null is (0, 0, 0); rotation null is none; size null takes active
 * parameter 11 for both; params null the active settings. The last argument is 0. MDL_ERROR for more than 255
 * characters, or a size that isn't above 0. */
MDL_EXPORT int mdlText_createWide(MSElementBuffer *out, const MSElementBuffer *templateP, const wchar_t *text,
                                  const Point3d *origin, const RotMatrix *rotation, const TextSize *size,
                                  const TextParams *params, int32_t reserved) MDL_NOEXCEPT;
/* What a text element holds. lowerLeft: the box's lower left corner; origin: the point that the justification places;
 * width and height: those of the box; text: up to 255 characters and a NUL; params: as it was made; just: its
 * justification; textHeight: the text height; charWidth: the width of a character. */
MDL_EXPORT int mdlText_extract(Point3d *lowerLeft, Point3d *origin, double *width, double *height, char *text,
                               RotMatrix *rotation, TextParams *params, int32_t *just, double *textHeight,
                               double *charWidth, const MSElementBuffer *element) MDL_NOEXCEPT;
/* A text element. With a text element as template, null arguments stand for what the template has, and its linkages
 * stay: with nothing but a text it is the template with other words. Else as mdlText_createWide, with narrow text. */
MDL_EXPORT int mdlText_create(MSElementBuffer *out, const MSElementBuffer *templateP, const char *text,
                              const Point3d *origin, const RotMatrix *rotation, const TextSize *size,
                              const TextParams *params, int32_t reserved) MDL_NOEXCEPT;
/* The characters of a text element (MDL_TEXT_CHARACTERS + 1 bytes). MDL_ERROR for another element. */
MDL_EXPORT int mdlText_extractString(char *text, const MSElementBuffer *element) MDL_NOEXCEPT;
/* What a text element was made with: its words (MDL_TEXT_CHARACTERS + 1 characters), the point that its justification
 * places, its rotation, size and params. MDL_ERROR for another element. */
MDL_EXPORT int mdlText_extractWide(wchar_t *text, Point3d *origin, RotMatrix *rotation, TextSize *size,
                                   TextParams *params, const MSElementBuffer *element) MDL_NOEXCEPT;
/* The box as five points: lower left, lower right, upper right, upper left, lower left, turned as the text is. The
 * pointers are spare and 0: origin out, view. */
MDL_EXPORT int mdlText_extractShape(Point3d *shape, Point3d *origin, const MSElementBuffer *element, int32_t reserved,
                                    int32_t view) MDL_NOEXCEPT;

/* ---- text nodes: texts of more than one line ---- */

/* The header of a text node, which keeps how its lines are made; arguments as for mdlText_createWide. text is null: the
 * lines are added to the descriptor that is made of the header. */
MDL_EXPORT int mdlTextNode_createWide(MSElementBuffer *out, const MSElementBuffer *templateP, const wchar_t *text,
                                      const Point3d *origin, const RotMatrix *rotation, const TextSize *size,
                                      const TextParams *params) MDL_NOEXCEPT;
/* Adds a text element for each line of `text` to the descriptor of a text node, with the level and symbology of the
 * header. params.lineSpacing is the gap between lines. The first line stands where a text of one line would stand and
 * the others below it; with a justification of centre all lines are centred about the origin. Lines end with a line
 * feed, a carriage return in front of it is dropped; an empty line becomes a blank. MDL_ERROR, with nothing added, for
 * another descriptor or a line of more than MDL_TEXT_CHARACTERS. */
MDL_EXPORT int mdlText_addStringsToNodeDscr(ElementDescr *node, const char *text) MDL_NOEXCEPT;

/* ---- text styles of a model ---- */
typedef struct MdlTextStyle MdlTextStyle;
/* The style of that name, to be given back with mdlTextStyle_free; null when the model hasn't one. */
MDL_EXPORT MdlTextStyle *mdlTextStyle_getByName(const wchar_t *name, ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT void mdlTextStyle_free(MdlTextStyle *style) MDL_NOEXCEPT;
/* Text parameters and size of a style; width and height in UOR, 0 when the style leaves them open. */
MDL_EXPORT int mdlTextStyle_getTextParamWideFromStyle(TextParams *params, TextSize *size,
                                                      const MdlTextStyle *style) MDL_NOEXCEPT;
/* Adds or replaces a text style in the model. */
MDL_EXPORT int mdlTextStyle_define(ModelRef *model, const wchar_t *name, const TextParams *params,
                                   const TextSize *size) MDL_NOEXCEPT;

/* The text as text elements hold it: Windows-1252, one byte a character, at most size - 1 characters and a NUL. `limit`
 * is the most bytes that one character may take. 0, or MDL_ERROR when the text was cut. */
MDL_EXPORT int mdlText_compressString(char *out, const char *text, int32_t size, int32_t limit) MDL_NOEXCEPT;
/* The reverse: text of elements as text in memory, which is the same Windows-1252. `out` may be `text`, which is then
 * written to only where it is cut. */
MDL_EXPORT int mdlText_expandString(char *out, const char *text, int32_t size, int32_t limit) MDL_NOEXCEPT;

/* Windows-1252 to wide text and back, at most size - 1 characters and a NUL. A wide character without a code becomes
 * "?". 0, or MDL_ERROR when the text was cut. */
MDL_EXPORT int mdlCnv_convertMultibyteToUnicode(const char *text, int length, wchar_t *wide, int size) MDL_NOEXCEPT;
MDL_EXPORT int mdlCnv_convertUnicodeToMultibyte(const wchar_t *wide, int length, char *text, int size) MDL_NOEXCEPT;

#endif
