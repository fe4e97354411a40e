// Documents page by page: readers of one page, new pages between copied ones, numbers of pages, and
// what a document refuses.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/document/document_support.h"
#include "tests/codecs/tiff/pages/page_pixels.h"

namespace rasterkit::test {
namespace {

/// A picture with metadata and a position that differ from page to page.
struct Sheet {
  Pixels pixels;
  PictureWriting writing;
  std::vector<TiffExtraPage> extras;
};

Pixels CopyOf(const Pixels& pixels) {
  return std::visit([](const auto& kind) { return Pixels(kind.Clone()); }, pixels);
}

Sheet SheetOf(int number, const Pixels& pixels, int compression) {
  Sheet sheet;
  sheet.pixels = CopyOf(pixels);
  sheet.writing.form = StripForm(compression);
  sheet.writing.metadata.resolution = {100.0 + number, 200.0 + number};
  sheet.writing.metadata.xmp = "<x n='" + std::to_string(number) + "'/>";
  ExifBlock exif;
  exif.SetText(ExifDirectoryId::main, TIFFTAG_MAKE, "Maker " + std::to_string(number));
  exif.SetText(ExifDirectoryId::gps, 1, number % 2 == 0 ? "N" : "S");
  sheet.writing.metadata.exif = exif.Bytes();
  sheet.writing.positionTags = {
      {42113, TIFF_ASCII, 3, {'-', static_cast<uint8_t>('0' + number % 10), 0}}};
  return sheet;
}

std::vector<Sheet> Sheets(std::mt19937& random) {
  std::vector<Sheet> sheets;
  sheets.push_back(SheetOf(1, RandomRaster(pf24bit, 40, 30, random), COMPRESSION_LZW));
  sheets.push_back(SheetOf(2, RandomRaster(pf1bit, 33, 21, random), COMPRESSION_CCITTFAX4));
  sheets.push_back(SheetOf(3, RandomRaster(pf8bit, 50, 11, random), COMPRESSION_ADOBE_DEFLATE));
  PixelLayout grid;
  grid.type = NumberType::uint16;
  grid.bits = 16;
  sheets.push_back(SheetOf(4, RandomSamplesOf(grid, 20, 30, false, random), COMPRESSION_NONE));
  sheets[0].extras.push_back(
      {RandomRaster(pf24bit, 20, 15, random), StripForm(COMPRESSION_LZW), 1});
  sheets[0].extras.push_back(
      {RandomRaster(pf1bit, 40, 30, random), StripForm(COMPRESSION_NONE), 4});
  sheets[2].extras.push_back({RandomRaster(pf8bit, 25, 5, random), StripForm(COMPRESSION_NONE), 1});
  return sheets;
}

ByteList DocumentOf(const std::vector<Sheet>& sheets, const FileKind& kind) {
  TMemoryStream target;
  TiffDocumentWriter writer(target, kind.isBig, kind.isBigEndian);
  for (const Sheet& sheet : sheets) {
    const WrittenPicture written = writer.AddPage(sheet.pixels, sheet.writing, sheet.extras);
    EXPECT_EQ(std::get<TiffForm>(written.form).isBigEndian, kind.isBigEndian);
    EXPECT_EQ(std::get<TiffForm>(written.form).isBigTiff, kind.isBig);
    EXPECT_TRUE(written.changes.losses.empty());
  }
  writer.Finish();
  return target.TakeBytes();
}

void ExpectSheet(const Sheet& expected, TStream& page, int pages, const FileKind& kind) {
  const PictureHeader header = ReadTiffHeader(page);
  EXPECT_EQ(header.pages, pages);
  EXPECT_EQ(header.width, WidthOf(expected.pixels));
  EXPECT_EQ(header.metadata.xmp, expected.writing.metadata.xmp);
  EXPECT_EQ(header.metadata.resolution, expected.writing.metadata.resolution);
  EXPECT_EQ(header.positionTags, expected.writing.positionTags);
  EXPECT_EQ(ExifBlock(header.metadata.exif).Text(ExifDirectoryId::main, TIFFTAG_MAKE),
            ExifBlock(expected.writing.metadata.exif).Text(ExifDirectoryId::main, TIFFTAG_MAKE));
  EXPECT_EQ(ExifBlock(header.metadata.exif).Text(ExifDirectoryId::gps, 1),
            ExifBlock(expected.writing.metadata.exif).Text(ExifDirectoryId::gps, 1));
  EXPECT_EQ(std::get<TiffForm>(header.form).isBigEndian, kind.isBigEndian);
  EXPECT_EQ(static_cast<size_t>(header.smallerCopies + header.masks), expected.extras.size());
  page.SetPosition(0);
  EXPECT_TRUE(SameNumbers(expected.pixels, DecodeTiffPixels(page)));
  page.SetPosition(0);
  const std::vector<TiffExtraPageHeader> extras = ReadTiffExtraPages(page);
  ASSERT_EQ(extras.size(), expected.extras.size());
  for (size_t i = 0; i < extras.size(); i++) {
    EXPECT_EQ(extras[i].subfileType, expected.extras[i].subfileType);
    page.SetPosition(0);
    EXPECT_TRUE(SameNumbers(expected.extras[i].pixels, DecodeTiffExtraPage(page, i)));
  }
}

TEST(TiffDocument, Should_ReadEveryPageWithItsOwnThings_When_StreamIsThatOfThePage) {
  std::mt19937 random(31);
  const std::vector<Sheet> sheets = Sheets(random);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(NameOf(kind));
    const ByteList bytes = DocumentOf(sheets, kind);
    TSpanStream stream(bytes);
    EXPECT_EQ(CountTiffPages(stream), 4);
    EXPECT_EQ(stream.Position(), 0u);
    for (int page = 1; page <= 4; page++) {
      SCOPED_TRACE(page);
      const auto alone = TiffPageStream(stream, page);
      EXPECT_EQ(stream.Position(), 0u);
      ExpectSheet(sheets[static_cast<size_t>(page) - 1], *alone, 4, kind);
    }
    TSpanStream again(bytes);
    const TiffDocumentReader source(again);
    EXPECT_EQ(source.IsBigTiff(), kind.isBig);
    EXPECT_EQ(source.IsBigEndian(), kind.isBigEndian);
    for (int page = 4; page >= 1; page--) {
      ExpectSheet(sheets[static_cast<size_t>(page) - 1], *source.PageStream(page), 4, kind);
    }
    EXPECT_THROW(source.PageStream(0), RangeError);
    EXPECT_THROW(TiffPageStream(stream, 5), RangeError);
  }
}

TEST(TiffDocument, Should_GiveTheFrameDecoderThePage_When_StreamIsThatOfThePage) {
  std::mt19937 random(32);
  const std::vector<Sheet> sheets = Sheets(random);
  const ByteList bytes = DocumentOf(sheets, {});
  TSpanStream stream(bytes);
  for (const int page : {1, 3}) {
    const auto alone = TiffPageStream(stream, page);
    const Raster rows = DecodeTiff(*alone).rows;
    EXPECT_TRUE(SameNumbers(sheets[static_cast<size_t>(page) - 1].pixels, Pixels(rows.Clone())));
  }
}

/// The copy of a page by CopyTiff has that page and nothing of the others.
TEST(TiffDocument, Should_CopyThePageAlone_When_StreamIsThatOfThePage) {
  std::mt19937 random(33);
  const std::vector<Sheet> sheets = Sheets(random);
  const ByteList bytes = DocumentOf(sheets, {});
  TSpanStream stream(bytes);
  const auto alone = TiffPageStream(stream, 3);
  TMemoryStream target;
  CopyTiff(*alone, sheets[2].writing, target);
  TSpanStream copy(target.Bytes());
  ExpectSheet(sheets[2], copy, 1, {});
}

TEST(TiffDocument, Should_KeepOtherPages_When_OneIsReplaced) {
  std::mt19937 random(34);
  std::vector<Sheet> sheets = Sheets(random);
  for (const FileKind& kind : kFileKinds) {
    const ByteList bytes = DocumentOf(sheets, kind);
    const Sheet changed = SheetOf(7, RandomRaster(pf24bit, 12, 9, random), COMPRESSION_LZW);
    TSpanStream stream(bytes);
    const TiffDocumentReader source(stream);
    TMemoryStream target;
    TiffDocumentWriter writer(target, kind.isBig, kind.isBigEndian);
    writer.CopyPage(source, 1);
    writer.AddPage(changed.pixels, changed.writing);
    // The same page with other metadata.
    writer.CopyPage(source, 3, SheetOf(9, sheets[2].pixels, COMPRESSION_LZW).writing);
    writer.CopyPage(source, 4);
    writer.Finish();
    EXPECT_EQ(target.Position(), target.Size());
    const ByteList result = target.TakeBytes();
    const std::vector<MadeDirectory> before = ReadMade(bytes), after = ReadMade(result);
    ASSERT_EQ(before.size(), 7u);
    ASSERT_EQ(after.size(), 7u);
    for (const size_t same : {0, 1, 2, 5, 6}) {
      EXPECT_TRUE(SameDirectory(before[same], after[same])) << same;
    }
    EXPECT_EQ(before[4].blocks, after[4].blocks);
    for (const ByteList& block : before[3].blocks) {
      if (block.size() >= 16) {
        EXPECT_FALSE(Contains(result, block));
      }
    }
    TSpanStream again(result);
    ExpectSheet(changed, *TiffPageStream(again, 2), 4, kind);
    const PictureHeader third = ReadTiffHeader(*TiffPageStream(again, 3));
    EXPECT_EQ(third.metadata.xmp, "<x n='9'/>");
    EXPECT_EQ(third.smallerCopies, 1);
    ExpectSheet(sheets[3], *TiffPageStream(again, 4), 4, kind);
  }
}

TEST(TiffDocument, Should_WriteTheSamePage_When_DocumentHasOne) {
  std::mt19937 random(35);
  const std::vector<Sheet> sheets = Sheets(random);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  writer.AddPage(sheets[0].pixels, sheets[0].writing, sheets[0].extras);
  writer.Finish();
  TMemoryStream alone;
  WriteTiff(sheets[0].pixels, sheets[0].writing, sheets[0].extras, alone);
  EXPECT_EQ(target.TakeBytes(), alone.TakeBytes());
}

TEST(TiffDocument, Should_StateThePageNumber_When_PageIsNew) {
  std::mt19937 random(36);
  const std::vector<Sheet> sheets = Sheets(random);
  TMemoryStream target;
  TiffDocumentWriter writer(target, false, false);
  writer.NumberNextPage({3, 5});
  writer.AddPage(sheets[1].pixels, sheets[1].writing);
  writer.AddPage(sheets[1].pixels, sheets[1].writing);
  writer.Finish();
  TSpanStream stream(target.Bytes());
  const TiffDocumentReader source(stream);
  EXPECT_EQ(source.PageNumber(1), (TiffPageNumber{3, 5}));
  EXPECT_EQ(source.PageNumber(2), std::nullopt);
  EXPECT_EQ(source.Pages(), 2);
}

TEST(TiffDocument, Should_BoundTheSize_When_PagesAreNew) {
  std::mt19937 random(37);
  for (const Sheet& sheet : Sheets(random)) {
    const uint64_t most = TiffPageBytes(sheet.pixels, sheet.writing, sheet.extras);
    TMemoryStream target;
    TiffDocumentWriter writer(target, true, false);
    writer.AddPage(sheet.pixels, sheet.writing, sheet.extras);
    writer.Finish();
    EXPECT_LE(target.Size(), most);
  }
}

/// Starts in the middle of a stream, as a file in an archive does.
TEST(TiffDocument, Should_StartAtThePosition_When_BytesComeBefore) {
  std::mt19937 random(38);
  const std::vector<MadeDirectory> pages = {RandomPage(random), RichPage(random)};
  const ByteList bytes = WriteMade(pages, false, true, random);
  ByteList shifted(101, 'x');
  shifted.insert(shifted.end(), bytes.begin(), bytes.end());
  TSpanStream stream(shifted);
  stream.SetPosition(101);
  EXPECT_EQ(CountTiffPages(stream), 2);
  EXPECT_EQ(stream.Position(), 101u);
  TMemoryStream target;
  target.Write(ByteList(7, 'y'));
  TiffDocumentWriter writer(target, false, true);
  writer.CopyPage(stream, 2);
  writer.CopyPage(stream, 1);
  writer.Finish();
  const ByteList whole = target.TakeBytes();
  const std::vector<MadeDirectory> copy = ReadMade({whole.begin() + 7, whole.end()});
  ASSERT_EQ(copy.size(), 2u);
  EXPECT_TRUE(SameDirectory(pages[1], copy[0]));
  EXPECT_TRUE(SameDirectory(pages[0], copy[1]));
}

}  // namespace
}  // namespace rasterkit::test
