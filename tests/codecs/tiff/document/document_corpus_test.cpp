// Real files joined to documents, reordered and split again, against a reader of the test's own and
// against other programs. Skipped without the corpus.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/document/document_support.h"
#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

constexpr uintmax_t kMostBytes = 4 << 20;

struct File {
  std::string path, name;
  ByteList bytes;
  std::vector<MadeDirectory> directories;

  FileKind Kind() const { return {bytes[2] == 43 || bytes[3] == 43, bytes[0] == 'M'}; }
  bool HasSizes() const {
    return std::all_of(directories.begin(), directories.end(), [](const MadeDirectory& one) {
      return one.blocks.empty() || one.countsType != 0;
    });
  }
};

/// Those that the reader of the test reads and that state what is in them.
std::vector<File> Files(size_t leastDirectories) {
  std::vector<File> files;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const std::string& path = entry.at("path");
    const std::string name = (CorpusFolder() / path).string();
    if (!path.ends_with(".tif") && !path.ends_with(".tiff")) continue;
    if (std::filesystem::file_size(name) > kMostBytes) continue;
    TMemoryStream stream;
    stream.LoadFromFile(name);
    File file{path, name, stream.TakeBytes(), {}};
    if (file.bytes.size() < 8 || file.bytes[0] != file.bytes[1]) continue;
    auto directories = TryReadMade(file.bytes);
    if (!directories || directories->size() < leastDirectories) continue;
    file.directories = std::move(*directories);
    if (file.HasSizes()) files.push_back(std::move(file));
  }
  return files;
}

bool HasProgram(const std::string& name) {
  return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::string OutputOf(const std::string& command) {
  std::string text;
  FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
  if (!pipe) return text;
  char piece[4096];
  while (const size_t count = fread(piece, 1, sizeof piece, pipe)) text.append(piece, count);
  pclose(pipe);
  return text;
}

void Save(const ByteList& bytes, const std::string& name) {
  TMemoryStream(bytes).SaveToFile(name);
}

/// Pages of many files in one.
class Joined {
 public:
  explicit Joined(const FileKind& kind)
      : kind_(kind), writer_(target_, kind.isBig, kind.isBigEndian) {}

  /// False if a page depends on the order of bytes or is damaged; then nothing is added.
  bool Add(const File& file) {
    TSpanStream stream(file.bytes);
    const TiffDocumentReader source(stream);
    for (int page = 1; page <= source.Pages(); page++) {
      if (!writer_.CanCopyPage(source, page)) return false;
      try {
        source.PageBytes(page);
      } catch (const Error&) {
        return false;
      }
    }
    for (int page = 1; page <= source.Pages(); page++) {
      const WrittenPicture written = writer_.CopyPage(source, page);
      EXPECT_TRUE(written.changes.losses.empty())
          << file.path << ": " << written.changes.losses.front().what;
    }
    expected_.insert(expected_.end(), file.directories.begin(), file.directories.end());
    names_.insert(names_.end(), file.directories.size(), file.path);
    pages_ += source.Pages();
    return true;
  }
  ByteList Take() {
    writer_.Finish();
    return target_.TakeBytes();
  }
  int Pages() const { return pages_; }
  const std::vector<MadeDirectory>& Expected() const { return expected_; }
  const std::vector<std::string>& Names() const { return names_; }

 private:
  const FileKind kind_;
  TMemoryStream target_;
  TiffDocumentWriter writer_;
  std::vector<MadeDirectory> expected_;
  std::vector<std::string> names_;
  int pages_ = 0;
};

TEST(TiffDocumentCorpus, Should_KeepStripsAndTags_When_PagesAreReordered) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  int files = 0, severalPages = 0;
  for (const File& file : Files(2)) {
    SCOPED_TRACE(file.path);
    TSpanStream stream(file.bytes);
    const TiffDocumentReader source(stream);
    std::vector<int> order(static_cast<size_t>(source.Pages()));
    std::vector<std::vector<MadeDirectory>> groups(order.size());
    int page = 0;
    for (const MadeDirectory& one : file.directories) {
      const bool belongs = (one.Number(254) & 5) != 0;
      if (!belongs || page == 0) page++;
      groups.at(static_cast<size_t>(page) - 1).push_back(one);
    }
    ASSERT_EQ(page, source.Pages());
    for (size_t i = 0; i < order.size(); i++) order[i] = page - static_cast<int>(i);
    for (const bool isBig : {false, true}) {
      ByteList copy;
      try {
        copy = CopiedPages(file.bytes, order, {isBig, file.Kind().isBigEndian});
      } catch (const Error& error) {
        ADD_FAILURE() << error.what();
        continue;
      }
      const std::vector<MadeDirectory> actual = ReadMade(copy);
      ASSERT_EQ(actual.size(), file.directories.size());
      size_t at = 0;
      for (auto group = groups.rbegin(); group != groups.rend(); group++) {
        for (const MadeDirectory& one : *group) EXPECT_TRUE(SameDirectory(one, actual[at++]));
      }
    }
    files++;
    if (page > 1) severalPages++;
  }
  EXPECT_GE(files, 10);
  EXPECT_GE(severalPages, 4);
}

TEST(TiffDocumentCorpus, Should_KeepStripsAndTags_When_FilesAreJoinedAndSplit) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  const std::vector<File> files = Files(1);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(NameOf(kind));
    Joined joined(kind);
    size_t count = 0;
    for (const File& file : files) count += joined.Add(file) ? 1 : 0;
    EXPECT_GE(count, 50u);
    const ByteList bytes = joined.Take();
    const std::vector<MadeDirectory> actual = ReadMade(bytes);
    ASSERT_EQ(actual.size(), joined.Expected().size());
    for (size_t i = 0; i < actual.size(); i++) {
      EXPECT_TRUE(SameDirectory(joined.Expected()[i], actual[i])) << joined.Names()[i];
    }
    TSpanStream stream(bytes);
    const TiffDocumentReader source(stream);
    ASSERT_EQ(source.Pages(), joined.Pages());
    size_t at = 0;
    for (int page = 1; page <= source.Pages(); page++) {
      const ByteList alone = CopiedPages(bytes, {page}, {!kind.isBig, kind.isBigEndian});
      for (const MadeDirectory& one : ReadMade(alone)) {
        ASSERT_TRUE(SameDirectory(actual.at(at), one)) << joined.Names()[at];
        at++;
      }
    }
    EXPECT_EQ(at, actual.size());
  }
}

/// Without the lines that state places.
std::vector<std::string> DirectoriesOf(const std::string& text) {
  std::vector<std::string> directories;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("=== TIFF directory") || line.starts_with("TIFF Directory at offset")) {
      if (line.starts_with("TIFF Directory at")) directories.emplace_back();
      continue;
    }
    const bool isOfOldJpeg =
        line.find("JpegInterchangeFormat: ") != line.npos || line.find("Tables: ") != line.npos;
    const bool isPlace = isOfOldJpeg || line.find("Offset") != line.npos ||
                         line.find("SubIFD") != line.npos || line.starts_with("--- EXIF") ||
                         line.starts_with("--- GPS");
    if (!isPlace && !directories.empty()) directories.back() += line + "\n";
  }
  return directories;
}

TEST(TiffDocumentCorpus, Should_AgreeWithTiffinfo_When_FilesAreJoined) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  if (!HasProgram("tiffinfo")) GTEST_SKIP() << "tiffinfo is not installed";
  const TempFolder folder;
  int compared = 0;
  for (const bool isBigEndian : {false, true}) {
    Joined joined({false, isBigEndian});
    std::vector<std::string> expected;
    for (const File& file : Files(1)) {
      // Numbers of 64 bits are printed in another way.
      if (file.Kind().isBigEndian != isBigEndian || file.Kind().isBig) continue;
      const auto directories = DirectoriesOf(OutputOf("tiffinfo '" + file.name + "'"));
      if (directories.size() != file.directories.size() || !joined.Add(file)) continue;
      expected.insert(expected.end(), directories.begin(), directories.end());
    }
    const std::string name = folder / "joined.tif";
    Save(joined.Take(), name);
    const auto actual = DirectoriesOf(OutputOf("tiffinfo '" + name + "'"));
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < actual.size(); i++) {
      EXPECT_EQ(actual[i], expected[i]) << joined.Names()[i];
      compared++;
    }
  }
  EXPECT_GE(compared, 60);
}

TEST(TiffDocumentCorpus, Should_SatisfyTiffcmp_When_JoinedAndSplit) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  if (!HasProgram("tiffcmp")) GTEST_SKIP() << "tiffcmp is not installed";
  const TempFolder folder;
  int same = 0;
  for (const File& file : Files(1)) {
    // Files that it cannot read, or of kinds that it does not compare.
    const std::string before = "'" + file.name + "'";
    if (std::system(("tiffcmp " + before + " " + before + " >/dev/null 2>&1").c_str()) != 0)
      continue;
    Joined joined({true, file.Kind().isBigEndian});
    if (!joined.Add(file)) continue;
    const std::string name = folder / "copy.tif";
    Save(joined.Take(), name);
    EXPECT_EQ(std::system(("tiffcmp " + before + " '" + name + "' >/dev/null 2>&1").c_str()), 0)
        << file.path;
    same++;
  }
  EXPECT_GE(same, 40);
}

/// What gdalinfo says about pixels and place of a page of a file.
std::string GdalTextOf(const std::string& name, int page) {
  const std::string text =
      OutputOf("gdalinfo -checksum 'GTIFF_DIR:" + std::to_string(page) + ":" + name + "'");
  const size_t at = text.find("Size is");
  return at == text.npos ? "" : text.substr(at);
}

TEST(TiffDocumentCorpus, Should_GiveGdalTheSamePages_When_Joined) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  if (!HasProgram("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  const TempFolder folder;
  constexpr size_t kMostFiles = 12;
  Joined joined({true, false});
  std::vector<std::string> expected;
  size_t files = 0;
  for (const File& file : Files(1)) {
    if (!file.path.starts_with("geotiff/") || files >= kMostFiles) continue;
    const std::string name = folder / "one.tif";
    Save(file.bytes, name);
    std::vector<std::string> texts;
    for (size_t i = 0; i < file.directories.size(); i++) {
      texts.push_back(GdalTextOf(name, static_cast<int>(i) + 1));
    }
    const bool isRead =
        std::none_of(texts.begin(), texts.end(), [](const auto& text) { return text.empty(); });
    if (!isRead || !joined.Add(file)) continue;
    expected.insert(expected.end(), texts.begin(), texts.end());
    files++;
  }
  ASSERT_GE(files, 10u);
  const std::string name = folder / "joined.tif";
  Save(joined.Take(), name);
  for (size_t i = 0; i < expected.size(); i++) {
    EXPECT_EQ(GdalTextOf(name, static_cast<int>(i) + 1), expected[i]) << joined.Names()[i];
  }
}

}  // namespace
}  // namespace rasterkit::test
