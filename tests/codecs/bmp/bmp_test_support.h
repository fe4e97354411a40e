#pragma once

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/bmp_file.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {

inline Raster DecodeBytes(const std::vector<uint8_t>& bytes, CodecReport* report = nullptr) {
  TSpanStream stream(bytes);
  return DecodeBmp(stream, report);
}

inline Raster DecodeBytes(const BmpFile& file, CodecReport* report = nullptr) {
  return DecodeBytes(file.Bytes(), report);
}

inline std::vector<uint8_t> EncodeToBytes(const Raster& raster,
                                          BmpProfile profile = BmpProfile::embed) {
  TMemoryStream stream;
  EncodeBmp(raster, stream, profile);
  return stream.TakeBytes();
}

/// Palette index of an indexed raster's pixel.
inline int IndexAt(const Raster& raster, int x, int y) {
  const int bits = StoredBitsPerPixel(raster.Format());
  const int perByte = 8 / bits;
  return raster.Row(y)[x / perByte] >> (8 - bits * (x % perByte + 1)) & ((1 << bits) - 1);
}

/// All indexes of a row: easy to compare with a list.
inline std::vector<int> Indexes(const Raster& raster, int y) {
  std::vector<int> row;
  for (int x = 0; x < raster.Width(); ++x) row.push_back(IndexAt(raster, x, y));
  return row;
}

/// The little-endian value of a true-color pixel: 0xRRGGBB, 0xAARRGGBB, or the 15- or 16-bit word.
inline uint32_t PixelAt(const Raster& raster, int x, int y) {
  const int bytes = StoredBitsPerPixel(raster.Format()) / 8;
  uint32_t pixel = 0;
  for (int i = 0; i < bytes; ++i) pixel |= uint32_t{raster.Row(y)[x * bytes + i]} << (8 * i);
  return pixel;
}

inline uint32_t PaletteColor(const Raster& raster, int index) {
  const tagPALETTEENTRY entry = raster.palette.Entry(index);
  return uint32_t{entry.peRed} << 16 | uint32_t{entry.peGreen} << 8 | entry.peBlue;
}

/// Same pixels, and everything else that a file carries.
inline testing::AssertionResult SamePicture(const Raster& a, const Raster& b) {
  if (const testing::AssertionResult same = SamePixels(a, b); !same) return same;
  if (!(a.resolution == b.resolution)) return testing::AssertionFailure() << "resolutions differ";
  if (a.alphaFormat != b.alphaFormat) return testing::AssertionFailure() << "alpha marks differ";
  const std::vector<uint8_t> none;
  if ((a.profile ? *a.profile : none) != (b.profile ? *b.profile : none)) {
    return testing::AssertionFailure() << "profiles differ";
  }
  return testing::AssertionSuccess();
}

}  // namespace rasterkit::test
