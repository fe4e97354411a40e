#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPalette>

#include <gtest/gtest.h>

#include <rasterkit/qt/look/icons.h>

namespace rasterkit {
namespace {

/// Puts the application's palette back.
class IconsTest : public testing::Test {
 protected:
  ~IconsTest() override { QGuiApplication::setPalette(palette_); }

  static void SetStyle(const QColor& window, const QColor& text) {
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    QGuiApplication::setPalette(palette);
  }

  QPalette palette_ = QGuiApplication::palette();
};

QImage Picture(const QString& name, int side, QIcon::Mode mode = QIcon::Normal) {
  return Icon(name).pixmap(QSize(side, side), 1.0, mode).toImage();
}

/// Mean lightness of what is drawn, 0 to 255.
double Lightness(const QImage& image) {
  double sum = 0, weight = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor color = image.pixelColor(x, y);
      sum += color.lightness() * color.alphaF();
      weight += color.alphaF();
    }
  }
  return weight == 0 ? -1 : sum / weight;
}

TEST_F(IconsTest, EveryDrawing_Should_ShowOnLightAndOnDark) {
  const QStringList files = QDir(":/rasterkit/icons").entryList();
  EXPECT_GE(files.size(), 9);
  for (const QString& file : files) {
    const QString name = file.chopped(4);
    SetStyle(Qt::white, Qt::black);
    const double onLight = Lightness(Picture(name, 24));
    SetStyle(Qt::black, Qt::white);
    const double onDark = Lightness(Picture(name, 24));
    EXPECT_GE(onLight, 0) << name.toStdString();
    EXPECT_LT(onLight, 128) << name.toStdString();
    EXPECT_GT(onDark, 160) << name.toStdString();
  }
}

TEST_F(IconsTest, Icon_Should_FollowThePalette_When_ItWasMadeBefore) {
  SetStyle(Qt::white, Qt::black);
  const QIcon icon = Icon("crop");
  SetStyle(Qt::black, Qt::white);
  EXPECT_GT(Lightness(icon.pixmap(24, 24).toImage()), 160);
}

TEST_F(IconsTest, Icon_Should_BeSharp_When_Large) {
  EXPECT_EQ(Picture("post", 200).size(), QSize(200, 200));
}

TEST_F(IconsTest, Disabled_Should_BePaler) {
  const auto strongest = [](const QImage& image) {
    int alpha = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) alpha = std::max(alpha, qAlpha(image.pixel(x, y)));
    }
    return alpha;
  };
  EXPECT_GT(strongest(Picture("post", 24)), 250);
  EXPECT_LT(strongest(Picture("post", 24, QIcon::Disabled)), 120);
}

TEST_F(IconsTest, UnknownName_Should_GiveAnEmptyIcon) {
  EXPECT_TRUE(Icon("no such drawing").isNull());
  EXPECT_TRUE(Icon("").isNull());
}

}  // namespace
}  // namespace rasterkit
