#include "pages.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "apps/common/numbers.h"

namespace materials {

namespace {

// Every name on a form has so many letters.
constexpr int nameLength = 4;
constexpr int cellOption = 1;
constexpr size_t mostFieldRows = 20;  // of the fields that the library fills

constexpr int mostDecimalsOfNumber = 3;

// As few decimals as a number of pieces or metres needs.
std::string numberText(double number) {
    std::string text = app::shown(number, mostDecimalsOfNumber);
    if (text.find('.') == text.npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

struct DestroyArray {
    void operator()(FormData* values) const { mclibMatList_destroyFormDataArray(values); }
};

void insertText(FormData* values, const char* name, int row, const std::string& text) {
    if (!text.empty()) mclibMatList_insertValue(values, name, MCLIB_FORM_TEXT, row, text.c_str());
}

}  // namespace

Pages::Pages(const List& list, const Form& form, std::string library)
    : list_(list),
      form_(form),
      library_(std::move(library)),
      rows_(rowsOf(list, form.rows, [&](const Item& item) { return linesOf(item, form); })) {
    double mass = 0;
    for (size_t i = 0; i < rows_.size(); ++i) {
        if (i % form_.rows == 0) massUpTo_.push_back(mass);
        if (rows_[i].kind == Row::item && rows_[i].line == 0) mass += list_.items[rows_[i].index].total;
    }
    massUpTo_.push_back(mass);
}

std::vector<std::string> Pages::names() const {
    std::vector<std::string> names(count());
    for (size_t i = 0; i < names.size(); ++i) names[i] = "Page " + std::to_string(i + 1);
    return names;
}

void Pages::insertItem(FormData* values, int row, const Row& content) const {
    const Item& item = list_.items[content.index];
    for (const TextColumn& column : form_.columns) {
        const std::vector<std::string> lines = wrapped(item.*column.text, column.letters);
        if (content.line < lines.size()) insertText(values, column.field, row, lines[content.line]);
    }
    if (content.line > 0) return;
    if (item.hasNumber) insertText(values, "NUMB", row, numberText(item.number));
    if (item.hasMass) {
        mclibMatList_insertValue(values, "MASS", MCLIB_FORM_FLOAT, row, item.mass);
        mclibMatList_insertValue(values, "TOTM", MCLIB_FORM_FLOAT, row, item.total);
    }
}

void Pages::insertRow(FormData* values, int row, const Row& content) const {
    const auto insertSum = [&](const std::string& text) {
        insertText(values, "DESC", row, text);
        mclibMatList_insertValue(values, "TOTM", MCLIB_FORM_FLOAT, row, content.mass);
    };
    switch (content.kind) {
        case Row::blank: break;
        case Row::heading: insertText(values, "HEAD", row, list_.groups[content.index].title); break;
        case Row::groupSum: insertSum("Sum"); break;
        case Row::sum: insertSum("Sum of all"); break;
        case Row::item: insertItem(values, row, content); break;
    }
}

ElementDescr* Pages::make(size_t number) const {
    const auto rowCount = static_cast<int>(std::max(form_.rows, mostFieldRows));
    const std::unique_ptr<FormData, DestroyArray> owner(mclibMatList_createFormDataArray(nameLength, rowCount));
    FormData* const values = owner.get();
    if (!values) return nullptr;
    mclibMatList_insertSystemData(values);
    mclibMatList_insertLogo(values);
    mclibProject_insertProjectData(values);
    for (const ProjectText& text : list_.project) insertText(values, text.key, text.row, text.text);
    mclibMatList_insertValue(values, "page", MCLIB_FORM_INTEGER, 0, static_cast<int>(number + 1));
    mclibMatList_insertValue(values, "pags", MCLIB_FORM_INTEGER, 0, static_cast<int>(count()));
    mclibMatList_insertValue(values, "SUMM", MCLIB_FORM_FLOAT, 0, massUpTo_[number + 1] - massUpTo_[number]);
    mclibMatList_insertValue(values, "SUMM", MCLIB_FORM_FLOAT, 1, massUpTo_[number + 1]);
    for (size_t i = 0; i < form_.rows; ++i) insertRow(values, static_cast<int>(i), rows_[number * form_.rows + i]);
    ElementDescr* page = nullptr;
    mclibMatList_generatePageElementDescr(form_.cell, library_.c_str(), &page, values, cellOption);
    return page;
}

}  // namespace materials
