// What the files of this application share: how things are told, and one function for each kind of file.
#pragma once

#include <cstdint>
#include <cwchar>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <mchost/mdl/types.h>

namespace show {

// ---- telling; all texts are Windows-1252 ----

// A line, so many steps to the right.
void line(int step, const std::string& text);
// In double quotes; characters that can't be printed stand as \xHH.
std::string quoted(std::string_view text);
std::string quoted(const wchar_t* text);
// As many decimals as it needs.
std::string number(double value);
// "3 elements", "1 element".
std::string counted(size_t count, const char* noun);
// "40 bytes: 01 00 62 ..." with at most `most` of them.
std::string hex(std::span<const uint8_t> bytes, size_t most);
// In a column of that width: to its left, or to its right edge.
std::string left(std::string text, size_t width);
std::string right(std::string text, size_t width);

// ---- records ----

struct Field {
    std::string name, value;
    bool says;  // whether it belongs in a short form: it isn't empty, and means something in this record
};

// A stored record, taken apart.
struct Record {
    std::string title;  // "attribute 12"
    std::vector<Field> fields;
    std::string problem;  // why it isn't what it should be; empty when it is

    // "TITLE: NAME VALUE, NAME VALUE (PROBLEM)"
    std::string shortForm() const;
    // A line for each field, or for each that says something.
    void tellFields(int step, bool all) const;
};

// A typed block of a resource file.
struct Block {
    RscHandle file;
    int32_t type, id;
    std::span<const uint8_t> bytes;
};
Record recordOf(const Block& block);
// The record of an application data element, given as its bytes; of data that isn't the library's, the first bytes or
// all.
Record applicationData(std::span<const uint8_t> element, bool full);

// ---- files: false after a message ----

bool tellModel(const std::string& name, bool isLibrary, bool full);
bool tellResources(const std::string& name, bool full);

}  // namespace show
