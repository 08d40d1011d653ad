// The pages of a list on a form: each row of a page put into the form's fields, and fitted to the room that they have.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <mclib/mclib.h>
#include "arrange.h"
#include "columns.h"
#include "form.h"
#include "list.h"

namespace materials {

// A cell of a library.
struct CellName {
    std::string cell, library;
};

class Pages {
  public:
    // List and form must stay. `library` has the form; a logo without a library is the usual one.
    Pages(const List& list, const Form& form, std::string library, CellName logo);

    size_t count() const { return rows_.size() / form_.rows(); }
    // Such as "Page 3".
    std::vector<std::string> names() const;
    // What the list has and the form has no place for, as "note, client line 4"; empty when there is nothing.
    std::string unshown() const;
    // Whether all texts fit; false after a message for each that doesn't.
    bool fit() const;
    // A new descriptor of page `number`, counted from 0; null, after a message of the library, when it can't be made.
    ElementDescr* make(size_t number) const;

  private:
    // What stands in a field.
    struct Entry {
        std::string_view field;
        size_t row;
        std::string text;
        const Origin* origin;      // of the line that tells it; may be null
        double value = 0;          // of a number
        double decimalsWidth = 0;  // of the widest decimals in its column, so that points stand below each other
        bool isNumber = false, isSum = false;
    };
    // A text that is brought to its room.
    struct Fitted {
        double scale, shift;
    };

    std::vector<Entry> titleEntries() const;  // of every page
    std::vector<Entry> rowEntries(size_t page) const;
    void addItem(std::vector<Entry>& entries, size_t row, const Row& content) const;
    void addHeading(std::vector<Entry>& entries, size_t row, const Row& content) const;
    void addSum(std::vector<Entry>& entries, size_t row, const Row& content) const;
    void addPageSums(std::vector<Entry>& entries, size_t page) const;
    static std::string textOf(const Entry& entry, const Place& place);
    static Fitted fitted(const Entry& entry, const Place& place);
    bool fits(const Entry& entry) const;
    bool insert(FormData* values, const Entry& entry) const;
    bool fill(FormData* values, size_t number, const std::vector<Entry>& entries) const;
    bool finish(ElementDescr* page, const std::vector<Entry>& entries) const;

    std::vector<std::string> linesOf(const Item& item, const TextColumn& column) const;
    std::vector<std::string> headingLines(const Group& group, bool continued) const;
    size_t heightOf(const Item& item) const;
    void measureDecimals();

    const List& list_;
    const Form& form_;
    const std::string library_;
    const CellName logo_;
    std::vector<Row> rows_;
    std::vector<double> massUpTo_;  // the start of each page, and the end of the last one
    std::vector<double> widths_;    // of the text columns, in letters' heights
    std::vector<double> decimals_;  // width of the widest decimals of the number columns
};

}  // namespace materials
