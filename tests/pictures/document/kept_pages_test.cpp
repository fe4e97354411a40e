#include <algorithm>
#include <stop_token>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/pictures/document/made_document.h"
#include "tests/pictures/document/raw_pages.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::ChainIndex;
using test::RawDocument;
using test::RawPage;
using test::ReadRawPages;
using test::TempFolder;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

Picture OpenAt(const std::string& file, int page, Isolation isolation = Isolation::none) {
  OpenOptions options;
  options.page = page;
  options.isolation = isolation;
  return Picture::Open(file, options);
}

/// All directories except those of one page are the same.
void ExpectOthersKept(const RawDocument& before, const RawDocument& after, int page) {
  EXPECT_EQ(after.isBigEndian, before.isBigEndian);
  EXPECT_EQ(after.isBigTiff, before.isBigTiff);
  const auto oldPages = test::PagesOf(before), newPages = test::PagesOf(after);
  ASSERT_EQ(newPages.size(), oldPages.size());
  for (size_t i = 0; i < oldPages.size(); ++i) {
    if (static_cast<int>(i) + 1 == page) continue;
    EXPECT_EQ(newPages[i], oldPages[i]) << "page " << i + 1;
  }
}

/// No encoded strip or tile of the old page is in the file. Those of a few bytes say nothing.
void ExpectGone(const RawPage& old, const std::string& file) {
  constexpr size_t kTelling = 24;
  const std::string bytes = test::ReadFile(file);
  ASSERT_FALSE(bytes.empty());
  for (const std::string& block : old.blocks) {
    if (block.size() < kTelling) continue;
    for (size_t at = 0; at + kTelling <= block.size(); at += kTelling) {
      ASSERT_EQ(bytes.find(block.substr(at, kTelling)), std::string::npos) << at;
    }
  }
}

class KeptPages : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { test::WriteMadeDocument(in_, GetParam()); }

  const TempFolder folder_;
  const std::string in_ = folder_ / "in.tif", out_ = folder_ / "out.tif";
};

TEST_P(KeptPages, AreKeptWhenOnePageIsTurned) {
  const RawDocument before = ReadRawPages(in_);
  ASSERT_EQ(before.chain.size(), 6U);
  for (int page = 1; page <= test::kMadePages; ++page) {
    SCOPED_TRACE(page);
    Picture picture = OpenAt(in_, page);
    const Samples expected = picture.Turn(1).Numbers();
    const Report plan = picture.Plan(out_);
    const Report report = picture.Save(out_);
    EXPECT_THAT(report.losses, IsEmpty());
    EXPECT_THAT(report.notes, Contains("pages copied as they are: 4 of 5"));
    EXPECT_FALSE(report.isCopied);
    EXPECT_EQ(report.width, expected.Width());
    EXPECT_LE(report.bytes, plan.bytes);
    EXPECT_EQ(plan.width, report.width);
    const RawDocument after = ReadRawPages(out_);
    ExpectOthersKept(before, after, page);
    ExpectGone(before.chain[static_cast<size_t>(ChainIndex(page))], out_);
    const Picture written = OpenAt(out_, page);
    EXPECT_EQ(written.Width(), expected.Width());
    EXPECT_EQ(written.Height(), expected.Height());
    if (page == test::kPhotoPage) continue;
    const Samples numbers = written.Numbers();
    for (int y = 0; y < expected.Height(); ++y) {
      const size_t bytes = expected.Stride();
      ASSERT_TRUE(std::equal(expected.Row(y), expected.Row(y) + bytes, numbers.Row(y))) << y;
    }
  }
}

TEST_P(KeptPages, AreKeptWhenNothingChanges) {
  const RawDocument before = ReadRawPages(in_);
  for (int page = 1; page <= test::kMadePages; ++page) {
    const Report report = OpenAt(in_, page).Save(out_);
    EXPECT_TRUE(report.isCopied);
    EXPECT_THAT(report.losses, IsEmpty());
    EXPECT_EQ(ReadRawPages(out_).chain, before.chain) << page;
  }
}

TEST_P(KeptPages, AreKeptWhenOnlyMetadataChange) {
  const RawDocument before = ReadRawPages(in_);
  for (int page = 1; page <= test::kMadePages; ++page) {
    SCOPED_TRACE(page);
    MetadataEdit edit;
    edit.resolution = Resolution{400, 200};
    const Report report = OpenAt(in_, page).Edit(edit).Save(out_);
    EXPECT_TRUE(report.isCopied);
    const RawDocument after = ReadRawPages(out_);
    ExpectOthersKept(before, after, page);
    const auto own = static_cast<size_t>(ChainIndex(page));
    EXPECT_EQ(after.chain[own].blocks, before.chain[own].blocks);
    EXPECT_EQ(after.chain[own].below, before.chain[own].below);
    const Picture written = OpenAt(out_, page);
    EXPECT_NEAR(written.GetMetadata().resolution.x, 400, 1e-3);
    EXPECT_NEAR(written.GetMetadata().resolution.y, 200, 1e-3);
  }
}

TEST_P(KeptPages, AreKeptByAWorkerToo) {
  const RawDocument before = ReadRawPages(in_);
  for (const int page : {int{test::kPlainPage}, int{test::kNumberPage}}) {
    SCOPED_TRACE(page);
    Picture picture = OpenAt(in_, page, Isolation::process);
    const Report plan = picture.Turn(1).Plan(out_);
    const Report report = picture.Save(out_);
    EXPECT_THAT(report.losses, IsEmpty());
    EXPECT_LE(report.bytes, plan.bytes);
    ExpectOthersKept(before, ReadRawPages(out_), page);
    OpenAt(in_, page).Turn(1).Save(folder_ / "here.tif");
    const auto own = static_cast<size_t>(ChainIndex(page));
    // Tag 254 may say "a page" or be absent.
    RawPage here = ReadRawPages(folder_ / "here.tif").chain.at(own);
    RawPage apart = ReadRawPages(out_).chain.at(own);
    here.tags.erase(254);
    apart.tags.erase(254);
    EXPECT_EQ(apart, here);
    OpenAt(in_, page, Isolation::process).Save(out_);
    EXPECT_EQ(ReadRawPages(out_).chain, before.chain);
  }
}

TEST_P(KeptPages, HaveTheirSmallerCopiesAndMasksMadeAnew) {
  OpenAt(in_, test::kTiledPage).Crop({0, 0, 80, 48}).Save(out_);
  const RawPage tiled = ReadRawPages(out_).chain.at(1);
  size_t copies = tiled.below.contains(330) ? tiled.below.at(330).size() : 0;
  for (const RawPage& page : ReadRawPages(out_).chain) {
    if (test::SubfileType(page) == 1) ++copies;
  }
  EXPECT_EQ(copies, 1U);
  ExpectGone(ReadRawPages(in_).chain.at(1).below.at(330).at(0), out_);

  OpenAt(in_, test::kFaxPage).Crop({50, 20, 100, 60}).Save(out_);
  const RawDocument after = ReadRawPages(out_);
  ASSERT_EQ(after.chain.size(), 6U);
  EXPECT_EQ(test::SubfileType(after.chain.at(3)), 4U);
  ExpectGone(ReadRawPages(in_).chain.at(3), out_);
}

TEST_P(KeptPages, LoseNoByteOfTheirOrderInPlace) {
  const RawDocument before = ReadRawPages(in_);
  OpenAt(in_, test::kPlainPage).Crop({10, 20, 30, 40}).Save(in_);
  const std::string bytes = test::ReadFile(in_);
  for (int y = 0; y < 90; ++y) {
    const std::string row = test::RowOfPlainPage(y);
    const bool isKept = y >= 20 && y < 60;
    const bool isThere = bytes.find(row.substr(10, 30)) != std::string::npos;
    EXPECT_EQ(isThere, isKept) << y;
    EXPECT_EQ(bytes.find(row.substr(41)), std::string::npos) << y;
    EXPECT_EQ(bytes.find(row.substr(0, 10)), std::string::npos) << y;
  }
  ExpectOthersKept(before, ReadRawPages(in_), test::kPlainPage);
}

INSTANTIATE_TEST_SUITE_P(AllKinds, KeptPages, testing::Values("wl", "wb", "wl8", "wb8"),
                         [](const auto& mode) { return std::string(mode.param); });

class OnePage : public testing::Test {
 protected:
  void SetUp() override { test::WriteMadeDocument(in_, "wl"); }

  const TempFolder folder_;
  const std::string in_ = folder_ / "in.tif";
};

TEST_F(OnePage, IsWrittenAloneOnRequest) {
  const RawDocument before = ReadRawPages(in_);
  for (const Isolation isolation : {Isolation::none, Isolation::process}) {
    SaveOptions options;
    options.onlyThisPage = true;
    const Report report =
        OpenAt(in_, test::kTiledPage, isolation).Save(folder_ / "one.tif", options);
    EXPECT_THAT(report.losses, IsEmpty());
    const RawDocument after = ReadRawPages(folder_ / "one.tif");
    ASSERT_EQ(after.chain.size(), 1U);
    EXPECT_EQ(after.chain[0].blocks, before.chain[1].blocks);
    EXPECT_EQ(after.chain[0].below, before.chain[1].below);
  }
}

TEST_F(OnePage, IsAllThatOtherFormatsHold) {
  const Report first = OpenAt(in_, 1).Save(folder_ / "a.png");
  ASSERT_EQ(first.losses.size(), 1U);
  EXPECT_EQ(first.losses[0].kind, LossKind::pages);
  EXPECT_EQ(first.losses[0].what, "4 of 5 pages");
  const Report second = OpenAt(in_, 2).Save(folder_ / "b.png");
  ASSERT_THAT(second.losses, testing::Not(IsEmpty()));
  EXPECT_EQ(second.losses[0].why, "only page 2 is written");
  EXPECT_EQ(Picture::Open(folder_ / "b.png").Width(), 160);
}

TEST_F(OnePage, PutsNoWorldFileBesideTheFirstOne) {
  folder_.Write("in.tfw", "2\n0\n0\n-2\n1000\n2000\n");
  OpenAt(in_, 2).Turn(1).Save(folder_ / "out.tif");
  // That of the first page goes along unchanged.
  const Picture first = OpenAt(folder_ / "out.tif", 1);
  ASSERT_TRUE(first.GetPlacement().affine);
  EXPECT_EQ(first.GetPlacement().affine->x, 1000);
  EXPECT_EQ(first.GetPlacement().affine->xPerColumn, 2);
  OpenAt(in_, 1).Turn(2).Save(folder_ / "turned.tif");
  EXPECT_EQ(OpenAt(folder_ / "turned.tif", 1).GetPlacement().affine->xPerColumn, -2);
}

TEST_F(OnePage, LeavesTheOldDocumentWhenItIsCanceled) {
  const std::string before = test::ReadFile(in_);
  for (int steps = 0; steps < 12; ++steps) {
    std::stop_source stop;
    rasterkit::Run run;
    run.cancel = stop.get_token();
    int reports = 0;
    run.progress = [&](double) {
      if (reports++ == steps) stop.request_stop();
    };
    bool isCanceled = false;
    try {
      OpenAt(in_, 2).Turn(1).Save(in_, {}, run);
    } catch (const CanceledError&) {
      isCanceled = true;
    }
    if (!isCanceled) break;
    EXPECT_EQ(test::ReadFile(in_), before) << steps;
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"in.tif"});
  }
}

/// The same file with the place of the first block beyond the end.
std::string WithoutFirstBlock(std::string bytes, const RawPage& page) {
  std::string list;
  for (const std::string& block : page.blocks) {
    const size_t at = bytes.find(block);
    for (int i = 0; i < 4; ++i) list += static_cast<char>(at >> 8 * i);
  }
  const size_t at = bytes.find(list);
  EXPECT_NE(at, std::string::npos);
  bytes.replace(at, 4, "\xF0\xFF\xFF\x7F");
  return bytes;
}

RawDocument WithoutTwo(RawDocument document) {
  document.chain.erase(document.chain.begin() + 1);
  if (test::SubfileType(document.chain.at(1)) == 1) {
    document.chain.erase(document.chain.begin() + 1);
  }
  return document;
}

TEST_F(OnePage, IsWrittenWhereAnotherPageCannotBeCopied) {
  const std::string file = folder_.Write(
      "broken.tif", WithoutFirstBlock(test::ReadFile(in_), ReadRawPages(in_).chain.at(1)));
  Picture picture = OpenAt(file, 1);
  const Report plan = picture.Turn(1).Plan(folder_ / "out.tif");
  EXPECT_THAT(plan.notes, Contains(HasSubstr("it is damaged")));
  const Report report = picture.Save(folder_ / "out.tif");
  ASSERT_THAT(report.losses, testing::Not(IsEmpty()));
  EXPECT_EQ(report.losses[0].kind, LossKind::damage);
  EXPECT_EQ(plan.notes, report.notes);
  ExpectOthersKept(WithoutTwo(ReadRawPages(in_)), WithoutTwo(ReadRawPages(folder_ / "out.tif")), 1);
}

TEST_F(OnePage, IsWrittenWhereTheChainEndsInNothing) {
  std::string bytes = test::ReadFile(in_);
  // The link of the last directory is in the last bytes of the chain: an empty file of one page
  // gets one that leads beyond the end.
  SaveOptions alone;
  alone.onlyThisPage = true;
  OpenAt(in_, 4).Save(folder_ / "one.tif", alone);
  bytes = test::ReadFile(folder_ / "one.tif");
  const auto word = [&](size_t at, int size) {
    uint64_t number = 0;
    for (int i = size - 1; i >= 0; --i) {
      number = number << 8 | static_cast<uint8_t>(bytes.at(at + static_cast<size_t>(i)));
    }
    return static_cast<size_t>(number);
  };
  const size_t directory = word(4, 4), link = directory + 2 + 12 * word(directory, 2);
  bytes.replace(link, 4, "\xF0\xFF\xFF\x0F");
  const std::string file = folder_.Write("broken.tif", bytes);
  const Report report = OpenAt(file, 1).Turn(1).Save(folder_ / "out.tif");
  EXPECT_EQ(ReadRawPages(folder_ / "out.tif").chain.size(), 1U);
  for (const Loss& loss : report.losses) EXPECT_EQ(loss.kind, LossKind::pages) << loss.what;
}

}  // namespace
}  // namespace rasterkit
