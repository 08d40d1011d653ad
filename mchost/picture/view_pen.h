// Draws elements as a view has them.
#pragma once

#include <unordered_set>
#include <vector>

#include "mchost/mdl/owned.hpp"
#include "mchost/picture/canvas.h"
#include "mchost/view/places.h"
#include "mchost/view/seen.h"
#include "mchost/view/shown_part.h"

namespace host {

// For the elements of one place; the range is in the axes of the view. While it stands the canvas has the clips of that
// place.
class ViewPen {
  public:
    ViewPen(int32_t view, const ShownPlace& shown, const Range3d& range, Canvas& canvas);
    ~ViewPen();
    ViewPen(const ViewPen&) = delete;
    ViewPen& operator=(const ViewPen&) = delete;

    const Transform& intoView() const { return intoView_; }  // from the UOR of the place
    // Without those nodes.
    void draw(const ElementDescr& ed, const std::unordered_set<const ElementDescr*>* without = nullptr);

  private:
    bool isOutline(const ShownClip& clip) const;
    void clipTo(const ShownClip& clip);
    bool isLeftOut(const ElementDescr& node) const;
    MdlLook shownLook(const MSElementBuffer* element, MdlLook look) const;
    void drawLine(const MSElementBuffer* element, const MdlLook& look, std::span<const Point3d> points);
    void drawText(const MSElementBuffer* element, const MdlLook& look);

    int32_t view_;
    const Range3d& range_;
    Canvas& canvas_;
    Seen seen_;
    Transform intoView_;
    double scale_;  // UOR of the active model for one of the place
    MdlPen canvasPen_;
    const std::unordered_set<const ElementDescr*>* without_ = nullptr;
    int outlines_ = 0;                // clips that the canvas has
    std::optional<ShownPart> aside_;  // what is left by those that are looked at from aside
};

}  // namespace host
