#include "mchost/front/dialog_text.h"

#include <algorithm>
#include <cmath>

#include "mchost/base/charset.h"
#include "mchost/dialog/menus.h"

namespace host {

namespace {

constexpr std::string_view indent = "    ";

bool isInput(const DialogItem& item) {
    switch (item.kind) {
        case ITEM_PUSH_BUTTON:
        case ITEM_TEXT:
        case ITEM_TOGGLE:
        case ITEM_OPTION_BUTTON:
        case ITEM_COMBO_BOX:
        case ITEM_LIST_BOX: return true;
        default: return false;
    }
}

struct ShownText {
    double top, left;
    std::string text;
};

// The texts among what was drawn, in reading order.
std::vector<ShownText> textsIn(const std::vector<DrawCall>& calls) {
    std::vector<ShownText> texts;
    for (const DrawCall& call : calls) {
        if (const auto* drawn = std::get_if<DrawnText>(&call)) {
            texts.push_back({double(drawn->rect.top), double(drawn->rect.left), drawn->text});
        } else if (const auto* text = std::get_if<ElementText>(&call)) {
            const bool blank = text->text.find_first_not_of(' ') == std::string::npos;
            if (!blank) texts.push_back({std::round(text->y + text->upY), text->x, text->text});
        }
    }
    std::ranges::stable_sort(texts, [](const ShownText& a, const ShownText& b) {
        return std::pair(a.top, a.left) < std::pair(b.top, b.left);
    });
    return texts;
}

// What hooks drew: an icon's sign in front of its first line, the others indented by as much.
std::string drawnText(const Dialog& dialog) {
    const std::vector<DrawCall> calls = dialog.drawing();
    const auto icon =
        std::ranges::find_if(calls, [](const DrawCall& c) { return std::holds_alternative<DrawnIcon>(c); });
    std::string prefix =
        icon == calls.end() ? std::string() : "(" + utf8FromNarrow(std::get<DrawnIcon>(*icon).icon->sign) + ") ";
    const std::string following(prefix.empty() ? 0 : indent.size(), ' ');

    const std::vector<ShownText> texts = textsIn(calls);
    std::string text;
    for (size_t i = 0; i < texts.size(); ++i) {
        const bool sameLine = i > 0 && texts[i].top == texts[i - 1].top;
        if (i > 0) text += sameLine ? "  " : "\n";
        if (!sameLine) text += i == 0 ? prefix : following;
        text += utf8FromNarrow(texts[i].text);
    }
    return text.empty() ? text : text + "\n";
}

std::string chosenLabel(const DialogItem& item) {
    for (const OptionRow& row : item.rows)
        if (std::to_string(row.value) == item.value) return row.label;
    return item.value;
}

bool isList(const DialogItem& item) {
    return item.kind == ITEM_LIST_BOX || item.kind == ITEM_COMBO_BOX;
}

// Of the rows from `first` up to `end` those that are chosen, counted from `first`.
std::vector<bool> chosenAmong(const DialogItem& item, int32_t first, int32_t end) {
    std::vector<bool> chosen(static_cast<size_t>(end - first));
    for (const int32_t row : item.selection)
        if (row >= first && row < end) chosen[static_cast<size_t>(row - first)] = true;
    return chosen;
}

std::string rowsOf(const DialogItem& item, int32_t most) {
    const int32_t count = Dialog::rowCount(item);
    const int32_t first = count > most ? item.topRow : 0, end = std::min(count, first + most);
    const std::vector<bool> chosen = chosenAmong(item, first, end);
    std::string text;
    for (int32_t row = first; row < end; ++row) {
        text += indent;
        text += chosen[static_cast<size_t>(row - first)] ? "* " : "  ";
        text += std::to_string(row + 1) + ".";
        for (int32_t column = 0; column < item.columns; ++column)
            text += "  " + utf8FromNarrow(Dialog::cellText(item, row, column));
        text += "\n";
    }
    if (count > most)
        text += std::string(indent) + "rows " + std::to_string(first + 1) + " to " + std::to_string(end) + " of " +
                std::to_string(count) + (item.several ? ", " + std::to_string(item.selection.size()) + " chosen" : "") +
                "\n";
    return text;
}

// `number` is empty for an item that can't be used.
std::string lineOf(const DialogItem& item, const std::string& number, int32_t mostRows) {
    const std::string label = utf8FromNarrow(item.label);
    const std::string value = utf8FromNarrow(item.value);
    const std::string head = number.empty() ? std::string(indent) : number;
    switch (item.kind) {
        case ITEM_TEXT: return head + label + ": " + value + "\n";
        case ITEM_TOGGLE: return head + (item.value == "1" ? "[x] " : "[ ] ") + label + "\n";
        case ITEM_OPTION_BUTTON:
            return head + label + ": " + utf8FromNarrow(chosenLabel(item)) + " (" + choicesOf(item) + ")\n";
        case ITEM_COMBO_BOX:
            return head + label + ": " + utf8FromNarrow(Dialog::cellText(item, item.selectedRow(), 0)) + "\n" +
                   rowsOf(item, mostRows);
        case ITEM_LIST_BOX:
            return (number.empty() && label.empty() ? "" : head + (label.empty() ? "Rows" : label) + "\n") +
                   rowsOf(item, mostRows);
        case ITEM_LABEL:
        case ITEM_GROUP_BOX: return label.empty() ? label : label + "\n";
        default: return {};
    }
}

std::string editText(const Dialog& dialog, const Dialog::EditedCell& cell) {
    const DialogItem& item = dialog.items()[cell.item];
    return "Give " + (item.label.empty() ? "the list" : utf8FromNarrow(item.label)) + "=TEXT for row " +
           std::to_string(cell.row + 1) + ", column " + std::to_string(cell.column + 1) + ": " +
           utf8FromNarrow(Dialog::cellText(item, cell.row, cell.column)) + "\n";
}

std::string menuText(const Menu& menu) {
    std::string text = "Menu:";
    for (size_t i = 0; i < menu.entries.size(); ++i)
        text += "  " + std::to_string(i + 1) + ". " + utf8FromNarrow(menu.entries[i].label);
    return text + "\n";
}

}  // namespace

std::vector<size_t> numberedItems(const Dialog& dialog) {
    std::vector<size_t> numbered;
    for (const bool buttons : {true, false})
        for (size_t i = 0; i < dialog.items().size(); ++i)
            if (isInput(dialog.items()[i]) && (dialog.items()[i].kind == ITEM_PUSH_BUTTON) == buttons)
                numbered.push_back(i);
    return numbered;
}

bool isUsable(const Dialog& dialog, size_t item) {
    const DialogItem& asked = dialog.items()[item];
    return dialog.isVisible(asked) && asked.enabled && isInput(asked) &&
           (!isList(asked) || Dialog::rowCount(asked) > 0);
}

std::vector<size_t> usableItems(const Dialog& dialog) {
    std::vector<size_t> usable = numberedItems(dialog);
    std::erase_if(usable, [&](size_t item) { return !isUsable(dialog, item); });
    return usable;
}

std::string choicesOf(const DialogItem& item) {
    std::string text;
    for (const OptionRow& row : item.rows)
        if (row.enabled) text += (text.empty() ? "" : ", ") + utf8FromNarrow(row.label);
    return text;
}

std::string textOf(const Dialog& dialog, int32_t mostRows) {
    const std::vector<size_t> numbered = numberedItems(dialog);
    std::string text = "--- " + utf8FromNarrow(dialog.title()) + " ---\n" + drawnText(dialog);
    std::string buttons;
    for (size_t i = 0; i < dialog.items().size(); ++i) {
        const DialogItem& item = dialog.items()[i];
        if (!dialog.isVisible(item)) continue;
        const auto place = std::ranges::find(numbered, i) - numbered.begin();
        const std::string number = isUsable(dialog, i) ? std::to_string(place + 1) + ") " : std::string();
        if (item.kind != ITEM_PUSH_BUTTON)
            text += lineOf(item, number, mostRows);
        else if (!number.empty())
            buttons += "  " + number + utf8FromNarrow(item.label);
    }
    if (dialog.editedCell()) text += editText(dialog, *dialog.editedCell());
    if (!buttons.empty()) text += buttons + "\n";
    return dialog.offeredMenu() ? text + menuText(*dialog.offeredMenu()) : text;
}

}  // namespace host
