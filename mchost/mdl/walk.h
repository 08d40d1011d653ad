/* The walk over a descriptor: takes it apart for a pen, which draws it on paper, in a picture or into a file of another
 * program. The pen gets lines and outlines as points along them, and texts as they are, each with its look. */
#ifndef HOST_MDL_WALK_H
#define HOST_MDL_WALK_H

#include "elmdscr.h"

/* How an element looks: the symbology in effect for it. */
typedef struct MdlLook {
    int32_t color, weight, style;
    double styleScale; /* of the style's pattern */
    double dashScale, gapScale; /* of its dashes and of its gaps, beside styleScale */
    double styleWidth; /* of the line, in master units; 0: as its weight tells */
    int32_t filled;    /* 1: a closed outline is filled */
    int32_t fillColor; /* of the fill; below 0: that of the line */
    ModelRef *model;   /* of the element; may be null */
} MdlLook;

/* What is drawn with. Functions that are null take nothing, and `userArg` goes to each of them. `element` is the one of
 * the descriptor, transformed; it stands for the length of the call. */
typedef struct MdlPen {
    void *userArg;
    double tolerance;           /* how far lines may stray, in the units of their points; above 0 */
    const Transform *transform; /* elements are transformed with it first, in UOR; null: they aren't */
    const Range3d *range;       /* in UOR: what lies outside, as seen from above, is left out; null: nothing is */
    /* Asked about every element, headers too, as it stands in the descriptor: other than 0 leaves it out. The
     * components of a header are asked about all the same. Of a tag and a compound (compound.h) that isn't left out
     * the elements that show it are asked about too, as they are drawn: their parent is the node of it. Null: none is
     * left out. */
    int (*skip)(void *userArg, const ElementDescr *node);
    /* A line, or an outline whose last point is its first. A complex shape is one outline. Pens that know more than
     * straight lines look at the type of the element. */
    void (*line)(void *userArg, const MSElementBuffer *element, const MdlLook *look, const Point3d *points,
                 int32_t count);
    void (*text)(void *userArg, const MSElementBuffer *element, const MdlLook *look); /* a text that isn't empty */
} MdlPen;

/* Takes chain and components apart, in their order; tags and compounds as the elements that show them. Points are given
 * in the current system, as mdlElement_stroke does. Elements without a look of their own (headers, application data)
 * and those that can't be stroked or transformed are left out. MDL_ERROR without a pen, for a tolerance that isn't
 * above 0, and when memory is out. */
MDL_EXPORT int mdlElmdscr_walk(const ElementDescr *ed, const MdlPen *pen) MDL_NOEXCEPT;

#endif
