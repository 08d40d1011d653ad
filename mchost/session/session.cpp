#include "mchost/session/session.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "mchost/base/guard.h"
#include "mchost/base/variables.h"
#include "mchost/mdl/system.h"
#include "mchost/session/applications.h"
#include "mchost/session/drawing.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/state.h"

namespace host {

Session::State* activeState = nullptr;
MdlDesc* currentApplication = nullptr;

namespace {

Session* activeSession = nullptr;

// Told by the rooms above before anything runs.
FrontEndMaker makeDefaultFrontEnd = nullptr;
DrawingCalls drawingCalls{};

struct ReturnObservers {
    std::vector<void (*)()> all;
};

bool designFileIsOpen() {
    return drawing().getActive();
}

// Control is back in the host: tells the rooms that wait for that, carries out key-ins, and stores what the finished
// command changed.
void finishCommand(Session::State& state) {
    tellReturn();
    std::erase_if(keyInQueue(), [&](const KeyIn& k) { return k.task.empty() && state.carryOut && state.carryOut(k); });
    drawing().finishCommand();
}

void closeDesignFile() {
    if (designFileIsOpen() && drawing().closeDesignFile() != MDL_SUCCESS) markFailed();
}

}  // namespace

void setDefaultFrontEnd(FrontEndMaker make) {
    makeDefaultFrontEnd = make;
}

void setDrawingCalls(const DrawingCalls& calls) {
    drawingCalls = calls;
}

const DrawingCalls& drawing() {
    return drawingCalls;
}

Session::Session(SessionOptions options) : state_(std::make_unique<State>()) {
    if (activeSession) throw std::logic_error("a session is running already in this process");
    static int32_t lastNumber = 0;
    state_->number = ++lastNumber;
    sessionOwner().end();
    state_->frontEnd = options.frontEnd ? std::move(options.frontEnd) : makeDefaultFrontEnd();
    for (const auto& [name, value] : options.variables) variables().define(name, value, Variables::levelCount - 1);
    state_->carryOut = std::move(options.carryOut);
    activeSession = this;
    activeState = state_.get();
    startClock();
    startParameters();
}

Session::~Session() {
    finish();
    sessionOwner().end();
    currentApplication = nullptr;
    activeSession = nullptr;
    activeState = nullptr;
}

void Session::finish() {
    for (size_t i = state_->applications.size(); i-- > 0;) endApplication(state_->applications[i].get());
    closeDesignFile();
}

Session* Session::current() {
    return activeSession;
}

int Session::exitStatus() const {
    return state_->exitStatus == 0 && state_->failureNoted ? 1 : state_->exitStatus;
}

FrontEnd& Session::frontEnd() {
    return *state_->frontEnd;
}

Session::State& Session::state() {
    return *state_;
}

void markFailed() {
    if (activeState && activeState->exitStatus == 0) activeState->exitStatus = 1;
}

void observeReturn(void (*observer)()) {
    sessionState<ReturnObservers>().all.push_back(observer);
}

void tellReturn() {
    for (void (*observer)() : sessionState<ReturnObservers>().all) observer();
}

ApplicationScope::ApplicationScope(MdlDesc* desc) : before_(currentApplication), entered_(desc) {
    if (activeState) ++activeState->depth;
    if (!desc) return;
    ++desc->depth;
    currentApplication = desc;
}

ApplicationScope::~ApplicationScope() {
    currentApplication = before_;
    if (!activeState) return;
    if (entered_ && --entered_->depth == 0 && entered_->ending) finishApplication(*entered_);
    if (activeState->depth == 1) guarded([] { finishCommand(*activeState); });
    --activeState->depth;
}

}  // namespace host

int mdlSystem_memoryFailures(void) noexcept {
    return !host::activeState ? 0 : host::activeState->memoryFailures;
}
