#include "changing.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/text.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>
#include "arrow.h"
#include "kinds.h"
#include "labels_ids.h"
#include "placing.h"
#include "refusal.h"
#include "settings.h"

namespace labels {

namespace {

using namespace ids;

// ---- another text ----

// How the text part of a label stands in a view.
struct TextPart {
    int frame;
    Point3d middle;  // UOR
    double angle;    // of the texts
};

bool isAt(const Point3d& a, const Point3d& b) {
    return mdlVec_distance(&a, &b) < 1;  // UOR
}

bool isUnder(const Point3d& line, const ElementDescr* texts, int view) {
    const ElementDescr* last = texts;
    while (last->next && mdlElement_getType(last->next->element) == MDL_TEXT) last = last->next;
    const std::vector<Point3d> box = pointsOf(last->element);
    const Point3d middle = {(box[0].x + box[2].x) / 2, (box[0].y + box[2].y) / 2, line.z};
    return std::sin(bearing(line, middle, view)) > 0;
}

int shapeKind(const std::vector<Point3d>& outline, const Point3d& anchor, double angle, int view) {
    constexpr size_t cornersOfHexagon = 7;
    if (outline.size() == cornersOfHexagon) return ARROW_FRAME_HEXAGON;
    const double side = bearing(outline[0], outline[1], view) - angle;
    if (std::abs(std::sin(2 * side)) > 0.5) return ARROW_FRAME_DIAMOND;
    const bool atCorner = std::ranges::any_of(outline, [&](const Point3d& corner) { return isAt(corner, anchor); });
    return atCorner ? ARROW_FRAME_BOX_CORNER : ARROW_FRAME_BOX_SIDE;
}

int frameKind(const ElementDescr* first, const Point3d& anchor, double angle, int view) {
    const std::vector<Point3d> outline = pointsOf(first->element);
    switch (mdlElement_getType(first->element)) {
        case MDL_LINE:
            return isUnder(outline[0], first->next, view) ? ARROW_FRAME_UNDERLINE_LAST : ARROW_FRAME_UNDERLINE_FIRST;
        case MDL_SHAPE: return shapeKind(outline, anchor, angle, view);
        case MDL_ELLIPSE: return ARROW_FRAME_CIRCLE;
        default: return ARROW_FRAME_NONE;
    }
}

// Nothing for a label without a text that the library drew: its number is a symbol.
std::optional<TextPart> textPart(const ElementDescr* label, const Point3d& anchor, int view) {
    const ElementDescr* const first = label->firstChild;
    const ElementDescr* text = first;
    if (text && mdlElement_getType(text->element) != MDL_TEXT) text = text->next;
    if (!text || mdlElement_getType(text->element) != MDL_TEXT) return {};
    const std::vector<Point3d> box = pointsOf(text->element);
    const double angle = bearing(box[0], box[1], view);
    const std::optional<Extent> extent = extentOf(first, endOfText(label), view);
    if (!extent) return {};
    return TextPart{frameKind(first, anchor, angle, view), extent->middle(), angle};
}

// The label with other words, at its place; its leader goes from `before` to `at`. Null when it can't be made.
mdl::DescrPtr drawn(const TextPart& part, const Point3d& before, const Point3d& at, const std::string& text,
                    const std::string& cell, int view) {
    int head = 0, leg = 0, frame = 0;
    double headSize = 0, scale = 0, angle = 0, width = 0;
    giveLooks(&head, &headSize, &scale, &leg, &frame, &angle, &width);
    const Style& style = startStyle();
    if (!surroundsText(part.frame))
        setTextSide(style.textAttribute, std::cos(bearing(before, at, view) - part.angle) < 0 ? -1 : 1);
    const Point3d leader[] = {before, at};
    mclibArrow_initFilePos();
    if (mclibArrow_drawTextArrow(leader, 2, style.textAttribute, style.lineAttribute, style.headAttribute, scale,
                                 part.angle, text.c_str(), cell.c_str(), ARROW_HEAD_NONE, 0, part.frame,
                                 view) != MCLIB_SUCCESS)
        return nullptr;
    const FilePos position = mclibArrow_getLatestFilePos();
    mdl::DescrPtr label = mdl::readDescr(position, mdlModelRef_getActive());
    if (mdlElement_undoableDelete(nullptr, position, 0) != MDL_SUCCESS) return nullptr;
    return label;
}

// Where the leader of the new text comes from: through the old end, from outside of the frame.
Point3d beyond(const Point3d& middle, const Point3d& anchor) {
    return {2 * anchor.x - middle.x, 2 * anchor.y - middle.y, anchor.z};
}

// Of the label that is being changed; the hook for its text doesn't get the leaders.
Point3d& tipInHand() {
    static Point3d tip = {};
    return tip;
}

void keepTip(ElementDescr** label, ElementDescr**) {
    const ElementDescr* const leader = *label ? firstLeader(*label) : nullptr;
    const std::vector<Point3d> points = leader ? pointsOf(leader->element) : std::vector<Point3d>();
    if (!points.empty()) tipInHand() = points.front();
}

// Frame and text of `old`, whose leader ends at the anchor, with the words of the dialog. False after a message.
bool makeNewText(mdl::DescrPtr& label, const ElementDescr* old, const Point3d& anchor, int view) {
    const std::optional<TextPart> part = textPart(old, anchor, view);
    if (!part || isAt(part->middle, anchor)) return refuse(notes::fixedText);
    if (!hasGoodText()) return false;
    const bool boxed = surroundsText(part->frame);
    const Point3d before = beyond(part->middle, anchor), at = boxed ? part->middle : anchor;
    label = drawn(*part, before, at, textAt(tipInHand()), cellName(old->element), view);
    Point3d end = {};
    if (!label || !endOfLeader(end, label.get())) return refuse(notes::notWritten);
    Transform move;
    mdlTMatrix_getIdentity(&move);
    mdlTMatrix_translate(&move, &move, anchor.x - end.x, anchor.y - end.y, 0);
    if (mdlElmdscr_transform(label.get(), &move) != MDL_SUCCESS) return refuse(notes::notWritten);
    removeLeaders(label.get());
    return appendCopies(label.get(), endOfText(old), nullptr) || refuse(notes::notWritten);
}

int changeText(ElementDescr** newCell, ElementDescr* oldCell, Point3d* anchor, double, int view) {
    constexpr int done = 0, refused = 1;
    mdl::DescrPtr label;
    if (!makeNewText(label, oldCell, *anchor, view)) return refused;
    *newCell = label.release();
    return done;
}

}  // namespace

// ---- the commands ----

void startMovingTip() {
    mclibArrow_moveArrowHead(commands::moveTip.number, prompts::tipOf.number, nullptr, nullptr, nullptr, endCommand);
}

void startMovingText() {
    mclibArrow_moveText(commands::moveText.number, prompts::labelOf.number, nullptr, nullptr, nullptr, endCommand);
}

void startMovingAll() {
    mclibArrow_moveTextAndSymbol(commands::moveAll.number, prompts::labelOf.number, nullptr, nullptr, nullptr,
                                 endCommand);
}

void startChangingText() {
    mclibArrow_modifyTextAndSymbol(commands::changeText.number, prompts::labelOf.number, nullptr, keepTip, nullptr,
                                   changeText, endCommand);
}

void startInsertingVertex() {
    mclibArrow_insertVertex(commands::insertVertex.number, prompts::leaderOf.number, nullptr, nullptr, nullptr,
                            endCommand);
}

void startDeletingVertex() {
    mclibArrow_deleteVertex(commands::deleteVertex.number, prompts::leaderOf.number, nullptr, nullptr, nullptr,
                            endCommand);
}

void startAddingLeader() {
    mclibArrow_addArrow(commands::addLeader.number, prompts::labelOf.number, startStyle().lineAttribute,
                        startStyle().headAttribute, nullptr, nullptr, nullptr, giveLooks, endCommand);
}

void startDeletingLeader() {
    mclibArrow_deleteArrow(commands::deleteLeader.number, prompts::leaderOf.number, nullptr, nullptr, nullptr,
                           endCommand);
}

void startReplacingHead() {
    mclibArrow_modifyArrowHead(commands::replaceHead.number, prompts::leaderOf.number, startStyle().lineAttribute,
                               startStyle().headAttribute, nullptr, nullptr, nullptr, giveLooks, endCommand);
}

}  // namespace labels
