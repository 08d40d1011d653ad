// The end of an application. For the files of this room alone.
#pragma once

#include "mchost/mdl/types.h"

namespace host {

// Ends an application that no call is inside of: tells the rooms, and removes its code from memory.
void finishApplication(MdlDesc& application) noexcept;

}  // namespace host
