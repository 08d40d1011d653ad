// The key-ins about references: "reference attach part.mcd 100,200", "reference clip 1 fence".
#include <algorithm>
#include <array>
#include <numbers>
#include <vector>

#include "mchost/base/words.h"
#include "mchost/command/fence.h"
#include "mchost/command/hits.h"
#include "mchost/command/input.h"
#include "mchost/command/references.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/undo.h"
#include "mchost/model/attachments.h"
#include "mchost/model/open_files.h"
#include "mchost/session/keyin.h"
#include "mchost/space/vector.h"
#include "mchost/view/keyin.h"
#include "mchost/view/words.h"

namespace host {
namespace {

constexpr std::string_view help =
    "  reference list: tells what is attached to the drawing; N below is a number from there, or all\n"
    "  reference attach FILE [x,y [SCALE [DEGREES]]] | detach N | file N FILE\n"
    "  reference on N | off N | level N NAME on|off [VIEW]\n"
    "  reference move N x,y | scale N FACTOR [x,y] | rotate N DEGREES [x,y]\n"
    "  reference clip N fence | none | element x,y | x,y x,y x,y...\n";

// Why a call failed has been told by then.
void require(int status) {
    if (status != MDL_SUCCESS) mdlSystem_noteFailure();
}

// A name with blanks stands in quotes.
std::string takeName(std::string_view& rest) {
    rest = trimmed(rest);
    std::string name;
    if (rest.starts_with('"')) {
        const size_t end = std::min(rest.find('"', 1), rest.size());
        name = rest.substr(1, end - 1);
        rest = trimmed(rest.substr(std::min(end + 1, rest.size())));
    } else {
        name = takeWord(rest);
    }
    if (name.empty()) refuse("No file is named. Give its name.");
    return name;
}

// Those that a number, or "all", means.
std::vector<ModelRef*> takeReferences(std::string_view& rest) {
    const std::string_view word = takeWord(rest);
    std::vector<ModelRef*> places = attachedPlaces();
    if (places.empty()) refuse("Nothing is attached to the drawing.");
    if (sameName(word, "all")) return places;
    const auto number = numberIn<uint32_t>(word);
    std::erase_if(places, [&](const ModelRef* place) { return place->number != number; });
    if (places.empty())
        refuse(quoted(word) + " is no reference. Give a number that \"reference list\" tells, or \"all\".");
    return places;
}

// ---- the verbs ----

// What is in a reference stands below it, a little to the right.
void list(ModelRef& place, size_t depth) {
    toolSubsystem_printf("%s\n", (std::string(2 * depth, ' ') + lineOf(place)).c_str());
    openFiles().follow(place);
    for (const auto& child : place.below) list(*child, depth + 1);
}

void listAll(std::string_view rest) {
    takeNothingMore(rest);
    const std::vector<ModelRef*> places = attachedPlaces();
    if (places.empty()) toolSubsystem_printf("Nothing is attached to the drawing.\n");
    for (ModelRef* place : places) list(*place, 0);
}

RotMatrix turnBy(double degrees) {
    RotMatrix turn;
    mdlRMatrix_fromAngle(&turn, degrees * std::numbers::pi / 180);
    return turn;
}

void attach(std::string_view rest) {
    const std::string name = takeName(rest);
    MdlRefPlacement placement = {{}, identityMatrix, 1};
    if (!rest.empty()) placement.offset = takePoint(rest);
    if (!rest.empty()) placement.scale = takeNumber(rest, "a scale");
    if (!rest.empty()) placement.rotation = turnBy(takeNumber(rest, "an angle"));
    takeNothingMore(rest);
    ModelRef* place = nullptr;
    mdlUndo_mark("attach a reference");
    require(mdlRefFile_attachAt(&place, nullptr, name.c_str(), &placement));
    if (place) toolSubsystem_printf("attached: %s\n", lineOf(*place).c_str());
}

void detach(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    takeNothingMore(rest);
    mdlUndo_mark("detach references");
    for (ModelRef* place : places) require(mdlRefFile_detachModel(place));
}

void setFile(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    const std::string name = takeName(rest);
    takeNothingMore(rest);
    mdlUndo_mark("give a reference another file");
    for (ModelRef* place : places) require(mdlRefFile_setFileName(nullptr, name.c_str(), place));
}

template <int32_t on>
void switchShown(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    takeNothingMore(rest);
    const int32_t shown = on, hidden = 0;
    mdlUndo_mark("switch references");
    for (ModelRef* place : places) {
        require(mdlRefFile_setParameters(&shown, MDL_REFERENCE_SHOWN, place));
        if (on != 0 && attachmentOf(*place)->hidden)
            require(mdlRefFile_setParameters(&hidden, MDL_REFERENCE_HIDDEN, place));
    }
}

void setLevel(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    std::string_view last = takeLastWord(rest);
    int32_t view = -1;
    if (!sameName(last, "on") && !sameName(last, "off")) {
        view = viewNamed(last);
        last = takeLastWord(rest);
    }
    const bool on = onOrOff(last);
    const std::wstring name = wideName(rest);
    mdlUndo_mark("switch levels of a reference");
    bool any = false;
    for (ModelRef* place : places) {
        const Level* const level = place->file ? findLevel(place->file->model, name) : nullptr;
        for (int32_t in = 0; level && in < viewCount; ++in) {
            if (view == -1 || view == in) require(mdlRefFile_setLevelOn(place, in, level->id, on));
        }
        any = any || level;
    }
    if (!any) refuse("The reference has no level " + quoted(rest) + ". Capitals count.");
}

// ---- where they lie ----

void transformAll(const std::vector<ModelRef*>& places, const char* step, const RotMatrix& by, const Point3d* fixed) {
    mdlUndo_mark(step);
    for (ModelRef* place : places) {
        const auto& f = attachmentOf(*place)->toParent.form;
        const Point3d about = fixed ? *fixed : Point3d{f[0][3], f[1][3], f[2][3]};
        Transform transform;
        mdlTMatrix_fromRMatrix(&transform, &by);
        const Point3d moved = about - applyToPoint(transform, about);
        mdlTMatrix_translate(&transform, &transform, moved.x, moved.y, moved.z);
        require(mdlRefFile_transform(&transform, place));
    }
}

void move(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    const Point3d by = takePoint(rest);
    takeNothingMore(rest);
    Transform transform;
    mdlTMatrix_translate(&transform, nullptr, by.x, by.y, by.z);
    mdlUndo_mark("move references");
    for (ModelRef* place : places) require(mdlRefFile_transform(&transform, place));
}

// About a point, or else the origin of each.
void transformFrom(std::string_view rest, const std::vector<ModelRef*>& places, const char* step, const RotMatrix& by) {
    Point3d fixed;
    const bool given = !rest.empty();
    if (given) fixed = takePoint(rest);
    takeNothingMore(rest);
    transformAll(places, step, by, given ? &fixed : nullptr);
}

void scale(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    const double factor = takeNumber(rest, "a factor");
    if (!(factor > 0)) refuse("A reference can't be scaled by that. Give a factor above 0.");
    transformFrom(rest, places, "scale references", {{{factor, 0, 0}, {0, factor, 0}, {0, 0, factor}}});
}

void rotate(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    const double degrees = takeNumber(rest, "an angle");
    transformFrom(rest, places, "turn references", turnBy(degrees));
}

// ---- clips ----

std::vector<Point3d> fenceCorners() {
    const Fence* const fence = activeFence();
    if (!fence) refuse("There is no fence. Place one first.");
    std::vector<Point3d> corners = fence->corners;
    if (corners.size() > 1 && corners.front() == corners.back()) corners.pop_back();
    return corners;
}

std::vector<Point3d> cornersIn(std::string_view rest) {
    std::vector<Point3d> corners;
    while (!rest.empty()) corners.push_back(takePoint(rest));
    if (corners.size() < 3)
        refuse("A clip has 3 corners or more. Give them as x,y, or \"fence\", \"element\", \"none\".");
    return corners;
}

FilePos closedElementAt(const Point3d& point) {
    ModelRef& active = *openPlace(nullptr);
    for (const Hit& hit : hitsAt(active, aimAt(point, 0))) {
        if (canClip(active.file->model.elements.element(hit.position))) return hit.position;
    }
    refuse("There is no shape, complex shape or ellipse within reach of this point. Point nearer to one.");
}

void clipByElement(const std::vector<ModelRef*>& places, std::string_view rest) {
    const FilePos element = closedElementAt(takePoint(rest));
    takeNothingMore(rest);
    mdlUndo_mark("clip references");
    for (ModelRef* place : places) require(mdlRefFile_setClipElement(element, place));
}

void clip(std::string_view rest) {
    const std::vector<ModelRef*> places = takeReferences(rest);
    std::string_view behind = rest;
    const std::string_view word = takeWord(behind);
    if (sameName(word, "element")) return clipByElement(places, behind);
    const bool none = sameName(word, "none"), fence = sameName(word, "fence");
    if (none || fence) takeNothingMore(behind);
    const std::vector<Point3d> corners = none ? std::vector<Point3d>() : fence ? fenceCorners() : cornersIn(rest);
    mdlUndo_mark("clip references");
    for (ModelRef* place : places)
        require(mdlRefFile_setClip(corners.data(), static_cast<int32_t>(corners.size()), place));
}

// ---- the line ----

struct Verb {
    std::string_view word;
    void (*carryOut)(std::string_view rest);
};
constexpr auto verbs = std::to_array<Verb>({
    {"list", listAll},
    {"attach", attach},
    {"detach", detach},
    {"file", setFile},
    {"on", switchShown<1>},
    {"off", switchShown<0>},
    {"level", setLevel},
    {"move", move},
    {"scale", scale},
    {"rotate", rotate},
    {"clip", clip},
});

void carryOut(std::string_view line) {
    requireDesignFile();
    const std::string_view word = takeWord(line);
    const auto verb = std::ranges::find_if(verbs, [&](const Verb& v) { return sameName(v.word, word); });
    if (verb == verbs.end())
        refuse(quoted(word) + " is nothing that is done to references. Give one of: " +
               listed(verbs, [](const Verb& v) { return v.word; }) + ".");
    verb->carryOut(line);
}

[[maybe_unused]] const bool added = addHostWord({"reference", help, carryOut});

}  // namespace
}  // namespace host
