#pragma once

#include <memory>

#include <cairo.h>

/// Owning handles of cairo objects.
namespace rasterkit::detail {

template <auto release>
struct CairoRelease {
  template <class T>
  void operator()(T* object) const {
    release(object);
  }
};

using CairoContext = std::unique_ptr<cairo_t, CairoRelease<cairo_destroy>>;
using CairoSurface = std::unique_ptr<cairo_surface_t, CairoRelease<cairo_surface_destroy>>;
using CairoRegion = std::unique_ptr<cairo_region_t, CairoRelease<cairo_region_destroy>>;
using CairoFontFace = std::unique_ptr<cairo_font_face_t, CairoRelease<cairo_font_face_destroy>>;
using CairoScaledFont =
    std::unique_ptr<cairo_scaled_font_t, CairoRelease<cairo_scaled_font_destroy>>;

/// Returns the map without its translation, as a cairo matrix.
template <class Map>
cairo_matrix_t LinearMatrix(const Map& map) {
  return {map.m11, map.m12, map.m21, map.m22, 0, 0};
}

}  // namespace rasterkit::detail
