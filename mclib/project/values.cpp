// Values in the payload of an application data element: appended and taken one by one.
#include <cstdarg>
#include <cstring>

#include "mchost/mdl/transform.h"
#include "mclib/frame/stored_layout.h"
#include "mclib/project/application_data.h"

namespace mc {

namespace {

constexpr int unknownValue = 1;
constexpr size_t notAValue = SIZE_MAX;

// Writes the value that follows the code; the bytes that it takes, or notAValue.
size_t appendValue(uint8_t* at, int code, va_list& arguments) {
    switch (code) {
        case MCLIB_VALUE_DOUBLE: mdlCnv_doubleToFileFormat(at, va_arg(arguments, double)); return 8;
        case MCLIB_VALUE_STRING: {
            const char* text = va_arg(arguments, const char*);
            const size_t size = std::strlen(text) + 1;
            std::memmove(at, text, size);
            return size;
        }
        case MCLIB_VALUE_BYTE: *at = *va_arg(arguments, const uint8_t*); return 1;
        case MCLIB_VALUE_SHORT: storeNumber(at, *va_arg(arguments, const int16_t*)); return 2;
        case MCLIB_VALUE_BYTES: {
            const void* bytes = va_arg(arguments, const void*);
            const int size = va_arg(arguments, int);
            if (size < 0) return notAValue;
            if (size > 0) std::memmove(at, bytes, static_cast<size_t>(size));
            return static_cast<size_t>(size);
        }
        case MCLIB_VALUE_LONG: storeNumber(at, va_arg(arguments, int32_t)); return 4;
        default: return notAValue;
    }
}

// Reads the value to the place that follows the code.
size_t takeValue(const uint8_t* at, int code, va_list& arguments) {
    switch (code) {
        case MCLIB_VALUE_DOUBLE: *va_arg(arguments, double*) = mdlCnv_doubleFromFileFormat(at); return 8;
        case MCLIB_VALUE_STRING: {
            const size_t size = std::strlen(reinterpret_cast<const char*>(at)) + 1;
            std::memmove(va_arg(arguments, char*), at, size);
            return size;
        }
        case MCLIB_VALUE_BYTE: *va_arg(arguments, uint8_t*) = *at; return 1;
        case MCLIB_VALUE_SHORT: *va_arg(arguments, int16_t*) = loadNumber<int16_t>(at); return 2;
        case MCLIB_VALUE_BYTES: {
            void* bytes = va_arg(arguments, void*);
            const int size = va_arg(arguments, int);
            if (size < 0) return notAValue;
            if (size > 0) std::memmove(bytes, at, static_cast<size_t>(size));
            return static_cast<size_t>(size);
        }
        case MCLIB_VALUE_LONG: *va_arg(arguments, int32_t*) = loadNumber<int32_t>(at); return 4;
        default: return notAValue;
    }
}

int moveBehind(int* offset, size_t size) {
    if (size == notAValue) return unknownValue;
    *offset += static_cast<int>(size);
    return 0;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclib66Elem_convertToFileFormat(void* buffer, int* offset, int code, ...) {
    va_list arguments;
    va_start(arguments, code);
    const int result = moveBehind(offset, appendValue(static_cast<uint8_t*>(buffer) + *offset, code, arguments));
    va_end(arguments);
    return result;
}

int mclib66Elem_convertFromFileFormat(const void* buffer, int* offset, int code, ...) {
    va_list arguments;
    va_start(arguments, code);
    const int result = moveBehind(offset, takeValue(static_cast<const uint8_t*>(buffer) + *offset, code, arguments));
    va_end(arguments);
    return result;
}
