// The models that a view shows: the active one, and what is attached to it.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "mchost/model/model_ref.h"

namespace host {

// What a clip leaves of a place: the inside of an outline, as seen from above, in the UOR of the place that has it.
struct ShownClip {
    const ModelRef* parent;
    std::shared_ptr<const Ring> outline;
};
// The clip of a place that is attached, and has one. The first time that its element isn't there any more a line tells
// so; the outline is empty then, and nothing is shown.
std::optional<ShownClip> clipOf(const ModelRef& place);
// All clips that a place lies in, the outermost first.
std::vector<ShownClip> clipsAround(const ModelRef& place);

struct ShownPlace {
    ModelRef* place;
    std::vector<ShownClip> clips;  // what lies in all of them is shown
};

// Each place before those in it, the active model first; none while no design file is open. They stand until something
// is attached, detached or closed.
std::vector<ShownPlace> shownPlaces(int32_t view);

}  // namespace host
