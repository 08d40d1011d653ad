#include "mchost/view/seen.h"

#include "mchost/model/model_ref.h"

namespace host {

Seen::Seen(int32_t view, const Model& model) : view_(viewAt(view)) {
    if (view_.levelsOff.empty()) return;
    levelsOff_.resize(model.nextLevel);
    for (const Level& level : model.levels) levelsOff_[level.id] = view_.levelsOff.contains(level.name);
}

// Headers of cells and text nodes have no look of their own: their components are asked about.
bool Seen::sees(int type, LevelId level, int elementClass) const {
    constexpr int construction = 1, dimension = 2;
    if (type == MDL_CELL_HEADER || type == MDL_TEXT_NODE) return true;
    if (level < levelsOff_.size() && levelsOff_[level]) return false;
    const bool isDimension = elementClass == dimension || type == MDL_DIMENSION;
    return (elementClass != construction || view_.shows(MDL_VIEW_CONSTRUCTIONS)) &&
           (!isDimension || view_.shows(MDL_VIEW_DIMENSIONS)) && (type != MDL_TEXT || view_.shows(MDL_VIEW_TEXTS));
}

bool seesAny(const Seen& seen, const Model& model, FilePos position) {
    bool any = false;
    forEachNode(model.elements.record(position), [&](const StoredNode& node) {
        const ElementHead& head = node.element->head;
        any = any || (head.type != MDL_CELL_HEADER && head.type != MDL_TEXT_NODE && seen(head));
    });
    return any;
}

bool isSeen(const ElementHead& head, int32_t view) {
    const Model* const model = openModel(nullptr);
    return model && isView(view) && Seen(view, *model)(head);
}

bool isLevelOn(int32_t view, const Model& model, LevelId level) {
    const Level* const found = findLevel(model, level);
    return found && !viewAt(view).levelsOff.contains(found->name);
}

void setLevelOn(int32_t view, const std::wstring& name, bool on) {
    LevelNames& off = viewToChange(view).levelsOff;
    if (on)
        off.erase(name);
    else
        off.insert(name);
    noteViewChanged(view);
}

}  // namespace host
