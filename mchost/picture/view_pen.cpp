#include "mchost/picture/view_pen.h"

#include <algorithm>
#include <cmath>

#include "mchost/element/text.h"
#include "mchost/picture/drawing.h"
#include "mchost/space/current.h"

namespace host {
namespace {

// What a level overrides; zeros override nothing.
void applyOverride(MdlLook& look, const LevelOverride& level) {
    if (level.color != 0) look.color = static_cast<int32_t>(level.color);
    if (level.weight != 0) look.weight = static_cast<int32_t>(level.weight);
    if (level.style != 0) look.style = level.style;
}

}  // namespace

ViewPen::ViewPen(int32_t view, const ShownPlace& shown, const Range3d& range, Canvas& canvas)
    : view_(view),
      range_(range),
      canvas_(canvas),
      seen_(view, *openModel(shown.place), attachmentOf(*shown.place)),
      intoView_(transformOf(viewRotation(view)) * toMaster(*shown.place)),
      scale_(length(applyToVector(intoView_, {1, 0, 0}))),
      canvasPen_(canvas.pen()) {
    std::vector<ShownClip> aside;
    for (const ShownClip& clip : shown.clips) {
        if (isOutline(clip))
            clipTo(clip);
        else
            aside.push_back(clip);
    }
    aside_.emplace(aside, transformOf(viewRotation(view)));
}

ViewPen::~ViewPen() {
    for (; outlines_ > 0; --outlines_) canvas_.endClip();
}

// Seen along its own z axis a clip is an outline on the canvas.
bool ViewPen::isOutline(const ShownClip& clip) const {
    const Point3d up = applyToVector(transformOf(viewRotation(view_)) * toMaster(*clip.parent), {0, 0, 1});
    return std::hypot(up.x, up.y) <= 1e-9 * length(up);
}

void ViewPen::clipTo(const ShownClip& clip) {
    const Transform intoView = transformOf(viewRotation(view_)) * toMaster(*clip.parent);
    std::vector<Point3d> outline;
    for (const Point2& p : *clip.outline) outline.push_back(applyToPoint(intoView, {p.x, p.y, 0}));
    canvas_.beginClip(outline);
    ++outlines_;
}

bool ViewPen::isLeftOut(const ElementDescr& node) const {
    return !seen_(node.element->head) || (without_ && without_->contains(&node));
}

MdlLook ViewPen::shownLook(const MSElementBuffer* element, MdlLook look) const {
    const View& view = viewAt(view_);
    const Model* const model = view.shows(MDL_VIEW_LEVEL_SYMBOLOGY) ? openModel(look.model) : nullptr;
    const Level* const level = model ? findLevel(*model, element->head.level) : nullptr;
    if (level) applyOverride(look, level->override);
    look.styleScale *= scale_;
    look.styleWidth *= scale_;
    if (!view.shows(MDL_VIEW_WEIGHTS)) {
        look.weight = 0;
        look.styleWidth = 0;
    }
    if (!view.shows(MDL_VIEW_STYLES)) look.style = 0;
    if (!view.shows(MDL_VIEW_FILLS)) look.filled = 0;
    return look;
}

void ViewPen::drawLine(const MSElementBuffer* element, const MdlLook& look, std::span<const Point3d> points) {
    const auto give = [&](const MdlLook& as, std::span<const Point3d> line) {
        canvasPen_.line(canvasPen_.userArg, element, &as, line.data(), static_cast<int32_t>(line.size()));
    };
    if (aside_->isWhole()) return give(look, points);
    const LinePieces pieces = aside_->piecesOf(points);
    MdlLook left = look;
    if (pieces.size() != 1 || pieces.front().size() != points.size()) left.filled = 0;
    for (const std::vector<Point3d>& piece : pieces) give(left, piece);
}

void ViewPen::drawText(const MSElementBuffer* element, const MdlLook& look) {
    if (aside_->holds(textBox(*textOf(element)).lowerLeft)) canvasPen_.text(canvasPen_.userArg, element, &look);
}

void ViewPen::draw(const ElementDescr& ed, const std::unordered_set<const ElementDescr*>* without) {
    without_ = without;
    const MdlPen pen = {
        .userArg = this,
        .tolerance = canvasPen_.tolerance,
        .transform = unlessIdentity(intoView_),
        .range = &range_,
        .skip = [](void* self, const ElementDescr* node) { return int{static_cast<ViewPen*>(self)->isLeftOut(*node)}; },
        .line =
            [](void* self, const MSElementBuffer* element, const MdlLook* look, const Point3d* points, int32_t count) {
                auto& pen = *static_cast<ViewPen*>(self);
                pen.drawLine(element, pen.shownLook(element, *look), {points, static_cast<size_t>(count)});
            },
        .text =
            [](void* self, const MSElementBuffer* element, const MdlLook* look) {
                auto& pen = *static_cast<ViewPen*>(self);
                pen.drawText(element, pen.shownLook(element, *look));
            },
    };
    walkDescriptor(&ed, pen);
}

}  // namespace host
