// What those who copy attached models ask of them.
#include "mchost/mdl/reference_info.h"

#include "mchost/model/attachments.h"
#include "mchost/space/current.h"

using namespace host;

int mdlModelRef_areSame(ModelRef* a, ModelRef* b) noexcept {
    const ModelRef* const place = openPlace(a);
    return place && place == openPlace(b);
}

int mdlModelRef_isActiveModel(ModelRef* model) noexcept {
    return mdlModelRef_areSame(model, nullptr);
}

FilePos mdlModelRef_getEof(ModelRef* model) noexcept {
    const Model* const found = openModel(model);
    return found ? found->elements.nextPosition() : 0;
}

int mdlTMatrix_masterToReference(Transform* out, ModelRef* reference) noexcept {
    Transform inverse;
    if (!out || !openAttachment(reference) || !invert(toMaster(*reference), inverse)) return MDL_ERROR;
    *out = inverse;
    return MDL_SUCCESS;
}

// ---- elements by their ids ----

// A cache stands for the place that it is asked of.
DgnCache* mdlModelRef_getCache(ModelRef* model) noexcept {
    ModelRef* const place = openPlace(model);
    return place && place->file ? reinterpret_cast<DgnCache*>(place) : nullptr;
}

ElementRef* dgnCache_findElemByID(FilePos id, DgnCache* cache) noexcept {
    return cache ? mdlModelRef_getElementRef(reinterpret_cast<ModelRef*>(cache), id) : nullptr;
}
