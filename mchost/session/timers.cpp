// Ticks and timers: 60 ticks a second by the steady clock, or by hand.
#include <algorithm>
#include <chrono>
#include <limits>

#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/state.h"

namespace host {

namespace {

using SteadyClock = std::chrono::steady_clock;
using Ticks = std::chrono::duration<int64_t, std::ratio<1, 60>>;

struct Clock {
    SteadyClock::time_point start = SteadyClock::now();
    bool stopped = false;  // it is turned by hand
    int32_t ticks = 0;     // while it stands still
};

int32_t now() {
    const Clock& clock = sessionState<Clock>();
    if (clock.stopped) return clock.ticks;
    return static_cast<int32_t>(std::chrono::duration_cast<Ticks>(SteadyClock::now() - clock.start).count());
}

int32_t later(int32_t tick, int32_t ticks) {
    return ticks > std::numeric_limits<int32_t>::max() - tick ? std::numeric_limits<int32_t>::max() : tick + ticks;
}

// The timer that is due first, not after `limit`; the end when there is none.
std::vector<Timer>::iterator nextTimer(std::vector<Timer>& timers, int32_t limit) {
    const auto next = std::ranges::min_element(
        timers, [](const Timer& a, const Timer& b) { return std::pair(a.due, a.id) < std::pair(b.due, b.id); });
    return next != timers.end() && next->due <= limit ? next : timers.end();
}

void run(Session::State& state, std::vector<Timer>::iterator place) {
    const Timer timer = *place;
    state.timers.erase(place);
    ApplicationScope scope(timer.application);
    guarded([&] { timer.function(timer.id); });
}

}  // namespace

void startClock() {
    sessionState<Clock>();
}

void Session::advanceTicks(int32_t ticks) {
    Clock& clock = sessionState<Clock>();
    const int32_t target = later(now(), std::max(ticks, 0));
    clock.ticks = now();
    clock.stopped = true;
    for (auto next = nextTimer(state_->timers, target); next != state_->timers.end();
         next = nextTimer(state_->timers, target)) {
        clock.ticks = std::max(clock.ticks, next->due);
        run(*state_, next);
    }
    clock.ticks = std::max(clock.ticks, target);
}

bool Session::runDueTimers() {
    const int32_t limit = now();
    bool ran = false;
    for (auto next = nextTimer(state_->timers, limit); next != state_->timers.end();
         next = nextTimer(state_->timers, limit)) {
        run(*state_, next);
        ran = true;
    }
    return ran;
}

std::optional<std::chrono::milliseconds> Session::timeToNextTimer() const {
    const auto next = nextTimer(state_->timers, std::numeric_limits<int32_t>::max());
    if (next == state_->timers.end()) return std::nullopt;
    const Ticks left(std::max(next->due - now(), 0));
    return std::chrono::ceil<std::chrono::milliseconds>(left);
}

}  // namespace host

using namespace host;

int32_t mdlSystem_getTicks(void) noexcept {
    return now();
}

int mdlSystem_setTimerFunction(int32_t* idP, int32_t ticks, void* function) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!activeState || !currentApplication || !function) return MDL_ERROR;
        // At least one tick: a timer that sets itself again comes back to its caller.
        const int32_t due = later(now(), std::max(ticks, 1));
        const int32_t id = ++activeState->lastTimerId;
        activeState->timers.push_back({due, id, currentApplication, reinterpret_cast<void (*)(int32_t)>(function)});
        if (idP) *idP = id;
        return MDL_SUCCESS;
    });
}

int mdlSystem_cancelTimer(int32_t id) noexcept {
    if (!activeState) return MDL_ERROR;
    const bool found = std::erase_if(activeState->timers, [&](const Timer& timer) { return timer.id == id; }) > 0;
    return found ? MDL_SUCCESS : MDL_ERROR;
}
