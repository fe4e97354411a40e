// Every verb on photographs in all eight orientations: exiftool says what the outputs state.

#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/nothing_lost/stated_facts.h"
#include "tests/nothing_lost/tagged_pictures.h"
#include "tests/tool/support/gdal_peer.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

struct Operation {
  std::string name;
  std::vector<std::string> words;
  /// Sides of the output in terms of the upright picture; 0: those of the picture.
  int width = 0, height = 0;
  bool exchangesSides = false;
  /// Dots per inch times this.
  double scale = 1;
};

const Operation kOperations[] = {
    {"convert", {"convert"}},
    {"quarter", {"rotate", "--angle", "90"}, 0, 0, true},
    {"half", {"rotate", "--angle", "180"}},
    {"angle", {"rotate", "--angle", "17.3"}, -1, -1},
    {"mirror", {"mirror", "--horizontal"}},
    {"crop", {"crop", "--rect", "10,5,60,50"}, 60, 50},
    {"resize", {"resize", "--size", "50%"}, -2, -2, false, 0.5},
    {"gray", {"gray"}},
    {"mono", {"mono"}},
    {"brightness", {"brightness", "--percent", "20"}},
    {"contrast", {"contrast", "--percent", "20"}},
    {"adjust", {"adjust", "--red", "10", "--sharpen", "20"}},
    {"whiten", {"whiten", "--threshold", "200"}},
    {"recolor", {"recolor", "--threshold", "100", "--color", "C00000"}},
    {"key-color", {"key-color", "--color", "00FF00"}},
    {"pdf-white", {"pdf-white"}},
    {"watermark", {"watermark", "--with", RASTERKIT_SAMPLES "/plan.png"}},
    {"combine", {"combine", "--with", RASTERKIT_SAMPLES "/plan.png"}},
};

/// Inputs, and the outputs of one operation after the other, read with one run of exiftool each.
class KeptMetadata : public testing::TestWithParam<std::string> {
 protected:
  static void SetUpTestSuite() {
    if (!HasProgram("exiftool")) return;
    inputs_ = new TempFolder;
    WriteTaggedPictures(*inputs_);
    before_ = TagsInFolder(inputs_->Path());
  }
  static void TearDownTestSuite() {
    delete inputs_;
    inputs_ = nullptr;
  }
  void SetUp() override {
    if (inputs_ == nullptr) GTEST_SKIP() << "exiftool is not installed";
    ASSERT_EQ(before_.size(), 25u);
  }

  static const Operation& Find(const std::string& name) {
    for (const Operation& operation : kOperations) {
      if (operation.name == name) return operation;
    }
    throw std::runtime_error(name);
  }

  /// Runs the verb on all pictures of one type; the losses that it states, by output.
  std::map<std::string, std::vector<std::string>> RunOn(const std::string& extension,
                                                        const std::string& type) {
    std::vector<std::string> line = Find(GetParam()).words;
    line.insert(line.end(), {"--out-dir", outputs_.Path(), "--type", type, "--json"});
    for (const std::string& file : TaggedPictures(*inputs_, extension)) line.push_back(file);
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    std::map<std::string, std::vector<std::string>> losses;
    for (const json& picture : JsonLines(result.out)) {
      const std::string output = picture.at("output").get<std::string>();
      auto& kinds = losses[output.substr(output.rfind('/') + 1)];
      for (const json& loss : picture.at("losses")) {
        kinds.push_back(loss.at("kind").get<std::string>());
      }
    }
    return losses;
  }

  void CheckUpright(const std::string& name, const json& tags) const {
    for (const char* tag : {"IFD0:Orientation", "XMP-tiff:Orientation"}) {
      if (tags.contains(tag)) {
        EXPECT_EQ(tags.at(tag), 1) << name << " " << tag;
      }
    }
  }

  void CheckSizes(const std::string& name, const json& tags) const {
    const json width = TagOf(tags, {"File:ImageWidth", "PNG:ImageWidth", "IFD0:ImageWidth"});
    const json height = TagOf(tags, {"File:ImageHeight", "PNG:ImageHeight", "IFD0:ImageHeight"});
    ASSERT_FALSE(width.is_null()) << name;
    for (const char* tag : {"ExifIFD:ExifImageWidth", "XMP-tiff:ImageWidth"}) {
      if (tags.contains(tag)) {
        EXPECT_EQ(tags.at(tag), width) << name << " " << tag;
      }
    }
    for (const char* tag : {"ExifIFD:ExifImageHeight", "XMP-tiff:ImageHeight"}) {
      if (tags.contains(tag)) {
        EXPECT_EQ(tags.at(tag), height) << name << " " << tag;
      }
    }
    const Operation& operation = Find(GetParam());
    const int orientation = name[1] - '0';
    const bool lies = (orientation >= 5) != operation.exchangesSides;
    if (operation.width > 0) {
      EXPECT_EQ(width, operation.width) << name;
      EXPECT_EQ(height, operation.height) << name;
    } else if (operation.width == 0) {
      EXPECT_EQ(width, lies ? kTaggedHeight : kTaggedWidth) << name;
      EXPECT_EQ(height, lies ? kTaggedWidth : kTaggedHeight) << name;
    }
  }

  void CheckResolution(const std::string& name, const json& tags, const std::string& type) const {
    constexpr double kDpi = 300, kPerMeter = 0.0254;
    const double wanted = kDpi * Find(GetParam()).scale;
    int stated = 0;
    const auto check = [&](const char* tag, double factor) {
      if (!tags.contains(tag)) return;
      ++stated;
      EXPECT_NEAR(tags.at(tag).get<double>() * factor, wanted, 0.51) << name << " " << tag;
    };
    check("JFIF:XResolution", 1);
    check("JFIF:YResolution", 1);
    check("IFD0:XResolution", 1);
    check("IFD0:YResolution", 1);
    check("PNG-pHYs:PixelsPerUnitX", kPerMeter);
    check("PNG-pHYs:PixelsPerUnitY", kPerMeter);
    check("File:PixelsPerMeterX", kPerMeter);
    EXPECT_GT(stated, 0) << name << " " << type;
  }

  void CheckKept(const std::string& name, const json& before, const json& after,
                 const std::vector<std::string>& losses) const {
    struct Kept {
      std::vector<std::string> tags;
      std::string loss;
    };
    const Kept kKept[] = {{{"IFD0:Make"}, "exif"},
                          {{"IFD0:Model"}, "exif"},
                          {{"ExifIFD:DateTimeOriginal"}, "exif"},
                          {{"GPS:GPSLatitude"}, "gps"},
                          {{"GPS:GPSLongitude"}, "gps"},
                          {{"GPS:GPSAltitude"}, "gps"},
                          {{"XMP-dc:Title"}, "xmp"},
                          {{"IPTC:Caption-Abstract"}, "iptc"},
                          {{"ICC-header:ColorSpaceData"}, "profile"},
                          {{"File:Comment", "PNG:Comment", "IFD0:ImageDescription"}, "comment"}};
    for (const Kept& kept : kKept) {
      const json old = TagOf(before, kept.tags), now = TagOf(after, kept.tags);
      if (old.is_null()) continue;
      const bool isLost = now.is_null();
      const bool isSaid = std::find(losses.begin(), losses.end(), kept.loss) != losses.end();
      EXPECT_EQ(isLost, isSaid) << name << " " << kept.tags[0] << " " << now;
      if (isLost || isSaid) continue;
      if (old.is_number()) {
        EXPECT_NEAR(now.get<double>(), old.get<double>(), 1e-9) << name << " " << kept.tags[0];
      } else {
        EXPECT_EQ(now, old) << name;
      }
    }
  }

  void Check(const std::string& extension, const std::string& type) {
    std::filesystem::remove_all(outputs_.Path());
    const auto losses = RunOn(extension, type);
    const auto after = TagsInFolder(outputs_.Path());
    for (const std::string& input : TaggedPictures(*inputs_, extension)) {
      const std::string stem = input.substr(input.rfind('/') + 1, 2);
      const std::string name = stem + "." + type;
      ASSERT_TRUE(after.contains(name)) << name;
      SCOPED_TRACE(extension + " to " + type);
      const json& tags = after.at(name);
      CheckUpright(name, tags);
      CheckSizes(name, tags);
      CheckResolution(name, tags, type);
      CheckKept(name, before_.at(stem + "." + extension), tags, losses.at(name));
    }
  }

  static inline TempFolder* inputs_ = nullptr;
  static inline std::map<std::string, StatedTags> before_;
  TempFolder outputs_;
};

TEST_P(KeptMetadata, Should_FollowThePixels) {
  for (const char* type : {"jpg", "png", "tif", "bmp"}) Check(type, type);
}

std::vector<std::string> NamesOfOperations() {
  std::vector<std::string> names;
  for (const Operation& operation : kOperations) names.push_back(operation.name);
  return names;
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  for (char& letter : name) letter = letter == '-' ? '_' : letter;
  return name;
}

INSTANTIATE_TEST_SUITE_P(Verbs, KeptMetadata, testing::ValuesIn(NamesOfOperations()), TestName);

class KeptByConversion : public KeptMetadata {};

TEST_P(KeptByConversion, Should_GoToTheOutputsOwnPlaces) {
  for (const char* from : {"jpg", "png", "tif"}) {
    for (const char* to : {"jpg", "png", "tif", "bmp"}) {
      if (std::string(from) != to) Check(from, to);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Verbs, KeptByConversion, testing::Values("convert"));

class Thumbnails : public KeptMetadata {};

/// A thumbnail shows the whole picture: its sides have the proportions of the output.
TEST_P(Thumbnails, Should_BeMadeAnew) {
  RunOn("jpg", "jpg");
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const std::string name = TaggedName(orientation, "jpg");
    const std::string thumbnail = outputs_ / ("t" + name);
    OutputOf("exiftool -b -ThumbnailImage " + Quoted(outputs_ / name) + " > " + Quoted(thumbnail));
    const json small = TagsInFolder(thumbnail)["t" + name];
    const json large = TagsInFolder(outputs_ / name)[name];
    ASSERT_TRUE(small.contains("File:ImageWidth")) << name;
    const auto ratio = [](const json& tags) {
      return tags.at("File:ImageWidth").get<double>() / tags.at("File:ImageHeight").get<double>();
    };
    EXPECT_NEAR(ratio(small) / ratio(large), 1, 0.05) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(Verbs, Thumbnails, testing::Values("quarter", "crop", "angle", "gray"));

}  // namespace
}  // namespace rasterkit::test
