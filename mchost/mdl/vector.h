/* Points held against each other; transform.h has what else there is of vectors. */
#ifndef HOST_MDL_VECTOR_H
#define HOST_MDL_VECTOR_H

#include "types.h"

/* 1 when all three coordinates are the same, else 0. */
MDL_EXPORT int mdlVec_pointEqual(const Point3d *a, const Point3d *b) MDL_NOEXCEPT;

#endif
