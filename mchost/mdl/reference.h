/* What is attached to a model: other design files that are shown in it, and what is attached to those.
 *
 * Attachments belong to the model and are kept in its file. The same file may be attached many times, each time with a
 * place, a clip and switches of its own; each has its own ModelRef. A model that is shown within itself is shown once:
 * what is attached to it isn't followed there, and a line tells so. An attached file is read when a walk first comes to
 * it; open in this session as the active file or to be written, it shows what is there now. A ModelRef of an attachment
 * stands until it is detached or a file above it is closed.
 *
 * A file is kept by its path from the folder of the file that it is attached to, and looked for there, then beside that
 * file, then in the folders of the configuration variable MC_REFERENCES (divided by ";"), by the same path and by its
 * last name. One that isn't found is told once, stays attached, and is looked for again. */
#ifndef HOST_MDL_REFERENCE_H
#define HOST_MDL_REFERENCE_H

#include "types.h"

/* ---- attaching; all of it can be taken back (undo.h) ---- */

/* Attaches a design file to a model (null: the active one) that is open to be written and isn't attached itself.
 * `toParent` takes its UOR to those of the model; null lays master unit on master unit. `clip`: the corners of the part
 * that is shown, 3 to 5000, in UOR of the model, z isn't looked at; null or none: all of it. The new place goes to
 * placeP. MDL_ERROR, with a line in the message centre, when the file can't be read or any of that doesn't hold. */
MDL_EXPORT int mdlRefFile_attach(ModelRef **placeP, ModelRef *parent, const char *fileName, const Transform *toParent,
                                 const Point3d *clip, int32_t clipCount) MDL_NOEXCEPT;
/* How an attached model lies: scaled and turned about its own origin, which then comes to the offset. */
typedef struct MdlRefPlacement {
    Point3d offset; /* UOR of the model that it is attached to */
    RotMatrix rotation;
    double scale; /* master units of that model for one of its own, above 0 */
} MdlRefPlacement;
/* The same without a clip; `placement` null: origin on origin, master unit on master unit. */
MDL_EXPORT int mdlRefFile_attachAt(ModelRef **placeP, ModelRef *parent, const char *fileName,
                                   const MdlRefPlacement *placement) MDL_NOEXCEPT;
/* Detaches the attachment of that number, or all with -1, from the active model. MDL_ERROR when there is none of that
 * number or, with a line, the model isn't open to be written. */
MDL_EXPORT int mdlRefFile_detach(int32_t number) MDL_NOEXCEPT;
MDL_EXPORT int mdlRefFile_detachModel(ModelRef *model) MDL_NOEXCEPT; /* the same for one at hand, of any file */

/* ---- what is told of them; MDL_ERROR, with values untouched, for a model that isn't a reference ---- */

MDL_EXPORT int mdlModelRef_isReference(ModelRef *model) MDL_NOEXCEPT;        /* 1 for an attached one */
MDL_EXPORT ModelRef *mdlModelRef_getParent(ModelRef *model) MDL_NOEXCEPT;    /* null for one that isn't attached */
/* From 1, by its parent; 0: not a reference */
MDL_EXPORT int mdlRefFile_getNumber(ModelRef *model) MDL_NOEXCEPT;
/* The name of the file; as it was attached when it isn't found. Also MDL_ERROR for a name that was cut. */
MDL_EXPORT int mdlRefFile_getFileName(char *name, int32_t size, ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT int mdlRefFile_getTransform(Transform *toParent, ModelRef *model) MDL_NOEXCEPT;
/* MDL_ERROR also for a file that isn't found, and one whose transform isn't made of these. */
MDL_EXPORT int mdlRefFile_getPlacement(MdlRefPlacement *placement, ModelRef *model) MDL_NOEXCEPT;
/* The corners of the clip as they were given, and their number; either may be null. */
MDL_EXPORT int mdlRefFile_getClip(Point3d *corners, int32_t *countP, ModelRef *model) MDL_NOEXCEPT;
/* The element whose inside is the clip; 0 none. */
MDL_EXPORT int mdlRefFile_getClipElement(FilePos *elementP, ModelRef *model) MDL_NOEXCEPT;
/* 1 for a level of the attached model that this attachment shows in the view, 0 for one that it doesn't, and for what
 * isn't one: whether the view has it on (view.h) is another matter. */
MDL_EXPORT int mdlRefFile_isLevelOn(ModelRef *model, int32_t view, LevelId level) MDL_NOEXCEPT;

/* Parameters of a reference: 32-bit 0 or 1, and the scale as a double. */
enum {
    MDL_REFERENCE_SHOWN = 1,  /* it is displayed: its own switch */
    MDL_REFERENCE_FOUND = 4,  /* its file is located, so that views have something to show of it */
    MDL_REFERENCE_HIDDEN = 6, /* it is hidden by its own switch, or by a reference around it that isn't shown */
    MDL_REFERENCE_SCALE = 10  /* master units of the file that is open by itself for one of its own */
};
MDL_EXPORT int mdlRefFile_getParameters(void *valueP, int32_t parameter, ModelRef *model) MDL_NOEXCEPT;

/* ---- changing how one is shown ----
 * All of it can be taken back. MDL_ERROR for what isn't a reference and for values that a reference can't have; with a
 * line when the parent isn't open to be written, or is attached itself. */

/* Another file in its place, all else as it was; *placeP is the place where that is shown, and `model` none any more
 * unless the name is the same. */
MDL_EXPORT int mdlRefFile_setFileName(ModelRef **placeP, const char *fileName, ModelRef *model) MDL_NOEXCEPT;
/* Moves, turns or scales it in the model that it is attached to, with a clip that was given by its corners. */
MDL_EXPORT int mdlRefFile_transform(const Transform *transform, ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT int mdlRefFile_setPlacement(const MdlRefPlacement *placement, ModelRef *model) MDL_NOEXCEPT;
/* As for mdlRefFile_attach; none shows all of it. */
MDL_EXPORT int mdlRefFile_setClip(const Point3d *corners, int32_t count, ModelRef *model) MDL_NOEXCEPT;
/* Shows what lies inside a shape, a complex shape or an ellipse of the model that it is attached to, as that is from
 * now on: moved with it, and nothing when it is deleted. */
MDL_EXPORT int mdlRefFile_setClipElement(FilePos element, ModelRef *model) MDL_NOEXCEPT;
/* Whether the attachment shows that level of the attached model in the view. */
MDL_EXPORT int mdlRefFile_setLevelOn(ModelRef *model, int32_t view, LevelId level, int32_t on) MDL_NOEXCEPT;
/* SHOWN, or its own switch of HIDDEN. */
MDL_EXPORT int mdlRefFile_setParameters(const void *valueP, int32_t parameter, ModelRef *model) MDL_NOEXCEPT;

/* ---- walks ---- */

typedef struct ModelRefIterator ModelRefIterator;
enum { MDL_ITERATE_ACTIVE = 1, MDL_ITERATE_REFERENCES = 2 };
/* An iterator over the model `root` (flag 1; null: the active one), what is attached to it (flag 2), or both: each
 * place before those in it, files that aren't found too. `depth` 1 is what is attached to the root, 2 also what is
 * attached to that, and so on; 0 and below all of it. */
MDL_EXPORT int mdlModelRefIterator_create(ModelRefIterator **iteratorP, ModelRef *root, int32_t flags,
                                          int32_t depth) MDL_NOEXCEPT;
MDL_EXPORT ModelRef *mdlModelRefIterator_getFirst(ModelRefIterator *iterator) MDL_NOEXCEPT;
MDL_EXPORT ModelRef *mdlModelRefIterator_getNext(ModelRefIterator *iterator) MDL_NOEXCEPT; /* null at the end */
MDL_EXPORT void mdlModelRefIterator_free(ModelRefIterator **iteratorP) MDL_NOEXCEPT;

#endif
