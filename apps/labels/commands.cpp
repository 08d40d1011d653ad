#include "commands.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <mchost/mdl/dialog.h>
#include <mchost/mdl/state.h>
#include <mchost/mdl/names.hpp>
#include <mclib/app/names.hpp>
#include <mclib/app/tell.hpp>
#include "changing.h"
#include "gathering.h"
#include "labels_ids.h"
#include "placing.h"
#include "refusal.h"
#include "settings.h"

namespace labels {

namespace {

struct Button {
    const char* name;
    mdl::ItemId item;
    void (*start)();
};
// clang-format off
constexpr Button buttons[] = {
    {"place",         ids::labels::place,        startPlacing},
    {"move-tip",      ids::labels::moveTip,      startMovingTip},
    {"move-text",     ids::labels::moveText,     startMovingText},
    {"move",          ids::labels::moveAll,      startMovingAll},
    {"change-text",   ids::labels::changeText,   startChangingText},
    {"insert-vertex", ids::labels::insertVertex, startInsertingVertex},
    {"delete-vertex", ids::labels::deleteVertex, startDeletingVertex},
    {"add-leader",    ids::labels::addLeader,    startAddingLeader},
    {"erase-leader",  ids::labels::deleteLeader, startDeletingLeader},
    {"replace-head",  ids::labels::replaceHead,  startReplacingHead},
    {"align-edges",   ids::labels::alignEdge,    startAligningEdges},
    {"align-row",     ids::labels::alignRow,     startAligningRow},
    {"collect",       ids::labels::collect,      startCollecting},
    {"renumber",      ids::labels::renumber,     startRenumbering},
};
// clang-format on

const Button* buttonNamed(std::string_view name) {
    const auto button = std::ranges::find_if(buttons, [&](const Button& b) { return mcapp::sameName(b.name, name); });
    return button == std::end(buttons) ? nullptr : button;
}

void start(const Button& button) {
    if (settings().scale > 0 || refuse(ids::notes::badScale)) button.start();
}

void press(DialogMessage* message) {
    message->handled = 0;
    if (message->type != ITEM_ACTIVATED) return;
    message->handled = 1;
    const mdl::ItemId pressed = {mdlDialog_itemType(message->item), mdlDialog_itemId(message->item)};
    if (pressed == ids::labels::close) {
        endCommand();
        mdlDialog_closeCommandQueue(message->dialog);
        return;
    }
    if (pressed == ids::labels::scales) return mclibPlotScale_dialogOpen();
    const auto button = std::ranges::find(buttons, pressed, &Button::item);
    if (button != std::end(buttons)) start(*button);
}

// ---- the scale ----

// One that isn't in the list holds for labels alone.
void shareScale() {
    mclibPlotScale_setActiveScale(settings().scale, 0);
}

void takeScale(double, double scale) {
    settings().scale = scale;
    showSettings();
}

void typedScale(DialogMessage* message) {
    message->handled = message->type == ITEM_STATE_CHANGED;
    if (message->handled) shareScale();
}

}  // namespace

bool openCommands(const Paper& paper, const Style& style) {
    beginSettings(paper, style);
    constexpr DialogHook hooks[] = {{ids::hooks::command, press}, {ids::hooks::typedScale, typedScale}};
    mdlDialog_hookPublish(std::size(hooks), hooks);
    shareScale();
    mclibMain_setScaleFunction(takeScale);
    return mdlDialog_open(0, ids::labels::id) ||
           mcapp::fail("the dialog can't be opened; is labels.rsc beside labels.so?");
}

void showSettings() {
    if (MdlDialog* const dialog = mdlDialog_find(ids::labels::id, nullptr)) mdlDialog_itemsSynch(dialog);
}

bool isCommand(std::string_view name) {
    return buttonNamed(name);
}

void startNamed(std::string_view name) {
    if (const Button* const button = buttonNamed(name)) start(*button);
}

}  // namespace labels
