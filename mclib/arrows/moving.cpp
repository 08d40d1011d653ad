// The commands that move text, with frame and symbol or without: the leaders follow.
#include <utility>

#include "mchost/mdl/model.h"
#include "mchost/mdl/modify.h"
#include "mclib/arrows/drafting.h"
#include "mclib/arrows/leader.h"
#include "mclib/arrows/reading.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::arrows {

namespace {

bool isOfType(const ElementDescr* node, int type) {
    return node && mdlElement_getType(node->element) == type;
}

bool hasText(const EditState& edit) {
    const ElementDescr* node = edit.cell->firstChild;
    while (node && !isOfType(node, MDL_TEXT)) node = node->next;
    return node;
}

// Where leaders end goes along with a text that moves alone when it belongs to the text itself.
bool endsMove(const EditState& edit) {
    if (!edit.textAlone) return true;
    const int kind = edit.frame.kind;
    return hasText(edit) &&
           (kind == ARROW_FRAME_NONE || kind == ARROW_FRAME_UNDERLINE_FIRST || kind == ARROW_FRAME_UNDERLINE_LAST);
}

// ---- frame, text and symbol ----

Transform moveBy(const Point3d& offset) {
    Transform move;
    mdlTMatrix_translate(&move, nullptr, offset.x, offset.y, offset.z);
    return move;
}

struct TextMove {
    Transform move;
    bool underlineToo;  // the line that the arrow begins with
};

// Texts move, and lines right behind them; those of the arrow itself, not those of a symbol that is a cell.
bool movesWithText(const ElementDescr* node, bool underlineToo) {
    if (node->parent && node->parent->parent) return false;
    if (isOfType(node, MDL_TEXT)) return true;
    return isOfType(node, MDL_LINE) && (node->previous ? isOfType(node->previous, MDL_TEXT) : underlineToo);
}

int moveText(MSElementBuffer* element, void* userArg, ModelRef*, ElementDescr* node, ElementDescr**) {
    const TextMove& text = *static_cast<const TextMove*>(userArg);
    if (!movesWithText(node, text.underlineToo)) return MDL_MODIFY_NONE;
    return mdlElement_transform(element, element, &text.move) == MDL_SUCCESS ? MDL_MODIFY_CHANGED : MDL_MODIFY_NONE;
}

mdl::DescrPtr movedTexts(const EditState& edit, const Transform& move) {
    TextMove text = {move, endsMove(edit)};
    ElementDescr* copy = duplicate(edit.cell.get()).release();
    mdlModify_elementDescr2(&copy, nullptr, MDL_MODIFY_NO_HEADERS, moveText, &text, 0);
    return mdl::DescrPtr(copy);
}

// What was taken out of the arrow stays in it as it is; null when memory is out.
mdl::DescrPtr movedCell(const EditState& edit, const Point3d& offset) {
    const Transform move = moveBy(offset);
    if (edit.textAlone) return movedTexts(edit, move);
    mdl::DescrPtr copy = duplicate(edit.cell.get());
    if (copy && mdlElmdscr_transform(copy.get(), &move) != MDL_SUCCESS) copy.reset();
    return copy;
}

// ---- leaders ----

// A move of what leaders end at.
struct Move {
    Point3d offset;
    FoundFrame frame;  // as it is after it
    int view, drawMode;
};

// All leaders end where the first one does.
Point3d movedEnd(EditState& edit, const Move& move, const Point3d* endOfFirst) {
    Leader& leader = edit.leader;
    const Point3d& end = leader.at(leader.vertex);
    if (edit.lineTotal >= 2) return sum(end, move.offset);
    if (endOfFirst) return *endOfFirst;
    return fittedToFrame(move.frame, leader.at(leader.vertex - 1), sum(end, move.offset));
}

bool moveLeader(EditState& edit, const ElementDescr* lineString, const Move& move, Point3d& endOfFirst) {
    Leader& leader = edit.leader;
    if (!takeLeader(leader, lineString)) return false;
    leader.vertex = leader.count - 1;
    leader.segment = leader.count - 2;
    const Point3d before = leader.at(leader.vertex);
    const Point3d after = movedEnd(edit, move, edit.leaderTotal++ == 0 ? nullptr : &endOfFirst);
    if (edit.leaderTotal == 1) endOfFirst = after;
    if (leader.segment == 0 && !keepHead(leader, before)) return false;
    drawLeader(edit, after, move.view, move.drawMode);
    return move.drawMode != MDL_DRAW || putBack(edit);
}

bool moveLeaders(EditState& edit, Point3d offset, int view, int drawMode) {
    if (!endsMove(edit)) offset = {};
    const Move move = {.offset = offset, .frame = movedFrame(edit.frame, offset), .view = view, .drawMode = drawMode};
    edit.leaderTotal = 0;
    Point3d endOfFirst{};
    for (const ElementDescr* node = edit.legs.get(); node; node = node->next)
        if (isLeader(node) && !moveLeader(edit, node, move, endOfFirst)) return false;
    return true;
}

// ---- the command ----

// Shows the arrow as it is after the move; for MDL_DRAW the cell is that arrow then. False when memory is out.
bool moveTo(EditState& edit, const Point3d& point, int view, int drawMode) {
    const ViewSystem system(view);
    const Point3d& start = edit.startPoint;
    const Point3d offset = {point.x - start.x, point.y - start.y, point.z - start.z};
    mdl::DescrPtr moved = movedCell(edit, offset);
    if (!moved) return false;
    mdlElmdscr_display(moved.get(), mdlModelRef_getActive(), drawMode);
    if (drawMode == MDL_DRAW) edit.cell = std::move(moved);
    return moveLeaders(edit, offset, view, drawMode);
}

void showMove(Point3d* point, int32_t view, int32_t drawMode) {
    moveTo(currentEdit(), *point, view, drawMode);
}

void acceptMove(Point3d* point, int32_t view) {
    EditState& edit = currentEdit();
    if (moveTo(edit, *point, view, MDL_DRAW))
        rewrite(edit);
    else
        showNotice(ids::errors::arrowNotWritten);
    mdlState_restartCurrentCommand();
}

bool beginMove(EditState& edit) {
    if (!readLocated(edit)) return false;
    mdlElmdscr_display(edit.cell.get(), mdlModelRef_getActive(), MDL_ERASE);
    return splitCell(edit);
}

void prepareMove() {
    EditState& edit = currentEdit();
    if (!beginMove(edit)) {
        mdlState_restartCurrentCommand();
        return;
    }
    edit.startPoint = statedataP->point;
    mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(showMove));
}

constexpr EditCommand movingAll = {CommandKind::moveText, false, acceptMove, prepareMove, nullptr};
constexpr EditCommand movingText = {CommandKind::moveText, true, acceptMove, prepareMove, nullptr};

}  // namespace

}  // namespace mc::arrows

using namespace mc::arrows;

int mclibArrow_moveTextAndSymbol(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                 McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                                 McArrowResetHook arrowResetHook) {
    return startEditing(movingAll, editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook),
                        cmdMsg, promptMsg);
}

int mclibArrow_moveText(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter, McArrowReadHook arrowReadHook,
                        McArrowBeforeWriteHook arrowBeforeWriteHook, McArrowResetHook arrowResetHook) {
    return startEditing(movingText, editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook),
                        cmdMsg, promptMsg);
}
