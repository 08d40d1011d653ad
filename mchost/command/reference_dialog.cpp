// The dialog about references: a face of the key-ins. It stays open beside commands, so that a fence can be placed for
// it.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "mchost/command/references.h"
#include "mchost/dialog/layout.h"
#include "mchost/dialog/registry.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mchost/resource/open_files.h"
#include "mchost/session/keyin.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"
#include "mchost/view/words.h"

namespace host {
namespace {

constexpr int32_t dialogId = -7001, hookId = -7001;  // no application's
enum { ID_LIST = 1, ID_X, ID_Y, ID_FACTOR, ID_ATTACH = 11 };

// A key-in about the reference that is chosen, "#" being its number and "%" the values of the items for it.
struct Action {
    const char *english, *norwegian;
    const char* line;
    std::array<int32_t, 2> values = {};
};
constexpr Action actions[] = {
    {"Detach", "Koble fra", "reference detach #"},
    {"On", "Vis", "reference on #"},
    {"Off", "Skjul", "reference off #"},
    {"Move", "Flytt", "reference move # %,%", {ID_X, ID_Y}},
    {"Scale", "Skaler", "reference scale # %", {ID_FACTOR}},
    {"Clip by fence", "Klipp med gjerde", "reference clip # fence"},
    {"No clip", "Uten klipp", "reference clip # none"},
};

DialogLayout layout() {
    DialogLayout made{.id = dialogId, .width = 560, .height = 270, .title = texts("References", "Referanser")};
    made.items = {itemAt(ITEM_LIST_BOX, ID_LIST, {10, 28, 538, 112}, texts("Attached files", "Tilkoblede filer")),
                  itemAt(ITEM_TEXT, ID_X, {60, 150, 80, 24}, texts("x", "x")),
                  itemAt(ITEM_TEXT, ID_Y, {170, 150, 80, 24}, texts("y", "y")),
                  itemAt(ITEM_TEXT, ID_FACTOR, {330, 150, 80, 24}, texts("Factor", "Faktor"))};
    for (ItemLayout& item : made.items) item.format = item.kind == ITEM_TEXT ? "%.10g" : "";
    made.items.push_back(
        itemAt(ITEM_PUSH_BUTTON, ID_ATTACH, {10, 190, 130, 26}, texts("Attach...", "Koble til..."), hookId));
    int32_t id = ID_ATTACH;
    for (const Action& action : actions) {
        const int32_t place = ++id - ID_ATTACH;
        const ItemPlace at{10 + 136 * (place % 4), 190 + 34 * (place / 4), 130, 26};
        made.items.push_back(itemAt(ITEM_PUSH_BUTTON, id, at, texts(action.english, action.norwegian), hookId));
    }
    made.items.push_back(itemAt(ITEM_PUSH_BUTTON, MDL_BUTTON_FIRST, {418, 150, 130, 26}, texts("Close", "Lukk")));
    return made;
}

struct ReferenceDialog {
    std::weak_ptr<Dialog> dialog;
    mdl::StringListPtr list;  // what it shows
    std::vector<std::string> lines;

    ReferenceDialog();
    ~ReferenceDialog() {
        if (const auto open = dialog.lock()) open->close();
    }
};

ReferenceDialog& state() {
    return sessionState<ReferenceDialog>();
}

std::vector<std::string> linesNow() {
    std::vector<std::string> lines;
    for (ModelRef* place : attachedPlaces()) lines.push_back(lineOf(*place));
    return lines;
}

// Shows what is attached now; the row that is chosen stays.
void refresh() {
    const auto dialog = state().dialog.lock();
    if (!dialog || dialog->ending()) return;
    std::vector<std::string> lines = linesNow();
    if (state().list && lines == state().lines) return;
    mdl::StringListPtr list(mdlStringList_create(static_cast<int32_t>(lines.size()), 0));
    for (size_t row = 0; row < lines.size(); ++row)
        mdlStringList_setMember(list.get(), static_cast<int32_t>(row), lines[row].c_str(), nullptr);
    dialog->setList(0, list.get(), 1);
    state().list = std::move(list);
    state().lines = std::move(lines);
}

ReferenceDialog::ReferenceDialog() {
    observeReturn([] { guarded(refresh); });
}

std::string valueOf(const Dialog& dialog, int32_t id) {
    const int32_t index = dialog.indexOf(ITEM_TEXT, id);
    return index < 0 ? "" : dialog.items()[static_cast<size_t>(index)].value;
}

// The key-in of an action, for what is chosen and told in the dialog.
std::string lineFor(const Action& action, const Dialog& dialog, const ModelRef& place) {
    std::string line;
    size_t value = 0;
    for (const char* c = action.line; *c != '\0'; ++c) {
        if (*c == '#')
            line += std::to_string(place.number);
        else if (*c == '%')
            line += valueOf(dialog, action.values.at(value++));
        else
            line += *c;
    }
    return line;
}

void attach() {
    char name[256];
    if (mdlDialog_fileOpen(name, 0, 0, nullptr, "*.mcd", tcbP->designFileName, nullptr) == MDL_SUCCESS)
        carryOutHostWord("reference attach " + quoted(name));
}

void tellNothingChosen() {
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR, "No reference is chosen. Choose one in the list.", "", 0);
    mdlSystem_noteFailure();
}

void act(const Action& action, const Dialog& dialog) {
    const std::vector<ModelRef*> places = attachedPlaces();
    const auto row = static_cast<size_t>(dialog.items()[0].selectedRow());
    if (row >= places.size()) return tellNothingChosen();
    carryOutHostWord(lineFor(action, dialog, *places[row]));
}

void hook(DialogMessage* message) {
    message->handled = message->type == ITEM_BUTTON;
    const auto dialog = dialogOf(message->dialog);
    const ItemRef item = itemOf(message->item);
    if (!message->handled || !dialog || !item) return;
    guarded([&] {
        if (item->id == ID_ATTACH)
            attach();
        else
            act(actions[item->id - ID_ATTACH - 1], *dialog);
        refresh();
    });
}

void openDialog(std::string_view rest) {
    takeNothingMore(rest);
    if (findDialog(dialogId, nullptr)) return;
    publishHook(nullptr, {hookId, hook});
    const auto dialog = std::make_shared<Dialog>(layout(), nullptr, false, currentLanguage());
    registerDialog(dialog);
    state().dialog = dialog;
    state().list.reset();
    refresh();
    for (const int32_t id : {ID_X, ID_Y}) dialog->change(static_cast<size_t>(dialog->indexOf(ITEM_TEXT, id)), "0");
    dialog->change(static_cast<size_t>(dialog->indexOf(ITEM_TEXT, ID_FACTOR)), "1");
    dialog->open();
}

[[maybe_unused]] const bool added =
    addHostWord({"references", "  references: opens the window about what is attached to the drawing\n", openDialog});

}  // namespace
}  // namespace host
