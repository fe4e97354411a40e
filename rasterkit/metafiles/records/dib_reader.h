#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/raster.h>

/// Device-independent bitmaps in records: a header as in BMP files, masks, a color table, and rows.
namespace rasterkit::detail {

/// What the color table holds: colors, 16-bit indexes into the selected palette, or nothing, as the
/// pixels themselves are such indexes.
enum class DibColors : uint32_t { colors = 0, paletteIndexes = 1, noTable = 2 };

/// Converts the value of a record; invalid values mean colors.
constexpr DibColors DibColorsOf(uint32_t stated) {
  return stated == 1 || stated == 2 ? static_cast<DibColors>(stated) : DibColors::colors;
}

/// The parts of a bitmap in a record.
struct DibParts {
  /// Header, masks and color table.
  std::span<const uint8_t> head;
  std::span<const uint8_t> bits;
};

/// Splits a bitmap whose rows follow its color table. Throws FormatError if the data ends before
/// the rows.
DibParts SplitPackedDib(std::span<const uint8_t> bytes, DibColors colors);

struct Dib {
  Raster raster;
  /// True if the first row in the record is the top row.
  bool isTopDown = false;
};

struct DibRequest {
  DibColors colors = DibColors::colors;
  /// The palette that indexes refer to; empty means the default palette.
  HPALETTE palette;
  /// Keeps the fourth byte of 32-bit pixels as alpha; otherwise it is set to 255.
  bool keepsAlpha = false;
  /// The number of rows in the record, if it holds only a part of the bitmap.
  std::optional<uint32_t> rows;
};

/// Reads the bitmaps of one metafile and limits their total size: a hostile file can state large
/// bitmaps in a few bytes, repeatedly.
class DibReader {
 public:
  explicit DibReader(uint64_t fileBytes);

  /// Reads a bitmap of 1 to 32 bits per pixel, with masks, RLE, or an embedded JPEG or PNG. Indexed
  /// bitmaps stay indexed; missing rows are 0. Throws FormatError, UnsupportedError or LimitError;
  /// the record then has no bitmap.
  Dib Read(const DibParts& parts, const DibRequest& request);

 private:
  void Take(uint64_t pixels, uint64_t bytes);

  uint64_t pixelsLeft_;
};

}  // namespace rasterkit::detail
