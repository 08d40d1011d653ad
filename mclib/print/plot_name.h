// Where plots go. For this folder and for those that plot pages.
#pragma once

#include <string>
#include <string_view>

#include "mchost/mdl/plot.h"
#include "mclib/frame/global_data.h"

namespace mc::print {

// The description of the application's plot; null while there is none.
inline MdlPlotDesc* plotOf(const GlobalData& data) {
    return static_cast<MdlPlotDesc*>(data.plotDescr);
}

// Whether the plotter's plots go to a system printer, and not to files; a null plotter has none.
bool plotsToSystem(const MdlPlotter* plotter);
// The suffix of the plotter's files; empty for none and for a null plotter.
std::string plotterExtension(const MdlPlotter* plotter);
// The file that the plotter names for its plots, with the suffix; empty when it names none, and for a null plotter.
std::string plotterFile(const MdlPlotter* plotter);

// The file of a page's plot: in the folder of MS_PLTFILES, or of MS_TMP when that isn't defined, the open design file's
// name without its extension, "_" and the page's name; then the plotter's extension, with or without its dot, or "000"
// for an empty one. Separators and colons in the page's name become "_".
std::string plotFileName(std::string_view pageName, std::string_view extension);

}  // namespace mc::print
