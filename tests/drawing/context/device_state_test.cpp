#include <gtest/gtest.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using test::DrawingPaper;

constexpr ReferenceDevice kDevice{1000, 500, 250, 125};  // 4 pixels per millimeter

struct Context {
  Raster raster{pf32bit, 1, 1};
  DeviceContext dc{raster, {0, 0, 1, 1}, kDevice, PlaneAffine()};
};

void ExpectNear(PointD actual, PointD wanted) {
  EXPECT_NEAR(actual.x, wanted.x, 1e-9);
  EXPECT_NEAR(actual.y, wanted.y, 1e-9);
}

TEST(DeviceMapping, Should_CountPixels_When_InTextMode) {
  Context c;
  ExpectNear(c.dc.DevicePoint({7, 9}), {7, 9});
  c.dc.SetWindowOrg({2, 3});
  c.dc.SetViewportOrg({10, 20});
  ExpectNear(c.dc.DevicePoint({7, 9}), {15, 26});
}

TEST(DeviceMapping, Should_CountLengths_When_InAMetricMode) {
  const struct {
    MapMode mode;
    double unitsPerMm;
  } cases[] = {{MapMode::loMetric, 10},
               {MapMode::hiMetric, 100},
               {MapMode::loEnglish, 100 / 25.4},
               {MapMode::hiEnglish, 1000 / 25.4},
               {MapMode::twips, 1440 / 25.4}};
  for (const auto& test : cases) {
    Context c;
    c.dc.SetMapMode(test.mode);
    ExpectNear(c.dc.DevicePoint({test.unitsPerMm, test.unitsPerMm}), {4, -4});
  }
}

TEST(DeviceMapping, Should_StretchTheWindow_When_Anisotropic) {
  Context c;
  c.dc.SetMapMode(MapMode::anisotropic);
  c.dc.SetWindowExt({100, 50});
  c.dc.SetViewportExt({200, -300});
  c.dc.SetWindowOrg({10, 10});
  c.dc.SetViewportOrg({1, 2});
  ExpectNear(c.dc.DevicePoint({20, 20}), {21, -58});
  c.dc.ScaleViewportExt({1, 1}, {2, 3});
  ExpectNear(c.dc.DevicePoint({20, 20}), {11, -18});
  c.dc.ScaleWindowExt({1, 1}, {0, 3});
  ExpectNear(c.dc.DevicePoint({20, 20}), {11, -18});
}

TEST(DeviceMapping, Should_KeepTheUnitSquare_When_Isotropic) {
  Context c;
  c.dc.SetMapMode(MapMode::isotropic);
  c.dc.SetWindowExt({100, 100});
  c.dc.SetViewportExt({400, 200});
  ExpectNear(c.dc.DevicePoint({100, 100}), {200, 200});
}

TEST(DeviceMapping, Should_IgnoreExtents_When_TheModeHasItsOwn) {
  Context c;
  c.dc.SetWindowExt({100, 100});
  c.dc.SetViewportExt({400, 400});
  ExpectNear(c.dc.DevicePoint({5, 5}), {5, 5});
}

TEST(DeviceMapping, Should_ComposeMatrices_When_TheWorldIsChanged) {
  Context c;
  const PlaneAffine move = PlaneAffine::Translation(10, 0), scale = PlaneAffine::Scaling(2, 3);
  c.dc.SetWorldTransform(scale);
  c.dc.ModifyWorldTransform(move, WorldChange::left);  // moved first, then scaled
  ExpectNear(c.dc.DevicePoint({1, 1}), {22, 3});
  c.dc.SetWorldTransform(scale);
  c.dc.ModifyWorldTransform(move, WorldChange::right);
  ExpectNear(c.dc.DevicePoint({1, 1}), {12, 3});
  c.dc.ModifyWorldTransform(move, WorldChange::identity);
  ExpectNear(c.dc.DevicePoint({1, 1}), {1, 1});
}

TEST(DeviceMapping, Should_KeepTheWorld_When_AMatrixCannotBeUndone) {
  Context c;
  c.dc.SetWorldTransform(PlaneAffine::Scaling(2, 2));
  c.dc.SetWorldTransform(PlaneAffine::Scaling(0, 1));
  c.dc.SetWorldTransform({NAN, 0, 0, 1, 0, 0});
  ExpectNear(c.dc.DevicePoint({1, 1}), {2, 2});
}

TEST(DeviceMapping, Should_MirrorThePage_When_TheLayoutIsRightToLeft) {
  Context c;
  c.dc.SetLayout(kLayoutRightToLeft);
  ExpectNear(c.dc.DevicePoint({100, 7}), {900, 7});
  c.dc.SetLayout(0);
  ExpectNear(c.dc.DevicePoint({100, 7}), {100, 7});
}

TEST(DeviceState, Should_ComeBackByNumber_When_RestoredRelativeOrAbsolute) {
  Context c;
  for (const double x : {1.0, 2.0, 3.0, 4.0}) {
    c.dc.MoveTo({x, 0});
    c.dc.SaveDC();
  }
  EXPECT_FALSE(c.dc.RestoreDC(-5));
  EXPECT_FALSE(c.dc.RestoreDC(0));
  EXPECT_FALSE(c.dc.RestoreDC(5));
  EXPECT_TRUE(c.dc.RestoreDC(-2));
  EXPECT_EQ(c.dc.CurrentPosition().x, 3);
  EXPECT_FALSE(c.dc.RestoreDC(3));
  EXPECT_TRUE(c.dc.RestoreDC(1));
  EXPECT_EQ(c.dc.CurrentPosition().x, 1);
  EXPECT_FALSE(c.dc.RestoreDC(-1));
}

TEST(DeviceState, Should_StayWithinBounds_When_AMillionStatesArePutBy) {
  Context c;
  c.dc.MoveTo({5, 5});
  for (int i = 0; i < 1'000'000; ++i) c.dc.SaveDC();
  c.dc.MoveTo({6, 6});
  EXPECT_TRUE(c.dc.RestoreDC(-999'999));
  EXPECT_EQ(c.dc.CurrentPosition().x, 5);
  EXPECT_TRUE(c.dc.RestoreDC(1));
  EXPECT_FALSE(c.dc.RestoreDC(-1));
}

TEST(DeviceState, Should_RestorePenBrushAndColors_When_Asked) {
  DrawingPaper paper(3, 2);
  paper.Pen(RGB(255, 0, 0));
  paper.Dc().SaveDC();
  paper.Pen(RGB(0, 0, 255));
  paper.Dc().SetRop2(Rop2::nop);
  EXPECT_TRUE(paper.Dc().RestoreDC(-1));
  paper.Dc().LineTo({3, 0});
  EXPECT_EQ(paper.Picture(), "\nrrr\n...\n");
}

TEST(DeviceBounds, Should_CoverAllThatWasDrawn_When_MuchLiesOutsideTheRaster) {
  Context c;
  EXPECT_FALSE(c.dc.DrawnBounds());
  c.dc.SetViewportOrg({5, 5});
  c.dc.Rectangle({100, 200, 300, 400});
  const auto bounds = c.dc.DrawnBounds();
  ASSERT_TRUE(bounds);
  EXPECT_NEAR(bounds->left, 105, 2);
  EXPECT_NEAR(bounds->top, 205, 2);
  EXPECT_NEAR(bounds->right, 305, 2);
  EXPECT_NEAR(bounds->bottom, 405, 2);
}

TEST(DeviceBounds, Should_IgnoreWhatIsNotPainted_When_PenAndBrushAreNull) {
  Context c;
  c.dc.SelectPen(std::make_shared<LogicalPen>(LogicalPen{pen_style::kNull, 0, 0, {}, nullptr}));
  LogicalBrush none;
  none.kind = LogicalBrush::null;
  c.dc.SelectBrush(std::make_shared<LogicalBrush>(none));
  c.dc.Rectangle({1, 2, 3, 4});
  EXPECT_FALSE(c.dc.DrawnBounds());
}

}  // namespace
}  // namespace rasterkit
