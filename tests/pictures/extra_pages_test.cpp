#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/raster/fill.h>

#include "tests/pictures/peer_programs.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientRaster;
using test::GrayRaster;
using test::TempFolder;

constexpr int kWidth = 121, kHeight = 83;
constexpr uint32_t kCopy = 1, kMask = 4, kMaskOfCopy = 5;
constexpr int kNone = 1, kGroup4 = 4, kLzw = 5, kDeflate = 8, kMaskPhotometric = 4;

TiffForm FormOf(int compression, int photometric) {
  TiffForm form;
  form.compression = compression;
  form.photometric = photometric;
  form.rowsPerStrip = 7;
  return form;
}

TiffForm TiledForm(int compression) {
  TiffForm form = FormOf(compression, 1);
  form.rowsPerStrip = 0;
  form.tileWidth = 32;
  form.tileHeight = 16;
  return form;
}

Raster Noise(TPixelFormat format, int width, int height, unsigned seed) {
  std::mt19937 random(seed);
  Raster rows = test::RandomRaster(format, width, height, random);
  if (format == pf8bit || format == pf1bit) rows.palette = GrayPalette(format == pf8bit ? 256 : 2);
  return rows;
}

/// A mask that is set in a rectangle, and nowhere else.
Raster MaskOf(int width, int height, PixelRect set) {
  Raster mask(pf1bit, width, height);
  mask.palette = GrayPalette(2);
  for (int y = 0; y < height; ++y) {
    std::fill_n(mask.Row(y), mask.Stride(), uint8_t{0});
    for (int x = set.left; x < set.right && y >= set.top && y < set.bottom; ++x) {
      mask.Row(y)[x / 8] |= static_cast<uint8_t>(0x80 >> x % 8);
    }
  }
  return mask;
}

bool BitAt(const Pixels& pixels, int x, int y) {
  return (std::get<Raster>(pixels).Row(y)[x / 8] >> (7 - x % 8) & 1) != 0;
}

/// Writes a page with what belongs to it.
std::string WritePage(const TempFolder& folder, Raster page, const Form& form,
                      const std::vector<TiffExtraPage>& extra) {
  PictureWriting writing;
  writing.form = form;
  TMemoryStream stream;
  WriteTiff(Pixels(std::move(page)), writing, extra, stream);
  return folder.Write("in.tif", {stream.Bytes().begin(), stream.Bytes().end()});
}

struct Family {
  Raster page;
  std::vector<TiffExtraPageHeader> headers;
  std::vector<Pixels> pixels;
};

Family FamilyIn(const std::string& file) {
  const std::string text = test::ReadFile(file);
  const std::vector<uint8_t> bytes(text.begin(), text.end());
  Family family;
  family.page = std::move(*Picture::Open(file).Bitmap()).TakeContent();
  TSpanStream stream(bytes);
  family.headers = ReadTiffExtraPages(stream);
  for (size_t i = 0; i < family.headers.size(); ++i) {
    TSpanStream again(bytes);
    family.pixels.push_back(DecodeTiffExtraPage(again, i));
  }
  return family;
}

std::vector<std::array<int, 2>> SizesOf(const Family& family) {
  std::vector<std::array<int, 2>> sizes;
  for (const TiffExtraPageHeader& header : family.headers) {
    sizes.push_back({header.width, header.height});
  }
  return sizes;
}

/// Weight of each pixel of a row or column within the span of one pixel of a smaller picture.
double Covered(int source, double from, double to) {
  return std::max(0.0, std::min<double>(source + 1, to) - std::max<double>(source, from));
}

/// The mean over the area of one pixel of a smaller picture, exactly.
double MeanAt(const Raster& gray, int x, int y, int width, int height) {
  const double perX = static_cast<double>(gray.Width()) / width;
  const double perY = static_cast<double>(gray.Height()) / height;
  double sum = 0;
  const auto last = [](double end, int side) {
    return std::min(static_cast<int>(std::ceil(end)), side);
  };
  for (int row = static_cast<int>(y * perY); row < last((y + 1) * perY, gray.Height()); ++row) {
    const double high = Covered(row, y * perY, (y + 1) * perY);
    for (int column = static_cast<int>(x * perX); column < last((x + 1) * perX, gray.Width());
         ++column) {
      const double value = gray.Format() == pf1bit
                               ? 255 * (gray.Row(row)[column / 8] >> (7 - column % 8) & 1)
                               : gray.Row(row)[column];
      sum += high * Covered(column, x * perX, (x + 1) * perX) * value;
    }
  }
  return sum / (perX * perY);
}

void ExpectMeans(const Raster& page, const Pixels& copy) {
  const Raster& small = std::get<Raster>(copy);
  ASSERT_EQ(small.Format(), pf8bit);
  for (int y = 0; y < small.Height(); ++y) {
    for (int x = 0; x < small.Width(); ++x) {
      ASSERT_NEAR(small.Row(y)[x], MeanAt(page, x, y, small.Width(), small.Height()), 0.51)
          << x << ", " << y;
    }
  }
}

bool Has(const std::vector<std::string>& notes, const std::string& part) {
  return std::any_of(notes.begin(), notes.end(),
                     [&](const std::string& note) { return note.find(part) != std::string::npos; });
}

/// Two copies that differ in form, one of them squeezed.
std::vector<TiffExtraPage> TwoCopies(unsigned seed) {
  std::vector<TiffExtraPage> copies;
  copies.push_back({Noise(pf8bit, 61, 42, seed), TiledForm(kLzw), kCopy});
  copies.push_back({Noise(pf8bit, 40, 21, seed + 1), FormOf(kDeflate, 1), kCopy});
  return copies;
}

TEST(SmallerCopies, AreMadeAnewByTheSameFactors) {
  const TempFolder folder;
  const std::string in =
      WritePage(folder, Noise(pf8bit, kWidth, kHeight, 1), FormOf(kLzw, 1), TwoCopies(7));
  Picture picture = Picture::Open(in);
  picture.Crop(CropStep{10, 5, 77, 64}).Turn(1);
  const Report plan = picture.Plan(folder / "out.tif");
  const Report report = picture.Save(folder / "out.tif");
  EXPECT_TRUE(report.losses.empty());
  EXPECT_TRUE(Has(report.notes, "made anew: 2"));
  EXPECT_EQ(plan.notes, report.notes);
  EXPECT_LE(report.bytes, plan.bytes);

  const Family family = FamilyIn(folder / "out.tif");
  ASSERT_EQ(family.page.Width(), 64);
  ASSERT_EQ(family.page.Height(), 77);
  // 64 * 42 / 83 and 77 * 61 / 121; 64 * 21 / 83 and 77 * 40 / 121.
  const std::vector<std::array<int, 2>> sizes = {{32, 39}, {16, 25}};
  EXPECT_EQ(SizesOf(family), sizes);
  EXPECT_EQ(family.headers[0].form, TiledForm(kLzw));
  EXPECT_EQ(family.headers[1].form, FormOf(kDeflate, 1));
  for (const TiffExtraPageHeader& header : family.headers) EXPECT_EQ(header.subfileType, kCopy);
  for (const Pixels& copy : family.pixels) ExpectMeans(family.page, copy);
}

TEST(SmallerCopies, AreNeverWithoutAPixel) {
  const TempFolder folder;
  const std::string in =
      WritePage(folder, Noise(pf8bit, kWidth, kHeight, 2), FormOf(kLzw, 1), TwoCopies(9));
  Picture picture = Picture::Open(in);
  picture.Crop(CropStep{10, 5, 1, 1}).Save(folder / "out.tif");
  const std::vector<std::array<int, 2>> sizes = {{1, 1}, {1, 1}};
  EXPECT_EQ(SizesOf(FamilyIn(folder / "out.tif")), sizes);
}

TEST(SmallerCopies, OfColorsTakeTheNewColors) {
  const TempFolder folder;
  std::vector<TiffExtraPage> copies;
  copies.push_back({Noise(pf24bit, 60, 41, 4), FormOf(kLzw, 2), kCopy});
  const std::string in =
      WritePage(folder, GradientRaster(pf24bit, kWidth, kHeight), FormOf(kLzw, 2), copies);
  Picture picture = Picture::Open(in);
  picture.Change(MakeGray{}).Save(folder / "out.tif");
  const Family family = FamilyIn(folder / "out.tif");
  ASSERT_EQ(family.pixels.size(), 1U);
  EXPECT_EQ(LayoutOf(family.pixels[0]).model, ColorModel::gray);
  EXPECT_EQ(family.headers[0].width, 60);
  ExpectMeans(family.page, family.pixels[0]);
}

TEST(SmallerCopies, OfAPlanAreGrayOrStayBlackAndWhite) {
  const TempFolder folder;
  std::vector<TiffExtraPage> copies;
  copies.push_back({Noise(pf8bit, 60, 41, 4), FormOf(kLzw, 1), kCopy});
  copies.push_back({Noise(pf1bit, 30, 20, 5), FormOf(kGroup4, 0), kCopy});
  const std::string in =
      WritePage(folder, Noise(pf1bit, kWidth, kHeight, 6), FormOf(kGroup4, 0), copies);
  Picture picture = Picture::Open(in);
  picture.Mirror(MirrorAxis::leftRight).Save(folder / "out.tif");
  const Family family = FamilyIn(folder / "out.tif");
  ASSERT_EQ(family.pixels.size(), 2U);
  ExpectMeans(family.page, family.pixels[0]);
  EXPECT_EQ(LayoutOf(family.pixels[1]).bits, 1);
  EXPECT_EQ(family.headers[1].form.compression, kGroup4);
  EXPECT_EQ(family.headers[1].form.photometric, 0);
  // Nearest pixels: each one is that of the page at its middle.
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) {
      const int column = (2 * x + 1) * kWidth / 60, row = (2 * y + 1) * kHeight / 40;
      const bool isWhite = (family.page.Row(row)[column / 8] >> (7 - column % 8) & 1) != 0;
      ASSERT_EQ(BitAt(family.pixels[1], x, y), isWhite) << x << ", " << y;
    }
  }
}

TEST(SmallerCopies, StayWhenNoPixelChanged) {
  const TempFolder folder;
  std::vector<TiffExtraPage> extra = TwoCopies(20);
  extra.push_back(
      {MaskOf(kWidth, kHeight, {3, 4, 50, 60}), FormOf(kGroup4, kMaskPhotometric), kMask});
  const std::string in =
      WritePage(folder, Noise(pf8bit, kWidth, kHeight, 3), FormOf(kNone, 1), extra);
  const Family before = FamilyIn(in);
  SaveOptions packed;
  packed.compression = TiffCompression::deflate;
  const Report copied = Picture::Open(in).Save(folder / "copied.tif");
  const Report anew = Picture::Open(in).Save(folder / "anew.tif", packed);
  EXPECT_TRUE(copied.isCopied);
  EXPECT_FALSE(anew.isCopied);
  for (const Report* report : {&copied, &anew}) {
    EXPECT_TRUE(report->losses.empty());
    EXPECT_FALSE(Has(report->notes, "smaller"));
  }
  for (const char* name : {"copied.tif", "anew.tif"}) {
    const Family after = FamilyIn(folder / name);
    ASSERT_EQ(SizesOf(after), SizesOf(before));
    for (size_t i = 0; i < after.pixels.size(); ++i) {
      EXPECT_EQ(after.headers[i].form, before.headers[i].form) << name;
      EXPECT_EQ(after.headers[i].subfileType, before.headers[i].subfileType);
      const Raster& a = std::get<Raster>(before.pixels[i]);
      const Raster& b = std::get<Raster>(after.pixels[i]);
      for (int y = 0; y < a.Height(); ++y) {
        ASSERT_TRUE(std::equal(a.Row(y), a.Row(y) + a.Stride(), b.Row(y))) << name << " " << i;
      }
    }
  }
}

TEST(SmallerCopies, AreNotCarriedToOtherFormats) {
  const TempFolder folder;
  std::vector<TiffExtraPage> extra = TwoCopies(30);
  extra.push_back(
      {MaskOf(kWidth, kHeight, {3, 4, 50, 60}), FormOf(kGroup4, kMaskPhotometric), kMask});
  const std::string in =
      WritePage(folder, Noise(pf8bit, kWidth, kHeight, 3), FormOf(kNone, 1), extra);
  const Report report = Picture::Open(in).Save(folder / "out.png");
  EXPECT_TRUE(Has(report.notes, "smaller copies of the page are not written: 2"));
  ASSERT_EQ(report.losses.size(), 1U);
  EXPECT_EQ(report.losses[0].kind, LossKind::alpha);
  EXPECT_EQ(report.losses[0].what, "the mask of the page");
}

/// A page with a mask of its own and one of its smaller copy.
std::string WithMasks(const TempFolder& folder, PixelRect set) {
  std::vector<TiffExtraPage> extra;
  const TiffForm form = FormOf(kGroup4, kMaskPhotometric);
  extra.push_back({MaskOf(kWidth, kHeight, set), form, kMask});
  extra.push_back({Noise(pf8bit, 61, 42, 4), FormOf(kLzw, 1), kCopy});
  extra.push_back({MaskOf(61, 42, {}), form, kMaskOfCopy});
  return WritePage(folder, Noise(pf8bit, kWidth, kHeight, 3), FormOf(kLzw, 1), extra);
}

void ExpectMask(const Pixels& mask, PixelRect set) {
  for (int y = 0; y < HeightOf(mask); ++y) {
    for (int x = 0; x < WidthOf(mask); ++x) {
      const bool isSet = x >= set.left && x < set.right && y >= set.top && y < set.bottom;
      ASSERT_EQ(BitAt(mask, x, y), isSet) << x << ", " << y;
    }
  }
}

TEST(Masks, GoThroughTheStepsOfThePage) {
  const TempFolder folder;
  const std::string in = WithMasks(folder, {20, 30, 70, 50});
  struct Case {
    Step step;
    PixelRect set;
  };
  const Case cases[] = {
      {MirrorStep{MirrorAxis::leftRight}, {kWidth - 70, 30, kWidth - 20, 50}},
      {MirrorStep{MirrorAxis::topBottom}, {20, kHeight - 50, 70, kHeight - 30}},
      {TurnStep{2}, {kWidth - 70, kHeight - 50, kWidth - 20, kHeight - 30}},
      // Counter-clockwise: columns become rows from the bottom up.
      {TurnStep{1}, {30, kWidth - 70, 50, kWidth - 20}},
      {CropStep{15, 25, 80, 40}, {5, 5, 55, 25}},
      {ResizeStep{2 * kWidth, 3 * kHeight, {}}, {40, 90, 140, 150}},
      {ChangeStep{ColorChange(MakeGray{})}, {20, 30, 70, 50}},
      {RotateStep{180, {}}, {kWidth - 70, kHeight - 50, kWidth - 20, kHeight - 30}},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    Picture picture = Picture::Open(in);
    const std::string out = folder / ("out" + std::to_string(i) + ".tif");
    const Report report = picture.Apply(cases[i].step).Save(out);
    EXPECT_TRUE(report.losses.empty());
    const Family family = FamilyIn(out);
    ASSERT_EQ(family.headers.size(), 3U);
    EXPECT_EQ(family.headers[0].subfileType, kMask);
    EXPECT_EQ(family.headers[0].form.photometric, kMaskPhotometric);
    EXPECT_EQ(family.headers[0].form.compression, kGroup4);
    EXPECT_EQ(WidthOf(family.pixels[0]), family.page.Width());
    ExpectMask(family.pixels[0], cases[i].set);
    // The mask of the copy is made of that of the page, as large as the copy.
    EXPECT_EQ(family.headers[2].subfileType, kMaskOfCopy);
    EXPECT_EQ(family.headers[2].width, family.headers[1].width);
    EXPECT_EQ(family.headers[2].height, family.headers[1].height);
    const PixelRect set = cases[i].set;
    const auto middle = [&](int small, int whole, int a, int b) {
      return (a + b) / 2 * small / whole;
    };
    EXPECT_TRUE(BitAt(family.pixels[2],
                      middle(family.headers[2].width, family.page.Width(), set.left, set.right),
                      middle(family.headers[2].height, family.page.Height(), set.top, set.bottom)));
    EXPECT_FALSE(BitAt(family.pixels[2], 0, 0));
  }
}

TEST(Masks, HaveNothingInTheCornersOfATurnedPicture) {
  const TempFolder folder;
  const std::string in = WithMasks(folder, {0, 0, kWidth, kHeight});
  Picture picture = Picture::Open(in);
  picture.Rotate(10).Save(folder / "out.tif");
  const Family family = FamilyIn(folder / "out.tif");
  const Pixels& mask = family.pixels.at(0);
  const int width = family.page.Width(), height = family.page.Height();
  ASSERT_EQ(WidthOf(mask), width);
  ASSERT_EQ(HeightOf(mask), height);
  for (const int x : {0, width - 1}) {
    for (const int y : {0, height - 1}) EXPECT_FALSE(BitAt(mask, x, y));
  }
  EXPECT_TRUE(BitAt(mask, width / 2, height / 2));
  int set = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) set += BitAt(mask, x, y) ? 1 : 0;
  }
  // The area stays; the border takes part of a pixel on each side.
  EXPECT_NEAR(set, kWidth * kHeight, kWidth + kHeight);
}

TEST(Masks, ThatCannotBeReadAreALoss) {
  const TempFolder folder;
  std::vector<TiffExtraPage> extra;
  extra.push_back(
      {MaskOf(kWidth, kHeight, {3, 4, 50, 60}), FormOf(kDeflate, kMaskPhotometric), kMask});
  const std::string in =
      WritePage(folder, Noise(pf8bit, kWidth, kHeight, 3), FormOf(kNone, 1), extra);
  std::string bytes = test::ReadFile(in);
  // The page is not compressed: all streams of Deflate are those of the mask.
  const std::string start = "\x78";
  size_t broken = 0;
  for (size_t at = bytes.find(start, size_t{kWidth} * kHeight); at != std::string::npos;
       at = bytes.find(start, at + 1)) {
    bytes[at] = '\0';
    ++broken;
  }
  ASSERT_GT(broken, 0U);
  Picture picture = Picture::Open(folder.Write("broken.tif", bytes));
  const Report report = picture.Turn(1).Save(folder / "out.tif");
  EXPECT_FALSE(report.losses.empty());
  EXPECT_EQ(FamilyIn(folder / "out.tif").page.Width(), kHeight);
}

TEST(ExtraPages, OfAPreviewThatStandsFirstAreALoss) {
  const TempFolder folder;
  std::vector<TiffExtraPage> extra;
  extra.push_back({Noise(pf8bit, 200, 150, 4), FormOf(kLzw, 1), kCopy});
  const std::string in =
      WritePage(folder, Noise(pf8bit, kWidth, kHeight, 3), FormOf(kLzw, 1), extra);
  Picture picture = Picture::Open(in);
  const Report report = picture.Turn(1).Save(folder / "out.tif");
  ASSERT_EQ(report.losses.size(), 1U);
  EXPECT_EQ(report.losses[0].kind, LossKind::hiddenPictures);
  EXPECT_EQ(report.losses[0].what, "further picture of 200 x 150 pixels");
  EXPECT_TRUE(FamilyIn(folder / "out.tif").headers.empty());
}

TEST(ExtraPages, AreOverviewsToAnotherProgram) {
  if (!test::HasPeer("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  const TempFolder folder;
  const std::string in = WithMasks(folder, {20, 30, 70, 50});
  Picture picture = Picture::Open(in);
  picture.Crop(CropStep{15, 25, 80, 40}).Save(folder / "out.tif");
  const std::string text = test::OutputOfPeer("gdalinfo --config GDAL_PAM_ENABLED NO " +
                                              test::InQuotes(folder / "out.tif"));
  EXPECT_NE(text.find("Size is 80, 40"), std::string::npos) << text;
  EXPECT_NE(text.find("Overviews: 40x20\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Mask Flags: PER_DATASET"), std::string::npos) << text;
  EXPECT_NE(text.find("Overviews of mask band: 40x20"), std::string::npos) << text;
}

}  // namespace
}  // namespace rasterkit
