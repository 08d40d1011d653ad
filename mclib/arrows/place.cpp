// Placing: by the user's points, or at once.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/text.h"
#include "mclib/arrows/build.h"
#include "mclib/arrows/hooks.h"
#include "mclib/arrows/place.h"
#include "mclib/arrows/state.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/text_buffer.h"
#include "resources/ids.h"

namespace mc::arrows {

namespace {

using Prompt = mdl::Message<MCLIB_ARROW_PROMPTS>;

int prompt(const char* given, Prompt own) {
    char text[messageFormatSize] = "";
    if (!given) mdlOutput_rscsPrintf(text, 0, MCLIB_ARROW_PROMPTS, own.number);
    return mdlOutput_prompt(given ? given : text);
}

// Functions of the command that runs.
void setDataPoint(MdlDataPointFunction function) {
    mdlState_setFunction(MDL_STATE_DATA_POINT, reinterpret_cast<MdlStateFunction>(function));
}
void setDynamics(MdlDynamicsFunction function) {
    mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(function));
}
int setReset(MdlResetFunction function) {
    return mdlState_setFunction(MDL_STATE_RESET, function);
}

// ---- the steps of placing ----

void showArrow(Point3d* point, int32_t view, int32_t drawMode) {
    build(*point, view, drawMode);
}

void placeAndRestart(Point3d* point, int32_t view) {
    build(*point, view, MDL_DRAW);
    mdlState_restartCurrentCommand();
}

// Without a hook the command ends, as it does for every command without a function for resets.
void endPlacing() {
    PlaceState& place = currentPlacing();
    if (place.vertexCount > 1) {
        --place.vertexCount;  // the vertex that followed the cursor
        Point3d last = place.lastPoint;
        placeAndRestart(&last, place.lastView);
    } else if (place.hooks.reset) {
        callHook("", place.hooks.reset);
    } else {
        mdlState_startDefaultCommand();
    }
}

// The part that was placed so far stays highlighted; what was so before it goes.
void showPlacedPart(PlaceState& place, const Point3d& point, int view) {
    if (place.vertexCount > 1) {
        --place.vertexCount;
        build(place.lastPoint, place.lastView, MDL_ERASE);
        ++place.vertexCount;
    }
    if (place.vertexCount > 0)
        build(point, view, MDL_HIGHLIGHT);
    else
        place.vertices[0] = point;
}

void addVertex(Point3d* point, int32_t view) {
    PlaceState& place = currentPlacing();
    askForLooks(place.hooks.attributes, place.looks);
    showPlacedPart(place, *point, view);
    ++place.vertexCount;
    place.lastPoint = *point;
    place.lastView = view;
    place.hooks.snap = nullptr;
    if (place.vertexCount >= ARROW_MOST_VERTICES) return endPlacing();
    setDataPoint(place.looks.leaderMode == ARROW_LEG_FREE ? addVertex : placeAndRestart);
    setReset(endPlacing);
    setDynamics(showArrow);
    prompt(place.nextPrompt ? place.nextPrompt->c_str() : nullptr, ids::arrowPrompts::nextPoint);
}

// ---- starting ----

int startText(const PlaceState& place, const char* firstPrompt) {
    setDataPoint(placeAndRestart);
    setDynamics(showArrow);
    if (setReset(place.hooks.reset) != MDL_SUCCESS) return MCLIB_ERROR;
    return prompt(firstPrompt, ids::arrowPrompts::placeText);
}

int startLeader(PlaceState& place, const char* firstPrompt, bool tipIsKnown) {
    setDataPoint(addVertex);
    if (!tipIsKnown) place.vertexCount = 0;
    setDynamics(tipIsKnown ? showArrow : nullptr);
    if (setReset(place.hooks.reset) != MDL_SUCCESS) return MCLIB_ERROR;
    return prompt(firstPrompt, tipIsKnown ? ids::arrowPrompts::nextPoint : ids::arrowPrompts::firstPoint);
}

void takeCellName(PlaceState& place, const char* name) {
    mdlCnv_convertMultibyteToUnicode(name ? name : "", name ? static_cast<int>(std::strlen(name)) : 0, place.cellName,
                                     static_cast<int>(std::size(place.cellName)));
}

// ---- at once ----

bool isVertexCount(int count) {
    return count >= 2 && count <= ARROW_MOST_VERTICES;
}

void tellOfLongText(const char* text) {
    if (std::strlen(text) > ARROW_TEXT_LENGTH)
        toolSubsystem_printf("Error: Max length (%d) of ArrowText exceeded\n", ARROW_TEXT_LENGTH);
}

}  // namespace

constinit RoomState<PlaceState> placeState;

void askForLooks(McArrowAttributesHook hook, Looks& looks) {
    callHook("PPPPPPP", hook, &looks.headType, &looks.headSize, &looks.scale, &looks.leaderMode, &looks.frameKind,
             &looks.angle, &looks.width);
}

void tellOfMissingHook() {
    mclibError_msgBoxPrintf(MSGBOX_NOTICE, "%s", "Funksjonen <userArrow_changeArrowAttributes> kan ikke vaere NULL!");
}

}  // namespace mc::arrows

using namespace mc;
using namespace mc::arrows;

int mclibArrow_drawTextAndArrow(int withText, int withArrow, int textAttrId, int lineAttrId, int headAttrId,
                                int headAtStart, const char* firstPrompt, const char* nextPrompt, const char* text,
                                const char* cellName, const Point3d* startPoint, McArrowSnapHook arrowSnapHook,
                                McArrowTextHook arrowTextHook, McArrowSymbolHook arrowSymbolHook,
                                McArrowCellHook arrowCellHook, McArrowFinishHook arrowFinishHook,
                                McArrowAttributesHook userArrow_changeArrowAttributes,
                                McArrowResetHook arrowResetHook) {
    PlaceState& place = currentPlacing();
    place.withText = withText != 0;
    place.withArrow = withArrow != 0;
    place.withTail = true;
    place.textAttrId = textAttrId;
    place.lineAttrId = lineAttrId;
    place.headAttrId = headAttrId;
    place.headAtStart = headAtStart != 0;
    place.nextPrompt = nextPrompt ? std::optional<std::string>(nextPrompt) : std::nullopt;
    copyText(place.text, text ? text : "");
    takeCellName(place, cellName);
    place.snapOffset1 = place.snapOffset2 = 0.0;
    place.hooks = {.snap = arrowSnapHook,
                   .text = arrowTextHook,
                   .symbol = arrowSymbolHook,
                   .cell = arrowCellHook,
                   .finish = arrowFinishHook,
                   .attributes = userArrow_changeArrowAttributes,
                   .reset = arrowResetHook};
    if (!userArrow_changeArrowAttributes) tellOfMissingHook();
    place.vertexCount = 1;
    if (startPoint) place.vertices[0] = *startPoint;
    if (place.withText && !place.withArrow) return startText(place, firstPrompt);
    return startLeader(place, firstPrompt, startPoint || arrowSnapHook);
}

int mclibArrow_drawTextArrow(const Point3d* vertices, int nVertices, int textAttrId, int lineAttrId, int headAttrId,
                             double scale, double angle, const char* text, const char* cellName, int headType,
                             int headSize, int frameKind, int view) {
    if (!vertices || !isVertexCount(nVertices)) {
        showNotice(ids::errors::arrowVertices, nVertices);
        return MCLIB_ERROR;
    }
    PlaceState& place = currentPlacing();
    place.withText = place.withArrow = place.headAtStart = true;
    place.textAttrId = textAttrId;
    place.lineAttrId = lineAttrId;
    place.headAttrId = headAttrId;
    place.hooks = {};
    place.looks = {.headType = headType,
                   .headSize = static_cast<double>(headSize),
                   .scale = scale,
                   .leaderMode = ARROW_LEG_FREE,
                   .frameKind = frameKind,
                   .angle = angle,
                   .width = 1.0};
    tellOfLongText(text ? text : "");
    copyText(place.text, text ? text : "");
    takeCellName(place, cellName);
    place.vertexCount = nVertices - 1;
    std::copy_n(vertices, place.vertexCount, place.vertices.begin());
    return build(vertices[place.vertexCount], view, MDL_DRAW);
}

void mclibArrow_setCircleSize(double size, int use) {
    placeState->circleSize = size;
    placeState->useCircleSize = use != 0;
}

FilePos mclibArrow_getLatestFilePos(void) {
    return placeState->latestFilePos;
}

void mclibArrow_initFilePos(void) {
    placeState->latestFilePos = 0;
}
