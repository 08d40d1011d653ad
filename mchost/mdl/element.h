/* Elements: their bytes, symbology, properties, linkages, and the builders and extractors of each type.
 *
 * An element is a block of bytes: the 32-byte head, the type's own data, then the linkages. Coordinates given to
 * builders and got from extractors are in the current transform (transform.h): UOR when none is open. Builders take the
 * element to fill, then a template or null: with a template the new element has its level, properties and symbology;
 * with null it has the active settings. The element may be its own template. A builder that fails leaves the element as
 * it was. */
#ifndef HOST_MDL_ELEMENT_H
#define HOST_MDL_ELEMENT_H

#include "types.h"

/* Element types. */
enum {
    MDL_CELL_HEADER = 2,
    MDL_LINE = 3,
    MDL_LINE_STRING = 4,
    MDL_SHAPE = 6,
    MDL_TEXT_NODE = 7,
    MDL_COMPLEX_SHAPE = 14,
    MDL_ELLIPSE = 15,
    MDL_ARC = 16,
    MDL_TEXT = 17,
    MDL_BSPLINE = 27,
    MDL_DIMENSION = 33,
    MDL_COMPOUND = 35,
    MDL_MULTILINE = 36,
    MDL_TAG = 37,
    MDL_APPLICATION_DATA = 66
};

enum { MDL_MAX_POINTS = 5000 }; /* most points of a line, line string or shape */

/* The head of every element. Lengths count 16-bit words. */
typedef struct ElementHead {
    uint16_t type;            /* element type */
    uint16_t zero;
    uint32_t size;            /* whole element, linkages included */
    uint32_t attributeOffset; /* where the linkages begin; equal to size when there are none */
    uint32_t level;
    uint32_t graphicGroup;
    uint16_t properties;      /* MDL_PROP_... */
    int16_t weight;           /* -1 by level */
    int32_t style;            /* 0x7FFFFFFF by level; negative: a named style */
    int32_t color;            /* -1 by level */
} ElementHead;

enum {
    MDL_PROP_CLASS = 0x000F, /* 0 primary, 1 construction component, 2 dimension, ... */
    MDL_PROP_LOCKED = 0x0010,
    MDL_PROP_NEW = 0x0020,
    MDL_PROP_MODIFIED = 0x0040,
    MDL_PROP_VIEW_INDEPENDENT = 0x0080,
    MDL_PROP_HOLE = 0x0100,
    MDL_PROP_FILLED = 0x0200
};

enum { MDL_ELEMENT_BYTES = 131072 };

union MSElementBuffer {
    ElementHead head;
    uint8_t bytes[MDL_ELEMENT_BYTES];
    double alignment;
};

/* The one shared element buffer. */
MDL_EXPORT MSElementBuffer *dgnBufP;

/* ---- the element as a whole ---- */

MDL_EXPORT int mdlElement_getType(const MSElementBuffer *element) MDL_NOEXCEPT;
MDL_EXPORT uint32_t mdlElement_bytes(const MSElementBuffer *element) MDL_NOEXCEPT; /* size in bytes */
MDL_EXPORT int mdlElement_memcpy(MSElementBuffer *out, const MSElementBuffer *in) MDL_NOEXCEPT;
MDL_EXPORT int mdlElement_isFilled(const MSElementBuffer *element) MDL_NOEXCEPT; /* 1 or 0 */
/* Transforms the element in UOR, whatever the current transform; `out` may be `in`. MDL_ERROR, with `out` as it was,
 * when a coordinate would leave the finite numbers. */
MDL_EXPORT MDL_CHECKED int mdlElement_transform(MSElementBuffer *out, const MSElementBuffer *in,
                                                const Transform *transform) MDL_NOEXCEPT;
/* Copies the element without any linkage. */
MDL_EXPORT int mdlElement_stripAttributes(MSElementBuffer *out, const MSElementBuffer *in) MDL_NOEXCEPT;

/* Colour, weight and style; null pointers are left alone, on the element as in the result. Another style loses the
 * modifiers of the one before. MDL_ERROR for a weight above 32767 that isn't by level. */
MDL_EXPORT int mdlElement_getSymbology(uint32_t *color, uint32_t *weight, int32_t *style,
                                       const MSElementBuffer *element) MDL_NOEXCEPT;
MDL_EXPORT int mdlElement_setSymbology(MSElementBuffer *element, const uint32_t *color, const uint32_t *weight,
                                       const int32_t *style) MDL_NOEXCEPT;
/* What the element is drawn with: by-level values are taken from its level in the model. A named style counts as its
 * number. The two pointers in the middle get the style's scale and width, 1 and 0 without a modifier. */
MDL_EXPORT int mdlElement_getEffectiveSymbology(int32_t *color, int32_t *weight, int32_t *style, double *styleScale,
                                                double *styleWidth, const MSElementBuffer *element,
                                                ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT int mdlElement_getProperties(uint32_t *level, uint32_t *graphicGroup, int32_t *elementClass, int32_t *locked,
                                        int32_t *isNew, int32_t *modified, int32_t *viewIndependent, int32_t *hole,
                                        const MSElementBuffer *element) MDL_NOEXCEPT;
MDL_EXPORT int mdlElement_setProperties(MSElementBuffer *element, const uint32_t *level, const uint32_t *graphicGroup,
                                        const int32_t *elementClass, const int32_t *locked, const int32_t *isNew,
                                        const int32_t *modified, const int32_t *viewIndependent,
                                        const int32_t *hole) MDL_NOEXCEPT;

/* Points along the element within `tolerance` of it (units of the current transform), in a new array that the caller
 * frees with dlmSystem_mdlFree. A closed element gives its first point again as the last. 0, or MDL_ERROR for an
 * element without points of its own (texts, headers, application data). */
MDL_EXPORT int mdlElement_stroke(Point3d **pointsP, int32_t *countP, const MSElementBuffer *element,
                                 double tolerance) MDL_NOEXCEPT;

/* ---- builders ---- */

MDL_EXPORT int mdlLine_create(MSElementBuffer *out, const MSElementBuffer *templateP,
                              const Point3d *points) MDL_NOEXCEPT;
MDL_EXPORT int mdlLineString_create(MSElementBuffer *out, const MSElementBuffer *templateP, const Point3d *points,
                                    int32_t count) MDL_NOEXCEPT;
/* `fillMode` 0 none, other values filled. The last point needn't repeat the first; it is then added, and counts. */
MDL_EXPORT int mdlShape_create(MSElementBuffer *out, const MSElementBuffer *templateP, const Point3d *points,
                               int32_t count, int32_t fillMode) MDL_NOEXCEPT;
/* Axes above 0; the sweep is at most a full turn either way, and not 0. */
MDL_EXPORT int mdlArc_create(MSElementBuffer *out, const MSElementBuffer *templateP, const Point3d *center,
                             double axis1, double axis2, const RotMatrix *rotation, double startAngle,
                             double sweepAngle) MDL_NOEXCEPT;
/* The circular arc about `center` from `start` to the bearing of `end`: counter-clockwise, or clockwise when
 * `clockwise` isn't 0. `normal` (null: the z axis) is the axis that it turns about. */
MDL_EXPORT int mdlArc_createByCenter(MSElementBuffer *out, const MSElementBuffer *templateP, const Point3d *start,
                                     const Point3d *center, const Point3d *end, int32_t clockwise,
                                     const Point3d *normal) MDL_NOEXCEPT;
MDL_EXPORT int mdlEllipse_create(MSElementBuffer *out, const MSElementBuffer *templateP, const Point3d *center,
                                 double axis1, double axis2, const RotMatrix *rotation, int32_t fillMode) MDL_NOEXCEPT;

/* ---- extractors ---- */

/* The points of a line, line string or shape: at most `size` of them; the number that the element has in countP. */
MDL_EXPORT int mdlLinear_extract(Point3d *points, int32_t *countP, const MSElementBuffer *element,
                                 int32_t size) MDL_NOEXCEPT;
/* Of an arc or ellipse (start 0, sweep 2 pi). What is a circle in one system may be an ellipse in another: the axes
 * are then those of the ellipse. An arc parallel to the xy plane is told as seen from above: the rotation is about the
 * z axis, and a clockwise arc has a negative sweep. */
MDL_EXPORT int mdlArc_extract(Point3d *center, double *axis1, double *axis2, RotMatrix *rotation, double *startAngle,
                              double *sweepAngle, const MSElementBuffer *element) MDL_NOEXCEPT;
/* The point of a line, line string or shape that is nearest to *pointP replaces it; segment (two points, may be null)
 * gets the ends of the segment that it lies on, segmentIndexP its number from 0. */
MDL_EXPORT int mdlLinear_getClosestSegment(Point3d *pointP, Point3d *segment, int32_t *segmentIndexP,
                                           const MSElementBuffer *element) MDL_NOEXCEPT;

/* ---- cell headers ---- */

/* A cell header, at most 511 characters of name. The cell's elements are appended to its descriptor. */
MDL_EXPORT int mdlCell_create(MSElementBuffer *out, const wchar_t *name, const Point3d *origin,
                              int32_t is3d) MDL_NOEXCEPT;
/* Origin in the current transform, and the matrix of the cell's own axes (their rotation and scale) in UOR. MDL_ERROR
 * when the element isn't a cell header. */
MDL_EXPORT int mdlCell_extract(Point3d *origin, RotMatrix *matrix, const MSElementBuffer *element) MDL_NOEXCEPT;
/* Name and description as wide text; `size` counts characters. MDL_ERROR when the element isn't a cell header, or has
 * no description. */
MDL_EXPORT int mdlCell_extractName(wchar_t *name, int32_t size, const MSElementBuffer *element) MDL_NOEXCEPT;
MDL_EXPORT int mdlCell_setName(MSElementBuffer *element, const wchar_t *name) MDL_NOEXCEPT;
MDL_EXPORT int mdlCell_extractDescription(wchar_t *description, int32_t size,
                                          const MSElementBuffer *element) MDL_NOEXCEPT;
MDL_EXPORT int mdlCell_setDescription(MSElementBuffer *element, const wchar_t *description) MDL_NOEXCEPT;

/* ---- linkages ---- */

/* The head of a user-data linkage: its length and the user flag in the first word, then the primary id. */
typedef struct LinkageHeader {
    uint16_t header;
    uint16_t primaryId;
} LinkageHeader;
enum { MDL_LINKAGE_USER = 0x1000 }; /* user-data flag of the header word; also allows lengths over 255 words */

enum { MDL_MAX_LINKAGE_WORDS = 4100 };
/* Length in 16-bit words, header included, a multiple of 4, at most MDL_MAX_LINKAGE_WORDS. Any
 * other length is stored as 0, which mdlLinkage_appendToElement refuses. */
MDL_EXPORT void mdlLinkage_setWords(LinkageHeader *header, uint32_t words) MDL_NOEXCEPT;
MDL_EXPORT uint32_t mdlLinkage_getWords(const LinkageHeader *header) MDL_NOEXCEPT;
/* Appends a linkage: the header, then the data behind it (words * 2 - 4 bytes). The last two arguments are 0. MDL_ERROR
 * when it doesn't fit the element. */
MDL_EXPORT int mdlLinkage_appendToElement(MSElementBuffer *element, const LinkageHeader *header, const void *data,
                                          int32_t reserved1, int32_t reserved2) MDL_NOEXCEPT;
/* Copies the first user linkage with that primary id, header included, to `linkage` (8200 bytes, null for a test).
 * The pointers: skip function and its argument, words found, offset found; the library gives 0. MDL_ERROR when there is
 * none. */
MDL_EXPORT int mdlLinkage_extractFromElement(void *linkage, const MSElementBuffer *element, uint16_t primaryId,
                                             void *reserved1, void *reserved2, uint32_t *wordsP,
                                             uint32_t *offsetP) MDL_NOEXCEPT;
/* Deletes all user linkages with that primary id; the number deleted goes to countP. MDL_SUCCESS also for none. */
MDL_EXPORT int mdlLinkage_deleteFromElement(MSElementBuffer *element, uint16_t primaryId, void *reserved1,
                                            void *reserved2, void *reserved3, int32_t *countP) MDL_NOEXCEPT;

/* ---- line styles on elements ---- */

typedef struct LineStyleParams {
    uint32_t modifiers; /* which of the values count: LINE_STYLE_... */
    double scale;                /* of the whole pattern */
    double startWidth, endWidth;
    double dashScale, gapScale;  /* of its dashes and of its gaps, in place of `scale` */
} LineStyleParams;
enum {
    LINE_STYLE_SCALE = 0x01,
    LINE_STYLE_DASH_SCALE = 0x02,
    LINE_STYLE_GAP_SCALE = 0x04,
    LINE_STYLE_START_WIDTH = 0x08,
    LINE_STYLE_END_WIDTH = 0x10
};

/* Gives the element a named line style (name null: the one that it has), with its modifiers kept in a linkage.
 * MDL_ERROR for a name that the active model hasn't, and for an element without a named style when none is given. */
MDL_EXPORT int mdlElement_setLineStyle(MSElementBuffer *element, const char *name,
                                       const LineStyleParams *params) MDL_NOEXCEPT;
/* MDL_ERROR, with nothing stored, when the element has none. */
MDL_EXPORT int mdlElement_getLineStyleParams(LineStyleParams *params, const MSElementBuffer *element) MDL_NOEXCEPT;
/* The number of the element's named style and the modifiers in effect: a scale of the whole pattern counts as one of
 * dashes and of gaps where these have none of their own. MDL_ERROR, with nothing stored, for a built-in style and one
 * that is taken from the level. */
MDL_EXPORT int mdlElement_getLineStyle(int32_t *styleP, LineStyleParams *params,
                                       const MSElementBuffer *element) MDL_NOEXCEPT;

/* ---- B-spline curves ---- */

/* A B-spline curve in the plane of its poles. poles, knots and weights belong to the curve. */
typedef struct BsplineCurve {
    int32_t type;           /* word 0 */
    int32_t rational;       /* word 1: weights are given */
    int32_t reserved;       /* word 2 */
    int32_t polygonDisplay; /* word 3 */
    int32_t curveDisplay;   /* word 4 */
    int32_t closed;         /* word 5 */
    int32_t order;          /* word 6 */
    int32_t reserved2;      /* word 7 */
    int32_t numPoles;       /* word 8 */
    int32_t numKnots;       /* word 9: numPoles + order */
    Point3d *poles;         /* word 10 */
    double *knots;          /* word 11: 0 to 1, clamped at both ends */
    double *weights;        /* word 12: null when not rational */
} BsplineCurve;

/* Fits the curve, whose order (2 to 15) and numPoles are set, to points by least squares: clamped ends, so that it
 * begins at the first point and ends at the last. params (0 to 1, rising) may be null: chord length is then used. More
 * poles than points are as many as points, and an order above the number of poles becomes that number. The mean and
 * the greatest distance of the points from the curve go to the two out-values. MDL_ERROR for fewer than 2 points, an
 * order out of range or coincident points; the curve's arrays stay null then. */
MDL_EXPORT int mdlBspline_leastSquaresToCurve(BsplineCurve *curve, double *meanError, double *maxError,
                                              const Point3d *points, const double *params, int32_t count) MDL_NOEXCEPT;
/* The point at parameter 0 to 1. */
MDL_EXPORT int mdlBspline_evaluateCurvePoint(Point3d *point, const BsplineCurve *curve, double parameter) MDL_NOEXCEPT;
/* An element of type 27 from the curve, with the active settings or the template's. */
MDL_EXPORT int mdlBspline_createCurve(MSElementBuffer *out, const MSElementBuffer *templateP,
                                      const BsplineCurve *curve) MDL_NOEXCEPT;
/* The curve of an element of type 27; to be freed. */
MDL_EXPORT int mdlBspline_extractCurve(BsplineCurve *curve, const MSElementBuffer *element) MDL_NOEXCEPT;
/* Frees the arrays and clears the pointers. */
MDL_EXPORT void mdlBspline_freeCurve(BsplineCurve *curve) MDL_NOEXCEPT;

#endif
