#include "references.h"

#include <algorithm>

#include <mclib/app/tell.hpp>

namespace merge {
namespace {

bool isOn(ModelRef* place, int32_t parameter) {
    int32_t value = 0;
    return mdlRefFile_getParameters(&value, parameter, place) == MDL_SUCCESS && value != 0;
}

std::string fileOf(ModelRef* place) {
    char name[4096] = "";
    return mdlRefFile_getFileName(name, sizeof name, place) == MDL_SUCCESS ? name : "";
}

}  // namespace

std::vector<ModelRef*> attachedTo(ModelRef* model, bool nested) {
    std::vector<ModelRef*> places;
    ModelRefIterator* iterator = nullptr;
    if (mdlModelRefIterator_create(&iterator, model, MDL_ITERATE_REFERENCES, nested ? -1 : 1) != MDL_SUCCESS)
        return places;
    for (ModelRef* place = mdlModelRefIterator_getFirst(iterator); place; place = mdlModelRefIterator_getNext(iterator))
        places.push_back(place);
    mdlModelRefIterator_free(&iterator);
    return places;
}

std::vector<std::string> missingFrom(ModelRef* model) {
    std::vector<std::string> names;
    for (ModelRef* place : attachedTo(model, true)) {
        const bool isShown = isOn(place, MDL_REFERENCE_SHOWN) && !isOn(place, MDL_REFERENCE_HIDDEN);
        if (isShown && !isOn(place, MDL_REFERENCE_FOUND)) names.push_back(fileOf(place));
    }
    std::ranges::sort(names);
    const auto doubled = std::ranges::unique(names);
    names.erase(doubled.begin(), doubled.end());
    return names;
}

std::vector<std::string> filesOf(ModelRef* model) {
    std::vector<std::string> files;
    for (ModelRef* place : attachedTo(model, false))
        files.push_back(isOn(place, MDL_REFERENCE_FOUND) ? fileOf(place) : "");
    return files;
}

bool attachSameFiles(const std::vector<std::string>& files) {
    const std::vector<ModelRef*> places = attachedTo(nullptr, false);
    if (places.size() != files.size()) return mcapp::fail("the copy of the drawing doesn't show what it shows itself");
    for (size_t i = 0; i < files.size(); ++i) {
        const bool isIt = isOn(places[i], MDL_REFERENCE_FOUND) && fileOf(places[i]) == files[i];
        const int status = files[i].empty() ? mdlRefFile_detachModel(places[i])
                           : isIt           ? int{MDL_SUCCESS}
                                            : mdlRefFile_setFileName(nullptr, files[i].c_str(), places[i]);
        if (status != MDL_SUCCESS) return false;
    }
    return true;
}

}  // namespace merge
