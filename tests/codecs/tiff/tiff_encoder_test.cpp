#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/codecs/tiff/tiff_plan.h>
#include <rasterkit/codecs/tiff/tiff_strip_writer.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

struct Size {
  int width, height;
};
constexpr Size kSizes[] = {{1, 1}, {2, 3}, {7, 5}, {8, 8}, {9, 1}, {15, 17}, {33, 2}, {67, 41}};
constexpr TPixelFormat kWrittenFormats[] = {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit};
constexpr TiffCompression kForAnyBits[] = {TiffCompression::standard, TiffCompression::none,
                                           TiffCompression::lzw, TiffCompression::deflate,
                                           TiffCompression::packBits};

std::vector<uint8_t> Encoded(const Raster& raster, const TiffWriteOptions& options = {}) {
  TMemoryStream stream;
  EncodeTiff(raster, stream, options);
  return stream.TakeBytes();
}

TiffWriteOptions Packed(TiffCompression compression, int threads = 1) {
  TiffWriteOptions options;
  options.compression = compression;
  options.threads = threads;
  return options;
}

ImagingFrame Frame(const std::vector<uint8_t>& bytes) {
  TSpanStream stream(bytes);
  CodecReport report;
  ImagingFrame frame = DecodeTiff(stream, {}, &report);
  EXPECT_THAT(report.warnings, testing::IsEmpty());
  return frame;
}

/// The rows with the palette that their pixel format implies.
Raster Decoded(const std::vector<uint8_t>& bytes) {
  ImagingFrame frame = Frame(bytes);
  if (frame.format == GUID_WICPixelFormatBlackWhite) frame.rows.palette = DefaultPalette(pf1bit);
  if (frame.format == GUID_WICPixelFormat4bppGray) frame.rows.palette = GrayPalette(16);
  if (frame.format == GUID_WICPixelFormat8bppGray) frame.rows.palette = GrayPalette(256);
  return std::move(frame.rows);
}

TiffFacts Facts(const std::vector<uint8_t>& bytes) {
  TSpanStream stream(bytes);
  return ReadTiffFacts(stream);
}

/// What a raster becomes by way of a file: a fourth byte without meaning is lost.
Raster Expected(const Raster& source) {
  return source.Format() == pf32bit && source.alphaFormat == afIgnored
             ? ConvertRaster(source, pf24bit)
             : source.Clone();
}

HPALETTE Palette(std::initializer_list<TColor> colors) {
  std::vector<tagPALETTEENTRY> entries;
  for (const TColor color : colors) {
    entries.push_back({static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                       static_cast<uint8_t>(color >> 16), 0});
  }
  return HPALETTE(entries);
}

// ---- Pixels

TEST(TiffEncoder, Should_GiveTheSameRasterBack_When_ReadAgain) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const Size size : kSizes) {
    for (const TPixelFormat format : kWrittenFormats) {
      for (const TAlphaFormat alpha : {afIgnored, afDefined}) {
        for (const TiffCompression compression : kForAnyBits) {
          Raster source = RandomRaster(format, size.width, size.height, random);
          source.alphaFormat = alpha;
          const Raster decoded = Decoded(Encoded(source, Packed(compression)));
          EXPECT_TRUE(SamePixels(Expected(source), decoded))
              << format << " " << size.width << " x " << size.height << ", compression "
              << static_cast<int>(compression);
          EXPECT_TRUE(PaddingIsZero(decoded));
          EXPECT_EQ(decoded.alphaFormat, format == pf32bit ? alpha : afIgnored);
          EXPECT_FALSE(decoded.resolution.IsKnown());
          EXPECT_EQ(decoded.profile, nullptr);
        }
      }
    }
  }
}

TEST(TiffEncoder, Should_GiveTheSameRasterBack_When_ThereAreManyStrips) {
  for (const TPixelFormat format : kWrittenFormats) {
    const Raster source = GradientRaster(format, 1111, 1203);
    for (const TiffCompression compression : kForAnyBits) {
      const std::vector<uint8_t> bytes = Encoded(source, Packed(compression));
      EXPECT_TRUE(SamePixels(Expected(source), Decoded(bytes)))
          << format << ", compression " << static_cast<int>(compression);
    }
  }
}

TEST(TiffEncoder, WidestRow_Should_BeAStripOfItsOwn) {
  const Raster source = GradientRaster(pf24bit, 300'001, 3);
  EXPECT_EQ(detail::PlanTiff(source, {}).Strips(), 3u);
  EXPECT_TRUE(SamePixels(source, Decoded(Encoded(source))));
}

TEST(TiffEncoder, Source_Should_StayAsItIs) {
  for (const TPixelFormat format : kWrittenFormats) {
    // Rows that fill whole strides go to the library without a copy.
    const Raster source = GradientRaster(format, 64, 9);
    const Raster before = source.Clone();
    for (const TiffCompression compression : kForAnyBits) Encoded(source, Packed(compression));
    EXPECT_TRUE(SamePixels(before, source));
  }
}

TEST(TiffEncoder, SamePicture_Should_GiveTheSameBytes) {
  const Raster source = GradientRaster(pf8bit, 67, 41);
  const std::vector<uint8_t> bytes = Encoded(source);
  EXPECT_EQ(bytes, Encoded(source));
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), std::string("II*\0", 4));
}

// ---- Kinds

TEST(TiffEncoder, OneBit_Should_GoByPhotometric_When_BlackAndWhite) {
  Raster source = GradientRaster(pf1bit, 37, 5);
  source.palette = Palette({clBlack, clWhite});
  EXPECT_EQ(Facts(Encoded(source)).photometric, PHOTOMETRIC_MINISBLACK);
  EXPECT_TRUE(SamePixels(source, Decoded(Encoded(source))));
  source.palette = Palette({clWhite, clBlack});
  EXPECT_EQ(Facts(Encoded(source)).photometric, PHOTOMETRIC_MINISWHITE);
  EXPECT_TRUE(SameColors(source, Decoded(Encoded(source))));
  EXPECT_EQ(Frame(Encoded(source)).format, GUID_WICPixelFormatBlackWhite);
}

TEST(TiffEncoder, FlagsOfAPalette_Should_NotCount) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    Raster source = GradientRaster(format, 37, 5);
    const HPALETTE ramp = GrayPalette(1 << StoredBitsPerPixel(format));
    std::vector<tagPALETTEENTRY> entries(ramp.Entries().begin(), ramp.Entries().end());
    for (tagPALETTEENTRY& entry : entries) entry.peFlags = 4;
    source.palette = HPALETTE(entries);
    EXPECT_EQ(Facts(Encoded(source)).photometric, PHOTOMETRIC_MINISBLACK) << format;
  }
}

TEST(TiffEncoder, OneBit_Should_BeAPaletteFile_When_ItHasOtherColors) {
  Raster source = GradientRaster(pf1bit, 37, 5);
  for (const HPALETTE& palette :
       {Palette({clBlack, clBlack}), Palette({clWhite, clWhite}), Palette({0x010000, clWhite}),
        Palette({RGB(10, 20, 30), RGB(200, 100, 50)})}) {
    source.palette = palette;
    const TiffFacts facts = Facts(Encoded(source));
    EXPECT_EQ(facts.photometric, PHOTOMETRIC_PALETTE);
    EXPECT_EQ(facts.compression, COMPRESSION_LZW) << "readers of G4 expect black and white";
    EXPECT_TRUE(SamePixels(source, Decoded(Encoded(source))));
  }
}

TEST(TiffEncoder, ShortPalette_Should_BeFilledWithBlack) {
  Raster source = GradientRaster(pf1bit, 37, 5);
  source.palette = Palette({clWhite});
  EXPECT_TRUE(SameColors(source, Decoded(Encoded(source))));
  for (const TPixelFormat format : {pf4bit, pf8bit}) {
    source = GradientRaster(format, 37, 5);
    source.palette = Palette({RGB(1, 2, 3), RGB(4, 5, 6)});
    const Raster decoded = Decoded(Encoded(source));
    EXPECT_TRUE(SameColors(source, decoded));
    EXPECT_EQ(decoded.palette.Count(), format == pf4bit ? 16 : 256);
  }
}

TEST(TiffEncoder, Bitmap_Should_BeReadAsBlack_When_ItHasNoPalette) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    Raster source = GradientRaster(format, 9, 4);
    source.palette = {};
    EXPECT_TRUE(SameColors(source, Decoded(Encoded(source))));
  }
}

TEST(TiffEncoder, Ramp_Should_BeGray) {
  Raster source = GradientRaster(pf4bit, 37, 21);
  source.palette = GrayPalette(16);
  EXPECT_EQ(Facts(Encoded(source)).photometric, PHOTOMETRIC_MINISBLACK);
  EXPECT_EQ(Frame(Encoded(source)).format, GUID_WICPixelFormat4bppGray);
  EXPECT_TRUE(SamePixels(source, Decoded(Encoded(source))));
  source = GrayRaster(37, 21);
  EXPECT_EQ(Frame(Encoded(source)).format, GUID_WICPixelFormat8bppGray);
  EXPECT_TRUE(SamePixels(source, Decoded(Encoded(source))));
}

TEST(TiffEncoder, FourBits_Should_KeepTheirPalette) {
  const Raster source = GradientRaster(pf4bit, 37, 21);
  const ImagingFrame frame = Frame(Encoded(source));
  EXPECT_EQ(frame.format, GUID_WICPixelFormat4bppIndexed);
  EXPECT_EQ(frame.rows.palette, DefaultPalette(pf4bit));
}

TEST(TiffEncoder, Standard_Should_BeG4ForBits_And_LzwForTheRest) {
  for (const TPixelFormat format : kWrittenFormats) {
    EXPECT_EQ(Facts(Encoded(GradientRaster(format, 37, 21))).compression,
              format == pf1bit ? COMPRESSION_CCITTFAX4 : COMPRESSION_LZW);
  }
}

TEST(TiffEncoder, Compression_Should_BeTheOneThatIsAsked) {
  const Raster source = GradientRaster(pf1bit, 37, 21);
  const std::pair<TiffCompression, int> cases[] = {
      {TiffCompression::none, COMPRESSION_NONE},
      {TiffCompression::lzw, COMPRESSION_LZW},
      {TiffCompression::deflate, COMPRESSION_ADOBE_DEFLATE},
      {TiffCompression::packBits, COMPRESSION_PACKBITS},
      {TiffCompression::group4, COMPRESSION_CCITTFAX4}};
  for (const auto& [asked, expected] : cases) {
    const std::vector<uint8_t> bytes = Encoded(source, Packed(asked));
    EXPECT_EQ(Facts(bytes).compression, expected);
    EXPECT_TRUE(SamePixels(source, Decoded(bytes)));
  }
}

TEST(TiffEncoder, Alpha_Should_BeAFourthSample_When_Defined) {
  Raster source = GradientRaster(pf32bit, 37, 21);
  EXPECT_EQ(Facts(Encoded(source)).samples, 3);
  source.alphaFormat = afDefined;
  EXPECT_EQ(Facts(Encoded(source)).samples, 4);
  const ImagingFrame frame = Frame(Encoded(source));
  EXPECT_EQ(frame.format, GUID_WICPixelFormat32bppBGRA);
  EXPECT_TRUE(SamePixels(source, frame.rows)) << "straight, not premultiplied";
}

TEST(TiffEncoder, RgbaRows_Should_BeExchanged_And_KeepAlpha) {
  for (const TAlphaFormat alpha : {afIgnored, afDefined}) {
    Raster source = GradientRaster(pf32bit, 37, 21);
    source.alphaFormat = alpha;
    TiffWriteOptions options = Packed(TiffCompression::none);
    options.exchangeRedBlue = true;
    const Raster decoded = Decoded(Encoded(source, options));
    ASSERT_EQ(decoded.Format(), pf32bit);
    EXPECT_EQ(decoded.alphaFormat, afDefined);
    for (int y = 0; y < source.Height(); y++) {
      for (int x = 0; x < source.Width(); x++) {
        const uint8_t *rgba = source.Row(y) + 4 * x, *bgra = decoded.Row(y) + 4 * x;
        const std::array<uint8_t, 4> expected = {rgba[2], rgba[1], rgba[0], rgba[3]};
        ASSERT_EQ((std::array<uint8_t, 4>{bgra[0], bgra[1], bgra[2], bgra[3]}), expected);
      }
    }
  }
}

TEST(TiffEncoder, RgbaRows_Should_MeanNothing_When_PixelsHaveOtherBits) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster source = GradientRaster(format, 37, 21);
    TiffWriteOptions options;
    options.exchangeRedBlue = true;
    EXPECT_EQ(Encoded(source, options), Encoded(source));
  }
}

// ---- What goes along

TEST(TiffEncoder, Resolution_Should_Come) {
  for (const Resolution resolution :
       {Resolution{300, 150}, Resolution{72.5, 0.25}, Resolution{299.9994, 11811}}) {
    Raster source = GradientRaster(pf24bit, 5, 3);
    source.resolution = resolution;
    const Raster decoded = Decoded(Encoded(source));
    EXPECT_NEAR(decoded.resolution.x, resolution.x, resolution.x * 1e-7);
    EXPECT_NEAR(decoded.resolution.y, resolution.y, resolution.y * 1e-7);
  }
}

TEST(TiffEncoder, AbsurdResolution_Should_NotKeepThePixelsOut) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  for (const Resolution resolution :
       {Resolution{kInfinity, kInfinity}, Resolution{1e300, 5e-324}, Resolution{1e-30, 1e30},
        Resolution{kNone, kNone}, Resolution{-1, -1}, Resolution{300, 0}}) {
    Raster source = GradientRaster(pf24bit, 5, 3);
    source.resolution = resolution;
    EXPECT_TRUE(SamePixels(source, Decoded(Encoded(source)))) << resolution.x;
  }
}

TEST(TiffEncoder, Profile_Should_Come_When_ItFitsThePixels) {
  Raster color = GradientRaster(pf24bit, 5, 3), gray = GrayRaster(5, 3);
  color.profile = gray.profile = RgbProfile();
  const Raster decoded = Decoded(Encoded(color));
  ASSERT_NE(decoded.profile, nullptr);
  EXPECT_EQ(*decoded.profile, *color.profile);
  EXPECT_THAT(Facts(Encoded(gray)).metadata, testing::IsEmpty()) << "grays have no red";
  gray.profile = GrayProfile();
  ASSERT_NE(Decoded(Encoded(gray)).profile, nullptr);
  EXPECT_EQ(*Decoded(Encoded(gray)).profile, *gray.profile);
}

TEST(TiffEncoder, GeoTags_Should_ComeBack_ToTheLastBit) {
  const double values[] = {0.1,
                           -0.0,
                           5e-324,
                           1.7976931348623157e308,
                           -4567890.123456789,
                           std::numeric_limits<double>::infinity(),
                           std::bit_cast<double>(uint64_t{0x7FF8000000001234}),
                           std::nextafter(0.01, 1),
                           1.0 / 3};
  TiffWriteOptions options;
  options.geo.emplace();
  for (size_t i = 0; i < 3; i++) options.geo->pixelScale[i] = values[i];
  for (size_t i = 0; i < 6; i++) options.geo->tiePoint[i] = values[3 + i];
  for (const TPixelFormat format : kWrittenFormats) {
    const TiffFacts facts = Facts(Encoded(GradientRaster(format, 5, 3), options));
    std::vector<double> all = facts.pixelScale;
    all.insert(all.end(), facts.tiePoints.begin(), facts.tiePoints.end());
    ASSERT_EQ(all.size(), std::size(values));
    for (size_t i = 0; i < all.size(); i++)
      EXPECT_EQ(std::bit_cast<uint64_t>(all[i]), std::bit_cast<uint64_t>(values[i])) << i;
  }
}

TEST(TiffEncoder, File_Should_HaveOnePage_And_NoGeoTags_UnlessAsked) {
  const TiffFacts facts = Facts(Encoded(GradientRaster(pf24bit, 5, 3)));
  EXPECT_EQ(facts.pages, 1);
  EXPECT_THAT(facts.pixelScale, testing::IsEmpty());
  EXPECT_THAT(facts.tiePoints, testing::IsEmpty());
  EXPECT_FALSE(facts.isBigTiff);
  EXPECT_FALSE(facts.isBigEndian);
  EXPECT_FALSE(facts.isTiled);
}

// ---- Refusals

TEST(TiffEncoder, Should_Refuse_When_ThereAreNoPixels) {
  EXPECT_THROW(Encoded(Raster()), FormatError);
  EXPECT_THROW(Encoded(Raster(pf24bit, 5, 0)), FormatError);
  EXPECT_THROW(Encoded(Raster(pf24bit, 0, 5)), FormatError);
}

TEST(TiffEncoder, Should_Refuse_Words) {
  for (const TPixelFormat format : {pf15bit, pf16bit})
    EXPECT_THROW(Encoded(GradientRaster(format, 5, 3)), FormatError);
}

TEST(TiffEncoder, Should_RefuseG4_When_PixelsHaveMoreThanOneBit) {
  for (const TPixelFormat format : {pf4bit, pf8bit, pf24bit, pf32bit})
    EXPECT_THROW(Encoded(GradientRaster(format, 5, 3), Packed(TiffCompression::group4)),
                 FormatError);
}

// ---- Streams

TEST(TiffEncoder, File_Should_BeginAtTheStreamsPosition) {
  const Raster source = GradientRaster(pf24bit, 37, 21);
  const std::vector<uint8_t> expected = Encoded(source);
  // What lies behind the position, little or much, is written over.
  for (const size_t there : {size_t{7}, size_t{20}, expected.size() + 1000}) {
    TMemoryStream stream(std::vector<uint8_t>(there, 0xAB));
    stream.SetPosition(7);
    EncodeTiff(source, stream);
    EXPECT_EQ(stream.Position(), 7 + expected.size());
    const auto bytes = stream.Bytes();
    EXPECT_EQ(bytes.size(), std::max(there, 7 + expected.size()));
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.begin() + 7),
              std::vector<uint8_t>(7, 0xAB));
    const auto file = bytes.subspan(7, expected.size());
    EXPECT_TRUE(std::equal(file.begin(), file.end(), expected.begin()));
  }
}

/// A stream that takes a limited number of bytes.
class FullStream : public TMemoryStream {
 public:
  explicit FullStream(uint64_t room) : room_(room) {}
  void Write(std::span<const uint8_t> source) override {
    if (Position() + source.size() > room_) throw FileError("the disk is full", "a.tif");
    TMemoryStream::Write(source);
  }

 private:
  const uint64_t room_;
};

TEST(TiffEncoder, StreamsError_Should_Pass_WhereverItHappens) {
  Raster source = GradientRaster(pf24bit, 1203, 401);
  source.profile = RgbProfile();
  testing::internal::CaptureStderr();
  for (const TiffCompression compression : {TiffCompression::none, TiffCompression::lzw}) {
    for (const int threads : {1, 3}) {
      const uint64_t size = Encoded(source, Packed(compression)).size();
      for (const uint64_t room : {uint64_t{0}, uint64_t{8}, uint64_t{1000}, size / 3, size - 1}) {
        FullStream stream(room);
        try {
          EncodeTiff(source, stream, Packed(compression, threads));
          ADD_FAILURE() << "written";
        } catch (const FileError& error) {
          EXPECT_EQ(error.Reason(), "the disk is full");
          EXPECT_EQ(error.File(), "a.tif");
        }
      }
      FullStream stream(size);
      EXPECT_NO_THROW(EncodeTiff(source, stream, Packed(compression, threads)));
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// ---- Threads

TEST(TiffEncoder, Bytes_Should_NotDependOnThreads) {
  std::mt19937 random(1);
  for (const TPixelFormat format : kWrittenFormats) {
    // Three strips and a part of a fourth, for every pixel format.
    const int width = 1201 * 8 / StoredBitsPerPixel(format) + 1, height = 703;
    const Raster pictures[] = {GradientRaster(format, width, height),
                               RandomRaster(format, width, height, random)};
    for (const Raster& source : pictures) {
      for (const TiffCompression compression : kForAnyBits) {
        const std::vector<uint8_t> expected = Encoded(source, Packed(compression));
        for (const int threads : {2, 5, 1000, 0, -5}) {
          EXPECT_TRUE(Encoded(source, Packed(compression, threads)) == expected)
              << format << ", compression " << static_cast<int>(compression) << ", " << threads
              << " threads";
        }
      }
    }
  }
}

// ---- Large files

TEST(TiffEncoder, LargeFiles_Should_HaveOffsetsOf64Bits) {
  constexpr uint64_t kGiga = 1 << 30;
  using detail::NeedsBigTiff;
  for (const uint16_t compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                                     COMPRESSION_PACKBITS, COMPRESSION_CCITTFAX4}) {
    EXPECT_FALSE(NeedsBigTiff(14043 / 8, 9933, compression));
    EXPECT_FALSE(NeedsBigTiff(kGiga / 2, 1, compression));
    EXPECT_TRUE(NeedsBigTiff(4 * kGiga, 1, compression));
    EXPECT_TRUE(NeedsBigTiff(1, 4 * kGiga, compression));
    EXPECT_TRUE(NeedsBigTiff(3ull * 2147483647, 2147483647, compression));
  }
  EXPECT_FALSE(NeedsBigTiff(1 << 20, 4000, COMPRESSION_NONE));
  EXPECT_TRUE(NeedsBigTiff(1 << 20, 4090, COMPRESSION_NONE)) << "tags need room too";
  EXPECT_TRUE(NeedsBigTiff(1 << 20, 4000, COMPRESSION_LZW)) << "noise grows";
  EXPECT_TRUE(NeedsBigTiff(1 << 20, 1000, COMPRESSION_CCITTFAX4)) << "and more so";
}

TEST(TiffEncoder, BigTiff_Should_BeReadBack) {
  for (const TPixelFormat format : kWrittenFormats) {
    for (const int threads : {1, 3}) {
      const Raster source = GradientRaster(format, 1111, 1203);
      detail::TiffPlan plan = detail::PlanTiff(source, {});
      plan.isBig = true;
      TMemoryStream stream;
      {
        detail::TiffOutput output(stream, plan.isBig);
        detail::SetStripTags(output, plan);
        detail::SetColorTags(output, plan);
        detail::WriteStrips(output, source, plan, threads);
        output.Finish();
      }
      const std::vector<uint8_t> bytes = stream.TakeBytes();
      EXPECT_TRUE(Facts(bytes).isBigTiff);
      EXPECT_TRUE(SamePixels(Expected(source), Decoded(bytes))) << format;
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
