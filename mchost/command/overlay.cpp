#include "mchost/command/overlay.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "mchost/base/guard.h"
#include "mchost/command/command.h"
#include "mchost/command/selection.h"
#include "mchost/element/layout.h"
#include "mchost/element/range.h"
#include "mchost/model/model_ref.h"
#include "mchost/model/parts.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"
#include "mchost/space/view.h"

namespace host {
namespace {

// When the model was changed: its store grows with each change, also with one that is taken back.
struct ModelTime {
    uint64_t serial = 0, bytes = 0, attachments = 0;
    bool operator==(const ModelTime&) const = default;
};

ModelTime now() {
    const Model* model = openModel(nullptr);
    return model ? ModelTime{model->serial, model->elements.usedBytes(), model->attachmentChanges} : ModelTime{};
}

// What decides on what is seen.
struct Look {
    ModelTime model;
    ElementPart located;
    uint64_t selection = 0, overlay = 0;
    bool operator==(const Look&) const = default;
};

struct OverlayState {
    Overlay overlay;
    ModelTime asOf;
    uint64_t changes = 0;
    bool keepsDynamics = false;
    Look told;
};

// Without what a change of the model has taken away.
OverlayState& state() {
    OverlayState& kept = sessionState<OverlayState>();
    if (const ModelTime time = now(); time != kept.asOf) {
        kept.overlay.erased.clear();
        kept.overlay.drawn.clear();
        kept.asOf = time;
        ++kept.changes;
    }
    return kept;
}

bool isEqual(const MSElementBuffer* a, const MSElementBuffer* b) {
    const uint32_t bytes = mdlElement_bytes(a);
    return bytes == mdlElement_bytes(b) && std::memcmp(a, b, bytes) == 0;
}

// With all below them, but not what follows in the chain.
bool isEqual(const ElementDescr& a, const ElementDescr& b) {
    if (!isEqual(a.element, b.element)) return false;
    const ElementDescr *x = a.firstChild, *y = b.firstChild;
    for (; x && y && isEqual(*x, *y); x = x->next) y = y->next;
    return !x && !y;
}

// The component of the located element that has these bytes and isn't erased yet.
std::optional<Overlay::Erased> locatedPart(const MSElementBuffer* element) {
    const ElementPart part = located();
    const Model* model = openModel(nullptr);
    if (!model || part.model != model->serial) return std::nullopt;
    std::optional<Overlay::Erased> found;
    uint32_t number = 0;
    forEachNode(model->elements.record(part.position), [&](const StoredNode& node) {
        const Overlay::Erased its{part.position, number++};
        if (!found && !sessionState<OverlayState>().overlay.isErased(its.position, its.number) &&
            isEqual(node.element, element))
            found = its;
    });
    return found;
}

void erase(const ElementDescr& ed) {
    Overlay& overlay = state().overlay;
    std::erase_if(overlay.drawn, [&](const Overdrawn& drawn) { return isEqual(*drawn.ed, ed); });
    if (ed.filePos != 0 && ed.model == openPlace(nullptr)) {
        overlay.erased.push_back({ed.filePos, 0});
        return;
    }
    const bool isHeaderAlone = isHeaderType(headOf(ed.element).type) && !ed.firstChild;
    const auto part = isHeaderAlone ? std::nullopt : locatedPart(ed.element);
    if (part) overlay.erased.push_back(*part);
    if (part && part->number == 0) return;
    for (const ElementDescr* child = ed.firstChild; child; child = child->next) erase(*child);
}

mdl::DescrPtr copyAlone(const ElementDescr& ed) {
    ElementDescr alone = ed;
    alone.next = nullptr;
    ElementDescr* copy = nullptr;
    if (mdlElmdscr_duplicate(&copy, &alone) != MDL_SUCCESS) throw std::bad_alloc();
    return mdl::DescrPtr(copy);
}

void show(const ElementDescr& ed, int32_t drawMode) {
    OverlayState& kept = state();
    ++kept.changes;
    switch (drawMode) {
        case MDL_DRAW:
            if (commandRuns()) kept.overlay.drawn.push_back({copyAlone(ed), false});
            break;
        case MDL_ERASE: erase(ed); break;
        case MDL_HIGHLIGHT: kept.overlay.drawn.push_back({copyAlone(ed), true}); break;
        default:
            if (kept.keepsDynamics) kept.overlay.dynamics.push_back(copyAlone(ed));
    }
}

int display(const ElementDescr& ed, int32_t drawMode) {
    const bool known = (drawMode >= MDL_DRAW && drawMode <= MDL_HIGHLIGHT) || drawMode == MDL_DYNAMICS;
    if (!known || !ed.element || !elementIsSound(ed.element, MDL_ELEMENT_BYTES)) return MDL_ERROR;
    Session* const session = Session::current();
    if (session) session->frontEnd().displayed(ed, drawMode);
    for (const ElementDescr* one = &ed; one && session; one = one->next) show(*one, drawMode);
    return MDL_SUCCESS;
}

}  // namespace

bool Overlay::isErased(FilePos position, uint32_t number) const {
    return std::ranges::any_of(
        erased, [&](const Erased& e) { return e.position == position && (e.number == 0 || e.number == number); });
}

const Overlay& overlay() {
    return state().overlay;
}

bool isHighlighted(FilePos position) {
    const ElementPart part = located();
    return isSelected(position) || (part.position == position && part.model == activeModelSerial());
}

void tellWhatIsSeen() {
    OverlayState& kept = state();
    const Look look{kept.asOf, located(), selectionChanges(), kept.changes};
    if (std::exchange(kept.told, look) != look) tellViewsChanged();
}

void clearOverlay() {
    OverlayState& kept = state();
    if (kept.overlay.erased.empty() && kept.overlay.drawn.empty() && kept.overlay.dynamics.empty()) return;
    kept.overlay = {};
    ++kept.changes;
}

void clearDynamics() {
    std::vector<mdl::DescrPtr>& dynamics = state().overlay.dynamics;
    if (!dynamics.empty()) ++state().changes;
    dynamics.clear();
}

void keepDynamics(bool on) {
    state().keepsDynamics = on;
}

}  // namespace host

using namespace host;

int mdlElement_display(const MSElementBuffer* element, int32_t drawMode) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        ElementDescr alone{};  // stands for an element that is in no descriptor
        alone.element = const_cast<MSElementBuffer*>(element);
        return display(alone, drawMode);
    });
}

int mdlElmdscr_display(ElementDescr* ed, ModelRef*, int32_t drawMode) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int { return ed ? display(*ed, drawMode) : int{MDL_ERROR}; });
}
