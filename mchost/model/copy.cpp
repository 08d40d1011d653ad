// Elements of one model copied into another.
#include "mchost/mdl/copy.h"

#include <memory>
#include <stdexcept>

#include "mchost/base/guard.h"
#include "mchost/element/cell.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/layout.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/model/level_map.h"
#include "mchost/model/model_ref.h"

namespace host {
namespace {

// Brings elements of a model in line with the active one.
class Move {
  public:
    Move(const Model& from, Model& to)
        : from_(from), to_(to), levels_(from, to, [this](int32_t number) { return styleIn(number); }) {}

    void fitChain(ElementDescr* ed) {
        for (; ed; ed = ed->next) {
            fit(ed);
            fitChain(ed->firstChild);
        }
    }

  private:
    void fit(ElementDescr* node) {
        mdlElement_memcpy(element_.get(), node->element);
        fitLook(element_.get());
        forEachPart(element_.get(), [&](const MSElementBuffer* part) {
            if (part != element_.get()) fitLook(const_cast<MSElementBuffer*>(part));
        });
        if (!setNodeElement(node, element_.get())) throw std::bad_alloc();
        if (headOf(node->element).type == MDL_CELL_HEADER &&
            convertCellHeader(element_.get(), node->element, to_.is3d, 1) && !setNodeElement(node, element_.get()))
            throw std::bad_alloc();
    }

    void fitLook(MSElementBuffer* element) {
        ElementHead head = headOf(element);
        const Level* const before = findLevel(from_, head.level);
        head.level = levels_(head.level);
        const Level* const now = findLevel(to_, head.level);
        if (head.style < 0) head.style = styleIn(head.style);
        if (before && now) keepLook(head, before->byLevel, now->byLevel);
        storeAt(element, 0, head);
    }

    // What its level gave it, where the level of that name gives something else.
    void keepLook(ElementHead& head, const LevelSymbology& before, const LevelSymbology& now) {
        if (head.color == colorByLevel && before.color != now.color) head.color = static_cast<int32_t>(before.color);
        if (head.weight == weightByLevel && before.weight != now.weight)
            head.weight = static_cast<int16_t>(before.weight);
        if (head.style != styleByLevel) return;
        const int32_t style = before.style < 0 ? styleIn(before.style) : before.style;
        if (style != now.style) head.style = style;
    }

    int32_t styleIn(int32_t number) {
        const LineStyle* const style = findLineStyle(from_, number);
        int32_t found = 0;
        if (!style || mdlLineStyle_numberFromName(&found, style->name.c_str(), nullptr) == MDL_SUCCESS) return found;
        const int status = mdlLineStyle_define(&found, nullptr, style->name.c_str(), style->pattern.data(),
                                               static_cast<int32_t>(style->pattern.size()));
        return status == MDL_SUCCESS ? found : 0;
    }

    const Model& from_;
    Model& to_;
    LevelMap levels_;
    std::unique_ptr<MSElementBuffer> element_ = std::make_unique_for_overwrite<MSElementBuffer>();
};

void belongTo(ElementDescr* ed, ModelRef* place) {
    for (; ed; ed = ed->next) {
        ed->model = place;
        belongTo(ed->firstChild, place);
    }
}

}  // namespace
}  // namespace host

using namespace host;

FilePos mdlElmdscr_copy(const ElementDescr* ed) noexcept {
    return guarded<FilePos>(0, [&]() -> FilePos {
        Model* const to = ed ? writableModel(nullptr) : nullptr;
        if (!to) return 0;
        mdl::Descr copy;
        if (mdlElmdscr_duplicate(copy.out(), ed) != MDL_SUCCESS) throw std::bad_alloc();
        const Model* const from = openModel(ed->model);
        if (from && from != to) Move(*from, *to).fitChain(copy.get());
        belongTo(copy.get(), openPlace(nullptr));
        mdlElmdscr_validate(copy.get(), nullptr);
        return mdlElmdscr_add(copy.get());
    });
}
