#include "mclib/forms/sheet.h"

#include <cmath>

#include "mclib/geometry/elmdscr.h"

namespace mc::forms {

PrintableArea printableArea() {
    const mclibPrinterSetupData& p = *mclibpsd;
    return {p.pageWidth - p.marginLeft - p.marginRight, p.pageHeight - p.marginTop - p.marginBottom};
}

// A page whose aspect is exactly 1 is turned on every sheet.
bool isTurned(const ElementDescr* page) {
    if (mclibpsd->orientation != orientationByShape) return mclibpsd->orientation == orientationTurned;
    Point3d range[2];
    if (!page || mclibElemDscr_getRange(range, page) != MDL_SUCCESS) return false;
    const double pageAspect = std::fabs((range[1].y - range[0].y) / (range[1].x - range[0].x));
    const double sheetAspect = std::fabs(mclibpsd->pageHeight / mclibpsd->pageWidth);
    if (pageAspect > 1) return !(sheetAspect > 1);
    if (pageAspect < 1) return !(sheetAspect < 1);
    return pageAspect == 1;  // a page without extent has none
}

}  // namespace mc::forms
