#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/metafiles/wmf/wmf_to_emf.h>
#include <rasterkit/raster/fill.h>

namespace rasterkit::test {

/// Converts a WMF file to EMF.
inline std::vector<uint8_t> EmfOf(const std::vector<uint8_t>& wmf) {
  return detail::ConvertWmfToEmf(wmf, ReadMetafileFacts(wmf));
}

/// Plays a metafile on white; its picture fills the raster.
struct PlayedMetafile {
  explicit PlayedMetafile(const std::vector<uint8_t>& bytes, int width = 100, int height = 80)
      : raster(pf32bit, width, height) {
    FillRaster(raster, {0, 0, width, height}, clWhite);
    report = PlayMetafile(bytes, raster, {0, 0, width, height});
  }
  TColor At(int x, int y) const { return raster.PixelColor(x, y); }
  /// Returns the number of pixels that are not white.
  int Painted() const { return PaintedIn({0, 0, raster.Width(), raster.Height()}); }
  int PaintedIn(const PixelRect& box) const {
    int count = 0;
    for (int y = box.top; y < box.bottom; ++y) {
      for (int x = box.left; x < box.right; ++x) count += At(x, y) == clWhite ? 0 : 1;
    }
    return count;
  }

  Raster raster;
  PlayReport report;
};

}  // namespace rasterkit::test
