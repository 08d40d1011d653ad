#include "mchost/picture/dialog.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string_view>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/dialog/registry.h"
#include "mchost/element/advances.h"
#include "mchost/picture/sheet.h"

namespace host {

namespace {

constexpr double dotsPerPixel = 2;
constexpr int32_t titleHeight = 26, padding = 5, markSize = 13;
constexpr int32_t largestSide = 8000;  // pixels

constexpr PaperColor face{0.93, 0.93, 0.92}, field{1, 1, 1}, ink{0.10, 0.10, 0.12}, faded{0.60, 0.60, 0.60},
    light{1, 1, 1}, shadow{0.62, 0.62, 0.60}, chosen{0.80, 0.88, 0.97}, titleBar{0.24, 0.34, 0.46};

// Fixed colours: 0 is the ground of drawings, 7 the sheet and what is drawn on the ground.
constexpr auto fixedColorTable = std::to_array<PaperColor>({
    {0.78, 0.78, 0.78},
    {0.10, 0.25, 0.75},
    {0.00, 0.50, 0.15},
    {0.75, 0.10, 0.10},
    {0.85, 0.45, 0.00},
    {0.65, 0.10, 0.65},
    {0.00, 0.55, 0.60},
    {1.00, 1.00, 1.00},
    {0.35, 0.35, 0.35},
    {0.20, 0.45, 0.95},
    {0.20, 0.75, 0.30},
    {0.95, 0.30, 0.30},
    {0.95, 0.75, 0.20},
    {0.90, 0.40, 0.90},
    {0.20, 0.80, 0.85},
    {0.00, 0.00, 0.00},
});

PaperColor colorOf(int32_t index) {
    if (index < firstFixedColor) return paperColor(index);
    return fixedColorTable[static_cast<size_t>(index - firstFixedColor) % fixedColorTable.size()];
}

struct CloseSurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* pen) const { cairo_destroy(pen); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};

// Draws in pixels of the content area, y downwards.
class DialogPen {
  public:
    DialogPen(int32_t width, int32_t height)
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width * dotsPerPixel),
                                              static_cast<int>((height + titleHeight) * dotsPerPixel))),
          pen_(cairo_create(surface_.get())) {
        cairo_scale(pen(), dotsPerPixel, dotsPerPixel);
        cairo_translate(pen(), 0, titleHeight);
        cairo_set_line_width(pen(), 1);
        cairo_font_options_set_hint_metrics(unhinted_.get(), CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_hint_style(unhinted_.get(), CAIRO_HINT_STYLE_NONE);
    }

    bool save(const std::string& path) {
        return cairo_status(pen()) == CAIRO_STATUS_SUCCESS &&
               cairo_surface_write_to_png(surface_.get(), path.c_str()) == CAIRO_STATUS_SUCCESS;
    }

    void fill(const DialogRect& r, const PaperColor& color) {
        use(color);
        cairo_rectangle(pen(), r.left, r.top, r.right - r.left, r.bottom - r.top);
        cairo_fill(pen());
    }

    void line(double x0, double y0, double x1, double y1, const PaperColor& color) {
        use(color);
        cairo_move_to(pen(), x0, y0);
        cairo_line_to(pen(), x1, y1);
        cairo_stroke(pen());
    }

    // The rectangle's edge, lit from the upper left when it is raised.
    void edge(const DialogRect& r, bool sunken) {
        const PaperColor upper = sunken ? shadow : light, lower = sunken ? light : shadow;
        line(r.left + 0.5, r.bottom - 0.5, r.left + 0.5, r.top + 0.5, upper);
        line(r.left + 0.5, r.top + 0.5, r.right - 0.5, r.top + 0.5, upper);
        line(r.right - 0.5, r.top + 0.5, r.right - 0.5, r.bottom - 0.5, lower);
        line(r.right - 0.5, r.bottom - 0.5, r.left + 0.5, r.bottom - 0.5, lower);
    }

    void frame(const DialogRect& r, const PaperColor& color) {
        use(color);
        cairo_rectangle(pen(), r.left + 0.5, r.top + 0.5, r.right - r.left - 1, r.bottom - r.top - 1);
        cairo_stroke(pen());
    }

    // Width of the text as it is drawn.
    double widthOf(std::string_view narrow, int32_t font = MDL_FONT_DIALOG) {
        setFont(font);
        cairo_text_extents_t extents;
        cairo_text_extents(pen(), utf8FromNarrow(narrow).c_str(), &extents);
        return extents.x_advance;
    }

    // The text in a line whose top is y; cut at `right` when that is above x.
    void text(double x, double y, std::string_view narrow, const PaperColor& color, double right = 0,
              int32_t font = MDL_FONT_DIALOG) {
        setFont(font);
        use(color);
        cairo_save(pen());
        if (right > x) {
            cairo_rectangle(pen(), x - 1, y - 4, right - x + 1, rowHeight + 8);
            cairo_clip(pen());
        }
        cairo_move_to(pen(), x, y + (font == MDL_FONT_FIXED ? 11 : 12.5));
        cairo_show_text(pen(), utf8FromNarrow(narrow).c_str());
        cairo_restore(pen());
    }

    void operator()(const DrawnText& drawn) { text(drawn.rect.left, drawn.rect.top, drawn.text, ink, 0, drawn.font); }
    void operator()(const DrawnEdge& drawn) { edge(drawn.rect, drawn.sunken); }
    void operator()(const DrawnBevel& drawn) {
        if (drawn.filled) fill(drawn.rect, face);
        edge(drawn.rect, drawn.sunken);
    }
    void operator()(const DrawnFill& drawn) { fill(drawn.rect, colorOf(firstFixedColor + drawn.color)); }

    void operator()(const DrawnIcon& drawn) {
        const int32_t size = drawn.icon->size;
        for (int32_t at = 0; at < size * size; ++at) {
            if (!drawn.icon->pixels[static_cast<size_t>(at)]) continue;
            const int32_t x = drawn.rect.left + at % size, y = drawn.rect.top + at / size;
            fill({x, y, x + 1, y + 1}, colorOf(firstFixedColor + drawn.color));
        }
    }

    void operator()(const DrawnLine& line) {
        use(colorOf(line.color));
        cairo_set_line_width(pen(), line.look.width);
        for (size_t i = 0; i + 1 < line.points.size(); i += 2)
            cairo_line_to(pen(), line.points[i] + 0.5, line.points[i + 1] + 0.5);
        cairo_stroke(pen());
        cairo_set_line_width(pen(), 1);
    }

    void operator()(const ElementLine& line) {
        constexpr double thinnest = 1 / dotsPerPixel;
        cairo_save(pen());
        use(line.gray < 0 ? colorOf(line.color) : PaperColor{line.gray, line.gray, line.gray});
        const std::vector<double>& p = line.points;
        for (size_t i = 0; i + 1 < p.size(); i += 2) cairo_line_to(pen(), p[i], p[i + 1]);
        if (p.front() == p[p.size() - 2] && p[1] == p.back()) cairo_close_path(pen());
        if (line.filled || line.gray >= 0) cairo_fill_preserve(pen());
        cairo_set_line_width(pen(), std::max(line.width, thinnest));
        cairo_set_dash(pen(), line.dashes.data(), static_cast<int>(line.dashes.size()), 0);
        cairo_set_line_join(pen(), CAIRO_LINE_JOIN_ROUND);
        cairo_set_line_cap(pen(), line.dashes.empty() ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
        if (line.gray < 0)
            cairo_stroke(pen());
        else
            cairo_new_path(pen());
        cairo_restore(pen());
    }

    // The characters are stretched so that they fill the box.
    void operator()(const ElementText& t) {
        cairo_save(pen());
        cairo_select_font_face(pen(), "Helvetica", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_options(pen(), unhinted_.get());
        cairo_set_font_size(pen(), 1);
        const std::string utf8 = utf8FromNarrow(t.text);
        cairo_text_extents_t extents;
        cairo_text_extents(pen(), utf8.c_str(), &extents);
        if (extents.x_advance > 0 && std::fabs(t.alongX * t.upY - t.alongY * t.upX) > 1e-6) {
            const double wide = 1 / extents.x_advance, high = fontSizePerHeight;
            const cairo_matrix_t face{t.alongX * wide, t.alongY * wide, -t.upX * high, -t.upY * high, 0, 0};
            use(colorOf(t.color));
            cairo_set_font_matrix(pen(), &face);
            cairo_move_to(pen(), t.x, t.y);
            cairo_show_text(pen(), utf8.c_str());
            cairo_new_path(pen());
        }
        cairo_restore(pen());
    }

    void triangle(double x, double y, const PaperColor& color) {
        use(color);
        cairo_move_to(pen(), x - 4, y - 2);
        cairo_line_to(pen(), x + 4, y - 2);
        cairo_line_to(pen(), x, y + 3);
        cairo_fill(pen());
    }

    void check(const DialogRect& r, const PaperColor& color) {
        use(color);
        cairo_set_line_width(pen(), 2);
        cairo_move_to(pen(), r.left + 3, r.top + 6);
        cairo_line_to(pen(), r.left + 6, r.bottom - 4);
        cairo_line_to(pen(), r.right - 2, r.top + 3);
        cairo_stroke(pen());
        cairo_set_line_width(pen(), 1);
    }

  private:
    cairo_t* pen() const { return pen_.get(); }
    void use(const PaperColor& c) { cairo_set_source_rgb(pen(), c.red, c.green, c.blue); }

    void setFont(int32_t font) {
        const bool fixed = font == MDL_FONT_FIXED;
        cairo_select_font_face(pen(), fixed ? "monospace" : "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                               CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(pen(), 12);
    }

    std::unique_ptr<cairo_surface_t, CloseSurface> surface_;
    std::unique_ptr<cairo_t, CloseSurface> pen_;
    std::unique_ptr<cairo_font_options_t, CloseSurface> unhinted_{cairo_font_options_create()};
};

// ---- items ----

// Top of a line of text in the middle of the rectangle.
double middle(const DialogRect& r) {
    return (r.top + r.bottom - rowHeight) / 2.0;
}

void labelBefore(DialogPen& pen, const DialogItem& item, const PaperColor& color) {
    if (item.label.empty()) return;
    const std::string label = item.label + ":";
    pen.text(item.rect.left - padding - pen.widthOf(label), middle(item.rect), label, color);
}

void valueBox(DialogPen& pen, const DialogItem& item, const std::string& value, const PaperColor& color) {
    const DialogRect& r = item.rect;
    pen.fill(r, item.enabled ? field : face);
    pen.frame(r, shadow);
    pen.text(r.left + padding, middle(r), value, color, r.right - padding);
}

void choiceBox(DialogPen& pen, const DialogItem& item, const std::string& value, const PaperColor& color) {
    labelBefore(pen, item, color);
    DialogItem cut = item;
    cut.rect.right -= rowHeight;
    valueBox(pen, item, std::string(), color);
    pen.text(item.rect.left + padding, middle(item.rect), value, color, cut.rect.right);
    pen.triangle(item.rect.right - rowHeight / 2.0 - 2, (item.rect.top + item.rect.bottom) / 2.0, color);
}

void pushButton(DialogPen& pen, const DialogItem& item, const PaperColor& color) {
    const DialogRect& r = item.rect;
    pen.fill(r, {0.97, 0.97, 0.96});
    pen.frame(r, item.isDefault ? ink : shadow);
    const double width = pen.widthOf(item.label);
    pen.text(std::max(r.left + 2.0, (r.left + r.right - width) / 2), middle(r), item.label, color, r.right - 2);
}

void toggle(DialogPen& pen, const DialogItem& item, const PaperColor& color) {
    const DialogRect& r = item.rect;
    const int32_t top = (r.top + r.bottom - markSize) / 2;
    const DialogRect box{r.left, top, r.left + markSize, top + markSize};
    pen.fill(box, item.enabled ? field : face);
    pen.frame(box, shadow);
    if (item.value == "1") pen.check(box, color);
    pen.text(box.right + padding, middle(r), item.label, color, r.right);
}

void groupBox(DialogPen& pen, const DialogItem& item, const PaperColor& color) {
    const DialogRect& r = item.rect;
    pen.frame({r.left, r.top + rowHeight / 2, r.right, r.bottom}, shadow);
    if (item.label.empty()) return;
    const auto width = static_cast<int32_t>(pen.widthOf(item.label));
    pen.fill({r.left + 8, r.top, r.left + 16 + width, r.top + rowHeight}, face);
    pen.text(r.left + 12, r.top, item.label, color);
}

void listBox(DialogPen& pen, const DialogItem& item, const PaperColor& color) {
    const DialogRect& r = item.rect;
    pen.text(r.left, r.top - rowHeight - 2, item.label, color);
    pen.fill(r, item.enabled ? field : face);
    pen.frame(r, shadow);
    const int32_t columnWidth = (r.right - r.left - padding) / item.columns;
    const int32_t end = std::min(Dialog::rowCount(item), item.topRow + (r.bottom - r.top - 4) / rowHeight);
    for (int32_t row = item.topRow; row < end; ++row) {
        const int32_t top = r.top + 2 + (row - item.topRow) * rowHeight;
        if (std::ranges::find(item.selection, row) != item.selection.end())
            pen.fill({r.left + 1, top, r.right - 1, top + rowHeight}, chosen);
        for (int32_t column = 0; column < item.columns; ++column) {
            const int32_t x = r.left + padding + column * columnWidth;
            pen.text(x, top, Dialog::cellText(item, row, column), color, x + columnWidth - padding);
        }
    }
}

std::string chosenLabel(const DialogItem& item) {
    for (const OptionRow& row : item.rows)
        if (std::to_string(row.value) == item.value) return row.label;
    return item.value;
}

void drawItem(DialogPen& pen, const Dialog& dialog, size_t index) {
    const DialogItem& item = dialog.items()[index];
    const PaperColor color = item.enabled ? ink : faded;
    switch (item.kind) {
        case ITEM_PUSH_BUTTON: return pushButton(pen, item, color);
        case ITEM_TEXT: {
            labelBefore(pen, item, color);
            const std::string* edit = dialog.edit(index);
            return valueBox(pen, item, edit ? *edit + "|" : item.value, color);
        }
        case ITEM_LABEL: return pen.text(item.rect.left, middle(item.rect), item.label, color);
        case ITEM_TOGGLE: return toggle(pen, item, color);
        case ITEM_OPTION_BUTTON: return choiceBox(pen, item, chosenLabel(item), color);
        case ITEM_COMBO_BOX: return choiceBox(pen, item, Dialog::cellText(item, item.selectedRow(), 0), color);
        case ITEM_LIST_BOX: return listBox(pen, item, color);
        case ITEM_GROUP_BOX: return groupBox(pen, item, color);
        default: return;
    }
}

}  // namespace

bool writeDialogPicture(Dialog& dialog, const std::string& path) {
    dialog.refresh();
    const int32_t width = std::clamp(dialog.width(), 1, largestSide);
    const int32_t height = std::clamp(dialog.height(), 1, largestSide);
    DialogPen pen(width, height);
    pen.fill({0, 0, width, height}, face);
    pen.fill({0, -titleHeight, width, 0}, titleBar);
    pen.text(padding + 3, -titleHeight + padding, dialog.title(), light, width);
    // Frames lie below what they enclose.
    for (const bool frames : {true, false})
        for (size_t i = 0; i < dialog.items().size(); ++i) {
            const DialogItem& item = dialog.items()[i];
            if (dialog.isVisible(item) && (item.kind == ITEM_GROUP_BOX) == frames) drawItem(pen, dialog, i);
        }
    for (const DrawCall& call : dialog.drawing()) std::visit(pen, call);
    return pen.save(path);
}

}  // namespace host

int mdlWindow_savePicture(MdlDialog* handle, const char* fileName) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = host::dialogOf(handle);
        if (!dialog || !fileName || !std::string_view(fileName).ends_with(".png")) return MDL_ERROR;
        return host::writeDialogPicture(*dialog, host::systemPath(fileName)) ? MDL_SUCCESS : MDL_ERROR;
    });
}
