#include "reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <span>
#include <utility>

#include <mclib/app/attribute_line.hpp>
#include <mclib/app/input.hpp>
#include <mclib/app/names.hpp>
#include <mclib/app/tell.hpp>
#include "kinds.h"
#include "settings.h"

namespace labels {

namespace {

struct Unit {
    const char* name;
    double millimetres;
};
constexpr Unit units[] = {{"m", 1000}, {"cm", 10}, {"mm", 1}};

struct NamedAttribute {
    const char* name;
    int Style::*id;
    bool hasText;
};
constexpr NamedAttribute parts[] = {{"LINE", &Style::lineAttribute, false},
                                    {"TEXT", &Style::textAttribute, true},
                                    {"HEAD", &Style::headAttribute, false}};

constexpr double largestCoordinate = 1e9;  // master units
constexpr double largestSize = 1000;       // millimetres on paper

bool isSamePlace(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y;
}

class Reader {
  public:
    explicit Reader(double scale) : scale_(scale) {}
    bool read(const std::string& fileName, bool needsLabels);
    LabelFile take() { return std::move(file_); }

  private:
    struct Keyword {
        const char* name;
        bool (Reader::*read)();
    };
    static const std::array<Keyword, 11> keywords;

    bool line();
    // Keywords.
    bool scale();
    bool unit();
    bool attribute();
    bool use();
    bool frame() { return kind(style_.frame, frameKinds(), "a frame"); }
    bool head();
    bool radius();
    bool angle();
    bool cell();
    bool label();
    bool leader();

    bool kind(int& number, std::span<const Kind> kinds, const char* what);
    bool size(double& millimetres, const char* what);
    bool texts(std::string& text);
    bool coordinate(double& value, const char* what);
    bool points(std::vector<Point3d>& points);
    bool isFree(char* at, const Label& label);

    mcapp::Input in_;
    LabelFile file_;
    Style style_;
    double scale_;
    bool hasLabel_ = false, scaleTold_ = false;  // LABEL and SCALE have come, good or bad
    bool labelIsGood_ = false;                   // the last LABEL
};

constexpr std::array<Reader::Keyword, 11> Reader::keywords = {{
    {"SCALE", &Reader::scale},
    {"UNIT", &Reader::unit},
    {"ATTRIBUTE", &Reader::attribute},
    {"USE", &Reader::use},
    {"FRAME", &Reader::frame},
    {"HEAD", &Reader::head},
    {"RADIUS", &Reader::radius},
    {"ANGLE", &Reader::angle},
    {"CELL", &Reader::cell},
    {"LABEL", &Reader::label},
    {"LEADER", &Reader::leader},
}};

// ---- tokens ----

bool Reader::kind(int& number, std::span<const Kind> kinds, const char* what) {
    in_.atEnd();
    char* const position = in_.position();
    std::string name;
    if (!in_.word(name, what)) return false;
    const std::optional<int> named = kindNamed(kinds, name);
    if (!named)
        return in_.failAt(position, "\"" + name + "\" isn't " + what + "; there are " + mcapp::namesOf(kinds) +
                                        ", and their numbers from 0 to " + std::to_string(kinds.size() - 1));
    number = *named;
    return true;
}

bool Reader::size(double& millimetres, const char* what) {
    in_.atEnd();
    char* const position = in_.position();
    if (!in_.positive(millimetres, what)) return false;
    if (millimetres > largestSize) return in_.failAt(position, std::string(what) + " must be at most 1000 mm on paper");
    return millimetres * sizesPerMm >= 1 || in_.failAt(position, std::string(what) + " must be at least 0.01 mm");
}

// A text, or several, which are its lines.
bool Reader::texts(std::string& text) {
    in_.atEnd();
    char* const start = in_.position();
    do {
        std::string line;
        if (!in_.text(line, "the label's text")) return false;
        text += (text.empty() ? "" : "\n") + line;
        in_.atEnd();
    } while (in_.startsWith("\""));
    if (text.find_first_not_of(" \t\n") == text.npos)
        return in_.failAt(start, "the text is empty; write what it tells");
    return text.size() <= ARROW_TEXT_LENGTH ||
           in_.failAt(start, "the text has " + std::to_string(text.size()) + " characters; " +
                                 std::to_string(ARROW_TEXT_LENGTH) + " is the most");
}

bool Reader::coordinate(double& value, const char* what) {
    in_.atEnd();
    char* const position = in_.position();
    if (!in_.number(value, what)) return false;
    return std::abs(value) <= largestCoordinate || in_.failAt(position, std::string(what) + " lies too far away");
}

// As many as the line has.
bool Reader::points(std::vector<Point3d>& points) {
    while (points.empty() || !in_.atEnd()) {
        in_.atEnd();
        char* const position = in_.position();
        Point3d point = {};
        if (!coordinate(point.x, "x") || !coordinate(point.y, "y")) return false;
        if (!points.empty() && isSamePlace(points.back(), point))
            return in_.failAt(position, "this point lies where the one before it lies; leave one out");
        points.push_back(point);
    }
    return true;
}

// ---- keywords ----

bool Reader::scale() {
    if (scaleTold_ || hasLabel_) return in_.failAt(in_.lineStart(), "SCALE comes once, before the first LABEL");
    scaleTold_ = true;
    return in_.positive(file_.paper.scale, "the scale");
}

bool Reader::unit() {
    if (hasLabel_) return in_.failAt(in_.lineStart(), "UNIT comes before the first LABEL");
    in_.atEnd();
    char* const position = in_.position();
    std::string name;
    if (!in_.word(name, "the unit")) return false;
    const auto unit = std::ranges::find_if(units, [&](const Unit& u) { return mcapp::sameName(u.name, name); });
    if (unit == std::end(units))
        return in_.failAt(position, "the drawing's unit is one of " + mcapp::namesOf(units) + ", not " + name);
    file_.paper.millimetresOfUnit = unit->millimetres;
    return true;
}

bool Reader::attribute() {
    in_.atEnd();
    char* const position = in_.position();
    const auto told = std::make_unique<mcapp::ToldAttribute>();
    if (!mcapp::readAttribute(in_, *told, sizesPerMm)) return false;
    const std::string refusal = addAttribute(*told);
    return refusal.empty() || in_.failAt(position, refusal);
}

bool Reader::use() {
    for (const NamedAttribute& part : parts) {
        if (!in_.isKeyword(part.name)) continue;
        in_.atEnd();
        char* const position = in_.position();
        int id = 0;
        if (!in_.wholeNumber(id, "the attribute number")) return false;
        if (!isAttribute(id))
            return in_.failAt(position,
                              "there is no attribute " + std::to_string(id) + "; its ATTRIBUTE line comes first");
        if (part.hasText && !mcapp::hasTextSize(id))
            return in_.failAt(position,
                              "attribute " + std::to_string(id) +
                                  " has no text size; add height and width in mm to its line, behind the level");
        style_.*part.id = id;
        return true;
    }
    return in_.failHere("USE what? One of " + mcapp::namesOf(parts));
}

// HEAD kind [size]
bool Reader::head() {
    return kind(style_.head, headKinds(), "a head") && (in_.atEnd() || size(style_.headSize, "the head's size"));
}

// RADIUS millimetres, or text
bool Reader::radius() {
    if (!in_.isKeyword("text")) return size(style_.radius, "the radius");
    style_.radius = 0;
    return true;
}

bool Reader::angle() {
    double degrees = 0;
    if (!in_.number(degrees, "the angle")) return false;
    style_.angle = std::remainder(degrees, 360) * M_PI / 180;
    return true;
}

bool Reader::cell() {
    in_.atEnd();
    char* const position = in_.position();
    std::string name;
    if (!in_.text(name, "the cell's name")) return false;
    if (name.empty()) return in_.failAt(position, "the cell's name is empty");
    style_.cell = name;
    return true;
}

// No other label has its text there.
bool Reader::isFree(char* at, const Label& label) {
    const auto lies = [&](const Label& other) {
        return isSamePlace(other.leaders.front().back(), label.leaders.front().back());
    };
    const auto other = std::ranges::find_if(file_.labels, lies);
    return other == file_.labels.end() ||
           in_.failAt(at, "the label of " + other->origin + " ends at the same point; move one of them");
}

// LABEL "text" ... x y x y ...
bool Reader::label() {
    hasLabel_ = true;
    labelIsGood_ = false;
    in_.atEnd();
    char* const position = in_.position();
    Label label = {.style = style_, .text = {}, .leaders = {{}}, .origin = {}};
    std::vector<Point3d>& leader = label.leaders.front();
    if (!texts(label.text) || !points(leader)) return false;
    if (leader.size() < 2) return in_.failHere("a label has two points at least: its tip, and where its text stands");
    if (leader.size() > ARROW_MOST_VERTICES)
        return in_.failHere("a leader has " + std::to_string(ARROW_MOST_VERTICES) + " points at most");
    if (!isFree(position, label)) return false;
    label.origin = in_.fileName() + ", line " + std::to_string(in_.lineNumber());
    file_.labels.push_back(std::move(label));
    return labelIsGood_ = true;
}

// LEADER x y ...
bool Reader::leader() {
    if (!hasLabel_) return in_.failAt(in_.lineStart(), "a LEADER comes behind the LABEL that it belongs to");
    std::vector<Point3d> leader;
    if (!points(leader)) return false;
    if (!labelIsGood_) return true;  // told already
    Label& label = file_.labels.back();
    const Point3d& end = label.leaders.front().back();
    if (isSamePlace(leader.back(), end))
        return in_.failHere("the leader ends where the label's first one ends by itself; leave its last point out");
    label.leaders.push_back(std::move(leader));
    return true;
}

// ---- lines ----

bool Reader::line() {
    const Keyword* const keyword = in_.keywordOf(keywords);
    return keyword && (this->*keyword->read)() && in_.endOfLine();
}

bool Reader::read(const std::string& fileName, bool needsLabels) {
    if (!in_.open(fileName)) return false;
    bool good = true;
    while (in_.nextLine()) good = line() && good;
    if (!good || in_.failed()) return false;
    if (scale_ > 0) file_.paper.scale = scale_;
    file_.style = style_;
    return !needsLabels || !file_.labels.empty() || mcapp::fail(fileName + ": there is no LABEL in it");
}

}  // namespace

std::optional<LabelFile> readLabels(const std::string& fileName, double scale, bool needsLabels) {
    Reader reader(scale);
    if (!reader.read(fileName, needsLabels)) return {};
    return reader.take();
}

}  // namespace labels
