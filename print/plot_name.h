// Names of plot files. For this folder and for those that plot pages.
#pragma once

#include <string>
#include <string_view>

namespace print {

// The file of a page's plot: in the folder of MS_PLTFILES, or of MS_TMP when that isn't defined, the open design file's
// name without its extension, "_" and the page's name; then the plotter's extension, with or without its dot, or "000"
// for an empty one. Separators and colons in the page's name become "_".
std::string plotFileName(std::string_view pageName, std::string_view extension);

}  // namespace print
