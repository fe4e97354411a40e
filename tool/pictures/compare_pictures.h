#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>

namespace rasterkit::tool {

/// The visible difference between two pictures of the same size.
struct PictureDifference {
  /// Pixels that differ by more than the tolerance in a channel or in their opacity.
  uint64_t pixels = 0;
  /// The greatest difference of any channel, 0 to 255, even within the tolerance.
  int greatest = 0;
  /// The first of those pixels, row by row.
  int x = -1, y = -1;
};

/// Compares colors and opacity at any depth; two fully transparent pixels are equal. Converts both
/// bitmaps to 32-bit. Returns nothing if the sizes differ.
std::optional<PictureDifference> ComparePictures(TBitmap& a, TBitmap& b, int tolerance);

/// Two pictures with numbers of more than 8 bits and of one kind, made visible with one range.
struct ComparedNumbers {
  std::unique_ptr<TBitmap> a, b;
  /// Pixels whose numbers differ, and the first of them, row by row.
  uint64_t pixels = 0;
  int x = -1, y = -1;
};

/// Reads the numbers of both pictures. Nothing if they are of different kinds or sizes, or have 8
/// bits: their colors are then all that can be compared.
std::optional<ComparedNumbers> CompareNumbers(const Picture& a, const Picture& b, const Run& run);

}  // namespace rasterkit::tool
