#include "mchost/front/scripted.h"

#include <utility>

namespace host {

namespace {

// Out of all items when there is none: the event functions refuse it.
size_t placeOf(const Dialog& dialog, int32_t kind, int32_t id) {
    const int32_t index = dialog.indexOf(kind, id);
    return index < 0 ? dialog.items().size() : static_cast<size_t>(index);
}

}  // namespace

DialogScript& DialogScript::add(std::string name, std::function<bool(Dialog&)> take) {
    steps_.push_back({std::move(name), std::move(take)});
    return *this;
}

DialogScript& DialogScript::press(int32_t buttonId) {
    return add("press " + std::to_string(buttonId),
               [=](Dialog& dialog) { return dialog.press(placeOf(dialog, ITEM_PUSH_BUTTON, buttonId)); });
}

DialogScript& DialogScript::setValue(int32_t kind, int32_t id, std::string value) {
    return add("set " + std::to_string(id) + " to \"" + value + "\"",
               [=](Dialog& dialog) { return dialog.setValue(placeOf(dialog, kind, id), value); });
}

DialogScript& DialogScript::selectRow(int32_t listBoxId, int32_t row) {
    return selectRows(listBoxId, {row});
}

DialogScript& DialogScript::selectRows(int32_t listBoxId, std::vector<int32_t> rows) {
    std::string name = "select of " + std::to_string(listBoxId) + " the rows";
    for (const int32_t row : rows) name += " " + std::to_string(row);
    return add(name,
               [=](Dialog& dialog) { return dialog.selectRows(placeOf(dialog, ITEM_LIST_BOX, listBoxId), rows); });
}

DialogScript& DialogScript::choose(int32_t comboBoxId, int32_t row) {
    return add("choose row " + std::to_string(row) + " of " + std::to_string(comboBoxId),
               [=](Dialog& dialog) { return dialog.selectRows(placeOf(dialog, ITEM_COMBO_BOX, comboBoxId), {row}); });
}

DialogScript& DialogScript::type(int32_t textId, std::string text) {
    return add("type \"" + text + "\" into " + std::to_string(textId),
               [=](Dialog& dialog) { return dialog.type(placeOf(dialog, ITEM_TEXT, textId), text); });
}

DialogScript& DialogScript::resize(int32_t width, int32_t height) {
    return add("resize to " + std::to_string(width) + " by " + std::to_string(height),
               [=](Dialog& dialog) { return dialog.resize(width, height); });
}

DialogScript& DialogScript::activate(int32_t kind, int32_t id) {
    return add("activate " + std::to_string(id),
               [=](Dialog& dialog) { return dialog.activate(placeOf(dialog, kind, id)); });
}

DialogScript& DialogScript::close() {
    return add("close", [](Dialog& dialog) {
        dialog.close();
        return true;
    });
}

DialogScript& DialogScript::check(std::function<void(Dialog&)> look) {
    return add("check", [look = std::move(look)](Dialog& dialog) {
        look(dialog);
        return true;
    });
}

bool DialogScript::operator()(Dialog& dialog) {
    while (!dialog.ended()) {
        dialog.refresh();
        if (steps_.empty() || !fault_.empty()) return false;
        // The step leaves the queue first: a hook that it runs may open a dialog, which takes the steps behind it.
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        if (!step.take(dialog)) {
            fault_ = "dialog " + std::to_string(dialog.id()) + " refused: " + step.name;
            return false;
        }
    }
    return true;
}

FileScript& FileScript::answer(std::string text) {
    answers_.emplace_back(std::move(text));
    return *this;
}

FileScript& FileScript::cancel() {
    answers_.emplace_back();
    return *this;
}

FileScript& FileScript::agree(bool yes) {
    agreements_.push_back(yes);
    return *this;
}

std::optional<std::string> FileScript::askFile(const FileQuestion& question) {
    questions.push_back(question);
    if (answers_.empty()) return std::nullopt;
    auto answer = std::move(answers_.front());
    answers_.pop_front();
    return answer;
}

bool FileScript::confirm(std::string_view question) {
    confirmations.emplace_back(question);
    if (agreements_.empty()) return false;
    const bool yes = agreements_.front();
    agreements_.pop_front();
    return yes;
}

}  // namespace host
