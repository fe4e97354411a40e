#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/strings/strings.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CutOutput : public testing::Test {
 protected:
  void Show(TPixelFormat format, int width = 61, int height = 43) {
    bitmap = GradientBitmap(format, width, height);
    it.model.SetOrgBitmap(&bitmap);
  }
  void Save(std::string_view name, bool useCut) {
    it.model.SaveBitmap(folder / name, useCut, width, height);
  }
  TBitmap Loaded(std::string_view name) {
    TBitmap loaded;
    loaded.LoadFromFile(folder / name);
    return loaded;
  }
  void TearDown() override { SetTranslator(nullptr); }

  TempFolder folder;
  TBitmap bitmap;
  ModelAndView it;
  int width = -1, height = -1;
};

TEST_F(CutOutput, GetCutBitmap_Should_KeepPixelsFormatAndPalette) {
  for (const TPixelFormat format : kEveryFormat) {
    Show(format);
    it.model.SetBmpCutRect({10.6, 5.4, 30, 25});
    const auto cut = it.model.GetCutBitmap();
    ASSERT_EQ(cut->PixelFormat(), format);
    ASSERT_EQ(cut->Width(), 19);
    ASSERT_EQ(cut->Height(), 20);
    EXPECT_EQ(cut->Palette(), bitmap.Palette());
    for (int y = 0; y < 20; ++y)
      for (int x = 0; x < 19; ++x)
        ASSERT_EQ(cut->PixelColor(x, y), bitmap.PixelColor(x + 11, y + 5));
  }
}

TEST_F(CutOutput, GetCutBitmap_Should_BeNull_When_ThereIsNoCut) {
  Show(pf24bit);
  EXPECT_EQ(it.model.GetCutBitmap(), nullptr);
  EXPECT_EQ(it.model.CutBitmap(), nullptr);
}

TEST_F(CutOutput, GetCutBitmap_Should_BeEmpty_When_TheCutLiesOutside) {
  Show(pf24bit);
  it.model.SetBmpCutRect({100, 100, 120, 120});
  EXPECT_TRUE(it.model.GetCutBitmap()->Empty());
}

TEST_F(CutOutput, GetCutBitmap_Should_KeepTheTransparentColor) {
  Show(pf24bit);
  bitmap.SetTransparent(true);
  const TColor color = bitmap.TransparentColor();
  it.model.SetBmpCutRect({5, 5, 20, 20});
  EXPECT_TRUE(it.model.GetCutBitmap()->Transparent());
  EXPECT_EQ(it.model.GetCutBitmap()->TransparentColor(), color);
}

TEST_F(CutOutput, SizeText_Should_BeOfThePictureOrTheCut) {
  Show(pf1bit, 100, 200);
  EXPECT_EQ(it.view.sizeText, "100 * 200 px (2500 [byte])");
  it.model.SetBmpCutRect({0, 0, 50, 20});
  it.model.ShowCutBmpSize();
  EXPECT_EQ(it.view.sizeText, "50 * 20 px (125 [byte])");
  Show(pf32bit, 1000, 1000);
  EXPECT_TRUE(it.model.GetCutRectExists());
}

TEST_F(CutOutput, SizeText_Should_CountTheStoredBits_When_TheFormatHasNoneOfItsOwn) {
  bitmap.SetSize(100, 100);
  it.model.SetOrgBitmap(&bitmap);
  EXPECT_EQ(it.view.sizeText, "100 * 100 px (40 [kB])");
  Show(pf15bit, 100, 100);
  EXPECT_EQ(it.view.sizeText, "100 * 100 px (20 [kB])");
}

TEST_F(CutOutput, GetInfo_Should_TellThePicture_When_ThereIsNoCut) {
  Show(pf24bit);
  std::vector<std::string> lines = {"old"};
  it.model.GetInfo(lines);
  EXPECT_THAT(lines, ElementsAre("Width=61", "Height=43", "Bit depth[bit]=24"));
}

TEST_F(CutOutput, GetInfo_Should_TellTheCutToo_When_ThereIsOne) {
  Show(pf24bit);
  it.model.SetBmpCutRect({0, 0, 20, 10});
  std::vector<std::string> lines;
  it.model.GetInfo(lines);
  EXPECT_THAT(lines, ElementsAre("Width=61", "Height=43", "Bit depth[bit]=24", "Cut width=20",
                                 "Cut height=10", "Cut memsize [byte]=600"));
}

TEST_F(CutOutput, GetInfo_Should_BeEmpty_When_ThereIsNoBitmap) {
  std::vector<std::string> lines = {"old"};
  it.model.GetInfo(lines);
  EXPECT_THAT(lines, IsEmpty());
}

TEST_F(CutOutput, Texts_Should_BeTranslated) {
  SetTranslator([](std::string_view key) {
    return key == rsInfoWidth ? std::string("Breite=%d") : std::string();
  });
  Show(pf24bit);
  std::vector<std::string> lines;
  it.model.GetInfo(lines);
  EXPECT_EQ(lines.front(), "Breite=61");
}

TEST_F(CutOutput, SaveBitmap_Should_LeaveABackup_When_TheWholeGoesOverAFile) {
  folder.Write("a.bmp", std::string_view("old"));
  Show(pf8bit);
  Save("a.bmp", true);
  EXPECT_THAT(folder.Names(), ElementsAre("a.bmp", "a.~bmp"));
  EXPECT_EQ(ReadFile(folder / "a.~bmp"), "old");
  EXPECT_TRUE(SamePixels(bitmap, Loaded("a.bmp")));
  EXPECT_EQ(width, 61);
  EXPECT_EQ(height, 43);
}

TEST_F(CutOutput, SaveBitmap_Should_ReplaceAnOlderBackup) {
  folder.Write("a.bmp", std::string_view("old"));
  folder.Write("a.~bmp", std::string_view("older"));
  Show(pf8bit);
  Save("a.bmp", false);
  EXPECT_EQ(ReadFile(folder / "a.~bmp"), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("a.bmp", "a.~bmp"));
}

TEST_F(CutOutput, SaveBitmap_Should_ChangeTheLastExtensionOnly_When_TheNameHasSeveralDots) {
  folder.Write("plan.v2.PNG", std::string_view("old"));
  Show(pf8bit);
  Save("plan.v2.PNG", false);
  EXPECT_THAT(folder.Names(), ElementsAre("plan.v2.PNG", "plan.v2.~PNG"));
}

TEST_F(CutOutput, SaveBitmap_Should_MakeNoBackup_When_ACutIsSaved) {
  folder.Write("a.bmp", std::string_view("old"));
  Show(pf8bit);
  it.model.SetBmpCutRect({3, 4, 13, 9});
  Save("a.bmp", true);
  EXPECT_THAT(folder.Names(), ElementsAre("a.bmp"));
  EXPECT_TRUE(SamePixels(*it.model.GetCutBitmap(), Loaded("a.bmp")));
  EXPECT_EQ(width, 10);
  EXPECT_EQ(height, 5);
}

TEST_F(CutOutput, SaveBitmap_Should_SaveTheWholeWithABackup_When_TheCutIsNotWanted) {
  folder.Write("a.bmp", std::string_view("old"));
  Show(pf8bit);
  it.model.SetBmpCutRect({3, 4, 13, 9});
  Save("a.bmp", false);
  EXPECT_THAT(folder.Names(), ElementsAre("a.bmp", "a.~bmp"));
  EXPECT_TRUE(SamePixels(bitmap, Loaded("a.bmp")));
}

TEST_F(CutOutput, SaveBitmap_Should_MakeNoBackup_When_ThereWasNoFile) {
  Show(pf24bit);
  Save("new.png", false);
  EXPECT_THAT(folder.Names(), ElementsAre("new.png"));
}

TEST_F(CutOutput, SaveBitmap_Should_WriteWhatSaveWindowsBitmapWrites_InEveryKind) {
  Show(pf24bit);
  for (const std::string name : {"a.jpg", "a.png", "a.tif", "a.bmp"}) {
    Save(name, false);
    SaveWindowsBitmap(bitmap, 0, 100, folder / ("expected_" + name));
    EXPECT_EQ(ReadFile(folder / name), ReadFile(folder / ("expected_" + name))) << name;
  }
}

TEST_F(CutOutput, SaveBitmap_Should_PutTheOldFileBack_When_NothingWasWritten) {
  folder.Write("a.emf", std::string_view("old"));
  folder.Write("a.txt", std::string_view("old"));
  Show(pf24bit);
  EXPECT_THROW(Save("a.emf", false), Error);
  EXPECT_EQ(width, 0);
  Save("a.txt", false);
  EXPECT_THAT(folder.Names(), ElementsAre("a.emf", "a.txt"));
  EXPECT_EQ(ReadFile(folder / "a.emf"), "old");
}

TEST_F(CutOutput, SaveBitmap_Should_KeepTheOlderBackup_When_NothingWasWritten) {
  for (const std::string name : {"a.emf", "a.txt", "a"}) {
    folder.Write(name, std::string_view("old"));
    const std::string backup = "a.~" + (name.size() > 2 ? name.substr(2) : "");
    folder.Write(backup, std::string_view("older"));
    Show(pf24bit);
    try {
      Save(name, false);
    } catch (const Error&) {
    }
    EXPECT_EQ(ReadFile(folder / name), "old");
    EXPECT_EQ(ReadFile(folder / backup), "older");
  }
  EXPECT_EQ(folder.Names().size(), 6u);
}

TEST_F(CutOutput, SaveBitmap_Should_Throw_When_TheFolderIsMissing) {
  Show(pf24bit);
  EXPECT_THROW(Save("missing/a.bmp", false), FileError);
}

TEST_F(CutOutput, SaveBitmap_Should_DoNothing_When_ThereIsNoBitmap) {
  Save("a.bmp", true);
  EXPECT_THAT(folder.Names(), IsEmpty());
  EXPECT_EQ(width, 0);
  EXPECT_EQ(height, 0);
}

TEST_F(CutOutput, SaveBitmap_Should_Throw_When_TheBitmapIsEmpty) {
  bitmap.SetSize(0, 0);
  it.model.SetOrgBitmap(&bitmap);
  folder.Write("a.bmp", std::string_view("old"));
  EXPECT_THROW(Save("a.bmp", false), Error);
  EXPECT_EQ(ReadFile(folder / "a.bmp"), "old");
}

}  // namespace
}  // namespace rasterkit::test
