#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/bmp/bmp_masks.h>
#include <rasterkit/codecs/bmp/bmp_rows.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {
namespace detail {

inline bool IsBmpRle(const BmpHeader& header) {
  return header.compression == BmpCompression::rle4 || header.compression == BmpCompression::rle8;
}
/// True for a JPEG or PNG picture in a bitmap file.
inline bool IsEmbeddedBmp(const BmpHeader& header) {
  return header.compression == BmpCompression::jpeg || header.compression == BmpCompression::png;
}

/// Reads a part of the file; what is missing at the end is skipped.
std::vector<uint8_t> ReadBmpPart(TStream& stream, uint64_t position, uint64_t count);
/// The profile of the file that starts at `start`; null if there is none.
ColorProfile ReadBmpProfile(TStream& stream, uint64_t start, const BmpHeader& header);

/// The pixels of a bitmap file that starts at a place of a stream. Read works for uncompressed
/// pixels alone.
class BmpPlainRows {
 public:
  BmpPlainRows(TStream& stream, uint64_t start, const BmpHeader& header);

  TPixelFormat Format() const { return format_; }
  /// The entries that the file has; empty for true color.
  HPALETTE Palette() const;
  /// Throws if a picture of which `rows` rows are held exceeds the limits, or if the file cannot
  /// hold the picture.
  void RequireMemory(int rows) const;
  /// Fills `raster` with the pixels from `place` on. Parts of rows need pixels of whole bytes.
  void Read(const BmpPlace& place, Raster& raster);
  /// Many programs state an alpha channel and leave it 0: such a picture is opaque, not invisible.
  /// Call it when all rows are there.
  void MarkAlpha(Raster& raster) const;
  /// Says how many rows are missing.
  void Report(CodecReport& report) const;

 private:
  void Finish(const uint8_t* source, uint8_t* target, size_t width);

  TStream& stream_;
  const uint64_t start_;
  const BmpHeader header_;
  const TPixelFormat format_;
  const bool hasAlpha_;
  std::unique_ptr<BmpMaskedRows> masked_;
  BmpRowRules rules_;
  bool isAlphaSeen_ = false;
};

}  // namespace detail

/// Begins to read the file that starts at the stream's position row by row. Null for run lengths,
/// for JPEG and PNG pictures in a bitmap file, and for an alpha channel, which counts only if not
/// all of it is 0.
RASTERKIT_EXPORT std::unique_ptr<RowReader> OpenBmpRows(TStream& stream);

}  // namespace rasterkit
