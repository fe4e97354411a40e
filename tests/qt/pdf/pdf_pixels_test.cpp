#include <QBuffer>
#include <QImage>
#include <QPdfDocument>

#include <fmt/format.h>

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/qt/pdf/pdf_fixture.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::PaddingIsZero;
using test::PdfRectangle;
using test::SamePixels;

class PdfPixelsTest : public test::PdfTest {};

constexpr TColor kRed = 0x0000FF;
constexpr TColor kGreen = 0x00FF00;

struct Box {
  int left, top, right, bottom;
};

/// White with filled boxes.
TBitmap Expected(int width, int height, const std::vector<std::pair<TColor, Box>>& boxes) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf24bit);
  bitmap.SetSize(width, height);
  for (const auto& [color, box] : boxes) {
    bitmap.Canvas().Brush.Color = color;
    bitmap.Canvas().FillRect({box.left, box.top, box.right, box.bottom});
  }
  return bitmap;
}

/// One inch by two; red half an inch high at the upper left, green one inch at the lower right.
test::PdfPageText MarkedPage(const std::string& entries = "") {
  return {"0 0 72 144",
          PdfRectangle("1 0 0", 0, 108, 36, 36) + PdfRectangle("0 1 0", 36, 0, 36, 72), "",
          entries};
}

/// (Resolutions whose scale a float holds: the engine widens a rectangle to whole pixels, and a
/// border that lies a hair beyond one takes the next.)
TEST_F(PdfPixelsTest, ExportPage_Should_PaintExactlyTheRectangle_When_BordersAreWholePixels) {
  OpenPages({MarkedPage()});
  for (const int dpi : {72, 100, 200, 400}) {
    const int u = dpi / 2;
    EXPECT_TRUE(SamePixels(
        Expected(2 * u, 4 * u, {{kRed, {0, 0, u, u}}, {kGreen, {u, 2 * u, 2 * u, 4 * u}}}),
        Export(0, dpi / 100.0)))
        << dpi;
  }
}

TEST_F(PdfPixelsTest, ExportPage_Should_Have150PixelsAnInch_When_ScaleIs15) {
  OpenPages({{"0 0 72 36", PdfRectangle("1 0 0", 12, 12, 24, 12)}});
  EXPECT_TRUE(SamePixels(Expected(150, 75, {{kRed, {25, 25, 75, 50}}}), Export(0, 1.5)));
}

TEST_F(PdfPixelsTest, ExportPage_Should_TurnClockwise_When_RotationIsAsked) {
  OpenPages({MarkedPage()});
  EXPECT_TRUE(
      SamePixels(Expected(200, 100, {{kRed, {150, 0, 200, 50}}, {kGreen, {0, 50, 100, 100}}}),
                 Export(0, 1, PdfRotation::clockwise90)));
  EXPECT_TRUE(
      SamePixels(Expected(100, 200, {{kRed, {50, 150, 100, 200}}, {kGreen, {0, 0, 50, 100}}}),
                 Export(0, 1, PdfRotation::clockwise180)));
  EXPECT_TRUE(
      SamePixels(Expected(200, 100, {{kRed, {0, 50, 50, 100}}, {kGreen, {100, 0, 200, 50}}}),
                 Export(0, 1, PdfRotation::clockwise270)));
}

TEST_F(PdfPixelsTest, ExportPage_Should_AddToThePagesOwnTurn_When_PageIsTurned) {
  OpenPages({MarkedPage(), MarkedPage("/Rotate 90")});
  EXPECT_TRUE(SamePixels(Export(0, 1, PdfRotation::clockwise90), Export(1, 1)));
  EXPECT_TRUE(
      SamePixels(Export(0, 1, PdfRotation::clockwise270), Export(1, 1, PdfRotation::clockwise180)));
  EXPECT_TRUE(SamePixels(Export(0, 1), Export(1, 1, PdfRotation::clockwise270)));
}

TEST_F(PdfPixelsTest, ExportPage_Should_StartAtTheBox_When_ItsCornerIsNotTheOrigin) {
  OpenPages({{"100 -50 172 22", PdfRectangle("1 0 0", 100, 4, 18, 18)},
             {"0 0 300 300", PdfRectangle("1 0 0", 100, 54, 18, 18), "100 0 172 72"}});
  const TBitmap expected = Expected(100, 100, {{kRed, {0, 0, 25, 25}}});
  EXPECT_TRUE(SamePixels(expected, Export(0, 1)));
  EXPECT_TRUE(SamePixels(expected, Export(1, 1)));
}

TEST_F(PdfPixelsTest, ExportPage_Should_RoundTheSize_When_PageIsNoWholePixels) {
  OpenPages({{"0 0 595.276 841.89"}, {"0 0 0.1 300"}});
  const TBitmap a4 = Export(0, 1.5);
  EXPECT_EQ(a4.Width(), 1240);
  EXPECT_EQ(a4.Height(), 1754);
  const TBitmap thread = Export(1, 1);
  EXPECT_EQ(thread.Width(), 1);
  EXPECT_EQ(thread.Height(), 417);
}

TEST_F(PdfPixelsTest, ExportPage_Should_GiveA24BitBitmapWithItsResolution_When_Exported) {
  OpenPages({{"0 0 7 7"}});
  const TBitmap bitmap = Export(0, 1.5);
  EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
  EXPECT_EQ(bitmap.Dpi(), (Resolution{150, 150}));
  EXPECT_FALSE(bitmap.Transparent());
  EXPECT_EQ(bitmap.Width(), 15);
  EXPECT_TRUE(PaddingIsZero(bitmap));
  EXPECT_EQ(Export(0, 0.29).Dpi(), (Resolution{29, 29}));
}

TEST_F(PdfPixelsTest, ExportPage_Should_GiveTheRightPage_When_ThereAreSeveral) {
  const auto filled = [](const char* color) {
    return test::PdfPageText{"0 0 36 36", PdfRectangle(color, 0, 0, 36, 36)};
  };
  OpenPages({filled("1 0 0"), filled("0 1 0"), filled("0 0 1")});
  EXPECT_EQ(Export(2, 1).PixelColor(25, 25), 0xFF0000u);
  EXPECT_EQ(Export(0, 1).PixelColor(25, 25), 0x0000FFu);
  EXPECT_EQ(Export(1, 1).PixelColor(25, 25), 0x00FF00u);
}

TEST_F(PdfPixelsTest, ExportPage_Should_DrawAnnotations_When_PageHasSome) {
  OpenPages(
      {{"0 0 72 72", "", "",
        "/Annots [<< /Type /Annot /Subtype /Square /Rect [18 18 54 54] /F 4 /C [1 0 0] /IC [1 0 0]"
        " /Border [0 0 0] >>]"}});
  EXPECT_EQ(Export(0, 1).PixelColor(50, 50), kRed);
}

TEST_F(PdfPixelsTest, ExportPage_Should_ReplaceTheBitmap_When_ItHeldSomething) {
  OpenPages({MarkedPage()});
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf8bit);
  bitmap.SetSize(3, 3);
  bitmap.SetTransparent(true);
  ASSERT_TRUE(Document().ExportPage(0, 1, PdfRotation::none, bitmap));
  EXPECT_TRUE(SamePixels(Export(0, 1), bitmap));
  EXPECT_FALSE(bitmap.Transparent());
}

TEST_F(PdfPixelsTest, ExportPage_Should_LeaveTheBitmap_When_ItThrows) {
  OpenPages({{"0 0 99999999 72"}});
  TBitmap bitmap;
  bitmap.SetSize(3, 2);
  EXPECT_THROW(Document().ExportPage(0, 1, PdfRotation::none, bitmap), LimitError);
  EXPECT_EQ(bitmap.Width(), 3);
}

TEST_F(PdfPixelsTest, ExportPage_Should_Throw_When_ScaleIsNoNumberAboveZero) {
  OpenPages({{}});
  TBitmap bitmap;
  for (const double scale : {0.0, -1.5, std::nan("")}) {
    EXPECT_THROW(Document().ExportPage(0, scale, PdfRotation::none, bitmap), RangeError) << scale;
  }
  EXPECT_THROW(
      Document().ExportPage(0, std::numeric_limits<double>::infinity(), PdfRotation::none, bitmap),
      LimitError);
}

/// Text, half-transparent shapes and thin lines: alpha of every kind.
test::PdfPageText BusyPage() {
  std::string content = "BT /F1 9 Tf 10 100 Td (The quick brown fox) Tj ET 0.3 w ";
  for (int i = 0; i < 40; ++i) {
    content += fmt::format("{} {} {} RG {} 5 m {} 140 l S ", i / 40.0, 0.5, 1 - i / 40.0, 3 * i,
                           100 - 2 * i);
  }
  return {"0 0 120.7 150.3", content + "/G0 gs 0.2 0.4 0.9 rg 10 20 m 90 30 l 40 90 l f", "",
          "/Group << /S /Transparency /CS /DeviceRGB >>"};
}

/// The long way round: the engine's own picture as a PNG file in memory, loaded as an image, drawn
/// on white, written to a stream as a bitmap file and loaded from there.
TBitmap ThroughPng(const std::string& file, double scale) {
  QPdfDocument document;
  EXPECT_EQ(document.load(QString::fromStdString(file)), QPdfDocument::Error::None);
  const QSizeF points = document.pagePointSize(0);
  const PdfPixels pixels = PdfPagePixels({points.width(), points.height()}, scale);
  QPdfDocumentRenderOptions options;
  options.setRenderFlags(QPdfDocumentRenderOptions::RenderFlag::Annotations);
  const QImage image = document.render(
      0, {static_cast<int>(pixels.width), static_cast<int>(pixels.height)}, options);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  EXPECT_TRUE(image.save(&buffer, "PNG"));
  TPngImage png;
  TMemoryStream file1(std::vector<uint8_t>(bytes.begin(), bytes.end()));
  png.LoadFromStream(file1);
  EXPECT_EQ(png.Bitmap().StoredBits(), 32);
  TBitmap onWhite;
  onWhite.SetPixelFormat(pf24bit);
  onWhite.SetSize(png.Width(), png.Height());
  onWhite.Canvas().Draw(0, 0, png);
  TMemoryStream stream;
  onWhite.SaveToStream(stream);
  stream.SetPosition(0);
  TBitmap loaded;
  loaded.LoadFromStream(stream);
  return loaded;
}

TEST_F(PdfPixelsTest, ExportPage_Should_GiveTheBytesOfTheWayThroughPng_When_PageIsBusy) {
  OpenPages({BusyPage()});
  for (const double scale : {0.37, 0.72, 1.0, 1.5, 3.0}) {
    const TBitmap direct = Export(0, scale);
    EXPECT_TRUE(SamePixels(ThroughPng(Folder() / "test.pdf", scale), direct)) << scale;
    EXPECT_TRUE(PaddingIsZero(direct)) << scale;
  }
}

TEST_F(PdfPixelsTest, ExportPage_Should_GiveTheSameBytes_When_DrawnAgain) {
  OpenPages({BusyPage()});
  const TBitmap first = Export(0, 1.5);
  EXPECT_TRUE(SamePixels(first, Export(0, 1.5)));
  const std::unique_ptr<PdfDocument> other = test::NewPdfDocument();
  other->LoadFromFile(Folder() / "test.pdf", "");
  TBitmap second;
  ASSERT_TRUE(other->ExportPage(0, 1.5, PdfRotation::none, second));
  EXPECT_TRUE(SamePixels(first, second));
}

}  // namespace
}  // namespace rasterkit
