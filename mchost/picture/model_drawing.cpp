// The active model as what a pen draws.
#include <array>

#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/picture/drawing.h"

namespace host {
namespace {

constexpr double farOff = 1e300;

// What to show, in the axes of a view.
struct Scene {
    ModelRef* model;
    const Range3d& range;
    const RotMatrix& view;
    bool turned;
    double tolerance;
    const Pen& pen;
};

Transform transformOf(const RotMatrix& m) {
    Transform t = identityTransform;
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 3; ++i) t.form[row][i] = m.form[row][i];
    return t;
}

// The part of the model that the view shows in the range, however deep it lies.
Range3d columnBehind(const Scene& scene) {
    const Range3d& r = scene.range;
    if (!scene.turned) return {{r.low.x, r.low.y, -farOff}, {r.high.x, r.high.y, farOff}};
    RangeBuilder column;
    for (const double x : {r.low.x, r.high.x})
        for (const double y : {r.low.y, r.high.y})
            for (const double z : {-farOff, farOff}) column.add(unrotate(scene.view, {x, y, z}));
    return column.range();
}

void drawAt(FilePos position, const Scene& scene) {
    const mdl::DescrPtr ed = mdl::readDescr(position, scene.model);
    if (!ed) return;
    const Transform intoView = transformOf(scene.view);
    if (!scene.turned || mdlElmdscr_transform(ed.get(), &intoView) == MDL_SUCCESS)
        draw(ed.get(), &scene.range, scene.tolerance, scene.pen);
}

bool isTurned(const RotMatrix& view) {
    return !(column(view, 0) == column(identityMatrix, 0) && column(view, 1) == column(identityMatrix, 1));
}

}  // namespace

bool drawModel(const Range3d& range, const RotMatrix& view, double tolerance, const Pen& pen) {
    const Scene scene{mdlModelRef_getActive(), range, view, isTurned(view), tolerance, pen};
    const mdl::Scan scan(scene.model);
    if (!scan) return false;
    const Range3d column = columnBehind(scene);
    mdlScanCriteria_setRangeTest(scan.criteria(), &column);
    mdlScanCriteria_setReturnType(scan.criteria(), MDL_SCAN_POSITIONS, 0, 0);
    auto position = scan.begin();
    for (; position != scan.end(); ++position) drawAt(*position, scene);
    return position.isWhole();
}

}  // namespace host
