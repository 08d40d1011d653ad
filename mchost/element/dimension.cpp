// Dimensions, as the elements that show them.
#include <memory>
#include <string>

#include "mchost/base/guard.h"
#include "mchost/base/number_format.h"
#include "mchost/element/build.h"
#include "mchost/element/compound.h"
#include "mchost/element/text.h"
#include "mchost/mdl/compound.h"
#include "mchost/session/drawing.h"

namespace host {
namespace {

constexpr int32_t centredOverBase = 8;  // the justification of the text
// In heights of the text.
constexpr double arrowLength = 1, arrowWidth = 0.35, overshoot = 0.5, textGap = 0.4;

// What is measured, in the current system.
struct Measured {
    Point3d from, to;  // on the dimension line
    Point3d along;     // of length 1
    Point3d up;        // of length 1, to the left of `along`
    double offset;     // of the dimension line from the points, along `up`
    double height;     // of the text
};

std::optional<Measured> measuredOf(const Point3d* ends, const Point3d& through, double height) {
    const Point3d across{ends[1].x - ends[0].x, ends[1].y - ends[0].y, 0};
    const double l = length(across);
    if (!(l > 0) || !isFinite(across) || !isFinite(ends[0]) || !isFinite(through)) return {};
    const Point3d along = across * (1 / l), up{-along.y, along.x, 0};
    const double offset = dot(through - ends[0], up);
    const Point3d from = ends[0] + up * offset;
    return Measured{from, from + across, along, up, offset, height};
}

class Builder {
  public:
    Builder(const MSElementBuffer* templateP, const Measured& measured) : template_(templateP), m_(measured) {}

    bool build(NewParts& parts, const wchar_t* text, const TextSize& size) {
        const double side = m_.offset < 0 ? -1 : 1;
        const Point3d beyond = m_.up * (side * overshoot * m_.height);
        const Point3d foot = m_.up * -m_.offset;
        return addLine(parts, m_.from + foot, m_.from + beyond) && addLine(parts, m_.to + foot, m_.to + beyond) &&
               addLine(parts, m_.from, m_.to) && addArrow(parts, m_.from, m_.along) &&
               addArrow(parts, m_.to, -m_.along) && addText(parts, text, size);
    }

  private:
    bool addLine(NewParts& parts, const Point3d& a, const Point3d& b) {
        const Point3d points[] = {a, b};
        return mdlLine_create(scratch_.get(), template_, points) == MDL_SUCCESS && parts.add(scratch_.get());
    }
    bool addArrow(NewParts& parts, const Point3d& tip, const Point3d& inwards) {
        const Point3d foot = tip + inwards * (arrowLength * m_.height), aside = m_.up * (arrowWidth / 2 * m_.height);
        const Point3d corners[] = {tip, foot + aside, foot - aside};
        return mdlShape_create(scratch_.get(), template_, corners, 3, 1) == MDL_SUCCESS && parts.add(scratch_.get());
    }
    // Upside down it would read from above, so it is turned round.
    bool addText(NewParts& parts, const wchar_t* text, const TextSize& size) {
        constexpr double slack = 1e-9;
        const bool reads = m_.along.x > slack || (m_.along.x > -slack && m_.along.y > 0);
        const Point3d x = reads ? m_.along : -m_.along, y = reads ? m_.up : -m_.up;
        const RotMatrix rotation = fromColumns(x, y, {0, 0, 1});
        const Point3d origin = (m_.from + m_.to) * 0.5 + y * (textGap * m_.height);
        const TextParams params{-1, centredOverBase, -1, -1, 0, 0, 0};
        return mdlText_createWide(scratch_.get(), template_, text, &origin, &rotation, &size, &params, 0) ==
                   MDL_SUCCESS &&
               parts.add(scratch_.get());
    }

    const MSElementBuffer* template_;
    const Measured& m_;
    std::unique_ptr<MSElementBuffer> scratch_ = std::make_unique_for_overwrite<MSElementBuffer>();
};

std::wstring distanceText(const Point3d* ends) {
    constexpr double decimals = 1000;
    const double uor = distance(applyToPoint(currentToWorld(), ends[0]), applyToPoint(currentToWorld(), ends[1]));
    const double units = uor / drawing().getUorPerMaster(nullptr);
    const std::string text = shortestNumber(std::round(units * decimals) / decimals);
    return {text.begin(), text.end()};
}

// The active size in the current system.
TextSize activeSize() {
    const double size = length(applyToVector(currentFromWorld(), {activeTextSize(), 0, 0}));
    return {1, size, size, 1};
}

}  // namespace
}  // namespace host

using namespace host;

int mdlDimension_create(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* ends,
                        const Point3d* through, const wchar_t* text, const TextSize* size) noexcept {
    if (!out || !ends || !through) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const TextSize measure = size && size->mode == 1 ? *size : activeSize();
        const auto measured = measuredOf(ends, *through, measure.height);
        NewParts parts;
        const std::wstring shown = text ? text : distanceText(ends);
        if (!measured || !Builder(templateP, *measured).build(parts, shown.c_str(), measure)) return MDL_ERROR;
        return parts.store(out, templateP, MDL_DIMENSION);
    });
}
