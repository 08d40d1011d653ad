// What placing an arrow and editing one share.
#pragma once

#include "mclib/arrows/state.h"

namespace mc::arrows {

// Has the hook fill in the looks; they stay as they are without one.
void askForLooks(McArrowAttributesHook hook, Looks& looks);
// Tells the user of a hook for the looks that isn't there.
void tellOfMissingHook();

}  // namespace mc::arrows
