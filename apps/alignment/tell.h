// Messages: one clear line each, to the message centre.
#pragma once

#include <string>

#include "host/mdl/system.h"

namespace alignment {

// An error that ends the work. The text is Windows-1252; always false, so that `return fail(...)` reads well.
inline bool fail(const std::string& text) {
    mdlOutput_messageCenter(10, ("alignment: " + text).c_str(), "", 0);
    return false;
}
// Something that the user should know of.
inline void warn(const std::string& text) {
    mdlOutput_messageCenter(11, ("alignment: " + text).c_str(), "", 0);
}

}  // namespace alignment
