#include "mchost/element/build.h"

#include "mchost/element/linkage.h"
#include "mchost/mdl/system.h"

namespace host {
namespace {

template <class T>
T activeSetting(int parameter, T fallback) {
    T value;
    return mdlParams_getActive(&value, parameter) == MDL_SUCCESS ? value : fallback;
}

ElementHead activeHead() {
    ElementHead head{};
    head.level = static_cast<uint32_t>(activeSetting<int32_t>(MDL_PARAM_LEVEL, 1));
    head.color = activeSetting<int32_t>(MDL_PARAM_COLOR, 0);
    head.weight = static_cast<int16_t>(activeSetting<int32_t>(MDL_PARAM_WEIGHT, 0));
    head.style = activeSetting<int32_t>(MDL_PARAM_STYLE, 0);
    head.properties = MDL_PROP_NEW | MDL_PROP_MODIFIED;
    return head;
}

}  // namespace

NewElement::NewElement(MSElementBuffer* out, const MSElementBuffer* templateP, int type) : out_(out) {
    head_ = templateP ? headOf(templateP) : activeHead();
    if (templateP) readLineStyleLinkage(templateP, style_);
    head_.type = static_cast<uint16_t>(type);
    head_.zero = 0;
    if (!isClosedType(type)) head_.properties &= ~(MDL_PROP_FILLED | MDL_PROP_HOLE);
}

void NewElement::setFilled(bool filled) {
    if (filled)
        head_.properties |= MDL_PROP_FILLED;
    else
        head_.properties &= ~MDL_PROP_FILLED;
}

uint8_t* NewElement::body(size_t bytes) {
    const size_t padded = (bytes + 7) & ~size_t{7}, end = headBytes + padded;
    const size_t styleBytes = mdlLinkage_getWords(&style_.header) * 2;
    if (bytes > MDL_ELEMENT_BYTES || end + styleBytes > MDL_ELEMENT_BYTES) return nullptr;
    head_.attributeOffset = static_cast<uint32_t>(end / 2);
    head_.size = head_.attributeOffset + static_cast<uint32_t>(styleBytes / 2);
    std::memcpy(out_->bytes + end, &style_, styleBytes);
    storeAt(out_, 0, head_);
    std::memset(out_->bytes + headBytes + bytes, 0, padded - bytes);
    return out_->bytes + headBytes;
}

}  // namespace host
