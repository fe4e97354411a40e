#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/placement/placement.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/errors.h>

#include "tests/placement/geo_tag_values.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Affine kInWorldFile{1, 0, 0, -1, 100, 200}, kInTags{1, 0, 0, -1, 101, 200},
    kInAuxXml{1, 0, 0, -1, 100, 203};
constexpr const char* kAuxXml =
    "<PAMDataset><SRS>GEOGCS[\"WGS 84\"]</SRS><GeoTransform>99.5,1,0,203.5,0,-1</GeoTransform>"
    "<PAMRasterBand band=\"1\"><NoDataValue>7</NoDataValue></PAMRasterBand></PAMDataset>";

std::vector<TagValue> Tags() {
  return {DoublesTag(33550, {1, 1, 0}), DoublesTag(33922, {0, 0, 0, 100.5, 200.5, 0})};
}

Placement Read(const std::string& file, const std::vector<TagValue>& tags = {},
               const PlacementReading& reading = {}) {
  return ReadPlacement(file, tags, 10, 10, reading);
}

TEST(ReadPlacement, FindsAWorldFileUnderEveryName) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"a.tif", {"a.tfw", "a.TFW", "a.tifw", "a.TIFW", "a.wld", "a.WLD", "a.Tfw"}},
      {"a.tiff", {"a.tfw", "a.tiffw", "a.tiffW", "a.Wld"}},
      {"a.jpg", {"a.jgw", "a.jpgw", "a.wld"}},
      {"a.jpeg", {"a.jgw", "a.JGW", "a.jpegw"}},
      {"a.png", {"a.pgw", "a.pngw", "a.PNGW"}},
      {"a.bmp", {"a.bpw", "a.bmpw"}},
      {".a.png", {".a.pgw", ".a.wld"}},
      {"maps.d/a.b.png", {"maps.d/a.b.pgw"}}};
  for (const auto& [picture, names] : cases) {
    for (const char* name : names) {
      const TempFolder folder;
      std::filesystem::create_directory(folder / "maps.d");
      const std::string file = folder.Write(name, WorldFileText(kInWorldFile));
      const Placement placement = Read(folder / picture);
      EXPECT_EQ(placement.affine, kInWorldFile) << picture << " " << name;
      ASSERT_EQ(placement.stated.size(), 1u) << picture << " " << name;
      EXPECT_EQ(placement.stated[0].file, file);
      EXPECT_THAT(placement.sideFiles, ElementsAre(file));
      EXPECT_THAT(placement.warnings, IsEmpty());
    }
  }
}

TEST(ReadPlacement, FindsItInTheCurrentFolder) {
  const TempFolder folder;
  folder.Write("a.pgw", WorldFileText(kInWorldFile));
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_EQ(Read("./a.png").affine, kInWorldFile);
  EXPECT_EQ(Read("a.png").affine, kInWorldFile);
  EXPECT_EQ(Read("././a.png").affine, kInWorldFile);
  std::filesystem::current_path(before);
}

TEST(ReadPlacement, ReadsRegularFilesAndLinksToThemOnly) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo((folder / "a.tfw").c_str(), 0600), 0);
  std::filesystem::create_directory(folder / "a.tifw");
  EXPECT_FALSE(Read(folder / "a.tif").affine);
  EXPECT_THAT(Read(folder / "a.tif").warnings, IsEmpty());
  folder.Write("place.txt", WorldFileText(kInWorldFile));
  std::filesystem::create_symlink("place.txt", folder / "a.wld");
  EXPECT_EQ(Read(folder / "a.tif").affine, kInWorldFile);
  EXPECT_THROW(Read(folder / "a.tif", {}, {PositionFrom::automatic, folder / "a.tfw"}), FileError);
}

TEST(ReadPlacement, DamagedWorldFileIsAWarningWithTheLine) {
  const TempFolder folder;
  const std::string file = folder.Write("a.tfw", "1\n0\n0\n-1,5\n3\n4\n");
  const Placement placement = Read(folder / "a.tif", Tags());
  EXPECT_EQ(placement.affine, kInTags);
  EXPECT_THAT(placement.warnings,
              ElementsAre(AllOf(HasSubstr(file), HasSubstr("line 4"), HasSubstr("comma"))));
  EXPECT_THAT(placement.sideFiles, ElementsAre(file));
}

TEST(ReadPlacement, ListsAllSourcesWithTheirDifference) {
  const TempFolder folder;
  folder.Write("a.tfw", WorldFileText(kInWorldFile));
  folder.Write("a.tif.aux.xml", kAuxXml);
  const Placement placement = Read(folder / "a.tif", Tags());
  EXPECT_EQ(placement.affine, kInWorldFile);
  ASSERT_EQ(placement.stated.size(), 3u);
  EXPECT_EQ(placement.stated[0].difference, 0);
  EXPECT_EQ(placement.stated[1].source, PositionSource::geoTiff);
  EXPECT_NEAR(placement.stated[1].difference, 1, 1e-9);
  EXPECT_EQ(placement.stated[2].source, PositionSource::auxXml);
  EXPECT_NEAR(placement.stated[2].difference, 3, 1e-9);
  EXPECT_THAT(placement.warnings, ElementsAre(HasSubstr("disagree by up to 1 pixels"),
                                              HasSubstr("disagree by up to 3 pixels")));
  EXPECT_EQ(placement.noData, "7");
  EXPECT_EQ(placement.system.Name(), "WGS 84");
}

TEST(ReadPlacement, DifferenceIsThatOfTheWorstCorner) {
  const TempFolder folder;
  // One percent wider columns: 0.1 pixel after 10 columns, seen from the far corner.
  folder.Write("a.tfw", WorldFileText({1, 0, 0, -1, 100, 200}));
  const std::vector<TagValue> tags = {DoublesTag(33550, {1.02, 1, 0}),
                                      DoublesTag(33922, {0, 0, 0, 99.5, 200.5, 0})};
  const Placement placement = Read(folder / "a.tif", tags);
  EXPECT_NEAR(placement.stated[1].difference, 0.2, 1e-9);
  EXPECT_EQ(placement.warnings.size(), 1u);
}

TEST(ReadPlacement, PositionFromSwitchesTheSource) {
  const TempFolder folder;
  folder.Write("a.tfw", WorldFileText(kInWorldFile));
  folder.Write("a.tif.aux.xml", kAuxXml);
  const std::pair<PositionFrom, std::optional<Affine>> cases[] = {
      {PositionFrom::automatic, kInWorldFile},
      {PositionFrom::worldFile, kInWorldFile},
      {PositionFrom::tags, kInTags},
      {PositionFrom::auxXml, kInAuxXml},
      {PositionFrom::none, std::nullopt}};
  for (const auto& [from, expected] : cases) {
    const Placement placement = Read(folder / "a.tif", Tags(), {from, ""});
    EXPECT_EQ(placement.affine, expected) << static_cast<int>(from);
    EXPECT_EQ(placement.stated.size(), 3u);
    if (expected) {
      EXPECT_EQ(placement.stated[0].affine, *expected);
    }
  }
  EXPECT_THAT(Read(folder / "b.tif", Tags(), {PositionFrom::worldFile, ""}).warnings,
              ElementsAre(HasSubstr("there is none")));
}

TEST(ReadPlacement, WithoutWorldFileTagsCountThenAuxXml) {
  const TempFolder folder;
  folder.Write("a.tif.aux.xml", kAuxXml);
  EXPECT_EQ(Read(folder / "a.tif", Tags()).affine, kInTags);
  EXPECT_EQ(Read(folder / "a.tif").affine, kInAuxXml);
  EXPECT_FALSE(Read("").affine);
}

TEST(ReadPlacement, DamagedAuxXmlIsAWarning) {
  const TempFolder folder;
  folder.Write("a.tif.aux.xml", "<PAMDataset>\n<GeoTransform>");
  const Placement placement = Read(folder / "a.tif", Tags());
  EXPECT_EQ(placement.affine, kInTags);
  EXPECT_THAT(placement.warnings,
              ElementsAre(AllOf(HasSubstr("a.tif.aux.xml"), HasSubstr("line 2"))));
}

TEST(ReadPlacement, ProjectionFileGivesTheSystem) {
  const TempFolder folder;
  folder.Write("a.prj", "PROJCS[\"Grid\",AUTHORITY[\"EPSG\",\"31467\"]]\n");
  EXPECT_EQ(Read(folder / "a.png").system.Description(), "EPSG:31467 (Grid)");
  EXPECT_EQ(Read(folder / "a.tif", KeyTags(false)).system.Epsg(), 25832);
}

TEST(ReadPlacement, NamedWorldFileCounts) {
  const TempFolder folder;
  folder.Write("a.tfw", WorldFileText(kInWorldFile));
  const std::string named = folder.Write("other.txt", WorldFileText({2, 0, 0, -2, 5, 6}));
  const Placement placement = Read(folder / "a.tif", Tags(), {PositionFrom::automatic, named});
  EXPECT_EQ(placement.affine, (Affine{2, 0, 0, -2, 5, 6}));
  EXPECT_EQ(placement.stated.size(), 3u);
  EXPECT_EQ(Read(folder / "a.tif", {}, {PositionFrom::automatic, folder / "a.tfw"}).stated.size(),
            1u);
  EXPECT_THROW(Read(folder / "a.tif", {}, {PositionFrom::automatic, folder / "absent"}), FileError);
  folder.Write("bad.txt", "1\n2\n");
  try {
    Read(folder / "a.tif", {}, {PositionFrom::automatic, folder / "bad.txt"});
    FAIL();
  } catch (const FileError& error) {
    EXPECT_THAT(error.what(), AllOf(HasSubstr("bad.txt"), HasSubstr("2 of 6")));
  }
}

TEST(ReadPlacement, LargeFilesBesideAreNotReadWhole) {
  const TempFolder folder;
  folder.Write("a.tfw", std::string(1 << 20, '1'));
  folder.Write("a.tif.aux.xml", std::string((16 << 20) + 1, ' '));
  folder.Write("a.prj", std::string((1 << 20) + 1, ' '));
  const Placement placement = Read(folder / "a.tif");
  EXPECT_FALSE(placement.IsKnown());
  EXPECT_THAT(placement.warnings,
              ElementsAre(HasSubstr("too long"), HasSubstr("16 MiB"), HasSubstr("1 MiB")));
}

}  // namespace
}  // namespace rasterkit::test
