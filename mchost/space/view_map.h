// How what a view shows lies in a rectangle of pixels.
#pragma once

#include "mchost/space/vector.h"

namespace host {

// From UOR to pixels, y downwards, and back: the largest even scale at which the volume fits the rectangle, in its
// middle. `origin` is the volume's lower left corner, `extent` its size along the axes of `rotation`.
class ViewMap {
  public:
    ViewMap(const DialogRect& rect, const RotMatrix& rotation, const Point3d& origin, const Point3d& extent)
        : rotation_(rotation), origin_(origin) {
        const double width = rect.right - rect.left, height = rect.bottom - rect.top;
        const double x = std::max(extent.x, 0.0), y = std::max(extent.y, 0.0);
        if (x > 0 || y > 0) scale_ = std::min(x > 0 ? width / x : HUGE_VAL, y > 0 ? height / y : HUGE_VAL);
        left_ = rect.left + (width - x * scale_) / 2;
        bottom_ = rect.bottom - (height - y * scale_) / 2;
    }
    double scale() const { return scale_; }  // pixels for a UOR
    bool isUsable() const { return std::isfinite(left_) && std::isfinite(bottom_) && scale_ > 0; }
    Point3d at(const Point3d& p) const {
        const Point3d seen = rotate(rotation_, p - origin_);
        return {left_ + seen.x * scale_, bottom_ - seen.y * scale_, 0};
    }
    // What is there in the plane through the model's origin that the view looks at squarely.
    Point3d behind(double x, double y) const {
        const Point3d corner = rotate(rotation_, origin_);
        return unrotate(rotation_, {corner.x + (x - left_) / scale_, corner.y + (bottom_ - y) / scale_, 0});
    }

  private:
    RotMatrix rotation_;
    Point3d origin_;
    double scale_ = 1, left_, bottom_;
};

}  // namespace host
