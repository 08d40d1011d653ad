// Start-up: the one place that knows all rooms of the library. It registers an application and has every room publish
// its hooks and load what it keeps, in a fixed order.
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/win32.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/elmattr/table.h"
#include "mclib/forms/logo.h"
#include "mclib/forms/pages.h"
#include "mclib/frame/applications.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "mclib/frame/message_dialogs.h"
#include "mclib/frame/messages.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/published.h"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/job.h"
#include "mclib/print/setup_store.h"
#include "mclib/print/shared.h"
#include "mclib/project/shared.h"
#include "mclib/project/store.h"
#include "resources/ids.h"

namespace {

constexpr const char* libraryVersion = "6.14";
constexpr int defineFolderFlags = MSGBOX_KIND_1 | MSGBOX_FIRST_16 | MSGBOX_SECOND_128;
constexpr int userLevel = 4;

// ---- blocks ----

template <class Block>
bool makeSharedBlock(Block*& block) {
    std::free(block);  // of the only application before, which has ended
    block = static_cast<Block*>(std::calloc(1, sizeof(Block)));
    return block != nullptr;
}

bool makeSharedBlocks() {
    if (mcScaleP && mcScaleP->scaleList) {
        mdlListModel_destroy(mcScaleP->scaleList);
        mcScaleP->scaleList = nullptr;
    }
    return makeSharedBlock(mclibpsd) && makeSharedBlock(mclibpd) && makeSharedBlock(mclibsd) &&
           makeSharedBlock(mcScaleP);
}

template <class Block>
bool makeBlock(Block*& block) {
    block = static_cast<Block*>(mclibMem_mallocRscErrorPrintf(sizeof(Block), MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    return block != nullptr;
}

bool makeApplicationBlocks(GlobalData& data) {
    const bool made = makeBlock(data.identityBlockP) && makeBlock(data.fileDialogP) && makeBlock(data.previewExtent) &&
                      makeBlock(data.activeRecord) && makeBlock(data.attributeEditBlock);
    if (made) copyText(data.fileDialogP->decimalSign, ",");
    return made;
}

void freeBlocks(GlobalData* data) {
    mdlResource_closeFile(data->appRscHandle);
    for (void* block : {static_cast<void*>(data->identityBlockP), static_cast<void*>(data->fileDialogP),
                        static_cast<void*>(data->previewExtent), static_cast<void*>(data->activeRecord),
                        static_cast<void*>(data->attributeEditBlock), static_cast<void*>(data)})
        dlmSystem_mdlFree(block);
}

// Takes an application that got no memory off the table again; one that was registered before goes on as it was.
void abandon(GlobalData* data, GlobalData* before) {
    replaceBlock(data, before);
    freeBlocks(data);
}

// Lets go of what an application kept that has registered again.
void leave(GlobalData* before, GlobalData* data) {
    replaceBlock(data, before);  // once more, for the calls that work on the current application's block
    mclibElmAttr_freeAllAttribute();
    mclibElmAttr_freeGroupeNames();
    if (before->upfIsOpen) mdlResource_closeFile(before->upfHandle.handle);
    replaceBlock(before, data);
    freeBlocks(before);
}

// ---- rooms ----

// What a room does for each application that starts: publish its hooks, load what it keeps. In this order.
using Room = void (*)(GlobalData& data);

void startAttributes(GlobalData& data) {
    data.attributeList = nullptr;
}

void startPrinterSetup(GlobalData&) {
    print::publishSetupHooks();
    print::publishPrintDialogHooks();
    print::loadSetup();
}

void startPreview(GlobalData&) {
    forms::publishPreviewHooks();
}

void startProject(GlobalData&) {
    publishProjectHooks();
}

void startMessageDialogs(GlobalData&) {
    messageState.publishHooks = nullptr;
    publishMessageDialogHooks();
}

constexpr Room rooms[] = {startPrinterSetup, startPreview, startProject, startMessageDialogs, startAttributes};

struct PublishedBlock {
    const char* structName;
    const char* name;
    void* pointer;  // the module-wide pointer, so a dialog sees what it holds when it looks
    const StructField* fields;
};
constexpr PublishedBlock publishedBlocks[] = {
    {"mclibPrinterSetupData", "mclibpsd", &mclibpsd, printerSetupFields},
    {"mclibProsjektData", "mclibpd", &mclibpd, projectFields},
    {"mclibSideData", "mclibsd", &mclibsd, pageFields},
    {"mclibGlobalData", "mgdP", &mgdP, globalDataFields},
    {"mclibPlotScale", "mcScaleP", &mcScaleP, plotScaleFields},
};

void publishBlocks() {
    SymbolSet* set = mdlCExpression_initializeSet(4, 0, 0);
    if (!set) return;
    mdlDialog_publishStructure(set, "FileDialogBlock", fileDialogFields);
    for (const PublishedBlock& block : publishedBlocks) {
        mdlDialog_publishStructure(set, block.structName, block.fields);
        mdlDialog_publishComplexPtr(set, block.structName, block.name, block.pointer);
    }
}

// ---- sessions ----

// Lets go of what belongs to a session that has ended. The shared blocks are made anew with the first application.
void forgetSession() {
    forgetAllApplications();
    forgetMessages();
    forms::setFunctions(nullptr, nullptr);
    forms::setLogo(nullptr, nullptr);
    print::closeJobs();
}

void noticeSession() {
    static int32_t known = 0;
    const int32_t running = mdlSystem_getSessionNumber();
    if (running != known) forgetSession();
    known = running;
}

// ---- titles and folder ----

struct TitleText {
    int kind;
    mdl::Message<MCLIB_LANGUAGE_TEXTS> text;
};
constexpr TitleText titleTexts[] = {{MSGBOX_KIND_1, ids::texts::noticeTitle},
                                    {MSGBOX_KIND_4, ids::texts::noteTitle},
                                    {MSGBOX_KIND_8, ids::texts::questionTitle},
                                    {MSGBOX_KIND_2, ids::texts::warningTitle}};

void setTitles(const char* applicationName) {
    for (const TitleText& title : titleTexts)
        mclibError_setTitle(title.kind, mc::languageText(title.text), applicationName);
}

bool asksForFolder(const char* applicationName) {
    std::string name = applicationName;
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c += 'a' - 'A';
    return name != "pdfvirk";
}

// The path up to its fourth separator from the end, or the first one when there are fewer.
std::string folderAbove(std::string path) {
    int cuts = 0;
    for (size_t i = path.size(); i-- > 0 && cuts < 4;)
        if (path[i] == '\\' || path[i] == '/') {
            path.resize(i + 1);
            ++cuts;
        }
    return path;
}

// Offers to define MC_DIR, the folder of the family, as the one that the application came from.
void offerFamilyFolder(const char* applicationName, int argc, char** argv) {
    if (mdlSystem_getenv(nullptr, "MC_DIR", 1) == 0) return;
    char site[256] = "";
    mdlSystem_getenv(site, "_USTN_SITE", sizeof site);
    if (argc <= 0 || !argv || !argv[0] || !std::strpbrk(argv[0], "\\/")) return;
    const std::string companyFile = std::string(site) + "company.cfg";
    const std::string folder = folderAbove(argv[0]);
    if (mc::showBox(defineFolderFlags, ids::questions::defineFamilyFolder, folder.c_str(), applicationName,
                    applicationName, companyFile.c_str(), folder.c_str()) == MSGBOX_FIRST)
        mdlSystem_defineCfgVar("MC_DIR", folder.c_str(), userLevel);
}

// ---- line styles ----

// Makes each named style the active one in turn, which brings its definition into the file; true when there was one.
bool activateNamedStyles(const ListModel* styles) {
    bool any = false;
    for (int32_t row = 0, count = mdlListModel_rowCount(styles); row < count; ++row) {
        int32_t value = 0;
        if (mdlListModel_getValue(&value, styles, row, 0) != MDL_SUCCESS || value != MDL_STYLE_NAMED) continue;
        mdlParams_setActive(mdlListModel_getText(styles, row, 0), MDL_PARAM_LINE_STYLE_NAME);
        any = true;
    }
    return any;
}

void refreshLineStyles() {
    ListModel* styles = mdlListModel_create(1);
    if (styles && mdlLevelList_getStyleListModel(styles, mdlModelRef_getActive()) == MDL_SUCCESS) {
        int32_t active = 0;
        mdlParams_getActive(&active, MDL_PARAM_STYLE);
        if (activateNamedStyles(styles)) mdlParams_setActive(&active, MDL_PARAM_STYLE);
    }
    if (styles) mdlListModel_destroy(styles);
    elmattr::bringStyleNumbersInStep();
}

// ---- initialisation ----

void reportFullTable(const char* applicationName) {
    const std::string brief = std::string("The application ") + (applicationName ? applicationName : "") +
                              " can't start: " + std::to_string(mostApplications) +
                              " applications have been started, which is the most of a session";
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR, brief.c_str(), "End the session, and start it with fewer applications.",
                            0);
}

bool isInitList(std::string_view listName) {
    return listName == "MS_DGNAPPS" || listName == "MS_INITAPPS";
}

// The blocks, shared and own, and the plot scales; false when out of memory. What is shared stays with an application
// that registers again.
bool makeBlocks(GlobalData& data, const GlobalData* before) {
    const bool first = slotsHandedOut() <= 1 && !before;
    if (first && !makeSharedBlocks()) return false;
    if (!makeApplicationBlocks(data)) return false;
    return !first || loadPlotScales();
}

}  // namespace

int mclibMain_initMcLib(const char* applicationName, int argc, char** argv) {
    return mclibMain_initMcLibExtended(applicationName, argc, argv, MDL_RSC_READ);
}

int mclibMain_initMcLibExtended(const char* applicationName, int argc, char** argv, int rscMode) {
    noticeSession();
    GlobalData* const before = findGlobalData();
    GlobalData* const data = registerApplication();
    if (!data) {
        if (tableIsFull()) reportFullTable(applicationName);
        return MCLIB_ERROR;
    }
    GlobalData* const shown = std::exchange(mgdP, data);
    messageState.publishHooks = publishMessageDialogHooks;
    if (argc > 1 && argv && argv[1]) data->isInitApp = isInitList(argv[1]);
    mdlResource_openFile(&data->appRscHandle, nullptr, rscMode);
    copyText(data->applicationName, applicationName ? applicationName : "");
    if (!makeBlocks(*data, before)) {
        messageState.publishHooks = nullptr;
        mgdP = shown;
        abandon(data, before);
        return MCLIB_ERROR;
    }
    if (before) leave(before, data);
    const char* name = data->applicationName;
    setTitles(name);  // in front of the rooms, whose loads may show a message box
    for (const Room room : rooms) room(*data);
    publishBlocks();
    mdlSystem_setFunction(MDL_FUNCTION_NEW_DESIGN_FILE, reinterpret_cast<void*>(mclibMain_newDesignFile));
    mdlSystem_setFunction(MDL_FUNCTION_END, reinterpret_cast<void*>(print::closeJobOfApplication));
    if (asksForFolder(name)) offerFamilyFolder(name, argc, argv);
    mclibUpf_initialize(data);
    if (std::strcmp(name, "MCDraft") != 0) refreshLineStyles();
    return MCLIB_SUCCESS;
}

void mclibMain_newDesignFile(char*, int state) {
    GlobalData* data = state == 1 ? mclibMain_getGlobalDataP() : nullptr;
    if (!data) return;
    if (data->isInitApp) {
        data->isInitApp = 0;
        for (int32_t i = 0; i < data->initAppCount; ++i)
            dlmSystem_callAnyFunction("", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(data->initApps[i]));
    }
    mclibProject_readProjectInfoFromDesignFile(mclibpd);
    if (MdlDialog* project = mdlDialog_find(ids::project::id, nullptr)) mdlDialog_itemsSynch(project);
    if (MdlDialog* attributes = mdlDialog_find(elmattr::dialogId, nullptr)) mdlWindow_close(attributes, 0, 1);
    refreshLineStyles();
}

char* mclibMain_getMclibVersion(void) {
    static char version[messageFormatSize];
    // The text is the format, as the lists hold them.
    snprintf(version, sizeof version, mc::languageText(ids::texts::version), libraryVersion);
    return version;
}

char* mclibMain_getMclibLocation(void) {
    static char location[260];
    location[0] = '\0';
    GetModuleFileNameA(GetModuleHandleA("MCLib.dll"), location, sizeof location);
    return location;
}
