// Searching files in a folder and all below it, and the list of what was found: rows deleted, written to a file, read.
#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/find_files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/system.h"
#include "mclib/dialogs/dialogs.h"
#include "mclib/dialogs/selection.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/frame/util.h"
#include "mclib/text/file.h"
#include "resources/ids.h"

namespace mc::dialogs {

namespace {

constexpr int32_t mostFound = 1 << 24;
constexpr size_t longestName = 255;  // what other calls take
constexpr int longestLine = 256;     // of a list file, its NUL included

mdl::StringListPtr newList() {
    mdl::StringListPtr list(mdlStringList_create(0, 1));
    if (list) mdlStringList_setLimit(list.get(), mostFound);
    return list;
}

// ---- one search ----

class Search {
  public:
    explicit Search(StringList* found) : found_(found) { mclibUtil_initHourGlass(); }

    // What matches one pattern, in a folder and all below it; false when out of memory.
    bool run(const std::string& directory, const std::string& pattern) {
        gone_.clear();
        return goThrough(directory, pattern);
    }
    // Shows what couldn't be looked at, if there is anything.
    void tellLeftOut() const {
        for (const std::string& name : leftOut_)
            mclibError_rscListPrintf(LIST_COLLECT, MCLIB_ERRORS, ids::errors::notSearched.number, name.c_str());
        if (!leftOut_.empty())
            mclibError_rscListPrintf(LIST_SHOW, MCLIB_ERRORS, ids::errors::searchNotWhole.number,
                                     static_cast<int>(leftOut_.size()));
    }

  private:
    // Several ways may lead to a folder, and a link back to one that it lies in.
    bool wasThere(const std::string& directory) {
        MdlFileIdentity identity;
        return mdlFile_getIdentity(&identity, directory.c_str()) == MDL_SUCCESS &&
               !gone_.emplace(identity.device, identity.number).second;
    }

    mdl::StringListPtr entriesOf(const std::string& directory, const std::string& pattern, int attribute) {
        StringList* list = nullptr;
        if (mdlFile_findFiles(&list, (directory + pattern).c_str(), attribute) != MDL_SUCCESS)
            leftOut_.insert(directory);
        return mdl::StringListPtr(list);
    }

    bool goThrough(std::string directory, const std::string& pattern) {
        if (!directory.ends_with('\\') && !directory.ends_with('/')) directory += '\\';
        if (wasThere(directory)) return true;
        mclibUtil_updateHourGlass();
        const mdl::StringListPtr folders = entriesOf(directory, "*", MDL_FIND_FOLDERS);
        if (!folders) return true;
        for (int32_t i = 0, count = mdlStringList_size(folders.get()); i < count; ++i) {
            const std::string below = directory + memberOf(folders.get(), i);
            if (below.size() >= longestName)
                leftOut_.insert(below);
            else if (!goThrough(below, pattern))
                return false;
        }
        return takeFiles(directory, pattern);
    }

    bool takeFiles(const std::string& directory, const std::string& pattern) {
        const mdl::StringListPtr files = entriesOf(directory, pattern, MDL_FIND_FILES);
        for (int32_t i = 0, count = mdlStringList_size(files.get()); i < count; ++i) {
            const std::string name = directory + memberOf(files.get(), i);
            if (name.size() > longestName)
                leftOut_.insert(name);
            else if (!append(found_, name.c_str()))
                return false;
        }
        return true;
    }

    StringList* found_;
    std::set<std::pair<uint64_t, uint64_t>> gone_;  // folders, by device and number
    std::set<std::string> leftOut_;
};

// The patterns of a filter, without the blanks around them.
std::vector<std::string> patternsOf(std::string_view filter) {
    std::vector<std::string> patterns;
    while (!filter.empty()) {
        const size_t end = std::min(filter.find(';'), filter.size());
        const std::string_view part = filter.substr(0, end);
        const size_t first = part.find_first_not_of(' ');
        if (first != part.npos) patterns.emplace_back(part.substr(first, part.find_last_not_of(' ') - first + 1));
        filter.remove_prefix(std::min(end + 1, filter.size()));
    }
    return patterns;
}

MdlItem* foundItem(MdlDialog* dialog) {
    return mdl::itemOf(dialog, ids::searchFiles::found);
}

void searchAll(const FileDialogBlock& block, MdlItem* listBox) {
    mdl::StringListPtr found = newList();
    if (!found) return tellOutOfMemory();
    Search search(found.get());
    bool whole = true;
    for (const std::string& pattern : patternsOf(block.filter)) whole = whole && search.run(block.directory, pattern);
    replaceList(listBox, found.release());
    search.tellLeftOut();
    if (!whole) tellOutOfMemory();
}

// ---- the list that was found ----

// Without the chosen rows, in one go: there may be tens of thousands.
mdl::StringListPtr withoutSelection(const StringList* list, const MdlCell* cells, int32_t count) {
    std::vector<bool> chosen(static_cast<size_t>(mdlStringList_size(list)));
    for (int32_t i = 0; i < count; ++i) chosen[static_cast<size_t>(cells[i].row)] = true;
    mdl::StringListPtr rest = newList();
    for (size_t row = 0; rest && row < chosen.size(); ++row)
        if (!chosen[row] && !append(rest.get(), memberOf(list, static_cast<int32_t>(row)))) rest.reset();
    return rest;
}

void deleteChosen(GlobalData& data, MdlItem* listBox) {
    takeSelection(data, listBox);
    if (data.selectionCount > 0) {
        const StringList* list = mdlDialog_listBoxGetStrListP(listBox);
        mdl::StringListPtr rest = withoutSelection(list, data.selectionRows, data.selectionCount);
        if (!rest) tellOutOfMemory();
        if (rest) replaceList(listBox, rest.release());
    }
    forgetSelection(data);
}

bool writeMembers(MdlTextFile* file, const StringList* list) {
    bool good = true;
    for (int32_t i = 0, count = mdlStringList_size(list); good && i < count; ++i)
        good = mdlTextFile_putString(memberOf(list, i), file, 1) == MDL_SUCCESS;
    return good;
}

void writeList(const StringList* list) {
    char name[256];
    if (mdlDialog_fileCreate(name, 0, 0, "filelist.txt", "*.txt", "MS_DATA", "Create output file") != MDL_SUCCESS)
        return;
    MdlTextFile* const file = mdlTextFile_open(name, MDL_TEXT_WRITE);
    if (!file) return showNotice(ids::errors::cantOpen, name);
    const bool written = writeMembers(file, list);
    if (mdlTextFile_close(file) != 0 || !written) showNotice(ids::errors::cantClose, name);
}

// Takes the files of a list file that are there; how many aren't. False when out of memory.
bool readMembers(McFile* file, StringList* list, int& missing) {
    char line[longestLine];
    while (const int lines = mclibFile_read(line, file, longestLine)) {
        if (lines < 0) continue;  // a line that is too long, which has been told
        if (mdlFile_find(nullptr, line, nullptr, nullptr) == MDL_SUCCESS) {
            if (!append(list, line)) return false;
        } else {
            mclibError_listPrintf(LIST_COLLECT, "\"%s\" not found", line);
            ++missing;
        }
    }
    return true;
}

void readList(MdlItem* listBox) {
    char name[256];
    if (mdlDialog_fileOpen(name, 0, 0, "filelist.txt", "*.txt", "MS_DATA", "Select input file") != MDL_SUCCESS) return;
    McFile* const file = mclibFile_open(name, "r");
    if (!file) return;
    mdl::StringListPtr list = newList();
    int missing = 0;
    const bool whole = list && readMembers(file, list.get(), missing);
    mclibFile_close(file);
    if (list) replaceList(listBox, list.release());
    if (missing > 0) mclibError_listPrintf(LIST_SHOW, "%d files not found!", missing);
    if (!whole) tellOutOfMemory();
}

// ---- hooks ----

void foundList(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && (message->type == ITEM_CREATE || message->type == ITEM_DESTROY);
    if (!message->handled) return;
    if (message->type == ITEM_CREATE) {
        mdlDialog_listBoxSetInfo(message->item, 0, 1);
        mdlDialog_listBoxSetStrListP(message->item, newList().release(), 1);
    } else {
        data->selectedFiles = mdlDialog_listBoxGetStrListP(message->item);
    }
}

// The application's block when the button was pressed.
GlobalData* pressed(DialogMessage* message) {
    GlobalData* data = message->type == ITEM_ACTIVATED ? mclibMain_getGlobalDataP() : nullptr;
    message->handled = data != nullptr;
    return data;
}

void chooseDirectory(DialogMessage* message) {
    GlobalData* data = pressed(message);
    if (!data) return;
    FileDialogBlock& block = *data->fileDialogP;
    FileDialogResult result{};
    const mdl::StringListPtr chosen(mdlFileList_edit(&result, nullptr, MDL_FILE_LIST_DIRECTORY, "Select directory",
                                                     nullptr, "*.*", block.directory));
    if (result.reply != MDL_FILES_OK || mdlStringList_size(chosen.get()) == 0) return;
    copyText(block.directory, memberOf(chosen.get(), 0));
    mdlDialog_itemSynch(mdl::itemOf(message->dialog, ids::searchFiles::directory));
}

void searchButton(DialogMessage* message) {
    if (GlobalData* data = pressed(message)) searchAll(*data->fileDialogP, foundItem(message->dialog));
}

void deleteButton(DialogMessage* message) {
    if (GlobalData* data = pressed(message)) deleteChosen(*data, foundItem(message->dialog));
}

void writeButton(DialogMessage* message) {
    if (pressed(message)) writeList(mdlDialog_listBoxGetStrListP(foundItem(message->dialog)));
}

void readButton(DialogMessage* message) {
    if (pressed(message)) readList(foundItem(message->dialog));
}

// ---- where the dialog begins ----

// The first folder of a configuration variable, a folder itself, or the root.
void startAt(FileDialogBlock& block, const char* directory) {
    const char* name = directory ? directory : "";
    if (const mdl::HostPtr<char> value(mdlSystem_getExpandedCfgVar(name)); value)
        copyText(block.directory, std::string_view(value.get()).substr(0, std::strcspn(value.get(), ";")));
    else
        copyText(block.directory, name[0] != '\0' && mclibFile_directoryExists(name) ? name : rootFolder);
}

}  // namespace

const DialogHook searchHooks[] = {
    {ids::hooks::foundFiles, foundList},
    {ids::hooks::searchDirectory, chooseDirectory},
    {ids::hooks::search, searchButton},
    {ids::hooks::deleteFound, deleteButton},
    {ids::hooks::writeFound, writeButton},
    {ids::hooks::readFound, readButton},
    endOfHooks,
};

}  // namespace mc::dialogs

using namespace mc;
using namespace mc::dialogs;

StringList* mclibDialog_searchFiles(FileDialogResult* result, const char* title, const char* filter,
                                    const char* directory) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data) return nullptr;
    FileDialogBlock& block = *data->fileDialogP;
    if (result && result->directory[0] != '\0') {
        copyText(block.directory, result->directory);
        copyText(block.filter, result->filter);
    } else {
        startAt(block, directory);
        copyText(block.filter, filter ? filter : "");
    }
    data->selectedFiles = nullptr;
    bool agreed = false;
    {
        const DialogTexts texts(*data, title);
        agreed = agreedIn(ids::searchFiles::id);
    }
    StringList* const found = std::exchange(data->selectedFiles, nullptr);
    if (!agreed) {
        mdlStringList_destroy(found);
        return nullptr;
    }
    if (result) {
        copyText(result->filter, block.filter);
        copyText(result->directory, block.directory);
        result->reply = MDL_FILES_OK;
    }
    return found;
}

StringList* mclibUpf_defSearchFiles(const char* title, const char* defaultFilter, const char* defaultDirectory,
                                    int32_t id) {
    const int32_t handle = mclibUpf_getHandle();
    UserFileRecord record = {};
    mdlUserPrefs_getFileName(&record, handle, id);
    FileDialogResult result = {};
    if (record.directory[0] != '\0') {
        copyText(result.directory, record.directory);
        copyText(result.filter, record.filter);
    }
    StringList* const found = mclibDialog_searchFiles(&result, title, defaultFilter, defaultDirectory);
    if (!found) return nullptr;
    copyText(record.directory, result.directory);
    copyText(record.filter, result.filter);
    mdlUserPrefs_saveFileName(&record, handle, id);
    return found;
}
