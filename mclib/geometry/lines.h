/* Plane geometry of alignments: lines, circles, and what an alignment does with any of its elements.
 *
 * An element of an alignment is seven numbers in the caller's length unit, always in this order: its end points (x1,
 * y1) and (x2, y2), the signed radii R1 and R2 at them (0: infinite), and the clothoid parameter A (0: no clothoid). A
 * positive radius turns left, with the centre to the left of the direction of travel. Angles and bearings are radians,
 * counter-clockwise from the x axis. A station is an arc length from the first end; for clothoids see clothoid.h. Calls
 * that return a status store nothing when they fail, unless told otherwise. Coordinates are plain numbers: only the two
 * element builders and the nearest point know the host.
 *
 * End points and stations may be off by what rounding does to numbers of their size (some 1e-8 for coordinates of 1e7):
 * a chord that is longer than the diameter by no more makes a half circle, and a station that is beyond an end by no
 * more is the end. Numbers that aren't finite make no element. */
#ifndef MCLIB_GEOMETRY_LINES_H
#define MCLIB_GEOMETRY_LINES_H

#include "mclib/frame/export.h"
#include "mchost/mdl/elmdscr.h"

enum { GEO_LINE = 1, GEO_CIRCLE = 2, GEO_CLOTHOID = 3 };
enum { GEO_BELOW = -10, GEO_ABOVE = 10 }; /* the given value lies outside the range of the end points */

/* ---- elements ---- */

/* The kind of an element: without A a line for R1 = 0, else a circle (R2 isn't looked at); with A a clothoid, but a
 * line for R1 = R2. The numbers are compared exactly. */
MCLIB_EXPORT int mclibGeo_getElementType(double R1, double R2, double A);
/* The point of an element at a station, and the bearing there (of a clothoid: at its start), as the call for its kind
 * gives them. */
MCLIB_EXPORT int mclibGeo_getElementCoord(double *xP, double *yP, double *angleP, double x1, double y1, double x2,
                                          double y2, double R1, double R2, double A, double s);
/* The point of a line at station s, and the line's bearing. MCLIB_ERROR, with 0 in *xP and *yP, for a line without
 * length or a station beyond it. */
MCLIB_EXPORT int mclibGeo_getLineCoord(double *xP, double *yP, double *angleP, double x1, double y1, double x2,
                                       double y2, double s);
/* The point of a circle's shorter arc at station s, and the bearing of the tangent there, which may lie beyond 2 pi.
 * MCLIB_ERROR without a circle (R = 0) or, with 0 in *xP and *yP, without an arc or for a station beyond it. */
MCLIB_EXPORT int mclibGeo_getCircleCoord(double *xP, double *yP, double *angleP, double x1, double y1, double x2,
                                         double y2, double R, double s);

/* ---- circles and bearings ---- */

/* The centre of the arc, of at most a half circle, between two points. MCLIB_ERROR when R is 0, for equal points (the
 * centre is then (0, 0)), and when the points lie further apart than 2 |R|. */
MCLIB_EXPORT int mclibGeo_getCircleCenter(double *xcP, double *ycP, double x1, double y1, double x2, double y2,
                                          double R);
/* The bearing of (dx, dy), from 0 to 2 pi; its quadrant, 1 to 4 counter-clockwise. (0, 0) is bearing 0, quadrant 1. */
MCLIB_EXPORT int mclibGeo_getCircleQuadrant(double *angleP, double dx, double dy);

/* ---- equations: the value is stored for GEO_BELOW and GEO_ABOVE too; equal end points of the range are no range
 * ---- */

/* x on the circle at height y: on its right half for R > 0, on its left for R < 0. MCLIB_ERROR without a circle, or
 * when it doesn't reach y. */
MCLIB_EXPORT int mclibGeo_getCircleX(double *xP, double x1, double y1, double x2, double y2, double R, double y);
/* y on the circle at x: on its upper half for R > 0, on its lower for R < 0. */
MCLIB_EXPORT int mclibGeo_getCircleY(double *yP, double x1, double y1, double x2, double y2, double R, double x);
/* Coefficients of the line y = a x + b. A vertical line gets the slope 1 through its first point. MCLIB_ERROR, with
 * a = b = 0, for equal points. */
MCLIB_EXPORT int mclibGeo_getLinearAB(double *aP, double *bP, double x1, double y1, double x2, double y2);
/* x on that line at height y. MCLIB_ERROR for a horizontal line and for equal points. */
MCLIB_EXPORT int mclibGeo_getLinearX(double *xP, double x1, double y1, double x2, double y2, double y);
/* y on that line at x. MCLIB_ERROR for equal points. */
MCLIB_EXPORT int mclibGeo_getLinearY(double *yP, double x1, double y1, double x2, double y2, double x);

/* ---- frames, corners and ends ---- */

/* Turns a point about the origin by -angle, and by +angle. Neither moves it. */
MCLIB_EXPORT void mclibGeo_coordGlobalToLocal(double *xlP, double *ylP, double xg, double yg, double angle);
MCLIB_EXPORT void mclibGeo_coordLocalToGlobal(double *xgP, double *ygP, double xl, double yl, double angle);
/* Cuts a corner with an arc. pointsP[0] to [1] is the line that ends at the corner, [2] to [3] the one that starts
 * there; [1] and [2] become the ends of the arc, [4] its centre. Only x and y are used. */
MCLIB_EXPORT void mclibGeo_createFillet(Point3d *pointsP, double radius);
/* Moves the first of two points by distance1 towards the second, and the second by distance2 towards the first. */
MCLIB_EXPORT void mclibGeo_trimVector(Point3d *pointsP, double distance1, double distance2);

/* ---- elements of the host ---- */

/* The point of the descriptor's elements that is nearest to *pointP replaces it; gives the bearing of the line there,
 * valid until the next search. Only classes whose bit is set in classMask count; curves are stroked to 0.01 master
 * units. With no such element the point and the bearing stay. */
MCLIB_EXPORT double *mclibGeo_getNearestPointP(Point3d *pointP, ElementDescr *edP, uint32_t classMask);
/* Makes a line in the buffer, whose symbology stays. yScale stretches heights, as in a long section. Always 0. */
MCLIB_EXPORT int mclibGeo_createLineByEndpoints(MSElementBuffer *elmP, double x1, double y1, double x2, double y2,
                                                double yScale);
/* Makes an arc in the buffer; y1, y2 and R are stretched. MCLIB_ERROR when the arc has no centre. */
MCLIB_EXPORT int mclibGeo_createArcByEndpoints(MSElementBuffer *elmP, double x1, double y1, double x2, double y2,
                                               double R, double yScale);

#endif
