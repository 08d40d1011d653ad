// A print file on its way to the printer, with a message either way.
#pragma once

#include <string>

namespace app {

// Why nothing can be sent to a printer of that name; empty when something can.
std::string printerRefusal(const std::string& printer);

// `printer` is a port, a network printer or a command (mclib/print/delivery.h). The file stays, whatever comes of it.
// `shown` names it in messages. False after a message.
bool sendToPrinter(const std::string& file, const std::string& shown, const std::string& printer, int copies);

}  // namespace app
