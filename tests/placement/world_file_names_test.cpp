#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/side_files.h>

#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

TEST(WorldFileNames, BeginWithTheStatedOne) {
  EXPECT_THAT(WorldFileNames("plan.tif"), ElementsAre("plan.tfw", "plan.TFW", "plan.tifw",
                                                      "plan.TIFW", "plan.wld", "plan.WLD"));
  EXPECT_THAT(WorldFileNames("PLAN.JPEG"), ElementsAre("PLAN.jgw", "PLAN.JGW", "PLAN.jpegw",
                                                       "PLAN.JPEGW", "PLAN.wld", "PLAN.WLD"));
}

TEST(WorldFileNames, TakeTheFirstAndLastLetter) {
  const std::pair<const char*, const char*> cases[] = {
      {"a.tif", "a.tfw"}, {"a.tiff", "a.tfw"}, {"a.jpg", "a.jgw"},    {"a.jpeg", "a.jgw"},
      {"a.png", "a.pgw"}, {"a.bmp", "a.bpw"},  {"a.gif", "a.gfw"},    {"a.webp", "a.wpw"},
      {"a.jp2", "a.j2w"}, {"a.PNG", "a.pgw"},  {"a.b.png", "a.b.pgw"}};
  for (const auto& [picture, first] : cases) {
    EXPECT_EQ(WorldFileNames(picture).front(), first) << picture;
  }
}

TEST(WorldFileNames, AreThoseOfJpeg2000_When_TheExtensionIsOneOfIts) {
  EXPECT_THAT(WorldFileNames("a.jp2"),
              ElementsAre("a.j2w", "a.J2W", "a.jp2w", "a.JP2W", "a.wld", "a.WLD"));
  for (const char* picture : {"a.j2k", "a.jpf", "a.jpx", "a.j2c"}) {
    EXPECT_THAT(WorldFileNames(picture), Contains("a.j2w")) << picture;
  }
  EXPECT_THAT(WorldFileNames("a.jpg"), Not(Contains("a.j2w")));
}

TEST(WorldFileNames, KeepFoldersAndLeadingDots) {
  EXPECT_EQ(WorldFileNames("./a.png").front(), "./a.pgw");
  EXPECT_EQ(WorldFileNames("../maps.d/a.png").front(), "../maps.d/a.pgw");
  EXPECT_EQ(WorldFileNames("/maps.d/.a.png").front(), "/maps.d/.a.pgw");
  EXPECT_EQ(WorldFileNames(".a.png").front(), ".a.pgw");
  EXPECT_EQ(WorldFileNames(".png").front(), ".pgw");
  EXPECT_EQ(WorldFileNames("maps\\a.png").front(), "maps\\a.pgw");
}

TEST(WorldFileNames, WithoutExtensionEndWithWld) {
  EXPECT_THAT(WorldFileNames("maps.d/plan"), ElementsAre("maps.d/plan.wld", "maps.d/plan.WLD"));
  EXPECT_THAT(WorldFileNames("plan."), ElementsAre("plan.wld", "plan.WLD"));
  EXPECT_THAT(WorldFileNames("plan.x"), ElementsAre("plan.wld", "plan.WLD"));
  EXPECT_THAT(WorldFileNames("maps/"), IsEmpty());
  EXPECT_THAT(WorldFileNames(""), IsEmpty());
}

TEST(WorldFileNames, NeverNameThePictureItself) {
  EXPECT_THAT(WorldFileNames("a.wld"), Not(Contains("a.wld")));
}

TEST(SideFileNames, NeighborsAreOtherPicturesOfTheStem) {
  const TempFolder folder;
  for (const char* name : {"plan.tif", "plan.png", "plan.JPG", "plan.ecw", "plan.prj", "plan.txt",
                           "plan", "plan2.png", "plan.old.png", "Plan.png"}) {
    folder.Write(name, "x");
  }
  std::filesystem::create_directory(folder / "plan.bmp");
  EXPECT_THAT(detail::Neighbors(folder / "plan.tif"),
              ElementsAre(folder / "plan.JPG", folder / "plan.ecw", folder / "plan.png"));
  EXPECT_THAT(detail::Neighbors(folder / "other.tif"), IsEmpty());
  EXPECT_THAT(detail::Neighbors("/absent-folder/other.tif"), IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
