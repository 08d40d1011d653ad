#include "mchost/dialog/menus.h"

#include <algorithm>
#include <stdexcept>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/words.h"
#include "mchost/dialog/registry.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/open_files.h"
#include "mchost/session/keyin.h"
#include "mchost/session/owned_state.h"

namespace host {

namespace {

// Handles are numbers that are never given twice.
struct PlacedMenu {
    uintptr_t handle;
    std::shared_ptr<const Menu> menu;
};
struct MenuBar {
    std::vector<PlacedMenu> menus;
    uintptr_t lastHandle = 0;
};
MenuBar& bar() {
    return sessionState<MenuBar>();
}

void takeMenusOf(MdlDesc* owner) {
    std::erase_if(bar().menus, [owner](const PlacedMenu& placed) { return placed.menu->owner == owner; });
}

// ---- the key-in "menu" ----

template <class Thing, class Name>
const Thing* named(const std::vector<Thing>& things, std::string_view wanted, Name name) {
    const auto found = std::ranges::find_if(things, [&](const Thing& t) { return sameName(name(t), wanted); });
    return found == things.end() ? nullptr : &*found;
}

void listMenus() {
    std::string text;
    for (const auto& menu : menuBar()) {
        text += menu->title + ":";
        for (const Menu::Entry& entry : menu->entries)
            text += (&entry == menu->entries.data() ? " " : ", ") + entry.label;
        text += "\n";
    }
    toolSubsystem_printf("%s", utf8FromNarrow(text.empty() ? "No application has a menu.\n" : text).c_str());
}

// "TITLE/ENTRY", by their labels.
void menuWord(std::string_view rest) {
    if (rest.empty()) return listMenus();
    const size_t slash = std::min(rest.find('/'), rest.size());
    const std::string_view title = trimmed(rest.substr(0, slash));
    const auto menus = menuBar();
    const auto* menu = named(menus, title, [](const auto& m) { return m->title; });
    if (!menu) throw std::runtime_error("There is no menu \"" + utf8FromNarrow(title) + "\"; \"menu\" lists all.");
    const std::string_view label = slash == rest.size() ? std::string_view() : trimmed(rest.substr(slash + 1));
    const auto& entries = (*menu)->entries;
    const auto* entry = named(entries, label, [](const Menu::Entry& e) { return e.label; });
    if (!entry)
        throw std::runtime_error("The menu " + utf8FromNarrow((*menu)->title) + " has no entry \"" +
                                 utf8FromNarrow(label) + "\"; \"menu\" lists all.");
    chooseEntry(**menu, static_cast<size_t>(entry - entries.data()), nullptr);
}

[[maybe_unused]] const bool known = addHostWord(
    {"menu", "  menu | menu TITLE/ENTRY: lists the menus of applications, or chooses an entry\n", menuWord});

}  // namespace

std::vector<std::shared_ptr<const Menu>> menuBar() {
    std::vector<std::shared_ptr<const Menu>> all;
    for (const PlacedMenu& placed : bar().menus) all.push_back(placed.menu);
    return all;
}

void chooseEntry(const Menu& menu, size_t entry, MdlDialog* dialog) {
    const EventScope scope;
    DialogMessage message{};
    message.type = ITEM_BUTTON;
    message.dialog = dialog;
    message.hookId = menu.entries[entry].hook;
    message.state = message.clickCount = 1;
    message.row = message.column = -1;
    message.value = menu.entries[entry].value;
    callHook(message.hookId, menu.owner, message);
}

std::shared_ptr<const Menu> makeMenu(RscHandle file, int32_t menuId) {
    const auto layout = findMenuLayout(file, menuId);
    if (!layout) {
        reportError(
            ("Menu " + std::to_string(menuId) + " can't be shown: no open resource file has it. Check MS_APPRSC.")
                .c_str());
        return nullptr;
    }
    const std::string language = currentLanguage();
    auto menu = std::make_shared<Menu>(Menu{menuId, layout->title.textIn(language), {}, mdlSystem_getCurrMdlDesc()});
    for (const EntryLayout& entry : layout->entries)
        menu->entries.push_back({entry.label.textIn(language), entry.value, entry.hook});
    return menu;
}

}  // namespace host

using namespace host;

MdlMenu* mdlDialog_menuBarInsertMenu(RscHandle rscFile, int32_t menuId, int32_t beforeId) noexcept {
    return guarded<MdlMenu*>(nullptr, [&]() -> MdlMenu* {
        auto menu = makeMenu(rscFile, menuId);
        if (!menu) return nullptr;
        auto& menus = bar().menus;
        const auto before =
            std::ranges::find_if(menus, [&](const PlacedMenu& placed) { return placed.menu->id == beforeId; });
        letGoAtEnd<takeMenusOf>(menu->owner);
        menus.insert(before, {++bar().lastHandle, menu});
        return reinterpret_cast<MdlMenu*>(bar().lastHandle);
    });
}

int mdlDialog_menuBarDeleteMenu(MdlMenu* menu) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto handle = reinterpret_cast<uintptr_t>(menu);
        return std::erase_if(bar().menus, [=](const PlacedMenu& placed) { return placed.handle == handle; }) != 0
                   ? MDL_SUCCESS
                   : MDL_ERROR;
    });
}

int mdlDialog_offerMenu(MdlDialog* handle, RscHandle rscFile, int32_t menuId) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = dialogOf(handle);
        auto menu = dialog ? makeMenu(rscFile, menuId) : nullptr;
        if (!menu) return MDL_ERROR;
        dialog->offer(std::move(menu));
        return MDL_SUCCESS;
    });
}
