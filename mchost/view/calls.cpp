// The calls of mchost/mdl/view.h about views.
#include <array>

#include "mchost/base/guard.h"
#include "mchost/model/attachments.h"
#include "mchost/model/bitmask.h"
#include "mchost/model/model_ref.h"
#include "mchost/session/owned_state.h"
#include "mchost/view/area.h"
#include "mchost/view/seen.h"

namespace host {
namespace {

constexpr int32_t longestSide = 30000;  // pixels
constexpr int32_t allViews = -1;

// clang-format off
constexpr auto standardViews = std::to_array<RotMatrix>({
    {{{ 1,  0, 0}, { 0,  1, 0}, { 0,  0,  1}}},  // top
    {{{ 1,  0, 0}, { 0, -1, 0}, { 0,  0, -1}}},  // bottom
    {{{ 0, -1, 0}, { 0,  0, 1}, {-1,  0,  0}}},  // left
    {{{ 0,  1, 0}, { 0,  0, 1}, { 1,  0,  0}}},  // right
    {{{ 1,  0, 0}, { 0,  0, 1}, { 0, -1,  0}}},  // front
    {{{-1,  0, 0}, { 0,  0, 1}, { 0,  1,  0}}},  // back
});
// clang-format on

// What was last given by mdlView_getLevelDisplayMask.
struct LevelMask {
    MdlBitMask mask;
};

// The status of a body that works on a view.
template <class Body>
int onView(int32_t view, Body body) noexcept {
    if (!isView(view)) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int { return body() ? MDL_SUCCESS : MDL_ERROR; });
}

bool isControl(int32_t control) {
    return control > 0 && control < 32 && (knownControls & bitOf(control)) != 0;
}

}  // namespace
}  // namespace host

using namespace host;

int mdlView_getStandard(RotMatrix* matrix, int32_t view) noexcept {
    if (!matrix || view < 1 || view > static_cast<int32_t>(standardViews.size())) return MDL_ERROR;
    *matrix = standardViews[static_cast<size_t>(view) - 1];
    return MDL_SUCCESS;
}

// ---- where a view looks ----

int mdlView_isOpen(int32_t view) noexcept {
    return isView(view) && viewAt(view).isOpen;
}

int mdlView_setOpen(int32_t view, int32_t open) noexcept {
    return onView(view, [&] {
        viewToChange(view).isOpen = open != 0;
        noteViewChanged(view);
        return true;
    });
}

int mdlRMatrix_fromView(RotMatrix* matrix, int32_t view) noexcept {
    return onView(view, [&] {
        if (matrix) *matrix = viewRotation(view);
        return matrix != nullptr;
    });
}

int mdlView_setRotation(int32_t view, const RotMatrix* rotation) noexcept {
    return onView(view, [&] { return rotation && turnView(view, *rotation); });
}

int mdlView_getArea(Point3d* origin, Point3d* extent, int32_t view) noexcept {
    return onView(view, [&] {
        const View& shown = lookAt(view);
        if (origin) *origin = shown.origin;
        if (extent) *extent = shown.extent;
        return true;
    });
}

int mdlView_setArea(int32_t view, const Point3d* origin, const Point3d* extent) noexcept {
    return onView(view, [&] { return origin && extent && setViewArea(view, *origin, *extent); });
}

int mdlView_setWindow(int32_t view, const Point3d* corner, const Point3d* opposite) noexcept {
    return onView(view, [&] { return corner && opposite && setViewWindow(view, *corner, *opposite); });
}

int mdlView_fit(int32_t view) noexcept {
    return onView(view, [&] { return fitView(view); });
}

int mdlView_zoom(int32_t view, double factor, const Point3d* about) noexcept {
    return onView(view, [&] { return zoomView(view, factor, about ? std::optional(*about) : std::nullopt); });
}

int mdlView_pan(int32_t view, double right, double up) noexcept {
    return onView(view, [&] { return panView(view, right, up); });
}

int mdlView_setCenter(int32_t view, const Point3d* center) noexcept {
    return onView(view, [&] { return center && centerView(view, *center); });
}

// ---- pixels ----

int mdlView_getSize(int32_t* widthP, int32_t* heightP, int32_t view) noexcept {
    return onView(view, [&] {
        if (widthP) *widthP = viewSize(view).width;
        if (heightP) *heightP = viewSize(view).height;
        return true;
    });
}

int mdlView_setSize(int32_t view, int32_t width, int32_t height) noexcept {
    return onView(view, [&] {
        const auto [shorter, longer] = std::minmax(width, height);
        if (shorter < 1 || longer > longestSide) return false;
        viewSize(view) = {width, height};
        return true;
    });
}

double mdlView_getPixelSize(int32_t view) noexcept {
    return isView(view) ? guarded(0.0, [&] { return viewPixelSize(view); }) : 0;
}

int mdlView_pixelFromPoint(double* xP, double* yP, const Point3d* point, int32_t view) noexcept {
    return onView(view, [&] {
        if (!point || !isFinite(*point)) return false;
        const Point3d pixel = viewMap(view).at(*point);
        if (xP) *xP = pixel.x;
        if (yP) *yP = pixel.y;
        return true;
    });
}

int mdlView_pointFromPixel(Point3d* point, double x, double y, int32_t view) noexcept {
    return onView(view, [&] {
        if (!point || !isFinite({x, y, 0})) return false;
        *point = viewMap(view).behind(x, y);
        return true;
    });
}

// ---- what a view shows ----

int mdlView_getDisplayControl(int32_t view, int32_t control) noexcept {
    if (!isView(view) || !isControl(control)) return -1;
    return viewAt(view).shows(control);
}

int mdlView_setDisplayControl(int32_t view, int32_t control, int32_t on) noexcept {
    return onView(view, [&] {
        if (!isControl(control)) return false;
        uint32_t& controls = viewToChange(view).controls;
        controls = on != 0 ? controls | bitOf(control) : controls & ~bitOf(control);
        noteViewChanged(view);
        return true;
    });
}

int mdlView_isLevelOn(int32_t view, ModelRef* model, LevelId level) noexcept {
    const Model* const found = levelModel(model);
    const Level* const its = found && isView(view) ? findLevel(*found, level) : nullptr;
    return its && isLevelOn(view, its->name, openAttachment(model));
}

int mdlView_setLevelOn(int32_t view, ModelRef* model, LevelId level, int32_t on) noexcept {
    return onView(view, [&] {
        const Model* const found = levelModel(model);
        const Level* const switched = found ? findLevel(*found, level) : nullptr;
        if (switched) setLevelOn(view, switched->name, on != 0);
        return switched != nullptr;
    });
}

const MdlBitMask* mdlView_getLevelDisplayMask(ModelRef* model, int32_t view, int32_t) noexcept {
    return guarded<const MdlBitMask*>(nullptr, [&]() -> const MdlBitMask* {
        const Model* const found = levelModel(model);
        if (!found || !isView(view)) return nullptr;
        std::vector<bool>& bits = sessionState<LevelMask>().mask.bits;
        bits.assign(found->nextLevel, false);
        const Attachment* const attachment = openAttachment(model);
        for (const Level& level : found->levels) bits[level.id - 1] = isLevelOn(view, level.name, attachment);
        return &sessionState<LevelMask>().mask;
    });
}

int mdlView_update(int32_t view) noexcept {
    if (view == allViews) {
        guarded(tellViewsChanged);
        return MDL_SUCCESS;
    }
    return onView(view, [&] { return tellViewChanged(view), true; });
}
