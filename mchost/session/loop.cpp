#include "mchost/session/loop.h"

#include <algorithm>

#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"

namespace host {

namespace {

struct LoopState {
    bool timersRan = false;  // at the last turn: the front end has one now, however fast they come
};

// Whether any was due.
bool runTimers(Session& session) {
    bool& ran = sessionState<LoopState>().timersRan;
    ran = !ran && session.runDueTimers();
    return ran;
}

std::optional<KeyIn> takenKeyIn(bool (*takes)(const KeyIn&)) {
    std::vector<KeyIn>& queue = keyInQueue();
    const auto found = std::ranges::find_if(queue, [&](const KeyIn& k) { return k.task.empty() && takes(k); });
    if (found == queue.end()) return std::nullopt;
    KeyIn keyIn = std::move(*found);
    queue.erase(found);
    return keyIn;
}

}  // namespace

Event nextEvent(const Awaited& awaited, bool (*takesKeyIn)(const KeyIn&)) {
    Session* const session = Session::current();
    if (!session) return Quit{};
    tellReturn();
    if (takesKeyIn)
        if (auto keyIn = takenKeyIn(takesKeyIn)) return *std::move(keyIn);
    if (runTimers(*session)) return Nothing{};
    return session->frontEnd().wait(awaited, session->timeToNextTimer());
}

void tellRefused(const Event& event) {
    if (Session* const session = Session::current()) session->frontEnd().refused(event);
}

}  // namespace host
