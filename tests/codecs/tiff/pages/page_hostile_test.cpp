// Damaged files: an error of the house or a result, never a crash, bounded time and output.

#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/pages/page_pixels.h"
#include "tests/support/raw_tiff.h"

namespace rasterkit::test {
namespace {

/// Reads, decodes, copies and writes again; returns how many of these succeeded.
int TryAll(const std::vector<uint8_t>& bytes) {
  int done = 0;
  try {
    const PictureHeader header = HeaderOf(bytes);
    done++;
    const PictureWriting writing = WritingOf(header);
    try {
      const std::vector<uint8_t> copy = Copied(bytes, writing);
      // Every byte of the source is copied once; metadata may be repeated in EXIF and tags.
      EXPECT_LE(copy.size(), 8 * bytes.size() + 4096);
      EXPECT_EQ(HeaderOf(copy).width, header.width);
      done++;
    } catch (const Error&) {
    }
    const LimitsScope limits(Limits{.pictureBytes = 1 << 22});
    const Pixels pixels = PixelsOf(bytes);
    EXPECT_EQ(WidthOf(pixels), header.width);
    done++;
    WrittenPicture result;
    const std::vector<uint8_t> again = Written(pixels, writing, &result);
    EXPECT_EQ(HeaderOf(again).height, header.height);
    done++;
  } catch (const Error&) {
  }
  return done;
}

std::vector<std::vector<uint8_t>> SoundFiles(std::mt19937& random) {
  std::vector<std::vector<uint8_t>> files;
  const std::vector<PageKind> kinds = AllPageKinds();
  for (const PageKind& kind : kinds) {
    TiffForm form = StripForm(files.size() % 2 == 0 ? COMPRESSION_LZW : COMPRESSION_NONE);
    form.isBigEndian = files.size() % 3 == 0;
    form.isBigTiff = files.size() % 5 == 0;
    if (files.size() % 4 == 1) form.tileWidth = form.tileHeight = 16;
    PictureWriting writing;
    writing.form = form;
    writing.metadata.xmp = "<x/>";
    writing.metadata.iptc = {0x1C, 2, 5, 0, 1, 'a'};
    writing.metadata.resolution = {300, 300};
    std::vector<TiffExtraPage> extras;
    extras.push_back({kind.make(9, 5, random), form, 1});
    TMemoryStream stream;
    WriteTiff(kind.make(18, 10, random), writing, extras, stream);
    files.push_back(stream.TakeBytes());
  }
  return files;
}

TEST(TiffPageHostile, Should_EndInOrder_When_BytesAreChangedAtRandom) {
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  RecordProperty("seed", static_cast<int>(kSeed));
  int done = 0, tried = 0;
  for (const std::vector<uint8_t>& sound : SoundFiles(random)) {
    ASSERT_EQ(TryAll(sound), 4);
    for (int round = 0; round < 150; round++) {
      std::vector<uint8_t> bytes = sound;
      const int changes = 1 + static_cast<int>(random() % 4);
      for (int i = 0; i < changes; i++) {
        // Directories are at the end.
        const size_t at = bytes.size() - 1 - random() % std::min<size_t>(bytes.size(), 900);
        bytes[at] = static_cast<uint8_t>(random());
      }
      if (round % 10 == 0) bytes.resize(random() % bytes.size());
      SCOPED_TRACE(testing::Message()
                   << "seed " << kSeed << ", file " << tried / 150 << ", round " << round);
      tried++;
      done += TryAll(bytes);
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(done, tried);
}

TEST(TiffPageHostile, Should_EndSoon_When_DirectoriesGoInCircles) {
  std::vector<uint8_t> bytes = RawTiff::Of(4, 4, 8, 1)
                                   .Long(TIFFTAG_STRIPOFFSETS, 8)
                                   .Long(TIFFTAG_STRIPBYTECOUNTS, 16)
                                   .Long(TIFFTAG_SUBIFD, 8)
                                   .Long(TIFFTAG_EXIFIFD, 8)
                                   .Long(TIFFTAG_GPSIFD, 8)
                                   .Bytes(0, 8);
  const PictureHeader header = HeaderOf(bytes);
  EXPECT_EQ(header.pages, 1);
  EXPECT_EQ(header.smallerCopies, 0);
  EXPECT_EQ(HeaderOf(Copied(bytes, WritingOf(header))).width, 4);
}

TEST(TiffPageHostile, Should_CopyEachByteOnce_When_StripsOverlap) {
  // 64 strips that are all the same kilobyte.
  PictureWriting writing;
  TiffForm form = StripForm(COMPRESSION_NONE);
  form.rowsPerStrip = 1;
  writing.form = form;
  std::mt19937 random(8);
  std::vector<uint8_t> bytes = Written(Pixels(RandomRaster(pf8bit, 1024, 64, random)), writing);
  const PictureHeader header = HeaderOf(bytes);
  const std::vector<uint8_t> entry = {0x11, 0x01, 4, 0, 64, 0, 0, 0};
  const auto found = std::search(bytes.begin(), bytes.end(), entry.begin(), entry.end());
  ASSERT_NE(found, bytes.end());
  uint32_t at = 0;
  std::memcpy(&at, &found[8], 4);
  for (uint32_t i = 0; i < 64; i++) std::memcpy(bytes.data() + at + 4 * i, bytes.data() + at, 4);
  const std::vector<uint8_t> copy = Copied(bytes, WritingOf(header));
  EXPECT_LT(copy.size(), 8192u);
  EXPECT_TRUE(SameNumbers(PixelsOf(bytes), PixelsOf(copy)));
}

TEST(TiffPageHostile, Should_RefuseBeforeWriting_When_AStripReachesBeyondTheEnd) {
  std::vector<uint8_t> bytes = RawTiff::Of(4, 4, 8, COMPRESSION_LZW)
                                   .Long(TIFFTAG_STRIPOFFSETS, 8)
                                   .Long(TIFFTAG_STRIPBYTECOUNTS, 100000)
                                   .Bytes();
  TSpanStream source(bytes);
  TMemoryStream target;
  EXPECT_THROW(CopyTiff(source, {}, target), FormatError);
  EXPECT_EQ(target.Size(), 0u);
}

TEST(TiffPageHostile, Should_LeaveOutTag_When_ItClaimsMoreThanTheFile) {
  const std::vector<uint8_t> bytes = RawTiff::Of(4, 4, 8, 1)
                                         .Long(TIFFTAG_STRIPOFFSETS, 8)
                                         .Long(TIFFTAG_STRIPBYTECOUNTS, 16)
                                         .Entry(TIFFTAG_XMLPACKET, 1, 0xFFFFFFFF, 8)
                                         .Entry(50123, 99, 1, 8)
                                         .Bytes(100);
  const PictureHeader header = HeaderOf(bytes);
  EXPECT_EQ(header.metadata.xmp, "");
  EXPECT_EQ(header.warnings.size(), 2u);
}

}  // namespace
}  // namespace rasterkit::test
