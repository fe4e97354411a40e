// What a page states besides its pixels: read, written to its own places, read again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/pages/page_pixels.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;
using testing::IsEmpty;

TagValue Doubles(uint16_t tag, const std::vector<double>& numbers) {
  TagValue value{tag, TIFF_DOUBLE, numbers.size(), {}};
  value.bytes.resize(8 * numbers.size());
  std::memcpy(value.bytes.data(), numbers.data(), value.bytes.size());
  return value;
}

TagValue Text(uint16_t tag, const std::string& text) {
  TagValue value{tag, TIFF_ASCII, text.size() + 1, {text.begin(), text.end()}};
  value.bytes.push_back(0);
  return value;
}

/// Every kind of metadata that a TIFF file has a place for.
PictureWriting FullWriting() {
  PictureWriting writing;
  TiffForm form = StripForm(COMPRESSION_LZW);
  writing.form = form;
  ExifBlock exif;
  exif.SetText(ExifDirectoryId::main, TIFFTAG_MAKE, "Maker");
  exif.SetText(ExifDirectoryId::main, TIFFTAG_IMAGEDESCRIPTION, "A plan");
  exif.SetWords(ExifDirectoryId::exif, 34855, std::vector<uint16_t>{400});
  exif.SetRational(ExifDirectoryId::exif, 33434, 0.004);
  exif.SetText(ExifDirectoryId::gps, 1, "N");
  exif.SetText(ExifDirectoryId::interop, 1, "R98");
  writing.metadata.exif = exif.Bytes();
  writing.metadata.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
  writing.metadata.iptc = {0x1C, 2, 5, 0, 3, 'a', 'b', 'c'};
  const std::string resource = "8BIM\x03\xF3\0\0\0\0\0\x04????"s;
  writing.metadata.photoshop.assign(resource.begin(), resource.end());
  writing.metadata.profile =
      std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>(200, 7));
  writing.metadata.resolution = {300, 299.5};
  writing.metadata.tiffTags = {Text(42112, "<GDALMetadata/>"), Text(50123, "private")};
  writing.positionTags = {Doubles(33550, {0.5, 0.5, 0}), Doubles(33922, {0, 0, 0, 600000, 5e6, 0}),
                          Text(42113, "-9999")};
  return writing;
}

void ExpectSameMetadata(const PictureHeader& header, const PictureWriting& writing) {
  const Metadata &found = header.metadata, &wanted = writing.metadata;
  EXPECT_EQ(found.xmp, wanted.xmp);
  EXPECT_EQ(found.iptc, wanted.iptc);
  EXPECT_EQ(found.photoshop, wanted.photoshop);
  ASSERT_TRUE(found.profile);
  EXPECT_EQ(*found.profile, *wanted.profile);
  EXPECT_DOUBLE_EQ(found.resolution.x, wanted.resolution.x);
  EXPECT_DOUBLE_EQ(found.resolution.y, wanted.resolution.y);
  EXPECT_EQ(found.tiffTags, wanted.tiffTags);
  EXPECT_EQ(header.positionTags, writing.positionTags);
  EXPECT_EQ(header.orientation, 1);
  const ExifBlock exif(found.exif);
  EXPECT_FALSE(exif.IsDamaged());
  EXPECT_EQ(exif.Text(ExifDirectoryId::main, TIFFTAG_MAKE), "Maker");
  EXPECT_EQ(exif.Text(ExifDirectoryId::main, TIFFTAG_IMAGEDESCRIPTION), "A plan");
  EXPECT_EQ(exif.Number(ExifDirectoryId::exif, 34855), 400u);
  EXPECT_THAT(exif.Numbers(ExifDirectoryId::exif, 33434),
              testing::ElementsAre(testing::DoubleNear(0.004, 1e-9)));
  EXPECT_EQ(exif.Text(ExifDirectoryId::gps, 1), "N");
  EXPECT_EQ(exif.Text(ExifDirectoryId::interop, 1), "R98");
}

TEST(TiffPageMetadata, Should_GiveBackEverything_When_Written) {
  std::mt19937 random(1);
  const Pixels pixels = RandomRaster(pf24bit, 20, 10, random);
  for (const bool isBigEndian : {false, true}) {
    for (const bool isBig : {false, true}) {
      SCOPED_TRACE(testing::Message() << isBigEndian << isBig);
      PictureWriting writing = FullWriting();
      std::get<TiffForm>(writing.form).isBigEndian = isBigEndian;
      std::get<TiffForm>(writing.form).isBigTiff = isBig;
      WrittenPicture written;
      const std::vector<uint8_t> bytes = Written(pixels, writing, &written);
      EXPECT_THAT(written.changes.losses, IsEmpty());
      EXPECT_THAT(written.changes.notes, IsEmpty());
      ExpectSameMetadata(HeaderOf(bytes), writing);
      const std::vector<uint8_t> copy = Copied(bytes, WritingOf(HeaderOf(bytes)));
      ExpectSameMetadata(HeaderOf(copy), writing);
      EXPECT_TRUE(SameNumbers(pixels, PixelsOf(copy)));
    }
  }
}

TEST(TiffPageMetadata, Should_WriteUpright_When_ExifStatesAnotherOrientation) {
  std::mt19937 random(2);
  PictureWriting writing = FullWriting();
  ExifBlock exif(writing.metadata.exif);
  exif.SetWords(ExifDirectoryId::main, TIFFTAG_ORIENTATION, std::vector<uint16_t>{6});
  writing.metadata.exif = exif.Bytes();
  const PictureHeader header =
      HeaderOf(Written(Pixels(RandomRaster(pf24bit, 20, 10, random)), writing));
  EXPECT_EQ(header.orientation, 1);
  EXPECT_EQ(ExifBlock(header.metadata.exif).Number(ExifDirectoryId::main, TIFFTAG_ORIENTATION), 1u);
}

TEST(TiffPageMetadata, Should_NameTheThumbnail_When_ExifHasOne) {
  std::mt19937 random(3);
  PictureWriting writing = FullWriting();
  ExifBlock exif(writing.metadata.exif);
  const std::vector<uint8_t> jpeg = {0xFF, 0xD8, 0xFF, 0xD9};
  exif.SetThumbnail(jpeg);
  writing.metadata.exif = exif.Bytes();
  WrittenPicture written;
  const std::vector<uint8_t> bytes =
      Written(Pixels(RandomRaster(pf24bit, 20, 10, random)), writing, &written);
  EXPECT_THAT(written.changes.losses, IsEmpty());
  EXPECT_THAT(written.changes.notes, testing::ElementsAre(HasSubstr("thumbnail")));
  ExpectSameMetadata(HeaderOf(bytes), writing);
}

TEST(TiffPageMetadata, Should_LoseTheProfile_When_ItIsOfOtherPixels) {
  std::mt19937 random(3);
  PictureWriting writing = FullWriting();
  std::vector<uint8_t> profile(200, 0);
  const std::string space = "CMYK", mark = "acsp";
  std::copy(space.begin(), space.end(), profile.begin() + 16);
  std::copy(mark.begin(), mark.end(), profile.begin() + 36);
  writing.metadata.profile = std::make_shared<const std::vector<uint8_t>>(profile);
  WrittenPicture written;
  const std::vector<uint8_t> bytes =
      Written(Pixels(RandomRaster(pf24bit, 20, 10, random)), writing, &written);
  ASSERT_EQ(written.changes.losses.size(), 1u);
  EXPECT_EQ(written.changes.losses[0].kind, LossKind::profile);
  EXPECT_FALSE(HeaderOf(bytes).metadata.profile);
  PixelLayout inks;
  inks.bands = 4;
  inks.model = ColorModel::cmyk;
  const Pixels pixels = RandomSamplesOf(inks, 20, 10, false, random);
  EXPECT_TRUE(HeaderOf(Written(pixels, writing)).metadata.profile);
}

TEST(TiffPageMetadata, Should_NameLosses_When_TextsHaveNoPlace) {
  std::mt19937 random(3);
  PictureWriting writing;
  writing.metadata.comments = {"first", "second"};
  writing.metadata.texts = {{"Author", "A. Person", "", "", false, false},
                            {"Warning", "hot", "", "", false, false}};
  writing.metadata.jpegSegments = {{0xEB, {1, 2}}};
  WrittenPicture written;
  const std::vector<uint8_t> bytes =
      Written(Pixels(RandomRaster(pf24bit, 20, 10, random)), writing, &written);
  ASSERT_EQ(written.changes.losses.size(), 3u);
  EXPECT_EQ(written.changes.losses[0].kind, LossKind::comment);
  EXPECT_EQ(written.changes.losses[1].kind, LossKind::text);
  EXPECT_THAT(written.changes.losses[1].what, HasSubstr("Warning"));
  EXPECT_EQ(written.changes.losses[2].kind, LossKind::otherBlock);
  const ExifBlock exif(HeaderOf(bytes).metadata.exif);
  EXPECT_EQ(exif.Text(ExifDirectoryId::main, TIFFTAG_IMAGEDESCRIPTION), "first");
  EXPECT_EQ(exif.Text(ExifDirectoryId::main, TIFFTAG_ARTIST), "A. Person");
}

TEST(TiffPageMetadata, Should_CountPagesCopiesAndMasks_When_Several) {
  std::mt19937 random(4);
  const Pixels pixels = RandomRaster(pf8bit, 64, 48, random);
  TiffForm form = StripForm(COMPRESSION_LZW);
  std::vector<TiffExtraPage> extras;
  extras.push_back({RandomRaster(pf8bit, 32, 24, random), form, FILETYPE_REDUCEDIMAGE});
  extras.push_back({RandomRaster(pf8bit, 16, 12, random), form, FILETYPE_REDUCEDIMAGE});
  extras.push_back({RandomRaster(pf1bit, 64, 48, random), form, FILETYPE_MASK});
  PictureWriting writing = FullWriting();
  TMemoryStream stream;
  WriteTiff(pixels, writing, extras, stream);
  const std::vector<uint8_t> bytes = stream.TakeBytes();
  for (const std::vector<uint8_t>& file : {bytes, Copied(bytes, writing)}) {
    const PictureHeader header = HeaderOf(file);
    EXPECT_EQ(header.pages, 1);
    EXPECT_EQ(header.smallerCopies, 2);
    EXPECT_EQ(header.masks, 1);
    TSpanStream source(file);
    const std::vector<TiffExtraPageHeader> pages = ReadTiffExtraPages(source);
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_EQ(pages[1].width, 16);
    EXPECT_EQ(pages[2].subfileType, unsigned{FILETYPE_MASK});
    for (size_t i = 0; i < 3; i++) {
      source.SetPosition(0);
      EXPECT_TRUE(SameNumbers(extras[i].pixels, DecodeTiffExtraPage(source, i))) << i;
    }
    source.SetPosition(0);
    EXPECT_THROW(DecodeTiffExtraPage(source, 3), RangeError);
  }
}

TEST(TiffPageMetadata, Should_ReadIptc_When_StatedAsLongsOfEitherOrder) {
  std::mt19937 random(5);
  const Pixels pixels = RandomRaster(pf8bit, 8, 8, random);
  const std::vector<uint8_t> records = {0x1C, 2, 5, 0, 3, 'a', 'b', 'c'};
  for (const bool isBigEndian : {false, true}) {
    PictureWriting writing;
    writing.form = StripForm(COMPRESSION_NONE);
    std::get<TiffForm>(writing.form).isBigEndian = isBigEndian;
    writing.metadata.iptc = records;
    std::vector<uint8_t> bytes = Written(pixels, writing);
    // Tag 33723, two longs, the records as they are in either order.
    const std::vector<uint8_t> entry = isBigEndian
                                           ? std::vector<uint8_t>{0x83, 0xBB, 0, 4, 0, 0, 0, 2}
                                           : std::vector<uint8_t>{0xBB, 0x83, 4, 0, 2, 0, 0, 0};
    const auto found = std::search(bytes.begin(), bytes.end(), entry.begin(), entry.end());
    ASSERT_NE(found, bytes.end());
    EXPECT_EQ(HeaderOf(bytes).metadata.iptc, records);
    const auto words = std::search(bytes.begin(), bytes.end(), records.begin(), records.end());
    ASSERT_NE(words, bytes.end());
    std::reverse(words, words + 4);
    std::reverse(words + 4, words + 8);
    EXPECT_EQ(HeaderOf(bytes).metadata.iptc, records);
  }
}

TEST(TiffPageMetadata, Should_KnowNoResolution_When_UnitIsNone) {
  TiffFile file;
  file.width = file.height = 4;
  file.pixels.resize(16);
  file.setTags = [](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 2.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 1.0);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);
  };
  const std::vector<uint8_t> bytes = file.Bytes();
  EXPECT_FALSE(HeaderOf(bytes).metadata.resolution.IsKnown());
  // A copy keeps the aspect ratio.
  const std::vector<uint8_t> copy = Copied(bytes, WritingOf(HeaderOf(bytes)));
  EXPECT_FALSE(HeaderOf(copy).metadata.resolution.IsKnown());
  const std::string unit = {0x28, 1, 3, 0, 1, 0, 0, 0, 1, 0};
  EXPECT_NE(std::search(copy.begin(), copy.end(), unit.begin(), unit.end()), copy.end());
  file.setTags = [](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 100.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 50.0);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
  };
  EXPECT_EQ(HeaderOf(file.Bytes()).metadata.resolution, (Resolution{254, 127}));
}

TEST(TiffPageMetadata, Should_KeepKindsOfBands_When_OpacityIsNotLast) {
  TiffFile file;
  file.width = file.height = 6;
  file.samples = 5;
  file.photometric = PHOTOMETRIC_RGB;
  file.extraSamples = {EXTRASAMPLE_UNASSALPHA, EXTRASAMPLE_UNSPECIFIED};
  file.pixels.resize(file.PixelBytes());
  const std::vector<uint8_t> bytes = file.Bytes();
  const PictureHeader header = HeaderOf(bytes);
  EXPECT_EQ(header.layout.alpha, AlphaKind::none);
  EXPECT_EQ(header.layout.extraBands, 2);
  const PictureHeader again = HeaderOf(Written(PixelsOf(bytes), WritingOf(header)));
  EXPECT_EQ(again.metadata.tiffTags, header.metadata.tiffTags);
  EXPECT_EQ(again.layout.extraBands, 2);
}

TEST(TiffPageMetadata, Should_RefuseInWords_When_NumbersAreComplex) {
  TiffFile file;
  file.width = file.height = 4;
  file.bits = 64;
  file.sampleFormat = SAMPLEFORMAT_COMPLEXIEEEFP;
  file.pixels.resize(file.PixelBytes());
  const std::vector<uint8_t> bytes = file.Bytes();
  for (const auto& read : {std::function<void()>([&] { HeaderOf(bytes); }),
                           std::function<void()>([&] { PixelsOf(bytes); })}) {
    try {
      read();
      FAIL() << "was read";
    } catch (const UnsupportedError& error) {
      EXPECT_THAT(error.what(), HasSubstr("complex numbers"));
    }
  }
}

TEST(TiffPageMetadata, Should_WriteTheSameBytes_When_FileBeginsWithinAStream) {
  std::mt19937 random(6);
  const Pixels pixels = RandomRaster(pf24bit, 20, 10, random);
  const PictureWriting writing = FullWriting();
  const std::vector<uint8_t> bytes = Written(pixels, writing);
  TMemoryStream behind;
  const std::vector<uint8_t> front(100, 9);
  behind.Write(front);
  WriteTiff(pixels, writing, behind);
  // A file may begin anywhere in a stream.
  EXPECT_TRUE(
      std::equal(bytes.begin(), bytes.end(), behind.Bytes().begin() + 100, behind.Bytes().end()));
  behind.SetPosition(100);
  EXPECT_EQ(ReadTiffHeader(behind).width, 20);
  behind.SetPosition(100);
  EXPECT_TRUE(SameNumbers(pixels, DecodeTiffPixels(behind)));
}

}  // namespace
}  // namespace rasterkit::test
