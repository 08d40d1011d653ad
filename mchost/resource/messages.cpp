// Strings of string lists as formats.
#include <cstdarg>
#include <cstddef>

#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/session/output.h"

namespace {

constexpr size_t stringSize = 512;  // of a string of a string list

}  // namespace

int mdlOutput_rscPrintf(int field, RscHandle rscFile, int32_t listId, int32_t messageId, ...) noexcept {
    char format[stringSize];
    if (mdlResource_loadFromStringList(format, rscFile, listId, messageId) != MDL_SUCCESS) return MDL_ERROR;
    va_list arguments;
    va_start(arguments, messageId);
    const int status = host::printToField(field, format, arguments);
    va_end(arguments);
    return status;
}

int mdlOutput_rscsPrintf(char* buffer, RscHandle rscFile, int32_t listId, int32_t messageId, ...) noexcept {
    char format[stringSize];
    if (!buffer || mdlResource_loadFromStringList(format, rscFile, listId, messageId) != MDL_SUCCESS) return MDL_ERROR;
    va_list arguments;
    va_start(arguments, messageId);
    mdlOutput_formatText(buffer, stringSize, format, arguments);
    va_end(arguments);
    return MDL_SUCCESS;
}
