// Every kind of pixels in every arrangement that a TIFF file can have, against a reader that looks
// each pixel up on its own.

#include <bit>
#include <cstring>

#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>

#include "tests/reference/tiff_reference.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

constexpr uint32_t kWidth = 43, kHeight = 37;

struct Kind {
  const char* name;
  uint16_t photometric, bits, samples, sampleFormat;
  std::vector<uint16_t> extraSamples;
  WICPixelFormat format;
  bool isConverted;
};

constexpr uint16_t kWhite0 = PHOTOMETRIC_MINISWHITE, kBlack0 = PHOTOMETRIC_MINISBLACK,
                   kRgb = PHOTOMETRIC_RGB, kPalette = PHOTOMETRIC_PALETTE,
                   kInks = PHOTOMETRIC_SEPARATED;
constexpr uint16_t kUnsigned = SAMPLEFORMAT_UINT, kSigned = SAMPLEFORMAT_INT,
                   kFloat = SAMPLEFORMAT_IEEEFP;
constexpr uint16_t kStraight = EXTRASAMPLE_UNASSALPHA, kMultiplied = EXTRASAMPLE_ASSOCALPHA,
                   kOther = EXTRASAMPLE_UNSPECIFIED;
constexpr WICPixelFormat kBgr = GUID_WICPixelFormat24bppBGR, kBgra = GUID_WICPixelFormat32bppBGRA;

const std::vector<Kind>& Kinds() {
  static const std::vector<Kind> kinds = {
      {"bits, white is 0", kWhite0, 1, 1, kUnsigned, {}, GUID_WICPixelFormatBlackWhite, false},
      {"bits, black is 0", kBlack0, 1, 1, kUnsigned, {}, GUID_WICPixelFormatBlackWhite, false},
      {"2-bit gray", kBlack0, 2, 1, kUnsigned, {}, kBgra, true},
      {"4-bit gray", kBlack0, 4, 1, kUnsigned, {}, GUID_WICPixelFormat4bppGray, false},
      {"4-bit gray, white is 0", kWhite0, 4, 1, kUnsigned, {}, GUID_WICPixelFormat4bppGray, false},
      {"6-bit gray", kBlack0, 6, 1, kUnsigned, {}, kBgra, true},
      {"8-bit gray", kBlack0, 8, 1, kUnsigned, {}, GUID_WICPixelFormat8bppGray, false},
      {"8-bit gray, white is 0", kWhite0, 8, 1, kUnsigned, {}, GUID_WICPixelFormat8bppGray, false},
      {"8-bit gray of three",
       kBlack0,
       8,
       3,
       kUnsigned,
       {kOther, kOther},
       GUID_WICPixelFormat8bppGray,
       false},
      {"12-bit gray", kBlack0, 12, 1, kUnsigned, {}, kBgra, true},
      {"15-bit gray", kWhite0, 15, 1, kUnsigned, {}, kBgra, true},
      {"16-bit gray", kBlack0, 16, 1, kUnsigned, {}, GUID_WICPixelFormat16bppGray, false},
      {"16-bit gray, white is 0",
       kWhite0,
       16,
       1,
       kUnsigned,
       {},
       GUID_WICPixelFormat16bppGray,
       false},
      {"16-bit gray of five",
       kBlack0,
       16,
       5,
       kUnsigned,
       {kOther, kOther, kOther, kOther},
       GUID_WICPixelFormat16bppGray,
       false},
      {"signed words", kBlack0, 16, 1, kSigned, {}, GUID_WICPixelFormat16bppGrayFixedPoint, false},
      {"halves", kBlack0, 16, 1, kFloat, {}, GUID_WICPixelFormat16bppGrayHalf, false},
      {"floats", kBlack0, 32, 1, kFloat, {}, GUID_WICPixelFormat32bppGrayFloat, false},
      {"24-bit floats", kBlack0, 24, 1, kFloat, {}, GUID_WICPixelFormat32bppGrayFloat, false},
      {"24-bit floats of three",
       kBlack0,
       24,
       3,
       kFloat,
       {kOther, kOther},
       GUID_WICPixelFormat32bppGrayFloat,
       false},
      {"floats of two", kBlack0, 32, 2, kFloat, {kOther}, GUID_WICPixelFormat32bppGrayFloat, false},
      {"signed bytes", kBlack0, 8, 1, kSigned, {}, kBgra, true},
      {"24-bit integers", kBlack0, 24, 1, kUnsigned, {}, kBgra, true},
      {"32-bit integers", kBlack0, 32, 1, kUnsigned, {}, kBgra, true},
      {"32-bit signed integers", kBlack0, 32, 1, kSigned, {}, kBgra, true},
      {"64-bit integers", kBlack0, 64, 1, kSigned, {}, kBgra, true},
      {"doubles", kBlack0, 64, 1, kFloat, {}, kBgra, true},
      {"gray and alpha", kBlack0, 8, 2, kUnsigned, {kStraight}, kBgra, true},
      {"gray, white is 0, and alpha", kWhite0, 8, 2, kUnsigned, {kStraight}, kBgra, true},
      {"gray by alpha", kBlack0, 8, 2, kUnsigned, {kMultiplied}, kBgra, true},
      {"16-bit gray and alpha", kBlack0, 16, 2, kUnsigned, {kStraight}, kBgra, true},
      {"32-bit gray and alpha", kBlack0, 32, 2, kUnsigned, {kStraight}, kBgra, true},
      {"1-bit palette", kPalette, 1, 1, kUnsigned, {}, GUID_WICPixelFormat1bppIndexed, false},
      {"2-bit palette", kPalette, 2, 1, kUnsigned, {}, kBgra, true},
      {"4-bit palette", kPalette, 4, 1, kUnsigned, {}, GUID_WICPixelFormat4bppIndexed, false},
      {"8-bit palette", kPalette, 8, 1, kUnsigned, {}, GUID_WICPixelFormat8bppIndexed, false},
      {"8-bit palette of two",
       kPalette,
       8,
       2,
       kUnsigned,
       {kOther},
       GUID_WICPixelFormat8bppIndexed,
       false},
      {"10-bit palette", kPalette, 10, 1, kUnsigned, {}, kBgra, true},
      {"16-bit palette", kPalette, 16, 1, kUnsigned, {}, kBgra, true},
      {"palette and alpha", kPalette, 8, 2, kUnsigned, {kStraight}, kBgra, true},
      {"RGB", kRgb, 8, 3, kUnsigned, {}, kBgr, false},
      {"RGB of five", kRgb, 8, 5, kUnsigned, {kOther, kOther}, kBgr, false},
      {"RGBA", kRgb, 8, 4, kUnsigned, {kStraight}, kBgra, false},
      {"RGB by alpha", kRgb, 8, 4, kUnsigned, {kMultiplied}, kBgra, false},
      {"RGBA behind another sample", kRgb, 8, 5, kUnsigned, {kOther, kStraight}, kBgra, false},
      {"2-bit RGB", kRgb, 2, 3, kUnsigned, {}, kBgra, true},
      {"4-bit RGB", kRgb, 4, 3, kUnsigned, {}, kBgra, true},
      {"10-bit RGB", kRgb, 10, 3, kUnsigned, {}, kBgra, true},
      {"48-bit RGB", kRgb, 16, 3, kUnsigned, {}, kBgra, true},
      {"64-bit RGBA", kRgb, 16, 4, kUnsigned, {kStraight}, kBgra, true},
      {"64-bit RGB by alpha", kRgb, 16, 4, kUnsigned, {kMultiplied}, kBgra, true},
      {"48-bit signed RGB", kRgb, 16, 3, kSigned, {}, kBgra, true},
      {"72-bit RGB", kRgb, 24, 3, kUnsigned, {}, kBgra, true},
      {"96-bit RGB", kRgb, 32, 3, kUnsigned, {}, kBgra, true},
      {"RGB of halves", kRgb, 16, 3, kFloat, {}, kBgra, true},
      {"RGB of 24-bit floats", kRgb, 24, 3, kFloat, {}, kBgra, true},
      {"RGB of floats", kRgb, 32, 3, kFloat, {}, kBgra, true},
      {"RGBA of doubles", kRgb, 64, 4, kFloat, {kStraight}, kBgra, true},
      {"inks", kInks, 8, 4, kUnsigned, {}, kBgra, true},
      {"inks of five", kInks, 8, 5, kUnsigned, {kOther}, kBgra, true},
      {"inks and alpha", kInks, 8, 5, kUnsigned, {kStraight}, kBgra, true},
      {"16-bit inks", kInks, 16, 4, kUnsigned, {}, kBgra, true},
  };
  return kinds;
}

TiffFile FileOf(const Kind& kind, std::mt19937& random) {
  TiffFile file;
  file.width = kWidth;
  file.height = kHeight;
  file.bits = kind.bits;
  file.samples = kind.samples;
  file.sampleFormat = kind.sampleFormat;
  file.photometric = kind.photometric;
  file.rowsPerStrip = 5;
  file.extraSamples = kind.extraSamples;
  if (kind.photometric == kPalette) {
    for (size_t i = 0; i < size_t{3} << kind.bits; i++)
      file.colorMap.push_back(static_cast<uint16_t>(random()));
    file.colorMap[0] = 0xFFFF;
  }
  return file;
}

/// Where the file says what numbers stand for black and white, they are stretched.
bool IsStretched(const TiffFile& file, const Kind& kind) {
  return kind.isConverted && file.photometric <= kBlack0 && file.samples == 1 &&
         (file.bits >= 24 || file.sampleFormat != kUnsigned);
}

std::array<uint8_t, 4> StretchedPixel(const TiffFile& file, uint32_t x, uint32_t y) {
  long double least = reference::TiffNumber(file, 0, 0, 0), greatest = least;
  for (uint32_t row = 0; row < file.height; row++) {
    for (uint32_t column = 0; column < file.width; column++) {
      least = std::min(least, reference::TiffNumber(file, column, row, 0));
      greatest = std::max(greatest, reference::TiffNumber(file, column, row, 0));
    }
  }
  // A single number is shown as black.
  const long double range = greatest > least ? greatest - least : 1;
  const uint8_t gray = reference::TiffByte((reference::TiffNumber(file, x, y, 0) - least) / range);
  return {gray, gray, gray, 255};
}

uint64_t PackedPixel(const Raster& raster, uint32_t x, uint32_t y) {
  const auto bits = static_cast<size_t>(StoredBitsPerPixel(raster.Format()));
  const uint8_t* row = raster.Row(static_cast<int>(y));
  if (bits < 8) return row[x * bits / 8] >> (8 - bits - x * bits % 8) & ((1u << bits) - 1);
  uint64_t value = 0;
  for (size_t i = bits / 8; i-- > 0;) value = value << 8 | row[x * bits / 8 + i];
  return value;
}

/// What the frame must hold: the sample itself, or the color that it means.
uint64_t ExpectedPixel(const TiffFile& file, const Kind& kind, uint32_t x, uint32_t y) {
  if (kind.format == kBgr || kind.format == kBgra) {
    const auto bgra =
        IsStretched(file, kind) ? StretchedPixel(file, x, y) : reference::TiffPixel(file, x, y);
    uint64_t value = 0;
    for (size_t i = kind.format == kBgr ? 3 : 4; i-- > 0;) value = value << 8 | bgra[i];
    return value;
  }
  const uint64_t stored = StoredSample(file, x, y, 0);
  if (kind.format == GUID_WICPixelFormat32bppGrayFloat && file.bits == 24) {
    return std::bit_cast<uint32_t>(static_cast<float>(reference::TiffNumber(file, x, y, 0)));
  }
  if (kind.photometric != kWhite0) return stored;
  return ~stored & ((uint64_t{1} << file.bits) - 1);
}

void ExpectPixels(const TiffFile& file, const Kind& kind, const std::string& arrangement) {
  SCOPED_TRACE(std::string(kind.name) + ", " + arrangement);
  const std::vector<uint8_t> bytes = file.Bytes();
  ASSERT_FALSE(bytes.empty());
  TSpanStream stream(bytes);
  const ImagingFrame frame = DecodeTiff(stream);
  ASSERT_EQ(frame.format, kind.format);
  EXPECT_EQ(frame.isConverted, kind.isConverted);
  ASSERT_EQ(frame.rows.Width(), static_cast<int>(file.width));
  ASSERT_EQ(frame.rows.Height(), static_cast<int>(file.height));
  const bool isStretched = IsStretched(file, kind);
  for (uint32_t y = 0; y < file.height; y++) {
    // The reference looks for the range anew at every pixel.
    for (uint32_t x = 0; x < file.width; x += isStretched ? 5 : 1)
      ASSERT_EQ(PackedPixel(frame.rows, x, y), ExpectedPixel(file, kind, x, y))
          << "x " << x << ", y " << y;
  }
}

class TiffKinds : public testing::TestWithParam<Kind> {
 protected:
  static constexpr unsigned kSeed = 51;
  void Check(const std::string& arrangement, const std::function<void(TiffFile&)>& arrange) {
    std::mt19937 random(kSeed);
    TiffFile file = FileOf(GetParam(), random);
    arrange(file);
    file.pixels = RandomSamples(file, random);
    ExpectPixels(file, GetParam(), arrangement);
  }
};

TEST_P(TiffKinds, Rows_Should_Match_When_InStrips) {
  Check("one strip", [](TiffFile& file) { file.rowsPerStrip = 0; });
  Check("strips", [](TiffFile&) {});
  Check("width of whole words", [](TiffFile& file) { file.width = 64; });
  Check("one pixel", [](TiffFile& file) { file.width = file.height = 1; });
}

TEST_P(TiffKinds, Rows_Should_Match_When_InTiles) {
  Check("tiles", [](TiffFile& file) { file.tileWidth = file.tileHeight = 16; });
  Check("one large tile", [](TiffFile& file) { file.tileWidth = file.tileHeight = 64; });
}

TEST_P(TiffKinds, Rows_Should_Match_When_Planar) {
  Check("planes in strips", [](TiffFile& file) { file.isPlanar = file.samples > 1; });
  Check("planes in tiles", [](TiffFile& file) {
    file.isPlanar = file.samples > 1;
    file.tileWidth = 16;
    file.tileHeight = 32;
  });
}

TEST_P(TiffKinds, Rows_Should_Match_When_OfAnyByteOrderAndSize) {
  for (const char* mode : {"wb", "wl", "wb8", "wl8"})
    Check(mode, [&](TiffFile& file) { file.mode = mode; });
  Check("low bits first", [](TiffFile& file) {
    file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_LSB2MSB); };
  });
}

TEST_P(TiffKinds, Rows_Should_Match_When_Packed) {
  for (const uint16_t compression :
       {COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_DEFLATE, COMPRESSION_PACKBITS,
        COMPRESSION_ZSTD, COMPRESSION_LZMA}) {
    const std::string name = "compression " + std::to_string(compression);
    Check(name, [&](TiffFile& file) { file.compression = compression; });
    Check(name + " in planar tiles, low byte last", [&](TiffFile& file) {
      file.compression = compression;
      file.isPlanar = file.samples > 1;
      file.tileWidth = file.tileHeight = 32;
      file.mode = "wb";
    });
  }
}

TEST_P(TiffKinds, Rows_Should_Match_When_Predicted) {
  const Kind& kind = GetParam();
  const bool isWhole = kind.bits == 8 || kind.bits == 16 || kind.bits == 32 || kind.bits == 64;
  for (const uint16_t predictor : {2, 3}) {
    const bool fits = predictor == 2 ? isWhole : kind.sampleFormat == kFloat;
    if (!fits) continue;
    for (const uint16_t compression : {COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
      for (const char* mode : {"wl", "wb"}) {
        // What libtiff writes there it does not read back itself: it exchanges the bytes first and
        // sorts them by weight afterwards.
        if (predictor == 3 && *(mode + 1) == 'b') continue;
        Check("predictor " + std::to_string(predictor) + mode, [&](TiffFile& file) {
          file.compression = compression;
          file.predictor = predictor;
          file.mode = mode;
        });
      }
    }
  }
}

TEST(TiffKindsOfFloats, Rows_Should_Match_When_PredictedAndOfTheOtherByteOrder) {
  std::mt19937 random(52);
  for (const Kind& kind : Kinds()) {
    if (kind.sampleFormat != kFloat) continue;
    TiffFile file = FileOf(kind, random);
    file.compression = COMPRESSION_LZW;
    file.predictor = 3;
    file.pixels = RandomSamples(file, random);
    // Bytes sorted by weight lie the same in both orders.
    file.mode = "wl";
    file.packedStrips = PackedStrips(file.Bytes());
    file.mode = "wb";
    ExpectPixels(file, kind, "predictor 3, low byte last");
  }
}

INSTANTIATE_TEST_SUITE_P(All, TiffKinds, testing::ValuesIn(Kinds()), [](const auto& info) {
  std::string name = info.param.name;
  for (char& letter : name)
    if (!std::isalnum(static_cast<unsigned char>(letter))) letter = '_';
  return name;
});

}  // namespace
}  // namespace rasterkit::test
