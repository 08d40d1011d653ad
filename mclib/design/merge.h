/* Making a drawing whole by itself: what a view shows of attached files becomes elements of the drawing, and tags
 * become texts. What goes wrong is told on the console. */
#ifndef MCLIB_MERGE_H
#define MCLIB_MERGE_H

#include "mchost/mdl/clip.h"
#include "mclib/frame/export.h"

/* A text element in `out` that shows the value of a tag: a string as it is, whole numbers with their digits, a double
 * with three decimals. It has the origin, rotation, size and text parameters of the tag, its symbology and its level.
 * `out` may be `tag`; `position` isn't read, and `model` is where the tag lies. 0, or MCLIB_ERROR, with `out` as it
 * was, for what isn't a tag, a hidden tag (its display word is 0), a value that is neither string nor number, and a
 * text that is longer than a text element takes. */
MCLIB_EXPORT int mclibMerge_textFromTag(MSElementBuffer *out, const MSElementBuffer *tag, FilePos position,
                                        ModelRef *model);

/* Puts such a text into the active model: transformed (UOR; null: as it lies), and, with isClipped, only when its
 * origin lies within `clip` (null: everywhere); its level and line style go by their names. `display` other than 0
 * shows it in the views. A tag of the active model itself is deleted. 0, also when the clip leaves nothing;
 * MCLIB_ERROR, with all as it was, for a tag without a text, and when the text can't be added. */
MCLIB_EXPORT int mclibMerge_replaceTagWithText(const MSElementBuffer *tag, FilePos position, ModelRef *model,
                                               int display, const Transform *transform, const ClipDescr *clip,
                                               int isClipped);

/* Copies what a view (1 to 8) shows of every attached file, at any depth, into the active model: in its place and size,
 * cut along the clips, with the levels that the view shows and, where that shows level symbology, the look that the
 * levels give. Filled shapes that are cut stay filled; tags, dimensions and multi-lines come as the elements that show
 * them. Then all files are detached, also those that were hidden or not found. One step of undo takes all of it back.
 * Nothing is done for another view and a drawing that can't be written. */
MCLIB_EXPORT void mclibMerge_refFiles(int viewNumber);

#endif
