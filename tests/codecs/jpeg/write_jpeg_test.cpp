#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/codecs/jpeg/jpeg_segments_of_tests.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::IsEmpty;
using Component = JpegForm::Component;

struct Written {
  std::vector<uint8_t> file;
  WrittenPicture facts;
};

Written Write(const Pixels& pixels, const PictureWriting& writing = {}) {
  TMemoryStream stream;
  Written written;
  written.facts = WriteJpeg(pixels, writing, stream);
  written.file = stream.TakeBytes();
  return written;
}

const JpegForm& FormOf(const WrittenPicture& picture) {
  return std::get<JpegForm>(picture.form);
}

std::vector<LossKind> KindsOf(const Changes& changes) {
  std::vector<LossKind> kinds;
  for (const Loss& loss : changes.losses) kinds.push_back(loss.kind);
  return kinds;
}

/// A form with random tables.
JpegForm RandomForm(std::mt19937& random, std::vector<Component> components) {
  JpegForm form;
  for (const Component& component : components) {
    auto& table = form.tables[static_cast<size_t>(component.table)];
    if (table) continue;
    table.emplace();
    for (uint16_t& step : *table) step = static_cast<uint16_t>(1 + random() % 255);
  }
  form.components = std::move(components);
  return form;
}

TEST(WriteJpeg, Form_Should_BeThatOfTheSource) {
  std::mt19937 random(7);
  const Raster colors = GradientRaster(pf24bit, 67, 41);
  for (const int h : {1, 2, 4}) {
    for (const int v : {1, 2}) {
      for (const bool progressive : {false, true}) {
        for (const bool arithmetic : {false, true}) {
          JpegForm form = RandomForm(random, {{1, h, v, 0}, {2, 1, 1, 1}, {3, 1, 1, 2}});
          form.progressive = progressive;
          form.arithmetic = arithmetic;
          form.restartInterval = h == 2 ? 3 : 0;
          PictureWriting writing;
          writing.form = form;
          const Written written = Write(colors.Clone(), writing);
          EXPECT_EQ(FormOf(written.facts), form);
          EXPECT_EQ(std::get<JpegForm>(ReadJpegHeader(written.file).form), form);
          EXPECT_EQ(DecodeJpeg(written.file).Width(), 67);
          EXPECT_THAT(written.facts.changes.losses, IsEmpty());
        }
      }
    }
  }
}

TEST(WriteJpeg, WideSteps_Should_StayAsTheyAre) {
  std::mt19937 random(8);
  JpegForm form = RandomForm(random, {{1, 1, 1, 0}});
  (*form.tables[0])[63] = 1000;
  PictureWriting writing;
  writing.form = form;
  EXPECT_EQ(FormOf(Write(GrayRaster(20, 30), writing).facts), form);
}

TEST(WriteJpeg, Gray_Should_TakeTheLuminanceTable_When_TheSourceIsColored) {
  std::mt19937 random(9);
  PictureWriting writing;
  const JpegForm form = RandomForm(random, {{1, 2, 2, 0}, {2, 1, 1, 1}, {3, 1, 1, 1}});
  writing.form = form;
  const JpegForm gray = FormOf(Write(GrayRaster(33, 20), writing).facts);
  ASSERT_EQ(gray.components.size(), 1u);
  EXPECT_EQ(gray.components[0], (Component{1, 1, 1, 0}));
  EXPECT_EQ(gray.tables[0], form.tables[0]);
}

TEST(WriteJpeg, Chroma_Should_BeHalvedUpToQuality90_When_TheSourceIsNoJpeg) {
  const Raster colors = GradientRaster(pf24bit, 20, 20);
  for (const int quality : {1, 75, 90, 91, 100}) {
    PictureWriting writing;
    writing.quality = quality;
    const Written written = Write(colors.Clone(), writing);
    const bool isHalved = quality <= 90;
    EXPECT_EQ(FormOf(written.facts).components[0].h, isHalved ? 2 : 1) << quality;
    EXPECT_EQ(KindsOf(written.facts.changes),
              isHalved ? std::vector{LossKind::chroma} : std::vector<LossKind>{});
  }
  const Written usual = Write(colors.Clone());
  PictureWriting writing;
  writing.quality = 90;
  EXPECT_EQ(usual.file, Write(colors.Clone(), writing).file);
}

TEST(WriteJpeg, Chroma_Should_BeAsAskedFor) {
  const Raster colors = GradientRaster(pf24bit, 20, 20);
  struct Case {
    int x, y;
  };
  for (const Case& sampling : {Case{1, 1}, {2, 1}, {2, 2}, {1, 2}, {4, 1}}) {
    PictureWriting writing;
    writing.chromaX = sampling.x;
    writing.chromaY = sampling.y;
    const Written written = Write(colors.Clone(), writing);
    EXPECT_EQ(FormOf(written.facts).components[0], (Component{1, sampling.x, sampling.y, 0}));
    EXPECT_THAT(written.facts.changes.losses, IsEmpty());
  }
  PictureWriting writing;
  writing.chromaX = 3;
  writing.chromaY = 4;
  EXPECT_THROW(Write(colors.Clone(), writing), RangeError);
}

TEST(WriteJpeg, Quality_Should_ReplaceTablesAndKeepTheRestOfTheForm) {
  std::mt19937 random(10);
  JpegForm form = RandomForm(random, {{1, 1, 2, 0}, {2, 1, 1, 1}, {3, 1, 1, 1}});
  form.progressive = true;
  PictureWriting writing;
  writing.form = form;
  writing.quality = 75;
  const JpegForm written = FormOf(Write(GradientRaster(pf24bit, 20, 20), writing).facts);
  EXPECT_EQ(written.components, form.components);
  EXPECT_TRUE(written.progressive);
  EXPECT_EQ((*written.tables[0])[0], 8);
}

TEST(WriteJpeg, Sampling_Should_BeFull_When_TheLibraryCannotWriteThatOfTheSource) {
  std::mt19937 random(11);
  PictureWriting writing;
  writing.form = RandomForm(random, {{1, 3, 1, 0}, {2, 2, 1, 1}, {3, 1, 1, 1}});
  const Written written = Write(GradientRaster(pf24bit, 20, 20), writing);
  for (const Component& component : FormOf(written.facts).components) {
    EXPECT_EQ(component.h * component.v, 1);
  }
  EXPECT_EQ(written.facts.changes.notes.size(), 1u);
}

TEST(WriteJpeg, PlainRgb_Should_StayPlain) {
  for (const bool adobe : {false, true}) {
    JpegRecipe recipe{.width = 30, .height = 20, .file = JCS_RGB, .adobeMarker = adobe};
    const auto source = MakeJpeg(recipe);
    const PictureHeader header = ReadJpegHeader(source);
    PictureWriting writing;
    writing.form = header.form;
    writing.metadata = header.metadata;
    const Written written = Write(DecodeJpegPixels(source), writing);
    EXPECT_EQ(written.facts.form, header.form);
    EXPECT_EQ(ReadJpegHeader(written.file).metadata.hasJfif, false);
    const Raster before = DecodeJpeg(source), after = DecodeJpeg(written.file);
    for (int y = 0; y < 20; y++) {
      for (size_t i = 0; i < before.RowBytes(); i++) {
        ASSERT_NEAR(before.Row(y)[i], after.Row(y)[i], 6);
      }
    }
  }
}

TEST(WriteJpeg, Inks_Should_StayInks) {
  for (const J_COLOR_SPACE space : {JCS_CMYK, JCS_YCCK}) {
    for (const bool adobe : {true, false}) {
      if (space == JCS_YCCK && !adobe) continue;
      JpegRecipe recipe{.width = 30,
                        .height = 20,
                        .pixels = JCS_CMYK,
                        .file = space,
                        .components = 4,
                        .adobeMarker = adobe};
      recipe.quality = 100;
      const auto source = MakeJpeg(recipe);
      const PictureHeader header = ReadJpegHeader(source);
      const Pixels pixels = DecodeJpegPixels(source);
      const auto& inks = std::get<Samples>(pixels);
      EXPECT_EQ(inks.Layout().model, ColorModel::cmyk);
      const auto bare = BareDecode(source, JCS_CMYK);
      for (size_t i = 0; i < bare.size(); i++) {
        ASSERT_EQ(inks.Row(0)[i], adobe ? 255 - bare[i] : bare[i]);
      }
      PictureWriting writing;
      writing.form = header.form;
      const Written written = Write(pixels, writing);
      EXPECT_EQ(written.facts.form, header.form);
      const Pixels again = DecodeJpegPixels(written.file);
      for (size_t i = 0; i < bare.size(); i++) {
        ASSERT_NEAR(inks.Row(0)[i], std::get<Samples>(again).Row(0)[i], 8);
      }
    }
  }
}

TEST(WriteJpeg, InksOfAnotherFormat_Should_HaveAnAdobeSegment) {
  PixelLayout layout;
  layout.bands = 4;
  layout.model = ColorModel::cmyk;
  for (const bool inPlanes : {false, true}) {
    Samples inks(layout, 16, 16, inPlanes);
    for (int band = 0; band < 4; band++) {
      for (int y = 0; y < 16; y++) {
        for (int x = 0; x < 16; x++) {
          uint8_t* place = inPlanes ? inks.Row(y, band) + x : inks.Row(y) + 4 * x + band;
          *place = static_cast<uint8_t>(50 * band);
        }
      }
    }
    const Written written = Write(std::move(inks));
    EXPECT_EQ(FormOf(written.facts).adobeTransform, 0);
    const Pixels again = DecodeJpegPixels(written.file);
    for (int band = 0; band < 4; band++) {
      EXPECT_NEAR(std::get<Samples>(again).Row(3)[band], 50 * band, 2);
    }
  }
}

TEST(WriteJpeg, Colors_Should_KeepTheChroma_When_TheSourceHadInks) {
  struct Case {
    std::vector<Component> source;
    int h, v;
  };
  const Component full{1, 1, 1, 0};
  const Case cases[] = {{{full, full, full, full}, 1, 1},
                        {{{1, 2, 2, 0}, full, full, {4, 2, 2, 0}}, 2, 2},
                        {{{1, 2, 1, 0}, full, full, {4, 2, 1, 0}}, 2, 1}};
  std::mt19937 random(5);
  for (const auto& [source, h, v] : cases) {
    SCOPED_TRACE(h * 10 + v);
    PictureWriting writing;
    writing.form = RandomForm(random, source);
    const Written written = Write(GradientRaster(pf24bit, 40, 24), writing);
    const auto& components = FormOf(written.facts).components;
    ASSERT_EQ(components.size(), 3u);
    EXPECT_EQ(components[0].h, h);
    EXPECT_EQ(components[0].v, v);
    EXPECT_EQ(components[1].h * components[1].v * components[2].h * components[2].v, 1);
    EXPECT_THAT(written.facts.changes.losses, IsEmpty());
  }
}

TEST(WriteJpeg, Transposed_Should_ExchangeTablesAndSampling) {
  std::mt19937 random(12);
  JpegForm form = RandomForm(random, {{1, 2, 1, 0}, {2, 1, 1, 3}, {3, 1, 1, 3}});
  const JpegForm turned = Transposed(form);
  EXPECT_EQ(turned.components[0], (Component{1, 1, 2, 0}));
  for (const size_t table : {0u, 3u}) {
    for (size_t y = 0; y < 8; y++) {
      for (size_t x = 0; x < 8; x++) {
        EXPECT_EQ((*turned.tables[table])[8 * x + y], (*form.tables[table])[8 * y + x]);
      }
    }
  }
  EXPECT_EQ(Transposed(turned), form);
}

TEST(WriteJpeg, Metadata_Should_ComeBack) {
  PictureWriting writing;
  writing.metadata.exif = SmallExif();
  writing.metadata.xmp = "<x:xmpmeta/>";
  writing.metadata.comments = {"one", "two"};
  writing.metadata.profile = RgbProfile();
  writing.metadata.jpegSegments = {{0xE7, BytesOfText("mine")}};
  writing.metadata.resolution = {300, 300};
  writing.metadata.hasJfif = true;
  writing.quality = 95;
  const Written written = Write(GradientRaster(pf24bit, 20, 20), writing);
  EXPECT_THAT(written.facts.changes.losses, IsEmpty());
  const Metadata again = ReadJpegHeader(written.file).metadata;
  EXPECT_EQ(*again.profile, *writing.metadata.profile);
  Metadata expected = writing.metadata;
  expected.profile = again.profile;
  EXPECT_EQ(again, expected);
  EXPECT_EQ(DecodeJpeg(written.file).resolution, (Resolution{300, 300}));
}

TEST(WriteJpeg, WhatHasNoPlace_Should_BeALoss) {
  PictureWriting writing;
  writing.quality = 95;
  writing.metadata.profile = GrayProfile();
  writing.metadata.tiffTags = {{42112, 2, 1, {0}}};
  writing.metadata.pngChunks = {{0x73504C54, {1}}};
  const Written written = Write(GradientRaster(pf24bit, 20, 20), writing);
  EXPECT_EQ(KindsOf(written.facts.changes),
            (std::vector{LossKind::profile, LossKind::otherBlock, LossKind::otherBlock}));
  EXPECT_FALSE(ReadJpegHeader(written.file).metadata.profile);
}

TEST(WriteJpeg, Should_Refuse_When_TheFormatCannotHoldThePixels) {
  EXPECT_THROW(Write(GradientRaster(pf32bit, 4, 4)), UnsupportedError);
  EXPECT_THROW(Write(GradientRaster(pf1bit, 4, 4)), UnsupportedError);
  PixelLayout words;
  words.type = NumberType::uint16;
  words.bits = 16;
  EXPECT_THROW(Write(Samples(words, 4, 4)), UnsupportedError);
  EXPECT_THROW(Write(Raster(pf24bit, 0, 0)), FormatError);
  EXPECT_THROW(Write(Raster(pf24bit, 65501, 1)), LimitError);
}

TEST(WriteJpeg, Should_End_When_ItsTimeIsOver) {
  Limits limits;
  limits.seconds = 0;
  const LimitsScope scope(limits);
  EXPECT_THROW(Write(GradientRaster(pf24bit, 64, 64)), TimeLimitError);
}

TEST(WriteJpeg, TwoRuns_Should_GiveTheSameBytes) {
  PictureWriting writing;
  writing.metadata.exif = SmallExif();
  const Raster colors = GradientRaster(pf24bit, 300, 200);
  EXPECT_EQ(Write(colors.Clone(), writing).file, Write(colors.Clone(), writing).file);
}

TEST(WriteJpegCorpus, Form_Should_BeThatOfTheSource) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int same = 0;
  for (const auto& path : CorpusJpegs()) {
    SCOPED_TRACE(path);
    const auto bytes = BytesOfFile(path);
    if (bytes.size() > 3'000'000) continue;
    try {
      const Pixels pixels = DecodeJpegPixels(bytes);
      const PictureHeader header = ReadJpegHeader(bytes);
      PictureWriting writing;
      writing.form = header.form;
      writing.metadata = header.metadata;
      const Written written = Write(pixels, writing);
      if (!written.facts.changes.notes.empty()) continue;
      // Tables of no component are not written, others may have steps of 0.
      EXPECT_EQ(FormOf(written.facts).components, std::get<JpegForm>(header.form).components);
      for (const Component& component : FormOf(written.facts).components) {
        const auto table = static_cast<size_t>(component.table);
        EXPECT_EQ(FormOf(written.facts).tables[table],
                  std::get<JpegForm>(header.form).tables[table]);
      }
      EXPECT_EQ(FormOf(written.facts).progressive, std::get<JpegForm>(header.form).progressive);
      // Decoders take an unknown transform as the usual one, and ignore that of gray pictures.
      if (header.layout.bands > 1) {
        EXPECT_EQ(FormOf(written.facts).adobeTransform.has_value(),
                  std::get<JpegForm>(header.form).adobeTransform.has_value());
      }
      same++;
    } catch (const FormatError&) {
    } catch (const UnsupportedError&) {
    }
  }
  EXPECT_GT(same, 100);
}

}  // namespace
}  // namespace rasterkit::test
