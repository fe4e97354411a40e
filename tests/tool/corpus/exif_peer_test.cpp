// Compares the verb `exif` with exiftool on real photographs.

#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/corpus.h"
#include "tests/support/exif_builder.h"
#include "tests/support/full_run.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/gdal_peer.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

bool StartsWithOneOf(const std::string& key, const std::vector<std::string>& starts) {
  return std::any_of(starts.begin(), starts.end(),
                     [&](const std::string& start) { return key.rfind(start, 0) == 0; });
}

class ExifPeer : public testing::Test {
 protected:
  void SetUp() override {
    if (!HasProgram("exiftool")) GTEST_SKIP() << "exiftool is not installed";
    if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
    // exiftool is slow: only the full run uses all photographs.
    size_t number = 0;
    for (const CorpusEntry& entry : CorpusEntries("exif"))
      if (IsFullRun() || number++ % 6 == 0)
        photos_.push_back((CorpusFolder() / entry.at("path")).string());
    ASSERT_FALSE(photos_.empty());
    for (const std::string& photo : photos_) originals_.append(" ").append(Quoted(photo));
  }

  /// Runs the tool once for all photographs; the outputs are in the folder.
  ToolResult ForAll(std::vector<std::string> options, const std::string& folder) const {
    options.insert(options.begin(), "exif");
    options.insert(options.end(), {"--continue", "--out-dir", folder_ / folder});
    options.insert(options.end(), photos_.begin(), photos_.end());
    return RunTool(options);
  }

  /// All tags that exiftool finds, by file name.
  static std::map<std::string, json> Tags(const std::string& files) {
    std::map<std::string, json> tags;
    const json list = json::parse(OutputOf("exiftool -j -G1 -a -u -n " + files));
    for (const json& file : list)
      tags[std::filesystem::path(file.at("SourceFile").get<std::string>()).filename().string()] =
          file;
    return tags;
  }

  /// Compares all tags except those of groups that may differ.
  static void ExpectSameTags(const json& before, const json& after,
                             const std::vector<std::string>& mayDiffer, const std::string& name) {
    const std::vector<std::string> ofTheFile = {"SourceFile",
                                                "System:", "File:", "ExifTool:", "Composite:"};
    for (const auto& [key, value] : before.items()) {
      if (StartsWithOneOf(key, ofTheFile) || StartsWithOneOf(key, mayDiffer)) continue;
      EXPECT_EQ(after.value(key, json()), value) << name << " " << key;
    }
  }

  TempFolder folder_;
  std::vector<std::string> photos_;
  /// The same files as arguments of a command.
  std::string originals_;
};

TEST_F(ExifPeer, Thumbnails_Should_BeThoseThatExiftoolTakesOut) {
  ForAll({"--thumbnail"}, "thumbnails");
  const std::string options = "-W " + Quoted(folder_ / "theirs/%f.%e") + " -b -ThumbnailImage";
  OutputOf("exiftool " + options + " " + originals_);
  size_t count = 0;
  for (const std::string& photo : photos_) {
    const std::string name = std::filesystem::path(photo).filename().string();
    const std::string theirs = folder_ / "theirs/" + name, ours = folder_ / "thumbnails/" + name;
    ASSERT_EQ(std::filesystem::exists(theirs), std::filesystem::exists(ours)) << name;
    if (!std::filesystem::exists(theirs)) continue;
    EXPECT_TRUE(ReadBytes(theirs) == ReadBytes(ours)) << name;
    ++count;
  }
  EXPECT_GT(count, 4u);
}

TEST_F(ExifPeer, Strip_Should_LoseTheThumbnailAlone) {
  ASSERT_EQ(ForAll({"--strip-thumbnail"}, "stripped").code, 0);
  const auto before = Tags(originals_), after = Tags(Quoted(folder_ / "stripped"));
  for (const auto& [name, tags] : before) {
    const json& stripped = after.at(name);
    // Photoshop's copy of the thumbnail goes too, and so do previews after the picture.
    ExpectSameTags(tags, stripped, {"IFD1:", "MPF", "MPImage", "Photoshop:PhotoshopThumbnail"},
                   name);
    for (const auto& [key, value] : stripped.items())
      EXPECT_FALSE(StartsWithOneOf(key, {"IFD1:"})) << name << " kept " << key;
  }
}

TEST_F(ExifPeer, Copy_Should_CarryAllTagsIntoAnotherPicture) {
  const std::string sample = std::string(RASTERKIT_SAMPLES) + "/gray.jpg";
  std::filesystem::create_directory(folder_ / "copied");
  for (const std::string& photo : photos_) {
    const std::string name = std::filesystem::path(photo).filename().string();
    ASSERT_EQ(RunTool({"exif", "--copy-from", photo, sample, folder_ / "copied/" + name}).code, 0)
        << name;
  }
  const auto before = Tags(originals_), after = Tags(Quoted(folder_ / "copied"));
  for (const auto& [name, tags] : before)
    // The place of the thumbnail is an offset in the file. The resolution is that of the picture.
    // The others are not carried over.
    ExpectSameTags(
        tags, after.at(name),
        {"IFD0:XResolution", "IFD0:YResolution", "IFD0:ResolutionUnit", "IFD1:ThumbnailOffset",
         "IFD1:StripOffsets", "JFIF:", "Adobe:", "MPF", "MPImage", "GoPro:"},
        name);
}

/// Pictures of every color model with metadata, with and without EXIF data.
TEST(ExifCorpusPictures, Copy_Should_ChangeNoPixel) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  const TempFolder folder;
  const std::string comment = folder / "comment.jpg", exif = folder / "exif.jpg";
  SaveJpegFile(comment, GradientRaster(pf24bit, 8, 8));
  const std::vector<uint8_t> bytes = ReadBytes(comment);
  const std::string plain(bytes.begin() + 2, bytes.end());
  const TiffWriter writer(ByteOrder::motorola);
  WriteText(comment, "\xFF\xD8" + JpegSection(0xFE, "comment") + plain);
  WriteText(exif, "\xFF\xD8" + ExifSection(writer.Tiff({writer.Short(274, 1)})) + plain);
  size_t compared = 0;
  for (const CorpusEntry& entry : CorpusEntries("jpeg")) {
    const std::string picture = (CorpusFolder() / entry.at("path")).string();
    if (entry.at("expected") != "loads" || std::filesystem::file_size(picture) > 200'000) continue;
    const Raster before = LoadFile(picture);
    for (const std::string& photo : {comment, exif}) {
      const ToolResult result =
          RunTool({"exif", "--copy-from", photo, "--overwrite", picture, folder / "out.jpg"});
      ASSERT_EQ(result.code, 0) << result.err;
      EXPECT_TRUE(SamePixels(before, LoadFile(folder / "out.jpg"))) << picture;
      ++compared;
    }
  }
  EXPECT_GT(compared, 20u);
}

}  // namespace
}  // namespace rasterkit::test
