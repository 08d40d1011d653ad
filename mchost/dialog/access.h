// Published data: structures with their fields, pointer variables by name, and the values that access strings reach.
//
// An access string is the name of a published pointer and then steps: "->field" or ".field" to a field of the structure
// that it points to, "[3]" to an element of an array. "mgdP->fileDialogP->filter" goes through two pointers. Pointers
// are followed at the moment of the access.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "mchost/mdl/dialog.h"

namespace host {

// A single value in memory.
struct AccessPlace {
    unsigned char* address;
    FieldType type;
    uint32_t size;  // bytes; of a text its whole array
};

// The place of an access string, or what is wrong with it.
struct AccessResult {
    std::optional<AccessPlace> place;
    std::string fault;    // such as "no published name \"mgp\""
    bool onNull = false;  // the fault is a pointer that is null at this moment
};
AccessResult resolveAccess(std::string_view accessString);

// The value as Windows-1252 text; a number in `format` when that is one of a number, else as short as it reads back.
std::string readPlace(const AccessPlace& place, const std::string& format = {});
// What is wrong with the text, as the end of a sentence such as "isn't a number", when it is no number of the place's
// type or doesn't fit its array, which stays as it was; empty when it was written.
std::string writePlace(const AccessPlace& place, std::string_view text);

}  // namespace host
