// Resource files. The first byte tells what the others are: the whole file; places and bytes in a sound file; changes
// of its rows; or blocks of the types that the library reads, stored as they should be. A file is refused with one line
// and stays as it is; what can be read goes to everybody who reads resource files.
#include "mchost/resource/container.h"

#include <cstring>

#include "database.h"
#include "mchost/mdl/dialog.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/resource/store.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/elmattr/records.h"
#include "mclib/elmattr/resources.h"
#include "mclib/frame/resource_files.h"
#include "mclib/print/setup_record.h"
#include "session.h"

using namespace mc;

namespace {

using host::Put;

constexpr int32_t rememberedType = MDL_RSC_TYPE('U', 's', 'F', 'i'), rememberedId = -20001, listId = 5;

void put(host::ResourceStore& store, int32_t type, int32_t id, const std::string& bytes) {
    store.put(Put::either, type, id, std::as_bytes(std::span(bytes)), 0, "");
}

// ---- a sound file ----

host::ResourceContents contents() {
    host::ResourceContents all;
    host::Texts text;
    text.set("en", "Text %s");
    text.set("no", "Tekst %s");
    all.strings[{1, 2}] = text;
    host::DialogLayout dialog{7, 200, 100, 3, text, {}};
    dialog.items.push_back(
        {ITEM_OPTION_BUTTON, 8, 1, 2, 30, 10, 0, "mclibpsd->copies", "%d", text, {{1, text}, {2, text}}});
    all.dialogs[7] = dialog;
    all.icons[4] = {4, 2, {true, false, false, true}, "*"};
    return all;
}

void makeSeed() {
    const std::string path = folder().pathOf("seed.rsc");
    host::writeContainer(path, contents());
    host::ResourceStore store(path);
    for (const elmattr::RecordResource& record : elmattr::recordResources) {
        for (const int32_t id : {1, 2, 3}) put(store, record.plainType, id, std::string(record.bytes, '\1'));
        put(store, record.setType, 0, std::string(record.bytes, '\2'));
    }
    put(store, elmattr::setCountType, elmattr::setCountId, std::string("\2\0\0\0", 4));
    put(store, elmattr::setLabelType, 0, std::string(elmattr::setLabelBytes, 'L'));
    put(store, print::SETUP_TYPE, print::SETUP_ID, std::string(print::setupSize, '\3'));
    put(store, rememberedType, rememberedId, std::string(sizeof(UserFileRecord), '\0'));
    store.put(Put::add, listId, host::StoredList{2, {"one", "two"}, {1, 2, 3, 4}}, "list");
}

const std::string& seed() {
    static const std::string bytes = [] {
        makeSeed();
        return folder().read("seed.rsc");
    }();
    return bytes;
}

// ---- blocks of the input's own ----

constexpr std::pair<int32_t, int32_t> blocks[] = {
    {elmattr::recordResources[0].plainType, 1},
    {elmattr::recordResources[1].plainType, 2},
    {elmattr::recordResources[2].plainType, 3},
    {elmattr::recordResources[0].setType, 0},
    {elmattr::recordResources[1].setType, 1},
    {elmattr::recordResources[2].setType, 2},
    {elmattr::setCountType, 1},
    {elmattr::setLabelType, 1},
    {print::SETUP_TYPE, print::SETUP_ID},
    {print::OLDER_TYPE, print::OLDER_ID},
    {rememberedType, rememberedId},
};

// Each with its number, its size, and bytes at a place in it.
void putBlocks(const std::string& path, Bytes& input) {
    host::ResourceStore store(path);
    while (!input.empty()) {
        const auto& [type, id] = blocks[input.take<uint8_t>() % std::size(blocks)];
        std::string bytes(input.take<uint16_t>() % 12000, '\0');
        for (int pieces = input.take<uint8_t>() % 8; pieces > 0; --pieces) {
            const size_t at = input.take<uint16_t>();
            for (int count = input.take<uint8_t>() % 32; count > 0; --count) {
                const char c = input.take<char>();
                if (at + static_cast<size_t>(count) < bytes.size()) bytes[at + static_cast<size_t>(count)] = c;
            }
        }
        put(store, type, id, bytes);
    }
}

// ---- reading ----

void readAttributes(const std::string& path) {
    const ElmAttrData data = {};
    mclibElmAttr_addAttribute(1, "Text", 1, ATTR_KIND_TEXT, 0, nullptr, 0, &data);
    mclibElmAttr_addAttribute(2, "Labelled", 1, ATTR_KIND_LABELLED_TEXT, 0, nullptr, 0, &data, 20, "Text");
    mclibElmAttr_addAttribute(3, "Option", 1, ATTR_KIND_OPTION_TEXT, 0, nullptr, 0, &data, "Text", 1, "One", 1);
    mclibElmAttr_readResource(path.c_str());
    mclibElmAttr_readResourceExtended(path.c_str());
    mclibElmAttr_freeAllAttribute();
}

void readRemembered(const std::string& path, RscHandle handle) {
    UserFileRecord record;
    if (mdlUserPrefs_getFileName(&record, handle, rememberedId) == MDL_SUCCESS &&
        record.marker == MDL_USER_FILE_MARKER && record.version == MDL_USER_FILE_VERSION) {
        require(record.fileCount >= 0 && record.fileCount <= MDL_HISTORY_MOST);
        for (const auto& name : record.fileHistory) require(strnlen(name, sizeof name) < sizeof name);
    }
    if (mclibUpf_openWithPath(nullptr, path.c_str()) != MCLIB_SUCCESS) return;
    mclibUpf_saveFileName("c:\\data\\a.txt", mclibUpf_getHandle(), rememberedId);
    mclibUpf_close();
}

void readStored(RscHandle handle, const std::string& path) {
    for (const auto& [type, id] : blocks) mdlResource_free(mdlResource_load(handle, type, id));
    StringList* list = mdlStringList_loadResource(handle, listId);
    if (list) mdlStringList_addResource(handle, listId + 1, list, "copy");
    mdlStringList_destroy(list);
    char text[512];
    mdlResource_loadFromStringList(text, handle, 1, 2);
    readRemembered(path, handle);
}

void readAll(const std::string& path, const std::string& bytes) {
    FuzzFrontEnd& front = fuzzSession().front;
    front.messages.clear();
    RscHandle handle = 0;
    if (mdlResource_openFile(&handle, path.c_str(), MDL_RSC_WRITE) != MDL_SUCCESS) {
        front.requireRefusal(path);
        return require(folder().read("user.rsc") == bytes);
    }
    require(front.messages.empty());
    readStored(handle, path);
    readAttributes(path);
    mclibPrintSet_dialogOpen();  // reads the set-up, which nobody then confirms
    mdlResource_closeFile(handle);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const host::ApplicationScope scope(fuzzSession().application);
    const std::string path = folder().pathOf("user.rsc");  // where the user's preferences are
    Bytes input(data + 1, size - 1);
    const int what = data[0] % 4;
    std::string file = what == 0 ? std::string(reinterpret_cast<const char*>(data + 1), size - 1) : seed();
    if (what == 1) patch(file, input);
    folder().removeDatabase(path);
    folder().write("user.rsc", file);
    if (what == 2) {
        FuzzDatabase database(path);
        while (!input.empty()) database.change(input);
    }
    if (what == 3) putBlocks(path, input);
    if (what >= 2) file = folder().read("user.rsc");
    readAll(path, file);
    return 0;
}
