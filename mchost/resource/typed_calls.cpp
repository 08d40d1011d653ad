// Typed blocks and string lists of open resource files, as applications load and write them.
#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/string_list.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/open_files.h"
#include "mchost/session/owned_state.h"

namespace host {

namespace {

constexpr int32_t greatestBlock = 1'000'000'000;

// A block that an application has loaded, with a byte more than it holds so that an empty one has an address.
struct LoadedBlock {
    MdlDesc* owner;  // null: loaded outside any application
    RscHandle file;
    int32_t type, id;
    int32_t size;
    std::unique_ptr<std::byte[]> bytes;
};

// By the address of their bytes. An application's blocks leave it when they are given back or the application ends.
struct LoadedBlocks {
    std::unordered_map<const void*, LoadedBlock> byAddress;
};
std::unordered_map<const void*, LoadedBlock>& loadedBlocks() {
    return sessionState<LoadedBlocks>().byAddress;
}

void freeBlocksOf(MdlDesc* desc) {
    std::erase_if(loadedBlocks(), [desc](const auto& entry) { return entry.second.owner == desc; });
}

std::string_view textOf(const char* text) {
    return text ? text : "";
}

void* keep(RscHandle file, int32_t type, int32_t id, const std::vector<std::byte>& bytes) {
    MdlDesc* const owner = mdlSystem_getCurrMdlDesc();
    auto copy = std::make_unique<std::byte[]>(bytes.size() + 1);
    std::ranges::copy(bytes, copy.get());
    void* const address = copy.get();
    loadedBlocks()[address] = {owner, file, type, id, static_cast<int32_t>(bytes.size()), std::move(copy)};
    letGoAtEnd<freeBlocksOf>(owner);
    return address;
}

const LoadedBlock* loaded(const void* block) {
    const auto found = loadedBlocks().find(block);
    return found == loadedBlocks().end() ? nullptr : &found->second;
}

// Runs a body that writes, and gives its status; the reason of a failure goes to the message centre.
int status(const std::function<void()>& body) noexcept {
    try {
        body();
        return MDL_SUCCESS;
    } catch (const StoreFailure& failure) {
        reportError(failure.what());
        return failure.readOnly ? int{MDL_RSC_READ_ONLY} : int{MDL_ERROR};
    } catch (const ResourceError& error) {
        return guarded<int>(MDL_ERROR, [&] { return tellUnreadable(error), MDL_ERROR; });
    } catch (const std::exception& error) {
        reportError(error.what());
        return MDL_ERROR;
    }
}

StringList* listOf(StoredList stored) {
    auto list = std::make_unique<StringList>(StringList{.infoFields = stored.fields, .limit = greatestLimit});
    list->texts.assign(std::make_move_iterator(stored.texts.begin()), std::make_move_iterator(stored.texts.end()));
    list->info.assign(stored.info.begin(), stored.info.end());
    return list.release();
}

StoredList storedForm(const StringList& list) {
    return {list.infoFields, {list.texts.begin(), list.texts.end()}, {list.info.begin(), list.info.end()}};
}

StringList* loadList(ResourceStore& store, int32_t id) {
    bool cut = false;
    std::optional<StoredList> stored = store.list(id, &cut);
    if (!stored) return nullptr;
    if (cut)
        reportError((store.path() + ": the string list " + std::to_string(id) +
                     " lacks members; it ends behind its first " + std::to_string(stored->texts.size()))
                        .c_str());
    return listOf(std::move(*stored));
}

}  // namespace

int writeTo(RscHandle file, const std::function<void(ResourceStore&)>& body) noexcept {
    return status([&] {
        const std::vector<OpenStore> stores = file == 0 ? std::vector<OpenStore>() : openStores(file);
        if (stores.empty()) throw StoreFailure("A resource file that isn't open can't be written to", false);
        if (stores[0].mode != MDL_RSC_WRITE)
            throw StoreFailure(stores[0].store->path() + ": the file was opened for reading and can't be written to",
                               true);
        body(*stores[0].store);
    });
}

namespace {

int putBlock(RscHandle file, Put how, int32_t type, int32_t id, const void* data, int32_t size, int32_t attributes,
             std::string_view name) {
    if (size < 0 || size > greatestBlock || (!data && size > 0)) return MDL_ERROR;
    return writeTo(file, [&](ResourceStore& store) {
        store.put(how, type, id, {static_cast<const std::byte*>(data), static_cast<size_t>(size)}, attributes, name);
    });
}

}  // namespace

}  // namespace host

using namespace host;

int mdlResource_createFile(const char* name, const char* title, int mode) noexcept {
    return status([&] {
        if (!name || *name == '\0' || mode != MDL_RSC_WRITE)
            throw StoreFailure("A resource file without a name can't be made", false);
        createResourceFile(systemPath(name), textOf(title));
    });
}

void* mdlResource_load(RscHandle rscFile, int32_t type, int32_t id) noexcept {
    return guarded<void*>(nullptr, [&]() -> void* {
        for (const OpenStore& open : openStores(rscFile))
            if (const auto bytes = open.store->block(type, id)) return keep(open.file, type, id, *bytes);
        return nullptr;
    });
}

int32_t mdlResource_size(const void* block) noexcept {
    const LoadedBlock* known = loaded(block);
    return known ? known->size : 0;
}

int mdlResource_write(const void* block) noexcept {
    const LoadedBlock* known = loaded(block);
    if (!known) return MDL_ERROR;
    return writeTo(known->file, [&](ResourceStore& store) {
        store.put(Put::replace, known->type, known->id, {known->bytes.get(), static_cast<size_t>(known->size)}, 0, {});
    });
}

int mdlResource_add(RscHandle rscFile, int32_t type, int32_t id, const void* data, int32_t size, int32_t attributes,
                    const char* name) noexcept {
    return putBlock(rscFile, Put::add, type, id, data, size, attributes, textOf(name));
}

int mdlResource_put(RscHandle rscFile, int32_t type, int32_t id, const void* data, int32_t size) noexcept {
    return putBlock(rscFile, Put::either, type, id, data, size, 0, {});
}

int mdlResource_free(void* block) noexcept {
    return !block || loadedBlocks().erase(block) ? MDL_SUCCESS : MDL_ERROR;
}

StringList* mdlStringList_loadResource(RscHandle rscFile, int32_t id) noexcept {
    return guarded<StringList*>(nullptr, [&]() -> StringList* {
        for (const OpenStore& open : openStores(rscFile))
            if (StringList* list = loadList(*open.store, id)) return list;
        return nullptr;
    });
}

int mdlStringList_addResource(RscHandle rscFile, int32_t id, const StringList* list, const char* name) noexcept {
    if (!list) return MDL_ERROR;
    return writeTo(rscFile, [&](ResourceStore& store) { store.put(Put::add, id, storedForm(*list), textOf(name)); });
}

int mdlStringList_writeResource(const StringList* list, RscHandle rscFile, int32_t id, const char* name) noexcept {
    if (!list) return MDL_ERROR;
    return writeTo(rscFile,
                   [&](ResourceStore& store) { store.put(Put::replace, id, storedForm(*list), textOf(name)); });
}
