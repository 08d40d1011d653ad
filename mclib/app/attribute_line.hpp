// How things look, told by lines of an application's input: attributes by number.
#pragma once

#include <iterator>
#include <memory>
#include <string>

#include <mchost/mdl/text.h>
#include <mclib/mclib.h>
#include <mclib/app/input.hpp>

namespace mcapp {

// As a line tells it.
struct ToldAttribute {
    int id;
    std::string label;
    int kind;  // ATTR_KIND_...
    ElmAttrData data;
};

struct WholeRange {
    const char* name;
    int least, most;
};
// A whole number of the range. False after a message, as from the two below.
bool readInRange(Input& in, int& value, const WholeRange& range);

// What stands on a line: number "label" colour weight style "level" [text height, text width [font]]. Text sizes are
// told in millimetres on paper, and an attribute that has them is one for texts; it keeps them in a unit of which so
// many are a millimetre.
bool readAttribute(Input& in, ToldAttribute& told, double unitsPerMm);

// Whether the attribute of that number has a size for texts.
bool hasTextSize(int id);

namespace detail {

inline bool readTextSize(Input& in, double& size, const char* name, double unitsPerMm) {
    constexpr double most = 100;
    in.atEnd();
    char* const position = in.position();
    double millimetres = 0;
    if (!in.positive(millimetres, name)) return false;
    size = millimetres * unitsPerMm;
    return millimetres <= most || in.failAt(position, std::string(name) + " must be at most 100 mm on paper");
}

inline bool readLettering(Input& in, ToldAttribute& told, double unitsPerMm) {
    ElmAttrData& data = told.data;
    if (!readTextSize(in, data.textHeight, "the text height", unitsPerMm) ||
        !readTextSize(in, data.textWidth, "the text width", unitsPerMm)) {
        return false;
    }
    told.kind = ATTR_KIND_TEXT;
    data.useFlags |= ATTR_USE_SIZE;
    data.textLineSpacing = 0.5;
    if (in.atEnd()) return true;
    data.useFlags |= ATTR_USE_FONT;
    return readInRange(in, data.textFont, {"the font", 0, 255});
}

}  // namespace detail

inline bool readInRange(Input& in, int& value, const WholeRange& range) {
    in.atEnd();
    char* const position = in.position();
    if (!in.wholeNumber(value, range.name)) return false;
    if (range.least <= value && value <= range.most) return true;
    return in.failAt(position, std::string(range.name) + " must be " + std::to_string(range.least) + " to " +
                                   std::to_string(range.most));
}

inline bool readAttribute(Input& in, ToldAttribute& told, double unitsPerMm) {
    std::string level;
    ElmAttrData& data = told.data;
    if (!in.wholeNumber(told.id, "the attribute number") || !in.text(told.label, "the label") ||
        !readInRange(in, data.color, {"the colour", ATTR_BY_LEVEL, 255}) ||
        !readInRange(in, data.weight, {"the weight", ATTR_BY_LEVEL, 31}) ||
        !readInRange(in, data.style, {"the line style", 0, 7}) || !in.text(level, "the level")) {
        return false;
    }
    mdlCnv_convertMultibyteToUnicode(level.c_str(), static_cast<int>(level.size()), data.levelName,
                                     std::size(data.levelName));
    data.useFlags = ATTR_USE_COLOR | ATTR_USE_WEIGHT | ATTR_USE_STYLE;
    if (!level.empty()) data.useFlags |= ATTR_USE_LEVEL;
    told.kind = ATTR_KIND_SYMBOLOGY;
    return in.atEnd() || detail::readLettering(in, told, unitsPerMm);
}

inline bool hasTextSize(int id) {
    const auto data = std::make_unique<ElmAttrData>();
    mclibElmAttr_extractData(id, data.get());
    return (data->useFlags & ATTR_USE_SIZE) != 0 && data->textHeight > 0 && data->textWidth > 0;
}

}  // namespace mcapp
