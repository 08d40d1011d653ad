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
                 (angle == 0.0 || mdlCurrTrans_rotateByAngles(0, 0, angle) == MDL_SUCCESS)) {}

    explicit operator bool() const { return ready_; }

  private:
    mdl::CurrTransScope scope_;
    bool ready_;
};

// While it stands, coordinates are UOR, turned as the view.
class ViewSystem {
  public:
    explicit ViewSystem(int view) : scope_(mdl::CurrTransScope::Begin::uor) { mdlCurrTrans_rotateByView(view); }

  private:
    mdl::CurrTransScope scope_;
};

// Points of the file in the current system, and back.
inline Point3d toLocal(const Point3d& world) {
    Point3d local;
    mdlCurrTrans_invtransPointArray(&local, &world, 1);
    return local;
}
inline Point3d toWorld(const Point3d& local) {
    Point3d world;
    mdlCurrTrans_transformPointArray(&world, &local, 1);
    return world;
}

// A builder that fails leaves the buffer as it was: what it held before isn't to be taken for the new element.
inline void emptyBuffer() {
    dgnBufP->head = {};
}

// A copy of the node and what follows it, with components; null when memory is out.
inline mdl::DescrPtr duplicate(const ElementDescr* first) {
    ElementDescr* copy = nullptr;
    return mdl::DescrPtr(mdlElmdscr_duplicate(&copy, first) == MDL_SUCCESS ? copy : nullptr);
}

// A descriptor that begins with the element in the buffer.
inline bool startDescr(ElementDescr*& ed) {
    return mdlElmdscr_new(&ed, nullptr, dgnBufP) == MDL_SUCCESS;
}

}  // namespace mc::arrows
