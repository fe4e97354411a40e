#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgbitmap/save_graphics_model.h>

namespace rasterkit {
namespace {

int First(const char* name, int type) {
  return SaveGraphicsModel::FirstFilterIndex(name, type);
}

TEST(SaveGraphicsModelTest, TheRecord_Should_BeCopied_WithAModeOfTwoAtMost) {
  for (const auto& [mode, kept] :
       {std::pair{0, 0}, {1, 1}, {2, 2}, {3, 2}, {INT32_MAX, 2}, {-1, -1}}) {
    const SaveGraphicsModel model({8, 4, 72, mode, 33});
    EXPECT_EQ(model.Result(3), (TrecSaveBitmap{8, 4, 72, kept, 33})) << mode;
  }
}

TEST(SaveGraphicsModelTest, TheFirstEntry_Should_BeThatOfTheExtension) {
  EXPECT_EQ(First("plan.bmp", 6), 1);
  EXPECT_EQ(First("plan.JPG", 8), 2);
  EXPECT_EQ(First("/maps/plan.png", 6), 3);
  EXPECT_EQ(First("plan.tiff", 6), 4);
  EXPECT_EQ(First("plan.wmf", 6), 5);
  EXPECT_EQ(First("plan.emf", 6), 6);
  EXPECT_EQ(First("plan.gif", 6), 1) << "no such entry";
}

TEST(SaveGraphicsModelTest, TheFirstEntry_Should_BeThatOfTheType_When_TheNameHasNoDot) {
  EXPECT_EQ(First("plan", 1), 1);
  EXPECT_EQ(First("plan", 6), 2);
  EXPECT_EQ(First("plan", 3), 2);
  EXPECT_EQ(First("plan", 8), 3);
  EXPECT_EQ(First("plan", 10), 4);
  EXPECT_EQ(First("plan", 2), 5);
  EXPECT_EQ(First("plan", 4), 6);
  EXPECT_EQ(First("", 8), 3);
}

TEST(SaveGraphicsModelTest, TheFirstEntry_Should_BeOne_When_NothingTells) {
  EXPECT_EQ(First("plan", 0), 1);
  EXPECT_EQ(First("plan", -6), 1);
  EXPECT_EQ(First("plan", 5), 1);
  EXPECT_EQ(First("", 0), 1);
}

TEST(SaveGraphicsModelTest, TheFirstEntry_Should_NotBeThatOfTheType_When_ADotStandsElsewhere) {
  EXPECT_EQ(First("maps.d/plan", 8), 1);
  EXPECT_EQ(First("plan.", 8), 1);
}

TEST(SaveGraphicsModelTest, EachEntry_Should_HaveItsTypeExtensionAndOptions) {
  struct Entry {
    int index, type;
    const char* extension;
    bool hasOptions;
  };
  const Entry entries[] = {{1, 1, ".bmp", true},  {2, 6, ".jpg", true},  {3, 8, ".png", true},
                           {4, 10, ".tif", true}, {5, 2, ".wmf", false}, {6, 4, ".emf", false},
                           {0, 1, ".bmp", true},  {7, 1, ".bmp", true}};
  for (const Entry& entry : entries) {
    SaveGraphicsModel model({});
    model.FilterChange(entry.index);
    EXPECT_EQ(model.Type(), entry.type) << entry.index;
    EXPECT_EQ(model.DefaultExt(), entry.extension);
    EXPECT_EQ(model.HasOptions(), entry.hasOptions);
    EXPECT_EQ(model.Result(entry.index).BitmapFormat, entry.type);
  }
}

TEST(SaveGraphicsModelTest, NoTypeAtAll_Should_HaveNoOptions) {
  EXPECT_FALSE(SaveGraphicsModel({}).HasOptions());
}

TEST(SaveGraphicsModelTest, TheOptions_Should_BeginWithTheChosenType) {
  SaveGraphicsModel model({1, 24, 96, 0, 90});
  model.FilterChange(2);
  EXPECT_EQ(model.RecordForOptions().BitmapFormat, 6);
  model.RecordForOptions().JpgQuality = 20;
  EXPECT_EQ(model.Result(4), (TrecSaveBitmap{10, 24, 96, 0, 20}));
}

TEST(SaveGraphicsModelTest, TheName_Should_GetTheExtensionOfItsType) {
  EXPECT_EQ(SaveGraphicsModel::ResultName("/maps/plan.bmp", 6), "/maps/plan.jpg");
  EXPECT_EQ(SaveGraphicsModel::ResultName("/maps/plan", 10), "/maps/plan.tif");
  EXPECT_EQ(SaveGraphicsModel::ResultName("/maps/a.b.c", 8), "/maps/a.b.png");
}

}  // namespace
}  // namespace rasterkit
