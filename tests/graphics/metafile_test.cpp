#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/emf_file.h"
#include "tests/support/memory_limit.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

constexpr TColor kBlue = 0xFF0000;

/// 25.4 x 12.7 mm on a device of 96 dpi; the left half is blue.
std::vector<uint8_t> HalfBlueEmf() {
  EmfFile file;
  file.frame = {0, 0, 2540, 1270};
  file.bounds = {0, 0, 95, 47};
  file.deviceWidth = 960;
  file.deviceHeight = 480;
  file.deviceWidthMm = 254;
  file.deviceHeightMm = 127;
  file.Add(EmfType::createBrush, {1, 0, kBlue, 0}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::selectObject, {0x80000008});
  file.Add(EmfType::polygon16, FieldBytes{0, 0, 0, 0, 4}.Words({0, 0, 48, 0, 48, 48, 0, 48}));
  return file.Bytes();
}

/// The same as a placeable WMF file.
std::vector<uint8_t> HalfBlueWmf() {
  WmfFile file;
  file.box = {{0, 0, 960, 480}};
  file.unitsPerInch = 960;
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({5, 0, 0}).Long(0));
  file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
  file.Add(WmfFunction::polygon, {4, 0, 0, 480, 0, 480, 480, 0, 480});
  return file.Bytes();
}

std::unique_ptr<TMetafile> Loaded(const std::vector<uint8_t>& bytes) {
  auto metafile = std::make_unique<TMetafile>();
  TSpanStream stream(bytes);
  metafile->LoadFromStream(stream);
  return metafile;
}

std::vector<uint8_t> Saved(TMetafile& metafile) {
  TMemoryStream stream;
  metafile.SaveToStream(stream);
  return stream.TakeBytes();
}

void ExpectHalfBlue(const Raster& raster) {
  const int width = raster.Width(), height = raster.Height();
  EXPECT_EQ(raster.PixelColor(0, 0), kBlue);
  EXPECT_EQ(raster.PixelColor(width / 2 - 1, height - 1), kBlue);
  EXPECT_EQ(raster.PixelColor(width / 2 + 1, 0), clWhite);
  EXPECT_EQ(raster.PixelColor(width - 1, height - 1), clWhite);
}

/// A WMF file without box and window: a blue square in one corner with letters in it, and a blue
/// rectangle in the opposite corner. Its size, 100 x 80, is only known after playing all records.
std::vector<uint8_t> UnsizedWmf() {
  WmfFile file;
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(kBlue).Word(0));
  file.Add(WmfFunction::createPenIndirect, FieldBytes().Words({5, 0, 0}).Long(0));
  file.Add(WmfFunction::selectObject, {0}).Add(WmfFunction::selectObject, {1});
  file.Add(WmfFunction::setBkMode, {1}).Add(WmfFunction::rectangle, {30, 30, 0, 0});
  // Letters cost work even where nothing is painted.
  for (int i = 0; i < 100; ++i) file.Add(WmfFunction::textOut, {1, '.', 0, 0});
  file.Add(WmfFunction::rectangle, {80, 100, 70, 90});
  return file.Bytes();
}

TEST(Metafile, Load_Should_SetTheMarkByContent) {
  EXPECT_TRUE(Loaded(HalfBlueEmf())->Enhanced());
  EXPECT_FALSE(Loaded(HalfBlueWmf())->Enhanced());
}

TEST(Metafile, Size_Should_BePixelsAt96AndHundredthsOfAMillimeter) {
  for (const auto& bytes : {HalfBlueEmf(), HalfBlueWmf()}) {
    const auto metafile = Loaded(bytes);
    EXPECT_EQ(metafile->Width(), 96);
    EXPECT_EQ(metafile->Height(), 48);
    EXPECT_EQ(metafile->MMWidth(), 2540);
    EXPECT_EQ(metafile->MMHeight(), 1270);
    EXPECT_FALSE(metafile->Modified());
  }
}

TEST(Metafile, FailedLoad_Should_KeepWhatWasThere) {
  const auto metafile = Loaded(HalfBlueWmf());
  TMemoryStream empty;
  EXPECT_THROW(metafile->LoadFromStream(empty), FormatError);
  const std::vector<uint8_t> text(100, 'x');
  TSpanStream stream(text);
  EXPECT_THROW(metafile->LoadFromStream(stream), FormatError);
  EXPECT_EQ(metafile->Width(), 96);
  EXPECT_FALSE(metafile->Enhanced());
  ExpectHalfBlue(metafile->Draw(96, 48));
}

TEST(Metafile, Save_Should_WriteTheBytes_When_MarkAndRecordsAgree) {
  for (const auto& bytes : {HalfBlueEmf(), HalfBlueWmf()}) {
    const auto metafile = Loaded(bytes);
    EXPECT_EQ(Saved(*metafile), bytes);
  }
}

TEST(Metafile, Save_Should_MakeAPlaceableFileWithThePicture_When_MarkedAsPlain) {
  const auto metafile = Loaded(HalfBlueEmf());
  metafile->SetEnhanced(false);
  const auto saved = Loaded(Saved(*metafile));
  EXPECT_FALSE(saved->Enhanced());
  EXPECT_EQ(saved->Facts().kind, MetafileKind::placeableWmf);
  EXPECT_EQ(saved->Facts().warnings, std::vector<std::string>());
  EXPECT_EQ(saved->MMWidth(), 2540);
  EXPECT_EQ(saved->MMHeight(), 1270);
  EXPECT_TRUE(SameColors(metafile->Draw(96, 48), saved->Draw(96, 48)));
}

TEST(Metafile, Save_Should_FitLargePicturesIntoThePlaceableBox) {
  EmfFile file;
  file.frame = {0, 0, 150000, 40000};  // 1.5 m
  const auto metafile = Loaded(file.Bytes());
  metafile->SetEnhanced(false);
  const auto saved = Loaded(Saved(*metafile));
  EXPECT_NEAR(saved->MMWidth(), 150000, 20);
  EXPECT_NEAR(saved->MMHeight(), 40000, 20);
}

TEST(Metafile, Save_Should_RecordAgain_When_AWindowsMetafileIsMarkedAsEnhanced) {
  const auto metafile = Loaded(HalfBlueWmf());
  metafile->SetEnhanced(true);
  const auto saved = Loaded(Saved(*metafile));
  EXPECT_TRUE(saved->Enhanced());
  EXPECT_EQ(saved->Facts().kind, MetafileKind::emf);
  EXPECT_EQ(saved->Facts().warnings, std::vector<std::string>());
  EXPECT_EQ(saved->MMWidth(), metafile->MMWidth());
  EXPECT_EQ(saved->MMHeight(), metafile->MMHeight());
  EXPECT_TRUE(SameColors(metafile->Draw(96, 48), saved->Draw(96, 48)));
}

TEST(Metafile, WithoutRecords_Should_RefuseByName) {
  TMetafile metafile;
  TBitmap bitmap = GradientBitmap(pf24bit, 9, 7);
  TMemoryStream stream;
  EXPECT_TRUE(metafile.Empty());
  EXPECT_THROW(metafile.SaveToStream(stream), FormatError);
  EXPECT_THROW(bitmap.Assign(&metafile), UnsupportedError);
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 9, 7), bitmap));
  bitmap.Canvas().Draw(0, 0, metafile);
  metafile.DrawTo(bitmap.Canvas(), {0, 0, 5, 5});
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 9, 7), bitmap));
}

TEST(Metafile, LoadFromFile_Should_NameTheFile) {
  const TempFolder folder;
  TMetafile metafile;
  try {
    metafile.LoadFromFile(folder.Write("a.wmf", "whatever"));
    FAIL() << "loaded";
  } catch (const FormatError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("a.wmf"));
  }
}

TEST(Metafile, Assign_Should_ShareTheRecordsAndKeepTheTargetsMark) {
  const auto enhanced = Loaded(HalfBlueEmf());
  TMetafile plain;
  plain.SetEnhanced(false);
  plain.Assign(enhanced.get());
  EXPECT_FALSE(plain.Enhanced());
  EXPECT_EQ(plain.Width(), 96);
  EXPECT_EQ(plain.Bytes().data(), enhanced->Bytes().data());
  ExpectHalfBlue(plain.Draw(96, 48));
  plain.Assign(nullptr);
  EXPECT_TRUE(plain.Empty());
  EXPECT_FALSE(enhanced->Empty());
}

TEST(Metafile, Assign_Should_RefusePictures) {
  const auto metafile = Loaded(HalfBlueEmf());
  const TBitmap bitmap = GradientBitmap(pf24bit, 9, 7);
  EXPECT_THROW(metafile->Assign(&bitmap), UnsupportedError);
  EXPECT_EQ(metafile->Width(), 96);
}

TEST(Metafile, Bitmap_Should_ShowTheDrawingOnWhite) {
  for (const auto& bytes : {HalfBlueEmf(), HalfBlueWmf()}) {
    TBitmap bitmap;
    bitmap.Assign(Loaded(bytes).get());
    EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
    EXPECT_EQ(bitmap.Width(), 96);
    EXPECT_EQ(bitmap.Height(), 48);
    EXPECT_EQ(bitmap.Dpi(), (Resolution{96, 96}));
    ExpectHalfBlue(bitmap.Content());
    TPngImage png;
    png.Assign(Loaded(bytes).get());
    EXPECT_EQ(png.Width(), 96);
  }
}

TEST(Metafile, Draw_Should_TakeAnySizeAndBackground) {
  const auto metafile = Loaded(HalfBlueEmf());
  ExpectHalfBlue(metafile->Draw(302, 17));
  ExpectHalfBlue(metafile->Draw(4, 1));
  const Raster raster = metafile->Draw(96, 48, 0x123456);
  EXPECT_EQ(raster.Format(), pf32bit);
  EXPECT_EQ(raster.PixelColor(90, 40), 0x123456);
  EXPECT_EQ(raster.Row(40)[4 * 90 + 3], 255);
  EXPECT_THROW(metafile->Draw(0, 5), RangeError);
  EXPECT_THROW(metafile->Draw(5, 0), RangeError);
  EXPECT_THROW(metafile->Draw(5, -1), RangeError);
  const MemoryLimit limit(1000);
  EXPECT_THROW(metafile->Draw(100, 100), LimitError);
}

TEST(Metafile, Canvas_Should_KeepWhatIsNotPainted) {
  const auto metafile = Loaded(HalfBlueEmf());
  for (const TPixelFormat format : kEveryFormat) {
    if (format == pf1bit) continue;
    TBitmap bitmap = GradientBitmap(format, 60, 40);
    const TBitmap before = GradientBitmap(format, 60, 40);
    bitmap.Canvas().StretchDraw({10, 10, 50, 30}, *metafile);
    EXPECT_NE(bitmap.PixelColor(20, 20), before.PixelColor(20, 20)) << format;
    for (const auto& [x, y] : {std::pair(5, 20), std::pair(40, 20), std::pair(20, 5)}) {
      EXPECT_EQ(bitmap.PixelColor(x, y), before.PixelColor(x, y)) << format;
    }
  }
}

TEST(Metafile, Canvas_Should_MakeTheRectangleOpaque_When_TheBitmapHasAlpha) {
  TBitmap bitmap(Raster(pf32bit, 40, 20));
  for (int y = 0; y < 20; ++y) std::memset(bitmap.ScanLine(y), 0x40, 160);
  bitmap.Canvas().StretchDraw({10, 5, 30, 15}, *Loaded(HalfBlueEmf()));
  const auto pixel = [&](int x, int y) { return bitmap.Content().Row(y) + 4 * x; };
  EXPECT_EQ(pixel(12, 10)[3], 255);
  EXPECT_EQ(pixel(28, 10)[3], 255);
  EXPECT_EQ(pixel(28, 10)[0], 0x40);
  for (const auto& [x, y] : {std::pair(9, 10), {30, 10}, {20, 4}, {20, 15}}) {
    EXPECT_EQ(pixel(x, y)[3], 0x40) << x << ", " << y;
  }
}

TEST(Metafile, Canvas_Should_KeepIndexes_When_ColorsAreTheSame) {
  Raster raster(pf8bit, 60, 40);
  const tagPALETTEENTRY entries[] = {{9, 9, 9, 0}, {9, 9, 9, 0}, {0, 0, 255, 0}, {9, 9, 9, 0}};
  raster.palette = HPALETTE(entries);
  for (int y = 0; y < 40; ++y) std::memset(raster.Row(y), 3, 60);
  TBitmap bitmap(std::move(raster));
  EmfFile file;
  file.frame = {0, 0, 1500, 1000};
  file.Add(EmfType::createBrush, {1, 0, kBlue, 0}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::selectObject, {0x80000008}).Add(EmfType::rectangle, {20, 10, 40, 30});
  bitmap.Canvas().StretchDraw({0, 0, 60, 40}, *Loaded(file.Bytes()));
  const auto index = [&](int x, int y) { return bitmap.Content().Row(y)[x]; };
  EXPECT_EQ(index(30, 20), 2);
  for (const auto& [x, y] : {std::pair(19, 20), {41, 20}, {59, 20}, {30, 9}, {30, 31}}) {
    EXPECT_EQ(index(x, y), 3) << x << ", " << y;
  }
}

TEST(Metafile, Canvas_Should_MarkTheBitmapAsChanged) {
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    TBitmap bitmap = GradientBitmap(format, 9, 7);
    TMemoryStream stream;
    bitmap.SaveToStream(stream);
    stream.SetPosition(0);
    bitmap.LoadFromStream(stream);
    ASSERT_FALSE(bitmap.Modified());
    bitmap.Canvas().Draw(0, 0, *Loaded(HalfBlueEmf()));
    EXPECT_TRUE(bitmap.Modified());
  }
}

TEST(Metafile, Bitmap_Should_BearTheMetafilesTransparency) {
  const auto metafile = Loaded(HalfBlueEmf());
  metafile->SetTransparent(true);
  TBitmap bitmap;
  bitmap.Assign(metafile.get());
  EXPECT_TRUE(bitmap.Transparent());
  metafile->SetTransparent(false);
  bitmap.Assign(metafile.get());
  EXPECT_FALSE(bitmap.Transparent());
}

TEST(Metafile, Draw_Should_AskAndWarn) {
  EmfFile file;
  file.hasEnd = false;
  for (int i = 0; i < 200; ++i) file.Add(EmfType::lineTo, {i, 10});
  file.Add(EmfType::rectangle, {1});
  const auto metafile = Loaded(file.Bytes());
  std::vector<std::string> warnings{"before"};
  int asked = 0;
  metafile->Draw(
      50, 40, clWhite,
      [&] {
        ++asked;
        return true;
      },
      &warnings);
  EXPECT_GE(asked, 3);
  EXPECT_THAT(warnings, testing::ElementsAre("before", testing::HasSubstr("too short"),
                                             testing::HasSubstr("data end")));
  asked = 0;
  metafile->Draw(50, 40, clWhite, [&] { return ++asked < 2; });
  EXPECT_EQ(asked, 2);
}

TEST(Metafile, Canvas_Should_MirrorAndClip) {
  const auto metafile = Loaded(HalfBlueEmf());
  TBitmap bitmap(Raster(pf24bit, 40, 20));
  bitmap.Canvas().FillRect({0, 0, 40, 20});
  bitmap.Canvas().StretchDraw({40, 0, 0, 20}, *metafile);
  EXPECT_EQ(bitmap.PixelColor(35, 10), kBlue);
  EXPECT_EQ(bitmap.PixelColor(5, 10), clWhite);
  bitmap.Canvas().FillRect({0, 0, 40, 20});
  bitmap.Canvas().StretchDraw({-40, -20, 80, 60}, *metafile);
  EXPECT_EQ(bitmap.PixelColor(10, 10), kBlue);
  EXPECT_EQ(bitmap.PixelColor(30, 10), clWhite);
  bitmap.Canvas().StretchDraw({100, 100, 120, 120}, *metafile);
  bitmap.Canvas().StretchDraw({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, *metafile);
}

TEST(Metafile, Canvas_Should_RefuseInvalidBytes_If_TheyAreDrawn) {
  const std::vector<uint8_t> invalid(100, uint8_t{1});
  const TRect inside{2, 2, 8, 8}, outside{20, 20, 30, 30}, empty{5, 5, 5, 5};
  for (const TPixelFormat format : {pf1bit, pf8bit, pf24bit}) {
    TBitmap bitmap;
    bitmap.ResetPixels(format, 10, 10);
    bitmap.SetModified(false);
    EXPECT_NO_THROW(bitmap.Canvas().DrawMetafile(outside, invalid)) << format;
    EXPECT_TRUE(bitmap.Modified()) << format;
    EXPECT_NO_THROW(bitmap.Canvas().DrawMetafile(empty, invalid)) << format;
    EXPECT_THROW(bitmap.Canvas().DrawMetafile(inside, invalid), FormatError) << format;
  }
  TBitmap bitmap;
  bitmap.ResetPixels(pf32bit, 10, 10);
  EXPECT_THROW(bitmap.Canvas().DrawMetafile(outside, invalid), FormatError);
  EXPECT_THROW(bitmap.Canvas().DrawMetafile(inside, invalid), FormatError);
}

TEST(Metafile, NewerRecordsAlone_Should_LoadAndSave_ButNotDraw) {
  EmfFile file;
  file.Add(EmfType::comment, {20, kEmfPlusMark, 0x4009, 16, 4, 0});
  const auto metafile = Loaded(file.Bytes());
  EXPECT_TRUE(metafile->Facts().isEmfPlusOnly);
  EXPECT_EQ(Saved(*metafile), file.Bytes());
  EXPECT_THROW(metafile->Draw(10, 10), UnsupportedError);
  TBitmap bitmap = GradientBitmap(pf24bit, 9, 7);
  EXPECT_THROW(bitmap.Assign(metafile.get()), UnsupportedError);
}

/// Checks that the size of a WMF file is not measured again. With a work budget that ends every
/// playback early, measuring would only find the first square, which would then fill the picture.
class MetafileFactsOnce : public ::testing::Test {
 protected:
  static constexpr double kWork = 20000;

  void SetUp() override {
    ASSERT_EQ(metafile_->Width(), 100);
    ASSERT_EQ(metafile_->Height(), 80);
  }
  static void ExpectOnlyTheFirstSquare(const Raster& raster) {
    EXPECT_EQ(raster.PixelColor(25, 25), kBlue);
    EXPECT_EQ(raster.PixelColor(50, 40), clWhite);
    EXPECT_EQ(raster.PixelColor(95, 75), clWhite);
  }

  const std::vector<uint8_t> bytes_ = UnsizedWmf();
  const std::unique_ptr<TMetafile> metafile_ = Loaded(bytes_);
};

TEST_F(MetafileFactsOnce, PlayMetafile_Should_UseTheFactsThatItIsGiven) {
  const DrawingWorkScope work(kWork);
  const MetafileFacts cutShort = ReadMetafileFacts(bytes_);
  ASSERT_EQ(cutShort.width, 30);
  Raster given(pf32bit, 100, 80), read(pf32bit, 100, 80);
  FillRaster(given, {0, 0, 100, 80}, clWhite);
  FillRaster(read, {0, 0, 100, 80}, clWhite);
  EXPECT_FALSE(PlayMetafile(bytes_, metafile_->Facts(), given, {0, 0, 100, 80}).isComplete);
  PlayMetafile(bytes_, read, {0, 0, 100, 80});
  ExpectOnlyTheFirstSquare(given);
  EXPECT_EQ(read.PixelColor(50, 40), kBlue);
}

TEST_F(MetafileFactsOnce, Draw_Should_UseTheFactsThatLoadingRead) {
  const DrawingWorkScope work(kWork);
  ExpectOnlyTheFirstSquare(metafile_->Draw(100, 80));
}

TEST_F(MetafileFactsOnce, DrawTo_Should_UseTheFactsThatLoadingRead) {
  const DrawingWorkScope work(kWork);
  for (const TPixelFormat format : {pf32bit, pf24bit}) {
    TBitmap bitmap;
    bitmap.SetPixelFormat(format);
    bitmap.SetSize(100, 80);
    metafile_->DrawTo(bitmap.Canvas(), {0, 0, 100, 80});
    ExpectOnlyTheFirstSquare(bitmap.Content());
  }
}

TEST_F(MetafileFactsOnce, Assign_Should_ShareTheFacts) {
  TMetafile copy;
  copy.Assign(metafile_.get());
  const DrawingWorkScope work(kWork);
  EXPECT_EQ(copy.Width(), 100);
  ExpectOnlyTheFirstSquare(copy.Draw(100, 80));
}

}  // namespace
}  // namespace rasterkit::test
