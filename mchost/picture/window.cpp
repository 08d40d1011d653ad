// Standard views, and descriptors in the windows of dialogs.
#include <algorithm>
#include <optional>
#include <span>
#include <string>

#include "mchost/base/guard.h"
#include "mchost/dialog/registry.h"
#include "mchost/mdl/dialog.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/view.h"
#include "mchost/model/walk.h"
#include "mchost/picture/sheet.h"
#include "mchost/space/view_map.h"

using namespace host;

namespace {

// What lies far off the window is brought nearer: cairo counts in fixed numbers that would overflow.
double nearby(double value) {
    constexpr double farOff = 1e6;
    return std::clamp(value, -farOff, farOff);
}

constexpr double screenPixelsPerMm = 96 / mmPerInch;

// Draws into the display list of a dialog.
class WindowPen {
  public:
    WindowPen(Dialog& dialog, const ViewMap& map)
        : dialog_(dialog),
          map_(map),
          pixelsPerMm_(dialog.paper().pixelsPerMm > 0 ? dialog.paper().pixelsPerMm : screenPixelsPerMm) {}

    void drawLine(const MSElementBuffer* element, const MdlLook& look, std::span<const Point3d> points) {
        const std::optional<MdlElementLook> shown = shownLook(element, look);
        if (!shown) return;
        const double mmPerMaster = mdlModelRef_getUorPerMaster(look.model) * map_.scale() / pixelsPerMm_;
        ElementLine line{.points = {},
                         .color = shown->color,
                         .filled = look.filled != 0,
                         .width = penWidth(look, mmPerMaster) * pixelsPerMm_,
                         .dashes = dashesOf(look, mmPerMaster),
                         .gray = shown->gray};
        for (double& length : line.dashes) length *= pixelsPerMm_;
        for (const Point3d& p : points) {
            const Point3d at = map_.at(p);
            line.points.insert(line.points.end(), {nearby(at.x), nearby(at.y)});
        }
        dialog_.add(std::move(line));
    }

    void drawText(const MSElementBuffer* element, const MdlLook& look) {
        const std::optional<MdlElementLook> shown = shownLook(element, look);
        if (!shown) return;
        const TextView text = *textOf(element);
        const TextBox box = textBox(text);
        const Point3d at = map_.at(box.lowerLeft);
        const Point3d along = map_.at(box.lowerLeft + box.along) - at, up = map_.at(box.lowerLeft + box.up) - at;
        ElementText drawn{{}, shown->color, at.x, at.y, along.x, along.y, up.x, up.y};
        for (uint32_t i = 0; i < text.body.count; ++i) drawn.text.push_back(static_cast<char>(textCharacter(text, i)));
        dialog_.add(std::move(drawn));
    }

    MdlPen pen() {
        constexpr double tolerance = 0.1;  // pixels: lines are drawn smoothly
        return {.userArg = this,
                .tolerance = tolerance / map_.scale(),
                .transform = nullptr,
                .range = nullptr,
                .skip = nullptr,
                .line =
                    [](void* pen, const MSElementBuffer* element, const MdlLook* look, const Point3d* points,
                       int32_t count) {
                        static_cast<WindowPen*>(pen)->drawLine(element, *look, {points, static_cast<size_t>(count)});
                    },
                .text = [](void* pen, const MSElementBuffer* element,
                           const MdlLook* look) { static_cast<WindowPen*>(pen)->drawText(element, *look); }};
    }

  private:
    // What the window's paper makes of a look; nothing for an element that it leaves out.
    std::optional<MdlElementLook> shownLook(const MSElementBuffer* element, const MdlLook& look) const {
        const MdlPaper& paper = dialog_.paper();
        MdlElementLook shown{look.color, noGray};
        if (paper.look && paper.look(&shown, element, paper.userArg) != 0) return std::nullopt;
        return shown;
    }

    static constexpr double noGray = -1;
    Dialog& dialog_;
    const ViewMap& map_;
    double pixelsPerMm_;
};

}  // namespace

int mdlWindow_setPaper(MdlDialog* window, const MdlPaper* paper) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = dialogOf(window);
        if (!dialog) return MDL_ERROR;
        dialog->setPaper(paper ? *paper : MdlPaper{});
        return MDL_SUCCESS;
    });
}

int mdlElmdscr_displayToWindow(MdlDialog* window, const DialogRect* rect, const ViewFlags*, ElementDescr* ed,
                               const RotMatrix* matrix, const Point3d* origin, const Point3d* extent, int32_t,
                               int32_t) noexcept {
    if (!window || !rect || !ed || !matrix || !origin || !extent) return MDL_ERROR;
    if (rect->right <= rect->left || rect->bottom <= rect->top) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = dialogOf(window);
        const ViewMap map(*rect, *matrix, *origin, *extent);
        if (!dialog || !map.isUsable()) return MDL_ERROR;
        WindowPen pen(*dialog, map);
        walkDescriptor(ed, pen.pen());
        return MDL_SUCCESS;
    });
}
