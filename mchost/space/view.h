// The views of a session, 0 to 7: how each is turned. All show the model from above to begin with.
#pragma once

#include <cstdint>

#include "mchost/mdl/types.h"

namespace host {

constexpr int32_t viewCount = 8;
constexpr bool isView(int32_t view) {
    return view >= 0 && view < viewCount;
}

// From the axes of the model to those of the view; the rows are the view's axes.
const RotMatrix& viewRotation(int32_t view);
void setViewRotation(int32_t view, const RotMatrix& rotation);

// How many UOR a pixel of the view is wide.
double viewPixelSize(int32_t view);

}  // namespace host
