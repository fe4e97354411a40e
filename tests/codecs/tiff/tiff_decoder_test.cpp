#include <cmath>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/pipe_stream.h"
#include "tests/support/profiles.h"
#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

ImagingFrame Decode(const std::vector<uint8_t>& bytes, CodecReport* report = nullptr,
                    int threads = 1) {
  TSpanStream stream(bytes);
  return DecodeTiff(stream, {.threads = threads}, report);
}

TiffFile Picture(uint16_t photometric, uint16_t samples, uint16_t bits, uint32_t width = 33,
                 uint32_t height = 21) {
  TiffFile file;
  file.width = width;
  file.height = height;
  file.photometric = photometric;
  file.samples = samples;
  file.bits = bits;
  file.pixels.resize(file.PixelBytes());
  for (size_t i = 0; i < file.pixels.size(); i++)
    file.pixels[i] = static_cast<uint8_t>(i * 7 + i / 50);
  return file;
}

bool SameRows(const Raster& a, const Raster& b) {
  if (a.Width() != b.Width() || a.Height() != b.Height() || a.Stride() != b.Stride()) return false;
  return std::memcmp(a.Row(0), b.Row(0), a.Stride() * static_cast<size_t>(a.Height())) == 0;
}

/// Vertical stripes of uneven width, as a scanned line drawing has them.
TiffFile Drawing(uint32_t width, uint32_t height) {
  TiffFile file = Picture(PHOTOMETRIC_MINISWHITE, 1, 1, width, height);
  std::fill(file.pixels.begin(), file.pixels.end(), uint8_t{0});
  for (uint32_t y = 0; y < height; y++) {
    for (uint32_t x = y % 5; x < width; x += 3 + (x + y) % 17)
      file.pixels[y * file.RowBytes() + x / 8] |= static_cast<uint8_t>(128 >> x % 8);
  }
  return file;
}

TEST(TiffDecoder, FaxRows_Should_BeThoseOfThePlainFile) {
  TiffFile file = Drawing(403, 57);
  file.rowsPerStrip = 11;
  const ImagingFrame plain = Decode(file.Bytes());
  for (const uint16_t compression :
       {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4}) {
    for (const uint32_t options : {0, GROUP3OPT_2DENCODING, GROUP3OPT_FILLBITS}) {
      for (const uint16_t photometric : {PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_MINISBLACK}) {
        for (const uint16_t order : {FILLORDER_MSB2LSB, FILLORDER_LSB2MSB}) {
          SCOPED_TRACE(testing::Message() << "compression " << compression << ", options "
                                          << options << ", photometric " << photometric);
          TiffFile packed = file;
          packed.compression = compression;
          packed.photometric = photometric;
          if (photometric == PHOTOMETRIC_MINISBLACK)
            for (uint8_t& byte : packed.pixels) byte = static_cast<uint8_t>(~byte);
          packed.setTags = [=](TIFF* tiff) {
            TIFFSetField(tiff, TIFFTAG_FILLORDER, order);
            if (compression == COMPRESSION_CCITTFAX3)
              TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, options);
          };
          CodecReport report;
          const ImagingFrame frame = Decode(packed.Bytes(), &report);
          EXPECT_EQ(frame.format, GUID_WICPixelFormatBlackWhite);
          EXPECT_TRUE(SameRows(frame.rows, plain.rows));
          EXPECT_THAT(report.warnings, testing::IsEmpty());
        }
      }
    }
  }
}

TEST(TiffDecoder, White_Should_BeOnes_When_WhiteIsZero) {
  TiffFile file = Picture(PHOTOMETRIC_MINISWHITE, 1, 1, 9, 2);
  std::fill(file.pixels.begin(), file.pixels.end(), uint8_t{0});
  const ImagingFrame frame = Decode(file.Bytes());
  EXPECT_EQ(frame.rows.Row(0)[0], 0xFF);
  // The padding stays zero all the same.
  EXPECT_EQ(frame.rows.Row(0)[1], 0x80);
  EXPECT_EQ(frame.rows.Row(1)[2], 0);
}

TEST(TiffDecoder, Palette_Should_HaveTheFilesColors) {
  for (const unsigned factor : {1u, 256u, 257u}) {
    TiffFile file = Picture(PHOTOMETRIC_PALETTE, 1, 4);
    for (unsigned i = 0; i < 48; i++)
      file.colorMap.push_back(static_cast<uint16_t>((i * 5 + 3) * factor));
    const ImagingFrame frame = Decode(file.Bytes());
    ASSERT_EQ(frame.rows.palette.Count(), 16);
    for (int i = 0; i < 16; i++) {
      const auto byte = [&](int at) { return static_cast<uint8_t>(at * 5 + 3); };
      EXPECT_EQ(frame.rows.palette.Entry(i),
                (tagPALETTEENTRY{byte(i), byte(i + 16), byte(i + 32), 0}))
          << "factor " << factor;
    }
  }
}

TEST(TiffDecoder, Palette_Should_HoldWords_When_OneChannelDoes) {
  for (size_t channel = 0; channel < 3; channel++) {
    TiffFile file = Picture(PHOTOMETRIC_PALETTE, 1, 4);
    file.colorMap.assign(48, 0);
    file.colorMap[16 * channel] = 256 * 77;
    file.colorMap[16 * channel + 1] = 200;
    const HPALETTE palette = Decode(file.Bytes()).rows.palette;
    EXPECT_EQ(EntryColor(palette.Entry(0)), TColor{77} << 8 * channel);
    EXPECT_EQ(EntryColor(palette.Entry(1)), 0);
  }
}

TEST(TiffDecoder, Resolution_Should_BeInDotsAnInch) {
  const auto resolution = [](int unit, double x, double y) {
    TiffFile file = Picture(PHOTOMETRIC_RGB, 3, 8);
    file.setTags = [=](TIFF* tiff) {
      TIFFSetField(tiff, TIFFTAG_XRESOLUTION, x);
      TIFFSetField(tiff, TIFFTAG_YRESOLUTION, y);
      if (unit > 0) TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, unit);
    };
    return Decode(file.Bytes()).rows.resolution;
  };
  EXPECT_EQ(resolution(RESUNIT_INCH, 300, 150), (Resolution{300, 150}));
  EXPECT_EQ(resolution(0, 72, 96), (Resolution{72, 96}));
  EXPECT_EQ(resolution(RESUNIT_CENTIMETER, 100, 50), (Resolution{254, 127}));
  EXPECT_EQ(resolution(RESUNIT_NONE, 4, 3), Resolution{});
  EXPECT_EQ(resolution(RESUNIT_INCH, 0, 0), Resolution{});
  EXPECT_EQ(Decode(Picture(PHOTOMETRIC_RGB, 3, 8).Bytes()).rows.resolution, Resolution{});
}

ColorProfile ProfileOf(TiffFile file, const ColorProfile& profile) {
  file.setTags = [=](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(profile->size()), profile->data());
  };
  return Decode(file.Bytes()).rows.profile;
}

TEST(TiffDecoder, Profile_Should_ComeAlong_When_ItFitsThePixels) {
  const ColorProfile rgb = RgbProfile();
  const auto kept = [&](const TiffFile& file) {
    const ColorProfile profile = ProfileOf(file, rgb);
    return profile && *profile == *rgb;
  };
  EXPECT_TRUE(kept(Picture(PHOTOMETRIC_RGB, 3, 8)));
  EXPECT_TRUE(kept(Picture(PHOTOMETRIC_RGB, 3, 16)));
  TiffFile palette = Picture(PHOTOMETRIC_PALETTE, 1, 4);
  palette.colorMap.assign(48, 0);
  EXPECT_TRUE(kept(palette));
  EXPECT_TRUE(kept(Picture(PHOTOMETRIC_YCBCR, 3, 8)));
  EXPECT_FALSE(kept(Picture(PHOTOMETRIC_MINISBLACK, 1, 8)));
  EXPECT_FALSE(kept(Picture(PHOTOMETRIC_SEPARATED, 4, 8)));
}

TEST(TiffDecoder, Inks_Should_GoThroughTheirProfile_When_ThereIsOne) {
  TiffFile file = Picture(PHOTOMETRIC_SEPARATED, 4, 8, 3, 1);
  file.pixels = {0, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 255};
  const auto decode = [&](const ColorProfile& profile, CodecReport* report) {
    file.setTags = [=](TIFF* tiff) {
      TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(profile->size()),
                   profile->data());
    };
    const ImagingFrame frame = Decode(file.Bytes(), report);
    EXPECT_EQ(frame.rows.profile, nullptr);
    return std::vector<uint8_t>(frame.rows.Row(0), frame.rows.Row(0) + 12);
  };
  CodecReport report;
  const std::vector<uint8_t> managed = decode(InkProfile(), &report);
  EXPECT_THAT(report.warnings, testing::IsEmpty());
  // Paper without ink stays white, whatever a profile makes of it; those inks are as dark as L* 50.
  for (const size_t i : {0, 1, 2}) EXPECT_EQ(managed[i], 255) << i;
  for (const size_t i : {4, 5, 6, 8, 9, 10}) EXPECT_NEAR(managed[i], 119, 2) << i;
  EXPECT_EQ(managed[7], 255);
  const std::vector<uint8_t> plain = {255, 255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255};
  EXPECT_EQ(decode(RgbProfile(), &report), plain);
  EXPECT_THAT(report.warnings, testing::ElementsAre(testing::HasSubstr("is ignored")));
}

TEST(TiffDecoder, AlphaMark_Should_BeDefined_When_TheFileHasAlpha) {
  TiffFile file = Picture(PHOTOMETRIC_RGB, 4, 8);
  file.extraSamples = {EXTRASAMPLE_UNASSALPHA};
  EXPECT_EQ(Decode(file.Bytes()).rows.alphaFormat, afDefined);
  EXPECT_EQ(Decode(Picture(PHOTOMETRIC_RGB, 3, 16).Bytes()).rows.alphaFormat, afIgnored);
}

TEST(TiffDecoder, MultipliedColors_Should_BeUndoneAndRounded) {
  TiffFile file = Picture(PHOTOMETRIC_RGB, 4, 8, 4, 1);
  file.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
  file.pixels = {64, 32, 1, 128, 0, 0, 0, 0, 200, 10, 3, 100, 1, 2, 3, 2};
  const ImagingFrame frame = Decode(file.Bytes());
  const std::vector<uint8_t> row(frame.rows.Row(0), frame.rows.Row(0) + 16);
  EXPECT_EQ(row, (std::vector<uint8_t>{2, 64, 128, 128,  //
                                       0, 0, 0, 0,       //
                                       8, 26, 255, 100,  //
                                       255, 255, 128, 2}));
}

TEST(TiffDecoder, Words_Should_BeRoundedToBytes) {
  TiffFile file = Picture(PHOTOMETRIC_RGB, 3, 16, 1, 1);
  const uint16_t words[3] = {0xFFFF, 128, 129};
  std::memcpy(file.pixels.data(), words, sizeof words);
  const ImagingFrame frame = Decode(file.Bytes());
  const std::vector<uint8_t> row(frame.rows.Row(0), frame.rows.Row(0) + 4);
  EXPECT_EQ(row, (std::vector<uint8_t>{1, 0, 255, 255}));
}

TEST(TiffDecoder, Lab_Should_BecomeColorsOfTheScreen) {
  for (const uint16_t photometric : {PHOTOMETRIC_CIELAB, PHOTOMETRIC_ICCLAB}) {
    TiffFile file = Picture(photometric, 3, 8, 4, 1);
    const int zero = photometric == PHOTOMETRIC_ICCLAB ? 128 : 0;
    const auto byte = [&](int value) { return static_cast<uint8_t>(value + zero); };
    file.pixels = {255, byte(0),  byte(0),   //
                   0,   byte(0),  byte(0),   //
                   136, byte(81), byte(70),  //
                   128, byte(0),  byte(0)};
    const ImagingFrame frame = Decode(file.Bytes());
    EXPECT_TRUE(frame.isConverted);
    const uint8_t* row = frame.rows.Row(0);
    const auto expect = [&](int x, int b, int g, int r) {
      EXPECT_NEAR(row[4 * x], b, 3) << x;
      EXPECT_NEAR(row[4 * x + 1], g, 3) << x;
      EXPECT_NEAR(row[4 * x + 2], r, 3) << x;
      EXPECT_EQ(row[4 * x + 3], 255);
    };
    expect(0, 255, 255, 255);
    expect(1, 0, 0, 0);
    expect(2, 0, 0, 253);
    expect(3, 119, 119, 119);
  }
}

TEST(TiffDecoder, JpegStripsOfColor_Should_BeNearTheColors_When_Subsampled) {
  for (const bool isTiled : {false, true}) {
    TiffFile file = Picture(PHOTOMETRIC_YCBCR, 3, 8, 64, 48);
    for (size_t i = 0; i < file.pixels.size(); i += 3) {
      file.pixels[i] = 200;
      file.pixels[i + 1] = 100;
      file.pixels[i + 2] = 50;
    }
    file.compression = COMPRESSION_JPEG;
    file.rowsPerStrip = 16;
    if (isTiled) file.tileWidth = file.tileHeight = 32;
    file.setTags = [](TIFF* tiff) {
      TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 2);
      TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    };
    const ImagingFrame frame = Decode(file.Bytes());
    ASSERT_EQ(frame.format, GUID_WICPixelFormat24bppBGR);
    for (int y = 0; y < 48; y += 11) {
      EXPECT_NEAR(frame.rows.Row(y)[30], 50, 4);
      EXPECT_NEAR(frame.rows.Row(y)[31], 100, 4);
      EXPECT_NEAR(frame.rows.Row(y)[32], 200, 4);
    }
  }
}

TEST(TiffDecoder, PlainYcbcr_Should_GoThroughTheLibrary_InStoredOrder) {
  TiffFile file = Picture(PHOTOMETRIC_YCBCR, 3, 8, 7, 5);
  file.rowsPerStrip = 2;
  for (size_t i = 0; i < file.pixels.size(); i += 3) {
    file.pixels[i] = static_cast<uint8_t>(i / 21 * 50);
    file.pixels[i + 1] = file.pixels[i + 2] = 128;
  }
  for (const int orientation : {1, 3, 4, 6, 8}) {
    file.setTags = [=](TIFF* tiff) {
      TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
      TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
    };
    const ImagingFrame frame = Decode(file.Bytes());
    ASSERT_EQ(frame.format, GUID_WICPixelFormat24bppBGR);
    ASSERT_EQ(frame.rows.Width(), 7);
    for (int y = 0; y < 5; y++) EXPECT_NEAR(frame.rows.Row(y)[20], y * 50, 1);
  }
}

TEST(TiffDecoder, LossyAndRareCodecs_Should_KeepThePixels_When_Lossless) {
  const TiffFile rgb = Picture(PHOTOMETRIC_RGB, 3, 8, 40, 30);
  const ImagingFrame plain = Decode(rgb.Bytes());
  TiffFile file = rgb;
  file.compression = COMPRESSION_WEBP;
  file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_WEBP_LOSSLESS, 1); };
  EXPECT_TRUE(SameRows(Decode(file.Bytes()).rows, plain.rows));
  file.compression = COMPRESSION_LERC;
  file.setTags = nullptr;
  EXPECT_TRUE(SameRows(Decode(file.Bytes()).rows, plain.rows));
  TiffFile floats = Picture(PHOTOMETRIC_MINISBLACK, 1, 32, 40, 30);
  floats.sampleFormat = SAMPLEFORMAT_IEEEFP;
  for (size_t i = 0; i < 1200; i++) {
    const float value = static_cast<float>(i) / 7;
    std::memcpy(floats.pixels.data() + 4 * i, &value, 4);
  }
  const ImagingFrame grid = Decode(floats.Bytes());
  floats.compression = COMPRESSION_LERC;
  EXPECT_TRUE(SameRows(Decode(floats.Bytes()).rows, grid.rows));
}

TEST(TiffDecoder, FirstPage_Should_BeRead_When_ThereAreSeveral) {
  TiffFile file = Picture(PHOTOMETRIC_RGB, 3, 8);
  const ImagingFrame one = Decode(file.Bytes());
  std::vector<uint8_t> bytes = file.Bytes();
  // The first directory's link, behind its entries, leads to itself: a circle of one page.
  uint32_t directory = 0;
  std::memcpy(&directory, bytes.data() + 4, 4);
  uint16_t entries = 0;
  std::memcpy(&entries, bytes.data() + directory, 2);
  std::memcpy(bytes.data() + directory + 2 + entries * 12u, &directory, 4);
  EXPECT_TRUE(SameRows(Decode(bytes).rows, one.rows));
  TSpanStream stream(bytes);
  EXPECT_EQ(ReadTiffFacts(stream).pages, 1);
}

TEST(TiffDecoder, File_Should_BeRead_When_ItStartsInsideTheStream) {
  TiffFile file = Picture(PHOTOMETRIC_RGB, 3, 8);
  file.compression = COMPRESSION_LZW;
  const ImagingFrame expected = Decode(file.Bytes());
  std::vector<uint8_t> bytes(13, 0x55);
  for (const uint8_t byte : file.Bytes()) bytes.push_back(byte);
  TSpanStream stream(bytes);
  stream.SetPosition(13);
  EXPECT_EQ(ReadTiffFacts(stream).width, file.width);
  stream.SetPosition(13);
  EXPECT_TRUE(SameRows(DecodeTiff(stream).rows, expected.rows));
}

TEST(TiffDecoder, File_Should_BeRead_When_ItComesThroughAPipe) {
  const TiffFile file = Picture(PHOTOMETRIC_RGB, 3, 8);
  PipeStream pipe(file.Bytes()), second(file.Bytes());
  EXPECT_TRUE(SameRows(DecodeTiff(pipe).rows, Decode(file.Bytes()).rows));
  EXPECT_EQ(ReadTiffFacts(second).width, file.width);
}

TEST(TiffDecoder, MadeUpRange_Should_BeReported_When_NumbersAreStretched) {
  TiffFile file = Picture(PHOTOMETRIC_MINISBLACK, 1, 64, 4, 1);
  file.sampleFormat = SAMPLEFORMAT_IEEEFP;
  const double numbers[4] = {-3, std::nan(""), 7, 2};
  std::memcpy(file.pixels.data(), numbers, sizeof numbers);
  CodecReport report;
  const ImagingFrame frame = Decode(file.Bytes(), &report);
  EXPECT_EQ(frame.rows.Row(0)[0], 0);
  EXPECT_EQ(frame.rows.Row(0)[4], 255);
  EXPECT_EQ(frame.rows.Row(0)[8], 255);
  EXPECT_EQ(frame.rows.Row(0)[12], 128);
  EXPECT_THAT(report.warnings,
              testing::ElementsAre("TIFF: numbers from -3 to 7 are shown as black to white"));
}

TEST(TiffDecoder, MadeUpRange_Should_RunDown_When_WhiteIsZero) {
  TiffFile file = Picture(PHOTOMETRIC_MINISWHITE, 1, 32, 3, 1);
  const uint32_t numbers[3] = {10, 30, 40};
  std::memcpy(file.pixels.data(), numbers, sizeof numbers);
  CodecReport report;
  const ImagingFrame frame = Decode(file.Bytes(), &report);
  EXPECT_EQ(frame.rows.Row(0)[0], 255);
  EXPECT_EQ(frame.rows.Row(0)[4], 85);
  EXPECT_EQ(frame.rows.Row(0)[8], 0);
  EXPECT_THAT(report.warnings,
              testing::ElementsAre("TIFF: numbers from 40 to 10 are shown as black to white"));
}

TEST(TiffDecoder, Threads_Should_NotChangePixels) {
  TiffFile file = Picture(PHOTOMETRIC_RGB, 3, 8, 301, 203);
  file.compression = COMPRESSION_ADOBE_DEFLATE;
  file.rowsPerStrip = 7;
  const ImagingFrame one = Decode(file.Bytes());
  for (const int threads : {0, 2, 3, 64, 1000})
    EXPECT_TRUE(SameRows(Decode(file.Bytes(), nullptr, threads).rows, one.rows));
}

}  // namespace
}  // namespace rasterkit::test
