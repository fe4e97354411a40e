#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <regex>

#include <gtest/gtest.h>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/jpeg_segments.h>

#include "tests/metadata/exif_blocks.h"
#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using namespace test;
using Id = ExifDirectoryId;

std::vector<uint8_t> FileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Calls a function with each JPEG file of the corpus that has an EXIF block.
template <class Function>
int ForEachPhoto(Function function) {
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(CorpusFolder())) {
    if (!entry.is_regular_file()) continue;
    const std::vector<uint8_t> file = FileBytes(entry.path());
    const auto exif = FindExif(file);
    if (exif.empty()) continue;
    SCOPED_TRACE(entry.path().filename());
    function(file, exif);
    ++count;
  }
  return count;
}

std::string Output(const std::string& command) {
  std::string text;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return text;
  char buffer[4096];
  while (const size_t size = fread(buffer, 1, sizeof buffer, pipe)) text.append(buffer, size);
  pclose(pipe);
  return text;
}

std::string AsText(const std::vector<uint8_t>& exif) {
  return std::string("Exif\0\0", 6) + std::string(exif.begin(), exif.end());
}

/// What exiftool reads of all blocks in a folder but the changed tags, without the files' own
/// facts.
std::vector<std::string> Listings(const TempFolder& folder) {
  const std::string listed =
      Output("cd '" + folder.Path().string() +
             "' && exiftool -j -a -u -G1 -x System:All -x File:All -x Composite:All "
             "-x IFD0:Orientation -x IFD0:Artist *.exif 2>/dev/null");
  std::vector<std::string> listings;
  const std::regex file("\\{\\s*\"SourceFile\": ");
  for (std::sregex_token_iterator part(listed.begin(), listed.end(), file, -1), end; part != end;
       ++part) {
    listings.push_back(*part);
  }
  return listings;
}

TEST(ExifCorpus, AChange_Should_KeepAllOtherTags) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  int changed = 0;
  ForEachPhoto([&](const std::vector<uint8_t>&, std::span<const uint8_t> exif) {
    ExifBlock block({exif.begin(), exif.end()});
    if (block.IsDamaged()) return;
    auto expected = AllTags(block);
    const auto maker = block.Get(Id::exif, 37500);
    const std::string text = "a description that is longer than the one of the camera, for sure";
    block.SetText(Id::main, 270, text);
    block.SetText(Id::gps, 29, "2024:01:02");
    auto tags = AllTags(block);
    EXPECT_EQ(block.Text(Id::main, 270), text);
    for (const auto& key : {std::pair(Id::main, uint16_t{270}), std::pair(Id::gps, uint16_t{29})}) {
      tags.erase(key);
      expected.erase(key);
    }
    EXPECT_EQ(tags, expected);
    if (maker && maker->bytes.size() > 4) {
      const auto first =
          std::search(exif.begin(), exif.end(), maker->bytes.begin(), maker->bytes.end());
      const auto place = first - exif.begin();
      EXPECT_TRUE(
          std::equal(maker->bytes.begin(), maker->bytes.end(), block.Bytes().begin() + place));
    }
    ++changed;
  });
  EXPECT_GE(changed, 60);
}

TEST(ExifCorpus, SetUpright_Should_ChangeTheOrientationAlone) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  int upright = 0;
  ForEachPhoto([&](const std::vector<uint8_t>&, std::span<const uint8_t> exif) {
    ExifBlock block({exif.begin(), exif.end()});
    auto expected = AllTags(block);
    if (!block.SetUpright()) return;
    EXPECT_EQ(block.Number(Id::main, 274).value_or(1), 1U);
    auto tags = AllTags(block);
    tags.erase({Id::main, 274});
    expected.erase({Id::main, 274});
    EXPECT_EQ(tags, expected);
    EXPECT_EQ(block.Bytes().size(), exif.size());
    ++upright;
  });
  EXPECT_GE(upright, 80);
}

TEST(ExifCorpus, AnotherReader_Should_FindAllOtherTagsAfterAChange) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  if (std::system("exiftool -ver > /dev/null 2>&1") != 0)
    GTEST_SKIP() << "exiftool is not installed";
  const TempFolder before, after;
  int count = 0;
  ForEachPhoto([&](const std::vector<uint8_t>&, std::span<const uint8_t> exif) {
    ExifBlock block({exif.begin(), exif.end()});
    if (block.IsDamaged()) return;
    const std::string name = std::to_string(1000 + count++) + ".exif";
    before.Write(name, AsText(block.Bytes()));
    block.SetText(Id::main, 315, "Somebody whose name takes more than four bytes");
    const uint16_t upright = 1;
    block.SetWords(Id::main, 274, std::span(&upright, 1));
    after.Write(name, AsText(block.Bytes()));
  });
  const std::vector<std::string> expected = Listings(before), actual = Listings(after);
  ASSERT_EQ(expected.size(), static_cast<size_t>(count) + 1);
  ASSERT_EQ(actual.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(actual[i], expected[i]);
  const std::string artists = Output("cd '" + after.Path().string() +
                                     "' && exiftool -s -s -s -IFD0:Artist *.exif 2>/dev/null");
  size_t found = 0;
  for (size_t at = artists.find("Somebody"); at != std::string::npos;
       at = artists.find("Somebody", at + 1)) {
    ++found;
  }
  EXPECT_EQ(found, static_cast<size_t>(count));
}

}  // namespace
}  // namespace rasterkit
