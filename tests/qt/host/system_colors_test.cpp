#include <QApplication>

#include <gtest/gtest.h>

#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/host/system_colors.h>
#include <rasterkit/qt/look/style.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

class SystemColorsTest : public testing::Test {
 protected:
  void SetUp() override {
    QPalette palette = LightPalette();
    palette.setColor(QPalette::Base, QColor(0x12, 0x34, 0x56));
    QApplication::setPalette(palette);
  }
  void TearDown() override { QApplication::setPalette(QPalette()); }
};

TEST_F(SystemColorsTest, Color_Should_HaveRedInTheLowByte) {
  EXPECT_EQ(SystemColor(5), 0x563412u);
}

TEST_F(SystemColorsTest, Color_Should_ComeThroughThePort) {
  const QtHost host;
  EXPECT_EQ(GetSysColor(5), 0x563412u);
}

TEST_F(SystemColorsTest, Color_Should_BeBlack_When_TheIndexNamesNone) {
  EXPECT_EQ(SystemColor(25), 0u);
  EXPECT_EQ(SystemColor(31), 0u);
  EXPECT_EQ(SystemColor(0xFFFFFFFF), 0u);
}

TEST_F(SystemColorsTest, TextsAndGrounds_Should_Differ) {
  EXPECT_NE(SystemColor(5), SystemColor(8));
  EXPECT_NE(SystemColor(13), SystemColor(14));
  EXPECT_NE(SystemColor(15), SystemColor(18));
  EXPECT_NE(SystemColor(23), SystemColor(24));
}

TEST_F(SystemColorsTest, EveryIndex_Should_BeOfThreeBytes) {
  for (uint32_t index = 0; index <= 30; ++index) EXPECT_LE(SystemColor(index), 0xFFFFFFu);
}

}  // namespace
}  // namespace rasterkit
