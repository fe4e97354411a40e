// Files written here, read by other programs: the same pixels and position. A development test,
// skipped if a program is missing.

#include <cstdio>
#include <cstdlib>
#include <random>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/tifftobmp/geotiff_writer.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientBitmap;

bool IsInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

/// True if a command succeeds.
bool Works(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

/// Output of a command, warnings included.
std::string OutputOf(const std::string& command) {
  std::string text;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return text;
  char piece[4096];
  while (const size_t count = std::fread(piece, 1, sizeof piece, pipe)) text.append(piece, count);
  pclose(pipe);
  return text;
}

class GeoTiffPeer : public testing::Test {
 protected:
  void WritePlaced(TPixelFormat format, bool rgbaData = false) const {
    TBitmap bitmap = GradientBitmap(format, 33, 21);
    WriteBitmapToTiff(bitmap, name_, rgbaData, kX0, kY0, kScaleX, kScaleY);
  }

  static constexpr double kX0 = 3456789.123, kY0 = -5678901.7, kScaleX = 0.1, kScaleY = 1.0 / 3;
  test::TempFolder folder_;
  const std::string name_ = folder_ / "a.tif";
};

/// The requested number of numbers behind a heading.
std::vector<double> NumbersBehind(const std::string& text, const std::string& heading,
                                  size_t count) {
  std::vector<double> numbers;
  size_t at = text.find(heading);
  if (at == std::string::npos) return numbers;
  at += heading.size();
  static const std::regex number("-?[0-9]+(\\.[0-9]*)?([eE][-+]?[0-9]+)?");
  for (auto i = std::sregex_iterator(text.begin() + static_cast<ptrdiff_t>(at), text.end(), number);
       i != std::sregex_iterator() && numbers.size() < count; ++i)
    numbers.push_back(std::stod(i->str()));
  return numbers;
}

testing::Matcher<std::vector<double>> Near(const std::vector<double>& expected) {
  std::vector<testing::Matcher<double>> matchers;
  // As many digits as the programs print.
  for (const double value : expected)
    matchers.push_back(testing::DoubleNear(value, std::abs(value) * 1e-13));
  return testing::ElementsAreArray(matchers);
}

TEST_F(GeoTiffPeer, Gdal_Should_FindThePlace) {
  if (!IsInstalled("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  for (const TPixelFormat format : {pf1bit, pf8bit, pf24bit, pf32bit}) {
    for (const bool rgbaData : {false, format == pf32bit}) {
      WritePlaced(format, rgbaData);
      const std::string text = OutputOf("gdalinfo -json '" + name_ + "'");
      EXPECT_THAT(NumbersBehind(text, "\"geoTransform\":", 6),
                  Near({kX0, kScaleX, 0, kY0, 0, -kScaleY}))
          << text;
      EXPECT_THAT(NumbersBehind(text, "\"size\":", 2), testing::ElementsAre(33, 21));
      EXPECT_EQ(text.find("Warning"), std::string::npos) << text;
    }
  }
}

TEST_F(GeoTiffPeer, Gdal_Should_FindNoPlace_When_NoneIsWritten) {
  if (!IsInstalled("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  TBitmap bitmap = GradientBitmap(pf24bit, 33, 21);
  WriteBitmapToTiff(bitmap, name_, false, kX0, kY0, 0.01, 1);
  const std::string text = OutputOf("gdalinfo -json '" + name_ + "'");
  EXPECT_NE(text.find("\"size\""), std::string::npos);
  EXPECT_EQ(text.find("\"geoTransform\""), std::string::npos) << text;
}

TEST_F(GeoTiffPeer, Listgeo_Should_ListBothTags) {
  if (!IsInstalled("listgeo")) GTEST_SKIP() << "listgeo is not installed";
  WritePlaced(pf24bit);
  const std::string text = OutputOf("listgeo -no_norm '" + name_ + "'");
  EXPECT_THAT(NumbersBehind(text, "ModelTiepointTag (2,3):", 6), Near({0, 0, 0, kX0, kY0, 0}))
      << text;
  EXPECT_THAT(NumbersBehind(text, "ModelPixelScaleTag (1,3):", 3), Near({kScaleX, kScaleY, 0}))
      << text;
}

TEST_F(GeoTiffPeer, Tiffinfo_Should_HaveNothingToComplainAbout) {
  if (!IsInstalled("tiffinfo")) GTEST_SKIP() << "tiffinfo is not installed";
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    WritePlaced(format);
    // With all strips unpacked.
    const std::string text = OutputOf("tiffinfo -D '" + name_ + "'");
    EXPECT_NE(text.find("Image Width: 33 Image Length: 21"), std::string::npos) << text;
    // The program does not know tags of maps.
    for (const char* tag : {"33550", "33922"}) {
      const std::regex noise(std::string("TIFFReadDirectory: Warning, Unknown field with tag ") +
                             tag + "[^\n]*");
      EXPECT_TRUE(std::regex_search(text, noise)) << text;
    }
    EXPECT_EQ(text.find("rror"), std::string::npos) << text;
  }
}

/// The colors of every pixel, four bytes R G B A each.
std::string Colors(const Raster& raster) {
  std::string bytes;
  for (int y = 0; y < raster.Height(); y++) {
    for (int x = 0; x < raster.Width(); x++) {
      const TColor color = raster.PixelColor(x, y);
      for (const int shift : {0, 8, 16}) bytes += static_cast<char>(color >> shift);
      const bool hasAlpha = raster.Format() == pf32bit && raster.alphaFormat == afDefined;
      bytes += hasAlpha ? static_cast<char>(raster.Row(y)[4 * x + 3]) : '\xFF';
    }
  }
  return bytes;
}

TEST_F(GeoTiffPeer, ImageMagick_Should_SeeTheSamePixels) {
  if (!Works("convert -version")) GTEST_SKIP() << "ImageMagick is not installed";
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  using enum TiffCompression;
  for (const auto& [format, compression] : {std::pair{pf1bit, standard},
                                            {pf1bit, group4},
                                            {pf4bit, standard},
                                            {pf8bit, standard},
                                            {pf8bit, none},
                                            {pf24bit, standard},
                                            {pf24bit, deflate},
                                            {pf24bit, packBits},
                                            {pf32bit, standard},
                                            {pf32bit, none}}) {
    Raster raster = test::RandomRaster(format, 67, 41, random);
    if (compression == group4) raster.palette = DefaultPalette(format);
    raster.alphaFormat = format == pf32bit ? afDefined : afIgnored;
    TMemoryStream stream;
    TiffWriteOptions options;
    options.compression = compression;
    EncodeTiff(raster, stream, options);
    stream.SaveToFile(name_);
    const std::string seen = folder_ / "seen.rgba";
    EXPECT_EQ(OutputOf("convert '" + name_ + "' -depth 8 'rgba:" + seen + "'"), "");
    EXPECT_TRUE(test::ReadFile(seen) == Colors(raster))
        << format << ", compression " << static_cast<int>(compression);
  }
}

}  // namespace
}  // namespace rasterkit
