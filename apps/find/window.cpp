#include "window.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include <mchost/mdl/dialog.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/selection.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/view.h>
#include <mclib/mclib.h>
#include <mchost/mdl/names.hpp>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
#include "find_ids.h"
#include "query.h"
#include "replacing.h"

namespace find {

namespace {

using namespace ids;

constexpr int view = 0;

// Published as findp.
struct Fields {
    char pattern[MCLIB_SPEC_PATTERN_SIZE + 1];
    char replacement[MCLIB_SPEC_PATTERN_SIZE + 1];
    int32_t near, caseSensitive;
};

struct State {
    Fields fields = {};
    Fields* pointer = &fields;
    Options options;
    std::vector<Hit> hits;
    mdl::StringListPtr rows;
};
State& state() {
    static State state;
    return state;
}

constexpr StructField structure[] = {
    {"pattern", FIELD_CHARS, offsetof(Fields, pattern), sizeof(Fields::pattern), 1, nullptr},
    {"replacement", FIELD_CHARS, offsetof(Fields, replacement), sizeof(Fields::replacement), 1, nullptr},
    {"near", FIELD_INT32, offsetof(Fields, near), sizeof(int32_t), 1, nullptr},
    {"caseSensitive", FIELD_INT32, offsetof(Fields, caseSensitive), sizeof(int32_t), 1, nullptr},
    {},
};

template <int32_t List, class... Values>
void tell(mdl::Message<List, Values...> message, std::type_identity_t<Values>... values) {
    mdl::printMessage(MDL_FIELD_MESSAGE, message, values...);
}
// What can't be done. Always false.
template <int32_t List, class... Values>
bool refuse(mdl::Message<List, Values...> why, std::type_identity_t<Values>... values) {
    mdl::printMessage(MDL_FIELD_ERROR, why, values...);
    mdlSystem_noteFailure();
    return false;
}

// ---- the list ----

// Text, level and place, and the errors where there may be some.
int32_t columnCount() {
    return state().options.near > 0 ? 4 : 3;
}

bool fillRows() {
    State& s = state();
    const int32_t columns = columnCount();
    mdl::StringListPtr rows(mdlStringList_create(static_cast<int32_t>(s.hits.size()) * columns, 0));
    bool whole = static_cast<bool>(rows);
    int32_t member = 0;
    for (const Hit& hit : s.hits) {
        const std::string cells[] = {hit.text, hit.level, mcapp::shown(hit.x, 3) + ", " + mcapp::shown(hit.y, 3),
                                     std::to_string(hit.errors)};
        for (const std::string& cell : std::span(cells, static_cast<size_t>(columns)))
            whole = whole && mdlStringList_setMember(rows.get(), member++, cell.c_str(), nullptr) == MDL_SUCCESS;
    }
    MdlDialog* const dialog = mdlDialog_find(texts::id, nullptr);
    MdlItem* const box = dialog ? mdl::itemOf(dialog, texts::found) : nullptr;
    if (!whole || (box && mdlDialog_listBoxSetStrListP(box, rows.get(), columns) != MDL_SUCCESS)) return false;
    s.rows.swap(rows);  // the list of before goes when the box has this one
    return true;
}

// Takes the fields of the dialog, and lists what is found. False after a message.
bool search() {
    State& s = state();
    s.options.pattern = s.fields.pattern;
    s.options.near = s.fields.near;
    s.options.caseSensitive = s.fields.caseSensitive != 0;
    s.hits.clear();
    if (s.options.pattern.empty()) return refuse(notes::noPattern);
    if (s.options.near < 0) return refuse(notes::badNear);
    const Query query(s.options, mdlModelRef_getActive());
    if (!query.run([&](const Hit& hit) { s.hits.push_back(hit); }) || !fillRows()) return refuse(notes::notRead);
    tell(notes::found, static_cast<int>(s.hits.size()));
    return true;
}

// Brings the hit to the middle of the view, large enough to be read, and selects it.
void show(const Hit& hit) {
    constexpr double legible = 8, comfortable = 16;  // pixels
    const Point3d middle = {(hit.low.x + hit.high.x) / 2, (hit.low.y + hit.high.y) / 2, hit.low.z};
    const double height = (hit.high.y - hit.low.y) / mdlView_getPixelSize(view);
    mdlSelect_freeAll();
    const bool isShown =
        mdlView_setCenter(view, &middle) == MDL_SUCCESS &&
        (!(height > 0) || height >= legible || mdlView_zoom(view, comfortable / height, &middle) == MDL_SUCCESS);
    if (!isShown || mdlSelect_addElement(hit.position, nullptr) != MDL_SUCCESS) refuse(notes::gone);
    mdlView_update(view);
}

// ---- replacing ----

// Null when nothing is chosen.
const Hit* chosen() {
    State& s = state();
    MdlDialog* const dialog = mdlDialog_find(texts::id, nullptr);
    const int32_t row = dialog ? mdlDialog_listBoxGetSelectedRow(mdl::itemOf(dialog, texts::found)) : -1;
    return row < 0 || row >= static_cast<int32_t>(s.hits.size()) ? nullptr : &s.hits[static_cast<size_t>(row)];
}

// Texts that don't fit stay. False after a message.
bool replace(const std::vector<Hit>& hits) {
    State& s = state();
    if (*s.fields.replacement == '\0') return refuse(notes::noReplacement);
    if (!canFill(s.options.pattern, s.fields.replacement)) return refuse(notes::badReplacement);
    const std::string replacement = replacementFor(s.fields.replacement, 1, 1);
    std::vector<Change> changes;
    for (const Hit& hit : hits)
        if (hit.errors == 0) changes.push_back({hit, newText(s.options, replacement, hit)});
    replaceTexts(changes, Query(s.options, mdlModelRef_getActive()), mdlModelRef_getActive());
    const auto left = std::ranges::find_if(changes, [](const Change& c) { return !c.after.why.empty(); });
    const auto done = static_cast<int>(std::ranges::count_if(changes, &Change::isOne));
    if (!search()) return false;
    mdlView_update(view);
    if (left != changes.end()) return refuse(notes::stays, left->hit.text.c_str(), left->after.why.c_str());
    tell(notes::changed, done);
    return true;
}

void replaceChosen() {
    if (const Hit* const hit = chosen()) {
        replace({*hit});
    } else {
        refuse(notes::noneChosen);
    }
}

void replaceAll() {
    replace(std::vector(state().hits));
}

// ---- the dialog ----

void close() {
    if (MdlDialog* const dialog = mdlDialog_find(texts::id, nullptr)) mdlDialog_closeCommandQueue(dialog);
}

struct Button {
    mdl::ItemId item;
    void (*press)();
};
constexpr Button buttons[] = {
    {texts::search, [] { search(); }},
    {texts::replace, replaceChosen},
    {texts::replaceAll, replaceAll},
    {texts::close, close},
};

void press(DialogMessage* message) {
    message->handled = message->type == ITEM_ACTIVATED;
    if (!message->handled) return;
    const mdl::ItemId pressed = {mdlDialog_itemType(message->item), mdlDialog_itemId(message->item)};
    const auto* const button = std::ranges::find(buttons, pressed, &Button::item);
    if (button != std::end(buttons)) button->press();
}

void list(DialogMessage* message) {
    message->handled = message->type == ITEM_STATE_CHANGED || message->type == ITEM_CREATE;
    if (message->type == ITEM_CREATE)
        mdlDialog_listBoxSetStrListP(message->item, state().rows.get(), columnCount());
    else if (message->type == ITEM_STATE_CHANGED && chosen())
        show(*chosen());
}

bool publish() {
    constexpr DialogHook published[] = {{hooks::press, press}, {hooks::list, list}};
    constexpr int structures = 4;
    SymbolSet* const set = mdlCExpression_initializeSet(structures, 0, 0);
    return set && mdlDialog_hookPublish(std::size(published), published) == MDL_SUCCESS &&
           mdlDialog_publishStructure(set, "FindFields", structure) == MDL_SUCCESS &&
           mdlDialog_publishComplexPtr(set, "FindFields", "findp", &state().pointer) == MDL_SUCCESS;
}

}  // namespace

bool openWindow(const Options& options) {
    State& s = state();
    s.options = options;
    options.pattern.copy(s.fields.pattern, sizeof s.fields.pattern - 1);
    options.replacement.value_or("").copy(s.fields.replacement, sizeof s.fields.replacement - 1);
    s.fields.near = options.near;
    s.fields.caseSensitive = options.caseSensitive;
    if (!options.pattern.empty() && !search()) return false;
    return (publish() && mdlDialog_open(0, texts::id)) ||
           mcapp::fail("the dialog can't be opened; is find.rsc beside find.so?");
}

}  // namespace find
