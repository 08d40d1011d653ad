#include "mchost/command/fence.h"

#include <optional>

#include "mchost/base/guard.h"
#include "mchost/element/geometry.h"
#include "mchost/mdl/fence.h"
#include "mchost/model/model_ref.h"
#include "mchost/session/owned_state.h"
#include "mchost/space/view.h"

namespace host {
namespace {

struct FenceState {
    std::optional<Fence> fence;
    int32_t view = 0;
};

FenceState& state() {
    return sessionState<FenceState>();
}

}  // namespace

const Fence* activeFence() {
    std::optional<Fence>& fence = state().fence;
    if (fence && fence->model != activeModelSerial()) fence.reset();
    return fence ? &*fence : nullptr;
}

}  // namespace host

using namespace host;

int mdlFence_setView(int32_t view) noexcept {
    if (!isView(view)) return MDL_ERROR;
    state().view = view;
    return MDL_SUCCESS;
}

int mdlFence_fromShape(const MSElementBuffer* shape) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const uint64_t model = activeModelSerial();
        if (model == 0 || mdlElement_getType(shape) != MDL_SHAPE) return MDL_ERROR;
        Fence fence{.corners = {}, .view = state().view, .model = model};
        if (!strokeElement(fence.corners, shape, 1, identityTransform)) return MDL_ERROR;
        state().fence = std::move(fence);
        return MDL_SUCCESS;
    });
}

int mdlFence_clear(int32_t) noexcept {
    if (!activeFence()) return MDL_ERROR;
    state().fence.reset();
    return MDL_SUCCESS;
}

int mdlFence_isActive(void) noexcept {
    return activeFence() != nullptr;
}
