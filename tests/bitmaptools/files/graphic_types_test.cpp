#include <memory>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

namespace rasterkit {
namespace {

TEST(GetGraphicsExtTest, GivesTheUsualExtensionOfEachType) {
  EXPECT_EQ(GetGraphicsExt(1), ".bmp");
  EXPECT_EQ(GetGraphicsExt(2), ".wmf");
  EXPECT_EQ(GetGraphicsExt(3), ".jpg");
  EXPECT_EQ(GetGraphicsExt(4), ".emf");
  EXPECT_EQ(GetGraphicsExt(6), ".jpg");
  EXPECT_EQ(GetGraphicsExt(8), ".png");
  EXPECT_EQ(GetGraphicsExt(10), ".tif");
}

TEST(GetGraphicsExtTest, IsEmptyForAllOtherNumbers) {
  for (const int type : {0, 5, 7, 9, 11, -1, 1000, -2147483647 - 1}) {
    EXPECT_EQ(GetGraphicsExt(type), "") << type;
  }
}

TEST(GetGraphicsTypeTest, KnowsImagesAndTheirWorldFiles) {
  EXPECT_EQ(GetGraphicsType("bmp"), 1);
  EXPECT_EQ(GetGraphicsType("BPW"), 1);
  EXPECT_EQ(GetGraphicsType("wmf"), 2);
  EXPECT_EQ(GetGraphicsType("Emf"), 4);
  EXPECT_EQ(GetGraphicsType("jpg"), 6);
  EXPECT_EQ(GetGraphicsType("jgw"), 6);
  EXPECT_EQ(GetGraphicsType("png"), 8);
  EXPECT_EQ(GetGraphicsType("pgw"), 8);
  EXPECT_EQ(GetGraphicsType("tif"), 10);
  EXPECT_EQ(GetGraphicsType("tfw"), 10);
}

TEST(GetGraphicsTypeTest, WithADot_TakesTheThreeCharactersAfterIt) {
  EXPECT_EQ(GetGraphicsType(".bmp"), 1);
  EXPECT_EQ(GetGraphicsType(".TIFF"), 10);
  EXPECT_EQ(GetGraphicsType(".tiff"), 10);
  EXPECT_EQ(GetGraphicsType(".jpgx"), 6);
  EXPECT_EQ(GetGraphicsType(".jpeg"), 0);
  EXPECT_EQ(GetGraphicsType(".jpg.bak"), 6);
  EXPECT_EQ(GetGraphicsType(".jp"), 0);
  EXPECT_EQ(GetGraphicsType("."), 0);
  EXPECT_EQ(GetGraphicsType("..bmp"), 0);
}

TEST(GetGraphicsTypeTest, WithoutADot_TakesTheWholeText) {
  EXPECT_EQ(GetGraphicsType("TIFF"), 0);
  EXPECT_EQ(GetGraphicsType("jpgx"), 0);
  EXPECT_EQ(GetGraphicsType("a.jpg"), 0);
  EXPECT_EQ(GetGraphicsType(" jpg"), 0);
}

TEST(GetGraphicsTypeTest, IsNoneForEmptyPdfAndUnknown) {
  EXPECT_EQ(GetGraphicsType(""), 0);
  EXPECT_EQ(GetGraphicsType(".pdf"), 0);
  EXPECT_EQ(GetGraphicsType("PDF"), 0);
  EXPECT_EQ(GetGraphicsType(".gif"), 0);
  EXPECT_EQ(GetGraphicsType(".äöü"), 0);
  EXPECT_EQ(GetGraphicsType("\xFF\xFE"), 0);
}

TEST(GetWorldFileExtTest, TakesTheExtensionOfAFileName) {
  EXPECT_EQ(GetWorldFileExt("C:\\maps\\a.tiff"), ".TFW");
  EXPECT_EQ(GetWorldFileExt("C:\\maps.d\\a.tif"), ".TFW");
  EXPECT_EQ(GetWorldFileExt("maps/a.bmp"), ".BPW");
  EXPECT_EQ(GetWorldFileExt("a.JPG"), ".JGW");
  EXPECT_EQ(GetWorldFileExt("a.b.png"), ".PGW");
}

TEST(GetWorldFileExtTest, TakesAnExtensionAsItIs) {
  EXPECT_EQ(GetWorldFileExt(".png"), ".PGW");
  EXPECT_EQ(GetWorldFileExt(".tif"), ".TFW");
  EXPECT_EQ(GetWorldFileExt(".TIFF"), ".TFW");
  EXPECT_EQ(GetWorldFileExt(".bmp"), ".BPW");
  EXPECT_EQ(GetWorldFileExt(".jpg"), ".JGW");
}

TEST(GetWorldFileExtTest, IsEmptyForKindsWithoutWorldFiles) {
  for (const char* name : {"a.jpeg", "noext", "", ".jpeg", ".emf", ".pdf", "a.pdf", "png", "."}) {
    EXPECT_EQ(GetWorldFileExt(name), "") << name;
  }
}

TEST(GetWorldFileExtTest, ANameThatBeginsWithADotIsTakenForAnExtension) {
  EXPECT_EQ(GetWorldFileExt("./a.png"), "");
  EXPECT_EQ(GetWorldFileExt(".hidden.png"), "");
}

TEST(CanLoadBitmapTest, IsTrueForRasterFiles) {
  for (const char* name :
       {"x.bmp", "x.jpg", "x.png", "x.tif", "x.TIFF", "C:\\a.d\\x.jgw", ".bmp"}) {
    EXPECT_TRUE(CanLoadBitmap(name)) << name;
  }
}

TEST(CanLoadBitmapTest, IsFalseForMetafilesPdfAndUnknownFiles) {
  for (const char* name : {"x.emf", "x.wmf", "x.pdf", "x.jpeg", "x", "", "bmp", "dir.bmp/x"}) {
    EXPECT_FALSE(CanLoadBitmap(name)) << name;
  }
}

TEST(GetPixelFormatTest, KnowsTheUsualNumbersOfBits) {
  EXPECT_EQ(GetPixelFormat(1), pf1bit);
  EXPECT_EQ(GetPixelFormat(4), pf4bit);
  EXPECT_EQ(GetPixelFormat(8), pf8bit);
  EXPECT_EQ(GetPixelFormat(16), pf16bit);
  EXPECT_EQ(GetPixelFormat(24), pf24bit);
  EXPECT_EQ(GetPixelFormat(32), pf32bit);
}

TEST(GetPixelFormatTest, IsTwentyFourBitForEveryOtherNumber) {
  for (const int bits : {0, 2, 15, 48, 64, -1, -8})
    EXPECT_EQ(GetPixelFormat(bits), pf24bit) << bits;
}

TEST(PixelformatToBitsTest, KnowsTheFormatsWithANumber) {
  EXPECT_EQ(PixelformatToBits(pf1bit, 99), 1);
  EXPECT_EQ(PixelformatToBits(pf4bit, 99), 4);
  EXPECT_EQ(PixelformatToBits(pf8bit, 99), 8);
  EXPECT_EQ(PixelformatToBits(pf16bit, 99), 16);
  EXPECT_EQ(PixelformatToBits(pf24bit, 99), 24);
  EXPECT_EQ(PixelformatToBits(pf32bit, 99), 32);
}

TEST(PixelformatToBitsTest, GivesTheDefaultForTheOthers) {
  EXPECT_EQ(PixelformatToBits(pf15bit, 99), 99);
  EXPECT_EQ(PixelformatToBits(pfDevice, -7), -7);
  EXPECT_EQ(PixelformatToBits(pfCustom, 0), 0);
}

TEST(GetGraphicTypeTest, KnowsEachClass) {
  EXPECT_EQ(GetGraphicType(nullptr), 0);
  const TBitmap bitmap;
  EXPECT_EQ(GetGraphicType(&bitmap), 1);
  const TJPEGImage jpeg;
  EXPECT_EQ(GetGraphicType(&jpeg), 6);
  const TPngImage png;
  EXPECT_EQ(GetGraphicType(&png), 8);
}

TEST(GetGraphicTypeTest, AWicBitmapIsATiffAlthoughItIsABitmapToo) {
  const TWICBitmap tiff;
  EXPECT_EQ(GetGraphicType(&tiff), 10);
}

TEST(GetGraphicTypeTest, AnEnhancedMetafileIsAPlainOneAndTheReverse) {
  TMetafile metafile;
  metafile.SetEnhanced(true);
  EXPECT_EQ(GetGraphicType(&metafile), 2);
  metafile.SetEnhanced(false);
  EXPECT_EQ(GetGraphicType(&metafile), 4);
}

TEST(GetGraphicTypeTest, OtherClassesAreNone) {
  const TIcon icon;
  EXPECT_EQ(GetGraphicType(&icon), 0);
}

TEST(CreateGraphicOfTypeTest, MakesAnEmptyGraphicOfTheClass) {
  for (const int type : {1, 6, 8, 10}) {
    const auto graphic = CreateGraphicOfType(type);
    ASSERT_NE(graphic, nullptr) << type;
    EXPECT_EQ(GetGraphicType(graphic.get()), type);
    EXPECT_TRUE(graphic->Empty());
  }
}

TEST(CreateGraphicOfTypeTest, TheSecondJpegIdentifierMakesAJpeg) {
  EXPECT_EQ(GetGraphicType(CreateGraphicOfType(3).get()), 6);
}

TEST(CreateGraphicOfTypeTest, MetafilesReportTheOtherType) {
  const auto plain = CreateGraphicOfType(2);
  EXPECT_FALSE(dynamic_cast<TMetafile&>(*plain).Enhanced());
  EXPECT_EQ(GetGraphicType(plain.get()), 4);
  const auto enhanced = CreateGraphicOfType(4);
  EXPECT_TRUE(dynamic_cast<TMetafile&>(*enhanced).Enhanced());
  EXPECT_EQ(GetGraphicType(enhanced.get()), 2);
}

TEST(CreateGraphicOfTypeTest, IsNullForUnknownTypes) {
  for (const int type : {0, 5, 7, 9, 11, -1}) EXPECT_EQ(CreateGraphicOfType(type), nullptr) << type;
}

}  // namespace
}  // namespace rasterkit
