#include "mchost/command/references.h"

#include <cmath>
#include <numbers>

#include "mchost/base/number_format.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/reference.h"
#include "mchost/model/open_files.h"
#include "mchost/space/vector.h"
#include "mchost/view/words.h"

namespace host {
namespace {

std::string rounded(double value) {
    return formatNumber("%.6g", value).value_or("?");
}

std::string placeText(ModelRef& place, const Attachment& attachment) {
    const auto& f = attachment.toParent.form;
    MdlRefPlacement placement;
    std::string text = "at " + pointText({f[0][3], f[1][3], f[2][3]});
    if (mdlRefFile_getPlacement(&placement, &place) != MDL_SUCCESS) return place.file ? text + ", placed freely" : text;
    const auto& turn = placement.rotation.form;
    const double degrees = std::atan2(turn[1][0], turn[0][0]) * 180 / std::numbers::pi;
    if (placement.scale != 1) text += ", scale " + rounded(placement.scale);
    if (std::fabs(turn[2][2] - 1) > 1e-9)
        text += ", turned freely";
    else if (std::fabs(degrees) > 1e-9)
        text += ", turned by " + rounded(degrees);
    return text;
}

std::string clipText(const Attachment& attachment) {
    if (attachment.clipElement != 0) return ", clip of an element";
    return attachment.clip.empty() ? "" : ", clip of " + std::to_string(attachment.clip.size()) + " corners";
}

std::string levelsText(const Attachment& attachment) {
    std::string text;
    for (size_t view = 0; view < attachment.levelsOff.size(); ++view) {
        const LevelNames& off = attachment.levelsOff[view];
        if (!off.empty()) text += "; levels off in view " + std::to_string(view + 1) + ": " + listed(off, narrowName);
    }
    return text;
}

}  // namespace

std::vector<ModelRef*> attachedPlaces() {
    ModelRef* const active = openPlace(nullptr);
    std::vector<ModelRef*> places;
    if (!active) return places;
    openFiles().follow(*active);
    for (const auto& child : active->below) places.push_back(child.get());
    return places;
}

std::string lineOf(ModelRef& place) {
    const Attachment& attachment = *attachmentOf(place);
    const char* const shown = attachment.shown && !attachment.hidden ? "on" : "off";
    return std::to_string(attachment.number) + ": " + hostName(attachment.file) + ", " +
           (place.file ? shown : "missing") + ", " + placeText(place, attachment) + clipText(attachment) +
           levelsText(attachment);
}

}  // namespace host
