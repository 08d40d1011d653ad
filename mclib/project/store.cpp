// Project and page records in the design file.
#include "mclib/project/store.h"

#include <cstring>
#include <string>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/project/application_data.h"
#include "mclib/project/records.h"
#include "resources/ids.h"

namespace mc {

namespace {

// A record that a scan shows.
struct Record {
    int32_t subId;
    std::span<const uint8_t> payload;
    MSElementBuffer* element;
    FilePos position;

    void remove() const { mdlElement_undoableDelete(element, position, 0); }
};

// Calls look(record) for each record of the active model that has that application id; the number of them.
template <class Look>
int forEachRecord(int applicationId, Look look) {
    const auto visit = [](void* userData, int32_t subId, MSElementBuffer* element, FilePos position, int32_t,
                          void* data, int32_t size) {
        const std::span payload(static_cast<const uint8_t*>(data), static_cast<size_t>(size));
        (*static_cast<Look*>(userData))(Record{subId, payload, element, position});
        return 0;
    };
    return mclib66Elem_scanDataFromFileExtended(&look, applicationId, mdlModelRef_getActive(), visit, 1);
}

// Fills the block; a message tells of a record of an unknown form.
template <class Block>
void readRecord(Block& block, const Record& record) {
    if (!project::unpackRecord(block, record.subId, record.payload))
        mc::showNotice(ids::errors::unknownRecordForm, record.subId);
}

template <class Block>
void addRecord(int applicationId, const Block& block, mc::Question<> written) {
    const std::string payload = project::packRecord(block);
    FilePos position = 0;
    if (mclib66Elem_saveDataToFile(applicationId, project::currentForm, payload.data(),
                                   static_cast<int>(payload.size()), &position) != MCLIB_SUCCESS) {
        mc::showNotice(ids::errors::recordNotAdded);
        mdlSystem_noteFailure();
    } else {
        mdl::printMessage(MDL_FIELD_STATUS, written);
    }
}

static_assert(sizeof(mclibSideData::pageName) == PAGE_NAME_LETTERS + 1);

bool isSamePage(const char* a, const char* b) {
    return std::strncmp(a, b, PAGE_NAME_LETTERS) == 0;
}

bool isIn(const char* const* names, const char* name) {
    while (*names && !isSamePage(*names, name)) ++names;
    return *names;
}

bool isToGo(const char* name, const char* pageName, const char* const* keepNames) {
    if (keepNames) return !isIn(keepNames, name);
    return !pageName || isSamePage(name, pageName);
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibProject_readProjectInfoFromDesignFile(mclibProsjektData* project) {
    if (!project) return 0;
    *project = {};
    return forEachRecord(MCLIB_PROJECT_DATA, [&](const Record& record) { readRecord(*project, record); });
}

void mclibProject_writeProjectInfoToDesignFile(const mclibProsjektData* project) {
    if (!project) return;
    forEachRecord(MCLIB_PROJECT_DATA, [](const Record& record) { record.remove(); });
    addRecord(MCLIB_PROJECT_DATA, *project, ids::questions::projectWritten);
}

void mclibProject_readPageInfoFromDesignFile(mclibSideData* page, const char* pageName) {
    if (!page) return;
    mclibSideData wanted = {};
    fillText(wanted.wantedPageName, pageName ? pageName : "");
    *page = wanted;
    const int met = forEachRecord(MCLIB_PAGE_DATA, [&](const Record& record) {
        mclibSideData fresh = {};
        readRecord(fresh, record);
        if (std::strcmp(fresh.pageName, wanted.wantedPageName) == 0) *page = fresh;
    });
    if (met != 0) mdl::printMessage(MDL_FIELD_STATUS, ids::questions::pageRead);
}

void mclibProject_writePageInfoToDesignFile(const mclibSideData* page) {
    if (!page) return;
    const std::string_view name(page->pageName, strnlen(page->pageName, sizeof page->pageName - 1));
    forEachRecord(MCLIB_PAGE_DATA, [&](const Record& record) {
        mclibSideData fresh = {};
        if (project::unpackRecord(fresh, record.subId, record.payload) && fresh.pageName == name) record.remove();
    });
    addRecord(MCLIB_PAGE_DATA, *page, ids::questions::pageWritten);
}

int mclibProject_deletePageInfoFromDesignFile(const char* pageName, const char* const* keepNames) {
    return forEachRecord(MCLIB_PAGE_DATA, [&](const Record& record) {
        mclibSideData fresh = {};
        readRecord(fresh, record);
        if (isToGo(fresh.pageName, pageName, keepNames)) record.remove();
    });
}
