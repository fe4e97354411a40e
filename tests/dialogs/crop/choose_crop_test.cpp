#include <QPushButton>
#include <QTest>
#include <map>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/crop/choose_crop.h>
#include <rasterkit/dialogs/crop/choose_crop_form.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

class ChooseCropCall : public testing::Test {
 protected:
  ChooseCropCall()
      : pixels(GradientBitmap(pf24bit, 600, 400)),
        picture(Picture::Of(std::make_unique<TBitmap>(GradientBitmap(pf24bit, 600, 400)))) {
    picture.Edit({.resolution = Resolution{254, 254}});
    picture.Apply(PlaceStep{{0.5, 0, 0, -0.5, 1000.25, 1999.75}});
  }

  TBitmap pixels;
  Picture picture;
};

void PressOk(QWidget& window) {
  QTest::mouseClick(&window.findChild<TNavigator*>("NaviResult")->Button(nbPost), Qt::LeftButton);
}

TEST_F(ChooseCropCall, Should_AnswerWithAStep_When_Confirmed) {
  WhenModal([](QWidget& window) {
    auto& form = static_cast<TFormChooseCrop&>(window);
    EXPECT_TRUE(form.Model().MayChooseMapUnit());
    form.Tool().SetBmpCutRect({10, 20, 110, 70});
    PressOk(window);
  });
  const auto answer = ChooseCrop(pixels, picture);
  ASSERT_TRUE(answer);
  EXPECT_EQ(*answer, (RecipeCrop{LengthUnit::pixels, 10, 20, 110, 70}));
  ApplyRecipeStep(picture, *answer);
  EXPECT_EQ(picture.Width(), 100);
  EXPECT_EQ(picture.Height(), 50);
}

TEST_F(ChooseCropCall, Should_StartInAnyUnit_AndReturnTheStartUnchanged) {
  const RecipeCrop starts[] = {{LengthUnit::pixels, 10, 20, 110, 70},
                               {LengthUnit::percent, 10, 20, 30, 70},
                               {LengthUnit::millimeters, 1.02, 2, 11, 7},
                               {LengthUnit::map, 1005, 1990, 1055, 1965}};
  for (const RecipeCrop& start : starts) {
    ChooseCropOptions options;
    options.start = start;
    WhenModal([&](QWidget& window) {
      const CropStep expected = PixelsOf(start, picture);
      const TRect rect = static_cast<TFormChooseCrop&>(window).Model().Rect();
      EXPECT_EQ(rect.Left, expected.left);
      EXPECT_EQ(rect.Bottom, expected.top + expected.height);
      PressOk(window);
    });
    EXPECT_EQ(ChooseCrop(pixels, picture, options), start);
  }
}

TEST_F(ChooseCropCall, Should_ThrowBeforeAWindowOpens_When_TheStartDoesNotFit) {
  ChooseCropOptions options;
  options.start = RecipeCrop{LengthUnit::pixels, 0, 0, 601, 10};
  EXPECT_THROW(ChooseCrop(pixels, picture, options), RangeError);
}

TEST_F(ChooseCropCall, Should_BeginWithTheWhole_When_AStartThatMayBeClippedIsOutside) {
  const RecipeCrop starts[] = {
      {LengthUnit::pixels, 5000, 5000, 5100, 5100, Outside::clip},
      {LengthUnit::pixels, -20, 0, 0, 10, Outside::clip},
      {LengthUnit::map, 1400, 1990, 1500, 1965, Outside::clip},
  };
  for (const RecipeCrop& start : starts) {
    ChooseCropOptions options;
    options.start = start;
    bool isShown = false;
    WhenModal([&](QWidget& window) {
      isShown = true;
      EXPECT_FALSE(static_cast<TFormChooseCrop&>(window).Tool().CutRectExists());
      PressOk(window);
    });
    EXPECT_EQ(ChooseCrop(pixels, picture, options),
              (RecipeCrop{LengthUnit::pixels, 0, 0, 600, 400}));
    EXPECT_TRUE(isShown);
    options.start->outside = Outside::refuse;
    EXPECT_THROW(ChooseCrop(pixels, picture, options), RangeError);
  }
  // What is wrong by itself is refused with either.
  ChooseCropOptions options;
  options.start = RecipeCrop{LengthUnit::pixels, 9, 9, 9, 20, Outside::clip};
  EXPECT_THROW(ChooseCrop(pixels, picture, options), RangeError);
}

TEST_F(ChooseCropCall, Should_AnswerNothing_When_CanceledInAnyWay) {
  const std::function<void(QWidget&)> ways[] = {
      [](QWidget& window) { window.close(); },
      [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); },
      [](QWidget& window) {
        QTest::mouseClick(&window.findChild<TNavigator*>("NaviResult")->Button(nbCancel),
                          Qt::LeftButton);
      }};
  for (const auto& way : ways) {
    WhenModal(way);
    EXPECT_FALSE(ChooseCrop(pixels, picture));
  }
}

TEST_F(ChooseCropCall, UnitOfTheMap_Should_BeTheHosts_When_NothingStatesOne) {
  ChooseCropOptions options;
  options.mapUnit = "ft";
  WhenModal([](QWidget& window) {
    auto& form = static_cast<TFormChooseCrop&>(window);
    EXPECT_EQ(form.Model().Facts().mapUnit.symbol, "ft");
    EXPECT_FALSE(form.Model().MayChooseMapUnit());
  });
  ChooseCrop(pixels, picture, options);
}

TEST_F(ChooseCropCall, TheUnitOfTheCaller_Should_NotBeRemembered) {
  ChooseCropOptions options;
  options.unit = LengthUnit::millimeters;
  for (int i = 0; i < 2; ++i) {
    WhenModal([&](QWidget& window) {
      auto& form = static_cast<TFormChooseCrop&>(window);
      EXPECT_EQ(form.Model().Unit(), i == 0 ? LengthUnit::millimeters : LengthUnit::pixels);
      PressOk(window);
    });
    EXPECT_TRUE(ChooseCrop(pixels, picture, options));
    options.unit = LengthUnit::pixels;
  }
}

TEST_F(ChooseCropCall, Choices_Should_BeRemembered_When_Confirmed) {
  WhenModal([](QWidget& window) {
    auto& form = static_cast<TFormChooseCrop&>(window);
    form.Model().ChooseUnit(LengthUnit::millimeters);
    form.Model().ChooseRatio({.kind = RatioKind::typed, .typedWidth = 7, .typedHeight = 3});
    form.Model().SetGuide(CropGuide::thirds);
    form.ShowAll();
    PressOk(window);
  });
  ChooseCrop(pixels, picture);
  WhenModal([](QWidget& window) {
    auto& form = static_cast<TFormChooseCrop&>(window);
    EXPECT_EQ(form.Model().Unit(), LengthUnit::millimeters);
    EXPECT_EQ(form.Model().Ratio().typedWidth, 7);
    EXPECT_EQ(form.Model().Guide(), CropGuide::thirds);
    EXPECT_FALSE(form.Tool().CutRectExists());
    form.Model().ChooseUnit(LengthUnit::pixels);
    form.Model().ChooseRatio({});
    form.Model().SetGuide(CropGuide::none);
    form.ShowAll();
    PressOk(window);
  });
  ChooseCrop(pixels, picture);
}

TEST_F(ChooseCropCall, TinyPictures_Should_BeSafe) {
  TBitmap tiny = GradientBitmap(pf1bit, 1, 1);
  const Picture one = Picture::Of(std::make_unique<TBitmap>(GradientBitmap(pf1bit, 1, 1)));
  WhenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Return); });
  EXPECT_EQ(ChooseCrop(tiny, one), (RecipeCrop{LengthUnit::pixels, 0, 0, 1, 1}));
}

}  // namespace
}  // namespace rasterkit::test
