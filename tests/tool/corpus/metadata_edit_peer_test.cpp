// Edits the metadata of real files, and reads them by exiftool.

#include <algorithm>
#include <filesystem>
#include <map>

#include <gtest/gtest.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/corpus.h"
#include "tests/support/full_run.h"
#include "tests/tool/support/gdal_peer.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

constexpr const char* kKinds[] = {"exif", "jpeg", "png", "tiff", "geotiff"};
constexpr const char* kExtensions[] = {".jpg", ".jpeg", ".png", ".tif", ".tiff"};

std::string LowerExtension(const std::string& file) {
  std::string extension = std::filesystem::path(file).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
  return extension;
}

/// exiftool reads no directories below the main one of such a file.
bool IsBigTiff(const std::string& file) {
  const std::vector<uint8_t> bytes = ReadBytes(file);
  constexpr uint8_t kBig = 43;
  return (bytes[0] == 'I' && bytes[2] == kBig) || (bytes[0] == 'M' && bytes[3] == kBig);
}

class MetadataEditPeer : public testing::Test {
 protected:
  void SetUp() override {
    if (!HasProgram("exiftool")) GTEST_SKIP() << "exiftool is not installed";
    if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
    size_t number = 0;
    for (const char* kind : kKinds) {
      for (const CorpusEntry& entry : CorpusEntries(kind)) {
        const std::string file = (CorpusFolder() / entry.at("path")).string();
        constexpr uintmax_t kMostBytes = 4'000'000;
        const bool isWritten =
            std::count(std::begin(kExtensions), std::end(kExtensions), LowerExtension(file)) > 0;
        if (!isWritten || std::filesystem::file_size(file) > kMostBytes) continue;
        // Another program starts slowly: only the full run takes all files.
        constexpr size_t kStep = 3;
        if (IsFullRun() || number++ % kStep == 0) files_.push_back(file);
      }
    }
    ASSERT_FALSE(files_.empty());
  }

  /// Runs the tool once for all files. Returns output by input; inputs that cannot be read have
  /// none.
  std::map<std::string, std::string> ForAll(std::vector<std::string> options) const {
    options.insert(options.begin(), "exif");
    options.insert(options.end(), {"--continue", "--no-sync", "--out-dir", folder_ / "out"});
    options.insert(options.end(), files_.begin(), files_.end());
    RunTool(options);
    std::map<std::string, std::string> outputs;
    for (const std::string& file : files_) {
      const std::string output =
          folder_ / ("out/" + std::filesystem::path(file).filename().string());
      if (std::filesystem::exists(output)) outputs[file] = output;
    }
    return outputs;
  }

  /// What exiftool says of files, by name. It starts once.
  std::map<std::string, json> Read(const std::string& options,
                                   const std::vector<std::string>& files) const {
    std::string list;
    for (const std::string& file : files) list += file + "\n";
    WriteText(folder_ / "list", list);
    std::map<std::string, json> read;
    for (const json& one :
         json::parse(OutputOf("exiftool -j -a -G1 -n " + options + " -@ " + (folder_ / "list")))) {
      read[one.at("SourceFile").get<std::string>()] = one;
    }
    return read;
  }

  static bool IsClean(const json& validated) {
    return validated.value("ExifTool:Validate", json()) == "0 0 0";
  }

  void ExpectClean(const std::map<std::string, std::string>& outputs) const {
    std::vector<std::string> after;
    for (const auto& [input, output] : outputs) after.push_back(output);
    const auto before = Read("-validate -warning", files_);
    const auto edited = Read("-validate -warning", after);
    size_t count = 0;
    for (const auto& [input, output] : outputs) {
      if (!IsClean(before.at(input))) continue;
      EXPECT_TRUE(IsClean(edited.at(output))) << input << " " << edited.at(output);
      ++count;
    }
    EXPECT_GT(count, 10u);
  }

  TempFolder folder_;
  std::vector<std::string> files_;
};

/// The coordinates of a file's EXIF block as bytes of both orders.
std::vector<std::string> CoordinatesOf(const std::string& file) {
  std::vector<std::string> patterns;
  try {
    TFileStream stream(file);
    const PictureType type = SniffPictureType(stream);
    stream.SetPosition(0);
    const PictureHeader header = ReadPictureHeader(stream, type);
    if (header.metadata.exif.empty()) return patterns;
    const ExifBlock block(header.metadata.exif);
    for (const uint16_t tag : {2, 4}) {
      const auto value = block.Get(ExifDirectoryId::gps, tag);
      constexpr size_t kBytes = 24;
      if (!value || value->bytes.size() != kBytes) continue;
      std::string little(value->bytes.begin(), value->bytes.end()), big = little;
      for (size_t at = 0; at < kBytes; at += 4) {
        std::reverse(big.begin() + static_cast<std::ptrdiff_t>(at),
                     big.begin() + static_cast<std::ptrdiff_t>(at) + 4);
      }
      const bool isNothing = std::all_of(value->bytes.begin(), value->bytes.begin() + 4,
                                         [](uint8_t byte) { return byte == 0; });
      if (!isNothing) patterns.insert(patterns.end(), {little, big});
    }
  } catch (const Error&) {
  }
  return patterns;
}

TEST_F(MetadataEditPeer, StripGps_Should_LeaveNoPositionForAnyReader) {
  const auto outputs = ForAll({"--strip-gps"});
  std::vector<std::string> written;
  for (const auto& [input, output] : outputs) written.push_back(output);
  const auto read = Read(
      "-ee -gps:all '-xmp:*gps*' '-Composite:GPS*' '-xmp:*Latitude*' '-xmp:*Longitude*' -iptc:City "
      "-iptc:Country* -xmp:City -xmp:Country",
      written);
  for (const auto& [file, tags] : read) EXPECT_EQ(tags.size(), 1u) << file << " " << tags;
  size_t had = 0;
  for (const auto& [input, output] : outputs) {
    const std::vector<std::string> patterns = CoordinatesOf(input);
    if (!patterns.empty()) ++had;
    const std::vector<uint8_t> bytes = ReadBytes(output);
    const std::string text(bytes.begin(), bytes.end());
    for (const std::string& pattern : patterns) {
      EXPECT_EQ(text.find(pattern), std::string::npos) << input;
    }
  }
  EXPECT_GT(had, 1u);
  ExpectClean(outputs);
}

TEST_F(MetadataEditPeer, Settings_Should_BeReadByAnotherProgram) {
  const auto outputs =
      ForAll({"--set", "Artist=A. Person", "--set", "ExposureTime=1/125", "--set",
              "IPTC:Keywords=a", "--set", "IPTC:Keywords=b", "--set", "dc:creator=Me", "--gps",
              "-33.85678,151.215297,12.5", "--date", "2019-07-04T13:05:09"});
  std::vector<std::string> written;
  for (const auto& [input, output] : outputs) written.push_back(output);
  const auto read = Read(
      "-IFD0:Artist -ExifIFD:ExposureTime -IPTC:Keywords -XMP-dc:Creator "
      "-Composite:GPSLatitude -Composite:GPSLongitude -Composite:GPSAltitude "
      "-ExifIFD:DateTimeOriginal",
      written);
  for (const auto& [file, tags] : read) {
    EXPECT_EQ(tags.value("IFD0:Artist", json()), "A. Person") << file;
    if (IsBigTiff(file)) continue;
    EXPECT_EQ(tags.value("ExifIFD:ExposureTime", json()), 0.008) << file;
    EXPECT_EQ(tags.value("IPTC:Keywords", json()), json({"a", "b"})) << file;
    EXPECT_EQ(tags.value("XMP-dc:Creator", json()), "Me") << file;
    EXPECT_NEAR(tags.value("Composite:GPSLatitude", 0.0), -33.85678, 1e-7) << file;
    EXPECT_NEAR(tags.value("Composite:GPSLongitude", 0.0), 151.215297, 1e-7) << file;
    EXPECT_NEAR(tags.value("Composite:GPSAltitude", 0.0), 12.5, 1e-3) << file;
    EXPECT_EQ(tags.value("ExifIFD:DateTimeOriginal", json()), "2019:07:04 13:05:09") << file;
  }
  EXPECT_GT(read.size(), 20u);
  ExpectClean(outputs);
}

}  // namespace
}  // namespace rasterkit::test
