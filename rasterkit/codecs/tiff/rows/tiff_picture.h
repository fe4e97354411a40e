#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/tiff/tiff_block_reader.h>
#include <rasterkit/codecs/tiff/tiff_row_writer.h>

namespace rasterkit::detail {

/// The rows that receive pixels: those of a raster, of samples, or numbers that are converted
/// later.
struct TiffTarget {
  uint8_t* data = nullptr;
  size_t stride = 0;
  int bitsPerPixel = 0;
  /// Bytes of one pixel, repeated in missing rows; only the first one for pixels below a byte.
  std::array<uint8_t, 8> blank{};
  /// Bytes of `blank` that repeat; 0: those of one pixel. Only samples need it.
  size_t blankBytes = 0;

  uint8_t* Row(uint32_t y) const { return data + y * stride; }
  /// Bytes of so many pixels.
  size_t BytesOf(size_t pixels) const {
    return (pixels * static_cast<size_t>(bitsPerPixel) + 7) / 8;
  }
};

/// Fills the first pixels of a row that the file lacks.
void FillMissingPixels(const TiffTarget& target, size_t width, uint8_t* row);

/// A part of the picture in pixels.
struct TiffPart {
  uint32_t left = 0, top = 0, width = 0, height = 0;

  uint32_t Right() const { return left + width; }
  uint32_t Bottom() const { return top + height; }
  /// The area that both have; there must be one.
  TiffPart Common(const TiffPart& other) const;
  friend bool operator==(const TiffPart&, const TiffPart&) = default;
};

/// The place of a block in the picture; `position` counts the blocks of one plane.
TiffPart PlaceOfBlock(const TiffLayout& layout, uint32_t position);

/// The outcome of reading.
struct TiffOutcome {
  /// True if any row of any block was there.
  bool hasRows = false;
  /// Number of blocks with missing rows, and of all blocks that were read.
  uint32_t damagedBlocks = 0, blocks = 0;
  /// Number of intact rows from the top, of those that were read.
  uint32_t soundRows = 0;
  /// Rows of the blocks that were read; 0: all rows of the picture.
  uint32_t partRows = 0;
  /// Messages of the codec in the order of the blocks, each text once.
  std::vector<std::string> notes;
};

/// The errors of blocks, from several threads.
class TiffFaults {
 public:
  /// Keeps the rows that a block lacks at its end, and the notes about it. The first fault of a
  /// block counts: reading it again finds the same. No-op without rows and notes.
  void Add(uint32_t position, uint32_t missingRows, std::vector<std::string> notes);
  /// The outcome of the blocks that were read: those whose bit is set, by their position.
  TiffOutcome Outcome(const TiffLayout& layout, const std::vector<bool>& wasRead) const;

 private:
  struct Fault {
    uint32_t missingRows = 0;
    std::vector<std::string> notes;
  };
  mutable std::mutex mutex_;
  std::map<uint32_t, Fault> faults_;
};

/// Adds the damage to `report`. Throws FormatError if nothing was there. `height`: rows of the
/// picture.
void ReportOutcome(const TiffOutcome& outcome, uint32_t height, CodecReport& report);

}  // namespace rasterkit::detail
