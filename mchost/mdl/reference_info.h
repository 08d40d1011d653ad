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

/* How a reference lies in the active model, whatever lies between. */
typedef struct MdlReferenceInfo {
    Point3d offset;      /* where its origin comes to, UOR of the active model */
    RotMatrix rotation;  /* its turn; the identity when its transform isn't made of a turn and a scale */
    double scale;        /* master units of the active model for one of its own */
    int32_t clipCount;   /* corners of its clip */
    /* Them, from the offset, along the axes of a view: turned back (mdlRMatrix_unrotatePointArray) and with the offset
     * added they are UOR of the active model, as seen from above. */
    Point3d *clip;
    FilePos clipElement; /* without corners: the shape or ellipse of the active model whose inside the clip is */
} MdlReferenceInfo;
/* What is known of a reference, for a view; the caller frees it. The clip is all that bounds it: of a reference within
 * others also their clips. Neither corners nor an element: it isn't clipped, or nothing of it is left
 * (mdlClip_getRefBoundary of clip.h tells). MDL_ERROR, with null, for a model that isn't a reference and for what isn't
 * a view. */
MDL_EXPORT int mdlRefFile_getInfo(MdlReferenceInfo **infoPP, ModelRef *reference, int32_t view) MDL_NOEXCEPT;
MDL_EXPORT void mdlRefFile_freeInfo(MdlReferenceInfo **infoPP) MDL_NOEXCEPT;

/* ---- elements by their ids ----
 * The id of an element is its position, which it keeps as long as it is there. */

typedef struct DgnCache DgnCache; /* the elements of a model, as long as that is open */

MDL_EXPORT DgnCache *mdlModelRef_getCache(ModelRef *model) MDL_NOEXCEPT; /* null for none */
/* Null when nothing is there. What a reference tells: locate.h. */
MDL_EXPORT ElementRef *dgnCache_findElemByID(FilePos id, DgnCache *cache) MDL_NOEXCEPT;

#endif
