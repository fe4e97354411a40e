#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/raster.h>

/// Bitmaps inside records: a header as in bitmap files, masks, a table of colours, and rows.
namespace rasterkit::detail {

/// What the table of colours holds: colours, 16-bit indexes into the palette that is selected, or
/// nothing because the pixels are such indexes themselves.
enum class DibColors : uint32_t { colors = 0, paletteIndexes = 1, noTable = 2 };

/// What a record states, which may be any number.
constexpr DibColors DibColorsOf(uint32_t stated) {
  return stated == 1 || stated == 2 ? static_cast<DibColors>(stated) : DibColors::colors;
}

/// Where the parts of a bitmap lie in a record.
struct DibParts {
  /// Header, masks and table of colours.
  std::span<const uint8_t> head;
  std::span<const uint8_t> bits;
};

/// Parts of a bitmap whose rows follow its table of colours. Throws FormatError when the bytes end
/// before the rows.
DibParts SplitPackedDib(std::span<const uint8_t> bytes, DibColors colors);

struct Dib {
  Raster raster;
  /// The first row in the record is the topmost one.
  bool isTopDown = false;
};

struct DibRequest {
  DibColors colors = DibColors::colors;
  /// What indexes mean where `colors` speaks of a palette; the default palette when empty.
  HPALETTE palette;
  /// Keeps the fourth byte of 32-bit pixels as it is, which else counts as 255.
  bool keepsAlpha = false;
  /// Rows that the record holds of the bitmap, when it holds only some.
  std::optional<uint32_t> rows;
};

/// Reads bitmaps of one metafile and keeps account of their size: a few bytes may state any size,
/// and there may be many of them.
class DibReader {
 public:
  explicit DibReader(uint64_t fileBytes);

  /// 1 to 32 bits, masks, RLE, JPEG and PNG inside; indexed bitmaps stay indexed. Rows that are not
  /// there are 0. Throws FormatError, UnsupportedError and LimitError: the record has no bitmap
  /// then.
  Dib Read(const DibParts& parts, const DibRequest& request);

 private:
  void Take(uint64_t pixels, uint64_t bytes);

  uint64_t pixelsLeft_;
};

}  // namespace rasterkit::detail
