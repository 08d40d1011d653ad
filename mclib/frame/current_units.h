// Lengths of the drawing in the unit of the current transform.
#pragma once

#include <cmath>

#include "mchost/mdl/transform.h"

namespace mc {

// A length in UOR as the builders, extractors and strokes of the current transform count it, along its x axis.
inline double inCurrentUnits(double uor) {
    const Transform* fromWorld = nullptr;
    mdlCurrTrans_getAddresses(nullptr, &fromWorld);
    const auto& form = fromWorld->form;
    return uor * std::hypot(form[0][0], form[1][0], form[2][0]);
}

}  // namespace mc
