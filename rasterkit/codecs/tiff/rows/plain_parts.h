#pragma once

#include <memory>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/rows/tiff_picture.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// Reads parts of strips and tiles that are not compressed: exactly their bytes, or with gaps that
/// cost less than a further read. Rows are converted while they are in the cache.
class PlainParts {
 public:
  PlainParts(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
             const TiffBlanks& blanks, TiffFaults& faults);

  /// Reads what the block has of `part`, whose top left pixel is the first one of `target`.
  void Read(uint32_t position, const TiffPart& part, const TiffTarget& target);
  /// True if the file has a row of the block; else what is wrong is added to `notes`.
  bool HasRows(uint32_t position, std::vector<std::string>& notes) const;

 private:
  /// Rows of a block that all planes have, and the notes about the others.
  struct Stored {
    uint32_t rows = 0;
    bool isSparse = true;
    std::vector<std::string> notes;
  };
  /// Where a part of a block lies in its rows of samples.
  struct Columns {
    uint32_t first = 0, count = 0;
    /// Pixels before the first one that are read because they share a byte with it.
    uint32_t before = 0;
    /// The bytes of a row.
    size_t at = 0, bytes = 0;
  };

  /// Where rows of samples go, and whether bytes between them may be overwritten.
  struct SampleRows {
    uint8_t* target = nullptr;
    size_t pitch = 0;
    bool mayFillGaps = false;
  };

  Stored StoredRows(uint32_t position, uint32_t height) const;
  uint32_t PlaneRows(uint32_t block, uint32_t first, uint32_t rows,
                     std::vector<std::string>& notes) const;
  Columns ColumnsOf(const TiffPart& place, const TiffPart& wanted) const;
  uint32_t ReadRows(uint32_t position, uint32_t first, uint32_t rows, const Columns& columns,
                    uint8_t* target, size_t stride, size_t bit, int bitsPerPixel);
  uint32_t ReadPlane(uint32_t block, uint32_t first, uint32_t rows, const Columns& columns,
                     const SampleRows& samples);
  void FillRows(const TiffTarget& target, uint8_t* row, size_t bit, uint32_t width, uint32_t rows);
  void PutRow(const uint8_t* row, size_t before, size_t width, uint8_t* target, size_t bit,
              int bitsPerPixel) const;
  uint64_t Size() const { return handle_.Source().Size(); }
  /// Bits of a pixel in a row of samples.
  size_t SampleBits() const;
  uint8_t* Converted(size_t bytes);

  TiffHandle& handle_;
  const TiffLayout& layout_;
  TiffBlockReader reader_;
  std::unique_ptr<TiffRowWriter> writer_;
  TiffFaults& faults_;
  /// Rows of samples of each plane, one plane after the other; a converted row; skipped bytes.
  PixelMemory samples_, converted_, gap_;
  std::vector<const uint8_t*> planes_;
  std::vector<std::span<uint8_t>> pieces_;
  bool isStreamed_ = false;
};

}  // namespace rasterkit::detail
