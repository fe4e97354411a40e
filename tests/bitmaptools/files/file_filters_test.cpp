#include <string>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

TEST(GetOpenFilterTest, WithMetafiles) {
  EXPECT_EQ(GetOpenFilter(true),
            "All supported files|*.bmp;*.jpg;*.png;*.tif;*.tiff;*.pdf;*.wmf;*.emf"
            "|Windows bitmap (*.bmp)|*.bmp|JPeg (*.jpg)|*.jpg|PNG Format (*.png)|*.png"
            "|TIFF (*.tif,*.tiff)|*.tif;*.tiff|PDF (*.pdf)|*.pdf"
            "|Windows Metafile (*.wmf)|*.wmf|Enhanced Windows Metafile (*.emf)|*.emf");
}

TEST(GetOpenFilterTest, WithoutMetafiles) {
  EXPECT_EQ(GetOpenFilter(false),
            "All supported files|*.bmp;*.jpg;*.png;*.tif;*.tiff;*.pdf"
            "|Windows bitmap (*.bmp)|*.bmp|JPeg (*.jpg)|*.jpg|PNG Format (*.png)|*.png"
            "|TIFF (*.tif,*.tiff)|*.tif;*.tiff|PDF (*.pdf)|*.pdf");
}

TEST(GetOpenFilterTest, SpeaksTheUsersLanguage) {
  SetTranslator([](std::string_view key) {
    return key == rsAllSupportedFiles ? std::string("Alle Bilddateien") : std::string();
  });
  const std::string open = GetOpenFilter(false);
  const std::string geo = GetGeoOpenFilter();
  SetTranslator(nullptr);
  EXPECT_TRUE(open.starts_with("Alle Bilddateien|*.bmp;"));
  EXPECT_TRUE(geo.starts_with("Alle Bilddateien|*.bmp;"));
}

TEST(GetGeoOpenFilterTest, LeavesTheLongTiffExtensionOutOfTheSupportedOnes) {
  EXPECT_EQ(GetGeoOpenFilter(),
            "All supported files|*.bmp;*.jpg;*.png;*.tif;*.pdf"
            "|Windows bitmap (*.bmp)|*.bmp|JPeg (*.jpg)|*.jpg|PNG Format (*.png)|*.png"
            "|TIFF (*.tif,*.tiff)|*.tif;*.tiff|PDF (*.pdf)|*.pdf");
}

TEST(GetSaveFilterTest, WithoutMetafiles) {
  EXPECT_EQ(GetSaveFilter(false),
            "Windows bitmap (*.bmp)|*.bmp|JPeg (*.jpg)|*.jpg|PNG Format (*.png)|*.png"
            "|TIFF (*.tif)|*.tif");
}

TEST(GetSaveFilterTest, WithMetafiles) {
  EXPECT_EQ(GetSaveFilter(true),
            "Windows bitmap (*.bmp)|*.bmp|JPeg (*.jpg)|*.jpg|PNG Format (*.png)|*.png"
            "|TIFF (*.tif)|*.tif"
            "|Windows Metafile (*.wmf)|*.wmf|Enhanced Windows Metafile (*.emf)|*.emf");
}

TEST(GetSaveFilterIndexTest, FollowsTheList) {
  EXPECT_EQ(GetSaveFilterIndex("bmp"), 1);
  EXPECT_EQ(GetSaveFilterIndex("jpg"), 2);
  EXPECT_EQ(GetSaveFilterIndex("png"), 3);
  EXPECT_EQ(GetSaveFilterIndex("tif"), 4);
  EXPECT_EQ(GetSaveFilterIndex("wmf"), 5);
  EXPECT_EQ(GetSaveFilterIndex("emf"), 6);
}

TEST(GetSaveFilterIndexTest, WithADot_TakesTheThreeCharactersAfterIt) {
  EXPECT_EQ(GetSaveFilterIndex(".TIFF"), 4);
  EXPECT_EQ(GetSaveFilterIndex(".Jpg"), 2);
  EXPECT_EQ(GetSaveFilterIndex("tiff"), 1);
}

TEST(GetSaveFilterIndexTest, IsOneForEverythingElse) {
  for (const char* ext : {"", ".", "pdf", ".pdf", ".jpeg", "all", "bm"}) {
    EXPECT_EQ(GetSaveFilterIndex(ext), 1) << ext;
  }
}

TEST(GetSaveFilterTypeTest, GivesTheTypeOfEachEntry) {
  EXPECT_EQ(GetSaveFilterType(1), 1);
  EXPECT_EQ(GetSaveFilterType(2), 6);
  EXPECT_EQ(GetSaveFilterType(3), 8);
  EXPECT_EQ(GetSaveFilterType(4), 10);
  EXPECT_EQ(GetSaveFilterType(5), 2);
  EXPECT_EQ(GetSaveFilterType(6), 4);
}

TEST(GetSaveFilterTypeTest, IsOneForAnyOtherIndex) {
  for (const int index : {0, 7, -1, 1000}) EXPECT_EQ(GetSaveFilterType(index), 1) << index;
}

TEST(GetOpenFilterIndexTest, FollowsTheList) {
  EXPECT_EQ(GetOpenFilterIndex("bmp"), 2);
  EXPECT_EQ(GetOpenFilterIndex("jpg"), 3);
  EXPECT_EQ(GetOpenFilterIndex("png"), 4);
  EXPECT_EQ(GetOpenFilterIndex(".tiff"), 5);
  EXPECT_EQ(GetOpenFilterIndex("PDF"), 6);
  EXPECT_EQ(GetOpenFilterIndex("wmf"), 7);
  EXPECT_EQ(GetOpenFilterIndex("emf"), 8);
}

TEST(GetOpenFilterIndexTest, IsOneForEverythingElse) {
  for (const char* ext : {"", "all", ".all", "tiff", "gif"}) {
    EXPECT_EQ(GetOpenFilterIndex(ext), 1) << ext;
  }
}

TEST(GetGeoOpenFilterIndexTest, IsOneHigherThanTheList) {
  EXPECT_EQ(GetGeoOpenFilterIndex("bmp"), 3);
  EXPECT_EQ(GetGeoOpenFilterIndex("jpg"), 4);
  EXPECT_EQ(GetGeoOpenFilterIndex("png"), 5);
  EXPECT_EQ(GetGeoOpenFilterIndex(".tif"), 6);
  EXPECT_EQ(GetGeoOpenFilterIndex("pdf"), 7);
}

TEST(GetGeoOpenFilterIndexTest, IsOneForEverythingElse) {
  for (const char* ext : {"", "wmf", "emf", "all"}) EXPECT_EQ(GetGeoOpenFilterIndex(ext), 1) << ext;
}

}  // namespace
}  // namespace rasterkit
