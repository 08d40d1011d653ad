// The element as a whole: size, copies, symbology and properties.
#include <limits>

#include "mchost/element/build.h"
#include "mchost/element/geometry.h"
#include "mchost/element/linkage.h"
#include "mchost/element/range.h"
#include "mchost/session/drawing.h"

using namespace host;

namespace {

MSElementBuffer sharedBuffer;

size_t soundBytes(const MSElementBuffer* element) {
    if (!element) return 0;
    const size_t bytes = size_t{headOf(element).size} * 2;
    return elementIsSound(element, bytes) ? bytes : 0;
}

void setFlag(uint16_t& properties, uint16_t flag, const int32_t* value) {
    if (value) properties = static_cast<uint16_t>(*value ? properties | flag : properties & ~flag);
}

void getFlag(int32_t* value, uint16_t properties, uint16_t flag) {
    if (value) *value = properties & flag ? 1 : 0;
}

constexpr uint32_t weightByLevel = 0xFFFFFFFF;

void dropLineStyleModifiers(MSElementBuffer* element) {
    mdlLinkage_deleteFromElement(element, linkageLineStyle, nullptr, nullptr, nullptr, nullptr);
}

LineStyleLinkage linkageOf(const LineStyleParams& params) {
    return {{MDL_LINKAGE_USER, linkageLineStyle},
            params.modifiers,
            params.scale,
            params.startWidth,
            params.endWidth,
            params.dashScale,
            params.gapScale};
}

LineStyleParams paramsOf(const LineStyleLinkage& style) {
    return {style.modifiers, style.scale, style.startWidth, style.endWidth, style.dashScale, style.gapScale};
}

}  // namespace

MSElementBuffer* dgnBufP = &sharedBuffer;

int mdlElement_getType(const MSElementBuffer* element) noexcept {
    return element ? headOf(element).type : 0;
}

uint32_t mdlElement_bytes(const MSElementBuffer* element) noexcept {
    return static_cast<uint32_t>(soundBytes(element));
}

int mdlElement_memcpy(MSElementBuffer* out, const MSElementBuffer* in) noexcept {
    const size_t bytes = soundBytes(in);
    if (!out || !bytes) return MDL_ERROR;
    std::memmove(out->bytes, in->bytes, bytes);
    return MDL_SUCCESS;
}

int mdlElement_transform(MSElementBuffer* out, const MSElementBuffer* in, const Transform* transform) noexcept {
    if (!out || !transform || !soundBytes(in) || !canTransform(in, *transform)) return MDL_ERROR;
    mdlElement_memcpy(out, in);
    transformElement(out, *transform);
    return MDL_SUCCESS;
}

int mdlElement_isFilled(const MSElementBuffer* element) noexcept {
    return element && headOf(element).properties & MDL_PROP_FILLED ? 1 : 0;
}

int mdlElement_stripAttributes(MSElementBuffer* out, const MSElementBuffer* in) noexcept {
    if (!out || !soundBytes(in)) return MDL_ERROR;
    ElementHead head = headOf(in);
    std::memmove(out->bytes, in->bytes, size_t{head.attributeOffset} * 2);
    head.size = head.attributeOffset;
    storeAt(out, 0, head);
    return MDL_SUCCESS;
}

int mdlElement_getSymbology(uint32_t* color, uint32_t* weight, int32_t* style,
                            const MSElementBuffer* element) noexcept {
    if (!element) return MDL_ERROR;
    const ElementHead head = headOf(element);
    if (color) *color = static_cast<uint32_t>(head.color);
    if (weight) *weight = static_cast<uint32_t>(int32_t{head.weight});
    if (style) *style = head.style;
    return MDL_SUCCESS;
}

int mdlElement_setSymbology(MSElementBuffer* element, const uint32_t* color, const uint32_t* weight,
                            const int32_t* style) noexcept {
    if (!element) return MDL_ERROR;
    if (weight && *weight != weightByLevel && *weight > uint32_t{std::numeric_limits<int16_t>::max()}) return MDL_ERROR;
    ElementHead head = headOf(element);
    if (style && *style != head.style) {
        dropLineStyleModifiers(element);
        head = headOf(element);
        head.style = *style;
    }
    if (color) head.color = static_cast<int32_t>(*color);
    if (weight) head.weight = static_cast<int16_t>(*weight);
    storeAt(element, 0, head);
    return MDL_SUCCESS;
}

int mdlElement_getProperties(uint32_t* level, uint32_t* graphicGroup, int32_t* elementClass, int32_t* locked,
                             int32_t* isNew, int32_t* modified, int32_t* viewIndependent, int32_t* hole,
                             const MSElementBuffer* element) noexcept {
    if (!element) return MDL_ERROR;
    const ElementHead head = headOf(element);
    if (level) *level = head.level;
    if (graphicGroup) *graphicGroup = head.graphicGroup;
    if (elementClass) *elementClass = head.properties & MDL_PROP_CLASS;
    getFlag(locked, head.properties, MDL_PROP_LOCKED);
    getFlag(isNew, head.properties, MDL_PROP_NEW);
    getFlag(modified, head.properties, MDL_PROP_MODIFIED);
    getFlag(viewIndependent, head.properties, MDL_PROP_VIEW_INDEPENDENT);
    getFlag(hole, head.properties, MDL_PROP_HOLE);
    return MDL_SUCCESS;
}

int mdlElement_setProperties(MSElementBuffer* element, const uint32_t* level, const uint32_t* graphicGroup,
                             const int32_t* elementClass, const int32_t* locked, const int32_t* isNew,
                             const int32_t* modified, const int32_t* viewIndependent, const int32_t* hole) noexcept {
    if (!element || (elementClass && (*elementClass & ~MDL_PROP_CLASS))) return MDL_ERROR;
    ElementHead head = headOf(element);
    if (level) head.level = *level;
    if (graphicGroup) head.graphicGroup = *graphicGroup;
    if (elementClass) head.properties = static_cast<uint16_t>((head.properties & ~MDL_PROP_CLASS) | *elementClass);
    setFlag(head.properties, MDL_PROP_LOCKED, locked);
    setFlag(head.properties, MDL_PROP_NEW, isNew);
    setFlag(head.properties, MDL_PROP_MODIFIED, modified);
    setFlag(head.properties, MDL_PROP_VIEW_INDEPENDENT, viewIndependent);
    setFlag(head.properties, MDL_PROP_HOLE, hole);
    storeAt(element, 0, head);
    return MDL_SUCCESS;
}

int mdlElement_setLineStyle(MSElementBuffer* element, const char* name, const LineStyleParams* params) noexcept {
    if (!soundBytes(element)) return MDL_ERROR;
    int32_t number = headOf(element).style;
    if (!name && number >= 0) return MDL_ERROR;
    if (name && drawing().lineStyleFromName(&number, name, nullptr) != MDL_SUCCESS) return MDL_ERROR;
    LineStyleLinkage style = params ? linkageOf(*params) : LineStyleLinkage{};
    setWordsOf(style);
    LineStyleLinkage before{};
    readLineStyleLinkage(element, before);
    const size_t bytes = soundBytes(element) - mdlLinkage_getWords(&before.header) * 2;
    if (params && bytes + mdlLinkage_getWords(&style.header) * 2 > MDL_ELEMENT_BYTES) return MDL_ERROR;
    dropLineStyleModifiers(element);
    ElementHead head = headOf(element);
    head.style = number;
    storeAt(element, 0, head);
    if (!params) return MDL_SUCCESS;
    return mdlLinkage_appendToElement(element, &style.header, &style.modifiers, 0, 0);
}

int mdlElement_getLineStyleParams(LineStyleParams* params, const MSElementBuffer* element) noexcept {
    LineStyleLinkage style;
    if (!params || !element || !readLineStyleLinkage(element, style)) return MDL_ERROR;
    *params = paramsOf(style);
    return MDL_SUCCESS;
}

int mdlElement_getLineStyle(int32_t* styleP, LineStyleParams* params, const MSElementBuffer* element) noexcept {
    if (!soundBytes(element) || headOf(element).style >= 0) return MDL_ERROR;
    LineStyleParams own{0, 1, 0, 0, 1, 1};
    mdlElement_getLineStyleParams(&own, element);
    const auto fallBack = [&](uint32_t modifier, double& scale) {
        if (own.modifiers & modifier) return;
        scale = own.modifiers & LINE_STYLE_SCALE ? own.scale : 1;
        if (own.modifiers & LINE_STYLE_SCALE) own.modifiers |= modifier;
    };
    fallBack(LINE_STYLE_DASH_SCALE, own.dashScale);
    fallBack(LINE_STYLE_GAP_SCALE, own.gapScale);
    if (styleP) *styleP = headOf(element).style;
    if (params) *params = own;
    return MDL_SUCCESS;
}
