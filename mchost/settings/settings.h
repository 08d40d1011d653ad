// Stored settings of the user and of the machine: text files of keys with values.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Setting {
    uint32_t kind;      // one of WIN32_VALUE_...
    std::string bytes;  // as a caller gets them; a text with its NUL
};

// Names in small letters; "" is the key's own value.
using Settings = std::map<std::string, Setting, std::less<>>;

struct SettingsText {
    bool hasKey = false;
    Settings settings;          // of the key
    std::vector<int> badLines;  // counted from 1, of the whole text
};

// What a text holds under a key.
SettingsText settingsOf(std::string_view text, std::string_view key);

}  // namespace host
