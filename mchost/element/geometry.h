// Range, transform and strokes of one element, for descriptors and pictures.
#pragma once

#include <vector>

#include "mchost/element/layout.h"
#include "mchost/space/vector.h"

namespace host {

// As elementRange, of the element as the transform would leave it.
bool elementRange(const MSElementBuffer* element, Range3d& range, const Transform& transform);

// Whether all coordinates stay finite under the transform.
bool canTransform(const MSElementBuffer* element, const Transform& transform);

// Transforms the body in place; elements without coordinates stay as they are. False, with the element as it was, when
// it can't be transformed.
bool transformElement(MSElementBuffer* element, const Transform& transform);

// Appends the points of the stroked element, transformed, to `points`. False, with nothing appended, for an element
// without points of its own and for a tolerance that isn't above 0.
bool strokeElement(std::vector<Point3d>& points, const MSElementBuffer* element, double tolerance,
                   const Transform& transform);

}  // namespace host
