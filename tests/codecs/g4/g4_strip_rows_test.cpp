#include <functional>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/codecs/g4/g4_peer.h"
#include "tests/codecs/g4/g4_rows.h"

namespace rasterkit::tests {
namespace {

constexpr int kWidth = 3001, kHeight = 3000;

/// What a page gives: rows, words, or an error.
struct Given {
  std::vector<uint8_t> rows;
  CodecReport report;
  std::string error;
};

void Append(const Pixels& pixels, std::vector<uint8_t>& rows) {
  const auto& raster = std::get<Raster>(pixels);
  for (int y = 0; y < raster.Height(); y++) {
    rows.insert(rows.end(), raster.Row(y), raster.Row(y) + raster.Stride());
  }
}

Given Whole(std::span<const uint8_t> file) {
  Given given;
  TSpanStream stream(file);
  try {
    Append(DecodeTiffPixels(stream, {}, &given.report), given.rows);
  } catch (const Error& error) {
    given.error = error.what();
  }
  return given;
}

Given InBands(std::span<const uint8_t> file, int height) {
  Given given;
  TSpanStream stream(file);
  try {
    const auto reader = OpenTiffRows(stream, {});
    EXPECT_EQ(reader->Access(), RowAccess::rising);
    for (int y = 0; y < reader->Height(); y += height) {
      Pixels band =
          NewPixels(reader->Like(), reader->Width(), std::min(height, reader->Height() - y));
      reader->Read(0, y, band);
      Append(band, given.rows);
    }
    reader->Finish(given.report);
  } catch (const Error& error) {
    given.error = error.what();
  }
  return given;
}

/// A file of one strip.
std::vector<uint8_t> FileOf(const PackedRows& rows, bool isLowBitFirst, uint16_t photometric) {
  peer::TiffBytes file;
  {
    const auto tiff = file.Open("wl");
    peer::SetG4Tags(tiff.get(), rows.width, static_cast<uint32_t>(rows.height), isLowBitFirst);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, photometric);
    std::vector<uint8_t> bytes = rows.bytes;
    TIFFWriteEncodedStrip(tiff.get(), 0, bytes.data(), static_cast<tmsize_t>(bytes.size()));
  }
  return file.bytes;
}

void ExpectSameInBands(std::span<const uint8_t> file) {
  const Given whole = Whole(file);
  for (const int height : {1, 7, 64, kHeight}) {
    const Given bands = InBands(file, height);
    ASSERT_EQ(bands.error, whole.error) << height;
    ASSERT_EQ(bands.report.warnings, whole.report.warnings) << height;
    ASSERT_EQ(bands.report.damage, whole.report.damage) << height;
    if (whole.error.empty()) {
      ASSERT_TRUE(bands.rows == whole.rows) << height;
    }
  }
}

TEST(G4StripRows, AreThoseOfTheWholePicture) {
  constexpr unsigned kSeed = 51;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  const PackedRows rows = RandomRows(random, kWidth, kHeight, 60, 2);
  for (const bool isLowBitFirst : {false, true}) {
    for (const uint16_t photometric : {PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_MINISBLACK}) {
      const std::vector<uint8_t> file = FileOf(rows, isLowBitFirst, photometric);
      ExpectSameInBands(file);
      const Given whole = Whole(file);
      ASSERT_TRUE(whole.error.empty() && whole.report.warnings.empty());
      // Black where the file has it.
      const size_t stride = whole.rows.size() / kHeight;
      for (const int x : {0, 1, 700, kWidth - 1}) {
        const bool isOne =
            (whole.rows[1234 * stride + static_cast<size_t>(x) / 8] >> (7 - x % 8) & 1) != 0;
        const bool isOneInFile = rows.At(x, 1234);
        EXPECT_EQ(isOne, photometric == PHOTOMETRIC_MINISWHITE ? !isOneInFile : isOneInFile);
      }
    }
  }
}

TEST(G4StripRows, AreThoseOfLibtiffWhereTheStripIsDamaged) {
  constexpr unsigned kSeed = 52;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  const std::vector<uint8_t> intact =
      FileOf(RandomRows(random, kWidth, kHeight, 300, 2), false, PHOTOMETRIC_MINISWHITE);
  int withWarnings = 0;
  for (int i = 0; i < 12; i++) {
    std::vector<uint8_t> file = intact;
    // The strip lies between the header and the directory.
    const size_t at = 100 + random() % (file.size() - 2000);
    if (i % 3 == 0) {
      file[at] ^= 0x18;
    } else if (i % 3 == 1) {
      std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(at), 400, uint8_t{0});
    } else {
      for (size_t k = 0; k < 300; k++) file[at + k] = static_cast<uint8_t>(random());
    }
    ExpectSameInBands(file);
    withWarnings += Whole(file).report.warnings.empty() ? 0 : 1;
  }
  EXPECT_GT(withWarnings, 6);
}

}  // namespace
}  // namespace rasterkit::tests
