#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/metafiles/records/dib_reader.h>

namespace rasterkit::detail {

/// The header of a bitmap as stored; not yet validated.
struct DibHead {
  uint32_t headerBytes = 0;
  int64_t width = 0;
  /// Negative if rows run from top to bottom.
  int64_t height = 0;
  uint32_t bits = 0;
  BmpCompression compression = BmpCompression::none;
  /// The color table: number of entries, bytes per entry, and offset.
  uint64_t entries = 0;
  uint32_t entryBytes = 0;
  uint64_t tableOffset = 0;
  /// 32 bits per pixel with blue in the lowest byte and red in the third, by masks or by default:
  /// the fourth byte may be alpha.
  bool hasFourthByte = false;

  bool IsCore() const { return headerBytes == kBmpCoreHeader; }
  bool IsEmbedded() const {
    return compression == BmpCompression::jpeg || compression == BmpCompression::png;
  }
  bool IsRle() const {
    return compression == BmpCompression::rle4 || compression == BmpCompression::rle8;
  }
  /// Returns the bytes per row of an uncompressed bitmap.
  uint64_t RowBytes() const { return (static_cast<uint64_t>(width) * bits + 31) / 32 * 4; }
};

/// Throws FormatError if the header is truncated or of an unknown size.
DibHead ReadDibHead(std::span<const uint8_t> bytes, DibColors colors);

/// Returns the bitmap as a BMP file.
std::vector<uint8_t> DibAsFile(const DibHead& head, const DibParts& parts,
                               const DibRequest& request);

}  // namespace rasterkit::detail
