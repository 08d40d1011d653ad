// What a title block gets of the project and of the page that is being made.
#include "mclib/forms/forms.h"
#include "mclib/frame/applications.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/project/dialog.h"
#include "mclib/project/shared.h"
#include "mclib/project/store.h"

namespace mc {

namespace {

void insertText(FormData* form, const char* key, int row, const char* text) {
    mclibMatList_insertValue(form, key, MCLIB_FORM_TEXT, row, text);
}

template <int Rows, int Size>
void insertRows(FormData* form, const char* key, const char (&texts)[Rows][Size]) {
    for (int row = 0; row < Rows; ++row) insertText(form, key, row, texts[row]);
}

// The project's texts, also the empty ones.
void insertProject(FormData* form, const mclibProsjektData& project) {
    const char* const kost[] = {project.kost0, project.kost1, project.kost2, project.kost3, project.kost4};
    for (int row = 0; row < 5; ++row) insertText(form, "kost", row, kost[row]);
    insertText(form, "pron", 0, project.pron);
    insertRows(form, "pros", project.pros);
    insertText(form, "UNav", 0, project.UNav);
    insertText(form, "USig", 0, project.USig);
    insertText(form, "UDat", 0, project.UDat);
    insertText(form, "SSig", 0, project.SSig);
    insertText(form, "SNav", 0, project.SNav);
    insertText(form, "SDat", 0, project.SDat);
    insertText(form, "RSig", 0, project.RSig);
    insertText(form, "RNav", 0, project.RNav);
    insertText(form, "RDat", 0, project.RDat);
    insertRows(form, "tegn", project.tegn);
}

void insertIfAny(FormData* form, const char* key, int row, const char* text) {
    if (*text) insertText(form, key, row, text);
}

template <int Rows, int Size>
void insertAnyRows(FormData* form, const char* key, int firstRow, const char (&texts)[Rows][Size]) {
    for (int row = 0; row < Rows; ++row) insertIfAny(form, key, firstRow + row, texts[row]);
}

// The page's texts go before the project's, one by one.
void insertPage(FormData* form, const mclibSideData& page) {
    insertAnyRows(form, "pros", 1, page.pros);
    insertIfAny(form, "UNav", 0, page.UNav);
    insertIfAny(form, "USig", 0, page.USig);
    insertIfAny(form, "UDat", 0, page.UDat);
    insertIfAny(form, "SSig", 0, page.SSig);
    insertIfAny(form, "SNav", 0, page.SNav);
    insertIfAny(form, "SDat", 0, page.SDat);
    insertIfAny(form, "RSig", 0, page.RSig);
    insertIfAny(form, "RNav", 0, page.RNav);
    insertIfAny(form, "RDat", 0, page.RDat);
    insertAnyRows(form, "tegn", 0, page.tegn);
    insertAnyRows(form, "kopo", 0, page.kopo);
    insertIfAny(form, "revs", 0, page.revs);
}

}  // namespace

}  // namespace mc

using namespace mc;

void mclibProject_insertProjectData(FormData* form) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    if (!data || !form) return;
    mclibProject_readProjectInfoFromDesignFile(mclibpd);
    mclibProject_readPageInfoFromDesignFile(mclibsd, data->currentPageName);
    insertProject(form, *mclibpd);
    if (*mclibsd->pageName) insertPage(form, *mclibsd);
}
