// Attributes to and from resource files.
#include "mclib/elmattr/resources.h"

#include <cstring>
#include <utility>

#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/resource.h"
#include "mclib/elmattr/records.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/frame/resource_files.h"

namespace mc {

namespace {

// A resource file that is closed when it goes.
class OpenFile {
  public:
    OpenFile(const char* name, int mode) : open_(mclibResource_openFile(&handle_, name, mode) == MCLIB_SUCCESS) {}
    ~OpenFile() {
        if (open_) mclibResource_closeFile(&handle_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    bool isOpen() const { return open_; }
    McHandle& handle() { return handle_; }

  private:
    McHandle handle_ = {};
    bool open_;
};

// Runs work(file, table) on the file and the calling application's attributes; MCLIB_ERROR where one isn't to be had.
template <class Work>
int withFile(const char* fileName, int mode, Work work) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd || !fileName) return MCLIB_ERROR;
    OpenFile file(fileName, mode);
    return file.isOpen() ? work(file.handle(), *gd) : int{MCLIB_ERROR};
}

template <class Bytes>
bool add(McHandle& file, int32_t type, int32_t id, const Bytes& bytes) {
    return mclibResource_add(&file, type, id, bytes.data(), static_cast<int>(bytes.size()), 0) == MCLIB_SUCCESS;
}

bool load(McHandle& file, int32_t type, int32_t id, std::span<uint8_t> bytes) {
    return mclibResource_load(&file, type, id, bytes.data(), static_cast<int>(bytes.size())) == MCLIB_SUCCESS;
}

// ---- writing ----

elmattr::RecordBytes bytesOf(const ElmAttrRecord& record) {
    const elmattr::RecordHead head = {record.group,    record.kind,        record.id,
                                      record.lockMask, record.optionCount, record.textMaxLength};
    return elmattr::packRecord(head, record.data);
}

int writePlain(McHandle& file, const GlobalData& gd) {
    const int32_t type = elmattr::recordResources[0].plainType;
    for (const ElmAttrRecord* r = gd.attributeList; r; r = r->next)
        if (!add(file, type, r->id, bytesOf(*r))) return MCLIB_ERROR;
    return MCLIB_SUCCESS;
}

int writeSet(McHandle& file, const GlobalData& gd) {
    bool whole = true;
    int32_t number = 0;
    for (const ElmAttrRecord* r = gd.attributeList; r; r = r->next, ++number) {
        std::array<char, elmattr::setLabelBytes> label;
        fillText(label, r->label);
        whole &= add(file, elmattr::recordResources[0].setType, number, bytesOf(*r));
        whole &= add(file, elmattr::setLabelType, number, label);
    }
    std::array<uint8_t, 4> count;
    storeNumber(count.data(), number);
    whole &= add(file, elmattr::setCountType, elmattr::setCountId, count);
    return whole ? int{MCLIB_SUCCESS} : int{MCLIB_ERROR};
}

// ---- reading ----

// A record as a file holds it.
struct Stored {
    const elmattr::RecordResource* resource;  // null: the file has none
    elmattr::RecordBytes bytes;

    std::span<const uint8_t> record() const { return std::span(bytes).first(resource->bytes); }
};

// The newest record under that id. `type` says which of the two types counts.
Stored loadRecord(McHandle& file, int32_t elmattr::RecordResource::*type, int32_t id) {
    Stored stored = {};
    for (const elmattr::RecordResource& resource : elmattr::recordResources) {
        if (!load(file, resource.*type, id, std::span(stored.bytes).first(resource.bytes))) continue;
        stored.resource = &resource;
        break;
    }
    return stored;
}

void takeData(ElmAttrRecord& record, const Stored& stored) {
    const auto styleNumber = [](const char* name) -> std::optional<int32_t> {
        int32_t number = 0;
        if (mdlLineStyle_numberFromName(&number, name, mdlModelRef_getActive()) != MDL_SUCCESS) return {};
        return number;
    };
    elmattr::unpackData(record.data, stored.resource->layout, stored.record(), record.kind, styleNumber);
}

void bringUpToDate(GlobalData& gd) {
    elmattr::bringStyleNumbersInStep();
    elmattr::refreshDialog(gd, -1);
}

int readPlain(McHandle& file, GlobalData& gd) {
    for (ElmAttrRecord* r = gd.attributeList; r; r = r->next) {
        const Stored stored = loadRecord(file, &elmattr::RecordResource::plainType, r->id);
        if (stored.resource) takeData(*r, stored);
    }
    bringUpToDate(gd);
    return MCLIB_SUCCESS;
}

// A record of a set with its label; null when the file lacks a part of it, or there is no memory.
ElmAttrRecord* loadSetRecord(McHandle& file, int32_t number) {
    const Stored stored = loadRecord(file, &elmattr::RecordResource::setType, number);
    std::array<uint8_t, elmattr::setLabelBytes> label;
    if (!stored.resource || !load(file, elmattr::setLabelType, number, label)) return nullptr;
    ElmAttrRecord* record = elmattr::createRecord(textAt(label));
    if (!record) return nullptr;
    const elmattr::RecordHead head = elmattr::headOf(stored.record());
    record->group = head.group;
    record->kind = head.kind;
    record->id = head.id;
    record->lockMask = head.lockMask;
    record->textMaxLength = head.textMaxLength;
    takeData(*record, stored);
    return record;
}

// Fills the empty list; false when the file holds less than `count` records.
bool loadSet(McHandle& file, int32_t count, GlobalData& gd) {
    ElmAttrRecord** link = &gd.attributeList;
    for (; gd.attributeCount < count; ++gd.attributeCount) {
        *link = loadSetRecord(file, gd.attributeCount);
        if (!*link) return false;
        link = &(*link)->next;
    }
    return true;
}

// Whether a record of the one kind can show options of the other.
constexpr bool sharesOptions(int32_t to, int32_t from) {
    using elmattr::hasIcons, elmattr::hasOptionLabels;
    return (hasIcons(to) && hasIcons(from)) || (hasOptionLabels(to) && hasOptionLabels(from));
}

// What a file can't hold. The kinds may differ: labels are no options of a record that shows icons.
void handOn(ElmAttrRecord& to, ElmAttrRecord& from) {
    to.hook = from.hook;
    to.textLabel = std::exchange(from.textLabel, nullptr);
    if (!sharesOptions(to.kind, from.kind)) return;
    to.optionCount = std::exchange(from.optionCount, 0);
    to.optionValues = std::exchange(from.optionValues, nullptr);
    to.optionIcons = std::exchange(from.optionIcons, nullptr);
    to.optionLabels = std::exchange(from.optionLabels, nullptr);
}

// Walks both lists at once; a new record without a partner leaves the old list where it is.
void handOnAll(ElmAttrRecord* to, ElmAttrRecord* from) {
    for (; to && from; to = to->next) {
        if (to->id != from->id) continue;
        handOn(*to, *from);
        from = from->next;
    }
}

int readSet(McHandle& file, GlobalData& gd) {
    std::array<uint8_t, 4> bytes;
    if (!load(file, elmattr::setCountType, elmattr::setCountId, bytes)) return MCLIB_ERROR;
    const auto count = loadNumber<int32_t>(bytes.data());
    if (count < 0) return MCLIB_ERROR;
    ElmAttrRecord* old = std::exchange(gd.attributeList, nullptr);
    gd.attributeCount = 0;
    const bool whole = loadSet(file, count, gd);
    if (whole) handOnAll(gd.attributeList, old);
    while (old) elmattr::freeRecord(std::exchange(old, old->next));
    bringUpToDate(gd);
    return whole ? int{MCLIB_SUCCESS} : int{MCLIB_ERROR};
}

// The same for a file that the caller opened.
template <class Work>
int withHandle(McHandle* file, Work work) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    return gd && file ? work(*file, *gd) : int{MCLIB_ERROR};
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibElmAttr_writeResource(const char* fileName) {
    return withFile(fileName, MDL_RSC_WRITE, [](McHandle& file, const GlobalData& gd) {
        writePlain(file, gd);  // what can't be written is told by a message
        return MCLIB_SUCCESS;
    });
}

int mclibElmAttr_writeResourceByHandle(McHandle* file) {
    return withHandle(file, writePlain);
}

int mclibElmAttr_writeResourceExtended(const char* fileName) {
    return withFile(fileName, MDL_RSC_WRITE, writeSet);
}

int mclibElmAttr_readResource(const char* fileName) {
    return withFile(fileName, MDL_RSC_READ, readPlain);
}

int mclibElmAttr_readResourceByHandle(McHandle* file) {
    return withHandle(file, readPlain);
}

int mclibElmAttr_readResourceExtended(const char* fileName) {
    return withFile(fileName, MDL_RSC_READ, readSet);
}
