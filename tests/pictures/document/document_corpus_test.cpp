#include <gtest/gtest.h>

#include <rasterkit/pictures/document/document.h>
#include <rasterkit/runtime/errors.h>

#include "tests/pictures/document/raw_pages.h"
#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::RawDocument;
using test::RawPage;

/// Turns a page and looks at the others. Returns false if that page cannot be decoded.
bool TurnOne(const std::string& file, int page, const std::string& out) {
  OpenOptions options;
  options.page = page;
  try {
    Picture::Open(file, options).Turn(2).Save(out);
  } catch (const UnsupportedError&) {
    return false;
  } catch (const FormatError&) {
    return false;
  } catch (const LimitError&) {
    return false;
  }
  const RawDocument before = test::ReadRawPages(file), after = test::ReadRawPages(out);
  EXPECT_EQ(after.isBigEndian, before.isBigEndian);
  EXPECT_EQ(after.isBigTiff, before.isBigTiff);
  const auto oldPages = test::PagesOf(before), newPages = test::PagesOf(after);
  EXPECT_EQ(newPages.size(), oldPages.size());
  for (size_t i = 0; i < std::min(oldPages.size(), newPages.size()); ++i) {
    if (static_cast<int>(i) + 1 == page) continue;
    EXPECT_EQ(newPages[i], oldPages[i]) << "page " << i + 1;
  }
  return true;
}

/// A file of the corpus whose pages can be read here and by the library.
struct Readable {
  std::string file;
  RawDocument raw;
};

std::vector<Readable> ReadableFiles() {
  constexpr uint64_t kMostBytes = 4 << 20;
  std::vector<Readable> files;
  for (const char* kind : {"tiff", "geotiff"}) {
    for (const test::CorpusEntry& entry : test::CorpusEntries(kind)) {
      const std::string file = (test::CorpusFolder() / entry.at("path")).string();
      try {
        if (std::filesystem::file_size(file) > kMostBytes) continue;
        Readable readable{file, test::ReadRawPages(file)};
        Picture::Open(file).Numbers();
        files.push_back(std::move(readable));
      } catch (const std::exception&) {
        // Damaged, of a kind that is not decoded, or no TIFF file at all.
      }
    }
  }
  return files;
}

TEST(DocumentCorpus, KeepsAllPagesButTheOneThatChanges) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  const test::TempFolder folder;
  int files = 0;
  for (const Readable& readable : ReadableFiles()) {
    SCOPED_TRACE(readable.file);
    const int pages = Picture::Open(readable.file).Pages();
    if (pages < 2) continue;
    bool isSeen = false;
    for (const int page : {1, 2, pages}) {
      isSeen |= TurnOne(readable.file, page, folder / "out.tif");
    }
    if (isSeen) ++files;
  }
  EXPECT_GE(files, 3);
}

std::vector<RawPage> Unnumbered(std::vector<RawPage> pages) {
  for (RawPage& page : pages) page.tags.erase(297);
  return pages;
}

TEST(DocumentCorpus, IsJoinedByteForByte) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  const test::TempFolder folder;
  const std::vector<Readable> all = ReadableFiles();
  size_t files = 0;
  for (const bool isBigEndian : {false, true}) {
    for (const bool isBigTiff : {false, true}) {
      Document document;
      std::vector<std::vector<RawPage>> expected;
      std::vector<std::string> names;
      for (const Readable& readable : all) {
        if (readable.raw.isBigEndian != isBigEndian || readable.raw.isBigTiff != isBigTiff) {
          continue;
        }
        const auto pages = test::PagesOf(readable.raw);
        const Document one = Document::Open(readable.file);
        // Files of which the one or the other reader sees more prove nothing here.
        if (static_cast<size_t>(one.Pages()) != pages.size()) continue;
        document.Append(one);
        expected.insert(expected.end(), pages.begin(), pages.end());
        names.insert(names.end(), pages.size(), readable.file);
        ++files;
      }
      if (names.empty()) continue;
      const Report report = document.Save(folder / "joined.tif");
      for (const Loss& loss : report.losses) ADD_FAILURE() << loss.what << ": " << loss.why;
      const RawDocument joined = test::ReadRawPages(folder / "joined.tif");
      EXPECT_EQ(joined.isBigEndian, isBigEndian);
      EXPECT_EQ(joined.isBigTiff, isBigTiff);
      const auto pages = test::PagesOf(joined);
      ASSERT_EQ(pages.size(), expected.size());
      for (size_t i = 0; i < pages.size(); ++i) {
        EXPECT_EQ(Unnumbered(pages[i]), Unnumbered(expected[i])) << names[i];
      }
      // And so do the others when one of them changes.
      TurnOne(folder / "joined.tif", 1, folder / "turned.tif");
    }
  }
  EXPECT_GE(files, 60U);
}

}  // namespace
}  // namespace rasterkit
