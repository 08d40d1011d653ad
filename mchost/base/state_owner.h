// Who holds the state that lasts: things of C++ types, one of each type, made at first use and destroyed in reverse
// order of making when their owner ends. At each time the process has one owner for all of it: the running session, or,
// while there is none, the time without one. What is made in that time ends when a session begins or the process ends.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "mchost/base/export.h"

namespace host {

// A number for each type that is kept.
size_t nextStateNumber() noexcept;
template <class T>
size_t stateNumber() noexcept {
    static const size_t number = nextStateNumber();
    return number;
}

class StateOwner {
  public:
    StateOwner() = default;
    ~StateOwner() { end(); }
    StateOwner(const StateOwner&) = delete;
    StateOwner& operator=(const StateOwner&) = delete;

    // The T of this owner; made from the arguments when there is none.
    template <class T, class... Arguments>
    T& state(Arguments&&... arguments) {
        const size_t number = stateNumber<T>();
        if (number < places_.size() && places_[number]) return *static_cast<T*>(places_[number]);
        auto made = std::make_unique<T>(std::forward<Arguments>(arguments)...);
        keep(number, made.get(), [](void* state) { delete static_cast<T*>(state); });
        return *made.release();
    }

    // Destroys everything, the last made first. What destructors make on the way is destroyed too.
    void end() noexcept;

  private:
    struct Kept {
        size_t number;
        void* state;
        void (*destroy)(void* state);
    };
    void keep(size_t number, void* state, void (*destroy)(void* state));

    std::vector<void*> places_;  // by number of type; null where nothing is kept
    std::vector<Kept> kept_;     // in order of making
};

// The owner of what lasts longer than an application: the session's.
HOST_EXPORT StateOwner& sessionOwner();

// The T of the session. T lies in one library: each has a state of its own for a type that it shares with another.
template <class T>
T& sessionState() {
    return sessionOwner().state<T>();
}

}  // namespace host
