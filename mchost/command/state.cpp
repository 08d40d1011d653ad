// Commands: which one runs, and what the host calls in it.
#include "mchost/mdl/state.h"

#include "mchost/base/guard.h"
#include "mchost/command/command.h"
#include "mchost/element/range.h"
#include "mchost/mdl/system.h"
#include "mchost/model/model_ref.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"

namespace host {
namespace {

struct Command {
    uint64_t serial = 0;  // 0: the default command
    MdlDesc* owner = nullptr;
    uint64_t model = 0;  // serial of the model that it works in; 0 none
    MdlDataPointFunction dataPoint = nullptr;
    MdlResetFunction reset = nullptr, restart = nullptr;
    MdlDynamicsFunction dynamics = nullptr;
    std::string prompt = {};
};

// Published by its address, so it stands as long as the process; what it holds goes with the session.
MdlStateData data;

struct CommandState {
    Command running;
    uint64_t lastSerial = 0;
    bool inDynamics = false;
    std::vector<mdl::DescrPtr> drawn;

    ~CommandState() { data = {}; }
};

CommandState& state() {
    return sessionState<CommandState>();
}

void showPrompt(const char* text) {
    state().running.prompt = text;
    mdlOutput_printf(2, "%s", text);
}

void startDefault() {
    state().drawn.clear();
    const bool prompted = !state().running.prompt.empty();
    state().running = {};
    if (prompted) showPrompt("");
}

void endCommandOf(MdlDesc* application) {
    if (state().running.owner == application) startDefault();
}

// Calls a function of the command that runs, as its application. The command may be another one afterwards.
template <class Function, class... Arguments>
void call(Function function, Arguments... arguments) {
    const ApplicationScope scope(state().running.owner);
    function(arguments...);
}

void keep(const ElementDescr* ed) {
    ElementDescr* copy = nullptr;
    if (mdlElmdscr_duplicate(&copy, ed) == MDL_SUCCESS) state().drawn.emplace_back(copy);
}

void tellDisplayed(const ElementDescr& shown, int32_t drawMode) {
    if (Session* const session = Session::current()) session->frontEnd().displayed(shown, drawMode);
}

// Stands for an element that is in no descriptor.
ElementDescr elementAlone(const MSElementBuffer* element) {
    ElementDescr alone{};
    alone.element = const_cast<MSElementBuffer*>(element);
    return alone;
}

bool canDisplay(const MSElementBuffer* element, int32_t drawMode) {
    const bool known = (drawMode >= MDL_DRAW && drawMode <= MDL_HIGHLIGHT) || drawMode == MDL_DYNAMICS;
    return known && element && elementIsSound(element, MDL_ELEMENT_BYTES);
}

}  // namespace

bool commandRuns() {
    if (state().running.serial != 0 && state().running.model != activeModelSerial()) startDefault();
    return state().running.serial != 0;
}

const std::string& commandPrompt() {
    return state().running.prompt;
}

uint64_t commandSerial() {
    return commandRuns() ? state().running.serial : 0;
}

bool moveCursor(const Point3d& point, int32_t view) {
    if (!commandRuns() || !isView(view) || !isFinite(point)) return false;
    data = {point, view};
    state().drawn.clear();
    if (!state().running.dynamics) return true;
    Point3d given = point;
    state().inDynamics = true;
    call(state().running.dynamics, &given, view, int32_t{MDL_DYNAMICS});
    state().inDynamics = false;
    return true;
}

bool giveDataPoint(const Point3d& point, int32_t view) {
    if (!moveCursor(point, view) || !commandRuns()) return false;
    state().drawn.clear();
    Point3d given = point;
    if (state().running.dataPoint) call(state().running.dataPoint, &given, view);
    return true;
}

bool giveReset() {
    if (!commandRuns()) return false;
    state().drawn.clear();
    if (state().running.reset)
        call(state().running.reset);
    else
        startDefault();
    return true;
}

const std::vector<mdl::DescrPtr>& dynamicElements() {
    return state().drawn;
}

}  // namespace host

using namespace host;

MdlStateData* statedataP = &data;

int mdlState_startPrimitive(MdlDataPointFunction dataPoint, MdlResetFunction restart, int32_t, int32_t) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        MdlDesc* const owner = mdlSystem_getCurrMdlDesc();
        startDefault();
        state().running = {.serial = ++state().lastSerial,
                           .owner = owner,
                           .model = activeModelSerial(),
                           .dataPoint = dataPoint,
                           .restart = restart};
        letGoAtEnd<endCommandOf>(owner);
        return MDL_SUCCESS;
    });
}

int mdlState_setFunction(int32_t number, MdlStateFunction function) noexcept {
    if (!commandRuns()) return MDL_ERROR;
    Command& running = state().running;
    switch (number) {
        case MDL_STATE_DATA_POINT: running.dataPoint = reinterpret_cast<MdlDataPointFunction>(function); break;
        case MDL_STATE_RESET: running.reset = function; break;
        case MDL_STATE_DYNAMICS: running.dynamics = reinterpret_cast<MdlDynamicsFunction>(function); break;
        default: return MDL_ERROR;
    }
    return MDL_SUCCESS;
}

int mdlState_restartCurrentCommand(void) noexcept {
    return guarded<int>(MDL_ERROR, []() -> int {
        if (!commandRuns() || !state().running.restart) return mdlState_startDefaultCommand();
        state().drawn.clear();
        call(state().running.restart);
        return MDL_SUCCESS;
    });
}

int mdlState_startDefaultCommand(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        startDefault();
        return MDL_SUCCESS;
    });
}

int mdlOutput_prompt(const char* text) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        showPrompt(!text ? "" : text);
        return MDL_SUCCESS;
    });
}

int mdlElement_display(const MSElementBuffer* element, int32_t drawMode) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!canDisplay(element, drawMode)) return MDL_ERROR;
        ElementDescr* shown = nullptr;
        const bool seen = drawMode == MDL_DYNAMICS && state().inDynamics;
        tellDisplayed(elementAlone(element), drawMode);
        if (seen && mdlElmdscr_new(&shown, nullptr, element) == MDL_SUCCESS) state().drawn.emplace_back(shown);
        return MDL_SUCCESS;
    });
}

int mdlElmdscr_display(ElementDescr* ed, ModelRef*, int32_t drawMode) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!ed || !canDisplay(ed->element, drawMode)) return MDL_ERROR;
        if (drawMode == MDL_DYNAMICS && state().inDynamics) keep(ed);
        tellDisplayed(*ed, drawMode);
        return MDL_SUCCESS;
    });
}
