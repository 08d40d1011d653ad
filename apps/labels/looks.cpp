#include "looks.h"

#include <cwchar>
#include <memory>

#include <mclib/app/tell.hpp>

namespace labels {

namespace {

constexpr int group = 1;
constexpr const char* noMemory = "no memory for the attribute";
constexpr int leftBase = 2, rightBase = 14;  // justification

mcapp::ToldAttribute usual(int id, const char* label) {
    mcapp::ToldAttribute told = {.id = id, .label = label, .kind = ATTR_KIND_SYMBOLOGY, .data = {}};
    told.data.useFlags = ATTR_USE_COLOR | ATTR_USE_WEIGHT | ATTR_USE_STYLE | ATTR_USE_LEVEL;
    std::wcscpy(told.data.levelName, L"Labels");
    return told;
}

mcapp::ToldAttribute usualText() {
    constexpr double textSize = 2.5;
    mcapp::ToldAttribute told = usual(USUAL_TEXT, "Text");
    told.kind = ATTR_KIND_TEXT;
    told.data.useFlags |= ATTR_USE_SIZE;
    told.data.textHeight = told.data.textWidth = textSize * sizesPerMm;
    told.data.textLineSpacing = 0.5;
    return told;
}

}  // namespace

std::string addAttribute(const mcapp::ToldAttribute& a) {
    if (isAttribute(a.id)) return "there is an attribute " + std::to_string(a.id) + " already; use another number";
    const int added = mclibElmAttr_addAttribute(a.id, a.label.c_str(), group, a.kind, 0, nullptr, 0, &a.data);
    return added == MCLIB_SUCCESS ? "" : noMemory;
}

bool beginAttributes() {
    mclibElmAttr_setGroupeNames(1, "Labels", group, 0);
    for (const mcapp::ToldAttribute& a :
         {usual(USUAL_LINE, "Leader and frame"), usualText(), usual(USUAL_HEAD, "Head")})
        if (!addAttribute(a).empty()) return mcapp::fail(noMemory);
    return true;
}

void setTextSide(int attribute, int direction) {
    const auto data = std::make_unique<ElmAttrData>();
    mclibElmAttr_extractData(attribute, data.get());
    data->useFlags |= ATTR_USE_JUST;
    data->textJust = direction < 0 ? rightBase : leftBase;
    mclibElmAttr_editAttribute(attribute, 0, data.get());
}

}  // namespace labels
