#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>

/// Icon files, part by part, so that each test may lie anywhere.
namespace rasterkit::test {

struct IcoPicture {
  /// As the directory states them; 0 is 256.
  int width = 0, height = 0, bits = 0;
  std::vector<uint8_t> bytes;
};

/// A picture as an icon holds it: info header, palette, rows from bottom to top, mask. The raster
/// has 1, 4, 8, 24 or 32 bits; the mask (1-bit, of the same size) may be absent, and then the
/// header states the colors alone when `stateBoth` is not set.
IcoPicture IcoBitmap(const Raster& colors, const Raster* mask, bool stateBoth = true);

/// A PNG file as a picture.
IcoPicture IcoPng(const Raster& raster);

/// Directory and pictures, one behind the other.
std::vector<uint8_t> IcoFile(const std::vector<IcoPicture>& pictures);

}  // namespace rasterkit::test
