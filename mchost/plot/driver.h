// Plot driver files: what a plotter is. Their format stands in mchost/mdl/plot.h.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "mchost/picture/sheet.h"

namespace host {

struct PaperSize {
    std::string name;
    double widthMm, heightMm;
};

// Texts are UTF-8.
struct PlotDriver {
    PictureKind kind = PictureKind::pdf;
    std::string extension = ".pdf";
    double resolution = 300;  // dots in an inch
    std::string outputName, printer;
    std::vector<PaperSize> papers;
    size_t defaultPaper = 0;
    double marginMm = 0;
};

// The paper of that name, in any letter case; its number in the driver, or SIZE_MAX.
size_t findPaper(const PlotDriver& driver, std::string_view name);

// std::runtime_error, with a line that tells the file, the line in it and what to do, when it can't be used.
PlotDriver readPlotDriver(const std::filesystem::path& path);

}  // namespace host
