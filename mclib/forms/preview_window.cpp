#include "mclib/forms/preview_window.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/view.h"
#include "mclib/forms/preview_extent.h"
#include "mclib/forms/sheet.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/preference_file.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/frame/util.h"
#include "mclib/geometry/elmdscr.h"
#include "mclib/print/page_look.h"
#include "mclib/print/shared.h"
#include "resources/ids.h"

namespace mc::forms {

namespace {

enum { PAPER_COLOR = 7 };

constexpr uint32_t pageViewFlags[3] = {0x12084, 0, 0};

// ---- the window's size in the user's preference file ----

constexpr PreviewExtent usualExtent{600, 400};
constexpr int32_t mostPixels = 32767;

PreviewExtent storedExtent() {
    const mdl::ResourceFile file = userPreferenceFile(MDL_RSC_READ);
    if (!file) return usualExtent;
    const mdl::Resource block(file.handle(), extentType, extentId);
    if (!block || block.bytes().size() != storedExtentSize) return usualExtent;
    PreviewExtent extent = usualExtent;
    extentFields(LoadFields(block.bytes()), extent);
    const auto isUsable = [](int32_t side) { return 0 < side && side <= mostPixels; };
    return isUsable(extent.width) && isUsable(extent.height) ? extent : usualExtent;
}

// ---- the sheet ----

// A sheet of the printer set-up as it lies on the screen, in millimetres.
struct Sheet {
    double width, height;
    double left, right, top, bottom;  // margins
};

Sheet sheetOnScreen(bool turned) {
    const mclibPrinterSetupData& p = *mclibpsd;
    if (turned) return {p.pageHeight, p.pageWidth, p.marginBottom, p.marginTop, p.marginLeft, p.marginRight};
    return {p.pageWidth, p.pageHeight, p.marginLeft, p.marginRight, p.marginTop, p.marginBottom};
}

bool isEmpty(const DialogRect& rect) {
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

int32_t pixels(double length) {
    return static_cast<int32_t>(std::lround(length));
}

// As much of the area as the sheet's shape fills, in its middle; empty for a sheet that has no size.
DialogRect fitted(const DialogRect& area, const Sheet& sheet) {
    const double width = area.right - area.left, height = area.bottom - area.top;
    const double scale = std::min(width / sheet.width, height / sheet.height);
    if (!(scale > 0 && std::isfinite(scale))) return {};
    const int32_t left = area.left + pixels((width - sheet.width * scale) / 2);
    const int32_t top = area.top + pixels((height - sheet.height * scale) / 2);
    return {left, top, left + pixels(sheet.width * scale), top + pixels(sheet.height * scale)};
}

DialogRect insideMargins(const DialogRect& rect, const Sheet& sheet) {
    const double x = (rect.right - rect.left) / sheet.width, y = (rect.bottom - rect.top) / sheet.height;
    return {rect.left + pixels(sheet.left * x), rect.top + pixels(sheet.top * y), rect.right - pixels(sheet.right * x),
            rect.bottom - pixels(sheet.bottom * y)};
}

// ---- places in the window, in heights of the dialog's font ----

constexpr double edge = 0.5;         // around the page area and beside the buttons
constexpr double stripWidth = 10.0;  // on the right, where the buttons stand
constexpr int32_t sheetInset = 5;    // pixels, from the area's edge to the sheet

struct PlacedItem {
    mdl::ItemId item;
    double top, indent;  // the indent has the item's label
};
constexpr double itemHeight = 1.5;
// clang-format off
constexpr auto strip = std::to_array<PlacedItem>({
    // item                      top    indent
    {ids::preview::page,         0.5,   2.75},
    {ids::preview::newPages,     2.5,   0.0},
    {ids::preview::pageInfo,     5.0,   0.0},
    {ids::preview::project,      6.75,  0.0},
    {ids::preview::setup,        9.25,  0.0},
    {ids::preview::print,       11.0,   0.0},
    {ids::preview::place,       12.75,  0.0},
    {ids::preview::spreadsheet, 14.5,   0.0},
    {ids::preview::close,       17.0,   0.0},
});
// clang-format on

// The window without the strip of buttons and an edge on the other three sides.
DialogRect pageArea(const DialogRect& window, int32_t fontHeight) {
    const int32_t border = pixels(edge * fontHeight);
    return {window.left + border, window.top + border, window.right - pixels(stripWidth * fontHeight),
            window.bottom - border};
}

int32_t fontHeightOf(const MdlDialog* dialog) {
    return mdlDialog_fontHeight(mdlDialog_getFontIndex(dialog));
}

void place(MdlItem* item, const DialogRect& rect) {
    mdlDialog_itemMove(item, rect.left, rect.top);
    mdlDialog_itemSetExtent(item, std::max(rect.right - rect.left, 0), std::max(rect.bottom - rect.top, 0));
}

void setTitle(const GlobalData& data, MdlDialog* dialog) {
    char title[messageTextSize];
    formatText(title, "%s - %s", mc::languageText(ids::texts::preview), data.applicationName);
    mdlWindow_titleSet(dialog, title);
}

// A page on the screen has the order and the greys of paper. Other than 0 for what another pass draws.
int lookOnPaper(MdlElementLook* look, const MSElementBuffer* element, void* filter) {
    LevelId level = 0;
    mdlElement_getProperties(&level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, element);
    const int32_t code = print::codeOfLevel(mdlModelRef_getActive(), level);
    if (!print::isInPass(*static_cast<const int32_t*>(filter), code)) return 1;
    if (code != print::backgroundLevel) return 0;
    if (print::isClosedShape(element)) look->gray = print::fillOf(element, code, look->color);
    if (print::isGreyColor(code, look->color)) look->color = 0;
    return 0;
}

void drawSheet(const GlobalData& data, MdlDialog* dialog, const DialogRect& area) {
    const Sheet sheet = sheetOnScreen(isTurned(data.previewDescr));
    const DialogRect paper = fitted(area, sheet);
    if (isEmpty(paper)) return;
    mdlDialog_rectFill(dialog, &paper, PAPER_COLOR);
    const DialogRect printable = insideMargins(paper, sheet);
    if (!data.previewDescr || isEmpty(printable)) return;
    for (int32_t filter : print::pagePasses) {
        const MdlPaper onScreen{(paper.right - paper.left) / sheet.width, lookOnPaper, &filter};
        mdlWindow_setPaper(dialog, &onScreen);
        mclibElemDscr_drawElementDescr(dialog, &printable, data.previewDescr, pageViewFlags, 0);
    }
    mdlWindow_setPaper(dialog, nullptr);
}

}  // namespace

void restoreExtent(GlobalData& data, MdlDialog* dialog) {
    *data.previewExtent = storedExtent();
    mdlWindow_extentSet(dialog, data.previewExtent->width, data.previewExtent->height);
}

void storeExtent(GlobalData& data, const MdlDialog* dialog) {
    DialogRect window;
    mdlWindow_contentRectGet(&window, dialog);
    *data.previewExtent = {window.right - window.left, window.bottom - window.top};
    const mdl::ResourceFile file = userPreferenceFile(MDL_RSC_WRITE);
    if (!file) return;
    uint8_t bytes[storedExtentSize];
    extentFields(StoreFields(bytes), *data.previewExtent);
    mdlResource_put(file.handle(), extentType, extentId, bytes, sizeof bytes);
}

void layOutPreview(MdlDialog* dialog) {
    DialogRect window;
    mdlWindow_contentRectGet(&window, dialog);
    const int32_t f = fontHeightOf(dialog);
    const int32_t right = window.right - pixels(edge * f);
    const int32_t left = window.right - pixels((stripWidth - edge) * f);
    for (const PlacedItem& row : strip)
        place(mdl::itemOf(dialog, row.item),
              {left + pixels(row.indent * f), pixels(row.top * f), right, pixels((row.top + itemHeight) * f)});
    place(mdl::itemOf(dialog, ids::preview::pageArea), pageArea(window, f));
}

void drawPreview(const GlobalData& data, MdlDialog* dialog) {
    setTitle(data, dialog);
    mdlWindow_clear(dialog);
    DialogRect window;
    mdlWindow_contentRectGet(&window, dialog);
    DialogRect area = pageArea(window, fontHeightOf(dialog));
    mdlDialog_rectDrawEdge(dialog, &area, 1);
    mdlDialog_rectInset(&area, sheetInset, sheetInset);
    if (!isEmpty(area)) drawSheet(data, dialog, area);
    for (int32_t i = 0, last = mdlDialog_itemCount(dialog) - 1; i < last; ++i)
        mdlDialog_itemDraw(mdlDialog_itemGetByIndex(dialog, i));
}

}  // namespace mc::forms
