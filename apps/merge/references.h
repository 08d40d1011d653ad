// What is attached to a drawing.
#pragma once

#include <string>
#include <vector>

#include <mchost/mdl/reference.h>

namespace merge {

// What is attached to the model (null: the active one), and with `nested` what is attached to that.
std::vector<ModelRef*> attachedTo(ModelRef* model, bool nested);

// The names of files that are shown but not found, each once.
std::vector<std::string> missingFrom(ModelRef* model);

// The full names of the files that are attached to the model itself, in its order; empty for one that isn't found.
std::vector<std::string> filesOf(ModelRef* model);
// Has the active model, a copy of that one which lies elsewhere, show the same files. False after a message.
bool attachSameFiles(const std::vector<std::string>& files);

}  // namespace merge
