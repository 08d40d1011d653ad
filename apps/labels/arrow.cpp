#include "arrow.h"

#include <algorithm>
#include <cmath>

#include <mchost/mdl/element.h>
#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>

namespace labels {

namespace {

constexpr int mostVertices = 5000;  // of leaders that can be changed

std::vector<Point3d> verticesOf(const MSElementBuffer* element) {
    std::vector<Point3d> points(mostVertices);
    int32_t count = 0;
    if (mdlLinear_extract(points.data(), &count, element, mostVertices) != MDL_SUCCESS) count = 0;
    points.resize(static_cast<size_t>(std::min(count, mostVertices)));
    return points;
}

bool appendHead(ElementDescr* arrow, const Point3d& tip, double angle, const LeaderLook& look, int view) {
    ElementDescr* head = nullptr;
    mclibArrow_createArrowHead(&head, &tip, view, angle, look.head, look.divisor, look.headAttribute, look.headSize);
    if (!head) return look.head == ARROW_HEAD_NONE;
    if (mdlElmdscr_appendDscr(arrow, head) == MDL_SUCCESS) return true;
    mdlElmdscr_freeAll(&head);
    return false;
}

}  // namespace

bool endOfLeader(Point3d& end, ElementDescr* arrow) {
    for (const ElementDescr* part = arrow->firstChild; part; part = part->next) {
        if (mdlElement_getType(part->element) != MDL_LINE_STRING) continue;
        const std::vector<Point3d> vertices = verticesOf(part->element);
        if (vertices.empty()) return false;
        end = vertices.back();
        return true;
    }
    return false;
}

double bearing(const Point3d& from, const Point3d& to, int view) {
    const mdl::CurrTransScope local(mdl::CurrTransScope::Begin::masterUnits);
    mdlCurrTrans_rotateByView(view);
    const Point3d ends[] = {from, to};
    Point3d seen[2] = {};
    mdlCurrTrans_invtransPointArray(seen, ends, 2);
    return std::atan2(seen[1].y - seen[0].y, seen[1].x - seen[0].x);
}

bool appendLeader(ElementDescr* arrow, std::vector<Point3d> points, const LeaderLook& look, int view) {
    Point3d end = {};
    if (points.empty() || !endOfLeader(end, arrow)) return false;
    points.push_back(end);
    {
        const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
        if (mclibElement_createLineString(points.data(), static_cast<int>(points.size()), look.lineAttribute, arrow) !=
            MCLIB_SUCCESS)
            return false;
    }
    if (!appendHead(arrow, points[0], bearing(points[0], points[1], view), look, view)) return false;
    int32_t group = 0;
    mdlParams_getActive(&group, MDL_PARAM_GRAPHIC_GROUP);
    const auto graphicGroup = static_cast<uint32_t>(group);
    return mdlElmdscr_setProperties(arrow, nullptr, &graphicGroup) == MDL_SUCCESS;
}

}  // namespace labels
