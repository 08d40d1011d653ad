// The command that places labels.
#pragma once

#include <string>

#include <mchost/mdl/transform.h>

namespace labels {

void startPlacing();

// The text of the dialog; a tag string is worked out for the element that lies under the tip.
std::string textAt(const Point3d& tip);
// Whether it can be one of a label. False after a message.
bool hasGoodText();

// What a reset does in all commands: it ends them.
void endCommand();

}  // namespace labels
