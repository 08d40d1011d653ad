#include "mchost/space/view.h"

#include <array>

#include "mchost/session/drawing.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

struct Views {
    std::array<RotMatrix, viewCount> rotations;

    Views() { rotations.fill(identityMatrix); }  // all from above
};

RotMatrix& rotationOf(int32_t view) {
    return sessionState<Views>().rotations[static_cast<size_t>(view)];
}

}  // namespace

const RotMatrix& viewRotation(int32_t view) {
    return isView(view) ? rotationOf(view) : identityMatrix;
}

void setViewRotation(int32_t view, const RotMatrix& rotation) {
    if (!isView(view)) return;
    rotationOf(view) = rotation;
    if (Session* const session = Session::current()) session->frontEnd().viewChanged(view);
}

double viewPixelSize(int32_t) {
    constexpr double masterUnits = 0.01;
    return masterUnits * drawing().getUorPerMaster(nullptr);
}

}  // namespace host
