#include "mclib/arrows/leader.h"

#include <cmath>
#include <utility>

#include "mchost/mdl/model.h"
#include "mchost/mdl/state.h"
#include "mclib/arrows/drafting.h"
#include "mclib/arrows/reading.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::arrows {

namespace {

bool tellOutOfMemory() {
    showNotice(ids::errors::outOfMemory);
    return false;
}

// A copy of what stands between a line string and the next one; null for nothing.
mdl::DescrPtr headBehind(const ElementDescr* lineString) {
    const ElementDescr* first = lineString->next;
    if (!first || isLeader(first)) return nullptr;
    mdl::DescrPtr head = duplicate(first);
    for (ElementDescr* node = head.get(); node; node = node->next) {
        if (!isLeader(node)) continue;
        mdlElmdscr_freeAll(&node);
        break;
    }
    return head;
}

bool findVertex(Leader& leader) {
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    const Point3d point = statedataP->point;
    Point3d nearest = point, ends[2];
    if (mdlLinear_getClosestSegment(&nearest, ends, &leader.segment, &leader.element) != MDL_SUCCESS) return false;
    const bool first = mdlVec_distance(&ends[0], &point) < mdlVec_distance(&ends[1], &point);
    leader.vertex = first ? leader.segment : leader.segment + 1;
    return true;
}

// ---- drawing ----

double bearing(const Point3d& from, const Point3d& to) {
    const Point3d a = toLocal(from), b = toLocal(to);
    return std::atan2(b.y - a.y, b.x - a.x);
}

// The transform behind the other one.
Transform joined(const Transform& behind, const Transform& before) {
    Transform result;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column) {
            double sum = column == 3 ? behind.form[row][3] : 0.0;
            for (int i = 0; i < 3; ++i) sum += behind.form[row][i] * before.form[i][column];
            result.form[row][column] = sum;
        }
    return result;
}

// From the tip as it was to the tip as it is, turned about it as the view sees it.
Transform turnAboutTip(const Point3d& from, double angle, const Point3d& to) {
    const Transform *fromView = nullptr, *toView = nullptr;
    mdlCurrTrans_getAddresses(&fromView, &toView);
    Transform turn;
    mdlTMatrix_translate(&turn, nullptr, -from.x, -from.y, -from.z);
    turn = joined(*toView, turn);
    mdlTMatrix_rotateByAngles(&turn, &turn, 0, 0, angle);
    turn = joined(*fromView, turn);
    mdlTMatrix_translate(&turn, &turn, to.x, to.y, to.z);
    return turn;
}

// The head follows the first segment of its leader; it is turned from where it was kept, so turns don't add up.
void turnHead(Leader& leader) {
    const double angle = bearing(leader.at(0), leader.at(1)) - bearing(leader.tipKept, leader.nextKept);
    const Transform turn = turnAboutTip(leader.tipKept, angle, leader.at(0));
    leader.head = duplicate(leader.headKept.get());
    if (leader.head && mdlElmdscr_transform(leader.head.get(), &turn) != MDL_SUCCESS) leader.head.reset();
}

// The vertex whose place the frame says after a change of another one; 0 for none.
int vertexOnFrame(const EditState& edit) {
    const Leader& leader = edit.leader;
    if (edit.lineTotal >= 2 || edit.leaderTotal != 1) return 0;
    if (leader.count == 2 && leader.vertex == 0) return 1;
    if (edit.kind == CommandKind::insertVertex && leader.vertex == leader.count - 2) return leader.vertex + 1;
    if (edit.kind == CommandKind::deleteVertex && leader.vertex == leader.count - 1) return leader.vertex;
    return 0;
}

void followFrame(EditState& edit) {
    Leader& leader = edit.leader;
    if (const int index = vertexOnFrame(edit))
        leader.at(index) = fittedToFrame(edit.frame, leader.at(index - 1), leader.at(index));
}

void drawLine(Leader& leader, int drawMode) {
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    if (mdlLineString_create(&leader.element, &leader.element, leader.points.data(), leader.count) == MDL_SUCCESS)
        mdlElement_display(&leader.element, drawMode);
}

}  // namespace

bool takeLeader(Leader& leader, const ElementDescr* lineString) {
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    mdlElement_memcpy(&leader.element, lineString->element);
    mdlLinear_extract(leader.points.data(), &leader.count, &leader.element, MDL_MAX_POINTS);
    leader.head = headBehind(lineString);
    leader.headKept.reset();
    const bool hasHead = lineString->next && !isLeader(lineString->next);
    return !hasHead || leader.head || tellOutOfMemory();
}

bool detachLeader(EditState& edit) {
    if (!takeLeader(edit.leader, edit.component) || !findVertex(edit.leader)) return false;
    removeLeader(edit);
    return true;
}

void removeLeader(EditState& edit) {
    ElementDescr* node = std::exchange(edit.component, nullptr);
    do {
        ElementDescr* const next = node->next;
        mdlElement_display(node->element, MDL_ERASE);
        mdlElmdscr_removeElement(node);
        node = next;
    } while (node && !isLeader(node));
}

bool keepHead(Leader& leader, const Point3d& next) {
    if (!leader.head) return true;
    leader.tipKept = leader.at(0);
    leader.nextKept = next;
    leader.headKept = duplicate(leader.head.get());
    return leader.headKept || tellOutOfMemory();
}

void drawLeader(EditState& edit, const Point3d& point, int view, int drawMode) {
    const ViewSystem system(view);
    Leader& leader = edit.leader;
    leader.at(leader.vertex) = point;
    followFrame(edit);
    drawLine(leader, drawMode);
    if (!leader.head) return;
    if (leader.headKept) turnHead(leader);
    if (leader.head) mdlElmdscr_display(leader.head.get(), mdlModelRef_getActive(), drawMode);
}

bool putBack(EditState& edit) {
    if (mdlElmdscr_appendElement(edit.cell.get(), &edit.leader.element) != MDL_SUCCESS) return tellOutOfMemory();
    if (!edit.leader.head && !edit.leader.headKept) return true;
    mdl::DescrPtr head = duplicate(edit.leader.head.get());
    if (!head || mdlElmdscr_appendDscr(edit.cell.get(), head.get()) != MDL_SUCCESS) return tellOutOfMemory();
    head.release();
    return true;
}

}  // namespace mc::arrows
