// Closed elements and their fill.
#include "mchost/element/fill.h"

#include <memory>

#include "mchost/base/guard.h"
#include "mchost/element/descriptor.h"
#include "mchost/mdl/region.h"

namespace host {
namespace {

bool endsWhereItBegan(const MSElementBuffer* element) {
    const auto points = headOf(element).type == MDL_LINE_STRING ? verticesOf(element) : std::nullopt;
    if (!points || points->size() < 3) return false;
    const Point3d first = (*points)[0], last = (*points)[points->size() - 1];
    return first.x == last.x && first.y == last.y && first.z == last.z;
}

// The filled elements of the chain and their components, until one has no room.
int setFillColors(ElementDescr* ed, const uint32_t* color, MSElementBuffer* scratch) {
    int status = MDL_SUCCESS;
    for (; ed && status == MDL_SUCCESS; ed = ed->next) {
        if (mdlElement_isFilled(ed->element)) {
            mdlElement_memcpy(scratch, ed->element);
            status = mdlElement_setFillColor(scratch, color);
            if (status == MDL_SUCCESS && !setNodeElement(ed, scratch)) status = MDL_ERROR;
        }
        if (status == MDL_SUCCESS) status = setFillColors(ed->firstChild, color, scratch);
    }
    return status;
}

}  // namespace

std::optional<int32_t> fillColorOf(const MSElementBuffer* element) {
    FillColorLinkage fill;
    uint32_t words = 0, offset = 0;
    if (mdlLinkage_extractFromElement(nullptr, element, linkageFillColor, nullptr, nullptr, &words, &offset) !=
            MDL_SUCCESS ||
        words * 2 != sizeof fill)
        return {};
    return loadAt<FillColorLinkage>(element, offset * size_t{2}).color;
}

}  // namespace host

using namespace host;

int mdlElmdscr_isClosed(const ElementDescr* ed) noexcept {
    return ed && (isClosedType(headOf(ed->element).type) || endsWhereItBegan(ed->element)) ? 1 : 0;
}

int mdlElmdscr_addFill(ElementDescr* ed) noexcept {
    int status = MDL_ERROR;
    for (; ed; ed = ed->next) {
        if (!isClosedType(headOf(ed->element).type)) continue;
        ElementHead head = headOf(ed->element);
        head.properties |= MDL_PROP_FILLED;
        storeAt(ed->element, 0, head);
        status = MDL_SUCCESS;
    }
    return status;
}

int mdlElement_getFillColor(uint32_t* colorP, const MSElementBuffer* element) noexcept {
    if (!mdlElement_isFilled(element)) return MDL_ERROR;
    if (colorP) *colorP = static_cast<uint32_t>(fillColorOf(element).value_or(headOf(element).color));
    return MDL_SUCCESS;
}

int mdlElement_setFillColor(MSElementBuffer* element, const uint32_t* color) noexcept {
    if (!color || mdlElement_bytes(element) == 0 || !mdlElement_isFilled(element)) return MDL_ERROR;
    FillColorLinkage fill{{MDL_LINKAGE_USER, linkageFillColor}, static_cast<int32_t>(*color)};
    mdlLinkage_setWords(&fill.header, sizeof fill / 2);
    const size_t grows = fillColorOf(element) ? 0 : sizeof fill;
    if (mdlElement_bytes(element) + grows > MDL_ELEMENT_BYTES) return MDL_ERROR;
    mdlLinkage_deleteFromElement(element, linkageFillColor, nullptr, nullptr, nullptr, nullptr);
    return mdlLinkage_appendToElement(element, &fill.header, &fill.color, 0, 0);
}

int mdlElmdscr_setFillColor(ElementDescr* ed, const uint32_t* color) noexcept {
    if (!ed || !color) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&] {
        const auto scratch = std::make_unique_for_overwrite<MSElementBuffer>();
        return setFillColors(ed, color, scratch.get());
    });
}
