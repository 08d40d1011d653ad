// The one place of a session that waits. Whoever needs something of the user runs it with what is awaited.
#pragma once

#include <optional>
#include <utility>

#include "mchost/session/front_end.h"

namespace host {

// The next event: control is with the host, so what waits for that is done, and timers that are due run; then, for
// AnyEvent, the first key-in to the host that `takesKeyIn` knows, else what the front end gives. Nothing when timers
// ran: look again whether the event is still awaited. Quit without a session.
Event nextEvent(const Awaited& awaited, bool (*takesKeyIn)(const KeyIn&) = nullptr);

// Tells the front end that it wasn't carried out.
void tellRefused(const Event& event);

// The answer of the user; nothing when nobody gives one.
template <class Answer>
std::optional<Answer> answerTo(const Awaited& awaited) {
    for (;;) {
        Event event = nextEvent(awaited);
        if (auto* answer = std::get_if<Answer>(&event)) return std::move(*answer);
        if (std::holds_alternative<NobodyThere>(event) || std::holds_alternative<Quit>(event)) return std::nullopt;
    }
}

}  // namespace host
