// The angle of scans: made plans and pages that are turned by a known angle.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bands/deskew/find_skew.h>
#include <rasterkit/bands/deskew/skew_edges.h>
#include <rasterkit/bands/deskew/skew_score.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/reference/skew_reference.h"
#include "tests/support/corpus.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

constexpr double kAccuracy = 0.05;

/// True where a drawing has ink, in pixels of the drawing.
using Ink = std::function<bool(double x, double y)>;

/// Frames and lines of a plan, 3 pixels wide.
bool PlanInk(double x, double y) {
  const auto isLine = [](double place, double step) {
    return place - std::floor(place / step) * step < 3;
  };
  const bool isInside = x > 60 && x < 900 && y > 80 && y < 1100;
  return isInside && (isLine(x, 210) || isLine(y, 340) || (isLine(y, 85) && x < 450));
}

/// Lines of text: blocks of the size of letters, with gaps between words and paragraphs.
bool TextInk(double x, double y) {
  if (x < 90 || x > 850 || y < 90 || y > 1080) return false;
  const int line = static_cast<int>(y / 24), letter = static_cast<int>(x / 9);
  const unsigned mixed = static_cast<unsigned>(line * 131 + letter * 7919) * 2654435761U >> 27;
  if (line % 9 == 8 || mixed % 6 == 0) return false;
  const double height = mixed % 4 == 0 ? 15 : 10;
  const double inLine = y - line * 24, inLetter = x - letter * 9;
  // A letter is a ring.
  const bool isOuter = inLine > 20 - height && inLine < 20 && inLetter < 7;
  const bool isInner = inLine > 23 - height && inLine < 17 && inLetter > 2 && inLetter < 5;
  return isOuter && !isInner;
}

/// A gray picture of a drawing of 960 x 1180 pixels that must be turned counter-clockwise by
/// `degrees` to lie straight, with 3 x 3 samples per pixel.
Raster Scan(const Ink& ink, double degrees, double scale = 1) {
  constexpr int kSamples = 3;
  const auto width = static_cast<int>(960 * scale), height = static_cast<int>(1180 * scale);
  Raster raster(pf8bit, width, height);
  raster.palette = GrayPalette(256);
  const double angle = degrees * std::acos(-1.0) / 180;
  const double cosine = std::cos(angle), sine = std::sin(angle);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      int inked = 0;
      for (int i = 0; i < kSamples * kSamples; ++i) {
        const double px = x + (i % kSamples + 0.5) / kSamples - width / 2.0;
        const double py = y + (i / kSamples + 0.5) / kSamples - height / 2.0;
        // Lines descend to the right where the angle is positive.
        const double dx = (cosine * px + sine * py) / scale + 480;
        const double dy = (-sine * px + cosine * py) / scale + 590;
        inked += ink(dx, dy) ? 1 : 0;
      }
      raster.Row(y)[x] = static_cast<uint8_t>(240 - inked * 220 / (kSamples * kSamples));
    }
  }
  raster.ClearPadding();
  return raster;
}

void Invert(Raster& raster) {
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) {
      raster.Row(y)[x] = static_cast<uint8_t>(255 - raster.Row(y)[x]);
    }
  }
}

void AddNoise(Raster& raster, int most, std::mt19937& random) {
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) {
      const int noise = static_cast<int>(random() % static_cast<unsigned>(2 * most + 1)) - most;
      raster.Row(y)[x] = static_cast<uint8_t>(std::clamp(raster.Row(y)[x] + noise, 0, 255));
    }
  }
}

void ExpectAngleOf(const Skew& skew, double degrees) {
  EXPECT_TRUE(skew.isFound) << skew.confidence;
  EXPECT_NEAR(skew.degrees, degrees, kAccuracy) << skew.confidence;
}

void ExpectAngle(const Raster& picture, double degrees) {
  ExpectAngleOf(FindSkew(picture), degrees);
}

TEST(FindSkew, Plans_Should_GiveTheirAngle) {
  for (const double degrees :
       {-14.0, -9.3, -5.0, -1.27, -0.4, -0.06, 0.0, 0.03, 0.1, 0.75, 2.0, 3.33, 7.7, 11.11, 14.0}) {
    SCOPED_TRACE(degrees);
    ExpectAngle(Scan(PlanInk, degrees), degrees);
  }
}

TEST(FindSkew, Texts_Should_GiveTheirAngle) {
  for (const double degrees : {-14.0, -2.5, -0.9, -0.1, 0.0, 0.2, 4.4, 9.0}) {
    SCOPED_TRACE(degrees);
    ExpectAngle(Scan(TextInk, degrees), degrees);
  }
}

TEST(FindSkew, LargeScans_Should_GiveTheirAngle) {
  // A4 at 300 dpi.
  ExpectAngle(Scan(TextInk, 1.234, 2.97), 1.234);
  ExpectAngle(Scan(PlanInk, -3.21, 2.97), -3.21);
}

TEST(FindSkew, Kinds_Should_GiveTheSameAngle) {
  constexpr double kDegrees = -2.2;
  const Raster gray = Scan(TextInk, kDegrees);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    SCOPED_TRACE(format);
    ExpectAngle(ConvertRaster(ConvertRaster(gray, pf24bit), format), kDegrees);
  }
  Raster dark = gray.Clone();
  Invert(dark);
  ExpectAngle(dark, kDegrees);
}

TEST(FindSkew, Noise_Should_NotHideTheAngle) {
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  for (const int most : {10, 30}) {
    for (const double degrees : {-3.7, 0.5, 12.0}) {
      SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", noise " << most << ", " << degrees);
      Raster text = Scan(TextInk, degrees), plan = Scan(PlanInk, degrees);
      AddNoise(text, most, random);
      AddNoise(plan, most, random);
      ExpectAngle(text, degrees);
      ExpectAngle(plan, degrees);
    }
  }
}

TEST(FindSkew, Pictures_Should_GiveNone_When_NothingIsStraight) {
  const auto isFound = [](const Raster& raster) { return FindSkew(raster).isFound; };
  Raster blank = Scan([](double, double) { return false; }, 0);
  EXPECT_FALSE(isFound(blank));
  std::mt19937 random(3);
  AddNoise(blank, 40, random);
  EXPECT_FALSE(isFound(blank));
  EXPECT_FALSE(isFound(RandomRaster(pf24bit, 500, 400, random)));
  EXPECT_FALSE(isFound(
      Scan([](double x, double y) { return std::fmod(std::hypot(x - 400, y - 500), 40) < 3; }, 0)));
  // Hills: waves in all directions.
  EXPECT_FALSE(isFound(Scan(
      [](double x, double y) {
        return std::sin(x / 31) * std::cos(y / 23) + std::sin((x + 2 * y) / 47) > 0.4;
      },
      0)));
  EXPECT_FALSE(isFound(Raster(pf24bit, 1, 1)));
  EXPECT_FALSE(isFound(Raster(pf24bit, 0, 0)));
}

TEST(FindSkew, Angles_Should_GiveNone_When_TheyAreTooLarge) {
  for (const double degrees : {-25.0, 19.0, 40.0}) {
    const Skew skew = FindSkew(Scan(PlanInk, degrees));
    EXPECT_FALSE(skew.isFound) << degrees << " " << skew.degrees << " " << skew.confidence;
    EXPECT_EQ(skew.degrees, 0);
  }
}

TEST(FindSkew, Corpus_Should_TellScansFromPhotographs) {
  const std::filesystem::path corpus = CorpusFolder();
  if (corpus.empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  const auto skewOf = [&](const char* name) {
    return FindSkew(PictureOfFrame(DecodeFrame((corpus / name).string())));
  };
  ExpectAngleOf(skewOf("tiff/leptonica__bois-3.tif"), -0.64);
  ExpectAngleOf(skewOf("tiff/tm__scan-mono-iccgray.tif"), -1.24);
  ExpectAngleOf(skewOf("tiff/tm__scan-lzw-8bit-colormap.tiff"), 0);
  for (const char* photograph : {"exif/me__Nikon_D5000.jpg", "exif/me__Leica_T_Typ_701_.jpg",
                                 "exif/me__Canon_PowerShot_A85.jpg"}) {
    EXPECT_FALSE(skewOf(photograph).isFound) << photograph;
  }
}

TEST(FindSkew, Call_Should_End_When_ItsTimeIsOver) {
  const Raster scan = Scan(PlanInk, 1);
  Limits limits;
  limits.seconds = 0;
  const LimitsScope scope(limits);
  EXPECT_THROW(FindSkew(scan), TimeLimitError);
}

TEST(SkewEdges, Grays_Should_EqualTheReference) {
  std::mt19937 random(11);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    for (const int width : {7, 2500, 2501, 7600}) {
      SCOPED_TRACE(testing::Message() << format << " " << width);
      const Raster raster = RandomRaster(format, width, 17, random);
      const detail::SkewGrays grays = detail::SkewGraysOf(raster);
      const int block = (width + 2499) / 2500;
      ASSERT_EQ(grays.width, width / block);
      ASSERT_EQ(grays.height, 17 / block);
      for (int y = 0; y < grays.height; ++y) {
        for (int x = 0; x < grays.width; ++x) {
          ASSERT_EQ(grays.At(x, y), reference::SkewGray(raster, block, x, y)) << x << " " << y;
        }
      }
    }
  }
}

TEST(SkewEdges, Transparency_Should_BeOnWhite) {
  Raster raster(pf32bit, 2, 1);
  raster.alphaFormat = afDefined;
  const uint8_t pixels[] = {0, 0, 0, 0, 0, 0, 0, 255};
  std::copy(std::begin(pixels), std::end(pixels), raster.Row(0));
  EXPECT_EQ(detail::SkewGraysOf(raster).grays, (std::vector<uint8_t>{255, 0}));
}

TEST(SkewEdges, Edges_Should_BeThoseOfTheirRule) {
  const Raster scan = Scan(PlanInk, 3, 0.3);
  const detail::SkewGrays grays = detail::SkewGraysOf(scan);
  const detail::SkewEdges edges = detail::SkewEdgesOf(grays);
  std::vector<uint8_t> sorted = grays.grays;
  std::sort(sorted.begin(), sorted.end());
  const size_t rare = sorted.size() / 2000;
  const int least = (sorted[sorted.size() - 1 - rare] - sorted[rare]) / 4;
  std::vector<detail::SkewPoint> across, down;
  for (int y = 0; y < grays.height - 1; ++y) {
    for (int x = 0; x < grays.width - 1; ++x) {
      const int below = std::abs(grays.At(x, y + 1) - grays.At(x, y));
      const int beside = std::abs(grays.At(x + 1, y) - grays.At(x, y));
      if (below >= least && below > 2 * beside) across.push_back({x, y});
      if (beside >= least && beside > 2 * below) down.push_back({x, y});
    }
  }
  EXPECT_GT(across.size(), 100u);
  EXPECT_EQ(edges.across, across);
  EXPECT_EQ(edges.down, down);
}

TEST(SkewScore, Scores_Should_EqualTheReference) {
  constexpr unsigned kSeed = 5;
  std::mt19937 random(kSeed);
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", case " << i);
    detail::SkewEdges edges;
    edges.width = 1 + static_cast<int>(random() % 300);
    edges.height = 1 + static_cast<int>(random() % 300);
    reference::PointList across, down;
    for (int k = 0; k < 400; ++k) {
      const int x = static_cast<int>(random() % static_cast<unsigned>(edges.width));
      const int y = static_cast<int>(random() % static_cast<unsigned>(edges.height));
      (k % 2 == 0 ? edges.across : edges.down).push_back({x, y});
      (k % 2 == 0 ? across : down).emplace_back(x, y);
    }
    const int slope = static_cast<int>(random() % 40000) - 20000;
    for (const int bits : {0, 1, 2, 5}) {
      EXPECT_EQ(detail::SkewScore(edges, slope, bits),
                reference::SkewScoreOf(across, true, slope, 1 << bits) +
                    reference::SkewScoreOf(down, false, slope, 1 << bits))
          << slope << " " << bits;
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
