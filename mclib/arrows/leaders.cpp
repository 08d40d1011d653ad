// The commands that add and delete a leader, and that replace the head of one.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mclib/arrows/drafting.h"
#include "mclib/arrows/heads.h"
#include "mclib/arrows/hooks.h"
#include "mclib/arrows/leader.h"
#include "mclib/arrows/place.h"
#include "mclib/arrows/reading.h"
#include "mclib/arrows/state.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::arrows {

namespace {

// ---- add ----

// A leader is placed from the frame to its tip, and stands in the arrow the other way.
bool turnRound(MSElementBuffer* lineString) {
    std::array<Point3d, ARROW_MOST_VERTICES> points;
    int32_t count = 0;
    if (mdlLinear_extract(points.data(), &count, lineString, ARROW_MOST_VERTICES) != MDL_SUCCESS) return false;
    std::reverse(points.begin(), points.begin() + count);
    return mdlLineString_create(lineString, lineString, points.data(), count) == MDL_SUCCESS;
}

bool appendPart(EditState& edit, const MSElementBuffer* part) {
    mdlElement_memcpy(dgnBufP, part);
    if (mdlElement_getType(part) == MDL_LINE_STRING && !turnRound(dgnBufP)) return false;
    return mdlElmdscr_appendElement(edit.cell.get(), dgnBufP) == MDL_SUCCESS;
}

void takeNewLeader(ElementDescr* made) {
    const mdl::DescrPtr arrow(made);
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    EditState& edit = currentEdit();
    bool whole = true;
    for (const ElementDescr* part = arrow->firstChild; part; part = part->next)
        whole = whole && appendPart(edit, part->element);
    if (whole) return rewriteAndRestart(edit);
    showNotice(ids::errors::arrowNotWritten);
    mdlState_restartCurrentCommand();
}

// The new leader lies on the level of the arrow's last component.
void takeLevel(const EditState& edit) {
    uint32_t level = 0;
    wchar_t name[512];
    ElmAttrData data;
    mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             edit.cell->lastChild->element);
    if (mdlLevel_getName(name, 512, mdlModelRef_getActive(), level) != MDL_SUCCESS) return;
    if (mclibElmAttr_extractData(edit.lineAttrId, &data) != MCLIB_SUCCESS) return;
    std::copy_n(name, 512, data.levelName);
    mclibElmAttr_editAttribute(edit.lineAttrId, 0, &data);
}

void startLeader() {
    EditState& edit = currentEdit();
    edit.component = readLocated(edit) ? firstLeader(edit) : nullptr;
    if (!edit.component) {
        mdlState_restartCurrentCommand();
        return;
    }
    findAnchor(edit, edit.component);
    takeLevel(edit);
    mclibArrow_drawTextAndArrow(0, 1, 0, edit.lineAttrId, edit.headAttrId, 0, nullptr, nullptr, nullptr, nullptr,
                                &edit.anchor, nullptr, nullptr, nullptr, nullptr, takeNewLeader, edit.hooks.attributes,
                                edit.hooks.reset);
    placeState->withTail = false;
}

// ---- delete ----

void prepareDeletion() {
    EditState& edit = currentEdit();
    if (readLocated(edit))
        removeLeader(edit);
    else
        mdlState_restartCurrentCommand();
}

void acceptArrow(Point3d*, int32_t) {
    rewriteAndRestart(currentEdit());
}

// ---- replace the head ----

// Of the leader from its tip, as the view sees it.
double angleOf(const Leader& leader, int view) {
    const ViewSystem system(view);
    const Point3d tip = toLocal(leader.points[0]), next = toLocal(leader.points[1]);
    return std::atan2(tip.y - next.y, tip.x - next.x) + std::numbers::pi;
}

// The looks of the arrow that was placed last hold for what the hook leaves.
bool makeNewHead(EditState& edit) {
    Looks looks = placeState->looks;
    askForLooks(edit.hooks.attributes, looks);
    const int view = statedataP->view;
    ElementDescr* head = nullptr;
    const bool made = makeHead(head, {.tip = edit.leader.at(0),
                                      .view = view,
                                      .angle = angleOf(edit.leader, view),
                                      .type = looks.headType,
                                      .scale = looks.scale,
                                      .size = looks.headSize,
                                      .width = looks.width,
                                      .attrId = edit.headAttrId});
    edit.leader.head.reset(head);
    if (!made) mdl::printMessage(MDL_FIELD_ERROR, ids::errors::headNotMade);
    return made;
}

bool replaceHead(EditState& edit) {
    if (!edit.hooks.attributes || !readLocated(edit) || !detachLeader(edit)) return false;
    return (!edit.leader.head || makeNewHead(edit)) && putBack(edit);
}

void showNewHead() {
    EditState& edit = currentEdit();
    if (replaceHead(edit))
        mdlElmdscr_display(edit.cell.get(), mdlModelRef_getActive(), MDL_DRAW);
    else
        mdlState_restartCurrentCommand();
}

void eraseArrow() {
    mdlElmdscr_display(editState->cell.get(), mdlModelRef_getActive(), MDL_ERASE);
}

constexpr EditCommand adding = {CommandKind::addLeader, false, nullptr, startLeader, nullptr};
constexpr EditCommand deleting = {CommandKind::deleteLeader, false, acceptArrow, prepareDeletion, nullptr};
constexpr EditCommand replacing = {CommandKind::replaceHead, false, acceptArrow, showNewHead, eraseArrow};

}  // namespace

}  // namespace mc::arrows

using namespace mc::arrows;

int mclibArrow_addArrow(int cmdMsg, int promptMsg, int lineAttrId, int headAttrId,
                        McArrowLocateFilter arrowLocateFilter, McArrowReadHook arrowReadHook,
                        McArrowBeforeWriteHook arrowBeforeWriteHook,
                        McArrowAttributesHook userArrow_changeArrowAttributes, McArrowResetHook arrowResetHook) {
    EditHooks hooks = editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook);
    hooks.attributes = userArrow_changeArrowAttributes;
    editState->lineAttrId = lineAttrId;
    editState->headAttrId = headAttrId;
    return startEditing(adding, hooks, cmdMsg, promptMsg);
}

int mclibArrow_deleteArrow(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                           McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                           McArrowResetHook arrowResetHook) {
    return startEditing(deleting, editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook),
                        cmdMsg, promptMsg);
}

int mclibArrow_modifyArrowHead(int cmdMsg, int promptMsg, int lineAttrId, int headAttrId,
                               McArrowLocateFilter arrowLocateFilter, McArrowReadHook arrowReadHook,
                               McArrowBeforeWriteHook arrowBeforeWriteHook,
                               McArrowAttributesHook userArrow_changeArrowAttributes, McArrowResetHook arrowResetHook) {
    EditHooks hooks = editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook);
    hooks.attributes = userArrow_changeArrowAttributes;
    if (!userArrow_changeArrowAttributes) tellOfMissingHook();
    editState->lineAttrId = lineAttrId;
    editState->headAttrId = headAttrId;
    return startEditing(replacing, hooks, cmdMsg, promptMsg);
}
