// Key-ins that applications sent on the user's behalf.
#pragma once

#include <string>
#include <vector>

namespace host {

struct KeyIn {
    std::string text;  // Windows-1252
    bool literal;
    std::string task;  // empty for the host
};

// The input queue, in the order in which the key-ins are to be taken. Whoever takes one removes it.
std::vector<KeyIn>& keyInQueue();

}  // namespace host
