// What is attached to models, for those who show it and tell of it.
#pragma once

#include <optional>
#include <vector>

#include "mchost/model/model_ref.h"

namespace host {

// How a place that a caller means is attached; null for one that isn't.
const Attachment* openAttachment(ModelRef* handle) noexcept;

// The corners of the part that is shown, in UOR of the model that the attachment belongs to; none when its element
// isn't there any more. Only of an attachment that is clipped.
Ring clipCorners(const Model& model, const Attachment& attachment);
// Whether an element has an inside that can be a clip.
bool canClip(const MSElementBuffer* element);

// The turn of a transform that is made of a turn, an even scale and a move.
std::optional<RotMatrix> turnOf(const Transform& transform);
// From the place's own master units to those of the file that is open by itself.
double scaleToMaster(const ModelRef& place);

}  // namespace host
