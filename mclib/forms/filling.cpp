// Filling forms: the texts of a page, or of a model itself, with the values of an array.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "mchost/mdl/model.h"
#include "mchost/mdl/modify.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/forms/form_cell.h"
#include "mclib/forms/formatter.h"
#include "mclib/forms/page_sink.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/frame/util.h"
#include "mclib/geometry/elmdscr.h"
#include "mclib/print/shared.h"

namespace mc::forms {
namespace {

// A run over the texts of a page or a model.
struct Filling {
    explicit Filling(FormData* data) : form(data), index(data) {}
    FormData* form;
    FieldIndex index;
    const MdlBitMask* levels = nullptr;  // null: all
};

// ---- one text ----

// Cuts each line of the text to what a text element can hold.
void cutLines(char* text) {
    char* to = text;
    bool cut = false;
    for (const char* from = text; *from;) {
        const size_t length = std::strcspn(from, "\n"), kept = std::min<size_t>(length, MDL_TEXT_CHARACTERS);
        cut = cut || kept < length;
        std::memmove(to, from, kept);
        to += kept;
        from += length;
        if (*from) *to++ = *from++;
    }
    *to = '\0';
    if (cut)
        toolSubsystem_printf(
            "Forms: a line of the text \"%.40s...\" is cut at %d characters, which is the most. Divide "
            "the value by line breaks, or spread it over several fields.\n",
            text, int{MDL_TEXT_CHARACTERS});
}

double distance(const Point3d& a, const Point3d& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

// A text node in the place of the text, with its level, symbology and manner of writing; null when it can't be made.
// `element` is overwritten.
ElementDescr* makeTextNode(MSElementBuffer* element, const char* text, ModelRef* model) {
    Point3d origin;
    RotMatrix rotation;
    TextSize size;
    TextParams params;
    if (mdlText_extractWide(nullptr, &origin, &rotation, &size, &params, element) != MDL_SUCCESS) return nullptr;
    params.lineSpacing = size.width / 2;
    ElementDescr* node = nullptr;
    if (mdlTextNode_createWide(element, element, nullptr, &origin, &rotation, &size, &params) != MDL_SUCCESS ||
        mdlElmdscr_new(&node, model, element) != MDL_SUCCESS)
        return nullptr;
    if (mdlText_addStringsToNodeDscr(node, text) != MDL_SUCCESS) mdlElmdscr_freeAll(&node);
    return node;
}

// The text stays as the form has it.
int leaveText() {
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR,
                            "A text of the form couldn't be filled and stays as it is: there is no memory for it",
                            "Close other programs and make the page again.", 0);
    mdlSystem_noteFailure();
    return MDL_MODIFY_NONE;
}

int writeText(MSElementBuffer* element, char* text, ModelRef* model, ElementDescr** newDescr) {
    if (!*text) std::strcpy(text, " ");  // a text element can't be empty
    cutLines(text);
    if (std::strchr(text, '\n')) {
        *newDescr = makeTextNode(element, text, model);
        return *newDescr ? MDL_MODIFY_REPLACE_DESCR : leaveText();
    }
    const int status = mdlText_create(element, element, text, nullptr, nullptr, nullptr, nullptr, 0);
    return status == MDL_SUCCESS ? MDL_MODIFY_CHANGED : leaveText();
}

bool isOnLevels(const MSElementBuffer* element, const MdlBitMask* levels) {
    uint32_t level = 0;
    if (!levels) return true;
    mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, element);
    return level > 0 && mdlBitMask_testBit(levels, level - 1);
}

// The host's question about one element: what it is to do with it.
int fillText(MSElementBuffer* element, void* userArg, ModelRef* model, ElementDescr*, ElementDescr** newDescr) {
    auto& filling = *static_cast<Filling*>(userArg);
    *newDescr = nullptr;
    mclibUtil_updateHourGlass();
    if (mdlElement_getType(element) != MDL_TEXT || !isOnLevels(element, filling.levels)) return MDL_MODIFY_NONE;
    char format[MDL_TEXT_CHARACTERS + 1], text[pageTextSize];
    Point3d box[5];
    if (mdlText_extractString(format, element) != MDL_SUCCESS ||
        mdlText_extractShape(box, nullptr, element, 0, 0) != MDL_SUCCESS)
        return MDL_MODIFY_NONE;
    if (filling.index.isOld()) filling.index = FieldIndex(filling.form);
    const FormatRequest request{format, filling.form,  newDescr, distance(box[0], box[1]), distance(box[1], box[2]),
                                true,   &filling.index};
    const int result = generateText(text, request);
    if (result == MCLIB_FORM_BAD_ROW) return MDL_MODIFY_NONE;
    if (result == MCLIB_FORM_CALLED) {
        if (*newDescr) {
            mclibElemDscr_placeElementDescr(box, 1, *newDescr);
            return MDL_MODIFY_REPLACE_DESCR;
        }
        text[0] = '\0';
    }
    return writeText(element, text, model, newDescr);
}

// ---- the scale of a page ----

double ratio(double wanted, double extent) {
    return extent > 0 ? *mclibUtil_masterToUORP(wanted) / extent : HUGE_VAL;
}

// What the page must be multiplied by to fill the printable area; 1 when either has no extent.
double scaleOf(const ElementDescr* page) {
    Point3d range[2];
    if (!mclibpsd || mclibElemDscr_getRange(range, page) != MDL_SUCCESS) return 1;
    const mclibPrinterSetupData& setup = *mclibpsd;
    const double sx = ratio(setup.pageWidth - setup.marginRight - setup.marginLeft, range[1].x - range[0].x);
    const double sy = ratio(setup.pageHeight - setup.marginTop - setup.marginBottom, range[1].y - range[0].y);
    const double scale = std::min(sx, sy);
    return scale > 0 && std::isfinite(scale) ? scale : 1;
}

int fillFound(ElementDescr* found, void* userArg, ScanCriteria*) {
    auto& filling = *static_cast<Filling*>(userArg);
    mdlModify_elementSingle(found->model, found->filePos, MDL_MODIFY_NO_HEADERS, 0, fillText, &filling, 0);
    return 0;
}

int fillPage(const FormPage& page) {
    if (!page.descr) return MCLIB_FORM_NO_CELL;
    if (const int status = getFormCell(page.descr, page.cellName, page.library, page.cellOption)) return status;
    ModelRef* model = mdlModelRef_getActive();
    mdlCell_setRange(*page.descr, model);
    if (GlobalData* data = mclibMain_getGlobalDataP()) data->pageScale = scaleOf(*page.descr);
    Filling filling(page.form);
    mdlModify_elementDescr2(page.descr, model, MDL_MODIFY_NO_HEADERS, fillText, &filling, 0);
    mdlCell_setRange(*page.descr, model);
    return 0;
}

}  // namespace

const PageSink descriptorSink = {fillPage, nullptr};

}  // namespace mc::forms

using namespace mc;
using namespace mc::forms;

int mclibMatList_generatePageElementDescr(const char* cellName, const char* library, ElementDescr** page,
                                          FormData* form, int cellOption) {
    if (page) *page = nullptr;
    return currentSink().page({cellName, library, page, form, cellOption});
}

int mclibMatList_changeTextInMasterFile(FormData* form, const MdlBitMask* levelMask, ModelRef* model) {
    const mdl::Scan scan(model);
    if (!scan) return MCLIB_ERROR;
    Filling filling(form);
    filling.levels = levelMask;
    mdlScanCriteria_addSingleElementTypeTest(scan.criteria(), MDL_TEXT);
    mdlScanCriteria_setLevelTest(scan.criteria(), levelMask, 1, 0);
    mdlScanCriteria_setReturnType(scan.criteria(), MDL_SCAN_DESCRIPTORS, 0, 1);
    mdlScanCriteria_setElmDscrCallback(scan.criteria(), fillFound, &filling);
    return mdlScanCriteria_scan(scan.criteria(), nullptr, nullptr, nullptr) == MDL_SUCCESS ? MCLIB_SUCCESS
                                                                                           : MCLIB_ERROR;
}

double* mclibMatList_getCurrentPageScaleP(void) {
    GlobalData* data = mclibMain_getGlobalDataP();
    return data ? &data->pageScale : nullptr;
}
