#include <cmath>
#include <filesystem>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/exif_builder.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::GradientBitmap;
using test::SamePixels;
using test::TiffWriter;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
const float kLeastTurn = std::nextafter(0.1f, 1.0f);

/// An 8-bit bitmap with `count` colors, of which pixel (x, y) has number (x + y) mod count.
TBitmap IndexedBitmap(int count, int width = 21, int height = 14) {
  TBitmap bitmap = GradientBitmap(pf8bit, width, height);
  std::vector<tagPALETTEENTRY> entries;
  for (int i = 0; i < count; ++i) {
    entries.push_back({static_cast<uint8_t>(255 - i), static_cast<uint8_t>(i), 7, 0});
  }
  bitmap.SetPalette(HPALETTE(entries));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) bitmap.ScanLine(y)[x] = static_cast<uint8_t>((x + y) % count);
  }
  return bitmap;
}

/// A JPEG of 24 x 16 pixels with an APP1 section in front.
std::string JpegWith(const std::string& section) {
  const std::vector<uint8_t> jpeg = EncodeJpeg(test::GradientRaster(pf24bit, 24, 16), 90);
  return "\xFF\xD8" + section + std::string(jpeg.begin() + 2, jpeg.end());
}
std::string JpegLying(int orientation) {
  const TiffWriter writer(ByteOrder::intel);
  return JpegWith(
      test::ExifSection(writer.Tiff({writer.Short(274, static_cast<uint16_t>(orientation))})));
}
/// Its GPS directory holds one number instead of three.
std::string JpegWithUnreadableExif() {
  const TiffWriter writer(ByteOrder::intel);
  return JpegWith(
      test::ExifSection(writer.Tiff({writer.GpsPointer()}, {writer.Rationals(2, {{1, 1}})})));
}

class WindowsBitmap : public testing::Test {
 protected:
  void SetUp() override {
    HostPorts().minuteOfDay = [] { return 7; };
  }
  void TearDown() override { HostPorts().minuteOfDay = nullptr; }

  template <class T = TBitmap>
  std::string Saved(const TBitmap& bitmap, const std::string& name) const {
    T graphic;
    graphic.Assign(&bitmap);
    graphic.SaveToFile(folder_ / name);
    return folder_ / name;
  }
  /// Loads a file that must be loadable.
  TBitmap Loaded(const std::string& fileName, float angle = 0) const {
    std::unique_ptr<TBitmap> bitmap;
    EXPECT_TRUE(LoadWindowsBitmap(fileName, angle, bitmap));
    if (!bitmap) return TBitmap();
    return std::move(*bitmap);
  }
  test::TempFolder folder_;
};

// ---- LoadWindowsBitmap

class LoadWindows : public WindowsBitmap {
 protected:
  void ExpectFalse(const std::string& fileName) {
    auto bitmap = std::make_unique<TBitmap>(GradientBitmap(pf24bit, 3, 2));
    EXPECT_FALSE(LoadWindowsBitmap(fileName, 90, bitmap)) << fileName;
    EXPECT_EQ(bitmap, nullptr);
  }
  template <class T>
  void ExpectThrow(const std::string& fileName) {
    auto bitmap = std::make_unique<TBitmap>(GradientBitmap(pf24bit, 3, 2));
    try {
      LoadWindowsBitmap(fileName, 0, bitmap);
      ADD_FAILURE() << "loaded " << fileName;
    } catch (const T& error) {
      EXPECT_EQ(error.File(), fileName);
    }
    EXPECT_EQ(bitmap, nullptr);
  }
  HPALETTE PaletteOfPng(int colors) {
    return Loaded(Saved<TPngImage>(IndexedBitmap(colors), "a.png")).Palette();
  }
};

TEST_F(LoadWindows, MissingFile_Should_GiveFalse) {
  ExpectFalse(folder_ / "missing.bmp");
  ExpectFalse(folder_ / "missing.wmf");
  ExpectFalse("no/such/folder/a.png");
  ExpectFalse("");
  std::filesystem::create_directory(folder_ / "folder.bmp");
  ExpectFalse(folder_ / "folder.bmp");
}

TEST_F(LoadWindows, UnknownExtension_Should_GiveFalse) {
  const std::string bmp = Saved(GradientBitmap(pf24bit, 5, 3), "bmp");
  for (const char* name : {"a.gif", "a.pdf", "a", "a.jpeg", "a.webp"}) {
    std::filesystem::copy_file(bmp, folder_ / name);
    ExpectFalse(folder_ / name);
  }
}

TEST_F(LoadWindows, Bmp_Should_ComeAsItIs) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf16bit, pf24bit, pf32bit}) {
    const std::string name = Saved(GradientBitmap(format, 21, 14), "a.BMP");
    TBitmap expected;
    expected.LoadFromFile(name);
    EXPECT_EQ(expected.PixelFormat(), format);
    EXPECT_TRUE(SamePixels(expected, Loaded(name))) << format;
  }
}

TEST_F(LoadWindows, PaletteOfABmp_Should_NotBeFilledUp) {
  const TBitmap expected = IndexedBitmap(20);
  EXPECT_EQ(Loaded(Saved(expected, "a.bmp")).Palette().Count(), 20);
}

TEST_F(LoadWindows, PaletteOfAPng_Should_BeFilledUp_When_ItHas17To255Colors) {
  EXPECT_EQ(PaletteOfPng(17).Count(), 256);
  EXPECT_EQ(PaletteOfPng(100).Count(), 256);
  EXPECT_EQ(PaletteOfPng(255).Count(), 256);
}

TEST_F(LoadWindows, PaletteOfAPng_Should_Stay_When_ItHas16Or256Colors) {
  EXPECT_EQ(PaletteOfPng(16), IndexedBitmap(16).Palette());
  EXPECT_EQ(PaletteOfPng(2), IndexedBitmap(2).Palette());
  EXPECT_EQ(PaletteOfPng(256), IndexedBitmap(256).Palette());
}

TEST_F(LoadWindows, PixelsUnderAShortPalette_Should_Stay) {
  // Replacing a palette of 16 entries would erase half of each row.
  for (const int colors : {2, 16}) {
    const TBitmap source = IndexedBitmap(colors);
    EXPECT_TRUE(SamePixels(source, Loaded(Saved<TPngImage>(source, "a.png")))) << colors;
  }
}

TEST_F(LoadWindows, FilledUpPalette_Should_KeepColorsAndIndexes_And_EndInBlack) {
  const TBitmap source = IndexedBitmap(17);
  const TBitmap loaded = Loaded(Saved<TPngImage>(source, "a.png"));
  ASSERT_EQ(loaded.PixelFormat(), pf8bit);
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(loaded.Palette().Entry(i), i < 17 ? source.Palette().Entry(i) : tagPALETTEENTRY{});
  }
  EXPECT_TRUE(test::SameColors(source, loaded));
  EXPECT_EQ(loaded.ScanLine(3)[4], source.ScanLine(3)[4]);
}

TEST_F(LoadWindows, PaletteOf4Bits_Should_Stay) {
  const TBitmap source = GradientBitmap(pf4bit, 21, 14);
  EXPECT_TRUE(SamePixels(source, Loaded(Saved<TPngImage>(source, "a.png"))));
}

TEST_F(LoadWindows, Transparency_Should_EndWithEightBits_When_ItsColorIsNotWhite) {
  TBitmap source = IndexedBitmap(256);
  source.SetTransparent(true);
  source.SetTransparentColor(source.PixelColor(1, 0));
  const TBitmap loaded = Loaded(Saved<TPngImage>(source, "a.png"));
  ASSERT_EQ(loaded.PixelFormat(), pf8bit);
  EXPECT_FALSE(loaded.Transparent());
  EXPECT_TRUE(SamePixels(source, loaded));
}

TEST_F(LoadWindows, Transparency_Should_Stay_When_ItsColorIsWhite) {
  for (const int colors : {17, 256}) {
    TBitmap source = IndexedBitmap(colors);
    TColorTable entries = PaletteTable(source.Palette());
    entries[3] = {255, 255, 255, 0};
    source.SetPalette(HPALETTE(std::span(entries).first(static_cast<size_t>(colors))));
    source.SetTransparent(true);
    source.SetTransparentColor(clWhite);
    const TBitmap loaded = Loaded(Saved<TPngImage>(source, "a.png"));
    EXPECT_TRUE(loaded.Transparent()) << colors;
    EXPECT_EQ(loaded.TransparentColor(), clWhite);
    EXPECT_EQ(loaded.Palette().Count(), 256);
  }
}

TEST_F(LoadWindows, Transparency_Should_Stay_When_TheBitmapHasNot8Bits) {
  for (const TPixelFormat format : {pf4bit, pf24bit}) {
    TBitmap source = GradientBitmap(format, 21, 14);
    const TColor key = source.PixelColor(2, 3);
    source.SetTransparent(true);
    source.SetTransparentColor(key);
    const TBitmap loaded = Loaded(Saved<TPngImage>(source, "a.png"));
    EXPECT_TRUE(loaded.Transparent()) << format;
    EXPECT_EQ(loaded.TransparentColor(), key);
  }
}

TEST_F(LoadWindows, Png_Should_KeepItsPixels) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const TBitmap expected = GradientBitmap(format, 21, 14);
    EXPECT_TRUE(SamePixels(expected, Loaded(Saved<TPngImage>(expected, "a.png")))) << format;
  }
}

TEST_F(LoadWindows, ResolutionAndProfile_Should_TravelAlong) {
  TBitmap source = GradientBitmap(pf24bit, 21, 14);
  source.SetDpi({254, 127});
  for (const std::string& name : {Saved<TPngImage>(source, "a.png"), Saved(source, "a.bmp")}) {
    EXPECT_NEAR(Loaded(name).Dpi().x, 254, 0.1) << name;
    EXPECT_NEAR(Loaded(name).Dpi().y, 127, 0.1) << name;
  }
}

TEST_F(LoadWindows, GrayJpeg_Should_KeepItsRamp) {
  TBitmap gray(test::GrayRaster(21, 14));
  const TBitmap loaded = Loaded(Saved<TJPEGImage>(gray, "a.jpg"));
  EXPECT_EQ(loaded.PixelFormat(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(loaded.Palette()));
}

TEST_F(LoadWindows, Jpeg_Should_ComeUpright) {
  const TBitmap lying = Loaded(folder_.Write("a.jpg", JpegLying(1)));
  const TBitmap cw = Loaded(folder_.Write("a.jpg", JpegLying(6)));
  const TBitmap half = Loaded(folder_.Write("a.jpg", JpegLying(3)));
  const TBitmap ccw = Loaded(folder_.Write("a.jpg", JpegLying(8)));
  ASSERT_EQ(lying.Width(), 24);
  ASSERT_EQ(cw.Width(), 16);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 24; ++x) {
      const TColor color = lying.PixelColor(x, y);
      ASSERT_EQ(cw.PixelColor(15 - y, x), color);
      ASSERT_EQ(half.PixelColor(23 - x, 15 - y), color);
      ASSERT_EQ(ccw.PixelColor(y, 23 - x), color);
    }
  }
}

TEST_F(LoadWindows, AngleOfAPhoto_Should_BeAddedToItsOwn) {
  const TBitmap lying = Loaded(folder_.Write("a.jpg", JpegLying(1)));
  // 270 + 90 is a whole turn, 270 - 90 a half one.
  const std::string cw = folder_.Write("b.jpg", JpegLying(6));
  EXPECT_TRUE(SamePixels(lying, Loaded(cw, 90)));
  EXPECT_EQ(Loaded(cw, -90).PixelColor(23, 15), lying.PixelColor(0, 0));
  const std::string mirrored = folder_.Write("c.jpg", JpegLying(2));
  EXPECT_EQ(Loaded(mirrored, 90).Width(), 16);
}

TEST_F(LoadWindows, AngleOfAPhoto_Should_BeComparedAsASum) {
  // Each alone is above the threshold.
  const std::string cw = folder_.Write("a.jpg", JpegLying(6));
  const TBitmap lying = Loaded(folder_.Write("b.jpg", JpegLying(1)));
  EXPECT_TRUE(SamePixels(lying, Loaded(cw, -270.0f)));
}

TEST_F(LoadWindows, OtherKinds_Should_NotAskForExif) {
  std::filesystem::rename(folder_.Write("x", JpegLying(6)), folder_ / "a.tif");
  EXPECT_EQ(Loaded(folder_ / "a.tif").Width(), 24);
}

TEST_F(LoadWindows, Tiff_Should_BeReadByContent) {
  const TBitmap expected = GradientBitmap(pf24bit, 21, 14);
  for (const char* name : {"a.tif", "a.tiff", "a.tfw"}) {
    EXPECT_TRUE(SamePixels(expected, Loaded(Saved<TPngImage>(expected, name)))) << name;
  }
}

TEST_F(LoadWindows, Tiff_Should_GiveFalse_When_NoCodecReadsIt) {
  ExpectFalse(folder_.Write("a.tif", "no picture"));
  ExpectFalse(folder_.Write("a.tif", std::string_view()));
  ExpectFalse(folder_.Write("a.tfw", "0.5\n0\n0\n-0.5\n1000\n2000\n"));
  ExpectFalse(folder_.Write("a.tif", "\x89PNG\r\n\x1A\nbroken"));
}

TEST_F(LoadWindows, Metafile_Should_GiveAnEmptyBitmapUnread) {
  for (const char* name : {"a.wmf", "a.emf", "A.EMF"}) {
    std::unique_ptr<TBitmap> bitmap;
    EXPECT_TRUE(LoadWindowsBitmap(folder_.Write(name, "not even a metafile"), 0, bitmap)) << name;
    ASSERT_NE(bitmap, nullptr);
    EXPECT_TRUE(bitmap->Empty());
    EXPECT_EQ(bitmap->PixelFormat(), pfDevice);
  }
}

TEST_F(LoadWindows, Metafile_Should_StayEmpty_When_ItIsToBeTurned) {
  EXPECT_TRUE(Loaded(folder_.Write("a.wmf", "x"), 90).Empty());
}

TEST_F(LoadWindows, BrokenFile_Should_ThrowTheClassesError) {
  ExpectThrow<FormatError>(folder_.Write("a.bmp", "no bitmap"));
  ExpectThrow<FormatError>(folder_.Write("a.png", "\x89PNG\r\n\x1A\nbroken"));
  ExpectThrow<FormatError>(folder_.Write("a.jpg", "no photo"));
}

TEST_F(LoadWindows, WrongExtension_Should_NotBeForgiven) {
  const TBitmap picture = GradientBitmap(pf24bit, 5, 3);
  ExpectThrow<FormatError>(Saved<TPngImage>(picture, "a.bmp"));
  ExpectThrow<FormatError>(Saved<TPngImage>(picture, "a.jpg"));
  ExpectThrow<FormatError>(Saved(picture, "a.png"));
}

TEST_F(LoadWindows, UnreadableExif_Should_PassItsError) {
  const std::string name = folder_.Write("a.jpg", JpegWithUnreadableExif());
  auto bitmap = std::make_unique<TBitmap>();
  EXPECT_THROW(LoadWindowsBitmap(name, 0, bitmap), ConversionError);
  EXPECT_EQ(bitmap, nullptr);
}

TEST_F(LoadWindows, AngleUpToATenth_Should_BeIgnored) {
  const TBitmap source = GradientBitmap(pf24bit, 2000, 3);
  const std::string name = Saved(source, "a.bmp");
  for (const float angle : {0.0f, 0.05f, 0.1f, -0.1f, -0.05f}) {
    EXPECT_TRUE(SamePixels(source, Loaded(name, angle))) << angle;
  }
}

TEST_F(LoadWindows, AngleAboveATenth_Should_Turn) {
  const std::string name = Saved(GradientBitmap(pf24bit, 2000, 3), "a.bmp");
  for (const float angle : {kLeastTurn, -kLeastTurn, 0.11f, 359.0f}) {
    EXPECT_GT(Loaded(name, angle).Height(), 3) << angle;
  }
}

TEST_F(LoadWindows, EveryKind_Should_TurnWithWhiteCorners) {
  const TBitmap source = GradientBitmap(pf24bit, 21, 14);
  const std::string names[] = {Saved(source, "a.bmp"), Saved<TPngImage>(source, "a.png"),
                               Saved<TPngImage>(source, "a.tif")};
  auto expected = source.Clone();
  ASSERT_TRUE(RotateBitmap(30, expected, clWhite, 0, nullptr));
  for (const std::string& name : names) {
    const TBitmap turned = Loaded(name, 30);
    EXPECT_TRUE(SamePixels(*expected, turned)) << name;
    EXPECT_EQ(turned.PixelColor(0, 0), clWhite);
  }
}

TEST_F(LoadWindows, Palette_Should_BeCleanedBeforeTheTurn) {
  const TBitmap turned = Loaded(Saved<TPngImage>(IndexedBitmap(17), "a.png"), 30);
  EXPECT_EQ(turned.PixelFormat(), pf8bit);
  EXPECT_EQ(turned.Palette().Count(), 256);
}

TEST_F(LoadWindows, AngleThatIsNoNumber_Should_LeaveThePictureUnturned) {
  const TBitmap source = GradientBitmap(pf24bit, 21, 14);
  const std::string name = Saved(source, "a.bmp");
  for (const float angle : {std::numeric_limits<float>::quiet_NaN(), kInfinity, -kInfinity}) {
    EXPECT_TRUE(SamePixels(source, Loaded(name, angle))) << angle;
  }
}

// ---- GetWindowsBitmap

class GetWindows : public WindowsBitmap {
 protected:
  bool Get(const std::string& fileName, float angle) {
    return GetWindowsBitmap(fileName, angle, name_, isTemporary_);
  }
  void ExpectOriginal(const std::string& fileName, float angle) {
    isTemporary_ = true;
    EXPECT_TRUE(Get(fileName, angle)) << angle;
    EXPECT_EQ(name_, fileName);
    EXPECT_FALSE(isTemporary_);
  }
  /// The temporary file's picture.
  TBitmap ExpectTemporary(const std::string& fileName, float angle) {
    EXPECT_TRUE(Get(fileName, angle)) << angle;
    EXPECT_EQ(name_, folder_ / "tmp7.bmp");
    EXPECT_TRUE(isTemporary_);
    TBitmap bitmap;
    bitmap.LoadFromFile(name_);
    std::filesystem::remove(name_);
    name_ = "old name";
    isTemporary_ = false;
    return bitmap;
  }
  void ExpectUntouchedOutputs() {
    EXPECT_EQ(name_, "old name");
    EXPECT_FALSE(isTemporary_);
    isTemporary_ = true;
  }
  std::string name_ = "old name";
  bool isTemporary_ = false;
};

TEST_F(GetWindows, Bmp_Should_BeUsedAsItIs_When_ItIsNotTurned) {
  const std::string name = Saved(GradientBitmap(pf24bit, 21, 14), "a.BMP");
  for (const float angle : {0.0f, 0.05f, -0.05f, std::nextafter(0.1f, 0.0f)}) {
    ExpectOriginal(name, angle);
  }
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a.BMP"});
}

TEST_F(GetWindows, Bmp_Should_NotBeOpened_When_ItIsNotTurned) {
  ExpectOriginal("C:\\img\\a.BMP", 0);
  ExpectOriginal(folder_.Write("junk.bmp", "no bitmap"), 0);
}

TEST_F(GetWindows, Bmp_Should_BeTurnedIntoATemporaryFile) {
  const TBitmap source = GradientBitmap(pf24bit, 21, 14);
  auto expected = source.Clone();
  ASSERT_TRUE(RotateBitmap(90, expected, clWhite, 0, nullptr));
  EXPECT_TRUE(SamePixels(*expected, ExpectTemporary(Saved(source, "a.BMP"), 90)));
}

TEST_F(GetWindows, AngleOfExactlyATenth_Should_MakeAnUnturnedCopy) {
  const TBitmap source = GradientBitmap(pf24bit, 2000, 3);
  const std::string name = Saved(source, "a.bmp");
  EXPECT_TRUE(SamePixels(source, ExpectTemporary(name, 0.1f)));
  EXPECT_TRUE(SamePixels(source, ExpectTemporary(name, -0.1f)));
  EXPECT_GT(ExpectTemporary(name, kLeastTurn).Height(), 3);
}

TEST_F(GetWindows, OtherKinds_Should_AlwaysGiveATemporaryFile) {
  const TBitmap source = GradientBitmap(pf24bit, 21, 14);
  EXPECT_TRUE(SamePixels(source, ExpectTemporary(Saved<TPngImage>(source, "a.png"), 0)));
  EXPECT_TRUE(SamePixels(source, ExpectTemporary(Saved<TPngImage>(source, "a.tif"), 0)));
  EXPECT_EQ(ExpectTemporary(folder_.Write("a.jpg", JpegLying(6)), 0).Width(), 16) << "upright";
}

TEST_F(GetWindows, WorldFileExtensionOfABmp_Should_CountAsAnotherKind) {
  const TBitmap source = GradientBitmap(pf24bit, 21, 14);
  EXPECT_TRUE(SamePixels(source, ExpectTemporary(Saved(source, "a.bpw"), 0)));
}

TEST_F(GetWindows, TemporaryName_Should_HoldTheMinuteOfTheDay) {
  const std::string name = Saved<TPngImage>(GradientBitmap(pf24bit, 5, 3), "a.png");
  for (const int minute : {0, 59, 1439}) {
    HostPorts().minuteOfDay = [minute] { return minute; };
    EXPECT_TRUE(Get(name, 0));
    EXPECT_EQ(name_, folder_ / ("tmp" + std::to_string(minute) + ".bmp"));
    EXPECT_TRUE(std::filesystem::exists(name_));
  }
}

TEST_F(GetWindows, TemporaryFile_Should_LieBesideThePicture_WhateverTheSeparator) {
  const std::string name = Saved(GradientBitmap(pf24bit, 5, 3), "img\\a.BMP");
  EXPECT_TRUE(Get(name, 90));
  EXPECT_EQ(name_, folder_ / "img\\tmp7.bmp");
  EXPECT_TRUE(std::filesystem::exists(name_));
}

TEST_F(GetWindows, TemporaryFile_Should_LieInTheCurrentFolder_When_TheNameHasNone) {
  Saved<TPngImage>(GradientBitmap(pf24bit, 5, 3), "a.png");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path());
  EXPECT_TRUE(Get("a.png", 0));
  std::filesystem::current_path(before);
  EXPECT_EQ(name_, "tmp7.bmp");
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"a.png", "tmp7.bmp"}));
}

TEST_F(GetWindows, OldTemporaryFile_Should_BeReplaced) {
  folder_.Write("tmp7.bmp", "old");
  const TBitmap source = GradientBitmap(pf24bit, 5, 3);
  EXPECT_TRUE(SamePixels(source, ExpectTemporary(Saved<TPngImage>(source, "a.png"), 0)));
}

TEST_F(GetWindows, Name_Should_BeBothInputAndOutput) {
  std::string name = Saved<TPngImage>(GradientBitmap(pf24bit, 5, 3), "a.png");
  EXPECT_TRUE(GetWindowsBitmap(name, 0, name, isTemporary_));
  EXPECT_EQ(name, folder_ / "tmp7.bmp");
}

TEST_F(GetWindows, Outputs_Should_StayUntouched_When_ThereIsNothingToLoad) {
  for (const std::string& name :
       {folder_ / "missing.png", folder_.Write("a.gif", "x"), folder_.Write("a.tif", "junk")}) {
    name_ = "old name";
    isTemporary_ = false;
    EXPECT_FALSE(Get(name, 0)) << name;
    ExpectUntouchedOutputs();
    EXPECT_FALSE(Get(name, 0)) << name;
    EXPECT_TRUE(isTemporary_);
  }
  EXPECT_FALSE(Get(folder_ / "missing.bmp", 90));
}

TEST_F(GetWindows, Outputs_Should_StayUntouched_When_LoadingThrows) {
  EXPECT_THROW(Get(folder_.Write("a.png", "junk"), 0), FormatError);
  ExpectUntouchedOutputs();
}

TEST_F(GetWindows, Outputs_Should_StayUntouched_When_TheCopyCannotBeWritten) {
  const std::string name = Saved<TPngImage>(GradientBitmap(pf24bit, 5, 3), "a.png");
  std::filesystem::create_directory(folder_ / "tmp7.bmp");
  EXPECT_THROW(Get(name, 0), FileError);
  ExpectUntouchedOutputs();
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"a.png", "tmp7.bmp"}));
}

TEST_F(GetWindows, Metafile_Should_GiveTheEmptyBitmap) {
  for (const char* name : {"a.wmf", "b.EMF"}) {
    for (const float angle : {0.0f, 90.0f}) {
      ASSERT_TRUE(Get(folder_.Write(name, "junk"), angle)) << name;
      EXPECT_TRUE(isTemporary_);
      EXPECT_EQ(name_, folder_ / "tmp7.bmp");
      TBitmap bitmap = GradientBitmap(pf24bit, 3, 2);
      bitmap.LoadFromFile(name_);
      EXPECT_EQ(bitmap.Width(), 0);
      EXPECT_EQ(bitmap.Height(), 0);
      EXPECT_TRUE(Loaded(name_).Empty());
      EXPECT_TRUE(Loaded(name_, 90).Empty());
      ASSERT_TRUE(Get(name_, 90));
      EXPECT_TRUE(Loaded(name_).Empty());
    }
  }
}

TEST_F(GetWindows, Outputs_Should_StayUntouched_When_TheEmptyBitmapCannotBeWritten) {
  std::filesystem::create_directory(folder_ / "tmp7.bmp");
  EXPECT_THROW(Get(folder_.Write("a.wmf", "junk"), 0), FileError);
  ExpectUntouchedOutputs();
}

// ---- SaveWindowsBitmap

class SaveWindows : public WindowsBitmap {
 protected:
  TPixelFormat SavedFormat(const TBitmap& bitmap, int bits) const {
    SaveWindowsBitmap(bitmap, bits, 0, folder_ / "a.bmp");
    TBitmap loaded;
    loaded.LoadFromFile(folder_ / "a.bmp");
    return loaded.PixelFormat();
  }
  std::string JpegBytes(const TBitmap& bitmap, int quality) const {
    SaveWindowsBitmap(bitmap, 0, quality, folder_ / "a.jpg");
    return test::ReadFile(folder_ / "a.jpg");
  }
};

std::string EncodedJpeg(const TBitmap& bitmap, int quality) {
  const std::vector<uint8_t> bytes = EncodeJpeg(bitmap.Content(), quality);
  return {bytes.begin(), bytes.end()};
}

TEST_F(SaveWindows, Kind_Should_FollowTheExtension) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  const struct {
    const char *name, *mark;
  } cases[] = {{"a.bmp", "BM"},       {"a.BPW", "BM"},    {"a.jpg", "\xFF\xD8"},
               {"a.JGW", "\xFF\xD8"}, {"a.png", "\x89P"}, {"a.pngx", "\x89P"}};
  for (const auto& [name, mark] : cases) {
    SaveWindowsBitmap(bitmap, 0, 0, folder_ / name);
    EXPECT_EQ(test::ReadFile(folder_ / name).substr(0, 2), mark) << name;
  }
}

TEST_F(SaveWindows, Pixels_Should_Arrive) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const TBitmap bitmap = GradientBitmap(format, 21, 14);
    for (const char* name : {"a.bmp", "a.png"}) {
      SaveWindowsBitmap(bitmap, 0, 0, folder_ / name);
      EXPECT_TRUE(SamePixels(bitmap, Loaded(folder_ / name))) << name << " " << format;
    }
  }
}

TEST_F(SaveWindows, Depth_Should_BeThatOfTheBits) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  EXPECT_EQ(SavedFormat(bitmap, 1), pf1bit);
  EXPECT_EQ(SavedFormat(bitmap, 4), pf4bit);
  EXPECT_EQ(SavedFormat(bitmap, 8), pf8bit);
  EXPECT_EQ(SavedFormat(bitmap, 16), pf16bit);
  EXPECT_EQ(SavedFormat(bitmap, 24), pf24bit);
  EXPECT_EQ(SavedFormat(bitmap, 32), pf32bit);
}

TEST_F(SaveWindows, Depth_Should_Be24_When_TheBitsAreUnknown) {
  for (const int bits : {2, 15, 48, 1000}) {
    EXPECT_EQ(SavedFormat(GradientBitmap(pf8bit, 21, 14), bits), pf24bit) << bits;
  }
}

TEST_F(SaveWindows, Depth_Should_StayTheBitmaps_When_BitsAreNotAboveZero) {
  for (const int bits : {0, -1, -24}) {
    EXPECT_EQ(SavedFormat(GradientBitmap(pf8bit, 21, 14), bits), pf8bit) << bits;
  }
}

TEST_F(SaveWindows, ConvertedCopy_Should_HaveTheSameColors) {
  const TBitmap bitmap = GradientBitmap(pf8bit, 21, 14);
  SaveWindowsBitmap(bitmap, 24, 0, folder_ / "a.png");
  EXPECT_TRUE(test::SameColors(bitmap, Loaded(folder_ / "a.png")));
}

TEST_F(SaveWindows, ConvertedCopy_Should_StayTransparentAndKeepItsResolution) {
  TBitmap bitmap = GradientBitmap(pf8bit, 21, 14);
  const TColor key = bitmap.PixelColor(2, 3);
  bitmap.SetTransparent(true);
  bitmap.SetTransparentColor(key);
  bitmap.SetDpi({254, 127});
  SaveWindowsBitmap(bitmap, 24, 0, folder_ / "a.png");
  const TBitmap loaded = Loaded(folder_ / "a.png");
  EXPECT_TRUE(loaded.Transparent());
  EXPECT_EQ(loaded.TransparentColor(), key);
  EXPECT_NEAR(loaded.Dpi().x, 254, 0.1);
  EXPECT_NEAR(loaded.Dpi().y, 127, 0.1);
}

TEST_F(SaveWindows, Profile_Should_TravelAlong) {
  TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  bitmap.SetProfile(test::RgbProfile());
  for (const int bits : {0, 32}) {
    for (const char* name : {"a.bmp", "a.png", "a.jpg", "a.tif"}) {
      SaveWindowsBitmap(bitmap, bits, 0, folder_ / name);
      const ColorProfile loaded = Loaded(folder_ / name).Profile();
      ASSERT_NE(loaded, nullptr) << name << " " << bits;
      EXPECT_EQ(*loaded, *bitmap.Profile()) << name << " " << bits;
    }
  }
}

TEST_F(SaveWindows, Bitmap_Should_NeverChange) {
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap bitmap = GradientBitmap(format, 21, 14);
    bitmap.SetModified(true);
    const auto before = bitmap.Clone();
    for (const int bits : {0, 1, 8, 24, 32}) {
      for (const char* name : {"a.bmp", "a.jpg", "a.png"}) {
        SaveWindowsBitmap(bitmap, bits, 50, folder_ / name);
        ASSERT_TRUE(SamePixels(*before, bitmap)) << format << " " << bits << " " << name;
        EXPECT_EQ(bitmap.PixelFormat(), format);
        EXPECT_TRUE(bitmap.Modified());
      }
    }
  }
}

TEST_F(SaveWindows, JpegQuality_Should_BeTheDefault_When_NoneIsGiven) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 61, 44);
  for (const int quality : {0, -1, -255}) {
    EXPECT_EQ(JpegBytes(bitmap, quality), EncodedJpeg(bitmap, 90)) << quality;
  }
}

TEST_F(SaveWindows, JpegQuality_Should_BeTheLowByte) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 61, 44);
  for (const int quality : {1, 50, 89, 100}) {
    EXPECT_EQ(JpegBytes(bitmap, quality), EncodedJpeg(bitmap, quality)) << quality;
    EXPECT_EQ(JpegBytes(bitmap, 256 + quality), EncodedJpeg(bitmap, quality)) << quality;
    EXPECT_EQ(JpegBytes(bitmap, 1024 + quality), EncodedJpeg(bitmap, quality)) << quality;
  }
  EXPECT_NE(EncodedJpeg(bitmap, 50), EncodedJpeg(bitmap, 90));
}

TEST_F(SaveWindows, JpegQuality_Should_BeClampedWhenEncodingOnly) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 61, 44);
  EXPECT_EQ(JpegBytes(bitmap, 101), EncodedJpeg(bitmap, 100));
  EXPECT_EQ(JpegBytes(bitmap, 255), EncodedJpeg(bitmap, 100));
  EXPECT_EQ(JpegBytes(bitmap, 256), EncodedJpeg(bitmap, 1)) << "the low byte is 0";
}

TEST_F(SaveWindows, UnknownExtension_Should_WriteNothing) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  for (const char* name : {"x.gif", "x.pdf", "x", "x.jpeg", "x.webp"}) {
    SaveWindowsBitmap(bitmap, 8, 90, folder_ / name);
  }
  EXPECT_TRUE(folder_.Names().empty());
  const std::string old = folder_.Write("x.gif", "old");
  SaveWindowsBitmap(bitmap, 8, 90, old);
  EXPECT_EQ(test::ReadFile(old), "old");
  SaveWindowsBitmap(TBitmap(), 8, 90, "no/such/folder/x.gif");
}

TEST_F(SaveWindows, Metafile_Should_BeRefused) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  for (const char* extension : {".wmf", ".emf"}) {
    const std::string name = folder_.Write(std::string("a") + extension, "old");
    try {
      SaveWindowsBitmap(bitmap, 0, 0, name);
      ADD_FAILURE() << "saved " << name;
    } catch (const UnsupportedError& error) {
      EXPECT_EQ(error.File(), name);
    }
    EXPECT_EQ(test::ReadFile(name), "old");
  }
}

TEST_F(SaveWindows, FileThatCannotBeWritten_Should_Throw) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  for (const char* name :
       {"no/such/folder/a.bmp", "no/such/folder/a.jpg", "no/such/folder/a.png"}) {
    EXPECT_THROW(SaveWindowsBitmap(bitmap, 0, 0, name), FileError) << name;
  }
}

TEST_F(SaveWindows, EmptyBitmap_Should_ThrowAndLeaveTheFile) {
  for (const char* name : {"a.bmp", "a.jpg", "a.png"}) {
    folder_.Write(name, "old");
    try {
      SaveWindowsBitmap(TBitmap(), 0, 50, folder_ / name);
      ADD_FAILURE() << "saved " << name;
    } catch (const FormatError& error) {
      EXPECT_EQ(error.File(), folder_ / name);
    }
    EXPECT_EQ(test::ReadFile(folder_ / name), "old");
  }
  EXPECT_EQ(folder_.Names().size(), 3u) << "nothing is left beside them";
}

}  // namespace
}  // namespace rasterkit
