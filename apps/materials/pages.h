// The pages of a list on a form: each row of a page put into the form's fields.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "arrange.h"
#include "list.h"
#include "mclib.h"

namespace materials {

// A form: a cell of a cell library with field codes for so many rows of items.
struct Form {
    std::string cell, library;
    size_t rows;
};

class Pages {
  public:
    // The list must stay.
    Pages(const List& list, Form form);

    size_t count() const { return rows_.size() / form_.rows; }
    // Such as "Page 3".
    std::vector<std::string> names() const;
    // A new descriptor of page `number`, counted from 0; null, after a message of the library, when the form can't be had.
    ElementDescr* make(size_t number) const;

  private:
    void insertRow(FormData* values, int row, const Row& content) const;

    const List& list_;
    const Form form_;
    const std::vector<Row> rows_;
};

}  // namespace materials
