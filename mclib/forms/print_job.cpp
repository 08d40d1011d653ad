#include "mclib/forms/print_job.h"

#include <algorithm>
#include <optional>
#include <string>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/system.h"
#include "mclib/forms/form_cell.h"
#include "mclib/forms/job_file.h"
#include "mclib/forms/page_info.h"
#include "mclib/forms/page_list.h"
#include "mclib/forms/page_making.h"
#include "mclib/forms/plotting.h"
#include "mclib/forms/preview_dialog.h"
#include "mclib/forms/sheet.h"
#include "mclib/forms/state.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/shown_path.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/delivery.h"
#include "mclib/print/job.h"
#include "mclib/print/print.h"
#include "mclib/print/setup_store.h"
#include "mclib/print/shared.h"
#include "resources/ids.h"

namespace mc::forms {

namespace {

constexpr int32_t textFileDefaults = -20003;

void tell(mc::Question<> message) {
    mdl::printMessage(MDL_FIELD_MESSAGE, message);
}

void tellPage(const char* name) {
    mdl::printMessage(MDL_FIELD_MESSAGE, ids::questions::printingPage, name);
}

// ---- one page ----

// Prints a page within the margins of its sheet, turned where that fits it better. False when there is none.
bool printPage(GlobalData& data, const ElementDescr* page) {
    if (!page) return false;
    const bool turned = isTurned(page);
    data.pageAngle = turned ? 90.0 : 0.0;
    const PrintableArea area = printableArea();
    print::PrintJob* job = print::applicationJob();
    if (job)
        job->printPage({.descr = page,
                        .box = {mclibpsd->marginLeft, mclibpsd->marginBottom, area.width, area.height},
                        .turned = turned,
                        .pageAngle = data.pageAngle});
    data.pageAngle = 0.0;
    return true;
}

// ---- the pages of a job ----

void printByUser(McUserPrintFunction print, int32_t number) {
    const KeepEditedBlocks keep;
    print(number);
}

bool printPageOnShow(GlobalData& data) {
    tellPage(pageName(data, data.previewPage));
    if (const McUserPrintFunction print = formsState->userPrintFunction) {
        printByUser(print, data.previewPage);
        return true;
    }
    return printPage(data, data.previewDescr);
}

// Makes and prints the pages one by one, and tells how many. One that can't be made takes no sheet.
int32_t printSpan(GlobalData& data, PageSpan span) {
    int32_t printed = 0;
    for (int32_t number = span.first; number <= span.last; ++number) {
        tellPage(pageName(data, number));
        if (const McUserPrintFunction print = formsState->userPrintFunction) {
            copyText(data.currentPageName, pageName(data, number));
            printByUser(print, number);
            ++printed;
            continue;
        }
        Page page;
        makePage(data, number, false, page.out());
        if (!page) continue;
        print::PrintJob* job = print::applicationJob();
        if (printed > 0 && job) job->newPage();
        if (printPage(data, page.get())) ++printed;
    }
    return printed;
}

// Whether there was something to print.
bool printAsked(GlobalData& data) {
    if (data.fileDialogP->printRange == printCurrentPage) return printPageOnShow(data);
    return canMakePages() && printSpan(data, pagesToPrint(data)) > 0;
}

// ---- the file of a job ----

std::optional<std::string> askForTextFile() {
    char name[256] = "";
    const int status = mclibUpf_defFileCreate(name, nullptr, "*.txt", nullptr, mc::languageText(ids::texts::savePage),
                                              textFileDefaults);
    if (status != MDL_SUCCESS) return std::nullopt;
    return name;
}

// The file that the user wants; nothing when the job was cancelled.
std::optional<std::string> askForTarget(GlobalData& data) {
    if (print::setupDeviceIs(PRINT_DEVICE_ONE_PAGE)) {
        data.fileDialogP->printRange = printCurrentPage;  // such a job is one page
        return askForTextFile();
    }
    int32_t reply = MDL_REPLY_SECOND;
    mdlDialog_openModal(&reply, 0, ids::print::id);
    if (reply == MDL_REPLY_SECOND) return std::nullopt;
    return mclibpsd->fileName;
}

void reportFailure(mc::Error<> message) {
    mc::showNotice(message);
    mdlSystem_noteFailure();
}

void reportFile(mc::Error<const char*> message, const std::string& file) {
    mc::showNotice(message, shownPath(file.c_str()).c_str());
    mdlSystem_noteFailure();
}

void sendToPrinter() {
    if (!print::printerIsChosen()) return reportFile(ids::errors::noPrinter, mclibpsd->fileName);
    tell(ids::questions::sendingPages);
    if (mclibPrint_sendFileToPrinter(mclibpsd->fileName, mclibpsd->printerName, mclibpsd->copies) == MCLIB_SUCCESS)
        return;
    mc::showNotice(ids::errors::notSent, shownPath(mclibpsd->fileName).c_str(), mclibpsd->printerName);
    mdlSystem_noteFailure();
}

// Whether the file goes to a printer when it is whole.
bool isSent() {
    return print::setupDeviceIs(PRINT_DEVICE_TO_PRINTER) && !mclibpsd->fileOnly && !formsState->userPrintFunction;
}

// Whether the set-up lets something be printed. Tells when not.
bool canPrint() {
    const bool hasRoom = formsState->userPrintFunction || !printableArea().isEmpty();
    const bool hasCopies = !isSent() || mclibpsd->copies >= 1;
    if (!hasRoom)
        reportFailure(ids::errors::marginsLeaveNothing);
    else if (!hasCopies)
        reportFailure(ids::errors::noCopies);
    return hasRoom && hasCopies;
}

// The sheets of the job are of the set-up's size, whichever the application asked for last.
void usePageSize() {
    double width = 0, height = 0;
    mclibPrint_getPageSize(&width, &height, mclibpsd->pageSize);
}

// Ends the job, which gets its name when it is what was asked for. Whether it has it; tells of a file that isn't whole.
bool finish(JobFile& job, const std::string& name, bool isAsked) {
    mclibPrint_fclose();
    const bool isWhole = mclibPrint_jobStatus() == MCLIB_SUCCESS && (!isAsked || job.publish());
    if (!isWhole) reportFile(ids::errors::cantClose, name);
    return isWhole && isAsked;
}

}  // namespace

void printPages(GlobalData& data) {
    print::readStoredSetup();
    if (print::setupDeviceIs(PRINT_DEVICE_BY_HOST)) return plotPages(data);
    const std::optional<std::string> file = askForTarget(data);
    if (!file || !canPrint()) return;
    tellMissingCellsAnew();
    usePageSize();
    JobFile job(file->c_str());
    if (!mclibPrint_fopen(job.name(), mclibpsd->deviceType)) return reportFile(ids::errors::cantOpen, *file);
    const bool any = printAsked(data);
    const bool printed = finish(job, *file, any);
    if (!any) reportFailure(ids::errors::noPages);
    if (printed && isSent()) sendToPrinter();
    tell(ids::questions::nothing);
}

}  // namespace mc::forms

using namespace mc;

int mclibPreview_printPages(int pageCount, char* const* pageNames, McPageFunction pageFunction, const char* fileName,
                            int device, int first, int last) {
    using namespace forms;
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data || !fileName || !pageFunction || !setPageNames(*data, pageCount, pageNames)) return MCLIB_ERROR;
    setFunctions(pageFunction, nullptr);
    if (printableArea().isEmpty()) {
        reportFailure(ids::errors::marginsLeaveNothing);
        return MCLIB_ERROR;
    }
    const PageSpan span{std::max(first, 0), std::min(last, pageCount - 1)};
    JobFile job(fileName);
    if (!mclibPrint_fopen(job.name(), device)) {
        reportFile(ids::errors::cantOpen, fileName);
        return MCLIB_ERROR;
    }
    const bool printed = finish(job, fileName, printSpan(*data, span) == span.size());
    tell(ids::questions::nothing);
    return printed ? MCLIB_SUCCESS : MCLIB_ERROR;
}
