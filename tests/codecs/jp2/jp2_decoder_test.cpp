// Every kind of pixels comes back as it was encoded.

#include <cmath>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/pictures/sources/decoded_kind.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jp2/jp2_files.h"
#include "tests/support/profiles.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

constexpr uint32_t kCmyk = 12, kLab = 14, kSrgb = 16, kGray = 17, kYcc = 18;

Pixels Decode(const ByteList& file, int threads = 1) {
  TSpanStream stream(file);
  FrameOptions options;
  options.threads = threads;
  CodecReport report;
  Pixels pixels = DecodeJp2Pixels(stream, options, &report);
  EXPECT_THAT(report.damage, testing::IsEmpty());
  // What the header says comes.
  TSpanStream again(file);
  const PictureHeader header = ReadJp2Header(again);
  EXPECT_EQ(header.width, WidthOf(pixels));
  EXPECT_EQ(header.height, HeightOf(pixels));
  const auto kind = detail::DecodedKindOf(PictureType::jp2, header.layout);
  EXPECT_EQ(kind.isRaster, std::holds_alternative<Raster>(pixels));
  const PixelLayout layout = LayoutOf(pixels);
  EXPECT_EQ(kind.layout.type, layout.type);
  EXPECT_EQ(kind.layout.bits, layout.bits);
  EXPECT_EQ(kind.layout.bands, layout.bands);
  EXPECT_EQ(kind.layout.model, layout.model);
  EXPECT_EQ(kind.layout.alpha, layout.alpha);
  EXPECT_EQ(kind.layout.extraBands, layout.extraBands);
  return pixels;
}

std::string ErrorOf(const ByteList& file) {
  try {
    TSpanStream stream(file);
    DecodeJp2Pixels(stream);
    return "none";
  } catch (const UnsupportedError& error) {
    return "unsupported: " + error.Reason();
  } catch (const FormatError& error) {
    return error.Reason();
  }
}

/// The index or gray of a pixel of 1 to 8 bits.
int IndexAt(const Raster& raster, int x, int y) {
  const int bits = StoredBitsPerPixel(raster.Format());
  return raster.Row(y)[x * bits / 8] >> (8 - bits - x * bits % 8) & ((1 << bits) - 1);
}

template <class Number>
Number NumberAt(const Samples& samples, int x, int y, int band) {
  Number number;
  const size_t at =
      static_cast<size_t>(x) * samples.PixelBytes() + static_cast<size_t>(band) * sizeof(Number);
  std::memcpy(&number, samples.Row(y) + at, sizeof number);
  return number;
}

CodestreamOfJp2 GrayOf(int bits, bool isSigned = false) {
  CodestreamOfJp2 picture;
  picture.planes = {{bits, isSigned}};
  return picture;
}

TEST(DecodeJp2, Grays_Should_StayARaster_When_BitsAreThoseOfOne) {
  for (const int bits : {1, 4, 8}) {
    SCOPED_TRACE(bits);
    const CodestreamOfJp2 picture = GrayOf(bits);
    const Pixels pixels = Decode(FileOfJp2(EncodeCodestream(picture), ColorBox(kGray)));
    const auto& raster = std::get<Raster>(pixels);
    EXPECT_EQ(raster.palette, GrayPalette(1 << bits));
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        ASSERT_EQ(IndexAt(raster, x, y), PatternOfJp2(picture.planes[0], 0, x, y)) << x << " " << y;
      }
    }
  }
}

TEST(DecodeJp2, Numbers_Should_StaySamples_When_BitsAreOthers) {
  for (const int bits : {2, 6, 9, 12, 16, 20}) {
    SCOPED_TRACE(bits);
    const CodestreamOfJp2 picture = GrayOf(bits);
    const Pixels pixels = Decode(EncodeCodestream(picture));
    const auto& samples = std::get<Samples>(pixels);
    EXPECT_EQ(samples.Layout().bits, bits);
    EXPECT_EQ(samples.Layout().model, ColorModel::gray);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const int expected = PatternOfJp2(picture.planes[0], 0, x, y);
        const size_t bytes = BytesOf(samples.Layout().type);
        const uint32_t number = bytes == 1   ? NumberAt<uint8_t>(samples, x, y, 0)
                                : bytes == 2 ? NumberAt<uint16_t>(samples, x, y, 0)
                                             : NumberAt<uint32_t>(samples, x, y, 0);
        ASSERT_EQ(number, static_cast<uint32_t>(expected)) << x << " " << y;
      }
    }
  }
}

TEST(DecodeJp2, SignedNumbers_Should_KeepTheirSign) {
  for (const int bits : {8, 13, 16, 21}) {
    SCOPED_TRACE(bits);
    const CodestreamOfJp2 picture = GrayOf(bits, true);
    const Pixels pixels = Decode(EncodeCodestream(picture));
    const auto& samples = std::get<Samples>(pixels);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const size_t bytes = BytesOf(samples.Layout().type);
        const int number = bytes == 1   ? NumberAt<int8_t>(samples, x, y, 0)
                           : bytes == 2 ? NumberAt<int16_t>(samples, x, y, 0)
                                        : NumberAt<int32_t>(samples, x, y, 0);
        ASSERT_EQ(number, PatternOfJp2(picture.planes[0], 0, x, y)) << x << " " << y;
      }
    }
  }
}

void ExpectColors(const Pixels& pixels, const CodestreamOfJp2& picture,
                  const std::array<int, 4>& planes) {
  const auto& raster = std::get<Raster>(pixels);
  const int bytes = raster.Format() == pf32bit ? 4 : 3;
  const std::array<int, 4> place = {2, 1, 0, 3};
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      for (int i = 0; i < bytes; ++i) {
        const auto plane = static_cast<size_t>(planes[static_cast<size_t>(i)]);
        ASSERT_EQ(raster.Row(y)[x * bytes + place[static_cast<size_t>(i)]],
                  PatternOfJp2(picture.planes[plane], static_cast<int>(plane), x, y))
            << x << " " << y << " " << i;
      }
    }
  }
}

TEST(DecodeJp2, Colors_Should_BeTrue_When_TilesAndOffsetsAreOdd) {
  for (const bool mixes : {false, true}) {
    for (const int tile : {0, 8, 11, 64}) {
      for (const int offset : {0, 5}) {
        SCOPED_TRACE(testing::Message() << mixes << " " << tile << " " << offset);
        CodestreamOfJp2 picture;
        picture.mixesColors = mixes;
        picture.tileWidth = tile;
        picture.tileHeight = tile + (tile > 0 ? 3 : 0);
        picture.left = offset;
        picture.top = offset * 2;
        const ByteList codestream = EncodeCodestream(picture);
        ExpectColors(Decode(codestream), picture, {0, 1, 2, 3});
        ExpectColors(Decode(FileOfJp2(codestream, ColorBox(kSrgb)), 3), picture, {0, 1, 2, 3});
      }
    }
  }
}

TEST(DecodeJp2, Channels_Should_BeInTheirOrder_When_TheyAreDefined) {
  CodestreamOfJp2 picture;
  picture.planes.resize(4);
  const ByteList codestream = EncodeCodestream(picture);
  // Alpha first, then blue, green, red.
  const ByteList boxes =
      Join({ColorBox(kSrgb), DefinitionBox({{0, 1, 0}, {1, 0, 3}, {2, 0, 2}, {3, 0, 1}})});
  const Pixels pixels = Decode(FileOfJp2(codestream, boxes));
  EXPECT_EQ(std::get<Raster>(pixels).alphaFormat, afDefined);
  ExpectColors(pixels, picture, {3, 2, 1, 0});
}

TEST(DecodeJp2, FourthBand_Should_StayANumber_When_NothingSaysThatItIsOpacity) {
  CodestreamOfJp2 picture;
  picture.planes.resize(4);
  const Pixels pixels = Decode(FileOfJp2(EncodeCodestream(picture), ColorBox(kSrgb)));
  const auto& samples = std::get<Samples>(pixels);
  EXPECT_EQ(samples.Layout().extraBands, 1);
  EXPECT_EQ(samples.Layout().alpha, AlphaKind::none);
  for (int band = 0; band < 4; ++band) {
    EXPECT_EQ(NumberAt<uint8_t>(samples, 20, 11, band),
              PatternOfJp2(picture.planes[0], band, 20, 11));
  }
}

TEST(DecodeJp2, MultipliedColors_Should_BeSaid) {
  CodestreamOfJp2 picture;
  picture.planes.resize(4);
  const ByteList boxes =
      Join({ColorBox(kSrgb), DefinitionBox({{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 2, 0}})});
  const Pixels pixels = Decode(FileOfJp2(EncodeCodestream(picture), boxes));
  EXPECT_EQ(std::get<Samples>(pixels).Layout().alpha, AlphaKind::associated);
}

TEST(DecodeJp2, Inks_Should_BeInks) {
  CodestreamOfJp2 picture;
  picture.planes.resize(4);
  const Pixels pixels = Decode(FileOfJp2(EncodeCodestream(picture), ColorBox(kCmyk)));
  const auto& samples = std::get<Samples>(pixels);
  EXPECT_EQ(samples.Layout().model, ColorModel::cmyk);
  EXPECT_EQ(NumberAt<uint8_t>(samples, 3, 5, 3), PatternOfJp2(picture.planes[3], 3, 3, 5));
}

/// BT.601 in floating point.
std::array<int, 3> RgbOf(double y, double cb, double cr) {
  const auto byte = [](double value) {
    return static_cast<int>(std::clamp(std::round(value), 0.0, 255.0));
  };
  return {byte(y + 1.402 * (cr - 128)), byte(y - 0.344136 * (cb - 128) - 0.714136 * (cr - 128)),
          byte(y + 1.772 * (cb - 128))};
}

void ExpectYcc(const ByteList& file, const CodestreamOfJp2& picture) {
  const Pixels pixels = Decode(file);
  const auto& raster = std::get<Raster>(pixels);
  const auto at = [&](int plane, int x, int y) {
    const PlaneOfJp2& one = picture.planes[static_cast<size_t>(plane)];
    // Counted from the first sample of the plane.
    const int firstX = (picture.left + one.stepX - 1) / one.stepX;
    const int firstY = (picture.top + one.stepY - 1) / one.stepY;
    const int column = std::max((x + picture.left) / one.stepX - firstX, 0);
    const int row = std::max((y + picture.top) / one.stepY - firstY, 0);
    return PatternOfJp2(one, plane, column, row);
  };
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const auto color = RgbOf(at(0, x, y), at(1, x, y), at(2, x, y));
      const uint8_t* pixel = raster.Row(y) + 3 * x;
      ASSERT_EQ(pixel[2], color[0]) << x << " " << y;
      ASSERT_EQ(pixel[1], color[1]) << x << " " << y;
      ASSERT_EQ(pixel[0], color[2]) << x << " " << y;
    }
  }
}

TEST(DecodeJp2, Chroma_Should_BecomeColors_When_ItIsCoarse) {
  for (const int stepX : {1, 2}) {
    for (const int stepY : {1, 2}) {
      for (const int offset : {0, 1, 6}) {
        SCOPED_TRACE(testing::Message() << stepX << " " << stepY << " " << offset);
        CodestreamOfJp2 picture;
        picture.left = offset;
        picture.top = offset;
        picture.planes = {{}, {8, false, stepX, stepY}, {8, false, stepX, stepY}};
        const ByteList codestream = EncodeCodestream(picture);
        ExpectYcc(FileOfJp2(codestream, ColorBox(kYcc)), picture);
        // A raw codestream does not name its colors.
        if (stepX == 2) ExpectYcc(codestream, picture);
      }
    }
  }
}

TEST(DecodeJp2, Palette_Should_StayOne) {
  for (const int bits : {1, 4, 8}) {
    SCOPED_TRACE(bits);
    const CodestreamOfJp2 picture = GrayOf(bits);
    const int entries = 1 << bits;
    ByteList palette = Join({BigEndian16(entries), {3, 7, 7, 7}});
    for (int i = 0; i < entries; ++i) {
      palette = Join({palette,
                      {static_cast<uint8_t>(i * 5), static_cast<uint8_t>(255 - i),
                       static_cast<uint8_t>(i * 3 + 1)}});
    }
    const ByteList boxes = Join({ColorBox(kSrgb), BoxOfJp2("pclr", palette),
                                 BoxOfJp2("cmap", {0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1, 2})});
    const Pixels pixels = Decode(FileOfJp2(EncodeCodestream(picture), boxes));
    const auto& raster = std::get<Raster>(pixels);
    EXPECT_EQ(StoredBitsPerPixel(raster.Format()), bits);
    ASSERT_EQ(raster.palette.Count(), entries);
    EXPECT_EQ(raster.palette.Entry(1).peRed, 5);
    EXPECT_EQ(raster.palette.Entry(1).peGreen, 254);
    EXPECT_EQ(raster.palette.Entry(1).peBlue, 4);
    EXPECT_EQ(IndexAt(raster, 7, 9), PatternOfJp2(picture.planes[0], 0, 7, 9));
  }
}

TEST(DecodeJp2, PaletteWithOpacity_Should_BecomeColors) {
  const CodestreamOfJp2 picture = GrayOf(2);
  ByteList palette = Join({BigEndian16(4), {4, 7, 7, 7, 7}});
  for (uint8_t i = 0; i < 16; ++i) palette.push_back(static_cast<uint8_t>(i * 16));
  const ByteList boxes = Join({ColorBox(kSrgb), BoxOfJp2("pclr", palette),
                               BoxOfJp2("cmap", {0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1, 2, 0, 0, 1, 3}),
                               DefinitionBox({{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 1, 0}})});
  const Pixels pixels = Decode(FileOfJp2(EncodeCodestream(picture), boxes));
  const auto& raster = std::get<Raster>(pixels);
  ASSERT_EQ(raster.Format(), pf32bit);
  const int index = PatternOfJp2(picture.planes[0], 0, 7, 9);
  EXPECT_EQ(raster.Row(9)[4 * 7 + 2], index * 64);
  EXPECT_EQ(raster.Row(9)[4 * 7 + 3], index * 64 + 48);
}

TEST(DecodeJp2, Opacity_Should_FillItsRange_When_ItHasFewerBits) {
  CodestreamOfJp2 picture;
  picture.planes = {{}, {}, {}, {1, false}};
  const ByteList boxes =
      Join({ColorBox(kSrgb), DefinitionBox({{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 1, 0}})});
  const Pixels pixels = Decode(FileOfJp2(EncodeCodestream(picture), boxes));
  const auto& raster = std::get<Raster>(pixels);
  for (int x = 0; x < picture.width; ++x) {
    EXPECT_EQ(raster.Row(4)[4 * x + 3], 255 * PatternOfJp2(picture.planes[3], 3, x, 4));
  }
}

TEST(DecodeJp2, Colors_Should_BeRefusedInWords_When_TheyAreNotRead) {
  const ByteList codestream = EncodeCodestream({});
  EXPECT_EQ(ErrorOf(FileOfJp2(codestream, ColorBox(kLab))),
            "unsupported: JPEG 2000: pictures in L*a*b* colors are not decoded");
  EXPECT_EQ(ErrorOf(FileOfJp2(codestream, ColorBox(99))),
            "unsupported: JPEG 2000: pictures in the color space 99 are not decoded");
}

TEST(DecodeJp2, Pixels_Should_EqualThoseOfThePeer) {
  if (std::system("command -v opj_decompress > /dev/null 2>&1") != 0) {
    GTEST_SKIP() << "opj_decompress is not installed";
  }
  const TempFolder folder;
  for (const int tile : {0, 13}) {
    CodestreamOfJp2 picture;
    picture.width = 61;
    picture.height = 45;
    picture.mixesColors = true;
    picture.tileWidth = picture.tileHeight = tile;
    const ByteList file = FileOfJp2(EncodeCodestream(picture), ColorBox(kSrgb));
    const std::string name = folder.Write("a.jp2", file);
    const std::string command =
        "opj_decompress -i '" + name + "' -o '" + folder / "a.ppm" + "' > /dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string peer = ReadFile(folder / "a.ppm");
    const size_t bytes = 3U * 61 * 45;
    ASSERT_GT(peer.size(), bytes);
    const Pixels pixels = Decode(file);
    const auto& raster = std::get<Raster>(pixels);
    size_t at = peer.size() - bytes;
    for (int y = 0; y < 45; ++y) {
      for (int x = 0; x < 61; ++x, at += 3) {
        for (size_t i = 0; i < 3; ++i) {
          ASSERT_EQ(raster.Row(y)[3 * x + 2 - static_cast<int>(i)],
                    static_cast<uint8_t>(peer[at + i]))
              << x << " " << y;
        }
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
