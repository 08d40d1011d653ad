// The user data linkage, and the plot fences that are found by it.
#include "geometry/userdata.h"

#include <array>
#include <bit>
#include <cstring>

#include "frame/error.h"
#include "host/mdl/elmdscr.h"
#include "host/mdl/model.h"
#include "host/mdl/reference.h"
#include "host/mdl/scan.h"
#include "host/mdl/system.h"

static_assert(std::endian::native == std::endian::little, "the linkage is stored as it lies in memory");

namespace {

constexpr size_t keysAt = sizeof(LinkageHeader);
constexpr size_t dataAt = keysAt + 2 * sizeof(int16_t);

// Length of the linkage that holds so many bytes of data, in words: a multiple of 4.
constexpr uint32_t linkageWords(uint32_t size) {
    return ((size + 1) / 2 + 7) / 4 * 4;
}
constexpr size_t maxLinkageBytes = 2 * linkageWords(MCLIB_MAX_USER_DATA);
static_assert(maxLinkageBytes == 8200);

struct Keys {
    int16_t key1, key2;
};

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
    std::array<uint8_t, maxLinkageBytes> data;
    int key2 = 0, size = 0;
    ElementDescr* ed = nullptr;
    if (mdlElmdscr_readToMaster(&ed, position, model) == 0) return nullptr;
    MSElementBuffer* fence = nullptr;
    if (mclibAttrib_extractElementUserData(ed->element, MCLIB_PLOT_FENCE, &key2, data.data(), &size) == MCLIB_SUCCESS) {
        const uint32_t bytes = mdlElement_bytes(ed->element);
        fence = static_cast<MSElementBuffer*>(mclibMem_mallocRscErrorPrintf(bytes, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
        if (fence != nullptr) std::memcpy(fence, ed->element, bytes);
    }
    mdlElmdscr_freeAll(&ed);
    return fence;
}

// Shows one shape to the callback when it is a plot fence; true when the search of this model is over.
bool offerShape(const PlotFenceSearch& search, FilePos position, ModelRef* model) {
    MSElementBuffer* fence = readPlotFence(position, model);
    if (fence == nullptr) return false;
    const int32_t reply =
        dlmSystem_callAnyFunction("PIPP", search.application, reinterpret_cast<void*>(search.callback), fence,
                                  static_cast<int32_t>(position), model, search.userArg);
    if (reply == 0) dlmSystem_mdlFree(fence);
    return reply != 0;
}

void searchModel(const PlotFenceSearch& search, ScanCriteria* criteria, ModelRef* model) {
    constexpr int32_t wordsOfPosition = sizeof(FilePos) / sizeof(uint16_t);
    std::array<FilePos, 128> positions;
    FilePos start = 0;
    int status = MDL_SCAN_MORE;
    while (status == MDL_SCAN_MORE) {
        int32_t words = positions.size() * wordsOfPosition;
        status = mdlScanCriteria_scan(criteria, positions.data(), &words, &start);
        if (words == 0 || (status != MDL_SCAN_MORE && status != MDL_SUCCESS)) return;
        for (int32_t i = 0; i < words / wordsOfPosition; ++i) {
            if (offerShape(search, positions[i], model)) return;
        }
    }
}

// A scan of the shapes of a model; null when it can't be had.
ScanCriteria* shapeScan(ModelRef* model) {
    constexpr uint32_t allClasses = 0;
    constexpr int32_t positions = 1;
    ScanCriteria* criteria = mdlScanCriteria_create();
    if (criteria == nullptr) return nullptr;
    mdlScanCriteria_setModel(criteria, model);
    mdlScanCriteria_addSingleElementTypeTest(criteria, MDL_SHAPE);
    mdlScanCriteria_setClassTest(criteria, allClasses);
    mdlScanCriteria_setReturnType(criteria, positions, 0, 0);
    return criteria;
}

}  // namespace

int mclibAttrib_appendElementUserData(short key1, short key2, MSElementBuffer* element, const void* data,
                                      unsigned size) {
    if (size > MCLIB_MAX_USER_DATA) {
        toolSubsystem_printf("Userdata er for stor. buffersize=%d\n", static_cast<int>(size));
        return MCLIB_ERROR;
    }
    alignas(LinkageHeader) std::array<uint8_t, maxLinkageBytes> block{};
    LinkageHeader header = {MDL_LINKAGE_USER, MCLIB_USER_DATA_ID};
    mdlLinkage_setWords(&header, linkageWords(size));
    const Keys keys = {key1, key2};
    std::memcpy(&block[keysAt], &keys, sizeof keys);
    if (size > 0) std::memcpy(&block[dataAt], data, size);
    return mdlLinkage_appendToElement(element, &header, &block[keysAt], 0, 0);
}

int mclibAttrib_extractElementUserData(const MSElementBuffer* element, int key1, int* key2P, void* data, int* sizeP) {
    std::array<uint8_t, maxLinkageBytes> block;
    if (mdlLinkage_extractFromElement(block.data(), element, MCLIB_USER_DATA_ID, nullptr, nullptr, nullptr, nullptr) !=
        MDL_SUCCESS) {
        return MCLIB_ERROR;
    }
    LinkageHeader header;
    Keys keys;
    std::memcpy(&header, block.data(), sizeof header);
    std::memcpy(&keys, &block[keysAt], sizeof keys);
    if (keys.key1 != key1) return MCLIB_ERROR;
    const int size = 2 * static_cast<int>(mdlLinkage_getWords(&header)) - static_cast<int>(dataAt);
    if (key2P != nullptr) *key2P = keys.key2;
    if (sizeP != nullptr) *sizeP = size;
    if (data != nullptr) std::memcpy(data, &block[dataAt], size);
    return MCLIB_SUCCESS;
}

int mclibUtil_findAllPlotFence(PlotFenceFunction callback, void* userArg) {
    const PlotFenceSearch search = {mdlSystem_getCurrMdlDesc(), callback, userArg};
    ModelRefIterator* models = nullptr;
    if (mdlModelRefIterator_create(&models, mdlModelRef_getActive(), MDL_ITERATE_ACTIVE | MDL_ITERATE_REFERENCES, 0) !=
        MDL_SUCCESS) {
        return 0;
    }
    for (ModelRef* model = mdlModelRefIterator_getFirst(models); model != nullptr;
         model = mdlModelRefIterator_getNext(models)) {
        if (!isShown(model)) continue;
        ScanCriteria* criteria = shapeScan(model);
        if (criteria == nullptr) break;
        searchModel(search, criteria, model);
        mdlScanCriteria_free(&criteria);
    }
    mdlModelRefIterator_free(&models);
    return 0;
}
