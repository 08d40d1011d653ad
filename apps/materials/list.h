// A list of materials: what its file tells, in the order of the file.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace materials {

struct Item {
    std::string mark, description, dimension, unit, material, note;  // Windows-1252
    double number = 0;
    double mass = 0;   // of one, in kilograms
    double total = 0;  // of all of them
    bool hasNumber = false, hasMass = false;
    size_t group = 0;
};

struct Group {
    std::string title;  // empty for items in front of the first group
    bool newPage = false;
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
};

struct List {
    std::vector<ProjectText> project;
    std::vector<SortKey> sort;  // within each group; none: the order of the file
    bool merge = false;         // items that differ in number alone become one
    bool sumGroups = false, sumAll = false;
    std::vector<Group> groups = {Group{}};
    std::vector<Item> items;
};

}  // namespace materials
