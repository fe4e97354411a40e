#include <algorithm>
#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

std::vector<uint8_t> Saved(TJPEGImage& jpeg) {
  TMemoryStream stream;
  jpeg.SaveToStream(stream);
  return stream.TakeBytes();
}

void Load(TJPEGImage& jpeg, const std::vector<uint8_t>& bytes) {
  TMemoryStream stream(bytes);
  jpeg.LoadFromStream(stream);
}

std::vector<uint8_t> SampleFile(uint8_t quality = 60) {
  const TBitmap picture = test::GradientBitmap(pf24bit, 45, 31);
  TJPEGImage jpeg;
  jpeg.SetCompressionQuality(quality);
  jpeg.Assign(&picture);
  return Saved(jpeg);
}

TEST(JpegImage, New_Should_BeEmptyWithQuality90) {
  TJPEGImage jpeg;
  EXPECT_TRUE(jpeg.Empty());
  EXPECT_EQ(jpeg.CompressionQuality(), 90);
  EXPECT_NO_THROW(jpeg.Compress());
  TMemoryStream stream;
  EXPECT_THROW(jpeg.SaveToStream(stream), FormatError);
  EXPECT_EQ(stream.Size(), 0u);
}

TEST(JpegImage, Quality_Should_TakeAnyByteAndBeClampedWhenEncoding) {
  EXPECT_EQ(SampleFile(0), SampleFile(1));
  EXPECT_EQ(SampleFile(255), SampleFile(100));
  EXPECT_LT(SampleFile(20).size(), SampleFile(95).size());
  TJPEGImage jpeg;
  jpeg.SetCompressionQuality(255);
  EXPECT_EQ(jpeg.CompressionQuality(), 255);
}

TEST(JpegImage, Save_Should_GiveTheLoadedBytes_When_NothingWasChanged) {
  const std::vector<uint8_t> file = SampleFile();
  TJPEGImage jpeg;
  Load(jpeg, file);
  EXPECT_EQ(jpeg.Width(), 45);
  EXPECT_EQ(jpeg.Height(), 31);
  EXPECT_EQ(jpeg.Bitmap().PixelFormat(), pf24bit);
  jpeg.SetCompressionQuality(5);
  EXPECT_EQ(Saved(jpeg), file) << "a new quality alone encodes nothing";
  TJPEGImage copy;
  copy.Assign(&jpeg);
  EXPECT_EQ(Saved(copy), file) << "the bytes come along";
  EXPECT_EQ(copy.CompressionQuality(), 5);
}

TEST(JpegImage, Compress_Should_EncodeAgainAndShowWhatTheBytesHold) {
  TJPEGImage jpeg;
  Load(jpeg, SampleFile());
  const std::unique_ptr<TBitmap> before = jpeg.Bitmap().Clone();
  jpeg.SetCompressionQuality(5);
  jpeg.Compress();
  EXPECT_TRUE(jpeg.Modified());
  const std::vector<uint8_t> bytes = Saved(jpeg);
  EXPECT_LT(bytes.size(), SampleFile().size());
  EXPECT_FALSE(test::SamePixels(*before, jpeg.Bitmap()));
  EXPECT_TRUE(test::SamePixels(DecodeJpeg(bytes), jpeg.Bitmap().Content()));
  TBitmap assigned;
  assigned.Assign(&jpeg);
  EXPECT_TRUE(test::SamePixels(jpeg.Bitmap(), assigned));
}

TEST(JpegImage, Save_Should_NotChangeWhatIsShown) {
  const TBitmap picture = test::GradientBitmap(pf24bit, 45, 31);
  TJPEGImage jpeg;
  jpeg.SetCompressionQuality(5);
  jpeg.Assign(&picture);
  const std::vector<uint8_t> first = Saved(jpeg);
  EXPECT_TRUE(test::SamePixels(picture, jpeg.Bitmap()));
  EXPECT_EQ(Saved(jpeg), first) << "encoded once, kept";
}

TEST(JpegImage, Assign_Should_DropTheKeptBytes) {
  const std::vector<uint8_t> file = SampleFile();
  TJPEGImage jpeg;
  Load(jpeg, file);
  const TBitmap other = test::GradientBitmap(pf24bit, 33, 21);
  jpeg.Assign(&other);
  EXPECT_TRUE(test::SamePixels(other, jpeg.Bitmap()));
  EXPECT_NE(Saved(jpeg), file);
  jpeg.Assign(nullptr);
  EXPECT_TRUE(jpeg.Empty());
  EXPECT_THROW(Saved(jpeg), FormatError);
}

TEST(JpegImage, Assign_Should_KeepGray_When_8BitWithAGrayRamp) {
  const TBitmap gray(test::GrayRaster(45, 31));
  TJPEGImage jpeg;
  jpeg.Assign(&gray);
  EXPECT_TRUE(jpeg.Grayscale());
  EXPECT_TRUE(test::SamePixels(gray, jpeg.Bitmap()));
  const std::vector<uint8_t> bytes = Saved(jpeg);
  EXPECT_EQ(ReadJpegFrame(bytes).components, 1);
  TJPEGImage back;
  Load(back, bytes);
  EXPECT_TRUE(back.Grayscale());
  EXPECT_EQ(back.Bitmap().PixelFormat(), pf8bit);
}

TEST(JpegImage, Assign_Should_Become24Bit_When_AnythingElse) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf32bit, pfDevice}) {
    TBitmap source = test::GradientBitmap(format == pfDevice ? pf32bit : format, 45, 31);
    source.SetPixelFormat(format);
    source.SetAlphaFormat(afDefined);
    TJPEGImage jpeg;
    jpeg.Assign(&source);
    EXPECT_FALSE(jpeg.Grayscale());
    EXPECT_EQ(jpeg.Bitmap().PixelFormat(), pf24bit);
    EXPECT_EQ(jpeg.Bitmap().AlphaFormat(), afIgnored);
    EXPECT_TRUE(test::SameColors(source, jpeg.Bitmap()));
    EXPECT_EQ(ReadJpegFrame(Saved(jpeg)).components, 3);
  }
}

TEST(JpegImage, FailedLoad_Should_ChangeNothing) {
  const std::vector<uint8_t> file = SampleFile();
  TJPEGImage jpeg;
  Load(jpeg, file);
  EXPECT_THROW(Load(jpeg, {1, 2, 3, 4}), FormatError);
  EXPECT_THROW(Load(jpeg, {}), FormatError);
  EXPECT_EQ(jpeg.Width(), 45);
  EXPECT_EQ(Saved(jpeg), file);
}

TEST(JpegImage, Bitmap_Should_BeReadableByManyThreads_When_DecodedLate) {
  TJPEGImage jpeg;
  Load(jpeg, SampleFile());
  jpeg.SetCompressionQuality(30);
  jpeg.Compress();
  std::vector<const uint8_t*> rows(4);
  std::vector<std::thread> threads;
  for (const uint8_t*& row : rows)
    threads.emplace_back([&jpeg, &row] {
      if (jpeg.Width() > 0 && jpeg.Height() > 0) row = jpeg.Bitmap().ScanLine(0);
    });
  for (std::thread& thread : threads) thread.join();
  for (const uint8_t* row : rows) EXPECT_EQ(row, jpeg.Bitmap().ScanLine(0));
}

TEST(JpegImage, Draw_Should_ShowThePicture) {
  TJPEGImage jpeg;
  Load(jpeg, SampleFile());
  TBitmap target;
  target.SetPixelFormat(pf24bit);
  target.SetSize(45, 31);
  target.Canvas().Draw(0, 0, jpeg);
  EXPECT_TRUE(test::SamePixels(jpeg.Bitmap(), target));
}

TEST(JpegImage, CompressedData_Should_BeTheFileOrTheLastEncoding) {
  const std::vector<uint8_t> file = SampleFile();
  TJPEGImage jpeg;
  EXPECT_TRUE(jpeg.CompressedData().empty());
  Load(jpeg, file);
  EXPECT_TRUE(std::ranges::equal(jpeg.CompressedData(), file));
  const TBitmap picture = test::GradientBitmap(pf24bit, 45, 31);
  jpeg.Assign(&picture);
  EXPECT_TRUE(jpeg.CompressedData().empty()) << "not encoded before the first save";
  const std::vector<uint8_t> saved = Saved(jpeg);
  EXPECT_TRUE(std::ranges::equal(jpeg.CompressedData(), saved));
}

TEST(JpegImage, TakeBitmap_Should_GiveWhatAssigningGives_WithTheSameRows) {
  for (const bool isCompressed : {false, true}) {
    TJPEGImage jpeg;
    Load(jpeg, SampleFile());
    jpeg.SetTransparentColor(RGB(1, 2, 3));
    jpeg.SetTransparent(true);
    if (isCompressed) jpeg.Compress();
    TBitmap assigned;
    assigned.Assign(&jpeg);
    const uint8_t* const rows = jpeg.Bitmap().ScanLine(0);
    TBitmap taken = jpeg.TakeBitmap();
    EXPECT_EQ(taken.ScanLine(0), rows) << "moved";
    EXPECT_TRUE(test::SamePixels(assigned, taken));
    EXPECT_EQ(taken.PixelFormat(), assigned.PixelFormat());
    EXPECT_EQ(taken.Dpi(), assigned.Dpi());
    EXPECT_EQ(taken.Transparent(), assigned.Transparent());
    EXPECT_EQ(taken.TransparentColor(), assigned.TransparentColor());
    EXPECT_EQ(taken.Modified(), assigned.Modified());
    EXPECT_TRUE(jpeg.Empty());
    EXPECT_TRUE(jpeg.CompressedData().empty());
  }
}

TEST(JpegImage, AssignMoved_Should_GiveWhatAssigningGives) {
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap picture = test::GradientBitmap(format, 45, 31);
    picture.SetDpi({300, 150});
    picture.SetTransparent(true);
    picture.SetTransparentColor(RGB(1, 2, 3));
    TJPEGImage assigned, moved;
    assigned.Assign(&picture);
    Load(moved, SampleFile());
    const uint8_t* const rows = picture.ScanLine(0);
    moved.AssignMoved(std::move(picture));
    EXPECT_EQ(moved.Bitmap().ScanLine(0) == rows, format == pf24bit) << format;
    EXPECT_TRUE(test::SamePixels(assigned.Bitmap(), moved.Bitmap())) << format;
    EXPECT_EQ(moved.Bitmap().PixelFormat(), assigned.Bitmap().PixelFormat());
    EXPECT_EQ(moved.Bitmap().Dpi(), assigned.Bitmap().Dpi());
    EXPECT_EQ(moved.Bitmap().Transparent(), assigned.Bitmap().Transparent());
    EXPECT_EQ(moved.Transparent(), assigned.Transparent());
    EXPECT_EQ(moved.TransparentColor(), assigned.TransparentColor());
    EXPECT_EQ(moved.Modified(), assigned.Modified());
    EXPECT_EQ(Saved(moved), Saved(assigned)) << format;
    EXPECT_TRUE(picture.Empty());  // NOLINT(bugprone-use-after-move): it is empty then
  }
}

TEST(JpegImage, AssignMoved_Should_MoveGrayRows) {
  TBitmap picture(test::GrayRaster(45, 31));
  const uint8_t* const rows = picture.ScanLine(0);
  TJPEGImage jpeg;
  jpeg.AssignMoved(std::move(picture));
  EXPECT_EQ(jpeg.Bitmap().ScanLine(0), rows);
  EXPECT_TRUE(jpeg.Grayscale());
}

}  // namespace
}  // namespace rasterkit
