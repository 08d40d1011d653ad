#include "mchost/element/layout.h"

#include <cmath>
#include <numbers>

#include "mchost/element/range.h"

namespace host {
namespace {

// Bytes of the body: what lies between head and linkages.
size_t bodyBytes(const MSElementBuffer* element) {
    const ElementHead head = headOf(element);
    if (!elementIsSound(element, size_t{head.size} * 2)) return 0;
    return size_t{head.attributeOffset} * 2 - headBytes;
}

template <class Body>
std::optional<Body> bodyOf(const MSElementBuffer* element, size_t available) {
    if (available < sizeof(Body)) return {};
    return loadAt<Body>(element, headBytes);
}

PointRuns textRuns(size_t at) {
    return {{{at + offsetof(TextBody, origin), 1, false}, {at + offsetof(TextBody, widthAxis), 2, true}}, 2};
}

}  // namespace

bool isArcSweep(double start, double sweep) {
    constexpr double turn = 2 * std::numbers::pi + 1e-9;
    return std::isfinite(start) && sweep != 0 && std::fabs(sweep) <= turn;
}

bool elementIsSound(const void* bytes, size_t available) {
    if (!bytes || available < headBytes) return false;
    ElementHead head;
    std::memcpy(&head, bytes, sizeof head);
    const size_t size = size_t{head.size} * 2, attributes = size_t{head.attributeOffset} * 2;
    return head.type != 0 && head.zero == 0 && size >= headBytes && size <= MDL_ELEMENT_BYTES && size <= available &&
           attributes >= headBytes && attributes <= size;
}

std::optional<PointsView> verticesOf(const MSElementBuffer* element) {
    const uint16_t type = headOf(element).type;
    const size_t available = bodyBytes(element);
    const uint8_t* body = element->bytes + headBytes;
    if (type == MDL_LINE) {
        if (available < sizeof(LineBody)) return {};
        return PointsView(body, 2);
    }
    if (type != MDL_LINE_STRING && type != MDL_SHAPE) return {};
    const auto vertices = bodyOf<VerticesBody>(element, available);
    if (!vertices || vertices->count == 0 || vertices->count > MDL_MAX_POINTS) return {};
    if (available < sizeof *vertices + vertices->count * sizeof(Point3d)) return {};
    return PointsView(body + sizeof *vertices, vertices->count);
}

std::optional<ArcBody> arcOf(const MSElementBuffer* element) {
    const uint16_t type = headOf(element).type;
    if (type == MDL_ARC) {
        const auto arc = bodyOf<ArcBody>(element, bodyBytes(element));
        if (!arc || !isArcSweep(arc->start, arc->sweep)) return {};
        return arc;
    }
    if (type != MDL_ELLIPSE) return {};
    const auto ellipse = bodyOf<EllipseBody>(element, bodyBytes(element));
    if (!ellipse) return {};
    return ArcBody{*ellipse, 0, 2 * std::numbers::pi};
}

std::optional<TextView> textOf(const MSElementBuffer* element) {
    if (headOf(element).type != MDL_TEXT) return {};
    const size_t available = bodyBytes(element);
    const auto body = bodyOf<TextBody>(element, available);
    if (!body || body->count > maxTextCharacters || available < sizeof *body + body->count * 2u) return {};
    return TextView{*body, element->bytes + headBytes + sizeof *body};
}

std::optional<TagView> tagOf(const MSElementBuffer* element) {
    if (headOf(element).type != MDL_TAG) return {};
    const size_t available = bodyBytes(element);
    const auto body = bodyOf<TagBody>(element, available);
    if (!body || body->text.count > maxTextCharacters || available < sizeof *body + body->text.count * 2u) return {};
    return TagView{*body, element->bytes + headBytes + sizeof *body};
}

std::optional<TextView> shownTextOf(const MSElementBuffer* element) {
    const auto tag = tagOf(element);
    if (!tag) return textOf(element);
    return tag->body.display != 0 ? std::optional(tag->text()) : std::nullopt;
}

std::optional<PartsView> partsOf(const MSElementBuffer* element) {
    if (!isCompoundType(headOf(element).type)) return {};
    const size_t available = bodyBytes(element);
    const auto body = bodyOf<PartsBody>(element, available);
    if (!body || body->count == 0) return {};
    const uint8_t* const first = element->bytes + headBytes + sizeof *body;
    size_t left = available - sizeof *body;
    const PartsView parts(first, body->count);
    for (const MSElementBuffer* part : parts) {
        if (!elementIsSound(part, left) || !isPlainType(headOf(part).type)) return {};
        const size_t bytes = filledToWord(size_t{headOf(part).size} * 2);
        if (bytes > left) return {};
        left -= bytes;
    }
    return parts;
}

std::optional<TextBody> textNodeOf(const MSElementBuffer* element) {
    if (headOf(element).type != MDL_TEXT_NODE) return {};
    const auto node = bodyOf<TextNodeBody>(element, bodyBytes(element));
    return node ? std::optional(node->lines) : std::nullopt;
}

std::optional<CurveView> curveOf(const MSElementBuffer* element) {
    if (headOf(element).type != MDL_BSPLINE) return {};
    const size_t available = bodyBytes(element);
    const auto body = bodyOf<CurveBody>(element, available);
    constexpr int32_t mostPoles = MDL_ELEMENT_BYTES / sizeof(Point3d);
    if (!body || body->order < 2 || body->order > 15 || body->poleCount < body->order || body->poleCount > mostPoles)
        return {};
    const auto poles = static_cast<uint32_t>(body->poleCount), knots = poles + static_cast<uint32_t>(body->order);
    const size_t atKnots = sizeof *body + poles * sizeof(Point3d), atWeights = atKnots + knots * sizeof(double);
    if (available < atWeights + (body->rational ? poles * sizeof(double) : 0)) return {};
    const uint8_t* bytes = element->bytes + headBytes;
    return CurveView{*body, PointsView(bytes + sizeof *body, poles), bytes + atKnots,
                     body->rational ? bytes + atWeights : nullptr};
}

PointRuns pointRunsOf(const MSElementBuffer* element) {
    switch (headOf(element).type) {
        case MDL_LINE:
        case MDL_LINE_STRING:
        case MDL_SHAPE:
            if (const auto vertices = verticesOf(element)) {
                const size_t ahead = headOf(element).type == MDL_LINE ? 0 : sizeof(VerticesBody);
                return {{{headBytes + ahead, vertices->size(), false}}, 1};
            }
            break;
        case MDL_ELLIPSE:
        case MDL_ARC:
            if (arcOf(element))
                return {{{headBytes, 1, false}, {headBytes + offsetof(EllipseBody, axis0), 2, true}}, 2};
            break;
        case MDL_TEXT:
            if (textOf(element)) return textRuns(headBytes);
            break;
        case MDL_TAG:
            if (tagOf(element)) return textRuns(headBytes + offsetof(TagBody, text));
            break;
        case MDL_TEXT_NODE:
            if (textNodeOf(element)) return textRuns(headBytes + offsetof(TextNodeBody, lines));
            break;
        case MDL_BSPLINE:
            if (const auto curve = curveOf(element))
                return {{{headBytes + sizeof(CurveBody), curve->poles.size(), false}}, 1};
            break;
        case MDL_CELL_HEADER:
            if (const auto cell = bodyOf<CellBody3d>(element, bodyBytes(element)); cell && cell->is3d)
                return {{{headBytes + offsetof(CellBody3d, axes), 3, true},
                         {headBytes + offsetof(CellBody3d, origin), 1, false}},
                        2};
            break;
        default: break;
    }
    return {};
}

}  // namespace host
