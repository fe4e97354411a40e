#include <algorithm>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/placement/side_files.h>

#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const Affine kNew{2, 0, 0, -2, 1000, 2000}, kOther{1, 0, 0, -1, 5, 6};
constexpr const char* kWkt = "PROJCS[\"Grid\"]";

class SideFilesTest : public testing::Test {
 protected:
  SideFileWish Wish(const std::string& target, const std::string& source = "") {
    SideFileWish wish;
    wish.target = folder_ / target;
    if (!source.empty()) wish.source = folder_ / source;
    wish.width = 20;
    wish.height = 10;
    wish.syncs = false;
    return wish;
  }
  static Placement Placed(const Affine& affine = kNew) {
    Placement placement;
    placement.affine = affine;
    return placement;
  }
  /// Saves a picture with the files beside it.
  void Save(const SideFileWish& wish, const Placement& placement) {
    changes_ = {};
    SideFiles files(wish, placement, changes_);
    plans_ = files.Plans();
    for (std::string& plan : plans_) {
      const size_t at = plan.find(folder_.Path().string());
      if (at != std::string::npos) plan.erase(at, folder_.Path().string().size() + 1);
    }
    files.Prepare();
    files.BeforeCommit();
    AtomicFile picture(wish.target, {IfExists::replace, false});
    picture.Write(std::vector<uint8_t>{'n', 'e', 'w'});
    picture.Commit();
    files.AfterCommit();
  }
  /// The name of the file that refuses the save; nothing may change then.
  std::string Refusal(const SideFileWish& wish, const Placement& placement) {
    const auto before = folder_.Names();
    std::string name;
    try {
      Save(wish, placement);
    } catch (const FileExistsError& error) {
      name = std::filesystem::path(error.File()).filename().string();
    }
    EXPECT_EQ(folder_.Names(), before);
    return name;
  }
  std::vector<LossKind> Losses() const {
    std::vector<LossKind> kinds;
    for (const Loss& loss : changes_.losses) kinds.push_back(loss.kind);
    return kinds;
  }
  std::string Text(const std::string& name) const { return ReadFile(folder_ / name); }

  TempFolder folder_;
  Changes changes_;
  std::vector<std::string> plans_;
};

TEST_F(SideFilesTest, WriteAWorldFileOfTheStatedName) {
  for (const auto& [target, name] : {std::pair("a.tiff", "a.tfw"), std::pair("b.jpeg", "b.jgw"),
                                     std::pair(".c.png", ".c.pgw"), std::pair("d.BMP", "d.bpw")}) {
    SideFileWish wish = Wish(target);
    wish.writesWorldFile = true;
    Save(wish, Placed());
    EXPECT_EQ(Text(name), "2\n0\n0\n-2\n1000\n2000\n") << target;
    EXPECT_THAT(plans_, ElementsAre("writes " + std::string(name)));
    EXPECT_THAT(Losses(), IsEmpty());
  }
}

TEST_F(SideFilesTest, NoWorldFileWithoutAWish) {
  SideFileWish wish = Wish("a.tif");
  wish.hasTags = true;
  Save(wish, Placed());
  EXPECT_THAT(folder_.Names(), ElementsAre("a.tif"));
  EXPECT_THAT(Losses(), IsEmpty());
  wish.hasTags = false;
  Save(wish, Placed());
  EXPECT_THAT(Losses(), ElementsAre(LossKind::position));
}

TEST_F(SideFilesTest, OldWorldFilesAreReplacedOrRefuse) {
  for (const char* name : {"a.tfw", "a.TFW", "a.tifw", "a.TIFW", "a.wld", "a.WLD"}) {
    folder_.Write("a.tif", "old");
    folder_.Write(name, WorldFileText(kOther));
    SideFileWish wish = Wish("a.tif");
    for (const bool writes : {false, true}) {
      wish.writesWorldFile = writes;
      wish.hasTags = !writes;
      EXPECT_EQ(Refusal(wish, Placed()), name);
      EXPECT_EQ(Text("a.tif"), "old");
    }
    wish.mayReplace = true;
    Save(wish, Placed());
    EXPECT_THAT(folder_.Names(), UnorderedElementsAre(name, "a.tif")) << name;
    EXPECT_EQ(Text(name), WorldFileText(kNew));
    folder_.Write(name, WorldFileText(kOther));
    wish.writesWorldFile = false;
    wish.hasTags = true;
    Save(wish, Placed());
    EXPECT_THAT(folder_.Names(), ElementsAre("a.tif")) << name;
    EXPECT_THAT(plans_, ElementsAre("removes " + std::string(name)));
  }
}

TEST_F(SideFilesTest, PictureWithoutPositionGetsNoneFromAnOldWorldFile) {
  folder_.Write("a.tfw", WorldFileText(kOther));
  SideFileWish wish = Wish("a.tif");
  EXPECT_EQ(Refusal(wish, Placement()), "a.tfw");
  wish.mayReplace = true;
  Save(wish, Placement());
  EXPECT_THAT(folder_.Names(), ElementsAre("a.tif"));
}

TEST_F(SideFilesTest, OldWorldFileThatIsNoneRefusesToo) {
  folder_.Write("a.tfw", "1,5\n0\n0\n-1,5\n1\n2\n");
  SideFileWish wish = Wish("a.tif");
  wish.hasTags = true;
  EXPECT_EQ(Refusal(wish, Placed()), "a.tfw");
}

TEST_F(SideFilesTest, RightWorldFilesStay) {
  const std::string near = "2\n0\n0\n-2\n1000.0001\n2000\n";
  folder_.Write("a.tfw", near);
  SideFileWish wish = Wish("a.tif");
  wish.hasTags = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("a.tfw"), near);
  EXPECT_THAT(plans_, IsEmpty());
  wish.writesWorldFile = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("a.tfw"), near);
  wish.mayReplace = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("a.tfw"), WorldFileText(kNew));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.tfw", "a.tif"));
}

TEST_F(SideFilesTest, PositionsAreComparedOverTheWholePicture) {
  // Equal at the first pixel, and a pixel apart at the 2000th.
  folder_.Write("a.tfw", "2.001\n0\n0\n-2\n1000\n2000\n");
  SideFileWish wish = Wish("a.tif");
  wish.hasTags = true;
  wish.width = wish.height = 0;
  EXPECT_EQ(Refusal(wish, Placed()), "a.tfw");
  wish.width = 1;
  wish.height = 2000;
  Save(wish, Placed());
  wish.width = 2000;
  EXPECT_EQ(Refusal(wish, Placed()), "a.tfw");
}

TEST_F(SideFilesTest, FilesOfANeighborStay) {
  folder_.Write("plan.tif", "input");
  folder_.Write("plan.wld", WorldFileText(kOther));
  for (const bool mayReplace : {false, true}) {
    for (const bool hasTags : {false, true}) {
      SideFileWish wish = Wish("plan.png", "plan.tif");
      wish.mayReplace = mayReplace;
      wish.hasTags = hasTags;
      wish.writesWorldFile = !hasTags;
      Save(wish, Placed());
      EXPECT_EQ(Text("plan.wld"), WorldFileText(kOther));
      EXPECT_EQ(Text("plan.pgw"), WorldFileText(kNew));
      EXPECT_EQ(Text("plan.tif"), "input");
      std::filesystem::remove(folder_ / "plan.pgw");
      std::filesystem::remove(folder_ / "plan.png");
    }
  }
}

TEST_F(SideFilesTest, SharedFileThatContradictsRefuses) {
  folder_.Write("plan.tif", "input");
  folder_.Write("plan.wld", WorldFileText(kOther));
  SideFileWish wish = Wish("plan.png", "plan.tif");
  wish.mayReplace = true;
  EXPECT_EQ(Refusal(wish, Placement()), "plan.wld");
  // The particular name of both.
  folder_.Write("plan.tfw", WorldFileText(kOther));
  wish = Wish("plan.tiff", "plan.tif");
  wish.mayReplace = wish.writesWorldFile = true;
  EXPECT_EQ(Refusal(wish, Placed()), "plan.tfw");
  Save(wish, Placed(kOther));
  EXPECT_THAT(plans_, IsEmpty());
}

TEST_F(SideFilesTest, SharedFileThatAgreesServesBoth) {
  folder_.Write("plan.tif", "input");
  folder_.Write("plan.wld", WorldFileText(kNew));
  SideFileWish wish = Wish("plan.png", "plan.tif");
  wish.hasTags = true;
  Save(wish, Placed());
  EXPECT_THAT(folder_.Names(), ElementsAre("plan.png", "plan.tif", "plan.wld"));
}

TEST_F(SideFilesTest, SharedFileThatNobodyCanReadDoesNotRefuse) {
  folder_.Write("plan.tif", "input");
  folder_.Write("plan.wld", "1,5\n");
  Save(Wish("plan.png", "plan.tif"), Placement());
  EXPECT_EQ(Text("plan.wld"), "1,5\n");
  EXPECT_THAT(folder_.Names(), ElementsAre("plan.png", "plan.tif", "plan.wld"));
  EXPECT_THAT(Losses(), ElementsAre(LossKind::sideFile));
}

TEST_F(SideFilesTest, AttachedFilesGoOrRefuse) {
  for (const char* name : {"a.tif.aux.xml", "a.tif.ovr", "a.tif.msk", "a.tif.msk.ovr"}) {
    folder_.Write(name, "x");
    SideFileWish wish = Wish("a.tif");
    EXPECT_EQ(Refusal(wish, Placement()), name);
    wish.mayReplace = true;
    Save(wish, Placement());
    EXPECT_THAT(folder_.Names(), ElementsAre("a.tif")) << name;
    std::filesystem::remove(folder_ / "a.tif");
  }
}

TEST_F(SideFilesTest, AttachedFilesOfTheSourceAreALoss) {
  folder_.Write("a.tif", "old");
  folder_.Write("a.tif.ovr", "x");
  Save(Wish("b.tif", "a.tif"), Placement());
  EXPECT_THAT(Losses(), ElementsAre(LossKind::sideFile));
  EXPECT_EQ(Text("a.tif.ovr"), "x");
  // Saved over itself with the same pixels, all of it stays true.
  SideFileWish wish = Wish("a.tif", "a.tif");
  wish.hasSamePixels = true;
  Save(wish, Placement());
  EXPECT_THAT(Losses(), IsEmpty());
  EXPECT_EQ(Text("a.tif.ovr"), "x");
  wish.hasSamePixels = false;
  wish.mayReplace = true;
  Save(wish, Placement());
  EXPECT_THAT(Losses(), ElementsAre(LossKind::sideFile));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.tif", "b.tif"));
}

TEST_F(SideFilesTest, ProjectionIsCopiedWhereNoneIs) {
  folder_.Write("a.tif", "input");
  folder_.Write("a.prj", std::string(kWkt) + "\r\n");
  Placement placement = Placed();
  placement.system.wkt = kWkt;
  SideFileWish wish = Wish("b.png", "a.tif");
  wish.writesWorldFile = true;
  Save(wish, placement);
  EXPECT_EQ(Text("b.prj"), std::string(kWkt) + "\r\n");
  EXPECT_THAT(Losses(), IsEmpty());
  // The same contents, and the input's own.
  Save(wish, placement);
  wish.target = folder_ / "a.png";
  Save(wish, placement);
  EXPECT_THAT(folder_.Names(),
              ElementsAre("a.pgw", "a.png", "a.prj", "a.tif", "b.pgw", "b.png", "b.prj"));
}

TEST_F(SideFilesTest, ProjectionOfAnotherSystemRefuses) {
  folder_.Write("b.prj", "PROJCS[\"Other\"]");
  Placement placement = Placed();
  placement.system.wkt = kWkt;
  SideFileWish wish = Wish("b.png");
  wish.writesWorldFile = true;
  EXPECT_EQ(Refusal(wish, placement), "b.prj");
  wish.mayReplace = true;
  EXPECT_EQ(Refusal(wish, placement), "b.prj");
  EXPECT_EQ(Text("b.prj"), "PROJCS[\"Other\"]");
  // Without a position or a system nothing is contradicted.
  placement.system.wkt.clear();
  Save(wish, placement);
  EXPECT_EQ(Text("b.prj"), "PROJCS[\"Other\"]");
}

TEST_F(SideFilesTest, WhatNoFileHoldsIsALoss) {
  Placement placement = Placed();
  placement.system.keys = {1, 1, 0, 1, 3072, 0, 1, 25832};
  SideFileWish wish = Wish("a.jpg");
  wish.writesWorldFile = true;
  Save(wish, placement);
  EXPECT_THAT(Losses(), ElementsAre(LossKind::coordinateSystem));
  EXPECT_EQ(changes_.losses[0].what, "EPSG:25832");
  wish = Wish("a.tif");
  wish.hasTags = true;
  Save(wish, placement);
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(SideFilesTest, DamagedWorldFileOfTheSourceIsALoss) {
  folder_.Write("a.tif", "input");
  folder_.Write("a.tfw", "1,5\n");
  SideFileWish wish = Wish("b.tif", "a.tif");
  wish.hasTags = true;
  Save(wish, Placed());
  EXPECT_THAT(Losses(), ElementsAre(LossKind::sideFile));
  // One that was read is none, under another spelling of its name too.
  folder_.Write("a.tfw", WorldFileText(kNew));
  Placement placement = Placed();
  placement.stated = {{PositionSource::worldFile, folder_ / "./a.tfw", kNew, 0}};
  Save(wish, placement);
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(SideFilesTest, SystemWithoutPositionIsCarriedOrLost) {
  Placement placement;
  placement.system.keys = {1, 1, 0, 1, 3072, 0, 1, 25832};
  Save(Wish("a.png"), placement);
  EXPECT_THAT(Losses(), ElementsAre(LossKind::coordinateSystem));
  SideFileWish wish = Wish("a.tif");
  wish.hasTags = true;
  Save(wish, placement);
  EXPECT_THAT(Losses(), IsEmpty());
  placement.system.keys.clear();
  placement.system.wkt = kWkt;
  Save(wish, placement);
  EXPECT_THAT(Losses(), IsEmpty());
  EXPECT_EQ(Text("a.prj"), kWkt);
}

TEST_F(SideFilesTest, WithoutCommitTheOldFilesComeBack) {
  folder_.Write("a.tif", "old");
  folder_.Write("a.tfw", WorldFileText(kOther));
  folder_.Write("a.tif.ovr", "x");
  SideFileWish wish = Wish("a.tif");
  wish.mayReplace = wish.writesWorldFile = true;
  {
    SideFiles files(wish, Placed(), changes_);
    files.Prepare();
    files.BeforeCommit();
    EXPECT_THAT(folder_.Names(), ElementsAre("a.tfw.bak", "a.tif", "a.tif.ovr.bak"));
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("a.tfw", "a.tif", "a.tif.ovr"));
  EXPECT_EQ(Text("a.tfw"), WorldFileText(kOther));
}

TEST_F(SideFilesTest, BackupNamesThatAreTakenStay) {
  folder_.Write("a.tfw", WorldFileText(kOther));
  folder_.Write("a.tfw.bak", "mine");
  SideFileWish wish = Wish("a.tif");
  wish.mayReplace = wish.writesWorldFile = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("a.tfw.bak"), "mine");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.tfw", "a.tfw.bak", "a.tif"));
}

TEST_F(SideFilesTest, NameInUseIsRewritten) {
  for (const char* name : {"U.JGW", "U.Jgw", "U.JPEGw", "U.WLD", "U.Wld"}) {
    TempFolder folder;
    folder.Write("U.JPEG", "old");
    folder.Write(name, WorldFileText(kOther));
    SideFileWish wish = Wish("");
    wish.target = wish.source = folder / "U.JPEG";
    wish.mayReplace = wish.writesWorldFile = true;
    Save(wish, Placed());
    EXPECT_THAT(folder.Names(), UnorderedElementsAre("U.JPEG", name));
    EXPECT_EQ(ReadFile(folder / name), WorldFileText(kNew)) << name;
    // The same position once more: nothing is added.
    Save(wish, Placed());
    EXPECT_THAT(folder.Names(), UnorderedElementsAre("U.JPEG", name));
    EXPECT_THAT(plans_, IsEmpty()) << name;
  }
}

TEST_F(SideFilesTest, NameInUseMustCountBeforeASharedFile) {
  folder_.Write("plan.png", "input");
  folder_.Write("plan.wld", WorldFileText(kOther));
  folder_.Write("plan.tifw", WorldFileText(kOther));
  SideFileWish wish = Wish("plan.tif");
  wish.mayReplace = wish.hasTags = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("plan.tifw"), WorldFileText(kNew));
  EXPECT_EQ(Text("plan.wld"), WorldFileText(kOther));
  EXPECT_THAT(folder_.Names(), ElementsAre("plan.png", "plan.tif", "plan.tifw", "plan.wld"));
}

TEST_F(SideFilesTest, WorldFileThatCannotBeReadKeepsABackupName) {
  folder_.Write("bad.png", "old");
  folder_.Write("bad.pgw", "1,5\n0\n0\n-1,5\n1\n2\n");
  folder_.Write("bad.pgw.bak", "mine");
  SideFileWish wish = Wish("bad.png", "bad.png");
  wish.mayReplace = true;
  Save(wish, Placement());
  EXPECT_THAT(folder_.Names(), ElementsAre("bad.pgw.bak", "bad.pgw.bak1", "bad.png"));
  EXPECT_EQ(Text("bad.pgw.bak1"), "1,5\n0\n0\n-1,5\n1\n2\n");
  EXPECT_EQ(Text("bad.pgw.bak"), "mine");
  EXPECT_THAT(plans_, ElementsAre("gives a backup name to bad.pgw"));
  EXPECT_THAT(changes_.notes, ElementsAre(HasSubstr("backup name")));
  // A position of other origin takes the name.
  folder_.Write("bad.pgw", "nothing");
  wish.writesWorldFile = wish.hasSamePixels = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("bad.pgw"), WorldFileText(kNew));
  EXPECT_EQ(Text("bad.pgw.bak2"), "nothing");
}

TEST_F(SideFilesTest, AuxXmlThatIsCarriedIsNoLoss) {
  const std::string srs = "<SRS>PROJCS[\"Grid\"]</SRS>";
  const std::string transform = "<GeoTransform>999, 2, 0, 2001, 0, -2</GeoTransform>";
  folder_.Write("a.png", "input");
  Placement placement = Placed();
  placement.system.wkt = kWkt;
  placement.stated = {{PositionSource::auxXml, folder_ / "a.png.aux.xml", kNew, 0}};
  SideFileWish wish = Wish("b.tif", "a.png");
  wish.hasTags = true;
  const auto why = [&](const std::string& inner) {
    folder_.Write("a.png.aux.xml", "<PAMDataset>" + inner + "</PAMDataset>");
    Save(wish, placement);
    return changes_.losses.empty() ? "" : changes_.losses[0].why;
  };
  EXPECT_EQ(why(srs + transform), "");
  EXPECT_EQ(Text("b.prj"), kWkt);
  EXPECT_EQ(why(srs + transform + "<Metadata><MDI key=\"a\">b</MDI></Metadata>"),
            "not kept: Metadata");
  EXPECT_EQ(why(transform + "<PAMRasterBand><NoDataValue>5</NoDataValue><Histograms/>"
                            "</PAMRasterBand>"),
            "not kept: Histograms, its values for no data");
  EXPECT_EQ(why("<GCPList><GCP Pixel=\"1\" Line=\"1\" X=\"1\" Y=\"1\"/></GCPList>"),
            "not kept: its control points");
  EXPECT_EQ(why("<SRS>PROJCS[\"Other\"]</SRS>"), "not kept: its coordinate system");
  placement.stated[0].difference = 3;
  EXPECT_EQ(why(transform), "not kept: its position");
  folder_.Write("a.png.aux.xml", "<PAMDataset>");
  Save(wish, placement);
  ASSERT_EQ(changes_.losses.size(), 1u);
  EXPECT_EQ(changes_.losses[0].why, "it cannot be read");
}

TEST_F(SideFilesTest, LinkedWorldFileIsReplacedAndItsTargetStays) {
  folder_.Write("shared.txt", WorldFileText(kOther));
  std::filesystem::create_symlink("shared.txt", folder_ / "a.tfw");
  SideFileWish wish = Wish("a.tif");
  wish.mayReplace = wish.writesWorldFile = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("shared.txt"), WorldFileText(kOther));
  EXPECT_EQ(Text("a.tfw"), WorldFileText(kNew));
  EXPECT_FALSE(std::filesystem::is_symlink(folder_ / "a.tfw"));
}

TEST_F(SideFilesTest, TargetThatIsALinkHasTwoNames) {
  folder_.Write("real.tif", "old");
  folder_.Write("real.tfw", WorldFileText(kOther));
  std::filesystem::create_symlink("real.tif", folder_ / "link.tif");
  SideFileWish wish = Wish("link.tif");
  wish.writesWorldFile = true;
  EXPECT_EQ(Refusal(wish, Placed()), "real.tfw");
  wish.mayReplace = true;
  Save(wish, Placed());
  EXPECT_EQ(Text("real.tfw"), WorldFileText(kNew));
  EXPECT_EQ(Text("link.tfw"), WorldFileText(kNew));
  EXPECT_EQ(Text("real.tif"), "new");
}

TEST_F(SideFilesTest, PipesHaveNothingBeside) {
  ASSERT_EQ(mkfifo((folder_ / "a.tif").c_str(), 0600), 0);
  folder_.Write("a.tfw", WorldFileText(kOther));
  SideFileWish wish = Wish("a.tif");
  wish.writesWorldFile = true;
  const SideFiles files(wish, Placed(), changes_);
  EXPECT_THAT(files.Plans(), IsEmpty());
  EXPECT_THAT(Losses(), ElementsAre(LossKind::position));
}

TEST_F(SideFilesTest, KeepTheModeOfTheOldWorldFile) {
  folder_.Write("a.tfw", WorldFileText(kOther));
  std::filesystem::permissions(folder_ / "a.tfw", std::filesystem::perms(0640));
  SideFileWish wish = Wish("a.tif");
  wish.mayReplace = wish.writesWorldFile = true;
  Save(wish, Placed());
  EXPECT_EQ(std::filesystem::status(folder_ / "a.tfw").permissions(), std::filesystem::perms(0640));
}

}  // namespace
}  // namespace rasterkit::test
