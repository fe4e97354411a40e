#include <algorithm>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/pictures/fitting/fit_pixels.h>

#include "tests/support/test_pictures.h"

/// What a file format cannot hold is converted in bands as in the whole picture.
namespace rasterkit::detail {
namespace {

using test::GradientRaster;

Pixels CloneOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) -> Pixels { return rows.Clone(); }, pixels);
}

std::string BytesOf(const Pixels& pixels) {
  std::string bytes;
  std::visit(
      [&](const auto& rows) {
        for (int y = 0; y < rows.Height(); ++y) {
          bytes.append(reinterpret_cast<const char*>(rows.Row(y)), rows.Stride());
        }
      },
      pixels);
  return bytes;
}

std::string TextOf(const Changes& changes) {
  std::string text;
  for (const Loss& loss : changes.losses) text += loss.what + ": " + loss.why + '\n';
  for (const std::string& note : changes.notes) text += note + '\n';
  return text;
}

/// Numbers that rise from row to row.
Samples NumbersOf(const PixelLayout& layout, int width, int height) {
  Samples samples(layout, width, height);
  for (int y = 0; y < height; ++y) {
    for (size_t i = 0; i < samples.Stride(); ++i) {
      samples.Row(y)[i] = static_cast<uint8_t>((static_cast<size_t>(y) * 3 + i) % 4);
    }
  }
  return samples;
}

PixelLayout LayoutOfNumbers(NumberType type, int bits, int bands, ColorModel model) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = bits;
  layout.bands = bands;
  layout.model = model;
  return layout;
}

std::vector<Pixels> Kinds() {
  constexpr int kWidth = 37, kHeight = 50;
  std::vector<Pixels> kinds;
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    kinds.emplace_back(GradientRaster(format, kWidth, kHeight));
  }
  Raster alpha = GradientRaster(pf32bit, kWidth, kHeight);
  alpha.alphaFormat = afDefined;
  kinds.emplace_back(std::move(alpha));
  for (const TPixelFormat format : {pf4bit, pf8bit, pf24bit}) {
    Raster marked = GradientRaster(format, kWidth, kHeight);
    marked.transparentColor = marked.PixelColor(3, 4);
    kinds.emplace_back(std::move(marked));
  }
  // Grays that are no ramp.
  Raster grays = GradientRaster(pf8bit, kWidth, kHeight);
  std::vector<tagPALETTEENTRY> entries(256);
  for (size_t i = 0; i < entries.size(); ++i) {
    const auto gray = static_cast<uint8_t>(i * 7);
    entries[i] = {gray, gray, gray, 0};
  }
  grays.palette = HPALETTE(entries);
  kinds.emplace_back(std::move(grays));
  const auto add = [&](const PixelLayout& layout) {
    kinds.emplace_back(NumbersOf(layout, kWidth, kHeight));
  };
  add(LayoutOfNumbers(NumberType::uint16, 16, 1, ColorModel::gray));
  add(LayoutOfNumbers(NumberType::uint16, 10, 1, ColorModel::gray));
  add(LayoutOfNumbers(NumberType::uint8, 2, 3, ColorModel::rgb));
  add(LayoutOfNumbers(NumberType::uint16, 12, 3, ColorModel::rgb));
  add(LayoutOfNumbers(NumberType::int16, 16, 1, ColorModel::gray));
  add(LayoutOfNumbers(NumberType::float32, 32, 1, ColorModel::gray));
  add(LayoutOfNumbers(NumberType::uint8, 8, 4, ColorModel::cmyk));
  return kinds;
}

void ExpectSameInBands(const Pixels& pixels, const PixelFit& fit) {
  Metadata metadata;
  Changes changes;
  const Pixels whole = FitPixels(CloneOf(pixels), fit, metadata, changes);
  EXPECT_TRUE(IsFit(whole, fit));
  const Sides sides{WidthOf(pixels), HeightOf(pixels)};
  for (const int rows : {1, 7, 64}) {
    SCOPED_TRACE(fmt::format("{} rows", rows));
    FlowSettings settings;
    settings.rows = rows;
    const auto lost = std::make_shared<Changes>();
    BandFlow flow(RowsInMemory(CloneOf(pixels)), FitStages(pixels, sides, fit, lost), settings);
    flow.Begin({});
    EXPECT_TRUE(IsFit(flow.Like(), fit));
    std::string bytes;
    flow.Run({}, [&](Pixels& band, int) { bytes += BytesOf(band); });
    CodecReport report;
    Changes others;
    flow.Finish(report, others);
    Pixels like = NewPixels(flow.Like(), 1, 1);
    Metadata again;
    FitKind(like, LayoutOf(pixels), fit, again, *lost);
    EXPECT_TRUE(bytes == BytesOf(whole));
    EXPECT_EQ(TextOf(*lost), TextOf(changes));
    EXPECT_EQ(TextOf(others), "");
    EXPECT_EQ(LayoutOf(like).BitsPerPixel(), LayoutOf(whole).BitsPerPixel());
    EXPECT_EQ(LayoutOf(like).model, LayoutOf(whole).model);
    EXPECT_EQ(LayoutOf(like).alpha, LayoutOf(whole).alpha);
  }
}

TEST(FitStages, GiveTheSameInBandsAsInTheWhole) {
  const std::vector<Pixels> kinds = Kinds();
  for (size_t i = 0; i < kinds.size(); ++i) {
    for (const PictureType type :
         {PictureType::bmp, PictureType::jpeg, PictureType::png, PictureType::tiff}) {
      SCOPED_TRACE(fmt::format("kind {} as {}", i, PictureTypeName(type)));
      PixelFit fit;
      fit.type = type;
      fit.background = 0x204060;
      fit.noData = i % 2 == 0 ? "1" : "";
      ExpectSameInBands(kinds[i], fit);
    }
  }
}

TEST(FitStages, AreNone_When_TheFormatHoldsThePixels) {
  PixelFit fit;
  fit.type = PictureType::tiff;
  const auto lost = std::make_shared<Changes>();
  const Pixels colors = GradientRaster(pf24bit, 5, 4);
  EXPECT_TRUE(IsFit(colors, fit));
  EXPECT_TRUE(FitStages(colors, {5, 4}, fit, lost).empty());
  fit.type = PictureType::jpeg;
  EXPECT_TRUE(IsFit(colors, fit));
  EXPECT_FALSE(IsFit(Pixels(GradientRaster(pf4bit, 5, 4)), fit));
}

TEST(FitStages, LeavePixelsAlone_When_TheyAreOtherOnesThanForetold) {
  PixelFit fit;
  fit.type = PictureType::jpeg;
  const auto lost = std::make_shared<Changes>();
  Raster alpha = GradientRaster(pf32bit, 9, 20);
  alpha.alphaFormat = afDefined;
  const Stages stages = FitStages(Pixels(std::move(alpha)), {9, 20}, fit, lost);
  const Pixels colors = GradientRaster(pf24bit, 9, 20);
  FlowSettings settings;
  settings.rows = 7;
  BandFlow flow(RowsInMemory(CloneOf(colors)), stages, settings);
  flow.Begin({});
  std::string bytes;
  flow.Run({}, [&](Pixels& band, int) { bytes += BytesOf(band); });
  EXPECT_TRUE(bytes == BytesOf(colors));
  EXPECT_EQ(TextOf(*lost), "");
}

}  // namespace
}  // namespace rasterkit::detail
