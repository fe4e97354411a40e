#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/tiff/tiff_block_reader.h>
#include <rasterkit/codecs/tiff/tiff_row_writer.h>

namespace rasterkit::detail {

/// The rows that receive the blocks: those of a raster, or numbers that are converted later.
struct TiffTarget {
  uint8_t* data = nullptr;
  size_t stride = 0;
  int bitsPerPixel = 0;
  /// Bytes of one pixel, repeated in missing rows; only the first one for pixels below a byte.
  std::array<uint8_t, 8> blank{};
  /// Bytes of `blank` that repeat; 0: those of one pixel. Only samples need it.
  size_t blankBytes = 0;

  uint8_t* Row(uint32_t y) const { return data + y * stride; }
};

/// The outcome of reading.
struct TiffOutcome {
  /// True if any row of any block was there.
  bool hasRows = false;
  /// Number of blocks with missing rows, and of all blocks.
  uint32_t damagedBlocks = 0, blocks = 0;
  /// Number of intact rows from the top.
  uint32_t soundRows = 0;
  /// Messages of the codec in the order of the blocks, each text once.
  std::vector<std::string> notes;
};

/// Reads all strips or tiles of the picture into the target, on up to `threads` threads; pixels and
/// outcome do not depend on their number. Throws the errors of the stream.
TiffOutcome ReadTiffBlocks(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                           const TiffBlanks& blanks, const TiffTarget& target, int threads);

/// Adds the damage to `report`. Throws FormatError if nothing was there. `height`: rows of the
/// picture.
void ReportOutcome(const TiffOutcome& outcome, uint32_t height, CodecReport& report);

}  // namespace rasterkit::detail
