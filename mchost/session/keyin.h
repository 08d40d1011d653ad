// Key-ins that applications sent on the user's behalf.
#pragma once

#include <string>
#include <vector>

#include "mchost/base/export.h"

namespace host {

struct KeyIn {
    std::string text;  // Windows-1252
    bool literal;
    std::string task;  // empty for the host
};

// The input queue, in the order in which the key-ins are to be taken. Whoever takes one removes it.
HOST_EXPORT std::vector<KeyIn>& keyInQueue();

}  // namespace host
