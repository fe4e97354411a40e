#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/pictures/document/document.h>
#include <rasterkit/runtime/errors.h>

#include "tests/pictures/document/raw_pages.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::ReadRawPages;
using test::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uint32_t kSide = 4, kBeyond = 0x7FFF0000;
constexpr int kMostPages = 65535;

struct Entry {
  uint16_t tag, type;
  uint32_t count, value;
};

/// A classic little-endian file, page by page.
class Chain {
 public:
  Chain() {
    Word(0x4949);
    Word(42);
    Long(0);
  }

  /// A gray page of 4 x 4 pixels.
  Chain& Page(std::vector<Entry> more = {}) { return PageAt(Here(), std::move(more)); }
  /// The same with its strip somewhere else.
  Chain& PageAt(uint32_t strip, std::vector<Entry> more = {}) {
    for (uint32_t i = 0; i < kSide * kSide; ++i) bytes_ += static_cast<char>(i * 5 + Here());
    std::vector<Entry> entries = {
        {256, 4, 1, kSide}, {257, 4, 1, kSide}, {258, 3, 1, 8},
        {259, 3, 1, 1},     {262, 3, 1, 1},     {273, 4, 1, strip},
        {277, 3, 1, 1},     {278, 4, 1, kSide}, {279, 4, 1, kSide * kSide}};
    entries.insert(entries.end(), more.begin(), more.end());
    return Directory(entries);
  }
  Chain& Directory(const std::vector<Entry>& entries) {
    End(Here());
    starts_.push_back(Here());
    Word(entries.size());
    for (const Entry& entry : entries) {
      Word(entry.tag);
      Word(entry.type);
      Long(entry.count);
      Long(entry.value);
    }
    link_ = Here();
    Long(0);
    return *this;
  }
  /// A directory that the chain does not lead to. Returns its place.
  uint32_t Aside() {
    const size_t link = link_;
    const uint32_t at = Here();
    Directory({{401, 3, 1, 7}});
    starts_.pop_back();
    link_ = link;
    End(0);
    return at;
  }
  /// The directory after the last one.
  Chain& End(uint32_t at) {
    for (size_t i = 0; i < 4; ++i) bytes_[link_ + i] = static_cast<char>(at >> 8 * i);
    return *this;
  }
  /// The link of the last directory is not there.
  Chain& CutLink(size_t bytes = 4) {
    bytes_.resize(bytes_.size() - bytes);
    return *this;
  }
  uint32_t At(size_t page) const { return starts_.at(page - 1); }
  const std::string& Text() const { return bytes_; }
  std::vector<uint8_t> Bytes() const { return {bytes_.begin(), bytes_.end()}; }

 private:
  uint32_t Here() const { return static_cast<uint32_t>(bytes_.size()); }
  void Number(uint64_t number, int count) {
    for (int i = 0; i < count; ++i) bytes_ += static_cast<char>(number >> 8 * i);
  }
  void Word(uint64_t number) { Number(number, 2); }
  void Long(uint64_t number) { Number(number, 4); }

  std::string bytes_;
  size_t link_ = 4;
  std::vector<uint32_t> starts_;
};

std::vector<std::string> ReasonsOf(const Report& report, LossKind kind) {
  std::vector<std::string> reasons;
  for (const Loss& loss : report.losses) {
    if (loss.kind == kind) reasons.push_back(loss.what + ": " + loss.why);
  }
  return reasons;
}

class BrokenChain : public testing::TestWithParam<Isolation> {
 protected:
  std::string File(const Chain& chain) const { return folder_.Write("in.tif", chain.Text()); }
  OpenOptions Options(int page = 1) const {
    OpenOptions options;
    options.page = page;
    options.isolation = GetParam();
    return options;
  }
  /// The losses of pages when a page is turned and when the whole document is written are these.
  void ExpectLost(const Chain& chain, const std::string& reason) const {
    const std::string file = File(chain);
    const Report turned = Picture::Open(file, Options()).Turn(1).Save(folder_ / "turned.tif");
    const Document document = Document::Open(file, Options());
    const Report same = document.Save(folder_ / "same.tif");
    const Report png = Picture::Open(file, Options()).Save(folder_ / "one.png");
    if (reason.empty()) {
      EXPECT_THAT(ReasonsOf(turned, LossKind::pages), IsEmpty());
      EXPECT_THAT(ReasonsOf(same, LossKind::pages), IsEmpty());
      EXPECT_THAT(document.Warnings(), IsEmpty());
      return;
    }
    EXPECT_THAT(ReasonsOf(turned, LossKind::pages), ElementsAre(HasSubstr(reason)));
    EXPECT_THAT(ReasonsOf(same, LossKind::pages), ElementsAre(HasSubstr(reason)));
    EXPECT_THAT(ReasonsOf(png, LossKind::pages), testing::Contains(HasSubstr(reason)));
    EXPECT_THAT(document.Warnings(), ElementsAre(HasSubstr(reason)));
    const Report plan = Picture::Open(file, Options()).Turn(1).Plan(folder_ / "turned.tif");
    EXPECT_THAT(ReasonsOf(plan, LossKind::pages), ElementsAre(HasSubstr(reason)));
  }

  const TempFolder folder_;
};

TEST_P(BrokenChain, IsALoss_When_TheNextPageIsBeyondTheEnd) {
  ExpectLost(Chain().Page().End(kBeyond), "the chain of pages ends in damage after page 1");
  ExpectLost(Chain().Page().Page().End(kBeyond), "the chain of pages ends in damage after page 2");
}

TEST_P(BrokenChain, IsALoss_When_TheLastLinkIsCutOff) {
  ExpectLost(Chain().Page().Page().CutLink(2), "ends in damage after page 2");
}

TEST_P(BrokenChain, IsALoss_When_ItLeadsBack) {
  const Chain chain = Chain().Page().Page().Page();
  ExpectLost(Chain(chain).End(chain.At(2)), "leads back to itself after page 3");
}

TEST_P(BrokenChain, IsNone_When_TheFileEndsWithoutALink) {
  ExpectLost(Chain().Page().Page().CutLink(), "");
  ExpectLost(Chain().Page().Page(), "");
}

TEST_P(BrokenChain, IsWrittenWithoutLosses_When_OnePageIsAskedFor) {
  SaveOptions alone;
  alone.onlyThisPage = true;
  const std::string file = File(Chain().Page().Page().End(kBeyond));
  EXPECT_THAT(Picture::Open(file, Options(2)).Save(folder_ / "one.tif", alone).losses, IsEmpty());
}

TEST_P(BrokenChain, IsALoss_When_ThereAreTooManyPages) {
  Chain chain;
  for (int page = 0; page < kMostPages + 5; ++page) {
    chain.Directory({{256, 4, 1, kSide}, {257, 4, 1, kSide}});
  }
  const std::string file = File(chain);
  const Document document = Document::Open(file, Options());
  EXPECT_EQ(document.Pages(), kMostPages);
  EXPECT_THAT(document.Warnings(),
              ElementsAre("pages after page 65535 are not read: the file has too many"));
}

/// A page that is written anew loses what private directories say; a copied one keeps them.
TEST_P(BrokenChain, PrivateDirectories_Should_BeLosses_When_PixelsAreWrittenAnew) {
  Chain chain;
  for (int i = 0; i < 3; ++i) {
    const uint32_t one = chain.Aside(), other = chain.Aside();
    chain.Page({{400, 4, 1, one}, {65000, 13, 1, other}});
  }
  const std::string name = File(chain);
  EXPECT_THAT(Picture::Open(name, Options(2)).Save(folder_ / "same.tif").losses, IsEmpty());
  const Report turned = Picture::Open(name, Options(2)).Turn(1).Save(folder_ / "out.tif");
  EXPECT_THAT(ReasonsOf(turned, LossKind::otherBlock),
              ElementsAre(HasSubstr("TIFF tag 400"), HasSubstr("TIFF tag 65000")));
}

/// The bytes of layers are copied with the pixels that they belong to.
TEST_P(BrokenChain, Layers_Should_BeNoLoss_When_TheyAreCopied) {
  const std::string name = File(Chain().Page({{37724, 7, 4, 0x64636261}}));
  const Report same = Picture::Open(name, Options()).Save(folder_ / "same.tif");
  EXPECT_THAT(same.losses, IsEmpty());
  EXPECT_TRUE(ReadRawPages(folder_ / "same.tif").chain.at(0).tags.contains(37724));
  const Report cropped =
      Picture::Open(name, Options()).Crop({0, 0, 2, 2}).Save(folder_ / "cropped.tif");
  const bool isKept = ReadRawPages(folder_ / "cropped.tif").chain.at(0).tags.contains(37724);
  EXPECT_EQ(ReasonsOf(cropped, LossKind::hiddenPictures).size(), isKept ? 0u : 1u);
  const Report png = Picture::Open(name, Options()).Save(folder_ / "one.png");
  EXPECT_EQ(ReasonsOf(png, LossKind::hiddenPictures).size(), 1u);
}

/// A worker reads the file: what becomes of its pages is the same.
TEST_P(BrokenChain, DamagedPage_Should_NotKeepOthersFromBeingWritten) {
  const std::string name = File(Chain().Page().PageAt(kBeyond).Page());
  const Report report = Picture::Open(name, Options()).Turn(1).Save(folder_ / "out.tif");
  EXPECT_THAT(report.losses, testing::Not(IsEmpty()));
  EXPECT_GE(Document::Open(folder_ / "out.tif").Pages(), 2);
}

TEST_P(BrokenChain, Input_Should_BeNamed_When_NoPageCanBeRead) {
  const std::vector<Entry> noSize = {{259, 3, 1, 1}};
  const std::string name = File(Chain().Page().Directory(noSize).Directory(noSize));
  Document document = Document::Open(name, Options());
  document.Select(std::vector<int>{2, 3});
  try {
    document.Save(folder_ / "out.tif");
    ADD_FAILURE() << "a file without pages";
  } catch (const FormatError& error) {
    EXPECT_EQ(error.File(), name);
    EXPECT_THAT(error.Reason(), HasSubstr("the directory of page 2 has no size"));
  }
}

/// The input is at fault, not the output that would have no page.
TEST_P(BrokenChain, Input_Should_BeNamed_When_NoPageCanBeDecoded) {
  const std::string name = File(Chain().PageAt(kBeyond).PageAt(kBeyond));
  try {
    Document::Open(name, Options()).Save(folder_ / "out.tif");
    ADD_FAILURE() << "a file without pages";
  } catch (const FormatError& error) {
    EXPECT_EQ(error.File(), name);
    EXPECT_THAT(error.Reason(), HasSubstr("page 1: it is damaged: "));
  }
}

INSTANTIATE_TEST_SUITE_P(All, BrokenChain, testing::Values(Isolation::none, Isolation::process),
                         [](const auto& info) {
                           return info.param == Isolation::none ? "here" : "apart";
                         });

/// Counts what is read.
class CountingStream : public TStream {
 public:
  CountingStream(const std::vector<uint8_t>& bytes, uint64_t& count)
      : stream_(bytes), count_(count) {}
  size_t Read(std::span<uint8_t> target) override {
    const size_t read = stream_.Read(target);
    count_ += read;
    return read;
  }
  void Write(std::span<const uint8_t>) override {}
  uint64_t Position() const override { return stream_.Position(); }
  void SetPosition(uint64_t position) override { stream_.SetPosition(position); }
  uint64_t Size() const override { return stream_.Size(); }

 private:
  TSpanStream stream_;
  uint64_t& count_;
};

/// The chain is walked once, not once for each page.
TEST(SharedPages, Should_ReadInProportionToThePages) {
  constexpr int kPages = 400;
  Chain chain;
  for (int page = 0; page < kPages; ++page) chain.Page();
  const std::vector<uint8_t> bytes = chain.Bytes();
  uint64_t count = 0;
  SharedPages pages([&] { return std::make_unique<CountingStream>(bytes, count); });
  for (int page = 2; page <= kPages; ++page) {
    EXPECT_EQ(pages.Header(PictureType::tiff, page).pages, kPages);
  }
  constexpr uint64_t kMostOfPage = 8192;
  EXPECT_LT(count, kPages * kMostOfPage);
  EXPECT_THROW(pages.Header(PictureType::tiff, kPages + 1), RangeError);
  EXPECT_THROW(pages.Header(PictureType::png, 2), RangeError);
}

}  // namespace
}  // namespace rasterkit
