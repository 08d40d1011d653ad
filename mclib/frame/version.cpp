// What the library tells of itself.
#include <cstdio>

#include "mchost/mdl/win32.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/text_buffer.h"
#include "resources/ids.h"

namespace mc {

namespace {

constexpr const char* libraryVersion = "6.14";

}  // namespace

}  // namespace mc

using namespace mc;

char* mclibMain_getMclibVersion(void) {
    static char version[messageFormatSize];
    // The text is the format, as the lists hold them.
    snprintf(version, sizeof version, mc::languageText(ids::texts::version), libraryVersion);
    return version;
}

char* mclibMain_getMclibLocation(void) {
    static char location[260];
    location[0] = '\0';
    GetModuleFileNameA(GetModuleHandleA("MCLib.dll"), location, sizeof location);
    return location;
}
