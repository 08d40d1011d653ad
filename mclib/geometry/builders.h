/* Builders: one element made in the host's shared buffer, dressed by an attribute, and hung on a descriptor.
 *
 * Every builder makes its element in *dgnBufP with the active settings, applies the attribute `attrId` of the calling
 * application, and appends a copy to `ed` when that isn't null. The element stays in *dgnBufP until the next builder
 * overwrites it. Coordinates and radii count in the host's current transform, angles are radians.
 * A host that can't make the element isn't looked at: what the buffer holds is then dressed and appended.
 * MCLIB_SUCCESS, or MCLIB_ERROR when `ed` doesn't take it: then the drawing lacks it. */
#ifndef MCLIB_BUILDERS_H
#define MCLIB_BUILDERS_H

#include "mclib/frame/export.h"

MCLIB_EXPORT int mclibElement_createLine(const Point3d *points, int attrId, ElementDescr *ed); /* two points */
MCLIB_EXPORT int mclibElement_createLineString(const Point3d *points, int count, int attrId, ElementDescr *ed);
MCLIB_EXPORT int mclibElement_createArc(const Point3d *center, double radius, double startAngle, double sweepAngle,
                                         int attrId, ElementDescr *ed);
/* The circular arc about `center` from `start` to the bearing of `end`; the five arguments are those of
 * mdlArc_createByCenter. Leaves *dgnBufP alone: the arc is kept only in `ed`. */
MCLIB_EXPORT int mclibElement_createArcByCenter(const Point3d *start, const Point3d *center, const Point3d *end,
                                                 int clockwise, const Point3d *normal, int attrId, ElementDescr *ed);
MCLIB_EXPORT int mclibElement_createEllipse(const Point3d *center, double radius, int attrId, ElementDescr *ed);
/* fillMode 0 isn't filled. */
MCLIB_EXPORT int mclibElement_createEllipseExtended(const Point3d *center, double radius, int fillMode, int attrId,
                                                     ElementDescr *ed);
MCLIB_EXPORT int mclibElement_createShape(const Point3d *points, int count, int fillMode, int attrId, ElementDescr *ed);
/* A text by mclibElmAttr_createText, with the justification *just instead of the attribute's when `just` isn't null.
 * Nothing is built or appended, and the result is MCLIB_ERROR, when the attribute is unknown or the host refuses the
 * text. */
MCLIB_EXPORT int mclibElement_createText(const Point3d *origin, const char *text, double scale, const int *just,
                                          int attrId, ElementDescr *ed);

/* ---- symbology and attributes of an element ---- */

/* Colour, weight and style by level. */
MCLIB_EXPORT int mclibElement_setSymbologyByLevel(MSElementBuffer *element);
/* The colour, weight and style that the level gives its elements in the active model; nothing when the level is
 * unknown. */
MCLIB_EXPORT void mclibElement_setSymbologyFromLevel(MSElementBuffer *element, LevelId level);
/* A copy without the user data that mclibAttrib_appendElementUserData appends. */
MCLIB_EXPORT int mclibElement_stripAttributes(MSElementBuffer *out, const MSElementBuffer *in);
/* A copy without any linkage; a cell keeps its name and description. */
MCLIB_EXPORT void mclibElement_stripAttributes2(MSElementBuffer *out, const MSElementBuffer *in);

#endif
