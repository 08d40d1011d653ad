#include "mchost/session/keyin.h"

#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"

namespace host {

namespace {

struct InputQueue {
    std::vector<KeyIn> waiting;
};

}  // namespace

std::vector<KeyIn>& keyInQueue() {
    return sessionState<InputQueue>().waiting;
}

}  // namespace host

int mdlInput_sendKeyin(const char* text, int literal, int position, const char* task) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!text || position < -1) return MDL_ERROR;
        auto& queue = host::keyInQueue();
        const bool atEnd = position == -1 || static_cast<size_t>(position) > queue.size();
        queue.insert(atEnd ? queue.end() : queue.begin() + position, {text, literal != 0, !task ? "" : task});
        return MDL_SUCCESS;
    });
}
