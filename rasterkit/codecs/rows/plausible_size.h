#pragma once

#include <cstdint>
#include <string_view>

namespace rasterkit::detail {

/// Pictures up to this many bytes may be empty, as sparse grids and blank pages are.
inline constexpr uint64_t kAlwaysPlausible = uint64_t{256} << 20;

/// A truncated file shows at least this part of its picture.
inline constexpr uint64_t kCutSlack = 2;
/// The same for rows that are stored as they are. With less, there is almost nothing to show.
inline constexpr uint64_t kPlainSlack = 64;

/// Most bytes per byte of Deflate: a match gives up to 258 bytes and takes at least two bits.
inline constexpr uint64_t kDeflateRatio = 1032;

/// Returns a * b, or the largest number if the product has more than 64 bits.
uint64_t SaturatedProduct(uint64_t a, uint64_t b);

/// The size of a picture, and what its file can hold.
struct SizeClaim {
  /// Bytes of the decoded picture in memory.
  uint64_t memory = 0;
  /// What the file must hold, in the unit of its codec: bytes, pixels or blocks.
  uint64_t units = 0;
  /// Bytes of the file.
  uint64_t fileBytes = 0;
  /// The most units that a byte of the file can hold, by the rules of the codec and with slack for
  /// truncated files.
  uint64_t unitsPerByte = 1;
};

/// Throws FormatError if the picture takes more than kAlwaysPlausible bytes (or than the picture
/// memory limit) and the file cannot hold it. No-op if the limits of the thread allow implausible
/// sizes. `what` names the picture: "PNG picture of 100 x 200 pixels".
void RequirePlausible(const SizeClaim& claim, std::string_view what);

}  // namespace rasterkit::detail
