#include "forms/print_job.h"

#include <algorithm>
#include <numbers>
#include <optional>
#include <string>

#include "forms/page_info.h"
#include "forms/pages.h"
#include "frame/errors.h"
#include "frame/main.h"
#include "frame/resource_files.h"
#include "frame/text_buffer.h"
#include "host/mdl/dialog.h"
#include "host/mdl/model.h"
#include "host/mdl/system.h"
#include "host/mdl/transform.h"
#include "print/delivery.h"
#include "print/print.h"
#include "print/shared.h"

namespace forms {

namespace {

enum { PRINT_DIALOG = 20007 };
enum { REPLY_CANCEL = 4 };
enum { MESSAGE_FIELD = 0 };
enum { NOTICE_NONE = 0, NOTICE_PAGE = 1, NOTICE_SENDING = 2 };
enum { ERROR_OPEN = 1, ERROR_STORE = 2, ERROR_SENDING = 31 };
enum { TEXT_FILE_TITLE = 34 };
constexpr int32_t textFileDefaults = -20003;

void tell(int message) {
    mdlOutput_rscPrintf(MESSAGE_FIELD, 0, MCLIB_QUESTIONS, message);
}

void tellPage(const char* name) {
    mdlOutput_rscPrintf(MESSAGE_FIELD, 0, MCLIB_QUESTIONS, NOTICE_PAGE, name);
}

// ---- one page ----

void turn(ElementDescr* page, double angle) {
    Transform rotation;
    mdlTMatrix_rotateByAngles(&rotation, nullptr, 0, 0, angle);
    mdlElmdscr_transform(page, &rotation);
    mdlCell_setRange(page, mdlModelRef_getActive());
}

// Prints a page within the margins of its sheet. A turned one is left turned unless it is still needed.
void printPage(GlobalData& data, ElementDescr* page, bool restore) {
    constexpr double quarter = std::numbers::pi / 2;
    data.pageAngle = 0.0;
    if (!page) return;
    const bool turned = isTurned(page);
    if (turned) {
        turn(page, quarter);
        data.pageAngle = 90.0;
    }
    const mclibPrinterSetupData& p = *mclibpsd;
    mclibPrint_printElementDescr(page, p.marginLeft, p.marginBottom, p.pageWidth - p.marginLeft - p.marginRight,
                                 p.pageHeight - p.marginTop - p.marginBottom);
    if (turned && restore) turn(page, -quarter);
}

// ---- the pages of a job ----

void printByUser(McUserPrintFunction print, int32_t number) {
    const KeepEditedBlock keep;
    print(number);
}

void printPageOnShow(GlobalData& data) {
    tellPage(pageName(data, data.previewPage));
    if (const McUserPrintFunction print = userPrintFunction())
        printByUser(print, data.previewPage);
    else
        printPage(data, data.previewDescr, true);
}

// Makes and prints the pages one by one, and tells how many. One that can't be made takes no sheet.
int32_t printSpan(GlobalData& data, PageSpan span) {
    int32_t printed = 0;
    for (int32_t number = span.first; number <= span.last; ++number) {
        tellPage(pageName(data, number));
        if (const McUserPrintFunction print = userPrintFunction()) {
            copyText(data.currentPageName, pageName(data, number));
            printByUser(print, number);
            ++printed;
            continue;
        }
        Page page;
        makePage(data, number, false, page.out());
        if (!page) continue;
        if (printed++ > 0) mclibPrint_newPage();
        printPage(data, page.get(), false);
    }
    return printed;
}

void printAsked(GlobalData& data) {
    if (data.fileDialogP->printRange == printCurrentPage)
        printPageOnShow(data);
    else if (canMakePages())
        printSpan(data, pagesToPrint(data));
}

// ---- the file of a job ----

std::optional<std::string> askForTextFile() {
    char name[256] = "";
    const int status = mclibUpf_defFileCreate(name, nullptr, "*.txt", nullptr,
                                              mclibUtil_getLanguageText(TEXT_FILE_TITLE), textFileDefaults);
    if (status != MDL_SUCCESS) return std::nullopt;
    return name;
}

// The file that the user wants; nothing when the job was cancelled.
std::optional<std::string> askForTarget(GlobalData& data) {
    if (mclibpsd->deviceType == PRINT_ASCII) {
        data.fileDialogP->printRange = printCurrentPage;  // such a job is one page
        return askForTextFile();
    }
    int32_t reply = REPLY_CANCEL;
    mdlDialog_openModal(&reply, 0, PRINT_DIALOG);
    if (reply == REPLY_CANCEL) return std::nullopt;
    return mclibpsd->fileName;
}

void reportFile(int message, const std::string& file) {
    mclibError_rscMsgBoxPrintf(MSGBOX_NOTICE, MCLIB_ERRORS, message, file.c_str());
}

void sendToPrinter() {
    tell(NOTICE_SENDING);
    if (mclibPrint_sendFileToPrinter(mclibpsd->fileName, mclibpsd->printerName, mclibpsd->copies) != MCLIB_SUCCESS)
        mclibError_rscMsgBoxPrintf(MSGBOX_NOTICE, MCLIB_ERRORS, ERROR_SENDING, mclibpsd->fileName,
                                   mclibpsd->printerName);
}

// Ends the file; whether all of it was written. Tells when not.
bool closeFile(const std::string& file) {
    mclibPrint_fclose();
    const bool stored = mclibPrint_jobStatus() == MCLIB_SUCCESS;
    if (!stored) reportFile(ERROR_STORE, file);
    return stored;
}

}  // namespace

void printPages(GlobalData& data) {
    if (mclibpsd->deviceType == PRINT_HOST_PLOTTER) return plotPages(data);
    const std::optional<std::string> file = askForTarget(data);
    if (!file) return;
    const int32_t device = mclibpsd->deviceType;
    if (!mclibPrint_fopen(file->c_str(), device)) return reportFile(ERROR_OPEN, *file);
    printAsked(data);
    if (closeFile(*file) && device != PRINT_ASCII && !mclibpsd->fileOnly && !userPrintFunction()) sendToPrinter();
    tell(NOTICE_NONE);
}

}  // namespace forms

int mclibPreview_printPages(int pageCount, char* const* pageNames, McPageFunction pageFunction, const char* fileName,
                            int device, int first, int last) {
    using namespace forms;
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data || !fileName || !pageFunction || !setPageNames(*data, pageCount, pageNames)) return MCLIB_ERROR;
    setFunctions(pageFunction, nullptr);
    setUserPrintFunction(nullptr);
    const PageSpan span{std::max(first, 0), std::min(last, pageCount - 1)};
    if (!mclibPrint_fopen(fileName, device)) {
        reportFile(ERROR_OPEN, fileName);
        return MCLIB_ERROR;
    }
    const int32_t printed = printSpan(*data, span);
    const bool stored = closeFile(fileName);
    tell(NOTICE_NONE);
    return stored && printed == span.last - span.first + 1 ? MCLIB_SUCCESS : MCLIB_ERROR;
}
