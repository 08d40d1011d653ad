// String lists: texts with info fields, in one growing sequence that gives up its first member cheaply.
#include <algorithm>
#include <memory>

#include "mchost/base/guard.h"
#include "mchost/base/string_list.h"

namespace {

int32_t sizeOf(const StringList& list) {
    return static_cast<int32_t>(list.texts.size());
}

bool hasMember(const StringList* list, int32_t index) {
    return list && index >= 0 && index < sizeOf(*list);
}

bool hasField(const StringList* list, int32_t index, int32_t field) {
    return hasMember(list, index) && field >= 0 && field < list->infoFields;
}

auto infoOf(auto& list, int32_t index) {
    return list.info.begin() + static_cast<ptrdiff_t>(index) * list.infoFields;
}

// Both sequences grow together: when the second one can't, the first is cut back.
void insertEmpty(StringList& list, int32_t index, int32_t count) {
    const auto values = static_cast<size_t>(count) * static_cast<size_t>(list.infoFields);
    list.texts.insert(list.texts.begin() + index, static_cast<size_t>(count), std::string());
    try {
        list.info.insert(infoOf(list, index), values, 0);
    } catch (...) {
        list.texts.erase(list.texts.begin() + index, list.texts.begin() + index + count);
        throw;
    }
}

}  // namespace

StringList* mdlStringList_create(int32_t count, int32_t infoFields) noexcept {
    return host::guarded<StringList*>(nullptr, [&]() -> StringList* {
        if (count < 0 || count > greatestLimit || infoFields < 0) return nullptr;
        auto list = std::make_unique<StringList>(StringList{infoFields, std::max(count, usualLimit), {}, {}});
        insertEmpty(*list, 0, count);
        return list.release();
    });
}

void mdlStringList_destroy(StringList* list) noexcept {
    delete list;
}

int32_t mdlStringList_size(const StringList* list) noexcept {
    return list ? sizeOf(*list) : 0;
}

int mdlStringList_insertMember(int32_t* indexP, StringList* list, int32_t index, int32_t count) noexcept {
    if (indexP) *indexP = -1;
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!list || count < 1 || index < -1 || index > sizeOf(*list)) return MDL_ERROR;
        if (count > list->limit - sizeOf(*list)) return MDL_ERROR;
        const int32_t place = index == -1 ? sizeOf(*list) : index;
        insertEmpty(*list, place, count);
        if (indexP) *indexP = place;
        return MDL_SUCCESS;
    });
}

int mdlStringList_deleteMember(StringList* list, int32_t index, int32_t count) noexcept {
    if (!hasMember(list, index) || count < 1 || count > sizeOf(*list) - index) return MDL_ERROR;
    list->texts.erase(list->texts.begin() + index, list->texts.begin() + index + count);
    list->info.erase(infoOf(*list, index), infoOf(*list, index + count));
    return MDL_SUCCESS;
}

int mdlStringList_setMember(StringList* list, int32_t index, const char* text, const int32_t* info) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!hasMember(list, index)) return MDL_ERROR;
        if (text) list->texts[static_cast<size_t>(index)] = std::string(text);
        if (info) std::copy_n(info, list->infoFields, infoOf(*list, index));
        return MDL_SUCCESS;
    });
}

int mdlStringList_getMember(const char** textP, int32_t* info, const StringList* list, int32_t index) noexcept {
    if (!hasMember(list, index)) return MDL_ERROR;
    if (textP) *textP = list->texts[static_cast<size_t>(index)].c_str();
    if (info) std::copy_n(infoOf(*list, index), list->infoFields, info);
    return MDL_SUCCESS;
}

int mdlStringList_setInfoField(StringList* list, int32_t index, int32_t field, int32_t value) noexcept {
    if (!hasField(list, index, field)) return MDL_ERROR;
    infoOf(*list, index)[field] = value;
    return MDL_SUCCESS;
}

int mdlStringList_getInfoField(int32_t* valueP, const StringList* list, int32_t index, int32_t field) noexcept {
    if (!hasField(list, index, field)) return MDL_ERROR;
    if (valueP) *valueP = infoOf(*list, index)[field];
    return MDL_SUCCESS;
}

void mdlStringList_setLimit(StringList* list, int32_t limit) noexcept {
    if (list) list->limit = std::clamp(limit, 0, greatestLimit);
}
