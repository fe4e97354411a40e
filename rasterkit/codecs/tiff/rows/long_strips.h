#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/codecs/tiff/rows/tiff_picture.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// True for a page of compressed strips that are too long to be held and that the codec unpacks row
/// by row.
bool HasLongStrips(const TiffLayout& layout);

/// Unpacks such strips row by row, on one thread. A strip in which anything is wrong is unpacked
/// again as a whole: its notes and the number of its rows are those of a strip that is held.
class LongStrips {
 public:
  /// The arguments must outlive this object.
  LongStrips(TiffSource& source, const TiffLayout& layout, const TiffColors& colors,
             const TiffBlanks& blanks, TiffFaults& faults);
  ~LongStrips();

  /// Reads rows in full width; those that lie between them and the rows before are unpacked, too.
  void Read(uint32_t top, uint32_t rows, const TiffTarget& target);

 private:
  void ReadRow(uint32_t y, const TiffTarget& target, uint8_t* row);
  const uint8_t* Samples(uint32_t y);
  bool BeginStrip(uint32_t strip);
  void HoldStrip(uint32_t strip, uint32_t soundRows);

  const TiffLayout& layout_;
  const TiffBlanks& blanks_;
  TiffFaults& faults_;
  TiffHandle handle_;
  TiffBlockReader blocks_;
  std::unique_ptr<TiffRowWriter> writer_;
  /// The row that is unpacked next.
  uint32_t next_ = 0;
  uint32_t strip_ = UINT32_MAX;
  bool isSparse_ = false;
  PixelMemory row_;
  /// The samples of a strip that had to be held, and how many of its rows are there.
  PixelMemory held_;
  uint32_t heldStrip_ = UINT32_MAX, heldRows_ = 0;
};

}  // namespace rasterkit::detail
