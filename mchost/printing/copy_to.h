// Copies to files and printers alike.
#pragma once

#include <string_view>

namespace host {

// Copies to any destination of mdlFile_copy.
int copyTo(std::string_view destination, std::string_view source);

}  // namespace host
