#include "mchost/picture/sheet.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <numbers>

#include "mchost/base/charset.h"
#include "mchost/base/words.h"
#include "mchost/element/advances.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/paper.hpp"
#include "mchost/mdl/text.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

constexpr double pointsPerInch = 72;
constexpr double penRoom = 0.5;  // mm: for lines that lie on the edge of a picture

constexpr size_t mostDashes = 32;

// Colours on white paper, by colour index modulo 16.
constexpr auto colors = std::to_array<PaperColor>({
    {0.00, 0.00, 0.00},  // 0 black
    {0.00, 0.00, 0.85},  // 1 blue
    {0.00, 0.55, 0.10},  // 2 green
    {0.85, 0.00, 0.00},  // 3 red
    {0.70, 0.60, 0.00},  // 4 dark yellow
    {0.75, 0.00, 0.75},  // 5 magenta
    {0.90, 0.45, 0.00},  // 6 orange
    {0.00, 0.60, 0.65},  // 7 teal
    {0.50, 0.50, 0.50},  // 8 grey
    {0.35, 0.25, 0.75},  // 9 violet
    {0.40, 0.60, 0.00},  // 10 olive
    {0.65, 0.25, 0.10},  // 11 brown
    {0.30, 0.50, 0.85},  // 12 light blue
    {0.95, 0.35, 0.50},  // 13 pink
    {0.25, 0.40, 0.35},  // 14 dark green
    {0.75, 0.75, 0.75},  // 15 light grey
});

constexpr PaperColor highlightColor{1.00, 0.00, 0.80};
constexpr int32_t leastHighlightWeight = 4;

double pointsOf(double mm) {
    return mm * pointsPerInch / mmPerInch;
}

// True also for what can't be forced there, such as a pipe.
bool storeOnDisk(std::FILE* file) {
    return fsync(fileno(file)) == 0 || errno == EINVAL || errno == EROFS;
}

// Cairo's own writers of files don't tell of a disk that is full.
cairo_status_t writeTo(void* file, const unsigned char* bytes, unsigned int size) {
    const bool written = file && std::fwrite(bytes, 1, size, static_cast<std::FILE*>(file)) == size;
    return written ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

cairo_surface_t* makeSurface(PictureKind kind, std::FILE* file, double widthMm, double heightMm, double dpi) {
    const double width = pointsOf(widthMm), height = pointsOf(heightMm), pixels = dpi / mmPerInch;
    switch (kind) {
        case PictureKind::svg: return cairo_svg_surface_create_for_stream(writeTo, file, width, height);
        case PictureKind::pdf: return cairo_pdf_surface_create_for_stream(writeTo, file, width, height);
        case PictureKind::png: break;
    }
    return cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(widthMm * pixels)),
                                      static_cast<int>(std::ceil(heightMm * pixels)));
}

// Of a style that the model brings.
std::vector<double> namedDashes(const MdlLook& look, double mmPerMaster) {
    int32_t count = 0;
    std::vector<double> lengths(mostDashes);
    if (mdlLineStyle_getPattern(lengths.data(), &count, look.style, look.model) != MDL_SUCCESS) count = 0;
    lengths.resize(static_cast<size_t>(count));
    for (size_t i = 0; i < lengths.size(); ++i)
        lengths[i] *= mmPerMaster * look.styleScale * (i % 2 == 0 ? look.dashScale : look.gapScale);
    return lengths;
}

std::vector<double> numberedDashes(int32_t style) {
    std::vector<double> lengths;
    const std::string_view text = mdl::dashesOfStyle(style);
    for (const char *at = text.data(), *end = at + text.size(); at != end;) {
        double points = 0;
        at = std::from_chars(at, end, points).ptr;
        if (at != end) ++at;
        lengths.push_back(points * mmPerInch / pointsPerInch);
    }
    return lengths;
}

std::string utf8Of(const TextView& text) {
    std::string utf8;
    for (uint32_t i = 0; i < text.body.count; ++i) appendUtf8(utf8, unicodeOf(textCharacter(text, i)));
    return utf8;
}

}  // namespace

std::optional<PictureKind> pictureKindNamed(std::string_view name) {
    if (sameName(name, "png")) return PictureKind::png;
    if (sameName(name, "svg")) return PictureKind::svg;
    if (sameName(name, "pdf")) return PictureKind::pdf;
    return std::nullopt;
}

double penWidth(const MdlLook& look, double mmPerMaster) {
    if (look.styleWidth > 0 && std::isfinite(look.styleWidth)) return look.styleWidth * mmPerMaster;
    return mdl::penWidthOf(look.weight);
}

std::vector<double> dashesOf(const MdlLook& look, double mmPerMaster) {
    std::vector<double> lengths = look.style < 0 ? namedDashes(look, mmPerMaster) : numberedDashes(look.style);
    const bool usable = std::ranges::all_of(lengths, [](double l) { return l >= 0 && std::isfinite(l); }) &&
                        std::ranges::any_of(lengths, [](double l) { return l > 0.05; });
    if (!usable) lengths.clear();
    return lengths;
}

PaperColor paperColor(int32_t index) {
    return colors[static_cast<uint32_t>(index) % colors.size()];
}

Sheet::Sheet(PictureKind kind, const std::string& path, const Range3d& range, double widthMm, double dpi)
    : Sheet(kind, path, range, widthMm, dpi, widthMm,
            (range.high.y - range.low.y) * (widthMm / (range.high.x - range.low.x))) {}

Sheet::Sheet(PictureKind kind, const std::string& path, const Range3d& range, double widthMm, double dpi,
             const Page& page)
    : Sheet(kind, path, range, widthMm, dpi, page.widthMm, page.heightMm) {
    const double heightMm = (range.high.y - range.low.y) * scale_;
    cairo_translate(pen_.get(), page.left, page.turned ? page.top + widthMm : page.top);
    if (page.turned) cairo_rotate(pen_.get(), -std::numbers::pi / 2);
    cairo_rectangle(pen_.get(), -penRoom, -penRoom, widthMm + 2 * penRoom, heightMm + 2 * penRoom);
    cairo_clip(pen_.get());
}

Sheet::Sheet(PictureKind kind, const std::string& path, const Range3d& range, double widthMm, double dpi,
             double pageWidth, double pageHeight)
    : kind_(kind),
      file_(std::fopen(path.c_str(), "wb"), std::fclose),
      range_(range),
      scale_(widthMm / (range.high.x - range.low.x)),
      precision_(kind == PictureKind::png ? 0.25 * mmPerInch / dpi : 0.02),
      surface_(nullptr, cairo_surface_destroy),
      pen_(nullptr, cairo_destroy) {
    surface_.reset(makeSurface(kind, file_.get(), pageWidth, pageHeight, dpi));
    pen_.reset(cairo_create(surface_.get()));
    const double unit = kind == PictureKind::png ? dpi / mmPerInch : pointsOf(1);
    cairo_scale(pen_.get(), unit, unit);  // millimetres from here on, y still downwards
    cairo_set_source_rgb(pen_.get(), 1, 1, 1);
    cairo_paint(pen_.get());
    cairo_set_line_join(pen_.get(), CAIRO_LINE_JOIN_ROUND);
    cairo_font_options_t* unhinted = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(unhinted, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(unhinted, CAIRO_HINT_STYLE_NONE);
    cairo_set_font_options(pen_.get(), unhinted);
    cairo_font_options_destroy(unhinted);
    cairo_select_font_face(pen_.get(), "Helvetica", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
}

MdlPen Sheet::pen() {
    return {.userArg = this,
            .tolerance = precision_ / scale_,
            .transform = nullptr,
            .range = nullptr,
            .skip = nullptr,
            .line =
                [](void* sheet, const MSElementBuffer*, const MdlLook* look, const Point3d* points, int32_t count) {
                    static_cast<Sheet*>(sheet)->drawLine({points, static_cast<size_t>(count)}, *look);
                },
            .text = [](void* sheet, const MSElementBuffer* element,
                       const MdlLook* look) { static_cast<Sheet*>(sheet)->drawText(*textOf(element), *look); }};
}

const char* Sheet::finish() {
    if (!file_) return "its file can't be opened";
    cairo_status_t status = cairo_status(pen_.get());
    if (status == CAIRO_STATUS_SUCCESS && kind_ == PictureKind::png)
        status = cairo_surface_write_to_png_stream(surface_.get(), writeTo, file_.get());
    cairo_surface_finish(surface_.get());
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface_.get());
    const bool stored = std::fflush(file_.get()) == 0 && !std::ferror(file_.get()) && storeOnDisk(file_.get());
    if (status == CAIRO_STATUS_SUCCESS && !stored) status = CAIRO_STATUS_WRITE_ERROR;
    if (status == CAIRO_STATUS_WRITE_ERROR) return "it couldn't be written in full; is the disk full?";
    return status == CAIRO_STATUS_SUCCESS ? nullptr : cairo_status_to_string(status);
}

// What lies far off the sheet is brought nearer: cairo counts in fixed numbers that would overflow.
Point3d Sheet::onPaper(const Point3d& p) const {
    constexpr double farOff = 1e5;
    return {std::clamp((p.x - range_.low.x) * scale_, -farOff, farOff),
            std::clamp((range_.high.y - p.y) * scale_, -farOff, farOff), 0};
}

void Sheet::takeColor(int32_t index) {
    const PaperColor color = highlights_ ? highlightColor : paperColor(index);
    cairo_set_source_rgb(pen_.get(), color.red, color.green, color.blue);
}

void Sheet::beginClip(std::span<const Point3d> outline) {
    cairo_save(pen_.get());
    for (const Point3d& p : outline) {
        const Point3d at = onPaper(p);
        cairo_line_to(pen_.get(), at.x, at.y);
    }
    cairo_set_fill_rule(pen_.get(), CAIRO_FILL_RULE_EVEN_ODD);  // as for all that asks what lies inside
    cairo_clip(pen_.get());
}

void Sheet::endClip() {
    cairo_restore(pen_.get());
}

void Sheet::setDashes(const MdlLook& look, double mmPerMaster) {
    const std::vector<double> dashes = dashesOf(look, mmPerMaster);
    cairo_set_dash(pen_.get(), dashes.data(), static_cast<int>(dashes.size()), 0);
    cairo_set_line_cap(pen_.get(), dashes.empty() ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
}

void Sheet::drawLine(std::span<const Point3d> points, const MdlLook& look) {
    cairo_t* pen = pen_.get();
    takeColor(look.color);
    for (const Point3d& p : points) {
        const Point3d at = onPaper(p);
        cairo_line_to(pen, at.x, at.y);
    }
    if (points.front() == points.back()) cairo_close_path(pen);
    if (look.filled) {
        takeColor(look.fillColor < 0 ? look.color : look.fillColor);
        cairo_fill_preserve(pen);
        takeColor(look.color);
    }
    const double mmPerMaster = mdlModelRef_getUorPerMaster(look.model) * scale_;
    setDashes(look, mmPerMaster);
    const double width = penWidth(look, mmPerMaster);
    cairo_set_line_width(pen, highlights_ ? std::max(width, mdl::penWidthOf(leastHighlightWeight)) : width);
    cairo_stroke(pen);
}

// The characters are stretched so that they fill the box, whatever face the system has for them.
void Sheet::drawText(const TextView& view, const MdlLook& look) {
    const TextBox box = textBox(view);
    const Point3d at = onPaper(box.lowerLeft);
    const Point3d along = box.along * scale_, up = box.up * scale_;
    if (!(std::fabs(along.x * up.y - along.y * up.x) > 1e-12)) return;
    const std::string utf8 = utf8Of(view);
    cairo_t* pen = pen_.get();
    cairo_set_font_size(pen, 1);
    cairo_text_extents_t extents;
    cairo_text_extents(pen, utf8.c_str(), &extents);
    if (!(extents.x_advance > 0)) return;
    const double wide = 1 / extents.x_advance, high = fontSizePerHeight;
    const double lean = view.body.flags & TEXT_FLAG_SLANT ? std::tan(std::clamp(view.body.slant, -1.2, 1.2)) : 0;
    const double upright = length(up) / length(along);
    const Point3d leaning = up + along * (lean * upright);
    const cairo_matrix_t face{along.x * wide, -along.y * wide, -leaning.x * high, leaning.y * high, 0, 0};
    takeColor(look.color);
    cairo_set_font_matrix(pen, &face);
    cairo_move_to(pen, at.x, at.y);
    cairo_show_text(pen, utf8.c_str());
    cairo_new_path(pen);
}

}  // namespace host
