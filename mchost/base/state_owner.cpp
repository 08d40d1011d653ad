#include "mchost/base/state_owner.h"

#include <algorithm>

namespace host {

void* StateOwner::find(void** place) const {
    const auto known = std::ranges::find(kept_, place, &Kept::place);
    return known == kept_.end() ? nullptr : known->state;
}

void StateOwner::keep(const Kept& made) {
    kept_.push_back(made);
    if (kind_ == Kind::session) *made.place = made.state;
}

void StateOwner::end() noexcept {
    while (!kept_.empty()) {
        const Kept last = kept_.back();
        last.destroy(last.state);  // which still finds itself
        if (kind_ == Kind::session) *last.place = nullptr;
        std::erase_if(kept_, [&](const Kept& kept) { return kept.place == last.place; });
    }
}

StateOwner& sessionOwner() {
    static StateOwner owner(StateOwner::Kind::session);
    return owner;
}

}  // namespace host
