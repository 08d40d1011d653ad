// What a merge of references shares.
#pragma once

#include <memory>

#include "mchost/mdl/bitmask.h"
#include "mchost/mdl/clip.h"
#include "mchost/mdl/owned.hpp"

namespace mc::design {

struct FreeMask {
    void operator()(MdlBitMask* mask) const { mdlBitMask_free(&mask); }
};
struct FreeClip {
    void operator()(ClipDescr* clip) const { mdlClip_free(&clip); }
};

// What bounds a reference. Clipped without a shape, filled shapes can't be cut along it.
struct Boundary {
    std::unique_ptr<ClipDescr, FreeClip> clip;
    mdl::Descr shape;
    bool isClipped = false;
};

// One reference that is being merged.
struct Merging {
    ModelRef* reference;
    int32_t view;                                  // from 0
    std::unique_ptr<MdlBitMask, FreeMask> levels;  // of the reference, that the view shows
    bool levelSymbology;
    double scale;
    Transform toMaster;
    Boundary boundary;
};

// A line for the console about what isn't in the drawing as the view showed it, or not at all; whoever asked for the
// merge hears of it by the exit status too.
void tellLoss(const char* line);

// Copies an element of the reference, as the view shows it.
void mergeElement(const Merging& merging, const ElementDescr* ed);

// What a clip leaves of a descriptor: `ed` itself when it cuts nothing, and when it fails, which the console tells;
// null for nothing; else a new one, which the caller frees.
ElementDescr* clipped(ElementDescr* ed, ModelRef* model, const ClipDescr* clip, int32_t view);
// Puts another descriptor, or null, in the place of the one that is held, unless it is that one.
void replaceBy(mdl::Descr& descr, ElementDescr* by);

}  // namespace mc::design
