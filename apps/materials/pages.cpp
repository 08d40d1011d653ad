#include "pages.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "apps/common/numbers.h"

namespace materials {

namespace {

// Every name on a form has so many letters.
constexpr int nameLength = 4;
constexpr size_t systemRows = 8;  // what the date fields take

struct DestroyArray {
    void operator()(FormData* values) const { mclibMatList_destroyFormDataArray(values); }
};

void insertText(FormData* values, const char* name, int row, const std::string& text) {
    if (!text.empty()) mclibMatList_insertValue(values, name, MCLIB_FORM_TEXT, row, text.c_str());
}

}  // namespace

Pages::Pages(const List& list, Form form) : list_(list), form_(std::move(form)), rows_(rowsOf(list, form_.rows)) {}

std::vector<std::string> Pages::names() const {
    std::vector<std::string> names(count());
    for (size_t i = 0; i < names.size(); ++i) names[i] = "Page " + std::to_string(i + 1);
    return names;
}

void Pages::insertRow(FormData* values, int row, const Row& content) const {
    switch (content.kind) {
        case Row::blank: return;
        case Row::heading: return insertText(values, "HEAD", row, list_.groups[content.index].title);
        case Row::groupSum:
        case Row::sum:
            insertText(values, "SUMT", row,
                       content.kind == Row::sum ? "Sum of all" : "Sum, " + list_.groups[content.index].title);
            mclibMatList_insertValue(values, "SUMM", MCLIB_FORM_FLOAT, row, content.mass);
            return;
        case Row::item: break;
    }
    const Item& item = list_.items[content.index];
    insertText(values, "MARK", row, item.mark);
    insertText(values, "DESC", row, item.description);
    insertText(values, "DIMN", row, item.dimension);
    insertText(values, "UNIT", row, item.unit);
    if (item.hasNumber) insertText(values, "NUMB", row, app::shown(item.number, decimalsOfNumber(item.number)));
    if (item.hasMass) {
        mclibMatList_insertValue(values, "MASS", MCLIB_FORM_FLOAT, row, item.mass);
        mclibMatList_insertValue(values, "TOTM", MCLIB_FORM_FLOAT, row, item.total);
    }
}

ElementDescr* Pages::make(size_t number) const {
    const std::unique_ptr<FormData, DestroyArray> values(
        mclibMatList_createFormDataArray(nameLength, static_cast<int>(std::max(form_.rows, systemRows))));
    if (!values) return nullptr;
    mclibMatList_insertSystemData(values.get());
    mclibMatList_insertLogo(values.get());
    mclibProject_insertProjectData(values.get());
    insertText(values.get(), "titl", 0, list_.title);
    mclibMatList_insertValue(values.get(), "page", MCLIB_FORM_INTEGER, 0, static_cast<int>(number + 1));
    mclibMatList_insertValue(values.get(), "pags", MCLIB_FORM_INTEGER, 0, static_cast<int>(count()));
    for (size_t i = 0; i < form_.rows; ++i)
        insertRow(values.get(), static_cast<int>(i), rows_[number * form_.rows + i]);
    ElementDescr* page = nullptr;
    std::string cell = form_.cell, library = form_.library;
    mclibMatList_generatePageElementDescr(cell.data(), library.data(), &page, values.get(), 1);
    return page;
}

}  // namespace materials
