// Texts in the boxes of a symbol.
#include "mclib/design/symbol_texts.h"

#include <algorithm>
#include <array>
#include <span>

#include "mchost/mdl/element.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/modify.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/design/merge.h"

namespace mc::design {

namespace {

template <class Value>
mdl::HostPtr<Value> makeArray(int32_t count) {
    return mdl::HostPtr<Value>(static_cast<Value*>(
        mclibMem_mallocRscErrorPrintf(static_cast<size_t>(count) * sizeof(Value), MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY)));
}

Point3d placed(const Point3d& origin, const Point3d& corner, double scale) {
    return {origin.x + corner.x * scale, origin.y + corner.y * scale, origin.z + corner.z * scale};
}

// A text without a box lies everywhere.
bool liesIn(const MSElementBuffer& text, const Point3d& low, const Point3d& high) {
    std::array<Point3d, 5> shape;  // the last corner is the first one again
    if (mdlText_extractShape(shape.data(), nullptr, &text, 0, 0) != MDL_SUCCESS) return true;
    return std::ranges::any_of(std::span(shape).first<4>(), [&](const Point3d& corner) {
        return low.x < corner.x && corner.x < high.x && low.y < corner.y && corner.y < high.y;
    });
}

int isThere(MSElementBuffer*, void*, int32_t, int32_t, ElementDescr*) {
    return 1;
}

}  // namespace

SymbolTexts::SymbolTexts(const SearchElementSpec& spec) : spec_(spec), model_(mdlModelRef_getActive()), scan_(model_) {
    if (!scan_) return;
    for (const int32_t type : {MDL_CELL_HEADER, MDL_TEXT_NODE, MDL_TEXT, MDL_TAG})
        mdlScanCriteria_addSingleElementTypeTest(scan_.criteria(), type);
}

bool SymbolTexts::begin() {
    const int32_t count = spec_.textSpecCount;
    if (!texts_) texts_ = makeElementBuffers(static_cast<size_t>(count));
    if (texts_ && !errors_) errors_ = makeArray<int32_t>(count);
    if (errors_ && !tagText_) tagText_ = makeElementBuffers();
    if (tagText_ && !places_) places_ = makeArray<Place>(count);
    if (!places_ || !scan_) return false;
    std::fill_n(places_.get(), count, Place{});
    foundCount_ = 0;
    return true;
}

bool SymbolTexts::find(const BaseElement& base) {
    if (!begin()) return false;
    const double scale = (spec_.flags & SEARCH_SCALE_REGIONS) != 0 ? base.size : 1;
    for (int32_t i = 0; i < spec_.regionCount; ++i) {
        const Point3d one = placed(base.origin, spec_.regionLow[i], scale);
        const Point3d other = placed(base.origin, spec_.regionHigh[i], scale);
        if (!lookIn({std::min(one.x, other.x), std::min(one.y, other.y), one.z},
                    {std::max(one.x, other.x), std::max(one.y, other.y), other.z}))
            return false;
    }
    return foundCount_ == spec_.textSpecCount;
}

// False when nothing at all is there.
bool SymbolTexts::lookIn(const Point3d& low, const Point3d& high) {
    if (!setBox(scan_.criteria(), low, high, Depth::all)) return false;
    const Batch positions(scan_.criteria());
    if (positions.isCut) toolSubsystem_printf("Scan buffer full!!\n%s may be corrupt\n", tcbP->designFileName);
    for (const FilePos position : positions) {
        const mdl::DescrPtr element = mdl::readDescr(position, model_);
        Candidate candidate = {*this, position, low, high};
        if (element) mdlElmdscr_operation(element.get(), lookAtComponent, &candidate, MDL_DESCR_ELEMENTS);
    }
    return positions.count != 0;
}

int SymbolTexts::lookAtComponent(MSElementBuffer* element, void* candidateP, int32_t, int32_t, ElementDescr*) {
    auto& candidate = *static_cast<Candidate*>(candidateP);
    SymbolTexts& texts = candidate.texts;
    const int type = mdlElement_getType(element);
    if (type == MDL_TEXT) texts.check(*element, candidate);
    if (type == MDL_TAG &&
        mclibMerge_textFromTag(texts.tagText_.get(), element, candidate.position, texts.model_) == MCLIB_SUCCESS)
        texts.check(*texts.tagText_, candidate);
    ++candidate.component;
    return 0;
}

void SymbolTexts::check(const MSElementBuffer& text, const Candidate& candidate) {
    if (!liesIn(text, candidate.low, candidate.high)) return;
    for (int32_t i = 0; i < spec_.textSpecCount; ++i) {
        Place& place = places_.get()[i];
        if (place.isFound) continue;
        const int errors = errorsAgainst(spec_.textSpecs[i], text);
        if (errors > spec_.textSpecs[i].maxErrors) continue;
        place = {candidate.position, candidate.component, true};
        errors_.get()[i] = errors;
        mdlElement_memcpy(&texts_.get()[i], &text);
        ++foundCount_;
        if (errors == 0) return;  // a text that fits is used up; one that nearly does may serve for another one too
    }
}

// More than it may have when the text doesn't fit.
int SymbolTexts::errorsAgainst(const SearchTextSpec& wanted, const MSElementBuffer& text) const {
    constexpr int no = INT32_MAX;
    char words[MCLIB_SEARCH_TEXT_SIZE];
    double height = 0;
    const ElementFilter filter = {wanted.levelMask, wanted.weight, wanted.style, wanted.color};
    if (!filter.accepts(text) || mdlText_extract(nullptr, nullptr, nullptr, nullptr, words, nullptr, nullptr, nullptr,
                                                 &height, nullptr, &text) != MDL_SUCCESS)
        return no;
    if (!Limits{wanted.minHeight, wanted.maxHeight}.accept(height)) return no;
    const Pattern pattern({wanted.pattern, strnlen(wanted.pattern, sizeof wanted.pattern)},
                          (wanted.flags & SEARCH_CASE_SENSITIVE) != 0);
    return errorsOfText(words, pattern, (wanted.flags & SEARCH_IGNORE_BLANKS) != 0, wanted.maxErrors);
}

bool SymbolTexts::anyErrors() const {
    return std::any_of(errors(), errors() + spec_.textSpecCount, [](int32_t count) { return count > 0; });
}

// ---- deleting ----

void SymbolTexts::deleteFromDrawing() const {
    const Place* const places = places_.get();
    for (int32_t i = 0; i < spec_.textSpecCount; ++i) {
        const FilePos position = places[i].position;
        const bool isDone =
            std::any_of(places, places + i, [&](const Place& before) { return before.position == position; });
        if (!isDone && !deleteElement(position))
            toolSubsystem_printf("ERROR - The texts of element %u can't be deleted: the drawing can't be written\n",
                                 static_cast<unsigned>(position));
    }
}

bool SymbolTexts::isTakenWhole(FilePos position, int32_t component) const {
    for (int32_t i = 0; i < spec_.textSpecCount; ++i) {
        const Place& place = places_.get()[i];
        if (place.position == position && place.component == component && errors()[i] == 0) return true;
    }
    return false;
}

int SymbolTexts::removeComponent(MSElementBuffer*, void* removalP, ModelRef*, ElementDescr*, ElementDescr**) {
    auto& removal = *static_cast<Removal*>(removalP);
    const bool isTaken = removal.texts.isTakenWhole(removal.position, removal.component++);
    return isTaken ? MDL_MODIFY_REMOVE : MDL_MODIFY_NONE;
}

// What is left of a complex element is in the drawing before the whole of it goes.
bool SymbolTexts::deleteElement(FilePos position) const {
    mdl::Descr rest;
    if (mdlElmdscr_read(rest.out(), position, model_) == 0) return false;
    FilePos added = 0;
    if (rest.get()->firstChild) {
        Removal removal = {*this, position};
        mdlModify_elementDescr2(rest.out(), model_, MDL_MODIFY_NO_HEADERS, removeComponent, &removal, 0);
        if (mdlElmdscr_operation(rest.get(), isThere, nullptr, MDL_DESCR_ELEMENTS) != 0) {
            mdlElmdscr_validate(rest.get(), model_);
            added = mdlElmdscr_add(rest.get());
            if (added == 0) return false;
        }
    }
    if (mdlElement_undoableDelete(nullptr, position, 0) == MDL_SUCCESS) return true;
    if (added != 0) mdlElement_undoableDelete(nullptr, added, 0);
    return false;
}

}  // namespace mc::design
