#include "mchost/base/state_owner.h"

namespace host {

size_t nextStateNumber() noexcept {
    static size_t next = 0;
    return next++;
}

void StateOwner::keep(size_t number, void* state, void (*destroy)(void* state)) {
    if (number >= places_.size()) places_.resize(number + 1);
    kept_.push_back({number, state, destroy});
    places_[number] = state;
}

void StateOwner::end() noexcept {
    while (!kept_.empty()) {
        const Kept last = kept_.back();
        kept_.pop_back();
        last.destroy(last.state);  // which still finds itself
        places_[last.number] = nullptr;
    }
}

StateOwner& sessionOwner() {
    static StateOwner owner;
    return owner;
}

}  // namespace host
