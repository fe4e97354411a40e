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

/// The directories of the chain by page: each with its smaller copies and masks.
std::vector<std::vector<RawPage>> Grouped(const RawDocument& document) {
  std::vector<std::vector<RawPage>> pages;
  for (const RawPage& page : document.chain) {
    constexpr uint64_t kCopyOrMask = 5;
    if (pages.empty() || (test::SubfileType(page) & kCopyOrMask) == 0) pages.emplace_back();
    pages.back().push_back(page);
  }
  return pages;
}

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
  const auto oldPages = Grouped(before), newPages = Grouped(after);
  EXPECT_EQ(newPages.size(), oldPages.size());
  for (size_t i = 0; i < std::min(oldPages.size(), newPages.size()); ++i) {
    if (static_cast<int>(i) + 1 == page) continue;
    EXPECT_EQ(newPages[i], oldPages[i]) << "page " << i + 1;
  }
  return true;
}

TEST(DocumentCorpus, KeepsAllPagesButTheOneThatChanges) {
  const std::filesystem::path corpus = test::CorpusFolder();
  if (corpus.empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  const test::TempFolder folder;
  int files = 0;
  for (const test::CorpusEntry& entry : test::CorpusEntries("tiff")) {
    const std::string file = (corpus / entry.at("path")).string();
    SCOPED_TRACE(file);
    int pages = 0;
    try {
      // What this test reads by itself: the other files are damaged.
      test::ReadRawPages(file);
      pages = Picture::Open(file).Pages();
    } catch (const std::exception&) {
      continue;
    }
    if (pages < 2) continue;
    bool isSeen = false;
    for (const int page : {1, 2, pages}) isSeen |= TurnOne(file, page, folder / "out.tif");
    if (isSeen) ++files;
  }
  RecordProperty("files", files);
  EXPECT_GE(files, 10);
}

}  // namespace
}  // namespace rasterkit
