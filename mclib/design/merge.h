/* Making a drawing whole by itself: tags become texts. */
#ifndef MCLIB_MERGE_H
#define MCLIB_MERGE_H

#include "mchost/mdl/types.h"
#include "mclib/frame/export.h"

/* A text element in `out` that shows the value of a tag: a string as it is, whole numbers with their digits, a double
 * with three decimals. It has the origin, rotation, size and text parameters of the tag, its symbology and its level.
 * `out` may be `tag`; `position` isn't read, and `model` is where the tag lies. 0, or MCLIB_ERROR, with `out` as it
 * was, for what isn't a tag, a hidden tag (its display word is 0), a value that is neither string nor number, and a
 * text that is longer than a text element takes. */
MCLIB_EXPORT int mclibMerge_textFromTag(MSElementBuffer *out, const MSElementBuffer *tag, FilePos position,
                                        ModelRef *model);

#endif
