// The list of what was found or changed.
#pragma once

#include <string>
#include <vector>

#include "options.h"
#include "replacing.h"

namespace find {

struct Row {
    std::string file;
    Hit hit;
    std::string after;  // its new text, with --replace
};

// All rows as text of the format that was asked for, in Windows-1252.
std::string report(const std::vector<Row>& rows, const Options& options);

}  // namespace find
