#include "mchost/dialog/dialog.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "mchost/base/number_format.h"
#include "mchost/dialog/access.h"
#include "mchost/dialog/menus.h"
#include "mchost/dialog/registry.h"
#include "mchost/mdl/list_models.h"
#include "mchost/mdl/system.h"
#include "mchost/session/session.h"

namespace host {

namespace {

int32_t asNumber(const std::string& value) {
    const std::optional<double> number = numberOf(value);
    return number && *number >= INT32_MIN && *number <= INT32_MAX ? static_cast<int32_t>(*number) : 0;
}

DialogItem itemFrom(const ItemLayout& layout, const std::string& language) {
    DialogItem item{};
    item.kind = layout.kind;
    item.id = layout.id;
    item.hook = layout.hook;
    item.rect = {layout.x, layout.y, layout.x + layout.width, layout.y + layout.height};
    item.label = layout.label.textIn(language);
    item.access = layout.access;
    item.format = isValueFormat(layout.format) ? layout.format : std::string();
    item.group = layout.group;
    item.takesFocus = layout.kind != ITEM_LABEL && layout.kind != ITEM_GROUP_BOX;
    item.isDefault = layout.kind == ITEM_PUSH_BUTTON && layout.id == MDL_BUTTON_FIRST;
    for (const RowLayout& row : layout.rows) item.rows.push_back({row.label.textIn(language), row.value, true});
    if (item.kind == ITEM_TOGGLE) item.value = "0";
    if (item.kind == ITEM_OPTION_BUTTON && !item.rows.empty()) item.value = std::to_string(item.rows[0].value);
    return item;
}

// The value as the item keeps it; nothing when the item can't take it.
std::optional<std::string> acceptable(const DialogItem& item, std::string_view value) {
    switch (item.kind) {
        case ITEM_TEXT: {
            const bool ownNumber = item.access.empty() && formatNumber(item.format, 0);
            if (!ownNumber) return std::string(value);
            const std::optional<double> number = numberOf(value);
            return number ? formatNumber(item.format, *number) : std::nullopt;
        }
        case ITEM_TOGGLE:
            if (value == "0" || value == "1") return std::string(value);
            return std::nullopt;
        case ITEM_OPTION_BUTTON: {
            const std::optional<long long> number = wholeNumberOf(value);
            const auto fits = [&](const OptionRow& row) { return number && row.value == *number; };
            if (std::ranges::any_of(item.rows, fits)) return std::to_string(*number);
            return std::nullopt;
        }
        default: return std::nullopt;
    }
}

FrontEnd* frontEnd() {
    Session* const session = Session::current();
    return session ? &session->frontEnd() : nullptr;
}

bool hasList(const DialogItem& item) {
    return item.kind == ITEM_LIST_BOX || item.kind == ITEM_COMBO_BOX;
}

// What a call covers that takes the place of an earlier one of its kind; null for lines and elements.
const DialogRect* placeOf(const DrawCall& call) {
    return std::visit(
        [](const auto& drawn) -> const DialogRect* {
            if constexpr (requires { drawn.rect; })
                return &drawn.rect;
            else
                return nullptr;
        },
        call);
}

bool sameOrigin(const DrawCall& a, const DrawCall& b) {
    const DialogRect *first = placeOf(a), *second = placeOf(b);
    return a.index() == b.index() && first && first->left == second->left && first->top == second->top;
}

void tellBadAccess(int32_t dialogId, const DialogItem& item, const std::string& fault) {
    const std::string text = "Dialog " + std::to_string(dialogId) + ", item " + std::to_string(item.id) +
                             ": the access string \"" + item.access + "\" can't be used: " + fault;
    mdlOutput_messageCenter(MDL_PRIORITY_WARNING, text.c_str(), "", 0);
}

}  // namespace

Dialog::Dialog(const DialogLayout& layout, MdlDesc* owner, bool modal, const std::string& language)
    : serial_(nextDialogSerial()),
      id_(layout.id),
      hook_(layout.hook),
      width_(layout.width),
      height_(layout.height),
      font_(MDL_FONT_DIALOG),
      modal_(modal),
      owner_(owner),
      title_(layout.title.textIn(language)) {
    for (const ItemLayout& item : layout.items) items_.push_back(itemFrom(item, language));
}

// ---- messages ----

void Dialog::sendToDialog(int32_t type, int32_t resized) {
    DialogMessage message{};
    message.type = type;
    message.dialog = handle();
    message.hookId = hook_;
    message.attributes = attributes_;
    message.reply = reply_;
    message.resized = resized;
    callHook(hook_, owner_, message);
    attributes_ = message.attributes;
}

DialogMessage Dialog::messageTo(size_t index, int32_t type) const {
    const DialogItem& item = items_[index];
    DialogMessage message{};
    message.type = type;
    message.dialog = handle();
    message.item = itemHandle(index);
    message.hookId = item.hook;
    message.itemFlags = (item.takesFocus ? ITEM_TAKES_FOCUS : 0) | (item.isDefault ? ITEM_IS_DEFAULT : 0);
    message.state = asNumber(item.value);
    message.row = message.column = -1;
    return message;
}

DialogMessage Dialog::sendToItem(size_t index, int32_t type, int32_t state, int32_t changed) {
    DialogMessage message = messageTo(index, type);
    if (type == ITEM_BUTTON) {
        message.state = state;
        message.clickCount = 1;
    }
    message.changed = changed;
    callHook(message.hookId, owner_, message);
    return message;
}

void Dialog::sendClick(size_t index, int32_t clicks, int32_t column) {
    DialogMessage message = messageTo(index, ITEM_BUTTON);
    message.state = 1;
    message.clickCount = clicks;
    message.attributes = clicks == 2 ? MDL_DOUBLE_CLICK : 0;
    message.row = items_[index].selectedRow();
    message.column = message.row < 0 ? -1 : column;
    callHook(message.hookId, owner_, message);
}

void Dialog::signal(size_t index, int32_t signal, int32_t value) {
    if (ending()) return;
    const auto self = shared_from_this();
    const EventScope scope;
    DialogMessage message = messageTo(index, ITEM_SIGNAL);
    message.signal = signal;
    message.signalValue = value;
    callHook(message.hookId, owner_, message);
}

// ---- life ----

bool Dialog::open() {
    const auto self = shared_from_this();
    const EventScope scope;
    sendToDialog(DIALOG_CREATE);
    createItems();
    synchItems();
    if (life_ == Life::opening) sendToDialog(DIALOG_INIT);
    if (life_ != Life::opening) return false;
    life_ = Life::open;
    if (FrontEnd* const front = frontEnd()) front->dialogOpened(*this);
    return life_ == Life::open;
}

void Dialog::createItems() {
    for (size_t i = 0; i < items_.size() && life_ == Life::opening; ++i) {
        const DialogMessage message = sendToItem(i, ITEM_CREATE);
        items_[i].takesFocus = message.itemFlags & ITEM_TAKES_FOCUS;
        items_[i].isDefault = message.itemFlags & ITEM_IS_DEFAULT;
    }
}

void Dialog::synchItems() {
    for (size_t i = 0; i < items_.size() && life_ == Life::opening; ++i) sendToItem(i, ITEM_FILL);
    for (size_t i = 0; i < items_.size(); ++i) {
        const DialogItem& item = items_[i];
        if (item.access.empty() || life_ != Life::opening || synch(i)) continue;
        const AccessResult result = resolveAccess(item.access);
        if (!result.place && !result.onNull) tellBadAccess(id_, item, result.fault);
    }
}

void Dialog::end(int32_t reply) {
    if (ending()) return;
    const auto self = shared_from_this();
    const EventScope scope;
    if (reply == MDL_REPLY_FIRST) setFocus(noItem);
    if (ending()) return;
    life_ = Life::closing;
    reply_ = reply;
    for (size_t i = 0; i < items_.size(); ++i) sendToItem(i, ITEM_DESTROY);
    sendToDialog(DIALOG_DESTROY);
    for (DialogItem& item : items_) {  // their owners may have destroyed them by now
        item.list = nullptr;
        item.model = nullptr;
    }
    life_ = Life::ended;
    forgetDialog(*this);
    if (FrontEnd* const front = frontEnd()) front->dialogClosed(*this);
}

// ---- events ----

bool Dialog::usable(size_t index) const {
    return life_ == Life::open && index < items_.size() && isVisible(items_[index]) && items_[index].enabled;
}

bool Dialog::press(size_t index) {
    if (!usable(index) || (items_[index].kind != ITEM_PUSH_BUTTON && items_[index].kind != ITEM_GENERIC)) return false;
    const auto self = shared_from_this();
    const EventScope scope;
    sendToItem(index, ITEM_BUTTON, 1);
    if (life_ == Life::open) sendToItem(index, ITEM_ACTIVATED);
    if (items_[index].kind != ITEM_PUSH_BUTTON) return true;
    if (items_[index].id == MDL_BUTTON_FIRST) end(MDL_REPLY_FIRST);
    if (items_[index].id == MDL_BUTTON_SECOND) end(MDL_REPLY_SECOND);
    return true;
}

bool Dialog::setValue(size_t index, std::string_view value) {
    refusal_.clear();
    if (!usable(index)) return false;
    const auto isDisabled = [&](const OptionRow& row) { return !row.enabled && std::to_string(row.value) == value; };
    if (std::ranges::any_of(items_[index].rows, isDisabled)) return false;
    setFocus(index);
    if (editedCell_ && editedCell_->item == index) return endCellEdit(value);
    return usable(index) && change(index, value);
}

bool Dialog::selectRows(size_t index, std::vector<int32_t> rows) {
    if (!usable(index) || !hasList(items_[index])) return false;
    setFocus(index);
    return usable(index) && changeSelection(index, std::move(rows));
}

bool Dialog::scrollTo(size_t index, int32_t row) {
    if (index >= items_.size() || !hasList(items_[index]) || row < 0 || row >= rowCount(items_[index])) return false;
    items_[index].topRow = row;
    tellChanged(index);
    return true;
}

bool Dialog::type(size_t index, std::string text) {
    if (!usable(index) || items_[index].kind != ITEM_TEXT || !setFocus(index)) return false;
    edit_ = std::move(text);
    tellChanged(index);
    return true;
}

bool Dialog::resize(int32_t width, int32_t height) {
    if (life_ != Life::open || !sizable() || width < 1 || height < 1) return false;
    const auto self = shared_from_this();
    const EventScope scope;
    const bool resized = width != width_ || height != height_;
    if (resized) setExtent(width, height);
    sendToDialog(DIALOG_RESIZE, resized);
    return true;
}

bool Dialog::setFocus(size_t index) {
    const bool possible = index == noItem || (usable(index) && items_[index].takesFocus);
    if (!possible) return false;
    if (index == focus_) return true;
    const auto self = shared_from_this();
    endEdit();
    editedCell_.reset();
    if (focus_ != noItem) tellChanged(focus_);
    focus_ = index;
    if (focus_ != noItem) tellChanged(focus_);
    return true;
}

// The focus is still where the text was typed.
void Dialog::endEdit() {
    if (!edit_) return;
    const std::string text = *std::exchange(edit_, std::nullopt);
    change(focus_, text);
}

const std::string* Dialog::edit(size_t index) const {
    return edit_ && index == focus_ ? &*edit_ : nullptr;
}

bool Dialog::activate(size_t index, int32_t column) {
    if (!usable(index)) return false;
    const auto self = shared_from_this();
    const EventScope scope;
    if (items_[index].kind == ITEM_LIST_BOX) sendClick(index, 2, column);
    if (life_ == Life::open) sendToItem(index, ITEM_ACTIVATED);
    return true;
}

// ---- menus ----

void Dialog::offer(std::shared_ptr<const Menu> menu) {
    offeredMenu_ = std::move(menu);
    tellChanged(noItem);
}

bool Dialog::askForMenu(size_t index) {
    if (!usable(index)) return false;
    const auto self = shared_from_this();
    const EventScope scope;
    offeredMenu_.reset();
    DialogMessage message = messageTo(index, DIALOG_BUTTON);
    message.hookId = hook_;
    message.attributes = MDL_SECOND_BUTTON;
    message.clickCount = MDL_BUTTON_DOWN;
    message.row = items_[index].selectedRow();
    message.column = message.row < 0 ? -1 : 0;
    callHook(hook_, owner_, message);
    return offeredMenu_ != nullptr;
}

bool Dialog::choose(size_t entry) {
    const std::shared_ptr<const Menu> menu = std::exchange(offeredMenu_, nullptr);
    if (life_ != Life::open || !menu || entry >= menu->entries.size()) return false;
    const auto self = shared_from_this();
    tellChanged(noItem);
    chooseEntry(*menu, entry, handle());
    return true;
}

bool Dialog::change(size_t index, std::string_view value) {
    if (ending() || index >= items_.size()) return false;
    DialogItem& item = items_[index];
    if (hasList(item)) {
        const std::optional<long long> row = wholeNumberOf(value);
        if (!row || *row < -1 || *row > INT32_MAX) return false;
        return changeSelection(index, rowAlone(static_cast<int32_t>(*row)));
    }
    refusal_.clear();
    std::optional<std::string> next = acceptable(item, value);
    if (!next && item.kind == ITEM_TEXT) refusal_ = notANumber(value);
    if (!next) return false;
    if (!item.access.empty()) {
        const AccessResult result = resolveAccess(item.access);
        refusal_ = result.place ? writePlace(*result.place, *next) : "has no place now: " + result.fault;
        if (!refusal_.empty()) return false;
        next = readPlace(*result.place, item.format);
    }
    const auto self = shared_from_this();
    const EventScope scope;
    const bool changed = item.value != *next;
    item.value = *std::move(next);
    tellChanged(index);
    sendToItem(index, ITEM_STATE_CHANGED, 0, changed);
    return true;
}

bool Dialog::changeSelection(size_t index, std::vector<int32_t> rows) {
    const auto self = shared_from_this();
    const EventScope scope;
    const bool changed = items_[index].selection != rows;
    if (!select(index, std::move(rows))) return false;
    if (items_[index].kind == ITEM_LIST_BOX) sendClick(index, 1, 0);
    if (!ending()) sendToItem(index, ITEM_STATE_CHANGED, 0, changed);
    return true;
}

// ---- state ----

void Dialog::tellChanged(size_t index) {
    if (life_ != Life::open) return;
    if (FrontEnd* const front = frontEnd()) front->dialogChanged(*this, index);
}

void Dialog::setTitle(std::string title) {
    title_ = std::move(title);
    tellChanged(noItem);
}

void Dialog::moveItem(size_t index, int32_t left, int32_t top) {
    DialogRect& rect = items_[index].rect;
    rect = {left, top, left + (rect.right - rect.left), top + (rect.bottom - rect.top)};
    items_[index].drawn = false;
    tellChanged(index);
}

void Dialog::setItemExtent(size_t index, int32_t width, int32_t height) {
    DialogRect& rect = items_[index].rect;
    rect.right = rect.left + std::max(width, 0);
    rect.bottom = rect.top + std::max(height, 0);
    items_[index].drawn = false;
    tellChanged(index);
}

void Dialog::setLabel(size_t index, std::string label) {
    items_[index].label = std::move(label);
    tellChanged(index);
}

void Dialog::showItem(size_t index, bool show) {
    DialogItem& item = items_[index];
    item.drawn = item.drawn && item.shown && show;
    item.shown = show;
    tellChanged(index);
}

void Dialog::enableItem(size_t index, bool enable) {
    items_[index].enabled = enable;
    tellChanged(index);
}

void Dialog::setFormat(size_t index, std::string format) {
    items_[index].format = std::move(format);
}

void Dialog::setList(size_t index, StringList* list, int32_t columns) {
    DialogItem& item = items_[index];
    item.list = list;
    item.model = nullptr;
    item.columns = columns;
    forgetRowsBeyond(item);
    tellChanged(index);
}

void Dialog::setModel(size_t index, ListModel* model) {
    DialogItem& item = items_[index];
    item.list = nullptr;
    item.model = model;
    item.columns = std::max(mdlListModel_columnCount(model), 1);
    forgetRowsBeyond(item);
    tellChanged(index);
}

void Dialog::forgetRowsBeyond(DialogItem& item) {
    const int32_t rows = rowCount(item);
    std::erase_if(item.selection, [rows](int32_t row) { return row >= rows; });
    if (item.topRow >= rows) item.topRow = 0;
    editedCell_.reset();
}

// ---- cells that are edited ----

bool Dialog::editCell(size_t index, int32_t row, int32_t column) {
    if (!usable(index) || !mdlListModel_hasEditor(items_[index].model, row, column)) return false;
    const auto self = shared_from_this();
    setFocus(index);
    if (!usable(index)) return false;
    editedCell_ = {index, row, column};
    tellChanged(index);
    return true;
}

bool Dialog::endCellEdit(std::string_view text) {
    const EditedCell cell = *std::exchange(editedCell_, std::nullopt);
    const auto self = shared_from_this();
    const EventScope scope;
    const std::string before = cellText(items_[cell.item], cell.row, cell.column);
    if (mdlListModel_setText(items_[cell.item].model, cell.row, cell.column, std::string(text).c_str()) != MDL_SUCCESS)
        return false;
    tellChanged(cell.item);
    DialogMessage message = messageTo(cell.item, ITEM_CELL_EDITED);
    message.row = cell.row;
    message.column = cell.column;
    message.changed = before != text;
    callHook(message.hookId, owner_, message);
    return true;
}

void Dialog::clearRows(size_t index) {
    items_[index].rows.clear();
    tellChanged(index);
}

void Dialog::addRow(size_t index, std::string label, int32_t value) {
    DialogItem& item = items_[index];
    item.rows.push_back({std::move(label), value, true});
    if (item.value.empty()) item.value = std::to_string(value);
    tellChanged(index);
}

void Dialog::enableRow(size_t index, size_t row, bool enable) {
    items_[index].rows[row].enabled = enable;
    tellChanged(index);
}

bool Dialog::isVisible(const DialogItem& item) const {
    if (!item.shown || item.group == 0) return item.shown;
    const int32_t box = indexOf(ITEM_GROUP_BOX, item.group);
    return box < 0 || items_[static_cast<size_t>(box)].shown;
}

bool Dialog::select(size_t index, std::vector<int32_t> rows) {
    DialogItem& item = items_[index];
    const int32_t count = rowCount(item);
    if (rows.size() > 1 && !item.several) return false;
    if (std::ranges::any_of(rows, [count](int32_t row) { return row < 0 || row >= count; })) return false;
    const std::string value = std::to_string(rows.empty() ? -1 : rows.back());
    if (!item.access.empty()) {
        const AccessResult result = resolveAccess(item.access);
        if (!result.place || !writePlace(*result.place, value).empty()) return false;
    }
    item.selection = std::move(rows);
    item.value = value;
    tellChanged(index);
    return true;
}

void Dialog::allowSeveral(size_t index, bool several) {
    DialogItem& item = items_[index];
    item.several = several;
    if (!several && item.selection.size() > 1) item.selection = rowAlone(item.selectedRow());
}

int32_t Dialog::indexOf(int32_t kind, int32_t id) const {
    const auto found =
        std::ranges::find_if(items_, [&](const DialogItem& item) { return item.kind == kind && item.id == id; });
    return found == items_.end() ? -1 : static_cast<int32_t>(found - items_.begin());
}

void Dialog::setExtent(int32_t width, int32_t height) {
    width_ = std::max(width, 0);
    height_ = std::max(height, 0);
    drawing_.clear();
    for (DialogItem& item : items_) item.drawn = false;
    tellChanged(noItem);
}

bool Dialog::synch(size_t index) {
    DialogItem& item = items_[index];
    if (item.access.empty()) return false;
    const AccessResult result = resolveAccess(item.access);
    if (!result.place) return false;
    item.value = readPlace(*result.place, item.format);
    if (hasList(item)) {
        const int32_t row = asNumber(item.value);
        item.selection = rowAlone(row < rowCount(item) ? row : -1);
    }
    tellChanged(index);
    return true;
}

int32_t Dialog::rowCount(const DialogItem& item) {
    if (item.model) return mdlListModel_rowCount(item.model);
    const int32_t members = mdlStringList_size(item.list);
    return members == 0 ? 0 : (members - 1) / item.columns + 1;
}

std::string Dialog::cellText(const DialogItem& item, int32_t row, int32_t column) {
    const char* text = "";
    if (row < 0 || column < 0 || column >= item.columns || row >= rowCount(item)) return text;
    if (item.model) return mdlListModel_getText(item.model, row, column);
    mdlStringList_getMember(&text, nullptr, item.list, row * item.columns + column);
    return text;
}

// ---- drawing ----

std::vector<DrawCall> Dialog::drawing() const {
    std::vector<DrawCall> all = drawing_;
    for (const DialogItem& item : items_)
        if (isVisible(item)) all.insert(all.end(), item.drawing.begin(), item.drawing.end());
    return all;
}

void Dialog::refresh() {
    const auto self = shared_from_this();
    for (size_t i = 0; i < items_.size() && life_ == Life::open; ++i)
        if (!items_[i].drawn) draw(i);
}

void Dialog::draw(size_t index) {
    items_[index].drawn = false;
    if (life_ != Life::open || !isVisible(items_[index])) return;
    const auto self = shared_from_this();
    const EventScope scope;
    items_[index].drawing.clear();
    items_[index].drawn = true;
    const int32_t outer = std::exchange(drawingItem_, static_cast<int32_t>(index));
    sendToItem(index, ITEM_DRAW);
    drawingItem_ = outer;
    tellChanged(index);
}

// What an item's hook draws is dropped before the hook draws again. Elsewhere a call takes the place of the earlier one
// of its kind at the same origin, so that the list doesn't grow as drawing repeats; lines and elements are too many to
// be compared, and stay until the window's extent is set.
void Dialog::add(DrawCall call) {
    if (drawingItem_ >= 0) return items_[static_cast<size_t>(drawingItem_)].drawing.push_back(std::move(call));
    const auto same =
        !placeOf(call) ? drawing_.end()
                       : std::ranges::find_if(drawing_, [&](const DrawCall& known) { return sameOrigin(known, call); });
    if (same == drawing_.end())
        drawing_.push_back(std::move(call));
    else
        *same = std::move(call);
    tellChanged(noItem);
}

void Dialog::clear() {
    drawing_.clear();
    for (DialogItem& item : items_) item.drawing.clear();
    tellChanged(noItem);
}

}  // namespace host
