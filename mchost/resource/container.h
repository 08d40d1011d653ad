// What a resource file holds, and how it lies on disk: an SQLite file whose application_id is containerKind.
//
//   string(list, number, language, text)            text as Windows-1252 bytes
//   dialog(id, width, height, hook)
//   item(dialog, place, kind, id, x, y, width, height, hook, access, format, box)
//   row(dialog, place, number, value)               rows of an option button
//   label(dialog, place, number, language, text)    title: place -1; label of an item: number -1; else label of a row
//   icon(id, size, pixels, sign)
//   entry(menu, place, value, hook)                 entries of a menu
//   menu_label(menu, place, language, text)         title: place -1; else label of an entry
//
// All of it is read at once; a resource file has some hundred rows.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace host {

constexpr int32_t containerKind = 0x4d435246;  // "MCRF"
constexpr int32_t containerVersion = 3;        // 1: items had no box; 2: there were no menus
constexpr std::string_view fallbackLanguage = "en";
constexpr size_t longestString = 511;  // what fits the 512 bytes that a string is loaded into

// A text in each language that it is written in; Windows-1252.
class Texts {
  public:
    void set(std::string_view language, std::string text) { byLanguage_[std::string(language)] = std::move(text); }
    bool has(std::string_view language) const { return byLanguage_.contains(language); }
    bool empty() const { return byLanguage_.empty(); }
    // The text in that language, else the English one; null for neither.
    const std::string* in(std::string_view language) const;
    // The same, empty for neither.
    const std::string& textIn(std::string_view language) const;
    const std::map<std::string, std::string, std::less<>>& all() const { return byLanguage_; }

  private:
    std::map<std::string, std::string, std::less<>> byLanguage_;
};

struct RowLayout {
    int32_t value = 0;
    Texts label;
};

struct ItemLayout {
    int32_t kind = 0;  // ITEM_... of mchost/mdl/dialog.h
    int32_t id = 0;
    int32_t x = 0, y = 0, width = 0, height = 0;  // pixels of the content area
    int32_t hook = 0;                             // 0: none
    std::string access = {};                      // access string, empty for none
    std::string format = {};                      // of a number in a text item
    Texts label = {};
    std::vector<RowLayout> rows = {};
    int32_t group = 0;  // id of the group box that it is a member of; 0: none
};

struct DialogLayout {
    int32_t id = 0;
    int32_t width = 0, height = 0;
    int32_t hook = 0;
    Texts title = {};
    std::vector<ItemLayout> items = {};
};

struct EntryLayout {
    int32_t value = 0;
    int32_t hook = 0;  // 0: none
    Texts label = {};
};

// A menu that is pulled down or pops up.
struct MenuLayout {
    int32_t id = 0;
    Texts title = {};
    std::vector<EntryLayout> entries = {};
};

// A square of pixels, each drawn or not, rows from the top; the sign stands for it where only text can be shown.
struct Icon {
    int32_t id = 0;
    int32_t size = 0;
    std::vector<bool> pixels;
    std::string sign;
};

struct ResourceContents {
    std::map<std::pair<int32_t, int32_t>, Texts> strings;  // by list and number
    std::map<int32_t, DialogLayout> dialogs;
    std::map<int32_t, Icon> icons;
    std::map<int32_t, MenuLayout> menus;
};

// A file that can't be read or written as a resource file; what() says why, and what to do.
struct ResourceError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Database;  // mchost/base/sqlite.h

// Opens the file as a database, for reading what is stored in it. Throws SqliteFailure.
void openResourceDatabase(Database& database, const std::string& path);

// Writes into an empty file that nobody else knows. Throws SqliteFailure.
void fillContainer(const std::string& path, const ResourceContents& contents);

ResourceContents readContainer(const std::string& path);
// Writes a new file in place of any at `path`, whole or not at all.
void writeContainer(const std::string& path, const ResourceContents& contents);

}  // namespace host
