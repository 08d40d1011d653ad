// Descriptors as a whole: range, fitting and drawing.
#include "mclib/geometry/elmdscr.h"

#include <algorithm>
#include <cmath>

#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/view.h"

namespace mc {

namespace {

constexpr double leastExtent = 0.001;  // below this an extent counts as nothing ...
constexpr double nothing = 0.0001;     // ... which is taken as this
constexpr double emptyBoxExtent = 1.0;
constexpr ViewFlags usualViewFlags = {{0x0001208C, 0, 0}};
constexpr double depth = 4294967295.0;  // of the volume shown: everything

double extentOf(double low, double high) {
    const double extent = high - low;
    return std::abs(extent) < leastExtent ? nothing : extent;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibElemDscr_getRange(Point3d* range, const ElementDescr* ed) {
    return mdlElmdscr_computeRange(&range[0], &range[1], ed, nullptr);
}

int mclibElemDscr_placeElementDescr(Point3d* box, int translate, ElementDescr* ed) {
    mdlElmdscr_validate(ed, mdlModelRef_getActive());
    Point3d range[2];
    if (mclibElemDscr_getRange(range, ed) != MDL_SUCCESS) return MCLIB_SUCCESS;
    const double dx = extentOf(range[0].x, range[1].x);
    const double dy = extentOf(range[0].y, range[1].y);
    if (box[0].x == box[2].x) box[2].x = box[0].x + emptyBoxExtent;
    if (box[0].y == box[2].y) box[2].y = box[0].y + emptyBoxExtent;
    const double width = box[2].x - box[0].x;
    const double height = box[2].y - box[0].y;
    const double scale = std::min(width / dx, height / dy);
    const Point3d origin = {box[0].x + (width - scale * dx) / 2 - scale * range[0].x,
                            box[0].y + (height - scale * dy) / 2 - scale * range[0].y, box[0].z};

    const mdl::CurrTransScope scaled(mdl::CurrTransScope::Begin::uor);
    if (!scaled) return MCLIB_ERROR;
    mdlCurrTrans_scale(scale, scale, scale);
    if (translate != 0) mdlCurrTrans_translateOriginWorld(&origin);
    const Transform* toWorld = nullptr;
    mdlCurrTrans_getAddresses(&toWorld, nullptr);
    return mdlElmdscr_transform(ed, toWorld);
}

int mclibElemDscr_drawElementDescr(MdlDialog* window, const DialogRect* rect, ElementDescr* ed,
                                   const uint32_t* viewFlags, int lastArg) {
    constexpr int topView = 1;
    Point3d range[2];
    if (mclibElemDscr_getRange(range, ed) != MDL_SUCCESS) return MCLIB_ERROR;
    RotMatrix matrix;
    mdlView_getStandard(&matrix, topView);
    mdlRMatrix_multiplyRange(&range[0], &range[1], &matrix);
    ViewFlags flags = usualViewFlags;
    if (viewFlags) std::copy_n(viewFlags, 3, flags.words);
    const Point3d extent = {range[1].x - range[0].x, range[1].y - range[0].y, depth};
    mdlRMatrix_unrotatePoint(&range[0], &matrix);
    return mdlElmdscr_displayToWindow(window, rect, &flags, ed, &matrix, &range[0], &extent, *mgds_modesP, lastArg);
}
