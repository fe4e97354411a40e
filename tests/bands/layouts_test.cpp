#include <gtest/gtest.h>

#include <rasterkit/bands/layouts.h>
#include <rasterkit/bands/stages.h>

#include "tests/bands/band_pictures.h"

namespace rasterkit {
namespace {

using test::MadeBy;

/// What was foretold is what was made; where it depends on the pixels, it may take more.
void ExpectForetold(const PixelLayout& foretold, const PixelLayout& made) {
  EXPECT_EQ(foretold.type, made.type);
  EXPECT_EQ(foretold.bits, made.bits);
  EXPECT_EQ(foretold.bands, made.bands);
  EXPECT_EQ(foretold.extraBands, made.extraBands);
  EXPECT_EQ(foretold.profile, made.profile);
  EXPECT_EQ(foretold.alpha, made.alpha);
  const bool isGray = made.model == ColorModel::gray || made.model == ColorModel::grayWhiteIsZero;
  if (foretold.model != ColorModel::palette || !isGray) {
    EXPECT_EQ(foretold.model, made.model);
  }
}

Pixels WithProfile(Pixels pixels) {
  if (auto* raster = std::get_if<Raster>(&pixels)) {
    raster->profile = std::make_shared<std::vector<uint8_t>>(4);
  }
  return pixels;
}

std::vector<std::pair<std::string, ColorChange>> Changes1() {
  AdjustColors tint, contrast, sharper;
  tint.red = 20;
  contrast.contrast = 20;
  sharper.sharpen = 20;
  SetPaletteEntries entries;
  entries.entries = {{0, 0x010203}};
  std::vector<std::pair<std::string, ColorChange>> changes = {
      {"gray", MakeGray{}},
      {"gray in true color", MakeGray{true}},
      {"mono", MakeMono{}},
      {"mono in colors", MakeMono{125, 0x102030, clWhite}},
      {"mono reversed", MakeMono{125, clWhite, clBlack}},
      {"tint", tint},
      {"contrast", contrast},
      {"sharper", sharper},
      {"whiten", WhitenLight{100, false}},
      {"whiten to transparent", WhitenLight{100, true}},
      {"recolor", RecolorByGray{100, false, 0x102030, {}}},
      {"recolor gray", RecolorByGray{100, true, 0x303030, {}}},
      {"recolor with opacity", RecolorByGray{100, false, 0x102030, 7}},
      {"key", ReplaceKeyColor{0x102030, false}},
      {"key to transparent", ReplaceKeyColor{0x303030, true}},
      {"white for PDF", WhiteForPdf{}},
      {"opaque", PaintTransparency{}},
      {"swap", SwapOpacity{}},
      {"entries", entries}};
  for (const int bits : {1, 4, 8, 24, 32}) {
    changes.emplace_back("bits " + std::to_string(bits), SetBits{bits});
  }
  return changes;
}

bool IsRefused(const ColorChange& change, const PixelLayout& layout) {
  if (std::holds_alternative<SwapOpacity>(change)) return layout.alpha == AlphaKind::none;
  return std::holds_alternative<SetPaletteEntries>(change) && layout.bits * layout.bands > 8;
}

TEST(LayoutsTest, ChangesAreForetold) {
  std::mt19937 random(1);
  for (const auto& kind : test::RasterKinds()) {
    for (const auto& [name, change] : Changes1()) {
      for (const bool hasProfile : {false, true}) {
        SCOPED_TRACE(kind.name + ", " + name);
        Pixels source = kind.make(6, 5, random);
        if (hasProfile) source = WithProfile(std::move(source));
        const PixelLayout layout = LayoutOf(source);
        ASSERT_TRUE(IsRasterLayout(layout));
        if (IsRefused(change, layout)) continue;
        const PixelLayout made = LayoutOf(MadeBy(*ChangeStage({6, 5}, change), source));
        PixelLayout foretold = LayoutAfter(change, layout);
        if (name == "white for PDF" && foretold.bands == 3 && made.bands == 1) {
          // An entry that no pixel uses made room for white.
          EXPECT_EQ(foretold.bits, 8);
          EXPECT_EQ(made.alpha, foretold.alpha);
          continue;
        }
        ExpectForetold(foretold, made);
      }
    }
  }
}

TEST(LayoutsTest, ANewPaletteIsForetold) {
  std::mt19937 random(2);
  for (const auto& kind : test::RasterKinds()) {
    for (const HPALETTE& palette : {DefaultPalette(pf8bit), DefaultPalette(pf4bit)}) {
      SCOPED_TRACE(kind.name);
      const Pixels source = WithProfile(kind.make(6, 5, random));
      const UsePalette change{palette};
      const PixelLayout made = LayoutOf(MadeBy(*ChangeStage({6, 5}, change), source));
      const PixelLayout foretold = LayoutAfter(change, LayoutOf(source));
      ExpectForetold(foretold, made);
      EXPECT_EQ(foretold.palette, palette);
      EXPECT_EQ(made.palette, palette);
    }
    const Pixels source = kind.make(6, 5, random);
    const UsePalette grays{GrayPalette(256)};
    ExpectForetold(LayoutAfter(grays, LayoutOf(source)),
                   LayoutOf(MadeBy(*ChangeStage({6, 5}, grays), source)));
  }
}

std::vector<LossKind> LossesOf(const ColorChange& change, const PixelLayout& layout) {
  Changes changes;
  LayoutAfter(change, layout, &changes);
  std::vector<LossKind> kinds;
  for (const Loss& loss : changes.losses) kinds.push_back(loss.kind);
  return kinds;
}

TEST(LayoutsTest, DroppedTransparencyAndProfilesAreLosses) {
  PixelLayout layout;
  layout.bands = 4;
  layout.alpha = AlphaKind::straight;
  layout.profile = std::make_shared<std::vector<uint8_t>>(4);
  using Kinds = std::vector<LossKind>;
  EXPECT_EQ(LossesOf(MakeMono{}, layout), (Kinds{LossKind::alpha, LossKind::profile}));
  EXPECT_EQ(LossesOf(SetBits{24}, layout), Kinds{LossKind::alpha});
  EXPECT_EQ(LossesOf(UsePalette{DefaultPalette(pf8bit)}, layout), Kinds{LossKind::alpha});
  EXPECT_EQ(LossesOf(SetBits{32}, layout), Kinds{});
  EXPECT_EQ(LossesOf(PaintTransparency{}, layout), Kinds{});
  EXPECT_EQ(LossesOf(MakeGray{}, layout), Kinds{});
  layout.alpha = AlphaKind::none;
  layout.bands = 3;
  EXPECT_EQ(LossesOf(MakeGray{}, layout), Kinds{LossKind::profile});
  EXPECT_EQ(LossesOf(MakeGray{true}, layout), Kinds{});
  layout.alpha = AlphaKind::transparentColor;
  Changes changes;
  LayoutAfterCombine(layout, CombineMode::shadow, &changes);
  ASSERT_EQ(changes.losses.size(), 1u);
  EXPECT_EQ(changes.losses[0].kind, LossKind::transparentColor);
}

TEST(LayoutsTest, SizesAreForetold) {
  std::mt19937 random(2);
  const Sides from{9, 8};
  for (const auto& kind : test::EveryKind()) {
    const Pixels source = kind.make(from.width, from.height, random);
    const PixelLayout layout = LayoutOf(source);
    const bool isRaster = std::holds_alternative<Raster>(source);
    const bool isWide = layout.type == NumberType::int64 || layout.type == NumberType::uint64;
    for (const Sides to : {Sides{9, 8}, Sides{4, 8}, Sides{20, 30}, Sides{3, 11}}) {
      for (const Filter filter :
           {Filter::automatic, Filter::nearest, Filter::linear, Filter::area}) {
        if (isWide && (filter == Filter::linear || filter == Filter::area)) continue;
        SCOPED_TRACE(kind.name + ", filter " + std::to_string(static_cast<int>(filter)));
        ExpectForetold(LayoutAfterResize(layout, isRaster, from, to, filter),
                       LayoutOf(MadeBy(*ResizeStage(from, to, filter), source)));
      }
    }
  }
}

TEST(LayoutsTest, RotationsAreForetold) {
  std::mt19937 random(3);
  const Sides sides{9, 8};
  for (const auto& kind : test::EveryKind()) {
    const Pixels source = kind.make(sides.width, sides.height, random);
    const PixelLayout layout = LayoutOf(source);
    const bool isRaster = std::holds_alternative<Raster>(source);
    const bool isWide = layout.type == NumberType::int64 || layout.type == NumberType::uint64;
    for (const Fill::Kind fill : {Fill::Kind::color, Fill::Kind::transparent, Fill::Kind::noData,
                                  Fill::Kind::edge, Fill::Kind::automatic}) {
      for (const Filter filter : {Filter::automatic, Filter::nearest, Filter::linear}) {
        if (isWide && filter == Filter::linear) continue;
        SCOPED_TRACE(kind.name + ", fill " + std::to_string(static_cast<int>(fill)) + ", filter " +
                     std::to_string(static_cast<int>(filter)));
        Resampling how;
        how.filter = filter;
        how.fill.kind = fill;
        how.noData = 1;
        ExpectForetold(LayoutAfterRotate(layout, isRaster, how),
                       LayoutOf(MadeBy(*RotateStage(sides, 33, how), source)));
      }
    }
  }
}

TEST(LayoutsTest, CombinationsAreForetold) {
  std::mt19937 random(4);
  const auto over = std::make_shared<Raster>(
      std::move(std::get<Raster>(test::RasterKinds()[5].make(4, 4, random))));
  for (const auto& kind : test::RasterKinds()) {
    const Pixels source = kind.make(8, 8, random);
    for (const CombineMode mode :
         {CombineMode::key, CombineMode::transparent, CombineMode::watermark}) {
      Combination combination;
      combination.over = over;
      combination.mode = mode;
      SCOPED_TRACE(kind.name);
      ExpectForetold(LayoutAfterCombine(LayoutOf(source), mode),
                     LayoutOf(MadeBy(*CombineStage({8, 8}, combination), source)));
    }
  }
}

}  // namespace
}  // namespace rasterkit
