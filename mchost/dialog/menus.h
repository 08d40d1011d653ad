// Menus as front ends show them: those of the menu bar, and the one that a dialog offers (Dialog::offeredMenu).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "mchost/mdl/menu_bar.h"

namespace host {

struct Menu {
    struct Entry {
        std::string label;  // Windows-1252, as the title
        int32_t value;
        int32_t hook;
    };
    int32_t id;
    std::string title;
    std::vector<Entry> entries;
    MdlDesc* owner;
};

// From the left; the host's own help, which front ends give in their own way, isn't among them.
std::vector<std::shared_ptr<const Menu>> menuBar();

// Calls the entry's hook; `dialog` is the one that the menu popped up over, else null.
void chooseEntry(const Menu& menu, size_t entry, MdlDialog* dialog);

// A menu as its layout tells, of the current application; null when there is none.
std::shared_ptr<const Menu> makeMenu(RscHandle file, int32_t menuId);

}  // namespace host
