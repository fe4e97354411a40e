// The list of steps and the place in it.

#include "tests/dialogs/editor/editor_fixture.h"
#include "tests/dialogs/editor/made_samples.h"

namespace rasterkit {
namespace {

using test::EditorTest;
using test::ReadFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class EditorSteps : public EditorTest {};

TEST_F(EditorSteps, Should_ShowThePictureAsOpened) {
  Open(WritePicture("plan.png"));
  EXPECT_TRUE(model->HasPicture());
  EXPECT_FALSE(model->IsWorking());
  EXPECT_EQ(model->Result().Width(), 23);
  EXPECT_THAT(model->Steps(), IsEmpty());
  EXPECT_FALSE(model->CanUndo());
  EXPECT_FALSE(model->CanRedo());
  EXPECT_FALSE(model->CanConfirm());
  EXPECT_FALSE(model->HasUnsavedWork());
  EXPECT_EQ(model->Facts(), "plan.png: 23 x 17 pixels, 24 bits, 0.1 MiB");
  EXPECT_EQ(model->Title(), "plan.png");
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_AddUndoAndRedo) {
  Open(WritePicture("plan.png"));
  const TBitmap* const source = view->shown;
  model->TurnLeft();
  EXPECT_EQ(model->Place(), 1u);
  EXPECT_EQ(model->Result().Width(), 17);
  ExpectResultShown();
  model->Mirror();
  model->Gray();
  EXPECT_THAT(model->StepNames(), ElementsAre("Turn left", "Mirror left and right", "Make gray"));
  ExpectResultShown();

  model->Undo();
  EXPECT_EQ(model->Place(), 2u);
  EXPECT_EQ(model->Steps().size(), 3u);
  EXPECT_TRUE(model->CanRedo());
  ExpectResultShown();
  model->Undo();
  ExpectResultShown();
  model->Undo();
  EXPECT_FALSE(model->CanUndo());
  EXPECT_EQ(view->shown, source) << "the pixels of the source are kept once";
  model->Undo();
  EXPECT_EQ(model->Place(), 0u);
  for (int i = 0; i < 3; ++i) {
    model->Redo();
    ExpectResultShown();
  }
  EXPECT_FALSE(model->CanRedo());
  model->Redo();
  EXPECT_EQ(model->Place(), 3u);
}

TEST_F(EditorSteps, Should_ForgetStepsAfterThePlaceWhenOneIsAdded) {
  Open(WritePicture("plan.png"));
  model->TurnLeft();
  model->Mirror();
  model->Undo();
  model->Flip();
  EXPECT_THAT(model->StepNames(), ElementsAre("Turn left", "Mirror top and bottom"));
  EXPECT_FALSE(model->CanRedo());
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_CountEachStepOnce) {
  Open(WritePicture("plan.png"));
  for (int i = 0; i < 3; ++i) model->TurnRight();
  EXPECT_EQ(model->ToRecipe().steps.size(), 3u);
  EXPECT_EQ(model->Result().Steps().size(), 3u);
  view->values = AdjustColors{20, 0, 0, 0, 0, 0};
  model->Values();
  model->Values();
  EXPECT_EQ(model->ToRecipe().steps.size(), 5u);
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_TakeTheAnswersOfWindows) {
  Open(WritePicture("plan.png"));
  view->crop = RecipeCrop{LengthUnit::percent, 0, 0, 50, 100, Outside::refuse};
  model->Crop();
  EXPECT_EQ(model->Result().Width(), 12);
  view->size = RecipeResize{LengthUnit::pixels, 24, 34, 0, {}};
  model->Size();
  EXPECT_EQ(model->Result().Height(), 34);
  view->threshold = MakeMono{100, clBlack, clWhite};
  model->Mono();
  EXPECT_EQ(model->Result().Layout().BitsPerPixel(), 1);
  ExpectResultShown();
  EXPECT_THAT(model->StepNames(),
              ElementsAre("Crop to 12 x 17", "Resize to 24 x 34", "Make black and white"));
}

TEST_F(EditorSteps, Should_AddNothingWhenAWindowIsCanceledOrChangesNothing) {
  Open(WritePicture("plan.png"));
  model->Crop();
  model->Size();
  model->Values();
  model->Mono();
  EXPECT_THAT(model->Steps(), IsEmpty());
  view->crop = RecipeCrop{LengthUnit::pixels, 0, 0, 23, 17, Outside::refuse};
  model->Crop();
  model->Add(RecipeResize{LengthUnit::percent, 100, 100, 0, {}});
  model->Rotate(720);
  EXPECT_THAT(model->Steps(), IsEmpty());
  EXPECT_THAT(view->told, IsEmpty());
}

TEST_F(EditorSteps, Should_IgnoreEventsWhileAWindowAsks) {
  Open(WritePicture("plan.png"));
  view->crop = RecipeCrop{LengthUnit::pixels, 1, 1, 5, 5, Outside::refuse};
  view->onAsk = [&] {
    model->TurnLeft();
    EXPECT_FALSE(model->CancelOrClose());
  };
  model->Crop();
  EXPECT_THAT(model->StepNames(), ElementsAre("Crop to 4 x 4"));
  EXPECT_THAT(view->closed, IsEmpty());
}

TEST_F(EditorSteps, Should_ShareNoPixelsBetweenSteps) {
  Open(WritePicture("plan.png"));
  const TBitmap* const source = view->shown;
  model->Add(TurnStep{4});
  EXPECT_NE(view->shown, source);
  EXPECT_NE(view->shown->ScanLine(0), source->ScanLine(0));
  ExpectResultShown();
  model->Undo();
  EXPECT_EQ(view->shown, source);
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_RotateByQuartersWithoutResampling) {
  Open(WritePicture("plan.png"));
  model->Rotate(-90);
  model->Rotate(450);
  model->Rotate(180);
  model->Rotate(7.5);
  EXPECT_THAT(model->StepNames(), ElementsAre("Turn right", "Turn left", "Turn by 180 degrees",
                                              "Rotate by 7.5 degrees"));
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_TellWhatDoesNotFitAndStay) {
  Open(WritePicture("plan.png"));
  model->TurnLeft();
  model->Add(RecipeCrop{LengthUnit::map, 0, 10, 10, 0, Outside::refuse});
  model->Add(RecipeCombine{"seal", {}});
  ASSERT_EQ(view->told.size(), 2u);
  EXPECT_EQ(model->Steps().size(), 1u);
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_RefuseASizeBeyondTheLimitBeforeAnythingIsGivenUp) {
  Open(WritePicture("plan.png"));
  model->TurnLeft();
  const size_t jobs = view->titles.size();
  model->Add(RecipeResize{LengthUnit::pixels, 100000, 100000, 0, {}});
  EXPECT_EQ(view->titles.size(), jobs) << "no job is started";
  ASSERT_EQ(view->told.size(), 1u);
  EXPECT_THAT(view->told[0], HasSubstr("30000000000"));
  EXPECT_THAT(view->told[0], HasSubstr("4294967296"));
  EXPECT_EQ(model->Steps().size(), 1u);
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_StateTheMemoryOfAStepInItsTitle) {
  Open(WritePicture("plan.png"));
  model->Add(RecipeResize{LengthUnit::pixels, 1024, 1024, 0, {}});
  EXPECT_THAT(view->titles, testing::Contains("Resize to 1024 x 1024 (3.0 MiB)"));
}

TEST_F(EditorSteps, Should_ResolveMapUnitsAndPaperUnitsAfterEachStep) {
  const std::string file = folder / "map.tif";
  MetadataEdit dpi;
  dpi.resolution = Resolution{254, 254};
  Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf24bit, 40, 30)))
      .Edit(dpi)
      .Apply(PlaceStep{Affine{2, 0, 0, -2, 1000, 2000}})
      .Save(file);
  Open(file);
  model->TurnLeft();
  model->Add(RecipeCrop{LengthUnit::map, 1010, 1990, 1030, 1960, Outside::refuse});
  ASSERT_THAT(view->told, IsEmpty());
  ExpectResultShown();
  model->Add(NorthUpStep{});
  ExpectResultShown();
  model->Add(RecipeResize{LengthUnit::millimeters, 3, 0, 0, {}});
  EXPECT_EQ(model->Result().Width(), 30);
  ExpectResultShown();
  model->Undo();
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_ShowNumbersAsTheyAreWritten) {
  const std::string file = folder / "deep.png";
  Picture::Of(test::DeepGray(20, 10)).Save(file);
  Open(file);
  ExpectResultShown();
  model->Add(RecipeCrop{LengthUnit::pixels, 5, 2, 15, 9, Outside::refuse});
  ExpectResultShown();
  model->Add(StretchStep{{NumberStretch::Kind::fixed, 2, 100, 3000}});
  ExpectResultShown();
  model->TurnLeft();
  ExpectResultShown();
  model->Undo();
  ExpectResultShown();
  model->Undo();
  ExpectResultShown();
}

TEST_F(EditorSteps, Should_ShowEveryKindOfPixelsAsTheyAreWritten) {
  options.keepsJournal = false;
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    for (const char* name : {"a.png", "a.tif", "a.bmp", "a.jpg"}) {
      SCOPED_TRACE(testing::Message() << name << ", format " << format);
      Renew();
      Open(WritePicture(name, 31, 19, format));
      model->Rotate(5);
      ExpectResultShown();
      model->Crop();
      view->values = AdjustColors{10, 20, 30, 0, 5, 0};
      model->Values();
      ExpectResultShown();
      model->Add(RecipeResize{LengthUnit::percent, 70, 70, 0, {}});
      ExpectResultShown();
      model->Colors256();
      model->Gray();
      ExpectResultShown();
      model->Undo();
      ExpectResultShown();
      EXPECT_THAT(view->told, IsEmpty());
    }
  }
}

}  // namespace
}  // namespace rasterkit
