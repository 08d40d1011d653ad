// mccel: compiles descriptions of cells into a cell library. docs/sources.md tells what a source may have.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <numbers>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mchost/base/charset.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mchost/mdl/view.h"
#include "mchost/model/cell_library.h"
#include "mchost/session/program.h"
#include "programs/compiler_call.h"
#include "programs/mccel_values.h"

namespace {

MCHOST_FIRST const host::ProgramStart programStart;

constexpr double uorPerMaster = 10000;
constexpr int64_t mostRepeats = 1000;
constexpr int32_t mostElements = 100000;  // of a cell
constexpr size_t longestText = 255, longestName = 511;
constexpr int32_t byLevel = -1, styleByLevel = 0x7FFFFFFF;

struct Symbology {
    int32_t color = 0, weight = 0, style = 0;
};

struct Pen {
    std::string level = "Default";
    Symbology look;
};

struct Lettering {
    Pen pen;
    int32_t font = 1;
    double height = 2.5;
    double width = 0;  // 0: the height
    int32_t just = 2;
};

// How the words of an alignment add up to a justification.
struct AlignWord {
    std::string_view word;
    bool isColumn;
    int32_t code;
};
constexpr auto alignWords = std::to_array<AlignWord>({
    {"left", true, 0},
    {"centre", true, 6},
    {"right", true, 12},
    {"top", false, 0},
    {"middle", false, 1},
    {"base", false, 2},
});

std::optional<int32_t> justificationOf(std::string_view align) {
    int32_t column = 0, line = 2;
    while (!align.empty()) {
        const std::string_view word = align.substr(0, align.find(' '));
        const auto row = std::ranges::find(alignWords, word, &AlignWord::word);
        if (row == alignWords.end()) return std::nullopt;
        (row->isColumn ? column : line) = row->code;
        align.remove_prefix(std::min(word.size() + 1, align.size()));
    }
    return column + line;
}

std::wstring wideOf(std::string_view narrow) {
    std::wstring wide;
    for (const char c : narrow) wide += static_cast<wchar_t>(host::unicodeOf(static_cast<unsigned char>(c)));
    return wide;
}

using Descr = mdl::DescrPtr;

Point3d inUor(const Point& p) {
    return {p.x * uorPerMaster, p.y * uorPerMaster, 0};
}

// Where the elements of a list go: moved by what repeats add up to, in which row.
struct Place {
    Point offset;
    int64_t row = 0;
    bool inRows = false;
};

// Compiles sources one after another; each fault is one line on standard error.
class Compiler {
  public:
    Compiler() : draft_(uorPerMaster) {}
    void compile(const std::string& path);
    int faults() const { return in_.faults(); }
    size_t cellCount() const { return order_.size(); }
    bool write(const std::string& path);
    bool writePictures(const std::string& folder);

  private:
    static int showByLevel(MSElementBuffer* element, void* compiler, int32_t order, int32_t depth, ElementDescr* node);
    void takeLook(const toml::table& table, Symbology& look, bool withStyle);
    void takePen(const toml::table& table, Pen& pen, bool withStyle);
    void takeLettering(const toml::table& table, Lettering& lettering);
    template <class Kind>
    Kind defined(const toml::table& element, const char* key, const std::map<std::string, Kind>& known);
    Pen penOf(const toml::table& element);
    Lettering letteringOf(const toml::table& element);

    void compileLevels(const toml::table& source);
    template <class Kind, class Take>
    void compileDefinitions(const toml::table& source, std::string_view key, std::map<std::string, Kind>& known,
                            std::initializer_list<std::string_view> keys, Take take);
    void compileCell(const toml::table& source);
    void drawList(const toml::node& list, const Place& place);
    void drawElement(const toml::table& element, const Place& place);
    void drawLine(const toml::table& element, const Place& place);
    void drawRect(const toml::table& element, const Place& place);
    void drawPolygon(const toml::table& element, const Place& place);
    void drawCircle(const toml::table& element, const Place& place);
    void drawArc(const toml::table& element, const Place& place);
    void drawText(const toml::table& element, const Place& place);
    void drawCell(const toml::table& element, const Place& place);
    void drawRepeat(const toml::table& element, const Place& place);
    void addVertices(const toml::table& element, std::vector<Point> vertices, const Place& place, bool closed);
    void append(const toml::node& where, int status, const Pen& pen);
    bool countElements(const toml::node& where, int32_t more);

    struct ElementKind {
        std::string_view key;
        void (Compiler::*draw)(const toml::table&, const Place&);
    };
    static const std::array<ElementKind, 8> elementKinds;

    SourceValues in_{"mccel"};
    ElementDescr* cell_ = nullptr;  // the one that is being made ...
    int32_t elements_ = 0;          // ... and how many elements were appended to it
    host::CellLibraryDraft draft_;
    std::map<std::string, Symbology> levels_;
    std::map<LevelId, Symbology> looks_;  // of these levels
    std::map<std::string, Pen> pens_;
    std::map<std::string, Lettering> letterings_;
    struct Made {
        Descr cell;
        int32_t elements;
    };
    std::map<std::string, Made> cells_;
    std::vector<std::string> order_;
};

const std::array<Compiler::ElementKind, 8> Compiler::elementKinds = {{
    {"line", &Compiler::drawLine},
    {"rect", &Compiler::drawRect},
    {"polygon", &Compiler::drawPolygon},
    {"circle", &Compiler::drawCircle},
    {"arc", &Compiler::drawArc},
    {"text", &Compiler::drawText},
    {"cell", &Compiler::drawCell},
    {"repeat", &Compiler::drawRepeat},
}};

// ---- pens and letterings ----

void Compiler::takeLook(const toml::table& table, Symbology& look, bool withStyle) {
    constexpr std::string_view byLevelWord = "by level";
    const auto take = [&](std::string_view key, int32_t high, int32_t levelValue, int32_t& value) {
        if (table[key].value_exact<std::string_view>() == byLevelWord)
            value = levelValue;
        else
            in_.takeWhole(table, key, 0, high, value);
    };
    take("color", 255, byLevel, look.color);
    take("weight", 15, byLevel, look.weight);
    if (withStyle) take("style", 7, styleByLevel, look.style);
}

void Compiler::takePen(const toml::table& table, Pen& pen, bool withStyle) {
    if (table.get("level")) pen.level = in_.text(table, "level", longestName).value_or(pen.level);
    takeLook(table, pen.look, withStyle);
}

void Compiler::takeLettering(const toml::table& table, Lettering& lettering) {
    takePen(table, lettering.pen, false);
    in_.takeWhole(table, "font", 0, 255, lettering.font);
    if (table.get("height")) lettering.height = in_.length(table, "height").value_or(lettering.height);
    if (table.get("width")) lettering.width = in_.length(table, "width").value_or(lettering.width);
    const toml::node* align = table.get("align");
    if (!align) return;
    const auto just = justificationOf(align->value_or(std::string_view("?")));
    if (!just)
        return in_.fault(*align, "\"align\" must be of left, centre, right and base, middle, top: \"right base\"");
    lettering.just = *just;
}

// What the element names under `key`, as it was defined; the usual one when it names none.
template <class Kind>
Kind Compiler::defined(const toml::table& element, const char* key, const std::map<std::string, Kind>& known) {
    const toml::node* node = element.get(key);
    if (!node) return {};
    const auto found = known.find(node->value_or(std::string()));
    if (found != known.end()) return found->second;
    const std::string kind = key;
    in_.fault(*node, "there is no " + kind + " of that name; [" + kind + ".NAME] defines one");
    return {};
}

Pen Compiler::penOf(const toml::table& element) {
    Pen pen = defined(element, "pen", pens_);
    takePen(element, pen, true);
    return pen;
}

Lettering Compiler::letteringOf(const toml::table& element) {
    Lettering lettering = defined(element, "lettering", letterings_);
    takeLettering(element, lettering);
    return lettering;
}

template <class Kind, class Take>
void Compiler::compileDefinitions(const toml::table& source, std::string_view key, std::map<std::string, Kind>& known,
                                  std::initializer_list<std::string_view> keys, Take take) {
    const toml::node* node = source.get(key);
    if (!node) return;
    const toml::table* tables = node->as_table();
    if (!tables) return in_.fault(*node, inQuotes(key) + " must be tables such as [" + std::string(key) + ".NAME]");
    for (const auto& [name, definition] : *tables) {
        const toml::table* table = definition.as_table();
        if (!table) {
            in_.fault(definition, inQuotes(name.str()) + " must be a table");
            continue;
        }
        in_.requireKeys(*table, keys);
        Kind value;
        take(*table, value);
        if (!known.emplace(std::string(name.str()), value).second)
            in_.fault(*table, std::string(key) + " " + inQuotes(name.str()) + " is defined twice");
    }
}

void Compiler::compileLevels(const toml::table& source) {
    compileDefinitions(source, "level", levels_, {"color", "weight", "style"},
                       [&](const toml::table& table, Symbology& look) {
                           takeLook(table, look, true);
                           if (look.color < 0 || look.weight < 0 || look.style == styleByLevel)
                               in_.fault(table, "a level can't look \"by level\"");
                       });
    for (const auto& [name, look] : levels_) {
        const host::NarrowText narrow = host::narrowFromUtf8(name);
        if (narrow.badPosition || name.empty() || narrow.text.size() > longestName) {
            in_.fault(*source.get("level"), "the name of level " + inQuotes(name) + " can't be used");
            continue;
        }
        const LevelId id = draft_.level(wideOf(narrow.text));
        looks_[id] = look;
        draft_.setLevelSymbology(id, static_cast<uint32_t>(look.color), look.style, static_cast<uint32_t>(look.weight));
    }
}

// ---- elements ----

// Gives the element in the shared buffer its looks, and appends it to the cell.
void Compiler::append(const toml::node& where, int status, const Pen& pen) {
    if (status != MDL_SUCCESS) return in_.fault(where, "the element can't be made; check its lengths");
    if (!countElements(where, 1)) return;
    const auto color = static_cast<uint32_t>(pen.look.color), weight = static_cast<uint32_t>(pen.look.weight);
    const LevelId level = draft_.level(wideOf(pen.level));
    mdlElement_setSymbology(dgnBufP, &color, &weight, &pen.look.style);
    mdlElement_setProperties(dgnBufP, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    if (mdlElmdscr_appendElement(cell_, dgnBufP) != MDL_SUCCESS) in_.fault(where, "memory has run out");
}

// False, and a fault told, when the cell would have too many.
bool Compiler::countElements(const toml::node& where, int32_t more) {
    elements_ += more;
    if (elements_ <= mostElements) return true;
    in_.fault(where, "a cell has at most 100000 elements, those of the cells in it included");
    return false;
}

void Compiler::addVertices(const toml::table& element, std::vector<Point> vertices, const Place& place, bool closed) {
    std::vector<Point3d> uor;
    for (const Point& p : vertices) uor.push_back(inUor({p.x + place.offset.x, p.y + place.offset.y}));
    const auto count = static_cast<int32_t>(uor.size());
    const int status = closed       ? mdlShape_create(dgnBufP, nullptr, uor.data(), count, in_.flag(element, "fill"))
                       : count == 2 ? mdlLine_create(dgnBufP, nullptr, uor.data())
                                    : mdlLineString_create(dgnBufP, nullptr, uor.data(), count);
    append(element, status, penOf(element));
}

void Compiler::drawLine(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"line", "pen", "level", "color", "weight", "style"});
    if (const auto vertices = in_.points(element, "line", 2)) addVertices(element, *vertices, place, false);
}

void Compiler::drawPolygon(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"polygon", "fill", "pen", "level", "color", "weight", "style"});
    if (const auto vertices = in_.points(element, "polygon", 3)) addVertices(element, *vertices, place, true);
}

void Compiler::drawRect(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"rect", "fill", "pen", "level", "color", "weight", "style"});
    const auto r = in_.box(element, "rect");
    if (!r) return;
    addVertices(element, {{r->left, r->bottom}, {r->right, r->bottom}, {r->right, r->top}, {r->left, r->top}}, place,
                true);
}

void Compiler::drawCircle(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"circle", "fill", "pen", "level", "color", "weight", "style"});
    const auto c = in_.numbers(element, "circle", 3);
    if (!c) return;
    if ((*c)[2] <= 0) return in_.fault(element, "the radius of a circle must be above 0");
    const Point3d centre = inUor({(*c)[0] + place.offset.x, (*c)[1] + place.offset.y});
    const double radius = (*c)[2] * uorPerMaster;
    append(element, mdlEllipse_create(dgnBufP, nullptr, &centre, radius, radius, nullptr, in_.flag(element, "fill")),
           penOf(element));
}

void Compiler::drawArc(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"arc", "pen", "level", "color", "weight", "style"});
    const auto a = in_.numbers(element, "arc", 5);
    if (!a) return;
    const double radius = (*a)[2] * uorPerMaster, start = (*a)[3], sweep = (*a)[4];
    if (radius <= 0 || sweep == 0 || std::fabs(sweep) > 360)
        return in_.fault(element, "an arc is [x, y, radius, start, sweep]: radius above 0, sweep up to 360 and not 0");
    const Point3d centre = inUor({(*a)[0] + place.offset.x, (*a)[1] + place.offset.y});
    constexpr double radians = std::numbers::pi / 180;
    append(element, mdlArc_create(dgnBufP, nullptr, &centre, radius, radius, nullptr, start * radians, sweep * radians),
           penOf(element));
}

// The text with the row's number in the place of {row}.
std::string withRow(std::string text, const Place& place) {
    constexpr std::string_view mark = "{row}";
    char row[24];
    std::snprintf(row, sizeof row, "%02lld", static_cast<long long>(place.row));
    for (size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at))
        text.replace(at, mark.size(), row);
    return text;
}

int makeText(const std::string& text, const Point& at, double angle, const Lettering& lettering) {
    const double width = lettering.width > 0 ? lettering.width : lettering.height;
    const TextSize size{1, width * uorPerMaster, lettering.height * uorPerMaster, width / lettering.height};
    const TextParams params{lettering.font, lettering.just, -1, -1, 0, 0, 0};
    const double c = std::cos(angle * std::numbers::pi / 180), s = std::sin(angle * std::numbers::pi / 180);
    const RotMatrix rotation{{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
    const Point3d origin = inUor(at);
    return mdlText_createWide(dgnBufP, nullptr, wideOf(text).c_str(), &origin, &rotation, &size, &params, 0);
}

// A text whose characters are as wide as it takes to fill the box.
int makeTextIn(const Box& box, const std::string& text, Lettering lettering) {
    lettering.height = box.top - box.bottom;
    lettering.width = lettering.height;
    lettering.just = 2;
    double width = 0;
    if (makeText(text, {box.left, box.bottom}, 0, lettering) != MDL_SUCCESS) return MDL_ERROR;
    mdlText_extract(nullptr, nullptr, &width, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, dgnBufP);
    if (!(width > 0)) return MDL_ERROR;
    lettering.width *= (box.right - box.left) * uorPerMaster / width;
    return makeText(text, {box.left, box.bottom}, 0, lettering);
}

void Compiler::drawText(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"text", "at", "box", "angle", "lettering", "level", "color", "weight", "font", "height",
                              "width", "align"});
    const auto source = in_.text(element, "text", longestText);
    if (!source) return;
    const std::string written = withRow(*source, place);
    if (written != *source && !place.inRows) return in_.fault(element, "{row} has a meaning within a repeat only");
    const Lettering lettering = letteringOf(element);
    if (element.get("box")) {
        const auto b = in_.box(element, "box");
        if (!b) return;
        const auto& [x, y] = place.offset;
        const Box moved{b->left + x, b->bottom + y, b->right + x, b->top + y};
        return append(element, makeTextIn(moved, written, lettering), lettering.pen);
    }
    if (!element.get("at")) return in_.fault(element, "a text needs its place: at = [x, y] or box = [...]");
    const auto at = in_.point(element, "at");
    const auto angle = in_.number(element, "angle", 0);
    if (!at || !angle) return;
    append(element, makeText(written, {at->x + place.offset.x, at->y + place.offset.y}, *angle, lettering),
           lettering.pen);
}

Transform placing(const Point& at, double scale, double angle) {
    const double c = scale * std::cos(angle * std::numbers::pi / 180),
                 s = scale * std::sin(angle * std::numbers::pi / 180);
    const Point3d to = inUor(at);
    return {{{c, -s, 0, to.x}, {s, c, 0, to.y}, {0, 0, scale, 0}}};
}

// Puts the middle of the range in the middle of the box, as large as fits.
Transform fitting(const Box& box, const Point3d& low, const Point3d& high) {
    const double width = std::max(high.x - low.x, 1.0), height = std::max(high.y - low.y, 1.0);
    const double scale = uorPerMaster * std::min((box.right - box.left) / width, (box.top - box.bottom) / height);
    const Point3d middle = inUor({(box.left + box.right) / 2, (box.bottom + box.top) / 2});
    return {{{scale, 0, 0, middle.x - scale * (low.x + high.x) / 2},
             {0, scale, 0, middle.y - scale * (low.y + high.y) / 2},
             {0, 0, scale, 0}}};
}

void Compiler::drawCell(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"cell", "at", "box", "scale", "angle"});
    const auto name = in_.text(element, "cell", longestName);
    if (!name) return;
    const auto found = cells_.find(*name);
    if (found == cells_.end()) return in_.fault(element, "no cell " + inQuotes(*name) + " stands further up");
    const auto& [cell, elements] = found->second;
    if (!countElements(element, elements)) return;
    Transform transform;
    if (element.get("box")) {
        const auto b = in_.box(element, "box");
        Point3d low, high;
        if (!b || mdlElmdscr_computeRange(&low, &high, cell.get(), nullptr) != MDL_SUCCESS) return;
        const auto& [x, y] = place.offset;
        transform = fitting({b->left + x, b->bottom + y, b->right + x, b->top + y}, low, high);
    } else {
        if (!element.get("at")) return in_.fault(element, "a cell needs its place: at = [x, y] or box = [...]");
        const auto at = in_.point(element, "at");
        const auto scale = element.get("scale") ? in_.length(element, "scale") : 1.0;
        const auto angle = in_.number(element, "angle", 0);
        if (!at || !scale || !angle) return;
        transform = placing({at->x + place.offset.x, at->y + place.offset.y}, *scale, *angle);
    }
    ElementDescr* copy = nullptr;
    if (mdlElmdscr_duplicate(&copy, cell.get()) != MDL_SUCCESS) return in_.fault(element, "memory has run out");
    Descr owner(copy);
    if (mdlElmdscr_transform(copy, &transform) != MDL_SUCCESS)
        return in_.fault(element, "the cell would be too large there");
    if (mdlElmdscr_appendDscr(cell_, copy) == MDL_SUCCESS) owner.release();
}

void Compiler::drawRepeat(const toml::table& element, const Place& place) {
    in_.requireKeys(element, {"repeat", "step", "first", "draw"});
    const auto times = element["repeat"].value_exact<int64_t>();
    if (!times || *times < 1 || *times > mostRepeats)
        return in_.fault(element, "\"repeat\" must be a whole number from 1 to " + std::to_string(mostRepeats));
    int32_t first = 1;
    in_.takeWhole(element, "first", 0, 1000000, first);
    if (!element.get("step") || !element.get("draw"))
        return in_.fault(element, "a repeat needs step = [x, y] and draw = [...]");
    const auto step = in_.point(element, "step");
    if (!step) return;
    const int before = faults();
    for (int64_t i = 0; i < *times && faults() == before; ++i) {  // a fault in one row is one in all of them
        const auto n = static_cast<double>(i);
        drawList(*element.get("draw"), {{place.offset.x + n * step->x, place.offset.y + n * step->y}, first + i, true});
    }
}

void Compiler::drawElement(const toml::table& element, const Place& place) {
    const auto kind = std::ranges::find_if(elementKinds, [&](const ElementKind& k) { return element.contains(k.key); });
    if (kind == elementKinds.end())
        return in_.fault(element, "an element is a line, rect, polygon, circle, arc, text, cell or repeat");
    (this->*kind->draw)(element, place);
}

void Compiler::drawList(const toml::node& list, const Place& place) {
    const toml::array* array = list.as_array();
    if (!array) return in_.fault(list, "\"draw\" must be a list of elements in [ ]");
    for (const toml::node& node : *array) {
        if (const toml::table* element = node.as_table())
            drawElement(*element, place);
        else
            in_.fault(node, "an element must be a table in { }");
    }
}

void Compiler::compileCell(const toml::table& source) {
    in_.requireKeys(source, {"name", "description", "draw"});
    if (!source.get("name")) return in_.fault(source, "a cell needs a name");
    const auto name = in_.text(source, "name", longestName);
    if (!name) return;
    in_.setSubject("cell " + inQuotes(host::utf8FromNarrow(*name)));
    static MSElementBuffer header;  // too large for a small stack
    ElementDescr* made = nullptr;
    mdlCell_create(&header, wideOf(*name).c_str(), nullptr, 0);
    if (source.get("description"))
        mdlCell_setDescription(&header, wideOf(in_.text(source, "description", longestName).value_or("")).c_str());
    if (mdlElmdscr_new(&made, nullptr, &header) != MDL_SUCCESS) return in_.fault(source, "memory has run out");
    Descr cell(made);
    cell_ = made;
    elements_ = 0;
    if (const toml::node* list = source.get("draw")) drawList(*list, {});
    if (!made->firstChild && faults() == 0)
        in_.fault(source, "there is nothing in it; draw = [...] tells its elements");
    mdlCell_setRange(made, nullptr);
    if (draft_.has(wideOf(*name)))
        in_.fault(source, "there is a cell of that name already");
    else if (!draft_.add(made))
        in_.fault(source, "it is too large");
    else
        order_.push_back(*name), cells_.emplace(*name, Made{std::move(cell), elements_});
}

void Compiler::compile(const std::string& path) {
    const std::optional<toml::table> source = in_.read(path);
    if (!source) return;
    in_.requireKeys(*source, {"level", "pen", "lettering", "cell"});
    compileLevels(*source);
    compileDefinitions(*source, "pen", pens_, {"level", "color", "weight", "style"},
                       [&](const toml::table& table, Pen& pen) { takePen(table, pen, true); });
    compileDefinitions(*source, "lettering", letterings_,
                       {"level", "color", "weight", "font", "height", "width", "align"},
                       [&](const toml::table& table, Lettering& lettering) { takeLettering(table, lettering); });
    in_.eachTable(*source, "cell", [&](const toml::table& cell) {
        compileCell(cell);
        in_.setSubject({});
    });
}

// ---- results ----

bool Compiler::write(const std::string& path) {
    try {
        draft_.write(path);
        return true;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "mccel: %s: %s\n", path.c_str(), error.what());
        return false;
    }
}

// Puts the looks of an element's level in the place of "by level", since a picture knows no levels of a library.
int Compiler::showByLevel(MSElementBuffer* element, void* compiler, int32_t, int32_t, ElementDescr*) {
    const auto& looks = static_cast<const Compiler*>(compiler)->looks_;
    const auto known = looks.find(element->head.level);
    const Symbology look = known != looks.end() ? known->second : Symbology{};
    if (element->head.color == byLevel) element->head.color = look.color;
    if (element->head.weight == byLevel) element->head.weight = static_cast<int16_t>(look.weight);
    if (element->head.style == styleByLevel) element->head.style = look.style;
    return 0;
}

// Behind write(): changes the elements of the cells.
bool Compiler::writePictures(const std::string& folder) {
    constexpr double dpi = 150;
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    for (const std::string& name : order_) {
        ElementDescr* cell = cells_.at(name).cell.get();
        Point3d low, high;
        mdlElmdscr_operation(cell, showByLevel, this, MDL_DESCR_ALL);
        if (mdlElmdscr_computeRange(&low, &high, cell, nullptr) != MDL_SUCCESS) continue;
        const double widthMm = std::max((high.x - low.x) / uorPerMaster, 20.0);
        std::string file = host::utf8FromNarrow(name) + ".png";
        std::ranges::replace(file, '/', '_');
        const std::string path = folder + "/" + file;
        if (mdlPicture_write(path.c_str(), cell, nullptr, widthMm, dpi) != MDL_SUCCESS) return false;
    }
    return true;
}

int runWith(int argc, char** argv) {
    CompilerCall call("mccel", "Compiles descriptions of cells (TOML) into a cell library.", "cell library", "FILE.cel",
                      "Descriptions of cells, pens and letterings");
    std::string pictures;
    call.app.add_option("-p,--pictures", pictures, "Also make a PNG picture of each cell here")->type_name("FOLDER");
    if (const int ended = call.parse(argc, argv); ended >= 0) return ended;

    Compiler compiler;
    for (const std::string& source : call.sources) compiler.compile(source);
    if (compiler.faults() > 0) return 1;
    if (compiler.cellCount() == 0) {
        std::fprintf(stderr, "mccel: there is no [[cell]] in the sources\n");
        return 1;
    }
    const bool good = compiler.write(call.output) && (pictures.empty() || compiler.writePictures(pictures));
    return good ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    return host::runProgram("mccel", [&] { return runWith(argc, argv); });
}
