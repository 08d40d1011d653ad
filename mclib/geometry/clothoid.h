/* Clothoids: transition curves whose curvature grows evenly with arc length, with R L = A^2.
 *
 * An element is given as everywhere in the geometry of alignments (lines.h): end points, the signed radius at each of
 * them (0: infinite, a straight end) and A, whose sign doesn't count; one whose square or its inverse is no number is
 * taken as 0. The series frame has the clothoid's origin, where
 * its radius is infinite, at (0, 0), with its tangent there along +x; a series length l is an arc length from there.
 * The element covers the series lengths L1 to L2, and L1 is 0 with a straight end. All lengths have the caller's unit.
 *
 * A partial clothoid has two radii. Both must turn the same way: an S-curve is two elements that meet at its straight
 * point. The calls that place a clothoid lay the tighter radius at its own end, whichever that is.
 *
 * The point comes from the Fresnel series, five terms for each coordinate:
 *   x = l - l^5/(40 A^4) + l^9/(3456 A^8) - l^13/(599040 A^12) + l^17/(175472640 A^16)
 *   y = l^3/(6 A^2) - l^7/(336 A^6) + l^11/(42240 A^10) - l^15/(9676800 A^14) + l^19/(3530960640 A^18)
 * Its last denominator stands as the family has always had it; the exact one, 3530096640, differs beyond the twelfth
 * digit of y for l <= A. */
#ifndef MCLIB_GEOMETRY_CLOTHOID_H
#define MCLIB_GEOMETRY_CLOTHOID_H

#include "mclib/frame/export.h"
#include "mchost/mdl/element.h"

/* ---- lengths and the series ---- */

/* The radius of the greater absolute value, R1 when both are equal in it: of an element with a straight end, the radius
 * at the other end. Valid until the next call. */
MCLIB_EXPORT double *mclibGeo_getKlotoideRadiusP(double R1, double R2);
/* A^2/|R| of both radii, 0 for an infinite one; the smaller in *L1P. Always 0. */
MCLIB_EXPORT int mclibGeo_getKlotoideLength(double *L1P, double *L2P, double R1, double R2, double A);
/* The point at series length l in the series frame. y is negated for Rref = R2 < 0 and for Rref = R1 > 0: a curve that
 * runs towards its straight end is seen walking back from there. MCLIB_ERROR for A = 0, with nothing stored. */
MCLIB_EXPORT int mclibGeo_KlotCoord(double *xP, double *yP, double R1, double R2, double A, double l, double Rref);

/* ---- points: caller's arrays of at least 2; MCLIB_ERROR for 1 point or A = 0, with nothing stored ---- */

/* Points in the series frame, evenly spaced from L1 to L2 whichever way the element runs. z isn't touched. No points at
 * all (nPoints of 0 or less) is a success. */
MCLIB_EXPORT int mclibGeo_getKlotPoints(Point3d *pointsP, int nPoints, double R1, double R2, double A);
/* Points in travel order: from L1 when the second end is the tight one, else from L2, which then lies at (0, 0). Each
 * is moved by (-xShift, -yShift), turned by `angle` and moved by (x0, y0); z is 0. MCLIB_ERROR also without memory,
 * after a message, and for radii that turn opposite ways. */
MCLIB_EXPORT int mclibGeo_createKlotoide(Point3d *pointsP, int nPoints, double x0, double y0, double R1, double R2,
                                         double A, double angle, double xShift, double yShift);

/* ---- curves of the host, fitted through nPoints points with nPoints poles; free with mdlBspline_freeCurve ---- */

/* From (x1, y1) towards (x2, y2). The radii and A alone give the size: the end lies on (x2, y2) when their chord is as
 * long as the distance of the end points. Returns the fit's status; MCLIB_ERROR as for mclibGeo_createKlotoide: the
 * curve then holds nothing to free. */
MCLIB_EXPORT int mclibGeo_createKlotoideByEndpoints(BsplineCurve *curveP, int nPoints, int order, double x1, double y1,
                                                    double x2, double y2, double R1, double R2, double A);
/* From (x1, y1), with the series frame's x axis along the bearing from (x1, y1) to (x2, y2). */
MCLIB_EXPORT int mclibGeo_createKlotoideByTangent(BsplineCurve *curveP, int nPoints, int order, double x1, double y1,
                                                  double x2, double y2, double R1, double R2, double A);

/* ---- stations ---- */

/* The point at station s, and the bearing of the tangent at the element's first end, 0 to 2 pi, the same for all s. The
 * station is the series length, L1 to L2: with R1 = 0 the distance from (x1, y1), with R2 = 0 the distance from
 * (x2, y2); on a partial clothoid L1 is the end with the wider radius. MCLIB_ERROR for A = 0 with nothing stored;
 * with 0 in *xP and *yP for two infinite radii, radii that turn opposite ways, and a station beyond the element. */
MCLIB_EXPORT int mclibGeo_getKlotCoord(double *xP, double *yP, double *angleP, double x1, double y1, double x2,
                                       double y2, double R1, double R2, double A, double s);

#endif
