#include <cmath>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/pictures/recipes/step_kinds.h>
#include <rasterkit/pictures/recipes/steps_of_picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/pictures/recipes/every_step.h"
#include "tests/pictures/recipes/made_pictures.h"
#include "tests/support/corpus.h"

/// A recipe of a picture's steps does the same to the source again.
namespace rasterkit {
namespace {

using test::EveryStep;
using test::GradientPicture;
using testing::HasSubstr;

std::vector<uint8_t> BytesOf(const Picture& picture, const SaveOptions& options,
                             const Run& run = {}) {
  TMemoryStream bytes;
  picture.Save(bytes, options, run);
  return {bytes.Bytes().begin(), bytes.Bytes().end()};
}

SaveOptions As(PictureType type) {
  SaveOptions options;
  options.type = type;
  return options;
}

/// Has a position, a resolution and metadata.
Picture Stated(Picture picture) {
  MetadataEdit edit;
  edit.resolution = Resolution{254, 127};
  edit.set = {{"Artist", "Somebody"}, {"Make", "Camera"}, {"XMP:dc:title", "A plan"}};
  return picture.Edit(edit).Apply(PlaceStep{{1.5, 0.5, 0.5, -1.5, 1000, 2000}});
}

RecipeSlots Slots() {
  Picture mark = GradientPicture(23, 31, pf8bit);
  Picture colors = GradientPicture(5, 5, pf4bit);
  return {{"mark", mark}, {"colors", colors}, {"stated", Stated(GradientPicture(3, 3))}};
}

Picture Numbers(int width, int height) {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples samples(layout, width, height);
  for (int y = 0; y < height; ++y) {
    auto* const row = reinterpret_cast<uint16_t*>(samples.Row(y));
    for (int x = 0; x < width; ++x) row[x] = static_cast<uint16_t>(500 + 97 * x + 31 * y);
  }
  return Picture::Of(std::move(samples));
}

Picture Seen(int width, int height) {
  auto rows = std::make_unique<TBitmap>(test::GradientRaster(pf32bit, width, height));
  rows->SetAlphaFormat(afDefined);
  return Picture::Of(std::move(rows));
}

/// A JPEG file that lies on its side.
Picture Photograph(int width, int height) {
  MetadataEdit edit;
  edit.set = {{"Orientation", "6"}, {"Make", "Camera"}};
  return Picture::Open(BytesOf(GradientPicture(width, height).Edit(edit), As(PictureType::jpeg)));
}

TEST(EveryStepTest, IsOfEveryKind) {
  std::set<std::string> names;
  for (const RecipeStep& step : EveryStep()) names.insert(RecipeStepName(step));
  detail::ForEachStepKind([&]<class Plain>(std::type_identity<Plain>) {
    if constexpr (detail::kIsStep<Plain>) {
      EXPECT_TRUE(names.contains(detail::kStepKind<Plain>.name)) << detail::kStepKind<Plain>.name;
    }
  });
}

TEST(StepKindsTest, HaveNamesOfTheirOwn) {
  std::set<std::string> names;
  size_t kinds = 0;
  detail::ForEachStepKind([&]<class Plain>(std::type_identity<Plain>) {
    if constexpr (detail::kIsStep<Plain>) {
      names.insert(detail::kStepKind<Plain>.name);
      ++kinds;
    }
  });
  EXPECT_EQ(names.size(), kinds);
  // Those of Picture: a CropStep is a crop, and so on; the changes of color are steps of their
  // own, UsePalette and CombineStep need a slot, an EditStep is two, and PixelsStep is not one of
  // them.
  EXPECT_EQ(kinds, std::variant_size_v<Step> - 1 - 1 + 1 + std::variant_size_v<ColorChange>);
}

/// Threads and bands do not show in a result.
TEST(RecipeReplayTest, GivesTheSameBytesWithAnyNumberOfThreads) {
  const Recipe recipe{"", EveryStep(), {}};
  const std::vector<std::pair<std::string, Picture>> pictures = {
      {"true color", GradientPicture(131, 97)},
      {"palette", GradientPicture(131, 97, pf8bit)},
      {"black and white", GradientPicture(131, 97, pf1bit)},
      {"transparency", Seen(131, 97)},
      {"numbers", Numbers(131, 97)},
      {"photograph", Photograph(131, 97)}};
  for (const auto& [name, plain] : pictures) {
    for (size_t count = 1; count <= recipe.steps.size(); count += 3) {
      Picture picture = Stated(plain);
      const Recipe part{"", {recipe.steps.begin(), recipe.steps.begin() + count}, {}};
      ApplyRecipe(picture, part, Slots());
      for (const PictureType type : {PictureType::png, PictureType::tiff, PictureType::jpeg}) {
        SCOPED_TRACE(name + ", " + std::to_string(count) + " steps, " + PictureTypeName(type));
        rasterkit::Run plainRun;
        plainRun.threads = 1;
        const std::vector<uint8_t> expected = BytesOf(picture, As(type), plainRun);
        for (const int threads : {2, 7}) {
          for (const int bandRows : {0, 1, 13}) {
            rasterkit::Run run;
            run.threads = threads;
            run.bandRows = bandRows;
            ASSERT_EQ(BytesOf(picture, As(type), run), expected) << threads << ", " << bandRows;
          }
        }
      }
    }
  }
}

std::string SlotFor(const Step& step) {
  if (std::holds_alternative<CombineStep>(step)) return "mark";
  return std::holds_alternative<EditStep>(step) ? "stated" : "colors";
}

TEST(RecipeReplayTest, StepsOfAPictureBecomeARecipeThatMakesThemAgain) {
  for (const Picture& plain : {GradientPicture(131, 97), Numbers(90, 80), Photograph(131, 97)}) {
    const Picture source = Stated(plain);
    const size_t own = source.Steps().size();
    Picture picture = source;
    ApplyRecipe(picture, {"", EveryStep(), {}}, Slots());
    const std::span<const Step> made = std::span(picture.Steps()).subspan(own);
    const Recipe recipe{"", RecipeStepsOf(made, SlotFor), {}};
    Picture again = source;
    ApplyRecipe(again, ReadRecipe(WriteRecipe(recipe)), Slots());
    EXPECT_EQ(again.Steps().size(), picture.Steps().size());
    EXPECT_EQ(BytesOf(again, As(PictureType::tiff)), BytesOf(picture, As(PictureType::tiff)));
  }
}

TEST(RecipeStepsOfTest, LeavesOutTheOrientation) {
  Picture picture = Photograph(40, 30);
  EXPECT_EQ(picture.OrientationSteps(), 1u);
  EXPECT_EQ(picture.Width(), 30);
  picture.Mirror(MirrorAxis::topBottom).Crop({1, 2, 3, 4}).Resize(5, 6).Turn(-5);
  const std::vector<RecipeStep> steps = RecipeStepsOf(picture);
  ASSERT_EQ(steps.size(), 4u);
  EXPECT_TRUE(std::holds_alternative<MirrorStep>(steps[0]));
  EXPECT_EQ(std::get<RecipeCrop>(steps[1]), (RecipeCrop{LengthUnit::pixels, 1, 2, 4, 6}));
  EXPECT_EQ(std::get<RecipeResize>(steps[2]).height, 6);
  EXPECT_EQ(std::get<TurnStep>(steps[3]).quarters, -1);
  const Picture copy = picture;
  Picture assigned = GradientPicture(2, 2);
  assigned = copy;
  EXPECT_EQ(copy.OrientationSteps(), 1u);
  EXPECT_EQ(assigned.OrientationSteps(), 1u);
  EXPECT_EQ(GradientPicture(2, 2).Turn(1).OrientationSteps(), 0u);
}

TEST(RecipeStepsOfTest, NamesSlots) {
  Picture over = GradientPicture(7, 7);
  over.Stretch({NumberStretch::Kind::full});
  MetadataEdit edit;
  edit.stripGps = true;
  edit.copy.emplace();
  edit.copy->from = std::make_shared<const Metadata>();
  edit.copy->takesXmp = false;
  edit.date = "2020-01-01T00:00:00";
  Picture picture = GradientPicture(40, 30);
  picture.Combine(over, {CombineMode::shadow, 5}).Change(UsePalette{GrayPalette(4)}).Edit(edit);
  EXPECT_THROW(RecipeStepsOf(picture), UnsupportedError);
  const std::vector<RecipeStep> steps = RecipeStepsOf(picture, SlotFor);
  ASSERT_EQ(steps.size(), 5u);
  const auto& combine = std::get<RecipeCombine>(steps[0]);
  EXPECT_EQ(combine.slot, "mark");
  EXPECT_EQ(combine.options.mode, CombineMode::shadow);
  EXPECT_EQ(combine.stretch, (NumberStretch{NumberStretch::Kind::full}));
  EXPECT_EQ(std::get<RecipePalette>(steps[1]).slot, "colors");
  EXPECT_TRUE(std::get<EditStep>(steps[2]).edit.stripGps);
  EXPECT_FALSE(std::get<EditStep>(steps[2]).edit.date);
  EXPECT_EQ(std::get<RecipeCopy>(steps[3]).slot, "stated");
  EXPECT_FALSE(std::get<RecipeCopy>(steps[3]).takesXmp);
  EXPECT_FALSE(std::get<EditStep>(steps[4]).edit.stripGps);
  EXPECT_EQ(std::get<EditStep>(steps[4]).edit.date, "2020-01-01T00:00:00");
}

TEST(RecipeStepsOfTest, RefusesWhatNoRecipeHolds) {
  Picture picture = GradientPicture(4, 3);
  picture.Apply(PixelsStep{std::make_shared<TBitmap>(test::GradientRaster(pf24bit, 4, 3))});
  EXPECT_THROW(RecipeStepsOf(picture), UnsupportedError);
  Picture over = GradientPicture(7, 7), below = GradientPicture(4, 3);
  below.Combine(over.Turn(1));
  EXPECT_THROW(RecipeStepsOf(below, SlotFor), UnsupportedError);
}

TEST(RecipePaletteTest, IsThatOfTheSlotsPicture) {
  Picture picture = GradientPicture(40, 30);
  const RecipeStep step = RecipePalette{"colors"};
  const Picture colors = GradientPicture(5, 5, pf4bit);
  ApplyRecipeStep(picture, step, {{"colors", colors}});
  EXPECT_EQ(picture.Bitmap()->Palette(), colors.Layout().palette);
  Picture gray = GradientPicture(40, 30);
  const Picture grays = Picture::Of(std::make_unique<TBitmap>(test::GrayRaster(3, 3)));
  ApplyRecipeStep(gray, step, {{"colors", grays}});
  EXPECT_TRUE(IsGrayRamp(gray.Bitmap()->Palette()));
  try {
    ApplyRecipeStep(picture, step, {{"colors", GradientPicture(5, 5)}});
    FAIL() << "true color has no palette";
  } catch (const RangeError& error) {
    EXPECT_THAT(error.Reason(), HasSubstr("has no palette"));
  }
}

TEST(RecipeTextTest, RandomRecipesAreReadAsTheyWereWritten) {
  const unsigned seed = std::random_device()();
  std::mt19937 random(seed);
  for (int i = 0; i < 3000; ++i) {
    const Recipe recipe = test::RandomRecipe(random);
    const std::string text = WriteRecipe(recipe);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + text);
    const Recipe again = ReadRecipe(text);
    ASSERT_TRUE(test::IsSame(recipe, again));
    ASSERT_EQ(WriteRecipe(again), text);
  }
}

TEST(RecipeReplayTest, OfTheCorpusGivesTheBytesOfTheCalls) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  Recipe recipe;
  recipe.steps = {TurnStep{-1}, RecipeCrop{LengthUnit::percent, 12.5, 7, 88, 91.3},
                  RecipeResize{LengthUnit::percent, 60, 0}, ChangeStep{AdjustColors{5, 10}}};
  const Recipe read = ReadRecipe(WriteRecipe(recipe));
  int used = 0, place = 0;
  for (const test::CorpusEntry& entry : test::CorpusEntries()) {
    const std::string path = entry.at("path");
    const bool isPicture = path.starts_with("jpeg/") || path.starts_with("png/") ||
                           path.starts_with("tiff/") || path.starts_with("bmp/");
    if (!isPicture || ++place % 2 != 0) continue;
    SCOPED_TRACE(path);
    try {
      const std::string file = (test::CorpusFolder() / path).string();
      Picture picture = Picture::Open(file), plain = picture;
      if (int64_t{picture.Width()} * picture.Height() > 2'000'000) continue;
      if (picture.Width() < 20 || picture.Height() < 20) continue;
      ApplyRecipe(picture, read);
      plain.Turn(-1);
      const int width = plain.Width(), height = plain.Height();
      const auto edge = [](double percent, int size) {
        return static_cast<int>(std::nearbyint(percent * size / 100));
      };
      const int left = edge(12.5, width), top = edge(7, height);
      plain.Crop({left, top, edge(88, width) - left, edge(91.3, height) - top});
      const double newWidth = 60.0 * plain.Width() / 100;
      const double newHeight = newWidth * plain.Height() / plain.Width();
      plain.Resize(static_cast<int>(std::nearbyint(newWidth)),
                   static_cast<int>(std::nearbyint(newHeight)));
      plain.Change(AdjustColors{5, 10});
      const SaveOptions options = As(PictureType::tiff);
      ASSERT_EQ(BytesOf(picture, options), BytesOf(plain, options));
      ++used;
    } catch (const Error&) {
      // Damaged files.
    }
  }
  EXPECT_GT(used, 80);
}

}  // namespace
}  // namespace rasterkit
