// What reaches the fields of the front end.
#pragma once

#include <cstdarg>

namespace host {

// As mdlOutput_printf.
int printToField(int field, const char* format, va_list arguments);

}  // namespace host
