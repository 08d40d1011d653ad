// The key-ins about views: "view 1 fit", "view 2 level Road off", "view 1".
#include "mchost/view/keyin.h"

#include <algorithm>
#include <array>
#include <numbers>
#include <string>
#include <vector>

#include "mchost/base/number_format.h"
#include "mchost/base/words.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mchost/session/keyin.h"
#include "mchost/view/area.h"
#include "mchost/view/places.h"
#include "mchost/view/seen.h"
#include "mchost/view/words.h"

namespace host {
namespace {

constexpr std::string_view help =
    "  view N: tells what view N, from 1 to 8, shows; \"view all ...\" goes to all that are open\n"
    "  view N fit | zoom FACTOR [x,y] | pan right,up | center x,y | window x,y x,y | open | close | update\n"
    "  view N top | bottom | left | right | front | back | rotate DEGREES\n"
    "  view N level NAME on|off | levels on|off | show WHAT on|off\n";

constexpr auto standardNames = std::to_array<std::string_view>({"top", "bottom", "left", "right", "front", "back"});

struct Control {
    int32_t number;
    std::string_view name;
};
constexpr auto controls = std::to_array<Control>({
    {MDL_VIEW_CONSTRUCTIONS, "constructions"},
    {MDL_VIEW_DIMENSIONS, "dimensions"},
    {MDL_VIEW_TEXTS, "texts"},
    {MDL_VIEW_FILLS, "fills"},
    {MDL_VIEW_WEIGHTS, "weights"},
    {MDL_VIEW_STYLES, "styles"},
    {MDL_VIEW_REFERENCES, "references"},
    {MDL_VIEW_LEVEL_SYMBOLOGY, "overrides"},
});

// Of what a view can't show: sides below 0.001 and above 1e15 UOR, and what isn't finite.
void require(bool done) {
    if (!done) refuse("The view can't show that: the area is too small, too large or too far away. Give another one.");
}

// ---- what is done to one view ----

void fit(int32_t view, std::string_view rest) {
    takeNothingMore(rest);
    require(fitView(view));
}

void zoom(int32_t view, std::string_view rest) {
    const double factor = takeNumber(rest, "a factor");
    if (!(factor > 0)) refuse("A view can't be zoomed by " + shortestNumber(factor) + ". Give a factor above 0.");
    std::optional<Point3d> about;
    if (!rest.empty()) about = takePoint(rest);
    takeNothingMore(rest);
    require(zoomView(view, factor, about));
}

void pan(int32_t view, std::string_view rest) {
    const Point3d by = takePoint(rest);
    takeNothingMore(rest);
    require(panView(view, by.x, by.y));
}

void center(int32_t view, std::string_view rest) {
    const Point3d point = takePoint(rest);
    takeNothingMore(rest);
    require(centerView(view, point));
}

void window(int32_t view, std::string_view rest) {
    const Point3d corner = takePoint(rest), opposite = takePoint(rest);
    takeNothingMore(rest);
    require(setViewWindow(view, corner, opposite));
}

// Turns the drawing counter-clockwise, as the view shows it.
void turn(int32_t view, std::string_view rest) {
    const double degrees = takeNumber(rest, "an angle");
    takeNothingMore(rest);
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, degrees * std::numbers::pi / 180);
    require(turnView(view, turned * viewRotation(view)));
}

template <bool isOpen>
void setOpen(int32_t view, std::string_view rest) {
    takeNothingMore(rest);
    viewToChange(view).isOpen = isOpen;
    noteViewChanged(view);
}

void update(int32_t view, std::string_view rest) {
    takeNothingMore(rest);
    tellViewChanged(view);
}

void showControl(int32_t view, std::string_view rest) {
    const bool on = onOrOff(takeLastWord(rest));
    const auto found =
        std::ranges::find_if(controls, [&](const Control& control) { return sameName(control.name, rest); });
    if (found == controls.end()) {
        refuse("A view has no switch " + quoted(rest) +
               ". Give one of: " + listed(controls, [](const Control& control) { return control.name; }) + ".");
    }
    mdlView_setDisplayControl(view, found->number, on);
}

// ---- levels ----

// Of the active model and of all that the view shows with it.
std::vector<std::wstring> levelsOf(int32_t view) {
    std::vector<std::wstring> names;
    const auto add = [&](const Model& model) {
        for (const Level& level : model.levels) names.push_back(level.name);
    };
    const std::vector<ShownPlace> places = shownPlaces(view);
    for (const ShownPlace& shown : places) add(*openModel(shown.place));
    if (const Model* const own = places.empty() ? levelModel(nullptr) : nullptr) add(*own);
    std::ranges::sort(names);
    const auto doubled = std::ranges::unique(names);
    names.erase(doubled.begin(), doubled.end());
    return names;
}

void setLevel(int32_t view, std::string_view rest) {
    const bool on = onOrOff(takeLastWord(rest));
    const std::wstring name = wideName(rest);
    const std::vector<std::wstring> names = levelsOf(view);
    if (std::ranges::find(names, name) == names.end() && !viewAt(view).levelsOff.contains(name)) {
        constexpr size_t mostNamed = 20;
        const std::span<const std::wstring> some(names.data(), std::min(names.size(), mostNamed));
        refuse("The drawing has no level " + quoted(rest) + ". Give one of: " + listed(some, narrowName) +
               (names.size() > mostNamed ? ", ..." : "") + ". Capitals count.");
    }
    setLevelOn(view, name, on);
}

void setAllLevels(int32_t view, std::string_view rest) {
    const bool on = onOrOff(rest);
    const std::vector<std::wstring> names = on ? std::vector<std::wstring>() : levelsOf(view);
    viewToChange(view).levelsOff = LevelNames(names.begin(), names.end());
    noteViewChanged(view);
}

// ---- how a view is ----

std::string directionOf(const RotMatrix& rotation) {
    for (size_t i = 0; i < standardNames.size(); ++i) {
        RotMatrix standard;
        mdlView_getStandard(&standard, static_cast<int32_t>(i) + 1);
        double away = 0;
        for (int axis = 0; axis < 3; ++axis) away += distance(column(standard, axis), column(rotation, axis));
        if (away < 1e-9) return std::string(standardNames[i]);
    }
    const Point3d towards = unrotate(rotation, {0, 0, 1});
    const double angle = std::atan2(-rotation.form[0][1], rotation.form[0][0]) * 180 / std::numbers::pi;
    if (std::fabs(towards.z - 1) < 1e-9) return "top, turned by " + formatNumber("%.6g", angle).value_or("?");
    return "turned freely";
}

void tell(int32_t view) {
    const View& shown = lookAt(view);
    std::string off;
    for (const Control& control : controls) {
        const bool usual = (usualControls & bitOf(control.number)) != 0;
        if (shown.shows(control.number) != usual) off += ", " + std::string(control.name) + (usual ? " off" : " on");
    }
    std::string levels;
    for (const std::wstring& name : shown.levelsOff)
        levels += (levels.empty() ? "; levels off: " : ", ") + narrowName(name);
    const std::string text = "view " + std::to_string(view + 1) + (shown.isOpen ? ": open, " : ": closed, ") +
                             directionOf(shown.rotation) + ", from " + pointText(shown.origin) + ", " +
                             inMaster(shown.extent.x) + " by " + inMaster(shown.extent.y) + off + levels;
    toolSubsystem_printf("%s\n", text.c_str());
}

// ---- the line ----

struct Verb {
    std::string_view word;
    void (*carryOut)(int32_t view, std::string_view rest);
};
constexpr auto verbs = std::to_array<Verb>({
    {"fit", fit},
    {"zoom", zoom},
    {"pan", pan},
    {"center", center},
    {"window", window},
    {"rotate", turn},
    {"open", setOpen<true>},
    {"close", setOpen<false>},
    {"update", update},
    {"level", setLevel},
    {"levels", setAllLevels},
    {"show", showControl},
});

void carryOutOn(int32_t view, std::string_view word, std::string_view rest) {
    if (word.empty()) return tell(view);
    const auto named = [&](std::string_view name) { return sameName(name, word); };
    const auto standard = std::ranges::find_if(standardNames, named);
    const auto verb = std::ranges::find_if(verbs, named, &Verb::word);
    if (verb != verbs.end()) return verb->carryOut(view, rest);
    if (standard == standardNames.end()) {
        refuse("A view can't do " + quoted(word) +
               ". Give one of: " + listed(verbs, [](const Verb& v) { return v.word; }) + ", " +
               listed(standardNames, [](std::string_view name) { return name; }) + ".");
    }
    takeNothingMore(rest);
    RotMatrix rotation;
    mdlView_getStandard(&rotation, static_cast<int32_t>(standard - standardNames.begin()) + 1);
    require(turnView(view, rotation));
}

std::vector<int32_t> viewsMeant(std::string_view word) {
    std::vector<int32_t> open;
    for (int32_t view = 0; view < viewCount; ++view) {
        if (viewAt(view).isOpen) open.push_back(view);
    }
    if (sameName(word, "all")) return open;
    return {viewNamed(word)};
}

void carryOut(std::string_view line) {
    const std::string_view name = takeWord(line), word = takeWord(line);
    for (const int32_t view : viewsMeant(name)) carryOutOn(view, word, line);
}

[[maybe_unused]] const bool added = addHostWord({"view", help, carryOut});

}  // namespace

int32_t viewNamed(std::string_view word) {
    const auto number = wholeNumberOf(word);
    if (!number || !isView(static_cast<int32_t>(std::clamp<long long>(*number, 0, viewCount + 1) - 1)))
        refuse(quoted(word) + " isn't a view. Give a number from 1 to 8.");
    return static_cast<int32_t>(*number) - 1;
}

}  // namespace host
