#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/qt/files/name_filters.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

using testing::ElementsAre;

TEST(NameFilters, SplitFilter_Should_KeepTheOrderOfEntries) {
  const auto entries = SplitFilter(GetOpenFilter(true));
  ASSERT_EQ(entries.size(), 8u);
  EXPECT_EQ(entries[0].description, "All supported files");
  EXPECT_THAT(entries[0].patterns,
              ElementsAre("*.bmp", "*.jpg", "*.png", "*.tif", "*.tiff", "*.pdf", "*.wmf", "*.emf"));
  EXPECT_EQ(entries[4].description, "TIFF (*.tif,*.tiff)");
  EXPECT_THAT(entries[7].patterns, ElementsAre("*.emf"));
}

TEST(NameFilters, SplitFilter_Should_KeepIndexes_When_TheListIsOdd) {
  EXPECT_TRUE(SplitFilter("").empty());
  const auto entries = SplitFilter("A||B|*.b; *.c ;|C");
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_THAT(entries[0].patterns, ElementsAre("*"));
  EXPECT_THAT(entries[1].patterns, ElementsAre("*.b", "*.c"));
  EXPECT_THAT(entries[2].patterns, ElementsAre("*"));
  EXPECT_EQ(SplitFilter("A|*.a|").size(), 1u);
}

TEST(NameFilters, NameFilter_Should_BeQtsOwnForm) {
  EXPECT_EQ(NameFilter({"TIFF (*.tif,*.tiff)", {"*.tif", "*.tiff"}}),
            "TIFF (*.tif,*.tiff) (*.tif *.tiff)");
  EXPECT_EQ(NameFilter({"All", {"*.*"}}), "All (*)");
}

TEST(NameFilters, NameForEntry_Should_ReplaceWhateverExtensionThereIs) {
  const FilterEntry bitmap{"Bitmap", {"*.bmp"}};
  EXPECT_EQ(NameForEntry("/a/name", bitmap), "/a/name.bmp");
  EXPECT_EQ(NameForEntry("/a/name.jpg", bitmap), "/a/name.bmp");
  EXPECT_EQ(NameForEntry("/a/name.v2", bitmap), "/a/name.bmp");
  EXPECT_EQ(NameForEntry("/a/name.BMP", bitmap), "/a/name.bmp");
  EXPECT_EQ(NameForEntry("/a.b/name", bitmap), "/a.b/name.bmp");
  EXPECT_EQ(NameForEntry("/a/name.bmp", bitmap), "/a/name.bmp");
}

TEST(NameFilters, NameForEntry_Should_KeepTheName_When_TheEntryHasItsExtensionOrNone) {
  const FilterEntry tiff{"TIFF", {"*.tif", "*.tiff"}};
  EXPECT_EQ(NameForEntry("a.tiff", tiff), "a.tiff");
  EXPECT_EQ(NameForEntry("a.png", tiff), "a.tif");
  EXPECT_EQ(NameForEntry("a.png", {"All", {"*"}}), "a.png");
  EXPECT_EQ(NameForEntry("a", {"All", {"*.*"}}), "a");
}

TEST(NameFilters, Descriptions_Should_BeShownInTheUsersLanguage) {
  SetTranslator([](std::string_view key) {
    if (key == "All files (*.*)") return std::string("Alle (*)");
    return key == rsWindowsMetafile ? std::string("Metadatei") : std::string();
  });
  EXPECT_EQ(ShownDescription("Windows Metafile (*.wmf)"), "Metadatei (*.wmf)");
  EXPECT_EQ(ShownDescription("Windows Metafile"), "Metadatei");
  EXPECT_EQ(ShownDescription("All files (*.*)"), "Alle (*)");
  EXPECT_EQ(ShownDescription("Plans (old) (*.plan)"), "Plans (old) (*.plan)");
  EXPECT_EQ(NameFilter({"Windows Metafile (*.wmf)", {"*.wmf"}}), "Metadatei (*.wmf) (*.wmf)");
  EXPECT_THAT(GetSaveFilter(true), testing::HasSubstr("|Windows Metafile (*.wmf)|*.wmf|"));
  SetTranslator({});
}

}  // namespace
}  // namespace rasterkit::detail
