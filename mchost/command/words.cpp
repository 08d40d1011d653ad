// The key-ins about the drawing: "undo", "select all", "snap end", "fence 0,0 10,5".
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "mchost/base/words.h"
#include "mchost/command/command.h"
#include "mchost/command/hits.h"
#include "mchost/command/input.h"
#include "mchost/command/selection.h"
#include "mchost/command/snap.h"
#include "mchost/mdl/fence.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/state.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/undo.h"
#include "mchost/model/model_ref.h"
#include "mchost/session/keyin.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"
#include "mchost/view/words.h"

namespace host {

void requireDesignFile() {
    if (activeModelSerial() == 0) refuse("No design file is open. Open one first.");
}

namespace {

void tell(const std::string& what) {
    mdlOutput_messageCenter(MDL_PRIORITY_INFORMATION, what.c_str(), "", 0);
}

// A place in a view, in UOR.
struct Spot {
    Point3d point;
    int32_t view;
};

// "x,y[,z] [view]"; without it the place of the cursor.
Spot spotIn(std::string_view text) {
    if (text.empty()) return {statedataP->point, statedataP->view};
    const auto input = commandInputIn(text);
    if (!input || input->kind != CommandInput::Kind::point)
        refuse("\"" + std::string(text) +
               "\" isn't a point. Give x,y in master units, and a view from 2 to 8 "
               "behind it unless it is view 1.");
    return {inUor(input->point), input->view};
}

// ---- undo and redo ----

struct Direction {
    int (*nameOf)(char* name, int32_t size);
    int (*take)();
    const char *done, *nothing;
};
constexpr Direction back = {mdlUndo_getUndoName, mdlUndo_undo, "Taken back: ", "There is nothing to take back."};
constexpr Direction forth = {mdlUndo_getRedoName, mdlUndo_redo, "Done again: ", "There is nothing to do again."};

// The command that runs begins anew: what it had in hand may be what was taken back.
void takeStep(const Direction& direction) {
    char name[512] = "";
    direction.nameOf(name, sizeof name);
    const int status = direction.take();
    if (status == MDL_UNDO_NONE) refuse(direction.nothing);
    if (status != MDL_SUCCESS) {
        mdlSystem_noteFailure();  // why has been told
        return;
    }
    tell(direction.done + std::string(*name != '\0' ? name : "the last change") + ".");
    if (commandRuns()) mdlState_restartCurrentCommand();
}

void undo(std::string_view rest) {
    takeNothingMore(rest);
    takeStep(back);
}

void redo(std::string_view rest) {
    takeNothingMore(rest);
    takeStep(forth);
}

// ---- snapping ----

int32_t modeNamed(std::string_view word) {
    const int32_t mode = snapModeNamed(word);
    if (mode == 0)
        refuse("\"" + std::string(word) +
               "\" is nothing to snap to. Give one of: vertex, end, middle, centre, intersection, nearest, or its "
               "number from 1 to 6.");
    return mode;
}

void snap(std::string_view rest) {
    const int32_t mode = modeNamed(takeWord(rest));
    if (!commandRuns()) refuse("No command waits for a point.");
    const Spot spot = spotIn(rest);
    const auto found = snappedIn(mode, spot.point, spot.view);
    if (!found) refuse("No element within reach has such a point. Give a point nearer to one.");
    giveDataPoint(*found, spot.view, Snapping::off);
}

void setSnapping(std::string_view rest) {
    uint32_t modes = 0;
    if (rest != "off") {
        do modes |= 1u << modeNamed(takeWord(rest));
        while (!rest.empty());
    }
    mdlSnap_setModes(modes);
}

// ---- the selection set ----

void tellSelected() {
    const size_t count = selectedElements().size();
    tell(count == 0   ? "Nothing is selected."
         : count == 1 ? "1 element is selected."
                      : std::to_string(count) + " elements are selected.");
}

// The element that is nearest comes into the set, or goes out of it when it is in.
void selectAt(const Spot& spot) {
    const std::vector<Hit> hits = hitsAt(*openPlace(nullptr), aimAt(spot.point, spot.view));
    if (hits.empty()) refuse("There is no element within reach of this point. Point nearer to one.");
    const FilePos position = hits.front().position;
    isSelected(position) ? mdlSelect_removeElement(position, nullptr) : mdlSelect_addElement(position, nullptr);
}

void select(std::string_view rest) {
    requireDesignFile();
    if (rest == "all") {
        mdlSelect_allElements();
    } else if (rest == "none") {
        mdlSelect_freeAll();
    } else if (rest == "fence") {
        if (mdlSelect_byFence() != MDL_SUCCESS) refuse("There is no fence. Place one first.");
    } else if (!rest.empty()) {
        selectAt(spotIn(rest));
    }
    tellSelected();
}

// ---- the fence ----

// With two corners a rectangle as view 1 shows it.
std::vector<Point3d> fenceCorners(std::string_view rest) {
    std::vector<Point3d> corners;
    while (!rest.empty()) corners.push_back(spotIn(takeWord(rest)).point);
    if (corners.size() != 2) return corners;
    const RotMatrix& rotation = viewRotation(0);
    const Point3d a = rotate(rotation, corners[0]), b = rotate(rotation, corners[1]);
    return {corners[0], unrotate(rotation, {b.x, a.y, a.z}), corners[1], unrotate(rotation, {a.x, b.y, a.z})};
}

void fence(std::string_view rest) {
    requireDesignFile();
    if (rest == "none") {
        mdlFence_clear(0);
        return;
    }
    const std::vector<Point3d> corners = fenceCorners(rest);
    const auto count = static_cast<int32_t>(std::min<size_t>(corners.size(), MDL_MAX_POINTS + 1));
    const mdl::CurrTransScope inUor(mdl::CurrTransScope::Begin::uor);
    const auto shape = std::make_unique<MSElementBuffer>();
    if (mdlShape_create(shape.get(), nullptr, corners.data(), count, 0) != MDL_SUCCESS)
        refuse("A fence has two corners that lie across, or three and more all round it. Give them as x,y.");
    mdlFence_setView(0);
    mdlFence_fromShape(shape.get());
}

[[maybe_unused]] const bool added =
    addHostWord({"undo", "  undo | redo: takes back what was done last, or does it again\n", undo}) &&
    addHostWord({"redo", "", redo}) &&
    addHostWord({"snap",
                 "  snap KIND [x,y [view]]: gives the point of that kind which the element nearest to x,y has, or "
                 "nearest to the cursor:\n"
                 "    1 vertex, 2 end, 3 middle, 4 centre, 5 intersection, 6 nearest\n",
                 snap}) &&
    addHostWord({"snapping", "  snapping KIND... | off: snaps all points and moves\n", setSnapping}) &&
    addHostWord(
        {"select", "  select x,y [view] | all | none | fence: selects; x,y takes out what is selected\n", select}) &&
    addHostWord({"fence", "  fence x,y x,y... | none: places the fence, by two corners or all\n", fence});

}  // namespace
}  // namespace host
