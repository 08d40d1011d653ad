#include "mclib/dialogs/selection.h"

#include <cstring>
#include <string>

#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/text_buffer.h"
#include "resources/ids.h"

namespace mc::dialogs {

constinit RoomState<SelectionState> selectionState;

namespace {

char* copyOf(const char* text) {
    if (!text || text[0] == '\0') return nullptr;
    const size_t size = std::strlen(text) + 1;
    auto* const copy = static_cast<char*>(dlmSystem_mdlMalloc(size));
    if (copy) std::memcpy(copy, text, size);
    return copy;
}

void release(char*& text) {
    dlmSystem_mdlFree(text);
    text = nullptr;
}

bool isSeparator(char c) {
    return c == '\\' || c == '/';
}

// The folder that a directory lies in, with its last separator; a root itself.
std::string parentOf(std::string directory) {
    const auto withoutSeparators = [](std::string& path) {
        while (path.size() > 1 && isSeparator(path.back())) path.pop_back();
    };
    const std::string root = directory;
    withoutSeparators(directory);
    const size_t last = directory.find_last_of("\\/");
    if (last == std::string::npos || directory.size() == 1) return root;
    const char separator = directory[last];
    directory.resize(last);
    withoutSeparators(directory);
    return !directory.empty() && isSeparator(directory.back()) ? directory : directory + separator;
}

bool isDrive(std::string_view entry) {
    return entry.size() > 3 && entry[1] == '-' && entry[3] == ':';
}

}  // namespace

DialogTexts::DialogTexts(GlobalData& data, const char* title, const char* label) : data_(data) {
    data.dialogTitle = copyOf(title);
    data.dialogLabel = copyOf(label);
}

DialogTexts::~DialogTexts() {
    release(data_.dialogTitle);
    release(data_.dialogLabel);
}

void showTitle(const GlobalData& data, MdlDialog* dialog) {
    if (data.dialogTitle) mdlWindow_titleSet(dialog, data.dialogTitle);
}

bool agreedIn(int32_t dialogId) {
    int32_t reply = MDL_REPLY_SECOND;
    return mdlDialog_openModal(&reply, 0, dialogId) != MDL_DIALOG_NOT_SHOWN && reply == MDL_REPLY_FIRST;
}

void takeSelection(GlobalData& data, const MdlItem* listBox) {
    forgetSelection(data);
    if (mdlDialog_listBoxGetSelections(&data.selectionRows, &data.selectionCount, listBox) != MDL_SUCCESS)
        toolSubsystem_printf("Error retrieving selections!!\n");
}

void forgetSelection(GlobalData& data) {
    dlmSystem_mdlFree(data.selectionRows);
    data.selectionRows = nullptr;
    data.selectionCount = 0;
}

bool append(StringList* list, const char* text) {
    int32_t index = -1;
    return mdlStringList_insertMember(&index, list, -1, 1) == MDL_SUCCESS &&
           mdlStringList_setMember(list, index, text, nullptr) == MDL_SUCCESS;
}

const char* memberOf(const StringList* list, int32_t index) {
    const char* text = nullptr;
    return mdlStringList_getMember(&text, nullptr, list, index) == MDL_SUCCESS && text ? text : "";
}

void replaceList(MdlItem* listBox, StringList* list) {
    StringList* const before = mdlDialog_listBoxGetStrListP(listBox);
    mdlDialog_listBoxSelectRow(listBox, -1);
    mdlDialog_listBoxSetStrListP(listBox, list, 1);
    mdlStringList_destroy(before);
    mdlDialog_listBoxSetTopRow(listBox, 0);
    mdlDialog_itemDraw(listBox);
}

void destroyList(MdlItem* listBox) {
    StringList* const list = mdlDialog_listBoxGetStrListP(listBox);
    mdlDialog_listBoxSetStrListP(listBox, nullptr, 1);
    mdlStringList_destroy(list);
}

void tellOutOfMemory() {
    showNotice(ids::errors::outOfMemory);
}

void endInSeparator(char (&directory)[256]) {
    const size_t length = std::strlen(directory);
    if (length == 0 || isSeparator(directory[length - 1]) || length + 1 >= sizeof directory) return;
    copyText(directory, std::string(directory) + '\\');
}

bool changeDirectory(char (&directory)[256], const char* entry) {
    std::string next = std::string(directory) + entry + '\\';
    if (std::strcmp(entry, "..") == 0) next = parentOf(directory);
    if (isDrive(entry)) next = std::string{entry[2], ':', '\\'};
    if (next.size() >= sizeof directory) return false;
    copyText(directory, next);
    return true;
}

}  // namespace mc::dialogs
