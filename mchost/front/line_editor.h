// A line typed at a terminal, with editing keys, completion and the lines before it. Everything is UTF-8.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// Of a character of UTF-8.
inline bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// What can stand for the text before the cursor.
struct Completion {
    std::string text;                  // takes that text's place
    std::vector<std::string> choices;  // shown when the text couldn't grow
};

// What comes from files and drawings can't steer the terminal: a blank for each control character but those in `keep`.
std::string printable(std::string text, std::string_view keep = "\n\t");

// Whole characters that all texts begin with; there must be one.
std::string commonBeginning(const std::vector<std::string>& texts);

struct LineHelp {
    std::function<Completion(std::string_view)> complete;  // null: the tabulator does nothing
    std::vector<std::string> history;                      // for the arrow upwards, the latest first
};

// The line as keys change it; it needs no terminal. Keys: arrows, Home, End, Delete, Backspace, Tab, Enter, and Ctrl
// with A, B, E, F, K, N, P, U, W; Ctrl-D gives up in an empty line, Ctrl-C interrupts, and Ctrl-Z
// suspends.
class LineEdit {
  public:
    explicit LineEdit(const LineHelp& help) : help_(&help) {}
    void helpBy(const LineHelp& help) { help_ = &help; }  // from now on

    enum class State { typing, done, givenUp, interrupted, suspended };
    State key(char byte);

    const std::string& text() const { return text_; }
    size_t cursor() const { return cursor_; }                                       // in bytes
    std::vector<std::string> takeChoices() { return std::exchange(choices_, {}); }  // to be shown once

  private:
    State control(char byte);
    void sequence();
    void complete();
    void recall(int step);
    void left();
    void right();
    void eraseBefore(size_t begin);

    const LineHelp* help_;
    std::string text_;
    size_t cursor_ = 0;
    size_t recalled_ = 0;   // 0: the line itself; else the place in the history, from 1
    std::string ownText_;   // what was typed, while another line is recalled
    std::string sequence_;  // a key's bytes so far, from its escape on
    std::vector<std::string> choices_;
};

}  // namespace host
