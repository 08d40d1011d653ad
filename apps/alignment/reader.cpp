#include "reader.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include <mclib/app/attribute_line.hpp>
#include <mclib/app/input.hpp>
#include <mclib/app/tell.hpp>
#include "checks.h"

namespace alignment {

namespace {

class Reader {
  public:
    Reader(mcapp::Input::LetterRefusal letterRefusal, Road begun, Attributes& attributes)
        : road_(std::move(begun)), attributes_(attributes) {
        in_.setLetterRefusal(std::move(letterRefusal));
    }
    bool read(const std::string& fileName);
    Road take() { return std::move(road_); }

  private:
    struct Keyword {
        const char* name;
        bool (Reader::*read)();
    };
    static const std::array<Keyword, 10> keywords;

    bool line();
    bool knownAttribute(int& id);
    bool addedTo(std::string (Attributes::*add)(const ToldAttribute&));

    // Keywords.
    bool project() { return in_.text(road_.project, "the project's name"); }
    bool title() { return in_.text(road_.title, "the title"); }
    bool date() { return in_.text(road_.date, "the date"); }
    bool scale() { return in_.positive(road_.scale, "the scale"); }
    bool start() { return in_.number(road_.startStation, "the first station"); }
    bool tolerance();
    bool attribute() { return addedTo(&Attributes::add); }
    bool own() { return addedTo(&Attributes::addOwn); }
    bool use();
    bool element();
    bool complete();  // nothing is missing that elements need

    mcapp::Input in_;
    Road road_;
    Attributes& attributes_;
};

constexpr std::array<Reader::Keyword, 10> Reader::keywords = {{
    {"PROJECT", &Reader::project},
    {"TITLE", &Reader::title},
    {"DATE", &Reader::date},
    {"SCALE", &Reader::scale},
    {"START", &Reader::start},
    {"TOLERANCE", &Reader::tolerance},
    {"ATTRIBUTE", &Reader::attribute},
    {"OWN", &Reader::own},
    {"USE", &Reader::use},
    {"ELEMENT", &Reader::element},
}};

bool Reader::knownAttribute(int& id) {
    if (in_.atEnd()) return in_.failHere("the attribute number is missing");
    char* position = in_.position();
    if (!in_.wholeNumber(id, "the attribute number")) return false;
    if (Attributes::isKnown(id)) return true;
    return in_.failAt(position, "there is no attribute " + std::to_string(id) + "; ATTRIBUTE and OWN lines come first");
}

// ---- keywords ----

bool Reader::tolerance() {
    double gon = 0;
    if (!in_.positive(road_.gapTolerance, "the tolerance in metres") || !in_.positive(gon, "the tolerance in gon"))
        return false;
    road_.angleTolerance = gon * M_PI / 200;
    return true;
}

bool Reader::addedTo(std::string (Attributes::*add)(const ToldAttribute&)) {
    if (in_.atEnd()) return in_.failHere("the attribute number is missing");
    char* const position = in_.position();
    constexpr double metresPerMm = 0.001;
    const auto told = std::make_unique<ToldAttribute>();
    if (!mcapp::readAttribute(in_, *told, metresPerMm)) return false;
    const std::string refusal = (attributes_.*add)(*told);
    return refusal.empty() || in_.failAt(position, refusal);
}

bool Reader::use() {
    static constexpr auto textRoles = std::array{Role::station, Role::boundary, Role::label, Role::title, Role::text};
    for (size_t role = 0; role < roleCount; ++role) {
        if (!in_.isKeyword(roleNames[role])) continue;
        in_.atEnd();
        char* const position = in_.position();
        int& id = road_.attributes[role];
        if (!knownAttribute(id)) return false;
        const bool hasTexts = std::ranges::find(textRoles, static_cast<Role>(role)) != textRoles.end();
        return !hasTexts || mcapp::hasTextSize(id) ||
               in_.failAt(position, "attribute " + std::to_string(id) + " has no text size, which " + roleNames[role] +
                                        " needs; add height and width in mm to its line, behind the level");
    }
    std::string names;
    for (const char* name : roleNames) names += std::string(names.empty() ? "" : ", ") + name;
    return in_.failHere("USE what? One of " + names);
}

bool Reader::complete() {
    if (road_.project.empty()) return in_.failAt(in_.lineStart(), "PROJECT must come before the first ELEMENT");
    if (road_.scale == 0) return in_.failAt(in_.lineStart(), "SCALE must come before the first ELEMENT");
    const auto missing = std::ranges::find(road_.attributes, 0);
    if (missing == road_.attributes.end()) return true;
    return in_.failAt(in_.lineStart(), std::string("USE ") + roleNames[missing - road_.attributes.begin()] +
                                           " must come before the first ELEMENT");
}

// ELEMENT x1 y1 x2 y2 R1 R2 A [attribute]
bool Reader::element() {
    static constexpr std::array<const char*, 7> names = {"x1", "y1", "x2", "y2", "R1", "R2", "A"};
    if (road_.elements.empty() && !complete()) return false;
    Element e{};
    const std::array<double*, 7> numbers = {&e.x1, &e.y1, &e.x2, &e.y2, &e.r1, &e.r2, &e.a};
    std::array<char*, 7> positions{};
    for (size_t i = 0; i < names.size(); ++i) {
        in_.atEnd();
        positions[i] = in_.position();
        if (!in_.number(*numbers[i], names[i])) return false;
    }
    if (const auto problem = impossibility(e, road_.gapTolerance)) {
        return in_.failAt(positions[problem->number], problem->why);
    }
    const auto role = std::array{Role::straight, Role::circle, Role::clothoid}[e.kind() - GEO_LINE];
    e.attribute = road_.attributeOf(role);
    if (!in_.atEnd() && !knownAttribute(e.attribute)) return false;
    e.start = road_.endStation();
    e.origin = in_.fileName() + ", line " + std::to_string(in_.lineNumber());
    if (!measure(e)) return in_.failHere("the numbers of this element are too large to work with");
    road_.elements.push_back(e);
    return true;
}

// ---- lines ----

bool Reader::line() {
    const Keyword* const keyword = in_.keywordOf(keywords);
    return keyword && (this->*keyword->read)() && in_.endOfLine();
}

bool Reader::read(const std::string& fileName) {
    if (!in_.open(fileName)) return false;
    while (in_.nextLine()) {
        if (in_.failed() || !line()) return false;
    }
    if (in_.failed()) return false;
    return !road_.elements.empty() || in_.failHere("the file ends without an ELEMENT");
}

}  // namespace

std::optional<Road> readRoad(const std::string& fileName, mcapp::Input::LetterRefusal letterRefusal, Road begun,
                             Attributes& attributes) {
    Reader reader(std::move(letterRefusal), std::move(begun), attributes);
    if (!reader.read(fileName)) return {};
    return reader.take();
}

}  // namespace alignment
