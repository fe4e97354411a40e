#pragma once

#include <cstdint>
#include <span>

/// Layout of Windows and OS/2 bitmap files, for decoder and encoder.
///
///     file header 14 bytes | info header | color masks | palette | pixel rows | ICC profile
///
/// Everything is little-endian; rows are padded to 4 bytes and usually run from bottom to top.
namespace rasterkit::detail {

inline constexpr uint32_t kBmpFileHeaderBytes = 14;

/// The first field of the info header is its size, which tells the kind of header.
inline constexpr uint32_t kBmpCoreHeader = 12;
/// OS/2 2.x headers can end after any field; missing fields are 0.
inline constexpr uint32_t kBmpShortestOs2Header = 16;
inline constexpr uint32_t kBmpInfoHeader = 40;
/// Info headers with masks for three and for four channels.
inline constexpr uint32_t kBmpMaskHeader = 52, kBmpAlphaMaskHeader = 56;
inline constexpr uint32_t kBmpLongestOs2Header = 64;
inline constexpr uint32_t kBmpV4Header = 108, kBmpV5Header = 124;

/// Offsets of the fields in all headers but the core header, from the header's start.
namespace bmp_field {
inline constexpr uint32_t kSize = 0, kWidth = 4, kHeight = 8, kPlanes = 12, kBits = 14;
inline constexpr uint32_t kCompression = 16, kImageBytes = 20, kPixelsPerMeterX = 24;
inline constexpr uint32_t kPixelsPerMeterY = 28, kColorsUsed = 32, kMasks = 40, kColorSpace = 56;
inline constexpr uint32_t kIntent = 108, kProfileOffset = 112, kProfileBytes = 116;
}  // namespace bmp_field

enum class BmpCompression : uint32_t {
  none = 0,
  rle8 = 1,
  rle4 = 2,
  bitFields = 3,  // OS/2 2.x: one-dimensional Huffman code
  jpeg = 4,       // OS/2 2.x: run lengths of 24-bit pixels
  png = 5,
  alphaBitFields = 6,
};

/// Values of `bmp_field::kColorSpace`: the profile follows the pixels, or the colors are sRGB.
inline constexpr uint32_t kBmpProfileEmbedded = 0x4D424544, kBmpSrgb = 0x73524742;

/// The bits of each channel in a stored pixel; an alpha mask of 0 means no alpha.
struct BmpMasks {
  uint32_t red = 0, green = 0, blue = 0, alpha = 0;
  friend bool operator==(const BmpMasks&, const BmpMasks&) = default;
};
inline constexpr BmpMasks kBmpMasks555{0x7C00, 0x03E0, 0x001F, 0};
inline constexpr BmpMasks kBmpMasks565{0xF800, 0x07E0, 0x001F, 0};
inline constexpr BmpMasks kBmpMasks888{0xFF0000, 0x00FF00, 0x0000FF, 0};
inline constexpr uint32_t kBmpAlpha8888 = 0xFF000000;

/// Resolutions are stored as whole pixels per meter.
inline constexpr double kMetersPerInch = 0.0254;

/// True for header sizes that only OS/2 2.x has.
constexpr bool IsOs2BmpHeader(uint32_t headerBytes) {
  return headerBytes >= kBmpShortestOs2Header && headerBytes <= kBmpLongestOs2Header &&
         headerBytes != kBmpInfoHeader && headerBytes != kBmpMaskHeader &&
         headerBytes != kBmpAlphaMaskHeader;
}

constexpr bool IsBmpHeaderSize(uint32_t headerBytes) {
  return headerBytes == kBmpCoreHeader || headerBytes == kBmpV4Header ||
         headerBytes == kBmpV5Header ||
         (headerBytes >= kBmpShortestOs2Header && headerBytes <= kBmpLongestOs2Header);
}

/// Reads little-endian fields. The caller has checked that the bytes are there.
constexpr uint32_t BmpWord(std::span<const uint8_t> bytes, size_t offset) {
  return static_cast<uint32_t>(bytes[offset] | (bytes[offset + 1] << 8));
}
constexpr uint32_t BmpLong(std::span<const uint8_t> bytes, size_t offset) {
  return BmpWord(bytes, offset) | (BmpWord(bytes, offset + 2) << 16);
}

}  // namespace rasterkit::detail
