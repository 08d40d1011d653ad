/* The active model and the references attached to it. */
#ifndef HOST_MDL_REFERENCE_H
#define HOST_MDL_REFERENCE_H

#include "types.h"

typedef struct ModelRefIterator ModelRefIterator;
enum { MDL_ITERATE_ACTIVE = 1, MDL_ITERATE_REFERENCES = 2 };
/* An iterator over the active model (flag 1), its references (flag 2), or both. `depth` 0 is all nesting levels. */
MDL_EXPORT int mdlModelRefIterator_create(ModelRefIterator **iteratorP, ModelRef *root, int32_t flags, int32_t depth);
MDL_EXPORT ModelRef *mdlModelRefIterator_getFirst(ModelRefIterator *iterator);
MDL_EXPORT ModelRef *mdlModelRefIterator_getNext(ModelRefIterator *iterator); /* null at the end */
MDL_EXPORT void mdlModelRefIterator_free(ModelRefIterator **iteratorP);
MDL_EXPORT int mdlModelRef_isReference(ModelRef *model); /* 1 for an attached reference */

/* A 32-bit parameter of a reference. 1: its display is on; 4: its file was found; 6: it is hidden. MDL_ERROR, with the
 * value untouched, for a model that isn't a reference. */
MDL_EXPORT int mdlRefFile_getParameters(void *valueP, int32_t parameter, ModelRef *model);

#endif
