// Elements of a reference, as a view shows them, copied into the active model.
#include <cstdio>
#include <utility>

#include "mchost/mdl/compound.h"
#include "mchost/mdl/copy.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/modify.h"
#include "mchost/mdl/region.h"
#include "mclib/design/merge.h"
#include "mclib/design/merging.h"

namespace mc::design {
namespace {

void copy(const ElementDescr* ed) {
    if (mdlElmdscr_copy(ed) == 0) tellLoss("ERROR - an element couldn't be copied and is left out\n");
}

// ---- adjusting ----

struct Adjustment {
    const Merging& merging;
    bool compoundCopy;  // each element is copied by itself
};

bool isOfType(const ElementDescr* node, int type) {
    return node && mdlElement_getType(node->element) == type;
}

bool isShown(const MSElementBuffer* element, const MdlBitMask* levels) {
    uint32_t level = 0;
    mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, element);
    return mdlBitMask_testBit(levels, level - 1) != 0;
}

void scaleBy(LineStyleParams& params, uint32_t modifier, double& value, double scale) {
    value = params.modifiers & modifier ? value * scale : scale;
    params.modifiers |= modifier;
}

bool scaleLineStyle(MSElementBuffer* element, double scale) {
    LineStyleParams params;
    if (mdlElement_getLineStyle(nullptr, &params, element) != MDL_SUCCESS) return false;
    scaleBy(params, LINE_STYLE_SCALE, params.scale, scale);
    scaleBy(params, LINE_STYLE_DASH_SCALE, params.dashScale, scale);
    scaleBy(params, LINE_STYLE_GAP_SCALE, params.gapScale, scale);
    return mdlElement_setLineStyle(element, nullptr, &params) == MDL_SUCCESS;
}

struct Symbology {
    uint32_t color, weight;
    int32_t style;
};

bool takeLevelSymbology(MSElementBuffer* element, ModelRef* model) {
    uint32_t level = 0;
    Symbology own = {}, its = {};
    int32_t color = 0, style = 0, weight = 0;
    mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, element);
    mdlElement_getSymbology(&own.color, &own.weight, &own.style, element);
    if (mdlLevel_getSymbology(&its.color, &its.style, &its.weight, &color, &style, &weight, model, level) !=
        MDL_SUCCESS)
        return false;
    if (color) own.color = its.color;
    if (style) own.style = its.style;
    if (weight) own.weight = its.weight;
    return mdlElement_setSymbology(element, &own.color, &own.weight, &own.style) == MDL_SUCCESS;
}

void copyAlone(const MSElementBuffer* element, ModelRef* model) {
    mdl::Descr alone;
    if (mdlElmdscr_new(alone.out(), model, element) == MDL_SUCCESS)
        copy(alone.get());
    else
        tellLoss("ERROR - an element couldn't be copied and is left out\n");
}

// Headers of cells and text nodes have no look: their components are asked about. Those of a complex shape have none of
// their own.
int adjust(MSElementBuffer* element, void* userArg, ModelRef* model, ElementDescr* node, ElementDescr**) {
    const auto& [merging, compoundCopy] = *static_cast<const Adjustment*>(userArg);
    const int type = mdlElement_getType(element);
    if (type == MDL_CELL_HEADER || type == MDL_TEXT_NODE || isOfType(node->parent, MDL_COMPLEX_SHAPE))
        return MDL_MODIFY_NONE;
    if (!isShown(element, merging.levels.get())) return MDL_MODIFY_REMOVE;
    bool changed = scaleLineStyle(element, merging.scale);
    if (merging.levelSymbology && takeLevelSymbology(element, model)) changed = true;
    if (compoundCopy) copyAlone(element, model);
    return changed ? MDL_MODIFY_CHANGED : MDL_MODIFY_NONE;
}

// Headers whose components have all been removed.
void dropEmptyHeaders(ElementDescr** edPP) {
    for (ElementDescr *node = *edPP, *next; node; node = next) {
        next = node->next;
        const int type = mdlElement_getType(node->element);
        if (node->firstChild || (type != MDL_CELL_HEADER && type != MDL_TEXT_NODE)) continue;
        if (node == *edPP) *edPP = next;
        mdlElmdscr_removeElement(node);
    }
}

void finish(const Merging& merging, mdl::Descr& descr, bool compoundCopy) {
    if (!descr) return;
    Adjustment adjustment = {merging, compoundCopy};
    mdlModify_elementDescr2(descr.out(), merging.reference, MDL_MODIFY_ALL, adjust, &adjustment, 0);
    if (!descr || compoundCopy) return;
    dropEmptyHeaders(descr.out());
    if (descr) copy(descr.get());
}

// ---- clipping ----

struct FilledLook {
    Symbology symbology;
    uint32_t level, fill;
};

int takeLook(MSElementBuffer* element, void* userArg, ModelRef*, ElementDescr*, ElementDescr**) {
    const auto& [symbology, level, fill] = *static_cast<const FilledLook*>(userArg);
    mdlElement_setSymbology(element, &symbology.color, &symbology.weight, &symbology.style);
    mdlElement_setProperties(element, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    return MDL_MODIFY_CHANGED;
}

void fillAs(mdl::Descr& shapes, const MSElementBuffer* source) {
    FilledLook look = {};
    mdlElement_getSymbology(&look.symbology.color, &look.symbology.weight, &look.symbology.style, source);
    mdlElement_getProperties(&look.level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, source);
    mdlModify_elementDescr2(shapes.out(), nullptr, MDL_MODIFY_ALL, takeLook, &look, 0);
    if (mdlElement_getFillColor(&look.fill, source) != MDL_SUCCESS || mdlElmdscr_addFill(shapes.get()) != MDL_SUCCESS ||
        mdlElmdscr_setFillColor(shapes.get(), &look.fill) != MDL_SUCCESS)
        tellLoss("ERROR - a shape couldn't be filled\n");
}

// A filled outline that is cut stays one.
void clipKeepingFill(const Merging& merging, mdl::Descr& descr) {
    constexpr double tolerance = 1.0;
    if (!merging.boundary.isClipped) return;
    ElementDescr* const source = descr.get();
    ElementDescr* const left = clipped(source, merging.reference, merging.boundary.clip.get(), merging.view);
    if (left && left != source && mdlElmdscr_isClosed(source) && mdlElement_isFilled(source->element)) {
        mdl::Descr shapes;
        const int error = mdlElmdscr_intersectShapes(shapes.out(), source, merging.boundary.shape.get(), tolerance);
        if (error == MDL_SUCCESS) {
            if (shapes) fillAs(shapes, source->element);
            mdl::DescrPtr(left).reset();
            replaceBy(descr, std::exchange(*shapes.out(), nullptr));
            return;
        }
        char line[64];
        std::snprintf(line, sizeof line, "error in intersection operation, type: %d\n", error);
        tellLoss(line);
    }
    replaceBy(descr, left);
}

// ---- elements ----

void mergeTag(const Merging& merging, const ElementDescr* ed) {
    const Boundary& boundary = merging.boundary;
    mclibMerge_replaceTagWithText(ed->element, ed->filePos, merging.reference, 0, &merging.toMaster,
                                  boundary.clip.get(), boundary.isClipped);
}

void mergeCompound(const Merging& merging, const ElementDescr* ed, const char* warning) {
    mdl::Descr parts;
    if (mdlElmdscr_fromCompoundElement(parts.out(), ed->element, merging.reference) != MDL_SUCCESS ||
        mdlElmdscr_transform(parts.get(), &merging.toMaster) != MDL_SUCCESS) {
        tellLoss(warning);
        return;
    }
    if (merging.boundary.isClipped)
        replaceBy(parts, clipped(parts.get(), merging.reference, merging.boundary.clip.get(), merging.view));
    finish(merging, parts, true);
}

void mergeOther(const Merging& merging, const ElementDescr* ed) {
    mdl::Descr descr;
    if (mdlElmdscr_readToMaster(descr.out(), ed->filePos, merging.reference) == 0) {
        tellLoss("ERROR - an element couldn't be read and is left out\n");
        return;
    }
    clipKeepingFill(merging, descr);
    finish(merging, descr, false);
}

}  // namespace

void tellLoss(const char* line) {
    toolSubsystem_printf("%s", line);
    mdlSystem_noteFailure();
}

ElementDescr* clipped(ElementDescr* ed, ModelRef* model, const ClipDescr* clip, int32_t view) {
    ElementDescr* left = nullptr;
    if (mdlClip_element(&left, ed, model, clip, view) == MDL_SUCCESS) return left;
    tellLoss("Error clipping element!\n");
    return ed;
}

void replaceBy(mdl::Descr& descr, ElementDescr* by) {
    if (by == descr.get()) return;
    mdlElmdscr_freeAll(descr.out());
    *descr.out() = by;
}

void mergeElement(const Merging& merging, const ElementDescr* ed) {
    switch (mdlElement_getType(ed->element)) {
        case MDL_TAG: mergeTag(merging, ed); break;
        case MDL_DIMENSION:
            mergeCompound(merging, ed,
                          "\t==> WARNING: Could not get descr from compound, DIMENSION element skipped!\n");
            break;
        case MDL_MULTILINE:
            mergeCompound(merging, ed,
                          "\t==> WARNING: Could not get descr from compound, MULTILINE element skipped!\n");
            break;
        default: mergeOther(merging, ed);
    }
}

}  // namespace mc::design
