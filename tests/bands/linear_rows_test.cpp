#include <array>
#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
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

struct Corner {
  int x, y;
  int64_t weight;
};

/// The four pixels around a place, with weights in 1/65536 of a pixel along each side.
std::array<Corner, 4> CornersOf(MapPoint place) {
  const int x = static_cast<int>(std::floor(place.x)), y = static_cast<int>(std::floor(place.y));
  const auto right = static_cast<int64_t>(std::floor((place.x - x) * 65536 + 0.5));
  const auto down = static_cast<int64_t>(std::floor((place.y - y) * 65536 + 0.5));
  return {Corner{x, y, (65536 - right) * (65536 - down)}, Corner{x + 1, y, right * (65536 - down)},
          Corner{x, y + 1, (65536 - right) * down}, Corner{x + 1, y + 1, right * down}};
}

/// The pixel at a place of a picture whose edge pixels go on without end.
std::vector<uint8_t> Interpolated(const Pixels& source, const Pixels& made, MapPoint place) {
  const reference::Bands bands = reference::BandsOf(source, made);
  const bool isExact = bands.type == NumberType::uint8 || bands.type == NumberType::uint16;
  std::vector<uint8_t> bytes;
  for (int band = 0; band < bands.count; ++band) {
    const bool isColor = bands.hasStraightAlpha && band + 1 < bands.count;
    reference::Whole exact = 0, exactAlpha = 0, exactPlain = 0;
    double sum = 0, alphas = 0, plain = 0;
    for (const Corner& corner : CornersOf(place)) {
      const int x = std::clamp(corner.x, 0, WidthOf(source) - 1);
      const int y = std::clamp(corner.y, 0, HeightOf(source) - 1);
      const double number = reference::BandAt(source, bands, x, y, band);
      const double alpha = isColor ? reference::BandAt(source, bands, x, y, bands.count - 1) : 1;
      exact += reference::Whole{corner.weight} * static_cast<int64_t>(alpha) *
               static_cast<int64_t>(isExact ? number : 0);
      exactAlpha += reference::Whole{corner.weight} * static_cast<int64_t>(alpha);
      exactPlain += reference::Whole{corner.weight} * static_cast<int64_t>(isExact ? number : 0);
      const auto weight = static_cast<double>(corner.weight);
      sum += weight * alpha * number;
      alphas += weight * alpha;
      plain += weight * number;
    }
    constexpr int64_t kAll = int64_t{65536} * 65536;
    if (isExact) {
      reference::AppendNumber(
          bytes, bands.type,
          static_cast<double>(exactAlpha != 0 ? reference::ExactQuotient(exact, exactAlpha)
                                              : reference::ExactQuotient(exactPlain, kAll)));
    } else {
      reference::AppendNumber(bytes, bands.type, alphas != 0 ? sum / alphas : plain / kAll);
    }
  }
  return bytes;
}

bool IsWide(const Pixels& source) {
  const NumberType type = LayoutOf(source).type;
  return type == NumberType::int64 || type == NumberType::uint64;
}

Resampling Linear(Fill::Kind kind, TColor color = clWhite) {
  Resampling how;
  how.filter = Filter::linear;
  how.fill = {kind, color};
  return how;
}

TEST(LinearRotationTest, InterpolatesBetweenTheFourPixelsAround) {
  std::mt19937 random(1);
  for (const auto& kind : test::EveryKind()) {
    const Sides sides{9, 7};
    const Pixels source = kind.make(sides.width, sides.height, random);
    if (IsWide(source)) {
      EXPECT_THROW(MadeBy(*RotateStage(sides, 20, Linear(Fill::Kind::edge)), source),
                   UnsupportedError);
      continue;
    }
    for (const double degrees : {20.0, 123.4}) {
      SCOPED_TRACE(kind.name + ", " + std::to_string(degrees));
      const auto stage = RotateStage(sides, degrees, Linear(Fill::Kind::edge));
      const Pixels made = MadeInEveryWay(*stage, source);
      const RotationFrame frame = FrameOfRotation(sides, degrees);
      ASSERT_EQ(SidesOf(made), frame.sides);
      for (int y = 0; y < frame.sides.height; ++y) {
        for (int x = 0; x < frame.sides.width; ++x) {
          ASSERT_EQ(PixelAt(made, x, y), Interpolated(source, made, frame.toOld.At(x, y)))
              << x << ", " << y;
        }
      }
    }
  }
}

TEST(LinearRotationTest, PlainAreasStayPlainAndCornersAreFilled) {
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    Raster source(format, 20, 14);
    for (int y = 0; y < 14; ++y) {
      for (size_t i = 0; i < source.RowBytes(); ++i) source.Row(y)[i] = 77;
    }
    source.ClearPadding();
    if (format == pf32bit) source.alphaFormat = afDefined;
    for (const Fill::Kind fill : {Fill::Kind::color, Fill::Kind::transparent, Fill::Kind::edge}) {
      const Pixels made =
          MadeBy(*RotateStage({20, 14}, 31, Linear(fill, 0x4D4D4D)), Pixels(source.Clone()));
      for (int y = 0; y < HeightOf(made); ++y) {
        for (int x = 0; x < WidthOf(made); ++x) {
          const test::SeenPixel pixel = test::Seen(made, x, y);
          // Premultiplied: what is partly transparent keeps its color.
          if (pixel.opacity > 0) {
            ASSERT_EQ(pixel.color, 0x4D4D4D) << x << ", " << y;
          }
        }
      }
      const int opaque = format == pf32bit ? 77 : 255;
      EXPECT_EQ(test::Seen(made, WidthOf(made) / 2, HeightOf(made) / 2).opacity, opaque);
      const int corner = test::Seen(made, 0, 0).opacity;
      if (fill == Fill::Kind::transparent) {
        EXPECT_EQ(corner, 0);
      } else if (fill == Fill::Kind::color) {
        EXPECT_EQ(corner, 255);
      }
    }
  }
}

TEST(LinearRotationTest, NumbersThatWereNotMeasuredAreNotMixedIn) {
  PixelLayout layout;
  layout.type = NumberType::int16;
  layout.bits = 16;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  std::mt19937 random(2);
  Samples samples(layout, 30, 25);
  for (int y = 0; y < 25; ++y) {
    for (int x = 0; x < 30; ++x) {
      const auto number = static_cast<int16_t>(random() % 4 == 0 ? -9999 : 500 + random() % 20);
      std::memcpy(samples.Row(y) + 2 * x, &number, 2);
    }
  }
  const Pixels source(std::move(samples));
  Resampling how = Linear(Fill::Kind::noData);
  how.noData = -9999;
  const Pixels made = MadeInEveryWay(*RotateStage({30, 25}, 12, how), source);
  int missing = 0;
  for (int y = 0; y < HeightOf(made); ++y) {
    for (int x = 0; x < WidthOf(made); ++x) {
      const int16_t number = reference::As<int16_t>(PixelAt(made, x, y).data());
      missing += number == -9999 ? 1 : 0;
      ASSERT_TRUE(number == -9999 || (number >= 500 && number < 520)) << number;
    }
  }
  EXPECT_GT(missing, 30 * 25 / 5);
}

TEST(LinearRotationTest, ThreadsMakeTheSameBytes) {
  std::mt19937 random(3);
  for (const auto& kind : test::EveryKind()) {
    const Pixels source = kind.make(120, 90, random);
    if (IsWide(source)) continue;
    const auto stage = RotateStage({120, 90}, 47.11, Linear(Fill::Kind::transparent));
    ASSERT_TRUE(test::SameRows(MadeBy(*stage, source), MadeBy(*stage, source, 7))) << kind.name;
  }
}

TEST(LinearRotationTest, GrayRampsStayGrayAndPalettesBecomeTrueColor) {
  std::mt19937 random(4);
  for (const auto& kind : test::RasterKinds()) {
    const Pixels source = kind.make(10, 10, random);
    const Pixels made = MadeBy(*RotateStage({10, 10}, 20, Linear(Fill::Kind::color)), source);
    const auto& raster = std::get<Raster>(made);
    const bool isGray = kind.name == "gray" || kind.name == "16 grays" || kind.name == "plan" ||
                        kind.name == "white plan";
    if (isGray) {
      EXPECT_TRUE(raster.Format() == pf8bit && IsGrayRamp(raster.palette)) << kind.name;
    } else if (kind.name != "format 1") {
      const auto& before = std::get<Raster>(source);
      const bool hasAlpha = before.transparentColor || before.alphaFormat == afDefined;
      EXPECT_EQ(raster.Format(), hasAlpha ? pf32bit : pf24bit) << kind.name;
    }
  }
}

}  // namespace
}  // namespace rasterkit
