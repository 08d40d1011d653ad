#include "mchost/command/locate.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/command/hits.h"
#include "mchost/command/running.h"
#include "mchost/mdl/describe.h"
#include "mchost/mdl/locate.h"
#include "mchost/mdl/system.h"
#include "mchost/model/open_files.h"
#include "mchost/model/parts.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"

namespace host {
namespace {

struct LocateRules {
    bool noElements = false;  // before a mask tells types
    bool noLocked = false;
    bool snaps = false;
    std::vector<int32_t> types = {};  // none: all pass
    MdlPostLocateFunction post = nullptr;
};

LocateRules& rules() {
    return sessionState<LocateRules>();
}

bool passesMask(uint16_t type) {
    const std::vector<int32_t>& types = rules().types;
    return !rules().noElements && (types.empty() || std::ranges::find(types, int32_t{type}) != types.end());
}

// Why nothing is located, the reason that is told first behind the others.
enum class Refusal { nothingThere, attached, notWanted, locked, readOnly };

void tell(Refusal refusal) {
    constexpr const char* texts[] = {
        "There is no element within reach of this point. Point nearer to one.",
        "The element here belongs to an attached design file. Open that file to change it.",
        "The element here is none that this command works on. Point at another one.",
        "The element here is locked. Unlock it to change it.",
        "The design file is open to be read only, so its elements can't be changed. Open it to be written.",
    };
    mdlOutput_printf(MDL_FIELD_ERROR, "%s", texts[static_cast<size_t>(refusal)]);
    mdlSystem_noteFailure();
}

const char* nameOfType(int type) {
    const char* const name = mdlElement_typeName(type);
    return name ? name : "element";
}

// Where no highlight is seen this tells what is located.
void tellLocated(const Model& model) {
    const ElementPart part = located();
    const RecordHead* record = model.elements.record(part.position);
    const char *whole = nameOfType(nodeOf(record, 0)->head.type),
               *at = nameOfType(nodeOf(record, part.number)->head.type);
    if (part.number == 0)
        mdlOutput_printf(MDL_FIELD_STATUS, "Located: %s", whole);
    else
        mdlOutput_printf(MDL_FIELD_STATUS, "Located: %s, at its %s", whole, at);
}

// What the rules have against an element; the post-locate function isn't asked.
std::optional<Refusal> refusalOf(const DesignFile& file, FilePos position) {
    const MSElementBuffer* element = file.model.elements.element(position);
    if (!element || !passesMask(element->head.type)) return Refusal::notWanted;
    if (rules().noLocked && (element->head.properties & MDL_PROP_LOCKED) != 0) return Refusal::locked;
    return rules().noLocked && !file.takesChanges() ? std::optional(Refusal::readOnly) : std::nullopt;
}

// Asks the post-locate function about what is located. Another command may run afterwards.
bool passesPostLocate() {
    if (!rules().post) return true;
    ModelRef* model = nullptr;
    const FilePos position = mdlElement_getFilePos(MDL_FILE_POS_COMPONENT, &model);
    const auto copy = std::make_unique<MSElementBuffer>();  // the function may change the model
    if (mdlElement_read(copy.get(), model, position) == 0) return false;
    const ApplicationScope scope(runningCommand().owner);
    return rules().post(copy.get(), model, position) == MDL_LOCATE_ACCEPT;
}

// The first hit that passes all rules becomes the located element; else the reason why none does. Nothing when another
// command runs by then.
std::optional<Refusal> takeFirst(const DesignFile& file, std::span<const Hit> hits) {
    const RunId run = currentRun();
    const uint64_t serial = file.model.serial;
    Refusal refusal = Refusal::nothingThere;
    for (const Hit& hit : hits) {
        if (const auto its = refusalOf(file, hit.position)) {
            refusal = std::max(refusal, *its);
            continue;
        }
        const ElementPart part{serial, hit.position, hit.number};
        setLocated(part);
        const bool takes = passesPostLocate();
        if (!isStill(run)) return std::nullopt;
        if (takes && located() == part) return std::nullopt;
        forgetLocated();
        refusal = std::max(refusal, Refusal::notWanted);
    }
    return refusal;
}

}  // namespace

void forgetLocateRules() {
    rules() = {};
    forgetLocated();
}

void forgetLocated() {
    setLocated({});
}

bool isLocated() {
    return located().model != 0;
}

bool snapsToLocate() {
    return rules().snaps;
}

bool locateAt(const Point3d& point, int32_t view) {
    forgetLocated();
    const RunId run = currentRun();
    ModelRef* const place = openPlace(nullptr);
    const Aim aim = aimAt(point, view);
    std::optional<Refusal> refusal = Refusal::nothingThere;
    if (place) refusal = takeFirst(*place->file, hitsAt(*place, aim));
    if (!refusal && isStill(run)) tellLocated(place->file->model);
    if (!refusal) return isStill(run);
    if (refusal == Refusal::nothingThere && !hitsAnywhere(aim).empty()) refusal = Refusal::attached;
    tell(*refusal);
    return false;
}

}  // namespace host

using namespace host;

int mdlLocate_setFunction(int32_t number, MdlStateFunction function) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (number != MDL_LOCATE_POST) return MDL_ERROR;
        rules().post = reinterpret_cast<MdlPostLocateFunction>(function);
        return MDL_SUCCESS;
    });
}

int mdlLocate_noElemNoLocked(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        rules().noElements = true;
        rules().noLocked = true;
        rules().types.clear();
        return MDL_SUCCESS;
    });
}

int mdlLocate_setElemSearchMask(int32_t count, const int32_t* types) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (count < 0 || (count > 0 && !types)) return MDL_ERROR;
        rules().types.assign(types, types + count);
        rules().noElements = false;
        return MDL_SUCCESS;
    });
}

int mdlLocate_init(void) noexcept {
    return guarded<int>(MDL_ERROR, [] {
        forgetLocated();
        return MDL_SUCCESS;
    });
}

int mdlAccuSnap_enableLocate(int32_t on) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        rules().snaps = on != 0;
        return MDL_SUCCESS;
    });
}
