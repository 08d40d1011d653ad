// What an answer does to a dialog. Answers and texts are Windows-1252 here, as dialogs keep them, but for what is told
// to people, which is UTF-8. For the files of this room.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/front/line_editor.h"

namespace host {

struct Followed {
    std::string complaint = {};             // why it can't be carried out, as a sentence, or empty
    std::optional<DialogEvent> event = {};  // what is to be done, unless there is a complaint or it was done at once
};

// What an answer asks for: to press a button, to set an item, or a word for the window. Nothing for one that means
// nothing in this dialog.
std::optional<Followed> followAnswer(Dialog& dialog, std::string_view answer);
// Why an event wasn't carried out, as a sentence.
std::string complaintOf(const DialogEvent& event);

// Buttons that can be pressed, by their place among the items.
std::optional<size_t> defaultButton(const Dialog& dialog);
// The one that an unattended run presses: that with the id -3, else the first in the layout.
std::optional<size_t> firstButton(const Dialog& dialog);
// How many ways out there are: one leaves nothing to choose.
size_t endingButtons(const Dialog& dialog);

// What can be answered, line by line, each ended.
std::string helpOn(const Dialog& dialog);
// The labels and words that begin as was typed (UTF-8).
Completion completeAnswer(const Dialog& dialog, std::string_view typed);

}  // namespace host
