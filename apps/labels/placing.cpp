#include "placing.h"

#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

#include <mchost/mdl/dialog.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/state.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>
#include "arrow.h"
#include "commands.h"
#include "kinds.h"
#include "labels_ids.h"
#include "nearest.h"
#include "refusal.h"
#include "settings.h"

namespace labels {

namespace {

// Of millimetres on paper.
double inUor(double millimetres) {
    return millimetres * currentPaper().unitsPerMm() * mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
}

// ---- hooks ----

void snapTip(Point3d* point) {
    constexpr double reachMm = 100;
    if (const std::optional<Nearest> found = nearestElement(*point, inUor(reachMm))) *point = found->point;
}

void giveText(char* text, const Point3d* vertices, int view) {
    const std::string words = textAt(vertices[0]);
    std::snprintf(text, ARROW_TEXT_LENGTH + 1, "%s", words.c_str());
    if (surroundsText(settings().frame)) return;
    const double last = bearing(vertices[0], statedataP->point, view);
    setTextSide(startStyle().textAttribute, std::cos(last - settings().angle * M_PI / 180) < 0 ? -1 : 1);
}

// The number in a circle that the leader ends on. It counts in master units of the current transform.
void giveSymbol(ElementDescr** symbol, Point3d* end, double direction, double scale, int, int drawMode) {
    constexpr double usualRadius = 4;
    constexpr int justCentre = 7;
    const Settings& s = settings();
    const double radius = (s.radius > 0 ? s.radius : usualRadius) * sizesPerMm / scale;
    const Point3d centre = {end->x + direction * radius, end->y, end->z};
    mclibElement_createEllipse(&centre, radius, startStyle().lineAttribute, nullptr);
    if (mdlElmdscr_new(symbol, nullptr, dgnBufP) != MDL_SUCCESS) return;
    const std::string number = std::to_string(s.number);
    if (mclibElement_createText(&centre, number.c_str(), scale, &justCentre, startStyle().textAttribute, *symbol) !=
        MCLIB_SUCCESS) {
        mdlElmdscr_freeAll(symbol);
        return;
    }
    if (drawMode != MDL_DRAW) return;
    ++settings().number;
    showSettings();
}

void giveLooksOfNumber(int* headType, double* headSize, double* scale, int* leaderMode, int* frameKind, double* angle,
                       double* width) {
    giveLooks(headType, headSize, scale, leaderMode, frameKind, angle, width);
    *width = 0;  // without a text it is the length of a tail
}

}  // namespace

std::string textAt(const Point3d& tip) {
    constexpr double touchMm = 2;
    const Settings& s = settings();
    if (s.tagString == 0) return s.text;
    const std::optional<Nearest> element = nearestElement(tip, inUor(touchMm));
    std::string why;
    const std::optional<std::string> text = textOver(element ? element->position : 0, s.text, why);
    return text && !isBlank(*text) ? *text : s.text;
}

void endCommand() {
    mdlState_startDefaultCommand();
}

bool hasGoodText() {
    const Settings& s = settings();
    std::string why;
    if (isBlank(s.text)) return refuse(ids::notes::noText);
    return s.tagString == 0 || textOver(0, s.text, why) || refuse(ids::notes::badTag, why.c_str());
}

void startPlacing() {
    const Settings& s = settings();
    const bool numbered = s.numbered != 0;
    if (!numbered && !hasGoodText()) return endCommand();
    mdlState_startPrimitive(nullptr, startPlacing, ids::commands::place.number, 0);
    const Style& style = startStyle();
    mclibArrow_drawTextAndArrow(!numbered, 1, style.textAttribute, style.lineAttribute, style.headAttribute, 1, nullptr,
                                nullptr, s.text, style.cell.c_str(), nullptr, s.snaps != 0 ? snapTip : nullptr,
                                numbered ? nullptr : giveText, numbered ? giveSymbol : nullptr, nullptr, nullptr,
                                numbered ? giveLooksOfNumber : giveLooks, endCommand);
}

}  // namespace labels
