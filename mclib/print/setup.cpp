// The printer set-up's defaults, and how it is kept in the user's preference file.
#include "mclib/print/setup.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "mchost/mdl/files.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/resource.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/preference_file.h"
#include "mclib/frame/shown_path.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/frame/util.h"
#include "mclib/print/delivery.h"
#include "mclib/print/folder.h"
#include "mclib/print/print.h"
#include "mclib/print/setup_record.h"
#include "mclib/print/setup_store.h"
#include "mclib/print/shared.h"
#include "resources/ids.h"

namespace mc::print {

namespace {

constexpr std::string_view nobodysPrinter = "\\\\server\\printer";

// ---- defaults ----

bool isFolder(const char* name) {
    int32_t attributes = 0;
    return mdlFile_getFileAttributes(&attributes, name) == MDL_SUCCESS && attributes & MDL_ATTRIBUTE_DIRECTORY;
}

std::string temporaryFolder() {
    constexpr const char* usual = "c:\\temp\\";
    if (isFolder(usual)) return usual;
    const std::string folder = withSeparator(valueOf("MS_TMP"));
    return folder.empty() ? usual : folder;
}

void setDefaultPlotter(mclibPrinterSetupData& setup) {
    if (mdlFile_find(setup.plotterFile, nullptr, "MS_PLTR", nullptr) != MDL_SUCCESS) setup.plotterFile[0] = '\0';
}

void setDefaults(mclibPrinterSetupData& setup) {
    setup = {};
    setup.pageSize = PRINT_PAGE_A4;
    mclibPrint_getPageSize(&setup.pageWidth, &setup.pageHeight, PRINT_PAGE_A4);
    setup.marginLeft = 20;
    setup.marginRight = setup.marginTop = setup.marginBottom = 10;
    setup.orientation = 2;
    setup.deviceType = PRINT_POSTSCRIPT;
    setup.copies = 1;
    copyText(setup.printerName, nobodysPrinter);
    copyText(setup.fileName, temporaryFolder() + "mc.ps");
    setDefaultPlotter(setup);
}

// ---- printers ----

bool isListed(std::string_view path) {
    StringList* const printers = mclibWin32_findWindowsPrinterNames();
    const bool listed = rowOfPrinter(printers, path) >= 0;
    mdlStringList_destroy(printers);
    return listed;
}

// ---- the preference file ----

void reportFile() {
    const mdl::HostPtr<char> name(mdlSystem_getExpandedCfgVar("MS_USERPREF"));
    if (name)
        mc::showNotice(ids::errors::preferencesUnusable, shownPath(name.get()).c_str());
    else
        mc::showNotice(ids::errors::noPreferenceVariable);
}

// A block that is too short counts as none.
bool loadFrom(RscHandle file, int32_t type, int32_t id, size_t size) {
    const mdl::Resource block(file, type, id);
    if (!block || block.bytes().size() < size) return false;
    setupLayout(LoadFields(block.bytes().first(size)), *mclibpsd);
    return true;
}

bool loadStored(RscHandle file) {
    if (loadFrom(file, SETUP_TYPE, SETUP_ID, setupSize)) return true;
    if (!loadFrom(file, OLDER_TYPE, OLDER_ID, olderSize)) return false;
    setDefaultPlotter(*mclibpsd);
    return true;
}

}  // namespace

bool setupDeviceIs(uint32_t trait) {
    const McPrintDevice* device = mclibPrint_findDeviceP(mclibpsd->deviceType);
    return device ? (device->traits & trait) != 0 : trait == PRINT_DEVICE_TO_PRINTER;
}

void loadSetup() {
    if (!mclibpsd) return;
    const mdl::ResourceFile file = userPreferenceFile(MDL_RSC_READ);
    if (!file) reportFile();
    if (!file || !loadStored(file.handle())) setDefaults(*mclibpsd);
}

void readStoredSetup() {
    if (!mclibpsd) return;
    if (const mdl::ResourceFile file = userPreferenceFile(MDL_RSC_READ); file) loadStored(file.handle());
}

void storeSetup() {
    if (!mclibpsd) return;
    const mdl::ResourceFile file = userPreferenceFile(MDL_RSC_WRITE);
    std::array<uint8_t, setupSize> bytes{};
    setupLayout(StoreFields(bytes), *mclibpsd);
    if (!file || mdlResource_put(file.handle(), SETUP_TYPE, SETUP_ID, bytes.data(), setupSize) != MDL_SUCCESS)
        reportFile();
}

bool isNobodysPrinter(std::string_view printer) {
    return printer.empty() || printer == nobodysPrinter;
}

bool printerIsChosen() {
    return !isNobodysPrinter(mclibpsd->printerName) || isListed(mclibpsd->printerName);
}

}  // namespace mc::print
