#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jpeg/jpeg_files.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

void ExpectRows(const Raster& raster, const std::vector<uint8_t>& rows) {
  const size_t rowBytes = raster.RowBytes();
  ASSERT_EQ(rows.size(), rowBytes * static_cast<size_t>(raster.Height()));
  for (int y = 0; y < raster.Height(); y++) {
    const auto* expected = rows.data() + static_cast<size_t>(y) * rowBytes;
    ASSERT_TRUE(std::equal(expected, expected + rowBytes, raster.Row(y))) << "row " << y;
  }
  EXPECT_TRUE(PaddingIsZero(raster));
}

struct Size {
  int width, height;
};
constexpr Size kSizes[] = {{1, 1}, {2, 1}, {7, 3}, {8, 8}, {15, 17}, {16, 33}, {31, 70}, {67, 41}};

TEST(JpegPicture, Should_EqualTheBareCodec_When_Color) {
  for (const Size size : kSizes) {
    for (const bool progressive : {false, true}) {
      for (const bool arithmetic : {false, true}) {
        JpegRecipe recipe{.width = size.width, .height = size.height};
        recipe.progressive = progressive;
        recipe.arithmetic = arithmetic;
        const auto bytes = MakeJpeg(recipe);
        CodecReport report;
        const Raster raster = DecodeJpeg(bytes, &report);
        ASSERT_EQ(raster.Format(), pf24bit);
        ASSERT_EQ(raster.Width(), size.width);
        ASSERT_EQ(raster.Height(), size.height);
        EXPECT_THAT(report.warnings, testing::IsEmpty());
        ExpectRows(raster, BareDecode(bytes, JCS_EXT_BGR));
      }
    }
  }
}

TEST(JpegPicture, Should_BeEightBitWithARampOf256_When_Gray) {
  for (const Size size : kSizes) {
    JpegRecipe recipe{
        .width = size.width, .height = size.height, .pixels = JCS_GRAYSCALE, .components = 1};
    const auto bytes = MakeJpeg(recipe);
    const Raster raster = DecodeJpeg(bytes);
    ASSERT_EQ(raster.Format(), pf8bit);
    EXPECT_TRUE(IsGrayRamp(raster.palette));
    ExpectRows(raster, BareDecode(bytes, JCS_GRAYSCALE));
  }
}

TEST(JpegPicture, Should_TakeRgbAsItIs_When_AnAdobeMarkerOrComponentNamesSaySo) {
  for (const bool adobe : {true, false}) {
    JpegRecipe recipe{.width = 19, .height = 11, .file = JCS_RGB};
    recipe.adobeMarker = adobe;
    recipe.quality = 100;
    const Raster raster = DecodeJpeg(MakeJpeg(recipe));
    const uint8_t* pixel = raster.Row(4) + 3 * 6;
    EXPECT_NEAR(pixel[2], 6 * 5 + 4, 3);
    EXPECT_NEAR(pixel[1], 4 * 4 + 40, 3);
    EXPECT_NEAR(pixel[0], 255 - 6 * 3 - 4, 3);
  }
}

/// B G R by the usual formula from the bare codec's C M Y K.
std::vector<uint8_t> FromInks(const std::vector<uint8_t>& inks, bool inverted) {
  std::vector<uint8_t> rows;
  for (size_t i = 0; i < inks.size(); i += 4) {
    const auto light = [&](size_t c) { return inverted ? inks[i + c] : 255 - inks[i + c]; };
    for (const size_t c : {2, 1, 0}) {
      rows.push_back(static_cast<uint8_t>(std::lround(light(c) * light(3) / 255.0)));
    }
  }
  return rows;
}

TEST(JpegPicture, Should_ConvertInks_When_CmykOrYcck) {
  for (const Size size : kSizes) {
    for (const J_COLOR_SPACE file : {JCS_CMYK, JCS_YCCK}) {
      JpegRecipe recipe{
          .width = size.width, .height = size.height, .pixels = JCS_CMYK, .file = file};
      recipe.components = 4;
      const auto bytes = MakeJpeg(recipe);
      const Raster raster = DecodeJpeg(bytes);
      ASSERT_EQ(raster.Format(), pf24bit);
      ExpectRows(raster, FromInks(BareDecode(bytes, JCS_CMYK), true));
    }
  }
}

TEST(JpegPicture, Should_TakeZeroAsNoInk_When_CmykHasNoAdobeMarker) {
  JpegRecipe recipe{.width = 21, .height = 13, .pixels = JCS_CMYK, .file = JCS_CMYK};
  recipe.components = 4;
  recipe.adobeMarker = false;
  const auto bytes = MakeJpeg(recipe);
  ExpectRows(DecodeJpeg(bytes), FromInks(BareDecode(bytes, JCS_CMYK), false));
}

TEST(JpegPicture, Should_KnowTheResolution_When_TheFileStatesAUnit) {
  JpegRecipe recipe;
  recipe.densityX = 300;
  recipe.densityY = 150;
  EXPECT_FALSE(DecodeJpeg(MakeJpeg(recipe)).resolution.IsKnown());  // an aspect ratio only
  recipe.densityUnit = 1;
  EXPECT_EQ(DecodeJpeg(MakeJpeg(recipe)).resolution, (Resolution{300, 150}));
  recipe.densityUnit = 2;
  EXPECT_EQ(DecodeJpeg(MakeJpeg(recipe)).resolution, (Resolution{300 * 2.54, 150 * 2.54}));
}

TEST(JpegFrame, Should_SayWhatTheHeaderSays_When_Read) {
  JpegRecipe recipe{.width = 123, .height = 45};
  recipe.progressive = true;
  JpegFrame frame = ReadJpegFrame(MakeJpeg(recipe));
  EXPECT_EQ(frame.width, 123);
  EXPECT_EQ(frame.height, 45);
  EXPECT_EQ(frame.components, 3);
  EXPECT_EQ(frame.bits, 8);
  EXPECT_TRUE(frame.progressive);
  EXPECT_FALSE(frame.arithmetic);
  recipe.progressive = false;
  recipe.arithmetic = true;
  frame = ReadJpegFrame(MakeJpeg(recipe));
  EXPECT_FALSE(frame.progressive);
  EXPECT_TRUE(frame.arithmetic);
}

TEST(JpegEncoder, Should_GiveTheSameRowsBack_When_Gray) {
  for (const Size size : kSizes) {
    const Raster source = GrayRaster(size.width, size.height);
    const Raster decoded = DecodeJpeg(EncodeJpeg(source, 100));
    ASSERT_EQ(decoded.Format(), pf8bit);
    for (int y = 0; y < size.height; y++) {
      for (int x = 0; x < size.width; x++) {
        ASSERT_NEAR(decoded.Row(y)[x], source.Row(y)[x], 4)
            << x << ", " << y << " of " << size.width;
      }
    }
  }
}

TEST(JpegEncoder, Should_KeepColorsInTheirPlaces_When_TrueColor) {
  Raster source(pf24bit, 37, 29);
  for (int y = 0; y < source.Height(); y++) {
    for (int x = 0; x < source.Width(); x++) {
      uint8_t* pixel = source.Row(y) + 3 * x;
      pixel[0] = static_cast<uint8_t>(20 + 2 * x);
      pixel[1] = static_cast<uint8_t>(90 + 3 * y);
      pixel[2] = static_cast<uint8_t>(240 - 2 * x - y);
    }
  }
  const Raster decoded = DecodeJpeg(EncodeJpeg(source, 100));
  ASSERT_EQ(decoded.Format(), pf24bit);
  for (int y = 0; y < source.Height(); y++) {
    for (int i = 0; i < 3 * source.Width(); i++)
      ASSERT_NEAR(decoded.Row(y)[i], source.Row(y)[i], 8);
  }
}

TEST(JpegEncoder, Should_ClampTheQuality_When_OutOfRange) {
  const Raster source = GradientRaster(pf24bit, 40, 30);
  EXPECT_EQ(EncodeJpeg(source, 0), EncodeJpeg(source, 1));
  EXPECT_EQ(EncodeJpeg(source, -7), EncodeJpeg(source, 1));
  EXPECT_EQ(EncodeJpeg(source, 255), EncodeJpeg(source, 100));
  EXPECT_LT(EncodeJpeg(source, 10).size(), EncodeJpeg(source, 95).size());
}

TEST(JpegEncoder, Should_KeepTheResolution_When_Written) {
  Raster source = GradientRaster(pf24bit, 9, 5);
  EXPECT_FALSE(DecodeJpeg(EncodeJpeg(source, 90)).resolution.IsKnown());
  for (const Resolution resolution :
       {Resolution{300, 200}, Resolution{118 * 2.54, 59 * 2.54}, Resolution{1, 65535}}) {
    source.resolution = resolution;
    EXPECT_EQ(DecodeJpeg(EncodeJpeg(source, 90)).resolution, resolution);
  }
  source.resolution = {299.9994, 72.009};
  EXPECT_EQ(DecodeJpeg(EncodeJpeg(source, 90)).resolution, (Resolution{300, 72}));
  source.resolution = {1e9, 0.2};
  EXPECT_EQ(DecodeJpeg(EncodeJpeg(source, 90)).resolution, (Resolution{65535, 1}));
}

TEST(JpegEncoder, Should_KeepTheProfile_When_ItFitsThePixels) {
  Raster color = GradientRaster(pf24bit, 9, 5);
  color.profile = RgbProfile();
  EXPECT_EQ(*DecodeJpeg(EncodeJpeg(color, 90)).profile, *color.profile);
  Raster gray = GrayRaster(9, 5);
  gray.profile = GrayProfile();
  EXPECT_EQ(*DecodeJpeg(EncodeJpeg(gray, 90)).profile, *gray.profile);
  gray.profile = RgbProfile();
  EXPECT_EQ(DecodeJpeg(EncodeJpeg(gray, 90)).profile, nullptr);
}

TEST(JpegEncoder, Should_SpreadTheProfileOverSegments_When_Large) {
  std::vector<uint8_t> large = *RgbProfile();
  for (size_t i = 0; large.size() < 200'000; i++)
    large.push_back(static_cast<uint8_t>(i * 7 + i / 256));
  Raster source = GradientRaster(pf24bit, 9, 5);
  source.profile = std::make_shared<const std::vector<uint8_t>>(large);
  auto bytes = EncodeJpeg(source, 90);
  EXPECT_EQ(*DecodeJpeg(bytes).profile, large);

  // The second of its segments claims to be another first one: nothing can be put together.
  const size_t first = FindMarker(bytes, 0xE2);
  const size_t second = first + static_cast<size_t>(bytes[first] << 8 | bytes[first + 1]) + 2;
  bytes[second + 14] = 1;
  CodecReport report;
  const Raster decoded = DecodeJpeg(bytes, &report);
  EXPECT_EQ(decoded.profile, nullptr);
  EXPECT_THAT(report.warnings, testing::ElementsAre(testing::HasSubstr("profile")));
}

TEST(JpegEncoder, Should_Refuse_When_TheFormatIsNoJpegs) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf32bit}) {
    EXPECT_THROW(EncodeJpeg(GradientRaster(format, 8, 8), 90), FormatError) << format;
  }
  EXPECT_THROW(EncodeJpeg(Raster(pf24bit, 0, 8), 90), FormatError);
  EXPECT_THROW(EncodeJpeg(Raster(pf24bit, 8, 0), 90), FormatError);
  EXPECT_THROW(EncodeJpeg(Raster(pf24bit, 65501, 1), 90), LimitError);
  EXPECT_THROW(EncodeJpeg(Raster(pf24bit, 1, 65501), 90), LimitError);
  const Raster widest = DecodeJpeg(EncodeJpeg(GradientRaster(pf24bit, 65500, 1), 90));
  EXPECT_EQ(widest.Width(), 65500);
}

}  // namespace
}  // namespace rasterkit::test
