#include "mchost/printing/copy_to.h"

#include <cerrno>
#include <optional>
#include <string>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/files/copy.h"
#include "mchost/mdl/files.h"
#include "mchost/printing/printers.h"

namespace host {

int copyTo(std::string_view destination, std::string_view source) {
    const std::string from = systemPath(source);
    if (const std::optional<PrintTarget> target = printTargetOf(destination)) return printFile(from, *target);
    if (destination.starts_with("\\\\")) return ENOENT;  // on a server, and no printer
    return copyFile(systemPath(destination), from);
}

}  // namespace host

int mdlFile_copy(const char* destination, const char* source) noexcept {
    return host::guarded<int>(EIO, [&]() -> int {
        if (!destination || !source || destination[0] == '\0') return EINVAL;
        return host::copyTo(destination, source);
    });
}
