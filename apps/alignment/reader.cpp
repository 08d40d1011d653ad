#include "reader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <string_view>

#include "checks.h"
#include "host/mdl/text.h"
#include "mclib.h"
#include "tell.h"

namespace alignment {

namespace {

constexpr int attributeGroup = 1;
constexpr const char* blanks = " \t";
constexpr size_t longestText = 255;

// Turns UTF-8 into Windows-1252 in place, so that files of either kind can be read; what is no UTF-8 stays.
void narrow(char* text) {
    std::string out;
    for (const auto* p = reinterpret_cast<const unsigned char*>(text); *p != 0; ++p) {
        const int more = *p < 0x80 ? 0 : *p >= 0xC2 && *p < 0xE0 ? 1 : *p >= 0xE0 && *p < 0xF0 ? 2 : -1;
        wchar_t wide[2] = {static_cast<wchar_t>(more == 0 ? *p : more == 1 ? *p & 0x1F : *p & 0x0F), L'\0'};
        if (more < 0) return;
        for (int i = 0; i < more; ++i) {
            if ((*++p & 0xC0) != 0x80) return;
            wide[0] = wide[0] << 6 | (*p & 0x3F);
        }
        char one[2] = "";
        mdlCnv_convertUnicodeToMultibyte(wide, 1, one, sizeof one);
        out += one;
    }
    std::strcpy(text, out.c_str());
}

class Reader {
  public:
    ~Reader() {
        if (open_) mclibFii_close(&fii_);
    }
    bool read(const std::string& fileName);
    Road take() { return std::move(road_); }

  private:
    struct Keyword {
        const char* name;
        bool (Reader::*read)();
    };
    static const std::array<Keyword, 9> keywords;

    bool line();
    bool isKeyword(const char* name);
    bool endOfLine();

    // Tokens: each tells an error by itself.
    bool number(double& value, const char* what);
    bool positive(double& value, const char* what);
    bool wholeNumber(int& value, const char* what);
    bool text(std::string& value, const char* what);
    bool knownAttribute(int& id);

    // Keywords.
    bool project() { return text(road_.project, "the project's name"); }
    bool title() { return text(road_.title, "the title"); }
    bool date() { return text(road_.date, "the date"); }
    bool scale() { return positive(road_.scale, "the scale"); }
    bool start() { return number(road_.startStation, "the first station"); }
    bool tolerance();
    bool attribute();
    bool use();
    bool element();
    bool complete();  // nothing is missing that elements need

    // An error at the position: file, line, column, and the line with a caret.
    bool failHere(const std::string& what);
    bool failAt(char* position, const std::string& what) {
        fii_.position = position;
        return failHere(what);
    }

    bool failAtInclude() const;  // the library has told which file is missing

    McFii fii_{};
    bool open_ = false;
    Road road_;
    std::set<int> attributes_;
};

constexpr std::array<Reader::Keyword, 9> Reader::keywords = {{
    {"PROJECT", &Reader::project},
    {"TITLE", &Reader::title},
    {"DATE", &Reader::date},
    {"SCALE", &Reader::scale},
    {"START", &Reader::start},
    {"TOLERANCE", &Reader::tolerance},
    {"ATTRIBUTE", &Reader::attribute},
    {"USE", &Reader::use},
    {"ELEMENT", &Reader::element},
}};

bool Reader::failHere(const std::string& what) {
    const McFile* file = fii_.file;
    while (file->child != nullptr) file = file->child;
    std::string lines(2 * std::strlen(fii_.line) + 3, '\0');
    if (mclibFii_makeErr2(&fii_, lines.data(), static_cast<int>(lines.size())) == nullptr) lines.clear();
    lines.resize(std::strlen(lines.c_str()));
    const auto column = fii_.position - fii_.line + 1;
    return fail(std::string(file->name) + ", line " + std::to_string(file->lineNumber) + ", column " +
                std::to_string(column) + ": " + what + "\n" + lines);
}

bool Reader::failAtInclude() const {
    return fail(std::string(fii_.file->name) + ", line " + std::to_string(fii_.file->lostInclude) +
                ": the file that %include names can't be opened; put it beside this one, or give its path");
}

// ---- tokens ----

bool Reader::number(double& value, const char* what) {
    if (mclibFii_eol(&fii_) != 0) return failHere(std::string(what) + " is missing");
    if (mclibFii_isDouble(&fii_, blanks) != MCLIB_SUCCESS) return failHere(std::string(what) + " must be a number");
    value = *mclibFii_getDoubleP(&fii_);
    return true;
}

bool Reader::positive(double& value, const char* what) {
    if (mclibFii_eol(&fii_) != 0) return failHere(std::string(what) + " is missing");
    char* position = fii_.position;
    if (!number(value, what)) return false;
    return value > 0 || failAt(position, std::string(what) + " must be above 0");
}

bool Reader::wholeNumber(int& value, const char* what) {
    if (mclibFii_eol(&fii_) != 0) return failHere(std::string(what) + " is missing");
    if (mclibFii_isLong(&fii_, blanks) != MCLIB_SUCCESS) return failHere(std::string(what) + " must be a whole number");
    value = mclibFii_getLong(&fii_);
    return true;
}

bool Reader::text(std::string& value, const char* what) {
    if (mclibFii_seekText(&fii_, "\"") != MCLIB_SUCCESS) {
        return failHere(std::string(what) + " is missing: a text in double quotes");
    }
    const char* closing = std::strchr(fii_.position + 1, '"');
    if (closing == nullptr) return failHere("the text has no closing quote");
    const size_t length = closing - fii_.position - 1;
    if (length > longestText) {
        return failHere("the text has " + std::to_string(length) + " characters; " + std::to_string(longestText) +
                        " is the most that an element can hold");
    }
    char taken[longestText + 1];
    value = mclibFii_readString(&fii_, "\"", taken);
    return true;
}

bool Reader::knownAttribute(int& id) {
    if (mclibFii_eol(&fii_) != 0) return failHere("the attribute number is missing");
    char* position = fii_.position;
    if (!wholeNumber(id, "the attribute number")) return false;
    if (mclibElmAttr_extractData(id, nullptr) == MCLIB_SUCCESS) return true;
    return failAt(position, "there is no attribute " + std::to_string(id) + "; ATTRIBUTE lines come first");
}

// ---- keywords ----

bool Reader::tolerance() {
    double gon = 0;
    if (!positive(road_.gapTolerance, "the tolerance in metres") || !positive(gon, "the tolerance in gon"))
        return false;
    road_.angleTolerance = gon * M_PI / 200;
    return true;
}

// ATTRIBUTE number "label" colour weight style "level" [text height] [text width]
bool Reader::attribute() {
    int id = 0;
    std::string label, level;
    auto data = std::make_unique<ElmAttrData>();
    if (mclibFii_eol(&fii_) != 0) return failHere("the attribute number is missing");
    char* position = fii_.position;
    if (!wholeNumber(id, "the attribute number")) return false;
    if (!attributes_.insert(id).second)
        return failAt(position, "there is an attribute " + std::to_string(id) + " already");
    if (!text(label, "the label") || !wholeNumber(data->color, "the colour") ||
        !wholeNumber(data->weight, "the weight") || !wholeNumber(data->style, "the line style") ||
        !text(level, "the level")) {
        return false;
    }
    mdlCnv_convertMultibyteToUnicode(level.c_str(), static_cast<int>(level.size()), data->levelName,
                                     std::size(data->levelName));
    data->useFlags = ATTR_USE_COLOR | ATTR_USE_WEIGHT | ATTR_USE_STYLE;
    if (!level.empty()) data->useFlags |= ATTR_USE_LEVEL;
    int kind = ATTR_KIND_SYMBOLOGY;
    if (mclibFii_eol(&fii_) == 0) {
        double height = 0, width = 0;
        if (!positive(height, "the text height") || !positive(width, "the text width")) return false;
        kind = ATTR_KIND_TEXT;
        data->useFlags |= ATTR_USE_SIZE;
        data->textHeight = height / 1000;  // millimetres on paper
        data->textWidth = width / 1000;
        data->textLineSpacing = 0.5;
    }
    const int status = mclibElmAttr_addAttribute(id, label.c_str(), attributeGroup, kind, 0, nullptr, 0, data.get());
    return status == MCLIB_SUCCESS || failHere("no memory for the attribute");
}

bool Reader::use() {
    for (size_t role = 0; role < roleCount; ++role) {
        if (isKeyword(roleNames[role])) return knownAttribute(road_.attributes[role]);
    }
    std::string names;
    for (const char* name : roleNames) names += std::string(names.empty() ? "" : ", ") + name;
    return failHere("USE what? One of " + names);
}

bool Reader::complete() {
    if (road_.project.empty()) return failAt(fii_.line, "PROJECT must come before the first ELEMENT");
    if (road_.scale == 0) return failAt(fii_.line, "SCALE must come before the first ELEMENT");
    const auto missing = std::ranges::find(road_.attributes, 0);
    if (missing == road_.attributes.end()) return true;
    return failAt(fii_.line, std::string("USE ") + roleNames[missing - road_.attributes.begin()] +
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
        mclibFii_eol(&fii_);
        positions[i] = fii_.position;
        if (!number(*numbers[i], names[i])) return false;
    }
    if (const auto problem = impossibility(e, road_.gapTolerance)) {
        return failAt(positions[problem->number], problem->why);
    }
    const auto role = std::array{Role::straight, Role::circle, Role::clothoid}[e.kind() - GEO_LINE];
    e.attribute = road_.attributeOf(role);
    if (mclibFii_eol(&fii_) == 0 && !knownAttribute(e.attribute)) return false;
    e.start = road_.endStation();
    measure(e);
    road_.elements.push_back(e);
    return true;
}

// ---- lines ----

bool Reader::isKeyword(const char* name) {
    char* before = fii_.position;
    if (mclibFii_isText(&fii_, name) != MCLIB_SUCCESS) return false;
    if (*fii_.position == '\0' || std::strchr(blanks, *fii_.position) != nullptr) {
        mclibFii_eol(&fii_);
        return true;
    }
    fii_.position = before;
    return false;
}

bool Reader::endOfLine() {
    return mclibFii_eol(&fii_) != 0 || failHere("nothing more is expected here");
}

bool Reader::line() {
    const auto keyword = std::ranges::find_if(keywords, [this](const Keyword& k) { return isKeyword(k.name); });
    if (keyword == keywords.end()) {
        std::string names;
        for (const Keyword& k : keywords) names += std::string(names.empty() ? "" : ", ") + k.name;
        return failHere("a line begins with a keyword, one of " + names);
    }
    return (this->*keyword->read)() && endOfLine();
}

bool Reader::read(const std::string& fileName) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(fileName, error)) return fail(fileName + ": there is no such file");
    if (mclibFii_openExtended(&fii_, fileName.c_str(), "r", "\\", "#", 512, 2048, nullptr) != MCLIB_SUCCESS) {
        return fail(fileName + ": the file can't be read");
    }
    open_ = true;
    while (mclibFii_readNewLine(&fii_) == MCLIB_SUCCESS) {
        if (fii_.file->lostInclude > 0) return failAtInclude();
        narrow(fii_.line);
        if (!line()) return false;
    }
    if (mclibFii_eof(&fii_) == 0) return failHere("the line can't be read; it has 2047 characters at most");
    if (fii_.file->lostInclude > 0) return failAtInclude();
    return !road_.elements.empty() || failHere("the file ends without an ELEMENT");
}

}  // namespace

std::optional<Road> readRoad(const std::string& fileName) {
    Reader reader;
    mclibElmAttr_setGroupeNames(1, "Alignment", attributeGroup, 0);
    if (!reader.read(fileName)) return {};
    return reader.take();
}

}  // namespace alignment
