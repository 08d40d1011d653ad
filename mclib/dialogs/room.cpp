// The room's part of an application's start and end.
#include "mclib/dialogs/hooks.h"
#include "mclib/dialogs/selection.h"

namespace mc {

namespace dialogs {

namespace {

bool begin(GlobalData&, const Start&) {
    return true;
}

// What is left when an application ends while one of its dialogs is open.
void release(GlobalData& data) {
    forgetSelection(data);
}

void end() {
    selectionState.end();
}

}  // namespace

}  // namespace dialogs

const Room dialogsRoom = {
    .name = "dialogs",
    .hooks = {dialogs::messageDialogHooks, dialogs::selectionHooks, dialogs::searchHooks, dialogs::stringListHooks},
    .published = {},
    .begin = dialogs::begin,
    .ready = nullptr,
    .newDesignFile = nullptr,
    .applicationEnds = nullptr,
    .release = dialogs::release,
    .end = dialogs::end};

}  // namespace mc
