// The dialog, and what its buttons start.
#pragma once

#include <string_view>

#include "looks.h"

namespace labels {

// Opens the dialog, which stays. False after a message.
bool openCommands(const Paper& paper, const Style& style);
// Shows the settings as they are now, where the dialog is open.
void showSettings();
// The commands have names, such as "place".
bool isCommand(std::string_view name);
void startNamed(std::string_view name);

}  // namespace labels
