#include "mchost/element/compound.h"

#include <memory>

#include "mchost/base/guard.h"
#include "mchost/element/build.h"
#include "mchost/element/linkage.h"
#include "mchost/element/range.h"
#include "mchost/mdl/compound.h"
#include "mchost/mdl/owned.hpp"

namespace host {
namespace {

void takeSymbology(MSElementBuffer* part, const MSElementBuffer* compound) {
    mdlLinkage_deleteFromElement(part, linkageLineStyle, nullptr, nullptr, nullptr, nullptr);
    ElementHead head = headOf(part);
    const ElementHead from = headOf(compound);
    head.color = from.color;
    head.weight = from.weight;
    head.style = from.style;
    storeAt(part, 0, head);
    LineStyleLinkage style{};
    if (readLineStyleLinkage(compound, style))
        mdlLinkage_appendToElement(part, &style.header, &style.modifiers, 0, 0);  // one that has no room goes without
}

bool addChain(NewParts& parts, const ElementDescr* ed) {
    for (; ed; ed = ed->next)
        if (ed->firstChild || !parts.add(ed->element)) return false;
    return true;
}

}  // namespace

void copyShownPart(MSElementBuffer* out, const MSElementBuffer* compound, const MSElementBuffer* part) {
    mdlElement_memcpy(out, part);
    ElementHead head = headOf(out);
    head.level = headOf(compound).level;
    storeAt(out, 0, head);
    if (headOf(compound).type != MDL_COMPOUND) takeSymbology(out, compound);
}

void copyShownText(MSElementBuffer* out, const MSElementBuffer* tag, const TextView& text) {
    const size_t characters = text.body.count * sizeof(uint16_t);
    uint8_t* const to = NewElement(out, tag, MDL_TEXT).body(sizeof text.body + characters);
    std::memcpy(to, &text.body, sizeof text.body);
    std::memcpy(to + sizeof text.body, text.characters, characters);
}

bool NewParts::add(const MSElementBuffer* part) {
    const size_t bytes = mdlElement_bytes(part);
    if (bytes == 0 || !isPlainType(headOf(part).type)) return false;
    const size_t at = bytes_.size();
    bytes_.resize(at + filledToWord(bytes));
    std::memcpy(bytes_.data() + at, part->bytes, bytes);
    ++count_;
    return true;
}

int NewParts::store(MSElementBuffer* out, const MSElementBuffer* templateP, int type) const {
    if (count_ == 0) return MDL_ERROR;
    const PartsBody body{count_, 0};
    uint8_t* const to = NewElement(out, templateP, type).body(sizeof body + bytes_.size());
    if (!to) return MDL_ERROR;
    std::memcpy(to, &body, sizeof body);
    std::memcpy(to + sizeof body, bytes_.data(), bytes_.size());
    return MDL_SUCCESS;
}

}  // namespace host

using namespace host;

int mdlElmdscr_fromCompoundElement(ElementDescr** edPP, const MSElementBuffer* element, ModelRef* model) noexcept {
    if (!edPP) return MDL_ERROR;
    *edPP = nullptr;
    if (!element || !partsOf(element)) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto scratch = std::make_unique_for_overwrite<MSElementBuffer>();
        mdl::Descr made;
        bool whole = true;
        forEachShown(element, scratch.get(), [&](const MSElementBuffer* shown) {
            const int status =
                made ? mdlElmdscr_appendElement(made.get(), shown) : mdlElmdscr_new(made.out(), model, shown);
            whole = whole && status == MDL_SUCCESS;
        });
        if (!whole) return MDL_ERROR;
        std::swap(*edPP, *made.out());
        return MDL_SUCCESS;
    });
}

int mdlCompound_create(MSElementBuffer* out, const MSElementBuffer* templateP, const ElementDescr* parts) noexcept {
    if (!out) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        NewParts made;
        return addChain(made, parts) ? made.store(out, templateP, MDL_COMPOUND) : int{MDL_ERROR};
    });
}
