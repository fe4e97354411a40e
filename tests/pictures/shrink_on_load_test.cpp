// Pictures that are decoded smaller: size, metadata and position are those of the exact way, and
// the colors are near.

#include <cmath>
#include <cstdlib>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/palette.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jpeg/jpeg_files.h"
#include "tests/support/corpus.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::JpegRecipe;
using test::MakeJpeg;
using Bytes = std::vector<uint8_t>;

Picture OpenAs(Bytes file, bool shrinks) {
  OpenOptions options;
  options.shrinksOnLoad = shrinks;
  return Picture::Open(std::move(file), options);
}

double MeanDifference(const TBitmap& a, const TBitmap& b) {
  double sum = 0, count = 0;
  for (int y = 0; y < a.Height(); ++y) {
    for (int x = 0; x < a.Width(); ++x) {
      const TColor p = a.Content().PixelColor(x, y), q = b.Content().PixelColor(x, y);
      for (const int shift : {0, 8, 16}) {
        sum += std::abs(static_cast<int>(p >> shift & 0xFF) - static_cast<int>(q >> shift & 0xFF));
        count += 1;
      }
    }
  }
  return sum / count;
}

/// A file with the orientation in an EXIF block after the start marker.
Bytes Turned(const Bytes& file, int orientation) {
  Bytes exif = {0xFF, 0xE1, 0, 34, 'E', 'x', 'i', 'f', 0, 0,
                'M',  'M',  0, 42, 0,   0,   0,   8,   0, 1,
                0x01, 0x12, 0, 3,  0,   0,   0,   1,   0, static_cast<uint8_t>(orientation),
                0,    0,    0, 0,  0,   0};
  Bytes turned(file.begin(), file.begin() + 2);
  turned.insert(turned.end(), exif.begin(), exif.end());
  turned.insert(turned.end(), file.begin() + 2, file.end());
  return turned;
}

/// Waves of about 150 pixels: what is moved by a part of a block differs much.
Bytes Photograph(int width, int height, int colors = 3) {
  PixelLayout layout;
  layout.bands = colors;
  layout.model = colors == 1 ? ColorModel::gray : colors == 3 ? ColorModel::rgb : ColorModel::cmyk;
  Samples samples(layout, width, height);
  for (int y = 0; y < height; ++y) {
    for (int i = 0; i < width * colors; ++i) {
      const int x = i / colors, band = i % colors;
      const double wave = std::sin(x * 0.04 + band) * std::cos(y * 0.045 + x * 0.01);
      samples.Row(y)[i] = static_cast<uint8_t>(std::lround(127.5 + 100 * wave));
    }
  }
  PictureWriting writing;
  writing.metadata.resolution = {300, 200};
  writing.metadata.hasJfif = true;
  TMemoryStream stream;
  WriteJpeg(std::move(samples), writing, stream);
  return stream.TakeBytes();
}

std::string FactsOf(const Picture& picture) {
  TMemoryStream stream;
  SaveOptions options;
  options.type = PictureType::png;
  const Report report = picture.Save(stream, options);
  std::string text = fmt::format("{} x {} {} {} {}", report.width, report.height,
                                 picture.GetMetadata().resolution.x,
                                 picture.GetMetadata().resolution.y, report.layout.bands);
  for (const std::string& warning : report.warnings) text += '\n' + warning;
  for (const Loss& loss : report.losses) text += '\n' + loss.what + loss.why;
  return text;
}

TEST(ShrinkOnLoad, Should_KeepWhatTheExactWayStates_AndNearlyItsColors) {
  for (const int colors : {1, 3, 4}) {
    for (const int side : {64, 61, 59, 57}) {
      const Bytes file = Photograph(9 * side + 3, 7 * side + 5, colors);
      for (const int divisor : {3, 9, 20}) {
        Picture exact = OpenAs(file, false), fast = OpenAs(file, true);
        const int width = exact.Width() / divisor, height = exact.Height() / divisor;
        exact.Resize(width, height);
        fast.Resize(width, height);
        EXPECT_EQ(FactsOf(fast), FactsOf(exact));
        EXPECT_LT(MeanDifference(*fast.Bitmap(), *exact.Bitmap()), 1.2)
            << colors << " colors, side " << side << " by " << divisor;
      }
    }
  }
}

TEST(ShrinkOnLoad, Should_BeTurnedAsTheFileSays) {
  // The sides leave a rest of every block.
  const Bytes upright = Photograph(433, 331);
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const Bytes file = Turned(upright, orientation);
    Picture exact = OpenAs(file, false), fast = OpenAs(file, true);
    ASSERT_EQ(exact.Width(), orientation < 5 ? 433 : 331);
    const int width = exact.Width() / 17, height = exact.Height() / 17;
    exact.Resize(width, height, {Filter::area});
    fast.Resize(width, height, {Filter::area});
    EXPECT_EQ(FactsOf(fast), FactsOf(exact));
    EXPECT_LT(MeanDifference(*fast.Bitmap(), *exact.Bitmap()), 1.2) << orientation;
  }
}

TEST(ShrinkOnLoad, OtherSteps_Should_BeExact) {
  const Bytes file = Photograph(433, 331);
  const auto expectSame = [&](const auto& change) {
    Picture exact = OpenAs(file, false), fast = OpenAs(file, true);
    change(exact);
    change(fast);
    EXPECT_EQ(MeanDifference(*fast.Bitmap(), *exact.Bitmap()), 0);
  };
  expectSame([](Picture&) {});
  expectSame([](Picture& picture) { picture.Crop({8, 8, 300, 300}).Resize(20, 20); });
  expectSame([](Picture& picture) { picture.Resize(20, 20, {Filter::nearest}); });
  expectSame([](Picture& picture) { picture.Resize(20, 20, {Filter::linear}); });
  // Not twice as large in both directions.
  expectSame([](Picture& picture) { picture.Resize(220, 20); });
  expectSame([](Picture& picture) { picture.Resize(20, 400); });
}

TEST(ShrinkOnLoad, Steps_Should_FollowTheResize) {
  const Bytes file = Photograph(640, 480);
  Picture exact = OpenAs(file, false), fast = OpenAs(file, true);
  for (Picture* picture : {&exact, &fast}) {
    picture->Resize(64, 48).Change(MakeGray{}).Crop({3, 4, 50, 40});
  }
  EXPECT_EQ(FactsOf(fast), FactsOf(exact));
  EXPECT_LT(MeanDifference(*fast.Bitmap(), *exact.Bitmap()), 1.2);
}

TEST(ShrinkOnLoad, BrokenFiles_Should_GiveTheSameWords) {
  for (const bool progressive : {false, true}) {
    JpegRecipe recipe{.width = 640, .height = 480, .file = JCS_YCbCr};
    recipe.progressive = progressive;
    const Bytes whole = MakeJpeg(recipe);
    int failed = 0, warned = 0;
    for (size_t part = 1; part < 30; ++part) {
      const Bytes file(whole.begin(),
                       whole.begin() + static_cast<int64_t>(whole.size() * part / 30));
      std::string texts[2];
      for (const bool shrinks : {false, true}) {
        try {
          Picture picture = OpenAs(file, shrinks);
          picture.Resize(64, 48);
          texts[shrinks] = FactsOf(picture);
          warned += texts[shrinks].find("JPEG: ") != std::string::npos ? 1 : 0;
        } catch (const Error& error) {
          texts[shrinks] = error.what();
          failed += 1;
        }
      }
      EXPECT_EQ(texts[0], texts[1]) << part;
    }
    EXPECT_GT(failed, 0);
    EXPECT_GT(warned, 10);
  }
}

TEST(ShrinkOnLoad, SkippedParts_Should_NotChangeThePicture) {
  Bytes file = Photograph(433, 331);
  file.insert(file.end(), 5000, 'x');
  OpenOptions options;
  options.skipsHidden = true;
  const Picture front = Picture::Open(file, options), whole = Picture::Open(file);
  EXPECT_EQ(front.Width(), whole.Width());
  EXPECT_EQ(front.GetMetadata().resolution.x, whole.GetMetadata().resolution.x);
  EXPECT_EQ(MeanDifference(*front.Bitmap(), *whole.Bitmap()), 0);
}

/// A page of one color with a smaller copy of another one.
Bytes PageWithCopy(int width, int height, TPixelFormat format,
                   TiffCompression compression = TiffCompression::none) {
  Raster page(pf24bit, 400, 300), copy(format, width, height);
  FillRaster(page, {0, 0, 400, 300}, 0x0000FF);
  FillRaster(copy, {0, 0, width, height}, 0x00FF00);
  std::vector<TiffExtraPage> extra(1);
  extra[0].pixels = std::move(copy);
  if (compression != TiffCompression::none) {
    extra[0].form = FormFor(compression, LayoutOf(extra[0].pixels));
  }
  extra[0].subfileType = 1;
  TMemoryStream stream;
  WriteTiff(Pixels(std::move(page)), {}, extra, stream);
  return stream.TakeBytes();
}

TColor ColorOfSmall(const Bytes& file) {
  Picture picture = OpenAs(file, true);
  picture.Resize(50, 37);
  return picture.Bitmap()->Content().PixelColor(20, 20);
}

TEST(ShrinkOnLoad, SmallerCopies_Should_BeTaken_When_TheyAreLargeEnough) {
  constexpr TColor kPage = 0x0000FF, kCopy = 0x00FF00;
  EXPECT_EQ(ColorOfSmall(PageWithCopy(200, 150, pf24bit)), kCopy);
  EXPECT_EQ(ColorOfSmall(PageWithCopy(100, 75, pf24bit)), kCopy);
  // Too small, of another shape, of another kind.
  EXPECT_EQ(ColorOfSmall(PageWithCopy(98, 74, pf24bit)), kPage);
  EXPECT_EQ(ColorOfSmall(PageWithCopy(200, 120, pf24bit)), kPage);
  EXPECT_EQ(ColorOfSmall(PageWithCopy(200, 150, pf8bit)), kPage);
  Picture exact = OpenAs(PageWithCopy(200, 150, pf24bit), false);
  exact.Resize(50, 37);
  EXPECT_EQ(exact.Bitmap()->Content().PixelColor(20, 20), kPage);
}

/// A broken copy says nothing about the page, which is whole.
TEST(ShrinkOnLoad, DamagedCopies_Should_NotBeTaken) {
  constexpr TColor kPage = 0x0000FF, kCopy = 0x00FF00;
  const Bytes file = PageWithCopy(200, 150, pf24bit, TiffCompression::deflate);
  ASSERT_EQ(ColorOfSmall(file), kCopy);
  Picture sound = OpenAs(file, false);
  sound.Resize(50, 37);
  const std::string factsOfSound = FactsOf(sound);
  int fromPage = 0;
  for (size_t at = 8; at < file.size(); ++at) {
    Bytes broken = file;
    broken[at] ^= 0xFF;
    std::string exact;
    try {
      Picture picture = OpenAs(broken, false);
      picture.Resize(50, 37);
      exact = FactsOf(picture);
      // The page, too, has bytes that are broken here.
      if (exact != factsOfSound) continue;
    } catch (const Error&) {
      continue;
    }
    try {
      Picture picture = OpenAs(broken, true);
      picture.Resize(50, 37);
      EXPECT_EQ(FactsOf(picture), exact) << at;
      fromPage += picture.Bitmap()->Content().PixelColor(20, 20) == kPage ? 1 : 0;
    } catch (const Error& error) {
      ADD_FAILURE() << at << ": " << error.what();
    }
  }
  EXPECT_GT(fromPage, 20);
}

/// Their pixels are the nearest ones, not the mean ones.
TEST(ShrinkOnLoad, CopiesOfBits_Should_NotBeTaken) {
  Raster page(pf1bit, 400, 300);
  page.palette = GrayPalette(2);
  FillRaster(page, {0, 0, 400, 300}, 0xFFFFFF);
  std::vector<TiffExtraPage> extra(1);
  Raster copy(pf1bit, 200, 150);
  copy.palette = GrayPalette(2);
  FillRaster(copy, {0, 0, 200, 150}, 0x000000);
  extra[0].pixels = std::move(copy);
  TMemoryStream stream;
  WriteTiff(Pixels(std::move(page)), {}, extra, stream);
  EXPECT_EQ(ColorOfSmall(stream.TakeBytes()), TColor{0xFFFFFF});
}

/// Large JPEG files of the corpus that are whole: the others show patterns, and noise.
TEST(ShrinkOnLoad, Photographs_Should_BeNear) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  constexpr double kMost = 2.5;
  double largest = 0;
  int seen = 0;
  for (const test::CorpusEntry& entry : test::CorpusEntries("exif")) {
    const std::string file = (test::CorpusFolder() / entry.at("path")).string();
    OpenOptions options;
    options.shrinksOnLoad = true;
    try {
      Picture exact = Picture::Open(file), fast = Picture::Open(file, options);
      for (const int side : {64, 160, 400}) {
        const int longest = std::max(exact.Width(), exact.Height());
        if (longest < 4 * side) continue;
        Picture a = exact, b = fast;
        const int width = std::max(1, exact.Width() * side / longest);
        const int height = std::max(1, exact.Height() * side / longest);
        a.Resize(width, height);
        b.Resize(width, height);
        const double difference = MeanDifference(*a.Bitmap(), *b.Bitmap());
        EXPECT_LE(difference, kMost) << file << " to " << side;
        largest = std::max(largest, difference);
        ++seen;
      }
    } catch (const Error&) {
      // Broken and foreign files have tests of their own.
    }
  }
  RecordProperty("largest", fmt::format("{:.3f}", largest));
  EXPECT_GT(seen, 20);
}

}  // namespace
}  // namespace rasterkit
