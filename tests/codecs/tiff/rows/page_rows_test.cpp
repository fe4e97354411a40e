// Pages read in bands and parts: the pixels, warnings and errors of a page that is read as a whole.

#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/codecs/tiff/rows/page_rows.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/rows/made_pages.h"
#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

constexpr unsigned kSeed = 22;

/// What reading gave: pixels, or an error.
struct Reading {
  std::optional<Pixels> pixels;
  CodecReport report;
  std::string error;
};

Reading ReadWhole(const std::vector<uint8_t>& bytes) {
  Reading reading;
  TSpanStream stream(bytes);
  try {
    reading.pixels = DecodeTiffPixels(stream, {}, &reading.report);
  } catch (const Error& error) {
    reading.error = error.what();
  }
  return reading;
}

/// Nothing if the page is read only as a whole.
std::optional<Reading> ReadBands(const std::vector<uint8_t>& bytes, int rows, int threads) {
  Reading reading;
  TSpanStream stream(bytes);
  try {
    const auto reader = OpenTiffRows(stream, {.threads = threads});
    if (!reader) return std::nullopt;
    Pixels pixels = NewPixels(reader->Like(), reader->Width(), reader->Height());
    for (int y = 0; y < reader->Height(); y += rows) {
      const int count = std::min(rows, reader->Height() - y);
      Pixels band = NewPixels(reader->Like(), reader->Width(), count);
      reader->Read(0, y, band);
      CopyPart(band, {0, 0, reader->Width(), count}, pixels, 0, y);
    }
    reader->Finish(reading.report);
    reading.pixels = std::move(pixels);
  } catch (const Error& error) {
    reading.error = error.what();
  }
  return reading;
}

bool SameBytes(const Pixels& a, const Pixels& b) {
  if (a.index() != b.index() || WidthOf(a) != WidthOf(b) || HeightOf(a) != HeightOf(b))
    return false;
  for (int y = 0; y < HeightOf(a); y++) {
    if (const auto* raster = std::get_if<Raster>(&a)) {
      const auto& other = std::get<Raster>(b);
      if (raster->Format() != other.Format() ||
          std::memcmp(raster->Row(y), other.Row(y), raster->Stride()) != 0) {
        return false;
      }
    } else {
      const auto& samples = std::get<Samples>(a);
      if (std::memcmp(samples.Row(y), std::get<Samples>(b).Row(y), samples.Stride()) != 0) {
        return false;
      }
    }
  }
  return true;
}

void ExpectSame(const Reading& expected, const Reading& actual, const std::string& name) {
  EXPECT_EQ(expected.error, actual.error) << name;
  EXPECT_EQ(expected.pixels.has_value(), actual.pixels.has_value()) << name;
  if (expected.pixels && actual.pixels) {
    EXPECT_TRUE(SameBytes(*expected.pixels, *actual.pixels)) << name;
    EXPECT_EQ(expected.report.warnings, actual.report.warnings) << name;
    EXPECT_EQ(expected.report.damage, actual.report.damage) << name;
  }
}

/// Returns how many readings were compared.
int CheckBands(const MadePage& page) {
  const Reading whole = ReadWhole(page.bytes);
  int compared = 0;
  for (const int rows : {1, 7, 64, 1 << 20}) {
    for (const int threads : {1, 2, 7}) {
      // One row after another on many threads is slow and adds nothing.
      if (rows == 1 && threads == 7) continue;
      const auto bands = ReadBands(page.bytes, rows, threads);
      if (!bands) return compared;
      ExpectSame(whole, *bands,
                 page.name + ", bands of " + std::to_string(rows) + " on " +
                     std::to_string(threads) + " threads");
      compared++;
    }
  }
  return compared;
}

void CheckParts(const MadePage& page, std::mt19937& random) {
  const Reading whole = ReadWhole(page.bytes);
  if (!whole.pixels) return;
  TSpanStream stream(page.bytes);
  const auto reader = OpenTiffRows(stream);
  if (!reader) return;
  for (int i = 0; i < 12; i++) {
    BandRect part;
    part.width = 1 + static_cast<int>(random() % static_cast<unsigned>(reader->Width()));
    part.height = 1 + static_cast<int>(random() % static_cast<unsigned>(reader->Height()));
    part.left =
        static_cast<int>(random() % static_cast<unsigned>(reader->Width() - part.width + 1));
    part.top =
        static_cast<int>(random() % static_cast<unsigned>(reader->Height() - part.height + 1));
    if (reader->Access() != RowAccess::anyParts) {
      part.left = 0;
      part.width = reader->Width();
    }
    Pixels read = NewPixels(reader->Like(), part.width, part.height);
    reader->Read(part.left, part.top, read);
    const Band band =
        CutBand({whole.pixels->index() == 0 ? Pixels(std::get<Raster>(*whole.pixels).Clone())
                                            : Pixels(std::get<Samples>(*whole.pixels).Clone()),
                 0, 0},
                part);
    EXPECT_TRUE(SameBytes(band.pixels, read))
        << page.name << ": " << part.width << " x " << part.height << " from " << part.left << ", "
        << part.top;
  }
}

TEST(TiffPageRows, Should_GiveTheWholePage_When_ReadInBands) {
  int compared = 0;
  for (const MadePage& page : MadePages(false)) compared += CheckBands(page);
  EXPECT_GT(compared, 5000);
}

TEST(TiffPageRows, Should_GiveTheSameDamage_When_ReadInBands) {
  int compared = 0;
  for (const MadePage& page : MadePages(true)) compared += CheckBands(page);
  EXPECT_GT(compared, 5000);
}

TEST(TiffPageRows, Should_GivePartsOfThePage_When_PartsAreRead) {
  std::mt19937 random(kSeed);
  for (const bool damaged : {false, true}) {
    for (const MadePage& page : MadePages(damaged)) CheckParts(page, random);
  }
}

/// A page of tiles of 32 x 16.
std::vector<uint8_t> TiledPage(int compression) {
  std::mt19937 random(kSeed);
  TiffForm form = StripForm(compression);
  form.rowsPerStrip = 0;
  form.tileWidth = 32;
  form.tileHeight = 16;
  return PageOf(RandomRaster(pf24bit, 32 * 8, 16 * 8, random), form);
}

uint64_t UnpackedFor(RowReader& reader, const BandRect& part) {
  const uint64_t before = detail::UnpackedTiffBlocks(reader);
  Pixels read = NewPixels(reader.Like(), part.width, part.height);
  reader.Read(part.left, part.top, read);
  return detail::UnpackedTiffBlocks(reader) - before;
}

TEST(TiffPageRows, Should_UnpackOnlyItsTiles_When_APartIsRead) {
  const std::vector<uint8_t> bytes = TiledPage(COMPRESSION_ADOBE_DEFLATE);
  TSpanStream stream(bytes);
  const auto reader = OpenTiffRows(stream);
  EXPECT_EQ(reader->Access(), RowAccess::anyParts);
  EXPECT_EQ(reader->BlockRows(), 16);
  EXPECT_EQ(UnpackedFor(*reader, {40, 20, 10, 10}), 1u);
  // The tile was kept.
  EXPECT_EQ(UnpackedFor(*reader, {33, 17, 20, 12}), 0u);
  EXPECT_EQ(UnpackedFor(*reader, {40, 20, 60, 40}), 8u);
}

TEST(TiffPageRows, Should_UnpackEachTileOnce_When_BandsRise) {
  const std::vector<uint8_t> bytes = TiledPage(COMPRESSION_LZW);
  for (const int rows : {1, 3, 5, 16, 20, 128}) {
    TSpanStream stream(bytes);
    const auto reader = OpenTiffRows(stream, {.threads = 2});
    for (int y = 0; y < 128; y += rows) UnpackedFor(*reader, {0, y, 256, std::min(rows, 128 - y)});
    EXPECT_EQ(detail::UnpackedTiffBlocks(*reader), 64u) << rows;
  }
}

TEST(TiffPageRows, Should_UnpackEachTileOnce_When_ColumnsAreRead) {
  const std::vector<uint8_t> bytes = TiledPage(COMPRESSION_LZW);
  TSpanStream stream(bytes);
  const auto reader = OpenTiffRows(stream);
  for (int x = 0; x < 256; x += 8) UnpackedFor(*reader, {x, 0, 8, 128});
  EXPECT_EQ(detail::UnpackedTiffBlocks(*reader), 64u);
}

TEST(TiffPageRows, Should_UnpackOnlyItsStrips_When_RowsAreRead) {
  std::mt19937 random(kSeed);
  const std::vector<uint8_t> bytes =
      PageOf(RandomRaster(pf24bit, 50, 70, random), StripForm(COMPRESSION_LZW));
  TSpanStream stream(bytes);
  const auto reader = OpenTiffRows(stream);
  EXPECT_EQ(reader->Access(), RowAccess::anyRows);
  EXPECT_EQ(UnpackedFor(*reader, {0, 35, 50, 10}), 2u);
  EXPECT_EQ(UnpackedFor(*reader, {0, 45, 50, 4}), 0u);
}

/// Counts the bytes that are read.
class CountedStream : public TSpanStream {
 public:
  using TSpanStream::TSpanStream;
  size_t Read(std::span<uint8_t> target) override {
    const size_t count = TSpanStream::Read(target);
    read += count;
    return count;
  }
  uint64_t read = 0;
};

TEST(TiffPageRows, Should_ReadLittleMoreThanItsBytes_When_APartOfAPlainPageIsRead) {
  std::mt19937 random(kSeed);
  const std::vector<uint8_t> bytes =
      PageOf(RandomRaster(pf24bit, 9000, 100, random), StripForm(COMPRESSION_NONE));
  CountedStream stream(bytes);
  const auto reader = OpenTiffRows(stream);
  const uint64_t before = stream.read;
  UnpackedFor(*reader, {100, 10, 2000, 30});
  EXPECT_EQ(stream.read - before, 2000u * 3 * 30);
}

/// One strip of 18 MB, half of which is random.
std::vector<uint8_t> LongStripPage(int compression) {
  std::mt19937 random(kSeed);
  Raster raster = RandomRaster(pf24bit, 3000, 2000, random);
  for (int y = 0; y < 2000; y += 2) std::memset(raster.Row(y), y % 251, raster.Stride());
  TiffForm form = StripForm(compression);
  form.rowsPerStrip = 2000;
  return PageOf(std::move(raster), form);
}

TEST(TiffPageRows, Should_GiveTheWholePage_When_ALongStripIsReadRowByRow) {
  std::mt19937 random(kSeed);
  for (const int compression :
       {COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS, COMPRESSION_ZSTD}) {
    const std::string name = "compression " + std::to_string(compression);
    for (const MadePage& page : Damaged(name, LongStripPage(compression), random)) {
      TSpanStream stream(page.bytes);
      EXPECT_EQ(OpenTiffRows(stream)->Access(), RowAccess::rising);
      const auto bands = ReadBands(page.bytes, 64, 1);
      ExpectSame(ReadWhole(page.bytes), *bands, page.name);
    }
  }
}

TEST(TiffPageRows, Should_SkipRows_When_OnlyLowerOnesOfALongStripAreRead) {
  const std::vector<uint8_t> bytes = LongStripPage(COMPRESSION_LZW);
  const Reading whole = ReadWhole(bytes);
  TSpanStream stream(bytes);
  const auto reader = OpenTiffRows(stream);
  for (const int top : {500, 510, 1999}) {
    Pixels row = NewPixels(reader->Like(), 3000, 1);
    reader->Read(0, top, row);
    const auto& expected = std::get<Raster>(*whole.pixels);
    EXPECT_EQ(std::memcmp(std::get<Raster>(row).Row(0), expected.Row(top), expected.Stride()), 0);
  }
}

/// A sparse BigTIFF file of 4 gigapixels with one tile, at the place 30,000, 20,000.
std::string HugePage(const TempFolder& folder, int compression) {
  const std::string name = (folder.Path() / "huge.tif").string();
  TIFF* tiff = TIFFOpen(name.c_str(), "w8");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 65536);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 61440);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
  TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 256);
  TIFFSetField(tiff, TIFFTAG_TILELENGTH, 256);
  std::vector<uint8_t> tile(size_t{3} * 256 * 256);
  for (size_t i = 0; i < tile.size(); i++) tile[i] = static_cast<uint8_t>(i % 241 + 1);
  const uint32_t number = TIFFComputeTile(tiff, 30000, 20000, 0, 0);
  TIFFWriteEncodedTile(tiff, number, tile.data(), static_cast<tmsize_t>(tile.size()));
  TIFFClose(tiff);
  return name;
}

TEST(TiffPageRows, Should_ReadParts_When_ThePageIsTooLargeForMemory) {
  for (const int compression : {COMPRESSION_NONE, COMPRESSION_ADOBE_DEFLATE}) {
    const TempFolder folder;
    TFileStream file(HugePage(folder, compression));
    const auto reader = OpenTiffRows(file);
    ASSERT_TRUE(reader);
    Pixels part = NewPixels(reader->Like(), 300, 300);
    reader->Read(29952, 19968, part);
    const auto& raster = std::get<Raster>(part);
    // The tile begins at that place; the one beside it is sparse.
    EXPECT_EQ(raster.PixelColor(0, 0), RGB(1, 2, 3));
    EXPECT_EQ(raster.PixelColor(256, 0), RGB(0, 0, 0));
    if (compression != COMPRESSION_NONE) {
      EXPECT_EQ(detail::UnpackedTiffBlocks(*reader), 1u);
    }
    CodecReport report;
    reader->Finish(report);
    EXPECT_EQ(report.warnings, std::vector<std::string>());
    file.SetPosition(0);
    EXPECT_THROW(DecodeTiffPixels(file), LimitError);
  }
}

TEST(TiffPageRows, Should_ReadASmallerCopy_When_OneIsLargeEnough) {
  std::mt19937 random(kSeed);
  const Pixels page = RandomRaster(pf24bit, 400, 300, random);
  std::vector<TiffExtraPage> extras;
  for (const int width : {200, 100, 50}) {
    extras.push_back({RandomRaster(pf24bit, width, width * 3 / 4, random), StripForm(1), 1});
  }
  // Another kind of pixels, and a mask.
  extras.push_back({RandomRaster(pf8bit, 120, 90, random), StripForm(1), 1});
  extras.push_back({RandomRaster(pf24bit, 110, 82, random), StripForm(1), 4});
  TMemoryStream stream;
  WriteTiff(page, {}, extras, stream);
  const auto find = [&](int width, int height) {
    stream.SetPosition(0);
    return FindTiffSmallerCopy(stream, width, height);
  };
  EXPECT_EQ(find(100, 75), std::optional<size_t>(1));
  EXPECT_EQ(find(101, 75), std::optional<size_t>(0));
  EXPECT_EQ(find(10, 10), std::optional<size_t>(2));
  EXPECT_EQ(find(201, 10), std::nullopt);
  const auto reader = OpenTiffExtraPageRows(stream, 1);
  ASSERT_TRUE(reader);
  Pixels copy = NewPixels(reader->Like(), 100, 75);
  reader->Read(0, 0, copy);
  EXPECT_TRUE(SameBytes(copy, extras[1].pixels));
  stream.SetPosition(0);
  EXPECT_THROW(OpenTiffExtraPageRows(stream, 5), RangeError);
}

TEST(TiffPageRows, Should_Refuse_When_APartIsOutside) {
  const std::vector<uint8_t> bytes = TiledPage(COMPRESSION_NONE);
  TSpanStream stream(bytes);
  const auto reader = OpenTiffRows(stream);
  Pixels part = NewPixels(reader->Like(), 10, 10);
  EXPECT_THROW(reader->Read(247, 0, part), RangeError);
  EXPECT_THROW(reader->Read(0, 119, part), RangeError);
  EXPECT_THROW(reader->Read(-1, 0, part), RangeError);
}

TEST(TiffPageRows, Should_GiveTheWholePage_When_RealFilesAreReadInBands) {
  int compared = 0;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const std::string& path = entry.at("path");
    if (!path.ends_with(".tif") && !path.ends_with(".tiff")) continue;
    TMemoryStream file;
    file.LoadFromFile((CorpusFolder() / path).string());
    const std::vector<uint8_t> bytes = file.TakeBytes();
    const Reading whole = ReadWhole(bytes);
    for (const int rows : {7, 64}) {
      const auto bands = ReadBands(bytes, rows, rows == 7 ? 1 : 2);
      if (!bands) break;
      ExpectSame(whole, *bands, path + ", bands of " + std::to_string(rows));
      compared++;
    }
  }
  if (compared == 0) GTEST_SKIP() << "the corpus is not there";
  RecordProperty("compared", compared);
}

}  // namespace
}  // namespace rasterkit::test
