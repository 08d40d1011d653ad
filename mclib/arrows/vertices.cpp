// The commands that change one vertex of a leader: insert, delete, move the tip.
#include <algorithm>

#include "mclib/arrows/leader.h"
#include "mclib/arrows/reading.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::arrows {

namespace {

void locateAgain() {
    mdlState_restartCurrentCommand();
}

// Reads the arrow and takes the located leader out of it; false when there is nothing to work on.
bool beginWithLeader(EditState& edit) {
    return readLocated(edit) && detachLeader(edit);
}

void followCursor(MdlDynamicsFunction function) {
    mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(function));
}

void showVertex(Point3d* point, int32_t view, int32_t drawMode) {
    drawLeader(currentEdit(), *point, view, drawMode);
}

void acceptLeader(EditState& edit, const Point3d& point, int view) {
    drawLeader(edit, point, view, MDL_DRAW);
    if (putBack(edit)) rewrite(edit);
    locateAgain();
}

void acceptVertex(Point3d* point, int32_t view) {
    acceptLeader(currentEdit(), *point, view);
}

// ---- insert ----

// The new vertex goes behind the first one of the segment, whichever end was nearer.
bool makeRoom(Leader& leader) {
    if (leader.count >= MDL_MAX_POINTS) {
        mdl::printMessage(MDL_FIELD_ERROR, ids::errors::leaderTooLong);
        return false;
    }
    leader.vertex = leader.segment + 1;
    if (leader.segment == 0 && !keepHead(leader, leader.at(1))) return false;
    const auto begin = leader.points.begin();
    std::copy_backward(begin + leader.vertex, begin + leader.count, begin + leader.count + 1);
    ++leader.count;
    return true;
}

void prepareInsert() {
    EditState& edit = currentEdit();
    if (!beginWithLeader(edit) || !makeRoom(edit.leader)) return locateAgain();
    followCursor(showVertex);
}

// ---- delete ----

// Neither the tip can go nor the end at the frame.
bool takeVertexOut(Leader& leader) {
    if (leader.count <= 2) {
        mdl::printMessage(MDL_FIELD_ERROR, ids::errors::leaderTooShort);
        return false;
    }
    leader.vertex = std::clamp(leader.vertex, 1, leader.count - 2);
    if (leader.vertex == 1) leader.segment = 0;
    if (leader.segment == 0 && !keepHead(leader, leader.at(1))) return false;
    const auto begin = leader.points.begin();
    std::copy(begin + leader.vertex + 1, begin + leader.count, begin + leader.vertex);
    --leader.count;
    return true;
}

void drawShortened(int drawMode) {
    EditState& edit = currentEdit();
    drawLeader(edit, edit.leader.at(edit.leader.vertex), edit.startView, drawMode);
}

void prepareDelete() {
    EditState& edit = currentEdit();
    if (!beginWithLeader(edit) || !takeVertexOut(edit.leader)) return locateAgain();
    edit.startView = statedataP->view;
    drawShortened(MDL_HIGHLIGHT);
}

void eraseShortened() {
    drawShortened(MDL_ERASE);
}

void acceptShortened(Point3d*, int32_t) {
    EditState& edit = currentEdit();
    acceptLeader(edit, edit.leader.at(edit.leader.vertex), edit.startView);
}

// ---- move the tip ----

void prepareMoveHead() {
    EditState& edit = currentEdit();
    if (!beginWithLeader(edit) || !keepHead(edit.leader, edit.leader.at(1))) return locateAgain();
    edit.leader.segment = edit.leader.vertex = 0;
    followCursor(showVertex);
}

constexpr EditCommand inserting = {CommandKind::insertVertex, false, acceptVertex, prepareInsert, nullptr};
constexpr EditCommand deleting = {CommandKind::deleteVertex, false, acceptShortened, prepareDelete, eraseShortened};
constexpr EditCommand movingHead = {CommandKind::moveHead, false, acceptVertex, prepareMoveHead, nullptr};

}  // namespace

}  // namespace mc::arrows

using namespace mc::arrows;

int mclibArrow_insertVertex(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                            McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                            McArrowResetHook arrowResetHook) {
    return startEditing(inserting, editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook),
                        cmdMsg, promptMsg);
}

int mclibArrow_deleteVertex(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                            McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                            McArrowResetHook arrowResetHook) {
    return startEditing(deleting, editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook),
                        cmdMsg, promptMsg);
}

int mclibArrow_moveArrowHead(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                             McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                             McArrowResetHook arrowResetHook) {
    return startEditing(movingHead, editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook),
                        cmdMsg, promptMsg);
}
