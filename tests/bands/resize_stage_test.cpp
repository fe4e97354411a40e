#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"
#include "tests/reference/samples_reference.h"
#include "tests/support/simd_targets.h"

namespace rasterkit {
namespace {

using test::MadeBy;
using test::MadeInEveryWay;
using test::PixelAt;
using test::SidesOf;

constexpr Sides kTargets[] = {{1, 1}, {3, 17}, {17, 3}, {8, 6}, {5, 5}, {16, 12}, {13, 11}, {1, 9}};

TEST(ResizeStageTest, NearestPixelsAreThoseOfTheExportedRoutine) {
  std::mt19937 random(1);
  for (const auto& kind : test::RasterKinds()) {
    for (int width = 1; width <= 17; width += 3) {
      const Pixels source = kind.make(width, 18 - width, random);
      for (const Sides target : kTargets) {
        SCOPED_TRACE(kind.name + ", width " + std::to_string(width) + " to " +
                     std::to_string(target.width));
        const Pixels made =
            MadeInEveryWay(*ResizeStage(SidesOf(source), target, Filter::nearest), source);
        // Bytes of the same depth with a palette, which the routine does not average.
        Raster numbers(pf8bit, width, 18 - width);
        for (int y = 0; y < numbers.Height(); ++y) {
          for (int x = 0; x < width; ++x) {
            numbers.Row(y)[x] = static_cast<uint8_t>(y * width + x);
          }
        }
        numbers.ClearPadding();
        auto bitmap = std::make_unique<TBitmap>(std::move(numbers));
        ResizeBitmap(bitmap, target.width, target.height, true);
        ASSERT_EQ(SidesOf(made), target);
        for (int y = 0; y < target.height; ++y) {
          for (int x = 0; x < target.width; ++x) {
            const int number = bitmap->ScanLine(y)[x];
            ASSERT_EQ(PixelAt(made, x, y), PixelAt(source, number % width, number / width));
          }
        }
      }
    }
  }
}

TEST(ResizeStageTest, MeansEqualThePlainRule) {
  std::mt19937 random(2);
  for (const auto& kind : test::EveryKind()) {
    const Pixels source = kind.make(7, 9, random);
    for (const Sides target :
         {Sides{3, 4}, Sides{7, 2}, Sides{14, 5}, Sides{11, 20}, Sides{1, 1}}) {
      for (const Filter filter : {Filter::automatic, Filter::area, Filter::linear}) {
        if (!reference::IsAveraged(source, filter)) continue;
        SCOPED_TRACE(kind.name + ", width " + std::to_string(target.width) + ", filter " +
                     std::to_string(static_cast<int>(filter)));
        const auto stage = ResizeStage(SidesOf(source), target, filter);
        const Pixels made = MadeInEveryWay(*stage, source);
        for (int y = 0; y < target.height; ++y) {
          for (int x = 0; x < target.width; ++x) {
            ASSERT_EQ(PixelAt(made, x, y),
                      reference::MeanBytes(source, made, target, filter, x, y, std::nullopt))
                << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST(ResizeStageTest, EqualsTheExportedRoutineForColors) {
  std::mt19937 random(3);
  for (const bool hasAlpha : {false, true}) {
    for (int i = 0; i < 60; ++i) {
      const int width = 1 + static_cast<int>(random() % 40),
                height = 1 + static_cast<int>(random() % 40);
      const Sides target{1 + static_cast<int>(random() % 40), 1 + static_cast<int>(random() % 40)};
      const auto& kind = test::RasterKinds()[hasAlpha ? test::RasterKinds().size() - 1 : 5];
      const Pixels source = kind.make(width, height, random);
      auto bitmap = std::make_unique<TBitmap>(std::get<Raster>(source).Clone());
      ResizeBitmap(bitmap, target.width, target.height, true);
      const Pixels made = MadeBy(*ResizeStage({width, height}, target), source, 2);
      ASSERT_TRUE(test::SameRows(bitmap->TakeContent(), made))
          << kind.name << " " << width << " x " << height << " to " << target.width << " x "
          << target.height;
    }
  }
}

TEST(ResizeStageTest, PlansShrinkToTheShareOfWhite) {
  std::mt19937 random(4);
  for (const char* name : {"plan", "white plan", "format 1"}) {
    for (const auto& kind : test::RasterKinds()) {
      if (kind.name != name) continue;
      Pixels source = kind.make(24, 16, random);
      // Any pair of grays counts as a plan.
      if (kind.name == "format 1") {
        const tagPALETTEENTRY entries[] = {{40, 40, 40, 0}, {200, 200, 200, 0}};
        std::get<Raster>(source).palette = HPALETTE(entries);
      }
      const Pixels made = MadeInEveryWay(*ResizeStage({24, 16}, {6, 4}), source);
      const auto& raster = std::get<Raster>(made);
      ASSERT_EQ(raster.Format(), pf8bit);
      ASSERT_TRUE(IsGrayRamp(raster.palette));
      for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
          int sum = 0;
          for (int v = 0; v < 4; ++v) {
            for (int u = 0; u < 4; ++u) {
              sum += std::get<Raster>(source).PixelColor(4 * x + u, 4 * y + v) & 255;
            }
          }
          ASSERT_EQ(PixelAt(made, x, y)[0], (sum + 8) / 16) << name;
        }
      }
      const Pixels nearest = MadeBy(*ResizeStage({24, 16}, {6, 4}, Filter::nearest), source);
      EXPECT_EQ(std::get<Raster>(nearest).Format(), pf1bit);
      const Pixels grown = MadeBy(*ResizeStage({24, 16}, {48, 32}), source);
      EXPECT_EQ(std::get<Raster>(grown).Format(), pf1bit);
    }
  }
}

TEST(ResizeStageTest, PalettesAreAveragedOnRequestOnly) {
  std::mt19937 random(5);
  for (const auto& kind : test::RasterKinds()) {
    const Pixels source = kind.make(8, 8, random);
    const auto& raster = std::get<Raster>(source);
    if (!IsIndexed(raster.Format()) || kind.name == "gray") continue;
    const bool isPlan = kind.name == "plan" || kind.name == "white plan";
    const bool isGray = isPlan || kind.name == "16 grays";
    SCOPED_TRACE(kind.name);
    if (!isPlan && kind.name != "format 1") {
      const Pixels automatic = MadeBy(*ResizeStage({8, 8}, {4, 4}), source);
      EXPECT_EQ(std::get<Raster>(automatic).Format(), raster.Format());
      EXPECT_EQ(std::get<Raster>(automatic).transparentColor, raster.transparentColor);
    }
    const Pixels averaged = MadeBy(*ResizeStage({8, 8}, {4, 4}, Filter::area), source);
    const TPixelFormat format = std::get<Raster>(averaged).Format();
    if (raster.transparentColor) {
      EXPECT_EQ(format, pf32bit);
      EXPECT_EQ(std::get<Raster>(averaged).alphaFormat, afDefined);
    } else if (kind.name != "format 1") {
      EXPECT_EQ(format, isGray ? pf8bit : pf24bit);
    }
  }
}

template <class T>
Samples Grid(NumberType type, int width, int height, std::mt19937& random, T missing,
             bool hasRest) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(sizeof(T) * 8);
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples samples(layout, width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      T number = static_cast<T>(random() % 100);
      if (hasRest) number = static_cast<T>(number + static_cast<T>(0.25));
      if (random() % 3 == 0) number = missing;
      std::memcpy(samples.Row(y) + static_cast<size_t>(x) * sizeof number, &number, sizeof number);
    }
  }
  return samples;
}

template <class T>
void ExpectMeasuredMeans(NumberType type, double noData, T missing) {
  std::mt19937 random(6);
  const Pixels source = Grid<T>(type, 9, 8, random, missing, !std::is_integral_v<T>);
  for (const Sides target : {Sides{4, 3}, Sides{2, 8}, Sides{13, 20}}) {
    for (const Filter filter : {Filter::automatic, Filter::area, Filter::linear}) {
      const Pixels made = MadeInEveryWay(*ResizeStage({9, 8}, target, filter, noData), source);
      for (int y = 0; y < target.height; ++y) {
        for (int x = 0; x < target.width; ++x) {
          ASSERT_EQ(PixelAt(made, x, y),
                    reference::MeanBytes(source, made, target, filter, x, y, noData))
              << x << ", " << y << " type " << static_cast<int>(type);
        }
      }
    }
  }
}

TEST(ResizeStageTest, NumbersThatWereNotMeasuredAreNotMixedIn) {
  ExpectMeasuredMeans<uint8_t>(NumberType::uint8, 255, 255);
  ExpectMeasuredMeans<uint16_t>(NumberType::uint16, 65535, 65535);
  ExpectMeasuredMeans<int16_t>(NumberType::int16, -9999, -9999);
  ExpectMeasuredMeans<int32_t>(NumberType::int32, -2147483648.0,
                               std::numeric_limits<int32_t>::min());
  ExpectMeasuredMeans<uint32_t>(NumberType::uint32, 4294967295.0, 4294967295u);
  ExpectMeasuredMeans<float>(NumberType::float32, -3.4028235e38, -3.4028235e38f);
  ExpectMeasuredMeans<double>(NumberType::float64, -9999.5, -9999.5);
}

TEST(ResizeStageTest, NotANumberMayMeanNotMeasured) {
  PixelLayout layout;
  layout.type = NumberType::float32;
  layout.bits = 32;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples samples(layout, 4, 1);
  const float numbers[] = {1, std::nanf(""), std::nanf(""), std::nanf("")};
  std::memcpy(samples.Row(0), numbers, sizeof numbers);
  const Pixels made = MadeBy(*ResizeStage({4, 1}, {2, 1}, Filter::automatic, std::nan("")),
                             Pixels(std::move(samples)));
  float result[2];
  std::memcpy(result, std::get<Samples>(made).Row(0), sizeof result);
  EXPECT_EQ(result[0], 1);
  EXPECT_NE(result[1], result[1]);
}

TEST(ResizeStageTest, SignedChannelsOfLabAreAveragedAsSigned) {
  PixelLayout layout;
  layout.bands = 3;
  layout.model = ColorModel::lab;
  Samples samples(layout, 2, 1);
  const uint8_t bytes[] = {100, 255, 10, 200, 3, 250};
  std::memcpy(samples.Row(0), bytes, sizeof bytes);
  const Pixels made = MadeBy(*ResizeStage({2, 1}, {1, 1}), Pixels(std::move(samples)));
  // -1 and 3 make 1, 10 and -6 make 2.
  EXPECT_EQ(PixelAt(made, 0, 0), (std::vector<uint8_t>{150, 1, 2}));
}

TEST(ResizeStageTest, WideNumbersAreTakenWholeOrRefused) {
  std::mt19937 random(7);
  for (const auto& kind : test::SampleKinds()) {
    const Pixels source = kind.make(5, 4, random);
    const NumberType type = std::get<Samples>(source).Layout().type;
    if (type != NumberType::uint64 && type != NumberType::int64) continue;
    EXPECT_TRUE(test::SameRows(MadeBy(*ResizeStage({5, 4}, {2, 2}, Filter::nearest), source),
                               MadeBy(*ResizeStage({5, 4}, {2, 2}), source)));
    EXPECT_THROW(MadeBy(*ResizeStage({5, 4}, {2, 2}, Filter::area), source), UnsupportedError);
  }
}

TEST(ResizeStageTest, ThreadsMakeTheSameBytes) {
  std::mt19937 random(8);
  for (const auto& kind : test::EveryKind()) {
    const Pixels source = kind.make(160, 211, random);
    for (const Sides target : {Sides{50, 37}, Sides{170, 300}}) {
      const auto stage = ResizeStage({160, 211}, target);
      ASSERT_TRUE(test::SameRows(MadeBy(*stage, source), MadeBy(*stage, source, 7))) << kind.name;
    }
  }
}

TEST(ResizeStageTest, SimdTargetsMakeTheSameBytes) {
  std::mt19937 random(8);
  for (const auto& kind : test::RasterKinds()) {
    const Pixels source = kind.make(160, 211, random);
    for (const Sides target : {Sides{50, 37}, Sides{170, 300}}) {
      const auto stage = ResizeStage({160, 211}, target);
      const Pixels expected = MadeBy(*stage, source);
      test::ForEachSimdTarget([&](int64_t simd) {
        ASSERT_TRUE(test::SameRows(expected, MadeBy(*stage, source, 2)))
            << kind.name << " " << hwy::TargetName(simd);
      });
    }
  }
}

TEST(ResizeStageTest, KeepsTheSizeOnPaper) {
  std::mt19937 random(9);
  for (const auto& kind : test::EveryKind()) {
    const Pixels made = MadeBy(*ResizeStage({20, 10}, {10, 20}), kind.make(20, 10, random));
    const Resolution dpi = std::visit([](const auto& rows) { return rows.resolution; }, made);
    EXPECT_EQ(dpi.x, 150) << kind.name;
    EXPECT_EQ(dpi.y, 400) << kind.name;
  }
}

TEST(ResizeStageTest, RefusesEmptySizes) {
  EXPECT_THROW(ResizeStage({5, 5}, {0, 3}), RangeError);
  EXPECT_THROW(ResizeStage({5, 5}, {3, -1}), RangeError);
}

}  // namespace
}  // namespace rasterkit
