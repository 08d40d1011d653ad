#include "mchost/model/cell_library.h"

#include <algorithm>
#include <cstring>

#include "mchost/element/cell.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/range.h"
#include "mchost/model/container.h"
#include "mchost/model/level_map.h"
#include "mchost/model/model_ref.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

constexpr int32_t longestText = 512;  // of a name or a description, with the NUL

// Small letters of Latin-1 as capitals, other characters as they are: the same in every locale.
wchar_t folded(wchar_t c) {
    const bool small = (c >= L'a' && c <= L'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7);
    return small ? c - 0x20 : c;
}

std::wstring inCapitals(std::wstring_view name) {
    std::wstring capitals(name);
    std::ranges::transform(capitals, capitals.begin(), folded);
    return capitals;
}

bool isCellHeader(const MSElementBuffer* element) {
    return element->head.type == MDL_CELL_HEADER;
}

std::wstring nameOf(const MSElementBuffer* header) {
    wchar_t name[longestText];
    return mdlCell_extractName(name, longestText, header) == MDL_SUCCESS ? name : L"";
}

std::wstring descriptionOf(const MSElementBuffer* header) {
    wchar_t description[longestText];
    return mdlCell_extractDescription(description, longestText, header) == MDL_SUCCESS ? description : L"";
}

// Brings a cell of a library in line with the model that it goes to: its units, kind and levels. One that goes to no
// model keeps its units and kind; its levels are then those of the session.
class Fitting {
  public:
    Fitting(const Model& from, const Model* to, Model& levels)
        : levels_(from, levels, [](int32_t style) { return style; }),
          to_(to),
          factor_(to ? to->uorPerMaster / from.uorPerMaster : 1) {}

    bool fit(ElementDescr* ed) {
        const Transform transform{{{factor_, 0, 0, 0}, {0, factor_, 0, 0}, {0, 0, factor_, 0}}};
        return (factor_ == 1 || mdlElmdscr_transform(ed, &transform) == MDL_SUCCESS) && fitChain(ed);
    }

  private:
    bool fitChain(ElementDescr* first) {
        for (ElementDescr* node = first; node; node = node->next) {
            if (to_ && isCellHeader(node->element) && !fitHeader(node)) return false;
            node->element->head.level = levels_(node->element->head.level);
            if (!fitChain(node->firstChild)) return false;
        }
        return true;
    }

    // A cell isn't enlarged by finer units: its axes stay as long as they are.
    bool fitHeader(ElementDescr* node) {
        const auto header = std::make_unique<MSElementBuffer>();
        return convertCellHeader(header.get(), node->element, to_->is3d, 1 / factor_) &&
               setNodeElement(node, header.get());
    }

    LevelMap levels_;
    const Model* to_;
    double factor_;
};

[[noreturn]] void refuse(const char* what) {
    throw FileProblem(what);
}

}  // namespace

// ---- reading ----

CellLibrary::CellLibrary(const std::string& path) : path_(path), model_(std::make_unique<Model>()) {
    loadContainer(path, *model_, FileKind::cellLibrary);
    takeCells();
}

CellLibrary::~CellLibrary() = default;

void CellLibrary::takeCells() {
    const ElementStore& elements = model_->elements;
    for (FilePos position = 1; position < elements.nextPosition(); ++position) {
        const MSElementBuffer* header = elements.element(position);
        if (!header) continue;
        std::wstring name = isCellHeader(header) ? nameOf(header) : L"";
        if (name.empty() || !places_.try_emplace(inCapitals(name), cells_.size()).second) {
            refuse("a cell in it has no name of its own. Compile the library anew from its source.");
        }
        cells_.push_back({position, std::move(name), descriptionOf(header)});
    }
}

const CellLibrary::Cell* CellLibrary::find(std::wstring_view name) const {
    const auto found = places_.find(inCapitals(name));
    return found != places_.end() ? &cells_[found->second] : nullptr;
}

ElementDescr* CellLibrary::read(const Cell& cell, ModelRef* target) const {
    uint32_t count = 0;
    ElementDescr* ed = readUnit(*model_, cell.position, target, count);
    if (!ed) return nullptr;
    ed->filePos = 0;  // of the library's own numbering
    Model* const levels = levelModel(target);
    if (levels && !Fitting(*model_, target ? levels : nullptr, *levels).fit(ed)) {
        mdlElmdscr_freeAll(&ed);
        return nullptr;
    }
    mdlCell_setRange(ed, target);
    return ed;
}

// ---- writing ----

CellLibraryDraft::CellLibraryDraft(double uorPerMaster) : model_(std::make_unique<Model>()) {
    model_->uorPerMaster = uorPerMaster;
    addFirstLevel(*model_);
}

CellLibraryDraft::~CellLibraryDraft() = default;

LevelId CellLibraryDraft::level(std::wstring_view name) {
    if (const Level* known = findLevel(*model_, name)) return known->id;
    const LevelId id = addLevel(*model_, name).id;
    storeLevel(*model_, id);
    return id;
}

void CellLibraryDraft::setLevelSymbology(LevelId id, uint32_t color, int32_t style, uint32_t weight) {
    for (Level& level : model_->levels) {
        if (level.id != id) continue;
        level.byLevel.color = color;
        level.byLevel.style = style;
        level.byLevel.weight = weight;
    }
}

bool CellLibraryDraft::has(std::wstring_view name) const {
    return names_.contains(inCapitals(name));
}

bool CellLibraryDraft::add(const ElementDescr* cell) {
    std::wstring name = cell && isCellHeader(cell->element) ? inCapitals(nameOf(cell->element)) : L"";
    if (name.empty() || names_.contains(name)) return false;
    const Unit unit = unitOf(cell);
    const auto isSound = [](const StoredNode& n) {
        return n.depth <= ElementStore::maxDepth && elementIsSound(n.element, MDL_ELEMENT_BYTES);
    };
    if (!std::ranges::all_of(unit, isSound) || ElementStore::unitBytes(unit) > ElementStore::maxUnitBytes) return false;
    model_->elements.add(unit);
    names_.insert(std::move(name));
    return true;
}

void CellLibraryDraft::write(const std::string& path) {
    replaceContainer(path, *model_, FileKind::cellLibrary);
}

}  // namespace host
