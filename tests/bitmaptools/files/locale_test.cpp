// Names of formats and numbers under locales with other capitals and decimal commas.

#include <filesystem>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/bitmaptools/files/world_file_name.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/runtime/text.h>

#include "tests/bitmaptools/files/built_locale.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

class Locale : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (!built_) GTEST_SKIP() << "localedef or its sources are not installed";
    process_ = std::make_unique<test::ProcessLocale>(built_);
    ASSERT_TRUE(process_->IsSet());
  }

  test::BuiltLocale built_{GetParam()};
  std::unique_ptr<test::ProcessLocale> process_;
  test::TempFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Languages, Locale, testing::Values("tr_TR", "az_AZ", "de_DE"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(Locale, Should_HaveOtherRules) {
  const bool isTurkic = std::string(GetParam()) != "de_DE";
  EXPECT_EQ(AnsiUpperCase("tif"), isTurkic ? "T\u0130F" : "TIF");
  EXPECT_STREQ(localeconv()->decimal_point, ",");
}

TEST_P(Locale, EveryExtension_Should_HaveItsType) {
  const std::pair<const char*, int> extensions[] = {
      {"bmp", gtBmp}, {"jpg", gtJpg}, {"png", gtPng}, {"tif", gtTif}, {"tiff", gtTif},
      {"wmf", gtWmf}, {"emf", gtEmf}, {"tfw", gtTif}, {"bpw", gtBmp}};
  for (const auto& [extension, type] : extensions) {
    const std::string dotted = std::string(".") + extension;
    EXPECT_EQ(GetGraphicsType(dotted), type) << dotted;
    EXPECT_EQ(GetGraphicsType(UpperCase(dotted)), type) << dotted;
    if (std::string(extension) == "tiff") continue;
    EXPECT_EQ(GetGraphicsType(extension), type) << extension;
    EXPECT_EQ(GetGraphicsType(UpperCase(extension)), type) << extension;
  }
  EXPECT_EQ(GetWorldFileExt("a.tif"), ".TFW");
  EXPECT_EQ(GetWorldFileExt(".tiff"), ".TFW");
  EXPECT_TRUE(CanLoadBitmap("A.TIFF"));
}

TEST_P(Locale, Pictures_Should_BeSavedAndLoadedByName) {
  const TBitmap bitmap = test::GradientBitmap(pf24bit, 24, 16);
  for (const char* name : {"x.tif", "X.TIF", "y.tiff", "y.TIFF", "z.bmp", "z.png", "Z.PNG"}) {
    const std::string file = folder_ / name;
    SaveWindowsBitmap(bitmap, 0, 0, file);
    ASSERT_TRUE(std::filesystem::exists(file)) << name;
    std::unique_ptr<TBitmap> loaded;
    ASSERT_TRUE(LoadWindowsBitmap(file, 0, loaded)) << name;
    EXPECT_TRUE(test::SamePixels(bitmap, *loaded)) << name;
  }
}

TEST_P(Locale, Registry_Should_FindClassesInAnyCase) {
  for (const char* extension : {"ico", "ICO", ".Ico", "png", "PNG", "emf", "EMF", "wmf", "bmp"}) {
    EXPECT_NE(TPicture::CreateForExtension(extension), nullptr) << extension;
  }
}

TEST_P(Locale, Numbers_Should_HaveADot) {
  EXPECT_EQ(detail::FixedText(1234.5, 2), "1234.50");
  EXPECT_EQ(detail::NumberInTemplate("%0.1f mm", 35.25), "35.2 mm");
  EXPECT_EQ(GetIrrational("1 1/2"), 1.5);
}

}  // namespace
}  // namespace rasterkit
