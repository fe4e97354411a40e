// Parts of pages: pixels and words that depend neither on what was read before nor on where the
// part begins.

#include <algorithm>
#include <cstring>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/codecs/tiff/rows/page_rows.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/tiff/rows/made_pages.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr unsigned kSeed = 23;

/// What reading a part gave: pixels and words, or an error.
struct PartReading {
  Raster rows;
  CodecReport report;
  std::string error;
};

PartReading ReadPart(const std::vector<uint8_t>& bytes, const std::vector<int>& tops, int height,
                     int threads = 1) {
  PartReading reading;
  TSpanStream stream(bytes);
  try {
    const auto reader = OpenTiffRows(stream, {.threads = threads});
    for (const int top : tops) {
      Pixels rows = NewPixels(reader->Like(), reader->Width(), height);
      reader->Read(0, top, rows);
      reading.rows = std::move(std::get<Raster>(rows));
    }
    reader->Finish(reading.report);
  } catch (const Error& error) {
    reading.error = error.what();
  }
  return reading;
}

/// Tiles of more than 4096 bytes per row, which are read into the target in place.
TEST(TiffPageParts, Should_KeepOtherTiles_When_APartIsAsWideAsATile) {
  constexpr int kWidth = 3000, kHeight = 70, kTile = 1024;
  std::mt19937 random(kSeed);
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.model = ColorModel::rgb;
  layout.bits = 16;
  layout.bands = 3;
  const Samples samples = RandomSamplesOf(layout, kWidth, kHeight, false, random);
  TiffForm form = StripForm(COMPRESSION_NONE);
  form.rowsPerStrip = 0;
  form.tileWidth = kTile;
  form.tileHeight = 32;
  const std::vector<uint8_t> bytes = PageOf(Pixels(samples.Clone()), form);
  constexpr size_t kPixelBytes = 6;
  for (const int threads : {1, 2, 7}) {
    TSpanStream stream(bytes);
    const auto reader = OpenTiffRows(stream, {.threads = threads});
    ASSERT_TRUE(reader);
    for (const int left : {0, 1, 100, 152, 1000, 1024, 1030, kWidth - kTile}) {
      for (const int height : {1, 7, 64}) {
        for (int top = 0; top + height <= kHeight; top += height) {
          Pixels part = NewPixels(reader->Like(), kTile, height);
          reader->Read(left, top, part);
          const auto& read = std::get<Samples>(part);
          for (int y = 0; y < height; y++) {
            const uint8_t* expected =
                samples.Row(top + y) + static_cast<size_t>(left) * kPixelBytes;
            ASSERT_EQ(std::memcmp(read.Row(y), expected, kTile * kPixelBytes), 0)
                << "from " << left << ", row " << top + y << " in bands of " << height;
          }
        }
      }
    }
  }
}

/// Rows of 1 bit that resemble those above them, as those of plans do.
Raster PlanRows(int width, int height, std::mt19937& random) {
  Raster raster = RandomRaster(pf1bit, width, height, random);
  for (int y = 0; y < height; y++) {
    uint8_t* row = raster.Row(y);
    if (y == 0) {
      std::memset(row, 0xF0, raster.RowBytes());
      continue;
    }
    std::memcpy(row, raster.Row(y - 1), raster.RowBytes());
    for (int i = 0; i < 6; i++) row[random() % raster.RowBytes()] ^= 1u << random() % 8;
  }
  raster.ClearPadding();
  return raster;
}

/// How many strips libtiff reads in another way on a handle that has read the others before.
int StripsThatRemember(const std::vector<uint8_t>& bytes) {
  const TempFolder folder;
  const std::string name = (folder.Path() / "strips.tif").string();
  std::ofstream(name, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  TIFFSetErrorHandler(nullptr);
  TIFFSetWarningHandler(nullptr);
  TIFF* used = TIFFOpen(name.c_str(), "r");
  const auto size = static_cast<size_t>(TIFFStripSize(used));
  int others = 0;
  for (uint32_t strip = 0; strip < TIFFNumberOfStrips(used); strip++) {
    std::vector<uint8_t> a(size), b(size);
    TIFF* fresh = TIFFOpen(name.c_str(), "r");
    TIFFReadEncodedStrip(used, strip, a.data(), -1);
    TIFFReadEncodedStrip(fresh, strip, b.data(), -1);
    TIFFClose(fresh);
    if (a != b) others++;
  }
  TIFFClose(used);
  return others;
}

TEST(TiffPageParts, Should_NotDependOnStripsBefore_When_G4StripsAreDamaged) {
  constexpr int kWidth = 1237, kHeight = 96, kRows = 16;
  std::mt19937 random(kSeed);
  TiffForm form = StripForm(COMPRESSION_CCITTFAX4);
  form.rowsPerStrip = kRows;
  int others = 0;
  for (int round = 0; round < 40; round++) {
    std::vector<uint8_t> bytes = PageOf(PlanRows(kWidth, kHeight, random), form);
    // Each strip is damaged in its middle.
    const std::vector<uint8_t> kept = bytes;
    TSpanStream stream(kept);
    const detail::TagReader reader(stream);
    const auto places = *reader.Directory(reader.First())->Find(TIFFTAG_STRIPOFFSETS);
    for (size_t i = 0; i < places.count; i++) {
      uint32_t place = 0;
      std::memcpy(&place, kept.data() + places.at + i * 4, sizeof place);
      for (int hit = 0; hit < 2; hit++) {
        bytes[std::min<size_t>(place + 20 + random() % 200, bytes.size() - 1)] ^= 1u
                                                                                  << random() % 8;
      }
    }
    PartReading whole;
    try {
      whole = ReadPart(bytes, {0}, kHeight);
    } catch (const std::exception&) {
      continue;
    }
    if (!whole.error.empty()) continue;
    others += StripsThatRemember(bytes);
    for (int top = 0; top < kHeight; top += kRows) {
      const PartReading fresh = ReadPart(bytes, {top}, kRows);
      const int last = kHeight - kRows - top;
      const PartReading used = ReadPart(bytes, {last, 0, top}, kRows, 2);
      for (int y = 0; y < kRows; y++) {
        const size_t count = whole.rows.RowBytes();
        ASSERT_EQ(std::memcmp(fresh.rows.Row(y), whole.rows.Row(top + y), count), 0)
            << "round " << round << ", row " << top + y;
        ASSERT_EQ(std::memcmp(used.rows.Row(y), whole.rows.Row(top + y), count), 0)
            << "round " << round << ", row " << top + y;
      }
      for (const std::string& word : fresh.report.damage) {
        if (whole.report.damage.size() < 8) {
          EXPECT_THAT(whole.report.damage, testing::Contains(word));
        }
      }
    }
  }
  // Otherwise nothing was tested.
  EXPECT_GT(others, 0);
}

std::vector<uint8_t> CutPage(const TiffForm& form, double share) {
  std::mt19937 random(kSeed);
  std::vector<uint8_t> bytes = PageOf(RandomRaster(pf24bit, 150, 110, random), form);
  // The directory stands before the pixels or behind them: only pixels are made to be missing.
  const std::vector<uint8_t> kept = bytes;
  TSpanStream stream(kept);
  const detail::TagReader reader(stream);
  const auto first = reader.Directory(reader.First());
  const auto places = *first->Find(TIFFTAG_STRIPOFFSETS);
  for (auto i = static_cast<size_t>(static_cast<double>(places.count) * share); i < places.count;
       i++) {
    // Little-endian; beyond the end of the file.
    const uint32_t place = 0x7FFFFFF0;
    std::memcpy(bytes.data() + places.at + i * 4, &place, sizeof place);
  }
  return bytes;
}

TEST(TiffPageParts, Should_RefuseAPart_When_APlaneIsMissing) {
  for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW}) {
    TiffForm form = StripForm(compression);
    form.isPlanar = true;
    const std::vector<uint8_t> bytes = CutPage(form, 0.66);
    const PartReading whole = ReadPart(bytes, {0}, 110), part = ReadPart(bytes, {20}, 50);
    EXPECT_THAT(whole.error, HasSubstr("the data end early"));
    EXPECT_EQ(part.error, whole.error);
  }
}

TEST(TiffPageParts, Should_CountRowsThatWereRead_When_APartIsDamaged) {
  for (const int compression : {COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
    // Strips of 7 rows; the first 8 of 16 are there.
    const std::vector<uint8_t> bytes = CutPage(StripForm(compression), 0.5);
    EXPECT_THAT(ReadPart(bytes, {0}, 110).report.damage,
                ElementsAre(HasSubstr("56 of 110 rows are complete"), HasSubstr("end early")));
    EXPECT_THAT(ReadPart(bytes, {42}, 28).report.damage,
                ElementsAre(HasSubstr("14 of the 28 rows that were read are complete"),
                            HasSubstr("end early")));
    const PartReading lower = ReadPart(bytes, {70}, 20);
    EXPECT_EQ(lower.error, "");
    EXPECT_THAT(lower.report.damage,
                ElementsAre(HasSubstr("3 of the 3 strips or tiles that were read are damaged"),
                            HasSubstr("end early")));
    EXPECT_THAT(ReadPart(bytes, {7}, 40).report.damage, ElementsAre());
  }
}

}  // namespace
}  // namespace rasterkit::test
