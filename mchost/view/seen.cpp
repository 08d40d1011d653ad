#include "mchost/view/seen.h"

#include "mchost/model/model_ref.h"

namespace host {
namespace {

const LevelNames& levelsOffIn(const Attachment* attachment, int32_t view) {
    static const LevelNames none;
    return attachment ? attachment->levelsOff[static_cast<size_t>(view)] : none;
}

}  // namespace

Seen::Seen(int32_t view, const Model& model, const Attachment* attachment) : view_(viewAt(view)) {
    if (view_.levelsOff.empty() && levelsOffIn(attachment, view).empty()) return;
    levelsOff_.resize(model.nextLevel);
    for (const Level& level : model.levels) levelsOff_[level.id] = !isLevelOn(view, level.name, attachment);
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

bool isLevelOn(int32_t view, const std::wstring& name, const Attachment* attachment) {
    return !viewAt(view).levelsOff.contains(name) && !levelsOffIn(attachment, view).contains(name);
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
