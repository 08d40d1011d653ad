// What is seen over the drawing as it is stored: what commands have erased, drawn and highlighted by
// mdlElement_display and its like, the dynamics of the one that runs, and what is located. It is the same in every view
// and never gets into the design file. The next change of the active model, another design file, and a command that
// begins, begins anew or ends take all of it away.
#pragma once

#include <cstdint>
#include <vector>

#include "mchost/mdl/owned.hpp"

namespace host {

// What was drawn over it, in UOR of the active model.
struct Overdrawn {
    mdl::DescrPtr ed;
    bool highlighted;
};

struct Overlay {
    // A part of an element of the active model that isn't seen: the component of that number in depth-first order from
    // 1, or with 0 the whole element.
    struct Erased {
        FilePos position;
        uint32_t number;
        bool operator==(const Erased&) const = default;
    };
    std::vector<Erased> erased = {};
    std::vector<Overdrawn> drawn = {};         // in the order in which it was drawn
    std::vector<mdl::DescrPtr> dynamics = {};  // of the last move of the cursor; seen above all

    bool isErased(FilePos position, uint32_t number = 0) const;
};
// As it is now.
const Overlay& overlay();
// Whether an element of the active model is to be seen highlighted, with all of its components: it is located or
// selected.
bool isHighlighted(FilePos position);
// Has the front end show its views anew when what is seen there isn't what it was the last time.
void tellWhatIsSeen();

// ---- for the files of this room ----

void clearOverlay();
void clearDynamics();
// What is displayed in MDL_DYNAMICS from now on is kept, or isn't.
void keepDynamics(bool on);

}  // namespace host
