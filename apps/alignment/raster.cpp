#include "raster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include <mchost/mdl/element.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/walk.h>
#include <mclib/mclib.h>
#include <mchost/mdl/paper.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>
#include "letters.h"
#include "mclib/print/raster.h"

namespace alignment {

namespace {

struct Pixel {
    double x, y;  // y upwards
};
using Outline = std::vector<Pixel>;

// ---- the bitmap ----

// The rasteriser's bitmap. It has no edges at the left and right, so that what is drawn is cut to its pixels before.
class Bitmap {
  public:
    explicit Bitmap(RasterSize size)
        : size_{size.width, size.height},
          bytes_((static_cast<size_t>(size.width) * static_cast<size_t>(size.height) + 7) / 8) {}

    void line(Pixel from, Pixel to);
    void polyline(std::span<const Pixel> points);
    void fill(Outline outline);  // closed by itself
    void write(std::ostream& out) const;

  private:
    // Where a value lies beside a line of the bitmap's border: below 0 is outside.
    using Side = std::function<double(const Pixel&)>;
    std::array<Side, 4> sides() const {
        const double right = size_[0] - 1, top = size_[1] - 1;
        return {[](const Pixel& p) { return p.x; }, [=](const Pixel& p) { return right - p.x; },
                [](const Pixel& p) { return p.y; }, [=](const Pixel& p) { return top - p.y; }};
    }
    std::vector<int> whole(std::span<const Pixel> points) const;
    int byteCount() const { return static_cast<int>(bytes_.size()); }

    static constexpr int origin_[2] = {0, 0};
    static constexpr int set_ = 1;
    int size_[2];
    std::vector<uint8_t> bytes_;
};

Pixel between(const Pixel& a, const Pixel& b, double sideOfA, double sideOfB) {
    const double t = sideOfA / (sideOfA - sideOfB);
    return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
}

std::vector<int> Bitmap::whole(std::span<const Pixel> points) const {
    std::vector<int> pairs;
    for (const Pixel& p : points) {
        pairs.push_back(std::clamp(static_cast<int>(std::lround(p.x)), 0, size_[0] - 1));
        pairs.push_back(std::clamp(static_cast<int>(std::lround(p.y)), 0, size_[1] - 1));
    }
    return pairs;
}

void Bitmap::line(Pixel from, Pixel to) {
    for (const Side& side : sides()) {
        const double a = side(from), b = side(to);
        if (!(a >= 0 || b >= 0)) return;
        if (a < 0) from = between(from, to, a, b);
        if (b < 0) to = between(from, to, side(from), b);
    }
    const std::vector<int> ends = whole(std::array{from, to});
    mclibRaster_drawPoints(ends.data(), origin_, 2, byteCount(), size_, bytes_.data(), set_);
}

void Bitmap::polyline(std::span<const Pixel> points) {
    for (size_t i = 1; i < points.size(); ++i) line(points[i - 1], points[i]);
}

// Cuts the outline along each side of the bitmap in turn (Sutherland and Hodgman, "Reentrant polygon clipping").
void Bitmap::fill(Outline outline) {
    for (const Side& side : sides()) {
        Outline inside;
        for (size_t i = 0; i < outline.size(); ++i) {
            const Pixel &p = outline[i], &next = outline[(i + 1) % outline.size()];
            const double a = side(p), b = side(next);
            if (a >= 0) inside.push_back(p);
            if ((a < 0) != (b < 0)) inside.push_back(between(p, next, a, b));
        }
        outline = std::move(inside);
    }
    if (outline.size() < 3) return;
    outline.push_back(outline.front());
    const std::vector<int> points = whole(outline);
    mclibRaster_fillShape(points.data(), static_cast<int>(outline.size()), origin_, byteCount(), size_, bytes_.data(),
                          set_);
}

// PBM pads each row to whole bytes, the bitmap doesn't.
void Bitmap::write(std::ostream& out) const {
    out << "P4\n" << size_[0] << ' ' << size_[1] << '\n';
    const auto width = static_cast<size_t>(size_[0]);
    std::string row((width + 7) / 8, '\0');
    for (size_t y = 0; y < static_cast<size_t>(size_[1]); ++y) {
        std::ranges::fill(row, '\0');
        for (size_t x = 0; x < width; ++x) {
            const size_t bit = y * width + x;
            if (bytes_[bit / 8] & (0x80 >> bit % 8)) row[x / 8] = static_cast<char>(row[x / 8] | 0x80 >> x % 8);
        }
        out << row;
    }
}

// ---- from the page to pixels ----

class Rasterising {
  public:
    Rasterising(Bitmap& bitmap, const Sheet& sheet, RasterSize size)
        : bitmap_(bitmap), corner_(uprightFrame(sheet).low) {
        unitsPerMm_ = sheet.metres(1) * mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
        pixelsPerMm_ = std::min(size.width / sheet.paper.width, size.height / sheet.paper.height);
        // The middle of the lower left pixel is the point 0, 0.
        left_ = (size.width - 1 - sheet.paper.width * pixelsPerMm_) / 2 + margin * pixelsPerMm_;
        bottom_ = (size.height - 1 - sheet.paper.height * pixelsPerMm_) / 2 + margin * pixelsPerMm_;
    }
    // False when memory is out.
    bool draw(const ElementDescr* page);
    const std::string& unknown() const { return unknown_; }  // letters that there are no lines for

  private:
    void drawText(const MSElementBuffer* element);
    void drawLine(const MdlLook& look, std::span<const Point3d> points);
    Pixel pixelOf(const Point3d& p) const {
        const double pixelsPerUnit = pixelsPerMm_ / unitsPerMm_;
        return {left_ + (p.x - corner_.x) * pixelsPerUnit, bottom_ + (p.y - corner_.y) * pixelsPerUnit};
    }
    void stroke(const Outline& points, double width);

    Bitmap& bitmap_;
    Point3d corner_;
    double unitsPerMm_, pixelsPerMm_, left_, bottom_;
    std::string unknown_;
};

// A line that is wider than a pixel is filled piece by piece.
void Rasterising::stroke(const Outline& points, double width) {
    bitmap_.polyline(points);
    if (width < 1.5) return;
    for (size_t i = 1; i < points.size(); ++i) {
        const Pixel &a = points[i - 1], &b = points[i];
        const double length = std::hypot(b.x - a.x, b.y - a.y);
        if (length == 0) continue;
        const double x = -(b.y - a.y) / length * width / 2, y = (b.x - a.x) / length * width / 2;
        bitmap_.fill({{a.x + x, a.y + y}, {b.x + x, b.y + y}, {b.x - x, b.y - y}, {a.x - x, a.y - y}});
    }
}

// The host gives a text no lines: letters of lines take its box. What is too low for them is a line in its middle.
void Rasterising::drawText(const MSElementBuffer* element) {
    constexpr double leastHeight = 5;  // pixels
    char text[256] = "";
    Point3d box[5];  // the lower left corner first, the lower right one next
    if (mdlText_extract(nullptr, nullptr, nullptr, nullptr, text, nullptr, nullptr, nullptr, nullptr, nullptr,
                        element) != MDL_SUCCESS ||
        *text == '\0' || mdlText_extractShape(box, nullptr, element, 0, 0) != MDL_SUCCESS) {
        return;
    }
    const Pixel origin = pixelOf(box[0]), right = pixelOf(box[1]), top = pixelOf(box[3]);
    const double width = static_cast<double>(std::strlen(text)) * letterAdvance - letterGap;
    const auto at = [&](double x, double y) {
        return Pixel{origin.x + (right.x - origin.x) * x / width + (top.x - origin.x) * y / letterHeight,
                     origin.y + (right.y - origin.y) * x / width + (top.y - origin.y) * y / letterHeight};
    };
    if (std::hypot(top.x - origin.x, top.y - origin.y) < leastHeight)
        return bitmap_.line(at(0, letterHeight / 2.0), at(width, letterHeight / 2.0));
    for (size_t i = 0; text[i] != '\0'; ++i) {
        const std::vector<LetterLine> lines = letterLines(text[i]);
        if (lines.empty() && text[i] != ' ' && unknown_.find(text[i]) == unknown_.npos) unknown_ += text[i];
        for (const LetterLine& line : lines) {
            Outline points;
            for (const auto& [x, y] : line) points.push_back(at(static_cast<double>(i) * letterAdvance + x, y));
            bitmap_.polyline(points);
        }
    }
}

void Rasterising::drawLine(const MdlLook& look, std::span<const Point3d> points) {
    Outline pixels;
    for (const Point3d& p : points) pixels.push_back(pixelOf(p));
    if (look.filled) bitmap_.fill(pixels);
    stroke(pixels, mdl::penWidthOf(look.weight) * pixelsPerMm_);
}

bool Rasterising::draw(const ElementDescr* page) {
    constexpr double tolerance = 0.2;  // pixels
    const MdlPen pen = {
        .userArg = this,
        .tolerance = tolerance * unitsPerMm_ / pixelsPerMm_,
        .transform = nullptr,
        .range = nullptr,
        .skip = nullptr,
        .line =
            [](void* self, const MSElementBuffer*, const MdlLook* look, const Point3d* points, int32_t count) {
                static_cast<Rasterising*>(self)->drawLine(*look, {points, static_cast<size_t>(count)});
            },
        .text = [](void* self, const MSElementBuffer* element,
                   const MdlLook*) { static_cast<Rasterising*>(self)->drawText(element); },
    };
    return mdlElmdscr_walk(page, &pen) == MDL_SUCCESS;
}

}  // namespace

bool writeRaster(const std::string& name, ElementDescr* page, const Sheet& sheet, RasterSize size) {
    Bitmap bitmap(size);
    Rasterising rasterising(bitmap, sheet, size);
    if (!rasterising.draw(page)) return mcapp::failOutput(name, "the picture can't be drawn");
    if (!rasterising.unknown().empty())
        mcapp::warn("the PBM picture has gaps in the place of " + rasterising.unknown() +
                    ", for which it has no letters");
    std::ofstream out(mcapp::systemPath(name), std::ios::binary);
    bitmap.write(out);
    out.close();
    return out.good() || mcapp::failOutput(name, "the picture can't be written; is the disk full?");
}

}  // namespace alignment
