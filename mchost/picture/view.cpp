// The picture of a view.
#include "mchost/picture/view.h"

#include <cmath>
#include <stdexcept>
#include <unordered_set>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/words.h"
#include "mchost/command/overlay.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/view.h"
#include "mchost/picture/drawing.h"
#include "mchost/picture/picture.h"
#include "mchost/picture/view_pen.h"
#include "mchost/session/keyin.h"
#include "mchost/view/area.h"
#include "mchost/view/keyin.h"

namespace host {
namespace {

constexpr double pixelsPerInch = 96;

// The nodes of an element that are erased, with all below them.
class ErasedNodes {
  public:
    ErasedNodes(const ElementDescr& ed, FilePos position) : position_(position) { add(ed, false); }
    const std::unordered_set<const ElementDescr*>& nodes() const { return nodes_; }

  private:
    void add(const ElementDescr& node, bool above) {
        const bool erased = above || overlay().isErased(position_, number_++);
        if (erased) nodes_.insert(&node);
        for (const ElementDescr* child = node.firstChild; child; child = child->next) add(*child, erased);
    }

    FilePos position_;
    uint32_t number_ = 0;
    std::unordered_set<const ElementDescr*> nodes_;
};

class ViewDrawing {
  public:
    ViewDrawing(int32_t view, const Range3d& range, Canvas& canvas) : view_(view), range_(range), canvas_(canvas) {}

    // False when a model can't be read.
    bool drawModels() {
        for (const ShownPlace& shown : shownPlaces(view_)) {
            ViewPen pen(view_, shown, range_, canvas_);
            const bool drawn = forEachInView(shown.place, pen.intoView(), range_,
                                             [&](FilePos position) { drawElement(position, shown, pen); });
            if (!drawn) return false;
        }
        return true;
    }

    bool draw() {
        commands_ = true;
        if (!drawModels()) return false;
        drawOver();
        return true;
    }

  private:
    void drawElement(FilePos position, const ShownPlace& shown, ViewPen& pen) {
        const mdl::DescrPtr ed = mdl::readDescr(position, shown.place);
        if (!ed) return;
        if (shown.place->parent || !commands_) return pen.draw(*ed);
        if (isHighlighted(position)) highlighted_.push_back(position);
        if (overlay().erased.empty()) return pen.draw(*ed);
        const ErasedNodes erased(*ed, position);
        pen.draw(*ed, &erased.nodes());
    }

    // What commands show over the active model.
    void drawOver() {
        ModelRef* const active = openPlace(nullptr);
        if (!active) return;
        const ShownPlace shown{active, {}};
        ViewPen pen(view_, shown, range_, canvas_);
        canvas_.highlight(true);
        for (const FilePos position : highlighted_) {
            const mdl::DescrPtr ed = mdl::readDescr(position, active);
            if (!ed) continue;
            const ErasedNodes erased(*ed, position);
            pen.draw(*ed, &erased.nodes());
        }
        for (const Overdrawn& drawn : overlay().drawn) {
            canvas_.highlight(drawn.highlighted);
            pen.draw(*drawn.ed);
        }
        canvas_.highlight(false);
        for (const mdl::DescrPtr& moving : overlay().dynamics) pen.draw(*moving);
    }

    int32_t view_;
    const Range3d& range_;
    Canvas& canvas_;
    bool commands_ = false;  // what they show counts
    std::vector<FilePos> highlighted_;
};

int writeView(const std::string& path, int32_t view, const ViewSize& size) {
    constexpr double lessThanAPixel = 1e-6;  // so that errors of reckoning don't make one more
    const Range3d range = rangeOn(view, size);
    const PictureFrame frame{range, (size.width - lessThanAPixel) / pixelsPerInch * mmPerInch, pixelsPerInch};
    return writePicture(path, frame,
                        [&](Sheet& sheet) { return drawView(view, range, sheet) ? nullptr : "a model can't be read"; });
}

// ---- the key-in ----

constexpr std::string_view help =
    "  picture view N [FILE.png]: makes a picture of view N, \"viewN.png\" when no file is named\n";

void carryOut(std::string_view line) {
    const size_t blank = std::min(line.find(' '), line.size());
    const int32_t view = viewNamed(line.substr(0, blank));
    const std::string_view named = trimmed(line.substr(blank));
    const std::string name = named.empty() ? "view" + std::to_string(view + 1) + ".png" : std::string(named);
    if (mdlPicture_writeView(name.c_str(), view, 0, 0) == MDL_SUCCESS)
        toolSubsystem_printf("made %s\n", name.c_str());
    else
        mdlSystem_noteFailure();
}

[[maybe_unused]] const bool added = addHostWord({"picture view", help, carryOut});

}  // namespace

Range3d rangeOn(int32_t view, const ViewSize& size) {
    const Range3d area = shownRange(lookAt(view));
    const Point3d middle = (area.low + area.high) * 0.5, extent = area.high - area.low;
    const double pixel = std::max(extent.x / size.width, extent.y / size.height);
    const Point3d half{pixel * size.width / 2, pixel * size.height / 2, 0};
    return {middle - half, middle + half};
}

bool drawView(int32_t view, const Range3d& range, Canvas& canvas) {
    return ViewDrawing(view, range, canvas).draw();
}

bool drawModels(int32_t view, const Range3d& range, Canvas& canvas) {
    return ViewDrawing(view, range, canvas).drawModels();
}

}  // namespace host

using namespace host;

int mdlPicture_writeView(const char* fileName, int32_t view, int32_t width, int32_t height) noexcept {
    if (!fileName || !isView(view) || width < 0 || height < 0 || (width == 0) != (height == 0)) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&] {
        const ViewSize size = width == 0 ? viewSize(view) : ViewSize{width, height};
        return writeView(systemPath(fileName), view, size);
    });
}
