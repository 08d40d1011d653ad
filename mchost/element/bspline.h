// Curve records of callers as splines, and back.
#pragma once

#include "mchost/element/spline.h"

namespace host {

// False when the record isn't a whole curve.
bool splineOf(const BsplineCurve& curve, Spline& spline);

// Gives the record new arrays, in host memory, that hold the spline, and its counts; those that it had are forgotten,
// not freed. Throws when out of memory, the record then as it was.
void giveArrays(BsplineCurve& curve, const Spline& spline);

}  // namespace host
