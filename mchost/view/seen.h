// What of a model a view shows: for pictures, for locating, for the fit.
#pragma once

#include <vector>

#include "mchost/mdl/element.h"
#include "mchost/model/model.h"

namespace host {

// What one view shows of one model, as levels and controls of the view are at the beginning. It is asked about one node
// at a time: the components of an element for themselves, those of a complex shape by their header.
class Seen {
  public:
    // Of a number that is a view; for an attached model by the levels that are off there as well.
    Seen(int32_t view, const Model& model, const Attachment* attachment = nullptr);
    bool operator()(const ElementHead& head) const {
        return sees(head.type, head.level, head.properties & MDL_PROP_CLASS);
    }
    bool operator()(const ElementKey& key) const { return sees(key.type, key.level, key.elementClass); }

  private:
    bool sees(int type, LevelId level, int elementClass) const;

    const View& view_;
    std::vector<bool> levelsOff_;  // by level id
};

// Whether any node of an element at a live position is seen.
bool seesAny(const Seen& seen, const Model& model, FilePos position);

// Of the active model; false while there is none.
bool isSeen(const ElementHead& head, int32_t view);

// Whether the view shows levels of that name, where the model is attached so.
bool isLevelOn(int32_t view, const std::wstring& name, const Attachment* attachment);
// All levels of that name.
void setLevelOn(int32_t view, const std::wstring& name, bool on);

}  // namespace host
