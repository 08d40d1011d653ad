#include "mchost/front/line_input.h"

#include <poll.h>
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

// What can be read at once, at most so many bytes; 0 at the end.
size_t readSome(std::FILE* input, char* bytes, size_t most) {
    ssize_t got;
    do got = read(fileno(input), bytes, most);
    while (got < 0 && errno == EINTR);
    return got > 0 ? static_cast<size_t>(got) : 0;
}

bool canEditLines(std::FILE* input, std::FILE* output) {
    const char* kind = std::getenv("TERM");
    return isatty(fileno(input)) && isatty(fileno(output)) && kind && *kind != '\0' && std::strcmp(kind, "dumb") != 0;
}

}  // namespace

// Whether something can be read, or the input has ended, before the time is over.
bool LineInput::waitForInput() const {
    using std::chrono::milliseconds;
    pollfd waited{fileno(input_), POLLIN, 0};
    for (;;) {
        int left = -1;
        if (end_) {
            const auto time = std::chrono::ceil<milliseconds>(*end_ - std::chrono::steady_clock::now()).count();
            left = static_cast<int>(std::clamp<int64_t>(time, 0, INT32_MAX));
        }
        const int ready = poll(&waited, 1, left);
        if (ready >= 0 || errno != EINTR) return ready != 0;
    }
}

// Takes keys until the line is done, left or suspended, or the time is over.
LineEdit::State LineInput::takeKeys(const std::string& prompt) {
    const RawMode raw(fileno(input_));
    auto state = LineEdit::State::typing;
    while (state == LineEdit::State::typing) {
        draw(output_, prompt, *edited_);
        shown_ = prompt;
        if (!waitForInput()) return state;
        char byte;
        state = readSome(input_, &byte, 1) == 1 ? edited_->key(byte) : LineEdit::State::givenUp;
        if (const auto choices = edited_->takeChoices(); !choices.empty()) showChoices(output_, choices);
    }
    return state;
}

LineInput::Read LineInput::readEdited(const std::string& prompt, const LineHelp& help) {
    if (!edited_ || prompt != editedFor_) edited_.emplace(help);
    edited_->helpBy(help);
    editedFor_ = prompt;
    auto state = takeKeys(prompt);
    while (state == LineEdit::State::suspended) {
        std::raise(SIGTSTP);  // comes back when the process is continued
        state = takeKeys(prompt);
    }
    if (state == LineEdit::State::typing) return Read::timeOver;
    line_ = edited_->text();
    edited_.reset();
    shown_.clear();
    put(output_, "\n");
    std::fflush(output_);
    if (state == LineEdit::State::interrupted) std::raise(SIGINT);
    return state == LineEdit::State::done ? Read::line : Read::givenUp;
}

LineInput::Read LineInput::readPlain(const std::string& prompt) {
    if (shown_ != prompt) show_(prompt);
    shown_ = prompt;
    size_t end;
    while ((end = begun_.find('\n')) == std::string::npos) {
        if (!waitForInput()) return Read::timeOver;
        char bytes[256];
        const size_t got = readSome(input_, bytes, sizeof bytes);
        if (got == 0) break;
        begun_.append(bytes, got);
    }
    shown_.clear();
    if (end == std::string::npos && begun_.empty()) return Read::ended;
    line_ = begun_.substr(0, end);
    begun_.erase(0, end == std::string::npos ? end : end + 1);
    return Read::line;
}

LineInput::Read LineInput::read(const std::string& prompt, const LineHelp& help,
                                std::optional<std::chrono::milliseconds> limit) {
    end_.reset();
    if (limit) end_ = std::chrono::steady_clock::now() + *limit;
    return canEditLines(input_, output_) ? readEdited(prompt, help) : readPlain(prompt);
}

void LineInput::makeRoom() {
    if (std::exchange(shown_, {}).empty()) return;
    if (edited_)
        put(output_, "\r\x1b[K");
    else
        show_("\n");
}

}  // namespace host
