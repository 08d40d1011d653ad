#include "mchost/picture/drawing.h"

#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/model/model_ref.h"
#include "mchost/space/current.h"

namespace host {
namespace {

// The part of the model that is seen in the range, however deep it lies.
std::optional<Range3d> columnBehind(const Range3d& range, const Transform& intoView, Model& model) {
    Transform intoModel;
    if (!invert(intoView, intoModel)) return std::nullopt;
    const Range3d seen = rangeThrough(intoView, rangesOf(model).bounds());
    return rangeThrough(intoModel, {{range.low.x, range.low.y, seen.low.z}, {range.high.x, range.high.y, seen.high.z}});
}

}  // namespace

Transform transformOf(const RotMatrix& rotation) {
    Transform transform;
    mdlTMatrix_fromRMatrix(&transform, &rotation);
    return transform;
}

const Transform* unlessIdentity(const Transform& t) {
    bool same = true;
    for (int row = 0; row < 3; ++row) same = same && std::ranges::equal(t.form[row], identityTransform.form[row]);
    return same ? nullptr : &t;
}

bool forEachInView(ModelRef* place, const Transform& intoView, const Range3d& range,
                   const std::function<void(FilePos)>& visit) {
    Model* const model = openModel(place);
    const mdl::Scan scan(openPlace(place));
    if (!model || !scan) return false;
    const std::optional<Range3d> column = columnBehind(range, intoView, *model);
    if (!column) return true;
    if (mdlScanCriteria_setRangeTest(scan.criteria(), &*column) != MDL_SUCCESS) return false;
    mdlScanCriteria_setReturnType(scan.criteria(), MDL_SCAN_POSITIONS, 0, 0);
    auto position = scan.begin();
    for (; position != scan.end(); ++position) visit(*position);
    return position.isWhole();
}

bool drawModel(const Range3d& range, const RotMatrix& view, MdlPen pen) {
    ModelRef* const model = mdlModelRef_getActive();
    const Transform intoView = transformOf(view);
    pen.transform = unlessIdentity(intoView);
    pen.range = &range;
    return model && forEachInView(model, intoView, range, [&](FilePos position) {
               walkDescriptor(mdl::readDescr(position, model).get(), pen);
           });
}

}  // namespace host
