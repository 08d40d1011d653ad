#include "mchost/front/dialog_words.h"

#include <algorithm>
#include <array>

#include "mchost/base/charset.h"
#include "mchost/base/words.h"
#include "mchost/dialog/menus.h"
#include "mchost/front/dialog_text.h"
#include "mchost/session/keyin.h"

namespace host {

namespace {

constexpr size_t mostPixels = 8000;  // a window's side

struct Word {
    std::string_view word, arguments, meaning;
};
// Answers that are for the window and not for an item: a word, a blank, and what it is about.
constexpr auto words = std::to_array<Word>({
    {"close", "", "closes this window"},
    {"open", "LIST=ROW[/COLUMN]", "clicks twice on a row of a list, by its text or number"},
    {"rows", "[LIST=]NUMBER", "shows a long list from that row on"},
    {"right", "LIST=ROW", "clicks with the right button on a row of a list, which may offer a menu"},
    {"entry", "NUMBER", "chooses an entry of the menu that is offered, by its number or text"},
    {"size", "WIDTHxHEIGHT", "draws this window to that size, in pixels"},
    {"picture", "FILE.png", "makes a picture of this window"},
});

Followed refused(std::string complaint) {
    return {.complaint = std::move(complaint), .event = {}};
}

Followed done(DialogEvent event) {
    return {.complaint = {}, .event = std::move(event)};
}

// Without letter case, for the letters of Windows-1252.
std::string folded(std::string_view narrow) {
    std::string result;
    for (const char c : narrow) {
        const auto code = static_cast<unsigned char>(c);
        const bool capital = (code >= 'A' && code <= 'Z') || (code >= 0xc0 && code <= 0xde && code != 0xd7);
        result.push_back(static_cast<char>(capital ? code + 0x20 : code));
    }
    return result;
}

std::string quoted(std::string_view narrow) {
    return "\"" + utf8FromNarrow(narrow) + "\"";
}

// ---- items by number and label ----

bool isButton(const Dialog& dialog, size_t item) {
    return dialog.items()[item].kind == ITEM_PUSH_BUTTON;
}

std::vector<size_t> usable(const Dialog& dialog, bool buttons) {
    std::vector<size_t> items = usableItems(dialog);
    std::erase_if(items, [&](size_t item) { return isButton(dialog, item) != buttons; });
    return items;
}

// Those among the items whose label is the answer, or else begins with it.
std::vector<size_t> labelled(const Dialog& dialog, const std::vector<size_t>& items, std::string_view answer) {
    const std::string wanted = folded(answer);
    std::vector<size_t> beginning;
    for (const size_t item : items) {
        const std::string label = folded(dialog.items()[item].label);
        if (label == wanted) return {item};
        if (!wanted.empty() && label.starts_with(wanted)) beginning.push_back(item);
    }
    return beginning;
}

std::string listOf(const Dialog& dialog, const std::vector<size_t>& items, std::string_view last) {
    std::string text;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i > 0) text += i + 1 == items.size() ? std::string(last) : ", ";
        text += utf8FromNarrow(dialog.items()[items[i]].label);
    }
    return text;
}

std::string ambiguous(const Dialog& dialog, const std::vector<size_t>& items, std::string_view name) {
    return quoted(name) + " can be " + listOf(dialog, items, " or ") + ". Give more of the label, or its number.";
}

// ---- values ----

DialogEvent eventOn(Dialog& dialog, size_t item, DialogEvent::Kind kind) {
    return {.kind = kind, .dialog = dialog.shared_from_this(), .item = item};
}

// The value of the row that is chosen by its label or number.
std::optional<std::string> chosenValue(const DialogItem& item, std::string_view value) {
    std::vector<OptionRow> rows = item.rows;
    std::erase_if(rows, [](const OptionRow& r) { return !r.enabled; });
    const std::string wanted = folded(value);
    auto row = std::ranges::find_if(rows, [&](const OptionRow& r) { return folded(r.label) == wanted; });
    if (const auto number = numberIn<size_t>(value);
        row == rows.end() && number && *number >= 1 && *number <= rows.size())
        row = rows.begin() + static_cast<ptrdiff_t>(*number - 1);
    return row == rows.end() ? std::nullopt : std::optional(std::to_string(row->value));
}

std::optional<int32_t> numberedRow(const DialogItem& item, std::string_view value) {
    const auto number = numberIn<size_t>(value);
    const bool known = number && *number >= 1 && *number <= static_cast<size_t>(Dialog::rowCount(item));
    return known ? std::optional(static_cast<int32_t>(*number) - 1) : std::nullopt;
}

// A row by the text in its first column, else by its number.
std::optional<int32_t> chosenRow(const DialogItem& item, std::string_view value) {
    const std::string wanted = folded(value);
    const int32_t count = Dialog::rowCount(item);
    for (int32_t row = 0; row < count; ++row)
        if (folded(Dialog::cellText(item, row, 0)) == wanted) return row;
    return numberedRow(item, value);
}

// Adds the rows of "7" or "3-5" that aren't there yet; false for another text.
bool addSpan(const DialogItem& item, std::string_view span, std::vector<bool>& known, std::vector<int32_t>& rows) {
    const size_t dash = std::min(span.find('-'), span.size());
    const auto first = numberedRow(item, trimmed(span.substr(0, dash)));
    const auto last = dash == span.size() ? first : numberedRow(item, trimmed(span.substr(dash + 1)));
    if (!first || !last) return false;
    for (int32_t row = *first; row <= *last; ++row) {
        if (!known[static_cast<size_t>(row)]) rows.push_back(row);
        known[static_cast<size_t>(row)] = true;
    }
    return true;
}

// One row, or where more may be chosen "all", "none" or numbers such as "1,3-5".
std::optional<std::vector<int32_t>> chosenRows(const DialogItem& item, std::string_view value) {
    if (const auto row = chosenRow(item, value)) return std::vector{*row};
    if (!item.several) return std::nullopt;
    std::vector<int32_t> rows;
    if (value == "none") return rows;
    std::vector<bool> known(static_cast<size_t>(Dialog::rowCount(item)));
    const std::string all = "1-" + std::to_string(known.size());
    std::string_view rest = value == "all" ? all : value;
    while (true) {
        const size_t comma = std::min(rest.find(','), rest.size());
        if (!addSpan(item, rest.substr(0, comma), known, rows)) return std::nullopt;
        if (comma == rest.size()) return rows;
        rest.remove_prefix(comma + 1);
    }
}

// Why an item didn't take a value, as the end of a sentence.
std::string reasonOf(const Dialog& dialog, size_t index) {
    const DialogItem& item = dialog.items()[index];
    switch (item.kind) {
        case ITEM_OPTION_BUTTON: return "is none of its choices: " + choicesOf(item);
        case ITEM_COMBO_BOX:
        case ITEM_LIST_BOX:
            return item.several ? "is none of its rows, nor numbers of rows such as 1,3-5, \"all\" or \"none\""
                                : "is none of its rows, nor the number of one";
        case ITEM_TOGGLE: return "is neither 1 nor 0";
        default: return dialog.refusal().empty() ? "can't be set now" : utf8FromNarrow(dialog.refusal());
    }
}

std::string notTaken(const Dialog& dialog, size_t index, std::string_view value) {
    const std::string label = utf8FromNarrow(dialog.items()[index].label);
    return (label.empty() ? "" : label + ": ") + quoted(value) + " " + reasonOf(dialog, index) + ".";
}

Followed setItem(Dialog& dialog, size_t index, std::string_view value) {
    const DialogItem& item = dialog.items()[index];
    DialogEvent event = eventOn(dialog, index, DialogEvent::Kind::setValue);
    if (item.kind == ITEM_PUSH_BUTTON)
        return refused(utf8FromNarrow(item.label) + " is a button, which takes no value.");
    const bool editsCell = dialog.editedCell() && dialog.editedCell()->item == index;
    if ((item.kind == ITEM_COMBO_BOX || item.kind == ITEM_LIST_BOX) && !editsCell) {
        auto rows = chosenRows(item, value);
        if (!rows) return refused(notTaken(dialog, index, value));
        event.kind = DialogEvent::Kind::selectRows;
        event.rows = *std::move(rows);
        return done(std::move(event));
    }
    const auto set = item.kind == ITEM_OPTION_BUTTON ? chosenValue(item, value) : std::string(value);
    if (!set) return refused(notTaken(dialog, index, value));
    event.value = *set;
    return done(std::move(event));
}

Followed use(Dialog& dialog, size_t index) {
    const DialogItem& item = dialog.items()[index];
    const std::string label = utf8FromNarrow(item.label);
    if (item.kind == ITEM_TOGGLE) return setItem(dialog, index, item.value == "1" ? "0" : "1");
    if (item.kind == ITEM_PUSH_BUTTON) return done(eventOn(dialog, index, DialogEvent::Kind::press));
    return refused(label + (label.empty() ? "This item" : "") + " takes a value: number=value.");
}

// ---- answers ----

Followed followNumber(Dialog& dialog, size_t number, const std::string_view* value) {
    const std::vector<size_t> numbered = numberedItems(dialog);
    const bool known = number >= 1 && number <= numbered.size();
    if (!known || !isUsable(dialog, numbered[number - 1]))
        return refused("There is no item " + std::to_string(number) + " that can be used now.");
    return value ? setItem(dialog, numbered[number - 1], *value) : use(dialog, numbered[number - 1]);
}

std::optional<Followed> followLabel(Dialog& dialog, const std::vector<size_t>& items, std::string_view name,
                                    const std::string_view* value) {
    const std::vector<size_t> found = labelled(dialog, items, name);
    if (found.empty()) return std::nullopt;
    if (found.size() > 1) return refused(ambiguous(dialog, found, name));
    return value ? setItem(dialog, found[0], *value) : use(dialog, found[0]);
}

Followed resizeTo(Dialog& dialog, std::string_view size) {
    const size_t cross = std::min(size.find('x'), size.size() - 1);
    const auto width = numberIn<size_t>(size.substr(0, cross)), height = numberIn<size_t>(size.substr(cross + 1));
    if (!width || !height || std::max(*width, *height) > mostPixels)
        return refused(quoted(size) + " isn't WIDTHxHEIGHT in pixels, such as 800x600.");
    DialogEvent event = eventOn(dialog, Dialog::noItem, DialogEvent::Kind::resize);
    event.width = static_cast<int32_t>(*width);
    event.height = static_cast<int32_t>(*height);
    return done(std::move(event));
}

// ---- lists ----

// A list that is named by number or label, and what stands behind its "="; the only list of a dialog needs no name.
struct ListAnswer {
    std::optional<size_t> item;
    std::string_view value;
};

ListAnswer listIn(const Dialog& dialog, std::string_view answer) {
    std::vector<size_t> lists = usable(dialog, false);
    std::erase_if(lists, [&](size_t item) { return dialog.items()[item].kind != ITEM_LIST_BOX; });
    const size_t equals = answer.find('=');
    if (equals == answer.npos) return {lists.size() == 1 ? std::optional(lists[0]) : std::nullopt, answer};
    const std::string_view name = trimmed(answer.substr(0, equals)), value = trimmed(answer.substr(equals + 1));
    const std::vector<size_t> numbered = numberedItems(dialog);
    if (const auto number = numberIn<size_t>(name); number && *number >= 1 && *number <= numbered.size())
        std::erase_if(lists, [&](size_t item) { return item != numbered[*number - 1]; });
    else
        lists = labelled(dialog, lists, name);
    return {lists.size() == 1 ? std::optional(lists[0]) : std::nullopt, value};
}

// Something that is done to one row of a list.
Followed onRow(Dialog& dialog, std::string_view answer, DialogEvent::Kind kind) {
    const ListAnswer list = listIn(dialog, answer);
    if (!list.item) return refused(quoted(answer) + " names none of the lists with rows here. Give LIST=ROW.");
    const DialogItem& item = dialog.items()[*list.item];
    DialogEvent event = eventOn(dialog, *list.item, kind);
    auto row = chosenRow(item, list.value);
    if (const size_t slash = list.value.rfind('/'); !row && slash != list.value.npos) {
        const auto column = numberIn<int32_t>(trimmed(list.value.substr(slash + 1)));
        if (column && *column >= 1 && *column <= item.columns)
            row = chosenRow(item, trimmed(list.value.substr(0, slash)));
        event.column = column.value_or(1) - 1;
    }
    if (!row) return refused(notTaken(dialog, *list.item, list.value));
    event.rows = {*row};
    return done(std::move(event));
}

Followed chooseEntry(Dialog& dialog, std::string_view answer) {
    const auto& menu = dialog.offeredMenu();
    if (!menu) return refused("No menu is offered now.");
    const std::string wanted = folded(answer);
    auto entry = std::ranges::find_if(menu->entries, [&](const Menu::Entry& e) { return folded(e.label) == wanted; });
    if (const auto number = numberIn<size_t>(answer); number && *number >= 1 && *number <= menu->entries.size())
        entry = menu->entries.begin() + static_cast<ptrdiff_t>(*number - 1);
    if (entry == menu->entries.end()) return refused(quoted(answer) + " is no entry of the menu, nor its number.");
    DialogEvent event = eventOn(dialog, Dialog::noItem, DialogEvent::Kind::chooseEntry);
    event.rows = {static_cast<int32_t>(entry - menu->entries.begin())};
    return done(std::move(event));
}

Followed savePicture(const Dialog& dialog, const std::string& name) {
    if (mdlWindow_savePicture(dialog.handle(), name.c_str()) == MDL_SUCCESS) return {};
    return refused("No picture could be written to " + utf8FromNarrow(name) +
                   ". Give a name that ends in .png, in a folder that is there.");
}

std::optional<Followed> followWord(Dialog& dialog, std::string_view answer) {
    const size_t blank = std::min(answer.find(' '), answer.size());
    const std::string_view word = answer.substr(0, blank), rest = trimmed(answer.substr(blank));
    if (word == "close" && rest.empty()) return done(eventOn(dialog, Dialog::noItem, DialogEvent::Kind::close));
    if (word == "picture" && !rest.empty() && !hostWordOf(answer)) return savePicture(dialog, std::string(rest));
    if (word == "open" && !rest.empty()) return onRow(dialog, rest, DialogEvent::Kind::activate);
    if (word == "rows" && !rest.empty()) return onRow(dialog, rest, DialogEvent::Kind::scroll);
    if (word == "right" && !rest.empty()) return onRow(dialog, rest, DialogEvent::Kind::offerMenu);
    if (word == "entry" && !rest.empty()) return chooseEntry(dialog, rest);
    if (word == "size" && !rest.empty()) return resizeTo(dialog, rest);
    return std::nullopt;
}

// Those of the texts that begin as was typed, letter case aside.
Completion completionAmong(std::vector<std::string> texts, std::string_view typed) {
    const auto fold = [](std::string_view utf8) { return folded(narrowFromUtf8(utf8).text); };
    const std::string begin = fold(typed);
    std::erase_if(texts, [&](const std::string& text) { return !fold(text).starts_with(begin); });
    if (texts.empty()) return {std::string(typed), {}};
    std::string common = commonBeginning(texts);
    return {common.size() > typed.size() ? std::move(common) : std::string(typed), std::move(texts)};
}

}  // namespace

std::optional<Followed> followAnswer(Dialog& dialog, std::string_view answer) {
    answer = trimmed(answer);
    if (answer.empty()) {
        const auto button = defaultButton(dialog);
        if (!button) return refused("No button is meant by an empty answer here.");
        return use(dialog, *button);
    }
    if (auto pressed = followLabel(dialog, usable(dialog, true), answer, nullptr)) return pressed;
    const size_t equals = answer.find('=');
    const std::string_view name = trimmed(answer.substr(0, equals));
    const std::string_view text = equals == answer.npos ? std::string_view() : trimmed(answer.substr(equals + 1));
    const std::string_view* const value = equals == answer.npos ? nullptr : &text;
    if (const auto number = numberIn<size_t>(name)) return followNumber(dialog, *number, value);
    if (auto set = followLabel(dialog, usable(dialog, false), name, value)) return set;
    return followWord(dialog, answer);
}

std::string complaintOf(const DialogEvent& event) {
    switch (event.kind) {
        case DialogEvent::Kind::press: return "The button can't be pressed now.";
        case DialogEvent::Kind::setValue: return notTaken(*event.dialog, event.item, event.value);
        case DialogEvent::Kind::offerMenu: return "There is no menu for this.";
        case DialogEvent::Kind::resize: return "This window keeps its size.";
        default: return "This can't be done now.";
    }
}

std::optional<size_t> firstButton(const Dialog& dialog) {
    const std::vector<size_t> buttons = usable(dialog, true);
    if (buttons.empty()) return std::nullopt;
    const auto first =
        std::ranges::find_if(buttons, [&](size_t i) { return dialog.items()[i].id == MDL_BUTTON_FIRST; });
    return first == buttons.end() ? buttons[0] : *first;
}

size_t endingButtons(const Dialog& dialog) {
    const std::vector<size_t> buttons = usable(dialog, true);
    return static_cast<size_t>(std::ranges::count_if(buttons, [&](size_t i) {
        const int32_t id = dialog.items()[i].id;
        return id == MDL_BUTTON_FIRST || id == MDL_BUTTON_SECOND;
    }));
}

std::optional<size_t> defaultButton(const Dialog& dialog) {
    for (const size_t button : usable(dialog, true))
        if (dialog.items()[button].isDefault) return button;
    return std::nullopt;
}

std::string helpOn(const Dialog& dialog) {
    const std::vector<size_t> buttons = usable(dialog, true), others = usable(dialog, false);
    std::string text;
    if (!buttons.empty())
        text += "  a button, by its number, its label or the beginning of it: " + listOf(dialog, buttons, ", ") + "\n";
    if (const auto button = defaultButton(dialog))
        text += "  an empty line: " + utf8FromNarrow(dialog.items()[*button].label) + "\n";
    if (!others.empty())
        text +=
            "  number=value or label=value sets an item, to a text, or to a choice or row by its text or number, or,\n"
            "  where more rows may be chosen, to numbers such as 1,3-5, to \"all\" or to \"none\";\n"
            "  the number or label alone turns a switch: " +
            listOf(dialog, others, ", ") + "\n";
    for (const Word& word : words)
        text += "  " + std::string(word.word) + (word.arguments.empty() ? "" : " ") + std::string(word.arguments) +
                ": " + std::string(word.meaning) + "\n";
    return text;
}

Completion completeAnswer(const Dialog& dialog, std::string_view typed) {
    std::vector<std::string> labels;
    for (const size_t item : usableItems(dialog)) {
        const std::string label = utf8FromNarrow(dialog.items()[item].label);
        if (!label.empty()) labels.push_back(isButton(dialog, item) ? label : label + "=");
    }
    for (const Word& word : words) labels.push_back(std::string(word.word) + (word.arguments.empty() ? "" : " "));
    return completionAmong(std::move(labels), typed);
}

}  // namespace host
