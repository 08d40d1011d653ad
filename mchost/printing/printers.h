// Printers: spool folders and the queues of the print system.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A place that a print file can be copied to.
struct PrintTarget {
    int port = 0;                 // 1 to 9 for LPT1 to LPT9, 0 for a printer on a server
    std::string server, printer;  // UTF-8
};

// The port or network printer that a destination names; nothing for the name of a file.
std::optional<PrintTarget> printTargetOf(std::string_view destination);

// Hands the file (a path of the system) over as a print job. 0, or the system's error number: ENXIO when there is no
// such printer, EIO when the print system refuses the job.
int printFile(const std::string& path, const PrintTarget& target);

// Texts are UTF-8; those that aren't known are empty.
struct Printer {
    std::string server, name, share, port;
};

// Those of the spool folder, then the queues of the print system, each in order of name.
std::vector<Printer> printers();

// The queues that `lpstat -v` tells ("device for sheet: ipp://server/printers/sheet").
std::vector<Printer> queuesIn(std::string_view deviceLines);

}  // namespace host
