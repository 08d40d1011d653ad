// Messages of an application: one clear line each, to the message centre.
#pragma once

#include <string>

#include <mchost/mdl/system.h>
#include <mclib/frame/main.h>

namespace mcapp {

// What stands in front of its lines: MCLIB_APPLICATION where the build tells it, as mclib_application() does, or else
// the name that it has registered with.
inline std::string applicationName() {
#ifdef MCLIB_APPLICATION
    return MCLIB_APPLICATION;
#else
    return mclibMain_getApplicationName();
#endif
}

// An error that ends the work. The text is Windows-1252; always false, so that `return fail(...)` reads well.
inline bool fail(const std::string& text) {
    mdlOutput_messageCenter(10, (applicationName() + ": " + text).c_str(), "", 0);
    return false;
}
// Something that the user should know of.
inline void warn(const std::string& text) {
    mdlOutput_messageCenter(11, (applicationName() + ": " + text).c_str(), "", 0);
}

}  // namespace mcapp
