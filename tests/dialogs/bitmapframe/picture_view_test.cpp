#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/picture_view.h>
#include <rasterkit/graphics/canvas.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

constexpr unsigned kSeed = 4711;
constexpr TColor kGray = 0x909090;

/// The window as a canvas draws it.
TBitmap Drawn(const TBitmap& picture, const PictureView::Window& window,
              TStretchMode mode = smPlain) {
  TBitmap target;
  target.ResetPixels(pf32bit, window.width, window.height);
  target.Canvas().Brush.Color = window.background;
  target.Canvas().FillRect({0, 0, window.width, window.height});
  target.Canvas().StretchMode = mode;
  target.Canvas().StretchDraw(window.place, picture);
  return target;
}

const PictureView::Window kWindows[] = {
    {40, 30, {3, 4, 36, 27}, kGray},        // shrunk, inside
    {40, 30, {-20, -5, 61, 44}, kGray},     // grown, clipped
    {40, 30, {5, -7, 58, 30}, kGray},       // unscaled
    {40, 30, {100, 100, 140, 130}, kGray},  // outside
    {40, 30, {0, 0, 0, 0}, kGray},          // no size
    {0, 0, {0, 0, 40, 30}, kGray},          // no window
};

TEST(PictureView, Should_ShowTheNearestPixels_When_ThePictureLiesAnywhere) {
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : kEveryFormat) {
    const TBitmap picture = RandomBitmap(format, 53, 37, random);
    for (const auto& window : kWindows) {
      PictureView view;
      view.Show(&picture, 1, window);
      EXPECT_TRUE(SamePixels(Drawn(picture, window), view.Plain())) << "format " << format;
    }
  }
}

TEST(PictureView, Darkened_Should_EqualTheDarkenedPictureStretched_ToTheByte) {
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : kEveryFormat) {
    TBitmap picture = RandomBitmap(format, 53, 37, random);
    for (int mirrorings = 0; mirrorings < 4; ++mirrorings) {
      DarkedBitmap darkening;
      darkening.Fill(53, 37, {11, 5, 53, 21});
      if (mirrorings & 1) darkening.Swap(true);
      if (mirrorings & 2) darkening.Swap(false);
      const TBitmap darked = darkening.Make(picture);
      for (const auto& window : kWindows) {
        PictureView view;
        view.Show(&picture, 1, window);
        EXPECT_TRUE(SameColors(Drawn(darked, window), view.Darkened(darkening)))
            << "format " << format;
      }
    }
  }
}

TEST(PictureView, RefineRows_Should_GiveAverages_When_ThePictureIsShrunk) {
  std::mt19937 random(kSeed);
  const TBitmap picture = RandomBitmap(pf24bit, 211, 97, random);
  const PictureView::Window window{40, 30, {-3, 2, 52, 28}, kGray};
  PictureView view;
  view.Show(&picture, 1, window);
  EXPECT_TRUE(view.RefineRows(7));
  while (view.RefineRows(7)) {
  }
  EXPECT_TRUE(SameColors(Drawn(picture, window, smHalftone), view.Plain()));
  EXPECT_FALSE(view.RefineRows(7));
}

TEST(PictureView, RefineRows_Should_CarryTheDarkeningAlong) {
  std::mt19937 random(kSeed);
  const TBitmap picture = RandomBitmap(pf24bit, 211, 97, random);
  const PictureView::Window window{40, 30, {0, 0, 40, 30}, kGray};
  DarkedBitmap darkening;
  darkening.Fill(211, 97, {0, 0, 0, 0});
  PictureView view;
  view.Show(&picture, 1, window);
  view.Darkened(darkening);
  while (view.RefineRows(4)) {
  }
  const TBitmap& darked = view.Darkened(darkening);
  for (int y = 0; y < 30; ++y)
    for (int x = 0; x < 40; ++x)
      ASSERT_EQ(darked.PixelColor(x, y), (view.Plain().PixelColor(x, y) >> 1) & 0x7F7F7F);
}

TEST(PictureView, RefineRows_Should_LeaveItAlone_When_ThePictureGrowsOrIsTransparent) {
  TBitmap picture = GradientBitmap(pf24bit, 20, 20);
  PictureView view;
  view.Show(&picture, 1, {40, 30, {0, 0, 40, 30}, kGray});
  EXPECT_FALSE(view.RefineRows(4));
  picture.SetTransparent(true);
  view.Show(&picture, 2, {10, 10, {0, 0, 10, 10}, kGray});
  EXPECT_FALSE(view.RefineRows(4));
  view.Show(nullptr, 3, {10, 10, {0, 0, 10, 10}, kGray});
  EXPECT_FALSE(view.RefineRows(4));
}

TEST(PictureView, Show_Should_KeepTheView_When_NothingChanged) {
  std::mt19937 random(kSeed);
  const TBitmap picture = RandomBitmap(pf24bit, 211, 97, random);
  const PictureView::Window window{40, 30, {0, 0, 40, 30}, kGray};
  PictureView view;
  view.Show(&picture, 1, window);
  while (view.RefineRows(30)) {
  }
  view.Show(&picture, 1, window);
  EXPECT_TRUE(SameColors(Drawn(picture, window, smHalftone), view.Plain()));
  view.Show(&picture, 2, window);
  EXPECT_TRUE(SamePixels(Drawn(picture, window), view.Plain())) << "another version starts over";
}

TEST(PictureView, Show_Should_SeeChangedPixels_When_NobodyToldIt) {
  std::mt19937 random(kSeed);
  TBitmap picture = RandomBitmap(pf24bit, 53, 37, random);
  const PictureView::Window window{40, 30, {3, 4, 36, 27}, kGray};
  PictureView view;
  view.Show(&picture, 1, window);
  picture.Canvas().FillRect({0, 0, 53, 37});
  view.Show(&picture, 1, window);
  EXPECT_TRUE(SamePixels(Drawn(picture, window), view.Plain()));
}

TEST(PictureView, Should_ShowTheBackground_When_ThereIsNoPicture) {
  PictureView view;
  view.Show(nullptr, 0, {5, 4, {0, 0, 0, 0}, kGray});
  EXPECT_EQ(view.Plain().PixelColor(4, 3), kGray);
  const TBitmap empty;
  view.Show(&empty, 1, {5, 4, {2, 2, 2, 2}, kGray});
  EXPECT_EQ(view.Plain().PixelColor(2, 2), kGray);
  EXPECT_EQ(view.Darkened(DarkedBitmap()).PixelColor(2, 2), kGray);
}

TEST(PictureView, Should_LetTheBackgroundThrough_When_ThePictureIsTransparent) {
  TBitmap picture = GradientBitmap(pf24bit, 6, 6);
  picture.SetTransparentColor(picture.PixelColor(3, 3));
  picture.SetTransparent(true);
  PictureView view;
  view.Show(&picture, 1, {6, 6, {0, 0, 6, 6}, kGray});
  EXPECT_EQ(view.Plain().PixelColor(3, 3), kGray);
}

TEST(PictureView, Should_Survive_When_AZoomedPlaceReachesFarBeyondTheWindow) {
  std::mt19937 random(kSeed);
  const TBitmap picture = RandomBitmap(pf1bit, 3, 3, random);
  const PictureView::Window window{40, 30, {-(1 << 28), -(1 << 28), 1 << 28, 1 << 28}, kGray};
  DarkedBitmap darkening;
  darkening.Fill(3, 3, {0, 0, 1, 3});
  PictureView view;
  view.Show(&picture, 1, window);
  EXPECT_EQ(view.Plain().PixelColor(20, 15), picture.PixelColor(1, 1));
  EXPECT_EQ(view.Darkened(darkening).PixelColor(20, 15),
            (picture.PixelColor(1, 1) >> 1) & 0x7F7F7F);
}

}  // namespace
}  // namespace rasterkit::test
