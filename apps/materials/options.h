// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <mclib/app/devices.hpp>
#include "form.h"

namespace materials {

struct PageRange {
    size_t first, last;
};

struct Options {
    std::string input, out, printer, library = "forms.cel", logo;
    const McPrintDevice* device = nullptr;  // null: by the suffix of `out`
    const FormKind* form = &formKinds()[0];
    std::optional<PageRange> pages;  // from 1
    std::optional<int> copies;       // 1 when not told
    bool overwrite = false;
    std::string_view ofPrint = {};  // an option that was given and counts without the preview alone
};

extern const char* const usage;

// With the device set. Nothing after a message and the usage.
std::optional<Options> optionsFrom(const std::vector<std::string>& arguments);

}  // namespace materials
