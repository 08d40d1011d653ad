// Sheets on their way into the drawing. For the placing and the plotting of this room.
#pragma once

#include <functional>

#include "mclib/forms/page_making.h"

namespace mc::forms {

// A rectangle's corners: lower left, upper left, upper right, lower right, and the first again.
struct Corners {
    Point3d at[5];
};
Corners rectangle(const Point3d& low, const Point3d& high);

// A current transform with the axes of a view and its origin at a point (UOR), for as long as this stands.
class ViewSystem {
  public:
    ViewSystem(const Point3d& origin, int32_t view);
    ~ViewSystem();
    ViewSystem(const ViewSystem&) = delete;
    ViewSystem& operator=(const ViewSystem&) = delete;
};

// Calls `handle` for each sheet that the user asked for, in the current transform with its origin moved to the sheet's
// upper left corner: in rows of pagesPerRow sheets, each row below the one before. A false result ends it.
void forEachSheet(const GlobalData& data, const Point3d& point, int32_t view,
                  const std::function<bool(int32_t page)>& handle);

// A page in the design file.
struct PlacedPage {
    bool made = false;     // false: the application gave no page
    FilePos position = 0;  // 0: it isn't in the design file
    Corners area = {};     // of its printable area, in the current transform
};
// Makes the page, prepares it, fits it into the printable area of the sheet at the origin, and adds it to the design
// file. A page that can't be prepared isn't added.
PlacedPage placePage(GlobalData& data, int32_t page, bool inDrawing, const std::function<bool(Page&)>& prepare);
// False, and the user is told, when a page couldn't be put into the design file.
bool tellUnlessPlaced(const GlobalData& data, int32_t page, const PlacedPage& placed);

// Whether a design file is open. Tells when not.
bool hasDrawing();
// Starts the command that places the pages of printRange at the user's data point: in the drawing, or, with forPlot,
// for the plot that plotPages prepared.
void startPlacing(GlobalData& data, bool forPlot);

}  // namespace mc::forms
