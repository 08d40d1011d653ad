// The frame's part of an application's start: its working blocks, the titles of its messages, the functions that wait
// for its first design file, and the folder of its family.
#include <cstring>
#include <string>

#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/applications.h"
#include "mclib/frame/letters.h"
#include "mclib/frame/main.h"
#include "mclib/frame/messages.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/published.h"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/room.h"
#include "mclib/frame/text_buffer.h"
#include "resources/ids.h"

namespace mc {

namespace {

// ---- titles ----

struct TitleText {
    int kind;
    mc::Text text;
};
constexpr TitleText titleTexts[] = {{MSGBOX_KIND_1, ids::texts::noticeTitle},
                                    {MSGBOX_KIND_4, ids::texts::noteTitle},
                                    {MSGBOX_KIND_8, ids::texts::questionTitle},
                                    {MSGBOX_KIND_2, ids::texts::warningTitle}};

void setTitles(const char* applicationName) {
    for (const TitleText& title : titleTexts)
        mclibError_setTitle(title.kind, mc::languageText(title.text), applicationName);
}

// ---- the family's folder ----

constexpr const char* familyFolder = "MC_DIR";
constexpr const char* withoutFamilyFolder = "pdfvirk";
constexpr int defineFolderFlags = MSGBOX_KIND_1 | MSGBOX_FIRST_16 | MSGBOX_SECOND_128;
constexpr int userLevel = 4;

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

// Offers to define the variable as the folder that the application came from.
void offerFamilyFolder(GlobalData& data, const Start& start) {
    const char* name = data.applicationName;
    if (lowered(name) == withoutFamilyFolder || mdlSystem_getenv(nullptr, familyFolder, 1) == 0) return;
    if (start.argc <= 0 || !start.argv || !start.argv[0] || !std::strpbrk(start.argv[0], "\\/")) return;
    char site[256] = "";
    mdlSystem_getenv(site, "_USTN_SITE", sizeof site);
    const std::string companyFile = std::string(site) + "company.cfg";
    const std::string folder = folderAbove(start.argv[0]);
    if (mc::showBox(defineFolderFlags, ids::questions::defineFamilyFolder, folder.c_str(), name, name,
                    companyFile.c_str(), folder.c_str()) == MSGBOX_FIRST)
        mdlSystem_defineCfgVar(familyFolder, folder.c_str(), userLevel);
}

// ---- the room ----

bool begin(GlobalData& data, const Start&) {
    if (!makeBlock(data.identityBlockP) || !makeBlock(data.fileDialogP)) return false;
    copyText(data.fileDialogP->decimalSign, ",");
    setTitles(data.applicationName);  // in front of the other rooms, whose loads may show a message box
    mclibUpf_initialize(&data);
    return true;
}

void startWaiting(GlobalData& data) {
    if (!data.isInitApp) return;
    data.isInitApp = 0;
    for (int32_t i = 0; i < data.initAppCount; ++i)
        dlmSystem_callAnyFunction("", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(data.initApps[i]));
}

void release(GlobalData& data) {
    if (data.upfIsOpen) mdlResource_closeFile(data.upfHandle.handle);
    mdlResource_closeFile(data.appRscHandle);
    dlmSystem_mdlFree(data.identityBlockP);
    dlmSystem_mdlFree(data.fileDialogP);
}

void end() {
    forgetAllApplications();
    forgetMessages();
}

constexpr PublishedBlock published[] = {
    {"FileDialogBlock", fileDialogFields, nullptr, nullptr},
    {"mclibGlobalData", globalDataFields, "mgdP", &mgdP},
};

}  // namespace

const Room frameRoom = {.name = "frame",
                        .hooks = {},
                        .published = published,
                        .begin = begin,
                        .ready = offerFamilyFolder,
                        .newDesignFile = startWaiting,
                        .applicationEnds = nullptr,
                        .release = release,
                        .end = end};

}  // namespace mc
