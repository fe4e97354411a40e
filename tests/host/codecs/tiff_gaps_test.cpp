// Files whose tags promise more than their strips hold, one promise at a time.

#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/host/codecs/jpeg_decoder.h>
#include <rasterkit/host/codecs/jpeg_encoder.h>
#include <rasterkit/host/codecs/tiff_decoder.h>
#include <rasterkit/host/runtime/errors.h>

#include "tests/support/memory_limit.h"
#include "tests/support/raw_tiff.h"
#include "tests/support/test_pictures.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using ByteList = std::vector<uint8_t>;

ImagingFrame Decode(const ByteList& bytes, CodecReport* report = nullptr) {
  TSpanStream stream(bytes);
  return DecodeTiff(stream, {}, report);
}

std::string ErrorOf(const ByteList& bytes) {
  try {
    Decode(bytes);
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

/// The file with its one strip behind the directory; `claimed` bytes of it, if that is not 0.
ByteList WithStrip(RawTiff file, const ByteList& strip, uint32_t claimed = 0) {
  file.Long(TIFFTAG_STRIPOFFSETS, 0);
  const auto count = static_cast<uint32_t>(strip.size());
  file.Long(TIFFTAG_STRIPBYTECOUNTS, claimed > 0 ? claimed : count);
  file.Long(TIFFTAG_STRIPOFFSETS, static_cast<uint32_t>(file.Bytes().size()));
  ByteList bytes = file.Bytes();
  bytes.insert(bytes.end(), strip.begin(), strip.end());
  return bytes;
}

TEST(TiffGaps, FaxRows_Should_BeWhite_When_TheStripEndsBeforeThem) {
  for (const uint16_t photometric : {PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_MINISBLACK}) {
    TiffFile file;
    file.width = 59;
    file.height = 10;
    file.bits = 1;
    file.photometric = photometric;
    file.compression = COMPRESSION_CCITTFAX4;
    file.pixels.resize(file.PixelBytes(), 0x0F);
    const ImagingFrame half = Decode(file.Bytes());
    file.packedStrips = PackedStrips(file.Bytes());
    file.height = 20;
    const ImagingFrame frame = Decode(file.Bytes());
    for (int y = 0; y < 10; y++)
      EXPECT_EQ(std::memcmp(frame.rows.Row(y), half.rows.Row(y), 8), 0) << y;
    for (int y = 10; y < 20; y++) {
      const uint8_t* row = frame.rows.Row(y);
      EXPECT_TRUE(row[7] == 0xE0 && std::all_of(row, row + 7, [](uint8_t b) { return b == 255; }))
          << y << ", photometric " << photometric;
    }
  }
}

TEST(TiffGaps, FaxStrip_Should_BeRefused_When_NothingOfItCanBeRead) {
  for (const uint32_t photometric : {PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_MINISBLACK}) {
    RawTiff file = RawTiff::Of(59, 20, 1, COMPRESSION_CCITTFAX4);
    file.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, photometric);
    EXPECT_THAT(ErrorOf(WithStrip(file, ByteList(40, 0))), HasSubstr("TIFF: ")) << photometric;
  }
}

TEST(TiffGaps, PackedBytes_Should_CountAgainstTheMemoryLimit) {
  // Four pixels, and behind them what no pixel needs.
  ByteList strip = {0xFD, 5};
  strip.resize(20000);
  const ByteList bytes = WithStrip(RawTiff::Of(4, 1, 8, COMPRESSION_PACKBITS), strip);
  EXPECT_EQ(ErrorOf(bytes), "none");
  const MemoryLimit limit(10000);
  EXPECT_THROW(Decode(bytes), LimitError);
}

TEST(TiffGaps, EarlyEnd_Should_BeTold_When_AllRowsAreThereAnyway) {
  const RawTiff file = RawTiff::Of(4, 1, 8, COMPRESSION_PACKBITS);
  CodecReport report;
  const ImagingFrame frame = Decode(WithStrip(file, {0xFD, 5}, 100), &report);
  EXPECT_EQ(ByteList(frame.rows.Row(0), frame.rows.Row(0) + 4), (ByteList{5, 5, 5, 5}));
  EXPECT_THAT(report.warnings, ElementsAre("TIFF: the data end early"));
}

TEST(TiffGaps, Alpha_Should_BeAbsent_When_ItsSampleIsAColour) {
  RawTiff file = RawTiff::Of(1, 1, 8, COMPRESSION_NONE);
  file.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_RGB).Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 3);
  file.Entry(TIFFTAG_EXTRASAMPLES, 3, 1, EXTRASAMPLE_UNASSALPHA);
  const ImagingFrame frame = Decode(WithStrip(file, {1, 2, 3}));
  EXPECT_EQ(frame.format, GUID_WICPixelFormat24bppBGR);
  EXPECT_EQ(ByteList(frame.rows.Row(0), frame.rows.Row(0) + 3), (ByteList{3, 2, 1}));
}

TEST(TiffGaps, Inks_Should_BeRefused_When_TheyAreOthersThanThoseOfPrint) {
  RawTiff file = RawTiff::Of(1, 1, 8, COMPRESSION_NONE);
  file.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_SEPARATED);
  file.Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 4).Entry(TIFFTAG_INKSET, 3, 1, INKSET_CMYK);
  EXPECT_EQ(ErrorOf(WithStrip(file, {1, 2, 3, 4})), "none");
  file.Entry(TIFFTAG_INKSET, 3, 1, INKSET_MULTIINK);
  EXPECT_THAT(ErrorOf(WithStrip(file, {1, 2, 3, 4})), HasSubstr("inks other than"));
}

TEST(TiffGaps, OldJpegOfGray_Should_LookAsTheJpegFileInIt) {
  const ByteList jpeg = EncodeJpeg(GrayRaster(48, 32), 95);
  RawTiff file = RawTiff::Of(48, 32, 8, COMPRESSION_OJPEG);
  file.Long(TIFFTAG_JPEGIFOFFSET, 0);
  file.Long(TIFFTAG_JPEGIFBYTECOUNT, static_cast<uint32_t>(jpeg.size()));
  const auto at = static_cast<uint32_t>(WithStrip(file, jpeg).size() - jpeg.size());
  const ImagingFrame frame = Decode(WithStrip(file.Long(TIFFTAG_JPEGIFOFFSET, at), jpeg));
  ASSERT_EQ(frame.format, GUID_WICPixelFormat32bppBGRA);
  EXPECT_TRUE(frame.isConverted);
  const Raster expected = DecodeJpeg(jpeg);
  for (int y = 0; y < 32; y++) {
    for (int x = 0; x < 48; x++) {
      for (int c = 0; c < 3; c++)
        ASSERT_NEAR(frame.rows.Row(y)[4 * x + c], expected.Row(y)[x], 1) << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
