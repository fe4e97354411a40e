#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;

PixelLayout Layout(NumberType type, int bands, ColorModel model) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = bands;
  layout.model = model;
  return layout;
}

/// A row of samples.
template <class T>
Samples Row(const PixelLayout& layout, const std::vector<T>& values, bool inPlanes = false) {
  Samples samples(layout, static_cast<int>(values.size()) / layout.bands, 1, inPlanes);
  const size_t width = values.size() / static_cast<size_t>(layout.bands);
  for (size_t i = 0; i < values.size(); i++) {
    const size_t pixel = i / static_cast<size_t>(layout.bands);
    const size_t band = i % static_cast<size_t>(layout.bands);
    const size_t place = inPlanes ? band * width + pixel : i;
    std::memcpy(samples.Row(0) + place * sizeof(T), &values[i], sizeof(T));
  }
  return samples;
}

std::vector<int> BytesOfRow(const Raster& raster) {
  return {raster.Row(0), raster.Row(0) + raster.RowBytes()};
}

Raster Shown(Samples samples, const std::string& noData = "", Changes* changes = nullptr) {
  Changes own;
  return VisiblePixels(std::move(samples), noData, changes != nullptr ? *changes : own);
}

std::vector<LossKind> KindsOf(const Changes& changes) {
  std::vector<LossKind> kinds;
  for (const Loss& loss : changes.losses) kinds.push_back(loss.kind);
  return kinds;
}

TEST(VisiblePixels, Raster_Should_StayAsItIs) {
  const Raster raster = GradientRaster(pf32bit, 7, 5);
  Changes changes;
  EXPECT_TRUE(SamePixels(raster, VisiblePixels(raster.Clone(), "", changes)));
  EXPECT_TRUE(changes.losses.empty());
}

TEST(VisiblePixels, EachWord_Should_BeRounded) {
  std::vector<uint16_t> words(65536);
  for (size_t i = 0; i < words.size(); i++) words[i] = static_cast<uint16_t>(i);
  for (const bool isInverted : {false, true}) {
    const auto model = isInverted ? ColorModel::grayWhiteIsZero : ColorModel::gray;
    const Raster raster = Shown(Row(Layout(NumberType::uint16, 1, model), words));
    ASSERT_EQ(raster.Format(), pf8bit);
    EXPECT_TRUE(IsGrayRamp(raster.palette));
    for (size_t i = 0; i < words.size(); i++) {
      const auto light = static_cast<double>(isInverted ? 65535 - i : i);
      ASSERT_EQ(raster.Row(0)[i], std::lround(light / 65535 * 255)) << i;
    }
  }
}

TEST(VisiblePixels, EachDepth_Should_ReachBlackAndWhite) {
  for (int bits = 1; bits <= 16; bits++) {
    PixelLayout layout =
        Layout(bits <= 8 ? NumberType::uint8 : NumberType::uint16, 1, ColorModel::gray);
    layout.bits = bits;
    const auto full = static_cast<uint16_t>((1 << bits) - 1);
    const Raster raster = bits <= 8 ? Shown(Row<uint8_t>(layout, {0, static_cast<uint8_t>(full)}))
                                    : Shown(Row<uint16_t>(layout, {0, full}));
    EXPECT_THAT(BytesOfRow(raster), ElementsAre(0, 255)) << bits;
  }
}

TEST(VisiblePixels, Numbers_Should_BeStretchedWithoutNoData) {
  Changes changes;
  const auto layout = [](NumberType type) { return Layout(type, 1, ColorModel::gray); };
  const auto nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_THAT(BytesOfRow(Shown(Row<double>(layout(NumberType::float64),
                                           {-9999, 10, 20, 30, nan, infinity, -infinity}),
                               "-9999", &changes)),
              ElementsAre(255, 0, 128, 255, 255, 255, 0));
  EXPECT_EQ(KindsOf(changes), (std::vector{LossKind::noData, LossKind::bits}));
  EXPECT_THAT(changes.notes, ElementsAre("numbers from 10 to 30 are shown as black to white"));
  EXPECT_THAT(
      BytesOfRow(Shown(Row<float>(layout(NumberType::float32), {-3.4e38F, 1, 2, 3}), "-3.4e38")),
      ElementsAre(255, 0, 128, 255));
  EXPECT_THAT(BytesOfRow(Shown(Row<int32_t>(layout(NumberType::int32), {-5, 0, 5, 777}), "777")),
              ElementsAre(0, 128, 255, 255));
  EXPECT_THAT(BytesOfRow(Shown(Row<uint32_t>(layout(NumberType::uint32), {0, 7, 9, 11}), "0")),
              ElementsAre(255, 0, 128, 255));
  EXPECT_THAT(BytesOfRow(Shown(Row<int16_t>(layout(NumberType::int16), {-32768, 1, 2}), "-32768")),
              ElementsAre(255, 0, 255));
  EXPECT_THAT(BytesOfRow(Shown(Row<uint16_t>(layout(NumberType::uint16), {0, 65535, 257}), "0")),
              ElementsAre(255, 255, 0));
  EXPECT_THAT(BytesOfRow(Shown(Row<int64_t>(layout(NumberType::int64), {0, 1}))),
              ElementsAre(0, 255));
  EXPECT_THAT(BytesOfRow(Shown(Row<uint16_t>(layout(NumberType::float16), {0x3C00, 0x4000}))),
              ElementsAre(0, 255));
}

TEST(VisiblePixels, UnsignedLeastIsWhite_Should_BeTurnedRound) {
  EXPECT_THAT(BytesOfRow(Shown(Row<uint32_t>(
                  Layout(NumberType::uint32, 1, ColorModel::grayWhiteIsZero), {0, 100, 200}))),
              ElementsAre(255, 128, 0));
  EXPECT_THAT(BytesOfRow(Shown(Row<uint8_t>(
                  Layout(NumberType::uint8, 1, ColorModel::grayWhiteIsZero), {0, 100, 255}))),
              ElementsAre(255, 155, 0));
}

TEST(VisiblePixels, Colors_Should_BeOrderedAndRounded) {
  for (const bool inPlanes : {false, true}) {
    const auto words = Layout(NumberType::uint16, 3, ColorModel::rgb);
    EXPECT_THAT(BytesOfRow(Shown(Row<uint16_t>(words, {0, 257, 65535, 128, 129, 65406}, inPlanes))),
                ElementsAre(255, 1, 0, 254, 1, 0));
    const auto floats = Layout(NumberType::float32, 3, ColorModel::rgb);
    EXPECT_THAT(BytesOfRow(Shown(Row<float>(floats, {-1, 0.5F, 2}, inPlanes))),
                ElementsAre(255, 128, 0));
  }
}

TEST(VisiblePixels, AssociatedAlpha_Should_BeDividedOut) {
  PixelLayout layout = Layout(NumberType::uint8, 4, ColorModel::rgb);
  layout.alpha = AlphaKind::associated;
  const Raster raster = Shown(Row<uint8_t>(layout, {50, 100, 150, 200, 9, 9, 9, 0}));
  EXPECT_EQ(raster.alphaFormat, afDefined);
  EXPECT_THAT(BytesOfRow(raster), ElementsAre(191, 128, 64, 200, 9, 9, 9, 0));
  layout.alpha = AlphaKind::straight;
  EXPECT_THAT(BytesOfRow(Shown(Row<uint8_t>(layout, {50, 100, 150, 200}))),
              ElementsAre(150, 100, 50, 200));
  PixelLayout gray = Layout(NumberType::uint16, 2, ColorModel::gray);
  gray.alpha = AlphaKind::straight;
  EXPECT_THAT(BytesOfRow(Shown(Row<uint16_t>(gray, {257, 514}))), ElementsAre(1, 1, 1, 2));
}

TEST(VisiblePixels, ExtraBands_Should_BeLeftOutAndNamed) {
  PixelLayout layout = Layout(NumberType::uint8, 5, ColorModel::rgb);
  layout.alpha = AlphaKind::straight;
  layout.extraBands = 1;
  Changes changes;
  EXPECT_THAT(BytesOfRow(Shown(Row<uint8_t>(layout, {1, 2, 3, 99, 40}), "", &changes)),
              ElementsAre(3, 2, 1, 40));
  EXPECT_EQ(KindsOf(changes), (std::vector{LossKind::colors}));
}

TEST(VisiblePixels, Inks_Should_DarkenEachOther) {
  Changes changes;
  for (const bool inPlanes : {false, true}) {
    const auto layout = Layout(NumberType::uint8, 4, ColorModel::cmyk);
    EXPECT_THAT(BytesOfRow(Shown(Row<uint8_t>(layout, {0, 0, 0, 0, 255, 0, 100, 128}, inPlanes), "",
                                 &changes)),
                ElementsAre(255, 255, 255, 77, 127, 0));
  }
  EXPECT_THAT(KindsOf(changes), ElementsAre(LossKind::colors, LossKind::colors));
  PixelLayout managed = Layout(NumberType::uint8, 4, ColorModel::cmyk);
  managed.profile = InkProfile();
  // By this profile all inks look alike.
  for (const int byte :
       BytesOfRow(Shown(Row<uint8_t>(managed, {255, 255, 255, 255, 0, 0, 0, 99})))) {
    EXPECT_NEAR(byte, 119, 2);
  }
}

TEST(VisiblePixels, Inks_Should_AgreeInEachWay) {
  std::mt19937 random(5);
  std::vector<uint8_t> values(4 * 5000);
  for (uint8_t& value : values) value = static_cast<uint8_t>(random());
  const auto layout = Layout(NumberType::uint8, 4, ColorModel::cmyk);
  EXPECT_EQ(BytesOfRow(Shown(Row(layout, values))), BytesOfRow(Shown(Row(layout, values, true))));
}

TEST(VisiblePixels, Lab_Should_GiveItsColors) {
  const auto lab = Layout(NumberType::uint8, 3, ColorModel::lab);
  const auto neutral = BytesOfRow(Shown(Row<uint8_t>(lab, {255, 0, 0, 0, 0, 0})));
  for (int i = 0; i < 3; i++) {
    EXPECT_NEAR(neutral[static_cast<size_t>(i)], 255, 1);
    EXPECT_NEAR(neutral[static_cast<size_t>(i + 3)], 0, 1);
  }
  const auto icc = Layout(NumberType::uint8, 3, ColorModel::iccLab);
  EXPECT_EQ(BytesOfRow(Shown(Row<uint8_t>(icc, {255, 128, 128, 0, 128, 128}))), neutral);
  EXPECT_THROW(Shown(Row<uint8_t>(Layout(NumberType::uint8, 3, ColorModel::other), {1, 2, 3})),
               UnsupportedError);
}

std::vector<uint8_t> BytesOfFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Colors of the file as the decoder of bitmaps gives them.
Raster DecodedColors(std::span<const uint8_t> bytes) {
  TSpanStream stream(bytes);
  return PictureOfFrame(DecodeFrame(stream));
}

bool IsWordGray(const Pixels& pixels) {
  const PixelLayout layout = LayoutOf(pixels);
  return layout.type == NumberType::uint16 && layout.model != ColorModel::rgb &&
         layout.alpha == AlphaKind::none;
}

TEST(VisiblePixelsCorpus, Should_EqualTheDecodersOfBitmaps) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int samples = 0, rasters = 0;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const auto bytes = BytesOfFile(CorpusFolder() / entry.at("path"));
    const PictureType type = SniffPictureType(bytes);
    const Codec* codec = FindCodec(type);
    if (codec == nullptr || !codec->IsDecoded()) continue;
    SCOPED_TRACE(entry.at("path"));
    Raster expected;
    Pixels pixels;
    try {
      expected = DecodedColors(bytes);
      TSpanStream stream(bytes);
      pixels = DecodePixels(stream, type);
    } catch (const Error&) {
      continue;
    }
    (std::holds_alternative<Samples>(pixels) ? samples : rasters)++;
    Changes changes;
    // Bitmaps show words by their whole range.
    NumberStretch stretch;
    if (IsWordGray(pixels)) stretch.kind = NumberStretch::Kind::full;
    const Raster shown = VisiblePixels(std::move(pixels), "", changes, stretch);
    EXPECT_TRUE(SameColors(expected, shown));
  }
  EXPECT_GT(samples, 10);
  EXPECT_GT(rasters, 200);
}

}  // namespace
}  // namespace rasterkit::test
