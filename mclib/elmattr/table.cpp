// The table of an application's attributes: groups, records and what changes them.
#include "mclib/elmattr/table.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <span>
#include <type_traits>

#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"

namespace mc {

// Records are copied as a whole, and come from a zero-filled block.
static_assert(std::is_trivially_copyable_v<ElmAttrRecord> && std::is_trivial_v<ElmAttrGroup>);
static_assert(std::is_standard_layout_v<ElmAttrData> && sizeof(ElmAttrData::levelName) == 512 * sizeof(wchar_t));

namespace {

constexpr int defaultTextMaxLength = 80;

template <class T>
T* allocate(size_t count = 1) {
    return static_cast<T*>(
        mclibMem_mallocRscErrorPrintf(std::max<size_t>(count, 1) * sizeof(T), MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
}

// An owned copy, cut at maxLength characters; null when out of memory.
char* copyText(std::string_view text, size_t maxLength = SIZE_MAX) {
    const size_t length = std::min(text.size(), maxLength);
    char* copy = allocate<char>(length + 1);
    if (copy) std::memcpy(copy, text.data(), length);
    return copy;
}

// Callers may give null for an empty text.
std::string_view textOf(const char* text) {
    return text ? text : std::string_view();
}

// ---- groups ----

const ElmAttrGroup* findGroup(const GlobalData& gd, int id) {
    const std::span<const ElmAttrGroup> groups(gd.groups, gd.groupCount);
    const auto group = std::ranges::find(groups, id, &ElmAttrGroup::id);
    return group == groups.end() ? nullptr : &*group;
}

bool mayHaveHook(const GlobalData& gd, int groupId) {
    const ElmAttrGroup* group = findGroup(gd, groupId);
    return group && (group->flags & ATTR_GROUP_EDITABLE) == 0;
}

// A new table from the arguments of each group; nothing of the old table or of the attributes is left.
void replaceGroups(int count, bool withChangedFunction, va_list& arguments) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd) return;
    elmattr::freeGroups(*gd);
    elmattr::freeRecords(*gd);
    if (count <= 0) return;
    gd->groups = allocate<ElmAttrGroup>(count);
    if (!gd->groups) return;
    for (; gd->groupCount < count; ++gd->groupCount) {
        ElmAttrGroup& group = gd->groups[gd->groupCount];
        group.name = copyText(textOf(va_arg(arguments, const char*)));
        group.id = va_arg(arguments, int);
        group.flags = va_arg(arguments, unsigned);
        if (withChangedFunction) group.changedFunction = va_arg(arguments, ElmAttrGroupChanged);
        if (!group.name) return;
    }
}

// ---- records ----

using mc::elmattr::createRecord, elmattr::freeRecord, elmattr::hasIcons, elmattr::hasOptionLabels;

void freeOptionLabels(ElmAttrRecord& record) {
    if (!record.optionLabels) return;
    for (int i = 0; i < record.optionCount; ++i) dlmSystem_mdlFree(record.optionLabels[i]);
    dlmSystem_mdlFree(record.optionLabels);
}

// Takes the values over as they are; texts that fill their field lose the last character to a NUL.
void storeData(ElmAttrRecord& record, const ElmAttrData& data) {
    record.data = data;
    record.data.levelName[std::size(data.levelName) - 1] = L'\0';
    record.data.styleName[std::size(data.styleName) - 1] = '\0';
    if (record.kind == ATTR_KIND_LABELLED_SYMBOL) record.data.symbolText[std::size(data.symbolText) - 1] = '\0';
    if (record.kind < ATTR_KIND_TEXT || record.kind == ATTR_KIND_LABELLED_SYMBOL) return;
    record.data.textStyleName[std::size(data.textStyleName) - 1] = L'\0';
    if (record.kind != ATTR_KIND_TEXT) record.data.optionText[std::size(data.optionText) - 1] = '\0';
}

constexpr bool hasMaxLength(int kind) {
    return kind == ATTR_KIND_LABELLED_SYMBOL || kind == ATTR_KIND_LABELLED_TEXT;
}

// Room for `count` options; false when out of memory.
bool allocateOptions(ElmAttrRecord& record, int count) {
    record.optionValues = allocate<int32_t>(count);
    if (!record.optionValues) return false;
    if (hasOptionLabels(record.kind)) record.optionLabels = allocate<char*>(count);
    if (hasIcons(record.kind)) record.optionIcons = allocate<int32_t>(count);
    if (!record.optionLabels && !record.optionIcons) return false;
    record.optionCount = count;
    return true;
}

bool readOptions(ElmAttrRecord& record, va_list& arguments) {
    const int count = std::max(va_arg(arguments, int), 0);
    if (!allocateOptions(record, count)) return false;
    for (int i = 0; i < count; ++i) {
        if (record.optionIcons)
            record.optionIcons[i] = va_arg(arguments, int);
        else
            record.optionLabels[i] = copyText(textOf(va_arg(arguments, const char*)));
        if (!record.optionIcons && !record.optionLabels[i]) return false;
        record.optionValues[i] = va_arg(arguments, int);
    }
    return true;
}

// The arguments that follow the data, by kind.
bool readExtraArguments(ElmAttrRecord& record, va_list& arguments) {
    if (hasMaxLength(record.kind)) record.textMaxLength = va_arg(arguments, int);
    if (hasMaxLength(record.kind) || hasOptionLabels(record.kind)) {
        record.textLabel = copyText(textOf(va_arg(arguments, const char*)));
        if (!record.textLabel) return false;
    }
    return (!hasIcons(record.kind) && !hasOptionLabels(record.kind)) || readOptions(record, arguments);
}

bool copyOptions(ElmAttrRecord& copy, const ElmAttrRecord& from) {
    if (!from.optionValues) return true;
    if (!allocateOptions(copy, from.optionCount)) return false;
    std::copy_n(from.optionValues, from.optionCount, copy.optionValues);
    if (from.optionIcons) std::copy_n(from.optionIcons, from.optionCount, copy.optionIcons);
    for (int i = 0; from.optionLabels && i < from.optionCount; ++i) {
        copy.optionLabels[i] = copyText(from.optionLabels[i]);
        if (!copy.optionLabels[i]) return false;
    }
    return true;
}

// A copy that shares nothing with the record but has its values, and another label; null when out of memory.
ElmAttrRecord* copyRecord(const ElmAttrRecord& from, const char* label) {
    ElmAttrRecord* copy = createRecord(textOf(label));
    if (!copy) return nullptr;
    copy->group = from.group;
    copy->kind = from.kind;
    copy->hook = from.hook;
    copy->textMaxLength = from.textMaxLength;
    if (from.textLabel) copy->textLabel = copyText(from.textLabel);
    const bool whole = !from.textLabel == !copy->textLabel;
    if (whole && copyOptions(*copy, from)) return copy;
    freeRecord(copy);
    return nullptr;
}

// The link that leads to the record of that id, so that it can be bent; null when there is none.
ElmAttrRecord** linkTo(GlobalData& gd, int id) {
    for (ElmAttrRecord** link = &gd.attributeList; *link; link = &(*link)->next) {
        if ((*link)->id == id) return link;
    }
    return nullptr;
}

ElmAttrRecord** lastLink(GlobalData& gd) {
    ElmAttrRecord** link = &gd.attributeList;
    while (*link) link = &(*link)->next;
    return link;
}

void insertAt(GlobalData& gd, ElmAttrRecord** link, ElmAttrRecord* record) {
    record->next = *link;
    *link = record;
    ++gd.attributeCount;
}

// The link that leads to the record in front of *link; null when that is the first.
ElmAttrRecord** linkBefore(GlobalData& gd, ElmAttrRecord** link) {
    if (link == &gd.attributeList) return nullptr;
    ElmAttrRecord** before = &gd.attributeList;
    while (&(*before)->next != link) before = &(*before)->next;
    return before;
}

// Swaps the record that the link leads to with its successor.
void swapWithNext(ElmAttrRecord** link) {
    ElmAttrRecord* first = *link;
    ElmAttrRecord* second = first->next;
    first->next = second->next;
    second->next = first;
    *link = second;
}

struct GroupEnds {
    const ElmAttrRecord* first = nullptr;
    const ElmAttrRecord* last = nullptr;
};

GroupEnds endsOfGroup(const GlobalData& gd, int group) {
    GroupEnds ends;
    for (const ElmAttrRecord* r = gd.attributeList; r; r = r->next) {
        if (r->group != group) continue;
        if (!ends.first) ends.first = r;
        ends.last = r;
    }
    return ends;
}

}  // namespace

}  // namespace mc

namespace mc::elmattr {

ElmAttrRecord* createRecord(std::string_view label) {
    auto* record = allocate<ElmAttrRecord>();
    if (!record) return nullptr;
    record->label = copyText(label, maxAttributeLabel);
    if (record->label) return record;
    freeRecord(record);
    return nullptr;
}

void freeRecord(ElmAttrRecord* record) {
    freeOptionLabels(*record);
    for (void* block : {static_cast<void*>(record->optionValues), static_cast<void*>(record->optionIcons),
                        static_cast<void*>(record->label), static_cast<void*>(record->textLabel)}) {
        dlmSystem_mdlFree(block);
    }
    dlmSystem_mdlFree(record);
}

void freeRecords(GlobalData& gd) {
    while (ElmAttrRecord* record = gd.attributeList) {
        gd.attributeList = record->next;
        freeRecord(record);
    }
    gd.attributeCount = 0;
}

void freeGroups(GlobalData& gd) {
    for (int i = 0; i < gd.groupCount; ++i) dlmSystem_mdlFree(gd.groups[i].name);
    dlmSystem_mdlFree(gd.groups);
    gd.groups = nullptr;
    gd.groupCount = 0;
}

ElmAttrRecord* findRecord(const GlobalData& gd, int id) {
    ElmAttrRecord* record = gd.attributeList;
    while (record && record->id != id) record = record->next;
    return record;
}

int moveUp(GlobalData& gd, int id) {
    ElmAttrRecord** link = linkTo(gd, id);
    if (!link) return MCLIB_ERROR;
    if (*link == endsOfGroup(gd, (*link)->group).first) return MCLIB_SUCCESS;
    swapWithNext(linkBefore(gd, link));
    refreshDialog(gd, id);
    return MCLIB_SUCCESS;
}

int moveDown(GlobalData& gd, int id) {
    ElmAttrRecord** link = linkTo(gd, id);
    if (!link) return MCLIB_ERROR;
    if (*link == endsOfGroup(gd, (*link)->group).last) return MCLIB_SUCCESS;
    swapWithNext(link);
    refreshDialog(gd, id);
    return MCLIB_SUCCESS;
}

}  // namespace mc::elmattr

using namespace mc;

void mclibElmAttr_setGroupeNames(int count, ...) {
    va_list arguments;
    va_start(arguments, count);
    replaceGroups(count, false, arguments);
    va_end(arguments);
}

void mclibElmAttr_setGroupeNamesExtended(int count, ...) {
    va_list arguments;
    va_start(arguments, count);
    replaceGroups(count, true, arguments);
    va_end(arguments);
}

void mclibElmAttr_freeGroupeNames(void) {
    if (GlobalData* gd = mclibMain_getGlobalDataP()) elmattr::freeGroups(*gd);
}

int mclibElmAttr_addAttribute(int id, const char* label, int group, int kind, int lockMask, ElmAttrHook hook,
                              int refresh, const ElmAttrData* data, ...) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd || !data) return MCLIB_ERROR;
    ElmAttrRecord* record = createRecord(textOf(label));
    if (!record) return MCLIB_ERROR;
    record->group = group;
    record->kind = kind;
    record->id = id;
    record->hook = mayHaveHook(*gd, group) ? hook : nullptr;
    record->lockMask = static_cast<uint32_t>(lockMask);
    record->textMaxLength = defaultTextMaxLength;
    storeData(*record, *data);

    va_list arguments;
    va_start(arguments, data);
    const bool whole = readExtraArguments(*record, arguments);
    va_end(arguments);
    if (!whole) {
        freeRecord(record);
        return MCLIB_ERROR;
    }
    insertAt(*gd, lastLink(*gd), record);
    if (refresh != 0) elmattr::refreshDialog(*gd, id);
    return MCLIB_SUCCESS;
}

int mclibElmAttr_insertAttribute(int beforeId, const char* label, int lockMask, const ElmAttrData* data) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd || !data) return MCLIB_ERROR;
    ElmAttrRecord** link = linkTo(*gd, beforeId);
    ElmAttrRecord* record = link ? copyRecord(**link, label) : nullptr;
    if (!record) return MCLIB_ERROR;
    record->id = gd->nextAttributeId;
    if (gd->activeRecord) record->group = gd->activeRecord->group;
    record->lockMask = static_cast<uint32_t>(lockMask);
    storeData(*record, *data);
    insertAt(*gd, link, record);
    elmattr::refreshDialog(*gd, record->id);
    return MCLIB_SUCCESS;
}

int mclibElmAttr_editAttribute(int id, int refresh, const ElmAttrData* data) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    ElmAttrRecord* record = gd ? elmattr::findRecord(*gd, id) : nullptr;
    if (!record || !data) return MCLIB_ERROR;
    storeData(*record, *data);
    if (refresh != 0) elmattr::refreshDialog(*gd, id);
    return MCLIB_SUCCESS;
}

int mclibElmAttr_editAttributeExtended(int id, int refresh, const ElmAttrData* data, ElmAttrHook hook) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    ElmAttrRecord* record = gd ? elmattr::findRecord(*gd, id) : nullptr;
    if (!record || !data) return MCLIB_ERROR;
    record->hook = hook;
    return mclibElmAttr_editAttribute(id, refresh, data);
}

int mclibElmAttr_deleteAttribute(int id, int refresh) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    ElmAttrRecord** link = gd ? linkTo(*gd, id) : nullptr;
    if (!link) return MCLIB_ERROR;
    ElmAttrRecord** before = linkBefore(*gd, link);
    ElmAttrRecord* gone = *link;
    *link = gone->next;
    freeRecord(gone);
    --gd->attributeCount;
    if (refresh != 0) elmattr::refreshDialog(*gd, before ? (*before)->id : -1);
    return MCLIB_SUCCESS;
}

void mclibElmAttr_freeAllAttribute(void) {
    if (GlobalData* gd = mclibMain_getGlobalDataP()) elmattr::freeRecords(*gd);
}

int mclibElmAttr_extractData(int id, ElmAttrData* data) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    const ElmAttrRecord* record = gd ? elmattr::findRecord(*gd, id) : nullptr;
    if (!record) return MCLIB_ERROR;
    if (data) *data = record->data;
    return MCLIB_SUCCESS;
}

void mclibElmAttr_getLabelFromId(int id, char* buffer) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd || !buffer) return;
    for (const ElmAttrRecord* r = gd->attributeList; r; r = r->next) {
        if (r->id == id) std::strcpy(buffer, r->label);
    }
}

int mclibElmAttr_findIdForAttributeName(const char* name, int group) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd || !name) return 0;
    for (const ElmAttrRecord* r = gd->attributeList; r; r = r->next) {
        if (r->group == group && std::strcmp(r->label, name) == 0) return r->id;
    }
    return 0;
}

void mclibElmAttr_setLevelNameVariable(int index, wchar_t* name) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    if (gd && index >= 1 && index <= 10) gd->levelNameVariables[index] = name;
}
