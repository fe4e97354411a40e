#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/startup/start_up.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/plain_tiff.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

constexpr Unit kUnits[] = {Unit::Bitmaptools,    Unit::Jpegexif,      Unit::Tifftobmp,
                           Unit::Editchangesize, Unit::Editpdfbitmap, Unit::Savedlgbitmap,
                           Unit::Savedlgext};

template <class T>
bool IsMadeFor(const std::string& extension) {
  const std::unique_ptr<TGraphic> graphic = TPicture::CreateForExtension(extension);
  return dynamic_cast<T*>(graphic.get()) != nullptr;
}

int RegistrationsOf(const std::string& extension) {
  const auto formats = TPicture::Formats();
  return static_cast<int>(
      std::count_if(formats.begin(), formats.end(),
                    [&](const TPicture::Format& format) { return format.extension == extension; }));
}

TEST(StartUpTest, Loading_InitializesEachUnitOnce) {
  for (const Unit unit : kUnits) EXPECT_EQ(InitializationCount(unit), 1);
}

TEST(StartUpTest, Loading_RegistersJpegAndTiff) {
  EXPECT_TRUE(IsMadeFor<TJPEGImage>(".jpg"));
  EXPECT_TRUE(IsMadeFor<TJPEGImage>("JPG"));
  EXPECT_TRUE(IsMadeFor<TWICBitmap>(".tif"));
  EXPECT_FALSE(IsMadeFor<TGraphic>(".jpeg")) << "extensions are compared exactly";
  EXPECT_FALSE(IsMadeFor<TGraphic>(".tiff"));
}

TEST(StartUpTest, Registrations_BearTheirDescriptions) {
  std::string jpeg;
  std::string tiff;
  for (const TPicture::Format& format : TPicture::Formats()) {
    if (format.extension == "JPG") jpeg = format.description;
    if (format.extension == "TIF") tiff = format.description;
  }
  EXPECT_EQ(jpeg, "JPeg");
  EXPECT_EQ(tiff, "Tiff Files");
}

TEST(StartUpTest, RegisteredFormats_LoadATiff) {
  const test::TempFolder folder;
  test::PlainTiff tiff{2, 1, {8, 8, 8}, 2};
  tiff.rows = "\1\2\3\4\5\6";
  TPicture picture;
  picture.LoadFromFile(folder.Write("a.tif", test::PlainTiffBytes(tiff)));
  const auto* bitmap = dynamic_cast<TWICBitmap*>(picture.Graphic());
  ASSERT_NE(bitmap, nullptr);
  EXPECT_EQ(bitmap->PixelColor(0, 0), RGB(1, 2, 3));
  EXPECT_EQ(bitmap->PixelColor(1, 0), RGB(4, 5, 6));
}

TEST(StartUpTest, InitializedTwice_RegistersOnceAndNeedsTwoFinalizations) {
  Initialize();
  EXPECT_EQ(InitializationCount(Unit::Bitmaptools), 2);
  EXPECT_EQ(RegistrationsOf("JPG"), 1);
  EXPECT_EQ(RegistrationsOf("TIF"), 1);
  Finalize();
  EXPECT_TRUE(IsMadeFor<TJPEGImage>(".jpg"));
  EXPECT_TRUE(IsMadeFor<TWICBitmap>(".tif"));
  Finalize();
  EXPECT_FALSE(IsMadeFor<TGraphic>(".jpg"));
  EXPECT_FALSE(IsMadeFor<TGraphic>(".tif"));
  Initialize();
  EXPECT_TRUE(IsMadeFor<TJPEGImage>(".jpg"));
  EXPECT_EQ(InitializationCount(Unit::Savedlgext), 1);
}

TEST(StartUpTest, FinalizedTooOften_StaysAtZero) {
  Finalize();
  Finalize();
  Finalize();
  for (const Unit unit : kUnits) EXPECT_EQ(InitializationCount(unit), 0);
  Initialize();
  EXPECT_EQ(InitializationCount(Unit::Tifftobmp), 1);
  EXPECT_TRUE(IsMadeFor<TWICBitmap>(".tif"));
}

TEST(StartUpTest, Units_CountForThemselves) {
  FinalizeUnit(Unit::Bitmaptools);
  EXPECT_FALSE(IsMadeFor<TGraphic>(".jpg"));
  EXPECT_TRUE(IsMadeFor<TWICBitmap>(".tif"));
  InitializeUnit(Unit::Bitmaptools);
  InitializeUnit(Unit::Jpegexif);
  EXPECT_EQ(InitializationCount(Unit::Jpegexif), 2);
  EXPECT_EQ(InitializationCount(Unit::Bitmaptools), 1);
  FinalizeUnit(Unit::Jpegexif);
  EXPECT_TRUE(IsMadeFor<TJPEGImage>(".jpg"));
}

TEST(StartUpTest, ManyThreads_CountRight) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int round = 0; round < 100; ++round) {
        Initialize();
        Finalize();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Unit unit : kUnits) EXPECT_EQ(InitializationCount(unit), 1);
  EXPECT_EQ(RegistrationsOf("JPG"), 1);
}

}  // namespace
}  // namespace rasterkit
