#include <algorithm>
#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"
#include "tests/reference/rotate_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"

namespace rasterkit {
namespace {

using test::MadeBy;
using test::MadeInEveryWay;
using test::PixelAt;
using test::SidesOf;
using Bytes = std::vector<uint8_t>;

constexpr double kAngles[] = {10, 17.3, 45, 89.4, 90.6, 133, 180.7, -30, 359.2, 0.3, 90.3, 270.4};

/// Indexes of the source's pixels, 1 for the first; 0 in the corners.
Raster Numbered(Sides sides) {
  Raster raster(pf32bit, sides.width, sides.height);
  for (int y = 0; y < sides.height; ++y) {
    for (int x = 0; x < sides.width; ++x) {
      const auto number = static_cast<uint32_t>(y * sides.width + x + 1);
      for (int i = 0; i < 4; ++i) {
        raster.Row(y)[4 * x + i] = static_cast<uint8_t>(number >> (8 * i));
      }
    }
  }
  raster.alphaFormat = afDefined;
  return raster;
}

int NumberAt(const Pixels& numbered, int x, int y) {
  const Bytes bytes = PixelAt(numbered, x, y);
  return bytes[0] | bytes[1] << 8 | bytes[2] << 16;
}

/// The indexes of the turned picture by the plain rule.
Raster NumberedByRule(Sides sides, double degrees) {
  const RotationFrame frame = FrameOfRotation(sides, degrees);
  Pixels numbered = MadeBy(*TurnStage(sides, frame.quarters), Numbered(sides));
  if (frame.rest == 0) return std::move(std::get<Raster>(numbered));
  const auto& turned = std::get<Raster>(numbered);
  test::TestRows rows(turned.Width(), turned.Height(), 32);
  for (int y = 0; y < turned.Height(); ++y) {
    for (int x = 0; x < turned.Width(); ++x) {
      rows.SetPixel(x, y, static_cast<uint32_t>(NumberAt(numbered, x, y)));
    }
  }
  const auto result = reference::Rotate(rows, reference::ExactTurn(frame.rest), 0);
  Raster raster(pf32bit, result.width, result.height);
  for (int y = 0; y < result.height; ++y) {
    std::copy_n(result.bytes.data() + static_cast<size_t>(y) * result.stride, result.stride,
                raster.Row(y));
  }
  return raster;
}

Resampling Filled(Fill::Kind kind, TColor color = clWhite) {
  Resampling how;
  how.fill = {kind, color};
  return how;
}

TEST(RotateStageTest, TakesThePixelsOfTheRuleFromEveryKind) {
  std::mt19937 random(1);
  for (const double degrees : kAngles) {
    for (const Sides sides : {Sides{1, 5}, Sides{7, 3}, Sides{13, 17}, Sides{2, 2}}) {
      const Pixels numbers = NumberedByRule(sides, degrees);
      for (const auto& kind : test::EveryKind()) {
        SCOPED_TRACE(kind.name + ", " + std::to_string(degrees) + " degrees, width " +
                     std::to_string(sides.width));
        const Pixels source = kind.make(sides.width, sides.height, random);
        const auto stage = RotateStage(sides, degrees, Filled(Fill::Kind::color, clBlack));
        const Pixels made = MadeInEveryWay(*stage, source);
        ASSERT_EQ(SidesOf(made), SidesOf(numbers));
        for (int y = 0; y < HeightOf(made); ++y) {
          for (int x = 0; x < WidthOf(made); ++x) {
            const int number = NumberAt(numbers, x, y);
            if (number == 0) continue;
            ASSERT_EQ(PixelAt(made, x, y),
                      PixelAt(source, (number - 1) % sides.width, (number - 1) / sides.width))
                << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST(RotateStageTest, EqualsTheExportedRoutine) {
  std::mt19937 random(2);
  for (const auto& kind : test::RasterKinds()) {
    for (const float degrees : {10.0f, 33.3f, 100.0f, 179.0f, 355.5f}) {
      for (const bool isAutomatic : {false, true}) {
        const Pixels source = kind.make(19, 14, random);
        const auto& raster = std::get<Raster>(source);
        // A color that is already marked stays the one that fills the corners.
        if (isAutomatic && (raster.transparentColor || raster.alphaFormat == afDefined)) continue;
        // The routine puts near-white in place of one of two colors other than black and white.
        if (isAutomatic && kind.name == "format 1") continue;
        // The routine marks a color that pixels of 15 and 16 bits cannot show.
        const bool isWord = raster.Format() == pf15bit || raster.Format() == pf16bit;
        if (isAutomatic && isWord) continue;
        SCOPED_TRACE(kind.name);
        auto bitmap = std::make_unique<TBitmap>(raster.Clone());
        RotateBitmapOrThrow(degrees, bitmap, isAutomatic ? -1 : 0x3060F0, 1);
        const Pixels made = MadeBy(
            *RotateStage({19, 14}, degrees,
                         Filled(isAutomatic ? Fill::Kind::automatic : Fill::Kind::color, 0x3060F0)),
            source);
        if (isAutomatic && raster.Format() == pf1bit) {
          // The routine fills the palette of 16 entries with black.
          const Raster expected = bitmap->TakeContent();
          EXPECT_TRUE(test::SameColors(expected, std::get<Raster>(made)));
          EXPECT_EQ(std::get<Raster>(made).transparentColor, expected.transparentColor);
          EXPECT_EQ(std::get<Raster>(made).palette.Count(), 3);
        } else {
          EXPECT_TRUE(test::SameRows(bitmap->TakeContent(), made));
        }
      }
    }
  }
}

TEST(RotateStageTest, IsTheSameOnEverySimdTarget) {
  std::mt19937 random(3);
  for (const auto& kind : test::EveryKind()) {
    const Pixels source = kind.make(150, 70, random);
    const auto stage = RotateStage({150, 70}, 17.3);
    const Pixels expected = MadeBy(*stage, source);
    test::ForEachSimdTarget([&](int64_t target) {
      ASSERT_TRUE(test::SameRows(expected, MadeBy(*stage, source, 3)))
          << kind.name << " " << hwy::TargetName(target);
    });
  }
}

TEST(RotateStageTest, LargeSamplesTakeThePixelsOfARaster) {
  std::mt19937 random(4);
  for (const double degrees : {3.0, 61.7, 200.0}) {
    const Sides sides{290, 190};
    const Pixels numbers =
        MadeBy(*RotateStage(sides, degrees, Filled(Fill::Kind::transparent)), Numbered(sides), 2);
    for (const auto& kind : test::SampleKinds()) {
      if (random() % 3 != 0) continue;
      const Pixels source = kind.make(sides.width, sides.height, random);
      const Pixels made = MadeBy(*RotateStage(sides, degrees), source, 2);
      for (int i = 0; i < 3000; ++i) {
        const int x = static_cast<int>(random() % static_cast<unsigned>(WidthOf(made)));
        const int y = static_cast<int>(random() % static_cast<unsigned>(HeightOf(made)));
        const int number = NumberAt(numbers, x, y);
        if (number == 0) continue;
        ASSERT_EQ(PixelAt(made, x, y),
                  PixelAt(source, (number - 1) % sides.width, (number - 1) / sides.width))
            << kind.name;
      }
    }
  }
}

TEST(RotateStageTest, EdgesAreTheNearestPixelsOfTheEdge) {
  std::mt19937 random(5);
  for (const auto& kind : test::EveryKind()) {
    const Sides sides{9, 6};
    const Pixels source = kind.make(sides.width, sides.height, random);
    for (const double degrees : {20.0, 110.0, 250.5}) {
      SCOPED_TRACE(kind.name + ", " + std::to_string(degrees));
      const RotationFrame frame = FrameOfRotation(sides, degrees);
      const Pixels made =
          MadeInEveryWay(*RotateStage(sides, degrees, Filled(Fill::Kind::edge)), source);
      for (int y = 0; y < HeightOf(made); ++y) {
        for (int x = 0; x < WidthOf(made); ++x) {
          const MapPoint place = frame.toOld.At(x, y);
          const auto isUnsure = [](double v) { return std::fabs(v - std::floor(v) - 0.5) < 1e-6; };
          if (isUnsure(place.x) || isUnsure(place.y)) continue;
          const double column = std::clamp(std::round(place.x), 0.0, sides.width - 1.0);
          const double row = std::clamp(std::round(place.y), 0.0, sides.height - 1.0);
          ASSERT_EQ(PixelAt(made, x, y),
                    PixelAt(source, static_cast<int>(column), static_cast<int>(row)));
        }
      }
    }
  }
}

TEST(RotateStageTest, TransparentCornersLookTransparentAndTheRestTheSame) {
  std::mt19937 random(6);
  for (const auto& kind : test::RasterKinds()) {
    for (const Fill::Kind fill : {Fill::Kind::transparent, Fill::Kind::automatic}) {
      SCOPED_TRACE(kind.name);
      const Sides sides{9, 12};
      const Pixels source = kind.make(sides.width, sides.height, random);
      const Pixels numbers = NumberedByRule(sides, 30);
      const Pixels made = MadeInEveryWay(*RotateStage(sides, 30, Filled(fill)), source);
      const bool isFullPalette = kind.name == "format 2" || kind.name == "format 3" ||
                                 kind.name == "gray" || kind.name == "16 grays";
      for (int y = 0; y < HeightOf(made); ++y) {
        for (int x = 0; x < WidthOf(made); ++x) {
          const int number = NumberAt(numbers, x, y);
          if (number == 0) {
            ASSERT_EQ(test::Seen(made, x, y).opacity, 0) << x << ", " << y;
          } else if (fill == Fill::Kind::transparent || !isFullPalette) {
            const int index = number - 1;
            ASSERT_EQ(test::Seen(made, x, y),
                      test::Seen(source, index % sides.width, index / sides.width));
          }
        }
      }
    }
  }
}

template <class T>
Samples Ramp(int width, int height, NumberType type) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(sizeof(T) * 8);
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples samples(layout, width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const T number = static_cast<T>(7 * x + 3 * y + 1);
      std::memcpy(samples.Row(y) + static_cast<size_t>(x) * sizeof number, &number, sizeof number);
    }
  }
  return samples;
}

template <class T>
T At(const Pixels& pixels, int x, int y) {
  T number;
  std::memcpy(&number, PixelAt(pixels, x, y).data(), sizeof number);
  return number;
}

template <class T>
void ExpectMissingInCorners(NumberType type, double noData, T expected) {
  const Sides sides{11, 8};
  const Pixels numbers = NumberedByRule(sides, 40);
  Resampling how = Filled(Fill::Kind::noData);
  how.noData = noData;
  const Pixels made = MadeBy(*RotateStage(sides, 40, how), Ramp<T>(11, 8, type));
  for (int y = 0; y < HeightOf(made); ++y) {
    for (int x = 0; x < WidthOf(made); ++x) {
      if (NumberAt(numbers, x, y) != 0) {
        ASSERT_NE(At<T>(made, x, y), expected);
      } else if (expected == expected) {
        ASSERT_EQ(At<T>(made, x, y), expected);
      } else {
        const T corner = At<T>(made, x, y);
        ASSERT_NE(corner, corner);
      }
    }
  }
}

TEST(RotateStageTest, CornersOfGridsAreNotMeasured) {
  ExpectMissingInCorners<uint8_t>(NumberType::uint8, 255, 255);
  ExpectMissingInCorners<int16_t>(NumberType::int16, -32768, -32768);
  ExpectMissingInCorners<uint16_t>(NumberType::uint16, 65535, 65535);
  ExpectMissingInCorners<int32_t>(NumberType::int32, -2147483647.0, -2147483647);
  ExpectMissingInCorners<uint32_t>(NumberType::uint32, 4294967295.0, 4294967295u);
  ExpectMissingInCorners<int64_t>(NumberType::int64, -9999, -9999);
  ExpectMissingInCorners<float>(NumberType::float32, -3.4e38, -3.4e38f);
  ExpectMissingInCorners<double>(NumberType::float64, std::nan(""), std::nan(""));
  Resampling how = Filled(Fill::Kind::noData);
  how.noData = -9999;
  EXPECT_THROW(MadeBy(*RotateStage({11, 8}, 40, how), Ramp<uint8_t>(11, 8, NumberType::uint8)),
               RangeError);
  EXPECT_THROW(MadeBy(*RotateStage({11, 8}, 40, Filled(Fill::Kind::noData)),
                      Ramp<float>(11, 8, NumberType::float32)),
               RangeError);
}

TEST(RotateStageTest, TheFrameLeadsToTheSourceOfEachPixel) {
  for (double degrees = -360; degrees <= 360; degrees += 7.7) {
    for (const Sides sides : {Sides{31, 20}, Sides{8, 8}, Sides{1, 40}}) {
      const RotationFrame frame = FrameOfRotation(sides, degrees);
      const Pixels numbers = NumberedByRule(sides, degrees);
      ASSERT_EQ(frame.sides, SidesOf(numbers));
      int inside = 0;
      for (int y = 0; y < frame.sides.height; ++y) {
        for (int x = 0; x < frame.sides.width; ++x) {
          const int number = NumberAt(numbers, x, y);
          if (number == 0) continue;
          const MapPoint place = frame.toOld.At(x, y);
          ASSERT_LE(std::fabs(place.x - (number - 1) % sides.width), 0.5 + 1e-9);
          ASSERT_LE(std::fabs(place.y - (number - 1) / sides.width), 0.5 + 1e-9);
          ++inside;
        }
      }
      ASSERT_GT(inside, 0);
    }
  }
}

TEST(RotateStageTest, QuarterTurnsAreExact) {
  for (const double degrees : {90.0, 180.0, 270.0, -90.0, 450.0, 0.0, 360.0}) {
    const RotationFrame frame = FrameOfRotation({5, 3}, degrees);
    EXPECT_EQ(frame.rest, 0);
    EXPECT_EQ(frame.quarters, static_cast<int>(std::round(degrees / 90)) & 3);
    const Pixels numbers = NumberedByRule({5, 3}, degrees);
    for (int y = 0; y < frame.sides.height; ++y) {
      for (int x = 0; x < frame.sides.width; ++x) {
        const MapPoint place = frame.toOld.At(x, y);
        EXPECT_EQ(NumberAt(numbers, x, y), 1 + place.x + 5 * place.y);
      }
    }
  }
}

TEST(RotateStageTest, RefusesAnglesAndSizesThatAreNotPossible) {
  EXPECT_THROW(FrameOfRotation({5, 3}, std::nan("")), RangeError);
  EXPECT_THROW(FrameOfRotation({5, 3}, INFINITY), RangeError);
  EXPECT_THROW(FrameOfRotation({2000000000, 2000000000}, 45), RangeError);
}

TEST(AffineStageTest, TakesTheNearestPixels) {
  std::mt19937 random(7);
  const Affine toOld{0.71, -0.23, 0.31, 0.89, -1.3137, 2.1531};
  for (const auto& kind : test::EveryKind()) {
    const Sides sides{10, 9}, target{14, 11};
    const Pixels source = kind.make(sides.width, sides.height, random);
    for (const bool isEdge : {false, true}) {
      SCOPED_TRACE(kind.name);
      const Pixels made = MadeInEveryWay(
          *AffineStage(sides, toOld, target, Filled(isEdge ? Fill::Kind::edge : Fill::Kind::color)),
          source);
      ASSERT_EQ(SidesOf(made), target);
      for (int y = 0; y < target.height; ++y) {
        for (int x = 0; x < target.width; ++x) {
          const MapPoint place = toOld.At(x, y);
          const double column = std::nearbyint(place.x), row = std::nearbyint(place.y);
          const bool isInside =
              column >= 0 && row >= 0 && column < sides.width && row < sides.height;
          if (!isInside && !isEdge) continue;
          const int u = static_cast<int>(std::clamp(column, 0.0, sides.width - 1.0));
          const int v = static_cast<int>(std::clamp(row, 0.0, sides.height - 1.0));
          ASSERT_EQ(PixelAt(made, x, y), PixelAt(source, u, v)) << x << ", " << y;
        }
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit
