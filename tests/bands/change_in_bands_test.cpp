#include <cstring>
#include <span>

#include <gtest/gtest.h>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"
#include "tests/bands/colors_in_bands.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::InBands;
using test::PictureKind;
using test::SidesOf;

constexpr InBands kEveryWay[] = {{1, 1}, {1, 7}, {7, 2}, {64, 1}, {64, 7}};

/// Otsu's threshold of a picture painted onto white.
int ThresholdOf(const Raster& raster) {
  auto bitmap = std::make_unique<TBitmap>(raster.Clone());
  if (detail::HasTransparency(*bitmap)) detail::DropTransparency(bitmap, clWhite);
  bitmap->SetPixelFormat(pf24bit);
  std::array<uint64_t, 256> counts{};
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) ++counts[GrayValue(bitmap->PixelColor(x, y))];
  }
  return detail::OtsuThreshold(counts);
}

/// The change on the whole picture as a bitmap: the plain way.
Raster PlainlyChanged(const Raster& raster, ColorChange change) {
  if (auto* mono = std::get_if<MakeMono>(&change); mono != nullptr && !mono->threshold) {
    mono->threshold = ThresholdOf(raster);
  }
  auto bitmap = std::make_unique<TBitmap>(raster.Clone());
  std::visit([&](const auto& plain) { detail::Change(plain, bitmap); }, change);
  Raster made = bitmap->TakeContent();
  made.ClearPadding();
  return made;
}

testing::AssertionResult SameProperties(const Raster& expected, const Pixels& actual) {
  const auto& made = std::get<Raster>(actual);
  if (made.profile != expected.profile) return testing::AssertionFailure() << "another profile";
  if (made.resolution.x != expected.resolution.x || made.resolution.y != expected.resolution.y) {
    return testing::AssertionFailure() << "another resolution";
  }
  if (!(made.palette == expected.palette)) return testing::AssertionFailure() << "another palette";
  return testing::AssertionSuccess();
}

/// The whole and the divisions are as the plain way.
void ExpectPlain(const ColorChange& change, const Raster& source,
                 std::span<const InBands> ways = kEveryWay) {
  const Pixels pixels = source.Clone();
  const Raster expected = PlainlyChanged(source, change);
  const auto stage = ChangeStage(SidesOf(pixels), change);
  const Pixels plain = expected.Clone(), whole = test::MadeBy(*stage, pixels, 2);
  ASSERT_TRUE(test::SameRows(plain, whole)) << "whole";
  ASSERT_TRUE(SameProperties(expected, whole)) << "whole";
  for (const InBands& how : ways) {
    Changes changes;
    const Pixels made = test::MadeInBands(*stage, pixels, how, changes);
    ASSERT_TRUE(test::SameRows(plain, made)) << how.rows << " rows, " << how.threads << " threads";
    ASSERT_TRUE(SameProperties(expected, made)) << how.rows << " rows";
  }
}

std::vector<ColorChange> EveryChange() {
  AdjustColors bright, dark, contrast, shifted, sharper, softer, all;
  bright.brightness = 30;
  dark.brightness = -45;
  contrast.contrast = 40;
  shifted.red = -20;
  shifted.blue = 55;
  sharper.sharpen = 70;
  softer.sharpen = -100;
  all = {-10, 25, 33, 5, -60, 80};
  SetPaletteEntries entries, first;
  entries.entries = {{0, 0x112233}, {1, 0x445566}};
  first.entries = {{0, 0xFFEEDD}};
  first.first = 0xAABBCC;
  return {MakeGray{},
          MakeGray{true},
          MakeMono{},
          MakeMono{0, 0x101010, 0xE0D0C0},
          MakeMono{256},
          MakeMono{std::nullopt, 0x203040, clWhite},
          bright,
          dark,
          contrast,
          shifted,
          sharper,
          softer,
          all,
          WhitenLight{150},
          WhitenLight{150, true},
          WhitenLight{255, true},
          RecolorByGray{120, false, 0x123456, {}},
          RecolorByGray{120, true, 0x654321, {}},
          RecolorByGray{120, false, 0x123456, 77},
          RecolorByGray{120, true, 0x123456, 0},
          ReplaceKeyColor{0x0000FF, false},
          ReplaceKeyColor{0x00FF00, true},
          WhiteForPdf{},
          PaintTransparency{},
          PaintTransparency{0x336699},
          SwapOpacity{},
          entries,
          first,
          SetBits{1},
          SetBits{4},
          SetBits{8},
          SetBits{15},
          SetBits{16},
          SetBits{24},
          SetBits{32},
          UsePalette{GrayPalette(256)},
          UsePalette{DefaultPalette(pf4bit)},
          UsePalette{DefaultPalette(pf8bit)}};
}

/// Kinds beside those of every stage: marks that contradict each other, and palettes that are not
/// full, with indexes beyond them and without.
std::vector<PictureKind> MoreKinds() {
  std::vector<PictureKind> kinds;
  const auto add = [&](const std::string& name, auto make) {
    kinds.push_back({name, [make](int w, int h, std::mt19937& random) -> Pixels {
                       Raster raster = make(w, h, random);
                       raster.resolution = {120, 90};
                       raster.profile = std::make_shared<std::vector<uint8_t>>(20);
                       return raster;
                     }});
  };
  for (const TPixelFormat format : {pf15bit, pf32bit}) {
    add("key color of format " + std::to_string(format), [format](int w, int h, auto& random) {
      Raster raster = test::RandomRaster(format, w, h, random);
      raster.transparentColor = raster.PixelColor(w / 2, h / 2);
      return raster;
    });
  }
  add("alpha and key color", [](int w, int h, auto& random) {
    Raster raster = test::RandomRaster(pf32bit, w, h, random);
    raster.alphaFormat = afDefined;
    raster.transparentColor = raster.PixelColor(0, 0);
    return raster;
  });
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    for (const bool hasKey : {false, true}) {
      add("short palette " + std::to_string(format) + (hasKey ? " with key" : ""),
          [format, hasKey](int w, int h, auto& random) {
            Raster raster = test::RandomRaster(format, w, h, random);
            raster.palette = test::RandomPalette(format == pf1bit ? 2 : 11, random);
            if (hasKey) raster.transparentColor = EntryColor(raster.palette.Entry(1));
            return raster;
          });
    }
  }
  add("gray with key", [](int w, int h, auto& random) {
    Raster raster = test::RandomRaster(pf8bit, w, h, random);
    raster.palette = GrayPalette(256);
    raster.transparentColor = 0x404040;
    return raster;
  });
  add("few colors", [](int w, int h, auto& random) {
    Raster raster(pf24bit, w, h);
    for (int y = 0; y < h; ++y) {
      for (int x = 0; x < w; ++x) {
        const auto color = static_cast<uint8_t>(random() % 12);
        uint8_t* const pixel = raster.Row(y) + 3 * x;
        pixel[0] = color, pixel[1] = static_cast<uint8_t>(20 * color), pixel[2] = 7;
      }
    }
    raster.ClearPadding();
    return raster;
  });
  return kinds;
}

/// True if the change refuses the picture, plainly and in bands.
bool IsRefused(const ColorChange& change, const Pixels& source) {
  try {
    PlainlyChanged(std::get<Raster>(source), change);
    return false;
  } catch (const Error&) {
    const auto stage = ChangeStage(SidesOf(source), change);
    Changes unused;
    EXPECT_THROW(test::MadeInBands(*stage, source, {7, 1}, unused), Error);
    return true;
  }
}

TEST(ChangeInBands, EveryDivision_Should_GiveThePlainResult) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::vector<PictureKind> kinds = test::RasterKinds();
  for (PictureKind& kind : MoreKinds()) kinds.push_back(std::move(kind));
  const std::vector<ColorChange> changes = EveryChange();
  for (const PictureKind& kind : kinds) {
    for (size_t i = 0; i < changes.size(); ++i) {
      const int width = 1 + static_cast<int>(random() % 40);
      const int height = i % 4 == 0 ? 1 + static_cast<int>(random() % 3) : 66;
      SCOPED_TRACE(kind.name + ", case " + std::to_string(i) + ", " + std::to_string(width) +
                   " x " + std::to_string(height));
      const Pixels source = kind.make(width, height, random);
      if (IsRefused(changes[i], source)) continue;
      const std::span ways(kEveryWay);
      ExpectPlain(changes[i], std::get<Raster>(source), ways.subspan(random() % ways.size(), 1));
      if (HasFatalFailure()) return;
    }
  }
}

Raster PlainRows(TPixelFormat format, int width, int height, uint8_t byte) {
  Raster raster(format, width, height);
  for (int y = 0; y < height; ++y) std::memset(raster.Row(y), byte, raster.Stride());
  raster.ClearPadding();
  return raster;
}

TEST(ChangeInBands, TheKeyColor_Should_BeFoundInTheLastRow) {
  for (const TPixelFormat format : test::kEveryFormat) {
    SCOPED_TRACE(format);
    Raster raster = PlainRows(format, 9, 70, 0);
    std::memset(raster.Row(69), 0xFF, 1);
    ExpectPlain(ReplaceKeyColor{0x345678, true}, raster);
    std::memset(raster.Row(33), 0xFF, raster.RowBytes());
    raster.ClearPadding();
    ExpectPlain(ReplaceKeyColor{0x345678, false}, raster);
  }
}

TEST(ChangeInBands, AColorOfTheLastRow_Should_FillThePalette) {
  for (const int extra : {0, 1}) {
    Raster raster = PlainRows(pf24bit, 16, 70, 0);
    for (int i = 0; i < 15; ++i) raster.Row(i)[3 * i] = static_cast<uint8_t>(i + 1);
    raster.Row(69)[0] = 100;
    if (extra == 0) raster.Row(3)[9] = 0;
    ExpectPlain(SetBits{4}, raster);
    const auto made =
        std::get<Raster>(test::MadeBy(*ChangeStage({16, 70}, SetBits{4}), raster.Clone()));
    int others = 0;
    for (int y = 0; y < 70; ++y) {
      for (int x = 0; x < 16; ++x) others += made.PixelColor(x, y) != raster.PixelColor(x, y);
    }
    EXPECT_EQ(others == 0, extra == 0);
  }
}

TEST(ChangeInBands, AnIndexOfTheLastRow_Should_KeepThePaletteFromBeingCut) {
  Raster raster = PlainRows(pf8bit, 5, 70, 3);
  std::mt19937 random(3);
  raster.palette = test::RandomPalette(256, random);
  ExpectPlain(SetBits{4}, raster);
  raster.Row(69)[4] = 200;
  ExpectPlain(SetBits{4}, raster);
  const auto made =
      std::get<Raster>(test::MadeBy(*ChangeStage({5, 70}, SetBits{4}), raster.Clone()));
  EXPECT_EQ(made.PixelColor(4, 69), raster.PixelColor(4, 69));
}

TEST(ChangeInBands, AColorOfManyColors_Should_CountByItsPixels) {
  std::mt19937 random(4);
  Raster raster = test::RandomRaster(pf8bit, 40, 70, random);
  for (int y = 20; y < 70; ++y) std::memset(raster.Row(y), 0xD7, raster.RowBytes());
  ExpectPlain(SetBits{4}, raster);
  Raster large = test::RandomRaster(pf24bit, 900, 901, random);
  ExpectPlain(SetBits{8}, large);
  for (int y = 0; y < 800; ++y) std::memset(large.Row(y), 0x30, large.RowBytes());
  large.ClearPadding();
  ExpectPlain(SetBits{8}, large);
}

TEST(ChangeInBands, AnUnusedEntry_Should_BecomeWhiteOnlyIfNoRowUsesIt) {
  for (const bool isUsed : {false, true}) {
    Raster raster = PlainRows(pf4bit, 8, 70, 0x11);
    std::vector<tagPALETTEENTRY> entries(16);
    for (size_t i = 0; i < 16; ++i) entries[i].peRed = static_cast<uint8_t>(i);
    raster.palette = HPALETTE(entries);
    for (int y = 0; y < 16; ++y) raster.Row(y)[1] = static_cast<uint8_t>(y == 9 ? 0 : y);
    if (isUsed) raster.Row(68)[2] = 0x99;
    ExpectPlain(WhiteForPdf{}, raster);
    const auto made =
        std::get<Raster>(test::MadeBy(*ChangeStage({8, 70}, WhiteForPdf{}), raster.Clone()));
    EXPECT_EQ(made.Format(), isUsed ? pf24bit : pf4bit);
    EXPECT_EQ(made.PixelColor(0, 69), clWhite);
  }
}

TEST(ChangeInBands, TheThreshold_Should_CountTheLastRow) {
  for (const TPixelFormat format : {pf8bit, pf24bit, pf32bit}) {
    Raster raster = PlainRows(format, 33, 70, 100);
    if (format == pf8bit) raster.palette = GrayPalette(256);
    std::memset(raster.Row(0), 90, raster.RowBytes());
    ExpectPlain(MakeMono{std::nullopt}, raster);
    const auto before = std::get<Raster>(
        test::MadeBy(*ChangeStage({33, 70}, MakeMono{std::nullopt}), raster.Clone()));
    std::memset(raster.Row(69), 255, raster.RowBytes());
    raster.ClearPadding();
    ExpectPlain(MakeMono{std::nullopt}, raster);
    const auto after = std::get<Raster>(
        test::MadeBy(*ChangeStage({33, 70}, MakeMono{std::nullopt}), raster.Clone()));
    EXPECT_NE(before.PixelColor(3, 30), after.PixelColor(3, 30));
  }
}

TEST(ChangeInBands, TheFirstPixel_Should_ChooseTheEntry) {
  Raster raster = PlainRows(pf8bit, 3, 9, 7);
  raster.Row(0)[0] = 250;
  SetPaletteEntries change;
  change.first = 0x010203;
  ExpectPlain(change, raster);
  const auto made = std::get<Raster>(test::MadeBy(*ChangeStage({3, 9}, change), raster.Clone()));
  EXPECT_EQ(made.PixelColor(0, 0), 0x010203);
}

TEST(ChangeInBands, ALostTransparentColor_Should_BeSaidOnce) {
  Raster raster = PlainRows(pf8bit, 3, 9, 7);
  raster.transparentColor = raster.PixelColor(0, 0);
  std::vector<tagPALETTEENTRY> entries(8);
  entries[7] = {9, 8, 7, 0};
  raster.palette = HPALETTE(entries);
  raster.transparentColor = EntryColor(entries[7]);
  SetPaletteEntries change;
  change.first = 0x010203;
  const Pixels source = std::move(raster);
  for (const InBands& how : kEveryWay) {
    Changes changes;
    test::MadeInBands(*ChangeStage({3, 9}, change), source, how, changes);
    ASSERT_EQ(changes.losses.size(), 1u);
    EXPECT_EQ(changes.losses[0].kind, LossKind::transparentColor);
  }
}

TEST(ChangeInBands, Looks_Should_AskForTheFewestRows) {
  const auto looks = [](const ColorChange& change, const Raster& like) {
    return ChangeStage({5, 40}, change)->Start(like.Clone(), {})->Looks();
  };
  const Raster gray = PlainRows(pf8bit, 1, 1, 0), color = PlainRows(pf24bit, 1, 1, 0);
  SetPaletteEntries first;
  first.first = 1;
  EXPECT_EQ(looks(first, gray), (RowRange{0, 1}));
  EXPECT_EQ(looks(ReplaceKeyColor{}, gray), (RowRange{39, 1}));
  EXPECT_EQ(looks(ReplaceKeyColor{}, color), (RowRange{39, 1}));
  // The palette has white.
  EXPECT_EQ(looks(WhiteForPdf{}, gray).count, 0);
  EXPECT_EQ(looks(WhiteForPdf{}, color).count, 0);
  EXPECT_EQ(looks(SetBits{1}, color).count, 0);
  EXPECT_EQ(looks(SetBits{8}, gray).count, 0);
  EXPECT_EQ(looks(SetBits{8}, color), (RowRange{0, 40}));
  EXPECT_EQ(looks(MakeMono{}, color).count, 0);
  EXPECT_EQ(looks(MakeMono{std::nullopt}, color), (RowRange{0, 40}));
}

}  // namespace
}  // namespace rasterkit
