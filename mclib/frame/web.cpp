// The browser, and the manuals of applications.
#include <string>

#include "mchost/mdl/external.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/util.h"
#include "resources/ids.h"

namespace mc {

namespace {

constexpr const char* browser = "WEBBROWS";

int browse(const char* word, const char* target) {
    if (!target) return MCLIB_ERROR;
    if (!mdlSystem_findMdlDesc(browser) && mdlSystem_loadMdlProgram(browser, browser, nullptr) != MDL_SUCCESS)
        mc::showNotice(ids::errors::noBrowser);
    const std::string keyin = std::string("browse ") + word + " " + target;
    return mdlInput_sendKeyin(keyin.c_str(), 0, -1, nullptr);
}

bool isThere(const std::string& file) {
    return mdlFile_find(nullptr, file.c_str(), nullptr, nullptr) == 0;
}

// The folder of the application family; empty when both variables are undefined or empty.
std::string familyFolder() {
    for (const char* variable : {"MC_LOCAL", "MC_DIR"})
        if (const mdl::HostPtr<char> value{mdlSystem_getExpandedCfgVar(variable)}; value && *value.get() != '\0')
            return value.get();
    return {};
}

// folder + between + application's name + language suffix + ending, else the same without the suffix; empty when
// neither file is there.
std::string findManual(const char* between, const char* ending) {
    const std::string folder = familyFolder();
    const char* application = mclibMain_getApplicationName();
    if (folder.empty() || !application) return {};
    for (const char* suffix : {static_cast<const char*>(mc::languageText(ids::texts::manualSuffix)), ""})
        if (std::string file = folder + between + application + suffix + ending; isThere(file)) return file;
    return {};
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibWeb_openFile(const char* path) {
    return browse("file", path);
}

int mclibWeb_openUrl(const char* url) {
    return browse("url", url);
}

int mclibWeb_openApplHelp(void) {
    const std::string manual = findManual("doc/manual/", "/index.htm");
    return manual.empty() ? MCLIB_ERROR : browse("file", manual.c_str());
}

int mclibWeb_openApplChmHelp(void) {
    const std::string manual = findManual("help/", ".chm");
    const mdl::HostPtr<char> system{mdlSystem_getExpandedCfgVar("SystemRoot")};
    if (manual.empty() || !system) return MCLIB_ERROR;
    const std::string viewer = std::string(system.get()) + "\\hh.exe";
    const char* arguments[] = {manual.c_str()};
    return isThere(viewer) ? mdlExternal_extStartProgram(viewer.c_str(), 1, arguments) : MCLIB_ERROR;
}
