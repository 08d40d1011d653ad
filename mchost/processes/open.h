// Texts that the operating system is to make something of.
#pragma once

#include <string_view>

namespace host {

// A file, a folder or an address ("https://...") is opened in the program that it goes with, by the program that the
// configuration variable MC_OPENER names (xdg-open); any other text is a command line. Nothing is waited for. False
// when nothing could be started.
bool handToSystem(std::string_view text);
// The same for a file, a folder or an address alone; false too for anything else.
bool openBySystem(std::string_view name);

}  // namespace host
