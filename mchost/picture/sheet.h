// A sheet of paper that cairo draws on, and the pen for it.
#pragma once

#include <cairo.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mchost/element/text.h"
#include "mchost/mdl/walk.h"
#include "mchost/picture/canvas.h"

namespace host {

// A colour of an element on light ground, by its index modulo 16.
struct PaperColor {
    double red, green, blue;
};
PaperColor paperColor(int32_t index);

// On paper, in millimetres: the width of the pen that an element is drawn with, mmPerMaster to a master unit, and the
// dashes and gaps of its line in turn, none for a solid one.
double penWidth(const MdlLook& look, double mmPerMaster);
std::vector<double> dashesOf(const MdlLook& look, double mmPerMaster);

enum class PictureKind { png, svg, pdf };
// By name, in any letter case, which behind a dot is the suffix of their files; nothing for another one.
std::optional<PictureKind> pictureKindNamed(std::string_view name);

constexpr double mmPerInch = 25.4;
constexpr double longestSideMm = 10000, mostPixels = 30000;  // of a picture's side

// A page of paper with a picture on it, which is cut off behind the pens of lines on its edges. Millimetres from the
// upper left corner.
struct Page {
    double widthMm, heightMm;
    double left, top;     // where the picture begins
    bool turned = false;  // by a quarter turn counter-clockwise
};

class Sheet : public Canvas {
  public:
    // The sheet shows `range`, seen from above, on widthMm of paper. SVG and PDF are written to the file at `path` as
    // they are drawn.
    Sheet(PictureKind kind, const std::string& path, const Range3d& range, double widthMm, double dpi);
    // The same on a page.
    Sheet(PictureKind kind, const std::string& path, const Range3d& range, double widthMm, double dpi,
          const Page& page);

    MdlPen pen() override;
    void beginClip(std::span<const Point3d> outline) override;
    void endClip() override;
    void highlight(bool on) override { highlights_ = on; }
    // Writes what was drawn, down to the disk; a text that tells what failed, or null.
    const char* finish();

  private:
    Sheet(PictureKind kind, const std::string& path, const Range3d& range, double widthMm, double dpi, double pageWidth,
          double pageHeight);
    void drawLine(std::span<const Point3d> points, const MdlLook& look);
    void drawText(const TextView& text, const MdlLook& look);
    void setDashes(const MdlLook& look, double mmPerMaster);
    Point3d onPaper(const Point3d& p) const;
    void takeColor(int32_t index);

    PictureKind kind_;
    std::unique_ptr<std::FILE, decltype(&std::fclose)> file_;  // null: it couldn't be opened
    Range3d range_;
    double scale_;      // mm for a UOR
    double precision_;  // mm
    bool highlights_ = false;
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_;
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> pen_;
};

}  // namespace host
