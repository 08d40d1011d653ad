#include "mchost/front/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <fstream>
#include <numeric>
#include <span>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "mchost/base/charset.h"
#include "mchost/base/words.h"
#include "mchost/command/command.h"
#include "mchost/command/input.h"
#include "mchost/dialog/menus.h"
#include "mchost/front/dialog_text.h"
#include "mchost/front/dialog_words.h"
#include "mchost/front/file_question.h"
#include "mchost/front/line_input.h"
#include "mchost/mdl/system.h"

namespace host {

namespace {

constexpr std::string_view pointHelp =
    "Give x,y or x,y,z in master units, and a view from 2 to 8 behind it unless it is view 1; \"move x,y\" moves the "
    "cursor alone, an empty line resets, and \"end\" ends the command.\n";

std::string helpOnHostWords() {
    std::string help;
    for (const HostWord& word : hostWords()) help += word.help;
    return help;
}

bool isCallForHelp(std::string_view answer) {
    return trimmed(answer) == "help" || trimmed(answer) == "?";
}

std::deque<std::string> linesOf(const std::string& path) {
    std::deque<std::string> lines;
    if (path.empty()) return lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    if (!file.eof()) throw std::runtime_error(path + ": the file of answers can't be read; check its name");
    return lines;
}

// ---- what is shown ----

constexpr size_t longText = 12;  // lines behind which a message is out of sight
constexpr size_t mostTold = 10;
constexpr int32_t rowsInSight = 40;  // of a list

std::vector<std::string> dividedIntoLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line + "\n");
    return lines;
}

// The title and the lines that weren't there before; all of them when they are too many to be told apart.
std::string changedLines(const std::vector<std::string>& before, const std::vector<std::string>& now) {
    std::string text = now.front();
    size_t changed = 0;
    for (const std::string& line : std::span(now).subspan(1)) {
        if (std::ranges::find(before, line) != before.end()) continue;
        text += line;
        ++changed;
    }
    return changed > 4 && changed > now.size() / 2 ? std::accumulate(now.begin(), now.end(), std::string()) : text;
}

// ---- the front end ----

class TerminalFrontEnd : public FrontEnd {
  public:
    explicit TerminalFrontEnd(TerminalOptions options)
        : answers_(linesOf(options.answersFile)),
          asks_(options.ask || options.asks.value_or(isatty(fileno(options.input)))),
          showsProgress_(!options.write && options.showsProgress.value_or(isatty(fileno(options.errors)))),
          options_(std::move(options)),
          input_(options_.input, options_.errors, [this](const std::string& text) { write(false, text); }) {}
    ~TerminalFrontEnd() override { endProgress(); }

    bool attended() const override { return !scripted_ && answers_.empty() && !options_.yes && asks_; }

    void console(std::string_view text) override {
        endProgress();
        write(true, printable(std::string(text)));
    }

    void messageField(int field, std::string_view text) override {
        if (field == MDL_FIELD_ERROR && !text.empty()) tell(std::string(text) + "\n");
        if (field == MDL_FIELD_COMMAND && std::exchange(command_, text) != text && !text.empty()) show(command_ + "\n");
        if ((field != MDL_FIELD_MESSAGE && field != MDL_FIELD_STATUS) || !showsProgress_) return;
        std::fprintf(options_.errors, "\r%s\x1b[K", printable(std::string(text), " ").c_str());
        std::fflush(options_.errors);
        progressShown_ = !text.empty();
    }

    void message(const Message& message) override {
        tell(std::string(message.brief) + (message.details.empty() ? "" : ": ") + std::string(message.details) + "\n");
    }

    void refused(const Event& event) override {
        if (const auto* done = std::get_if<DialogEvent>(&event)) refuse(complaintOf(*done) + "\n");
    }

    Event wait(const Awaited& awaited, std::optional<std::chrono::milliseconds> limit) override try {
        limit_ = limit;
        Event event = std::visit([this](const auto& asked) { return next(asked); }, awaited);
        led_.clear();
        return event;
    } catch (const TimeOver&) {
        return Nothing{};
    }

  private:
    // Thrown while a line is read: the question stands, and is asked on with the next wait.
    struct TimeOver {};

    // ---- what is asked for, each with the event that answers it ----

    Event next(const Note&) {
        if (!attended()) return NobodyThere{};
        nextAnswer("Press Enter to go on > ");
        return Noted{};
    }

    Event next(const ModalDialog& modal) {
        Dialog& dialog = *modal.dialog;
        if (wasPressed(dialog)) return closing(dialog);  // the button didn't end it
        present(dialog);
        if (dialog.ended()) return Nothing{};
        if (const auto answer = askAbout(dialog)) return meantBy(dialog, *answer);
        const auto button = firstButton(dialog);
        if (button && (options_.yes || endingButtons(dialog) == 1)) return pressing(dialog, *button);
        refuse("Nobody answers. Answer at a terminal, or run with --yes or --answers FILE.\n");
        return NobodyThere{};
    }

    Event next(const AnyEvent& any) {
        if (any.command != 0) return nextForCommand(any);
        const auto dialog = turnedTo();
        if (!dialog) return menuBar().empty() ? Event(Quit{}) : nextKeyIn();
        present(*dialog);
        if (dialog->ended()) return Nothing{};
        if (openDialogs().size() > 1) lead(windowList(*dialog));
        if (const auto answer = askAbout(*dialog)) return meantBy(*dialog, *answer);
        // In an unattended run the dialog stays until commands that the button starts have been served.
        const auto button = options_.yes && !wasPressed(*dialog) ? firstButton(*dialog) : std::nullopt;
        return button ? pressing(*dialog, *button) : closing(*dialog);
    }

    // No window is open, and applications have menus. An empty line leaves.
    Event nextKeyIn() {
        const auto answer = nextAnswer("[end] menu TITLE/ENTRY > ");
        if (!answer || trimmed(*answer).empty() || trimmed(*answer) == "end") return Quit{};
        if (isCallForHelp(*answer)) return show(helpOnHostWords()), Nothing{};
        if (hostWordOf(*answer)) return keyInOf(*answer);
        refuse("\"" + std::string(trimmed(*answer)) + "\" can't be done. \"help\" lists what can be.\n");
        return Nothing{};
    }

    // A point or a reset, or something for the window that is open beside the command.
    Event nextForCommand(const AnyEvent& any) {
        if (const auto used = std::exchange(used_, {}).lock(); used && !used->ended()) present(*used);
        if (!any.prompt.empty()) lead(any.prompt + "\n");
        while (const auto answer = nextAnswer("x,y[,z] [view] > ")) {
            if (!isCallForHelp(*answer)) return meantForCommand(*answer);
            show(std::string(pointHelp) + (openDialogs().empty() ? "" : "Any other answer goes to the open window:\n"));
            if (const auto dialog = turnedTo()) show(helpOn(*dialog));
            show(helpOnHostWords());
        }
        if (options_.yes && std::exchange(pointedAt_, any.command) != any.command) {
            show("> 0,0\n");
            return DataPoint{{}, 0};
        }
        show("Nobody gives a point. Answer at a terminal, or run with --answers FILE.\n");
        return NobodyThere{};
    }

    Event meantForCommand(const std::string& answer) {
        const auto input = commandInputIn(answer);
        if (!input) {
            const auto dialog = turnedTo();
            const auto meant = dialog ? meaningOf(*dialog, answer) : std::nullopt;
            used_ = dialog;
            if (meant) return *meant;
            used_.reset();
            if (hostWordOf(answer)) return keyInOf(answer);
            refuse("\"" + answer + "\" isn't a point. " + std::string(pointHelp));
            return Nothing{};
        }
        switch (input->kind) {
            case CommandInput::Kind::point: return DataPoint{inUor(input->point), input->view};
            case CommandInput::Kind::move: return CursorMove{inUor(input->point), input->view};
            case CommandInput::Kind::reset: return Reset{};
            default: return CommandEnd{};
        }
    }

    Event next(const FileQuestion& question) {
        lead(textOf(question));
        if (!question.complaint.empty()) mdlSystem_noteFailure();
        const LineHelp help{[&](std::string_view typed) { return completeFileName(question, typed); },
                            question.remembered};
        if (const auto answer = nextAnswer(promptOf(question), help)) {
            const std::string_view name = trimmed(*answer);
            return name == "!" ? FileAnswer{} : FileAnswer{std::string(name)};
        }
        const bool oneIsMissing = question.suggested.empty() && (question.kind == FileQuestion::Kind::open ||
                                                                 question.kind == FileQuestion::Kind::create);
        if (options_.yes && !oneIsMissing && question.complaint.empty()) {
            show("> " + question.suggested + "\n");
            return FileAnswer{std::string()};
        }
        if (!gaveUp_) refuse("Nobody names a file. Answer at a terminal, or run with --answers FILE.\n");
        return NobodyThere{};
    }

    Event next(const Confirmation& confirmation) {
        lead(confirmation.question + "\n");
        if (const auto answer = nextAnswer("[no] y/n > ")) {
            const std::string_view word = trimmed(*answer);
            return Agreement{!word.empty() && std::string_view("yYjJ").find(word[0]) != std::string_view::npos};
        }
        if (options_.yes) show("> yes\n");
        return Agreement{options_.yes};
    }

    // ---- unattended runs ----

    bool wasPressed(const Dialog& dialog) const {
        return std::ranges::any_of(pressed_, [&](const auto& known) { return known.lock().get() == &dialog; });
    }

    Event pressing(Dialog& dialog, size_t button) {
        std::erase_if(pressed_, [](const auto& known) { return known.expired(); });
        pressed_.push_back(dialog.weak_from_this());
        if (options_.yes) show("> " + utf8FromNarrow(dialog.items()[button].label) + "\n");
        return DialogEvent{.kind = DialogEvent::Kind::press, .dialog = dialog.shared_from_this(), .item = button};
    }

    static Event closing(Dialog& dialog) {
        return DialogEvent{.kind = DialogEvent::Kind::close, .dialog = dialog.shared_from_this()};
    }

    // ---- dialogs ----

    // The dialog that answers are for: the one that was turned to, else the last opened; null when none is open.
    std::shared_ptr<Dialog> turnedTo() const {
        const auto open = openDialogs();
        if (open.empty()) return nullptr;
        const auto turned = std::ranges::find(open, turnedTo_.lock());
        return turned == open.end() ? open.back() : *turned;
    }

    // Whoever reads on a terminal sees a dialog once, and then what changes in it, so that messages stay in sight.
    void present(Dialog& dialog) {
        dialog.refresh();
        if (dialog.ended()) return;
        const std::string text = textOf(dialog, attended() ? rowsInSight : rowsUnattended);
        if (!attended()) return show(text);
        std::erase_if(shown_, [](const ShownDialog& shown) { return shown.dialog.expired(); });
        std::vector<std::string> lines = dividedIntoLines(text);
        const bool another = std::exchange(presented_, dialog.weak_from_this()).lock().get() != &dialog;
        const std::string told = std::exchange(told_, {});
        auto before = std::ranges::find_if(shown_, [&](const auto& s) { return s.dialog.lock().get() == &dialog; });
        if (before == shown_.end()) before = shown_.insert(before, {dialog.weak_from_this(), {}});
        if (another || before->lines != lines) {
            const std::string part = before->lines.empty() ? text : changedLines(before->lines, lines);
            show(part);
            if (!told.empty() && static_cast<size_t>(std::ranges::count(part, '\n')) > longText) show(told);
        }
        before->lines = std::move(lines);
    }

    // The next time the dialog is shown all of it is.
    void showWhole(const Dialog& dialog) {
        std::erase_if(shown_, [&](const ShownDialog& shown) { return shown.dialog.lock().get() == &dialog; });
    }

    static std::string windowList(const Dialog& current) {
        const auto open = openDialogs();
        std::string text = "Open windows:";
        for (size_t i = 0; i < open.size(); ++i)
            text += std::string(i == 0 ? " " : ", ") + (open[i].get() == &current ? "*" : "") + std::to_string(i + 1) +
                    " " + utf8FromNarrow(open[i]->title());
        return text + "\n";
    }

    void show(std::string text) {
        endProgress();
        write(false, printable(std::move(text)));
    }

    // What stands above a question: once, however often the question is asked on.
    void lead(const std::string& text) {
        if (std::exchange(led_, text) != text) show(text);
    }

    void write(bool console, const std::string& text) {
        input_.makeRoom();
        if (options_.write) return options_.write(console, text);
        std::FILE* const stream = console ? options_.output : options_.errors;
        std::fwrite(text.data(), 1, text.size(), stream);
        std::fflush(stream);
    }

    // Shows a message, which is shown again when a long dialog takes it out of sight.
    void tell(const std::string& line) {
        show(line);
        if (static_cast<size_t>(std::ranges::count(told_, '\n')) < mostTold) told_ += line;
    }

    void endProgress() {
        if (progressShown_) std::fputc('\n', options_.errors);
        progressShown_ = false;
    }

    // A line of the file of answers, or of the terminal; nothing when there is neither. A terminal that has ended (or
    // Ctrl-D) closes the dialog, and isn't asked again.
    std::optional<std::string> nextAnswer(const std::string& question, const LineHelp& help = {}) {
        gaveUp_ = false;
        told_.clear();
        scripted_ = !answers_.empty();
        if (scripted_) {
            std::string answer = std::move(answers_.front());
            answers_.pop_front();
            show("> " + answer + "\n");
            return answer;
        }
        if (options_.yes || !asks_) return std::nullopt;
        if (options_.ask) return askOutside(question);
        return readLine(printable(question), help);
    }

    std::optional<std::string> readLine(const std::string& question, const LineHelp& help) {
        endProgress();
        switch (input_.read(question, help, limit_)) {
            case LineInput::Read::line: break;
            case LineInput::Read::givenUp: gaveUp_ = true; return std::nullopt;
            case LineInput::Read::timeOver: throw TimeOver();
            default:
                show("\n");
                asks_ = false;
                return std::nullopt;
        }
        if (!trimmed(input_.line()).empty()) history_.insert(history_.begin(), input_.line());
        return input_.line();
    }

    std::optional<std::string> askOutside(const std::string& question) {
        auto answer = options_.ask(question);
        gaveUp_ = !answer;
        asks_ = !gaveUp_;
        return answer;
    }

    static std::string question(const Dialog& dialog) {
        const auto button = defaultButton(dialog);
        return button ? "[" + utf8FromNarrow(dialog.items()[*button].label) + "] > " : "> ";
    }

    std::optional<std::string> askAbout(const Dialog& dialog) {
        return nextAnswer(question(dialog),
                          {[&](std::string_view typed) { return completeAnswer(dialog, typed); }, history_});
    }

    Event meantBy(Dialog& dialog, std::string_view answer) {
        if (const auto meant = meaningOf(dialog, answer)) return *meant;
        if (!dialog.modal() && hostWordOf(answer)) return keyInOf(answer);
        refuse("This can't be done here: \"" + std::string(trimmed(answer)) + "\". \"help\" lists what can be done.\n");
        return Event{};
    }

    // Nothing when the answer means nothing here.
    std::optional<Event> meaningOf(Dialog& dialog, std::string_view answer) {
        if (isCallForHelp(answer)) return show(helpOf(dialog)), Event{};
        const NarrowText narrow = narrowFromUtf8(trimmed(answer));
        if (narrow.badPosition) return refuse("There is a character in this answer that can't be used.\n"), Event{};
        auto followed = followAnswer(dialog, narrow.text);
        if (!followed) return followWord(dialog, narrow.text) ? std::optional(Event{}) : std::nullopt;
        if (!followed->complaint.empty()) refuse(followed->complaint + "\n");
        return followed->event ? Event{*std::move(followed->event)} : Event{};
    }

    static KeyIn keyInOf(std::string_view answer) {
        return {.text = narrowFromUtf8(answer).text, .literal = false, .task = {}};
    }

    // Words that are for this front end and not for a dialog.
    bool followWord(Dialog& dialog, std::string_view answer) {
        constexpr std::string_view turn = "window ";
        if (answer == "show") {
            showWhole(dialog);
            return true;
        }
        if (!answer.starts_with(turn) || dialog.modal()) return false;
        const auto open = openDialogs();
        const auto number = numberIn<size_t>(trimmed(answer.substr(turn.size())));
        if (!number || *number < 1 || *number > open.size()) {
            refuse("There is no open window of that number. " + windowList(dialog));
        } else {
            turnedTo_ = open[*number - 1];
            showWhole(*open[*number - 1]);
        }
        return true;
    }

    static std::string helpOf(const Dialog& dialog) {
        return "You can answer:\n" + helpOn(dialog) + "  show: shows all of this window again\n" +
               (dialog.modal() ? "" : "  window NUMBER: turns to another open window\n" + helpOnHostWords()) +
               "  help: this list\n";
    }

    // Tells what wasn't done, which a run that nobody attends has to end with.
    void refuse(const std::string& line) {
        tell(line);
        mdlSystem_noteFailure();
    }

    struct ShownDialog {
        std::weak_ptr<Dialog> dialog;
        std::vector<std::string> lines;
    };

    std::deque<std::string> answers_;
    bool asks_;
    bool showsProgress_;
    bool progressShown_ = false;
    bool scripted_ = false;                           // the last answer came from the file
    bool gaveUp_ = false;                             // the user left the last question without an answer
    std::string command_;                             // the command message that is shown
    uint64_t pointedAt_ = 0;                          // the command that an unattended run gave its one point
    std::weak_ptr<Dialog> turnedTo_;                  // of the dialogs that aren't modal
    std::string told_;                                // messages since the last answer
    std::vector<std::string> history_;                // answers that were typed, the latest first
    std::vector<ShownDialog> shown_;                  // what was shown of the dialogs that are open
    std::weak_ptr<Dialog> presented_;                 // the last one shown
    std::weak_ptr<Dialog> used_;                      // the one that an answer went to while a command waited
    std::vector<std::weak_ptr<Dialog>> pressed_;      // those whose first button an unattended run has pressed
    std::string led_;                                 // what stands above the question that is being asked
    std::optional<std::chrono::milliseconds> limit_;  // of the wait
    TerminalOptions options_;
    LineInput input_;
};

}  // namespace

std::unique_ptr<FrontEnd> makeTerminalFrontEnd(TerminalOptions options) {
    return std::make_unique<TerminalFrontEnd>(std::move(options));
}

}  // namespace host
