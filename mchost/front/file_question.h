// A file dialog as text, UTF-8, and the names that can be typed into it. For the files of this room.
#pragma once

#include <string>
#include <string_view>

#include "mchost/front/line_editor.h"
#include "mchost/session/front_end.h"

namespace host {

// Title, directory, filter, remembered files and members, each line ended, and what can be answered.
std::string textOf(const FileQuestion& question);
std::string promptOf(const FileQuestion& question);

// The names in the directory that begin like the last part of what was typed: folders, and files of the filter; all
// files when the filter has none of them.
Completion completeFileName(const FileQuestion& question, std::string_view typed);

}  // namespace host
