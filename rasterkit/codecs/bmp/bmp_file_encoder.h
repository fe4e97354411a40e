#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Writes a bitmap file, whose rows stand from the bottom to the top.
class BmpEncoder {
 public:
  /// For a picture of that size with the format, palette and kind of alpha of `like`, of which rows
  /// are looked at only if its palette is short. Both arguments must outlive the object.
  BmpEncoder(const Raster& like, int width, int height, const BmpProperties& properties);
  void FillHead();
  const std::vector<uint8_t>& Head() const { return head_; }

  /// Writes all that stands before the rows. Throws FormatError for a picture without pixels and
  /// LimitError for one that is too large for the format.
  void Begin(TStream& stream);
  /// Writes the next rows to their places. Only a picture of several parts needs a stream that
  /// takes bytes at any place.
  void WriteRows(const Raster& rows, TStream& stream);
  /// Throws RangeError if rows are missing.
  void End(TStream& stream);

 private:
  bool HasAlpha() const { return raster_.Format() == pf32bit && raster_.alphaFormat == afDefined; }
  bool HasProfile() const { return profile_ != nullptr; }
  BmpMasks Masks() const;
  /// The oldest sufficient header, which most programs read.
  uint32_t HeaderBytes() const;
  uint32_t MaskBytesBehindHeader() const;
  void RequireWritable() const;

  void PutWord(size_t offset, uint32_t value);
  void PutLong(size_t offset, uint32_t value);
  void FillFileHeader();
  void FillInfoHeader();
  void FillMasks();
  void FillColorSpace();
  void FillPalette();
  void CopyRow(const uint8_t* row, uint8_t* target) const;
  size_t RowBytes() const;

  const Raster& raster_;
  const int width_, height_;
  const size_t stride_;
  const Resolution resolution_;
  const std::vector<uint8_t>* profile_ = nullptr;
  uint32_t headerBytes_ = 0, paletteEntries_ = 0;
  uint64_t pixelBytes_ = 0, fileBytes_ = 0;
  /// Everything before the first row.
  std::vector<uint8_t> head_;
  /// Where the file begins, and rows that are written.
  uint64_t start_ = 0;
  int written_ = 0;
};

}  // namespace rasterkit::detail
