// The 1:1 view: the part that is shown, and its pixels before and after saving.

#include <rasterkit/dialogs/saving/saved_result.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>

#include "tests/dialogs/saving/saving_fixture.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using detail::PartOfPicture;
using testing::HasSubstr;

using SavingViewTest = SavingTest;

TBitmap Cut(const TBitmap& whole, const PartOfPicture& place) {
  return std::move(*Picture::Of(whole.Clone())
                        .Crop({place.left, place.top, place.width, place.height})
                        .Bitmap());
}

/// A picture with detail everywhere.
Picture Noise(int width, int height) {
  std::mt19937 random(7);
  return Picture::Of(std::make_unique<TBitmap>(RandomRaster(pf24bit, width, height, random)));
}

TEST_F(SavingViewTest, TheView_Should_StartInTheMiddleAndStayInside) {
  SavingModel& model = OpenFile(Make("a.png", 400, 300));
  model.Begin();
  model.ResizeView(100, 60);
  EXPECT_EQ(model.ViewedPart(), (PartOfPicture{150, 120, 100, 60}));
  model.PanView(-1000, 20);
  EXPECT_EQ(model.ViewedPart(), (PartOfPicture{0, 140, 100, 60}));
  model.PanView(5000, 5000);
  EXPECT_EQ(model.ViewedPart(), (PartOfPicture{300, 240, 100, 60}));
  model.ResizeView(1000, 1000);
  EXPECT_EQ(model.ViewedPart(), (PartOfPicture{0, 0, 400, 300}));
  EXPECT_EQ(model.PartText(), "Part from 0, 0: 400 × 300 pixels");
}

TEST_F(SavingViewTest, WithoutAView_NothingIsComputed) {
  SavingModel& model = OpenFile(Make("a.jpg"));
  model.Begin();
  EXPECT_FALSE(view.HasJob(SavingWork::part));
  model.ResizeView(20, 20);
  EXPECT_TRUE(view.HasJob(SavingWork::part));
  model.ResizeView(0, 0);
  EXPECT_FALSE(view.HasJob(SavingWork::part));
}

TEST_F(SavingViewTest, ShortDrags_Should_NeedNoNewPixels) {
  SavingModel& model = OpenFile(Make("a.png", 400, 300));
  model.Begin();
  model.ResizeView(100, 60);
  view.Run(SavingWork::part);
  model.PanView(40, -20);
  EXPECT_FALSE(view.HasJob(SavingWork::part));
  model.PanView(40, 0);
  EXPECT_TRUE(view.HasJob(SavingWork::part));
  EXPECT_THAT(model.AfterText(), HasSubstr("being computed"));
  view.Run(SavingWork::part);
  EXPECT_EQ(model.AfterText(), "As sa&ved: the same pixels");
}

TEST_F(SavingViewTest, ThePixelsOfAPart_Should_BeThoseOfTheWholeFile) {
  const Picture picture = Noise(500, 400);
  for (const auto& [x, y] : {std::pair{1, 1}, std::pair{2, 1}, std::pair{2, 2}}) {
    RecipeSave save;
    save.quality = 60;
    save.chromaX = x;
    save.chromaY = y;
    Picture prepared = picture;
    ApplySaving(prepared, save);
    SaveOptions options = SaveOptionsOf(save);
    options.type = PictureType::jpeg;
    prepared.Save(In("whole.jpg"), options);
    const auto whole = Picture::Open(In("whole.jpg")).Bitmap();
    for (const PartOfPicture place : {PartOfPicture{0, 0, 50, 40}, PartOfPicture{101, 77, 150, 130},
                                      PartOfPicture{450, 350, 50, 50}}) {
      const detail::ShownPart part = detail::PartAfter(picture, save, PictureType::jpeg, place, {});
      EXPECT_TRUE(SamePixels(*part.pixels, Cut(*whole, place)))
          << x << "x" << y << " at " << place.left;
    }
  }
}

TEST_F(SavingViewTest, APaletteOfTheWhole_Should_BeThatOfThePart) {
  const Picture picture = Noise(200, 150);
  RecipeSave save;
  save.bits = 8;
  Picture prepared = picture;
  ApplySaving(prepared, save);
  prepared.Save(In("whole.png"));
  const auto whole = Picture::Open(In("whole.png")).Bitmap();
  const PartOfPicture place{60, 50, 40, 30};
  const detail::ShownPart part = detail::PartAfter(picture, save, PictureType::png, place, {});
  EXPECT_TRUE(SamePixels(*part.pixels, Cut(*whole, place)));
}

TEST_F(SavingViewTest, TheSourceTables_Should_BeUsedForAPart) {
  Noise(320, 240).Save(In("a.jpg"), OfQuality(35));
  Picture picture = Picture::Open(In("a.jpg"));
  picture.Crop({3, 5, 300, 200});
  picture.Save(In("b.jpg"));
  const auto whole = Picture::Open(In("b.jpg")).Bitmap();
  const PartOfPicture place{100, 80, 60, 50};
  const detail::ShownPart part = detail::PartAfter(picture, {}, PictureType::jpeg, place, {});
  EXPECT_TRUE(SamePixels(*part.pixels, Cut(*whole, place)));
}

TEST_F(SavingViewTest, AnotherQuality_Should_ShowOtherPixels) {
  Noise(320, 240).Save(In("a.jpg"), OfQuality(95));
  SavingModel& model = OpenFile(In("a.jpg"));
  model.Begin();
  model.ResizeView(80, 60);
  view.Run(SavingWork::part);
  EXPECT_EQ(model.Before().pixels, model.After().pixels) << "the same pixels are not made twice";
  model.SetQuality(5);
  view.Run(SavingWork::part);
  EXPECT_FALSE(SamePixels(*model.Before().pixels, *model.After().pixels));
  EXPECT_EQ(model.AfterText(), "As sa&ved");
}

TEST_F(SavingViewTest, AStoppedJob_Should_EndWithoutAnError) {
  Noise(3000, 2000).Save(In("a.jpg"));
  SavingModel& model = OpenFile(In("a.jpg"));
  model.SetQuality(50);
  model.Begin();
  model.ResizeView(80, 60);
  std::stop_source stop;
  stop.request_stop();
  view.jobs.at(SavingWork::part)(stop.get_token())();
  EXPECT_EQ(model.AfterText(), "As sa&ved: cannot be shown");
  view.jobs.at(SavingWork::size)(stop.get_token())();
  EXPECT_THAT(model.SizeText(), HasSubstr("at most"));
}

}  // namespace
}  // namespace rasterkit::test
