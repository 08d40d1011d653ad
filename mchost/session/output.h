// What reaches the fields of the front end, and what was told last.
#pragma once

#include <cstdarg>
#include <string>

namespace host {

// As mdlOutput_printf.
int printToField(int field, const char* format, va_list arguments);

// The last error of the message centre, brief and details, UTF-8; empty when there was none. Also for one that is told
// elsewhere.
std::string& lastError();

}  // namespace host
