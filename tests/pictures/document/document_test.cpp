#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/document/document.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "tests/pictures/document/made_document.h"
#include "tests/pictures/document/raw_pages.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::RawDocument;
using test::ReadRawPages;
using test::TempFolder;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DocumentTest : public testing::Test {
 protected:
  void SetUp() override { test::WriteMadeDocument(in_, "wl"); }

  std::string SavePicture(const std::string& name, TPixelFormat format) {
    Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(format, 31, 21)))
        .Save(folder_ / name);
    return folder_ / name;
  }
  static std::vector<int> WidthsOf(const std::string& file) {
    std::vector<int> widths;
    for (const DocumentPage& page : Document::Open(file).List()) widths.push_back(page.width);
    return widths;
  }

  const TempFolder folder_;
  const std::string in_ = folder_ / "in.tif", out_ = folder_ / "out.tif";
};

TEST_F(DocumentTest, ListsItsPages) {
  const Document document = Document::Open(in_);
  EXPECT_EQ(document.Pages(), 5);
  const std::vector<DocumentPage> list = document.List();
  EXPECT_EQ(list[1].width, 160);
  EXPECT_EQ(list[1].smallerCopies, 1);
  EXPECT_EQ(std::get<TiffForm>(list[1].form).tileWidth, 32U);
  EXPECT_EQ(list[2].masks, 1);
  EXPECT_EQ(list[2].layout.bits, 1);
  EXPECT_NEAR(list[2].resolution.y, 98, 1e-3);
  EXPECT_EQ(list[3].layout.bits, 16);
  for (const DocumentPage& page : list) {
    EXPECT_EQ(page.file, in_);
    EXPECT_GT(page.bytes, 0U);
    EXPECT_EQ(page.error, "");
  }
  EXPECT_GE(list[0].bytes, 120U * 90);
  EXPECT_LT(list[0].bytes, 120U * 90 + 4096);
}

TEST_F(DocumentTest, KeepsAllPages) {
  const Report report = Document::Open(in_).Save(out_);
  EXPECT_TRUE(report.isCopied);
  EXPECT_THAT(report.losses, IsEmpty());
  EXPECT_EQ(ReadRawPages(out_).chain, ReadRawPages(in_).chain);
}

TEST_F(DocumentTest, MovesPages) {
  Document document = Document::Open(in_);
  document.Move(1, 5);
  document.Save(out_);
  EXPECT_THAT(WidthsOf(out_), ElementsAre(160, 200, 60, 96, 120));
  document.Move(5, 1).Move(4, 2);
  document.Save(out_);
  EXPECT_THAT(WidthsOf(out_), ElementsAre(120, 60, 160, 200, 96));
  document.Remove(2).Remove(4);
  document.Save(out_);
  EXPECT_THAT(WidthsOf(out_), ElementsAre(120, 160, 200));
  document.Select(std::vector<int>{3, 3, 1});
  document.Save(out_);
  EXPECT_THAT(WidthsOf(out_), ElementsAre(200, 200, 120));
  EXPECT_EQ(ReadRawPages(out_).chain.at(0).blocks, ReadRawPages(in_).chain.at(2).blocks);
  // Its mask goes with each of the two.
  EXPECT_EQ(ReadRawPages(out_).chain.at(1).blocks, ReadRawPages(in_).chain.at(3).blocks);
  EXPECT_EQ(ReadRawPages(out_).chain.at(3).blocks, ReadRawPages(in_).chain.at(3).blocks);
  document.Insert(2, document);
  EXPECT_EQ(document.Pages(), 6);
}

TEST_F(DocumentTest, NumbersMovedPages) {
  const auto numbers = [](const std::string& file) {
    std::vector<std::vector<int>> found;
    for (const auto& page : ReadRawPages(file).chain) {
      const auto tag = page.tags.find(297);
      if (tag == page.tags.end()) continue;
      const std::string& bytes = tag->second.bytes;
      found.push_back({bytes[0] + 256 * bytes[1], bytes[2] + 256 * bytes[3]});
    }
    return found;
  };
  using Numbers = std::vector<std::vector<int>>;
  EXPECT_EQ(numbers(in_), (Numbers{{0, 5}, {1, 5}, {2, 5}}));
  Document document = Document::Open(in_);
  document.Select(std::vector<int>{3, 4, 1});
  document.Save(out_);
  EXPECT_EQ(numbers(out_), (Numbers{{0, 3}, {2, 3}}));
  document = Document::Open(in_);
  document.Replace(2, document.Page(2).Turn(1));
  document.Save(out_);
  EXPECT_EQ(numbers(out_), numbers(in_));
}

TEST_F(DocumentTest, RefusesPagesThatAreNotThere) {
  Document document = Document::Open(in_);
  EXPECT_THROW(document.Page(0), RangeError);
  EXPECT_THROW(document.Page(6), RangeError);
  EXPECT_THROW(document.Remove(6), RangeError);
  EXPECT_THROW(document.Move(1, 6), RangeError);
  EXPECT_THROW(document.Insert(7, document), RangeError);
  EXPECT_THROW(document.Select(std::vector<int>{1, 6}), RangeError);
  EXPECT_EQ(document.Pages(), 5);
  EXPECT_THROW(Document().Save(out_), RangeError);
  EXPECT_THROW(document.Save(folder_ / "out.png"), UnsupportedError);
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"in.tif"});
}

TEST_F(DocumentTest, JoinsFilesOfAnyType) {
  Document document;
  document.Append(Document::Open(SavePicture("plan.png", pf1bit)))
      .Append(Document::Open(in_))
      .Append(Document::Open(SavePicture("photo.jpg", pf24bit)))
      .Append(Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf24bit, 7, 5))));
  const Report plan = document.Plan(out_);
  const Report report = document.Save(out_);
  EXPECT_THAT(report.losses, IsEmpty());
  EXPECT_LE(report.bytes, plan.bytes);
  EXPECT_THAT(WidthsOf(out_), ElementsAre(31, 120, 160, 200, 60, 96, 31, 7));
  const RawDocument before = ReadRawPages(in_), after = ReadRawPages(out_);
  EXPECT_EQ(after.chain.at(0).Number(259), 4U);
  EXPECT_EQ(after.chain.at(7).Number(259), 8U);
  for (size_t i = 0; i < before.chain.size(); ++i) {
    EXPECT_EQ(after.chain.at(i + 1).blocks, before.chain[i].blocks);
    EXPECT_EQ(after.chain.at(i + 1).below, before.chain[i].below);
  }
  const Samples photo = Picture::Open(folder_ / "photo.jpg").Numbers();
  const Samples page = Document::Open(out_).Page(7).Numbers();
  for (int y = 0; y < photo.Height(); ++y) {
    EXPECT_TRUE(std::equal(photo.Row(y), photo.Row(y) + photo.Stride(), page.Row(y)));
  }
}

test::RawPage Unnumbered(test::RawPage page) {
  page.tags.erase(297);
  return page;
}

TEST_F(DocumentTest, DecodesPagesOfAnotherOrderOfBytes) {
  test::WriteMadeDocument(folder_ / "big.tif", "wb");
  for (const Isolation isolation : {Isolation::none, Isolation::process}) {
    OpenOptions options;
    options.isolation = isolation;
    Document document = Document::Open(in_, options);
    document.Append(Document::Open(folder_ / "big.tif", options));
    const Report report = document.Save(out_);
    EXPECT_THAT(report.losses, IsEmpty());
    EXPECT_FALSE(report.isCopied);
    EXPECT_THAT(report.notes,
                Contains("page 9: decoded and encoded anew: its numbers have another order of "
                         "bytes than the file"));
    const RawDocument after = ReadRawPages(out_);
    EXPECT_FALSE(after.isBigEndian);
    ASSERT_EQ(after.chain.size(), 12U);
    const RawDocument before = ReadRawPages(in_), other = ReadRawPages(folder_ / "big.tif");
    for (const int page : {1, 2, 3, 5}) {
      const auto index = static_cast<size_t>(test::ChainIndex(page));
      EXPECT_EQ(Unnumbered(after.chain[index]), Unnumbered(before.chain[index]));
      EXPECT_EQ(after.chain[index + 6].blocks, other.chain[index].blocks) << page;
    }
    const Samples expected = Document::Open(in_).Page(4).Numbers();
    const Samples numbers = Document::Open(out_).Page(9).Numbers();
    for (int y = 0; y < expected.Height(); ++y) {
      ASSERT_TRUE(std::equal(expected.Row(y), expected.Row(y) + expected.Stride(), numbers.Row(y)));
    }
  }
}

TEST_F(DocumentTest, SplitsAndJoinsToTheSame) {
  const RawDocument before = ReadRawPages(in_);
  Document joined;
  for (int page = 1; page <= 5; ++page) {
    Document one = Document::Open(in_);
    one.Select(std::vector<int>{page});
    const std::string file = folder_ / ("page" + std::to_string(page) + ".tif");
    one.Save(file);
    const RawDocument alone = ReadRawPages(file);
    EXPECT_EQ(alone.chain.at(0).blocks,
              before.chain.at(static_cast<size_t>(test::ChainIndex(page))).blocks);
    joined.Append(Document::Open(file));
  }
  joined.Save(out_);
  EXPECT_EQ(ReadRawPages(out_).chain, before.chain);
}

TEST_F(DocumentTest, WritesOnePageAsAnyFormat) {
  Document one = Document::Open(in_);
  one.Select(std::vector<int>{2});
  const Report report = one.Save(folder_ / "two.png");
  EXPECT_EQ(report.width, 160);
  EXPECT_EQ(Picture::Open(folder_ / "two.png").Width(), 160);
}

TEST_F(DocumentTest, NamesThePageOfALoss) {
  Document document = Document::Open(in_);
  TMemoryStream stream;
  document.Replace(3, document.Page(3).Turn(1)).Save(stream);
  const std::string file = folder_.Write("stream.tif", stream.Bytes());
  EXPECT_THAT(WidthsOf(file), ElementsAre(120, 160, 100, 60, 96));
  std::string broken = test::ReadFile(in_);
  const std::string block = ReadRawPages(in_).chain.at(1).blocks.at(1);
  broken.replace(broken.find(block), block.size(), std::string(block.size(), '\xFF'));
  Document damaged = Document::Open(folder_.Write("broken.tif", broken));
  const Report report = damaged.Replace(2, damaged.Page(2).Turn(1)).Save(out_);
  ASSERT_THAT(report.losses, testing::Not(IsEmpty()));
  EXPECT_EQ(report.losses[0].kind, LossKind::damage);
  EXPECT_THAT(report.losses[0].what, HasSubstr("page 2: "));
}

TEST_F(DocumentTest, WaitsForItsName) {
  Document document = Document::Open(in_);
  const std::string before = test::ReadFile(in_);
  document.Remove(1);
  {
    const PendingSave dropped = document.Prepare(in_);
    EXPECT_EQ(test::ReadFile(in_), before);
  }
  EXPECT_EQ(test::ReadFile(in_), before);
  PendingSave save = document.Prepare(in_);
  save.Commit();
  EXPECT_THAT(WidthsOf(in_), ElementsAre(160, 200, 60, 96));
  SaveOptions careful;
  careful.mayReplace = false;
  EXPECT_THROW(document.Save(in_, careful), FileExistsError);
}

}  // namespace
}  // namespace rasterkit
