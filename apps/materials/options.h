// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/common/devices.h"
#include "form.h"

namespace materials {

struct PageRange {
    size_t first, last;
};

struct Options {
    std::string input, out, printer, library = "forms.cel";
    const app::Device* device = &app::devices[0];
    const Form* form = &forms()[0];
    std::optional<PageRange> pages;  // from 1
    int copies = 1;
    bool overwrite = false;
};

// Nothing after a message and the usage.
std::optional<Options> optionsFrom(const std::vector<std::string>& arguments);

}  // namespace materials
