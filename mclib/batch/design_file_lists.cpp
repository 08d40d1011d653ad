#include "mclib/batch/design_file_lists.h"

#include <string>
#include <utility>
#include <vector>

#include "mchost/mdl/completion_bar.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mclib/dialogs/dialogs.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/text/file.h"
#include "resources/ids.h"

namespace mc::batch {

namespace {

constexpr int32_t listOptions = 283;
constexpr int longestLine = 256;  // of a list file, its NUL included

// The application's function and what it is given.
struct Process {
    void (*function)(void* userArg);
    void* userArg;

    void call() const {
        dlmSystem_callAnyFunction("P", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(function), userArg);
    }
};

// ---- one run ----

// From the first file to the way back to the one that was open before.
class Run {
  public:
    explicit Run(Process process)
        : process_(process), before_(tcbP->designFileName), bar_(mdlDialog_openCompletionBar(nullptr)) {
        mdlSystem_enterGraphicsExtended(1);
    }
    ~Run() { closeBar(); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void show(const char* text, size_t done, size_t count) {
        mdlDialog_completionBarUpdate(bar_, text, static_cast<int32_t>(100 * done / count));
    }
    void work(const char* name) {
        if (mdlSystem_newDesignFile(name, 0) != MDL_SUCCESS) return tellNotOpened(name);
        left_ = true;
        process_.call();
    }
    // Goes back; the number of files that couldn't be opened.
    int end() {
        closeBar();
        if (!left_) return notOpened_;
        if (!before_.empty() && mdlSystem_newDesignFile(before_.c_str(), 0) != MDL_SUCCESS)
            tellNotOpened(before_.c_str());
        // What can't be stored is told by the host.
        if (before_.empty() && mdlModelRef_getActive()) mdlSystem_closeDesignFile();
        return notOpened_;
    }
    const std::string& before() const { return before_; }

  private:
    void closeBar() {
        mdlDialog_closeCompletionBar(std::exchange(bar_, nullptr));
        mdlSystem_enterGraphicsExtended(0);
    }
    // The message centre has the reason.
    void tellNotOpened(const char* name) {
        ++notOpened_;
        mclibError_rscListPrintf(LIST_COLLECT, MCLIB_ERRORS, ids::errors::notOpened.number, name);
    }

    Process process_;
    std::string before_;
    MdlCompletionBar* bar_;
    bool left_ = false;
    int notOpened_ = 0;
};

void showNotOpened(int count) {
    if (count > 0) mclibError_rscListPrintf(LIST_SHOW, MCLIB_ERRORS, ids::errors::filesNotOpened.number, count);
}

// ---- over a list ----

struct Progress {
    char text[messageTextSize];
    explicit Progress(const char* name) { formatText(text, languageText(ids::texts::workingOn), name); }
};

void runOver(const Process& process, const StringList* list) {
    const auto count = static_cast<size_t>(mdlStringList_size(list));
    if (count == 0) return process.call();
    Run run(process);
    const char* name = nullptr;
    for (size_t i = 0; i < count; ++i) {
        if (mdlStringList_getMember(&name, nullptr, list, static_cast<int32_t>(i)) != MDL_SUCCESS) continue;
        const std::string file = name;  // the process may change the list
        run.show(Progress(file.c_str()).text, i, count);
        run.work(file.c_str());
    }
    run.show(Progress(run.before().c_str()).text, count, count);
    showNotOpened(run.end());
}

// What the dialogs without a remembered number begin with the first time.
void setFirstUse(GlobalData& data) {
    if (!data.fileListFirstUse) return;
    data.fileListFirstUse = 0;
    data.fileListResult.reply = 0;
    mdlFile_parseName(tcbP->designFileName, nullptr, data.fileListResult.directory, nullptr, nullptr);
    copyText(data.fileListResult.filter, "*.*");
}

// The edited list; null when the user cancelled.
StringList* editedList(GlobalData& data, StringList* list, const char* directory, const char* filter, int32_t id) {
    const std::string title = languageText(ids::texts::designFiles);
    const std::string listTitle = languageText(ids::texts::chooseDesignFiles);
    if (id != 0) {
        int reply = MDL_FILES_CANCEL;
        StringList* const edited = mclibUpf_defFileListEdit(&reply, list, listOptions, title.c_str(), listTitle.c_str(),
                                                            filter, directory, id);
        return reply == MDL_FILES_CANCEL ? nullptr : edited;
    }
    setFirstUse(data);
    FileDialogResult& result = data.fileListResult;
    if (directory) copyText(result.directory, directory);
    if (filter) copyText(result.filter, filter);
    return mdlFileList_edit(&result, list, listOptions, title.c_str(), listTitle.c_str(), result.filter,
                            result.directory);
}

// ---- over the files of a list file ----

// Its lines; one that is too long has been told, and is passed over.
std::vector<std::string> linesOf(McFile* file) {
    std::vector<std::string> lines;
    char line[longestLine];
    while (const int taken = mclibFile_read(line, file, longestLine))
        if (taken > 0) lines.emplace_back(line);
    return lines;
}

void runOverLines(const Process& process, const std::vector<std::string>& lines) {
    int missing = 0;
    Run run(process);
    for (size_t i = 0; i < lines.size(); ++i) {
        char name[256];
        run.show(lines[i].c_str(), i + 1, lines.size());
        if (mdlFile_find(name, lines[i].c_str(), nullptr, nullptr) == MDL_SUCCESS) {
            run.work(name);
        } else {
            mclibError_listPrintf(LIST_COLLECT, "\"%s\" not found", lines[i].c_str());
            ++missing;
        }
    }
    const int notOpened = run.end();
    if (missing > 0)
        mclibError_listPrintf(LIST_SHOW, "%d files not found!", missing);
    else
        showNotOpened(notOpened);
}

}  // namespace

}  // namespace mc::batch

using namespace mc;
using namespace mc::batch;

void mclibDgnList_selectAndProcessDgnFiles(void (*process)(void* userArg), StringList** listP, void* userArg,
                                           const char* directory, const char* filter, int32_t id) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data) return;
    StringList* const before = listP ? *listP : nullptr;
    StringList* const edited = editedList(*data, before, directory, filter, id);
    if (!edited) return;
    runOver({process, userArg}, edited);
    if (!listP) return mdlStringList_destroy(edited);
    if (before != edited) mdlStringList_destroy(before);
    *listP = edited;
}

void mclibDgnList_processDgnFilesFromFile(void (*process)(void* userArg), void* userArg, const char* filter,
                                          const char* directoryVariable, int32_t id) {
    constexpr const char* title = "Select file list file";
    char name[256];
    const int status = id != 0 ? mclibUpf_defFileOpen(name, nullptr, filter, directoryVariable, title, id)
                               : mdlDialog_fileOpen(name, 0, 0, nullptr, filter, directoryVariable, title);
    if (status != MDL_SUCCESS) return;
    McFile* const file = mclibFile_open(name, "r");
    if (!file) return;
    const std::vector<std::string> lines = linesOf(file);
    mclibFile_close(file);
    if (!lines.empty()) runOverLines({process, userArg}, lines);
}

void mclibDgnList_findAndProcessDgnFiles(void (*process)(void* userArg), void* userArg, const char* directory,
                                         const char* filter, int32_t id) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data) return;
    if (id == 0) setFirstUse(*data);
    FileDialogResult& result = data->fileListResult;
    const std::string title = languageText(ids::texts::searchDesignFiles);
    const mdl::StringListPtr found(
        id != 0 ? mclibUpf_defSearchFiles(title.c_str(), filter, directory, id)
                : mclibDialog_searchFiles(&result, title.c_str(), result.filter, result.directory));
    if (found) runOver({process, userArg}, found.get());
}
