#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <rasterkit/codecs/png/rows/png_row_kind.h>

namespace rasterkit::detail {

/// Makes rows of pixels from unfiltered rows of a PNG file, as libpng does after RequestPngRows and
/// ExpandTwoBits do.
class PngRowChange {
 public:
  PngRowChange(const PngReader& reader, const PngFacts& facts, PngRowKind kind);

  /// `target` holds a row of the kind, with the padding of a raster.
  void Make(const uint8_t* row, uint8_t* target);

 private:
  void MakeColors(const uint8_t* row, uint8_t* target);
  void MakeWords(const uint8_t* row, uint8_t* target) const;
  void MakePaletteAlpha(const uint8_t* row, uint8_t* target) const;

  const PngFacts facts_;
  const PngRowKind kind_;
  size_t width_, rowBytes_;
  /// Samples per pixel of the file.
  size_t bands_;
  /// The transparent color of words.
  bool hasKey_ = false;
  std::array<uint16_t, 3> key_{};
  /// B G R A of each index.
  std::array<std::array<uint8_t, 4>, 256> table_{};
  /// A row of 16-bit samples scaled to 8 bits.
  std::vector<uint8_t> scaled_;
};

}  // namespace rasterkit::detail
