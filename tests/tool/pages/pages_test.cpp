#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/document/document.h>

#include "tests/pictures/document/made_document.h"
#include "tests/pictures/document/raw_pages.h"
#include "tests/support/sanitizers.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

std::string TextOf(const std::string& file) {
  const std::vector<uint8_t> bytes = ReadBytes(file);
  return {bytes.begin(), bytes.end()};
}

class CliPages : public testing::Test {
 protected:
  void SetUp() override { WriteMadeDocument(In("in.tif"), "wl"); }

  std::string In(const std::string& name) const { return folder_ / name; }
  static std::vector<int> WidthsOf(const std::string& file) {
    std::vector<int> widths;
    for (const DocumentPage& page : Document::Open(file).List()) widths.push_back(page.width);
    return widths;
  }

  TempFolder folder_;
};

TEST_F(CliPages, Pages_Should_BeListed_When_ThereIsNoOutput) {
  const ToolResult result = RunTool({"pages", In("in.tif")});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, HasSubstr(In("in.tif") + ": 5 pages\n  page 1: 120 x 90 pixels, 8 bits, "
                                                   "none, 300 x 300 dpi, "));
  EXPECT_THAT(result.out, HasSubstr("page 3: 200 x 100 pixels, 1 bit, CCITT G4, 204 x 98 dpi, "
                                    "1 mask, "));
  const json line = JsonLines(RunTool({"pages", In("in.tif"), "--json"}).out).at(0);
  EXPECT_EQ(line["ok"], true);
  ASSERT_EQ(line["pages"].size(), 5U);
  EXPECT_EQ(line["pages"][1]["tiles"], (json{32, 32}));
  EXPECT_EQ(line["pages"][1]["smaller_copies"], 1);
  EXPECT_EQ(line["pages"][2]["dpi"], (json{204.0, 98.0}));
  EXPECT_GT(line["pages"][4]["bytes"], 1000);
  const json isolated = JsonLines(RunTool({"pages", In("in.tif"), "--json", "--isolate"}).out)[0];
  EXPECT_EQ(isolated["pages"][3]["width"], 60);
  EXPECT_TRUE(isolated["pages"][3]["bytes"].is_null());
}

TEST_F(CliPages, Error_Should_BeSaid_When_NoFileIsThere) {
  const ToolResult result = RunTool({"pages", In("none.tif"), "--json"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(JsonLines(result.out).at(0)["ok"], false);
}

TEST_F(CliPages, Pages_Should_BeTheSame_When_TheyAreSplitAndJoined) {
  for (const bool isIsolated : {false, true}) {
    std::vector<std::string> split = {"pages", In("in.tif"), "--out-dir", In("sheets"),
                                      "--overwrite"};
    if (isIsolated) split.emplace_back("--isolate");
    const ToolResult result = RunTool(split);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    std::vector<std::string> join = {"pages"};
    for (int page = 1; page <= 5; ++page) {
      join.push_back(In("sheets/in-" + std::to_string(page) + ".tif"));
    }
    join.push_back(In("joined.tif"));
    join.emplace_back("--overwrite");
    if (isIsolated) join.emplace_back("--isolate");
    const ToolResult joined = RunTool(join);
    EXPECT_EQ(joined.code, 0) << joined.err;
    EXPECT_EQ(ReadRawPages(In("joined.tif")).chain, ReadRawPages(In("in.tif")).chain);
  }
}

TEST_F(CliPages, Names_Should_HaveTheSameLength_When_ThereAreTenPages) {
  EXPECT_EQ(RunTool({"pages", In("in.tif"), In("in.tif"), In("ten.tif")}).code, 0);
  EXPECT_EQ(RunTool({"pages", In("ten.tif"), "--out-dir", In("sheets"), "--order", "2,10"}).code,
            0);
  EXPECT_TRUE(std::filesystem::exists(In("sheets/ten-02.tif")));
  EXPECT_EQ(WidthsOf(In("sheets/ten-10.tif")), std::vector<int>{96});
}

TEST_F(CliPages, Pages_Should_BeArranged_When_AnOrderIsGiven) {
  const auto arranged = [&](const std::string& option, const std::string& list) {
    const ToolResult result =
        RunTool({"pages", In("in.tif"), In("out.tif"), "--overwrite", option, list});
    EXPECT_EQ(result.code, 0) << result.err;
    return WidthsOf(In("out.tif"));
  };
  EXPECT_THAT(arranged("--order", "3,1-2,last"), ElementsAre(200, 120, 160, 96));
  EXPECT_THAT(arranged("--order", "reverse"), ElementsAre(96, 60, 200, 160, 120));
  EXPECT_THAT(arranged("--order", "4-,1,1"), ElementsAre(60, 96, 120, 120));
  EXPECT_THAT(arranged("--remove", "2,4-"), ElementsAre(120, 200));
}

TEST_F(CliPages, File_Should_BeWrittenOverItself_When_InPlace) {
  const ToolResult result = RunTool({"pages", In("in.tif"), "--in-place", "--order", "5,1"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(WidthsOf(In("in.tif")), ElementsAre(96, 120));
}

TEST_F(CliPages, Usage_Should_BeWrong_When_NothingCanBeDone) {
  const std::string before = TextOf(In("in.tif"));
  const std::vector<std::vector<std::string>> lines = {
      {In("in.tif"), "--order", "1"},
      {In("in.tif"), "--in-place"},
      {In("in.tif"), In("out.png")},
      {In("in.tif"), In("out.tif"), "--order", "3-1"},
      {In("in.tif"), In("out.tif"), "--remove", "all"}};
  for (std::vector<std::string> line : lines) {
    line.insert(line.begin(), "pages");
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 2) << line.back() << result.err;
    EXPECT_NE(result.err, "");
  }
  const ToolResult beyond = RunTool({"pages", In("in.tif"), In("out.tif"), "--order", "6"});
  EXPECT_EQ(beyond.code, 4);
  EXPECT_THAT(beyond.err, HasSubstr("there is no page 6 among 5"));
  EXPECT_EQ(TextOf(In("in.tif")), before);
  EXPECT_FALSE(std::filesystem::exists(In("out.tif")));
}

TEST_F(CliPages, Plan_Should_SayWhatIsKept_When_ItIsADryRun) {
  const ToolResult result =
      RunTool({"pages", In("in.tif"), In("in.tif"), In("out.tif"), "--dry-run", "--json"});
  const json line = JsonLines(result.out).at(0);
  EXPECT_EQ(line["losses"].size(), 0U);
  EXPECT_EQ(line["notes"], (json{"pages copied as they are: 10 of 10"}));
  EXPECT_GT(line["bytes"], std::filesystem::file_size(In("in.tif")));
  EXPECT_FALSE(std::filesystem::exists(In("out.tif")));
}

TEST_F(CliPages, OtherPages_Should_Stay_When_OneIsChanged) {
  const RawDocument before = ReadRawPages(In("in.tif"));
  const auto old = PagesOf(before);
  for (const bool isIsolated : {false, true}) {
    std::vector<std::string> line = {"rotate", In("in.tif"), In("out.tif"), "--angle",
                                     "90",     "--page",     "2",           "--overwrite"};
    if (isIsolated) line.emplace_back("--isolate");
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const auto pages = PagesOf(ReadRawPages(In("out.tif")));
    ASSERT_EQ(pages.size(), 5U);
    for (const size_t other : {0, 2, 3, 4}) EXPECT_EQ(pages[other], old[other]) << other;
    EXPECT_NE(pages[1], old[1]);
    EXPECT_THAT(WidthsOf(In("out.tif")), ElementsAre(120, 96, 200, 60, 96));
  }
}

TEST_F(CliPages, AllPages_Should_Change_When_AllAreNamed) {
  const auto turned = [&](const std::string& list) {
    EXPECT_EQ(RunTool({"rotate", In("in.tif"), In("out.tif"), "--angle", "90", "--page", list,
                       "--overwrite", "--strict"})
                  .code,
              0);
    return WidthsOf(In("out.tif"));
  };
  EXPECT_THAT(turned("all"), ElementsAre(90, 96, 100, 50, 64));
  EXPECT_THAT(turned("1,3-4"), ElementsAre(90, 160, 100, 50, 96));
  EXPECT_THAT(turned("last"), ElementsAre(120, 160, 200, 60, 64));
  const DocumentPage fax = Document::Open(In("out.tif")).List()[2];
  EXPECT_NEAR(fax.resolution.x, 204, 1e-3);
  EXPECT_NEAR(fax.resolution.y, 98, 1e-3);
}

TEST_F(CliPages, OnePage_Should_BeWritten_When_TheOutputIsNoTiff) {
  const ToolResult one = RunTool({"convert", In("in.tif"), In("out.png"), "--page", "4"});
  EXPECT_EQ(one.code, 0) << one.err;
  EXPECT_THAT(one.err, HasSubstr("lost: 4 of 5 pages (only page 4 is written)"));
  EXPECT_EQ(LoadFile(In("out.png")).Width(), 60);
  const ToolResult two = RunTool({"convert", In("in.tif"), In("two.png"), "--page", "all"});
  EXPECT_EQ(two.code, 2);
  EXPECT_THAT(two.err, HasSubstr("holds one picture: give one page"));
  const ToolResult none = RunTool({"convert", In("in.tif"), In("none.tif"), "--page", "6"});
  EXPECT_EQ(none.code, 4);
  EXPECT_THAT(none.err, HasSubstr("there is no page 6: the file has 5"));
  EXPECT_EQ(RunTool({"convert", In("in.tif"), In("none.tif"), "--page", "0"}).code, 2);
}

TEST_F(CliPages, EachPage_Should_BeAFile_When_TheFolderHoldsNoTiff) {
  const ToolResult result = RunTool(
      {"convert", In("in.tif"), "--out-dir", In("png"), "--format", "png", "--page", "2-4"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(LoadFile(In("png/in-2.png")).Width(), 160);
  EXPECT_EQ(LoadFile(In("png/in-4.png")).Width(), 60);
  EXPECT_FALSE(std::filesystem::exists(In("png/in-1.png")));
  const ToolResult named =
      RunTool({"convert", In("in.tif"), "--out-dir", In("png"), "--format", "png", "--page", "all",
               "--name", "{stem}-p{page:3}.{ext}", "--json"});
  EXPECT_EQ(named.code, 0) << named.err;
  EXPECT_EQ(LoadFile(In("png/in-p005.png")).Width(), 96);
  EXPECT_EQ(JsonLines(named.out).at(4)["page"], 5);
}

TEST_F(CliPages, CroppedContent_Should_BeGone_When_ItIsCroppedInPlace) {
  EXPECT_EQ(RunTool({"crop", In("in.tif"), "--in-place", "--rect", "10,20,30,40"}).code, 0);
  const std::string bytes = TextOf(In("in.tif"));
  for (int y = 0; y < 90; ++y) {
    EXPECT_EQ(bytes.find(RowOfPlainPage(y).substr(42)), std::string::npos) << y;
  }
  EXPECT_EQ(PagesOf(ReadRawPages(In("in.tif"))).size(), 5U);
}

TEST_F(CliPages, AllPages_Should_BeKept_When_AFileIsConverted) {
  EXPECT_EQ(RunTool({"convert", In("in.tif"), In("out.tif"), "--strict"}).code, 0);
  EXPECT_EQ(ReadRawPages(In("out.tif")).chain, ReadRawPages(In("in.tif")).chain);
}

TEST_F(CliPages, Metadata_Should_BeGoneFromAllPages_When_TheyAreStripped) {
  const auto before = PagesOf(ReadRawPages(In("in.tif")));
  constexpr uint16_t kDescription = 270, kArtist = 315, kExif = 34665;
  ASSERT_TRUE(before[0][0].tags.contains(kDescription) && before[4][0].tags.contains(kArtist));
  const std::vector<std::vector<std::string>> lines = {
      {"convert"}, {"exif"}, {"pages"}, {"geotiff", "--origin", "7,8", "--pixel-size", "2"}};
  for (std::vector<std::string> line : lines) {
    SCOPED_TRACE(line[0]);
    line.insert(line.end(), {"--strip", "--overwrite", In("in.tif"), In("out.tif")});
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    const auto after = PagesOf(ReadRawPages(In("out.tif")));
    ASSERT_EQ(after.size(), 5U);
    for (size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(after[i][0].blocks, before[i][0].blocks);
      EXPECT_FALSE(after[i][0].tags.contains(kDescription));
      EXPECT_FALSE(after[i][0].tags.contains(kArtist));
      EXPECT_FALSE(after[i][0].below.contains(kExif));
    }
    EXPECT_EQ(TextOf(In("out.tif")).find("an artist"), std::string::npos);
  }
}

TEST_F(CliPages, Tag_Should_BeGoneFromAllPages_When_ItIsRemoved) {
  ASSERT_NE(TextOf(In("in.tif")).find("an artist"), std::string::npos);
  const ToolResult result =
      RunTool({"exif", "--remove", "Artist", "--set", "Copyright=me", In("in.tif"), In("out.tif")});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(TextOf(In("out.tif")).find("an artist"), std::string::npos);
  constexpr uint16_t kCopyright = 33432;
  const auto pages = PagesOf(ReadRawPages(In("out.tif")));
  EXPECT_TRUE(pages[0][0].tags.contains(kCopyright));
  EXPECT_FALSE(pages[4][0].tags.contains(kCopyright));
}

TEST_F(CliPages, Memory_Should_StaySmall_When_ThereAreManyPages) {
  if (IsSanitized()) GTEST_SKIP() << "the sanitizers' own memory counts as well";
  constexpr int kPages = 500, kSide = 1500;
  auto rows = std::make_unique<TBitmap>();
  rows->SetPixelFormat(pf8bit);
  rows->SetSize(kSide, kSide);
  Document one = Document::Of(Picture::Of(std::move(rows)));
  SaveOptions packed;
  packed.compression = TiffCompression::deflate;
  one.Save(In("one.tif"), packed);
  Document many = Document::Open(In("one.tif"));
  many.Select(std::vector<int>(kPages, 1));
  many.Save(In("many.tif"));
  // All pages together have more than a gigabyte of pixels.
  constexpr uint64_t kMost = uint64_t{160} << 20;
  const ToolResult turned = RunTool(
      {"rotate", In("many.tif"), In("out.tif"), "--angle", "90", "--page", "1,250-260,500"});
  EXPECT_EQ(turned.code, 0) << turned.err;
  EXPECT_LT(turned.peakMemory, kMost);
  const ToolResult split = RunTool({"pages", In("out.tif"), "--out-dir", In("s"), "--no-sync"});
  EXPECT_EQ(split.code, 0) << split.err;
  EXPECT_LT(split.peakMemory, kMost);
  EXPECT_EQ(WidthsOf(In("s/out-500.tif")), std::vector<int>{kSide});
}

}  // namespace
}  // namespace rasterkit::test
