// Copies to files and printers alike.
#pragma once

#include <string_view>

#include "mchost/base/export.h"

namespace host {

// Copies to any destination of mdlFile_copy.
HOST_EXPORT int copyTo(std::string_view destination, std::string_view source);

}  // namespace host
