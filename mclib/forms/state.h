// What the room remembers from call to call, for all applications.
#pragma once

#include <string>
#include <vector>

#include "mclib/forms/preview.h"
#include "mclib/frame/room.h"

namespace mc::forms {

struct State {
    // Of the preview that was opened last; they stay until the next one opens.
    McPageFunction pageFunction = nullptr;
    McPageListFunction pageListFunction = nullptr;
    McUserPrintFunction userPrintFunction = nullptr;

    std::string logoCell, logoLibrary;     // the last ones set
    std::vector<std::string> toldMissing;  // cells that a library lacks, which the user has been told of
};
extern RoomState<State> formsState;

}  // namespace mc::forms
