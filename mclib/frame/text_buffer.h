// Text of fixed size: formatted or copied, always ended and never past its end.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "mchost/mdl/system.h"
#include "mclib/frame/export.h"

namespace mc {

// The finished text of a message and the longest format, with their NUL.
constexpr size_t messageTextSize = 1024;
constexpr size_t messageFormatSize = 512;

// Copies as much of `from` as fits.
template <size_t Size>
void copyText(char (&to)[Size], std::string_view from) {
    const size_t length = from.size() < Size ? from.size() : Size - 1;
    std::memcpy(to, from.data(), length);
    to[length] = '\0';
}

// As much of the formatted text as fits; a format that can't be used gives an empty text.
inline void formatTextV(char* to, size_t size, const char* format, va_list values) {
    if (!format || mdlOutput_formatText(to, size, format, values) < 0) to[0] = '\0';
}

template <size_t Size>
__attribute__((format(printf, 2, 3))) void formatText(char (&to)[Size], const char* format, ...) {
    va_list values;
    va_start(values, format);
    formatTextV(to, Size, format, values);
    va_end(values);
}

}  // namespace mc
