#include "mchost/view/places.h"

#include "mchost/model/open_files.h"

namespace host {
namespace {

void addBelow(const ShownPlace& above, std::vector<ShownPlace>& places) {
    openFiles().follow(*above.place);
    for (const auto& child : above.place->below) {
        const Attachment* const attachment = attachmentOf(*child);
        if (!child->file || !attachment || !attachment->shown || attachment->hidden) continue;
        ShownPlace shown{child.get(), above.clips};
        if (!attachment->clip.empty()) shown.clips.push_back({above.place, &attachment->clip});
        places.push_back(shown);
        addBelow(shown, places);
    }
}

}  // namespace

std::vector<ShownPlace> shownPlaces(int32_t view) {
    ModelRef* const active = openPlace(nullptr);
    if (!active) return {};
    const ShownPlace root{active, {}};
    std::vector<ShownPlace> places{root};
    if (viewAt(view).shows(MDL_VIEW_REFERENCES)) addBelow(root, places);
    return places;
}

}  // namespace host
