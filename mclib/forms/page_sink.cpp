#include "mclib/forms/page_sink.h"

#include "mchost/mdl/system.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"

namespace mc::forms {

namespace {

// There is no sheet yet.
int refusePage(const FormPage& page) {
    if (page.form)
        toolSubsystem_printf(
            "Forms: the page isn't exported: this installation has no spreadsheet. Print the page, or place it in the "
            "drawing.\n");
    return MCLIB_ERROR;
}

const PageSink& sinkOf(const GlobalData* data) {
    return data && data->exportToExcel ? sheetSink : descriptorSink;
}

}  // namespace

const PageSink sheetSink = {refusePage, nullptr};

const PageSink& currentSink() {
    return sinkOf(mclibMain_getGlobalDataP());
}

}  // namespace mc::forms

using namespace mc;

void mclibMatList_setExportToExcel(int flag) {
    GlobalData* data = mclibMain_getGlobalDataP();
    if (!data) return;
    const forms::PageSink& before = forms::sinkOf(data);
    data->exportToExcel = flag;
    if (&before != &forms::sinkOf(data) && before.end) before.end();
}
