// A print file on its way to the printer, with a message either way.
#pragma once

#include <string>

namespace app {

// `printer` is a port, a network printer or a command (print/delivery.h). The file stays, whatever comes of it. False
// after a message.
bool sendToPrinter(const std::string& file, const std::string& printer, int copies);

}  // namespace app
