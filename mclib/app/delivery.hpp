// A print file on its way to the printer, with a message either way.
#pragma once

#include <cerrno>
#include <cstring>
#include <string>

#include <mclib/mclib.h>
#include <mclib/app/tell.hpp>

namespace mcapp {

// Why nothing can be sent to a printer of that name; empty when something can.
std::string printerRefusal(const std::string& printer);

// `printer` is a port, a network printer or a command (mclib/print/delivery.h). The file stays, whatever comes of it.
// `shown` names it in messages. False after a message.
bool sendToPrinter(const std::string& file, const std::string& shown, const std::string& printer, int copies);

namespace detail {

// A port, what a variable tells, or a network printer: files are copied there. All else is a command.
inline bool isCopied(const std::string& printer) {
    return (printer.size() == 4 && printer.starts_with("LPT")) || printer.starts_with('$') || printer.starts_with('\\');
}

// Why a printer didn't get a file: a command that failed has been told already.
inline std::string deliveryError(const std::string& printer, int status) {
    if (!isCopied(printer)) return "the command failed";
    if (status != ENXIO) return std::strerror(status);
    return "there is no such printer. It can be a queue of the print system, or a folder of that name below the one "
           "that "
           "MC_SPOOL names";
}

}  // namespace detail

inline std::string printerRefusal(const std::string& printer) {
    if (detail::isCopied(printer) || printer.find("%s") != printer.npos) return {};
    return "--print takes LPT1 to LPT9, \\\\server\\printer, $(VARIABLE), or a command with %s for the file, such as "
           "\"lp -d office %s\"; not \"" +
           printer + "\"";
}

inline bool sendToPrinter(const std::string& file, const std::string& shown, const std::string& printer, int copies) {
    const int status = mclibPrint_sendFileToPrinter(file.c_str(), printer.c_str(), copies);
    if (status != 0)
        return fail(shown + ": not printed by \"" + printer + "\": " + detail::deliveryError(printer, status));
    toolSubsystem_printf("%s: sent %s to %s\n", applicationName().c_str(), shown.c_str(), printer.c_str());
    return true;
}

}  // namespace mcapp
