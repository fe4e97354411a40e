#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// The colors of a picture in the order of their first appearance, as long as an indexed format has
/// room for them.
class ExactColors {
 public:
  /// The format that the picture becomes: pf1bit to pf8bit.
  explicit ExactColors(TPixelFormat format);

  /// Adds the colors of pixels and writes the number of each; `numbers` may be null. False if there
  /// are more colors than entries: then nothing more can be added.
  bool Add(const RGBArec* pixels, size_t count, uint8_t* numbers);
  /// The numbers of pixels whose colors were all added.
  void Find(const RGBArec* pixels, size_t count, uint8_t* numbers) const;

  /// True if the indexes are gray values: all colors are gray, and the format has 8 bits.
  bool AreGrays() const;
  /// The gray ramp, or the colors and then black.
  HPALETTE Palette() const;
  /// From the numbers of colors to indexes of the palette.
  std::array<uint8_t, 256> Indexes() const;

 private:
  static constexpr uint32_t kSlots = 1024;
  static constexpr uint64_t kFree = ~uint64_t{0};

  /// The slot of a color, or the free one where it belongs; at most a quarter is taken.
  uint32_t SlotOf(uint32_t color) const;
  int NumberOf(uint32_t color);

  const TPixelFormat format_;
  const int limit_;
  int count_ = 0;
  uint32_t lastColor_ = ~0u;
  int last_ = 0;
  std::array<uint64_t, kSlots> slots_;
  std::array<uint32_t, 256> colors_{};
};

/// Writes `source` with its own colors into `target`, an indexed raster of the same size, and sets
/// the target's palette. Returns false, with the target's rows undefined, if there are more colors
/// than entries; a photograph fails after a few rows.
bool MapExactColors(const Raster& source, Raster& target);

}  // namespace rasterkit
