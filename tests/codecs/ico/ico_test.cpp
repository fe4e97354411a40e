#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/ico/ico_decoder.h>
#include <rasterkit/codecs/ico/ico_encoder.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/support/ico_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::IcoBitmap;
using test::IcoFile;
using test::IcoPicture;
using test::IcoPng;

/// The colors as 32 bits, alpha 0 where the mask has ones.
Raster Masked(const Raster& colors, const Raster& mask) {
  Raster result = ConvertRaster(colors, pf32bit);
  for (int y = 0; y < result.Height(); ++y)
    for (int x = 0; x < result.Width(); ++x)
      result.Row(y)[4 * x + 3] = (mask.Row(y)[x / 8] << (x % 8) & 0x80) != 0 ? 0 : 255;
  result.palette = {};
  return result;
}

std::vector<uint8_t> Encoded(const Raster& raster) {
  TMemoryStream stream;
  EncodeIco(raster, stream);
  return stream.TakeBytes();
}

TEST(IcoDecoder, Should_ReadEveryDepthWithItsMask) {
  constexpr unsigned kSeed = 1;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    for (const int width : {1, 7, 8, 17, 33}) {
      const Raster colors = test::RandomRaster(format, width, 9, random);
      const Raster mask = test::RandomRaster(pf1bit, width, 9, random);
      const Raster decoded = DecodeIco(IcoFile({IcoBitmap(colors, &mask)}));
      EXPECT_TRUE(test::SamePixels(Masked(colors, mask), decoded)) << format << ", " << width;
      EXPECT_EQ(decoded.alphaFormat, afDefined);
    }
  }
}

TEST(IcoDecoder, Should_TakeTheAlpha_When_32BitsHaveAny_AndTheMask_When_NoneHas) {
  std::mt19937 random(2);
  Raster colors = test::RandomRaster(pf32bit, 11, 5, random);
  const Raster mask = test::RandomRaster(pf1bit, 11, 5, random);
  EXPECT_TRUE(test::SamePixels(colors, DecodeIco(IcoFile({IcoBitmap(colors, &mask)}))));
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 11; ++x) colors.Row(y)[4 * x + 3] = 0;
  EXPECT_TRUE(
      test::SamePixels(Masked(colors, mask), DecodeIco(IcoFile({IcoBitmap(colors, &mask)}))));
}

TEST(IcoDecoder, Should_BeOpaque_When_TheMaskIsMissing) {
  const Raster colors = test::GradientRaster(pf24bit, 9, 7);
  const Raster opaque = ConvertRaster(colors, pf32bit);
  EXPECT_TRUE(test::SamePixels(opaque, DecodeIco(IcoFile({IcoBitmap(colors, nullptr)}))));
  EXPECT_TRUE(test::SamePixels(opaque, DecodeIco(IcoFile({IcoBitmap(colors, nullptr, false)}))))
      << "the header states the colors alone";
}

TEST(IcoDecoder, Should_ReadPngPictures) {
  std::mt19937 random(3);
  Raster withAlpha = test::RandomRaster(pf32bit, 13, 6, random);
  withAlpha.alphaFormat = afDefined;
  EXPECT_TRUE(test::SamePixels(withAlpha, DecodeIco(IcoFile({IcoPng(withAlpha)}))));
  Raster keyed = test::GradientRaster(pf24bit, 13, 6);
  keyed.transparentColor = keyed.PixelColor(4, 2);
  const Raster decoded = DecodeIco(IcoFile({IcoPng(keyed)}));
  EXPECT_TRUE(test::SameColors(keyed, decoded));
  EXPECT_EQ(decoded.Row(2)[4 * 4 + 3], 0);
  EXPECT_EQ(decoded.Row(2)[4 * 5 + 3], 255);
}

TEST(IcoDecoder, Should_ChooseTheLargest_ThenTheDeepest) {
  const Raster small = test::GradientRaster(pf32bit, 16, 16);
  const Raster shallow = test::GradientRaster(pf4bit, 32, 32);
  const Raster deep = test::GradientRaster(pf24bit, 32, 32);
  Raster wide = test::GradientRaster(pf8bit, 256, 9);
  const auto sizeAndRed = [](const Raster& raster) {
    return std::pair(raster.Width(), raster.PixelColor(3, 2));
  };
  const IcoPicture pictures[] = {IcoBitmap(small, nullptr), IcoBitmap(deep, nullptr),
                                 IcoBitmap(shallow, nullptr)};
  EXPECT_EQ(sizeAndRed(DecodeIco(IcoFile({pictures[0], pictures[1], pictures[2]}))),
            sizeAndRed(deep));
  EXPECT_EQ(sizeAndRed(DecodeIco(IcoFile({pictures[2], pictures[1], pictures[0]}))),
            sizeAndRed(deep));
  EXPECT_EQ(sizeAndRed(DecodeIco(IcoFile({pictures[0], IcoBitmap(wide, nullptr), pictures[1]}))),
            sizeAndRed(wide))
      << "a stated width of 0 is 256";
}

TEST(IcoEncoder, Should_WriteWhatIsReadBack_UpTo256) {
  std::mt19937 random(4);
  for (const auto& [width, height] :
       {std::pair(1, 1), std::pair(15, 31), std::pair(33, 8), std::pair(256, 256)}) {
    Raster raster = test::RandomRaster(pf32bit, width, height, random);
    raster.Row(0)[3] = 0;
    const std::vector<uint8_t> file = Encoded(raster);
    EXPECT_TRUE(test::SamePixels(raster, DecodeIco(file)));
    EXPECT_EQ(file[6], width % 256);
    EXPECT_EQ(file[7], height % 256);
    // The mask is for programs without support for alpha: bottom row first, after the colors.
    const size_t mask = 6 + 16 + 40 + static_cast<size_t>(width) * height * 4;
    const size_t stride = static_cast<size_t>((width + 31) / 32 * 4);
    ASSERT_EQ(file.size(), mask + stride * height);
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x)
        ASSERT_EQ(file[mask + (height - 1 - y) * stride + x / 8] >> (7 - x % 8) & 1,
                  raster.Row(y)[4 * x + 3] == 0);
  }
}

TEST(IcoEncoder, Should_KeepAPictureWithoutAnyOpacity) {
  Raster raster = test::GradientRaster(pf32bit, 9, 5);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 9; ++x) raster.Row(y)[4 * x + 3] = 0;
  EXPECT_TRUE(test::SamePixels(raster, DecodeIco(Encoded(raster))));
}

TEST(IcoEncoder, Should_Refuse_When_EmptyOrTooLarge) {
  EXPECT_THROW(Encoded(Raster(pf32bit, 0, 0)), FormatError);
  EXPECT_THROW(Encoded(test::GradientRaster(pf24bit, 3, 3)), FormatError);
  EXPECT_THROW(Encoded(test::GradientRaster(pf32bit, 257, 1)), LimitError);
  EXPECT_THROW(Encoded(test::GradientRaster(pf32bit, 1, 257)), LimitError);
}

TEST(IcoDecoder, Should_Refuse_When_TheDirectoryIsWrong) {
  const std::vector<uint8_t> good =
      IcoFile({IcoBitmap(test::GradientRaster(pf24bit, 5, 3), nullptr)});
  const auto with = [&](size_t offset, uint8_t value) {
    std::vector<uint8_t> file = good;
    file[offset] = value;
    return file;
  };
  EXPECT_NO_THROW(DecodeIco(good));
  EXPECT_THROW(DecodeIco({}), FormatError);
  EXPECT_THROW(DecodeIco(with(2, 2)), FormatError) << "a cursor";
  EXPECT_THROW(DecodeIco(with(4, 0)), FormatError) << "no picture";
  EXPECT_THROW(DecodeIco(with(21, 1)), FormatError) << "an offset beyond the file";
  EXPECT_THROW(DecodeIco(with(22, 12)), FormatError) << "a core header";
  EXPECT_THROW(DecodeIco(with(22 + 16, 1)), UnsupportedError) << "run lengths";
  EXPECT_THROW(DecodeIco(with(22 + 16, 5)), UnsupportedError) << "a PNG file inside the rows";
  EXPECT_NO_THROW(DecodeIco(with(4, 200))) << "more entries than there are";
}

TEST(IcoDecoder, Should_Refuse_When_ThePictureIsBeyondTheBudget) {
  std::vector<uint8_t> file = IcoFile({IcoBitmap(test::GradientRaster(pf24bit, 5, 3), nullptr)});
  file[22 + 7] = file[22 + 11] = 0x7F;  // width and height of 2^31 and more
  EXPECT_THROW(DecodeIco(file), Error);
}

TEST(IcoDecoder, Should_Survive_When_AnyByteIsWrong_OrTheFileIsCut) {
  std::mt19937 random(5);
  const uint64_t limit = PictureMemoryLimit();
  SetPictureMemoryLimit(1 << 20);
  const Raster mask = test::RandomRaster(pf1bit, 9, 6, random);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    const auto file = IcoFile({IcoBitmap(test::RandomRaster(format, 9, 6, random), &mask)});
    const Raster whole = DecodeIco(file);
    /// What is no picture is refused with a reason, else the picture has a size and an alpha.
    /// Returns its size.
    const auto decode = [](std::vector<uint8_t> bytes) {
      bytes.shrink_to_fit();
      try {
        const Raster raster = DecodeIco(bytes);
        EXPECT_GT(raster.Width(), 0);
        EXPECT_GT(raster.Height(), 0);
        EXPECT_LE(int64_t{raster.Width()} * raster.Height() * 4, 1 << 20);
        EXPECT_EQ(raster.Format(), pf32bit);
        EXPECT_EQ(raster.alphaFormat, afDefined);
        return std::pair(raster.Width(), raster.Height());
      } catch (const Error& error) {
        EXPECT_NE(error.Reason(), "");
        return std::pair(0, 0);
      }
    };
    constexpr size_t kHeaders = 6 + 16 + 40;
    for (size_t length = 0; length < file.size(); ++length) {
      const auto size = decode({file.begin(), file.begin() + static_cast<ptrdiff_t>(length)});
      if (size == std::pair(0, 0)) continue;
      EXPECT_GE(length, kHeaders);
      EXPECT_EQ(size, std::pair(9, 6)) << length;
    }
    for (size_t i = 0; i < std::min<size_t>(file.size(), 130); ++i) {
      for (const int value : {0, 1, 2, 3, 4, 6, 0x7F, 0x80, 0xFF}) {
        auto broken = file;
        broken[i] = static_cast<uint8_t>(value);
        decode(broken);
      }
    }
    EXPECT_TRUE(test::SamePixels(whole, DecodeIco(file))) << format;
  }
  SetPictureMemoryLimit(limit);
}

}  // namespace
}  // namespace rasterkit
