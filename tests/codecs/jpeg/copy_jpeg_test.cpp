#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jpeg/jpeg_segments_of_tests.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using std::string_view_literals::operator""sv;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<uint8_t> Copy(std::span<const uint8_t> file, const PictureWriting& writing,
                          WrittenPicture* written = nullptr) {
  TMemoryStream stream;
  const WrittenPicture result = CopyJpeg(file, writing, stream);
  if (written != nullptr) *written = result;
  return stream.TakeBytes();
}

/// The bytes from the first quantization table, frame or scan on.
std::vector<uint8_t> CodedBytes(std::span<const uint8_t> file) {
  size_t at = 2;
  while (at + 4 <= file.size()) {
    const uint8_t marker = file[at + 1];
    if (marker == 0xDB || (marker >= 0xC0 && marker <= 0xCF) || marker == 0xDD) break;
    at += 2 + static_cast<size_t>(file[at + 2] << 8 | file[at + 3]);
  }
  return {file.begin() + static_cast<std::ptrdiff_t>(at), file.end()};
}

TEST(CopyJpeg, CodedBytes_Should_Stay_When_MetadataChanges) {
  for (const bool progressive : {false, true}) {
    JpegRecipe recipe{.width = 50, .height = 40};
    recipe.progressive = progressive;
    const auto source = MakeJpeg(recipe);
    PictureWriting writing;
    writing.metadata = ReadJpegHeader(source).metadata;
    writing.metadata.exif = SmallExif();
    writing.metadata.comments = {"new"};
    const auto copy = Copy(source, writing);
    EXPECT_EQ(CodedBytes(copy), CodedBytes(source));
    EXPECT_EQ(ReadJpegHeader(copy).metadata.exif, SmallExif());
    EXPECT_TRUE(SamePixels(DecodeJpeg(source), DecodeJpeg(copy)));
  }
}

TEST(CopyJpeg, Density_Should_FollowTheResolution) {
  const auto source = MakeJpeg({.densityUnit = 1, .densityX = 72, .densityY = 72});
  PictureWriting writing;
  writing.metadata = ReadJpegHeader(source).metadata;
  EXPECT_EQ(Copy(source, writing), source);
  writing.metadata.resolution = {300, 150};
  EXPECT_EQ(DecodeJpeg(Copy(source, writing)).resolution, (Resolution{300, 150}));
}

/// A new EXIF block may state what another block of the file states.
TEST(CopyJpeg, Density_Should_Stay_When_ANewBlockStatesTheSame) {
  const auto source =
      WithHead(MakeJpeg({.densityUnit = 0, .densityX = 1, .densityY = 1}),
               Segment(0xED, BytesOfText("Photoshop 3.0\0"
                                         "8BIM\3\xED\0\0\0\0\0\x10"
                                         "\1\x2C\0\0\0\1\0\1\1\x2C\0\0\0\1\0\1"sv)));
  PictureWriting writing;
  writing.metadata = ReadJpegHeader(source).metadata;
  ASSERT_EQ(writing.metadata.resolution, (Resolution{300, 300}));
  ExifBlock exif;
  SetResolution(exif, {300, 300});
  writing.metadata.exif = exif.TakeBytes();
  const auto copy = Copy(source, writing);
  constexpr size_t kUnitAt = 13;
  EXPECT_THAT(std::vector<uint8_t>(copy.begin() + kUnitAt, copy.begin() + kUnitAt + 5),
              ElementsAre(0, 0, 1, 0, 1));
  EXPECT_EQ(ReadJpegHeader(copy).metadata.exif, writing.metadata.exif);
}

/// Index of two pictures with the second one at an offset from the byte-order mark.
std::vector<uint8_t> IndexSegment(bool isBig, uint32_t first, uint32_t second, uint32_t offset,
                                  uint32_t attributes) {
  std::vector<uint8_t> bytes = BytesOfText("MPF\0"sv);
  const auto add = [&](uint32_t value, int count) {
    for (int i = 0; i < count; i++) {
      bytes.push_back(static_cast<uint8_t>(value >> 8 * (isBig ? count - 1 - i : i)));
    }
  };
  bytes.insert(bytes.end(), 2, isBig ? 'M' : 'I');
  add(42, 2);
  add(8, 4);
  add(1, 2);
  add(0xB002, 2);
  add(7, 2);
  add(32, 4);
  add(26, 4);
  add(0, 4);
  for (const auto& [attribute, size, place] :
       {std::tuple{0x030000u, first, 0u}, std::tuple{attributes, second, offset}}) {
    add(attribute, 4);
    add(size, 4);
    add(place, 4);
    add(0, 4);
  }
  return Segment(0xE2, bytes);
}

constexpr uint32_t kIndexSegmentBytes = 66;

/// A file with a preview behind its end, which its index names.
std::vector<uint8_t> FileWithPreview(bool isBig, uint32_t attributes) {
  const auto preview = MakeJpeg({.width = 8, .height = 6});
  const auto plain = MakeJpeg({.width = 32, .height = 24});
  const auto size = static_cast<uint32_t>(plain.size()) + kIndexSegmentBytes;
  auto file = WithHead(plain, IndexSegment(isBig, size, static_cast<uint32_t>(preview.size()),
                                           size - 10, attributes));
  EXPECT_EQ(file.size(), size);
  return Joined(std::move(file), preview);
}

TEST(CopyJpeg, Index_Should_LeadToThePreview_When_TheHeadGrows) {
  for (const bool isBig : {false, true}) {
    const auto source = FileWithPreview(isBig, 0x010002);
    const PictureHeader header = ReadJpegHeader(source);
    EXPECT_THAT(header.hiddenCopies, ElementsAre("preview of 8 x 6 pixels"));
    EXPECT_THAT(header.hiddenOthers, IsEmpty());
    PictureWriting writing;
    writing.metadata = header.metadata;
    writing.metadata.exif = SmallExif();
    const auto copy = Copy(source, writing);
    const PictureHeader again = ReadJpegHeader(copy);
    EXPECT_EQ(again.hiddenCopies, header.hiddenCopies);
    EXPECT_THAT(again.hiddenOthers, IsEmpty());
    const size_t preview = source.size() - header.trailerAt;
    EXPECT_EQ(copy.size() - again.trailerAt, preview);
    EXPECT_TRUE(std::equal(copy.end() - static_cast<std::ptrdiff_t>(preview), copy.end(),
                           source.end() - static_cast<std::ptrdiff_t>(preview)));
  }
}

TEST(CopyJpeg, Previews_Should_Go_When_HiddenThingsAreDropped) {
  const auto source = FileWithPreview(false, 0x010001);
  PictureWriting writing;
  writing.metadata = ReadJpegHeader(source).metadata;
  writing.dropsHidden = true;
  const auto copy = Copy(source, writing);
  const PictureHeader header = ReadJpegHeader(copy);
  EXPECT_THAT(header.hiddenCopies, IsEmpty());
  EXPECT_EQ(header.trailerAt, 0u);
  EXPECT_TRUE(SamePixels(DecodeJpeg(source), DecodeJpeg(copy)));
}

TEST(CopyJpegCorpus, Bytes_Should_Stay_When_NothingChanges) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int same = 0;
  for (const auto& path : CorpusJpegs()) {
    SCOPED_TRACE(path);
    const auto source = BytesOfFile(path);
    try {
      PictureWriting writing;
      writing.metadata = ReadJpegHeader(source).metadata;
      EXPECT_TRUE(Copy(source, writing) == source);
      same++;
    } catch (const FormatError&) {
    }
  }
  EXPECT_GT(same, 100);
}

TEST(CopyJpegCorpus, Rest_Should_Stay_When_ACommentIsAdded) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int same = 0;
  for (const auto& path : CorpusJpegs()) {
    SCOPED_TRACE(path);
    const auto source = BytesOfFile(path);
    Raster before;
    try {
      before = DecodeJpeg(source);
    } catch (const Error&) {
      continue;
    }
    PictureWriting writing;
    const PictureHeader header = ReadJpegHeader(source);
    writing.metadata = header.metadata;
    writing.metadata.comments.emplace_back("added");
    WrittenPicture written;
    std::vector<uint8_t> copy;
    try {
      copy = Copy(source, writing, &written);
    } catch (const FormatError&) {
      continue;
    }
    EXPECT_THAT(written.changes.losses, IsEmpty());
    const PictureHeader again = ReadJpegHeader(copy);
    EXPECT_EQ(again.form, header.form);
    EXPECT_EQ(again.hiddenCopies, header.hiddenCopies);
    EXPECT_EQ(again.hiddenOthers, header.hiddenOthers);
    EXPECT_EQ(again.metadata.exif, header.metadata.exif);
    EXPECT_EQ(again.metadata.xmp, header.metadata.xmp);
    EXPECT_EQ(again.metadata.extendedXmp, header.metadata.extendedXmp);
    EXPECT_EQ(again.metadata.photoshop, header.metadata.photoshop);
    EXPECT_EQ(again.metadata.iptc, header.metadata.iptc);
    EXPECT_EQ(again.metadata.comments, writing.metadata.comments);
    EXPECT_EQ(again.metadata.jpegSegments, header.metadata.jpegSegments);
    EXPECT_EQ(again.metadata.resolution, header.metadata.resolution);
    EXPECT_TRUE(SamePixels(before, DecodeJpeg(copy)));
    same++;
  }
  EXPECT_GT(same, 100);
}

TEST(CopyJpeg, Should_FailOrCopy_When_BytesAreChanged) {
  std::random_device source;
  const auto seed = source();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const auto file = WithHead(FileWithPreview(true, 0x010001), ExifSegment(SmallExif()));
  int copied = 0;
  for (int i = 0; i < 2000; i++) {
    auto changed = file;
    for (int k = 0; k < 3; k++) changed[random() % changed.size()] = static_cast<uint8_t>(random());
    try {
      PictureWriting writing;
      writing.metadata = ReadJpegHeader(changed).metadata;
      const auto copy = Copy(changed, writing);
      EXPECT_EQ(ReadJpegHeader(copy).form, ReadJpegHeader(changed).form);
      copied++;
    } catch (const FormatError&) {
    }
  }
  EXPECT_GT(copied, 500);
}

}  // namespace
}  // namespace rasterkit::test
