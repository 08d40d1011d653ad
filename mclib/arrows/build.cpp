#include "mclib/arrows/build.h"

#include <cmath>
#include <cstring>
#include <utility>

#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mclib/arrows/drafting.h"
#include "mclib/arrows/frames.h"
#include "mclib/arrows/heads.h"
#include "mclib/arrows/hooks.h"
#include "mclib/arrows/place.h"
#include "mclib/arrows/state.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/util.h"
#include "mclib/geometry/builders.h"
#include "mclib/geometry/one_off.h"
#include "mclib/geometry/textsize.h"
#include "resources/ids.h"

namespace mc::arrows {

namespace {

// An arrow on its way.
struct Draft {
    Draft(PlaceState& placed, int in, int mode) : place(placed), view(in), drawMode(mode), last(placed.vertexCount) {}

    PlaceState& place;
    int view, drawMode;
    int last;  // index of the last vertex
    double gap = 0.0;
    std::array<Point3d, ARROW_MOST_VERTICES> leader;  // in the local system; up to the last one
    TextBlock text;
    mdl::Descr arrow;
    bool whole = true;  // nothing is lacking

    bool isFinal() const { return drawMode == MDL_DRAW; }
    bool hasText() const { return place.withText && place.text[0] != '\0'; }
    Point3d& end() { return leader[static_cast<size_t>(last)]; }
    const Point3d& vertex(int index) const { return leader[static_cast<size_t>(index)]; }
    // From one vertex to another.
    double bearing(int from, int to) const {
        return std::atan2(vertex(to).y - vertex(from).y, vertex(to).x - vertex(from).x);
    }
    void expect(bool made) { whole = whole && made; }
};

// ---- before the arrow ----

double textGap(const PlaceState& place) {
    ElmAttrData data;
    if (mclibElmAttr_extractData(place.textAttrId, &data) != MCLIB_SUCCESS || !(data.textLineSpacing > 0))
        return 1.0 / place.looks.scale;
    if (data.useFlags & ATTR_USE_SIZE) return data.textHeight * data.textLineSpacing * 0.5 / place.looks.scale;
    double height = 0.0;
    mdlParams_getActive(&height, MDL_PARAM_TEXT_HEIGHT);
    return height * *mclibUtil_UORToMasterP(0.5);
}

// Where the hook moves a point that lies that far (master units) along x, and how far it moved it.
struct Snapped {
    Point3d point;
    double distance;
};
Snapped snap(const PlaceState& place, Point3d point, double offset) {
    point.x += *mclibUtil_masterToUORP(offset);
    Point3d moved = point;
    callHook("P", place.hooks.snap, &moved);
    return {moved, mdlVec_distance(&point, &moved)};
}

// The tip lies where the end of the underline that is nearest to it finds it.
void snapTip(PlaceState& place, const Point3d& point) {
    if (!place.hooks.snap) return;
    const Snapped first = snap(place, point, place.snapOffset1), second = snap(place, point, place.snapOffset2);
    place.vertices[0] = first.distance < second.distance ? first.point : second.point;
}

// ---- text and frame ----

void measureText(Draft& draft) {
    const PlaceState& place = draft.place;
    TextBlock& text = draft.text;
    text = {};
    mclibUtil_extractTextSize(place.text, place.looks.scale, place.textAttrId, 2 * draft.gap, &text.width,
                              &text.lineHeight, &text.height, &text.just);
}

void applyFirstLegRule(Draft& draft) {
    const Looks& looks = draft.place.looks;
    if (draft.place.withArrow && draft.last == 1)
        draft.end() =
            fittedFirstLeg(draft.vertex(0), draft.end(), looks.leaderMode, looks.frameKind, draft.gap, draft.text);
}

void askForText(Draft& draft) {
    PlaceState& place = draft.place;
    if (!place.withText || !place.hooks.text) return;
    callHook("PPI", place.hooks.text, place.text, place.vertices.data(), draft.view);
    place.text[ARROW_TEXT_LENGTH] = '\0';
    if (draft.hasText()) measureText(draft);
}

void startCell(Draft& draft) {
    emptyBuffer();
    mdlCell_create(dgnBufP, draft.place.cellName, nullptr, 0);
    if (draft.isFinal()) callHook("PP", draft.place.hooks.cell, dgnBufP, draft.place.text);
    draft.expect(startDescr(*draft.arrow.out()));
}

// Hands a part over to the arrow.
void append(Draft& draft, ElementDescr* part) {
    if (!part || mdlElmdscr_appendDscr(draft.arrow.get(), part) == MDL_SUCCESS) return;
    mdlElmdscr_freeAll(&part);
    draft.whole = false;
}

Frame frameOf(const Draft& draft) {
    const Looks& looks = draft.place.looks;
    return makeFrame({.frameKind = looks.frameKind,
                      .leaderMode = looks.leaderMode,
                      .withArrow = draft.place.withArrow,
                      .anchor = draft.vertex(draft.last),
                      .previous = draft.vertex(draft.last - 1),
                      .cursor = {},  // the local system begins at the cursor
                      .legAngle = draft.bearing(draft.last - 1, draft.last),
                      .gap = draft.gap,
                      .text = draft.text,
                      .fixedSize = draft.place.useCircleSize,
                      .radius = draft.place.circleSize});
}

int drawCircle(const Frame& frame, int attrId, ElementDescr* arrow) {
    const mdl::CurrTransScope turned;
    mdlCurrTrans_rotateByAngles(0, 0, frame.turn);
    return mclibElement_createEllipse(frame.points.data(), frame.radius, attrId, arrow);
}

void drawOutline(Draft& draft, const Frame& frame) {
    const int attrId = draft.place.lineAttrId;
    ElementDescr* const arrow = draft.arrow.get();
    int status = MCLIB_SUCCESS;
    emptyBuffer();
    switch (frame.outline) {
        case Outline::none: break;
        case Outline::line: status = mclibElement_createLine(frame.points.data(), attrId, arrow); break;
        case Outline::shape:
            status = mclibElement_createShape(frame.points.data(), frame.count, 0, attrId, arrow);
            break;
        case Outline::circle: status = drawCircle(frame, attrId, arrow); break;
    }
    draft.expect(status == MCLIB_SUCCESS);
}

// Calls `visit` with each line of a text.
template <class Visit>
void forEachLine(const char* text, Visit visit) {
    char line[ARROW_TEXT_LENGTH + 1], rest[ARROW_TEXT_LENGTH + 1] = "";
    std::strcpy(line, text);
    for (bool more = true; more; std::strcpy(line, rest)) {
        more = mclibUtil_splitText(line, rest) != 0;
        visit(line);
    }
}

int countLines(const char* text) {
    int lines = 0;
    forEachLine(text, [&](const char*) { ++lines; });
    return lines;
}

// Appends a line of text to those before it, or begins with it.
bool writeLine(const PlaceState& place, const Point3d& origin, const char* line, ElementDescr*& lines) {
    emptyBuffer();
    const int status = mclibElement_createText(&origin, line, place.looks.scale, nullptr, place.textAttrId, lines);
    return status == MCLIB_SUCCESS && (lines || startDescr(lines));
}

void writeText(Draft& draft, const Frame& frame) {
    const PlaceState& place = draft.place;
    const double step = draft.text.lineHeight + 2 * draft.gap;
    Point3d origin = frame.textOrigin;
    origin.y += riseOfFirstLine(place.looks.frameKind, countLines(place.text), step);
    const OneOffJustification justified(place.textAttrId, frame.just);
    ElementDescr* lines = nullptr;
    forEachLine(place.text, [&](const char* line) {
        draft.expect(writeLine(place, origin, line, lines));
        origin.y -= step;
    });
    if (draft.arrow)
        append(draft, lines);
    else
        *draft.arrow.out() = lines;
}

void keepForSnapping(Draft& draft, const Frame& frame) {
    if (!draft.place.withArrow || !draft.place.hooks.snap || draft.drawMode != MDL_DYNAMICS) return;
    draft.place.snapOffset1 = frame.underlineX[0];
    draft.place.snapOffset2 = frame.underlineX[1];
}

void addTextInFrame(Draft& draft) {
    const Frame frame = frameOf(draft);
    if (draft.arrow) drawOutline(draft, frame);
    draft.end() = frame.end;
    if (draft.isFinal())
        mdlCurrTrans_transformPointArray(&draft.place.vertices[static_cast<size_t>(draft.last)], &draft.end(), 1);
    keepForSnapping(draft, frame);
    if (frame.hasText) writeText(draft, frame);
}

// ---- tail, symbol, leader, head ----

void addTail(Draft& draft, double direction) {
    const PlaceState& place = draft.place;
    if (place.withText || !place.withTail || !(place.looks.width > 0)) return;
    Point3d ends[] = {draft.end(), draft.end()};
    ends[1].x += direction * place.looks.width / place.looks.scale;
    emptyBuffer();
    draft.expect(mclibElement_createLine(ends, place.lineAttrId, draft.arrow.get()) == MCLIB_SUCCESS);
}

void addSymbol(Draft& draft, double direction) {
    ElementDescr* symbol = nullptr;
    callHook("PPDDII", draft.place.hooks.symbol, &symbol, &draft.end(), direction, draft.place.looks.scale, draft.view,
             draft.drawMode);
    append(draft, symbol);
}

void addLine(Draft& draft) {
    emptyBuffer();
    draft.expect(mclibElement_createLineString(draft.leader.data(), draft.last + 1, draft.place.lineAttrId,
                                               draft.arrow.get()) == MCLIB_SUCCESS);
}

void addHead(Draft& draft) {
    const PlaceState& place = draft.place;
    const Looks& looks = place.looks;
    const int at = place.headAtStart ? 0 : draft.last, next = place.headAtStart ? 1 : draft.last - 1;
    Point3d tip;
    mdlCurrTrans_transformPointArray(&tip, &draft.vertex(at), 1);
    ElementDescr* head = nullptr;
    draft.expect(makeHead(head, {.tip = tip,
                                 .view = draft.view,
                                 .angle = draft.bearing(at, next) + looks.angle,  // the leader's as it is seen
                                 .type = looks.headType,
                                 .scale = looks.scale,
                                 .size = looks.headSize,
                                 .width = looks.width,
                                 .attrId = place.headAttrId}));
    append(draft, head);
}

void addLeader(Draft& draft) {
    const double direction = draft.end().x < draft.vertex(draft.last - 1).x ? -1.0 : 1.0;
    addTail(draft, direction);
    addSymbol(draft, direction);
    addLine(draft);
    addHead(draft);
}

// ---- the arrow as a whole ----

void takeVertices(Draft& draft) {
    mdlCurrTrans_invtransPointArray(draft.leader.data(), draft.place.vertices.data(), draft.last + 1);
}

void addParts(Draft& draft) {
    takeVertices(draft);
    if (draft.hasText()) measureText(draft);
    applyFirstLegRule(draft);
    askForText(draft);
    if (draft.place.withArrow) startCell(draft);
    if (draft.place.withArrow && !draft.arrow) return;
    if (draft.hasText()) addTextInFrame(draft);
    if (draft.place.withArrow) addLeader(draft);
}

uint32_t activeGraphicGroup() {
    int32_t group = 0;
    mdlParams_getActive(&group, MDL_PARAM_GRAPHIC_GROUP);
    return static_cast<uint32_t>(group);
}

LevelId levelOfLines(const PlaceState& place) {
    ElmAttrData data;
    if (mclibElmAttr_extractData(place.lineAttrId, &data) != MCLIB_SUCCESS) return 0;
    return mclibUtil_levelIdFromName(data.levelName);
}

void handOver(Draft& draft) {
    const LevelId level = levelOfLines(draft.place);
    const uint32_t group = activeGraphicGroup();
    mdlElmdscr_setProperties(draft.arrow.get(), level != 0 ? &level : nullptr, &group);
    callHook("P", draft.place.hooks.finish, std::exchange(*draft.arrow.out(), nullptr));
}

int write(Draft& draft) {
    const uint32_t group = activeGraphicGroup();
    mdlElmdscr_setProperties(draft.arrow.get(), nullptr, &group);
    draft.place.latestFilePos = mdlElmdscr_add(draft.arrow.get());
    if (draft.place.latestFilePos != 0) return MCLIB_SUCCESS;
    showNotice(ids::errors::arrowNotWritten);
    return MCLIB_ERROR;
}

int finish(Draft& draft) {
    if (!draft.arrow) return MCLIB_ERROR;
    mdlCell_setRange(draft.arrow.get(), mdlModelRef_getActive());
    mdlElmdscr_display(draft.arrow.get(), mdlModelRef_getActive(), draft.drawMode);
    if (!draft.isFinal()) return MCLIB_SUCCESS;
    if (!draft.place.hooks.finish) return write(draft);
    handOver(draft);
    return MCLIB_SUCCESS;
}

int buildWhole(PlaceState& place, const Point3d& point, int view, int drawMode) {
    const LocalSystem system(point, view, place.looks.angle);
    if (!system) {
        if (drawMode == MDL_DRAW) showNotice(ids::errors::arrowView, view);
        return MCLIB_ERROR;
    }
    Draft draft(place, view, drawMode);
    draft.gap = textGap(place);
    addParts(draft);
    const int status = finish(draft);
    if (drawMode == MDL_DRAW && !draft.whole) showNotice(ids::errors::arrowNotWhole);
    return status;
}

bool hasScale(const Looks& looks) {
    return looks.scale > 0 && std::isfinite(looks.scale);
}

}  // namespace

int build(const Point3d& point, int view, int drawMode) {
    PlaceState& place = currentPlacing();
    askForLooks(place.hooks.attributes, place.looks);
    if (!hasScale(place.looks)) {
        if (drawMode == MDL_DRAW) showNotice(ids::errors::arrowScale, place.looks.scale);
        return MCLIB_ERROR;
    }
    place.vertices[static_cast<size_t>(place.vertexCount)] = point;
    snapTip(place, point);
    return buildWhole(place, point, view, drawMode);
}

}  // namespace mc::arrows
