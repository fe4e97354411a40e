#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bands/colors/common_number.h>
#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/layouts.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"

/// A grid over another one, beside a plain loop.
namespace rasterkit {
namespace {

using detail::CommonNumberType;
using detail::LoadNumber;
using detail::MissingNumber;
using detail::NumberOf;
using detail::ValueOf;
using detail::WithNumberType;
using test::MadeBy;

constexpr uint32_t kSeed = 20260513;

constexpr std::array kTypes = {NumberType::uint8,   NumberType::int8,   NumberType::uint16,
                               NumberType::int16,   NumberType::uint32, NumberType::int32,
                               NumberType::uint64,  NumberType::int64,  NumberType::float16,
                               NumberType::float32, NumberType::float64};

Samples GridOf(NumberType type, int width, int height, int bands = 1, bool inPlanes = false) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = bands;
  layout.extraBands = bands - 1;
  layout.model = ColorModel::gray;
  return Samples(layout, width, height, inPlanes);
}

uint8_t* PlaceOf(Samples& grid, int x, int y, int band) {
  const size_t size = BytesOf(grid.Layout().type);
  const bool inPlanes = grid.Planes() > 1;
  return (inPlanes ? grid.Row(y, band) : grid.Row(y)) + static_cast<size_t>(x) * grid.PixelBytes() +
         (inPlanes ? 0 : static_cast<size_t>(band) * size);
}

void Set(Samples& grid, int x, int y, int band, double value) {
  WithNumberType(grid.Layout().type, [&](auto zero) {
    const auto number = NumberOf<decltype(zero)>(value);
    std::memcpy(PlaceOf(grid, x, y, band), &number, sizeof number);
  });
}

double At(const Samples& grid, int x, int y, int band) {
  return WithNumberType(grid.Layout().type, [&](auto zero) {
    return ValueOf(LoadNumber<decltype(zero)>(PlaceOf(const_cast<Samples&>(grid), x, y, band)));
  });
}

/// Small whole numbers; a fifth of them is `missing`.
void FillWith(Samples& grid, double missing, std::mt19937& random) {
  for (int y = 0; y < grid.Height(); ++y) {
    for (int x = 0; x < grid.Width(); ++x) {
      for (int band = 0; band < grid.Layout().bands; ++band) {
        Set(grid, x, y, band, random() % 5 == 0 ? missing : random() % 100);
      }
    }
  }
}

/// Every number of a type that tests whether another type holds it.
std::vector<double> Extremes(NumberType type) {
  return WithNumberType(type, [](auto zero) -> std::vector<double> {
    using T = decltype(zero);
    if constexpr (std::is_same_v<T, detail::Half>) {
      return {65504, -65504, 1.0009765625, 5.9604644775390625e-08, 2047};
    } else if constexpr (std::is_floating_point_v<T>) {
      using Limits = std::numeric_limits<T>;
      return {static_cast<double>(Limits::max()), static_cast<double>(-Limits::max()),
              1 + static_cast<double>(Limits::epsilon()),
              static_cast<double>(Limits::denorm_min())};
    } else {
      using Limits = std::numeric_limits<T>;
      return {static_cast<double>(Limits::max()), static_cast<double>(Limits::min()),
              static_cast<double>(Limits::max()) - 1};
    }
  });
}

bool IsWide(NumberType type) {
  return type == NumberType::uint64 || type == NumberType::int64;
}

bool IsFloating(NumberType type) {
  return type == NumberType::float16 || type == NumberType::float32 || type == NumberType::float64;
}

/// The type holds every number of the other one; 64-bit whole numbers are no doubles.
bool Holds(NumberType wide, NumberType narrow) {
  if (wide == narrow) return true;
  if (IsWide(narrow)) return false;
  if (!IsFloating(wide) && IsFloating(narrow)) return false;
  for (const double number : Extremes(narrow)) {
    const bool isSame = WithNumberType(
        wide, [&](auto zero) { return ValueOf(NumberOf<decltype(zero)>(number)) == number; });
    if (!isSame) return false;
  }
  return true;
}

TEST(CommonNumberType, EveryPair_Should_GetTheNarrowestThatHoldsBoth) {
  for (const NumberType a : kTypes) {
    for (const NumberType b : kTypes) {
      const std::optional<NumberType> common = CommonNumberType(a, b);
      size_t least = 0;
      for (const NumberType wide : kTypes) {
        if (!Holds(wide, a) || !Holds(wide, b)) continue;
        if (least == 0 || BytesOf(wide) < least) least = BytesOf(wide);
      }
      ASSERT_EQ(common.has_value(), least != 0)
          << static_cast<int>(a) << " " << static_cast<int>(b);
      if (!common) continue;
      EXPECT_TRUE(Holds(*common, a) && Holds(*common, b));
      EXPECT_EQ(BytesOf(*common), least) << static_cast<int>(a) << " " << static_cast<int>(b);
    }
  }
}

GridCombination Over(const Samples& over, const Affine& toOver) {
  GridCombination combination;
  combination.over = std::make_shared<const Samples>(over.Clone());
  combination.toOver = toOver;
  combination.noData = 111;
  combination.overNoData = 122;
  return combination;
}

Affine Shift(double x, double y) {
  Affine affine;
  affine.x = x;
  affine.y = y;
  return affine;
}

TEST(GridStage, EveryPairOfTypes_Should_ShowTheUpperWhereItWasMeasured) {
  std::mt19937 random(kSeed);
  for (const NumberType lower : kTypes) {
    for (const NumberType upper : kTypes) {
      const std::optional<NumberType> common = CommonNumberType(lower, upper);
      const int bands = 1 + static_cast<int>(random() % 2);
      Samples under = GridOf(lower, 9, 7, bands, random() % 2 == 0);
      Samples over = GridOf(upper, 5, 6, bands, random() % 2 == 0);
      FillWith(under, 111, random);
      FillWith(over, 122, random);
      const int dx = static_cast<int>(random() % 13) - 6, dy = static_cast<int>(random() % 13) - 6;
      const auto stage = GridStage({9, 7}, Over(over, Shift(dx, dy)));
      if (!common) {
        EXPECT_THROW(MadeBy(*stage, Pixels(under.Clone())), UnsupportedError);
        continue;
      }
      const Pixels source(under.Clone());
      const Pixels made = MadeBy(*stage, source);
      for (const int threads : {2, 7}) {
        EXPECT_TRUE(test::SameRows(made, MadeBy(*stage, source, threads)));
      }
      const Samples& result = std::get<Samples>(made);
      ASSERT_EQ(result.Layout().type, *common);
      ASSERT_EQ(result.Layout().bands, bands);
      for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 9; ++x) {
          const bool isInside = x + dx >= 0 && y + dy >= 0 && x + dx < 5 && y + dy < 6;
          for (int band = 0; band < bands; ++band) {
            const double above = isInside ? At(over, x + dx, y + dy, band) : 122;
            ASSERT_EQ(At(result, x, y, band), above == 122 ? At(under, x, y, band) : above)
                << "seed " << kSeed << " " << x << "," << y;
          }
        }
      }
    }
  }
}

TEST(GridStage, WholeNumbersOf64Bits_Should_StayExact) {
  Samples under = GridOf(NumberType::int64, 2, 1), over = GridOf(NumberType::int64, 1, 1);
  const int64_t far = (int64_t{1} << 62) + 1, other = far + 2, above = far + 4;
  std::memcpy(under.Row(0), &far, sizeof far);
  std::memcpy(under.Row(0) + 8, &other, sizeof other);
  std::memcpy(over.Row(0), &above, sizeof above);
  const Pixels made =
      MadeBy(*GridStage({2, 1}, Over(over, Shift(-1, 0))), Pixels(std::move(under)));
  EXPECT_EQ(LoadNumber<int64_t>(std::get<Samples>(made).Row(0)), far);
  EXPECT_EQ(LoadNumber<int64_t>(std::get<Samples>(made).Row(0) + 8), above);
}

TEST(GridStage, OtherPixelSizes_Should_TakeTheNearestOrInterpolate) {
  std::mt19937 random(kSeed);
  Samples under = GridOf(NumberType::float32, 12, 10), over = GridOf(NumberType::float32, 6, 5);
  FillWith(under, 111, random);
  FillWith(over, 122, random);
  Affine half = Shift(0.2, -0.3);
  half.xPerColumn = half.yPerRow = 0.5;
  for (const Filter filter : {Filter::automatic, Filter::nearest, Filter::linear}) {
    GridCombination combination = Over(over, half);
    combination.filter = filter;
    const Pixels made = MadeBy(*GridStage({12, 10}, combination), Pixels(under.Clone()));
    // The upper grid alone, taken along the same affine.
    Resampling how;
    how.filter = filter;
    how.fill.kind = Fill::Kind::edge;
    how.noData = 122;
    const Pixels placed = MadeBy(*AffineStage({6, 5}, half, {12, 10}, how), Pixels(over.Clone()));
    int shown = 0;
    for (int y = 0; y < 10; ++y) {
      for (int x = 0; x < 12; ++x) {
        const MapPoint place = half.At(x, y);
        const double column = std::nearbyint(place.x), row = std::nearbyint(place.y);
        const bool isInside = column >= 0 && row >= 0 && column < 6 && row < 5;
        const double above = isInside ? At(std::get<Samples>(placed), x, y, 0) : 122;
        shown += above != 122;
        ASSERT_EQ(At(std::get<Samples>(made), x, y, 0), above == 122 ? At(under, x, y, 0) : above)
            << x << "," << y;
      }
    }
    EXPECT_GT(shown, 40);
  }
}

TEST(GridStage, MissingNumber_Should_BeThatOfTheWiderType) {
  Samples under = GridOf(NumberType::float32, 2, 1), over = GridOf(NumberType::float64, 1, 1);
  GridCombination combination = Over(over, Shift(5, 5));
  combination.noData = -3.4028235e+38;
  Set(under, 0, 0, 0, -3.4028235e+38);
  Set(under, 1, 0, 0, 7);
  const Pixels made = MadeBy(*GridStage({2, 1}, combination), Pixels(std::move(under)));
  EXPECT_EQ(At(std::get<Samples>(made), 0, 0, 0), -3.4028235e+38);
  EXPECT_EQ(At(std::get<Samples>(made), 1, 0, 0), 7);
}

TEST(GridStage, NaNOfTheUpper_Should_ShowTheLower) {
  Samples under = GridOf(NumberType::int16, 1, 1), over = GridOf(NumberType::float32, 1, 1);
  Set(under, 0, 0, 0, 5);
  Set(over, 0, 0, 0, std::nan(""));
  const Pixels made = MadeBy(*GridStage({1, 1}, Over(over, {})), Pixels(std::move(under)));
  EXPECT_EQ(At(std::get<Samples>(made), 0, 0, 0), 5);
}

TEST(GridStage, NumbersThatBecomeNoData_Should_BeALoss) {
  Samples under = GridOf(NumberType::int16, 3, 1), over = GridOf(NumberType::int16, 3, 1);
  Set(over, 0, 0, 0, 111);
  Set(over, 1, 0, 0, 1);
  Set(over, 2, 0, 0, 111);
  Changes changes;
  GridStage({3, 1}, Over(over, {}))->Make(Pixels(std::move(under)), {}, changes);
  ASSERT_EQ(changes.losses.size(), 1u);
  EXPECT_EQ(changes.losses[0].kind, LossKind::noData);
  EXPECT_EQ(changes.losses[0].what, "2 numbers of the second grid");
}

TEST(GridStage, WhatIsNoGrid_Should_BeRefused) {
  const Samples over = GridOf(NumberType::int16, 3, 1);
  Samples two = GridOf(NumberType::int16, 3, 1, 2);
  EXPECT_THROW(MadeBy(*GridStage({3, 1}, Over(over, {})), Pixels(std::move(two))),
               UnsupportedError);
  PixelLayout colors;
  colors.type = NumberType::uint16;
  colors.bits = 16;
  EXPECT_THROW(MadeBy(*GridStage({3, 1}, Over(over, {})), Pixels(Samples(colors, 3, 1))),
               UnsupportedError);
  GridCombination linear = Over(GridOf(NumberType::int64, 3, 1), {});
  linear.filter = Filter::linear;
  EXPECT_THROW(MadeBy(*GridStage({3, 1}, linear), Pixels(GridOf(NumberType::int64, 3, 1))),
               UnsupportedError);
  EXPECT_THROW(GridStage({3, 1}, {}), RangeError);
}

}  // namespace
}  // namespace rasterkit
