// What a view is drawn on: a sheet of paper, a window.
#pragma once

#include <span>

#include "mchost/mdl/walk.h"

namespace host {

class Canvas {
  public:
    virtual ~Canvas() = default;

    // Gets lines and texts in the axes of the view, UOR; its tolerance is in these too.
    virtual MdlPen pen() = 0;
    // What is drawn until the end of the clip is cut off outside of the outline. Clips may lie in each other.
    virtual void beginClip(std::span<const Point3d> outline) = 0;
    virtual void endClip() = 0;
    // From now on all is drawn so that it stands out, or as it looks.
    virtual void highlight(bool on) = 0;
};

}  // namespace host
