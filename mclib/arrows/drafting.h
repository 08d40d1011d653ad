// What builders of arrows share: the system that they build in, and elements on their way into a descriptor.
#pragma once

#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/transform.h"

namespace mc::arrows {

// While it stands, coordinates are master units about the origin (UOR), turned as the view and then by the angle.
class LocalSystem {
  public:
    LocalSystem(const Point3d& origin, int view, double angle)
        : scope_(mdl::CurrTransScope::Begin::masterUnits),
          ready_(scope_ && mdlCurrTrans_rotateByView(view) == MDL_SUCCESS &&
                 mdlCurrTrans_translateOriginWorld(&origin) == MDL_SUCCESS &&
                 mdlCurrTrans_rotateByAngles(0, 0, angle) == MDL_SUCCESS) {}

    explicit operator bool() const { return ready_; }

  private:
    mdl::CurrTransScope scope_;
    bool ready_;
};

// A builder that fails leaves the buffer as it was: what it held before isn't to be taken for the new element.
inline void emptyBuffer() {
    dgnBufP->head = {};
}

// A descriptor that begins with the element in the buffer.
inline bool startDescr(ElementDescr*& ed) {
    return mdlElmdscr_new(&ed, nullptr, dgnBufP) == MDL_SUCCESS;
}

}  // namespace mc::arrows
