// Files whose tags promise more than their strips hold, one promise at a time.

#include <algorithm>
#include <cmath>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/memory_limit.h"
#include "tests/support/raw_tiff.h"
#include "tests/support/test_pictures.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
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

/// The file with its strips behind the directory, one after another.
ByteList WithStrips(RawTiff file, const std::vector<ByteList>& strips) {
  const auto count = static_cast<uint32_t>(strips.size());
  file.Long(TIFFTAG_STRIPOFFSETS, 0).Long(TIFFTAG_STRIPBYTECOUNTS, 0);
  const auto lists = static_cast<uint32_t>(file.Bytes().size());
  file.Entry(TIFFTAG_STRIPOFFSETS, 4, count, lists);
  file.Entry(TIFFTAG_STRIPBYTECOUNTS, 4, count, lists + 4 * count);
  ByteList bytes = file.Bytes();
  const auto add = [&](size_t value) {
    for (int i = 0; i < 4; i++) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
  };
  size_t at = lists + 8 * count;
  for (const ByteList& strip : strips) {
    add(at);
    at += strip.size();
  }
  for (const ByteList& strip : strips) add(strip.size());
  for (const ByteList& strip : strips) bytes.insert(bytes.end(), strip.begin(), strip.end());
  return bytes;
}

/// The bytes of a 4-pixel row.
ByteList Row(const ImagingFrame& frame, int y) {
  return {frame.rows.Row(y), frame.rows.Row(y) + 4};
}

TEST(TiffGaps, PlainStrips_Should_BeReadOneByOne_When_TheyAreNotAsLongAsTheirRows) {
  RawTiff file = RawTiff::Of(4, 4, 8, COMPRESSION_NONE).Long(TIFFTAG_ROWSPERSTRIP, 2);
  const ByteList first = {1, 2, 3, 4, 5, 6, 7, 8}, second = {11, 12, 13, 14, 15, 16, 17, 18};
  ByteList longer = first;
  longer.push_back(99);
  ImagingFrame frame = Decode(WithStrips(file, {longer, second}));
  EXPECT_EQ(Row(frame, 1), (ByteList{5, 6, 7, 8}));
  EXPECT_EQ(Row(frame, 2), (ByteList{11, 12, 13, 14}));
  EXPECT_EQ(Row(frame, 3), (ByteList{15, 16, 17, 18}));
  const ByteList shorter(first.begin(), first.end() - 1);
  CodecReport report;
  frame = Decode(WithStrips(file, {shorter, second}), &report);
  EXPECT_THAT(report.warnings, Not(IsEmpty()));
  EXPECT_EQ(Row(frame, 0), (ByteList{1, 2, 3, 4}));
  EXPECT_EQ(Row(frame, 1), (ByteList{255, 255, 255, 255}));
  EXPECT_EQ(Row(frame, 2), (ByteList{11, 12, 13, 14}));
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

TEST(TiffGaps, LastFaxRow_Should_StayBlack_When_AnEarlierOneIsDamaged) {
  TiffFile file;
  file.width = 59;
  file.height = 10;
  file.bits = 1;
  file.photometric = PHOTOMETRIC_MINISBLACK;
  file.compression = COMPRESSION_CCITTFAX3;
  file.pixels.resize(file.PixelBytes(), 0x0F);
  std::fill(file.pixels.end() - 8, file.pixels.end(), uint8_t{0});
  file.packedStrips = PackedStrips(file.Bytes());
  // Each row is looked for by its mark, so that one lost row is all that is lost.
  for (int i = 4; i < 12; i++) file.packedStrips[0][i] ^= 0x55;
  CodecReport report;
  const ImagingFrame frame = Decode(file.Bytes(), &report);
  EXPECT_THAT(report.warnings, Not(IsEmpty()));
  EXPECT_THAT(ByteList(frame.rows.Row(9), frame.rows.Row(9) + 8), Each(0));
}

/// A file of `RawTiff` whose tag number is replaced by an unknown one.
ByteList Without(ByteList bytes, int unwanted) {
  for (size_t at = 10; at + 12 <= bytes.size(); at += 12) {
    const int tag = bytes[at] | bytes[at + 1] << 8;
    if (tag == unwanted) bytes[at + 1] = 0xF0;
  }
  return bytes;
}

TEST(TiffGaps, PixelsWithoutATagAboutThem_Should_BeRefused) {
  const ByteList bytes = WithStrip(RawTiff::Of(4, 1, 8, COMPRESSION_NONE), {1, 2, 3, 4});
  const ByteList noColors = Without(bytes, TIFFTAG_PHOTOMETRIC);
  EXPECT_EQ(ErrorOf(noColors), "none");
  EXPECT_EQ(ErrorOf(Without(bytes, TIFFTAG_STRIPBYTECOUNTS)), "none");
  // The library would make both up.
  EXPECT_THAT(ErrorOf(Without(noColors, TIFFTAG_STRIPBYTECOUNTS)),
              HasSubstr("does not describe its pixels"));
}

TEST(TiffGaps, Fax_Should_HaveWhiteAsZero_When_TheFileDoesNotSay) {
  TiffFile file;
  file.width = 59;
  file.height = 3;
  file.bits = 1;
  file.photometric = PHOTOMETRIC_MINISWHITE;
  file.compression = COMPRESSION_CCITTFAX4;
  file.pixels.resize(file.PixelBytes(), 0x0F);
  const ByteList strip = PackedStrips(file.Bytes())[0];
  const RawTiff raw = RawTiff::Of(59, 3, 1, COMPRESSION_CCITTFAX4);
  const ImagingFrame frame = Decode(Without(WithStrip(raw, strip), TIFFTAG_PHOTOMETRIC));
  EXPECT_EQ(frame.rows.Row(0)[0], 0xF0);
}

/// A grid of one pixel whose only strip was left out.
ByteList SparsePixel(uint32_t bits, uint32_t sampleFormat, const std::string& noData) {
  RawTiff file = RawTiff::Of(1, 1, bits, COMPRESSION_NONE);
  file.Entry(TIFFTAG_SAMPLEFORMAT, 3, 1, sampleFormat);
  file.Long(TIFFTAG_STRIPOFFSETS, 0).Long(TIFFTAG_STRIPBYTECOUNTS, 0);
  uint32_t text = 0;
  std::memcpy(&text, noData.data(), noData.size());
  if (!noData.empty()) file.Entry(42113, 2, static_cast<uint32_t>(noData.size() + 1), text);
  const ImagingFrame frame = Decode(file.Bytes());
  return {frame.rows.Row(0), frame.rows.Row(0) + bits / 8};
}

float SparseFloat(const std::string& noData) {
  float value = 0;
  std::memcpy(&value, SparsePixel(32, SAMPLEFORMAT_IEEEFP, noData).data(), sizeof value);
  return value;
}

TEST(TiffGaps, SparseBlocks_Should_HoldTheValueForNoData_OfEveryType) {
  EXPECT_THAT(SparsePixel(8, SAMPLEFORMAT_UINT, "77"), ElementsAre(77));
  EXPECT_THAT(SparsePixel(8, SAMPLEFORMAT_UINT, "300"), ElementsAre(0));
  EXPECT_THAT(SparsePixel(16, SAMPLEFORMAT_UINT, "300"), ElementsAre(44, 1));
  EXPECT_THAT(SparsePixel(16, SAMPLEFORMAT_UINT, "-1"), ElementsAre(0, 0));
  EXPECT_THAT(SparsePixel(16, SAMPLEFORMAT_INT, "-1"), ElementsAre(255, 255));
  EXPECT_EQ(SparseFloat("-.5"), -0.5f);
  EXPECT_EQ(SparseFloat(""), 0.0f);
  for (const char* text : {"nan", "NaN", "NAN"}) EXPECT_TRUE(std::isnan(SparseFloat(text))) << text;
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

TEST(TiffGaps, Alpha_Should_BeAbsent_When_ItsSampleIsAColor) {
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

TEST(TiffGaps, PaletteIndexes_Should_BeRefused_When_TheyAreFloats) {
  TiffFile file;
  file.bits = 16;
  file.sampleFormat = SAMPLEFORMAT_IEEEFP;
  file.photometric = PHOTOMETRIC_PALETTE;
  file.colorMap.resize(3 * 65536);
  file.pixels.resize(2);
  EXPECT_THAT(ErrorOf(file.Bytes()), HasSubstr("palette indexes"));
}

/// One pixel of L* a* b*.
ImagingFrame LabPixel(uint16_t photometric, uint16_t sampleFormat, const ByteList& pixel) {
  TiffFile file;
  file.samples = 3;
  file.photometric = photometric;
  file.sampleFormat = sampleFormat;
  file.pixels = pixel;
  return Decode(file.Bytes());
}

TEST(TiffGaps, Lab_Should_BeTheSame_InEveryWayToWriteIt) {
  const ByteList expected =
      Row(LabPixel(PHOTOMETRIC_CIELAB, SAMPLEFORMAT_UINT, {200, 10, 256 - 20}), 0);
  EXPECT_EQ(Row(LabPixel(PHOTOMETRIC_CIELAB, SAMPLEFORMAT_INT, {200, 10, 256 - 20}), 0), expected);
  EXPECT_EQ(Row(LabPixel(PHOTOMETRIC_ICCLAB, SAMPLEFORMAT_UINT, {200, 138, 108}), 0), expected);
  EXPECT_NE(Row(LabPixel(PHOTOMETRIC_ICCLAB, SAMPLEFORMAT_UINT, {200, 139, 109}), 0), expected);
}

TEST(TiffGaps, Lab_Should_BeRefused_When_ItsSamplesAreNeitherBytesNorWords) {
  RawTiff file = RawTiff::Of(1, 1, 4, COMPRESSION_NONE);
  file.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_CIELAB);
  file.Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 3);
  EXPECT_THAT(ErrorOf(WithStrip(file, {1, 2})), HasSubstr("with 4 bits are not supported"));
}

TEST(TiffGaps, PaletteIndexes_Should_CountFromZero_When_CalledSigned) {
  TiffFile file;
  file.bits = 2;
  file.sampleFormat = SAMPLEFORMAT_INT;
  file.photometric = PHOTOMETRIC_PALETTE;
  file.colorMap = {0, 0, 0, 65535, 0, 0, 0, 65535, 0, 0, 0, 0};
  file.pixels = {0xC0};
  EXPECT_EQ(Row(Decode(file.Bytes()), 0), (ByteList{0, 255, 255, 255}));
}

TEST(TiffGaps, NumbersOfAGrid_Should_StayAsTheyAre_When_WhiteIsZero) {
  for (const uint16_t format : {SAMPLEFORMAT_INT, SAMPLEFORMAT_IEEEFP}) {
    TiffFile file;
    file.width = 2;
    file.bits = 16;
    file.sampleFormat = format;
    file.photometric = PHOTOMETRIC_MINISWHITE;
    file.pixels = {1, 2, 3, 4};
    EXPECT_EQ(Row(Decode(file.Bytes()), 0), file.pixels);
  }
}

TEST(TiffGaps, Tiles_Should_BeRefused_When_TheyBeginWithinAByte) {
  RawTiff file = RawTiff::Of(24, 1, 1, COMPRESSION_NONE);
  file.Long(TIFFTAG_TILEWIDTH, 12).Long(TIFFTAG_TILELENGTH, 16);
  file.Entry(TIFFTAG_TILEOFFSETS, 4, 2, 8).Entry(TIFFTAG_TILEBYTECOUNTS, 4, 2, 8);
  EXPECT_THAT(ErrorOf(file.Bytes(64)), HasSubstr("not a multiple of 16"));
}

TEST(TiffGaps, Mask_Should_ShowItsOnesWhite) {
  RawTiff file = RawTiff::Of(8, 1, 1, COMPRESSION_NONE);
  file.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_MASK);
  const ImagingFrame frame = Decode(WithStrip(file, {0xA5}));
  EXPECT_EQ(frame.format, GUID_WICPixelFormatBlackWhite);
  EXPECT_EQ(frame.rows.Row(0)[0], 0xA5);
}

TEST(TiffGaps, ComplexNumbers_Should_BeRefused_When_InPlanes) {
  RawTiff file = RawTiff::Of(1, 1, 32, COMPRESSION_NONE);
  file.Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 2).Entry(TIFFTAG_PLANARCONFIG, 3, 1, 2);
  file.Entry(TIFFTAG_SAMPLEFORMAT, 3, 1, SAMPLEFORMAT_COMPLEXINT);
  EXPECT_THAT(ErrorOf(WithStrip(file, ByteList(8))), HasSubstr("complex numbers in planes"));
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
