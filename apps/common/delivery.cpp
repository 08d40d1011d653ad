#include "apps/common/delivery.h"

#include <cerrno>
#include <cstring>

#include <mclib/mclib.h>
#include "apps/common/tell.h"

namespace app {

namespace {

// A port, what a variable tells, or a network printer: files are copied there. All else is a command.
bool isCopied(const std::string& printer) {
    return (printer.size() == 4 && printer.starts_with("LPT")) || printer.starts_with('$') || printer.starts_with('\\');
}

// Why a printer didn't get a file: a command that failed has been told already.
std::string deliveryError(const std::string& printer, int status) {
    if (!isCopied(printer)) return "the command failed";
    if (status != ENXIO) return std::strerror(status);
    return "there is no such printer. It can be a queue of the print system, or a folder of that name below the one "
           "that "
           "MC_SPOOL names";
}

}  // namespace

std::string printerRefusal(const std::string& printer) {
    if (isCopied(printer) || printer.find("%s") != printer.npos) return {};
    return "--print takes LPT1 to LPT9, \\\\server\\printer, $(VARIABLE), or a command with %s for the file, such as "
           "\"lp -d office %s\"; not \"" +
           printer + "\"";
}

bool sendToPrinter(const std::string& file, const std::string& shown, const std::string& printer, int copies) {
    const int status = mclibPrint_sendFileToPrinter(file.c_str(), printer.c_str(), copies);
    if (status != 0) return fail(shown + ": not printed by \"" + printer + "\": " + deliveryError(printer, status));
    toolSubsystem_printf(APPLICATION ": sent %s to %s\n", shown.c_str(), printer.c_str());
    return true;
}

}  // namespace app
