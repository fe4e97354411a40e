#include <fstream>
#include <iterator>
#include <map>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"

namespace rasterkit::test {
namespace {

std::vector<uint8_t> FileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Files that are read although the index has no tool that could, and why.
const std::map<std::string, std::string>& ReadAnyway() {
  static const std::map<std::string, std::string> table = {
      {"exif/openimagei__corrupt-iptc-8011.jpg",
       "16 of 64 rows are sound and are given; the rest is white"},
      {"jpeg/irsjpg__786b67badc535fc95a4a76c29a0e0146.jpg",
       "cut off inside a table behind the first scans, which make a coarse picture"},
  };
  return table;
}

/// The index has its own spelling of gray.
std::string WithGray(std::string bits) {
  const size_t place = bits.find("gr");
  if (place != std::string::npos) bits.replace(place, 4, "gray");
  return bits;
}

/// The pixel format for a text of the index: samples times channels, 16-bit samples halved.
TPixelFormat ExpectedFormat(const std::string& ofIndex) {
  const std::string bits = WithGray(ofIndex);
  if (bits == "1 gray" || bits == "1 palette") return pf1bit;
  if (bits == "2 gray" || bits == "2 palette" || bits == "4 gray" || bits == "4 palette")
    return pf4bit;
  if (bits == "8 gray" || bits == "8 palette" || bits == "16 gray" || bits == "8x1") return pf8bit;
  if (bits == "8 rgb" || bits == "16 rgb" || bits == "8x3" || bits == "8 8 8x3" || bits == "8x4")
    return pf24bit;
  if (bits.find("rgba") != std::string::npos || bits.find("gray+alpha") != std::string::npos)
    return pf32bit;
  return pfDevice;
}

void ExpectAsIndexed(const CorpusEntry& entry) {
  const std::string path = entry.at("path");
  const std::string expected = entry.at("expected");
  SCOPED_TRACE(path);
  const auto bytes = FileBytes(CorpusFolder() / path);
  const bool png = path.starts_with("png/");
  CodecReport report;
  try {
    const Raster raster = png ? DecodePng(bytes, &report) : DecodeJpeg(bytes, &report);
    if (expected == "must-be-refused") {
      EXPECT_TRUE(ReadAnyway().contains(path)) << "was read";
      EXPECT_FALSE(report.warnings.empty());
      return;
    }
    EXPECT_EQ(std::to_string(raster.Width()), entry.at("width"));
    EXPECT_EQ(std::to_string(raster.Height()), entry.at("height"));
    const TPixelFormat format = ExpectedFormat(entry.at("bits"));
    if (format != pfDevice) {
      EXPECT_EQ(raster.Format(), format) << entry.at("bits");
    }
  } catch (const Error& error) {
    EXPECT_NE(expected, "loads") << error.what();
    EXPECT_FALSE(ReadAnyway().contains(path)) << "the exception is out of date";
  }
}

void ExpectFolderAsIndexed(const std::string& folder) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  const auto entries = CorpusEntries(folder);
  ASSERT_FALSE(entries.empty());
  for (const CorpusEntry& entry : entries) ExpectAsIndexed(entry);
}

TEST(PhotoCorpus, Should_LoadOrRefuseAsIndexed_When_Jpeg) {
  ExpectFolderAsIndexed("jpeg");
}
TEST(PhotoCorpus, Should_LoadOrRefuseAsIndexed_When_PhotoWithExif) {
  ExpectFolderAsIndexed("exif");
}
TEST(PhotoCorpus, Should_LoadOrRefuseAsIndexed_When_Png) {
  ExpectFolderAsIndexed("png");
}

}  // namespace
}  // namespace rasterkit::test
