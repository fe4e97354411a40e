// Small pictures for lists.

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr TColor kPicture = 0x3030C0, kEmbedded = 0xC03030;

/// Profiles state when they were made.
const ColorProfile& Profile() {
  static const ColorProfile profile = RgbProfile();
  return profile;
}

Raster Plain(int width, int height, TColor color) {
  Raster raster(pf24bit, width, height);
  FillRaster(raster, {0, 0, width, height}, color);
  raster.ClearPadding();
  return raster;
}

struct Photograph {
  int width = 300, height = 200, orientation = 1;
  /// 0 x 0: none.
  int thumbnailWidth = 0, thumbnailHeight = 0;
  ColorProfile profile = nullptr;
};

std::vector<uint8_t> JpegOf(const Photograph& photograph) {
  ExifBlock exif;
  exif.SetWords(ExifDirectoryId::main, 274,
                std::array{static_cast<uint16_t>(photograph.orientation)});
  exif.SetText(ExifDirectoryId::main, 271, "Some Camera");
  exif.SetText(ExifDirectoryId::gps, 1, "N");
  if (photograph.thumbnailWidth > 0) {
    exif.SetThumbnail(
        EncodeJpeg(Plain(photograph.thumbnailWidth, photograph.thumbnailHeight, kEmbedded), 90));
  }
  PictureWriting writing;
  writing.metadata.exif = exif.TakeBytes();
  writing.metadata.resolution = {300, 300};
  writing.metadata.profile = photograph.profile;
  writing.metadata.comments = {"a comment"};
  TMemoryStream stream;
  WriteJpeg(Plain(photograph.width, photograph.height, kPicture), writing, stream);
  return stream.TakeBytes();
}

class CliThumbnail : public VerbTest {
 protected:
  ToolResult Make(const std::string& in, const std::string& out, std::vector<std::string> options) {
    options.insert(options.begin(), {"thumbnail", folder_ / in, folder_ / out, "--overwrite"});
    return RunTool(options);
  }

  Picture Thumbnail(const Photograph& photograph, std::vector<std::string> options) {
    WriteBytes(folder_ / "photo.jpg", JpegOf(photograph));
    options.emplace_back("--strict");
    const ToolResult result = Make("photo.jpg", "small.jpg", options);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return Picture::Open(folder_ / "small.jpg");
  }

  static bool IsEmbedded(const Picture& picture) {
    const std::unique_ptr<TBitmap> rows = picture.Bitmap();
    const uint8_t* const middle = rows->Content().Row(rows->Height() / 2) + 3 * (rows->Width() / 2);
    return middle[0] > middle[2];
  }
};

TEST_F(CliThumbnail, Size_Should_BeABoxThatThePictureFitsInto) {
  struct Case {
    int width, height;
    const char* size;
    int expectedWidth, expectedHeight;
  };
  const Case cases[] = {
      {300, 200, "100", 100, 67},  {200, 300, "100", 67, 100},     {300, 200, "100x50", 75, 50},
      {300, 200, "90x80", 90, 60}, {300, 200, "120x", 120, 80},    {300, 200, "x20", 30, 20},
      {300, 200, "300", 300, 200}, {300, 200, "5000", 300, 200},   {1000, 1, "10", 10, 1},
      {3, 1000, "100", 1, 100},    {301, 301, "300x299", 299, 299}};
  for (const Case& one : cases) {
    const Raster thumbnail =
        Changed("thumbnail", Plain(one.width, one.height, kPicture), {"--size", one.size});
    EXPECT_EQ(thumbnail.Width(), one.expectedWidth) << one.size;
    EXPECT_EQ(thumbnail.Height(), one.expectedHeight) << one.size;
  }
}

TEST_F(CliThumbnail, Pixels_Should_BeExactAverages) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    std::mt19937 random(format);
    const Raster raster = RandomRaster(format, 120, 90, random);
    const Raster thumbnail = Changed("thumbnail", raster, {"--size", "40"});
    const Raster resized = Changed("resize", raster, {"--size", "40x30", "--filter", "area"});
    EXPECT_TRUE(SamePixels(resized, thumbnail)) << format;
  }
}

TEST_F(CliThumbnail, Photographs_Should_BeDecodedSmaller_UnlessExact) {
  std::mt19937 random(5);
  TMemoryStream stream;
  WriteJpeg(RandomRaster(pf24bit, 640, 480, random), {}, stream);
  WriteBytes(folder_ / "photo.jpg", stream.TakeBytes());
  const auto make = [&](const char* verb, const char* size, const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {
        verb, folder_ / "photo.jpg", folder_ / "small.png", "--overwrite", "--size", size};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolResult result = RunTool(arguments);
    EXPECT_EQ(result.code, 0) << result.err;
    return std::move(*Picture::Open(folder_ / "small.png").Bitmap()).TakeContent();
  };
  const Raster exact = make("resize", "80x60", {});
  const Raster fast = make("resize", "80x60", {"--shrink-on-load"});
  EXPECT_FALSE(SamePixels(exact, fast));
  EXPECT_TRUE(SamePixels(make("thumbnail", "80", {}), fast));
  EXPECT_TRUE(SamePixels(make("thumbnail", "80", {"--exact"}), exact));
}

TEST_F(CliThumbnail, Photographs_Should_BeUprightWithProfileAndResolutionAlone) {
  const Picture small = Thumbnail({.orientation = 6, .profile = Profile()}, {"--size", "100"});
  EXPECT_EQ(small.Width(), 67);
  EXPECT_EQ(small.Height(), 100);
  EXPECT_TRUE(small.Steps().empty());
  const Metadata& metadata = small.GetMetadata();
  EXPECT_TRUE(metadata.exif.empty());
  EXPECT_TRUE(metadata.comments.empty());
  ASSERT_NE(metadata.profile, nullptr);
  EXPECT_EQ(*metadata.profile, *Profile());
  EXPECT_NEAR(metadata.resolution.x, 100, 1);
  EXPECT_NEAR(metadata.resolution.y, 100, 1);
}

TEST_F(CliThumbnail, EmbeddedOnes_Should_BeUsed_When_LargeEnoughAndOfTheSameShape) {
  const auto isUsed = [&](const Photograph& photograph, const std::string& size) {
    return IsEmbedded(Thumbnail(photograph, {"--size", size, "--from-embedded"}));
  };
  const Photograph photograph{.thumbnailWidth = 150, .thumbnailHeight = 100};
  EXPECT_TRUE(isUsed(photograph, "150"));
  EXPECT_TRUE(isUsed(photograph, "60"));
  EXPECT_FALSE(isUsed(photograph, "151"));
  EXPECT_FALSE(isUsed({}, "60")) << "there is none";
  EXPECT_TRUE(isUsed({.thumbnailWidth = 150, .thumbnailHeight = 102}, "60")) << "within 2 %";
  EXPECT_FALSE(isUsed({.thumbnailWidth = 150, .thumbnailHeight = 104}, "60"));
  EXPECT_FALSE(isUsed({.thumbnailWidth = 160, .thumbnailHeight = 120}, "60")) << "black bars";
  EXPECT_FALSE(isUsed({.thumbnailWidth = 100, .thumbnailHeight = 150}, "60")) << "upright already";
  EXPECT_FALSE(IsEmbedded(Thumbnail(photograph, {"--size", "60"}))) << "not requested";
}

TEST_F(CliThumbnail, EmbeddedOnes_Should_BeUprightWithProfileAndResolution) {
  const Photograph photograph{
      .orientation = 8, .thumbnailWidth = 150, .thumbnailHeight = 100, .profile = Profile()};
  for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--isolate"}}) {
    std::vector<std::string> options = {"--size", "75", "--from-embedded"};
    options.insert(options.end(), more.begin(), more.end());
    const Picture small = Thumbnail(photograph, options);
    EXPECT_TRUE(IsEmbedded(small));
    EXPECT_EQ(small.Width(), 50);
    EXPECT_EQ(small.Height(), 75);
    EXPECT_NEAR(small.GetMetadata().resolution.x, 75, 1);
    ASSERT_NE(small.GetMetadata().profile, nullptr);
    EXPECT_EQ(*small.GetMetadata().profile, *Profile());
  }
}

TEST_F(CliThumbnail, Positions_Should_BeLeftOut) {
  SavePngFile(folder_ / "plan.png", Plain(300, 200, kPicture));
  WriteText(folder_ / "plan.pgw", "2\n0\n0\n-2\n1000\n5000\n");
  const ToolResult result = Make("plan.png", "small.png", {"--size", "60", "--strict"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"plan.pgw", "plan.png", "small.png"}));
}

TEST_F(CliThumbnail, Format_Should_NameTheTypeOfOutputsInAFolder) {
  WriteBytes(folder_ / "a.jpg", JpegOf({}));
  SavePngFile(folder_ / "b.png", Plain(300, 200, kPicture));
  const std::pair<const char*, const char*> names[] = {
      {"jpeg", "jpeg"}, {"png", "png"}, {"tiff", "tiff"}, {"bmp", "bmp"}};
  for (const auto& [format, extension] : names) {
    const std::string out = folder_ / format;
    const ToolResult result =
        RunTool({"thumbnail", "--size", "60", "--format", format, "--out-dir", out, "--jobs", "2",
                 "--json", folder_ / "a.jpg", folder_ / "b.png"});
    EXPECT_EQ(result.code, 0) << result.err;
    for (const char* stem : {"a.", "b."}) {
      const Picture small = Picture::Open(out + "/" + stem + extension);
      EXPECT_EQ(small.Width(), 60);
      EXPECT_EQ(PictureTypeName(small.SourceType()), std::string(format));
    }
  }
  EXPECT_EQ(RunTool({"thumbnail", "--size", "60", "--format", "gif", "--out-dir", folder_ / "g",
                     folder_ / "a.jpg"})
                .code,
            2);
}

TEST_F(CliThumbnail, Message_Should_NameFormat_When_TheInputsTypeCannotBeWritten) {
  const ToolResult result =
      RunTool({"thumbnail", "--size", "60", "--out-dir", folder_ / "th",
               std::string(RASTERKIT_SAMPLES) + "/../fuzz/seeds/jp2/color.j2k"});
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, testing::HasSubstr("--format"));
}

TEST_F(CliThumbnail, Pictures_Should_NotBeReplacedByTheirThumbnails) {
  WriteBytes(folder_ / "a.jpg", JpegOf({}));
  EXPECT_EQ(RunTool({"thumbnail", "--size", "60", "--in-place", folder_ / "a.jpg"}).code, 2);
  EXPECT_EQ(ReadBytes(folder_ / "a.jpg"), JpegOf({}));
}

TEST_F(CliThumbnail, Size_Should_BeRequiredAndValid) {
  WriteBytes(folder_ / "a.jpg", JpegOf({}));
  EXPECT_EQ(Make("a.jpg", "b.jpg", {}).code, 2);
  for (const char* size : {"0", "-5", "10y", "x", "50%", "1000001", "10x0"}) {
    const ToolResult result = Make("a.jpg", "b.jpg", {"--size", size});
    EXPECT_EQ(result.code, 2) << size;
    EXPECT_THAT(result.err, HasSubstr("400x300")) << size;
  }
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"a.jpg"}));
}

/// Calls `check` with the upright sides of each readable photograph and its thumbnail.
template <class Check>
void ForEachPhotograph(const std::vector<std::string>& options, const TempFolder& folder,
                       const Check& check) {
  const std::string source = (CorpusFolder() / "exif").string();
  std::vector<std::string> line = {"thumbnail", "--size",  "120x100",  "--continue",
                                   "--json",    "--quiet", "--no-sync"};
  line.insert(line.end(), {"--format", "png", "--out-dir", folder / "out"});
  line.insert(line.end(), options.begin(), options.end());
  // Files of one stem would have one name.
  std::vector<std::string> stems;
  for (const CorpusEntry& entry : CorpusEntries("exif")) {
    const std::filesystem::path path = CorpusFolder() / entry.at("path");
    if (std::count(stems.begin(), stems.end(), path.stem().string()) > 0) continue;
    stems.push_back(path.stem().string());
    line.push_back(path.string());
  }
  const std::vector<json> results = JsonLines(RunTool(line).out);
  ASSERT_EQ(results.size(), stems.size());
  for (const json& result : results) {
    SCOPED_TRACE(result.dump());
    check(result);
  }
}

TEST_F(CliThumbnail, Photographs_Should_AllBecomeSmall) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{}, {"--from-embedded"}}) {
    const TempFolder folder;
    int made = 0, embedded = 0;
    ForEachPhotograph(options, folder, [&](const json& result) {
      std::optional<Picture> source;
      try {
        source.emplace(Picture::Open(result.at("file").get<std::string>()));
        source->Bitmap();
      } catch (const Error&) {
        EXPECT_EQ(result.at("ok"), false);
        return;
      }
      ASSERT_EQ(result.at("ok"), true);
      ++made;
      const Picture small = Picture::Open(result.at("output").get<std::string>());
      const bool isSmall = source->Width() <= 120 && source->Height() <= 100;
      const double scale =
          isSmall ? 1 : std::min(120.0 / source->Width(), 100.0 / source->Height());
      EXPECT_NEAR(small.Width(), std::max(1.0, source->Width() * scale), 0.5);
      EXPECT_NEAR(small.Height(), std::max(1.0, source->Height() * scale), 0.5);
      EXPECT_TRUE(small.GetMetadata().exif.empty());
      EXPECT_TRUE(small.GetMetadata().xmp.empty());
      for (const json& note : result.at("notes")) {
        if (note == "made from the embedded thumbnail") ++embedded;
      }
    });
    EXPECT_GT(made, 80);
    if (options.empty()) {
      EXPECT_EQ(embedded, 0);
    } else {
      EXPECT_GT(embedded, 10);
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
