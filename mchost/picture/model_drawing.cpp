// The active model as what a pen draws.
#include <array>

#include "mchost/mdl/model.h"
#include "mchost/mdl/scan.h"
#include "mchost/picture/drawing.h"

namespace host {
namespace {

constexpr double farOff = 1e300;

struct CriteriaHolder {
    ScanCriteria* criteria = mdlScanCriteria_create();
    ~CriteriaHolder() {
        if (criteria) mdlScanCriteria_free(&criteria);
    }
};

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
    ElementDescr* ed = nullptr;
    if (mdlElmdscr_read(&ed, position, scene.model) == 0) return;
    const Transform intoView = transformOf(scene.view);
    if (!scene.turned || mdlElmdscr_transform(ed, &intoView) == MDL_SUCCESS)
        draw(ed, &scene.range, scene.tolerance, scene.pen);
    mdlElmdscr_freeAll(&ed);
}

bool isTurned(const RotMatrix& view) {
    return !(column(view, 0) == column(identityMatrix, 0) && column(view, 1) == column(identityMatrix, 1));
}

}  // namespace

bool drawModel(const Range3d& range, const RotMatrix& view, double tolerance, const Pen& pen) {
    const Scene scene{mdlModelRef_getActive(), range, view, isTurned(view), tolerance, pen};
    CriteriaHolder scan;
    if (!scan.criteria) return false;
    const Range3d column = columnBehind(scene);
    mdlScanCriteria_setModel(scan.criteria, scene.model);
    mdlScanCriteria_setRangeTest(scan.criteria, &column);
    mdlScanCriteria_setReturnType(scan.criteria, 1, 0, 0);
    std::array<FilePos, 1024> positions;
    FilePos start = 0;
    for (int status = MDL_SCAN_MORE; status == MDL_SCAN_MORE;) {
        auto words = static_cast<int32_t>(sizeof positions / 2);
        status = mdlScanCriteria_scan(scan.criteria, positions.data(), &words, &start);
        if (status != MDL_SUCCESS && status != MDL_SCAN_MORE) return false;
        for (int32_t i = 0; i < words / 2; ++i) drawAt(positions[static_cast<size_t>(i)], scene);
    }
    return true;
}

}  // namespace host
