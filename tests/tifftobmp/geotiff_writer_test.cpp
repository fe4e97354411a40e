#include <array>
#include <bit>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/tifftobmp/geotiff_writer.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/child_process.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientBitmap;
using test::SamePixels;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kAboveThreshold = std::nextafter(0.01, 1);

class GeoTiffWriter : public testing::Test {
 protected:
  void Write(TBitmap& bitmap, bool rgbaData = false) const {
    WriteBitmapToTiff(bitmap, name_, rgbaData, 0, 0, 0, 0);
  }
  TiffFacts Facts() const {
    TFileStream stream(name_);
    return ReadTiffFacts(stream);
  }
  TWICBitmap Loaded() const {
    TWICBitmap bitmap;
    bitmap.LoadFromFile(name_);
    return bitmap;
  }
  TiffFacts Placed(double x0, double y0, double scaleX, double scaleY) const {
    TBitmap bitmap = GradientBitmap(pf24bit, 5, 3);
    WriteBitmapToTiff(bitmap, name_, false, x0, y0, scaleX, scaleY);
    return Facts();
  }
  bool IsPlaced(double scaleX, double scaleY) const {
    const TiffFacts facts = Placed(1, 2, scaleX, scaleY);
    EXPECT_EQ(facts.pixelScale.empty(), facts.tiePoints.empty()) << "both tags or none";
    return !facts.pixelScale.empty();
  }

  test::TempFolder folder_;
  const std::string name_ = folder_ / "a.tif";
};

// ---- Geo tags

TEST_F(GeoTiffWriter, Tags_Should_TieTheFirstPixelToItsPlace) {
  const TiffFacts facts = Placed(3456789.125, 5678901.875, 0.25, 0.5);
  EXPECT_EQ(facts.pixelScale, (std::vector<double>{0.25, 0.5, 0}));
  EXPECT_EQ(facts.tiePoints, (std::vector<double>{0, 0, 0, 3456789.125, 5678901.875, 0}));
}

TEST_F(GeoTiffWriter, Tags_Should_ComeBack_ToTheLastBit) {
  const double values[] = {0.1,        1.0 / 3,
                           -0.0,       -4567890.123456789,
                           5e-324,     1.7976931348623157e308,
                           -kInfinity, std::bit_cast<double>(uint64_t{0x7FF8000000001234})};
  const double scales[] = {kAboveThreshold, 0.1, 1.0 / 3, 1e300, kInfinity};
  for (const double origin : values) {
    for (const double scale : scales) {
      const TiffFacts facts = Placed(origin, -origin, scale, 2 * scale);
      ASSERT_EQ(facts.tiePoints.size(), 6u);
      ASSERT_EQ(facts.pixelScale.size(), 3u);
      EXPECT_EQ(std::bit_cast<uint64_t>(facts.tiePoints[3]), std::bit_cast<uint64_t>(origin));
      EXPECT_EQ(std::bit_cast<uint64_t>(facts.tiePoints[4]), std::bit_cast<uint64_t>(-origin));
      EXPECT_EQ(facts.pixelScale[0], scale);
      EXPECT_EQ(facts.pixelScale[1], 2 * scale);
    }
  }
}

TEST_F(GeoTiffWriter, Tags_Should_BeWritten_When_BothScalesExceedTheThreshold) {
  EXPECT_TRUE(IsPlaced(kAboveThreshold, kAboveThreshold));
  EXPECT_TRUE(IsPlaced(kAboveThreshold, 1000));
  EXPECT_TRUE(IsPlaced(kInfinity, 1));
}

TEST_F(GeoTiffWriter, Tags_Should_BeLeftOut_When_AScaleIsTheThreshold) {
  EXPECT_FALSE(IsPlaced(0.01, 0.01));
  EXPECT_FALSE(IsPlaced(0.01, 1));
  EXPECT_FALSE(IsPlaced(1, 0.01));
  EXPECT_FALSE(IsPlaced(0.01, kNaN));
}

TEST_F(GeoTiffWriter, Tags_Should_BeLeftOut_When_AScaleIsBelowTheThreshold) {
  for (const double small : {0.0, -0.0, 0.005, -1.0, -kInfinity, std::nextafter(0.01, 0)}) {
    EXPECT_FALSE(IsPlaced(small, 1)) << small;
    EXPECT_FALSE(IsPlaced(1, small)) << small;
    EXPECT_FALSE(IsPlaced(small, small)) << small;
  }
}

TEST_F(GeoTiffWriter, TheHeight_Should_Decide_When_TheWidthIsNoNumber) {
  EXPECT_TRUE(IsPlaced(kNaN, kAboveThreshold));
  EXPECT_TRUE(std::isnan(Facts().pixelScale[0])) << "stored as given";
  EXPECT_TRUE(IsPlaced(-kNaN, 1));
  EXPECT_FALSE(IsPlaced(kNaN, 0.01));
  EXPECT_FALSE(IsPlaced(kNaN, -1));
  EXPECT_FALSE(IsPlaced(kNaN, kNaN));
}

TEST_F(GeoTiffWriter, Tags_Should_BeLeftOut_When_TheHeightIsNoNumber) {
  EXPECT_FALSE(IsPlaced(1, kNaN));
}

TEST_F(GeoTiffWriter, Tags_Should_BeWritten_ForEveryFormat_And_WithRgbaData) {
  for (const TPixelFormat format : test::kEveryFormat) {
    for (const bool rgbaData : {false, true}) {
      TBitmap bitmap = GradientBitmap(format, 13, 7);
      WriteBitmapToTiff(bitmap, name_, rgbaData, 10, 20, 2, 4);
      EXPECT_EQ(Facts().pixelScale, (std::vector<double>{2, 4, 0}));
      EXPECT_EQ(Facts().tiePoints, (std::vector<double>{0, 0, 0, 10, 20, 0}));
    }
  }
}

// ---- Pixels

TEST_F(GeoTiffWriter, EveryFormat_Should_ComeBack) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {8, 3}, {33, 2}, {67, 41}}) {
    for (const TPixelFormat format : test::kEveryFormat) {
      TBitmap bitmap = test::RandomBitmap(format, width, height, random);
      const auto before = bitmap.Clone();
      Write(bitmap);
      const bool loses = format == pf15bit || format == pf16bit || format == pf32bit;
      const Raster expected = ConvertRaster(before->Content(), loses ? pf24bit : format);
      EXPECT_TRUE(SamePixels(expected, Loaded().Content()))
          << format << ", " << width << " x " << height;
    }
  }
}

TEST_F(GeoTiffWriter, Words_Should_Become24Bits_And_StaySo) {
  for (const TPixelFormat format : {pf15bit, pf16bit}) {
    for (const bool rgbaData : {false, true}) {
      TBitmap bitmap = GradientBitmap(format, 13, 7);
      const Raster expected = ConvertRaster(bitmap.Content(), pf24bit);
      Write(bitmap, rgbaData);
      EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
      EXPECT_TRUE(SamePixels(expected, bitmap.Content()));
      EXPECT_TRUE(SamePixels(expected, Loaded().Content())) << "nothing is exchanged";
    }
  }
}

TEST_F(GeoTiffWriter, Words_Should_Stay24Bits_When_TheFileCannotBeWritten) {
  TBitmap bitmap = GradientBitmap(pf16bit, 13, 7);
  EXPECT_THROW(WriteBitmapToTiff(bitmap, folder_ / "no/a.tif", false, 0, 0, 0, 0), FileError);
  EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
}

TEST_F(GeoTiffWriter, OtherBitmaps_Should_StayAsTheyAre) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    for (const bool rgbaData : {false, true}) {
      TBitmap bitmap = GradientBitmap(format, 13, 7);
      bitmap.SetModified(true);
      const auto before = bitmap.Clone();
      Write(bitmap, rgbaData);
      EXPECT_TRUE(SamePixels(*before, bitmap)) << format;
      EXPECT_EQ(bitmap.PixelFormat(), format);
      EXPECT_EQ(bitmap.AlphaFormat(), before->AlphaFormat());
      EXPECT_TRUE(bitmap.Modified()) << "the file is a copy, not the bitmap's own";
    }
  }
}

TEST_F(GeoTiffWriter, PalettesOf4Bits_Should_ComeBack) {
  std::mt19937 random(4);
  TBitmap bitmap = GradientBitmap(pf4bit, 19, 6);
  for (const HPALETTE& palette :
       {DefaultPalette(pf4bit), GrayPalette(16), test::RandomPalette(16, random)}) {
    bitmap.SetPalette(palette);
    Write(bitmap);
    EXPECT_TRUE(SamePixels(bitmap, Loaded()));
  }
  bitmap.SetPalette(test::RandomPalette(5, random));
  Write(bitmap);
  EXPECT_TRUE(test::SameColors(bitmap, Loaded())) << "entries beyond the palette are black";
}

TEST_F(GeoTiffWriter, BlackAndWhite_Should_BeShownRight_InEitherOrder) {
  const tagPALETTEENTRY black{}, white{255, 255, 255, 0};
  TBitmap bitmap = GradientBitmap(pf1bit, 19, 6);
  for (const auto& [palette, photometric] :
       {std::pair{std::array{black, white}, PHOTOMETRIC_MINISBLACK},
        {std::array{white, black}, PHOTOMETRIC_MINISWHITE}}) {
    bitmap.SetPalette(HPALETTE(palette));
    Write(bitmap);
    EXPECT_EQ(Facts().photometric, photometric);
    EXPECT_EQ(Facts().compression, COMPRESSION_CCITTFAX4);
    EXPECT_TRUE(test::SameColors(bitmap, Loaded()));
    EXPECT_EQ(Loaded().PixelFormat(), pf1bit);
  }
}

TEST_F(GeoTiffWriter, BitmapWithoutAFormat_Should_BeWritten_As24Bits) {
  TBitmap bitmap;
  bitmap.SetSize(5, 3);
  ASSERT_EQ(bitmap.PixelFormat(), pfDevice);
  Write(bitmap);
  EXPECT_EQ(bitmap.PixelFormat(), pfDevice);
  EXPECT_EQ(Loaded().PixelFormat(), pf24bit);
  EXPECT_TRUE(test::SameColors(bitmap, Loaded()));
}

TEST_F(GeoTiffWriter, BitmapOfACustomFormat_Should_GoByItsRows) {
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap bitmap = GradientBitmap(format, 13, 7);
    const auto before = bitmap.Clone();
    bitmap.SetPixelFormat(pfCustom);
    Write(bitmap);
    EXPECT_TRUE(test::SameColors(*before, Loaded())) << format;
  }
}

// ---- Alpha and rows of R G B A

TEST_F(GeoTiffWriter, Alpha_Should_BeWritten_When_Defined) {
  TBitmap bitmap = GradientBitmap(pf32bit, 13, 7);
  Write(bitmap);
  EXPECT_EQ(Facts().samples, 3);
  bitmap.SetAlphaFormat(afDefined);
  Write(bitmap);
  EXPECT_EQ(Facts().samples, 4);
  EXPECT_EQ(Facts().compression, COMPRESSION_LZW);
  const TWICBitmap loaded = Loaded();
  EXPECT_EQ(loaded.AlphaFormat(), afDefined);
  EXPECT_EQ(loaded.PixelFormat(), pf32bit);
}

TEST_F(GeoTiffWriter, RgbaData_Should_BeExchanged_And_Uncompressed_WithAlpha) {
  for (const TAlphaFormat alpha : {afIgnored, afDefined}) {
    TBitmap bitmap(Raster(pf32bit, 13, 7));
    for (int y = 0; y < 7; y++) {
      for (int i = 0; i < 4 * 13; i++) {
        // No alpha is 0: such pixels become white when they are read.
        bitmap.ScanLine(y)[i] = static_cast<uint8_t>((40 * y + i) | (i % 4 == 3));
      }
    }
    bitmap.SetAlphaFormat(alpha);
    Write(bitmap, true);
    EXPECT_EQ(Facts().compression, COMPRESSION_NONE);
    EXPECT_EQ(Facts().samples, 4);
    const TWICBitmap loaded = Loaded();
    ASSERT_EQ(loaded.PixelFormat(), pf32bit);
    EXPECT_EQ(loaded.AlphaFormat(), afDefined);
    for (int y = 0; y < 7; y++) {
      for (int x = 0; x < 13; x++) {
        const uint8_t *rgba = bitmap.ScanLine(y) + 4 * x, *bgra = loaded.ScanLine(y) + 4 * x;
        ASSERT_EQ(bgra[0], rgba[2]);
        ASSERT_EQ(bgra[1], rgba[1]);
        ASSERT_EQ(bgra[2], rgba[0]);
        ASSERT_EQ(bgra[3], rgba[3]);
      }
    }
  }
}

TEST_F(GeoTiffWriter, RgbaFlag_Should_OnlyMeanUncompressed_When_PixelsHaveOtherBits) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    TBitmap bitmap = GradientBitmap(format, 13, 7);
    Write(bitmap, true);
    EXPECT_EQ(Facts().compression, COMPRESSION_NONE) << format;
    EXPECT_TRUE(SamePixels(bitmap, Loaded())) << format;
  }
}

// ---- What goes along

TEST_F(GeoTiffWriter, ResolutionAndProfile_Should_Come) {
  TBitmap bitmap = GradientBitmap(pf24bit, 13, 7);
  bitmap.SetDpi({300, 150});
  bitmap.SetProfile(test::RgbProfile());
  Write(bitmap);
  EXPECT_EQ(Loaded().Dpi(), (Resolution{300, 150}));
  ASSERT_NE(Loaded().Profile(), nullptr);
  EXPECT_EQ(*Loaded().Profile(), *bitmap.Profile());
}

// ---- Files

TEST_F(GeoTiffWriter, OldFile_Should_BeReplaced_WithoutAsking) {
  folder_.Write("a.tif", "old and longer than the new one: " + std::string(10'000, 'x'));
  TBitmap bitmap = GradientBitmap(pf24bit, 5, 3);
  Write(bitmap);
  EXPECT_TRUE(SamePixels(bitmap, Loaded()));
  EXPECT_LT(std::filesystem::file_size(name_), 10'000u);
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a.tif"});
}

TEST_F(GeoTiffWriter, BitmapWithoutPixels_Should_BeRefused_And_LeaveTheFile) {
  folder_.Write("a.tif", "precious");
  TBitmap empty;
  try {
    Write(empty);
    ADD_FAILURE() << "written";
  } catch (const FormatError& error) {
    EXPECT_EQ(error.File(), name_);
  }
  EXPECT_EQ(test::ReadFile(name_), "precious");
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a.tif"});
}

TEST_F(GeoTiffWriter, MissingFolder_Should_BeNamed) {
  TBitmap bitmap = GradientBitmap(pf24bit, 5, 3);
  const std::string name = folder_ / "no/such/a.tif";
  try {
    WriteBitmapToTiff(bitmap, name, false, 0, 0, 0, 0);
    ADD_FAILURE() << "written";
  } catch (const FileError& error) {
    EXPECT_EQ(error.File(), name);
  }
  EXPECT_THROW(WriteBitmapToTiff(bitmap, folder_.Path().string(), false, 0, 0, 0, 0), FileError);
  EXPECT_THROW(WriteBitmapToTiff(bitmap, "", false, 0, 0, 0, 0), FileError);
}

TEST_F(GeoTiffWriter, Pipe_Should_GetTheSameBytes) {
  // The header says where the directory is, which lies after the pixels.
  TBitmap bitmap = GradientBitmap(pf24bit, 501, 303);
  const std::string pipe = folder_ / "pipe.tif", file = folder_ / "file.tif";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::string bytes;
  std::thread reader([&] { bytes = test::ReadFile(pipe); });
  WriteBitmapToTiff(bitmap, pipe, false, 4468000, 5334000, 0.05, 0.05);
  reader.join();
  WriteBitmapToTiff(bitmap, file, false, 4468000, 5334000, 0.05, 0.05);
  EXPECT_EQ(bytes, test::ReadFile(file));
  EXPECT_NO_THROW(WriteBitmapToTiff(bitmap, "/dev/null", false, 0, 0, 0, 0));
}

TEST_F(GeoTiffWriter, FullDisk_Should_LeaveTheOldFile) {
  folder_.Write("a.tif", "precious");
  std::mt19937 random(5);
  TBitmap bitmap = test::RandomBitmap(pf32bit, 703, 411, random);
  // Enough for a strip, for the header, and for nothing.
  for (const uint64_t room : {300'000, 100, 5}) {
    for (const bool rgbaData : {false, true}) {
      const int code = test::RunInChild([&] {
        test::LimitFileSize(room);
        try {
          Write(bitmap, rgbaData);
        } catch (const FileError& error) {
          return error.File() == name_ ? 42 : 1;
        }
        return 2;
      });
      EXPECT_EQ(code, 42) << room;
      EXPECT_TRUE(test::ReadFile(name_) == "precious");
      EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a.tif"});
    }
  }
}

}  // namespace
}  // namespace rasterkit
