#include "pages.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

#include <mchost/mdl/element.h>
#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/transform.h>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>

namespace materials {

namespace {

constexpr int cellOption = 1;
constexpr size_t mostFieldRows = 20;  // of the fields that the library fills
constexpr double leastScale = 0.7;    // of letters that are made smaller so that a text fits
constexpr const char* pageSumField = "SUMM";

struct DestroyArray {
    void operator()(FormData* values) const { mclibMatList_destroyFormDataArray(values); }
};

// ---- elements of a page, in its own coordinates ----

constexpr uint32_t sumWeight = 1, sumLineWeight = 2;

// Where a text of the page stands, and the page's units in one of the form's.
struct Standing {
    Point3d at;  // on its base line
    double unit;
};

std::optional<Standing> standingOf(const MSElementBuffer* text, const Place& place) {
    Point3d low, origin;
    double size = 0;
    if (mdlElement_getType(text) != MDL_TEXT ||
        mdlText_extract(&low, &origin, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &size, text) !=
            MDL_SUCCESS) {
        return {};
    }
    return Standing{{origin.x, low.y, 0}, size / place.size};
}

// Makes the text smaller about the point that it is written from, and moves it along its line.
bool fitText(MSElementBuffer* text, const Standing& standing, double scale, double shift) {
    const Transform fit = {{{scale, 0, 0, (1 - scale) * standing.at.x + shift * standing.unit},
                            {0, scale, 0, (1 - scale) * standing.at.y},
                            {0, 0, 1, 0}}};
    return mdlElement_transform(text, text, &fit) == MDL_SUCCESS;
}

bool appendSumLine(ElementDescr* page, const MSElementBuffer* sum, const Standing& standing, const Place& place) {
    const double y = standing.at.y + (place.above - place.y) * standing.unit;
    const Point3d ends[] = {{standing.at.x + (place.left - place.x) * standing.unit, y, 0},
                            {standing.at.x + (place.right - place.x) * standing.unit, y, 0}};
    uint32_t level = 0, color = 0;
    mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, sum);
    mdlElement_getSymbology(&color, nullptr, nullptr, sum);
    const int32_t solid = 0;
    if (mdlLine_create(dgnBufP, nullptr, ends) != MDL_SUCCESS) return false;
    mdlElement_setProperties(dgnBufP, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    mdlElement_setSymbology(dgnBufP, &color, &sumLineWeight, &solid);
    return mdlElmdscr_appendElement(page, dgnBufP) == MDL_SUCCESS;
}

std::vector<ElementDescr*> elementsOf(ElementDescr* page) {
    std::vector<ElementDescr*> elements;
    for (ElementDescr* node = page->firstChild; node; node = node->next) elements.push_back(node);
    return elements;
}

}  // namespace

Pages::Pages(const List& list, const Form& form, std::string library, CellName logo)
    : list_(list), form_(form), library_(std::move(library)), logo_(std::move(logo)) {
    for (const TextColumn& column : textColumns)
        widths_.push_back(form.width(column.field).value_or(std::numeric_limits<double>::infinity()));
    measureDecimals();
    rows_ = rowsOf(list, form.rows(),
                   {.item = [this](const Item& item) { return heightOf(item); },
                    .heading = [this](const Group& g, bool again) { return headingLines(g, again).size(); }});
    double mass = 0;
    for (size_t i = 0; i < rows_.size(); ++i) {
        if (i % form_.rows() == 0) massUpTo_.push_back(mass);
        if (rows_[i].kind == Row::item && rows_[i].line == 0) mass += list_.items[rows_[i].index].total;
    }
    massUpTo_.push_back(mass);
}

std::vector<std::string> Pages::names() const {
    std::vector<std::string> names(count());
    for (size_t i = 0; i < names.size(); ++i) names[i] = "Page " + std::to_string(i + 1);
    return names;
}

// ---- rows ----

std::vector<std::string> Pages::linesOf(const Item& item, const TextColumn& column) const {
    return wrapped(item.*column.text, widths_[static_cast<size_t>(&column - textColumns)], column.breaks);
}

std::vector<std::string> Pages::headingLines(const Group& group, bool continued) const {
    const auto width = form_.has(headingField) ? form_.width(headingField) : form_.width(descriptionField);
    return wrapped(group.title + (continued ? " (continued)" : ""),
                   width.value_or(std::numeric_limits<double>::infinity()), Breaks::atBlanks);
}

size_t Pages::heightOf(const Item& item) const {
    size_t lines = 1;
    for (const TextColumn& column : textColumns) {
        if (!(item.*column.text).empty() && form_.has(column.field))
            lines = std::max(lines, linesOf(item, column).size());
    }
    return lines;
}

void Pages::measureDecimals() {
    for (const NumberColumn& column : numberColumns) {
        double& widest = decimals_.emplace_back(0);
        for (const Item& item : list_.items) {
            if (item.*column.has)
                widest = std::max(widest, widthOf(decimalsOf(column.shown(item.*column.value, list_.numbers))));
        }
    }
}

// ---- what stands on a page ----

void Pages::addItem(std::vector<Entry>& entries, size_t row, const Row& content) const {
    const Item& item = list_.items[content.index];
    for (const TextColumn& column : textColumns) {
        if ((item.*column.text).empty()) continue;
        std::vector<std::string> lines = linesOf(item, column);
        if (content.line < lines.size())
            entries.push_back({column.field, row, std::move(lines[content.line]), &item.origin});
    }
    if (content.line > 0) return;
    for (size_t i = 0; i < std::size(numberColumns); ++i) {
        const NumberColumn& column = numberColumns[i];
        if (!(item.*column.has)) continue;
        const double value = item.*column.value;
        entries.push_back(
            {column.field, row, column.shown(value, list_.numbers), &item.origin, value, decimals_[i], true});
    }
}

void Pages::addHeading(std::vector<Entry>& entries, size_t row, const Row& content) const {
    const Group& group = list_.groups[content.index];
    entries.push_back({form_.has(headingField) ? headingField : descriptionField, row,
                       headingLines(group, content.continued)[content.line], &group.origin});
}

// The group's title stands in a sum where it fits.
void Pages::addSum(std::vector<Entry>& entries, size_t row, const Row& content) const {
    std::string text = "Sum of all";
    if (content.kind == Row::groupSum) {
        text = "Sum of " + list_.groups[content.index].title;
        if (widthOf(text) * leastScale > form_.width(descriptionField).value_or(0)) text = "Sum";
    }
    entries.push_back({.field = descriptionField, .row = row, .text = text, .origin = nullptr, .isSum = true});
    entries.push_back({totalField, row, massText(content.mass, list_.numbers), nullptr, content.mass,
                       decimals_[std::size(numberColumns) - 1], true, true});
}

void Pages::addPageSums(std::vector<Entry>& entries, size_t page) const {
    const double upTo = massUpTo_[page + 1];
    const double sums[] = {upTo - massUpTo_[page], upTo};
    for (size_t row = 0; row < std::size(sums); ++row)
        entries.push_back({pageSumField, row, massText(sums[row], list_.numbers), nullptr, sums[row], 0, true});
}

std::vector<Pages::Entry> Pages::titleEntries() const {
    std::vector<Entry> entries;
    for (const ProjectText& text : list_.project)
        entries.push_back({text.key, static_cast<size_t>(text.row), text.text, &text.origin});
    return entries;
}

std::vector<Pages::Entry> Pages::rowEntries(size_t page) const {
    std::vector<Entry> entries;
    addPageSums(entries, page);
    for (size_t row = 0; row < form_.rows(); ++row) {
        const Row& content = rows_[page * form_.rows() + row];
        switch (content.kind) {
            case Row::blank: break;
            case Row::heading: addHeading(entries, row, content); break;
            case Row::groupSum:
            case Row::sum: addSum(entries, row, content); break;
            case Row::item: addItem(entries, row, content); break;
        }
    }
    return entries;
}

// ---- room ----

// As it stands on the page.
std::string Pages::textOf(const Entry& entry, const Place& place) {
    return entry.isNumber && place.decimals ? mcapp::shown(entry.value, *place.decimals) : entry.text;
}

Pages::Fitted Pages::fitted(const Entry& entry, const Place& place) {
    const double room = place.room() / place.size, width = widthOf(textOf(entry, place));
    Fitted fit = {width > room ? room / width : 1, 0};
    if (!entry.isNumber || place.align != Align::right || place.decimals) return fit;
    const double missing = entry.decimalsWidth - widthOf(decimalsOf(entry.text));
    fit.shift = -std::clamp(missing, 0.0, std::max(room - width, 0.0)) * place.size;
    return fit;
}

bool Pages::fits(const Entry& entry) const {
    const Place* const place = form_.place(entry.field, entry.row);
    return !place || entry.text.empty() || fitted(entry, *place).scale >= leastScale;
}

bool Pages::fit() const {
    constexpr size_t mostTold = 20;
    size_t wrong = 0;
    const auto check = [&](const Entry& entry) {
        if (fits(entry) || ++wrong > mostTold) return;
        const std::string where = entry.origin ? list_.placeOf(*entry.origin) + ": " : "";
        mcapp::fail(where + "\"" + entry.text + "\" doesn't fit into its field on form " + form_.kind().name +
                    ", not even with smaller letters; shorten it, or take a form with more room for it");
    };
    std::ranges::for_each(titleEntries(), check);
    for (size_t page = 0; page < count(); ++page) std::ranges::for_each(rowEntries(page), check);
    if (wrong > mostTold) mcapp::fail("and " + std::to_string(wrong - mostTold) + " more texts don't fit");
    return wrong == 0;
}

std::string Pages::unshown() const {
    std::string names;
    const auto add = [&](const std::string& name) { names += (names.empty() ? "" : ", ") + name; };
    for (const TextColumn& column : textColumns) {
        const auto has = [&](const Item& item) { return !(item.*column.text).empty(); };
        if (!form_.has(column.field) && std::ranges::any_of(list_.items, has)) add(column.name);
    }
    for (const NumberColumn& column : numberColumns) {
        if (!form_.has(column.field) && std::ranges::any_of(list_.items, column.has)) add(column.name);
    }
    for (const ProjectText& text : list_.project) {
        if (form_.has(text.key, static_cast<size_t>(text.row))) continue;
        add(text.line == 1 ? text.name : std::string(text.name) + " line " + std::to_string(text.line));
    }
    return names;
}

// ---- a page ----

bool Pages::insert(FormData* values, const Entry& entry) const {
    const Place* const place = form_.place(entry.field, entry.row);
    const std::string field(entry.field);
    const auto row = static_cast<int>(entry.row);
    if (!place || entry.text.empty()) return true;
    if (entry.isNumber && place->decimals)
        return mclibMatList_insertValue(values, field.c_str(), MCLIB_FORM_FLOAT, row, entry.value) == MCLIB_SUCCESS;
    return mclibMatList_insertValue(values, field.c_str(), MCLIB_FORM_TEXT, row, entry.text.c_str()) == MCLIB_SUCCESS;
}

// Brings the texts of the page to their room, and sets sums apart.
bool Pages::finish(ElementDescr* page, const std::vector<Entry>& entries) const {
    const mdl::CurrTransScope cellUnits(mdl::CurrTransScope::Begin::uor);
    const std::vector<ElementDescr*> elements = elementsOf(page);
    bool good = true;
    for (const Entry& entry : entries) {
        const Place* const place = form_.place(entry.field, entry.row);
        if (!place || place->element >= elements.size()) continue;
        const Fitted fit = fitted(entry, *place);
        MSElementBuffer* const text = elements[place->element]->element;
        const bool isUsual = fit.scale == 1 && fit.shift == 0;
        const std::optional<Standing> standing = isUsual && !entry.isSum ? std::nullopt : standingOf(text, *place);
        if (!standing) continue;
        if (!isUsual) good = fitText(text, *standing, fit.scale, fit.shift) && good;
        if (!entry.isSum) continue;
        mdlElement_setSymbology(text, nullptr, &sumWeight, nullptr);
        if (entry.isNumber) good = appendSumLine(page, text, *standing, *place) && good;
    }
    return good;
}

bool Pages::fill(FormData* values, size_t number, const std::vector<Entry>& entries) const {
    mclibMatList_insertSystemData(values);
    mclibProject_insertProjectData(values);
    const int logo = logo_.library.empty()
                         ? mclibMatList_insertLogo(values)
                         : mclibMatList_insertLogoExt(values, logo_.cell.c_str(), logo_.library.c_str());
    return logo == MCLIB_SUCCESS &&
           mclibMatList_insertValue(values, "page", MCLIB_FORM_INTEGER, 0, static_cast<int>(number + 1)) ==
               MCLIB_SUCCESS &&
           mclibMatList_insertValue(values, "pags", MCLIB_FORM_INTEGER, 0, static_cast<int>(count())) ==
               MCLIB_SUCCESS &&
           std::ranges::all_of(entries, [&](const Entry& entry) { return insert(values, entry); });
}

ElementDescr* Pages::make(size_t number) const {
    const auto rowCount = static_cast<int>(std::max(form_.highestRow(), mostFieldRows));
    const std::unique_ptr<FormData, DestroyArray> values(
        mclibMatList_createFormDataArray(static_cast<int>(Form::nameLength), rowCount));
    std::vector<Entry> entries = titleEntries();
    std::ranges::move(rowEntries(number), std::back_inserter(entries));
    ElementDescr* page = nullptr;
    if (values && fill(values.get(), number, entries))
        mclibMatList_generatePageElementDescr(form_.kind().cell, library_.c_str(), &page, values.get(), cellOption);
    if (page && !finish(page, entries)) mdlElmdscr_freeAll(&page);
    return page;
}

}  // namespace materials
