// Elements and descriptors to and from the open design files.
#include <algorithm>
#include <cstring>

#include "mchost/base/guard.h"
#include "mchost/element/range.h"
#include "mchost/mdl/locate.h"
#include "mchost/mdl/modify.h"
#include "mchost/model/open_files.h"
#include "mchost/model/parts.h"

namespace host {
namespace {

void flatten(const ElementDescr* node, uint32_t depth, Unit& unit) {
    unit.push_back({depth, node->element});
    for (const ElementDescr* child = node->firstChild; child; child = child->next) {
        flatten(child, depth + 1, unit);
    }
}

// Whether the model can take the unit; a line in the message centre when it can't.
bool canBeStored(const Model& model, std::span<const StoredNode> unit) {
    const bool sound = std::ranges::all_of(
        unit, [](const StoredNode& n) { return n.element && elementIsSound(n.element, MDL_ELEMENT_BYTES); });
    if (!sound) {
        fileProblem("An element isn't stored: its size and the offset of its attributes don't fit. Build it anew.");
    } else if (ElementStore::unitBytes(unit) > ElementStore::maxUnitBytes) {
        fileProblem("An element isn't stored: it is larger than 256 MB with its components. Divide it.");
    } else if (std::ranges::max(unit, {}, &StoredNode::depth).depth > ElementStore::maxDepth) {
        fileProblem("An element isn't stored: cells in it are nested deeper than 500 times. Take some of them apart.");
    } else if (model.elements.nextPosition() >= MDL_COMPONENT_OFFSET) {
        fileProblem("An element isn't stored: the file has had all the elements that it can number. Copy it.");
    } else {
        return true;
    }
    return false;
}

void noteStored(Model& model, FilePos position, std::span<const StoredNode> unit) {
    if (model.unstoredLevels != 0) {
        for (const StoredNode& node : unit) storeLevel(model, node.element->head.level);
    }
    updateRange(model, position);
}

FilePos addUnit(Model& model, std::span<const StoredNode> unit) {
    Journal& journal = openFiles().journal;
    Journal::Part& part = journal.makeRoom(model);
    const FilePos position = model.elements.add(unit);
    journal.noteAdded(part, position);
    noteStored(model, position, unit);
    return position;
}

FilePos replaceUnit(Model& model, FilePos position, std::span<const StoredNode> unit) {
    Journal& journal = openFiles().journal;
    Journal::Part& part = journal.makeRoom(model);
    const RecordHead* before = model.elements.record(position);
    model.elements.replace(position, unit);
    journal.noteRewritten(part, position, before);
    noteStored(model, position, unit);
    return position;
}

void removeUnit(Model& model, FilePos position) {
    Journal& journal = openFiles().journal;
    Journal::Part& part = journal.makeRoom(model);
    model.elements.remove(position);
    journal.noteDeleted(part, position);
    updateRange(model, position);
}

Unit nodesIn(const RecordHead* record) {
    Unit unit;
    forEachNode(record, [&](const StoredNode& node) { unit.push_back(node); });
    return unit;
}

// The units of a chain; empty when one of them can't be stored.
std::vector<Unit> chainUnits(const Model& model, const ElementDescr* first) {
    std::vector<Unit> units;
    for (const ElementDescr* node = first; node; node = node->next) {
        units.push_back(unitOf(node));
        if (!canBeStored(model, units.back())) return {};
    }
    return units;
}

void addAsLastChild(ElementDescr* parent, ElementDescr* child) {
    child->parent = parent;
    child->previous = parent->lastChild;
    (parent->lastChild ? parent->lastChild->next : parent->firstChild) = child;
    parent->lastChild = child;
}

// Writes what a modification made of the element at the position.
bool storeModified(ModelRef& place, ElementDescr* ed, FilePos position) {
    Model* model = writableModel(&place);
    if (!model) return false;
    if (!ed) {
        removeUnit(*model, position);
        return true;
    }
    for (ElementDescr* node = ed; node; node = node->next) node->model = &place;
    mdlElmdscr_validate(ed, &place);
    return mdlElmdscr_rewrite(ed, position) != 0;
}

}  // namespace

Unit unitOf(const ElementDescr* node) {
    Unit unit;
    flatten(node, 0, unit);
    return unit;
}

ElementDescr* readUnit(const Model& model, FilePos position, ModelRef* owner, uint32_t& count) {
    std::vector<ElementDescr*> path;  // from the element to the last node read
    bool complete = true;
    forEachNode(model.elements.record(position), [&](const StoredNode& stored) {
        ElementDescr* node = nullptr;
        if (!complete || mdlElmdscr_new(&node, owner, stored.element) != MDL_SUCCESS) {
            complete = false;
            return;
        }
        if (stored.depth != 0) {
            path.resize(stored.depth);
            addAsLastChild(path.back(), node);
        }
        path.push_back(node);
        ++count;
    });
    ElementDescr* top = path.empty() ? nullptr : path.front();
    if (!complete) {
        mdlElmdscr_freeAll(&top);
        count = 0;
    } else {
        top->filePos = position;
    }
    return top;
}

}  // namespace host

using namespace host;

// ---- elements ----

uint32_t mdlElement_read(MSElementBuffer* out, ModelRef* model, FilePos position) noexcept {
    return guarded<uint32_t>(0, [&]() -> uint32_t {
        const Model* found = openModel(model);
        const MSElementBuffer* element = found ? partAt(*found, position) : nullptr;
        if (!element || !out) return 0;
        std::memcpy(out, element, elementBytes(element));
        return elementBytes(element);
    });
}

FilePos mdlElement_add(const MSElementBuffer* element) noexcept {
    return guarded<FilePos>(0, [&]() -> FilePos {
        Model* model = writableModel(nullptr);
        const StoredNode unit[] = {{0, element}};
        return model && canBeStored(*model, unit) ? addUnit(*model, unit) : 0;
    });
}

FilePos mdlElement_rewrite(const MSElementBuffer* element, FilePos position) noexcept {
    return guarded<FilePos>(0, [&]() -> FilePos {
        Model* model = writableModel(nullptr);
        if (!model || !model->elements.isLive(position)) return 0;
        Unit unit = nodesIn(model->elements.record(position));
        unit.front().element = element;
        return canBeStored(*model, unit) ? replaceUnit(*model, position, unit) : 0;
    });
}

int mdlElement_undoableDelete(const MSElementBuffer*, FilePos position, int32_t) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        Model* model = writableModel(nullptr);
        if (!model || !model->elements.isLive(position)) return MDL_ERROR;
        removeUnit(*model, position);
        return MDL_SUCCESS;
    });
}

// ---- descriptors ----

uint32_t mdlElmdscr_read(ElementDescr** edPP, FilePos position, ModelRef* model) noexcept {
    if (!edPP) return 0;
    *edPP = nullptr;
    return guarded<uint32_t>(0, [&]() -> uint32_t {
        const Model* found = openModel(model);
        if (!found || !found->elements.isLive(position)) return 0;
        uint32_t count = 0;
        *edPP = readUnit(*found, position, openPlace(model), count);
        return count;
    });
}

uint32_t mdlElmdscr_readToMaster(ElementDescr** edPP, FilePos position, ModelRef* model) noexcept {
    const uint32_t count = mdlElmdscr_read(edPP, position, model);
    const ModelRef* place = openPlace(model);
    if (count == 0 || !place->parent) return count;
    const Transform transform = toMaster(*place);
    if (mdlElmdscr_transform(*edPP, &transform) == MDL_SUCCESS) return count;
    mdlElmdscr_freeAll(edPP);
    return 0;
}

FilePos mdlElmdscr_add(ElementDescr* ed) noexcept {
    return guarded<FilePos>(0, [&]() -> FilePos {
        Model* model = ed ? writableModel(ed->model) : nullptr;
        if (!model) return 0;
        FilePos first = 0;
        for (const Unit& unit : chainUnits(*model, ed)) {
            const FilePos position = addUnit(*model, unit);
            if (first == 0) first = position;
        }
        return first;
    });
}

FilePos mdlElmdscr_rewrite(ElementDescr* ed, FilePos position) noexcept {
    return guarded<FilePos>(0, [&]() -> FilePos {
        Model* model = ed ? writableModel(ed->model) : nullptr;
        if (!model || !model->elements.isLive(position)) return 0;
        const std::vector<Unit> units = chainUnits(*model, ed);
        if (units.empty()) return 0;
        replaceUnit(*model, position, units.front());
        for (const Unit& unit : std::span(units).subspan(1)) addUnit(*model, unit);
        return position;
    });
}

// ---- modify ----

int mdlModify_elementSingle(ModelRef* model, FilePos position, int32_t request, int32_t, MdlModifyFunction f,
                            void* userArg, int32_t) noexcept {
    return guarded(0, [&] {
        ModelRef* found = openPlace(model);
        ElementDescr* ed = nullptr;
        if (!found || mdlElmdscr_read(&ed, position, found) == 0) return 0;
        int changes = mdlModify_elementDescr2(&ed, found, request, f, userArg, 0);
        if (changes != 0 && !storeModified(*found, ed, position)) changes = 0;
        mdlElmdscr_freeAll(&ed);
        return changes;
    });
}
