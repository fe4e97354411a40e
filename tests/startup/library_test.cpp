#include <gtest/gtest.h>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/startup/start_up.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

TEST(LibraryTest, LoadedByTheSystem_HasStartedUp) {
  EXPECT_NE(dynamic_cast<TJPEGImage*>(TPicture::CreateForExtension(".jpg").get()), nullptr);
  EXPECT_NE(dynamic_cast<TWICBitmap*>(TPicture::CreateForExtension(".tif").get()), nullptr);
  EXPECT_EQ(InitializationCount(Unit::Bitmaptools), 1);
}

TEST(LibraryTest, HostThatInitializesToo_MayFinalizeAgain) {
  Initialize();
  Finalize();
  EXPECT_NE(TPicture::CreateForExtension(".jpg"), nullptr);
}

}  // namespace
}  // namespace rasterkit
