#include "host/front/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <deque>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "host/command/command.h"
#include "host/front/dialog_text.h"
#include "host/front/file_question.h"
#include "host/front/line_editor.h"
#include "host/mdl/system.h"
#include "host/session/session.h"
#include "host/system/charset.h"

namespace host {

namespace {

enum { MESSAGE_FIELD = 0, STATUS_FIELD = 1, ERROR_FIELD = 3 };
enum { BUTTON_FIRST = -3, BUTTON_SECOND = -4 };
constexpr size_t mostPixels = 8000;  // a window's side

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
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

std::deque<std::string> linesOf(const std::string& path) {
    std::deque<std::string> lines;
    if (path.empty()) return lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    if (!file.eof()) throw std::runtime_error(path + ": the file of answers can't be read; check its name");
    return lines;
}

std::optional<size_t> numberIn(std::string_view text) {
    size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// ---- what an answer does ----

std::vector<size_t> usableButtons(const Dialog& dialog) {
    std::vector<size_t> buttons = usableItems(dialog);
    std::erase_if(buttons, [&](size_t i) { return dialog.items()[i].kind != ITEM_PUSH_BUTTON; });
    return buttons;
}

// The one that an unattended run presses: that with the id -3, else the first in the layout.
std::optional<size_t> firstButton(const Dialog& dialog) {
    const std::vector<size_t> buttons = usableButtons(dialog);
    if (buttons.empty()) return std::nullopt;
    const auto first = std::ranges::find_if(buttons, [&](size_t i) { return dialog.items()[i].id == BUTTON_FIRST; });
    return first == buttons.end() ? buttons[0] : *first;
}

// How many ways out there are: one leaves nothing to choose.
size_t endingButtons(const Dialog& dialog) {
    std::vector<size_t> buttons = usableButtons(dialog);
    std::erase_if(buttons, [&](size_t i) {
        const int32_t id = dialog.items()[i].id;
        return id != BUTTON_FIRST && id != BUTTON_SECOND;
    });
    return buttons.size();
}

std::optional<size_t> defaultButton(const Dialog& dialog) {
    for (const size_t button : usableButtons(dialog))
        if (dialog.items()[button].isDefault) return button;
    return std::nullopt;
}

// The one item among these whose label is, or else begins with, the answer.
std::optional<size_t> labelled(const Dialog& dialog, const std::vector<size_t>& items, std::string_view answer) {
    const std::string wanted = folded(answer);
    std::vector<size_t> beginning;
    for (const size_t item : items) {
        const std::string label = folded(dialog.items()[item].label);
        if (label == wanted) return item;
        if (label.starts_with(wanted)) beginning.push_back(item);
    }
    return beginning.size() == 1 ? std::optional(beginning[0]) : std::nullopt;
}

bool choose(Dialog& dialog, size_t index, std::string_view value) {
    std::vector<OptionRow> rows = dialog.items()[index].rows;
    std::erase_if(rows, [](const OptionRow& r) { return !r.enabled; });
    const std::string wanted = folded(value);
    auto row = std::ranges::find_if(rows, [&](const OptionRow& r) { return folded(r.label) == wanted; });
    if (const auto number = numberIn(value); row == rows.end() && number && *number >= 1 && *number <= rows.size())
        row = rows.begin() + static_cast<ptrdiff_t>(*number - 1);
    return row != rows.end() && dialog.setValue(index, std::to_string(row->value));
}

// A row by the text in its first column, else by its number.
bool selectRow(Dialog& dialog, size_t index, std::string_view value) {
    const DialogItem& item = dialog.items()[index];
    const std::string wanted = folded(value);
    for (int32_t row = 0; row < Dialog::rowCount(item); ++row)
        if (folded(Dialog::cellText(item, row, 0)) == wanted) return dialog.selectRow(index, row);
    const auto number = numberIn(value);
    return number && *number >= 1 && *number <= INT32_MAX && dialog.selectRow(index, static_cast<int32_t>(*number) - 1);
}

bool setItem(Dialog& dialog, size_t index, std::string_view value) {
    switch (dialog.items()[index].kind) {
        case ITEM_OPTION_BUTTON: return choose(dialog, index, value);
        case ITEM_COMBO_BOX:
        case ITEM_LIST_BOX: return selectRow(dialog, index, value);
        case ITEM_PUSH_BUTTON: return false;
        default: return dialog.setValue(index, value);
    }
}

// ---- the front end ----

class TerminalFrontEnd : public FrontEnd {
  public:
    explicit TerminalFrontEnd(TerminalOptions options)
        : answers_(linesOf(options.answersFile)),
          asks_(options.asks.value_or(isatty(fileno(options.input)))),
          showsProgress_(options.showsProgress.value_or(isatty(fileno(options.errors)))),
          options_(std::move(options)) {}
    ~TerminalFrontEnd() override { endProgress(); }

    bool attended() const override { return !scripted_ && answers_.empty() && !options_.yes && asks_; }

    void console(std::string_view text) override {
        endProgress();
        std::fwrite(text.data(), 1, text.size(), options_.output);
        std::fflush(options_.output);
    }

    void messageField(int field, std::string_view text) override {
        if (field == ERROR_FIELD && !text.empty()) show(std::string(text) + "\n");
        if ((field != MESSAGE_FIELD && field != STATUS_FIELD) || !showsProgress_) return;
        std::fprintf(options_.errors, "\r%.*s\x1b[K", static_cast<int>(text.size()), text.data());
        std::fflush(options_.errors);
        progressShown_ = !text.empty();
    }

    void messageCenter(int, std::string_view brief, std::string_view details) override {
        show(std::string(brief) + (details.empty() ? "" : ": ") + std::string(details) + "\n");
    }

    bool runModal(Dialog& dialog) override {
        while (!dialog.ended()) {
            present(dialog);
            if (dialog.ended()) break;
            if (const auto answer = nextAnswer(question(dialog)))
                take(dialog, *answer);
            else if (!answerUnattended(dialog))
                return false;
        }
        return true;
    }

    std::optional<std::string> commandLine(std::string_view prompt, std::string_view complaint) override {
        if (!complaint.empty()) {
            refuse(
                std::string(complaint) +
                ". Give x,y or x,y,z in master units, and a view from 2 to 8 behind it unless it is view 1; an empty "
                "line resets, and \"end\" ends the command.\n");
        }
        show(std::string(prompt) + "\n");
        if (auto answer = nextAnswer("x,y[,z] [view] > ")) return answer;
        if (options_.yes && std::exchange(pointedAt_, commandSerial()) != commandSerial()) {
            show("> 0,0\n");
            return "0,0";
        }
        show("Nobody gives a point. Answer at a terminal, or run with --answers FILE.\n");
        return std::nullopt;
    }

    std::optional<std::string> askFile(const FileQuestion& question) override {
        show(textOf(question));
        if (!question.complaint.empty()) mdlSystem_noteFailure();
        const LineHelp help{[&](std::string_view typed) { return completeFileName(question, typed); },
                            question.remembered};
        if (const auto answer = nextAnswer(promptOf(question), help)) {
            const std::string_view name = trimmed(*answer);
            return name == "!" ? std::nullopt : std::optional(std::string(name));
        }
        const bool oneIsMissing = question.suggested.empty() && (question.kind == FileQuestion::Kind::open ||
                                                                 question.kind == FileQuestion::Kind::create);
        if (options_.yes && !oneIsMissing && question.complaint.empty()) {
            show("> " + question.suggested + "\n");
            return std::string();
        }
        if (!gaveUp_) refuse("Nobody names a file. Answer at a terminal, or run with --answers FILE.\n");
        return std::nullopt;
    }

    bool confirm(std::string_view question) override {
        show(std::string(question) + "\n");
        if (const auto answer = nextAnswer("[no] y/n > ")) {
            const std::string_view word = trimmed(*answer);
            return !word.empty() && std::string_view("yYjJ").find(word[0]) != std::string_view::npos;
        }
        if (options_.yes) show("> yes\n");
        return options_.yes;
    }

    bool serveOpenDialog() override {
        const auto open = openDialogs();
        if (open.empty()) return false;
        const auto turned = std::ranges::find(open, turnedTo_.lock());
        const std::shared_ptr<Dialog> dialog = turned == open.end() ? open.back() : *turned;
        present(*dialog);
        if (dialog->ended()) return true;
        if (open.size() > 1) show(windowList(open, *dialog));
        if (const auto answer = nextAnswer(question(*dialog)))
            take(*dialog, *answer);
        else if (options_.yes && pressed_.lock() != dialog)
            pressFirst(dialog);
        else
            dialog->close();
        return true;
    }

  private:
    // In an unattended run: the dialog stays until commands that the button starts have been served.
    void pressFirst(const std::shared_ptr<Dialog>& dialog) {
        pressed_ = dialog;
        const auto button = firstButton(*dialog);
        if (!button) return;
        show("> " + utf8FromNarrow(dialog->items()[*button].label) + "\n");
        dialog->press(*button);
    }

    void present(Dialog& dialog) {
        if (Session* session = Session::current()) session->runDueTimers();
        dialog.refresh();
        if (!dialog.ended()) show(textOf(dialog));
    }

    static std::string windowList(const std::vector<std::shared_ptr<Dialog>>& open, const Dialog& current) {
        std::string text = "Open windows:";
        for (size_t i = 0; i < open.size(); ++i)
            text += std::string(i == 0 ? " " : ", ") + (open[i].get() == &current ? "*" : "") + std::to_string(i + 1) +
                    " " + utf8FromNarrow(open[i]->title());
        return text + "\n";
    }

    // What comes from files and drawings can't steer the terminal.
    static std::string printable(std::string text) {
        std::ranges::replace_if(
            text, [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\n'; }, ' ');
        return text;
    }

    void show(std::string text) {
        endProgress();
        text = printable(std::move(text));
        std::fwrite(text.data(), 1, text.size(), options_.errors);
        std::fflush(options_.errors);
    }

    void endProgress() {
        if (progressShown_) std::fputc('\n', options_.errors);
        progressShown_ = false;
    }

    // A line of the file of answers, or of the terminal; nothing when there is neither. A terminal that has ended (or
    // Ctrl-D) closes the dialog, and isn't asked again.
    std::optional<std::string> nextAnswer(const std::string& question, const LineHelp& help = {}) {
        gaveUp_ = false;
        scripted_ = !answers_.empty();
        if (scripted_) {
            std::string answer = std::move(answers_.front());
            answers_.pop_front();
            show("> " + answer + "\n");
            return answer;
        }
        if (options_.yes || !asks_) return std::nullopt;
        if (canEditLines(options_.input, options_.errors)) {
            endProgress();
            auto line = editLine(options_.input, options_.errors, printable(question), help);
            gaveUp_ = !line;
            return line;
        }
        show(question);
        std::string line;
        int c;
        while ((c = std::fgetc(options_.input)) != EOF && c != '\n') line.push_back(static_cast<char>(c));
        if (c != EOF || !line.empty()) return line;
        show("\n");
        asks_ = false;
        return std::nullopt;
    }

    static std::string question(const Dialog& dialog) {
        const auto button = defaultButton(dialog);
        return button ? "[" + utf8FromNarrow(dialog.items()[*button].label) + "] > " : "> ";
    }

    void take(Dialog& dialog, std::string_view answer) {
        const NarrowText narrow = narrowFromUtf8(trimmed(answer));
        if (narrow.badPosition) return refuse("There is a character in this answer that can't be used.\n");
        if (!follow(dialog, narrow.text) && !followWord(dialog, narrow.text))
            refuse("This can't be done here: \"" + std::string(trimmed(answer)) +
                   "\". Give the number or label of a button, or number=value for another item.\n");
    }

    // Tells what wasn't done, which a run that nobody attends has to end with.
    void refuse(const std::string& line) {
        show(line);
        mdlSystem_noteFailure();
    }

    bool follow(Dialog& dialog, std::string_view answer) {
        if (answer.empty()) {
            const auto button = defaultButton(dialog);
            return button && dialog.press(*button);
        }
        if (const auto button = labelled(dialog, usableButtons(dialog), answer)) return dialog.press(*button);
        const size_t equals = answer.find('=');
        const std::string_view name = trimmed(answer.substr(0, equals));
        const std::vector<size_t> usable = usableItems(dialog);
        const auto number = numberIn(name);
        const auto labels = equals == std::string_view::npos ? usable : withoutButtons(dialog, usable);
        const auto found = !number                                    ? labelled(dialog, labels, name)
                           : *number >= 1 && *number <= usable.size() ? std::optional(usable[*number - 1])
                                                                      : std::nullopt;
        if (!found) return false;
        const size_t index = *found;
        if (equals != std::string_view::npos) return setItem(dialog, index, trimmed(answer.substr(equals + 1)));
        const DialogItem& item = dialog.items()[index];
        if (item.kind == ITEM_TOGGLE) return dialog.setValue(index, item.value == "1" ? "0" : "1");
        return item.kind == ITEM_PUSH_BUTTON && dialog.press(index);
    }

    static std::vector<size_t> withoutButtons(const Dialog& dialog, std::vector<size_t> items) {
        std::erase_if(items, [&](size_t item) { return dialog.items()[item].kind == ITEM_PUSH_BUTTON; });
        return items;
    }

    // An answer that is for the window and not for an item: a word, a blank, and what it is about.
    bool followWord(Dialog& dialog, std::string_view answer) {
        const size_t blank = std::min(answer.find(' '), answer.size());
        const std::string_view word = answer.substr(0, blank), rest = trimmed(answer.substr(blank));
        if (word == "close" && rest.empty()) {
            dialog.close();
            return true;
        }
        if (word == "picture" && !rest.empty()) return savePicture(dialog, std::string(rest));
        if (word == "size" && !rest.empty()) {
            const size_t cross = std::min(rest.find('x'), rest.size() - 1);
            const auto width = numberIn(rest.substr(0, cross)), height = numberIn(rest.substr(cross + 1));
            return width && height && std::max(*width, *height) <= mostPixels &&
                   dialog.resize(static_cast<int32_t>(*width), static_cast<int32_t>(*height));
        }
        const auto open = openDialogs();
        const auto number = numberIn(rest);
        if (word != "window" || dialog.modal() || !number || *number < 1 || *number > open.size()) return false;
        turnedTo_ = open[*number - 1];
        return true;
    }

    bool savePicture(Dialog& dialog, const std::string& name) {
        const bool written = mdlWindow_savePicture(dialog.handle(), name.c_str()) == MDL_SUCCESS;
        show(written ? "The picture is in " + utf8FromNarrow(name) + ".\n"
                     : "No picture could be written to " + utf8FromNarrow(name) +
                           ". Give a name that ends in .png, in a folder that is there.\n");
        return true;
    }

    bool answerUnattended(Dialog& dialog) {
        const auto button = firstButton(dialog);
        const bool onlyOne = endingButtons(dialog) == 1;
        if (!button || !(options_.yes || onlyOne)) {
            refuse("Nobody answers. Answer at a terminal, or run with --yes or --answers FILE.\n");
            return false;
        }
        if (options_.yes) show("> " + utf8FromNarrow(dialog.items()[*button].label) + "\n");
        dialog.press(*button);
        dialog.close();  // where the button didn't
        return true;
    }

    std::deque<std::string> answers_;
    bool asks_;
    bool showsProgress_;
    bool progressShown_ = false;
    bool scripted_ = false;           // the last answer came from the file
    bool gaveUp_ = false;             // the user left the last question without an answer
    uint64_t pointedAt_ = 0;          // the command that an unattended run gave its one point
    std::weak_ptr<Dialog> turnedTo_;  // of the dialogs that aren't modal
    std::weak_ptr<Dialog> pressed_;   // the one whose first button an unattended run has pressed
    TerminalOptions options_;
};

}  // namespace

std::unique_ptr<FrontEnd> makeTerminalFrontEnd(TerminalOptions options) {
    return std::make_unique<TerminalFrontEnd>(std::move(options));
}

}  // namespace host
