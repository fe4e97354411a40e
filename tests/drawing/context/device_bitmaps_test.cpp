#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

/// 3 x 2 pixels: red, green, blue above black, white, red.
Raster Colors() {
  Raster bitmap(pf24bit, 3, 2);
  const TColor colors[2][3] = {{RGB(255, 0, 0), RGB(0, 255, 0), RGB(0, 0, 255)},
                               {clBlack, clWhite, RGB(255, 0, 0)}};
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) FillRaster(bitmap, {x, y, x + 1, y + 1}, colors[y][x]);
  }
  return bitmap;
}

TEST(DeviceBitmaps, Should_CopyPixels_When_SizesAgree) {
  const Raster bitmap = Colors();
  DrawingPaper paper(5, 3);
  paper.Dc().StretchBlt({1, 1, 4, 3}, {bitmap, {0, 0, 3, 2}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.Picture(), "\n.....\n.rgb.\n.#.r.\n");
}

TEST(DeviceBitmaps, Should_Mirror_When_CornersAreExchanged) {
  const Raster bitmap = Colors();
  DrawingPaper paper(3, 2);
  paper.Dc().StretchBlt({3, 0, 0, 2}, {bitmap, {0, 0, 3, 2}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.Picture(), "\nbgr\nr.#\n");
  paper.Dc().StretchBlt({0, 0, 3, 2}, {bitmap, {0, 2, 3, 0}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.Picture(), "\n#.r\nrgb\n");
}

TEST(DeviceBitmaps, Should_RepeatPixels_When_Growing) {
  const Raster bitmap = Colors();
  DrawingPaper paper(6, 4);
  paper.Dc().StretchBlt({0, 0, 6, 4}, {bitmap, {0, 0, 3, 2}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.Picture(), "\nrrggbb\nrrggbb\n##..rr\n##..rr\n");
}

TEST(DeviceBitmaps, Should_Average_When_ShrinkingACopy) {
  Raster bitmap(pf1bit, 8, 8);
  bitmap.palette = DefaultPalette(pf1bit);
  for (int y = 0; y < 8; ++y) *bitmap.Row(y) = 0xAA;
  DrawingPaper paper(4, 4);
  paper.Dc().StretchBlt({0, 0, 4, 4}, {bitmap, {0, 0, 8, 8}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.At(2, 2), RGB(128, 128, 128));
}

TEST(DeviceBitmaps, Should_ShowThePart_When_APartIsNamed) {
  const Raster bitmap = Colors();
  DrawingPaper paper(2, 1);
  paper.Dc().StretchBlt({0, 0, 2, 1}, {bitmap, {1, 1, 3, 2}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.Picture(), "\n.r\n");
}

TEST(DeviceBitmaps, Should_LeaveThePicture_When_ThePartReachesBeyondTheBitmap) {
  const Raster bitmap = Colors();
  DrawingPaper paper(5, 1);
  FillRaster(paper.raster, {0, 0, 5, 1}, clBlack);
  paper.Dc().StretchBlt({0, 0, 5, 1}, {bitmap, {-1, 0, 4, 1}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.Picture(), "\n#rgb#\n");
}

TEST(DeviceBitmaps, Should_HoldNoAlpha_When_A32BitSourceIsCopied) {
  Raster bitmap(pf32bit, 2, 1);
  const uint8_t bytes[] = {0, 0, 255, 0, 0, 255, 0, 128};
  std::copy(std::begin(bytes), std::end(bytes), bitmap.Row(0));
  DrawingPaper paper(2, 1);
  paper.Dc().StretchBlt({0, 0, 2, 1}, {bitmap, {0, 0, 2, 1}}, rop3::kSourceCopy);
  EXPECT_EQ(paper.Picture(), "\nrg\n");
}

TEST(DeviceBitmaps, Should_MaskAndPaint_When_TwoBlitsMakeACutOut) {
  const Raster bitmap = Colors();
  Raster mask(pf1bit, 3, 2);
  mask.palette = DefaultPalette(pf1bit);
  *mask.Row(0) = 0x40;  // white: keeps the picture
  *mask.Row(1) = 0xC0;
  Raster image = Colors();
  FillRaster(image, {1, 0, 2, 1}, clBlack);
  FillRaster(image, {0, 1, 2, 2}, clBlack);
  DrawingPaper paper(3, 2);
  paper.Dc().StretchBlt({0, 0, 3, 2}, {mask, {0, 0, 3, 2}}, rop3::kSourceAnd);
  paper.Dc().StretchBlt({0, 0, 3, 2}, {image, {0, 0, 3, 2}}, rop3::kSourcePaint);
  EXPECT_EQ(paper.Picture(), "\nr.b\n..r\n");
}

TEST(DeviceBitmaps, Should_TakeOneOfTwoOperations_When_AMaskSaysWhich) {
  const Raster bitmap = Colors();
  Raster mask(pf1bit, 2, 1);
  *mask.Row(0) = 0x80;
  DrawingPaper paper(3, 1);
  // Copies where the mask is 1; black elsewhere, and beyond the end of the mask.
  paper.Dc().MaskBlt({0, 0, 3, 1}, {bitmap, {0, 0, 3, 1}}, mask, {0, 0}, 0x00CC0020);
  EXPECT_EQ(paper.Picture(), "\nr##\n");
}

TEST(DeviceBitmaps, Should_MixByAlpha_When_Blended) {
  Raster bitmap(pf32bit, 2, 1);
  // Half opaque red, premultiplied, and a fully transparent pixel.
  const uint8_t bytes[] = {0, 0, 128, 128, 0, 0, 0, 0};
  std::copy(std::begin(bytes), std::end(bytes), bitmap.Row(0));
  DrawingPaper paper(2, 1);
  paper.Dc().AlphaBlend({0, 0, 2, 1}, {bitmap, {0, 0, 2, 1}}, 255, true);
  EXPECT_EQ(paper.At(0, 0), RGB(255, 127, 127));
  EXPECT_EQ(paper.At(1, 0), clWhite);
}

TEST(DeviceBitmaps, Should_MixByTheConstant_When_BlendedWithoutAlpha) {
  Raster bitmap(pf24bit, 1, 1);
  FillRaster(bitmap, {0, 0, 1, 1}, clBlack);
  DrawingPaper paper(1, 1);
  paper.Dc().AlphaBlend({0, 0, 1, 1}, {bitmap, {0, 0, 1, 1}}, 51, false);
  EXPECT_EQ(paper.At(0, 0), RGB(204, 204, 204));
}

TEST(DeviceBitmaps, Should_LeaveTheColorOut_When_ItIsTransparent) {
  const Raster bitmap = Colors();
  DrawingPaper paper(3, 2);
  FillRaster(paper.raster, {0, 0, 3, 2}, clBlack);
  paper.Dc().TransparentBlt({0, 0, 3, 2}, {bitmap, {0, 0, 3, 2}}, RGB(255, 0, 0));
  EXPECT_EQ(paper.Picture(), "\n#gb\n#.#\n");
}

TEST(DeviceBitmaps, Should_Turn_When_AParallelogramStandsUpright) {
  const Raster bitmap = Colors();
  DrawingPaper paper(2, 3);
  // A rotation by 90 degrees clockwise.
  paper.Dc().PlgBlt({PointD{2, 0}, PointD{2, 3}, PointD{0, 0}}, {bitmap, {0, 0, 3, 2}}, nullptr,
                    {0, 0});
  EXPECT_EQ(paper.Picture(), "\n#r\n.g\nrb\n");
}

TEST(DeviceBitmaps, Should_ShowTheMaskedPart_When_AParallelogramHasAMask) {
  const Raster bitmap = Colors();
  Raster mask(pf1bit, 3, 2);
  *mask.Row(0) = 0xA0;
  *mask.Row(1) = 0;
  DrawingPaper paper(3, 2);
  paper.Dc().PlgBlt({PointD{0, 0}, PointD{3, 0}, PointD{0, 2}}, {bitmap, {0, 0, 3, 2}}, &mask,
                    {0, 0});
  EXPECT_EQ(paper.Picture(), "\nr.b\n...\n");
}

TEST(DeviceBitmaps, Should_ScaleByTheDeviceAlone_When_SetToTheDevice) {
  const Raster bitmap = Colors();
  DrawingPaper paper(6, 4);
  paper.Dc().SetWorldTransform(PlaneAffine::Scaling(2, 2));
  paper.Dc().SetDIBitsToDevice({1, 1}, {bitmap, {0, 0, 3, 2}});
  EXPECT_EQ(paper.Picture(), "\n......\n......\n..rgb.\n..#.r.\n");
}

TEST(DeviceBitmaps, Should_DrawALine_When_APatternIsThinnerThanAPixel) {
  DrawingPaper paper(4, 3, PlaneAffine::Scaling(0.1, 0.1));
  paper.Dc().PatBlt({0, 13, 40, 15}, rop3::kBlackness);
  EXPECT_EQ(paper.Picture(), "\n....\n####\n....\n");
}

TEST(DeviceBitmaps, Should_LeaveNoSeams_When_StripsMeetBetweenPixels) {
  Raster strip(pf24bit, 10, 1);
  FillRaster(strip, {0, 0, 10, 1}, clBlack);
  DrawingPaper paper(7, 7, PlaneAffine::Scaling(0.7, 0.7));
  for (int y = 0; y < 10; ++y) {
    const double top = y;
    paper.Dc().StretchBlt({0, top, 10, top + 1}, {strip, {0, 0, 10, 1}}, rop3::kSourceCopy);
  }
  EXPECT_EQ(paper.Picture().find('.'), std::string::npos);
  EXPECT_EQ(paper.Picture().find('+'), std::string::npos);
}

TEST(DeviceBitmaps, Should_Survive_When_NumbersAreAbsurd) {
  const Raster bitmap = Colors();
  const auto draw = [&](DrawingPaper& paper, double far) {
    for (const uint32_t rop : {rop3::kSourceCopy, rop3::kSourceInvert}) {
      paper.Dc().StretchBlt({-far, far, far, 2}, {bitmap, {0, 0, 3, 2}}, rop);
      paper.Dc().StretchBlt({0, 0, 3, 3}, {bitmap, {far, -far, 1, far}}, rop);
    }
    paper.Dc().PlgBlt({PointD{far, 1}, PointD{0, far}, PointD{1, 1}}, {bitmap, {0, 0, 3, 2}},
                      nullptr, {0, 0});
    paper.Dc().AlphaBlend({far, far, -far, -far}, {bitmap, {0, 0, far, 2}}, 3, true);
    paper.Dc().SetDIBitsToDevice({far, far}, {bitmap, {0, 0, far, far}});
  };
  DrawingPaper zero(3, 3);
  draw(zero, 0);
  for (const double far : {1e9, -1e9, 1e300, std::nan(""), HUGE_VAL}) {
    DrawingPaper paper(3, 3);
    draw(paper, far);
    if (!std::isfinite(far)) {
      EXPECT_EQ(paper.Picture(), zero.Picture()) << far;
    }
    // The context stays usable, and the bitmap what it was.
    FillRaster(paper.raster, {0, 0, 3, 3}, clWhite);
    paper.Dc().StretchBlt({0, 1, 3, 3}, {bitmap, {0, 0, 3, 2}}, rop3::kSourceCopy);
    EXPECT_EQ(paper.Picture(), "\n...\nrgb\n#.r\n") << far;
  }
}

}  // namespace
}  // namespace rasterkit
