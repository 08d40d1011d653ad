/* What bounds an attached model, and what of elements lies within. */
#ifndef HOST_MDL_CLIP_H
#define HOST_MDL_CLIP_H

#include "elmdscr.h"

typedef struct ClipDescr ClipDescr; /* all clips that a reference lies in: its own, and those of references around it */

/* The boundary of a reference as a view shows it, in clipPP; to be freed. 0 with null: it isn't clipped. One whose
 * element isn't there any more has nothing inside, which a line on the console tells once. MDL_ERROR, with null, for a
 * model that isn't a reference and for what isn't a view. */
MDL_EXPORT int mdlClip_getRefBoundary(ClipDescr **clipPP, ModelRef *reference, int32_t view) MDL_NOEXCEPT;
/* What of the chain `in`, which is in UOR of the active model, lies within: *outPP is `in` when all of it does, null
 * when nothing does, else a new chain that the caller frees. Open elements come in pieces, in order and direction, arcs
 * as arcs; filled ones as filled shapes; texts, cells, tags and dimensions are within as a whole when their origin is.
 * `in` stays the caller's. `model` and `view` are those of the boundary, and aren't asked. MDL_ERROR, with null, when
 * something is missing or memory is out. */
MDL_EXPORT int mdlClip_element(ElementDescr **outPP, ElementDescr *in, ModelRef *model, const ClipDescr *clip,
                               int32_t view) MDL_NOEXCEPT;
MDL_EXPORT void mdlClip_free(ClipDescr **clipPP) MDL_NOEXCEPT;

#endif
