#include "apps/common/delivery.h"

#include <cerrno>
#include <cstring>

#include "apps/common/tell.h"
#include "mclib.h"

namespace app {

namespace {

// Why a printer didn't get a file: a command that failed has been told already.
std::string deliveryError(const std::string& printer, int status) {
    const bool byCopy =
        (printer.size() == 4 && printer.starts_with("LPT")) || printer.starts_with('$') || printer.starts_with('\\');
    if (byCopy && status == ENXIO) return "there is no such printer; docs/commands.md tells how one is made";
    return byCopy ? std::strerror(status) : "a command failed";
}

}  // namespace

bool sendToPrinter(const std::string& name, const std::string& printer, int copies) {
    const int status = mclibPrint_sendFileToPrinter(name.c_str(), printer.c_str(), copies);
    if (status != 0)
        return fail(name + ": the print file is made, but not printed by \"" + printer +
                    "\": " + deliveryError(printer, status));
    toolSubsystem_printf(APPLICATION ": sent %s to %s\n", name.c_str(), printer.c_str());
    return true;
}

}  // namespace app
