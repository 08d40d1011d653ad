// The size of a text, by building it.
#include "mclib/geometry/textsize.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "mchost/mdl/element.h"
#include "mchost/mdl/text.h"
#include "mclib/frame/util.h"
#include "mclib/geometry/builders.h"

namespace mc {

namespace {

constexpr size_t maxText = 512;
using TextBuffer = std::array<char, maxText + 1>;

struct Extent {
    double width = 0.0, height = 0.0;
};

// Builds a piece of a line in *dgnBufP and measures it.
Extent measurePiece(const char* piece, double scale, int attrId) {
    dgnBufP->head = {};
    mclibElement_createText(nullptr, piece, scale, nullptr, attrId, nullptr);
    Point3d box[5];
    if (mdlText_extractShape(box, nullptr, dgnBufP, 0, 0) != MDL_SUCCESS) return {};
    return {box[1].x - box[0].x, box[2].y - box[1].y};
}

// Measures a line, in as many pieces as text elements take: letters stand side by side, so the widths add up.
Extent measureLine(std::string_view line, double scale, int attrId) {
    Extent whole;
    do {
        const std::string_view piece = line.substr(0, MDL_TEXT_CHARACTERS);
        char text[MDL_TEXT_CHARACTERS + 1] = "";
        piece.copy(text, piece.size());
        const Extent extent = measurePiece(text, scale, attrId);
        whole = {whole.width + extent.width, extent.height};
        line.remove_prefix(piece.size());
    } while (!line.empty());
    return whole;
}

}  // namespace

}  // namespace mc

using namespace mc;

void mclibUtil_extractTextSize(const char* text, double scale, int attrId, double lineSpacing, double* widthP,
                               double* lineHeightP, double* totalHeightP, void* justP) {
    TextBuffer line{}, rest{};
    if (text) std::memcpy(line.data(), text, strnlen(text, maxText));
    double width = 0.0, height = 0.0;
    int lines = 0;
    bool more = true;
    while (more) {
        more = mclibUtil_splitText(line.data(), rest.data()) != 0;
        const Extent extent = measureLine(line.data(), scale, attrId);
        width = std::max(width, extent.width);
        height = extent.height;
        ++lines;
        line = rest;
    }
    if (widthP) *widthP = width;
    if (lineHeightP) {
        *lineHeightP = height;
        if (totalHeightP) *totalHeightP = (lines - 1) * lineSpacing + lines * height;
    }
    if (justP) {
        mdlText_extract(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, static_cast<int32_t*>(justP),
                        nullptr, nullptr, dgnBufP);
    }
}
