// Rows and parts of rows of bitmap files are those of the whole picture.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/bmp/bmp_picture.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/bmp/bmp_test_support.h"
#include "tests/support/profiles.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using Bytes = std::vector<uint8_t>;

/// The same file with its rows from top to bottom: the picture is mirrored.
Bytes TopDown(Bytes file) {
  constexpr size_t kHeightAt = 22;
  uint32_t height = 0;
  for (size_t i = 0; i < 4; ++i) height |= uint32_t{file[kHeightAt + i]} << (8 * i);
  height = 0 - height;
  for (size_t i = 0; i < 4; ++i) file[kHeightAt + i] = static_cast<uint8_t>(height >> (8 * i));
  return file;
}

/// Sum of the bytes that were read.
class CountingStream : public TSpanStream {
 public:
  using TSpanStream::TSpanStream;
  size_t Read(std::span<uint8_t> target) override {
    const size_t count = TSpanStream::Read(target);
    read += count;
    return count;
  }
  size_t read = 0;
};

void ExpectSameRows(const Bytes& file, const std::string& what) {
  CodecReport whole, parts;
  TSpanStream stream(file);
  const Raster all = DecodeBmp(stream, &whole);
  for (const int height : {1, 7, 64, 1000}) {
    TSpanStream again(file);
    const auto reader = OpenRows(again, PictureType::bmp);
    ASSERT_NE(reader, nullptr) << what;
    // From the bottom: any order will do.
    for (int end = reader->Height(); end > 0; end -= height) {
      const int top = std::max(end - height, 0);
      Pixels band = NewPixels(reader->Like(), reader->Width(), end - top);
      reader->Read(0, top, band);
      const auto& rows = std::get<Raster>(band);
      ASSERT_EQ(rows.Format(), all.Format()) << what;
      for (int y = top; y < end; ++y) {
        ASSERT_TRUE(std::equal(all.Row(y), all.Row(y) + all.Stride(), rows.Row(y - top)))
            << what << " row " << y << " in bands of " << height;
      }
    }
    parts = {};
    reader->Finish(parts);
    EXPECT_EQ(parts.warnings, whole.warnings);
    EXPECT_EQ(parts.damage, whole.damage);
    const auto& like = std::get<Raster>(reader->Like());
    EXPECT_TRUE(like.palette == all.palette);
    EXPECT_EQ(like.alphaFormat, all.alphaFormat);
    EXPECT_TRUE(like.resolution == all.resolution);
  }
}

void ExpectSameParts(const Bytes& file, const std::string& what) {
  TSpanStream stream(file);
  const Raster all = DecodeBmp(stream);
  TSpanStream again(file);
  const auto reader = OpenRows(again, PictureType::bmp);
  ASSERT_NE(reader, nullptr);
  if (reader->Access() != RowAccess::anyParts) {
    Pixels part = NewPixels(reader->Like(), 3, 1);
    EXPECT_THROW(reader->Read(1, 0, part), RangeError);
    return;
  }
  const size_t pixel = static_cast<size_t>(StoredBitsPerPixel(all.Format())) / 8;
  std::mt19937 random(9);
  for (int i = 0; i < 50; ++i) {
    const int width = 1 + static_cast<int>(random() % static_cast<unsigned>(all.Width()));
    const int height = 1 + static_cast<int>(random() % static_cast<unsigned>(all.Height()));
    const int left = static_cast<int>(random() % static_cast<unsigned>(all.Width() - width + 1));
    const int top = static_cast<int>(random() % static_cast<unsigned>(all.Height() - height + 1));
    Pixels part = NewPixels(reader->Like(), width, height);
    reader->Read(left, top, part);
    for (int y = 0; y < height; ++y) {
      const uint8_t* row = all.Row(top + y) + static_cast<size_t>(left) * pixel;
      ASSERT_TRUE(
          std::equal(row, row + static_cast<size_t>(width) * pixel, std::get<Raster>(part).Row(y)))
          << what << ": " << left << ", " << top << ", " << width << " x " << height;
    }
  }
}

TEST(BmpRows, Should_BeThoseOfTheWhole) {
  for (const TPixelFormat format : kEveryFormat) {
    Raster raster = GradientRaster(format, 83, 71);
    raster.resolution = {300, 150};
    const Bytes file = EncodeToBytes(raster);
    const std::string what = "format " + std::to_string(static_cast<int>(format));
    for (const Bytes& each : {file, TopDown(file)}) {
      ExpectSameRows(each, what);
      ExpectSameParts(each, what);
    }
  }
}

TEST(BmpRows, Should_BeThoseOfTheWhole_When_Truncated) {
  for (const TPixelFormat format : {pf1bit, pf8bit, pf24bit, pf32bit}) {
    const Bytes file = EncodeToBytes(GradientRaster(format, 83, 71));
    for (const size_t missing : {size_t{1}, size_t{300}, file.size() / 3}) {
      Bytes cut = file;
      cut.resize(file.size() - missing);
      for (const Bytes& each : {cut, TopDown(cut)}) ExpectSameRows(each, "truncated");
    }
  }
}

TEST(BmpRows, Parts_Should_ReadOnlyTheirBytes) {
  const Bytes file = EncodeToBytes(GradientRaster(pf24bit, 400, 300));
  CountingStream stream(file);
  const auto reader = OpenRows(stream, PictureType::bmp);
  stream.read = 0;
  Pixels part = NewPixels(reader->Like(), 40, 30);
  reader->Read(100, 100, part);
  EXPECT_EQ(stream.read, 40u * 3 * 30);
}

TEST(BmpRows, Alpha_Should_NeedTheWholePicture) {
  Raster raster = GradientRaster(pf32bit, 20, 20);
  raster.alphaFormat = afDefined;
  const Bytes file = EncodeToBytes(raster);
  TSpanStream stream(file);
  EXPECT_EQ(OpenRows(stream, PictureType::bmp), nullptr);
}

TEST(BmpRowWriter, Bytes_Should_NotDependOnTheDivision) {
  for (const TPixelFormat format : kEveryFormat) {
    for (const bool hasProfile : {false, true}) {
      const Pixels pixels = GradientRaster(format, 83, 71);
      PictureWriting writing;
      writing.metadata.resolution = {300, 150};
      if (hasProfile) writing.metadata.profile = RgbProfile();
      TMemoryStream whole;
      whole.Write(Bytes(5, 'x'));
      WriteBmp(pixels, writing, whole);
      for (const int height : {1, 7, 64, 1000}) {
        TMemoryStream stream;
        stream.Write(Bytes(5, 'x'));
        const auto writer = OpenWriter(PictureType::bmp, pixels, {83, 71}, writing, stream);
        ASSERT_NE(writer, nullptr);
        for (int top = 0; top < 71; top += height) {
          Pixels band = NewPixels(pixels, 83, std::min(height, 71 - top));
          for (int y = 0; y < HeightOf(band); ++y) {
            const auto& from = std::get<Raster>(pixels);
            std::copy_n(from.Row(top + y), from.Stride(), std::get<Raster>(band).Row(y));
          }
          writer->Write(band);
        }
        writer->Finish();
        EXPECT_EQ(stream.Position(), whole.Position());
        EXPECT_TRUE(std::ranges::equal(stream.Bytes(), whole.Bytes()))
            << static_cast<int>(format) << " in bands of " << height;
      }
    }
  }
}

TEST(BmpRowWriter, MissingRowsAndTooMany_Should_BeRefused) {
  TMemoryStream stream;
  Pixels pixels = GradientRaster(pf24bit, 20, 10);
  const auto writer = OpenWriter(PictureType::bmp, pixels, {20, 15}, {}, stream);
  writer->Write(pixels);
  EXPECT_THROW(writer->Finish(), RangeError);
  EXPECT_THROW(writer->Write(pixels), RangeError);
}

TEST(BmpRowWriter, ShortPalettes_Should_NeedTheWholePicture) {
  Raster raster = GradientRaster(pf8bit, 20, 10);
  raster.palette = GrayPalette(16);
  TMemoryStream stream;
  EXPECT_EQ(OpenWriter(PictureType::bmp, Pixels(std::move(raster)), {20, 10}, {}, stream), nullptr);
}

}  // namespace
}  // namespace rasterkit::test
