#include "form.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <mchost/mdl/element.h>
#include <mchost/mdl/text.h>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
#include "columns.h"
#include "library.h"

namespace materials {

namespace {

enum { PAPER_A3 = 7, PAPER_A4 = 9 };

constexpr Margins margins = {20, 10, 10, 10};
// clang-format off
constexpr FormKind kinds[] = {
    {"A4", "MATLIST-A4", PAPER_A4, false, margins},
    {"A3", "MATLIST-A3", PAPER_A3, true,  margins},
};
// clang-format on

constexpr double gap = 0.3;  // between a text and what bounds it, of the letters' height

// ---- codes ----

// A field code in a text: "%NN%formatNAME".
struct Code {
    size_t row = 0;
    std::string_view format, field;
    std::string_view behind;
};

bool isDigit(char c) {
    return '0' <= c && c <= '9';
}

// The code that the text begins with; nothing for a percent sign that begins none.
std::optional<Code> codeIn(std::string_view text) {
    Code code;
    text.remove_prefix(1);
    const size_t digits = std::ranges::find_if_not(text, isDigit) - text.begin();
    if (digits > 0 && digits < text.size() && text[digits] == '%') {
        const auto row = mcapp::numberIn<size_t>(text.substr(0, digits));
        if (!row || *row == 0) return {};
        code.row = *row - 1;
        text.remove_prefix(digits + 1);
    }
    code.format = text.substr(0, std::min(text.find_first_not_of("+-. 0123456789"), text.size()));
    text.remove_prefix(code.format.size());
    if (text.size() < Form::nameLength) return {};
    code.field = text.substr(0, Form::nameLength);
    code.behind = text.substr(Form::nameLength);
    return code;
}

std::vector<Code> codesIn(std::string_view text) {
    std::vector<Code> codes;
    while (!text.empty()) {
        if (text.starts_with("%%")) {
            text.remove_prefix(2);
        } else if (const std::optional<Code> code = text[0] == '%' ? codeIn(text) : std::nullopt) {
            codes.push_back(*code);
            text = code->behind;
        } else {
            text.remove_prefix(1);
        }
    }
    return codes;
}

std::optional<int> decimalsIn(std::string_view format) {
    const size_t point = format.find('.');
    return point == format.npos ? std::nullopt : mcapp::numberIn<int>(format.substr(point + 1));
}

Align alignOf(int32_t just) {
    constexpr int32_t firstCentred = 6, firstRight = 9;
    return just < firstCentred ? Align::left : just < firstRight ? Align::centre : Align::right;
}

}  // namespace

std::span<const FormKind> formKinds() {
    return kinds;
}

double Place::room() const {
    const double space = gap * size;
    switch (align) {
        case Align::left: return right - x - space;
        case Align::right: return x - left - space;
        default: return 2 * (std::min(right - x, x - left) - space);
    }
}

// ---- reading ----

class FormReader {
  public:
    explicit FormReader(const FormKind& kind) { form_.kind_ = &kind; }
    // Nothing after a message.
    std::optional<Form> read(const std::string& library);

  private:
    // What may bound a text: a box, which is a line when it has no width or no height. Of a text with codes it is the
    // place that it is written from.
    struct Bound {
        double x1, y1, x2, y2;
        size_t element;
    };

    void take(const ElementDescr* node, size_t element);
    void takeText(const MSElementBuffer* element, size_t number);
    void takeLines(const MSElementBuffer* element, size_t number);
    void takePlace(const Code& code, const Place* place);
    void bound(Place& place) const;
    size_t commonRows() const;

    Form form_;
    std::vector<Bound> bounds_;
    Range3d range_{};
};

void FormReader::takePlace(const Code& code, const Place* place) {
    auto& rows = form_.fields_[std::string(code.field)];
    if (rows.size() <= code.row) rows.resize(code.row + 1);
    // Within a longer text a row has a place without bounds.
    constexpr double nowhere = std::numeric_limits<double>::infinity();
    rows[code.row] = place ? *place
                           : Place{.element = SIZE_MAX,
                                   .x = 0,
                                   .y = 0,
                                   .align = Align::left,
                                   .size = 1,
                                   .decimals = decimalsIn(code.format),
                                   .left = -nowhere,
                                   .right = nowhere,
                                   .above = 0};
    form_.highestRow_ = std::max(form_.highestRow_, code.row + 1);
}

void FormReader::takeText(const MSElementBuffer* element, size_t number) {
    Point3d low, origin;
    double width = 0, height = 0, size = 0;
    char text[MDL_TEXT_CHARACTERS + 1];
    int32_t just = 0;
    if (mdlText_extract(&low, &origin, &width, &height, text, nullptr, nullptr, &just, nullptr, &size, element) !=
        MDL_SUCCESS) {
        return;
    }
    const std::vector<Code> codes = codesIn(text);
    const Align align = alignOf(just);
    if (codes.empty()) {
        bounds_.push_back({low.x, low.y, low.x + width, low.y + height, number});
        return;
    }
    bounds_.push_back({origin.x, low.y, origin.x, low.y + height, number});
    const bool alone = codes.size() == 1 && text[0] == '%' && codes[0].behind.empty() && number != SIZE_MAX;
    const Place place = {.element = number,
                         .x = origin.x,
                         .y = low.y,
                         .align = align,
                         .size = size,
                         .decimals = decimalsIn(codes[0].format),
                         .left = 0,
                         .right = 0,
                         .above = 0};
    for (const Code& code : codes) takePlace(code, alone ? &place : nullptr);
}

void FormReader::takeLines(const MSElementBuffer* element, size_t number) {
    int32_t count = 0;
    mdlLinear_extract(nullptr, &count, element, 0);
    std::vector<Point3d> points(static_cast<size_t>(std::max(count, 0)));
    if (mdlLinear_extract(points.data(), &count, element, count) != MDL_SUCCESS) return;
    for (size_t i = 1; i < points.size(); ++i) {
        const Point3d &a = points[i - 1], &b = points[i];
        bounds_.push_back({std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y), number});
    }
}

void FormReader::take(const ElementDescr* node, size_t element) {
    switch (mdlElement_getType(node->element)) {
        case MDL_TEXT: takeText(node->element, element); break;
        case MDL_LINE:
        case MDL_LINE_STRING:
        case MDL_SHAPE: takeLines(node->element, element); break;
        default:
            // Elements of a cell within the form aren't the form's own.
            for (const ElementDescr* part = node->firstChild; part; part = part->next) take(part, SIZE_MAX);
    }
}

// Looks to both sides, and up, from the place's letters.
void FormReader::bound(Place& place) const {
    place.left = range_.low.x;
    place.right = range_.high.x;
    place.above = range_.high.y;
    const double top = place.y + place.size, near = gap * place.size;
    for (const Bound& b : bounds_) {
        if (b.element == place.element) continue;
        const bool across = b.y1 < top && b.y2 > place.y && b.y2 > b.y1;
        if (across && b.x1 > place.x + near) place.right = std::min(place.right, b.x1);
        if (across && b.x2 < place.x - near) place.left = std::max(place.left, b.x2);
        const bool over = b.y1 == b.y2 && b.y1 >= top && b.x1 < place.x + near && b.x2 > place.x - near;
        if (over) place.above = std::min(place.above, b.y1);
    }
}

// So many rows have all fields of an item that the form has.
size_t FormReader::commonRows() const {
    size_t rows = SIZE_MAX;
    const auto count = [&](const char* field) {
        const auto found = form_.fields_.find(field);
        if (found == form_.fields_.end()) return;
        const auto& places = found->second;
        const auto end = std::ranges::find_if(places, [](const auto& place) { return !place; });
        rows = std::min(rows, static_cast<size_t>(end - places.begin()));
    };
    for (const TextColumn& column : textColumns) count(column.field);
    for (const NumberColumn& column : numberColumns) count(column.field);
    return rows == SIZE_MAX ? 0 : rows;
}

std::optional<Form> FormReader::read(const std::string& library) {
    constexpr size_t leastRows = 4;
    const mdl::CurrTransScope cellUnits(mdl::CurrTransScope::Begin::uor);
    const Cell cell = cellOf(library, form_.kind_->cell, std::string("is form ") + form_.kind_->name);
    if (!cell) return {};
    mdlElmdscr_computeRange(&range_.low, &range_.high, cell.get(), nullptr);
    size_t number = 0;
    for (const ElementDescr* node = cell->firstChild; node; node = node->next) take(node, number++);
    for (auto& [field, rows] : form_.fields_) {
        for (auto& place : rows) {
            if (place && place->element != SIZE_MAX) bound(*place);
        }
    }
    form_.rows_ = commonRows();
    if (form_.rows_ >= leastRows) return std::move(form_);
    mcapp::fail(library + ": cell " + form_.kind_->cell + " has " + std::to_string(form_.rows_) +
                " rows of items, and at least " + std::to_string(leastRows) +
                " are needed: texts %01%MARK, %02%MARK and on");
    return {};
}

std::optional<Form> Form::read(const FormKind& kind, const std::string& library) {
    return FormReader(kind).read(library);
}

bool Form::has(std::string_view field, size_t row) const {
    const auto found = fields_.find(std::string(field));
    return found != fields_.end() && row < found->second.size() && found->second[row];
}

const Place* Form::place(std::string_view field, size_t row) const {
    return has(field, row) ? &*fields_.find(std::string(field))->second[row] : nullptr;
}

std::optional<double> Form::width(std::string_view field) const {
    const auto found = fields_.find(std::string(field));
    if (found == fields_.end()) return {};
    double width = std::numeric_limits<double>::infinity();
    for (const auto& place : found->second) {
        if (place) width = std::min(width, place->room() / place->size);
    }
    return width;
}

}  // namespace materials
