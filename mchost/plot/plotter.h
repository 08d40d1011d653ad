// The objects behind the handles of mchost/mdl/plot.h.
#pragma once

#include <optional>
#include <vector>

#include "mchost/command/fence.h"
#include "mchost/plot/driver.h"

struct MdlPlotter {
    host::PlotDriver driver;
};

struct MdlPlotDesc {
    MdlPlotter plotter;
    size_t paper;  // of the driver's papers
    std::optional<host::Fence> area;
    int32_t copies = 1;
};

namespace host {

// Plots the area on the paper of the description, into a file or, for an empty path, to where the plotter sends it.
// Null, or what went wrong, as UTF-8.
std::optional<std::string> plot(const MdlPlotDesc& descr, const std::string& path);

// Lets the user choose one of the printers: its path on a server or its name, or nothing when nobody answers or there
// is none to choose.
struct PrinterChoice {
    bool chosen;
    std::string name;
};
std::optional<PrinterChoice> choosePrinter(const std::string& current);

}  // namespace host
