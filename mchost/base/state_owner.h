// Who holds the state that lasts: things of C++ types, one of each type, made at first use and destroyed in reverse
// order of making when their owner ends. At each time the process has one owner for all of it: the running session, or,
// while there is none, the time without one. What is made in that time ends when a session begins or the process ends.
#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace host {

// Where the T of the session stands; null while there is none. Its address stands for the type.
template <class T>
inline constinit void* placeInSession = nullptr;

class StateOwner {
  public:
    enum class Kind { session, application };
    explicit StateOwner(Kind kind) : kind_(kind) {}
    ~StateOwner() { end(); }
    StateOwner(const StateOwner&) = delete;
    StateOwner& operator=(const StateOwner&) = delete;

    // The T of this owner; made from the arguments when there is none.
    template <class T, class... Arguments>
    T& state(Arguments&&... arguments) {
        if (void* const known = find(&placeInSession<T>)) return *static_cast<T*>(known);
        auto made = std::make_unique<T>(std::forward<Arguments>(arguments)...);
        keep({&placeInSession<T>, made.get(), [](void* state) { delete static_cast<T*>(state); }});
        return *made.release();
    }

    // Destroys everything, the last made first. What destructors make on the way is destroyed too.
    void end() noexcept;

  private:
    struct Kept {
        void** place;
        void* state;
        void (*destroy)(void* state);
    };
    void* find(void** place) const;
    void keep(const Kept& made);

    Kind kind_;
    std::vector<Kept> kept_;  // in order of making
};

// The owner of what lasts longer than an application: the session's.
StateOwner& sessionOwner();

// The T of the session. T lies in one library: each has a state of its own for a type that it shares with another.
template <class T>
T& sessionState() {
    if (void* const place = placeInSession<T>) return *static_cast<T*>(place);
    return sessionOwner().state<T>();
}

}  // namespace host
