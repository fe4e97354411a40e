#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/codecs/png/png_files.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using Bytes = std::span<const uint8_t>;
using testing::HasSubstr;

constexpr int kGray = 0, kRgb = 2, kPalette = 3;

void ExpectSurvival(Bytes bytes, const std::string& what) {
  try {
    const Raster raster = DecodePng(bytes);
    EXPECT_GT(raster.Width(), 0) << what;
  } catch (const Error& error) {
    EXPECT_FALSE(error.Reason().empty()) << what;
  } catch (const std::exception& error) {
    ADD_FAILURE() << what << ": " << error.what();
  }
}

TEST(PngDamage, Should_GiveAPictureOrAnError_When_CutAnywhere) {
  for (const bool interlaced : {false, true}) {
    for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
      Raster source = GradientRaster(format, 19, 23);
      source.alphaFormat = afDefined;
      const ByteList file = interlaced ? InterlacedPng(source) : Encoded(source);
      for (size_t size = 0; size < file.size(); size++) {
        ExpectSurvival(Bytes(file).first(size),
                       std::to_string(format) + " cut at " + std::to_string(size));
      }
    }
  }
}

TEST(PngDamage, Should_GiveTheRowsThatAreThereAndWhite_When_Truncated) {
  std::mt19937 random(5);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    Raster source = RandomRaster(format, 200, 300, random);
    source.alphaFormat = afDefined;
    if (IsIndexed(format)) source.palette = GrayPalette(1 << StoredBitsPerPixel(format));
    const ByteList file = Encoded(source);
    CodecReport report;
    const Raster cut = DecodePng(Bytes(file).first(file.size() / 2), &report);
    ASSERT_THAT(report.warnings, testing::Contains(HasSubstr("of 300 rows are complete")));
    int same = 0, white = 0;
    const auto isWhite = [&](int y) {
      return cut.PixelColor(0, y) == clWhite && cut.PixelColor(199, y) == clWhite;
    };
    while (same < 300 &&
           std::equal(cut.Row(same), cut.Row(same) + cut.RowBytes(), source.Row(same)))
      same++;
    while (white < 300 && isWhite(299 - white)) white++;
    EXPECT_GT(same, 130) << format;
    EXPECT_GE(same + white, 300) << format;
  }
}

TEST(PngDamage, Should_LeaveNoHoles_When_AnInterlacedFileIsTruncated) {
  Raster source(pf8bit, 64, 64);
  source.palette = GrayPalette(256);
  std::mt19937 random(6);
  for (int y = 0; y < 64; y++) {
    for (int x = 0; x < 64; x++) source.Row(y)[x] = static_cast<uint8_t>(random() % 200);
  }
  const ByteList file = InterlacedPng(source);
  CodecReport report;
  const Raster cut = DecodePng(Bytes(file).first(file.size() / 2), &report);
  EXPECT_THAT(report.warnings, testing::Not(testing::IsEmpty()));
  for (int y = 0; y < 64; y++) {
    for (int x = 0; x < 64; x++) ASSERT_LT(cut.Row(y)[x], 200) << x << ", " << y;
  }
  EXPECT_EQ(cut.Row(8)[8], source.Row(8)[8]);
}

TEST(PngDamage, Should_GiveTheRowsThatAreThere_When_ThePictureDataEndEarly) {
  const ByteList threeRows = {0, 1, 2, 0, 3, 4, 0, 5, 6};
  const ByteList file = PngSignature() + PngHeader(2, 5, 8, kGray) + PngData(threeRows) + PngEnd();
  CodecReport report;
  const Raster raster = DecodePng(file, &report);
  EXPECT_EQ(raster.Row(2)[1], 6);
  EXPECT_EQ(raster.Row(3)[1], 255);
  EXPECT_THAT(report.warnings, testing::Contains(HasSubstr("3 of 5 rows")));
}

TEST(PngDamage, Should_Survive_When_BytesAreChanged) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const TPixelFormat format : {pf4bit, pf32bit}) {
    const ByteList original = Encoded(GradientRaster(format, 19, 23));
    for (int round = 0; round < 1500; round++) {
      ByteList file = original;
      for (int change = 0; change <= round % 4; change++)
        file[random() % file.size()] = static_cast<uint8_t>(random());
      ExpectSurvival(file, "round " + std::to_string(round));
    }
  }
}

size_t FindText(const ByteList& file, const std::string& text) {
  return static_cast<size_t>(std::search(file.begin(), file.end(), text.begin(), text.end()) -
                             file.begin());
}

TEST(PngDamage, Should_RefuseAWrongChecksum_When_TheChunkIsCritical) {
  for (const std::string name : {"IHDR", "PLTE", "IDAT"}) {
    ByteList file = PngFile(1, 1, 8, kPalette, {0}, PngChunk("PLTE", {1, 2, 3}));
    const size_t at = FindText(file, name);
    const size_t length = file[at - 1];
    file[at + 4 + length] ^= 1;
    EXPECT_THROW(DecodePng(file), FormatError) << name;
  }
}

TEST(PngDamage, Should_LeaveTheChunkOut_When_ItsChecksumIsWrongAndItIsAncillary) {
  ByteList file =
      PngFile(1, 1, 8, kGray, {7}, PngChunk("pHYs", Word32(1000) + Word32(1000) + ByteList{1}));
  EXPECT_TRUE(DecodePng(file).resolution.IsKnown());
  file[FindText(file, "pHYs") + 4 + 9] ^= 1;
  CodecReport report;
  const Raster raster = DecodePng(file, &report);
  EXPECT_EQ(raster.Row(0)[0], 7);
  EXPECT_FALSE(raster.resolution.IsKnown());
  EXPECT_THAT(report.warnings, testing::Contains(HasSubstr("CRC")));
}

TEST(PngDamage, Should_RefuseWithAFormatError_When_TheHeaderIsWrong) {
  const ByteList rows = {0, 0};
  const auto file = [&](uint32_t width, uint32_t height, int bits, int type) {
    return PngSignature() + PngHeader(width, height, bits, type) + PngData(rows) + PngEnd();
  };
  EXPECT_NO_THROW(DecodePng(file(1, 1, 8, kGray)));
  EXPECT_THROW(DecodePng(file(0, 1, 8, kGray)), FormatError);
  EXPECT_THROW(DecodePng(file(1, 0, 8, kGray)), FormatError);
  EXPECT_THROW(DecodePng(file(0x80000000u, 1, 8, kGray)), FormatError);
  EXPECT_THROW(DecodePng(file(1, 1, 3, kGray)), FormatError);
  EXPECT_THROW(DecodePng(file(1, 1, 4, kRgb)), FormatError);
  EXPECT_THROW(DecodePng(file(1, 1, 8, 1)), FormatError);
  EXPECT_THROW(DecodePng(file(1, 1, 8, kPalette)), FormatError);  // no palette
  EXPECT_THROW(DecodePng(PngSignature() + PngData(rows) + PngEnd()), FormatError);
  EXPECT_THROW(DecodePng(PngSignature() + PngHeader(1, 1, 8, kGray) + PngEnd()), FormatError);
  EXPECT_THROW(DecodePng({}), FormatError);
  EXPECT_THROW(DecodePng(PngSignature()), FormatError);
  EXPECT_THROW(DecodePng(ByteList(300, 'x')), FormatError);
}

TEST(PngDamage, Should_RefuseByTheBudget_When_AFewBytesClaimAHugePicture) {
  const ByteList rows(100, 0);
  // With addresses of 32 bits libpng itself refuses sides from 2^29 on.
  const uint32_t longest = sizeof(size_t) < 8 ? 0x1FFFFF00 : 0x7FFFFFFF;
  for (const uint32_t side : {65535u, longest}) {
    const ByteList file =
        PngSignature() + PngHeader(side, side, 8, kRgb) + PngData(rows) + PngEnd();
    try {
      DecodePng(file);
      ADD_FAILURE();
    } catch (const LimitError& error) {
      EXPECT_THAT(error.Reason(), HasSubstr(std::to_string(side) + " x " + std::to_string(side)));
      EXPECT_THAT(error.Reason(), HasSubstr(std::to_string(PictureMemoryLimit())));
    }
  }
  // Within the budget, but no row is there.
  const uint32_t side = sizeof(size_t) < 8 ? 15000 : 30000;
  const ByteList file = PngSignature() + PngHeader(side, side, 8, kRgb) + PngData(rows) + PngEnd();
  EXPECT_THROW(DecodePng(file), FormatError);
}

TEST(PngDamage, Should_NotInflateTexts_When_TheyAreBombs) {
  ByteList packed =
      PngData(ByteList(50'000'000, 0));  // an IDAT chunk: 12 bytes around the packed data
  const ByteList body(packed.begin() + 8, packed.end() - 4);
  const ByteList text = PngChunk("zTXt", ByteList{'a', 0, 0} + body);
  const ByteList international = PngChunk("iTXt", ByteList{'a', 0, 1, 0, 0, 0} + body);
  CodecReport report;
  const Raster raster = DecodePng(PngFile(1, 1, 8, kGray, {7}, text + international), &report);
  EXPECT_EQ(raster.Row(0)[0], 7);
  EXPECT_THAT(report.warnings, testing::IsEmpty());
  // A profile is inflated, within a bound.
  const ByteList profile = PngChunk("iCCP", ByteList{'a', 0, 0} + body);
  EXPECT_EQ(DecodePng(PngFile(1, 1, 8, kGray, {7}, profile)).profile, nullptr);
}

TEST(PngDamage, Should_GiveBlack_When_AnIndexLiesBeyondThePalette) {
  CodecReport report;
  const Raster raster =
      DecodePng(PngFile(1, 1, 8, kPalette, {9}, PngChunk("PLTE", {1, 2, 3})), &report);
  EXPECT_EQ(raster.PixelColor(0, 0), clBlack);
}

TEST(PngDamage, Should_GiveThePicture_When_TheEndChunkIsMissingOrFollowedByOtherBytes) {
  const Raster source = GradientRaster(pf24bit, 19, 23);
  ByteList file = Encoded(source);
  CodecReport report;
  EXPECT_TRUE(SamePixels(source, DecodePng(Bytes(file).first(file.size() - 12), &report)));
  EXPECT_THAT(report.warnings, testing::Not(testing::IsEmpty()));
  file.resize(file.size() + 1000, 'x');
  EXPECT_TRUE(SamePixels(source, DecodePng(file)));
}

}  // namespace
}  // namespace rasterkit::test
