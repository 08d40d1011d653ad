#include "mchost/view/places.h"

#include "mchost/mdl/system.h"
#include "mchost/model/attachments.h"
#include "mchost/model/open_files.h"

namespace host {

std::optional<ShownClip> clipOf(const ModelRef& place) {
    const Attachment* const attachment = attachmentOf(place);
    if (!attachment || !attachment->isClipped()) return std::nullopt;
    const DesignFile& in = *place.parent->file;
    auto corners = std::make_shared<const Ring>(clipCorners(in.model, *attachment));
    if (corners->empty() && openFiles().isToldFirst("clip " + in.path() + " " + std::to_string(place.number))) {
        const std::string line = "The element that clips \"" + attachment->file + "\" in \"" + in.name() +
                                 "\" isn't there any more, so nothing of it is shown. Give it another clip.\n";
        toolSubsystem_printf("%s", line.c_str());
    }
    return ShownClip{place.parent, std::move(corners)};
}

std::vector<ShownClip> clipsAround(const ModelRef& place) {
    std::vector<ShownClip> clips = place.parent ? clipsAround(*place.parent) : std::vector<ShownClip>();
    if (auto own = clipOf(place)) clips.push_back(std::move(*own));
    return clips;
}

namespace {

void addBelow(const ShownPlace& above, std::vector<ShownPlace>& places) {
    openFiles().follow(*above.place);
    for (const auto& child : above.place->below) {
        const Attachment* const attachment = attachmentOf(*child);
        if (!child->file || !attachment || !attachment->shown || attachment->hidden) continue;
        ShownPlace shown{child.get(), above.clips};
        if (auto clip = clipOf(*child)) shown.clips.push_back(std::move(*clip));
        if (!shown.clips.empty() && shown.clips.back().outline->empty()) continue;
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
