#include <QTest>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/values/preview_renderer.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/qt/qt_color.h>

#include "tests/support/paper_pictures.h"

namespace rasterkit {
namespace {

constexpr unsigned kSeed = 17;
constexpr TColor kGround = 0x40C080;

/// The picture after the step, drawn on the ground.
TBitmap Stepped(const TBitmap& picture, const ColorChange& step) {
  Picture changed = Picture::Of(picture.Clone());
  ApplyRecipeStep(changed, ChangeStep{step});
  TBitmap drawn;
  drawn.ResetPixels(pf32bit, picture.Width(), picture.Height());
  drawn.Canvas().Brush.Color = kGround;
  drawn.Canvas().FillRect({0, 0, picture.Width(), picture.Height()});
  drawn.Canvas().Draw(0, 0, *changed.Bitmap());
  return drawn;
}

TColor ColorAt(const QImage& image, int x, int y) {
  return ColorOf(image.pixelColor(x, y));
}

/// Each pixel of the areas shows the picture at its place, enlarged `zoom` times.
void ExpectShown(const QImage& image, const std::vector<PreviewArea>& areas,
                 const TBitmap& original, const TBitmap& changed, int zoom) {
  for (const PreviewArea& area : areas) {
    const TBitmap& expected = area.isChanged ? changed : original;
    for (int y = area.box.Top; y < area.box.Bottom; ++y)
      for (int x = area.box.Left; x < area.box.Right; ++x) {
        const bool isInside = x >= area.place.Left && x < area.place.Right && y >= area.place.Top &&
                              y < area.place.Bottom;
        const TColor wanted = isInside ? expected.PixelColor((x - area.place.Left) / zoom,
                                                             (y - area.place.Top) / zoom)
                                       : kGround;
        ASSERT_EQ(ColorAt(image, x, y), wanted) << x << ", " << y;
      }
  }
}

TBitmap AnyPicture(TPixelFormat format, std::mt19937& random) {
  TBitmap picture = test::PaperBitmap(format, 90 + static_cast<int>(random() % 60),
                                      70 + static_cast<int>(random() % 60), random, 2);
  if (format == pf32bit && random() % 2 == 0) picture.SetAlphaFormat(afDefined);
  if (random() % 3 == 0) picture.SetTransparent(true);
  return picture;
}

TEST(PreviewRenderer, AtItsOwnSize_Should_ShowThePictureOfTheStep_ToTheByte) {
  std::mt19937 random(kSeed);
  const auto percent = [&] { return static_cast<int>(random() % 201) - 100; };
  for (int i = 0; i < 6; ++i) {
    for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
      SCOPED_TRACE(testing::Message() << "seed " << kSeed << " case " << i << " format " << format);
      const TBitmap picture = AnyPicture(format, random);
      ChangeValuesModel model(picture, kEditorValueRules);
      model.Load({});
      model.SetOperation(kOperationValues);
      model.SetValues({percent(), percent(), percent(), percent(), percent(), percent(), 0});
      PreviewRenderer renderer(model);
      ValuesViewport viewport(picture.Width(), picture.Height());
      viewport.SetBox(150, 61);
      viewport.SetMode(static_cast<PreviewMode>(i % 3));
      viewport.ShowActualSize();
      viewport.PanBy(percent() / 3, percent() / 3);
      const TBitmap original = Stepped(picture, AdjustColors{});
      const TBitmap changed = Stepped(picture, StepOf(model.CurrentChange()));
      const QImage image = renderer.Render(viewport, viewport.Areas(), kGround);
      ExpectShown(image, viewport.Areas(), original, changed, 1);
      if (testing::Test::HasFatalFailure()) return;
      viewport.ZoomBy(2);
      ASSERT_EQ(viewport.Zoom(), 3);
      ExpectShown(renderer.Render(viewport, viewport.Areas(), kGround), viewport.Areas(), original,
                  changed, 3);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(PreviewRenderer, ALoupe_Should_ShowThePictureOfTheStep_AndTheGroundOutside) {
  std::mt19937 random(kSeed);
  const TBitmap picture = AnyPicture(pf24bit, random);
  ChangeValuesModel model(picture, kEditorValueRules);
  model.Load({});
  model.SetOperation(kOperationValues);
  model.SetValues({20, 30, 40, 0, -10, 10, 0});
  const PreviewRenderer renderer(model);
  const TBitmap changed = Stepped(picture, StepOf(model.CurrentChange()));
  const TRect part{-10, 30, 50, picture.Height() + 5};
  const QImage image = renderer.RenderPart(part, true, kGround);
  for (int y = part.Top; y < part.Bottom; ++y)
    for (int x = part.Left; x < part.Right; ++x) {
      const bool isInside = x >= 0 && y < picture.Height();
      ASSERT_EQ(ColorAt(image, x - part.Left, y - part.Top),
                isInside ? changed.PixelColor(x, y) : kGround);
    }
  EXPECT_EQ(ColorAt(renderer.RenderPart({3, 4, 5, 6}, false, kGround), 0, 0),
            picture.PixelColor(3, 4));
}

/// A large picture of one color, so that every copy of fewer pixels has it.
TEST(PreviewRenderer, ALargePicture_Should_ArriveFromAnotherThread_AndFollowTheValues) {
  TBitmap picture;
  picture.ResetPixels(pf24bit, 2000, 1500);
  picture.Canvas().Brush.Color = RGB(100, 110, 120);
  picture.Canvas().FillRect({0, 0, 2000, 1500});
  ChangeValuesModel model(picture, kEditorValueRules);
  model.Load({});
  model.SetOperation(kOperationValues);
  PreviewRenderer renderer(model);
  int arrivals = 0;
  renderer.OnArrived = [&] { ++arrivals; };
  ValuesViewport viewport(2000, 1500);
  viewport.SetBox(400, 300);
  viewport.SetMode(PreviewMode::changed);
  EXPECT_EQ(ColorAt(renderer.Render(viewport, viewport.Areas(), kGround), 200, 150), kGround);
  EXPECT_TRUE(renderer.IsWaiting());
  ASSERT_TRUE(QTest::qWaitFor([&] { return arrivals == 2; })) << "quickly, then as means";
  EXPECT_FALSE(renderer.IsWaiting());
  EXPECT_EQ(ColorAt(renderer.Render(viewport, viewport.Areas(), kGround), 200, 150),
            RGB(100, 110, 120));
  model.Change(ValueControl::red, 50);
  renderer.ForgetChange();
  const TBitmap changed = ChangeStepPart(picture, {0, 0, 1, 1}, StepOf(model.CurrentChange()));
  EXPECT_EQ(ColorAt(renderer.Render(viewport, viewport.Areas(), kGround), 200, 150),
            changed.PixelColor(0, 0));
  EXPECT_EQ(arrivals, 2) << "the copy stays";
  // A part at a zoom between: the whole copy stands in until it arrives.
  viewport.ZoomBy(2);
  ASSERT_LT(viewport.Zoom(), 1);
  ASSERT_FALSE(viewport.IsFitted());
  EXPECT_EQ(ColorAt(renderer.Render(viewport, viewport.Areas(), kGround), 200, 150),
            changed.PixelColor(0, 0));
  EXPECT_TRUE(QTest::qWaitFor([&] { return arrivals == 4; }));
}

TEST(PreviewRenderer, Closing_Should_NotWaitForTheWholeCopy_NorReadAfterwards) {
  auto picture = std::make_unique<TBitmap>();
  picture->ResetPixels(pf24bit, 6000, 4000);
  auto model = std::make_unique<ChangeValuesModel>(*picture, kEditorValueRules);
  model->Load({});
  model->SetOperation(kOperationValues);
  auto renderer = std::make_unique<PreviewRenderer>(*model);
  ValuesViewport viewport(6000, 4000);
  viewport.SetBox(600, 400);
  renderer->Render(viewport, viewport.Areas(), kGround);
  renderer.reset();
  model.reset();
  // A job that still read would read freed memory.
  picture.reset();
  QTest::qWait(20);
}

}  // namespace
}  // namespace rasterkit
