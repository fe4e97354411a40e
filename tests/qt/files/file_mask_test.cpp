#include <gtest/gtest.h>

#include <rasterkit/qt/files/file_mask.h>

namespace rasterkit::detail {
namespace {

bool Fits(const char* name, const char* mask) {
  return FileMask(mask).Fits(QString::fromUtf8(name));
}

TEST(FileMask, Everything_Should_Fit_When_TheMaskSaysSo) {
  for (const char* mask : {"*.*", "*", "", ";", "*.bmp;*.*"}) {
    for (const char* name : {"plan.bmp", "plan", ".png", "a.b.c", "図.png"}) {
      EXPECT_TRUE(Fits(name, mask)) << name << " " << mask;
    }
  }
}

TEST(FileMask, Extension_Should_FitInAnyCase) {
  EXPECT_TRUE(Fits("plan.bmp", "*.bmp"));
  EXPECT_TRUE(Fits("PLAN.BMP", "*.bmp"));
  EXPECT_TRUE(Fits("plan.bmp", "*.BMP"));
  EXPECT_FALSE(Fits("plan.bmpx", "*.bmp"));
  EXPECT_FALSE(Fits("plan.bmp.png", "*.bmp"));
  EXPECT_FALSE(Fits("planbmp", "*.bmp"));
}

TEST(FileMask, Patterns_Should_BeSeparatedBySemicolons) {
  for (const char* name : {"a.tif", "a.tiff", "a.png"})
    EXPECT_TRUE(Fits(name, "*.tif; *.tiff;*.png"));
  EXPECT_FALSE(Fits("a.bmp", "*.tif; *.tiff;*.png"));
}

TEST(FileMask, Wildcards_Should_StandForCharacters) {
  EXPECT_TRUE(Fits("plan7.png", "plan?.png"));
  EXPECT_FALSE(Fits("plan17.png", "plan?.png"));
  EXPECT_TRUE(Fits("plan17.png", "plan*.p*"));
  EXPECT_FALSE(Fits("aplan17.png", "plan*.p*"));
  EXPECT_TRUE(Fits("plan", "plan"));
  EXPECT_TRUE(Fits("two\nlines.png", "two*"));
}

TEST(FileMask, OtherCharacters_Should_StandForThemselves) {
  EXPECT_TRUE(Fits("a[1].png", "a[1]*"));
  EXPECT_FALSE(Fits("a1.png", "a[1]*"));
  EXPECT_TRUE(Fits("a(+).p", "?(+).p"));
  EXPECT_FALSE(Fits("axpng", "a?.png"));
}

}  // namespace
}  // namespace rasterkit::detail
