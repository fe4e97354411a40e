#include <fstream>

#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

template <class T>
bool Makes(const std::string& extension) {
  return dynamic_cast<T*>(TPicture::CreateForExtension(extension).get()) != nullptr;
}

TEST(PictureRegistry, Host_Should_RegisterItsFormats) {
  EXPECT_TRUE(Makes<TBitmap>("bmp"));
  EXPECT_TRUE(Makes<TMetafile>("wmf"));
  EXPECT_TRUE(Makes<TMetafile>("emf"));
  EXPECT_TRUE(Makes<TPngImage>("png"));
  EXPECT_TRUE(Makes<TIcon>("ico"));
  const std::vector<TPicture::Format> formats = TPicture::Formats();
  ASSERT_GE(formats.size(), 5u);
  EXPECT_EQ(formats[0].extension, "BMP");
  EXPECT_EQ(formats[4].extension, "ICO");
}

TEST(PictureRegistry, Lookup_Should_BeExactButForCase) {
  EXPECT_TRUE(Makes<TPngImage>(".PnG"));
  EXPECT_EQ(TPicture::CreateForExtension("pn"), nullptr);
  EXPECT_EQ(TPicture::CreateForExtension("pngx"), nullptr);
  EXPECT_EQ(TPicture::CreateForExtension(""), nullptr);
  EXPECT_EQ(TPicture::CreateForExtension("."), nullptr);
  EXPECT_EQ(TPicture::CreateForExtension("..png"), nullptr);
}

TEST(PictureRegistry, Registration_Should_BeFoundFirst_And_VanishWithItsClass) {
  class Special : public TJPEGImage {};
  TPicture::RegisterFileFormat("x1", "one", TGraphicClass::Of<Special>());
  TPicture::RegisterFileFormat("BMP", "mine", TGraphicClass::Of<Special>());
  EXPECT_TRUE(Makes<Special>("X1"));
  EXPECT_TRUE(Makes<Special>("bmp"));
  TPicture::UnregisterGraphicClass(TGraphicClass::Of<Special>());
  EXPECT_EQ(TPicture::CreateForExtension("x1"), nullptr);
  EXPECT_TRUE(Makes<TBitmap>("bmp"));
}

TEST(Picture, LoadFromFile_Should_UseTheClassOfTheExtension) {
  const test::TempFolder folder;
  TBitmap source = test::GradientBitmap(pf24bit, 9, 7);
  source.SaveToFile(folder / "a.BMP");
  TPicture picture;
  EXPECT_EQ(picture.Graphic(), nullptr);
  picture.LoadFromFile(folder / "a.BMP");
  ASSERT_NE(dynamic_cast<TBitmap*>(picture.Graphic()), nullptr);
  EXPECT_TRUE(test::SamePixels(source, dynamic_cast<TBitmap&>(*picture.Graphic())));
  EXPECT_THROW(picture.LoadFromFile(folder / "a.xyz"), UnsupportedError);
  EXPECT_THROW(picture.LoadFromFile(folder / "b.bmp"), FileError);
  EXPECT_EQ(picture.Graphic()->Width(), 9) << "a failed load keeps the picture";
  EXPECT_NE(picture.TakeGraphic(), nullptr);
  EXPECT_EQ(picture.Graphic(), nullptr);
}

}  // namespace
}  // namespace rasterkit
