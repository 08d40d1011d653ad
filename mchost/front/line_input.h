// Lines from whoever sits at the input: a terminal, where they can be edited, or a pipe.
#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "mchost/front/line_editor.h"

namespace host {

class LineInput {
  public:
    // A line that can be edited is drawn to `output`; the prompts of others go to `show`.
    LineInput(std::FILE* input, std::FILE* output, std::function<void(const std::string&)> show)
        : input_(input), output_(output), show_(std::move(show)) {}

    enum class Read {
        line,
        givenUp,   // the user gives this one up; the next may be asked for
        ended,     // nothing comes any more
        timeOver,  // what was typed so far stays for the next call with this prompt
    };
    // Reads a line behind `prompt` as far as it comes within `limit`; none: as long as it takes.
    Read read(const std::string& prompt, const LineHelp& help, std::optional<std::chrono::milliseconds> limit);
    const std::string& line() const { return line_; }

    // Something is to be written where a line is being typed: that goes from the screen until it is read on.
    void makeRoom();

  private:
    Read readEdited(const std::string& prompt, const LineHelp& help);
    LineEdit::State takeKeys(const std::string& prompt);
    Read readPlain(const std::string& prompt);
    bool waitForInput() const;

    std::FILE *input_, *output_;
    std::function<void(const std::string&)> show_;
    std::string line_;
    std::optional<LineEdit> edited_;  // a line that was begun on a terminal,
    std::string editedFor_;           // and behind which prompt
    std::string begun_;               // bytes of other inputs that weren't asked for yet
    std::string shown_;               // the prompt that stands on the screen; empty for none
    std::optional<std::chrono::steady_clock::time_point> end_;
};

}  // namespace host
