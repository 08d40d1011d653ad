#include "mchost/front/line_editor.h"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace host {

namespace {

enum : char {
    CTRL_A = 1,
    CTRL_B = 2,
    CTRL_C = 3,
    CTRL_D = 4,
    CTRL_E = 5,
    CTRL_F = 6,
    CTRL_H = 8,
    TAB = 9,
    CTRL_K = 11,
    CTRL_N = 14,
    CTRL_P = 16,
    CTRL_U = 21,
    CTRL_W = 23,
    CTRL_Z = 26,
    ESCAPE = 27,
    DELETE = 127
};

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

size_t characters(std::string_view text) {
    return static_cast<size_t>(std::ranges::count_if(text, [](char c) { return !isContinuation(c); }));
}

// The part of `text` that `count` characters from its end take.
std::string_view lastCharacters(std::string_view text, size_t count) {
    size_t begin = text.size();
    while (begin > 0 && count > 0)
        if (!isContinuation(text[--begin])) --count;
    return text.substr(begin);
}

std::string_view firstCharacters(std::string_view text, size_t count) {
    size_t end = 0;
    while (end < text.size() && (count > 0 || isContinuation(text[end])))
        if (!isContinuation(text[end++])) --count;
    return text.substr(0, end);
}

}  // namespace

std::string printable(std::string text, std::string_view keep) {
    for (size_t i = 0; i < text.size(); ++i) {
        const auto code = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        const bool second = code == 0xC2 && next >= 0x80 && next < 0xA0;  // the control characters U+0080 to U+009F
        if (second) text.erase(i, 1);
        if (second || ((code < ' ' || code == 0x7F) && keep.find(text[i]) == keep.npos)) text[i] = ' ';
    }
    return text;
}

std::string commonBeginning(const std::vector<std::string>& texts) {
    const std::string& first = texts.front();
    size_t length = first.size();
    for (const std::string& text : texts)
        length = std::min(length, static_cast<size_t>(std::ranges::mismatch(first, text).in1 - first.begin()));
    while (length > 0 && length < first.size() && isContinuation(first[length])) --length;
    return first.substr(0, length);
}

// ---- the line ----

void LineEdit::left() {
    while (cursor_ > 0 && isContinuation(text_[--cursor_])) {
    }
}

void LineEdit::right() {
    if (cursor_ < text_.size()) ++cursor_;
    while (cursor_ < text_.size() && isContinuation(text_[cursor_])) ++cursor_;
}

void LineEdit::eraseBefore(size_t begin) {
    text_.erase(begin, cursor_ - begin);
    cursor_ = begin;
}

void LineEdit::complete() {
    if (!help_.complete) return;
    const std::string_view before = std::string_view(text_).substr(0, cursor_);
    Completion completion = help_.complete(before);
    if (completion.text == before) {
        choices_ = std::move(completion.choices);
        return;
    }
    text_.replace(0, cursor_, completion.text);
    cursor_ = completion.text.size();
}

void LineEdit::recall(int step) {
    if (step < 0 && recalled_ == 0) return;
    if (step > 0 && recalled_ == help_.history.size()) return;
    if (recalled_ == 0) ownText_ = text_;
    recalled_ = step > 0 ? recalled_ + 1 : recalled_ - 1;
    text_ = recalled_ == 0 ? ownText_ : help_.history[recalled_ - 1];
    cursor_ = text_.size();
}

LineEdit::State LineEdit::control(char byte) {
    const auto eraseNext = [&] {
        const size_t begin = cursor_;
        right();
        eraseBefore(begin);
    };
    const auto erasePrevious = [&] {
        const size_t end = cursor_;
        left();
        eraseBefore(std::exchange(cursor_, end));
    };
    switch (byte) {
        case '\r':
        case '\n': return State::done;
        case CTRL_C: return State::interrupted;
        case CTRL_Z: return State::suspended;
        case CTRL_D:
            if (text_.empty()) return State::givenUp;
            eraseNext();
            break;
        case CTRL_A: cursor_ = 0; break;
        case CTRL_E: cursor_ = text_.size(); break;
        case CTRL_B: left(); break;
        case CTRL_F: right(); break;
        case CTRL_P: recall(1); break;
        case CTRL_N: recall(-1); break;
        case CTRL_K: text_.resize(cursor_); break;
        case CTRL_U: eraseBefore(0); break;
        case CTRL_W: {
            const size_t end = text_.find_last_not_of("/\\ ", cursor_ == 0 ? 0 : cursor_ - 1);
            const size_t gap = end == std::string::npos ? end : text_.find_last_of("/\\ ", end);
            eraseBefore(gap == std::string::npos ? 0 : std::min(gap + 1, cursor_));
            break;
        }
        case CTRL_H:
        case DELETE: erasePrevious(); break;
        case TAB: complete(); break;
        case ESCAPE: sequence_ = ESCAPE; break;
        default: break;
    }
    return State::typing;
}

// The keys that come as more than one byte ("ANSI/VT220 control sequences").
void LineEdit::sequence() {
    const std::string key = std::exchange(sequence_, {});
    const std::string_view tail = std::string_view(key).substr(std::min<size_t>(key.size(), 2));
    if (tail == "A")
        recall(1);
    else if (tail == "B")
        recall(-1);
    else if (tail == "C")
        right();
    else if (tail == "D")
        left();
    else if (tail == "H" || tail == "1~" || tail == "7~")
        cursor_ = 0;
    else if (tail == "F" || tail == "4~" || tail == "8~")
        cursor_ = text_.size();
    else if (tail == "3~" && cursor_ < text_.size())
        control(CTRL_D);
}

LineEdit::State LineEdit::key(char byte) {
    if (!sequence_.empty()) {
        sequence_ += byte;
        const bool opens = sequence_.size() == 2 && (byte == '[' || byte == 'O');
        const bool ends = sequence_.size() == 2 ? !opens : byte >= '@' && byte <= '~';
        if (ends) sequence();
        return State::typing;
    }
    const auto code = static_cast<unsigned char>(byte);
    if (code < ' ' || byte == DELETE) return control(byte);
    text_.insert(cursor_++, 1, byte);
    return State::typing;
}

// ---- the terminal ----

namespace {

// Keys come one by one and unseen while this stands.
class RawMode {
  public:
    explicit RawMode(int terminal) : terminal_(terminal) {
        if (tcgetattr(terminal_, &before_) != 0) return;
        termios raw = before_;
        raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN);
        raw.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL);
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        active_ = tcsetattr(terminal_, TCSADRAIN, &raw) == 0;
    }
    ~RawMode() {
        if (active_) tcsetattr(terminal_, TCSADRAIN, &before_);
    }
    RawMode(const RawMode&) = delete;
    RawMode& operator=(const RawMode&) = delete;

  private:
    int terminal_;
    termios before_{};
    bool active_ = false;
};

size_t columnsOf(int terminal) {
    winsize size{};
    return ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void put(std::FILE* output, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), output);
}

// Draws the line anew in its row; of one that is longer than the row the part around the cursor.
void draw(std::FILE* output, std::string_view prompt, const LineEdit& line) {
    const size_t columns = columnsOf(fileno(output)), taken = characters(prompt) + 1;
    const size_t room = columns > taken + 8 ? columns - taken : 8;
    const std::string head = printable(line.text().substr(0, line.cursor()), "");
    const std::string tail = printable(line.text().substr(line.cursor()), "");
    const std::string_view before = lastCharacters(head, room);
    const std::string_view after = firstCharacters(tail, room - characters(before));
    put(output, "\r");
    put(output, prompt);
    put(output, before);
    put(output, after);
    put(output, "\x1b[K");
    if (!after.empty()) std::fprintf(output, "\x1b[%zuD", characters(after));
    std::fflush(output);
}

void showChoices(std::FILE* output, const std::vector<std::string>& choices) {
    put(output, "\n");
    for (const std::string& choice : choices) put(output, printable(choice, "") + "\n");
}

// The next byte; nothing at the end.
std::optional<char> nextByte(int terminal) {
    char byte;
    ssize_t got;
    do got = read(terminal, &byte, 1);
    while (got < 0 && errno == EINTR);
    return got == 1 ? std::optional(byte) : std::nullopt;
}

}  // namespace

bool canEditLines(std::FILE* input, std::FILE* output) {
    const char* kind = std::getenv("TERM");
    return isatty(fileno(input)) && isatty(fileno(output)) && kind && *kind != '\0' && std::strcmp(kind, "dumb") != 0;
}

namespace {

// Takes keys until the line is done, left or suspended.
LineEdit::State takeKeys(LineEdit& line, std::FILE* input, std::FILE* output, std::string_view prompt) {
    const RawMode raw(fileno(input));
    auto state = LineEdit::State::typing;
    while (state == LineEdit::State::typing) {
        draw(output, prompt, line);
        const auto byte = nextByte(fileno(input));
        state = byte ? line.key(*byte) : LineEdit::State::givenUp;
        if (const auto choices = line.takeChoices(); !choices.empty()) showChoices(output, choices);
    }
    return state;
}

}  // namespace

std::optional<std::string> editLine(std::FILE* input, std::FILE* output, std::string_view prompt,
                                    const LineHelp& help) {
    LineEdit line(help);
    auto state = takeKeys(line, input, output, prompt);
    while (state == LineEdit::State::suspended) {
        std::raise(SIGTSTP);  // comes back when the process is continued
        state = takeKeys(line, input, output, prompt);
    }
    put(output, "\n");
    std::fflush(output);
    if (state == LineEdit::State::interrupted) std::raise(SIGINT);
    return state == LineEdit::State::done ? std::optional(line.text()) : std::nullopt;
}

}  // namespace host
