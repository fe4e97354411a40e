#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/step_part.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/raster/cut_out.h>

#include "tests/support/copy_of.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::PaperBitmap;
using test::SamePixels;

constexpr TPixelFormat kFormats[] = {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit};

class StepPartTest : public testing::Test {
 protected:
  StepPartTest() { RecordProperty("seed", static_cast<int>(kSeed)); }

  int Between(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random_);
  }
  int Percent() { return Between(0, 3) == 0 ? 0 : Between(-100, 100); }
  AdjustColors Values() {
    return {Percent(), Percent(), Percent(), Percent(), Percent(), Percent()};
  }
  /// Of any kind: alpha, transparent color, a palette with fewer entries.
  TBitmap AnyPicture(TPixelFormat format) {
    TBitmap picture = PaperBitmap(format, Between(1, 40), Between(1, 40), random_);
    if (format == pf32bit && Between(0, 1) == 1) picture.SetAlphaFormat(afDefined);
    switch (Between(0, 3)) {
      case 0:
        picture.SetTransparent(true);
        break;
      case 1:
        picture.SetTransparentColor(picture.PixelColor(Between(0, picture.Width() - 1), 0));
        picture.SetTransparent(true);
        break;
      default:
        break;
    }
    return picture;
  }
  TRect AnyPart(const TBitmap& picture) {
    const int left = Between(0, picture.Width() - 1), top = Between(0, picture.Height() - 1);
    return {left, top, Between(left + 1, picture.Width()), Between(top + 1, picture.Height())};
  }

  static std::unique_ptr<TBitmap> Whole(const TBitmap& picture, const ColorChange& step) {
    Picture changed = Picture::Of(picture.Clone());
    changed.Change(step);
    return changed.Bitmap();
  }

  static void ExpectPart(const TBitmap& picture, const TRect& part, const ColorChange& step) {
    const auto whole = Whole(picture, step);
    const TBitmap made = ChangeStepPart(picture, part, step);
    ASSERT_EQ(made.Width(), part.Right - part.Left);
    ASSERT_EQ(made.Height(), part.Bottom - part.Top);
    EXPECT_EQ(made.PixelFormat(), whole->PixelFormat());
    EXPECT_EQ(made.AlphaFormat(), whole->AlphaFormat());
    EXPECT_EQ(made.Transparent(), whole->Transparent());
    if (whole->Transparent()) {
      EXPECT_EQ(made.TransparentColor(), whole->TransparentColor());
    }
    EXPECT_EQ(made.Palette(), whole->Palette());
    const TBitmap expected(
        CutOut(whole->Content(), {part.Left, part.Top, part.Right, part.Bottom}));
    EXPECT_TRUE(SamePixels(expected.Content(), made.Content()));
  }

  static constexpr unsigned kSeed = 20261122;
  std::mt19937 random_{kSeed};
};

TEST_F(StepPartTest, AnyPart_Should_BeThatOfTheWholeStep_ForValues) {
  for (int round = 0; round < 60; ++round) {
    for (const TPixelFormat format : kFormats) {
      SCOPED_TRACE(testing::Message()
                   << "seed " << kSeed << " round " << round << " format " << format);
      const TBitmap picture = AnyPicture(format);
      ExpectPart(picture, AnyPart(picture), Values());
      if (HasFatalFailure() || HasNonfatalFailure()) return;
    }
  }
}

TEST_F(StepPartTest, AnyPart_Should_BeThatOfTheWholeStep_ForThresholds) {
  for (int round = 0; round < 30; ++round) {
    for (const TPixelFormat format : kFormats) {
      SCOPED_TRACE(testing::Message()
                   << "seed " << kSeed << " round " << round << " format " << format);
      const TBitmap picture = AnyPicture(format);
      ExpectPart(picture, AnyPart(picture),
                 MakeMono{Between(0, 256), Between(0, 0xFFFFFF), Between(0, 0xFFFFFF)});
      if (HasFatalFailure() || HasNonfatalFailure()) return;
    }
  }
}

TEST_F(StepPartTest, ADrawnPart_Should_BeTheChangedPictureOnTheGround) {
  for (int round = 0; round < 30; ++round) {
    for (const TPixelFormat format : kFormats) {
      SCOPED_TRACE(testing::Message()
                   << "seed " << kSeed << " round " << round << " format " << format);
      const TBitmap picture = AnyPicture(format);
      const TRect part = AnyPart(picture);
      ValueChange change;
      change.lightness = Percent();
      change.contrast = Percent();
      change.sharpen = Percent();
      change.green = Percent();
      const auto ground = static_cast<TColor>(Between(0, 0xFFFFFF));
      TBitmap expected;
      expected.ResetPixels(pf32bit, picture.Width(), picture.Height());
      expected.Canvas().Brush.Color = ground;
      expected.Canvas().FillRect({0, 0, picture.Width(), picture.Height()});
      expected.Canvas().Draw(0, 0, *Whole(picture, StepOf(change)));
      const TBitmap cut(CutOut(expected.Content(), {part.Left, part.Top, part.Right, part.Bottom}));
      EXPECT_TRUE(SamePixels(cut.Content(), DrawStepPart(picture, part, change, ground).Content()));
      if (HasFatalFailure() || HasNonfatalFailure()) return;
    }
  }
}

TEST_F(StepPartTest, AStep_Should_HaveEachValueOnce) {
  ValueChange change;
  change.lightness = 1;
  change.contrast = 2;
  change.sharpen = 3;
  change.red = 4;
  change.green = 5;
  change.blue = 6;
  const auto step = std::get<AdjustColors>(StepOf(change));
  EXPECT_EQ(step.brightness, 1);
  EXPECT_EQ(step.contrast, 2);
  EXPECT_EQ(step.sharpen, 3);
  EXPECT_EQ(step.red, 4);
  EXPECT_EQ(step.green, 5);
  EXPECT_EQ(step.blue, 6);
  change.operation = kOperationBlackAndWhite;
  change.grayValue = 77;
  change.dark = 1;
  change.light = 2;
  const auto mono = std::get<MakeMono>(StepOf(change));
  EXPECT_EQ(mono.threshold, 77);
  EXPECT_EQ(mono.dark, 1);
  EXPECT_EQ(mono.light, 2);
}

}  // namespace
}  // namespace rasterkit
