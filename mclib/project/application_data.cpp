// Application data elements: making, writing and finding them.
#include "mclib/project/application_data.h"

#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/project/application_block.h"
#include "resources/ids.h"

namespace mc {

namespace {

using mc::application_data::Block;
using mc::application_data::ElementBytes;

constexpr int dwgWorkmode = 1;
constexpr const char* dwgKeepsDataVariable = "MS_DWGSAVEAPPLICATIONDATA";

// ---- writing ----

bool canBeStored(const void* data, int length) {
    return length >= 0 && length <= MCLIB_APPLICATION_DATA_BYTES && (data || length == 0);
}

ElementBytes makeElement(int applicationId, int subId, const void* data, int length) {
    return application_data::makeElement(applicationId, subId,
                                         {static_cast<const uint8_t*>(data), static_cast<size_t>(length)});
}

void warnWhereDataIsLost() {
    char value[256];
    if (mdlSystem_getWorkmode() == dwgWorkmode && mdlSystem_getenv(value, dwgKeepsDataVariable, sizeof value) != 0)
        mc::showNotice(ids::errors::applicationDataNotKept);
}

// ---- reading ----

// The block of that application in an element of the host.
std::optional<Block> blockOf(const MSElementBuffer* element, int applicationId) {
    if (!element || element->head.size > MDL_ELEMENT_BYTES / 2) return {};
    const auto block = application_data::readElement({element->bytes, size_t{element->head.size} * 2});
    return block && block->applicationId == applicationId ? block : std::nullopt;
}

// ---- scanning ----

struct Search {
    void* userData;
    int applicationId;
    ModelRef* model;
    MclibApplicationDataVisit visit;
    bool isNative;
    int found = 0;

    // The visit's result; 0 for an element that isn't a block of the application.
    int look(FilePos position, int32_t index) {
        const mdl::DescrPtr descriptor = mdl::readDescr(position, model);
        MSElementBuffer* const element = descriptor ? descriptor->element : nullptr;
        const auto block = blockOf(element, applicationId);
        if (!block) return 0;
        ++found;
        void* data = const_cast<uint8_t*>(block->payload.data());
        const auto size = static_cast<int32_t>(block->payload.size());
        if (isNative) return visit(userData, block->subId, element, position, index, data, size);
        return dlmSystem_callMdlFunction("PIPIIPI", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(visit),
                                         userData, block->subId, element, position, index, data, size);
    }
};

// The number of blocks, or, from the block that ended the search, its index + 1.
int runSearch(Search& search) {
    const mdl::Scan scan(search.model);
    if (!scan) return 0;
    mdlScanCriteria_addSingleElementTypeTest(scan.criteria(), application_data::elementType);
    mdlScanCriteria_addSingleLevelTest(scan.criteria(), application_data::elementLevel);
    mdlScanCriteria_setReturnType(scan.criteria(), MDL_SCAN_POSITIONS, 0, 1);
    for (auto position = scan.begin(); position != scan.end(); ++position) {
        const int32_t index = position.indexInPortion();
        if (search.look(*position, index) != 0) return index + 1;
    }
    return search.found;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclib66Elem_saveData(MSElementBuffer* element, int applicationId, int subId, const void* data, int length) {
    if (!element || !canBeStored(data, length)) return MCLIB_ERROR;
    const ElementBytes made = makeElement(applicationId, subId, data, length);
    std::memcpy(element, made.data(), static_cast<size_t>(length) + 40);
    return MCLIB_SUCCESS;
}

int mclib66Elem_saveDataToFile(int applicationId, int subId, const void* data, int length, FilePos* position) {
    if (!canBeStored(data, length)) return MCLIB_ERROR;
    const ElementBytes made = makeElement(applicationId, subId, data, length);
    const FilePos added = mdlElement_add(reinterpret_cast<const MSElementBuffer*>(made.data()));
    if (position) *position = added;
    warnWhereDataIsLost();
    return added != 0 ? int{MCLIB_SUCCESS} : int{MCLIB_ELEMENT_NOT_ADDED};
}

int mclib66Elem_getData(MSElementBuffer* element, int applicationId, int* subId, void** data, int* size) {
    if (data) *data = nullptr;
    const auto block = blockOf(element, applicationId);
    if (!block) return MCLIB_ERROR;
    if (data) *data = const_cast<uint8_t*>(block->payload.data());
    if (size) *size = static_cast<int>(block->payload.size());
    if (subId) *subId = block->subId;
    return MCLIB_SUCCESS;
}

int mclib66Elem_scanDataFromFile(void* userData, int applicationId, ModelRef* model, MclibApplicationDataVisit visit) {
    return mclib66Elem_scanDataFromFileExtended(userData, applicationId, model, visit, 0);
}

int mclib66Elem_scanDataFromFileExtended(void* userData, int applicationId, ModelRef* model,
                                         MclibApplicationDataVisit visit, int isNative) {
    if (!visit) return 0;
    Search search = {userData, applicationId, model, visit, isNative != 0};
    return runSearch(search);
}
