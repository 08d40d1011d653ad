// Labels into the open drawing.
#pragma once

#include "label.h"

namespace labels {

// Adds the labels to the active model, all of them or none, as one step that undo takes back. False after a message.
bool drawLabels(const LabelFile& file);

}  // namespace labels
