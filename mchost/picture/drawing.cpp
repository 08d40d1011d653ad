#include "mchost/picture/drawing.h"

#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"

namespace host {
namespace {

constexpr double farOff = 1e300;

Transform transformOf(const RotMatrix& m) {
    Transform t = identityTransform;
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 3; ++i) t.form[row][i] = m.form[row][i];
    return t;
}

bool isTurned(const RotMatrix& view) {
    return !(column(view, 0) == column(identityMatrix, 0) && column(view, 1) == column(identityMatrix, 1));
}

// The part of the model that the view shows in the range, however deep it lies.
Range3d columnBehind(const Range3d& r, const RotMatrix& view) {
    if (!isTurned(view)) return {{r.low.x, r.low.y, -farOff}, {r.high.x, r.high.y, farOff}};
    RangeBuilder column;
    for (const double x : {r.low.x, r.high.x})
        for (const double y : {r.low.y, r.high.y})
            for (const double z : {-farOff, farOff}) column.add(unrotate(view, {x, y, z}));
    return column.range();
}

}  // namespace

bool drawModel(const Range3d& range, const RotMatrix& view, MdlPen pen) {
    ModelRef* const model = mdlModelRef_getActive();
    const mdl::Scan scan(model);
    if (!scan) return false;
    const Range3d column = columnBehind(range, view);
    mdlScanCriteria_setRangeTest(scan.criteria(), &column);
    mdlScanCriteria_setReturnType(scan.criteria(), MDL_SCAN_POSITIONS, 0, 0);
    const Transform intoView = transformOf(view);
    pen.transform = isTurned(view) ? &intoView : nullptr;
    pen.range = &range;
    auto position = scan.begin();
    for (; position != scan.end(); ++position) walkDescriptor(mdl::readDescr(*position, model).get(), pen);
    return position.isWhole();
}

}  // namespace host
