// Changing the elements of a descriptor through a function.
#include "mchost/mdl/modify.h"

#include <memory>

#include "mchost/base/guard.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/layout.h"
#include "mchost/mdl/locate.h"

namespace host {
namespace {

// The run of a modification over a descriptor.
struct Modification {
    ModelRef* model;
    MdlModifyFunction function;
    void* userArg;
    bool headersToo;
    uint32_t only;  // the one component that is asked for; 0 all
    std::unique_ptr<MSElementBuffer> scratch = std::make_unique<MSElementBuffer>();
    int changes = 0;
    uint32_t number = 0;  // of the node that comes next: 0 the first, and then in depth-first order

    bool asksFor(const ElementDescr* node) {
        const uint32_t its = number++;
        return only != 0 ? its == only : headersToo || !isHeaderType(headOf(node->element).type);
    }
};

ElementDescr* lastOf(ElementDescr* ed) {
    while (ed->next) ed = ed->next;
    return ed;
}

// Puts the chain `by` in the place of the node, which is freed.
void replaceNode(ElementDescr* node, ElementDescr* by) {
    ElementDescr *last = lastOf(by), *header = node->parent, *before = node->previous, *behind = node->next;
    unlinkNode(node);
    for (ElementDescr* part = by; part; part = part->next) part->parent = header;
    by->previous = before;
    last->next = behind;
    if (before) before->next = by;
    if (behind) behind->previous = last;
    if (header && !before) header->firstChild = by;
    if (header && !behind) header->lastChild = last;
    mdlElmdscr_freeAll(&node);
}

void removeNode(ElementDescr* node) {
    unlinkNode(node);
    mdlElmdscr_freeAll(&node);
}

// Asks the function about one element and does what it answers. The result is what stands in the node's place: the
// node, the first of the new ones, or null.
ElementDescr* modifyNode(Modification& run, ElementDescr* node) {
    ElementDescr* replacement = nullptr;
    mdlElement_memcpy(run.scratch.get(), node->element);
    switch (run.function(run.scratch.get(), run.userArg, run.model, node, &replacement)) {
        case MDL_MODIFY_CHANGED:
            if (setNodeElement(node, run.scratch.get())) ++run.changes;
            return node;
        case MDL_MODIFY_REMOVE:
            removeNode(node);
            ++run.changes;
            return nullptr;
        case MDL_MODIFY_REPLACE_DESCR:
            if (!replacement || replacement == node) return node;
            replaceNode(node, replacement);
            ++run.changes;
            return replacement;
        default: return node;
    }
}

// The first node of the chain after the run, which may be another; null when none is left.
ElementDescr* modifyChain(Modification& run, ElementDescr* first) {
    for (ElementDescr *ed = first, *next; ed; ed = next) {
        next = ed->next;
        ElementDescr* const now = run.asksFor(ed) ? modifyNode(run, ed) : ed;
        if (now == ed) modifyChain(run, ed->firstChild);
        if (ed == first) first = now ? now : next;
    }
    return first;
}

}  // namespace
}  // namespace host

using namespace host;

int mdlModify_elementDescr2(ElementDescr** edPP, ModelRef* model, int32_t request, MdlModifyFunction f, void* userArg,
                            int32_t componentOffset) noexcept {
    const bool known = request == MDL_MODIFY_NO_HEADERS || request == MDL_MODIFY_ALL;
    const bool one = componentOffset > MDL_COMPONENT_OFFSET;
    if (!edPP || !*edPP || !f || !known || (componentOffset != 0 && !one)) return 0;
    return guarded<int>(0, [&] {
        const uint32_t only = one ? static_cast<uint32_t>(componentOffset - MDL_COMPONENT_OFFSET) : 0;
        Modification run{model, f, userArg, request == MDL_MODIFY_ALL, only};
        *edPP = modifyChain(run, *edPP);
        return run.changes;
    });
}
