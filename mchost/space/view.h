// The eight views of a drawing, 0 to 7: from where each looks, at how much, and what of it is to be seen. They are the
// views of the design file that is open, which keeps them; while none is open they are the session's own.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <string>

#include "mchost/mdl/view.h"
#include "mchost/space/vector.h"

namespace host {

constexpr int32_t viewCount = 8;
constexpr bool isView(int32_t view) {
    return view >= 0 && view < viewCount;
}

// The bit of a display control (MDL_VIEW_...), and those that are on in a new view.
constexpr uint32_t bitOf(int32_t control) {
    return uint32_t{1} << control;
}
constexpr uint32_t usualControls = bitOf(MDL_VIEW_CONSTRUCTIONS) | bitOf(MDL_VIEW_DIMENSIONS) | bitOf(MDL_VIEW_TEXTS) |
                                   bitOf(MDL_VIEW_FILLS) | bitOf(MDL_VIEW_WEIGHTS) | bitOf(MDL_VIEW_STYLES) |
                                   bitOf(MDL_VIEW_REFERENCES);
constexpr uint32_t knownControls = usualControls | bitOf(MDL_VIEW_LEVEL_SYMBOLOGY);

using LevelNames = std::set<std::wstring, std::less<>>;

struct View {
    bool isOpen = false;
    RotMatrix rotation = identityMatrix;  // from the axes of the model to those of the view; the rows are these
    Point3d origin = {};                  // lower left corner of what it shows, at the back; UOR
    Point3d extent = {};                  // along its own axes, UOR; zeros: it is fitted when somebody first looks
    uint32_t controls = usualControls;
    LevelNames levelsOff = {};  // by name, so that they are off in attached models too

    bool isFitted() const { return extent.x > 0 && extent.y > 0; }
    bool shows(int32_t control) const { return (controls & bitOf(control)) != 0; }
};

struct ViewTable {
    std::array<View, viewCount> views = {};
    bool differ = false;   // from what the file holds
    bool changed = false;  // by somebody, so that the file is to hold them: being fitted at the first look isn't that

    ViewTable() { views[0].isOpen = true; }
};

ViewTable& viewTable();
// Both of a number that is a view.
inline const View& viewAt(int32_t view) {
    return viewTable().views[static_cast<size_t>(view)];
}
View& viewToChange(int32_t view);
// The view is to be kept as it is now, and the front end shows it anew.
void noteViewChanged(int32_t view);
// The front end shows it anew; all that are open.
void tellViewChanged(int32_t view);
void tellViewsChanged();

// From the axes of the model to those of the view; the identity for what isn't a view.
const RotMatrix& viewRotation(int32_t view);

// What whoever shows a view has for it, in pixels; a window tells its own.
struct ViewSize {
    int32_t width = 800, height = 600;
};
ViewSize& viewSize(int32_t view);

}  // namespace host
