// The models that a view shows: the active one, and what is attached to it.
#pragma once

#include <vector>

#include "mchost/model/model_ref.h"

namespace host {

// What a clip leaves of a place: the inside of an outline, as seen from above, in the UOR of the place that has it.
struct ShownClip {
    const ModelRef* parent;
    const std::vector<ClipPoint>* outline;
};

struct ShownPlace {
    ModelRef* place;
    std::vector<ShownClip> clips;  // what lies in all of them is shown
};

// Each place before those in it, the active model first; none while no design file is open. They stand until something
// is attached, detached or closed.
std::vector<ShownPlace> shownPlaces(int32_t view);

}  // namespace host
