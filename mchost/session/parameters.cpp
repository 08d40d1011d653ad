// Active parameters and settings.
#include <cstring>
#include <variant>

#include "mchost/base/guard.h"
#include "mchost/base/variables.h"
#include "mchost/mdl/system.h"
#include "mchost/session/drawing.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/state.h"

namespace host {

namespace {

constexpr size_t styleNameSize = 64;

struct Parameters {
    int32_t style = 0;
    int32_t font = 0;
    double textSize = 10000.0;  // one master unit of a new design file
    int32_t level = 1;          // the level of a new model
    int32_t color = 0;
    int32_t weight = 0;
    int32_t graphicGroup = 1;
    char styleName[styleNameSize] = "";

    ~Parameters();
};

constexpr MdlTcb initialControlBlock = {
    .designFileName = "",
    .readoutFormat = 5,  // four decimals
    .readoutFlags = 0,
    .activeSlant = 0,
    .workmode = 0,
    .cellLibraryName = "",
};

// Published by its address, so it stands as long as the process; what it holds goes with the session.
MdlTcb controlBlock = initialControlBlock;

Parameters::~Parameters() {
    controlBlock = initialControlBlock;
}

Parameters& active() {
    return sessionState<Parameters>();
}

using Place = std::variant<std::monostate, int32_t*, double*>;

Place placeOf(int parameter) {
    switch (parameter) {
        case MDL_PARAM_STYLE: return &active().style;
        case MDL_PARAM_FONT: return &active().font;
        case MDL_PARAM_TEXT_SIZE:
        case MDL_PARAM_TEXT_HEIGHT: return &active().textSize;
        case MDL_PARAM_LEVEL: return &active().level;
        case MDL_PARAM_COLOR: return &active().color;
        case MDL_PARAM_WEIGHT: return &active().weight;
        case MDL_PARAM_GRAPHIC_GROUP: return &active().graphicGroup;
        default: return {};
    }
}

int setStyleByName(const char* name) {
    int32_t number = 0;
    if (std::strlen(name) >= styleNameSize) return MDL_ERROR;
    if (drawing().lineStyleFromName(&number, name, nullptr) != MDL_SUCCESS) return MDL_ERROR;
    std::strcpy(active().styleName, name);
    active().style = number;
    return MDL_SUCCESS;
}

int get(void* valueP, Place place) {
    if (auto* integer = std::get_if<int32_t*>(&place))
        return std::memcpy(valueP, *integer, sizeof **integer), MDL_SUCCESS;
    if (auto* number = std::get_if<double*>(&place)) return std::memcpy(valueP, *number, sizeof **number), MDL_SUCCESS;
    return MDL_ERROR;
}

int set(const void* valueP, Place place) {
    if (auto* integer = std::get_if<int32_t*>(&place))
        return std::memcpy(*integer, valueP, sizeof **integer), MDL_SUCCESS;
    if (auto* number = std::get_if<double*>(&place)) return std::memcpy(*number, valueP, sizeof **number), MDL_SUCCESS;
    return MDL_ERROR;
}

// 0 for "DGN", for any other text and without the variable.
int workmode() {
    const std::string name = variables().expandedValue("MS_WORKMODE").value_or("");
    return name == "DWG" ? 1 : name == "V7" ? 2 : 0;
}

}  // namespace

void startParameters() {
    controlBlock = initialControlBlock;
    controlBlock.workmode = workmode();
    active();
}

}  // namespace host

using namespace host;

MdlTcb* tcbP = &controlBlock;

int mdlParams_getActive(void* valueP, int parameter) noexcept {
    if (!valueP) return MDL_ERROR;
    if (parameter == MDL_PARAM_LINE_STYLE_NAME) {
        std::strcpy(static_cast<char*>(valueP), active().styleName);
        return MDL_SUCCESS;
    }
    return get(valueP, placeOf(parameter));
}

int mdlParams_setActive(const void* valueP, int parameter) noexcept {
    if (!valueP) return MDL_ERROR;
    if (parameter == MDL_PARAM_LINE_STYLE_NAME) {
        return guarded<int>(MDL_ERROR, [&] { return setStyleByName(static_cast<const char*>(valueP)); });
    }
    const int status = set(valueP, placeOf(parameter));
    if (parameter == MDL_PARAM_STYLE && status == MDL_SUCCESS) active().styleName[0] = '\0';
    return status;
}

int mdlSystem_getWorkmode(void) noexcept {
    return guarded<int>(0, [] { return controlBlock.workmode = workmode(); });
}

void mdlSystem_updateGraphicGroup(void) noexcept {
    ++active().graphicGroup;
}
