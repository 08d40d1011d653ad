#include "drawing.h"

#include <algorithm>
#include <cmath>

#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/undo.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/tell.hpp>
#include "arrow.h"
#include "kinds.h"

namespace labels {

namespace {

constexpr int view = 0;

std::vector<Point3d> inUor(const std::vector<Point3d>& points) {
    const double uor = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    std::vector<Point3d> all;
    for (const Point3d& p : points) all.push_back({p.x * uor, p.y * uor, p.z * uor});
    return all;
}

// Which way the text goes on from the end of its leader.
int directionOf(const Style& style, const std::vector<Point3d>& leader) {
    const double last = bearing(leader[leader.size() - 2], leader.back(), view);
    return std::cos(last - style.angle) < 0 ? -1 : 1;
}

bool drawFirst(const Label& label, const Paper& paper) {
    const Style& style = label.style;
    const bool isFixed = style.radius > 0 && hasRadius(style.frame);
    mclibArrow_setCircleSize(isFixed ? style.radius * paper.unitsPerMm() : 0, isFixed);
    const std::vector<Point3d> vertices = inUor(label.leaders.front());
    if (!surroundsText(style.frame)) setTextSide(style.textAttribute, directionOf(style, vertices));
    mclibArrow_initFilePos();
    const int headSize = static_cast<int>(std::lround(style.headSize * sizesPerMm));
    return mclibArrow_drawTextArrow(vertices.data(), static_cast<int>(vertices.size()), style.textAttribute,
                                    style.lineAttribute, style.headAttribute, paper.divisor(), style.angle,
                                    label.text.c_str(), style.cell.c_str(), style.head, headSize, style.frame,
                                    view) == MCLIB_SUCCESS;
}

bool drawOthers(const Label& label, const Paper& paper) {
    if (label.leaders.size() < 2) return true;
    const FilePos position = mclibArrow_getLatestFilePos();
    const mdl::DescrPtr arrow = mdl::readDescr(position, mdlModelRef_getActive());
    if (!arrow) return false;
    const Style& style = label.style;
    const LeaderLook look = {style.lineAttribute, style.headAttribute, style.head, style.headSize * sizesPerMm,
                             paper.divisor()};
    const bool whole = std::all_of(label.leaders.begin() + 1, label.leaders.end(), [&](const auto& leader) {
        return appendLeader(arrow.get(), inUor(leader), look, view);
    });
    mdlCell_setRange(arrow.get(), mdlModelRef_getActive());
    return whole && mdlElmdscr_rewrite(arrow.get(), position) != 0;
}

bool drawOne(const Label& label, const Paper& paper) {
    return (drawFirst(label, paper) && drawOthers(label, paper)) ||
           mcapp::fail(label.origin + ": the label can't be drawn");
}

// Adds what is to be one step, and takes it back when it isn't whole.
class Step {
  public:
    explicit Step(const char* name) : failuresBefore_(failures()) {
        elements_ = mdlModelRef_getElementCount(mdlModelRef_getActive());
        mdlUndo_mark(name);
    }
    bool isWhole() const { return failures() == failuresBefore_; }
    bool takeBack() const {
        return mdlModelRef_getElementCount(mdlModelRef_getActive()) == elements_ || mdlUndo_undo() == MDL_SUCCESS;
    }

  private:
    static int64_t failures() { return mdlSystem_failureNoted() + mdlSystem_memoryFailures(); }

    int64_t failuresBefore_;
    uint32_t elements_ = 0;
};

}  // namespace

bool drawLabels(const LabelFile& file) {
    const Step step("labels");
    const bool drawn = std::ranges::all_of(file.labels, [&](const Label& l) { return drawOne(l, file.paper); });
    if (drawn && step.isWhole()) return true;
    return mcapp::fail(step.takeBack() ? "not all labels could be drawn, so the drawing has none of them"
                                       : "not all labels could be drawn, and the drawing has some of them; take them "
                                         "back with \"undo\"");
}

}  // namespace labels
