/* What those who copy attached models into a drawing ask of them, beside reference.h: where each lies in the active
 * model, what bounds it there, and the elements that its attachment names. */
#ifndef HOST_MDL_REFERENCE_INFO_H
#define HOST_MDL_REFERENCE_INFO_H

#include "locate.h"

/* Null is the active model. 0 when one of them isn't there. */
MDL_EXPORT int mdlModelRef_areSame(ModelRef *a, ModelRef *b) MDL_NOEXCEPT; /* 1 for the same place */
MDL_EXPORT int mdlModelRef_isActiveModel(ModelRef *model) MDL_NOEXCEPT;    /* 1 for the active model itself */
/* The position that the next element of the model will have: behind all that are in it. 0 without a model. */
MDL_EXPORT FilePos mdlModelRef_getEof(ModelRef *model) MDL_NOEXCEPT;

/* From UOR of the active model to those of the reference, however deep that lies. MDL_ERROR, with `out` as it was, for
 * a model that isn't a reference. */
MDL_EXPORT int mdlTMatrix_masterToReference(Transform *out, ModelRef *reference) MDL_NOEXCEPT;

/* ---- elements by their ids ----
 * The id of an element is its position, which it keeps as long as it is there. */

typedef struct DgnCache DgnCache; /* the elements of a model, as long as that is open */

MDL_EXPORT DgnCache *mdlModelRef_getCache(ModelRef *model) MDL_NOEXCEPT; /* null for none */
/* Null when nothing is there. What a reference tells: locate.h. */
MDL_EXPORT ElementRef *dgnCache_findElemByID(FilePos id, DgnCache *cache) MDL_NOEXCEPT;

#endif
