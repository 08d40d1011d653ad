// Tags as texts.
#include <charconv>
#include <cstring>
#include <iterator>

#include "mchost/mdl/copy.h"
#include "mchost/mdl/reference_info.h"
#include "mchost/mdl/tag.h"
#include "mclib/design/criteria.h"
#include "mclib/design/merge.h"
#include "mclib/design/merging.h"
#include "mclib/frame/errors.h"

using namespace mc;

namespace {

using Text = char[MDL_TEXT_CHARACTERS + 1];

template <class Number, class... Format>
bool writeNumber(Text& text, Number value, Format... format) {
    const auto [end, error] = std::to_chars(text, std::end(text) - 1, value, format...);
    if (error != std::errc()) return false;
    *end = '\0';
    return true;
}

// False for a value that has no text.
bool writeValue(Text& text, const MdlTagValue& value) {
    switch (value.type) {
        case MDL_TAG_STRING: std::memcpy(text, value.string, sizeof text); return true;
        case MDL_TAG_SHORT: return writeNumber(text, value.shortValue);
        case MDL_TAG_LONG: return writeNumber(text, value.longValue);
        case MDL_TAG_DOUBLE: return writeNumber(text, value.doubleValue, std::chars_format::fixed, 3);
        default: return false;
    }
}
static_assert(sizeof(Text) == sizeof MdlTagValue::string);

struct TagLook {
    uint32_t color, weight, level;
    int32_t style;
};

int notCopied() {
    design::tellLoss("ERROR - the text of a tag couldn't be added and is left out\n");
    return MCLIB_ERROR;
}

}  // namespace

int mclibMerge_textFromTag(MSElementBuffer* out, const MSElementBuffer* tag, FilePos, ModelRef* model) {
    Point3d origin;
    TextSize size;
    RotMatrix rotation;
    TextParams params;
    MdlTagValue value;
    int32_t display = 0;
    Text text;
    TagLook look = {};
    if (mdlTag_extract(&origin, &size, &rotation, &display, &params, &value, tag, model) != MDL_SUCCESS)
        return MCLIB_ERROR;
    if (display == 0 || !writeValue(text, value)) return MCLIB_ERROR;
    mdlElement_getSymbology(&look.color, &look.weight, &look.style, tag);
    mdlElement_getProperties(&look.level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, tag);
    wchar_t wide[std::size(text)];
    mdlCnv_convertMultibyteToUnicode(text, -1, wide, static_cast<int>(std::size(wide)));  // as long as the text
    if (mdlText_createWide(out, nullptr, wide, &origin, &rotation, &size, &params, 0) != MDL_SUCCESS)
        return MCLIB_ERROR;
    mdlElement_setSymbology(out, &look.color, &look.weight, &look.style);
    mdlElement_setProperties(out, &look.level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    return MCLIB_SUCCESS;
}

int mclibMerge_replaceTagWithText(const MSElementBuffer* tag, FilePos position, ModelRef* model, int display,
                                  const Transform* transform, const ClipDescr* clip, int isClipped) {
    const design::ElementBuffer text = design::makeElementBuffers(1);
    mdl::Descr descr;
    if (!text || mclibMerge_textFromTag(text.get(), tag, position, model) != MCLIB_SUCCESS) return MCLIB_ERROR;
    if (mdlElmdscr_new(descr.out(), model, text.get()) != MDL_SUCCESS ||
        (transform && mdlElmdscr_transform(descr.get(), transform) != MDL_SUCCESS))
        return notCopied();
    constexpr int32_t anyView = 0;  // the clip knows its own
    if (clip && isClipped) design::replaceBy(descr, design::clipped(descr.get(), model, clip, anyView));
    if (descr && mdlElmdscr_copy(descr.get()) == 0) return notCopied();
    if (mdlModelRef_isActiveModel(model) && mdlElement_undoableDelete(tag, position, display) != MDL_SUCCESS)
        design::tellLoss("ERROR - a tag couldn't be deleted and stands beside its text\n");
    if (descr && display) mdlElmdscr_display(descr.get(), nullptr, MDL_DRAW);
    return MCLIB_SUCCESS;
}
