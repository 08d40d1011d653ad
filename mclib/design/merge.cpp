// References merged into the drawing.
#include "mclib/design/merge.h"

#include <memory>
#include <span>

#include "mchost/mdl/level.h"
#include "mchost/mdl/matrix.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/reference_info.h"
#include "mchost/mdl/undo.h"
#include "mchost/mdl/view.h"
#include "mclib/design/criteria.h"
#include "mclib/design/merging.h"

using namespace mc::design;

namespace {

struct FreeInfo {
    void operator()(MdlReferenceInfo* info) const { mdlRefFile_freeInfo(&info); }
};
using InfoPtr = std::unique_ptr<MdlReferenceInfo, FreeInfo>;

struct FreeIterator {
    void operator()(ModelRefIterator* iterator) const { mdlModelRefIterator_free(&iterator); }
};

void tell(const char* what, ModelRef* reference) {
    char name[512] = "";
    mdlRefFile_getFileName(name, sizeof name, reference);
    toolSubsystem_printf("%s: %s\n", name, what);
}

// ---- the boundary ----

// The element of the parent whose inside is shown.
bool makeShapeOfElement(mdl::Descr& shape, ModelRef* reference, FilePos id) {
    ModelRef* const parent = mdlModelRef_getParent(reference);
    if (!parent || mdlModelRef_areSame(parent, reference)) return false;
    ElementRef* const found = dgnCache_findElemByID(id, mdlModelRef_getCache(parent));
    const ElementBuffer element = makeElementBuffers(1);
    return found && element && elementRef_getElement(found, element.get(), MDL_ELEMENT_BYTES) != 0 &&
           mdlElmdscr_new(shape.out(), parent, element.get()) == MDL_SUCCESS;
}

bool makeShapeOfPoints(mdl::Descr& shape, const MdlReferenceInfo& info, int32_t view) {
    const auto count = static_cast<size_t>(info.clipCount);
    const mdl::HostPtr<Point3d> block(static_cast<Point3d*>(dlmSystem_mdlMalloc(count * sizeof(Point3d))));
    const ElementBuffer element = makeElementBuffers(1);
    if (!block || !element) return false;
    const std::span corners(block.get(), count);
    for (size_t i = 0; i < count; ++i) corners[i] = {info.clip[i].x, info.clip[i].y, 0};
    RotMatrix rotation;
    if (mdlRMatrix_fromView(&rotation, view) == MDL_SUCCESS && !mdlRMatrix_isIdentity(&rotation))
        mdlRMatrix_unrotatePointArray(corners.data(), &rotation, info.clipCount);
    for (Point3d& corner : corners) corner = {corner.x + info.offset.x, corner.y + info.offset.y, corner.z};
    const mdl::CurrTransScope inUor(mdl::CurrTransScope::Begin::uor);
    return inUor && mdlShape_create(element.get(), nullptr, corners.data(), info.clipCount, 0) == MDL_SUCCESS &&
           mdlElmdscr_new(shape.out(), nullptr, element.get()) == MDL_SUCCESS;
}

// False when the reference has a boundary that can't be told: nothing of it is shown, and nothing of it is merged.
bool findBoundary(Boundary& boundary, ModelRef* reference, int32_t view) {
    ClipDescr* clip = nullptr;
    if (mdlClip_getRefBoundary(&clip, reference, view) != MDL_SUCCESS || !clip) return true;
    boundary.clip.reset(clip);
    boundary.isClipped = true;
    MdlReferenceInfo* found = nullptr;
    mdlRefFile_getInfo(&found, reference, view);
    const InfoPtr info(found);
    if (!info) return false;
    if (info->clipCount == 0) return makeShapeOfElement(boundary.shape, reference, info->clipElement);
    if (!makeShapeOfPoints(boundary.shape, *info, view)) tellLoss("Error creating shape from ref fence\n");
    return true;
}

// ---- one reference ----

int32_t flagOf(int32_t parameter, ModelRef* reference) {
    int32_t value = 0;
    mdlRefFile_getParameters(&value, parameter, reference);
    return value;
}

bool isWanted(ModelRef* reference) {
    if (!mdlModelRef_isReference(reference) || flagOf(MDL_REFERENCE_HIDDEN, reference) == 1) return false;
    if (flagOf(MDL_REFERENCE_SHOWN, reference) == 0) return false;
    if (flagOf(MDL_REFERENCE_FOUND, reference) != 0) return true;
    tell("the file isn't found, so nothing of it is merged.", reference);
    return false;
}

int takeElement(ElementDescr* ed, void* userArg, ScanCriteria*) {
    mergeElement(*static_cast<const Merging*>(userArg), ed);
    return 0;
}

// False when memory is out.
bool prepare(Merging& merging) {
    ModelRef* const reference = merging.reference;
    merging.levels.reset(mdlBitMask_clone(mdlView_getLevelDisplayMask(reference, merging.view, 2)));
    merging.levelSymbology = mdlView_getDisplayControl(merging.view, MDL_VIEW_LEVEL_SYMBOLOGY) > 0;
    Transform fromMaster;
    return merging.levels && mdlRefFile_getParameters(&merging.scale, MDL_REFERENCE_SCALE, reference) == MDL_SUCCESS &&
           mdlTMatrix_masterToReference(&fromMaster, reference) == MDL_SUCCESS &&
           mdlTMatrix_getInverse(&merging.toMaster, &fromMaster) == MDL_SUCCESS;
}

// Elements that have a component which is shown count, whatever level their header is on. False when there is no scan.
bool scan(const Merging& merging) {
    const mdl::Scan scan(merging.reference);
    ScanCriteria* const criteria = scan.criteria();
    return criteria && mdlScanCriteria_setDrawnElements(criteria) == MDL_SUCCESS &&
           mdlScanCriteria_setLevelTest(criteria, merging.levels.get(), 1, 0) == MDL_SUCCESS &&
           mdlScanCriteria_setStopPosition(criteria, mdlModelRef_getEof(merging.reference)) == MDL_SUCCESS &&
           mdlScanCriteria_setReturnType(criteria, MDL_SCAN_DESCRIPTORS, 0, 1) == MDL_SUCCESS &&
           mdlScanCriteria_setElmDscrCallback(criteria, takeElement, const_cast<Merging*>(&merging)) == MDL_SUCCESS &&
           mdlScanCriteria_scan(criteria, nullptr, nullptr, nullptr) == MDL_SUCCESS;
}

// False when the walk of references ends here.
bool mergeReference(ModelRef* reference, int32_t view) {
    Merging merging = {reference, view, {}, false, 1, {}, {}};
    if (!prepare(merging) || !findBoundary(merging.boundary, reference, view)) {
        tell("its place or boundary can't be told, so nothing of it is merged.", reference);
        return true;
    }
    if (scan(merging)) return true;
    tell("it can't be scanned, so it isn't merged as a whole.", reference);
    mdlSystem_noteFailure();
    return false;
}

void mergeAll(int32_t view) {
    ModelRefIterator* made = nullptr;
    mdlModelRefIterator_create(&made, mdlModelRef_getActive(), MDL_ITERATE_REFERENCES, -1);
    const std::unique_ptr<ModelRefIterator, FreeIterator> all(made);
    if (!all) return;
    for (ModelRef* reference = mdlModelRefIterator_getFirst(all.get()); reference;
         reference = mdlModelRefIterator_getNext(all.get()))
        if (isWanted(reference) && !mergeReference(reference, view)) return;
}

const char* whyNot(int viewNumber) {
    ModelRef* const active = mdlModelRef_getActive();
    if (!active) return "no design file is open";
    if (mdlModelRef_isReadOnly(active)) return "the drawing is open to be read only";
    return viewNumber < 1 || viewNumber > 8 ? "the view isn't one from 1 to 8" : nullptr;
}

}  // namespace

void mclibMerge_refFiles(int viewNumber) {
    if (const char* why = whyNot(viewNumber)) {
        toolSubsystem_printf("ERROR - References can't be merged: %s\n", why);
        return;
    }
    mdlUndo_mark("Merge references");
    mergeAll(viewNumber - 1);
    mdlRefFile_detach(-1);  // fails when there is none
    mdlUndo_mark(nullptr);
}
