#include "mchost/space/view.h"

#include <array>

#include "mchost/session/session.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

constexpr auto fromAbove = [] {
    std::array<RotMatrix, viewCount> views{};
    views.fill(identityMatrix);
    return views;
}();
std::array<RotMatrix, viewCount> views = fromAbove;  // lives for a session

}  // namespace

const RotMatrix& viewRotation(int32_t view) {
    return isView(view) ? views[static_cast<size_t>(view)] : identityMatrix;
}

void setViewRotation(int32_t view, const RotMatrix& rotation) {
    static const bool watching = (observeSessionEnd([] { views = fromAbove; }), true);
    static_cast<void>(watching);
    if (isView(view)) views[static_cast<size_t>(view)] = rotation;
}

}  // namespace host
