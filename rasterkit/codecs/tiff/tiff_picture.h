#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_blocks.h>
#include <rasterkit/codecs/tiff/tiff_row_writer.h>

namespace rasterkit::detail {

/// Rows that blocks are written to: those of a raster, or numbers on their way to one.
struct TiffTarget {
  uint8_t* data = nullptr;
  size_t stride = 0;
  int bitsPerPixel = 0;
  /// Bytes of one pixel, repeated where rows are missing; of pixels below a byte the first one.
  std::array<uint8_t, 8> blank{};

  uint8_t* Row(uint32_t y) const { return data + y * stride; }
};

/// What happened on the way.
struct TiffOutcome {
  /// Some row of some block was there.
  bool hasRows = false;
  /// Blocks with rows that are missing, and all blocks.
  uint32_t damagedBlocks = 0, blocks = 0;
  /// First rows of the picture that are whole.
  uint32_t soundRows = 0;
  /// What the codec said, in the order of the blocks, each text once.
  std::vector<std::string> notes;
};

/// Reads all strips or tiles of the handle's picture into the target, on up to `threads` threads;
/// pixels and outcome do not depend on their number. Throws what the stream throws.
TiffOutcome ReadTiffBlocks(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                           const TiffBlanks& blanks, const TiffTarget& target, int threads);

}  // namespace rasterkit::detail
