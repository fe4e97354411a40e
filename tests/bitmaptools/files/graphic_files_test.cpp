#include <csignal>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/emf_file.h"
#include "tests/support/exif_builder.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::GradientBitmap;
using test::SamePixels;
using test::TiffWriter;

template <class T>
bool Is(const TGraphic* graphic) {
  return graphic != nullptr && typeid(*graphic) == typeid(T);
}
template <class T>
bool Is(const std::unique_ptr<TGraphic>& graphic) {
  return Is<T>(graphic.get());
}

TBitmap AsBitmap(const TGraphic& graphic) {
  TBitmap bitmap;
  bitmap.Assign(&graphic);
  return bitmap;
}

std::unique_ptr<TGraphic> Picture(TPixelFormat format = pf24bit, int width = 21, int height = 14) {
  return std::make_unique<TBitmap>(GradientBitmap(format, width, height));
}

template <class T>
std::unique_ptr<TGraphic> PictureAs(int width = 21, int height = 14) {
  auto graphic = std::make_unique<T>();
  const TBitmap bitmap = GradientBitmap(pf24bit, width, height);
  graphic->Assign(&bitmap);
  return graphic;
}

/// A JPEG of 24 x 16 pixels with an APP1 section in front.
std::string JpegWith(const std::string& section) {
  const std::vector<uint8_t> jpeg = EncodeJpeg(test::GradientRaster(pf24bit, 24, 16), 90);
  return "\xFF\xD8" + section + std::string(jpeg.begin() + 2, jpeg.end());
}
std::string JpegLying(int orientation) {
  const TiffWriter writer(ByteOrder::motorola);
  return JpegWith(
      test::ExifSection(writer.Tiff({writer.Short(274, static_cast<uint16_t>(orientation))})));
}

class GraphicFiles : public ::testing::Test {
 protected:
  std::string FileOf(TGraphic& graphic, const std::string& name) const {
    graphic.SaveToFile(folder_ / name);
    return folder_ / name;
  }
  std::string Renamed(const std::string& from, const std::string& to) const {
    std::filesystem::rename(from, folder_ / to);
    return folder_ / to;
  }
  /// A file with an enhanced metafile, 25 x 20 mm of blue.
  std::string BlueEmf() const {
    test::EmfFile file;
    file.Add(detail::EmfType::createBrush, {1, 0, 0xFF0000, 0});
    file.Add(detail::EmfType::selectObject, {1});
    file.Add(detail::EmfType::rectangle, {0, 0, 99, 79});
    return folder_.Write("blue.emf", file.Bytes());
  }
  test::TempFolder folder_;
};

// ---- LoadGraphic

TEST_F(GraphicFiles, Load_Should_GiveNull_When_ThereIsNoFile) {
  EXPECT_EQ(LoadGraphic(folder_ / "missing.bmp"), nullptr);
  EXPECT_EQ(LoadGraphic(""), nullptr);
  EXPECT_EQ(LoadGraphic("no/such/folder/a.png"), nullptr);
}

TEST_F(GraphicFiles, Load_Should_GiveNull_When_TheExtensionIsUnknown) {
  const std::string bmp = FileOf(*Picture(), "a.bmp");
  for (const char* name : {"a.gif", "a.pdf", "a.xyz", "a", "a.jpeg", "bmp"}) {
    std::filesystem::copy_file(bmp, folder_ / name);
    EXPECT_EQ(LoadGraphic(folder_ / name), nullptr) << name;
  }
}

TEST_F(GraphicFiles, Load_Should_GiveNull_When_TheNameIsAFolder) {
  std::filesystem::create_directory(folder_ / "folder.png");
  EXPECT_EQ(LoadGraphic(folder_ / "folder.png"), nullptr);
}

TEST_F(GraphicFiles, Load_Should_GiveNull_When_TheFileIsEmptyOrJunk) {
  for (const char* name : {"a.bmp", "a.jpg", "a.png", "a.tif", "a.wmf", "a.emf"}) {
    EXPECT_EQ(LoadGraphic(folder_.Write(name, std::string_view())), nullptr) << name;
    EXPECT_EQ(LoadGraphic(folder_.Write(name, std::string(5000, 'x'))), nullptr) << name;
  }
}

TEST_F(GraphicFiles, Load_Should_GiveNull_When_TheFileCannotBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads everything";
  const std::string name = FileOf(*Picture(), "a.bmp");
  std::filesystem::permissions(name, std::filesystem::perms::none);
  EXPECT_EQ(LoadGraphic(name), nullptr);
}

TEST_F(GraphicFiles, Load_Should_GiveTheClassOfTheExtension) {
  EXPECT_TRUE(Is<TBitmap>(LoadGraphic(FileOf(*Picture(), "a.BMP"))));
  EXPECT_TRUE(Is<TJPEGImage>(LoadGraphic(FileOf(*PictureAs<TJPEGImage>(), "a.jpg"))));
  EXPECT_TRUE(Is<TPngImage>(LoadGraphic(FileOf(*PictureAs<TPngImage>(), "a.png"))));
  EXPECT_TRUE(Is<TJPEGImage>(LoadGraphic(FileOf(*PictureAs<TJPEGImage>(), "a.jpgx"))));
}

TEST_F(GraphicFiles, Load_Should_KeepThePixels) {
  const TBitmap expected = GradientBitmap(pf24bit, 21, 14);
  for (const char* name : {"a.bmp", "a.png"}) {
    std::unique_ptr<TGraphic> graphic = Picture();
    SaveGraphic(folder_ / name, graphic);
    EXPECT_TRUE(SamePixels(expected, AsBitmap(*LoadGraphic(folder_ / name)))) << name;
  }
}

TEST_F(GraphicFiles, Load_Should_TurnAPhotoUpright) {
  const struct {
    int orientation;
    bool isUpended;
  } cases[] = {{1, false}, {2, false}, {3, false}, {4, false},
               {5, false}, {6, true},  {7, false}, {8, true}};
  for (const auto& [orientation, isUpended] : cases) {
    const auto graphic = LoadGraphic(folder_.Write("a.jpg", JpegLying(orientation)));
    ASSERT_TRUE(Is<TJPEGImage>(graphic)) << orientation;
    EXPECT_EQ(graphic->Width(), isUpended ? 16 : 24) << orientation;
    EXPECT_EQ(graphic->Height(), isUpended ? 24 : 16) << orientation;
  }
}

TEST_F(GraphicFiles, Load_Should_TurnByWholePixels_When_ThePhotoHasColors) {
  const TBitmap lying = AsBitmap(*LoadGraphic(folder_.Write("a.jpg", JpegLying(1))));
  const TBitmap cw = AsBitmap(*LoadGraphic(folder_.Write("a.jpg", JpegLying(6))));
  const TBitmap half = AsBitmap(*LoadGraphic(folder_.Write("a.jpg", JpegLying(3))));
  const TBitmap ccw = AsBitmap(*LoadGraphic(folder_.Write("a.jpg", JpegLying(8))));
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 24; ++x) {
      const TColor color = lying.PixelColor(x, y);
      ASSERT_EQ(cw.PixelColor(15 - y, x), color);
      ASSERT_EQ(half.PixelColor(23 - x, 15 - y), color);
      ASSERT_EQ(ccw.PixelColor(y, 23 - x), color);
    }
  }
}

TEST_F(GraphicFiles, Load_Should_UncoverBlack_When_AGrayPhotoIsTurned) {
  // A quarter turn of bytes is shifted by one pixel, which uncovers a column.
  Raster white = test::GrayRaster(24, 16);
  for (int y = 0; y < 16; ++y) std::fill_n(white.Row(y), 24, uint8_t{255});
  const std::vector<uint8_t> jpeg = EncodeJpeg(white, 90);
  const TiffWriter writer(ByteOrder::intel);
  const std::string exif = test::ExifSection(writer.Tiff({writer.Short(274, 6)}));
  const auto graphic = LoadGraphic(
      folder_.Write("a.jpg", "\xFF\xD8" + exif + std::string(jpeg.begin() + 2, jpeg.end())));
  ASSERT_TRUE(Is<TJPEGImage>(graphic));
  const TBitmap turned = AsBitmap(*graphic);
  EXPECT_EQ(turned.PixelFormat(), pf8bit);
  EXPECT_EQ(turned.PixelColor(0, 5), clBlack);
  EXPECT_EQ(turned.PixelColor(1, 5), clWhite);
}

TEST_F(GraphicFiles, Load_Should_NotTurn_When_XmpComesFirst) {
  const TiffWriter writer(ByteOrder::intel);
  const std::string exif = test::ExifSection(writer.Tiff({writer.Short(274, 6)}));
  const auto graphic = LoadGraphic(folder_.Write("a.jpg", JpegWith(test::XmpSection() + exif)));
  EXPECT_EQ(graphic->Width(), 24);
}

TEST_F(GraphicFiles, Load_Should_FallBackUnturned_When_TheExifDataCannotBeRead) {
  const TiffWriter writer(ByteOrder::intel);
  const std::string exif = test::ExifSection(
      writer.Tiff({writer.Short(274, 6), writer.GpsPointer()}, {writer.Rationals(2, {{1, 1}})}));
  const auto graphic = LoadGraphic(folder_.Write("a.jpg", JpegWith(exif)));
  ASSERT_TRUE(Is<TJPEGImage>(graphic));
  EXPECT_EQ(graphic->Width(), 24);
  EXPECT_EQ(graphic->Height(), 16);
}

TEST_F(GraphicFiles, Load_Should_GoByContent_When_TheExtensionIsWrong) {
  const auto jpeg = [&] { return folder_.Write("x", JpegLying(6)); };
  const auto png = [&] { return FileOf(*PictureAs<TPngImage>(), "x"); };
  const auto bmp = [&] { return FileOf(*Picture(), "x"); };
  EXPECT_TRUE(Is<TPngImage>(LoadGraphic(Renamed(jpeg(), "a.png"))));
  EXPECT_TRUE(Is<TPngImage>(LoadGraphic(Renamed(bmp(), "a.png"))));
  EXPECT_TRUE(Is<TBitmap>(LoadGraphic(Renamed(jpeg(), "a.bmp"))));
  EXPECT_TRUE(Is<TBitmap>(LoadGraphic(Renamed(png(), "a.bmp"))));
  EXPECT_TRUE(Is<TJPEGImage>(LoadGraphic(Renamed(png(), "a.jpg"))));
  EXPECT_TRUE(Is<TJPEGImage>(LoadGraphic(Renamed(bmp(), "a.jpg"))));
  EXPECT_TRUE(Is<TWICBitmap>(LoadGraphic(Renamed(jpeg(), "a.tif"))));
  EXPECT_TRUE(Is<TWICBitmap>(LoadGraphic(Renamed(png(), "a.tiff"))));
  EXPECT_TRUE(Is<TBitmap>(LoadGraphic(Renamed(bmp(), "a.wmf"))));
  EXPECT_TRUE(Is<TBitmap>(LoadGraphic(Renamed(png(), "a.emf"))));
}

TEST_F(GraphicFiles, Load_Should_KeepThePixels_When_TheExtensionIsWrong) {
  const TBitmap expected = GradientBitmap(pf24bit, 21, 14);
  FileOf(*PictureAs<TPngImage>(), "png");
  FileOf(*Picture(), "bmp");
  EXPECT_TRUE(SamePixels(expected, AsBitmap(*LoadGraphic(Renamed(folder_ / "png", "a.bmp")))));
  EXPECT_TRUE(SamePixels(expected, AsBitmap(*LoadGraphic(Renamed(folder_ / "bmp", "a.png")))));
}

TEST_F(GraphicFiles, Load_Should_NotTurn_When_APhotoHasAnotherExtension) {
  for (const char* name : {"a.png", "a.bmp", "a.tif"}) {
    const auto graphic = LoadGraphic(folder_.Write(name, JpegLying(6)));
    ASSERT_NE(graphic, nullptr) << name;
    EXPECT_EQ(graphic->Width(), 24) << name;
  }
}

TEST_F(GraphicFiles, Load_Should_GiveNull_When_OnlyTheCopyIntoItsClassFails) {
  // 1,664 bytes as decoded, 31,616 as the true colors of a JPEG.
  const std::string name = Renamed(FileOf(*Picture(pf1bit, 101, 104), "bmp"), "a.jpg");
  SetPictureMemoryLimit(10'000);
  EXPECT_THROW(LoadViaWic(name), LimitError);
  EXPECT_EQ(LoadGraphic(name), nullptr);
  SetPictureMemoryLimit(uint64_t{4} << 30);
  EXPECT_TRUE(Is<TJPEGImage>(LoadGraphic(name)));
}

TEST_F(GraphicFiles, LoadViaWic_Should_GiveNull_When_NothingReadsTheFile) {
  EXPECT_EQ(LoadViaWic(folder_ / "missing.png"), nullptr);
  EXPECT_EQ(LoadViaWic(folder_.Write("a.png", "no picture")), nullptr);
  EXPECT_EQ(LoadViaWic(folder_.Path().string()), nullptr);
}

TEST_F(GraphicFiles, LoadViaWic_Should_GiveACopyInTheClassOfTheExtension) {
  const TBitmap expected = GradientBitmap(pf24bit, 21, 14);
  const std::string bmp = FileOf(*Picture(), "bmp");
  const auto check = [&](const char* name, bool isExpectedClass(const TGraphic*)) {
    std::filesystem::copy_file(bmp, folder_ / name);
    const auto graphic = LoadViaWic(folder_ / name);
    ASSERT_TRUE(isExpectedClass(graphic.get())) << name;
    EXPECT_TRUE(SamePixels(expected, AsBitmap(*graphic))) << name;
    EXPECT_TRUE(graphic->Modified()) << name;
  };
  check("a.png", Is<TPngImage>);
  for (const char* name : {"a.bmp", "a.tif", "a.wmf", "a.xyz", "a"}) check(name, Is<TBitmap>);
  std::filesystem::copy_file(bmp, folder_ / "a.jpg");
  EXPECT_TRUE(Is<TJPEGImage>(LoadViaWic(folder_ / "a.jpg")));
}

// ---- SaveGraphic

TEST_F(GraphicFiles, Save_Should_KeepTheObject_When_TheTypeFits) {
  for (const char* name : {"a.bmp", "a.bpw"}) {
    std::unique_ptr<TGraphic> graphic = Picture();
    const TGraphic* before = graphic.get();
    SaveGraphic(folder_ / name, graphic);
    EXPECT_EQ(graphic.get(), before);
  }
  std::unique_ptr<TGraphic> png = PictureAs<TPngImage>();
  const TGraphic* before = png.get();
  SaveGraphic(folder_ / "a.png", png);
  EXPECT_EQ(png.get(), before);
}

TEST_F(GraphicFiles, Save_Should_ReplaceABitmapByAPngWithTheSamePixels) {
  std::unique_ptr<TGraphic> graphic = Picture();
  SaveGraphic(folder_ / "a.png", graphic);
  ASSERT_TRUE(Is<TPngImage>(graphic));
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 21, 14), AsBitmap(*graphic)));
  EXPECT_EQ(test::ReadFile(folder_ / "a.png").substr(1, 3), "PNG");
}

TEST_F(GraphicFiles, Save_Should_ConvertBetweenAllRasterKinds) {
  std::unique_ptr<TGraphic> (*const makers[])() = {
      [] { return Picture(); }, [] { return PictureAs<TJPEGImage>(); },
      [] { return PictureAs<TPngImage>(); }, [] { return PictureAs<TWICBitmap>(); }};
  const struct {
    const char* name;
    int type;
    const char* mark;
  } targets[] = {{"a.bmp", gtBmp, "BM"}, {"a.jpg", gtJpg, "\xFF\xD8"}, {"a.png", gtPng, "\x89P"}};
  for (const auto make : makers) {
    for (const auto& target : targets) {
      std::unique_ptr<TGraphic> graphic = make();
      SaveGraphic(folder_ / target.name, graphic);
      EXPECT_EQ(GetGraphicType(graphic.get()), target.type);
      EXPECT_EQ(test::ReadFile(folder_ / target.name).substr(0, 2), target.mark);
    }
  }
}

TEST_F(GraphicFiles, Save_Should_CarryTransparency) {
  TBitmap bitmap = GradientBitmap(pf8bit, 5, 3);
  bitmap.SetTransparent(true);
  bitmap.SetTransparentColor(bitmap.PixelColor(2, 1));
  std::unique_ptr<TGraphic> graphic = bitmap.Clone();
  SaveGraphic(folder_ / "a.png", graphic);
  EXPECT_TRUE(graphic->Transparent());
  EXPECT_EQ(graphic->TransparentColor(), bitmap.TransparentColor());
  EXPECT_TRUE(LoadGraphic(folder_ / "a.png")->Transparent());
}

TEST_F(GraphicFiles, FailedSave_Should_LeaveTheVariableAndTheFile) {
  const struct {
    const char* name;
    bool isUnsupported;
  } cases[] = {{"a.gif", true}, {"a.pdf", true}, {"noext", true}, {"a.wmf", true}, {"a.emf", true}};
  for (const auto& [name, isUnsupported] : cases) {
    folder_.Write(name, "precious");
    std::unique_ptr<TGraphic> graphic = Picture();
    const TGraphic* before = graphic.get();
    try {
      SaveGraphic(folder_ / name, graphic);
      ADD_FAILURE() << name << " was saved";
    } catch (const UnsupportedError& error) {
      EXPECT_EQ(error.File(), folder_ / name);
    }
    EXPECT_EQ(graphic.get(), before) << name;
    EXPECT_EQ(test::ReadFile(folder_ / name), "precious") << name;
  }
}

TEST_F(GraphicFiles, FailedSave_Should_LeaveTheVariable_When_TheFolderIsMissing) {
  std::unique_ptr<TGraphic> graphic = Picture();
  EXPECT_THROW(SaveGraphic(folder_ / "no/such/a.png", graphic), FileError);
  EXPECT_TRUE(Is<TBitmap>(graphic));
  EXPECT_THROW(SaveGraphic(folder_ / "no/such/a.bmp", graphic), FileError);
  EXPECT_TRUE(Is<TBitmap>(graphic));
}

/// Makes the disk full from a certain file size on.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit limit = {bytes, old_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, signal_);
  }

 private:
  rlimit old_{};
  void (*signal_)(int);
};

TEST_F(GraphicFiles, FailedSave_Should_LeaveTheOldFileWhole_When_TheDiskIsFull) {
  std::mt19937 random(7);
  for (const char* name : {"a.bmp", "a.png", "a.jpg"}) {
    folder_.Write(name, "precious");
    std::unique_ptr<TGraphic> graphic =
        std::make_unique<TBitmap>(test::RandomBitmap(pf24bit, 101, 103, random));
    const TGraphic* before = graphic.get();
    {
      const FullDisk disk(4096);
      EXPECT_THROW(SaveGraphic(folder_ / name, graphic), FileError) << name;
    }
    EXPECT_EQ(graphic.get(), before) << name;
    EXPECT_EQ(test::ReadFile(folder_ / name), "precious") << name;
  }
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"a.bmp", "a.jpg", "a.png"}))
      << "nothing is left behind";
}

TEST_F(GraphicFiles, Save_Should_Throw_When_ThereIsNothingToSave) {
  std::unique_ptr<TGraphic> graphic;
  EXPECT_THROW(SaveGraphic(folder_ / "a.png", graphic), Error);
  EXPECT_THROW(SaveGraphic(folder_ / "a.jpg", graphic), Error);
  EXPECT_THROW(SaveGraphic(folder_ / "a.xyz", graphic), UnsupportedError);
  EXPECT_EQ(graphic, nullptr);
}

TEST_F(GraphicFiles, Save_Should_ConvertAnEnhancedMetafile_When_TheExtensionIsItsOwn) {
  // It counts as plain, so ".emf" needs a conversion through a bitmap, which metafiles do not
  // support.
  for (const bool hasRecords : {false, true}) {
    auto graphic = hasRecords ? LoadGraphic(BlueEmf()) : CreateGraphicOfType(gtEmf);
    ASSERT_TRUE(Is<TMetafile>(graphic));
    EXPECT_EQ(GetGraphicType(graphic.get()), gtWmf);
    EXPECT_THROW(SaveGraphic(folder_ / "a.emf", graphic), UnsupportedError);
    EXPECT_TRUE(Is<TMetafile>(graphic));
    EXPECT_FALSE(FileExists(folder_ / "a.emf"));
  }
}

TEST_F(GraphicFiles, Save_Should_WriteTheRecords_When_TheMarkNamesThem) {
  // An enhanced metafile counts as a plain one: under ".wmf" its own class saves it.
  std::unique_ptr<TGraphic> graphic = LoadGraphic(BlueEmf());
  SaveGraphic(folder_ / "a.wmf", graphic);
  EXPECT_EQ(test::ReadFile(folder_ / "a.wmf"), test::ReadFile(folder_ / "blue.emf"));
}

TEST_F(GraphicFiles, Save_Should_MakeAPictureOfAMetafile) {
  std::unique_ptr<TGraphic> graphic = LoadGraphic(BlueEmf());
  SaveGraphic(folder_ / "a.png", graphic);
  ASSERT_TRUE(Is<TPngImage>(graphic));
  EXPECT_EQ(graphic->Width(), 94);  // 25 mm
  EXPECT_EQ(AsBitmap(*graphic).PixelColor(40, 40), 0xFF0000);
}

// ---- CopyGraphic

TEST_F(GraphicFiles, Copy_Should_HaveTheSameClassAndPixels) {
  const TBitmap expected = GradientBitmap(pf24bit, 21, 14);
  const auto check = [&](const std::unique_ptr<TGraphic>& graphic) {
    const auto copy = CopyGraphic(graphic.get());
    ASSERT_NE(copy, nullptr);
    const TGraphic &copied = *copy, &original = *graphic;
    EXPECT_TRUE(typeid(copied) == typeid(original));
    EXPECT_TRUE(SamePixels(expected, AsBitmap(*copy)));
  };
  check(Picture());
  check(PictureAs<TJPEGImage>());
  check(PictureAs<TPngImage>());
  check(PictureAs<TWICBitmap>());
}

TEST_F(GraphicFiles, Copy_Should_BeNull_When_ThereIsNoGraphic) {
  EXPECT_EQ(CopyGraphic(nullptr), nullptr);
}

TEST_F(GraphicFiles, CopyOfAMetafile_Should_BearTheOtherMark) {
  for (const bool enhanced : {false, true}) {
    TMetafile metafile;
    metafile.SetEnhanced(enhanced);
    const auto copy = CopyGraphic(&metafile);
    ASSERT_TRUE(Is<TMetafile>(copy));
    EXPECT_EQ(static_cast<TMetafile&>(*copy).Enhanced(), !enhanced);
  }
}

// ---- RotateGraphic

TEST_F(GraphicFiles, Rotate_Should_KeepTheClass) {
  const auto check = [](std::unique_ptr<TGraphic> graphic) {
    const TGraphic& original = *graphic;
    const std::type_info& before = typeid(original);
    RotateGraphic(90, graphic, clBlack);
    ASSERT_NE(graphic, nullptr);
    const TGraphic& rotated = *graphic;
    EXPECT_TRUE(typeid(rotated) == before);
    EXPECT_EQ(graphic->Width(), 14);
    EXPECT_EQ(graphic->Height(), 21);
  };
  check(Picture());
  check(PictureAs<TJPEGImage>());
  check(PictureAs<TPngImage>());
  check(PictureAs<TWICBitmap>());
}

TEST_F(GraphicFiles, RotatedTiffGraphic_Should_KeepWhatElseItHas) {
  std::unique_ptr<TGraphic> graphic = PictureAs<TWICBitmap>();
  auto& bitmap = static_cast<TBitmap&>(*graphic);
  bitmap.SetDpi({300, 150});
  bitmap.SetTransparent(true);
  bitmap.SetTransparentColor(RGB(1, 2, 3));
  bitmap.SetModified(false);
  RotateGraphic(0, graphic, clBlack);
  ASSERT_TRUE(Is<TWICBitmap>(graphic));
  const auto& turned = static_cast<const TBitmap&>(*graphic);
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 21, 14), turned));
  EXPECT_EQ(turned.Dpi(), (Resolution{300, 150}));
  EXPECT_TRUE(turned.Transparent());
  EXPECT_EQ(turned.TransparentColor(), RGB(1, 2, 3));
  EXPECT_TRUE(turned.Modified());
}

TEST_F(GraphicFiles, Rotate_Should_FillTheCornersWithTheBackColor) {
  std::unique_ptr<TGraphic> graphic = Picture();
  RotateGraphic(30, graphic, RGB(1, 2, 3));
  const auto& bitmap = static_cast<const TBitmap&>(*graphic);
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(1, 2, 3));
  EXPECT_EQ(bitmap.PixelColor(bitmap.Width() - 1, bitmap.Height() - 1), RGB(1, 2, 3));
}

TEST_F(GraphicFiles, Rotate_Should_LeaveThePicture_When_ItCannotBeTurned) {
  std::unique_ptr<TGraphic> nothing;
  EXPECT_THROW(RotateGraphic(90, nothing, clBlack), UnsupportedError);
  std::unique_ptr<TGraphic> graphic = Picture();
  RotateGraphic(std::numeric_limits<float>::quiet_NaN(), graphic, clBlack);
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 21, 14), AsBitmap(*graphic)));
}

TEST_F(GraphicFiles, Rotate_Should_MakeAPngOfAMetafile) {
  std::unique_ptr<TGraphic> graphic = LoadGraphic(BlueEmf());
  RotateGraphic(90, graphic, clBlack);
  ASSERT_TRUE(Is<TPngImage>(graphic));
  EXPECT_EQ(graphic->Width(), 76);
  EXPECT_EQ(graphic->Height(), 94);
}

TEST_F(GraphicFiles, Rotate_Should_LeaveAMetafile_When_ItHasNoRecords) {
  std::unique_ptr<TGraphic> graphic = std::make_unique<TMetafile>();
  EXPECT_THROW(RotateGraphic(90, graphic, clBlack), UnsupportedError);
  EXPECT_TRUE(Is<TMetafile>(graphic));
}

}  // namespace
}  // namespace rasterkit
