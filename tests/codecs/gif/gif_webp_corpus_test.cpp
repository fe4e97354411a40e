// GIF and WebP files of the corpus, under their own and under wrong names, and beside other
// readers; skipped where the corpus or the programs are absent.

#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

bool IsGif(const std::string& path) {
  return path.ends_with(".gif") || path.find("_is_gif.") != std::string::npos;
}

bool IsWebp(const std::string& path) {
  return path.ends_with(".webp") || path.find("_is_webp.") != std::string::npos;
}

std::vector<CorpusEntry> Entries() {
  std::vector<CorpusEntry> entries = CorpusEntries();
  std::erase_if(entries, [](const CorpusEntry& entry) {
    return !IsGif(entry.at("path")) && !IsWebp(entry.at("path"));
  });
  return entries;
}

Raster Decode(const std::string& path) {
  TFileStream stream((CorpusFolder() / path).string());
  return DecodePicture(stream);
}

TEST(GifWebpCorpus, Should_LoadAsIndexed) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  testing::internal::CaptureStderr();
  const auto entries = Entries();
  EXPECT_GE(entries.size(), 21u);
  for (const CorpusEntry& entry : entries) {
    SCOPED_TRACE(entry.at("path"));
    // "loads-with-warning" speaks of wrong names and of metadata.
    EXPECT_NE(entry.at("expected"), "must-be-refused");
    const Raster raster = Decode(entry.at("path"));
    EXPECT_EQ(std::to_string(raster.Width()), entry.at("width"));
    EXPECT_EQ(std::to_string(raster.Height()), entry.at("height"));
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "a library printed";
}

std::string Quoted(const std::string& text) {
  return "'" + text + "'";
}

bool IsInstalled(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

/// Two entries of its palette are white, one of them transparent; a bitmap knows one key color.
constexpr const char* kTwoWhites = "worldfile/mapserver__grid.gif";

/// Pixels as red, green, blue, alpha; those of alpha 0 without a color.
std::string RedGreenBlueAlpha(const Raster& raster) {
  std::string pixels;
  for (int y = 0; y < raster.Height(); y++) {
    for (int x = 0; x < raster.Width(); x++) {
      const auto color = static_cast<uint32_t>(raster.PixelColor(x, y));
      uint8_t alpha = raster.Format() == pf32bit ? raster.Row(y)[4 * x + 3] : 255;
      if (raster.transparentColor == static_cast<TColor>(color)) alpha = 0;
      for (int i = 0; i < 3; i++) pixels += static_cast<char>(alpha == 0 ? 0 : color >> (8 * i));
      pixels += static_cast<char>(alpha);
    }
  }
  return pixels;
}

void ExpectAsPeer(const std::string& path, const std::string& command, const TempFolder& folder) {
  SCOPED_TRACE(path);
  const Raster raster = Decode(path);
  const std::string target = folder / "pixels";
  ASSERT_EQ(std::system((command + Quoted(target) + " 2>/dev/null").c_str()), 0);
  std::string peer = ReadFile(target);
  const std::string own = RedGreenBlueAlpha(raster);
  ASSERT_GE(peer.size(), own.size());
  // A header of text stands before the pixels of one of them.
  peer.erase(0, peer.size() - own.size());
  for (size_t i = 3; i < peer.size(); i += 4)
    if (peer[i] == 0) peer.replace(i - 3, 3, 3, '\0');
  size_t different = 0;
  const bool isKeyShared = path == kTwoWhites;
  for (size_t i = 0; isKeyShared && i < peer.size(); i += 4)
    if (peer.compare(i, 4, "\xFF\xFF\xFF\xFF") == 0) peer.replace(i, 4, 4, '\0');
  for (size_t i = 0; i < own.size(); i++) different += own[i] != peer[i] ? 1 : 0;
  EXPECT_EQ(different, 0u) << "of " << own.size();
}

TEST(GifWebpCorpus, Pixels_Should_BeThoseOfAnotherReader_When_Gif) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (!IsInstalled("convert -version")) GTEST_SKIP() << "ImageMagick is not installed";
  const TempFolder folder;
  for (const CorpusEntry& entry : Entries()) {
    const std::string& path = entry.at("path");
    if (!IsGif(path)) continue;
    const std::string file = (CorpusFolder() / path).string();
    ExpectAsPeer(path,
                 "convert " + Quoted("gif:" + file + "[0]") + " -coalesce -depth 8 rgba:", folder);
  }
}

TEST(GifWebpCorpus, Pixels_Should_BeThoseOfAnotherReader_When_Webp) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  if (!IsInstalled("dwebp -version")) GTEST_SKIP() << "dwebp is not installed";
  const TempFolder folder;
  for (const CorpusEntry& entry : Entries()) {
    const std::string& path = entry.at("path");
    if (!IsWebp(path)) continue;
    ExpectAsPeer(path, "dwebp -quiet " + Quoted((CorpusFolder() / path).string()) + " -pam -o ",
                 folder);
  }
}

}  // namespace
}  // namespace rasterkit::test
