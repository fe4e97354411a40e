// Files that are truncated, damaged, or claim more than they hold.

#include <cstring>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/memory_limit.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using ByteList = std::vector<uint8_t>;

ByteList operator+(ByteList a, const ByteList& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

std::string ErrorOf(std::span<const uint8_t> bytes) {
  try {
    DecodeWebp(bytes);
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

/// The number in "..., N of M rows are complete".
int RowsOf(const CodecReport& report) {
  const std::string& warning = report.warnings.front();
  return std::stoi(warning.substr(warning.find(", ") + 2));
}

Raster NoisyRaster(TPixelFormat format, int width, int height) {
  std::mt19937 random(5);
  return RandomRaster(format, width, height, random);
}

/// Every prefix gives a refusal or the first rows of the whole picture, white below.
void ExpectRowsOfEveryPrefix(const ByteList& file, const Raster& whole, size_t step) {
  int lastRows = 0;
  for (size_t size = 0; size < file.size(); size += step) {
    SCOPED_TRACE(size);
    CodecReport report;
    Raster raster;
    try {
      raster = DecodeWebp(std::span(file).first(size), &report);
    } catch (const FormatError& error) {
      EXPECT_EQ(lastRows, 0) << "a shorter file gave rows";
      EXPECT_TRUE(error.Reason().starts_with("WebP: ")) << error.Reason();
      continue;
    }
    ASSERT_EQ(report.warnings.size(), 1u);
    const bool isWhole = report.warnings[0] == "WebP: the file is cut off";
    const int rows = isWhole ? whole.Height() : RowsOf(report);
    ASSERT_GE(rows, lastRows);
    lastRows = rows;
    for (int y = 0; y < whole.Height(); y++) {
      if (y < rows) {
        ASSERT_EQ(std::memcmp(raster.Row(y), whole.Row(y), whole.RowBytes()), 0) << y;
      } else {
        ASSERT_EQ(raster.Row(y)[whole.RowBytes() - 1], 255) << y;
      }
    }
  }
  EXPECT_GT(lastRows, whole.Height() / 2);
}

TEST(WebpDamage, Should_GiveTheRowsThatAreThere_When_CutOffAnywhere) {
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    const Raster picture = NoisyRaster(format, 37, 93);
    for (const ByteList& file : {LosslessWebp(picture), LossyWebp(picture)})
      ExpectRowsOfEveryPrefix(file, DecodeWebp(file), 13);
  }
}

TEST(WebpDamage, Should_SaySo_When_WhatFollowsThePictureIsCutOff) {
  const Raster picture = GradientRaster(pf24bit, 19, 7);
  ByteList file = WebpFile(WebpHeaderChunk(webpExif, 19, 7) + ChunksOfWebp(LosslessWebp(picture)) +
                           WebpChunk("EXIF", ByteList(100, 'x')));
  file.resize(file.size() - 10);
  CodecReport report;
  EXPECT_TRUE(SamePixels(picture, DecodeWebp(file, &report)));
  EXPECT_THAT(report.warnings, ElementsAre("WebP: the file is cut off"));
}

TEST(WebpDamage, Should_GiveTheRowsThatAreThere_When_AnAnimationIsCutOff) {
  const Raster picture = NoisyRaster(pf24bit, 38, 60);
  const ByteList still = LosslessWebp(picture);
  ByteList file =
      WebpFile(WebpHeaderChunk(webpAnimation, 38, 60) + WebpChunk("ANIM", {0, 0, 0, 0, 0, 0}) +
               WebpFrameChunk(0, 0, 38, 60, ChunksOfWebp(still)));
  EXPECT_THAT(ErrorOf(std::span(file).first(60)),
              HasSubstr("WebP: the data end before the first row"));
  file.resize(file.size() - still.size() / 3);
  CodecReport report;
  const Raster raster = DecodeWebp(file, &report);
  ASSERT_EQ(report.warnings.size(), 1u);
  const int rows = RowsOf(report);
  EXPECT_GT(rows, 20);
  EXPECT_LT(rows, 60);
  for (int y = 0; y < rows; y++)
    EXPECT_EQ(std::memcmp(raster.Row(y), picture.Row(y), picture.RowBytes()), 0) << y;
}

TEST(WebpDamage, Should_RefuseOrGiveTheSame_When_BytesAreWrong) {
  constexpr uint32_t kSeed = 20240518;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  int pictures = 0;
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    const Raster picture = NoisyRaster(format, 37, 29);
    for (const ByteList& file : {LosslessWebp(picture), LossyWebp(picture)}) {
      for (int i = 0; i < 500; i++) {
        ByteList bytes = file;
        bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
        const MemoryLimit limit(16 << 20);
        CodecReport first, second;
        Raster raster;
        try {
          raster = DecodeWebp(bytes, &first);
        } catch (const Error&) {
          continue;
        }
        pictures++;
        ASSERT_TRUE(SamePixels(raster, DecodeWebp(bytes, &second)));
        ASSERT_EQ(first.warnings, second.warnings);
      }
    }
  }
  EXPECT_GT(pictures, 500);
}

TEST(WebpDamage, Should_Refuse_When_ThereIsNoPicture) {
  EXPECT_THAT(ErrorOf({}), HasSubstr("WebP"));
  EXPECT_THAT(ErrorOf(ByteList(300, 'x')), HasSubstr("WebP"));
  EXPECT_THAT(ErrorOf(WebpFile({})), HasSubstr("WebP"));
  EXPECT_THAT(ErrorOf(WebpFile(WebpHeaderChunk(webpAnimation, 5, 5))), HasSubstr("animation"));
  EXPECT_THAT(ErrorOf(WebpFile(WebpHeaderChunk(0, 5, 5) + WebpChunk("EXIF", ByteList(40, 'x')))),
              HasSubstr("WebP"));
}

TEST(WebpDamage, Should_Refuse_When_AFrameLiesOutsideOfItsCanvas) {
  const ByteList chunks = ChunksOfWebp(LosslessWebp(GradientRaster(pf24bit, 9, 5)));
  const ByteList file =
      WebpFile(WebpHeaderChunk(webpAnimation, 12, 12) + WebpChunk("ANIM", {0, 0, 0, 0, 0, 0}) +
               WebpFrameChunk(4, 4, 9, 5, chunks));
  EXPECT_THAT(ErrorOf(file), HasSubstr("WebP"));
}

TEST(WebpDamage, Should_RefuseBeforeTakingMemory_When_ACanvasIsHuge) {
  const ByteList chunks = ChunksOfWebp(LosslessWebp(GradientRaster(pf24bit, 9, 5)));
  const auto file = [&](uint32_t side) {
    return WebpFile(WebpHeaderChunk(webpAnimation, side, side) +
                    WebpChunk("ANIM", {0, 0, 0, 0, 0, 0}) + WebpFrameChunk(0, 0, 9, 5, chunks));
  };
  EXPECT_THAT(ErrorOf(file(65535)), HasSubstr("65535 x 65535"));
  EXPECT_THROW(DecodeWebp(file(65535)), LimitError);
  EXPECT_THAT(ErrorOf(file(16000)), HasSubstr("too large for its first picture"));
  EXPECT_EQ(DecodeWebp(file(3001)).Height(), 3001);
}

TEST(WebpDamage, Should_CountWhatTheLibraryKeeps_When_MemoryIsLimited) {
  const ByteList lossless = LosslessWebp(GradientRaster(pf24bit, 100, 100));
  const ByteList lossy = LossyWebp(GradientRaster(pf24bit, 100, 100));
  const MemoryLimit limit(100 * 300);
  EXPECT_THROW(DecodeWebp(lossless), LimitError);
  EXPECT_NO_THROW(DecodeWebp(lossy));
}

}  // namespace
}  // namespace rasterkit::test
