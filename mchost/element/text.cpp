// Text elements and their measures.
#include "mchost/element/text.h"

#include <algorithm>
#include <cwchar>
#include <span>
#include <vector>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/element/advances.h"
#include "mchost/element/build.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"

namespace host {
namespace {

constexpr int32_t leftBase = 2;

// Where the justification's point lies in the box: shares of its width and height. Codes beyond the table count as at
// the left on the base line.
struct Anchor {
    double along, up;
};
constexpr Anchor anchorOf(int32_t just) {
    if (just < 0 || just > 14) return {0, 0};
    const double along = just < 6 ? 0 : just < 9 ? 0.5 : 1;
    return {along, (2 - just % 3) * 0.5};
}
static_assert(anchorOf(0).up == 1 && anchorOf(7).along == 0.5 && anchorOf(7).up == 0.5 && anchorOf(14).along == 1);

uint16_t storedCharacter(wchar_t c) {
    return c > 0 && c <= 0xFFFF ? static_cast<uint16_t>(c) : '?';
}

// A vector along `direction` of the current system: `size` units of it, or the active text size without one.
Point3d sizedAxis(const Point3d& direction, const double* size) {
    const Point3d unit = applyToVector(currentToWorld(), direction);
    if (size) return unit * *size;
    const double l = length(unit);
    return l > 0 ? unit * (activeTextSize() / l) : Point3d{};
}

void setActiveParams(TextBody& body) {
    int32_t font = 0;
    body.font = mdlParams_getActive(&font, MDL_PARAM_FONT) == MDL_SUCCESS ? font : 0;
    body.just = leftBase;
    body.textStyle = body.styleFields = -1;
    if (tcbP && std::fabs(tcbP->activeSlant) > 1e-8) {
        body.flags = TEXT_FLAG_SLANT;
        body.slant = tcbP->activeSlant * (3.14159265358979323846 / 180);
    }
}

void setParams(TextBody& body, const TextParams& params, double height) {
    if (params.font >= 0) body.font = params.font;
    if (params.just >= 0) body.just = params.just;
    body.textStyle = params.textStyle;
    body.styleFields = params.styleFields;
    body.flags = params.flags;
    body.slant = params.slant;
    body.spacing = height > 0 ? params.lineSpacing / height : 0;
}

bool isUsable(const TextBody& body) {
    return isFinite(body.origin) && isFinite(body.widthAxis) && isFinite(body.heightAxis) &&
           dot(body.widthAxis, body.widthAxis) > 0 && dot(body.heightAxis, body.heightAxis) > 0 &&
           std::isfinite(body.slant) && std::isfinite(body.spacing);
}

// Width of the text in character widths.
double widthOf(const TextView& text) {
    uint32_t thousandths = 0;
    for (uint32_t i = 0; i < text.body.count; ++i) thousandths += helveticaAdvances[textCharacter(text, i)];
    return thousandths * (fontSizePerHeight / 1000);
}

// The text of a text element in the current system.
std::optional<TextView> currentText(const MSElementBuffer* element) {
    const auto text = element ? textOf(element) : std::nullopt;
    return text ? inCurrentSystem(*text) : std::nullopt;
}

void setAxes(TextBody& body, const RotMatrix* rotation, const TextSize* size) {
    const RotMatrix& m = rotation ? *rotation : identityMatrix;
    body.widthAxis = sizedAxis(column(m, 0), size ? &size->width : nullptr);
    body.heightAxis = sizedAxis(column(m, 1), size ? &size->height : nullptr);
}

double currentHeight(const TextBody& body) {
    return length(applyToVector(currentFromWorld(), body.heightAxis));
}

// The body of a template of which what is given has changed.
std::optional<TextBody> changedTextBody(TextBody body, const Point3d* origin, const RotMatrix* rotation,
                                        const TextSize* size, const TextParams* params) {
    const bool sized = size && size->mode == 1;
    if (sized && !(size->width > 0 && size->height > 0)) return {};
    if (origin) body.origin = applyToPoint(currentToWorld(), *origin);
    if (rotation || sized) {
        TextBody now = body;
        now.widthAxis = applyToVector(currentFromWorld(), body.widthAxis);
        now.heightAxis = applyToVector(currentFromWorld(), body.heightAxis);
        if (!isUsable(now)) return {};
        const RotMatrix turned = rotation ? *rotation : rotationOf(now);
        const TextSize measure = sized ? *size : sizeOf(now);
        setAxes(body, &turned, &measure);
    }
    if (params) setParams(body, *params, currentHeight(body));
    return isUsable(body) ? std::optional(body) : std::nullopt;
}

// The text with head and style of the template. `body` is usable.
int buildText(MSElementBuffer* out, const MSElementBuffer* templateP, TextBody body, std::span<const uint16_t> units) {
    body.count = static_cast<uint16_t>(units.size());
    uint8_t* to = NewElement(out, templateP, MDL_TEXT).body(sizeof body + units.size_bytes());
    if (!to) return MDL_ERROR;
    std::memcpy(to, &body, sizeof body);
    if (!units.empty()) std::memcpy(to + sizeof body, units.data(), units.size_bytes());
    return MDL_SUCCESS;
}

}  // namespace

double activeTextSize() {
    double uor = 0;
    return mdlParams_getActive(&uor, MDL_PARAM_TEXT_SIZE) == MDL_SUCCESS ? uor : 0;
}

void storeCharacters(uint8_t* to, std::string_view text) {
    for (const char c : text) {
        const auto unit = static_cast<uint16_t>(unicodeOf(static_cast<unsigned char>(c)));
        std::memcpy(to, &unit, sizeof unit);
        to += sizeof unit;
    }
}

RotMatrix rotationOf(const TextBody& body) {
    const Point3d x = body.widthAxis * (1 / length(body.widthAxis));
    const Point3d across = body.heightAxis - x * dot(body.heightAxis, x);
    const double l = length(across);
    const Point3d y = l > 0 ? across * (1 / l) : Point3d{-x.y, x.x, 0};
    return fromColumns(x, y, cross(x, y));
}

std::optional<TextView> inCurrentSystem(TextView text) {
    const Transform& fromWorld = currentFromWorld();
    TextBody& body = text.body;
    body.origin = applyToPoint(fromWorld, body.origin);
    body.widthAxis = applyToVector(fromWorld, body.widthAxis);
    body.heightAxis = applyToVector(fromWorld, body.heightAxis);
    return isUsable(body) ? std::optional(text) : std::nullopt;
}

TextParams paramsOf(const TextBody& body) {
    return {body.font,
            body.just,
            body.textStyle,
            body.styleFields,
            body.flags,
            body.slant,
            body.spacing * length(body.heightAxis)};
}

TextSize sizeOf(const TextBody& body) {
    const double width = length(body.widthAxis), height = length(body.heightAxis);
    return {1, width, height, width / height};
}

std::optional<TextBody> newTextBody(const Point3d* origin, const RotMatrix* rotation, const TextSize* size,
                                    const TextParams* params) {
    const bool sized = size && size->mode == 1;
    if (sized && !(size->width > 0 && size->height > 0)) return {};
    TextBody body{};
    body.origin = applyToPoint(currentToWorld(), origin ? *origin : Point3d{});
    setAxes(body, rotation, sized ? size : nullptr);
    setActiveParams(body);
    if (params) body.flags = 0, body.slant = 0, setParams(body, *params, currentHeight(body));
    return isUsable(body) ? std::optional(body) : std::nullopt;
}

uint16_t textUnit(const TextView& text, uint32_t i) {
    uint16_t unit;
    std::memcpy(&unit, text.characters + i * sizeof unit, sizeof unit);
    return unit;
}

unsigned char textCharacter(const TextView& text, uint32_t i) {
    const uint16_t unit = textUnit(text, i);
    return unit < 0x80 ? static_cast<unsigned char>(unit) : narrowCodeOf(unit).value_or('?');
}

TextBox textBox(const TextView& text) {
    const TextBody& body = text.body;
    const Point3d along = body.widthAxis * widthOf(text);
    const Anchor anchor = anchorOf(body.just);
    return {body.origin - along * anchor.along - body.heightAxis * anchor.up, along, body.heightAxis};
}

}  // namespace host

using namespace host;

int mdlText_createWide(MSElementBuffer* out, const MSElementBuffer* templateP, const wchar_t* text,
                       const Point3d* origin, const RotMatrix* rotation, const TextSize* size, const TextParams* params,
                       int32_t) noexcept {
    const size_t count = text ? std::wcslen(text) : 0;
    if (!out || count > maxTextCharacters) return MDL_ERROR;
    const auto body = newTextBody(origin, rotation, size, params);
    uint16_t units[maxTextCharacters];
    std::transform(text, text + count, units, storedCharacter);
    return body ? buildText(out, templateP, *body, {units, count}) : int{MDL_ERROR};
}

int mdlText_create(MSElementBuffer* out, const MSElementBuffer* templateP, const char* text, const Point3d* origin,
                   const RotMatrix* rotation, const TextSize* size, const TextParams* params, int32_t) noexcept {
    const size_t count = text ? strnlen(text, maxTextCharacters + 1) : 0;
    if (!out || count > maxTextCharacters) return MDL_ERROR;
    uint16_t units[maxTextCharacters];
    std::transform(text, text + count, units,
                   [](char c) { return static_cast<uint16_t>(unicodeOf(static_cast<unsigned char>(c))); });
    const auto old = templateP ? textOf(templateP) : std::nullopt;
    const auto body =
        old ? changedTextBody(old->body, origin, rotation, size, params) : newTextBody(origin, rotation, size, params);
    if (!body) return MDL_ERROR;
    if (!old) return buildText(out, templateP, *body, {units, count});
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const ElementHead head = headOf(templateP);
        const std::vector<uint8_t> linkages(templateP->bytes + 2 * head.attributeOffset,
                                            templateP->bytes + 2 * head.size);
        const size_t end = headBytes + filledToWord(sizeof *body + count * sizeof(uint16_t));
        if (end + linkages.size() > MDL_ELEMENT_BYTES) return MDL_ERROR;
        if (buildText(out, templateP, *body, {units, count}) != MDL_SUCCESS) return MDL_ERROR;
        std::copy(linkages.begin(), linkages.end(), out->bytes + end);
        ElementHead made = headOf(out);
        made.size = made.attributeOffset + static_cast<uint32_t>(linkages.size() / 2);
        storeAt(out, 0, made);
        return MDL_SUCCESS;
    });
}

int mdlText_extract(Point3d* lowerLeft, Point3d* origin, double* width, double* height, char* text, RotMatrix* rotation,
                    TextParams* params, int32_t* just, double* textHeight, double* charWidth,
                    const MSElementBuffer* element) noexcept {
    const auto found = currentText(element);
    if (!found) return MDL_ERROR;
    const TextBody& body = found->body;
    const TextBox box = lowerLeft || width || height ? textBox(*found) : TextBox{};
    if (lowerLeft) *lowerLeft = box.lowerLeft;
    if (origin) *origin = body.origin;
    if (width) *width = length(box.along);
    if (height) *height = length(box.up);
    for (uint32_t i = 0; text && i < body.count; ++i) text[i] = static_cast<char>(textCharacter(*found, i));
    if (text) text[body.count] = 0;
    if (rotation) *rotation = rotationOf(body);
    if (params) *params = paramsOf(body);
    if (just) *just = body.just;
    if (textHeight) *textHeight = length(body.heightAxis);
    if (charWidth) *charWidth = length(body.widthAxis);
    return MDL_SUCCESS;
}

int mdlText_extractShape(Point3d* shape, Point3d* origin, const MSElementBuffer* element, int32_t, int32_t) noexcept {
    const auto found = currentText(element);
    if (!found) return MDL_ERROR;
    const auto [lowerLeft, along, up] = textBox(*found);
    if (shape) {
        shape[0] = shape[4] = lowerLeft;
        shape[1] = lowerLeft + along;
        shape[2] = shape[1] + up;
        shape[3] = lowerLeft + up;
    }
    if (origin) *origin = found->body.origin;
    return MDL_SUCCESS;
}

int mdlText_extractString(char* text, const MSElementBuffer* element) noexcept {
    const auto found = element ? textOf(element) : std::nullopt;
    if (!found) return MDL_ERROR;
    for (uint32_t i = 0; text && i < found->body.count; ++i) text[i] = static_cast<char>(textCharacter(*found, i));
    if (text) text[found->body.count] = 0;
    return MDL_SUCCESS;
}

int mdlText_extractWide(wchar_t* text, Point3d* origin, RotMatrix* rotation, TextSize* size, TextParams* params,
                        const MSElementBuffer* element) noexcept {
    const auto found = currentText(element);
    if (!found) return MDL_ERROR;
    const TextBody& body = found->body;
    for (uint32_t i = 0; text && i < body.count; ++i) text[i] = textUnit(*found, i);
    if (text) text[body.count] = 0;
    if (origin) *origin = body.origin;
    if (rotation) *rotation = rotationOf(body);
    if (size) *size = sizeOf(body);
    if (params) *params = paramsOf(body);
    return MDL_SUCCESS;
}
