// Palettes in both formats, and record types without a visible effect.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/emf_file.h"
#include "tests/support/played_metafile.h"
#include "tests/support/same_pixels.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr int64_t kFirst = 0x01000000, kSecond = 0x01000001, kThird = 0x01000002;
constexpr int64_t kStockPalette = 0x8000000F, kAnimated = 0x01000000;

/// A palette (3) of two colors, selected.
EmfFile TwoColors() {
  FieldBytes palette{3};
  palette.Words({0x300, 2}).Longs({0x112233, 0x445566});
  return EmfFile().Add(EmfType::createPalette, palette).Add(EmfType::selectPalette, {3});
}

/// Reads the colors of pixels that a file sets one after another, from the upper left corner.
class Pixels {
 public:
  explicit Pixels(EmfFile& file) : file_(file) {}
  Pixels& Set(int64_t color) {
    file_.Add(EmfType::setPixel, {count_++, 0, color});
    return *this;
  }
  std::vector<TColor> Colors() const {
    const PlayedMetafile played(file_.Bytes());
    std::vector<TColor> colors;
    for (int x = 0; x < count_; ++x) colors.push_back(played.At(x, 0));
    return colors;
  }

 private:
  EmfFile& file_;
  int count_ = 0;
};

TEST(EmfPalettes, Should_BeTheUsualOne_When_NoneIsSelected) {
  EmfFile file;
  EXPECT_THAT(Pixels(file).Set(kSecond).Set(kFirst + 13).Set(kFirst + 19).Set(kFirst + 20).Colors(),
              testing::ElementsAre(0x000080, 0x0000FF, 0xFFFFFF, 0));
}

TEST(EmfPalettes, Should_ChangeWhileSelected) {
  EmfFile file = TwoColors();
  Pixels pixels(file);
  pixels.Set(kFirst).Set(kSecond);
  file.Add(EmfType::setPaletteEntries, {3, 1, 2, 0x778899, 0xAABBCC});
  pixels.Set(kFirst).Set(kSecond).Set(kThird);
  file.Add(EmfType::resizePalette, {3, 3});
  file.Add(EmfType::setPaletteEntries, {3, 2, 1, 0xAABBCC});
  pixels.Set(kThird);
  file.Add(EmfType::resizePalette, {3, 1});
  pixels.Set(kFirst).Set(kSecond);
  EXPECT_THAT(pixels.Colors(), testing::ElementsAre(0x112233, 0x445566, 0x112233, 0x778899, 0,
                                                    0xAABBCC, 0x112233, 0));
}

TEST(EmfPalettes, Should_StaySelected_When_Deleted) {
  EmfFile file = TwoColors();
  file.Add(EmfType::deleteObject, {3});
  Pixels pixels(file);
  pixels.Set(kSecond);
  file.Add(EmfType::selectPalette, {kStockPalette});
  EXPECT_THAT(pixels.Set(kSecond).Colors(), testing::ElementsAre(0x445566, 0x000080));
}

TEST(EmfPalettes, Should_ComeBackWithTheState_AsTheyAreThen) {
  EmfFile file = TwoColors();
  file.Add(EmfType::saveDc).Add(EmfType::selectPalette, {kStockPalette});
  Pixels pixels(file);
  pixels.Set(kSecond);
  file.Add(EmfType::setPaletteEntries, {3, 1, 1, 0x778899}).Add(EmfType::restoreDc, {-1});
  EXPECT_THAT(pixels.Set(kSecond).Colors(), testing::ElementsAre(0x000080, 0x778899));
}

TEST(EmfPalettes, Should_Survive_When_NumbersAreAbsurd) {
  EmfFile file = TwoColors();
  file.Add(EmfType::setPaletteEntries, {3, 0xFFFFFFFF, 1, 0x778899});
  file.Add(EmfType::setPaletteEntries, {3, 0, 0x40000001, 0x778899});
  file.Add(EmfType::setPaletteEntries, {77, 0, 1, 0x778899});
  file.Add(EmfType::resizePalette, {3, 0xFFFFFFFF}).Add(EmfType::resizePalette, {77, 2});
  Pixels pixels(file);
  pixels.Set(kSecond).Set(kFirst + 255).Set(kFirst + 0xFFFF);
  file.Add(EmfType::resizePalette, {3, 0});
  EXPECT_THAT(pixels.Set(kFirst).Colors(), testing::ElementsAre(0x445566, 0, 0, 0x112233));
}

/// 2 x 1 pixels of 8 bits: 0 and 1.
FieldBytes BitmapHead(int64_t entries) {
  return FieldBytes{40, 2, 1}.Words({1, 8}).Longs({0, 0, 0, 0, entries, 0});
}

/// Copies a bitmap of 2 x 1 pixels; `colors` is its color usage.
EmfFile WithBitmap(const FieldBytes& head, int64_t colors) {
  const auto headBytes = static_cast<int64_t>(head.bytes.size());
  FieldBytes fields{0, 0, 0, 0, 10, 20, 0, 0, 2, 1, 80, headBytes, 80 + headBytes, 4};
  fields.Longs({colors, 0xCC0020, 2, 1}).Bytes(head.bytes);
  fields.Byte(0).Byte(1).Word(0);
  return TwoColors().Add(EmfType::stretchDibits, fields);
}

TEST(EmfPalettes, Should_ColorBitmaps_When_TheyHoldNumbers) {
  const PlayedMetafile table(WithBitmap(BitmapHead(2).Words({1, 0}), 1).Bytes());
  EXPECT_EQ(table.At(10, 20), 0x445566);
  EXPECT_EQ(table.At(11, 20), 0x112233);
  const PlayedMetafile none(WithBitmap(BitmapHead(0), 2).Bytes());
  EXPECT_EQ(none.At(10, 20), 0x112233);
  EXPECT_EQ(none.At(11, 20), 0x445566);
}

/// A palette (0) of three colors; the third has the animation flag.
WmfFile ThreeColors() {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  FieldBytes palette;
  palette.Words({0x300, 3}).Longs({0x112233, 0x445566, 0x010203 | kAnimated});
  return file.Add(WmfFunction::createPalette, palette).Add(WmfFunction::selectPalette, {0});
}

/// The same for WMF files, which are also drawn after conversion to EMF.
class WmfPixels {
 public:
  explicit WmfPixels(WmfFile& file) : file_(file) {}
  WmfPixels& Set(int64_t color) {
    file_.Add(WmfFunction::setPixel, FieldBytes{color}.Words({0, count_++}));
    return *this;
  }
  void ExpectColors(const std::vector<TColor>& wanted) const {
    for (const bool isRecorded : {false, true}) {
      const PlayedMetafile played(isRecorded ? EmfOf(file_.Bytes()) : file_.Bytes());
      std::vector<TColor> colors;
      for (int x = 0; x < count_; ++x) colors.push_back(played.At(x, 0));
      EXPECT_EQ(colors, wanted) << (isRecorded ? "as an enhanced metafile" : "as it is");
    }
  }

 private:
  WmfFile& file_;
  int count_ = 0;
};

TEST(WmfPalettes, Should_ChangeWhileSelected) {
  WmfFile file = ThreeColors();
  WmfPixels pixels(file);
  pixels.Set(kFirst).Set(kSecond).Set(kThird);
  file.Add(WmfFunction::setPaletteEntries, FieldBytes().Words({1, 1}).Long(0x778899));
  pixels.Set(kSecond);
  file.Add(WmfFunction::resizePalette, {4});
  file.Add(WmfFunction::setPaletteEntries, FieldBytes().Words({3, 2}).Longs({0xAABBCC, 0xDDEEFF}));
  pixels.Set(kFirst + 3).Set(kFirst + 4);
  pixels.ExpectColors({0x112233, 0x445566, 0x010203, 0x778899, 0xAABBCC, 0});
}

TEST(WmfPalettes, Should_AnimateThoseEntriesAlone_ThatAreMadeForIt) {
  WmfFile file = ThreeColors();
  file.Add(WmfFunction::animatePalette,
           FieldBytes().Words({1, 2}).Longs({0x778899, 0x0A0B0C | kAnimated}));
  WmfPixels(file).Set(kFirst).Set(kSecond).Set(kThird).ExpectColors({0x112233, 0x445566, 0x0A0B0C});
}

TEST(WmfPalettes, Should_ComeBackWithTheState) {
  WmfFile file = ThreeColors();
  file.Add(WmfFunction::saveDc).Add(WmfFunction::selectPalette, {77});
  WmfPixels pixels(file);
  pixels.Set(kSecond);
  // The initial palette cannot be changed.
  file.Add(WmfFunction::setPaletteEntries, FieldBytes().Words({1, 1}).Long(0x778899));
  file.Add(WmfFunction::resizePalette, {2});
  pixels.Set(kSecond);
  file.Add(WmfFunction::restoreDc, {-1});
  file.Add(WmfFunction::setPaletteEntries, FieldBytes().Words({0, 1}).Long(0x778899));
  pixels.Set(kFirst).Set(kSecond).ExpectColors({0x000080, 0x000080, 0x778899, 0x445566});
}

TEST(EmfPlayer, Records_Should_BeKnown_When_TheyLeaveNothingToBeSeen) {
  EmfFile file;
  for (const EmfType type : {EmfType::comment,
                             EmfType::setMapperFlags,
                             EmfType::setColorAdjustment,
                             EmfType::realizePalette,
                             EmfType::setIcmMode,
                             EmfType::createColorSpace,
                             EmfType::setColorSpace,
                             EmfType::deleteColorSpace,
                             EmfType::createColorSpaceW,
                             EmfType::colorMatchToTarget,
                             EmfType::colorCorrectPalette,
                             EmfType::setIcmProfileA,
                             EmfType::setIcmProfileW,
                             EmfType::glsRecord,
                             EmfType::glsBoundedRecord,
                             EmfType::pixelFormat,
                             EmfType::drawEscape,
                             EmfType::extEscape,
                             EmfType::namedEscape,
                             EmfType::forceUfiMapping,
                             EmfType::setLinkedUfis}) {
    file.Add(type, {4, 1, 2, 3});
  }
  const PlayedMetafile played(file.Bytes());
  EXPECT_EQ(played.Painted(), 0);
  EXPECT_EQ(played.report.played, 23u) << "with the header and the last record";
  EXPECT_EQ(played.report.skipped, 0u);
  EXPECT_THAT(played.report.warnings, testing::IsEmpty());
  const PlayedMetafile unknown(file.Add(static_cast<EmfType>(4711)).Bytes());
  EXPECT_EQ(unknown.report.played, 23u);
  EXPECT_EQ(unknown.report.skipped, 1u);
}

TEST(WmfPlayer, Records_Should_BeKnown_When_TheyLeaveNothingToBeSeen) {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  for (const WmfFunction function :
       {WmfFunction::escape, WmfFunction::realizePalette, WmfFunction::setMapperFlags,
        WmfFunction::setRelAbs, WmfFunction::setPaletteEntries}) {
    file.Add(function, {1, 0, 0});
  }
  const PlayedMetafile played(file.Bytes());
  EXPECT_EQ(played.Painted(), 0);
  EXPECT_EQ(played.report.played, 6u) << "with the last record";
  EXPECT_EQ(played.report.skipped, 0u);
  const PlayedMetafile unknown(file.Add(static_cast<WmfFunction>(0x4711)).Bytes());
  EXPECT_EQ(unknown.report.skipped, 1u);
}

}  // namespace
}  // namespace rasterkit::test
