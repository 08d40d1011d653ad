// Text elements and their measures.
#include "host/element/text.h"

#include <cwchar>

#include "host/element/advances.h"
#include "host/element/build.h"
#include "host/mdl/system.h"
#include "host/mdl/text.h"
#include "host/system/charset.h"

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

double activeTextSize() {
    double uor = 0;
    return mdlParams_getActive(&uor, MDL_PARAM_TEXT_SIZE) == MDL_SUCCESS ? uor : 0;
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

RotMatrix rotationOf(const TextBody& body) {
    const Point3d x = body.widthAxis * (1 / length(body.widthAxis));
    const Point3d across = body.heightAxis - x * dot(body.heightAxis, x);
    const double l = length(across);
    const Point3d y = l > 0 ? across * (1 / l) : Point3d{-x.y, x.x, 0};
    return fromColumns(x, y, cross(x, y));
}

// The text in the current system.
std::optional<TextView> currentText(const MSElementBuffer* element) {
    auto text = element ? textOf(element) : std::nullopt;
    if (!text) return {};
    const Transform& fromWorld = currentFromWorld();
    TextBody& body = text->body;
    body.origin = applyToPoint(fromWorld, body.origin);
    body.widthAxis = applyToVector(fromWorld, body.widthAxis);
    body.heightAxis = applyToVector(fromWorld, body.heightAxis);
    if (!isUsable(body)) return {};
    return text;
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

}  // namespace

unsigned char textCharacter(const TextView& text, uint32_t i) {
    uint16_t unit;
    std::memcpy(&unit, text.characters + i * sizeof unit, sizeof unit);
    return narrowCodeOf(unit).value_or('?');
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
                       int32_t) {
    const size_t count = text ? std::wcslen(text) : 0;
    if (!out || count > maxTextCharacters) return MDL_ERROR;
    const bool sized = size && size->mode == 1;
    if (sized && !(size->width > 0 && size->height > 0)) return MDL_ERROR;
    const RotMatrix& m = rotation ? *rotation : identityMatrix;
    TextBody body{};
    body.origin = applyToPoint(currentToWorld(), origin ? *origin : Point3d{});
    body.widthAxis = sizedAxis(column(m, 0), sized ? &size->width : nullptr);
    body.heightAxis = sizedAxis(column(m, 1), sized ? &size->height : nullptr);
    body.count = static_cast<uint16_t>(count);
    setActiveParams(body);
    const double height = length(applyToVector(currentFromWorld(), body.heightAxis));
    if (params) body.flags = 0, body.slant = 0, setParams(body, *params, height);
    if (!isUsable(body)) return MDL_ERROR;
    uint8_t* to = NewElement(out, templateP, MDL_TEXT).body(sizeof body + count * sizeof(uint16_t));
    if (!to) return MDL_ERROR;
    std::memcpy(to, &body, sizeof body);
    to += sizeof body;
    for (size_t i = 0; i < count; ++i) {
        const uint16_t unit = storedCharacter(text[i]);
        std::memcpy(to + i * sizeof unit, &unit, sizeof unit);
    }
    return MDL_SUCCESS;
}

int mdlText_extract(Point3d* lowerLeft, Point3d* origin, double* width, double* height, char* text, RotMatrix* rotation,
                    TextParams* params, int32_t* just, double* textHeight, double* charWidth,
                    const MSElementBuffer* element) {
    const auto found = currentText(element);
    if (!found) return MDL_ERROR;
    const TextBody& body = found->body;
    const TextBox box = textBox(*found);
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

int mdlText_extractShape(Point3d* shape, Point3d* origin, const MSElementBuffer* element, int32_t, int32_t) {
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
