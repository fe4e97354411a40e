// Forged documents: circles, shared and overlapping bytes, long chains, missing sizes. An error of
// the house or a file of bounded size, after bounded work.

#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiff.h>

#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/document/document_support.h"
#include "tests/codecs/tiff/document/endless_stream.h"
#include "tests/codecs/tiff/pages/page_pixels.h"

namespace rasterkit::test {
namespace {

/// A classic little-endian file put together by hand.
class RawDocument {
 public:
  RawDocument() { Words({0x4949, 42}).Long(8); }

  size_t Size() const { return bytes_.size(); }
  RawDocument& Words(std::initializer_list<int> words) {
    for (const int word : words) Add(static_cast<uint64_t>(word), 2);
    return *this;
  }
  RawDocument& Long(uint64_t number) {
    Add(number, 4);
    return *this;
  }
  RawDocument& Entry(int tag, int type, uint64_t count, uint64_t value) {
    return Words({tag, type}).Long(count).Long(value);
  }
  /// A directory of a gray picture with one strip.
  RawDocument& Page(uint64_t stripAt, uint64_t stripBytes, uint64_t next,
                    uint64_t subfileType = 0) {
    Words({8}).Entry(254, 4, 1, subfileType).Entry(256, 4, 1, 4).Entry(257, 4, 1, 4);
    Entry(258, 3, 1, 8).Entry(259, 3, 1, 5).Entry(262, 3, 1, 1);
    return Entry(273, 4, 1, stripAt).Entry(279, 4, 1, stripBytes).Long(next);
  }
  static constexpr uint64_t kPageBytes = 2 + 8 * 12 + 4;
  RawDocument& Fill(size_t count) {
    for (size_t i = 0; i < count; i++) bytes_.push_back(static_cast<uint8_t>(i * 7 + i / 251));
    return *this;
  }
  const ByteList& Bytes() const { return bytes_; }

 private:
  void Add(uint64_t number, int count) {
    for (int i = 0; i < count; i++) bytes_.push_back(static_cast<uint8_t>(number >> 8 * i));
  }
  ByteList bytes_;
};

int PagesOf(const ByteList& bytes) {
  TSpanStream stream(bytes);
  return CountTiffPages(stream);
}

/// Copies all pages; the size of the file, or nothing where one is refused.
std::optional<size_t> SizeOfCopies(const ByteList& bytes, std::string* why = nullptr) {
  TSpanStream stream(bytes);
  const TiffDocumentReader source(stream);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  try {
    for (int page = 1; page <= source.Pages(); page++) writer.CopyPage(source, page);
    writer.Finish();
  } catch (const Error& error) {
    if (why) *why = error.what();
    EXPECT_THROW(writer.Finish(), Error);
    return std::nullopt;
  }
  return target.Size();
}

TEST(HostileTiffDocument, Should_EndTheChain_When_ItIsCircular) {
  RawDocument file;
  const uint64_t second = 8 + RawDocument::kPageBytes;
  file.Page(8, 20, second).Page(8, 20, 8);
  EXPECT_EQ(PagesOf(file.Bytes()), 2);
  EXPECT_EQ(ReadMade(CopiedPages(file.Bytes(), {2, 1}, {})).size(), 2u);
  RawDocument own;
  own.Page(8, 20, 8);
  EXPECT_EQ(PagesOf(own.Bytes()), 1);
}

TEST(HostileTiffDocument, Should_CountAtMost65535_When_ChainIsLonger) {
  RawDocument file;
  constexpr uint64_t kPages = 70000;
  for (uint64_t i = 0; i < kPages; i++) {
    file.Page(8, 20, i + 1 < kPages ? 8 + (i + 1) * RawDocument::kPageBytes : 0);
  }
  EXPECT_EQ(PagesOf(file.Bytes()), 65535);
}

/// Every page has the same large strip and the same large value.
TEST(HostileTiffDocument, Should_ShareBytes_When_PagesShareThem) {
  RawDocument file;
  constexpr uint64_t kPages = 3000, kStripBytes = 200000;
  const uint64_t stripAt = 8 + kPages * RawDocument::kPageBytes;
  for (uint64_t i = 0; i < kPages; i++) {
    file.Page(stripAt, kStripBytes, i + 1 < kPages ? 8 + (i + 1) * RawDocument::kPageBytes : 0);
  }
  file.Fill(kStripBytes);
  const auto size = SizeOfCopies(file.Bytes());
  ASSERT_TRUE(size.has_value());
  EXPECT_LE(*size, file.Size() + 4096);
  // Three copies of one page are three pages with bytes of their own.
  const ByteList thrice = CopiedPages(file.Bytes(), {5, 5, 5}, {});
  EXPECT_GE(thrice.size(), 3 * kStripBytes);
  const std::vector<MadeDirectory> pages = ReadMade(thrice);
  ASSERT_EQ(pages.size(), 3u);
  for (const MadeDirectory& page : pages) EXPECT_TRUE(SameDirectory(pages[0], page));
}

TEST(HostileTiffDocument, Should_ShareLargeValues_When_PagesShareThem) {
  constexpr uint64_t kPages = 2000, kValueBytes = 100000, kBytes = 2 + 9 * 12 + 4;
  RawDocument file;
  const uint64_t valueAt = 8 + kPages * kBytes;
  for (uint64_t i = 0; i < kPages; i++) {
    file.Words({9}).Entry(256, 4, 1, 4).Entry(257, 4, 1, 4).Entry(258, 3, 1, 8);
    file.Entry(259, 3, 1, 5).Entry(262, 3, 1, 1).Entry(273, 4, 1, 8).Entry(279, 4, 1, 20);
    file.Entry(700, 1, kValueBytes, valueAt).Entry(34675, 7, kValueBytes, valueAt);
    file.Long(i + 1 < kPages ? 8 + (i + 1) * kBytes : 0);
  }
  file.Fill(kValueBytes);
  const auto size = SizeOfCopies(file.Bytes());
  ASSERT_TRUE(size.has_value());
  EXPECT_LE(*size, 2 * file.Size());
}

/// Strips that overlap in part cannot be shared: the second limit counts.
TEST(HostileTiffDocument, Should_Refuse_When_PagesOverlapInPart) {
  RawDocument file;
  constexpr uint64_t kPages = 3000, kStripBytes = 200000;
  const uint64_t stripAt = 8 + kPages * RawDocument::kPageBytes;
  for (uint64_t i = 0; i < kPages; i++) {
    file.Page(stripAt + 8 * i, kStripBytes,
              i + 1 < kPages ? 8 + (i + 1) * RawDocument::kPageBytes : 0);
  }
  file.Fill(kStripBytes + 8 * kPages);
  std::string why;
  EXPECT_EQ(SizeOfCopies(file.Bytes(), &why), std::nullopt);
  EXPECT_THAT(why, testing::HasSubstr("share"));
}

/// Thousands of directories that lie in each other, each with thousands of entries.
TEST(HostileTiffDocument, Should_Refuse_When_DirectoriesOverlap) {
  constexpr size_t kBytes = 600000;
  ByteList bytes = RawDocument().Fill(kBytes).Bytes();
  const auto put = [&](size_t at, uint64_t number, int count) {
    for (int i = 0; i < count; i++)
      bytes[at + static_cast<size_t>(i)] = static_cast<uint8_t>(number >> 8 * i);
  };
  constexpr size_t kEntries = 20000;
  size_t pages = 0;
  for (size_t at = 8; pages < 5000; at += 14, pages++) {
    put(at, kEntries, 2);
    put(at + 2 + kEntries * 12, at + 14, 4);
  }
  const int count = PagesOf(bytes);
  EXPECT_GT(count, 100);
  EXPECT_EQ(SizeOfCopies(bytes), std::nullopt);
}

TEST(HostileTiffDocument, Should_DropThePointer_When_DirectoryLeadsBack) {
  RawDocument file;
  file.Words({6}).Entry(256, 4, 1, 4).Entry(257, 4, 1, 4).Entry(258, 3, 1, 8);
  file.Entry(273, 4, 1, 8).Entry(279, 4, 1, 16).Entry(330, 4, 1, 8).Long(0);
  TSpanStream stream(file.Bytes());
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  const WrittenPicture written = writer.CopyPage(stream, 1);
  writer.Finish();
  ASSERT_EQ(written.changes.losses.size(), 1u);
  EXPECT_EQ(written.changes.losses[0].what, "TIFF tag 330");
  const std::vector<MadeDirectory> pages = ReadMade(target.TakeBytes());
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_TRUE(pages[0].below.empty());
}

/// Tag 330 lists one directory, which has a link to another one.
TEST(HostileTiffDocument, Should_SayWhatIsMissed_When_DirectoryBelowHasANextOne) {
  for (const bool isOfChain : {false, true}) {
    RawDocument file;
    const uint64_t below = 8 + RawDocument::kPageBytes, next = below + RawDocument::kPageBytes;
    file.Words({8}).Entry(254, 4, 1, 0).Entry(256, 4, 1, 4).Entry(257, 4, 1, 4);
    file.Entry(258, 3, 1, 8).Entry(259, 3, 1, 5).Entry(273, 4, 1, 8).Entry(279, 4, 1, 16);
    file.Entry(330, 4, 1, below).Long(isOfChain ? next : 0);
    file.Page(8, 20, next, 1).Page(8, 20, 0);
    TSpanStream stream(file.Bytes());
    TMemoryStream target;
    TiffDocumentWriter writer(target, false, false);
    EXPECT_EQ(writer.CopyPage(stream, 1).changes.losses.size(), isOfChain ? 0u : 1u);
    writer.Finish();
    EXPECT_EQ(ReadMade(target.TakeBytes()).at(0).below.at(330).size(), 1u);
  }
}

TEST(HostileTiffDocument, Should_Refuse_When_DirectoriesLieTooDeep) {
  RawDocument file;
  constexpr uint64_t kDeep = 50000, kBytes = 2 + 12 + 4;
  file.Page(8, 20, 0);
  RawDocument deep;
  deep.Words({6}).Entry(256, 4, 1, 4).Entry(257, 4, 1, 4).Entry(258, 3, 1, 8);
  deep.Entry(273, 4, 1, 8).Entry(279, 4, 1, 16);
  const uint64_t first = 8 + 2 + 6 * 12 + 4;
  deep.Entry(330, 4, 1, first).Long(0);
  for (uint64_t i = 0; i < kDeep; i++) {
    deep.Words({1}).Entry(330, 4, 1, first + (i + 1) * kBytes).Long(0);
  }
  std::string why;
  EXPECT_EQ(SizeOfCopies(deep.Bytes(), &why), std::nullopt);
  EXPECT_THAT(why, testing::HasSubstr("directories"));
}

/// A strip without a size would reach over all other pages.
TEST(HostileTiffDocument, Should_Refuse_When_SizeIsMissingAndPagesFollow) {
  RawDocument file;
  const uint64_t second = 8 + RawDocument::kPageBytes;
  file.Page(second + RawDocument::kPageBytes, 0, second);
  file.Page(second + RawDocument::kPageBytes, 50, 0).Fill(100);
  std::string why;
  TSpanStream stream(file.Bytes());
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  EXPECT_THROW(writer.CopyPage(stream, 1), FormatError);
  // Nothing was written, so that other pages can follow.
  writer.CopyPage(stream, 2);
  writer.Finish();
  const std::vector<MadeDirectory> pages = ReadMade(target.TakeBytes());
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_EQ(pages[0].blocks.at(0).size(), 50u);
}

TEST(HostileTiffDocument, Should_LeaveNothingOfAPage_When_ItFailed) {
  std::mt19937 random(41);
  MadeDirectory damaged = RandomPage(random), sound = RandomPage(random);
  damaged.isTiled = sound.isTiled = false;
  damaged.blocks.push_back(RandomBytes(100, random));
  ByteList bytes = WriteMade({damaged, sound}, false, false, random);
  // The last size becomes too large.
  ByteList sizes;
  for (const ByteList& block : damaged.blocks) {
    for (int i = 0; i < (damaged.countsType == 3 ? 2 : 4); i++) {
      sizes.push_back(static_cast<uint8_t>(block.size() >> 8 * i));
    }
  }
  const auto at = std::search(bytes.begin(), bytes.end(), sizes.begin(), sizes.end());
  ASSERT_NE(at, bytes.end());
  at[static_cast<ptrdiff_t>(sizes.size()) - (damaged.countsType == 3 ? 1 : 2)] = 0xFF;
  TSpanStream stream(bytes);
  const TiffDocumentReader source(stream);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  EXPECT_THROW(writer.CopyPage(source, 1), FormatError);
  writer.CopyPage(source, 2);
  writer.Finish();
  const ByteList result = target.TakeBytes();
  for (const ByteList& one : LongBytesOf(damaged)) EXPECT_FALSE(Contains(result, one));
  const std::vector<MadeDirectory> pages = ReadMade(result);
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_TRUE(SameDirectory(sound, pages[0]));
}

TEST(HostileTiffDocument, Should_RefuseAtOnce_When_ClassicFileWouldExceed4GiB) {
  RawDocument file;
  constexpr uint64_t kHalf = uint64_t{3} << 30;
  const uint64_t second = 8 + RawDocument::kPageBytes;
  file.Page(1000, 3000000000u, second).Page(1300000000u, 3000000000u, 0);
  EndlessStream stream(file.Bytes(), uint64_t{6} << 30);
  TiffDocumentReader source(stream);
  EXPECT_GT(source.PageBytes(1) + source.PageBytes(2), UINT32_MAX);
  EXPECT_LT(source.PageBytes(1), kHalf);
  // The strips of both pages reach over 4 GiB.
  RawDocument large;
  large.Words({8}).Entry(256, 4, 1, 4).Entry(257, 4, 1, 4).Entry(258, 3, 1, 8);
  large.Entry(259, 3, 1, 5).Entry(262, 3, 1, 1).Entry(277, 3, 1, 1);
  const uint64_t lists = 8 + 2 + 8 * 12 + 4;
  large.Entry(273, 4, 2, lists).Entry(279, 4, 2, lists + 8).Long(0);
  large.Long(1000).Long(3000000000u).Long(2000000000u).Long(2500000000u);
  EndlessStream wide(large.Bytes(), uint64_t{6} << 30);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  EXPECT_THROW(writer.CopyPage(wide, 1), LimitError);
  EXPECT_LT(target.Size(), 1000u);
  EXPECT_THROW(writer.Finish(), Error);
}

/// A first directory that says that it is a smaller copy is a page all the same.
TEST(HostileTiffDocument, Should_StayAPage_When_FirstDirectoryIsASmallerCopy) {
  std::mt19937 random(42);
  const MadeDirectory first = RandomRelative(1, random), second = RandomPage(random);
  const ByteList bytes = WriteMade({first, second}, false, true, random);
  EXPECT_EQ(PagesOf(bytes), 2);
  const std::vector<MadeDirectory> turned = ReadMade(CopiedPages(bytes, {2, 1}, {}));
  ASSERT_EQ(turned.size(), 2u);
  EXPECT_TRUE(SameDirectory(second, turned[0]));
  EXPECT_EQ(turned[1].Number(254), 2u);
  EXPECT_EQ(PagesOf(CopiedPages(bytes, {2, 1}, {})), 2);
  EXPECT_TRUE(SameDirectory(first, ReadMade(CopiedPages(bytes, {1}, {}))[0]));
}

/// The place of a list of types is no type: it changes with the file.
TEST(HostileTiffDocument, Should_StayAPage_When_ItsTypeIsAList) {
  constexpr uint64_t kSecondAt = 8 + RawDocument::kPageBytes;
  constexpr uint64_t kListAt = kSecondAt + RawDocument::kPageBytes, kStripAt = kListAt + 8;
  static_assert((kListAt & 4) != 0);
  RawDocument file;
  file.Page(kStripAt, 16, kSecondAt);
  file.Words({8}).Entry(254, 4, 2, kListAt).Entry(256, 4, 1, 4).Entry(257, 4, 1, 4);
  file.Entry(258, 3, 1, 8).Entry(259, 3, 1, 5).Entry(262, 3, 1, 1);
  file.Entry(273, 4, 1, kStripAt).Entry(279, 4, 1, 16).Long(0);
  file.Long(2).Long(2).Fill(16);
  EXPECT_EQ(PagesOf(file.Bytes()), 2);
  EXPECT_EQ(PagesOf(CopiedPages(file.Bytes(), {2, 1, 2, 1, 2}, {})), 5);
}

/// A walk needs about one read for each directory.
TEST(HostileTiffDocument, Should_ReadLittle_When_PagesAreCounted) {
  RawDocument file;
  constexpr uint64_t kPages = 20000;
  for (uint64_t i = 0; i < kPages; i++) {
    file.Page(8, 20, i + 1 < kPages ? 8 + (i + 1) * RawDocument::kPageBytes : 0,
              i % 4 == 3 ? 1 : 0);
  }
  EndlessStream stream(file.Bytes(), file.Size());
  const TiffDocumentReader source(stream);
  EXPECT_EQ(source.Pages(), 15000);
  EXPECT_LE(stream.reads, 20000 + 10);
  // A header of a page needs no second walk.
  stream.reads = 0;
  for (const int page : {1, 7000, 15000}) {
    EXPECT_EQ(ReadTiffHeader(*source.PageStream(page)).pages, 15000);
  }
  EXPECT_LE(stream.reads, 600);
}

TEST(HostileTiffDocument, Should_Refuse_When_FileIsNone) {
  for (const ByteList& bytes :
       {ByteList{}, ByteList{'I', 'I', 42, 0}, ByteList{'I', 'I', 42, 0, 8, 0, 0, 0},
        ByteList{'M', 'M', 0, 43, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 16}}) {
    TSpanStream stream(bytes);
    EXPECT_THROW(CountTiffPages(stream), FormatError);
    EXPECT_THROW(TiffPageStream(stream, 1), FormatError);
    EXPECT_THROW(TiffPageBytes(stream, 1), FormatError);
  }
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  EXPECT_THROW(writer.Finish(), FormatError);
}

/// Bytes changed at random: an error of the house, or a document that can be copied again.
TEST(HostileTiffDocument, Should_StayBounded_When_BytesAreChanged) {
  std::mt19937 random(20281);
  int copied = 0, refused = 0;
  for (int round = 0; round < 1500; round++) {
    const FileKind kind = kFileKinds[round % 4];
    ByteList bytes = WriteMade({RichPage(random), RandomRelative(4, random), RandomPage(random)},
                               kind.isBig, kind.isBigEndian, random);
    for (size_t changes = 1 + random() % 4; changes > 0; changes--) {
      bytes[random() % bytes.size()] ^= static_cast<uint8_t>(1u << random() % 8);
    }
    if (round % 5 == 0) bytes.resize(bytes.size() - random() % (bytes.size() / 2));
    try {
      TSpanStream stream(bytes);
      const TiffDocumentReader source(stream);
      for (int page = source.Pages(); page >= 1; page--) {
        TMemoryStream target;
        TiffDocumentWriter writer(target, kind.isBig, kind.isBigEndian);
        try {
          writer.CopyPage(source, page);
          writer.Finish();
          EXPECT_LE(target.Size(), 8 * bytes.size() + 4096) << "round " << round;
          TSpanStream again(target.Bytes());
          EXPECT_EQ(CountTiffPages(again), 1);
          copied++;
        } catch (const Error&) {
          refused++;
        }
      }
    } catch (const Error&) {
      refused++;
    }
  }
  EXPECT_GT(copied, 1000);
  EXPECT_GT(refused, 100);
}

}  // namespace
}  // namespace rasterkit::test
