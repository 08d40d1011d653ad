// Tags: values that are shown as texts.
#include "mchost/mdl/tag.h"

#include <charconv>
#include <string>

#include "mchost/base/guard.h"
#include "mchost/element/build.h"
#include "mchost/element/text.h"

namespace host {
namespace {

template <class Number, class... Format>
std::optional<std::string> digitsOf(Number value, Format... format) {
    char digits[maxTextCharacters];
    const auto [end, error] = std::to_chars(digits, std::end(digits), value, format...);
    return error == std::errc() ? std::optional<std::string>({digits, end}) : std::nullopt;
}

// What a tag of the value shows, in Windows-1252; nothing when it has no such text.
std::optional<std::string> shownText(const MdlTagValue& value) {
    switch (value.type) {
        case MDL_TAG_STRING: {
            const size_t length = strnlen(value.string, sizeof value.string);
            return length < sizeof value.string ? std::optional<std::string>({value.string, length}) : std::nullopt;
        }
        case MDL_TAG_SHORT: return digitsOf(value.shortValue);
        case MDL_TAG_LONG: return digitsOf(value.longValue);
        case MDL_TAG_DOUBLE:
            return std::isfinite(value.doubleValue) ? digitsOf(value.doubleValue, std::chars_format::fixed, 3)
                                                    : std::nullopt;
        default: return "";
    }
}

MdlTagValue valueOf(const TagView& tag) {
    const TagBody& body = tag.body;
    MdlTagValue value{};
    value.type = body.valueType;
    if (value.type == MDL_TAG_SHORT) value.shortValue = static_cast<int16_t>(body.integer);
    if (value.type == MDL_TAG_LONG) value.longValue = body.integer;
    if (value.type == MDL_TAG_DOUBLE) value.doubleValue = body.real;
    if (value.type == MDL_TAG_STRING)
        for (uint32_t i = 0; i < body.text.count; ++i)
            value.string[i] = static_cast<char>(textCharacter(tag.text(), i));
    return value;
}

}  // namespace
}  // namespace host

using namespace host;

int mdlTag_create(MSElementBuffer* out, const MSElementBuffer* templateP, const MdlTagValue* value,
                  const Point3d* origin, const RotMatrix* rotation, const TextSize* size, const TextParams* params,
                  int32_t display) noexcept {
    if (!out || !value) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto text = newTextBody(origin, rotation, size, params);
        const auto shown = shownText(*value);
        if (!text || !shown) return MDL_ERROR;
        TagBody body{value->type, display != 0, 0, 0, 0, *text};
        body.text.count = static_cast<uint16_t>(shown->size());
        if (value->type == MDL_TAG_SHORT) body.integer = value->shortValue;
        if (value->type == MDL_TAG_LONG) body.integer = value->longValue;
        if (value->type == MDL_TAG_DOUBLE) body.real = value->doubleValue;
        uint8_t* const to = NewElement(out, templateP, MDL_TAG).body(sizeof body + shown->size() * sizeof(uint16_t));
        if (!to) return MDL_ERROR;
        std::memcpy(to, &body, sizeof body);
        storeCharacters(to + sizeof body, *shown);
        return MDL_SUCCESS;
    });
}

int mdlTag_extract(Point3d* origin, TextSize* size, RotMatrix* rotation, int32_t* display, TextParams* params,
                   MdlTagValue* value, const MSElementBuffer* element, ModelRef*) noexcept {
    const auto tag = element ? tagOf(element) : std::nullopt;
    const auto text = tag ? inCurrentSystem(tag->text()) : std::nullopt;
    if (!text) return MDL_ERROR;
    const TextBody& body = text->body;
    if (origin) *origin = body.origin;
    if (size) *size = sizeOf(body);
    if (rotation) *rotation = rotationOf(body);
    if (display) *display = tag->body.display;
    if (params) *params = paramsOf(body);
    if (value) *value = valueOf(*tag);
    return MDL_SUCCESS;
}
