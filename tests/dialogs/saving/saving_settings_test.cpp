// Settings of a file: defaults, choices, and what of them is in the answer.

#include <rasterkit/pictures/recipes/apply_recipe.h>

#include "tests/dialogs/saving/saving_fixture.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class SavingSettings : public SavingTest {
 protected:
  RecipeSave Save() const { return model->Choice().save; }
};

TEST_F(SavingSettings, WithoutChoices_EverySetting_Should_StayAsInTheSource) {
  for (const char* name : {"a.jpeg", "a.png", "a.tiff", "a.bmp"}) {
    OpenFile(Make(name));
    EXPECT_EQ(Save().type, std::nullopt) << name;
    EXPECT_EQ(Save().bits, std::nullopt);
    EXPECT_EQ(Save().compression, std::nullopt);
    EXPECT_EQ(Save().quality, std::nullopt);
    EXPECT_EQ(Save().chromaX, 0);
    EXPECT_EQ(Save().pngLevel, std::nullopt);
    EXPECT_EQ(Save().lossless, Lossless::exact);
    EXPECT_EQ(Save().metadata, RecipeSave::Keep::all);
  }
}

TEST_F(SavingSettings, AnotherKindThanTheSource_Should_BeStated) {
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("a.jpg");
  EXPECT_EQ(Save().type, PictureType::jpeg);
}

TEST_F(SavingSettings, WhatTheStartStates_Should_BeShownAndKept) {
  RecipeSave save;
  save.type = PictureType::tiff;
  save.bits = 8;
  save.compression = TiffCompression::deflate;
  save.metadata = RecipeSave::Keep::withoutGps;
  save.background = clBlack;
  const SavingModel& model = Open(Picture::Open(Make("a.tif")), {In("b.tif"), save, false});
  EXPECT_THAT(model.Depths().texts[static_cast<size_t>(model.Depths().position)],
              StartsWith("8 bits"));
  EXPECT_EQ(model.Compressions().texts[static_cast<size_t>(model.Compressions().position)],
            "Deflate");
  EXPECT_EQ(model.Keeps().position, 1);
  EXPECT_EQ(Save().bits, 8);
  EXPECT_EQ(Save().compression, TiffCompression::deflate);
  EXPECT_EQ(Save().metadata, RecipeSave::Keep::withoutGps);
  EXPECT_EQ(Save().background, clBlack);
}

TEST_F(SavingSettings, ADepthThatTheListLacks_Should_StayUntilAnotherIsChosen) {
  RecipeSave save;
  save.bits = 16;
  SavingModel& model = Open(Picture::Open(Make("a.bmp")), {In("b.bmp"), save, false});
  EXPECT_EQ(model.Depths().texts.back(), "16 bits");
  model.ChooseDepth(model.Depths().position);
  EXPECT_EQ(Save().bits, 16);
  model.ChooseDepth(0);
  EXPECT_EQ(Save().bits, std::nullopt);
  EXPECT_EQ(model.Depths().texts.size(), 6U) << "it was only for this start";
}

TEST_F(SavingSettings, EveryDepth_Should_BeWrittenAsItWasChosen) {
  const Picture picture = Picture::Open(Make("a.bmp"));
  for (const auto& [start, bits] : std::map<std::string, int>{
           {"32 bits", 32}, {"24 bits", 24}, {"8 bits", 8}, {"4 bits", 4}, {"1 bit", 1}}) {
    SavingModel& model = Open(picture, {In("b.bmp"), {}, false});
    model.ChooseDepth(PositionOf(model.Depths(), start));
    ASSERT_EQ(Save().bits, bits);
    Picture prepared = picture;
    ApplySaving(prepared, Save());
    prepared.Save(model.File(), SaveOptionsOf(Save()));
    EXPECT_EQ(Picture::Open(model.File()).Layout().BitsPerPixel(), bits);
  }
}

TEST_F(SavingSettings, Opacity_Should_BeOfferedWhereTheFileCanHaveIt) {
  EXPECT_EQ(PositionOf(OpenFile(Make("a.png")).Depths(), "32 bits"), -1);
  EXPECT_GE(PositionOf(OpenFile(Make("a.bmp")).Depths(), "32 bits"), 0);
  Picture picture = Picture::Open(Make("b.png"));
  picture.Rotate(10, {{Fill::Kind::transparent, clWhite}, Filter::automatic});
  EXPECT_EQ(picture.Layout().alpha, AlphaKind::straight);
  EXPECT_GE(PositionOf(Open(picture, {In("c.png"), {}, false}).Depths(), "32 bits"), 0);
}

TEST_F(SavingSettings, JpegFiles_Should_OfferTheDepthsThatTheyHave) {
  const SavingModel& model = OpenFile(Make("a.jpg"));
  EXPECT_THAT(model.Depths().texts, ElementsAre("As it is (24 bits)", StartsWith("24 bits")));
}

TEST_F(SavingSettings, TheQualityOfTheSource_Should_BeShownAndKept) {
  SavingModel& model = OpenFile(Make("a.jpg", 64, 48, pf24bit, OfQuality(71, 2, 1)));
  EXPECT_TRUE(model.HasSourceQuality());
  EXPECT_FALSE(model.HasOwnQuality());
  EXPECT_EQ(model.Quality(), 71);
  EXPECT_EQ(model.Samplings().texts.front(), "As in the source (4:2:2)");
  EXPECT_EQ(Save().quality, std::nullopt);
}

TEST_F(SavingSettings, EveryQuality_Should_BeRecognizedInTheSource) {
  for (int quality = 1; quality <= 100; ++quality) {
    const SavingModel& model = OpenFile(Make("a.jpg", 16, 16, pf24bit, OfQuality(quality)));
    EXPECT_EQ(model.Quality(), quality);
  }
}

TEST_F(SavingSettings, AMovedSlider_Should_StateTheQuality) {
  SavingModel& model = OpenFile(Make("a.jpg", 64, 48, pf24bit, OfQuality(71)));
  model.SetQuality(50);
  EXPECT_TRUE(model.HasOwnQuality());
  EXPECT_EQ(Save().quality, 50);
  model.SetQuality(400);
  EXPECT_EQ(Save().quality, 100);
  model.UseOwnQuality(false);
  EXPECT_EQ(Save().quality, std::nullopt);
  EXPECT_EQ(model.Quality(), 71);
}

TEST_F(SavingSettings, PicturesThatWereNoJpeg_Should_GetTheUsualQuality) {
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("a.jpg");
  EXPECT_FALSE(model.HasSourceQuality());
  EXPECT_EQ(model.Quality(), 90);
  EXPECT_EQ(Save().quality, std::nullopt);
}

TEST_F(SavingSettings, Sampling_Should_BeChosenForColorOnly) {
  SavingModel& model = OpenFile(Make("a.jpg"));
  model.ChooseSampling(PositionOf(model.Samplings(), "Half"));
  EXPECT_EQ(Save().chromaX, 2);
  EXPECT_EQ(Save().chromaY, 1);
  model.ChooseSampling(0);
  EXPECT_EQ(Save().chromaX, 0);
  Picture gray = Picture::Open(In("a.jpg"));
  gray.Change(MakeGray{}).Save(In("gray.jpg"));
  EXPECT_FALSE(OpenFile(In("gray.jpg")).HasSampling());
}

TEST_F(SavingSettings, SettingsOfOtherKinds_Should_NotBeInTheAnswer) {
  SavingModel& model = OpenFile(Make("a.jpg"));
  model.SetQuality(50);
  model.ChooseSampling(1);
  ChooseType("TIFF");
  model.ChooseCompression(PositionOf(model.Compressions(), "LZW"));
  EXPECT_EQ(Save().quality, std::nullopt);
  EXPECT_EQ(Save().chromaX, 0);
  EXPECT_EQ(Save().compression, TiffCompression::lzw);
  ChooseType("PNG");
  model.ChooseLevel(PositionOf(model.Levels(), "12"));
  EXPECT_EQ(Save().compression, std::nullopt);
  EXPECT_EQ(Save().pngLevel, 12);
  ChooseType("JPEG");
  EXPECT_EQ(Save().quality, 50) << "they come back with their kind";
  EXPECT_EQ(Save().pngLevel, std::nullopt);
}

TEST_F(SavingSettings, EachKind_Should_ShowItsOwnSettings) {
  const SavingModel& model = OpenFile(Make("a.jpg"));
  const auto shown = [&] {
    return std::vector<bool>{model.HasQuality(), model.HasSampling(), model.HasCompression(),
                             model.HasLevel()};
  };
  EXPECT_THAT(shown(), ElementsAre(true, true, false, false));
  ChooseType("TIFF");
  EXPECT_THAT(shown(), ElementsAre(false, false, true, false));
  ChooseType("PNG");
  EXPECT_THAT(shown(), ElementsAre(false, false, false, true));
  ChooseType("BMP");
  EXPECT_THAT(shown(), ElementsAre(false, false, false, false));
}

TEST_F(SavingSettings, Metadata_Should_BeKeptOrLeftOut) {
  SavingModel& model = OpenFile(Make("a.jpg"));
  model.ChooseKeep(2);
  EXPECT_EQ(Save().metadata, RecipeSave::Keep::nothing);
  model.ChooseKeep(1);
  EXPECT_EQ(Save().metadata, RecipeSave::Keep::withoutGps);
  model.ChooseKeep(7);
  EXPECT_EQ(Save().metadata, RecipeSave::Keep::withoutGps);
}

TEST_F(SavingSettings, Facts_Should_StateSizeBitsMemoryAndResolution) {
  Picture picture = Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, 2000, 1000)));
  EXPECT_EQ(Open(picture, {In("a.png"), {}, false}).FactsText(),
            "2000 × 1000 pixels, 24 bits per pixel, 5.7 MiB in memory, no resolution stated");
  MetadataEdit edit;
  edit.resolution = Resolution{300, 300};
  picture.Edit(edit);
  EXPECT_THAT(Open(picture, {In("a.png"), {}, false}).FactsText(), HasSubstr(", 300 dpi"));
  edit.resolution = Resolution{203.2, 196};
  picture.Edit(edit);
  EXPECT_THAT(Open(picture, {In("a.png"), {}, false}).FactsText(), HasSubstr(", 203.2 × 196 dpi"));
}

TEST_F(SavingSettings, ASettingThatDoesNotFit_Should_BeSaidAndKeepSavePale) {
  SavingModel& model = OpenFile(Make("a.tif"));
  model.ChooseCompression(PositionOf(model.Compressions(), "G4"));
  const bool works = [&] {
    try {
      Picture::Open(In("a.tif")).Save(In("b.tif"), SaveOptionsOf(Save()));
      return true;
    } catch (const std::exception&) {
      return false;
    }
  }();
  EXPECT_EQ(model.CanSave(), works);
  EXPECT_THAT(model.Fault(), HasSubstr(works ? "" : "cannot be saved so"));
}

}  // namespace
}  // namespace rasterkit::test
