// Commands: which one runs, and what starts and ends one.
#include "mchost/mdl/state.h"

#include "mchost/base/guard.h"
#include "mchost/command/command.h"
#include "mchost/command/locate.h"
#include "mchost/command/overlay.h"
#include "mchost/command/running.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/undo.h"
#include "mchost/model/model_ref.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"

namespace host {
namespace {

struct CommandState {
    Command running;
    uint64_t lastSerial = 0;
    uint64_t run = 0;  // how often commands began so far, restarts counted too
    int turns = 0;     // that haven't come back
};

CommandState& state() {
    return sessionState<CommandState>();
}

void showPrompt(const std::string& text) {
    state().running.prompt = text;
    mdlOutput_printf(MDL_FIELD_PROMPT, "%s", text.c_str());
}

// A member of a string list of the current application; empty for 0 and for one that isn't there.
std::string message(int32_t list, int32_t number) {
    constexpr size_t longest = 512;
    char text[longest] = "";
    if (number != 0) mdlResource_loadFromStringList(text, 0, list, number);
    return text;
}

void showMessages() {
    const Command& running = state().running;
    if (!running.message.empty()) mdlOutput_printf(MDL_FIELD_COMMAND, "%s", running.message.c_str());
    if (!running.given.empty()) showPrompt(running.given);
}

// Nothing of the run so far is seen or located any more.
void beginRun() {
    ++state().run;
    clearOverlay();
    forgetLocated();
}

void endCommandOf(MdlDesc* application) {
    if (state().running.owner == application) startDefault();
}

void start(Command command, int32_t commandMessage, int32_t promptMessage) {
    command.owner = mdlSystem_getCurrMdlDesc();
    command.message = message(MDL_COMMAND_MESSAGES, commandMessage);
    const bool goesOn = command.message.empty() && state().turns > 0 && state().running.owner == command.owner;
    command.name = goesOn ? state().running.name : command.message;
    startDefault();
    command.serial = ++state().lastSerial;
    command.model = activeModelSerial();
    command.given = message(MDL_PROMPT_MESSAGES, promptMessage);
    state().running = std::move(command);
    letGoAtEnd<endCommandOf>(state().running.owner);
    showMessages();
}

}  // namespace

Command& runningCommand() {
    return state().running;
}

Turn::Turn() {
    ++state().turns;
    mdlUndo_mark(state().running.name.c_str());
}

Turn::~Turn() {
    --state().turns;
    mdlUndo_mark(nullptr);
}

RunId currentRun() {
    return {commandSerial(), state().run};
}

bool isStill(const RunId& run) {
    return currentRun() == run;
}

void locateAgain() {
    beginRun();
    Command& running = state().running;
    running.stage = Command::Stage::locating;
    running.dataPoint = running.modify.accept;
    running.reset = running.modify.reset;
    running.dynamics = running.modify.dynamics;
    showMessages();
}

void startDefault() {
    beginRun();
    forgetLocateRules();
    const Command before = std::exchange(state().running, {});
    if (!before.message.empty()) mdlOutput_printf(MDL_FIELD_COMMAND, "%s", "");
    if (!before.prompt.empty()) showPrompt("");
}

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

}  // namespace host

using namespace host;

int mdlState_startPrimitive(MdlDataPointFunction dataPoint, MdlResetFunction restart, int32_t commandMessage,
                            int32_t promptMessage) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        Command command;
        command.dataPoint = dataPoint;
        command.restart = restart;
        start(std::move(command), commandMessage, promptMessage);
        return MDL_SUCCESS;
    });
}

int mdlState_startModifyCommand(MdlResetFunction reset, MdlDataPointFunction accept, MdlDynamicsFunction dynamics,
                                MdlStateFunction show, MdlStateFunction clean, int32_t commandMessage,
                                int32_t promptMessage, int32_t, int32_t) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        Command command;
        command.stage = Command::Stage::locating;
        command.dataPoint = accept;
        command.reset = reset;
        command.dynamics = dynamics;
        command.modify = {reset, accept, dynamics, show, clean};
        start(std::move(command), commandMessage, promptMessage);
        return MDL_SUCCESS;
    });
}

int mdlState_setFunction(int32_t number, MdlStateFunction function) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!commandRuns()) return MDL_ERROR;
        Command& running = state().running;
        switch (number) {
            case MDL_STATE_DATA_POINT: running.dataPoint = reinterpret_cast<MdlDataPointFunction>(function); break;
            case MDL_STATE_RESET: running.reset = function; break;
            case MDL_STATE_DYNAMICS: running.dynamics = reinterpret_cast<MdlDynamicsFunction>(function); break;
            default: return MDL_ERROR;
        }
        return MDL_SUCCESS;
    });
}

int mdlState_restartCurrentCommand(void) noexcept {
    return guarded<int>(MDL_ERROR, []() -> int {
        if (commandRuns() && runningCommand().stage != Command::Stage::points) {
            locateAgain();
            return MDL_SUCCESS;
        }
        const MdlResetFunction restart = runningCommand().restart;
        if (!commandRuns() || !restart) return mdlState_startDefaultCommand();
        clearOverlay();
        const ApplicationScope scope(runningCommand().owner);
        restart();
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
