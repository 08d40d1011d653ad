// The search for plot fences in the active model and its references.
#include "mclib/geometry/plotfence.h"

#include <array>
#include <cstring>

#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/geometry/userdata.h"

namespace mc {

namespace {

using PlotFenceFunction = int (*)(MSElementBuffer*, FilePos, ModelRef*, void*);

// What a search for plot fences carries along.
struct PlotFenceSearch {
    MdlDesc* application;
    PlotFenceFunction callback;
    void* userArg;
};

int32_t referenceParameter(ModelRef* model, int32_t parameter) {
    int32_t value = 0;
    mdlRefFile_getParameters(&value, parameter, model);
    return value;
}

// A reference counts when it isn't hidden, its file was found and its display is on.
bool isShown(ModelRef* model) {
    constexpr int32_t hidden = 6, found = 4, displayed = 1;
    if (mdlModelRef_isReference(model) == 0) return true;
    return referenceParameter(model, hidden) != 1 && referenceParameter(model, found) != 0 &&
           referenceParameter(model, displayed) != 0;
}

// A copy of the shape at the position when it is a plot fence, else null.
MSElementBuffer* readPlotFence(FilePos position, ModelRef* model) {
    mdl::Descr ed;
    if (mdlElmdscr_readToMaster(ed.out(), position, model) == 0) return nullptr;
    const MSElementBuffer* const element = ed.get()->element;
    MSElementBuffer* fence = nullptr;
    if (mclibAttrib_extractElementUserData(element, MCLIB_PLOT_FENCE, nullptr, nullptr, nullptr) == MCLIB_SUCCESS) {
        const uint32_t bytes = mdlElement_bytes(element);
        fence = static_cast<MSElementBuffer*>(mclibMem_mallocRscErrorPrintf(bytes, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
        if (fence) std::memcpy(fence, element, bytes);
    }
    return fence;
}

// Shows one shape to the callback when it is a plot fence; true when the search of this model is over.
bool offerShape(const PlotFenceSearch& search, FilePos position, ModelRef* model) {
    MSElementBuffer* fence = readPlotFence(position, model);
    if (!fence) return false;
    const int32_t reply =
        dlmSystem_callAnyFunction("PIPP", search.application, reinterpret_cast<void*>(search.callback), fence,
                                  static_cast<int32_t>(position), model, search.userArg);
    if (reply == 0) dlmSystem_mdlFree(fence);
    return reply != 0;
}

// Shows the shapes of a model to the callback. False when memory is out.
bool searchModel(const PlotFenceSearch& search, ModelRef* model) {
    constexpr uint32_t allClasses = 0;
    const mdl::Scan scan(model);
    if (!scan) return false;
    mdlScanCriteria_addSingleElementTypeTest(scan.criteria(), MDL_SHAPE);
    mdlScanCriteria_setClassTest(scan.criteria(), allClasses);
    mdlScanCriteria_setReturnType(scan.criteria(), MDL_SCAN_POSITIONS, 0, 0);
    for (const FilePos position : scan) {
        if (offerShape(search, position, model)) break;
    }
    return true;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibUtil_findAllPlotFence(PlotFenceFunction callback, void* userArg) {
    const PlotFenceSearch search = {mdlSystem_getCurrMdlDesc(), callback, userArg};
    ModelRefIterator* models = nullptr;
    if (mdlModelRefIterator_create(&models, mdlModelRef_getActive(), MDL_ITERATE_ACTIVE | MDL_ITERATE_REFERENCES, 0) !=
        MDL_SUCCESS) {
        return 0;
    }
    for (ModelRef* model = mdlModelRefIterator_getFirst(models); model; model = mdlModelRefIterator_getNext(models)) {
        if (isShown(model) && !searchModel(search, model)) break;
    }
    mdlModelRefIterator_free(&models);
    return 0;
}
