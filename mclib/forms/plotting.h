// The plot of pages through the host.
#pragma once

#include "mclib/frame/global_data.h"

namespace mc::forms {

// Plots the pages of printRange: asks in the print dialog, and starts the placing.
void plotPages(GlobalData& data);
// The plot of the pages that lie at the point while it runs. Ends with the plot's description.
void plotAt(GlobalData& data, const Point3d& point, int32_t view);
// Lets go of the description of a plot that hasn't run.
void dropPlot(GlobalData& data);

}  // namespace mc::forms
