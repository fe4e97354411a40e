// Every field of Limits, over every format that is decoded.

#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/ico/ico_decoder.h>
#include <rasterkit/codecs/ico/ico_encoder.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_share.h>

#include "tests/codecs/jpeg/jpeg_files.h"
#include "tests/support/bmp_file.h"
#include "tests/support/gif_file.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr int kWidth = 40, kHeight = 30;

Raster Picture(TPixelFormat format) {
  Raster raster(format, kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (size_t i = 0; i < raster.RowBytes(); ++i)
      raster.Row(y)[i] = static_cast<uint8_t>(y * 7 + i);
  }
  return raster;
}

std::vector<uint8_t> Encoded(PictureType type, TPixelFormat format = pf24bit, int threads = 1) {
  TMemoryStream stream;
  EncodeOptions options;
  options.tiff.threads = threads;
  FindCodec(type)->encode(Picture(format), stream, options);
  return {stream.Bytes().begin(), stream.Bytes().end()};
}

std::vector<uint8_t> RleBmp() {
  BmpFile file;
  file.width = kWidth;
  file.height = kHeight;
  file.bits = 8;
  file.compression = 1;
  file.palette.assign(256, 0x404040);
  for (int y = 0; y < kHeight; ++y) file.pixels.insert(file.pixels.end(), {kWidth, 7, 0, 0});
  return file.Bytes();
}

struct Format {
  std::string name;
  /// What the messages begin with.
  std::string what;
  std::vector<uint8_t> file;
  /// Bytes of the picture in memory while it is decoded.
  uint64_t need = 0;

  ImagingFrame Decode(const FrameOptions& options = {}) const {
    TSpanStream stream(file);
    return DecodeFrame(stream, options);
  }
};

/// Names of tests must not depend on addresses.
void PrintTo(const Format& format, std::ostream* out) {
  *out << format.name;
}

std::vector<Format> Formats() {
  constexpr uint64_t k24 = kWidth * 3 * kHeight, k8 = kWidth * kHeight;
  const std::vector<uint8_t> progressive =
      MakeJpeg({.width = kWidth, .height = kHeight, .progressive = true});
  // Blocks of luma, and of both colors with a quarter of the samples, in whole MCUs.
  constexpr uint64_t kCoefficients = (6 * 4 + 2 * 3 * 2) * 64 * 2;
  return {{"bmp", "BMP", Encoded(PictureType::bmp), k24},
          {"rle", "BMP", RleBmp(), k8},
          {"gif", "GIF", PlainGif(kWidth, kHeight, 2).Bytes(), k8},
          {"jpeg", "JPEG", Encoded(PictureType::jpeg), k24},
          {"progressive", "JPEG", progressive, k24 + kCoefficients},
          {"png", "PNG", Encoded(PictureType::png), k24},
          {"tiff", "TIFF", Encoded(PictureType::tiff), 0},
          {"webp", "WebP", LossyWebp(Picture(pf24bit)), k24},
          {"lossless", "WebP", LosslessWebp(Picture(pf24bit)), k24 + 4 * k8}};
}

class LimitsOfFormats : public testing::TestWithParam<Format> {};

std::string RefusalOf(const Format& format, LimitKind kind) {
  try {
    format.Decode();
    return "none";
  } catch (const LimitError& error) {
    EXPECT_EQ(error.Kind(), kind);
    return error.Reason();
  }
}

TEST_P(LimitsOfFormats, Pixels_AreCheckedExactly) {
  {
    const LimitsScope scope({.pixels = kWidth * kHeight});
    EXPECT_EQ(RefusalOf(GetParam(), LimitKind::pixels), "none");
  }
  const LimitsScope scope({.pixels = kWidth * kHeight - 1});
  const std::string reason = RefusalOf(GetParam(), LimitKind::pixels);
  EXPECT_THAT(reason, StartsWith(GetParam().what)) << "refused by the decoder";
  EXPECT_THAT(reason, HasSubstr("has 1200 pixels, the limit is 1199"));
}

TEST_P(LimitsOfFormats, Sides_AreCheckedExactly) {
  {
    const LimitsScope scope({.side = kWidth});
    EXPECT_EQ(RefusalOf(GetParam(), LimitKind::side), "none");
  }
  const LimitsScope scope({.side = kWidth - 1});
  const std::string reason = RefusalOf(GetParam(), LimitKind::side);
  EXPECT_THAT(reason, StartsWith(GetParam().what)) << "refused by the decoder";
  EXPECT_THAT(reason, HasSubstr("has 40 pixels per side, the limit is 39"));
}

TEST_P(LimitsOfFormats, PictureBytes_AreCheckedExactly) {
  if (GetParam().need == 0) GTEST_SKIP() << "depends on the strips; see the tests of the format";
  {
    const LimitsScope scope({.pictureBytes = GetParam().need});
    EXPECT_EQ(RefusalOf(GetParam(), LimitKind::pictureBytes), "none");
  }
  const LimitsScope scope({.pictureBytes = GetParam().need - 1});
  const std::string reason = RefusalOf(GetParam(), LimitKind::pictureBytes);
  EXPECT_THAT(reason, StartsWith(GetParam().what)) << "refused by the decoder";
  EXPECT_THAT(reason, HasSubstr("needs " + std::to_string(GetParam().need)));
}

TEST_P(LimitsOfFormats, ProcessBytes_AreChecked) {
  const uint64_t before = ProcessPictureBytes();
  {
    const LimitsScope scope({.processBytes = before + 100000});
    EXPECT_EQ(RefusalOf(GetParam(), LimitKind::processBytes), "none");
  }
  if (GetParam().need > 0) {
    const LimitsScope scope({.processBytes = before + GetParam().need});
    EXPECT_EQ(RefusalOf(GetParam(), LimitKind::processBytes), "none");
  }
  const uint64_t least = GetParam().need > 0 ? GetParam().need : kWidth * kHeight * 3;
  const LimitsScope scope({.processBytes = before + least - 1});
  EXPECT_THAT(RefusalOf(GetParam(), LimitKind::processBytes), HasSubstr("limit of the process"));
  EXPECT_EQ(ProcessPictureBytes(), before);
}

TEST_P(LimitsOfFormats, Time_IsChecked) {
  {
    const LimitsScope scope({.seconds = 3600});
    EXPECT_EQ(RefusalOf(GetParam(), LimitKind::seconds), "none");
  }
  const LimitsScope scope({.seconds = 0});
  EXPECT_THROW(GetParam().Decode(), TimeLimitError);
}

TEST_P(LimitsOfFormats, Time_OfTheDefaultLimitsStartsWithTheCall) {
  SetDefaultLimits({.seconds = 0});
  EXPECT_THROW(GetParam().Decode(), TimeLimitError);
  SetDefaultLimits({.seconds = 3600});
  EXPECT_NO_THROW(GetParam().Decode());
  SetDefaultLimits({});
}

TEST_P(LimitsOfFormats, Options_CarryTheLimitsOfOneCall) {
  EXPECT_THROW(GetParam().Decode({.limits = Limits{.pixels = 5}}), LimitError);
  EXPECT_NO_THROW(GetParam().Decode());
  const LimitsScope scope({.pixels = 5});
  EXPECT_THROW(GetParam().Decode({.limits = Limits{}}), LimitError) << "the stricter one counts";
}

TEST_P(LimitsOfFormats, LongTime_ChangesNoPixel) {
  const Raster plain = GetParam().Decode().rows;
  const LimitsScope scope({.seconds = 3600});
  const Raster timed = GetParam().Decode().rows;
  ASSERT_EQ(timed.Height(), plain.Height());
  for (int y = 0; y < plain.Height(); ++y) {
    EXPECT_EQ(std::memcmp(timed.Row(y), plain.Row(y), plain.RowBytes()), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(All, LimitsOfFormats, testing::ValuesIn(Formats()),
                         [](const auto& info) { return info.param.name; });

TEST(LimitsOfIcons, AreCheckedByTheInnerFormat) {
  Raster raster(pf32bit, kWidth, kHeight);
  raster.alphaFormat = afDefined;
  TMemoryStream stream;
  EncodeIco(raster, stream);
  const std::vector<uint8_t> file(stream.Bytes().begin(), stream.Bytes().end());
  EXPECT_NO_THROW(DecodeIco(file));
  for (const Limits& limits :
       {Limits{.pictureBytes = 4 * kWidth * kHeight - 1}, Limits{.pixels = kWidth * kHeight - 1},
        Limits{.side = kWidth - 1}, Limits{.seconds = 0}}) {
    const LimitsScope scope(limits);
    EXPECT_THROW(DecodeIco(file), LimitError);
  }
}

TEST(LimitsOfTiff, WorkersHaveTheLimitsOfTheCall) {
  Raster raster(pf24bit, 200, 2000);
  for (int y = 0; y < 2000; ++y) std::memset(raster.Row(y), y % 251, raster.RowBytes());
  TMemoryStream stream;
  TiffWriteOptions options;
  options.compression = TiffCompression::lzw;
  EncodeTiff(raster, stream, options);
  const std::vector<uint8_t> file(stream.Bytes().begin(), stream.Bytes().end());
  for (const int threads : {1, 4}) {
    TSpanStream source(file);
    EXPECT_THROW(DecodeTiff(source, {threads, Limits{.seconds = 0}}), TimeLimitError) << threads;
  }
}

TEST(LimitsOfEncoders, Time_IsChecked) {
  for (const PictureType type :
       {PictureType::bmp, PictureType::jpeg, PictureType::png, PictureType::tiff}) {
    for (const int threads : {1, 4}) {
      EXPECT_NO_THROW(Encoded(type, pf24bit, threads));
      const LimitsScope scope({.seconds = 0});
      EXPECT_THROW(Encoded(type, pf24bit, threads), TimeLimitError) << static_cast<int>(type);
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
