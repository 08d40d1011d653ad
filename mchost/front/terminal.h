// The front end of a terminal, and of programs that run unattended.
//
// A modal dialog is shown as text: its title, what its hooks drew in reading order, its items. Whoever answers gives
// the number of a button or item, the label of a button or its beginning, an empty line for the default button, or
// "number=value" or "label=value" for a text, a choice or a row of a list; the last two by their text or number.
// "close" closes the dialog, "size 800x600" draws its window to that size, and "picture FILE.png" makes a picture of
// it. Of a long list a part is shown; "rows 41" goes on there, "open LIST=ROW" clicks twice. Dialogs that aren't modal
// are served once the application has nothing more to do, the last opened first; "window 2" turns to another one. With
// none open, and menus in the menu bar, key-ins are asked for.
//
// Answers come from a file first, line by line; then, with `yes`, the first button is pressed everywhere; then the
// terminal is asked. Where none of them is there, a dialog with one button that ends it counts as pressed, and any
// other one is answered by nobody; a dialog that isn't modal is closed, with `yes` once its first button was pressed. A
// command is given points and resets as lines in the same way; `yes` gives each command one point, the origin in
// view 1.
//
// A file dialog shows its directory, filter, remembered files and the members of a list, and takes a line: a name or
// pattern, the number of a remembered file, "-2" to take the second member out of a list, "!" to cancel. On a terminal
// the line can be edited, Tab completes names, and the arrow upwards brings remembered files. With `yes` the suggested
// name is taken, a list stays as it is, and a file is replaced without a question.
#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "mchost/session/front_end.h"

namespace host {

struct TerminalOptions {
    bool yes = false;
    std::string answersFile = {};  // UTF-8; empty for none
    std::FILE* input = stdin;
    std::FILE* output = stdout;     // console lines
    std::FILE* errors = stderr;     // messages, dialogs and questions
    std::optional<bool> asks = {};  // whether somebody sits at the input; else it is asked whether it is a terminal
    // In the place of the input, and of the outputs; the first is given the question and gives up with nothing.
    std::function<std::optional<std::string>(const std::string& question)> ask = {};
    std::function<void(bool console, const std::string& text)> write = {};
    std::optional<bool> showsProgress = {};  // whether `errors` shows progress on one line; else when it is a terminal
};

// Throws std::runtime_error, with a line that tells it, when the file of answers can't be read.
std::unique_ptr<FrontEnd> makeTerminalFrontEnd(TerminalOptions options);

}  // namespace host
