// The pages of a list on a form: each row of a page put into the form's fields.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "arrange.h"
#include "form.h"
#include "list.h"
#include "mclib.h"

namespace materials {

class Pages {
  public:
    // List and form must stay.
    Pages(const List& list, const Form& form, std::string library);

    const Form& form() const { return form_; }
    size_t count() const { return rows_.size() / form_.rows; }
    // Such as "Page 3".
    std::vector<std::string> names() const;
    // A new descriptor of page `number`, counted from 0; null, after a message of the library, when the form can't be
    // had.
    ElementDescr* make(size_t number) const;

  private:
    void insertRow(FormData* values, int row, const Row& content) const;
    void insertItem(FormData* values, int row, const Row& content) const;

    const List& list_;
    const Form& form_;
    const std::string library_;
    const std::vector<Row> rows_;
    std::vector<double> massUpTo_;  // the start of each page, and the end of the last one
};

}  // namespace materials
