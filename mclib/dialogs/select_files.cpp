// Choosing files of one folder: the files that fit the filter, and beside them the folders and drives.
#include <cstring>
#include <string>
#include <utility>

#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/find_files.h"
#include "mchost/mdl/lists.h"
#include "mclib/dialogs/dialogs.h"
#include "mclib/dialogs/hooks.h"
#include "mclib/dialogs/selection.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/text_buffer.h"
#include "mclib/text/file.h"
#include "resources/ids.h"

namespace mc::dialogs {

namespace {

// ---- the two lists ----

// Null when the folder can't be read.
StringList* entriesOf(const std::string& pattern, int attributes) {
    StringList* list = nullptr;
    return mdlFileList_get(&list, pattern.c_str(), attributes) == MDL_SUCCESS ? list : nullptr;
}

// Adds what is left over to the list; false when out of memory.
bool appendAll(StringList* list, const StringList* others) {
    for (int32_t i = 0, count = mdlStringList_size(others); i < count; ++i)
        if (!append(list, memberOf(others, i))) return false;
    return true;
}

// "..", the folders, the drives; null when the folder can't be read.
mdl::StringListPtr foldersAndDrives(const FileDialogBlock& block) {
    const mdl::StringListPtr folders(entriesOf(std::string(block.directory) + "*", MDL_ATTRIBUTE_DIRECTORY));
    if (!folders) return nullptr;
    const mdl::StringListPtr drives(entriesOf("*", MDL_ATTRIBUTE_DRIVE));
    mdl::StringListPtr all(mdlStringList_create(0, 1));
    if (!all || !append(all.get(), "..") || !appendAll(all.get(), folders.get()) || !appendAll(all.get(), drives.get()))
        tellOutOfMemory();
    return all;
}

void enableFirst(const GlobalData& data, MdlDialog* dialog) {
    mdlDialog_itemEnable(mdl::itemOf(dialog, ids::selectFiles::first), data.selectionCount > 0);
}

void fillFiles(GlobalData& data, MdlItem* files) {
    const FileDialogBlock& block = *data.fileDialogP;
    forgetSelection(data);
    selectionState->shownDirectory = block.directory;
    replaceList(files, entriesOf(std::string(block.directory) + block.filter, MDL_ATTRIBUTE_FILES));
}

void refillFiles(GlobalData& data, MdlDialog* dialog) {
    if (MdlItem* const files = mdl::itemOf(dialog, ids::selectFiles::files)) fillFiles(data, files);
    enableFirst(data, dialog);
}

// Goes to the block's directory. One that can't be read is told, and that of the lists stays.
void goToDirectory(GlobalData& data, MdlDialog* dialog) {
    FileDialogBlock& block = *data.fileDialogP;
    endInSeparator(block.directory);
    mdl::StringListPtr folders = foldersAndDrives(block);
    if (!folders) {
        showNotice(ids::errors::folderUnreadable, block.directory);
        copyText(block.directory, selectionState->shownDirectory);
    }
    mdlDialog_itemSynch(mdl::itemOf(dialog, ids::selectFiles::directory));
    if (!folders) return;
    replaceList(mdl::itemOf(dialog, ids::selectFiles::folders), folders.release());
    refillFiles(data, dialog);
}

// ---- hooks ----

void selectionDialog(DialogMessage* message) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && message->type == DIALOG_CREATE;
    if (!message->handled) return;
    mclibMain_updateBeforeDialogOpen(mdlDialog_getId(message->dialog));
    showTitle(*data, message->dialog);
}

void fileFilter(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && message->type == ITEM_STATE_CHANGED;
    if (message->handled) refillFiles(*data, message->dialog);
}

// A directory that was typed.
void shownDirectory(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && message->type == ITEM_STATE_CHANGED && message->changed;
    if (message->handled) goToDirectory(*data, message->dialog);
}

// The full names of the chosen files; null when out of memory.
StringList* chosenFiles(const GlobalData& data, const StringList* shown) {
    mdl::StringListPtr files(mdlStringList_create(0, 1));
    if (files) mdlStringList_setLimit(files.get(), data.selectionCount);
    for (int32_t i = 0; files && i < data.selectionCount; ++i) {
        const std::string name = std::string(data.fileDialogP->directory) + memberOf(shown, data.selectionRows[i].row);
        if (!append(files.get(), name.c_str())) files.reset();
    }
    if (!files) tellOutOfMemory();
    return files.release();
}

void fileList(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data != nullptr;
    if (!data) return;
    switch (message->type) {
        case ITEM_CREATE:
            mdlDialog_listBoxSetInfo(message->item, 0, 1);
            fillFiles(*data, message->item);
            if (!data->selectedFiles) enableFirst(*data, message->dialog);
            break;
        case ITEM_BUTTON:
            if (message->state != 1) break;
            takeSelection(*data, message->item);
            enableFirst(*data, message->dialog);
            break;
        case ITEM_DESTROY:
            if (data->selectionCount > 0)
                data->selectedFiles = chosenFiles(*data, mdlDialog_listBoxGetStrListP(message->item));
            destroyList(message->item);
            break;
        default: message->handled = 0;
    }
}

// A folder, a drive or the folder above was clicked twice.
void openEntry(GlobalData& data, const DialogMessage& message) {
    FileDialogBlock& block = *data.fileDialogP;
    const int32_t row = mdlDialog_listBoxGetSelectedRow(message.item);
    if (row < 0) return;
    const std::string entry = memberOf(mdlDialog_listBoxGetStrListP(message.item), row);
    if (changeDirectory(block.directory, entry.c_str()))
        goToDirectory(data, message.dialog);
    else
        showNotice(ids::errors::folderUnreadable, entry.c_str());
}

void directoryList(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data != nullptr;
    if (!data) return;
    switch (message->type) {
        case ITEM_CREATE: replaceList(message->item, foldersAndDrives(*data->fileDialogP).release()); break;
        case ITEM_BUTTON:
            if (message->attributes & MDL_DOUBLE_CLICK && message->state == 1 && message->clickCount == 2)
                openEntry(*data, *message);
            break;
        case ITEM_DESTROY: destroyList(message->item); break;
        default: message->handled = 0;
    }
}

}  // namespace

const DialogHook selectionHooks[] = {
    {ids::hooks::selection, selectionDialog},     {ids::hooks::fileFilter, fileFilter},
    {ids::hooks::shownDirectory, shownDirectory}, {ids::hooks::fileList, fileList},
    {ids::hooks::directoryList, directoryList},   endOfHooks,
};

}  // namespace mc::dialogs

using namespace mc;
using namespace mc::dialogs;

StringList* mclibDialog_selectFiles(FileDialogResult* result, StringList* list, const char* title, const char* filter,
                                    const char* directory) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data) return nullptr;
    FileDialogBlock& block = *data->fileDialogP;
    data->selectedFiles = list;
    if (result) {
        copyText(block.filter, filter ? filter : "");
        copyText(block.directory, directory && mclibFile_directoryExists(directory) ? directory : rootFolder);
    }
    if (block.filter[0] == '\0') copyText(block.filter, "*.*");
    if (block.directory[0] == '\0') copyText(block.directory, rootFolder);
    endInSeparator(block.directory);
    forgetSelection(*data);
    bool agreed = false;
    {
        const DialogTexts texts(*data, title);
        agreed = agreedIn(ids::selectFiles::id);
    }
    StringList* const files = std::exchange(data->selectedFiles, nullptr);
    const bool isNew = data->selectionCount > 0;
    forgetSelection(*data);
    if (!agreed) {
        if (isNew) mdlStringList_destroy(files);
        return nullptr;
    }
    if (result) {
        result->reply = MDL_FILES_OK;
        copyText(result->filter, block.filter);
        copyText(result->directory, block.directory);
    }
    return files;
}
