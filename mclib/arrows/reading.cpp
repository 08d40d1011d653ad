#include "mclib/arrows/reading.h"

#include <algorithm>
#include <utility>

#include "mchost/mdl/locate.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/modify.h"
#include "mchost/mdl/text.h"
#include "mclib/arrows/drafting.h"
#include "mclib/arrows/hooks.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::arrows {

constinit RoomState<EditState> editState;

namespace {

// ---- locating ----

constexpr int32_t anyPart[] = {MDL_CELL_HEADER, MDL_LINE, MDL_LINE_STRING, MDL_SHAPE, MDL_TEXT, MDL_ARC};
constexpr int32_t leaders[] = {MDL_CELL_HEADER, MDL_LINE_STRING};
constexpr int32_t allButLeaders[] = {MDL_CELL_HEADER, MDL_LINE, MDL_SHAPE, MDL_TEXT, MDL_ARC};

std::span<const int32_t> typesFor(CommandKind kind) {
    switch (kind) {
        case CommandKind::addLeader: return anyPart;
        case CommandKind::moveText:
        case CommandKind::changeText: return allButLeaders;
        default: return leaders;
    }
}

bool worksOnLeader(CommandKind kind) {
    return std::ranges::equal(typesFor(kind), leaders);
}

// Copies the element of the model that what was located belongs to into the shared buffer; false when it is gone.
bool copyTopElement(ModelRef* model, FilePos position) {
    ElementRef* element = mdlModelRef_getElementRef(model, position);
    if (element && elementRef_isComplexComponent(element)) element = elementRef_getParent(element);
    return element && elementRef_getElement(element, dgnBufP, MDL_ELEMENT_BYTES) != 0;
}

int checkLocated(const MSElementBuffer* located, ModelRef* model, FilePos position) {
    EditState& edit = currentEdit();
    const int32_t type = mdlElement_getType(located);
    if (!copyTopElement(model, position)) return MDL_LOCATE_REJECT;
    if (std::ranges::find(edit.types, type) == edit.types.end() || mdlElement_getType(dgnBufP) != MDL_CELL_HEADER)
        return MDL_LOCATE_REJECT;
    if (!edit.hooks.filter) return MDL_LOCATE_ACCEPT;
    return callHook("PPPP", edit.hooks.filter, dgnBufP, located, &edit.lineAttrId, &edit.headAttrId);
}

// ---- reading ----

template <class... Values>
bool refuse(mdl::Message<MCLIB_ERRORS, Values...> reason) {
    mdl::printMessage(MDL_FIELD_ERROR, reason);
    return false;
}

constexpr int32_t dimensionClass = 2;  // of leaders that don't count

int countLeader(MSElementBuffer* element, void* total, int32_t, int32_t, ElementDescr* node) {
    int32_t elementClass = 0;
    mdlElement_getProperties(nullptr, nullptr, &elementClass, nullptr, nullptr, nullptr, nullptr, nullptr, element);
    if (isLeader(node) && elementClass != dimensionClass) ++*static_cast<int*>(total);
    return 0;
}

int keepNode(MSElementBuffer*, void* kept, ModelRef*, ElementDescr* node, ElementDescr**) {
    *static_cast<ElementDescr**>(kept) = node;
    return MDL_MODIFY_NONE;
}

// The node of the component that was pointed at; null when there is none.
ElementDescr* locatedComponent(EditState& edit) {
    ElementDescr* found = nullptr;
    const FilePos component = mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, nullptr);
    if (component <= edit.cellFilePos) return nullptr;
    ElementDescr* cell = edit.cell.release();
    mdlModify_elementDescr2(&cell, nullptr, MDL_MODIFY_ALL, keepNode, &found,
                            static_cast<int32_t>(component - edit.cellFilePos));
    edit.cell.reset(cell);
    return found;
}

bool isCell(const ElementDescr* ed) {
    return ed && mdlElement_getType(ed->element) == MDL_CELL_HEADER;
}

bool holds(const ElementDescr* cell, const ElementDescr* node) {
    for (const ElementDescr* child = cell->firstChild; child; child = child->next)
        if (child == node) return true;
    return false;
}

bool canEdit(const ElementDescr* leader) {
    int32_t count = 0;
    return mdlLinear_extract(nullptr, &count, leader->element, 0) == MDL_SUCCESS && count >= 2 &&
           count <= MDL_MAX_POINTS;
}

bool canEditAllLeaders(const ElementDescr* cell) {
    for (const ElementDescr* child = cell->firstChild; child; child = child->next)
        if (isLeader(child) && !canEdit(child)) return false;
    return true;
}

void askReadHook(EditState& edit) {
    ElementDescr* cell = edit.cell.release();
    callHook("PP", edit.hooks.read, &cell, &edit.component);
    edit.cell.reset(cell);
}

// ---- what the elements tell ----

Point3d lastOf(const MSElementBuffer* leader) {
    std::array<Point3d, MDL_MAX_POINTS> points;
    int32_t count = 0;
    mdlLinear_extract(points.data(), &count, leader, MDL_MAX_POINTS);
    return points[static_cast<size_t>(count - 1)];
}

struct Parsing {
    EditState& edit;
    bool first = true;
    std::array<Point3d, 2> textBox{};             // left and right lower corner of the widest line of text
    std::array<Point3d, MDL_MAX_POINTS> shape{};  // of the frame
    int32_t shapeCount = 0;
};

enum : int { goOn = 0, stop = 1 };

std::array<Point3d, 2> lowerSideOf(const MSElementBuffer* text) {
    Point3d box[5] = {};
    mdlText_extractShape(box, nullptr, text, 0, 0);
    return {box[0], box[1]};
}

int kindOfShape(int32_t points, int fewerThanSix) {
    return points < 6 ? fewerThanSix : ARROW_FRAME_HEXAGON;
}

int parseFirst(Parsing& parsing, const MSElementBuffer* element) {
    FoundFrame& frame = parsing.edit.frame;
    switch (mdlElement_getType(element)) {
        case MDL_LINE:
            frame.kind = ARROW_FRAME_UNDERLINE_FIRST;
            mdlLinear_extract(frame.line.data(), nullptr, element, 2);
            parsing.edit.lineTotal = 1;
            return goOn;
        case MDL_SHAPE:
            mdlLinear_extract(parsing.shape.data(), &parsing.shapeCount, element, MDL_MAX_POINTS);
            std::copy_n(parsing.shape.begin(), frame.corners.size(), frame.corners.begin());
            frame.kind = kindOfShape(parsing.shapeCount, ARROW_FRAME_BOX_SIDE);
            return goOn;
        case MDL_ELLIPSE:
            frame.kind = ARROW_FRAME_CIRCLE;
            mdlArc_extract(&frame.centre, &frame.radius, nullptr, nullptr, nullptr, nullptr, element);
            return stop;
        case MDL_TEXT:
            frame.kind = ARROW_FRAME_NONE;
            parsing.textBox = lowerSideOf(element);
            return goOn;
        default: return stop;
    }
}

double widthOf(const std::array<Point3d, 2>& box) {
    return box[1].x - box[0].x;
}

// The leader may end at the far side of the text as well.
void findEndsBesideText(Parsing& parsing, const Point3d& end) {
    const double middle = (parsing.textBox[0].x + parsing.textBox[1].x) / 2;
    parsing.edit.frame.beside = {end, end};
    parsing.edit.frame.beside[1].x += 2 * (middle - end.x);
}

bool isSame(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

void findEndOnShape(Parsing& parsing, const Point3d& end) {
    const auto begin = parsing.shape.begin(), behind = begin + parsing.shapeCount;
    if (std::any_of(begin, behind, [&](const Point3d& p) { return isSame(p, end); }))
        parsing.edit.frame.kind = kindOfShape(parsing.shapeCount, ARROW_FRAME_BOX_CORNER);
}

int parseLeader(Parsing& parsing, const MSElementBuffer* element) {
    const Point3d end = lastOf(element);
    if (parsing.edit.frame.kind == ARROW_FRAME_NONE)
        findEndsBesideText(parsing, end);
    else
        findEndOnShape(parsing, end);
    return stop;
}

int parseNext(Parsing& parsing, const MSElementBuffer* element, const ElementDescr* node) {
    switch (mdlElement_getType(element)) {
        case MDL_TEXT:
            if (const auto box = lowerSideOf(element); widthOf(box) > widthOf(parsing.textBox)) parsing.textBox = box;
            return goOn;
        case MDL_LINE: return ++parsing.edit.lineTotal >= 2 ? stop : goOn;
        default: return isLeader(node) ? parseLeader(parsing, element) : goOn;
    }
}

int parseComponent(MSElementBuffer* element, void* userArg, int32_t, int32_t, ElementDescr* node) {
    Parsing& parsing = *static_cast<Parsing*>(userArg);
    if (!std::exchange(parsing.first, false)) return parseNext(parsing, element, node);
    return parseFirst(parsing, element);
}

void parse(EditState& edit) {
    edit.frame = {};
    edit.lineTotal = 0;
    Parsing parsing{.edit = edit};
    mdlElmdscr_operation(edit.cell.get(), parseComponent, &parsing, MDL_DESCR_ELEMENTS);
}

// What is common to all ways of reading, behind the cell itself.
bool takeCell(EditState& edit) {
    askReadHook(edit);
    if (!isCell(edit.cell.get())) return refuse(ids::errors::noArrow);
    if (worksOnLeader(edit.kind) && !(holds(edit.cell.get(), edit.component) && isLeader(edit.component)))
        return refuse(ids::errors::noLeader);
    if (!canEditAllLeaders(edit.cell.get())) return refuse(ids::errors::leaderTooLong);
    parse(edit);
    return true;
}

bool readCell(EditState& edit, FilePos position) {
    edit.component = nullptr;
    edit.cellFilePos = position;
    edit.cell = mdl::readDescr(position, mdlModelRef_getActive());
    return isCell(edit.cell.get()) || refuse(ids::errors::noArrow);
}

}  // namespace

void setLocateRules(EditState& edit, CommandKind kind) {
    edit.kind = kind;
    edit.types = typesFor(kind);
    mdlAccuSnap_enableLocate(1);
    mdlLocate_setFunction(MDL_LOCATE_POST, reinterpret_cast<MdlStateFunction>(checkLocated));
    mdlLocate_noElemNoLocked();
    mdlLocate_setElemSearchMask(static_cast<int32_t>(edit.types.size()), edit.types.data());
    mdlLocate_init();
}

int startEditing(const EditCommand& command, const EditHooks& hooks, int commandMessage, int promptMessage) {
    EditState& edit = currentEdit();
    edit.hooks = hooks;
    edit.textAlone = command.textAlone;
    if (mdlState_startModifyCommand(hooks.reset, command.accept, nullptr, command.show, command.clean, commandMessage,
                                    promptMessage, 0, 0) != MDL_SUCCESS)
        return MCLIB_ERROR;
    setLocateRules(edit, command.kind);
    return MCLIB_SUCCESS;
}

bool readLocated(EditState& edit) {
    if (!readCell(edit, mdlElement_getFilePos(MDL_FILE_POS_ELEMENT, nullptr))) return false;
    if (worksOnLeader(edit.kind)) {
        edit.leaderTotal = 0;
        mdlElmdscr_operation(edit.cell.get(), countLeader, &edit.leaderTotal, MDL_DESCR_ELEMENTS);
        edit.component = locatedComponent(edit);
    }
    return takeCell(edit);
}

bool readArrow(EditState& edit, FilePos position) {
    return readCell(edit, position) && takeCell(edit);
}

bool isLeader(const ElementDescr* node) {
    return node && mdlElement_getType(node->element) == MDL_LINE_STRING && (!node->parent || !node->parent->parent);
}

ElementDescr* firstLeader(const EditState& edit) {
    ElementDescr* node = edit.cell->firstChild;
    while (node && !isLeader(node)) node = node->next;
    if (!node) refuse(ids::errors::noLeader);
    return node;
}

void findAnchor(EditState& edit, const ElementDescr* leader) {
    edit.anchor = lastOf(leader->element);
    edit.textDirection = 1.0;
    for (const ElementDescr* node = leader->previous; node; node = node->previous) {
        if (mdlElement_getType(node->element) != MDL_LINE) continue;
        Point3d ends[2];
        mdlLinear_extract(ends, nullptr, node->element, 2);
        edit.textDirection = ends[1].x > ends[0].x ? 1.0 : -1.0;
        return;
    }
}

bool splitCell(EditState& edit) {
    ElementDescr* first = firstLeader(edit);
    if (!first) return false;
    findAnchor(edit, first);
    edit.legs = duplicate(first);
    if (!edit.legs) return refuse(ids::errors::outOfMemory);
    mdlElmdscr_freeAll(&first);
    return true;
}

bool rewrite(EditState& edit) {
    if (edit.hooks.beforeWrite) {
        ElementDescr* cell = edit.cell.release();
        callHook("P", edit.hooks.beforeWrite, &cell);
        edit.cell.reset(cell);
    }
    ModelRef* const model = mdlModelRef_getActive();
    mdlCell_setRange(edit.cell.get(), model);
    mdlElmdscr_display(edit.cell.get(), model, MDL_DRAW);
    if (edit.cell && mdlElmdscr_rewrite(edit.cell.get(), edit.cellFilePos) != 0) return true;
    showNotice(ids::errors::arrowNotWritten);
    return false;
}

void rewriteAndRestart(EditState& edit) {
    rewrite(edit);
    mdlState_restartCurrentCommand();
}

}  // namespace mc::arrows
