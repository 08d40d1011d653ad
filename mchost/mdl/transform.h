/* Vectors, matrices, the stack of current transforms, units, and numbers in the format of files. */
#ifndef HOST_MDL_TRANSFORM_H
#define HOST_MDL_TRANSFORM_H

#include "types.h"

/* Numeric constants. */
MDL_EXPORT const double *const fc_piP, *const fc_2piP, *const fc_piover2P, *const fc_piover4P, *const fc_piover6P;
MDL_EXPORT const double *const fc_piover180P, *const fc_180overpiP;
MDL_EXPORT const double *const fc_epsilonP;  /* 1e-8 */
MDL_EXPORT const double *const fc_zeroP;
MDL_EXPORT const double *const fc_rmaxi4P;   /* 2147483647 */
MDL_EXPORT const double *const fc_rmaxui4P;  /* 4294967295 */

/* ---- vectors ---- */
MDL_EXPORT double mdlVec_distance(const Point3d *a, const Point3d *b) MDL_NOEXCEPT;
/* The unit vector from a towards b, and the distance as the result; (0, 0, 0) for equal points. */
MDL_EXPORT double mdlVec_computeNormal(Point3d *out, const Point3d *a, const Point3d *b) MDL_NOEXCEPT;

/* ---- rotation matrices ---- */
MDL_EXPORT void mdlRMatrix_getIdentity(RotMatrix *matrix) MDL_NOEXCEPT;
MDL_EXPORT void mdlRMatrix_fromAngle(RotMatrix *matrix, double angle) MDL_NOEXCEPT; /* about the z axis */
MDL_EXPORT void mdlRMatrix_rotatePoint(Point3d *point, const RotMatrix *matrix) MDL_NOEXCEPT;
/* By the transposed matrix */
MDL_EXPORT void mdlRMatrix_unrotatePoint(Point3d *point, const RotMatrix *matrix) MDL_NOEXCEPT;
MDL_EXPORT void mdlRMatrix_rotatePointArray(Point3d *points, const RotMatrix *matrix, int32_t count) MDL_NOEXCEPT;
MDL_EXPORT void mdlRMatrix_unrotatePointArray(Point3d *points, const RotMatrix *matrix, int32_t count) MDL_NOEXCEPT;
/* MDL_ERROR, with `out` as it was, for a matrix that has no inverse. `out` may be `matrix`. */
MDL_EXPORT int mdlRMatrix_getInverse(RotMatrix *out, const RotMatrix *matrix) MDL_NOEXCEPT;
/* The range of the turned box, in place. */
MDL_EXPORT void mdlRMatrix_multiplyRange(Point3d *low, Point3d *high, const RotMatrix *matrix) MDL_NOEXCEPT;

/* ---- transforms ---- */
MDL_EXPORT void mdlTMatrix_getIdentity(Transform *out) MDL_NOEXCEPT;
/* `in` (null: the identity) with a move behind it. `out` may be `in`. */
MDL_EXPORT void mdlTMatrix_translate(Transform *out, const Transform *in, double x, double y, double z) MDL_NOEXCEPT;
/* Without a translation */
MDL_EXPORT void mdlTMatrix_fromRMatrix(Transform *out, const RotMatrix *matrix) MDL_NOEXCEPT;
/* `in` (null: the identity) with a turn about the x, then the y, then the z axis behind it. `out` may be `in`. */
MDL_EXPORT void mdlTMatrix_rotateByAngles(Transform *out, const Transform *in, double ax, double ay,
                                          double az) MDL_NOEXCEPT;

/* ---- the current transform ----
 * A stack. Inside begin and end, builders take and extractors give coordinates in the current system, and lengths
 * (radii, text sizes, stroke tolerances) in its unit. begin copies the system around it; identity makes it UOR. Calls
 * that change the system give MDL_ERROR and leave it when none is open, for values that aren't finite, and when it
 * would have no way back. What an application leaves open is closed when it ends. */
MDL_EXPORT int mdlCurrTrans_begin(void) MDL_NOEXCEPT;
MDL_EXPORT int mdlCurrTrans_end(void) MDL_NOEXCEPT; /* MDL_ERROR when none is open */
MDL_EXPORT int mdlCurrTrans_identity(void) MDL_NOEXCEPT;
/* Moves the origin of the current system to that point, given in the current system. */
MDL_EXPORT int mdlCurrTrans_translateOrigin(const Point3d *origin) MDL_NOEXCEPT;
/* Adds the point, given in the outermost system (UOR), to the origin. */
MDL_EXPORT int mdlCurrTrans_translateOriginWorld(const Point3d *origin) MDL_NOEXCEPT;
/* One unit of the new system is that many units of the old. A factor of 0 is MDL_ERROR. */
MDL_EXPORT int mdlCurrTrans_scale(double sx, double sy, double sz) MDL_NOEXCEPT;
MDL_EXPORT int mdlCurrTrans_rotateByAngles(double ax, double ay, double az) MDL_NOEXCEPT; /* about x, then y, then z */
/* Turns the axes of the system to those of a view, 0 to 7: x to the right, y up, z towards the user. */
MDL_EXPORT int mdlCurrTrans_rotateByView(int32_t view) MDL_NOEXCEPT;
/* One unit of the new system is one master unit of the active model. */
MDL_EXPORT int mdlCurrTrans_masterUnitsIdentity(void) MDL_NOEXCEPT;
/* Points of the current system in UOR, and back. `out` may be `in`. */
MDL_EXPORT int mdlCurrTrans_transformPointArray(Point3d *out, const Point3d *in, int32_t count) MDL_NOEXCEPT;
MDL_EXPORT int mdlCurrTrans_invtransPointArray(Point3d *out, const Point3d *in, int32_t count) MDL_NOEXCEPT;
/* The transforms between the current system and UOR; valid until the current system changes. Each may be null. */
MDL_EXPORT int mdlCurrTrans_getAddresses(const Transform **toWorld, const Transform **fromWorld) MDL_NOEXCEPT;

/* ---- units: 1 master unit is mdlModelRef_getUorPerMaster UOR ---- */
/* Also stored when not null */
MDL_EXPORT double mdlCnv_masterToUOR(double *resultP, double master, ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT double mdlCnv_UORToMaster(double *resultP, double uor, ModelRef *model) MDL_NOEXCEPT;

/* ---- doubles as design files hold them: 8 bytes, IEEE 754, little-endian, at any address ---- */
MDL_EXPORT void mdlCnv_doubleToFileFormat(void *bytes, double value) MDL_NOEXCEPT;
MDL_EXPORT double mdlCnv_doubleFromFileFormat(const void *bytes) MDL_NOEXCEPT;

#endif
