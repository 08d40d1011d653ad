// Criteria of scans, and the filter of level and look.
#include "mclib/design/criteria.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "mchost/mdl/element.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/transform.h"

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
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// The box between two corners; z is all that there is.
bool addBox(ScanCriteria* criteria, const Point3d& low, const Point3d& high) {
    Point3d corners[] = {low, high};
    if (mdlCurrTrans_transformPointArray(corners, corners, 2) != MDL_SUCCESS) return false;
    if (!isFinite(corners[0]) || !isFinite(corners[1])) return false;
    const auto [left, right] = std::minmax({std::trunc(corners[0].x), std::trunc(corners[1].x)});
    const auto [bottom, top] = std::minmax({std::trunc(corners[0].y), std::trunc(corners[1].y)});
    const Range3d box = {{left, bottom, INT32_MIN}, {right, top, INT32_MAX}};
    return mdlScanCriteria_setRangeTest(criteria, &box) == MDL_SUCCESS;
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
           mdlScanCriteria_setRangeTest(criteria, nullptr) == MDL_SUCCESS && (!inBox || addBox(criteria, low, high)) &&
           addTypes(criteria, group) &&
           (!levels || mdlScanCriteria_setLevelTest(criteria, levels, 1, 0) == MDL_SUCCESS) &&
           mdlScanCriteria_setReturnType(criteria, MDL_SCAN_POSITIONS, 1, 0) == MDL_SUCCESS;
}

}  // namespace mc::design
