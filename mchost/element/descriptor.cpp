// Element descriptors: making, joining and freeing them.
#include "mchost/element/descriptor.h"

#include <cstddef>
#include <cstring>

#include "mchost/element/layout.h"
#include "mchost/element/range.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/system.h"
#include "mchost/session/drawing.h"

namespace host {
namespace {

// A node and its element lie in one block; an element that outgrows it gets a block of its own.
struct Node {
    ElementDescr open;   // what callers see; first, so that one pointer is both
    ElementDescr* tail;  // a late member of the chain that this begins: where to look for its end
    size_t capacity;     // bytes that open.element may take
};
static_assert(offsetof(Node, open) == 0 && sizeof(Node) % alignof(double) == 0);

Node* nodeOf(ElementDescr* ed) {
    return reinterpret_cast<Node*>(ed);
}
MSElementBuffer* inlineElement(Node* node) {
    return reinterpret_cast<MSElementBuffer*>(node + 1);
}

ElementDescr* makeNode(ModelRef* model, const MSElementBuffer* element) {
    const size_t bytes = mdlElement_bytes(element);
    if (bytes == 0) return nullptr;
    auto* node = static_cast<Node*>(dlmSystem_mdlMalloc(sizeof(Node) + bytes));
    if (!node) return nullptr;
    *node = {};
    node->open.model = model;
    node->open.element = inlineElement(node);
    node->capacity = bytes;
    std::memcpy(node->open.element->bytes, element->bytes, bytes);
    return &node->open;
}

void freeNode(ElementDescr* ed) {
    Node* node = nodeOf(ed);
    if (ed->element != inlineElement(node)) dlmSystem_mdlFree(ed->element);
    dlmSystem_mdlFree(node);
}

void freeChain(ElementDescr* ed) {
    while (ed) {
        ElementDescr* next = ed->next;
        freeChain(ed->firstChild);
        freeNode(ed);
        ed = next;
    }
}

// The end of the chain. Remembering how far it was found keeps appending to a long chain cheap.
ElementDescr* chainEnd(ElementDescr* ed) {
    Node* first = nodeOf(ed);
    ElementDescr* last = first->tail ? first->tail : ed;
    while (last->next) last = last->next;
    first->tail = last;
    return last;
}

// No member of the chain may remember a node that leaves it.
void forgetEnds(ElementDescr* ed) {
    while (ed->previous) ed = ed->previous;
    for (; ed; ed = ed->next) nodeOf(ed)->tail = nullptr;
}

void appendChildren(ElementDescr* header, ElementDescr* part) {
    ElementDescr* last = part;
    for (ElementDescr* child = part; child; child = child->next) child->parent = header, last = child;
    part->previous = header->lastChild;
    (header->lastChild ? header->lastChild->next : header->firstChild) = part;
    header->lastChild = last;
}

void appendToChain(ElementDescr* ed, ElementDescr* part) {
    if (ed->parent) {
        appendChildren(ed->parent, part);
        return;
    }
    ElementDescr* end = chainEnd(ed);
    end->next = part;
    part->previous = end;
    nodeOf(ed)->tail = part;
}

void append(ElementDescr* ed, ElementDescr* part) {
    if (isHeaderType(headOf(ed->element).type))
        appendChildren(ed, part);
    else
        appendToChain(ed, part);
}

// The first node of the descriptor that the node stands in.
const ElementDescr* topOf(const ElementDescr* ed) {
    while (ed->parent || ed->previous) ed = ed->parent ? ed->parent : ed->previous;
    return ed;
}

ElementDescr* copyOf(const ElementDescr* ed);

// The chain from ed on; null, with nothing left behind, when memory is out.
ElementDescr* copyChain(const ElementDescr* ed) {
    ElementDescr* first = copyOf(ed);
    for (const ElementDescr* next = first ? ed->next : nullptr; next; next = next->next) {
        ElementDescr* copy = copyOf(next);
        if (!copy) {
            freeChain(first);
            return nullptr;
        }
        appendToChain(first, copy);
    }
    return first;
}

ElementDescr* copyOf(const ElementDescr* ed) {
    ElementDescr* copy = makeNode(ed->model, ed->element);
    if (!copy) return nullptr;
    copy->filePos = ed->filePos;
    if (!ed->firstChild) return copy;
    ElementDescr* children = copyChain(ed->firstChild);
    if (!children) {
        freeNode(copy);
        return nullptr;
    }
    appendChildren(copy, children);
    return copy;
}

}  // namespace

bool setNodeElement(ElementDescr* node, const MSElementBuffer* element) {
    const size_t bytes = mdlElement_bytes(element);
    if (bytes == 0) return false;
    Node* own = nodeOf(node);
    if (bytes > own->capacity) {
        auto* block = static_cast<MSElementBuffer*>(dlmSystem_mdlMalloc(bytes));
        if (!block) return false;
        std::memcpy(block->bytes, element->bytes, bytes);
        if (node->element != inlineElement(own)) dlmSystem_mdlFree(node->element);
        node->element = block;
        own->capacity = bytes;
        return true;
    }
    std::memmove(node->element->bytes, element->bytes, bytes);
    return true;
}

void unlinkNode(ElementDescr* node) {
    forgetEnds(node);
    if (node->previous) node->previous->next = node->next;
    if (node->next) node->next->previous = node->previous;
    if (ElementDescr* header = node->parent) {
        if (header->firstChild == node) header->firstChild = node->next;
        if (header->lastChild == node) header->lastChild = node->previous;
    }
    node->next = node->previous = node->parent = nullptr;
}

}  // namespace host

using namespace host;

int mdlElmdscr_new(ElementDescr** edPP, ModelRef* model, const MSElementBuffer* element) noexcept {
    if (!edPP) return MDL_ERROR;
    *edPP = makeNode(model ? model : drawing().getActive(), element);
    return *edPP ? MDL_SUCCESS : MDL_ERROR;
}

int mdlElmdscr_appendElement(ElementDescr* ed, const MSElementBuffer* element) noexcept {
    ElementDescr* part = ed ? makeNode(ed->model, element) : nullptr;
    if (!part) return MDL_ERROR;
    append(ed, part);
    return MDL_SUCCESS;
}

int mdlElmdscr_appendDscr(ElementDescr* ed, ElementDescr* part) noexcept {
    if (!ed || !part || part->parent || part->previous || topOf(ed) == part) return MDL_ERROR;
    append(ed, part);
    return MDL_SUCCESS;
}

int mdlElmdscr_duplicate(ElementDescr** edPP, const ElementDescr* ed) noexcept {
    if (!edPP || !ed) return MDL_ERROR;
    *edPP = copyChain(ed);
    return *edPP ? MDL_SUCCESS : MDL_ERROR;
}

void mdlElmdscr_freeAll(ElementDescr** edPP) noexcept {
    if (!edPP || !*edPP) return;
    ElementDescr* ed = *edPP;
    *edPP = nullptr;
    if (ed->previous || ed->parent) {
        forgetEnds(ed);
        if (ed->previous) ed->previous->next = nullptr;
        if (ElementDescr* header = ed->parent) {
            header->lastChild = ed->previous;
            if (!ed->previous) header->firstChild = nullptr;
        }
    }
    freeChain(ed);
}

int mdlElmdscr_removeElement(ElementDescr* node) noexcept {
    if (!node) return MDL_ERROR;
    unlinkNode(node);
    freeChain(node);
    return MDL_SUCCESS;
}
