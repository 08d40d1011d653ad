// The command that places labels.
#pragma once

#include <mchost/mdl/elmdscr.h>

namespace labels {

void startPlacing();

// What a reset does in all commands: it ends them.
void endCommand();

}  // namespace labels
