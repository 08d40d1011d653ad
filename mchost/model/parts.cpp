#include "mchost/model/parts.h"

#include <cstring>

#include "mchost/base/guard.h"
#include "mchost/mdl/locate.h"
#include "mchost/model/open_files.h"
#include "mchost/session/owned_state.h"

namespace host {
namespace {

struct LocatedElement {
    ElementPart part;
};

// A reference is no object: its bits are the model's serial and the position, so that one that is out of date can be
// told.
static_assert(sizeof(ElementRef*) == sizeof(uint64_t));
constexpr int positionBits = 32;

ElementRef* referenceTo(uint64_t model, FilePos position) {
    return reinterpret_cast<ElementRef*>(model << positionBits | position);
}

struct Referred {
    uint64_t serial;
    FilePos position;
    const Model* model;                        // null: it isn't open any more
    const MSElementBuffer* element = nullptr;  // null: there is none any more
};

Referred referredBy(const ElementRef* reference) {
    const auto bits = reinterpret_cast<uint64_t>(reference);
    const auto position = static_cast<FilePos>(bits);
    const Model* model = openFiles().modelOf(bits >> positionBits);
    return {bits >> positionBits, position, model, model ? partAt(*model, position) : nullptr};
}

bool isComponentPosition(FilePos position) {
    return position > MDL_COMPONENT_OFFSET;
}

FilePos positionOf(const ElementPart& part) {
    return part.number == 0 ? part.position : part.position + MDL_COMPONENT_OFFSET + part.number;
}

}  // namespace

void setLocated(const ElementPart& part) {
    sessionState<LocatedElement>().part = part;
}

ElementPart located() {
    ElementPart& part = sessionState<LocatedElement>().part;
    const Model* model = part.model != 0 ? openFiles().modelOf(part.model) : nullptr;
    if (!model || !model->elements.isLive(part.position)) part = {};
    return part;
}

const MSElementBuffer* nodeOf(const RecordHead* record, uint32_t number) {
    const MSElementBuffer* found = nullptr;
    uint32_t at = 0;
    forEachNode(record, [&](const StoredNode& node) {
        if (at++ == number) found = node.element;
    });
    return found;
}

const MSElementBuffer* partAt(const Model& model, FilePos position) {
    if (!isComponentPosition(position)) return model.elements.element(position);
    const ElementPart part = located();
    const FilePos first = part.position + MDL_COMPONENT_OFFSET;
    if (part.model != model.serial || position <= first) return nullptr;
    return nodeOf(model.elements.record(part.position), position - first);
}

}  // namespace host

using namespace host;

FilePos mdlElement_getFilePos(int32_t which, ModelRef** modelP) noexcept {
    return guarded<FilePos>(0, [&]() -> FilePos {
        ElementPart part = located();
        if (part.model == 0 || (which != MDL_FILE_POS_ELEMENT && which != MDL_FILE_POS_COMPONENT)) return 0;
        if (modelP) *modelP = openFiles().placeOf(*openFiles().modelOf(part.model));
        if (which == MDL_FILE_POS_ELEMENT) part.number = 0;
        return positionOf(part);
    });
}

ElementRef* mdlModelRef_getElementRef(ModelRef* model, FilePos position) noexcept {
    return guarded<ElementRef*>(nullptr, [&]() -> ElementRef* {
        const Model* found = openModel(model);
        return found && partAt(*found, position) ? referenceTo(found->serial, position) : nullptr;
    });
}

int elementRef_isComplexComponent(ElementRef* element) noexcept {
    return guarded<int>(0, [&] {
        const Referred referred = referredBy(element);
        return referred.element && isComponentPosition(referred.position) ? 1 : 0;
    });
}

ElementRef* elementRef_getParent(ElementRef* element) noexcept {
    return guarded<ElementRef*>(nullptr, [&]() -> ElementRef* {
        const Referred referred = referredBy(element);
        const bool isComponent = referred.element && isComponentPosition(referred.position);
        return isComponent ? referenceTo(referred.serial, located().position) : nullptr;
    });
}

uint32_t elementRef_getElement(ElementRef* element, MSElementBuffer* out, uint32_t maxBytes) noexcept {
    return guarded<uint32_t>(0, [&]() -> uint32_t {
        const Referred referred = referredBy(element);
        if (!referred.element || !out) return 0;
        const uint32_t bytes = elementBytes(referred.element);
        if (bytes > maxBytes) return 0;
        std::memcpy(out, referred.element, bytes);
        return bytes;
    });
}
