// Documents from and to pipes, and pages in files of the other order of bytes.

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "tests/codecs/tiff/document/document_support.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

/// Gives its bytes once and states no size.
class PipeStream : public TStream {
 public:
  explicit PipeStream(ByteList bytes) : bytes_(std::move(bytes)) {}
  size_t Read(std::span<uint8_t> target) override {
    const size_t count = std::min(target.size(), bytes_.size() - position_);
    std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(position_), count, target.begin());
    position_ += count;
    return count;
  }
  void Write(std::span<const uint8_t>) override { throw FileError("read only"); }
  uint64_t Position() const override { return 0; }
  void SetPosition(uint64_t position) override {
    if (position != 0) throw FileError("no pipe can be read at any place");
  }
  uint64_t Size() const override { return 0; }

 private:
  const ByteList bytes_;
  size_t position_ = 0;
};

TEST(TiffDocumentStreams, Should_ReadPages_When_SourceIsAPipe) {
  std::mt19937 random(51);
  const std::vector<MadeDirectory> pages = {RandomPage(random), RichPage(random)};
  const ByteList bytes = WriteMade(pages, false, false, random);
  PipeStream counted(bytes), alone(bytes), copied(bytes);
  EXPECT_EQ(CountTiffPages(counted), 2);
  EXPECT_EQ(ReadTiffHeader(*TiffPageStream(alone, 2)).pages, 2);
  const TiffDocumentReader source(copied);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  writer.CopyPage(source, 2);
  writer.CopyPage(source, 1);
  writer.Finish();
  const std::vector<MadeDirectory> copy = ReadMade(target.TakeBytes());
  ASSERT_EQ(copy.size(), 2u);
  EXPECT_TRUE(SameDirectory(pages[1], copy[0]));
  EXPECT_TRUE(SameDirectory(pages[0], copy[1]));
}

TEST(TiffDocumentStreams, Should_WriteTheSameFile_When_TargetIsAPipe) {
  std::mt19937 random(52);
  const std::vector<MadeDirectory> pages = {RandomPage(random), RichPage(random)};
  const ByteList bytes = WriteMade(pages, false, true, random);
  const TempFolder folder;
  const std::string name = folder / "pipe";
  ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
  ByteList received;
  std::thread reader([&] {
    TFileStream stream(name);
    received = stream.ReadToEnd();
  });
  {
    TSpanStream stream(bytes);
    const TiffDocumentReader source(stream);
    AtomicFile file(name);
    ASSERT_FALSE(IsSeekable(file));
    TiffDocumentWriter writer(file, true, true);
    writer.CopyPage(source, 2);
    writer.CopyPage(source, 1);
    writer.Finish();
    file.Commit();
  }
  reader.join();
  EXPECT_EQ(received, CopiedPages(bytes, {2, 1}, {true, true}));
}

/// Layers of another program hold numbers in the order of the file; maker notes may.
TEST(TiffDocumentStreams, Should_SayWhatDependsOnTheOrder_When_OrderChanges) {
  std::mt19937 random(53);
  MadeDirectory page = RichPage(random);
  page.SetBytes(37724, 7, RandomBytes(50, random));
  const ByteList bytes = WriteMade({page}, false, true, random);
  for (const bool keepsMetadata : {false, true}) {
    TSpanStream stream(bytes);
    TMemoryStream target;
    TiffDocumentWriter writer(target, false, false);
    WrittenPicture written;
    if (keepsMetadata) {
      const PictureHeader header = ReadTiffHeader(*TiffPageStream(stream, 1));
      PictureWriting writing;
      writing.form = header.form;
      writing.metadata = header.metadata;
      written = writer.CopyPage(stream, 1, writing);
    } else {
      written = writer.CopyPage(stream, 1);
      EXPECT_THAT(written.changes.notes, testing::ElementsAre(testing::HasSubstr("maker note")));
    }
    writer.Finish();
    ASSERT_EQ(written.changes.losses.size(), 1u);
    EXPECT_EQ(written.changes.losses[0].what, "layers");
    const std::vector<MadeDirectory> copy = ReadMade(target.TakeBytes());
    ASSERT_EQ(copy.size(), 1u);
    EXPECT_FALSE(copy[0].tags.contains(37724));
    EXPECT_EQ(copy[0].blocks, page.blocks);
    MadeDirectory expected = page;
    expected.tags.erase(37724);
    if (!keepsMetadata) {
      EXPECT_TRUE(SameDirectory(expected, copy[0]));
    }
  }
  // In the same order nothing is lost.
  const std::vector<MadeDirectory> same = ReadMade(CopiedPages(bytes, {1}, {true, true}));
  EXPECT_TRUE(SameDirectory(page, same.at(0)));
}

/// A smaller copy and a mask may have the same directory below them.
TEST(TiffDocumentStreams, Should_CopyItOnce_When_TwoTagsLeadToOneDirectory) {
  std::mt19937 random(54);
  MadeDirectory page = RandomPage(random);
  page.below[330] = {RandomRelative(1, random), RandomRelative(1, random)};
  ByteList bytes = WriteMade({page}, false, false, random);
  // Both places become the first one.
  const uint8_t entry[] = {0x4A, 1, 4, 0, 2, 0, 0, 0};
  const auto at = std::search(bytes.begin(), bytes.end(), std::begin(entry), std::end(entry));
  ASSERT_NE(at, bytes.end());
  size_t place = 0;
  for (int i = 3; i >= 0; i--) place = place << 8 | at[8 + i];
  std::copy_n(bytes.begin() + static_cast<ptrdiff_t>(place), 4,
              bytes.begin() + static_cast<ptrdiff_t>(place) + 4);
  page.below[330][1] = page.below[330][0];
  const ByteList copy = CopiedPages(bytes, {1}, {});
  EXPECT_TRUE(SameDirectory(page, ReadMade(copy).at(0)));
  EXPECT_LT(copy.size(), bytes.size());
}

}  // namespace
}  // namespace rasterkit::test
