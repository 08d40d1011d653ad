// A list of materials: what its file tells, in the order of the file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace materials {

// A line of the list, in the file that it stands in.
struct Origin {
    size_t file = 0;  // of List::files
    int line = 0;
};

struct Item {
    std::string mark, description, dimension, unit, material, note;  // Windows-1252
    double number = 0;
    double mass = 0;   // of one, in kilograms
    double total = 0;  // of all of them
    bool hasNumber = false, hasMass = false;
    size_t group = 0;
    Origin origin;
};

struct Group {
    std::string title;  // empty for items in front of the first group
    bool newPage = false;
    Origin origin;
};

// What items can be sorted by.
enum class Column { mark, description, dimension, number, unit, mass, total };
struct SortKey {
    Column column;
    bool falling = false;
};

// A text of the title block, under the key and row by which a form asks for it.
struct ProjectText {
    const char* key;
    int row;
    std::string text;
    const char* name;  // as the list calls it
    int line;          // of the lines of that name, from 1
    Origin origin;
};

// How numbers are written.
struct NumberStyle {
    std::optional<int> decimals;  // of masses; else as many as the mass has
    std::string thousands;        // between groups of three digits
};

struct List {
    std::vector<std::string> files;
    std::vector<ProjectText> project;
    std::vector<SortKey> sort;  // within each group; none: the order of the file
    bool merge = false;         // items that differ in number alone become one
    bool sumGroups = false, sumAll = false;
    NumberStyle numbers;
    std::vector<Group> groups = {Group{}};
    std::vector<Item> items;

    // Such as "list.txt, line 5".
    std::string placeOf(const Origin& origin) const {
        return files[origin.file] + ", line " + std::to_string(origin.line);
    }
};

}  // namespace materials
