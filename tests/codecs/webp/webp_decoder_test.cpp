#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <webp/decode.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/list_metadata.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using ByteList = std::vector<uint8_t>;

ByteList operator+(ByteList a, const ByteList& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

struct Size {
  int width, height;
};
constexpr Size kOddSizes[] = {{1, 1}, {1, 9}, {9, 1}, {19, 7}, {67, 70}, {301, 203}};

TEST(WebpDecoder, Should_GiveTheVeryPixels_When_Lossless) {
  for (const Size size : kOddSizes) {
    for (const TPixelFormat format : {pf24bit, pf32bit}) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", " << format);
      Raster picture = GradientRaster(format, size.width, size.height);
      // A picture without a transparent pixel is written without alpha.
      if (format == pf32bit) picture.Row(0)[3] = 17;
      CodecReport report;
      const Raster raster = DecodeWebp(LosslessWebp(picture), &report);
      EXPECT_TRUE(SamePixels(picture, raster));
      EXPECT_TRUE(PaddingIsZero(raster));
      EXPECT_EQ(raster.alphaFormat, format == pf32bit ? afDefined : afIgnored);
      EXPECT_EQ(raster.profile, nullptr);
      EXPECT_THAT(report.warnings, IsEmpty());
    }
  }
}

/// The library's simplest way, all at once.
Raster DecodedAtOnce(const ByteList& file, TPixelFormat format) {
  int width = 0, height = 0;
  WebPGetInfo(file.data(), file.size(), &width, &height);
  Raster raster(format, width, height);
  const auto stride = static_cast<int>(raster.Stride());
  const size_t size = raster.Stride() * static_cast<size_t>(height);
  const auto decode = format == pf32bit ? WebPDecodeBGRAInto : WebPDecodeBGRInto;
  EXPECT_NE(decode(file.data(), file.size(), raster.Row(0), size, stride), nullptr);
  raster.ClearPadding();
  return raster;
}

TEST(WebpDecoder, Should_GiveTheSameAsAllAtOnce_When_Lossy) {
  for (const Size size : kOddSizes) {
    for (const TPixelFormat format : {pf24bit, pf32bit}) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", " << format);
      Raster picture = GradientRaster(format, size.width, size.height);
      if (format == pf32bit) picture.Row(0)[3] = 17;
      const ByteList file = LossyWebp(picture);
      CodecReport report;
      const Raster raster = DecodeWebp(file, &report);
      EXPECT_EQ(raster.Format(), format);
      EXPECT_TRUE(SamePixels(DecodedAtOnce(file, format), raster));
      EXPECT_TRUE(PaddingIsZero(raster));
      EXPECT_THAT(report.warnings, IsEmpty());
    }
  }
}

TEST(WebpDecoder, Should_BringTheProfileAlong_When_ItDescribesColors) {
  const Raster picture = GradientRaster(pf24bit, 19, 7);
  const ByteList chunks = ChunksOfWebp(LosslessWebp(picture));
  const auto file = [&](const ByteList& profile) {
    return WebpFile(WebpHeaderChunk(webpProfile, 19, 7) + WebpChunk("ICCP", profile) + chunks);
  };
  CodecReport report;
  const Raster raster = DecodeWebp(file(*RgbProfile()), &report);
  ASSERT_NE(raster.profile, nullptr);
  EXPECT_EQ(*raster.profile, *RgbProfile());
  EXPECT_THAT(report.warnings, IsEmpty());
  for (const ByteList& profile : {*GrayProfile(), ByteList(7, 'x')}) {
    report = {};
    EXPECT_EQ(DecodeWebp(file(profile), &report).profile, nullptr);
    EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("profile")));
  }
}

TEST(WebpDecoder, Profile_Should_BeFound_When_AChunkOfOddLengthComesFirst) {
  const ByteList picture = ChunksOfWebp(LosslessWebp(GradientRaster(pf24bit, 19, 7)));
  const ByteList odd = WebpChunk("odd ", {1, 2, 3}), profile = WebpChunk("ICCP", *RgbProfile());
  const ByteList file = WebpFile(WebpHeaderChunk(webpProfile, 19, 7) + odd + profile + picture);
  EXPECT_NE(DecodeWebp(file).profile, nullptr);
}

TEST(WebpDecoder, Metadata_Should_BeFound) {
  const ByteList chunks = ChunksOfWebp(LosslessWebp(GradientRaster(pf24bit, 3, 2)));
  const ByteList exif = {'I', 'I', '*', 0, 8, 0, 0, 0, 0, 0};
  for (const ByteList& prefix : {ByteList{}, ByteList{'E', 'x', 'i', 'f', 0, 0}}) {
    const ByteList file = WebpFile(WebpHeaderChunk(webpExif | webpXmp, 3, 2) + chunks +
                                   WebpChunk("EXIF", prefix + exif) + WebpChunk("XMP ", {'<'}));
    const PictureMetadata metadata = ReadMetadata(file);
    EXPECT_THAT(metadata.kinds, ElementsAre(MetadataKind::exif, MetadataKind::xmp));
    EXPECT_EQ(ByteList(metadata.exif.begin(), metadata.exif.end()), exif);
    EXPECT_EQ(DecodeWebp(file).Width(), 3);
  }
  const ByteList plain = LosslessWebp(GradientRaster(pf24bit, 3, 2));
  EXPECT_THAT(ReadMetadata(plain).kinds, IsEmpty());
  for (size_t size = 0; size < plain.size(); size++)
    EXPECT_TRUE(ReadMetadata(std::span(plain).first(size)).exif.empty());
}

ByteList Animation(uint32_t width, uint32_t height, const ByteList& frames) {
  return WebpFile(WebpHeaderChunk(webpAnimation | webpAlpha, width, height) +
                  WebpChunk("ANIM", {255, 255, 255, 255, 0, 0}) + frames);
}

TEST(WebpDecoder, Should_TakeTheFirstPicture_When_Animated) {
  const Raster first = GradientRaster(pf24bit, 20, 8), second = GrayRaster(20, 8);
  const ByteList firstChunks = ChunksOfWebp(LosslessWebp(first));
  const ByteList secondChunks = ChunksOfWebp(LossyWebp(first, 10));
  CodecReport report;
  const Raster raster = DecodeWebp(Animation(20, 8,
                                             WebpFrameChunk(0, 0, 20, 8, firstChunks) +
                                                 WebpFrameChunk(0, 0, 20, 8, secondChunks)),
                                   &report);
  EXPECT_TRUE(SamePixels(first, raster));
  EXPECT_THAT(report.warnings, IsEmpty());
}

TEST(WebpDecoder, Should_BeTransparentAround_When_AnAnimationsPictureIsSmaller) {
  const Raster picture = GradientRaster(pf24bit, 9, 5);
  const Raster raster = DecodeWebp(
      Animation(21, 13, WebpFrameChunk(6, 4, 9, 5, ChunksOfWebp(LosslessWebp(picture)))));
  ASSERT_EQ(raster.Format(), pf32bit);
  EXPECT_EQ(raster.alphaFormat, afDefined);
  EXPECT_EQ(raster.Width(), 21);
  EXPECT_EQ(raster.Height(), 13);
  for (int y = 0; y < 13; y++) {
    for (int x = 0; x < 21; x++) {
      const uint8_t* pixel = raster.Row(y) + 4 * x;
      const bool isInside = x >= 6 && x < 15 && y >= 4 && y < 9;
      EXPECT_EQ(pixel[3], isInside ? 255 : 0) << x << ", " << y;
      if (isInside) {
        EXPECT_EQ(std::memcmp(pixel, picture.Row(y - 4) + 3 * (x - 6), 3), 0) << x << ", " << y;
      }
    }
  }
}

TEST(WebpDecoder, Frame_Should_BeBgrOrBgra) {
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    Raster picture = GradientRaster(format, 19, 7);
    if (format == pf32bit) picture.Row(0)[3] = 17;
    TMemoryStream stream(LosslessWebp(picture));
    const ImagingFrame frame = DecodeFrame(stream);
    EXPECT_EQ(frame.format,
              format == pf24bit ? GUID_WICPixelFormat24bppBGR : GUID_WICPixelFormat32bppBGRA);
    EXPECT_FALSE(frame.isConverted);
    EXPECT_TRUE(SamePixels(picture, frame.rows));
  }
}

}  // namespace
}  // namespace rasterkit::test
