// Files that are truncated, damaged, or claim more than they hold.

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/codecs/jp2/jp2_files.h"
#include "tests/support/memory_limit.h"

namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uint32_t kSrgb = 16;
/// Places in the segment of sizes, from the start of the codestream.
constexpr size_t kWidthAt = 8, kHeightAt = 12, kTileWidthAt = 24, kTileHeightAt = 28,
                 kComponentsAt = 40;

std::string ErrorOf(const ByteList& file) {
  try {
    TSpanStream stream(file);
    DecodeJp2Pixels(stream);
    return "none";
  } catch (const LimitError& error) {
    return "limit: " + error.Reason();
  } catch (const Error& error) {
    return error.Reason();
  }
}

void Put32(ByteList& file, size_t at, uint32_t number) {
  const ByteList bytes = BigEndian32(number);
  std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(at));
}

CodestreamOfJp2 Tiled() {
  CodestreamOfJp2 picture;
  picture.width = picture.height = 48;
  picture.tileWidth = picture.tileHeight = 16;
  picture.mixesColors = true;
  return picture;
}

/// The decoder says the same of each block that is cut off.
TEST(DamagedJp2, Messages_Should_BeFew_When_ManyAreAlike) {
  CodestreamOfJp2 picture;
  picture.width = picture.height = 700;
  const ByteList whole = EncodeCodestream(picture);
  const ByteList cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2));
  TSpanStream stream(cut);
  CodecReport report;
  DecodeJp2Pixels(stream, {}, &report);
  EXPECT_FALSE(report.damage.empty());
  EXPECT_LE(report.damage.size(), 6u);
}

TEST(DamagedJp2, CutFile_Should_GiveItsWholeTiles) {
  const CodestreamOfJp2 picture = Tiled();
  const ByteList whole = EncodeCodestream(picture);
  size_t pictures = 0, errors = 0;
  for (size_t size = 0; size < whole.size() - 2; size += 13) {
    SCOPED_TRACE(size);
    const ByteList cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    CodecReport report;
    try {
      TSpanStream stream(cut);
      const Pixels pixels = DecodeJp2Pixels(stream, {}, &report);
      ++pictures;
      EXPECT_THAT(report.damage, testing::Not(IsEmpty()));
      // The first tile is whole as soon as another one has begun.
      const auto& raster = std::get<Raster>(pixels);
      if (size < whole.size() / 3) continue;
      EXPECT_EQ(raster.Row(3)[3 * 5 + 2], PatternOfJp2(picture.planes[0], 0, 5, 3));
    } catch (const FormatError& error) {
      ++errors;
      EXPECT_EQ(pictures, 0u) << "a shorter file gave pixels: " << error.Reason();
      EXPECT_THAT(error.Reason(), testing::StartsWith("JPEG 2000: "));
    }
  }
  EXPECT_GT(pictures, 100u);
  EXPECT_GT(errors, 5u);
}

TEST(DamagedJp2, MissingTiles_Should_BeWhite) {
  const ByteList whole = EncodeCodestream(Tiled());
  const ByteList half(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2));
  TSpanStream stream(half);
  CodecReport report;
  const Pixels pixels = DecodeJp2Pixels(stream, {}, &report);
  EXPECT_THAT(report.damage, Contains(HasSubstr("of 9 tiles are complete")));
  const auto& raster = std::get<Raster>(pixels);
  for (int x = 32; x < 48; ++x) {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(raster.Row(47)[3 * x + i], 255);
  }
}

TEST(DamagedJp2, AnyBytes_Should_GivePixelsOrAnError) {
  CodestreamOfJp2 picture = Tiled();
  picture.tileWidth = picture.tileHeight = 32;
  const ByteList whole = FileOfJp2(EncodeCodestream(picture), ColorBox(kSrgb));
  const MemoryLimit limit(16 << 20);
  constexpr unsigned kSeed = 20;
  std::mt19937 random(kSeed);
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", case " << i);
    ByteList file = whole;
    for (int change = 0; change < 4; ++change) {
      // Mostly in the headers.
      const size_t most = change % 2 == 0 ? 260 : file.size();
      file[random() % most] = static_cast<uint8_t>(random());
    }
    ErrorOf(file);
  }
}

TEST(HostileJp2, Claims_Should_BeRefusedBeforeMemoryIsTaken) {
  ByteList file = EncodeCodestream({});
  Put32(file, kWidthAt, 2'000'000'000);
  Put32(file, kHeightAt, 2'000'000'000);
  Put32(file, kTileWidthAt, 2'000'000'000);
  Put32(file, kTileHeightAt, 2'000'000'000);
  EXPECT_THAT(ErrorOf(file), HasSubstr("limit: JPEG 2000 picture of 2000000000 x 2000000000"));
  file = EncodeCodestream({});
  Put32(file, kWidthAt, 60000);
  Put32(file, kHeightAt, 60000);
  Put32(file, kTileWidthAt, 1);
  Put32(file, kTileHeightAt, 1);
  EXPECT_THAT(ErrorOf(file), HasSubstr("limit: "));
  Put32(file, kTileWidthAt, 500);
  Put32(file, kTileHeightAt, 500);
  const MemoryLimit limit(uint64_t{64} << 30);
  EXPECT_THAT(ErrorOf(file), HasSubstr("far too small to hold 14400 tiles"));
}

TEST(HostileJp2, Sizes_Should_BeRefused_When_TheyMakeNoSense) {
  const ByteList good = EncodeCodestream({});
  for (const size_t at : {kWidthAt, kHeightAt, kTileWidthAt, kTileHeightAt}) {
    ByteList file = good;
    Put32(file, at, 0);
    EXPECT_EQ(ErrorOf(file), "JPEG 2000: the sizes of the picture and its tiles are invalid") << at;
  }
  ByteList file = good;
  file[kComponentsAt] = file[kComponentsAt + 1] = 0;
  EXPECT_EQ(ErrorOf(file), "JPEG 2000: the number of components is invalid");
  file[kComponentsAt] = 0x3F;
  EXPECT_EQ(ErrorOf(file), "JPEG 2000: the components are cut off");
  file = good;
  file[kComponentsAt + 2] = 0x7F;
  EXPECT_EQ(ErrorOf(file), "JPEG 2000: the bits of a component are invalid");
  file[kComponentsAt + 2] = 35;
  EXPECT_EQ(ErrorOf(file), "JPEG 2000: samples of 36 bits are not decoded, at most 31");
}

TEST(HostileJp2, Boxes_Should_BeRefused_When_TheyContradictThePixels) {
  const ByteList codestream = EncodeCodestream({});
  const ByteList palette = BoxOfJp2("pclr", {0, 1, 1, 7, 9});
  const auto error = [&](const ByteList& boxes) {
    return ErrorOf(FileOfJp2(codestream, Join({ColorBox(kSrgb), boxes})));
  };
  EXPECT_THAT(error(Join({palette, BoxOfJp2("cmap", {0, 9, 1, 0})})), HasSubstr("the file lacks"));
  EXPECT_THAT(error(Join({palette, BoxOfJp2("cmap", {0, 0, 1, 3})})), HasSubstr("the file lacks"));
  EXPECT_EQ(error(BoxOfJp2("pclr", {0, 9, 3, 7, 7, 7, 1})), "JPEG 2000: the palette is cut off");
  EXPECT_EQ(error(BoxOfJp2("pclr", {0, 0, 3, 7, 7, 7, 1})), "JPEG 2000: the palette is damaged");
}

TEST(HostileJp2, Limits_Should_Hold) {
  const ByteList file = EncodeCodestream({});
  Limits limits;
  limits.side = 36;
  {
    const LimitsScope scope(limits);
    EXPECT_THAT(ErrorOf(file), HasSubstr("limit: "));
  }
  limits = {};
  limits.seconds = 0;
  const LimitsScope scope(limits);
  EXPECT_THAT(ErrorOf(file), HasSubstr("limit: "));
}

}  // namespace
}  // namespace rasterkit::test
