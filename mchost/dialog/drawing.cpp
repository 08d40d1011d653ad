// Fonts, and the drawing calls that a dialog keeps.
#include <algorithm>
#include <array>
#include <string_view>

#include "mchost/base/guard.h"
#include "mchost/dialog/registry.h"
#include "mchost/resource/open_files.h"

namespace host {

namespace {

constexpr int32_t dialogFontHeight = 16, fixedFontHeight = 14;
constexpr int32_t fixedAdvance = 8;

// Advances of the dialog font, in pixels: close to those of a common screen face at this height, and the same anywhere.
struct Advance {
    std::string_view letters;
    int32_t pixels;
};
constexpr auto advances = std::to_array<Advance>({
    {"ijlI|!.,:;'`", 4},
    {" frt()[]{}/\\\"-", 5},
    {"mwMW@%", 12},
    {"ABCDEFGHJKLNOPQRSTUVXYZ&\xc6\xd8\xc5+=<>~#", 9},
});
constexpr int32_t usualAdvance = 7;

int32_t advanceOf(char c) {
    for (const Advance& row : advances)
        if (row.letters.find(c) != std::string_view::npos) return row.pixels;
    return usualAdvance;
}

int32_t heightOfFont(int32_t font) {
    return font == MDL_FONT_FIXED ? fixedFontHeight : dialogFontHeight;
}

template <class Body>
int onDialog(const MdlDialog* handle, Body body) {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = dialogOf(handle);
        return dialog ? body(*dialog) : MDL_ERROR;
    });
}

}  // namespace

int32_t widthOfText(std::string_view narrow, int32_t font) {
    if (font == MDL_FONT_FIXED) return static_cast<int32_t>(narrow.size()) * fixedAdvance;
    int32_t width = 0;
    for (const char c : narrow) width += advanceOf(c);
    return width;
}

}  // namespace host

using host::Dialog;

int32_t mdlDialog_fontHeight(int32_t fontIndex) noexcept {
    return host::heightOfFont(fontIndex);
}

int32_t mdlDialog_stringWidth(const char* text, int32_t fontIndex) noexcept {
    return text ? host::widthOfText(text, fontIndex) : 0;
}

void mdlDialog_setFontIndex(MdlDialog* handle, int32_t fontIndex) noexcept {
    if (const auto dialog = host::dialogOf(handle)) dialog->setFont(fontIndex);
}

int32_t mdlDialog_getFontIndex(const MdlDialog* handle) noexcept {
    const auto dialog = host::dialogOf(handle);
    return dialog ? dialog->font() : static_cast<int32_t>(MDL_FONT_DIALOG);
}

int mdlDialog_textDrawCD(MdlDialog* handle, int32_t x, int32_t y, const char* text) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        if (!text) return MDL_ERROR;
        const int32_t font = dialog.font();
        const DialogRect rect{x, y, x + host::widthOfText(text, font), y + host::heightOfFont(font)};
        dialog.add(host::DrawnText{rect, text, font});
        return MDL_SUCCESS;
    });
}

int mdlWindow_polylineDraw(MdlDialog* handle, const int32_t* points, int32_t count, int32_t color) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        if (!points || count < 2) return MDL_ERROR;
        dialog.add(host::DrawnLine{.points = {points, points + 2 * count}, .color = color});
        return MDL_SUCCESS;
    });
}

int mdlWindow_clear(MdlDialog* handle) noexcept {
    return host::onDialog(handle, [](Dialog& dialog) -> int {
        dialog.clear();
        return MDL_SUCCESS;
    });
}

int32_t mdlWindow_fixedColorIndexGet(const MdlDialog* handle, int32_t fixedColor) noexcept {
    const bool known = fixedColor >= 0 && fixedColor < host::fixedColors;
    return known && host::dialogOf(handle) ? host::firstFixedColor + fixedColor : int32_t{MDL_ERROR};
}

int mdlWindow_lineStyleSet(MdlDialog* handle, int32_t style, int32_t colorIndex, int32_t mode, int32_t width) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        const bool knownColor = colorIndex >= 0 && colorIndex < host::firstFixedColor + host::fixedColors;
        if (style < 0 || style > 7 || !knownColor || mode != 0 || width < 1) return MDL_ERROR;
        dialog.setLine({style, width}, colorIndex);
        return MDL_SUCCESS;
    });
}

int mdlWindow_lineDraw(MdlDialog* handle, int32_t x0, int32_t y0, int32_t x1, int32_t y1) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        dialog.add(host::DrawnLine{{x0, y0, x1, y1}, dialog.lineColor(), dialog.lineLook()});
        return MDL_SUCCESS;
    });
}

int mdlDialog_rectDrawBeveled(MdlDialog* handle, const DialogRect* rect, int32_t sunken, int32_t filled) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        if (!rect) return MDL_ERROR;
        dialog.add(host::DrawnBevel{*rect, sunken != 0, filled != 0});
        return MDL_SUCCESS;
    });
}

int mdlDialog_rectFill(MdlDialog* handle, const DialogRect* rect, int32_t fixedColor) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        if (!rect || fixedColor < 0 || fixedColor >= host::fixedColors) return MDL_ERROR;
        dialog.add(host::DrawnFill{*rect, fixedColor});
        return MDL_SUCCESS;
    });
}

int mdlDialog_rectDrawEdge(MdlDialog* handle, const DialogRect* rect, int32_t sunken) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        if (!rect) return MDL_ERROR;
        dialog.add(host::DrawnEdge{*rect, sunken != 0});
        return MDL_SUCCESS;
    });
}

void mdlDialog_rectInset(DialogRect* rect, int32_t dx, int32_t dy) noexcept {
    if (rect) *rect = {rect->left + dx, rect->top + dy, rect->right - dx, rect->bottom - dy};
}

int mdlWindow_iconDraw(MdlDialog* handle, RscHandle rscFile, int32_t iconId, int32_t x, int32_t y,
                       int32_t colorIndex) noexcept {
    return host::onDialog(handle, [&](Dialog& dialog) -> int {
        auto icon = host::findIcon(rscFile, iconId);
        if (!icon) return MDL_ERROR;
        const DialogRect rect{x, y, x + icon->size, y + icon->size};
        dialog.add(host::DrawnIcon{rect, std::move(icon), colorIndex});
        return MDL_SUCCESS;
    });
}
