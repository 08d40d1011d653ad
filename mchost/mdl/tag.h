/* Tags: elements that show a value of a type as a text.
 *
 * A tag has the measures and the look of a text element (text.h). It shows a string as it is, a whole number with its
 * digits and a double with three decimals. A tag of another type has no text, and one whose display word is 0 isn't
 * shown. */
#ifndef HOST_MDL_TAG_H
#define HOST_MDL_TAG_H

#include "element.h"
#include "text.h"

enum { MDL_TAG_STRING = 1, MDL_TAG_SHORT = 2, MDL_TAG_LONG = 3, MDL_TAG_DOUBLE = 4 };

/* A value: its type, and the one field that belongs to it. */
typedef struct MdlTagValue {
    int32_t type; /* MDL_TAG_... */
    int16_t shortValue;
    int32_t longValue;
    double doubleValue;
    char string[MDL_TEXT_CHARACTERS + 1]; /* Windows-1252 */
} MdlTagValue;

/* A tag; origin, rotation, size and params as for mdlText_createWide. `display` 0 hides it. MDL_ERROR also for a string
 * without an end, and for a number that isn't finite or whose text has more than MDL_TEXT_CHARACTERS. */
MDL_EXPORT MDL_CHECKED int mdlTag_create(MSElementBuffer *out, const MSElementBuffer *templateP,
                                         const MdlTagValue *value, const Point3d *origin, const RotMatrix *rotation,
                                         const TextSize *size, const TextParams *params, int32_t display) MDL_NOEXCEPT;
/* What a tag was made with; fields of *value that don't belong to its type are 0. `model` has no effect. MDL_ERROR,
 * with nothing stored, when the element isn't a tag or is damaged. */
MDL_EXPORT int mdlTag_extract(Point3d *origin, TextSize *size, RotMatrix *rotation, int32_t *display,
                              TextParams *params, MdlTagValue *value, const MSElementBuffer *element,
                              ModelRef *model) MDL_NOEXCEPT;

#endif
