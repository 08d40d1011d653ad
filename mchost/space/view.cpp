#include "mchost/space/view.h"

#include "mchost/session/drawing.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"

namespace host {
namespace {

struct ViewSizes {
    std::array<ViewSize, viewCount> all = {};
};

}  // namespace

ViewTable& viewTable() {
    ViewTable* const ofFile = drawing().getViews();
    return ofFile ? *ofFile : sessionState<ViewTable>();
}

View& viewToChange(int32_t view) {
    ViewTable& table = viewTable();
    table.differ = true;
    return table.views[static_cast<size_t>(view)];
}

void noteViewChanged(int32_t view) {
    viewTable().changed = true;
    tellViewChanged(view);
}

void tellViewChanged(int32_t view) {
    if (Session* const session = Session::current()) session->frontEnd().viewChanged(view);
}

void tellViewsChanged() {
    for (int32_t view = 0; view < viewCount; ++view) {
        if (viewAt(view).isOpen) tellViewChanged(view);
    }
}

const RotMatrix& viewRotation(int32_t view) {
    return isView(view) ? viewAt(view).rotation : identityMatrix;
}

ViewSize& viewSize(int32_t view) {
    return sessionState<ViewSizes>().all[static_cast<size_t>(view)];
}

}  // namespace host
