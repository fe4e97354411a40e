#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_layout.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// The values of samples that the file lacks.
struct TiffBlanks {
  /// Sample byte that shows white, for codecs that can skip rows without an error.
  uint8_t whiteByte = 0xFF;
  /// Bytes of one sample, repeated: the content of blocks that a sparse file leaves out.
  std::array<uint8_t, 8> sparse{};
  size_t sparseBytes = 1;
};

/// Reverses the bytes of each sample in rows of samples of that many bits; no-op for those that are
/// no words.
void TurnSamples(uint8_t* bytes, size_t count, int bits);

/// Reads strips and tiles, one at a time, for one thread.
class TiffBlockReader {
 public:
  TiffBlockReader(TiffHandle& handle, const TiffLayout& layout, const TiffBlanks& blanks)
      : handle_(handle), layout_(layout), blanks_(blanks) {}

  /// True if the rows of a block can be read one by one because they are not compressed.
  bool IsPlain() const { return layout_.compression == COMPRESSION_NONE; }
  /// Rows that `Read` unpacks for a block of which the picture has `rows`: all rows of a tile.
  uint32_t UnpackedRows(uint32_t rows) const {
    return layout_.grid.isTiled && !IsPlain() ? layout_.grid.height : rows;
  }

  /// Reads rows `first` to `first + rows - 1` of a block into `target`, which has room for
  /// `UnpackedRows`; `first` is 0 unless the block is uncompressed. Returns the number of rows that
  /// were there; the others hold undefined bytes. Throws the errors of the stream.
  uint32_t Read(uint32_t block, uint32_t first, uint32_t rows, uint8_t* target);

  /// The errors since the last call.
  std::vector<std::string> TakeErrors() { return std::move(errors_); }

  /// The bytes of a block in the file; both 0 for one that a sparse file leaves out.
  TiffExtent ExtentOf(uint32_t block) const;
  /// Brings rows that are not compressed from the order of the file to that of the processor.
  void ToProcessorOrder(uint8_t* bytes, size_t count) const;
  /// Writes the samples of a block that a sparse file leaves out.
  void FillSparse(uint8_t* target, size_t bytes) const;

 private:
  uint32_t ReadPlain(uint64_t offset, uint64_t count, uint32_t rows, uint8_t* target);
  uint32_t ReadPacked(uint32_t block, uint64_t offset, uint64_t count, uint32_t rows,
                      uint8_t* target);
  uint32_t RowsThere(uint32_t block, size_t rawBytes, uint32_t rows, uint8_t* target);
  uint32_t RowsWritten(uint32_t block, size_t rawBytes, uint32_t rows, uint8_t* target);
  bool Unpack(uint32_t block, size_t rawBytes, uint32_t rows, uint8_t* target);
  bool UnpackG4(size_t rawBytes, uint32_t rows, uint8_t* target) const;
  bool UnpackOnto(uint32_t block, size_t rawBytes, uint32_t rows, uint8_t* target);
  void ClearUnreadRow(uint32_t rows, uint8_t* target) const;
  uint64_t PictureBytes() const;
  bool MayLeaveGaps() const;
  bool IsFax() const;
  bool IsDeflate() const;
  bool IsBlank(std::span<const uint8_t> bytes) const;

  TiffHandle& handle_;
  const TiffLayout& layout_;
  const TiffBlanks blanks_;
  PixelMemory raw_;
  std::vector<std::string> errors_;
};

}  // namespace rasterkit::detail
