// Cell headers: origin, range, name and description.
#include <cwchar>
#include <optional>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/element/build.h"
#include "mchost/element/cell.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"

using namespace host;

namespace {

constexpr size_t mostCharacters = 511;
constexpr size_t linkageBytes = MDL_MAX_LINKAGE_WORDS * 2;

bool isCell(const MSElementBuffer* element) {
    return element && headOf(element).type == MDL_CELL_HEADER;
}

// A text in a linkage: header, count of characters, then 16-bit characters up to a multiple of 8 bytes.
constexpr size_t charactersAt = 6;

std::vector<uint8_t> textLinkage(uint16_t id, const wchar_t* text, size_t count) {
    const size_t bytes = (charactersAt + count * 2 + 7) & ~size_t{7};
    std::vector<uint8_t> linkage(bytes);
    LinkageHeader header{MDL_LINKAGE_USER, id};
    mdlLinkage_setWords(&header, static_cast<uint32_t>(bytes / 2));
    const auto stored = static_cast<uint16_t>(count);
    std::memcpy(linkage.data(), &header, sizeof header);
    std::memcpy(linkage.data() + sizeof header, &stored, sizeof stored);
    for (size_t i = 0; i < count; ++i) {
        const auto unit = static_cast<uint16_t>(text[i] >= 0 && text[i] <= 0xFFFF ? text[i] : '?');
        std::memcpy(linkage.data() + charactersAt + i * 2, &unit, sizeof unit);
    }
    return linkage;
}

int setText(MSElementBuffer* element, uint16_t id, const wchar_t* text) {
    const size_t count = text ? std::wcslen(text) : 0;
    if (!isCell(element) || !text || count > mostCharacters) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto linkage = textLinkage(id, text, count);
        if (mdlElement_bytes(element) + linkage.size() > MDL_ELEMENT_BYTES) return MDL_ERROR;
        if (mdlLinkage_deleteFromElement(element, id, nullptr, nullptr, nullptr, nullptr) != MDL_SUCCESS)
            return MDL_ERROR;
        LinkageHeader header;
        std::memcpy(&header, linkage.data(), sizeof header);
        return mdlLinkage_appendToElement(element, &header, linkage.data() + sizeof header, 0, 0);
    });
}

int getText(wchar_t* text, int32_t size, const MSElementBuffer* element, uint16_t id) {
    uint8_t linkage[linkageBytes];
    uint32_t words = 0;
    if (!isCell(element) || !text || size < 1) return MDL_ERROR;
    if (mdlLinkage_extractFromElement(linkage, element, id, nullptr, nullptr, &words, nullptr) != MDL_SUCCESS)
        return MDL_ERROR;
    uint16_t count;
    std::memcpy(&count, linkage + sizeof(LinkageHeader), sizeof count);
    if (charactersAt + count * 2u > words * 2) return MDL_ERROR;
    const size_t copied = std::min<size_t>(count, static_cast<size_t>(size) - 1);
    for (size_t i = 0; i < copied; ++i) {
        uint16_t unit;
        std::memcpy(&unit, linkage + charactersAt + i * 2, sizeof unit);
        text[i] = unit;
    }
    text[copied] = 0;
    return MDL_SUCCESS;
}

CellBody3d body3d(const Point3d& origin) {
    CellBody3d body{};
    body.is3d = 1;
    body.axes[0].x = body.axes[1].y = body.axes[2].z = 1;
    body.origin = body.low = body.high = origin;
    return body;
}

CellBody2d body2d(const Point3d& o) {
    return {0, 0, {}, {o.x, o.y}, {o.x, o.y}, {{1, 0}, {0, 1}}, {o.x, o.y}};
}

// The body of a cell header in its 3D form; nothing when the element isn't one or is too small.
std::optional<CellBody3d> bodyOf(const MSElementBuffer* element) {
    if (!isCell(element)) return {};
    const size_t end = size_t{headOf(element).attributeOffset} * 2;
    if (end < headBytes + sizeof(CellBody2d)) return {};
    const auto flat = loadAt<CellBody2d>(element, headBytes);
    if (flat.is3d == 0) {
        CellBody3d body = body3d({flat.origin[0], flat.origin[1], 0});
        for (int i = 0; i < 2; ++i) body.axes[i] = {flat.axes[i][0], flat.axes[i][1], 0};
        return body;
    }
    if (end < headBytes + sizeof(CellBody3d)) return {};
    return loadAt<CellBody3d>(element, headBytes);
}

CellBody2d flattened(const CellBody3d& body) {
    return {0,
            0,
            {},
            {body.low.x, body.low.y},
            {body.high.x, body.high.y},
            {{body.axes[0].x, body.axes[0].y}, {body.axes[1].x, body.axes[1].y}},
            {body.origin.x, body.origin.y}};
}

// A cell header that has a body, which stays of its kind.
void storeRange(MSElementBuffer* element, const Range3d& range) {
    CellBody3d body = *bodyOf(element);
    body.low = range.low, body.high = range.high;
    if (loadAt<uint32_t>(element, headBytes) == 0)
        storeAt(element, headBytes, flattened(body));
    else
        storeAt(element, headBytes, body);
}

int setRanges(ElementDescr* ed) {
    int status = MDL_SUCCESS;
    for (ElementDescr* node = ed; node; node = node->next) {
        if (node->firstChild && setRanges(node->firstChild) != MDL_SUCCESS) status = MDL_ERROR;
        if (!isCell(node->element)) continue;
        Range3d range;
        const bool known = bodyOf(node->element) && node->firstChild &&
                           mdlElmdscr_computeRange(&range.low, &range.high, node->firstChild, nullptr) == MDL_SUCCESS;
        if (known)
            storeRange(node->element, range);
        else
            status = MDL_ERROR;
    }
    return status;
}

}  // namespace

bool host::convertCellHeader(MSElementBuffer* out, const MSElementBuffer* in, bool is3d, double axisFactor) {
    const auto body = bodyOf(in);
    if (!body) return false;
    const size_t linkagesAt = size_t{headOf(in).attributeOffset} * 2, bytes = mdlElement_bytes(in);
    const size_t bodyBytes = is3d ? sizeof(CellBody3d) : sizeof(CellBody2d);
    if (bytes == 0 || headBytes + bodyBytes + (bytes - linkagesAt) > MDL_ELEMENT_BYTES) return false;
    ElementHead head = headOf(in);
    head.attributeOffset = static_cast<uint32_t>((headBytes + bodyBytes) / 2);
    head.size = head.attributeOffset + static_cast<uint32_t>((bytes - linkagesAt) / 2);
    std::memcpy(out->bytes + headBytes + bodyBytes, in->bytes + linkagesAt, bytes - linkagesAt);
    storeAt(out, 0, head);
    CellBody3d converted = *body;
    converted.is3d = 1;
    for (Point3d& axis : converted.axes) axis = axis * axisFactor;
    if (is3d)
        storeAt(out, headBytes, converted);
    else
        storeAt(out, headBytes, flattened(converted));
    return true;
}

int mdlCell_setRange(ElementDescr* ed, ModelRef*) noexcept {
    return ed ? setRanges(ed) : int{MDL_ERROR};
}

int mdlCell_create(MSElementBuffer* out, const wchar_t* name, const Point3d* origin, int32_t is3d) noexcept {
    if (!out || !name || std::wcslen(name) > mostCharacters) return MDL_ERROR;
    const Point3d at = applyToPoint(currentToWorld(), origin ? *origin : Point3d{});
    if (!isFinite(at)) return MDL_ERROR;
    NewElement made(out, nullptr, MDL_CELL_HEADER);
    const int status = is3d ? finish(std::move(made), body3d(at)) : finish(std::move(made), body2d(at));
    return status == MDL_SUCCESS ? mdlCell_setName(out, name) : status;
}

int mdlCell_extract(Point3d* origin, RotMatrix* matrix, const MSElementBuffer* element) noexcept {
    const auto body = bodyOf(element);
    if (!body) return MDL_ERROR;
    if (origin) *origin = applyToPoint(currentFromWorld(), body->origin);
    if (matrix) *matrix = fromColumns(body->axes[0], body->axes[1], body->axes[2]);
    return MDL_SUCCESS;
}

int mdlCell_extractName(wchar_t* name, int32_t size, const MSElementBuffer* element) noexcept {
    return getText(name, size, element, linkageCellName);
}

int mdlCell_setName(MSElementBuffer* element, const wchar_t* name) noexcept {
    return setText(element, linkageCellName, name);
}

int mdlCell_extractDescription(wchar_t* description, int32_t size, const MSElementBuffer* element) noexcept {
    return getText(description, size, element, linkageCellDescription);
}

int mdlCell_setDescription(MSElementBuffer* element, const wchar_t* description) noexcept {
    return setText(element, linkageCellDescription, description);
}
