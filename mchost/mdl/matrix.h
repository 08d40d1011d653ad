/* The way back through a transform, and whether a matrix turns anything; transform.h has what else there is. */
#ifndef HOST_MDL_MATRIX_H
#define HOST_MDL_MATRIX_H

#include "types.h"

/* `out` may be `in`. MDL_ERROR, with `out` as it was, for a transform that can't be gone back. */
MDL_EXPORT MDL_CHECKED int mdlTMatrix_getInverse(Transform *out, const Transform *in) MDL_NOEXCEPT;
/* 1 for a matrix that differs from the identity by no more than 1e-12, else 0. */
MDL_EXPORT int mdlRMatrix_isIdentity(const RotMatrix *matrix) MDL_NOEXCEPT;

#endif
