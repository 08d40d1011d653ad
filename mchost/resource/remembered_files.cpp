// Records of remembered files: in resource files, and for the length of a session.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/open_files.h"
#include "mchost/session/owned_state.h"

namespace host {

namespace {

constexpr int32_t recordType = MDL_RSC_TYPE('U', 's', 'F', 'i');

// The stored form has every field where the structure has it; texts are bytes, and numbers are turned where the
// machine's order isn't that of the file.
static_assert(sizeof(UserFileRecord) == 11032);
static_assert(offsetof(UserFileRecord, version) == 4 && offsetof(UserFileRecord, fileName) == 8);
static_assert(offsetof(UserFileRecord, filter) == 264 && offsetof(UserFileRecord, directory) == 520);
static_assert(offsetof(UserFileRecord, fileCount) == 776 && offsetof(UserFileRecord, fileHistory) == 780);
static_assert(offsetof(UserFileRecord, filterCount) == 3340 && offsetof(UserFileRecord, filterHistory) == 3344);
static_assert(offsetof(UserFileRecord, reserved) == 5904);
static_assert(offsetof(UserFileRecord, directoryCount) == 8468 && offsetof(UserFileRecord, directoryHistory) == 8472);

constexpr size_t paddingBegin = 1, paddingEnd = 4;
constexpr size_t numbers[] = {offsetof(UserFileRecord, version), offsetof(UserFileRecord, fileCount),
                              offsetof(UserFileRecord, filterCount), offsetof(UserFileRecord, directoryCount)};

using RecordBytes = std::vector<unsigned char>;

void turnNumbers(unsigned char* bytes) {
    if constexpr (std::endian::native == std::endian::big)
        for (const size_t at : numbers) std::reverse(bytes + at, bytes + at + sizeof(int32_t));
}

RecordBytes encoded(const UserFileRecord& record) {
    RecordBytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    std::fill(bytes.begin() + paddingBegin, bytes.begin() + paddingEnd, 0);
    turnNumbers(bytes.data());
    return bytes;
}

void endTexts(char (&texts)[10][256]) {
    for (auto& text : texts) text[255] = '\0';
}

// Bytes of another make, or of a damaged file, can't lead a reader out of the record. The lists of a record that isn't
// ours mean nothing, and stay as they are.
UserFileRecord decoded(const void* bytes, size_t size) {
    UserFileRecord record = {};
    std::memcpy(&record, bytes, std::min(size, sizeof record));
    turnNumbers(reinterpret_cast<unsigned char*>(&record));
    record.fileName[255] = record.filter[255] = record.directory[255] = '\0';
    if (record.marker != MDL_USER_FILE_MARKER || record.version != MDL_USER_FILE_VERSION) return record;
    for (int32_t* count : {&record.fileCount, &record.filterCount, &record.directoryCount})
        *count = std::clamp(*count, 0, int32_t{MDL_HISTORY_MOST});
    endTexts(record.fileHistory);
    endTexts(record.filterHistory);
    endTexts(record.directoryHistory);
    return record;
}

// ---- records of the session ----

struct SessionRecords {  // of an application
    std::map<int32_t, UserFileRecord> byId;
};

int keepForSession(const UserFileRecord& record, int32_t id) {
    applicationState<SessionRecords>(mdlSystem_getCurrMdlDesc()).byId[id] = record;
    return MDL_SUCCESS;
}

int sessionRecord(UserFileRecord& record, int32_t id) {
    const auto& records = applicationState<SessionRecords>(mdlSystem_getCurrMdlDesc()).byId;
    const auto found = records.find(id);
    if (found == records.end()) return MDL_ERROR;
    record = found->second;
    return MDL_SUCCESS;
}

}  // namespace

}  // namespace host

using namespace host;

int mdlUserPrefs_getFileName(UserFileRecord* record, RscHandle handle, int32_t id) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!record) return MDL_ERROR;
        if (handle == 0) return sessionRecord(*record, id);
        void* block = mdlResource_load(handle, recordType, id);
        if (!block) return MDL_ERROR;
        *record = decoded(block, static_cast<size_t>(mdlResource_size(block)));
        return mdlResource_free(block);
    });
}

int mdlUserPrefs_saveFileName(const UserFileRecord* record, RscHandle handle, int32_t id) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!record) return MDL_ERROR;
        if (handle == 0) return keepForSession(*record, id);
        const std::vector<OpenStore> stores = openStores(handle);
        if (!stores.empty() && stores[0].mode != MDL_RSC_WRITE) return MDL_RSC_READ_ONLY;
        const RecordBytes bytes = encoded(*record);
        return writeTo(handle, [&](ResourceStore& store) {
            store.put(Put::either, recordType, id, std::as_bytes(std::span(bytes)), 0, "Remembered files");
        });
    });
}
