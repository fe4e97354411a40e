#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/qt/preview/picture_preview.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/strings/strings.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

class PicturePreviewTest : public testing::Test {
 protected:
  PicturePreviewTest() { pane_.resize(240, 240); }

  /// Saves a bitmap of one color and returns its full name.
  QString File(const char* name, int width, int height, TColor color) {
    Raster raster(pf24bit, width, height);
    FillRaster(raster, {0, 0, width, height}, color);
    TBitmap(std::move(raster)).SaveToFile(folder_ / name);
    return ToQt(folder_ / name);
  }

  QString Text() const { return pane_.findChild<QLabel*>("PreviewText")->text(); }
  bool WaitForText(const QString& text) {
    return QTest::qWaitFor([&] { return Text().startsWith(text); }, 20000);
  }
  QColor Middle() {
    const QImage image = test::GrabForm(*pane_.findChild<TPaintBox*>());
    return image.pixelColor(image.rect().center());
  }

  test::TempFolder folder_;
  PicturePreview pane_;
};

TEST_F(PicturePreviewTest, Picture_Should_BeShownWithItsSize) {
  pane_.ShowFile(File("red.bmp", 700, 300, RGB(255, 0, 0)));
  ASSERT_TRUE(WaitForText("700 × 300"));
  EXPECT_EQ(Middle(), QColor(Qt::red));
}

TEST_F(PicturePreviewTest, Text_Should_StandInForThePicture_When_FileIsBroken) {
  pane_.ShowFile(File("red.bmp", 700, 300, RGB(255, 0, 0)));
  ASSERT_TRUE(WaitForText("700 × 300"));
  pane_.ShowFile(ToQt(folder_.Write("broken.bmp", "BM")));
  ASSERT_TRUE(WaitForText(ResourceText(rsPreviewBroken)));
  EXPECT_NE(Middle(), QColor(Qt::red));
}

TEST_F(PicturePreviewTest, Pane_Should_BeEmpty_When_NothingIsChosen) {
  pane_.ShowFile(File("red.bmp", 700, 300, RGB(255, 0, 0)));
  ASSERT_TRUE(WaitForText("700 × 300"));
  pane_.ShowFile(QString());
  EXPECT_EQ(Text(), "");
  EXPECT_NE(Middle(), QColor(Qt::red));
}

TEST_F(PicturePreviewTest, LastFile_Should_BeShown_When_ManyArePassedBy) {
  const QString blue = File("blue.bmp", 70, 30, RGB(0, 0, 255));
  pane_.ShowFile(File("red.bmp", 700, 300, RGB(255, 0, 0)));
  pane_.ShowFile(ToQt(folder_ / "missing.bmp"));
  pane_.ShowFile(blue);
  ASSERT_TRUE(WaitForText("70 × 30"));
  EXPECT_EQ(Middle(), QColor(Qt::blue));
}

TEST_F(PicturePreviewTest, Tiny_Should_NotBeEnlarged) {
  pane_.ShowFile(File("dot.bmp", 3, 3, RGB(0, 0, 255)));
  ASSERT_TRUE(WaitForText("3 × 3"));
  const QImage image = test::GrabForm(*pane_.findChild<TPaintBox*>());
  int blue = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) blue += image.pixelColor(x, y) == Qt::blue ? 1 : 0;
  EXPECT_EQ(blue, 9);
}

}  // namespace
}  // namespace rasterkit
