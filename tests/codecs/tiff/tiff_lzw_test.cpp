// LZW codes of both styles, and files in which some strips look like the other one.

#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_lzw_style.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

using detail::LzwStyle;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using ByteList = std::vector<uint8_t>;

constexpr int kRowsPerStrip = 4, kHeight = 60;
constexpr int kMostThreads = 8, kRuns = 3;

TiffFile Colors() {
  TiffFile file;
  file.width = 50;
  file.height = kHeight;
  file.samples = 3;
  file.photometric = PHOTOMETRIC_RGB;
  file.rowsPerStrip = kRowsPerStrip;
  file.compression = COMPRESSION_LZW;
  std::mt19937 random(5);
  file.pixels = RandomSamples(file, random);
  return file;
}

/// Codes of nine bits, the low bits first: the table is cleared before it would need ten.
ByteList OldCodes(const uint8_t* bytes, size_t count) {
  constexpr uint32_t kClear = 256, kEnd = 257, kMostCodes = 200;
  std::vector<uint32_t> codes;
  for (size_t i = 0; i < count; i++) {
    if (i % kMostCodes == 0) codes.push_back(kClear);
    codes.push_back(bytes[i]);
  }
  codes.push_back(kEnd);
  ByteList packed((codes.size() * 9 + 7) / 8);
  for (size_t i = 0; i < codes.size() * 9; i++) {
    packed[i / 8] |= static_cast<uint8_t>((codes[i / 9] >> i % 9 & 1) << i % 8);
  }
  return packed;
}

ByteList OldFile(TiffFile file) {
  const size_t stripBytes = file.RowBytes() * kRowsPerStrip;
  for (size_t at = 0; at < file.pixels.size(); at += stripBytes)
    file.packedStrips.push_back(OldCodes(file.pixels.data() + at, stripBytes));
  return file.Bytes();
}

/// The file with other bytes at the start of a strip.
ByteList WithStart(TiffFile file, size_t strip, uint8_t first, uint8_t second) {
  file.packedStrips = PackedStrips(file.Bytes());
  file.packedStrips[strip][0] = first;
  file.packedStrips[strip][1] = second;
  return file.Bytes();
}

ImagingFrame Decode(const ByteList& bytes, int threads, CodecReport* report = nullptr) {
  TSpanStream stream(bytes);
  return DecodeTiff(stream, {.threads = threads}, report);
}

bool IsWhite(const Raster& raster, int y) {
  const uint8_t* row = raster.Row(y);
  return std::all_of(row, row + raster.RowBytes(), [](uint8_t byte) { return byte == 255; });
}

/// Expects the rows of one strip to be white and all others to be those of the whole picture, on
/// any number of threads and in each run.
void ExpectLoss(const ByteList& bytes, const Raster& whole, int lostStrip) {
  for (int threads = 1; threads <= kMostThreads; threads++) {
    for (int run = 0; run < kRuns; run++) {
      SCOPED_TRACE(testing::Message() << threads << " threads, strip " << lostStrip);
      CodecReport report;
      const ImagingFrame frame = Decode(bytes, threads, &report);
      for (int y = 0; y < kHeight; y++) {
        if (y / kRowsPerStrip == lostStrip) {
          ASSERT_TRUE(IsWhite(frame.rows, y)) << "row " << y;
        } else {
          ASSERT_EQ(std::memcmp(frame.rows.Row(y), whole.Row(y), whole.RowBytes()), 0)
              << "row " << y;
        }
      }
      EXPECT_THAT(report.warnings, Contains(HasSubstr("does not start like the others")));
    }
  }
}

TEST(TiffLzw, OneStrip_Should_BeLost_When_TwoBytesMakeItLookOld) {
  const TiffFile file = Colors();
  const ImagingFrame whole = Decode(file.Bytes(), 1);
  for (const int strip : {0, 1, 7, 14}) {
    ExpectLoss(WithStart(file, static_cast<size_t>(strip), 0x00, 0x01), whole.rows, strip);
  }
}

TEST(TiffLzw, OneTile_Should_BeLost_When_TwoBytesMakeItLookOld) {
  TiffFile file = Colors();
  file.tileWidth = file.tileHeight = 16;
  ByteList bytes = file.Bytes();
  const ImagingFrame whole = Decode(bytes, 1);
  // Every block of codes starts with the one that clears the table.
  const ByteList start = {0x80};
  const auto first = std::search(bytes.begin() + 8, bytes.end(), start.begin(), start.end());
  ASSERT_NE(first, bytes.end());
  first[0] = 0;
  first[1] = 1;
  const ImagingFrame once = Decode(bytes, 1);
  EXPECT_NE(std::memcmp(once.rows.Row(0), whole.rows.Row(0), whole.rows.RowBytes()), 0);
  for (int threads = 1; threads <= kMostThreads; threads++) {
    const ImagingFrame frame = Decode(bytes, threads);
    for (int y = 0; y < kHeight; y++) {
      ASSERT_EQ(std::memcmp(frame.rows.Row(y), once.rows.Row(y), once.rows.RowBytes()), 0)
          << threads << " threads, row " << y;
      if (y >= 16) {
        ASSERT_EQ(std::memcmp(frame.rows.Row(y), whole.rows.Row(y), whole.rows.RowBytes()), 0);
      }
    }
  }
}

TEST(TiffLzw, OldFiles_Should_BeReadWithoutAWarning) {
  const TiffFile file = Colors();
  const ImagingFrame whole = Decode(file.Bytes(), 1);
  const ByteList bytes = OldFile(file);
  for (int threads = 1; threads <= kMostThreads; threads++) {
    CodecReport report;
    const ImagingFrame frame = Decode(bytes, threads, &report);
    EXPECT_THAT(report.warnings, IsEmpty());
    for (int y = 0; y < kHeight; y++)
      ASSERT_EQ(std::memcmp(frame.rows.Row(y), whole.rows.Row(y), whole.rows.RowBytes()), 0)
          << threads << " threads, row " << y;
  }
}

TEST(TiffLzw, OneStripOfAnOldFile_Should_BeLost_When_ItLooksUsual) {
  TiffFile file = Colors();
  const ImagingFrame whole = Decode(file.Bytes(), 1);
  file.packedStrips = PackedStrips(OldFile(file));
  for (const size_t strip : {size_t{0}, size_t{9}}) {
    ExpectLoss(WithStart(file, strip, 0x80, 0x00), whole.rows, static_cast<int>(strip));
  }
}

TEST(TiffLzw, Style_Should_FollowTheFirstCode_InEitherBitOrder) {
  const auto style = [](ByteList bytes, bool lowBitsFirst) {
    return detail::LzwStyleOf(bytes, lowBitsFirst);
  };
  EXPECT_EQ(style({0x80, 0x00}, false), LzwStyle::usual);
  EXPECT_EQ(style({0x00, 0x01}, false), LzwStyle::old);
  EXPECT_EQ(style({0x00, 0x80}, false), LzwStyle::usual);
  EXPECT_EQ(style({0x00, 0x80}, true), LzwStyle::old);
  EXPECT_EQ(style({0x00, 0x01}, true), LzwStyle::usual);
  EXPECT_EQ(style({0x00}, false), LzwStyle::usual);
  EXPECT_EQ(style({}, true), LzwStyle::usual);
}

}  // namespace
}  // namespace rasterkit::test
