// Criteria of scans, and the filter of level and look.
#include "mclib/design/criteria.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "mchost/mdl/element.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/errors.h"

namespace mc::design {

namespace {

constexpr int32_t none = 0;
struct GroupTypes {
    ElementGroup group;
    std::array<int32_t, 3> types;
};
constexpr GroupTypes groupTypes[] = {
    {ElementGroup::lines, {MDL_LINE, MDL_COMPOUND, none}},
    {ElementGroup::circles, {MDL_ELLIPSE, MDL_ARC, MDL_COMPOUND}},
    {ElementGroup::rectangles, {MDL_SHAPE, MDL_COMPOUND, none}},
    {ElementGroup::texts, {MDL_TEXT, none, none}},
};

bool addTypes(ScanCriteria* criteria, ElementGroup group) {
    const auto* row = std::ranges::find(groupTypes, group, &GroupTypes::group);
    return row != std::end(groupTypes) && std::ranges::all_of(row->types, [&](int32_t type) {
               return type == none || mdlScanCriteria_addSingleElementTypeTest(criteria, type) == MDL_SUCCESS;
           });
}

bool isFinite(const Point3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

struct Span {
    double low, high;
};
Span wholeUor(double a, double b) {
    const auto [low, high] = std::minmax({std::trunc(a), std::trunc(b)});
    return {low, high};
}

}  // namespace

bool ElementFilter::accepts(const MSElementBuffer& element) const {
    uint32_t level = 0, itsColor = 0, itsWeight = 0;
    int32_t itsStyle = 0;
    if (levels) {
        mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &element);
        if (!mdlBitMask_testBit(levels, level - 1)) return false;
    }
    if (color < 0 && weight < 0 && style < 0) return true;
    if (mdlElement_getSymbology(&itsColor, &itsWeight, &itsStyle, &element) != MDL_SUCCESS) return false;
    return (color < 0 || static_cast<uint32_t>(color) == itsColor) &&
           (weight < 0 || static_cast<uint32_t>(weight) == itsWeight) && (style < 0 || style == itsStyle);
}

bool prepareScan(const mdl::Scan& scan, ElementGroup group, const MdlBitMask* levels, bool inBox, const Point3d& low,
                 const Point3d& high) {
    ScanCriteria* const criteria = scan.criteria();
    return criteria && mdlScanCriteria_setModel(criteria, mdlModelRef_getActive()) == MDL_SUCCESS &&
           mdlScanCriteria_setRangeTest(criteria, nullptr) == MDL_SUCCESS &&
           (!inBox || setBox(criteria, low, high, Depth::all)) && addTypes(criteria, group) &&
           (!levels || mdlScanCriteria_setLevelTest(criteria, levels, 1, 0) == MDL_SUCCESS) &&
           mdlScanCriteria_setReturnType(criteria, MDL_SCAN_POSITIONS, 1, 0) == MDL_SUCCESS;
}

bool setBox(ScanCriteria* criteria, const Point3d& low, const Point3d& high, Depth depth) {
    Point3d corners[] = {low, high};
    if (depth == Depth::all) corners[0].z = corners[1].z = 0;
    if (mdlCurrTrans_transformPointArray(corners, corners, 2) != MDL_SUCCESS) return false;
    if (!isFinite(corners[0]) || !isFinite(corners[1])) return false;
    const Span x = wholeUor(corners[0].x, corners[1].x), y = wholeUor(corners[0].y, corners[1].y);
    const Span z = depth == Depth::all ? Span{INT32_MIN, INT32_MAX} : wholeUor(corners[0].z, corners[1].z);
    const Range3d box = {{x.low, y.low, z.low}, {x.high, y.high, z.high}};
    return mdlScanCriteria_setRangeTest(criteria, &box) == MDL_SUCCESS;
}

Batch::Batch(ScanCriteria* criteria) {
    FilePos start = 0;
    constexpr int32_t wordsOfPosition = sizeof(FilePos) / sizeof(uint16_t);
    int32_t words = most * wordsOfPosition;
    const int status = mdlScanCriteria_scan(criteria, positions, &words, &start);
    isCut = status == MDL_SCAN_MORE;
    count = isCut || status == MDL_SUCCESS ? words / wordsOfPosition : 0;
}

ElementBuffer makeElementBuffers(size_t count) {
    return ElementBuffer(static_cast<MSElementBuffer*>(
        mclibMem_mallocRscErrorPrintf(count * sizeof(MSElementBuffer), MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY)));
}

}  // namespace mc::design
