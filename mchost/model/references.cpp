// The active model and what is attached to it. No file can be attached so far, so a walk over references is empty.
#include "mchost/mdl/reference.h"

#include "mchost/base/guard.h"
#include "mchost/mdl/model.h"
#include "mchost/model/model_ref.h"

struct ModelRefIterator {
    std::vector<ModelRef*> models;
    size_t next = 0;
};

using namespace host;

int mdlModelRefIterator_create(ModelRefIterator** iteratorP, ModelRef* root, int32_t flags, int32_t) {
    if (!iteratorP) return MDL_ERROR;
    *iteratorP = nullptr;
    return guarded(int{MDL_ERROR}, [&]() -> int {
        ModelRef* place = openPlace(root);
        if (!place) return MDL_ERROR;
        *iteratorP = new ModelRefIterator;
        if (flags & MDL_ITERATE_ACTIVE) (*iteratorP)->models.push_back(place);
        return MDL_SUCCESS;
    });
}

ModelRef* mdlModelRefIterator_getFirst(ModelRefIterator* iterator) {
    if (!iterator) return nullptr;
    iterator->next = 0;
    return mdlModelRefIterator_getNext(iterator);
}

ModelRef* mdlModelRefIterator_getNext(ModelRefIterator* iterator) {
    if (!iterator || iterator->next >= iterator->models.size()) return nullptr;
    return openPlace(iterator->models[iterator->next++]);
}

void mdlModelRefIterator_free(ModelRefIterator** iteratorP) {
    if (!iteratorP) return;
    delete *iteratorP;
    *iteratorP = nullptr;
}

int mdlModelRef_isReference(ModelRef*) {
    return 0;
}

int mdlRefFile_getParameters(void*, int32_t, ModelRef*) {
    return MDL_ERROR;
}
