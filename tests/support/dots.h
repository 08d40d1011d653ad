// Pictures, dot by dot.
#pragma once

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

// The dots of a picture by their colours.
class Dots {
  public:
    explicit Dots(const std::string& path)
        : surface_(cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy) {}
    int width() const { return cairo_image_surface_get_width(surface_.get()); }
    int height() const { return cairo_image_surface_get_height(surface_.get()); }
    uint32_t at(int x, int y) const {
        const unsigned char* row = cairo_image_surface_get_data(surface_.get()) +
                                   static_cast<ptrdiff_t>(y) * cairo_image_surface_get_stride(surface_.get());
        return reinterpret_cast<const uint32_t*>(row)[x] & 0xFFFFFF;
    }
    bool isInked(int x, int y) const { return at(x, y) != 0xFFFFFF; }

  private:
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_;
};
