// Pixels that only one codec knows: JPEG, old JPEG, YCbCr, logarithmic light.

#include <cmath>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/tiff/tiff_decoder.h>

#include "tests/reference/tiff_reference.h"
#include "tests/support/raw_tiff.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

ImagingFrame Decode(const std::vector<uint8_t>& bytes, int threads = 1) {
  TSpanStream stream(bytes);
  return DecodeTiff(stream, {.threads = threads});
}

/// Soft colors, which JPEG keeps.
TiffFile SoftPicture(uint16_t photometric, uint16_t samples, uint32_t width, uint32_t height) {
  TiffFile file;
  file.width = width;
  file.height = height;
  file.photometric = photometric;
  file.samples = samples;
  file.rowsPerStrip = 16;
  return file;
}

void FillSoftly(TiffFile& file) {
  file.pixels.resize(file.PixelBytes());
  for (size_t i = 0; i < file.pixels.size(); i++) {
    const size_t y = i / file.RowBytes(), x = i % file.RowBytes();
    file.pixels[i] = static_cast<uint8_t>(30 + x * 200 / file.RowBytes() + y / 4);
  }
}

void ExpectSamplesOfLibrary(TiffFile file) {
  const std::vector<uint8_t> bytes = file.Bytes();
  ASSERT_FALSE(bytes.empty());
  file.pixels = SamplesByLibrary(file, bytes);
  ASSERT_FALSE(file.pixels.empty());
  const ImagingFrame frame = Decode(bytes);
  const bool isGray = file.samples == 1;
  const size_t count = isGray ? 1 : file.samples == 3 ? 3 : 4;
  ASSERT_EQ(frame.format, isGray       ? GUID_WICPixelFormat8bppGray
                          : count == 3 ? GUID_WICPixelFormat24bppBGR
                                       : GUID_WICPixelFormat32bppBGRA);
  for (uint32_t y = 0; y < file.height; y++) {
    for (uint32_t x = 0; x < file.width; x++) {
      const auto expected = reference::TiffPixel(file, x, y);
      const uint8_t* pixel = frame.rows.Row(static_cast<int>(y)) + x * count;
      ASSERT_TRUE(std::equal(pixel, pixel + count, expected.begin())) << "x " << x << ", y " << y;
    }
  }
  const Raster onThreads = Decode(bytes, 3).rows;
  EXPECT_EQ(std::memcmp(onThreads.Row(0), frame.rows.Row(0),
                        frame.rows.Stride() * static_cast<size_t>(file.height)),
            0);
}

TEST(TiffCodecs, Jpeg_Should_GiveTheSamplesOfItsLibrary_InEveryArrangement) {
  const std::pair<uint16_t, uint16_t> kinds[] = {{PHOTOMETRIC_MINISBLACK, 1},
                                                 {PHOTOMETRIC_RGB, 3},
                                                 {PHOTOMETRIC_YCBCR, 3},
                                                 {PHOTOMETRIC_SEPARATED, 4}};
  for (const auto& [photometric, samples] : kinds) {
    for (const bool isTiled : {false, true}) {
      for (const bool isPlanar : {false, true}) {
        if (isPlanar && (samples == 1 || photometric == PHOTOMETRIC_YCBCR)) continue;
        for (const char* mode : {"wl", "wb8"}) {
          SCOPED_TRACE(testing::Message() << photometric << (isTiled ? ", tiled" : "")
                                          << (isPlanar ? ", planar " : " ") << mode);
          TiffFile file = SoftPicture(photometric, samples, 45, 38);
          file.compression = COMPRESSION_JPEG;
          file.mode = mode;
          file.isPlanar = isPlanar;
          if (isTiled) file.tileWidth = file.tileHeight = 32;
          if (photometric == PHOTOMETRIC_YCBCR) {
            file.setTags = [](TIFF* tiff) {
              TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            };
          }
          FillSoftly(file);
          ExpectSamplesOfLibrary(file);
        }
      }
    }
  }
}

TEST(TiffCodecs, Jpeg_Should_GiveTheSamplesOfItsLibrary_When_ColorsAreSubsampled) {
  for (const auto& [across, down] : {std::pair{1, 1}, std::pair{2, 1}, std::pair{2, 2}}) {
    SCOPED_TRACE(testing::Message() << across << " x " << down);
    TiffFile file = SoftPicture(PHOTOMETRIC_YCBCR, 3, 45, 38);
    file.compression = COMPRESSION_JPEG;
    file.setTags = [h = across, v = down](TIFF* tiff) {
      TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, h, v);
      TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    };
    FillSoftly(file);
    ExpectSamplesOfLibrary(file);
  }
}

void ExpectNear(const Raster& a, const Raster& b, int most) {
  ASSERT_EQ(a.Width(), b.Width());
  ASSERT_EQ(a.Height(), b.Height());
  for (int y = 0; y < a.Height(); y++) {
    for (size_t i = 0; i < static_cast<size_t>(a.Width()) * 3; i++)
      ASSERT_NEAR(a.Row(y)[i], b.Row(y)[i], most) << "byte " << i << ", y " << y;
  }
}

TEST(TiffCodecs, OldJpeg_Should_LookAsTheJpegFileInIt) {
  Raster picture(pf24bit, 48, 32);
  for (int y = 0; y < 32; y++) {
    for (int i = 0; i < 48 * 3; i++) picture.Row(y)[i] = static_cast<uint8_t>(40 + i + 2 * y);
  }
  const std::vector<uint8_t> jpeg = EncodeJpeg(picture, 95);
  RawTiff raw = RawTiff::Of(48, 32, 8, COMPRESSION_OJPEG);
  raw.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_YCBCR).Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 3);
  raw.Entry(TIFFTAG_YCBCRSUBSAMPLING, 3, 2, 2 | 2 << 16);
  raw.Entry(TIFFTAG_PLANARCONFIG, 3, 1, PLANARCONFIG_CONTIG);
  raw.Long(TIFFTAG_STRIPOFFSETS, 0).Long(TIFFTAG_JPEGIFOFFSET, 0);
  const auto size = static_cast<uint32_t>(jpeg.size());
  raw.Long(TIFFTAG_STRIPBYTECOUNTS, size).Long(TIFFTAG_JPEGIFBYTECOUNT, size);
  const auto at = static_cast<uint32_t>(raw.Bytes().size());
  raw.Long(TIFFTAG_STRIPOFFSETS, at).Long(TIFFTAG_JPEGIFOFFSET, at);
  std::vector<uint8_t> bytes = raw.Bytes();
  bytes.insert(bytes.end(), jpeg.begin(), jpeg.end());
  const ImagingFrame frame = Decode(bytes);
  EXPECT_EQ(frame.format, GUID_WICPixelFormat24bppBGR);
  // The two smooth the halved colors differently.
  ExpectNear(frame.rows, DecodeJpeg(jpeg), 8);
}

/// Units of `across` x `down` brightnesses and their two colors, as plain strips hold them.
std::vector<uint8_t> PlainYcbcr(uint32_t width, uint32_t height, uint32_t across, uint32_t down,
                                std::vector<std::array<uint8_t, 3>>& units) {
  std::vector<uint8_t> bytes;
  for (uint32_t y = 0; y < height; y += down) {
    for (uint32_t x = 0; x < width; x += across) {
      const auto brightness = static_cast<uint8_t>(60 + 3 * x + 2 * y);
      const std::array<uint8_t, 3> unit = {brightness, static_cast<uint8_t>(100 + 2 * x),
                                           static_cast<uint8_t>(160 - 2 * y)};
      bytes.insert(bytes.end(), across * down, unit[0]);
      bytes.insert(bytes.end(), {unit[1], unit[2]});
      units.push_back(unit);
    }
  }
  return bytes;
}

TEST(TiffCodecs, PlainYcbcr_Should_BecomeColors_When_Subsampled) {
  constexpr uint32_t kWidth = 24, kHeight = 16;
  for (const auto& [across, down] :
       {std::pair{1u, 1u}, std::pair{2u, 1u}, std::pair{2u, 2u}, std::pair{4u, 2u},
        std::pair{4u, 4u}, std::pair{1u, 2u}, std::pair{4u, 1u}}) {
    SCOPED_TRACE(testing::Message() << across << " x " << down);
    std::vector<std::array<uint8_t, 3>> units;
    const std::vector<uint8_t> pixels = PlainYcbcr(kWidth, kHeight, across, down, units);
    RawTiff raw = RawTiff::Of(kWidth, kHeight, 8, COMPRESSION_NONE);
    raw.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_YCBCR).Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 3);
    raw.Entry(TIFFTAG_YCBCRSUBSAMPLING, 3, 2, across | down << 16).Long(TIFFTAG_STRIPOFFSETS, 0);
    raw.Long(TIFFTAG_STRIPBYTECOUNTS, static_cast<uint32_t>(pixels.size()));
    raw.Long(TIFFTAG_STRIPOFFSETS, static_cast<uint32_t>(raw.Bytes().size()));
    std::vector<uint8_t> bytes = raw.Bytes();
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    const ImagingFrame frame = Decode(bytes);
    ASSERT_EQ(frame.format, GUID_WICPixelFormat24bppBGR);
    for (uint32_t y = 0; y < kHeight; y++) {
      for (uint32_t x = 0; x < kWidth; x++) {
        const auto& unit = units[y / down * (kWidth / across) + x / across];
        const double red = unit[0] + 1.402 * (unit[2] - 128),
                     blue = unit[0] + 1.772 * (unit[1] - 128);
        const double green = (unit[0] - 0.299 * red - 0.114 * blue) / 0.587;
        const uint8_t* pixel = frame.rows.Row(static_cast<int>(y)) + 3 * x;
        ASSERT_NEAR(pixel[0], std::clamp(blue, 0.0, 255.0), 1.5) << "x " << x << ", y " << y;
        ASSERT_NEAR(pixel[1], std::clamp(green, 0.0, 255.0), 1.5) << "x " << x << ", y " << y;
        ASSERT_NEAR(pixel[2], std::clamp(red, 0.0, 255.0), 1.5) << "x " << x << ", y " << y;
      }
    }
  }
}

/// A picture of floats: X, Y and Z of each pixel, or Y alone.
ImagingFrame DecodeLight(uint16_t photometric, std::vector<float> light, uint16_t compression) {
  TiffFile file;
  file.samples = photometric == PHOTOMETRIC_LOGL ? 1 : 3;
  file.width = static_cast<uint32_t>(light.size() / file.samples);
  file.photometric = photometric;
  file.bits = 32;
  file.sampleFormat = SAMPLEFORMAT_IEEEFP;
  file.compression = compression;
  file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_FLOAT); };
  file.pixels.resize(light.size() * sizeof(float));
  std::memcpy(file.pixels.data(), light.data(), file.pixels.size());
  const std::vector<uint8_t> bytes = file.Bytes();
  EXPECT_FALSE(bytes.empty());
  return Decode(bytes);
}

TEST(TiffCodecs, LogarithmicLight_Should_BecomeGrays) {
  const ImagingFrame frame =
      DecodeLight(PHOTOMETRIC_LOGL, {0.0f, 0.25f, 0.5f, 1.0f, 4.0f}, COMPRESSION_SGILOG);
  ASSERT_EQ(frame.format, GUID_WICPixelFormat32bppBGRA);
  EXPECT_TRUE(frame.isConverted);
  const uint8_t* row = frame.rows.Row(0);
  // The codec's own scale: the square root of the light.
  const int grays[] = {0, 128, 181, 255, 255};
  for (int x = 0; x < 5; x++) {
    for (int c = 0; c < 3; c++) EXPECT_NEAR(row[4 * x + c], grays[x], 2) << x;
    EXPECT_EQ(row[4 * x + 3], 255);
  }
}

TEST(TiffCodecs, LogarithmicLight_Should_BecomeColors) {
  for (const uint16_t compression : {COMPRESSION_SGILOG, COMPRESSION_SGILOG24}) {
    // Light of equal parts of all colors, at three strengths, and the red of common screens.
    const ImagingFrame frame = DecodeLight(
        PHOTOMETRIC_LOGLUV,
        {0.0f, 0.0f, 0.0f, 0.25f, 0.25f, 0.25f, 1.0f, 1.0f, 1.0f, 0.4f, 0.2f, 0.02f}, compression);
    ASSERT_EQ(frame.format, GUID_WICPixelFormat32bppBGRA);
    const uint8_t* row = frame.rows.Row(0);
    for (int c = 0; c < 3; c++) {
      EXPECT_NEAR(row[c], 0, 1);
      EXPECT_NEAR(row[4 + c], 128, 6);
      EXPECT_NEAR(row[8 + c], 255, 8);
    }
    EXPECT_GT(row[14], 180);
    EXPECT_LT(row[13], 60);
    EXPECT_LT(row[12], 60);
  }
}

TEST(TiffCodecs, Lab_Should_BeTheSame_When_OfWords) {
  for (const uint16_t photometric : {PHOTOMETRIC_CIELAB, PHOTOMETRIC_ICCLAB}) {
    TiffFile file;
    file.width = 5;
    file.photometric = photometric;
    file.samples = 3;
    const int zero = photometric == PHOTOMETRIC_ICCLAB ? 128 : 0;
    for (const auto& [light, a, b] :
         {std::array{255, 0, 0}, {0, 0, 0}, {136, 81, 70}, {128, 0, 0}, {100, -40, 20}}) {
      file.pixels.push_back(static_cast<uint8_t>(light));
      file.pixels.push_back(static_cast<uint8_t>(a + zero));
      file.pixels.push_back(static_cast<uint8_t>(b + zero));
    }
    const ImagingFrame bytes = Decode(file.Bytes());
    TiffFile words = file;
    words.bits = 16;
    words.pixels.resize(words.PixelBytes());
    for (size_t i = 0; i < file.pixels.size(); i++) {
      // a* and b* are whole numbers times 256 there; L* fills the word.
      const int scale = i % 3 == 0 ? 257 : 256;
      const auto word = static_cast<uint16_t>(file.pixels[i] * scale);
      std::memcpy(words.pixels.data() + 2 * i, &word, 2);
    }
    const ImagingFrame frame = Decode(words.Bytes());
    ASSERT_EQ(frame.format, GUID_WICPixelFormat32bppBGRA);
    for (size_t i = 0; i < 20; i++)
      EXPECT_NEAR(frame.rows.Row(0)[i], bytes.rows.Row(0)[i], 2) << photometric << ", " << i;
  }
}

TEST(TiffCodecs, Colors_Should_BeTheSame_When_TheyComeAgain) {
  std::mt19937 random(53);
  std::vector<std::array<uint8_t, 3>> colors(6000);
  for (auto& color : colors)
    for (uint8_t& part : color) part = static_cast<uint8_t>(random());
  TiffFile file;
  file.width = 200;
  file.height = 60;
  file.photometric = PHOTOMETRIC_CIELAB;
  file.samples = 3;
  for (uint32_t i = 0; i < file.width * file.height; i++) {
    const auto& color = colors[random() % colors.size()];
    file.pixels.insert(file.pixels.end(), color.begin(), color.end());
  }
  const ImagingFrame frame = Decode(file.Bytes());
  for (uint32_t y = 0; y < file.height; y++) {
    // A row of its own comes to an empty memory.
    TiffFile row = file;
    row.height = 1;
    row.pixels.assign(file.pixels.begin() + y * 600, file.pixels.begin() + (y + 1) * 600);
    const ImagingFrame alone = Decode(row.Bytes());
    ASSERT_EQ(std::memcmp(alone.rows.Row(0), frame.rows.Row(static_cast<int>(y)), 800), 0) << y;
  }
}

}  // namespace
}  // namespace rasterkit::test
