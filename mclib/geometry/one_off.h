// Texts with a justification that their attribute doesn't hold.
#pragma once

#include "mclib/elmattr/attributes.h"

namespace mc {

// While it stands, the attribute has another justification; afterwards it has its own again.
class OneOffJustification {
  public:
    OneOffJustification(int attrId, int just) : attrId_(attrId) {
        known_ = mclibElmAttr_extractData(attrId, &saved_) == MCLIB_SUCCESS;
        if (!known_) return;
        changed_ = saved_;
        changed_.useFlags |= ATTR_USE_JUST;
        changed_.textJust = just;
        mclibElmAttr_editAttribute(attrId, 0, &changed_);
    }
    ~OneOffJustification() {
        if (!known_) return;
        const bool same = saved_.textJust == changed_.textJust && saved_.useFlags == changed_.useFlags;
        if (!same) mclibElmAttr_editAttribute(attrId_, 0, &saved_);
    }
    OneOffJustification(const OneOffJustification&) = delete;
    OneOffJustification& operator=(const OneOffJustification&) = delete;
    bool known() const { return known_; }

  private:
    int attrId_;
    bool known_;
    ElmAttrData saved_, changed_;
};

}  // namespace mc
