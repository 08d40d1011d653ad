// Messages of an application: one clear line each, to the message centre. APPLICATION is its name, told by the build.
#pragma once

#include <string>

#include <mchost/mdl/system.h>

namespace app {

// An error that ends the work. The text is Windows-1252; always false, so that `return fail(...)` reads well.
inline bool fail(const std::string& text) {
    mdlOutput_messageCenter(10, (APPLICATION ": " + text).c_str(), "", 0);
    return false;
}
// Something that the user should know of.
inline void warn(const std::string& text) {
    mdlOutput_messageCenter(11, (APPLICATION ": " + text).c_str(), "", 0);
}

}  // namespace app
