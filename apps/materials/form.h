// The forms that a list can be printed on: what the field codes of their cells have places for, and how wide these are.
// Lengths are units of the cell.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <mchost/mdl/transform.h>

namespace materials {

struct Margins {
    double left, right, top, bottom;  // millimetres
};

struct FormKind {
    const char* name;
    const char* cell;
    int pageSize;  // code of the paper
    bool lying;
    Margins margins;
};

std::span<const FormKind> formKinds();

enum class Align { left, centre, right };

// A text of the form that is the code of one row of one field.
struct Place {
    size_t element;  // which of the cell's elements it is
    double x, y;     // of the text's left end, middle or right end, on its base line
    Align align;
    double size;                  // height of the letters
    std::optional<int> decimals;  // that the code asks for, so that it wants a number
    double left, right;           // what bounds it: lines, other texts, the edge
    double above;                 // the line above it

    // For a text; on both sides of a text in the middle. Between lines and letters there is a gap.
    double room() const;
};

// The form in the library, read once.
class Form {
  public:
    static constexpr size_t nameLength = 4;  // of all fields

    // Nothing after a message.
    static std::optional<Form> read(const FormKind& kind, const std::string& library);

    const FormKind& kind() const { return *kind_; }
    size_t rows() const { return rows_; }  // of items
    size_t highestRow() const { return highestRow_; }

    // Rows count from 0. Null when the field isn't there, or only within another text.
    const Place* place(std::string_view field, size_t row) const;
    bool has(std::string_view field, size_t row = 0) const;
    // The least room of its rows for letters whose height is 1; nothing when it isn't there.
    std::optional<double> width(std::string_view field) const;

  private:
    friend class FormReader;

    const FormKind* kind_ = nullptr;
    size_t rows_ = 0, highestRow_ = 0;
    std::unordered_map<std::string, std::vector<std::optional<Place>>> fields_;
};

}  // namespace materials
