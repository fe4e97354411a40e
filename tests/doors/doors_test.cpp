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
  for (const char* path : paths) includes.push_back({path, false});
  return includes;
}

const SourceTree& TheHouse() {
  static const SourceTree tree = ReadSourceTree(RASTERKIT_SOURCE_TREE);
  return tree;
}

TEST(HouseTest, TheTreeIsRead) {
  EXPECT_GT(TheHouse().size(), 50u);
  EXPECT_TRUE(TheHouse().contains("rasterkit/runtime/text.cpp"));
  EXPECT_THAT(TheHouse().at("rasterkit/runtime/text.cpp"), testing::Not(IsEmpty()));
}

TEST(HouseTest, NoDoorOpensUpward) {
  EXPECT_THAT(FindWrongDoors(TheHouse()), IsEmpty());
}

TEST(HouseTest, EveryFolderOfTheTableIsThere) {
  EXPECT_THAT(FindMissingFolders(TheHouse()), IsEmpty());
}

TEST(HouseTest, NoFileIncludesItselfByWayOfOthers) {
  EXPECT_THAT(FindCycles(TheHouse()), IsEmpty());
}

TEST(HouseTest, NoTwoFilesBearTheSameName) {
  EXPECT_THAT(FindTwins(TheHouse()), IsEmpty());
}

TEST(HouseTest, NoFolderIsFull) {
  const FolderSizes sizes = ReadFolderSizes(RASTERKIT_SOURCE_TREE);
  for (const char* folder : {"rasterkit/runtime", "tool/verbs", "tests/doors", "fuzz/codecs"}) {
    EXPECT_TRUE(sizes.contains(folder)) << folder;
  }
  EXPECT_FALSE(sizes.contains("fuzz/seeds/bmp"));
  EXPECT_THAT(FindFullFolders(sizes), IsEmpty());
}

TEST(HouseTest, FewFilesOfTheToolIncludeTheLibrariesOfOptionsAndJson) {
  for (const char* folder : {"CLI/", "nlohmann/"}) {
    EXPECT_THAT(FindSpreadIncludes(TheHouse(), folder), IsEmpty());
  }
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
          {"rasterkit/strings/strings.h", {}},
          {"rasterkit/runtime/text.h", {}},
          {"rasterkit/runtime/text.cpp", Including({"rasterkit/runtime/text.h"})},
          {"rasterkit/bitmaptools/files/a.cpp",
           Including({"rasterkit/strings/strings.h", "rasterkit/runtime/text.h"})},
          {"rasterkit/rasterkit.h", Including({"rasterkit/runtime/text.h"})},
          {"tool/main.cpp", Including({"rasterkit/rasterkit.h", "rasterkit/runtime/text.h"})},
          {"tool/verbs/a.cpp", {{"tool/main.cpp", true}}},
      }),
      IsEmpty());
}

TEST(WrongDoorsTest, UpwardIsWrong) {
  EXPECT_THAT(FindWrongDoors({{"rasterkit/raster/a.h", {}},
                              {"rasterkit/runtime/b.h", Including({"rasterkit/raster/a.h"})}}),
              ElementsAre("rasterkit/runtime/b.h includes rasterkit/raster/a.h: doors open "
                          "downward only"));
}

TEST(WrongDoorsTest, BetweenRoomsOfOneFloorIsWrong) {
  EXPECT_EQ(FindWrongDoors({{"rasterkit/codecs/gif/a.h", {}},
                            {"rasterkit/codecs/png/b.h", Including({"rasterkit/codecs/gif/a.h"})}})
                .size(),
            1u);
}

TEST(WrongDoorsTest, AFolderInsideARoomHasAFloorOfItsOwn) {
  EXPECT_EQ(FindWrongDoors({{"rasterkit/raster/stretch/a.h", {}},
                            {"rasterkit/raster/b.h", Including({"rasterkit/raster/stretch/a.h"})}})
                .size(),
            1u);
}

TEST(WrongDoorsTest, StringsLieBelowEverything) {
  EXPECT_EQ(FindWrongDoors({{"rasterkit/runtime/a.h", {}},
                            {"rasterkit/strings/strings.h", Including({"rasterkit/runtime/a.h"})}})
                .size(),
            1u);
  EXPECT_EQ(FindWrongDoors(
                {{"rasterkit/startup/start_up.h", {}},
                 {"rasterkit/bitmaptools/files/a.h", Including({"rasterkit/startup/start_up.h"})}})
                .size(),
            1u);
}

TEST(WrongDoorsTest, AnUmbrellaInsideTheLibraryIsWrong) {
  EXPECT_EQ(
      FindWrongDoors({{"rasterkit/rasterkit.h", {}},
                      {"rasterkit/bitmaptools/files/a.h", Including({"rasterkit/rasterkit.h"})}})
          .size(),
      1u);
}

TEST(WrongDoorsTest, QuotedIncludesUseTheSameDoors) {
  EXPECT_EQ(
      FindWrongDoors({{"tool/a.h", {}}, {"rasterkit/startup/b.cpp", {{"tool/a.h", true}}}}).size(),
      1u);
  EXPECT_THAT(FindWrongDoors({{"tool/a.h", {}}, {"tool/b.cpp", {{"a.h", true}}}}), IsEmpty());
}

TEST(WrongDoorsTest, DialogsStandOnTheirToolkitAndThatOnThePackage) {
  EXPECT_THAT(
      FindWrongDoors({
          {"rasterkit/strings/strings.h", {}},
          {"rasterkit/bitmaptools/files/a.h", {}},
          {"rasterkit/qt/b.h",
           Including({"rasterkit/strings/strings.h", "rasterkit/bitmaptools/files/a.h"})},
          {"rasterkit/dialogs/execbitmap/c.h",
           Including({"rasterkit/qt/b.h", "rasterkit/bitmaptools/files/a.h"})},
          {"rasterkit/qt.h", Including({"rasterkit/qt/b.h"})},
          {"tool/main.cpp", Including({"rasterkit/dialogs/execbitmap/c.h", "rasterkit/qt.h"})},
      }),
      IsEmpty());
  for (const char* lower : {"rasterkit/runtime/a.cpp", "rasterkit/startup/a.cpp"}) {
    EXPECT_EQ(
        FindWrongDoors({{"rasterkit/qt/b.h", {}}, {lower, Including({"rasterkit/qt/b.h"})}}).size(),
        1u);
  }
  EXPECT_EQ(
      FindWrongDoors({{"rasterkit/dialogs/execbitmap/c.h", {}},
                      {"rasterkit/qt/b.cpp", Including({"rasterkit/dialogs/execbitmap/c.h"})}})
          .size(),
      1u);
}

TEST(WrongDoorsTest, WhatQtsToolsWriteIsNoFileOfTheHouse) {
  EXPECT_THAT(FindWrongDoors({{"rasterkit/qt/b.cpp",
                               {{"ui_b.h", true}, {"b.moc", true}, {"QDialog", false}}}}),
              IsEmpty());
}

TEST(WrongDoorsTest, AMissingFileIsWrong) {
  EXPECT_EQ(
      FindWrongDoors({{"rasterkit/startup/b.cpp", Including({"rasterkit/runtime/gone.h"})}}).size(),
      1u);
  EXPECT_EQ(FindWrongDoors({{"rasterkit/startup/b.cpp", {{"gone.h", true}}}}).size(), 1u);
}

TEST(WrongDoorsTest, AnUnknownUmbrellaIsWrong) {
  EXPECT_EQ(FindWrongDoors({{"tool/main.cpp", Including({"rasterkit/hosts.h"})}}).size(), 1u);
}

TEST(WrongDoorsTest, AFileOutsideEveryRoomIsWrong) {
  EXPECT_THAT(FindWrongDoors({{"rasterkit/stray/a.h", {}}}),
              ElementsAre("rasterkit/stray/a.h lies in no folder of the table"));
}

TEST(MissingFoldersTest, NamesThoseWithoutAFile) {
  EXPECT_THAT(FindMissingFolders({{"rasterkit/strings/a.h", {}}}),
              testing::AllOf(testing::Contains("rasterkit/runtime"),
                             testing::Not(testing::Contains("rasterkit/strings"))));
}

TEST(CyclesTest, FindsLongOnes) {
  EXPECT_THAT(
      FindCycles({{"rasterkit/runtime/a.h", Including({"rasterkit/runtime/b.h"})},
                  {"rasterkit/runtime/b.h", Including({"rasterkit/runtime/c.h"})},
                  {"rasterkit/runtime/c.h", Including({"rasterkit/runtime/a.h"})}}),
      ElementsAre("rasterkit/runtime/a.h -> rasterkit/runtime/b.h -> rasterkit/runtime/c.h -> "
                  "rasterkit/runtime/a.h"));
}

TEST(CyclesTest, FindsAFileThatIncludesItself) {
  EXPECT_EQ(FindCycles({{"rasterkit/runtime/a.h", Including({"rasterkit/runtime/a.h"})}}).size(),
            1u);
}

TEST(CyclesTest, TwoWaysToOneFileAreNone) {
  EXPECT_THAT(FindCycles({{"rasterkit/runtime/a.h",
                           Including({"rasterkit/runtime/b.h", "rasterkit/runtime/c.h"})},
                          {"rasterkit/runtime/b.h", Including({"rasterkit/runtime/c.h"})},
                          {"rasterkit/runtime/c.h", {}}}),
              IsEmpty());
}

TEST(TwinsTest, SameNamesInTwoRoomsAreFound) {
  EXPECT_THAT(
      FindTwins({{"rasterkit/kernels/rows/rows.h", {}}, {"rasterkit/raster/rows.h", {}}}),
      ElementsAre("rasterkit/kernels/rows/rows.h and rasterkit/raster/rows.h bear the same name"));
  EXPECT_THAT(
      FindTwins({{"rasterkit/kernels/rows/rows.h", {}}, {"rasterkit/kernels/rows/rows.cpp", {}}}),
      IsEmpty());
}

TEST(FullFoldersTest, NamesThoseWithMoreThan45Files) {
  EXPECT_THAT(FindFullFolders({{"tool/a", 45}, {"tool/b", 46}, {"tool/c", 1}}),
              ElementsAre("tool/b has 46 files"));
}

TEST(SpreadIncludesTest, NamesTheFilesIfThereAreMoreThanTwo) {
  const std::vector<Include> cli = {{"vector", false}, {"CLI/CLI.hpp", false}};
  SourceTree tree = {{"tool/a.cpp", cli},
                     {"tool/b/b.cpp", cli},
                     {"tool/c.cpp", Including({"nlohmann/json.hpp", "rasterkit/CLI/a.h"})},
                     {"rasterkit/runtime/d.cpp", cli}};
  EXPECT_THAT(FindSpreadIncludes(tree, "CLI/"), IsEmpty());
  tree["tool/e.h"] = {{"CLI/App.hpp", true}};
  EXPECT_THAT(FindSpreadIncludes(tree, "CLI/"),
              ElementsAre("tool/a.cpp", "tool/b/b.cpp", "tool/e.h"));
  EXPECT_THAT(FindSpreadIncludes(tree, "nlohmann/"), IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
