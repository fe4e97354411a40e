#include "tests/doors/doors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A file that includes others of the house by their path from the root.
std::vector<Include> Including(std::initializer_list<const char*> paths) {
  std::vector<Include> includes;
  for (const char* path : paths) includes.push_back({std::string("rasterkit/") + path, false});
  return includes;
}

const SourceTree& TheHouse() {
  static const SourceTree tree = ReadSourceTree(RASTERKIT_SOURCE_TREE);
  return tree;
}

TEST(HouseTest, TheTreeIsRead) {
  EXPECT_GT(TheHouse().size(), 50u);
  EXPECT_TRUE(TheHouse().contains("host/runtime/text.cpp"));
  EXPECT_THAT(TheHouse().at("host/runtime/text.cpp"), testing::Not(IsEmpty()));
}

TEST(HouseTest, NoDoorOpensUpward) {
  EXPECT_THAT(FindWrongDoors(TheHouse()), IsEmpty());
}

TEST(HouseTest, NoFileIncludesItselfByWayOfOthers) {
  EXPECT_THAT(FindCycles(TheHouse()), IsEmpty());
}

TEST(HouseTest, NoTwoFilesBearTheSameName) {
  EXPECT_THAT(FindTwins(TheHouse()), IsEmpty());
}

TEST(ParseIncludesTest, FindsBothKinds) {
  const auto includes = ParseIncludes(
      "#pragma once\n#include <vector>\n  #  include \"tests/a.h\"  // why\nint include;\n");
  ASSERT_EQ(includes.size(), 2u);
  EXPECT_EQ(includes[0].name, "vector");
  EXPECT_FALSE(includes[0].isQuoted);
  EXPECT_EQ(includes[1].name, "tests/a.h");
  EXPECT_TRUE(includes[1].isQuoted);
}

TEST(ParseIncludesTest, IgnoresComments) {
  EXPECT_THAT(ParseIncludes("// #include <a.h>\n/*\n#include <b.h>\n*/\n#define X \"#include\"\n"),
              IsEmpty());
}

TEST(WrongDoorsTest, DownwardAndInsideIsRight) {
  EXPECT_THAT(
      FindWrongDoors({
          {"package/strings.h", {}},
          {"host/runtime/text.h", {}},
          {"host/runtime/text.cpp", Including({"host/runtime/text.h"})},
          {"bitmaptools/files/a.cpp", Including({"package/strings.h", "host/runtime/text.h"})},
          {"apps/tool/main.cpp", Including({"host.h", "host/runtime/text.h"})},
      }),
      IsEmpty());
}

TEST(WrongDoorsTest, UpwardIsWrong) {
  EXPECT_THAT(FindWrongDoors(
                  {{"host/raster/a.h", {}}, {"host/runtime/b.h", Including({"host/raster/a.h"})}}),
              ElementsAre("host/runtime/b.h includes rasterkit/host/raster/a.h: doors open "
                          "downward only"));
}

TEST(WrongDoorsTest, BetweenRoomsOfOneFloorIsWrong) {
  EXPECT_EQ(
      FindWrongDoors({{"jpegexif/a.h", {}}, {"tifftobmp/b.h", Including({"jpegexif/a.h"})}}).size(),
      1u);
}

TEST(WrongDoorsTest, StringsLieBelowEverything) {
  EXPECT_EQ(FindWrongDoors(
                {{"host/runtime/a.h", {}}, {"package/strings.h", Including({"host/runtime/a.h"})}})
                .size(),
            1u);
  EXPECT_EQ(FindWrongDoors({{"package/start_up.h", {}},
                            {"bitmaptools/files/a.h", Including({"package/start_up.h"})}})
                .size(),
            1u);
}

TEST(WrongDoorsTest, AnUmbrellaInsideTheLibraryIsWrong) {
  EXPECT_EQ(FindWrongDoors({{"bitmaptools/files/a.h", Including({"host.h"})}}).size(), 1u);
}

TEST(WrongDoorsTest, QuotedIncludesUseTheSameDoors) {
  EXPECT_EQ(
      FindWrongDoors({{"apps/tool/a.h", {}}, {"package/b.cpp", {{"apps/tool/a.h", true}}}}).size(),
      1u);
  EXPECT_THAT(FindWrongDoors({{"apps/tool/a.h", {}}, {"apps/tool/b.cpp", {{"a.h", true}}}}),
              IsEmpty());
}

TEST(WrongDoorsTest, DialogsStandOnTheirToolkitAndThatOnThePackage) {
  EXPECT_THAT(FindWrongDoors({
                  {"package/strings.h", {}},
                  {"bitmaptools/files/a.h", {}},
                  {"qt/b.h", Including({"package/strings.h", "bitmaptools/files/a.h"})},
                  {"dialogs/execbitmap/c.h", Including({"qt/b.h", "bitmaptools/files/a.h"})},
                  {"apps/tool/main.cpp", Including({"dialogs/execbitmap/c.h", "qt.h"})},
              }),
              IsEmpty());
  for (const char* lower : {"host/runtime/a.cpp", "package/a.cpp"}) {
    EXPECT_EQ(FindWrongDoors({{"qt/b.h", {}}, {lower, Including({"qt/b.h"})}}).size(), 1u);
  }
  EXPECT_EQ(FindWrongDoors({{"dialogs/execbitmap/c.h", {}},
                            {"qt/b.cpp", Including({"dialogs/execbitmap/c.h"})}})
                .size(),
            1u);
}

TEST(WrongDoorsTest, WhatQtsToolsWriteIsNoFileOfTheHouse) {
  EXPECT_THAT(
      FindWrongDoors({{"qt/b.cpp", {{"ui_b.h", true}, {"b.moc", true}, {"QDialog", false}}}}),
      IsEmpty());
}

TEST(WrongDoorsTest, AMissingFileIsWrong) {
  EXPECT_EQ(FindWrongDoors({{"package/b.cpp", Including({"host/runtime/gone.h"})}}).size(), 1u);
  EXPECT_EQ(FindWrongDoors({{"package/b.cpp", {{"gone.h", true}}}}).size(), 1u);
}

TEST(WrongDoorsTest, AnUnknownUmbrellaIsWrong) {
  EXPECT_EQ(FindWrongDoors({{"apps/tool/main.cpp", Including({"hosts.h"})}}).size(), 1u);
}

TEST(WrongDoorsTest, AFileOutsideEveryRoomIsWrong) {
  EXPECT_THAT(FindWrongDoors({{"host/stray.h", {}}}), ElementsAre("host/stray.h lies in no room"));
}

TEST(CyclesTest, FindsLongOnes) {
  EXPECT_THAT(FindCycles({{"host/runtime/a.h", Including({"host/runtime/b.h"})},
                          {"host/runtime/b.h", Including({"host/runtime/c.h"})},
                          {"host/runtime/c.h", Including({"host/runtime/a.h"})}}),
              ElementsAre("host/runtime/a.h -> host/runtime/b.h -> host/runtime/c.h -> "
                          "host/runtime/a.h"));
}

TEST(CyclesTest, FindsAFileThatIncludesItself) {
  EXPECT_EQ(FindCycles({{"host/runtime/a.h", Including({"host/runtime/a.h"})}}).size(), 1u);
}

TEST(CyclesTest, TwoWaysToOneFileAreNone) {
  EXPECT_THAT(FindCycles({{"host/runtime/a.h", Including({"host/runtime/b.h", "host/runtime/c.h"})},
                          {"host/runtime/b.h", Including({"host/runtime/c.h"})},
                          {"host/runtime/c.h", {}}}),
              IsEmpty());
}

TEST(TwinsTest, SameNamesInTwoRoomsAreFound) {
  EXPECT_THAT(FindTwins({{"host/kernels/rows.h", {}}, {"host/raster/rows.h", {}}}),
              ElementsAre("host/kernels/rows.h and host/raster/rows.h bear the same name"));
  EXPECT_THAT(FindTwins({{"host/kernels/rows.h", {}}, {"host/kernels/rows.cpp", {}}}), IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
