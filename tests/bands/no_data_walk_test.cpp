#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <set>

#include <gtest/gtest.h>

#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/stages.h>

#include "tests/bands/band_pictures.h"

/// Every pixel of small grids is "not measured" in turn, alone and in pairs: no step mixes it with
/// measured numbers, at no border.
namespace rasterkit {
namespace {

using detail::LoadNumber;
using detail::NumberOf;
using detail::ValueOf;
using detail::WithNumberType;
using test::MadeBy;

constexpr std::array kTypes = {NumberType::int8,   NumberType::uint16,  NumberType::int16,
                               NumberType::uint32, NumberType::int32,   NumberType::uint64,
                               NumberType::int64,  NumberType::float16, NumberType::float32,
                               NumberType::float64};
constexpr double kLeast = 20, kGreatest = 40;

/// Far from all numbers, so that a mix shows.
double MissingOf(NumberType type) {
  return type == NumberType::int8 ? -128 : 9984;
}

Samples GridOf(NumberType type, Sides sides, const std::set<int>& missing) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples grid(layout, sides.width, sides.height);
  for (int i = 0; i < sides.width * sides.height; ++i) {
    const double number = missing.contains(i) ? MissingOf(type) : kLeast + i;
    WithNumberType(type, [&](auto zero) {
      const auto value = NumberOf<decltype(zero)>(number);
      std::memcpy(grid.Row(i / sides.width) + static_cast<size_t>(i % sides.width) * sizeof value,
                  &value, sizeof value);
    });
  }
  return grid;
}

double At(const Samples& grid, int x, int y) {
  return WithNumberType(grid.Layout().type, [&](auto zero) {
    return ValueOf(LoadNumber<decltype(zero)>(grid.Row(y) + static_cast<size_t>(x) * sizeof zero));
  });
}

/// `isMissing` says where the result must be "not measured".
void ExpectUnmixed(const Pixels& made, NumberType type,
                   const std::function<bool(int x, int y)>& isMissing, const std::string& what) {
  const Samples& grid = std::get<Samples>(made);
  ASSERT_EQ(grid.Layout().type, type) << what;
  for (int y = 0; y < grid.Height(); ++y) {
    for (int x = 0; x < grid.Width(); ++x) {
      const double number = At(grid, x, y);
      if (isMissing(x, y)) {
        ASSERT_EQ(number, MissingOf(type)) << what << " " << x << "," << y;
      } else {
        ASSERT_GE(number, kLeast) << what << " " << x << "," << y;
        ASSERT_LE(number, kGreatest) << what << " " << x << "," << y;
      }
    }
  }
}

/// Calls `check` with every single pixel missing, every pair of neighbors, and all.
void Walk(Sides sides, const std::function<void(const std::set<int>& missing)>& check) {
  const int count = sides.width * sides.height;
  std::set<int> all;
  for (int i = 0; i < count; ++i) {
    all.insert(i);
    check({i});
    if (i % sides.width + 1 < sides.width) check({i, i + 1});
    if (i + sides.width < count) check({i, i + sides.width});
  }
  check(all);
}

constexpr Sides kSides[] = {{1, 1}, {2, 1}, {1, 3}, {3, 2}, {4, 3}};

bool IsWide(NumberType type) {
  return type == NumberType::uint64 || type == NumberType::int64;
}

TEST(NoDataWalk, NearestRotations_Should_MoveNumbersAndFillCorners) {
  for (const NumberType type : kTypes) {
    for (const Sides sides : kSides) {
      for (const double degrees : {1.0, 30.0, 45.0, 89.0, 133.3, 211.0}) {
        Resampling how;
        how.fill.kind = Fill::Kind::usual;
        how.noData = MissingOf(type);
        // Where a picture of ones has pixels.
        const Pixels places = MadeBy(*RotateStage(sides, degrees, how), GridOf(type, sides, {}));
        Walk(sides, [&](const std::set<int>& missing) {
          const Pixels made =
              MadeBy(*RotateStage(sides, degrees, how), GridOf(type, sides, missing));
          std::set<double> gone;
          for (const int i : missing) gone.insert(kLeast + i);
          ExpectUnmixed(
              made, type,
              [&](int x, int y) {
                const double before = At(std::get<Samples>(places), x, y);
                return before == MissingOf(type) || gone.contains(before);
              },
              "rotation by " + std::to_string(degrees));
        });
      }
    }
  }
}

/// The source pixel whose center is nearest; nothing beyond the corners around the edge.
struct Nearest {
  int x = 0, y = 0;
  bool isInside = false;
};
Nearest NearestOf(MapPoint place, Sides sides) {
  // Weights are multiples of 1/65536 of a pixel; the first of equal ones counts.
  const auto along = [](double number) {
    const double floor = std::floor(number);
    const double rest = std::floor((number - floor) * 65536 + 0.5);
    return static_cast<int>(floor) + (rest > 32768 ? 1 : 0);
  };
  const int x = along(place.x), y = along(place.y);
  return {x, y, x >= 0 && y >= 0 && x < sides.width && y < sides.height};
}

TEST(NoDataWalk, LinearTurns_Should_LeaveMissingNumbersOut) {
  for (const NumberType type : kTypes) {
    if (IsWide(type)) continue;
    for (const Sides sides : kSides) {
      for (const double degrees : {1.0, 30.0, 45.0, 60.0, 89.0, 133.3}) {
        Resampling how;
        how.filter = Filter::linear;
        how.fill.kind = Fill::Kind::usual;
        how.noData = MissingOf(type);
        const RotationFrame frame = FrameOfRotation(sides, degrees);
        Walk(sides, [&](const std::set<int>& missing) {
          const Pixels made = MadeBy(*AffineStage(sides, frame.toOld, frame.sides, how),
                                     GridOf(type, sides, missing));
          ExpectUnmixed(
              made, type,
              [&](int x, int y) {
                const double column =
                    frame.toOld.xPerColumn * x + (frame.toOld.xPerRow * y + frame.toOld.x);
                const double row =
                    frame.toOld.yPerColumn * x + (frame.toOld.yPerRow * y + frame.toOld.y);
                const Nearest nearest = NearestOf({column, row}, sides);
                return !nearest.isInside || missing.contains(nearest.y * sides.width + nearest.x);
              },
              "linear turn by " + std::to_string(degrees));
        });
      }
    }
  }
}

/// Whether source position `j` of `size` has a part in target position `i` of `length`.
bool Counts(int i, int length, int j, int size, bool isArea) {
  if (isArea) return std::max(i * size, j * length) < std::min((i + 1) * size, (j + 1) * length);
  const int unit = 2 * length;
  const int center = std::clamp((2 * i + 1) * size - length, 0, (size - 1) * unit);
  return std::abs(center - j * unit) < unit;
}

TEST(NoDataWalk, Resizes_Should_LeaveMissingNumbersOut) {
  for (const NumberType type : kTypes) {
    if (IsWide(type)) continue;
    for (const Sides sides : kSides) {
      for (const Sides target : {Sides{1, 1}, {2, 2}, {3, 1}, {5, 7}, {8, 2}}) {
        if (target == sides) continue;
        for (const Filter filter : {Filter::automatic, Filter::area, Filter::linear}) {
          const auto stage = ResizeStage(sides, target, filter, MissingOf(type));
          Walk(sides, [&](const std::set<int>& missing) {
            const auto isArea = [&](int length, int size) {
              return filter == Filter::area || (filter == Filter::automatic && length <= size);
            };
            ExpectUnmixed(
                MadeBy(*stage, GridOf(type, sides, missing)), type,
                [&](int x, int y) {
                  for (int i = 0; i < sides.width * sides.height; ++i) {
                    const int column = i % sides.width, row = i / sides.width;
                    const bool isPart = Counts(x, target.width, column, sides.width,
                                               isArea(target.width, sides.width)) &&
                                        Counts(y, target.height, row, sides.height,
                                               isArea(target.height, sides.height));
                    if (isPart && !missing.contains(i)) return false;
                  }
                  return true;
                },
                "resize to " + std::to_string(target.width) + " x " +
                    std::to_string(target.height));
          });
        }
      }
    }
  }
}

TEST(NoDataWalk, Bytes_Should_BeFilledWithTheirOwnNumber) {
  Raster rows(pf8bit, 3, 2);
  rows.palette = GrayPalette(256);
  for (int i = 0; i < 6; ++i) rows.Row(i / 3)[i % 3] = static_cast<uint8_t>(100 + i);
  for (const Filter filter : {Filter::nearest, Filter::linear}) {
    Resampling how;
    how.filter = filter;
    how.fill.kind = Fill::Kind::usual;
    how.noData = 7;
    const Pixels made = MadeBy(*RotateStage({3, 2}, 30, how), Pixels(rows.Clone()));
    const Raster& raster = std::get<Raster>(made);
    int missing = 0;
    for (int y = 0; y < raster.Height(); ++y) {
      for (int x = 0; x < raster.Width(); ++x) {
        const int number = raster.Row(y)[x];
        EXPECT_TRUE(number == 7 || (number >= 100 && number <= 105)) << number;
        missing += number == 7;
      }
    }
    EXPECT_GT(missing, 0);
  }
  Resampling tooLarge;
  tooLarge.fill.kind = Fill::Kind::usual;
  tooLarge.noData = 300;
  const Pixels white = MadeBy(*RotateStage({3, 2}, 30, tooLarge), Pixels(rows.Clone()));
  EXPECT_EQ(std::get<Raster>(white).Row(0)[0], 255) << "the color";
}

}  // namespace
}  // namespace rasterkit
