#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/metafiles/records/dib_reader.h>

namespace rasterkit::detail {

/// What the head of a bitmap says, before anything is believed.
struct DibHead {
  uint32_t headerBytes = 0;
  int64_t width = 0;
  /// Negative for rows from top to bottom.
  int64_t height = 0;
  uint32_t bits = 0;
  BmpCompression compression = BmpCompression::none;
  /// Entries of the table of colours and bytes of each, and where the table starts.
  uint64_t entries = 0;
  uint32_t entryBytes = 0;
  uint64_t tableOffset = 0;
  /// 32 bits, blue in the lowest byte and red in the third, whether by masks or without: the fourth
  /// may be alpha.
  bool hasFourthByte = false;

  bool IsCore() const { return headerBytes == kBmpCoreHeader; }
  bool IsEmbedded() const {
    return compression == BmpCompression::jpeg || compression == BmpCompression::png;
  }
  bool IsRle() const {
    return compression == BmpCompression::rle4 || compression == BmpCompression::rle8;
  }
  /// Bytes from one row to the next of a bitmap that is not packed.
  uint64_t RowBytes() const { return (static_cast<uint64_t>(width) * bits + 31) / 32 * 4; }
};

/// Throws FormatError when the header is not there or of no known kind.
DibHead ReadDibHead(std::span<const uint8_t> bytes, DibColors colors);

/// The bitmap as a bitmap file, for the reader of such.
std::vector<uint8_t> DibAsFile(const DibHead& head, const DibParts& parts,
                               const DibRequest& request);

}  // namespace rasterkit::detail
