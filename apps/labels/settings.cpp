#include "settings.h"

#include <cmath>
#include <cstddef>

#include <mchost/mdl/dialog.h>
#include "kinds.h"

namespace labels {

namespace {

struct State {
    Settings settings = {};
    Settings* pointer = &settings;
    Style style;
    double millimetresOfUnit = 1000;
};
State& state() {
    static State state;
    return state;
}

constexpr StructField whole(const char* name, size_t offset) {
    return {name, FIELD_INT32, static_cast<uint32_t>(offset), sizeof(int32_t), 1, nullptr};
}
constexpr StructField number(const char* name, size_t offset) {
    return {name, FIELD_DOUBLE, static_cast<uint32_t>(offset), sizeof(double), 1, nullptr};
}
constexpr StructField fields[] = {
    {"text", FIELD_CHARS, offsetof(Settings, text), sizeof(Settings::text), 1, nullptr},
    whole("frame", offsetof(Settings, frame)),
    whole("head", offsetof(Settings, head)),
    whole("leg", offsetof(Settings, leg)),
    whole("snaps", offsetof(Settings, snaps)),
    whole("tagString", offsetof(Settings, tagString)),
    whole("numbered", offsetof(Settings, numbered)),
    whole("number", offsetof(Settings, number)),
    number("headSize", offsetof(Settings, headSize)),
    number("headWidth", offsetof(Settings, headWidth)),
    number("radius", offsetof(Settings, radius)),
    number("scale", offsetof(Settings, scale)),
    number("angle", offsetof(Settings, angle)),
    {},
};

}  // namespace

Settings& settings() {
    return state().settings;
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\n") == text.npos;
}

const Style& startStyle() {
    return state().style;
}

void beginSettings(const Paper& paper, const Style& style) {
    state().style = style;
    state().millimetresOfUnit = paper.millimetresOfUnit;
    Settings& s = settings();
    s.frame = style.frame;
    s.head = style.head;
    s.headSize = style.headSize;
    s.headWidth = 1;
    s.radius = style.radius;
    s.scale = paper.scale;
    s.angle = style.angle * 180 / M_PI;
    s.number = 1;
    constexpr int structures = 4;
    SymbolSet* const set = mdlCExpression_initializeSet(structures, 0, 0);
    if (!set) return;
    mdlDialog_publishStructure(set, "LabelSettings", fields);
    mdlDialog_publishComplexPtr(set, "LabelSettings", "labelsp", &state().pointer);
}

Paper currentPaper() {
    return {.scale = settings().scale, .millimetresOfUnit = state().millimetresOfUnit};
}

void giveLooks(int* headType, double* headSize, double* scale, int* leaderMode, int* frameKind, double* angle,
               double* width) {
    const Settings& s = settings();
    const Paper paper = currentPaper();
    const bool isFixed = s.radius > 0 && hasRadius(s.frame);
    mclibArrow_setCircleSize(isFixed ? s.radius * paper.unitsPerMm() : 0, isFixed);
    *headType = s.head;
    *headSize = s.headSize * sizesPerMm;
    *scale = paper.divisor();
    *leaderMode = s.leg;
    *frameKind = s.frame;
    *angle = s.angle * M_PI / 180;
    *width = s.headWidth * paper.unitsPerMm();
}

}  // namespace labels
