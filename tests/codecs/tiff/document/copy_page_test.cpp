// Copied pages against a reader of the test's own: every block, every tag, every directory below,
// in files of both orders of bytes and both widths; nothing of the other pages.

#include <algorithm>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/document/document_support.h"

namespace rasterkit::test {
namespace {

/// A page with the smaller copies and masks after it.
struct MadePage {
  std::vector<MadeDirectory> directories;
};

std::vector<MadePage> RandomPages(size_t count, std::mt19937& random) {
  std::vector<MadePage> pages;
  for (size_t i = 0; i < count; i++) {
    MadePage page;
    page.directories.push_back(random() % 3 == 0 ? RichPage(random) : RandomPage(random));
    if (random() % 2 == 0) page.directories[0].Set(254, 4, {2});
    for (size_t relatives = random() % 4; relatives > 0; relatives--) {
      page.directories.push_back(RandomRelative(random() % 2 == 0 ? 1 : 4, random));
    }
    pages.push_back(std::move(page));
  }
  return pages;
}

std::vector<MadeDirectory> ChainOf(const std::vector<MadePage>& pages,
                                   const std::vector<int>& numbers) {
  std::vector<MadeDirectory> chain;
  for (const int number : numbers) {
    const auto& directories = pages[static_cast<size_t>(number) - 1].directories;
    chain.insert(chain.end(), directories.begin(), directories.end());
  }
  return chain;
}

std::vector<int> AllNumbers(size_t count) {
  std::vector<int> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

void ExpectChain(const std::vector<MadeDirectory>& expected, const ByteList& bytes) {
  const std::vector<MadeDirectory> actual = ReadMade(bytes);
  ASSERT_EQ(actual.size(), expected.size());
  for (size_t i = 0; i < expected.size(); i++) {
    ASSERT_TRUE(SameDirectory(expected[i], actual[i])) << "directory " << i;
  }
}

/// Neither the beginning nor the end of any of them.
void ExpectAbsent(const std::vector<ByteList>& dropped, const ByteList& bytes) {
  constexpr ptrdiff_t kPart = 12;
  for (const ByteList& one : dropped) {
    EXPECT_FALSE(Contains(bytes, {one.begin(), one.begin() + kPart}));
    EXPECT_FALSE(Contains(bytes, {one.end() - kPart, one.end()}));
  }
}

TEST(CopyTiffPage, Should_KeepEveryBlockAndTag_When_PagesAreInAnyOrder) {
  std::mt19937 random(20261);
  for (int round = 0; round < 60; round++) {
    const FileKind from = kFileKinds[round % 4];
    // Samples of up to 8 bits fit every order.
    const FileKind to = kFileKinds[random() % 4];
    SCOPED_TRACE("round " + std::to_string(round) + ", " + NameOf(from) + " to " + NameOf(to));
    const std::vector<MadePage> pages = RandomPages(1 + random() % 6, random);
    std::vector<ByteList> gaps;
    const ByteList bytes = WriteMade(ChainOf(pages, AllNumbers(pages.size())), from.isBig,
                                     from.isBigEndian, random, &gaps);
    std::vector<int> kept = AllNumbers(pages.size());
    std::shuffle(kept.begin(), kept.end(), random);
    kept.resize(1 + random() % kept.size());
    const ByteList copy = CopiedPages(bytes, kept, to);
    ASSERT_NO_FATAL_FAILURE(ExpectChain(ChainOf(pages, kept), copy));
    ExpectAbsent(gaps, copy);
    for (const int number : AllNumbers(pages.size())) {
      if (std::count(kept.begin(), kept.end(), number) != 0) continue;
      for (const MadeDirectory& one : ChainOf(pages, {number})) {
        ExpectAbsent(LongBytesOf(one), copy);
      }
    }
    // What is kept would be found.
    EXPECT_TRUE(Contains(copy, ChainOf(pages, kept)[0].blocks[0]));
  }
}

/// Tag 0 of a GPS directory is its version.
TEST(CopyTiffPage, Should_KeepTagOfNumberZero_When_DirectoryIsOfPositions) {
  std::mt19937 random(20268);
  MadeDirectory page = RandomPage(random), gps;
  gps.SetBytes(0, 1, {2, 3, 0, 0}).SetBytes(1, 2, {'N', 0});
  page.below[34853] = {gps};
  page.pointerTypes[34853] = 4;
  for (const FileKind& kind : kFileKinds) {
    const ByteList bytes = WriteMade({page}, kind.isBig, kind.isBigEndian, random);
    ExpectChain({page}, CopiedPages(bytes, {1}, kind));
  }
}

TEST(CopyTiffPage, Should_GiveTheSameFile_When_CopyIsCopied) {
  std::mt19937 random(20262);
  for (const FileKind& kind : kFileKinds) {
    const std::vector<MadePage> pages = RandomPages(4, random);
    const ByteList bytes =
        WriteMade(ChainOf(pages, AllNumbers(4)), kind.isBig, kind.isBigEndian, random);
    const ByteList once = CopiedPages(bytes, AllNumbers(4), kind);
    EXPECT_EQ(CopiedPages(once, AllNumbers(4), kind), once) << NameOf(kind);
  }
}

TEST(CopyTiffPage, Should_KeepTypes_When_WidthStays) {
  std::mt19937 random(20263);
  for (const FileKind& kind : kFileKinds) {
    MadeDirectory page = RichPage(random);
    page.placesType = kind.isBig ? 16 : 4;
    page.countsType = 3;
    const ByteList copy =
        CopiedPages(WriteMade({page}, kind.isBig, kind.isBigEndian, random), {1}, kind);
    const MadeDirectory again = ReadMade(copy).at(0);
    EXPECT_EQ(again.placesType, page.placesType);
    EXPECT_EQ(again.countsType, 3);
    EXPECT_EQ(again.pointerTypes.at(330), 13);
    EXPECT_EQ(again.pointerTypes.at(34665), 4);
    for (const auto& [tag, value] : page.tags) EXPECT_EQ(again.tags.at(tag).type, value.type);
  }
}

TEST(CopyTiffPage, Should_KeepNumbersOf64Bits_When_TargetIsBig) {
  std::mt19937 random(20264);
  MadeDirectory page = RandomPage(random);
  page.Set(60000, 16, {uint64_t{1} << 40, 7}).Set(60001, 17, {~uint64_t{0}});
  page.Set(60002, 16, {7, 8}).Set(60003, 17, {~uint64_t{4}, 9});
  const ByteList bytes = WriteMade({page}, true, false, random);
  ExpectChain({page}, CopiedPages(bytes, {1}, {true, true}));
  // A number that does not fit 32 bits is the only loss.
  TSpanStream stream(bytes);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  const WrittenPicture written = writer.CopyPage(stream, 1);
  writer.Finish();
  ASSERT_EQ(written.changes.losses.size(), 1u);
  EXPECT_EQ(written.changes.losses[0].what, "TIFF tag 60000");
  page.tags.erase(60000);
  ExpectChain({page}, target.TakeBytes());
}

TEST(CopyTiffPage, Should_NumberPages_When_Asked) {
  std::mt19937 random(20265);
  MadeDirectory first = RandomPage(random), second = RandomPage(random);
  first.Set(297, 3, {0, 2});
  second.tags.erase(297);
  const ByteList bytes = WriteMade({first, second}, false, true, random);
  TSpanStream stream(bytes);
  const TiffDocumentReader source(stream);
  EXPECT_EQ(source.PageNumber(1), (TiffPageNumber{0, 2}));
  EXPECT_EQ(source.PageNumber(2), std::nullopt);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, true);
  writer.CopyPage(source, 2);
  writer.NumberNextPage({1, 4});
  writer.CopyPage(source, 2);
  writer.NumberNextPage({2, 4});
  writer.CopyPage(source, 1);
  writer.CopyPage(source, 1);
  writer.Finish();
  const std::vector<MadeDirectory> pages = ReadMade(target.TakeBytes());
  ASSERT_EQ(pages.size(), 4u);
  EXPECT_TRUE(SameDirectory(second, pages[0]));
  EXPECT_TRUE(SameDirectory(second.Set(297, 3, {1, 4}), pages[1]));
  EXPECT_TRUE(SameDirectory(MadeDirectory(first).Set(297, 3, {2, 4}), pages[2]));
  EXPECT_TRUE(SameDirectory(first, pages[3]));
}

/// Old-style JPEG: a whole file, or tables, beside the strips.
TEST(CopyTiffPage, Should_MovePlaces_When_JpegIsOld) {
  std::mt19937 random(20266);
  MadeDirectory page = RandomPage(random), thumbnail;
  page.Set(259, 3, {6});
  page.pieces[519] = {RandomBytes(64, random), RandomBytes(64, random)};
  ByteList table = RandomBytes(16 + 5, random);
  std::fill_n(table.begin(), 16, uint8_t{0});
  table[3] = 5;
  page.pieces[520] = {table};
  page.pieces[521] = {table, table};
  thumbnail.Set(254, 4, {1}).Set(256, 4, {16}).Set(257, 4, {16}).Set(259, 3, {6});
  thumbnail.pieces[513] = {RandomBytes(300, random)};
  thumbnail.Set(514, 4, {300});
  for (const FileKind& from : kFileKinds) {
    for (const FileKind& to : kFileKinds) {
      const ByteList bytes =
          WriteMade({page, thumbnail, page}, from.isBig, from.isBigEndian, random);
      ExpectChain({page, thumbnail}, CopiedPages(bytes, {1}, to));
    }
  }
}

ByteList JpegWithEnd(std::mt19937& random) {
  ByteList jpeg = {0xFF, 0xD8, 0xFF, 0xFE, 0, 20};
  const ByteList comment = RandomBytes(18, random);
  jpeg.insert(jpeg.end(), comment.begin(), comment.end());
  jpeg.insert(jpeg.end(), {0xFF, 0xDA, 0, 4, 1, 0, 1, 2, 3, 0xFF, 0, 4, 0xFF, 0xD9});
  return jpeg;
}

/// Without tag 514, only the JPEG file itself goes along.
TEST(CopyTiffPage, Should_FindTheEnd_When_JpegFileHasNoSize) {
  std::mt19937 random(20267);
  MadeDirectory page = RandomPage(random);
  page.blocks.clear();
  page.Set(259, 3, {6});
  page.pieces[513] = {JpegWithEnd(random)};
  std::vector<ByteList> gaps;
  const MadeDirectory other = RandomPage(random);
  const ByteList bytes = WriteMade({page, other}, false, false, random, &gaps);
  const ByteList copy = CopiedPages(bytes, {1}, {});
  EXPECT_TRUE(Contains(copy, page.pieces[513][0]));
  ExpectAbsent(gaps, copy);
  ExpectAbsent(LongBytesOf(other), copy);
}

TEST(CopyTiffPage, Should_FollowPrivateTags_When_TypeIsThatOfDirectories) {
  std::mt19937 random(20268);
  MadeDirectory page = RandomPage(random), below = RandomPage(random);
  page.below[330] = {below};
  page.pointerTypes[330] = 13;
  ByteList bytes = WriteMade({page}, false, false, random);
  // Tag 330 becomes 332.
  size_t changed = 0;
  for (size_t i = 0; i + 4 < bytes.size(); i++) {
    if (bytes[i] == 0x4A && bytes[i + 1] == 1 && bytes[i + 2] == 13 && bytes[i + 3] == 0) {
      bytes[i] = 0x4B;
      changed++;
    }
  }
  ASSERT_EQ(changed, 1u);
  ByteList copy = CopiedPages(bytes, {1}, {});
  for (size_t i = 0; i + 4 < copy.size(); i++) {
    if (copy[i] == 0x4B && copy[i + 1] == 1 && copy[i + 2] == 13 && copy[i + 3] == 0) {
      copy[i] = 0x4A;
    }
  }
  ExpectChain({page}, copy);
}

TEST(CopyTiffPage, Should_DropListsOfFreeBytes_When_Copied) {
  std::mt19937 random(20269);
  MadeDirectory page = RandomPage(random);
  MadeDirectory stated = page;
  stated.Set(288, 4, {8}).Set(289, 4, {100});
  ExpectChain({page}, CopiedPages(WriteMade({stated}, false, false, random), {1}, {}));
}

TEST(CopyTiffPage, Should_KeepSizesWithoutPlaces_When_BlocksAreOfTheOtherKind) {
  std::mt19937 random(20273);
  for (const bool isTiled : {false, true}) {
    MadeDirectory page = RandomPage(random);
    page.isTiled = isTiled;
    const uint16_t sizes = isTiled ? 279 : 325;
    page.Set(sizes, 4, {1, 2, 3});
    const ByteList copy = CopiedPages(WriteMade({page}, false, false, random), {1}, {});
    // The reader of the test takes them out.
    const uint8_t entry[] = {static_cast<uint8_t>(sizes), 1, 4, 0, 3, 0, 0, 0};
    EXPECT_TRUE(Contains(copy, {std::begin(entry), std::end(entry)}));
    page.tags.erase(sizes);
    ExpectChain({page}, copy);
  }
}

TEST(CopyTiffPage, Should_SayWhatIsLost_When_TypeIsUnknown) {
  std::mt19937 random(20270);
  MadeDirectory page = RandomPage(random);
  page.Set(60000, 4, {0x01020304});
  ByteList bytes = WriteMade({page}, false, false, random);
  const uint8_t entry[] = {0x60, 0xEA, 4, 0, 1, 0, 0, 0, 4, 3, 2, 1};
  const auto at = std::search(bytes.begin(), bytes.end(), std::begin(entry), std::end(entry));
  ASSERT_NE(at, bytes.end());
  at[2] = 99;
  TSpanStream stream(bytes);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  const WrittenPicture written = writer.CopyPage(stream, 1);
  ASSERT_EQ(written.changes.losses.size(), 1u);
  EXPECT_EQ(written.changes.losses[0].what, "TIFF tag 60000");
  writer.Finish();
  page.tags.erase(60000);
  ExpectChain({page}, target.TakeBytes());
}

TEST(CopyTiffPage, Should_RefuseTheOtherOrder_When_SamplesDependOnIt) {
  std::mt19937 random(20271);
  for (const auto& [bits, compression, fits] :
       std::vector<std::tuple<uint64_t, uint64_t, bool>>{{8, 1, true},
                                                         {16, 1, false},
                                                         {16, 5, false},
                                                         {32, 8, false},
                                                         {1, 4, true},
                                                         {1, 5, true},
                                                         {8, 7, true},
                                                         {16, 34712, true},
                                                         {12, 7, true},
                                                         {8, 34925, true},
                                                         {8, 12345, false}}) {
    MadeDirectory page = RandomPage(random);
    page.Set(258, 3, {bits}).Set(259, 3, {compression});
    MadeDirectory above = RandomPage(random);
    above.below[330] = {page};
    for (const MadeDirectory& one : {page, above}) {
      const ByteList bytes = WriteMade({one, RandomPage(random)}, false, true, random);
      TSpanStream stream(bytes);
      TMemoryStream target;
      TiffDocumentWriter other(target, false, false);
      EXPECT_EQ(other.CanCopyPage(stream, 1), fits) << bits << " bits, " << compression;
      EXPECT_TRUE(other.CanCopyPage(stream, 2));
      if (!fits) {
        EXPECT_THROW(other.CopyPage(stream, 1), UnsupportedError);
      }
      TMemoryStream second;
      EXPECT_TRUE(TiffDocumentWriter(second, true, true).CanCopyPage(stream, 1));
    }
  }
}

TEST(CopyTiffPage, Should_BoundTheSize_When_Asked) {
  std::mt19937 random(20272);
  for (int round = 0; round < 40; round++) {
    const FileKind from = kFileKinds[random() % 4], to = kFileKinds[random() % 4];
    const std::vector<MadePage> pages = RandomPages(3, random);
    const ByteList bytes =
        WriteMade(ChainOf(pages, AllNumbers(3)), from.isBig, from.isBigEndian, random);
    TSpanStream stream(bytes);
    TiffDocumentReader source(stream);
    uint64_t most = 1024;
    for (const int page : {3, 1}) most += source.PageBytes(page);
    const size_t size = CopiedPages(bytes, {3, 1}, to).size();
    EXPECT_LE(size, most) << "round " << round;
    EXPECT_GE(4 * size + 4096, most) << "round " << round;
    TSpanStream other(bytes);
    EXPECT_EQ(TiffPageBytes(other, 2), source.PageBytes(2));
    EXPECT_EQ(other.Position(), 0u);
  }
}

}  // namespace
}  // namespace rasterkit::test
