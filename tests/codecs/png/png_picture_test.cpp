#include <bit>
#include <cstdlib>
#include <cstring>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/metadata/png/png_chunks.h>
#include <rasterkit/metadata/png/png_texts.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/png/png_files.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using detail::PngChunks;
using detail::PngKind;
using testing::ElementsAre;
using testing::IsEmpty;

struct Kind {
  int colorType, bits;
};
constexpr Kind kKinds[] = {{0, 1}, {0, 2}, {0, 4}, {0, 8}, {0, 16}, {2, 8}, {2, 16}, {3, 1},
                           {3, 2}, {3, 4}, {3, 8}, {4, 8}, {4, 16}, {6, 8}, {6, 16}};

int BandsOf(int colorType) {
  constexpr int kBands[] = {1, 0, 3, 1, 2, 0, 4};
  return kBands[colorType];
}

ByteList RandomBytes(size_t count, std::mt19937& random) {
  ByteList bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

/// A file of random samples; its palette has random colors.
ByteList RandomFile(Kind kind, uint32_t width, uint32_t height, std::mt19937& random,
                    const ByteList& before = {}) {
  const size_t rowBytes =
      (width * static_cast<uint32_t>(kind.bits * BandsOf(kind.colorType)) + 7) / 8;
  ByteList palette;
  if (kind.colorType == 3) palette = PngChunk("PLTE", RandomBytes(size_t{3} << kind.bits, random));
  return PngFile(width, height, kind.bits, kind.colorType, RandomBytes(rowBytes * height, random),
                 palette + before);
}

ByteList Written(const Pixels& pixels, const PictureWriting& writing,
                 WrittenPicture* written = nullptr) {
  TMemoryStream stream;
  WrittenPicture result = WritePng(pixels, writing, stream);
  if (written) *written = std::move(result);
  return stream.TakeBytes();
}

ByteList Copied(const ByteList& file, const PictureWriting& writing,
                WrittenPicture* written = nullptr) {
  TMemoryStream stream;
  WrittenPicture result = CopyPng(file, writing, stream);
  if (written) *written = std::move(result);
  return stream.TakeBytes();
}

ByteList ChunksNamed(const ByteList& file, const std::vector<uint32_t>& kinds) {
  ByteList found;
  PngChunks chunks(file);
  while (chunks.Next()) {
    if (std::find(kinds.begin(), kinds.end(), chunks.Chunk().kind) == kinds.end()) continue;
    found.insert(found.end(), chunks.Chunk().whole.begin(), chunks.Chunk().whole.end());
  }
  return found;
}

/// "IHDR 13, IDAT 40, IEND 0".
std::string ChunkList(const ByteList& file) {
  std::string list;
  PngChunks chunks(file);
  while (chunks.Next()) {
    if (!list.empty()) list += ", ";
    for (int shift = 24; shift >= 0; shift -= 8) {
      list += static_cast<char>(chunks.Chunk().kind >> shift);
    }
    list += ' ';
    list += std::to_string(chunks.Chunk().data.size());
  }
  return list;
}

ByteList PixelChunks(const ByteList& file) {
  return ChunksNamed(file, {PngKind("IHDR"), PngKind("PLTE"), PngKind("tRNS"), PngKind("IDAT")});
}

testing::AssertionResult SameNumbers(const Samples& a, const Samples& b) {
  if (a.Width() != b.Width() || a.Height() != b.Height() || a.Layout().bands != b.Layout().bands ||
      a.Layout().type != b.Layout().type) {
    return testing::AssertionFailure() << "sizes or layouts differ";
  }
  for (int y = 0; y < a.Height(); y++) {
    if (!std::equal(a.Row(y), a.Row(y) + a.Stride(), b.Row(y))) {
      return testing::AssertionFailure() << "row " << y << " differs";
    }
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult SameContent(const Pixels& a, const Pixels& b) {
  if (a.index() != b.index()) return testing::AssertionFailure() << "raster and samples";
  if (const auto* samples = std::get_if<Samples>(&a)) {
    return SameNumbers(*samples, std::get<Samples>(b));
  }
  return SamePixels(std::get<Raster>(a), std::get<Raster>(b));
}

TEST(PngPicture, Should_KeepPixelsAndForm_When_AnyKindIsWritten) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const Kind kind : kKinds) {
    for (const bool interlaced : {false, true}) {
      SCOPED_TRACE("type " + std::to_string(kind.colorType) + ", " + std::to_string(kind.bits) +
                   " bits, interlaced " + std::to_string(interlaced));
      const uint32_t width = 1 + random() % 40, height = 1 + random() % 20;
      const ByteList file = RandomFile(kind, width, height, random);
      const PictureHeader header = ReadPngHeader(file);
      EXPECT_EQ(header.width, static_cast<int>(width));
      EXPECT_EQ(header.height, static_cast<int>(height));
      EXPECT_EQ(std::get<PngForm>(header.form), (PngForm{kind.bits, kind.colorType, false}));
      EXPECT_EQ(header.layout.bits, kind.bits);
      EXPECT_EQ(header.layout.bands, BandsOf(kind.colorType));
      const Pixels pixels = DecodePngPixels(file);
      PictureWriting writing;
      const PngForm wanted{kind.bits, kind.colorType, interlaced};
      writing.form = wanted;
      WrittenPicture written;
      const ByteList again = Written(pixels, writing, &written);
      EXPECT_EQ(std::get<PngForm>(ReadPngHeader(again).form), wanted);
      EXPECT_EQ(std::get<PngForm>(written.form), wanted);
      EXPECT_THAT(written.changes.notes, IsEmpty());
      EXPECT_THAT(written.changes.losses, IsEmpty());
      EXPECT_TRUE(SameContent(pixels, DecodePngPixels(again)));
      EXPECT_EQ(again, Written(pixels, writing)) << "two runs";
    }
  }
}

TEST(PngPicture, Words_Should_BeThoseOfTheFile) {
  const ByteList rows = {0x12, 0x34, 0xFF, 0xFE, 0x00, 0x01, 0x80, 0x00};
  const Pixels gray = DecodePngPixels(PngFile(2, 2, 16, 0, rows));
  const auto& samples = std::get<Samples>(gray);
  EXPECT_EQ(samples.Layout().type, NumberType::uint16);
  const auto word = [&](int x, int y) {
    uint16_t value = 0;
    std::memcpy(&value, samples.Row(y) + 2 * x, 2);
    return value;
  };
  EXPECT_EQ(word(0, 0), 0x1234);
  EXPECT_EQ(word(1, 0), 0xFFFE);
  EXPECT_EQ(word(0, 1), 1);
  EXPECT_EQ(word(1, 1), 0x8000);
}

TEST(PngPicture, Decoded_Should_BeTheRasterOfTheDecoder_When_EightBitsOrLess) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const Kind kind : kKinds) {
    if (kind.bits == 16) continue;
    const ByteList file = RandomFile(kind, 13, 9, random);
    EXPECT_TRUE(SamePixels(DecodePng(file), std::get<Raster>(DecodePngPixels(file))));
  }
}

TEST(PngPicture, KeyColorOfWords_Should_BecomeAlpha) {
  const ByteList key = PngChunk("tRNS", {0x12, 0x34});
  const ByteList file = PngFile(2, 1, 16, 0, {0x12, 0x34, 0x12, 0x35}, key);
  EXPECT_EQ(ReadPngHeader(file).layout.alpha, AlphaKind::transparentColor);
  const Pixels pixels = DecodePngPixels(file);
  const auto& samples = std::get<Samples>(pixels);
  ASSERT_EQ(samples.Layout().bands, 2);
  EXPECT_EQ(samples.Layout().alpha, AlphaKind::straight);
  const auto* words = reinterpret_cast<const uint16_t*>(samples.Row(0));
  EXPECT_THAT(std::vector<uint16_t>(words, words + 4), ElementsAre(0x1234, 0, 0x1235, 0xFFFF));
}

TEST(PngPicture, KeyColor_Should_BeKept_When_BytesAreWritten) {
  const ByteList file =
      PngFile(1, 2, 8, 2, {1, 2, 3, 4, 5, 6}, PngChunk("tRNS", {0, 4, 0, 5, 0, 6}));
  PictureWriting writing;
  writing.form = ReadPngHeader(file).form;
  const ByteList again = Written(DecodePngPixels(file), writing);
  EXPECT_EQ(ChunksNamed(again, {PngKind("tRNS")}), ChunksNamed(file, {PngKind("tRNS")}));
}

TEST(PngPicture, PaletteWithOpacities_Should_BecomeAlphaAndGoBack) {
  const ByteList palette = PngChunk("PLTE", {1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3});
  const ByteList rows = {0x1B, 0xE4};  // 0 1 2 3, 3 2 1 0
  struct Case {
    ByteList opacities;
    bool needsAlpha;
  };
  const Case cases[] = {{{255, 128}, true},        {{0, 0}, true}, {{255, 0}, false}, {{0}, true},
                        {{0, 255, 255, 0}, false}, {{255}, false}};
  for (const Case& one : cases) {
    const ByteList file = PngFile(4, 2, 2, 3, rows, palette + PngChunk("tRNS", one.opacities));
    const PictureHeader header = ReadPngHeader(file);
    const Pixels pixels = DecodePngPixels(file);
    const auto& raster = std::get<Raster>(pixels);
    EXPECT_EQ(raster.Format() == pf32bit, one.needsAlpha);
    EXPECT_EQ(header.layout.alpha,
              one.needsAlpha ? AlphaKind::straight : AlphaKind::transparentColor);
    PictureWriting writing;
    writing.form = header.form;
    WrittenPicture written;
    const ByteList again = Written(pixels, writing, &written);
    EXPECT_EQ(ReadPngHeader(again).form, header.form);
    EXPECT_THAT(written.changes.notes, IsEmpty());
    const Pixels reread = DecodePngPixels(again);
    EXPECT_TRUE(SameContent(pixels, reread));
    if (!one.needsAlpha) continue;
    for (int x = 0; x < 4; x++) {
      const auto index = static_cast<size_t>(x);
      const int expected = index < one.opacities.size() ? one.opacities[index] : 255;
      EXPECT_EQ(raster.Row(0)[4 * x + 3], expected);
      EXPECT_EQ(raster.Row(0)[4 * x], x == 3 ? 3 : 3 * x + 3);
    }
  }
}

TEST(PngPicture, AlphaBesideWhite_Should_StayOpaque_When_WrittenAsPalette) {
  Raster raster(pf32bit, 2, 1);
  std::memset(raster.Row(0), 0xFF, 8);
  raster.alphaFormat = afDefined;
  raster.transparentColor = clWhite;
  PictureWriting writing;
  writing.form = PngForm{8, 3, false};
  const ByteList file = Written(Pixels(std::move(raster)), writing);
  EXPECT_THAT(ChunksNamed(file, {PngKind("tRNS")}), IsEmpty());
}

TEST(PngPicture, Planes_Should_BeBroughtTogether) {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  Samples planes(layout, 5, 4, true), together(layout, 5, 4);
  std::mt19937 random(3);
  for (int y = 0; y < 4; y++) {
    for (int x = 0; x < 5; x++) {
      for (int band = 0; band < 3; band++) {
        const auto value = static_cast<uint16_t>(random());
        std::memcpy(planes.Row(y, band) + 2 * x, &value, 2);
        std::memcpy(together.Row(y) + 6 * x + 2 * band, &value, 2);
      }
    }
  }
  EXPECT_EQ(Written(Pixels(std::move(planes)), {}), Written(Pixels(std::move(together)), {}));
}

TEST(PngPicture, LeastIsWhite_Should_BeInverted) {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.bands = 1;
  layout.model = ColorModel::grayWhiteIsZero;
  Samples samples(layout, 2, 1);
  const uint16_t words[] = {0, 0x1234};
  std::memcpy(samples.Row(0), words, sizeof words);
  const Pixels pixels = DecodePngPixels(Written(Pixels(std::move(samples)), {}));
  const auto* read = reinterpret_cast<const uint16_t*>(std::get<Samples>(pixels).Row(0));
  EXPECT_EQ(read[0], 0xFFFF);
  EXPECT_EQ(read[1], 0xFFFF - 0x1234);
}

TEST(PngPicture, Should_Refuse_When_NoPngFileCanHoldThePixels) {
  PixelLayout layout;
  layout.type = NumberType::float32;
  layout.bits = 32;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  TMemoryStream stream;
  EXPECT_THROW(WritePng(Pixels(Samples(layout, 1, 1)), {}, stream), UnsupportedError);
  layout = {};
  layout.model = ColorModel::cmyk;
  layout.bands = 4;
  EXPECT_THROW(WritePng(Pixels(Samples(layout, 1, 1)), {}, stream), UnsupportedError);
  EXPECT_THROW(WritePng(Pixels(Raster(pf24bit, 0, 0)), {}, stream), FormatError);
  EXPECT_EQ(stream.Size(), 0u);
}

/// An EXIF block with an orientation.
ByteList ExifWith(uint8_t orientation) {
  return {'I', 'I', 42, 0, 8, 0,           0, 0, 1, 0, 0x12, 1, 3,
          0,   1,   0,  0, 0, orientation, 0, 0, 0, 0, 0,    0, 0};
}

PictureText TextOf(const std::string& keyword, const std::string& text) {
  PictureText result;
  result.keyword = keyword;
  result.text = text;
  return result;
}

Metadata FullMetadata() {
  Metadata metadata;
  metadata.exif = ExifWith(6);
  metadata.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
  metadata.iptc = {0x1C, 2, 5, 0, 3, 'a', 'b', 'c'};
  metadata.photoshop = {'8', 'B', 'I', 'M', 4, 10, 0, 0, 0, 0, 0, 1, 1, 0};
  metadata.profile = RgbProfile();
  metadata.comments = {"first",
                       "Gr\xC3\xBC\xC3\x9F"
                       "e",
                       "\xE2\x82\xAC"};
  PictureText packed = TextOf("Author", "M\xC3\xBCller");
  packed.isCompressed = true;
  PictureText foreign = TextOf("Title", "\xE2\x82\xAC");
  foreign.isInternational = foreign.isCompressed = true;
  foreign.language = "de";
  foreign.translatedKeyword = "Titel";
  metadata.texts = {TextOf("Software", "x"), packed, foreign};
  metadata.resolution = {300, 150};
  metadata.pngChunks = {{PngKind("gAMA"), {0, 0, 0xB1, 0x8F}, false},
                        {PngKind("tIME"), {7, 0xE8, 1, 2, 3, 4, 5}, false},
                        {PngKind("abCd"), {1, 2, 3}, false},
                        {PngKind("xyZw"), {}, true}};
  // Chunks of capital last letters are not kept; these two have small ones.
  return metadata;
}

TEST(PngPicture, Metadata_Should_ComeBack_When_WrittenOrCopied) {
  const Raster raster = GradientRaster(pf24bit, 20, 10);
  PictureWriting writing;
  writing.metadata = FullMetadata();
  WrittenPicture written;
  const ByteList file = Written(Pixels(raster.Clone()), writing, &written);
  EXPECT_THAT(written.changes.losses, IsEmpty());
  const PictureHeader header = ReadPngHeader(file);
  EXPECT_THAT(header.warnings, IsEmpty());
  EXPECT_EQ(header.orientation, 6);
  ASSERT_TRUE(header.metadata.profile);
  EXPECT_EQ(*header.metadata.profile, *writing.metadata.profile);
  writing.metadata.profile = header.metadata.profile;
  EXPECT_EQ(header.metadata, writing.metadata);
  EXPECT_TRUE(SamePixels(raster, DecodePng(file)));

  const ByteList copy = Copied(file, writing, &written);
  EXPECT_EQ(ChunkList(copy), ChunkList(file));
  EXPECT_TRUE(copy == file);
  EXPECT_THAT(written.changes.losses, IsEmpty());
  const ByteList bare = Copied(file, {});
  EXPECT_EQ(PixelChunks(bare), PixelChunks(file));
  EXPECT_EQ(ReadPngHeader(bare).metadata, Metadata());
  EXPECT_TRUE(Copied(bare, writing) == file);
}

TEST(PngPicture, WhatHasNoPlace_Should_BeALoss) {
  PictureWriting writing;
  writing.metadata.profile = GrayProfile();
  writing.metadata.jpegSegments = {{0xE4, {1, 2}, false}};
  writing.metadata.tiffTags = {{42112, 2, 1, {0}}};
  writing.metadata.texts = {TextOf("", "x")};
  WrittenPicture written;
  Written(Pixels(GradientRaster(pf24bit, 3, 3)), writing, &written);
  std::vector<LossKind> kinds;
  for (const Loss& loss : written.changes.losses) kinds.push_back(loss.kind);
  EXPECT_THAT(kinds, testing::UnorderedElementsAre(LossKind::profile, LossKind::otherBlock,
                                                   LossKind::otherBlock, LossKind::text));
  const ByteList gray = Written(Pixels(GrayRaster(3, 3)), writing, &written);
  ASSERT_TRUE(ReadPngHeader(gray).metadata.profile);
  EXPECT_EQ(*ReadPngHeader(gray).metadata.profile, *GrayProfile());
}

TEST(PngPicture, ChunksOfOtherPixels_Should_OnlyBeNoted) {
  PictureWriting writing;
  writing.metadata.pngChunks = {{PngKind("bKGD"), {0, 1, 0, 2, 0, 3}, false},
                                {PngKind("sBIT"), {5, 6, 5}, false},
                                {PngKind("hIST"), {0, 1}, false}};
  WrittenPicture written;
  const ByteList file = Written(Pixels(GrayRaster(3, 3)), writing, &written);
  EXPECT_THAT(ReadPngHeader(file).metadata.pngChunks, IsEmpty());
  EXPECT_THAT(written.changes.losses, IsEmpty());
  EXPECT_THAT(written.changes.notes,
              testing::ElementsAre(testing::HasSubstr("bKGD"), testing::HasSubstr("sBIT"),
                                   testing::HasSubstr("hIST")));
}

TEST(PngPicture, Histogram_Should_StayInACopy) {
  PictureWriting writing;
  const ByteList plain = Written(Pixels(GradientRaster(pf8bit, 5, 4)), {});
  writing.metadata.pngChunks = {{PngKind("hIST"), ByteList(512, 1), false}};
  const ByteList counted = Copied(plain, writing);
  const PictureHeader header = ReadPngHeader(counted);
  EXPECT_EQ(header.metadata.pngChunks, writing.metadata.pngChunks);
  EXPECT_THAT(header.hiddenOthers, IsEmpty());
  WrittenPicture written;
  EXPECT_TRUE(Copied(counted, writing, &written) == counted);
  EXPECT_THAT(written.changes.notes, IsEmpty());
}

TEST(PngPicture, Header_Should_FindWhatStandsBehindThePixels) {
  const ByteList plain = PngFile(1, 1, 8, 0, {7});
  const ByteList body(plain.begin(), plain.end() - 12);
  const ByteList file = body + PngChunk("eXIf", ExifWith(8)) + PngChunk("tEXt", {'A', 0, 0xE4}) +
                        PngChunk("prVt", {1}) + PngChunk("prVT", {1, 2}) + PngEnd() +
                        ByteList{1, 2, 3};
  const PictureHeader header = ReadPngHeader(file);
  EXPECT_EQ(header.orientation, 8);
  ASSERT_EQ(header.metadata.texts.size(), 1u);
  EXPECT_EQ(header.metadata.texts[0].text, "\xC3\xA4");
  ASSERT_EQ(header.metadata.pngChunks.size(), 1u);
  EXPECT_TRUE(header.metadata.pngChunks[0].isBehindPixels);
  EXPECT_THAT(header.hiddenOthers,
              ElementsAre("chunk prVT of 2 bytes", "3 bytes after the end of the picture"));
  PictureWriting writing;
  writing.metadata = header.metadata;
  const ByteList copy = Copied(file, writing);
  EXPECT_EQ(ReadPngHeader(copy).metadata, header.metadata);
  EXPECT_EQ(ReadPngHeader(copy).hiddenOthers, header.hiddenOthers);
}

TEST(PngPicture, OldTexts_Should_BecomeBlocks) {
  using std::string_literals::operator""s;
  const auto raw = [](const std::string& name, const std::string& bytes) {
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    const std::string text =
        "Raw profile type " + name + '\0' + detail::RawProfileText(name, {data, bytes.size()});
    return PngChunk("tEXt", ByteList(text.begin(), text.end()));
  };
  const ByteList block = ExifWith(3);
  const std::string exif(block.begin(), block.end());
  const std::string iptc = "8BIM\x04\x04\0\0\0\0\0\x06\x1C\x02\x05\0\x01Q"s;
  const std::string other = "8BIM\x04\x0A\0\0\0\0\0\x01\x01\0"s;
  const PictureHeader header =
      ReadPngHeader(PngFile(1, 1, 8, 0, {7},
                            raw("APP1", "Exif\0\0"s + exif) + raw("iptc", iptc + other) +
                                raw("xmp", "<x/>") + raw("icc", "profile") + raw("other", "x")));
  EXPECT_EQ(header.metadata.exif, block);
  EXPECT_EQ(header.orientation, 3);
  EXPECT_EQ(header.metadata.iptc, (ByteList{0x1C, 2, 5, 0, 1, 'Q'}));
  EXPECT_EQ(header.metadata.photoshop, ByteList(other.begin(), other.end()));
  EXPECT_EQ(header.metadata.xmp, "<x/>");
  EXPECT_TRUE(header.metadata.profile);
  ASSERT_EQ(header.metadata.texts.size(), 1u);
  EXPECT_EQ(header.metadata.texts[0].keyword, "Raw profile type other");
}

TEST(PngPicture, Resolution_Should_BeWhole_When_WithinHalfAUnit) {
  const auto dpi = [](uint32_t x, uint32_t y, uint8_t unit) {
    const ByteList chunk = PngChunk("pHYs", Word32(x) + Word32(y) + ByteList{unit});
    return ReadPngHeader(PngFile(1, 1, 8, 0, {7}, chunk)).metadata;
  };
  EXPECT_EQ(dpi(11811, 2835, 1).resolution, (Resolution{300, 72}));
  EXPECT_NEAR(dpi(2834, 2834, 1).resolution.x, 71.9836, 1e-9);
  EXPECT_FALSE(dpi(4, 3, 0).resolution.IsKnown());
  // A shape of pixels is kept as it is.
  ASSERT_EQ(dpi(4, 3, 0).pngChunks.size(), 1u);
  for (uint32_t value = 1; value < 50000; value++) {
    PictureWriting writing;
    writing.metadata = dpi(value, value, 1);
    if (value % 97 != 0) continue;
    EXPECT_EQ(ChunksNamed(Written(Pixels(GrayRaster(1, 1)), writing), {PngKind("pHYs")}),
              PngChunk("pHYs", Word32(value) + Word32(value) + ByteList{1}));
  }
}

TEST(PngPicture, Frames_Should_BeCountedAndCopied) {
  const ByteList file =
      PngFile(1, 1, 8, 0, {7}, PngChunk("acTL", Word32(3) + Word32(0)) + PngChunk("fcTL", {1, 2}));
  const PictureHeader header = ReadPngHeader(file);
  EXPECT_EQ(header.frames, 3);
  EXPECT_THAT(header.hiddenOthers, IsEmpty());
  EXPECT_EQ(Copied(file, {}), file);
}

TEST(PngPicture, Damage_Should_BeAWarningOrAnError) {
  ByteList file = PngFile(4, 4, 8, 0, ByteList(16, 9), PngChunk("tEXt", {'A', 0, 'b'}));
  const ByteList whole = file;
  // The text's last byte.
  const size_t textAt = 8 + 25 + 8 + 2;
  file[textAt] ^= 1;
  EXPECT_THAT(ReadPngHeader(file).warnings,
              ElementsAre("PNG: the checksum of tEXt is wrong, it is skipped"));
  EXPECT_THAT(ReadPngHeader(file).metadata.texts, IsEmpty());
  file = whole;
  file[20] ^= 1;
  EXPECT_THROW(ReadPngHeader(file), FormatError);
  file = ByteList(whole.begin(), whole.end() - 12);
  EXPECT_THAT(ReadPngHeader(file).warnings, ElementsAre("PNG: the file is cut off"));
  EXPECT_TRUE(ReadPngHeader(file).isCutOff);
  EXPECT_FALSE(ReadPngHeader(whole).isCutOff);
  TMemoryStream stream;
  EXPECT_THROW(CopyPng(file, {}, stream), UnsupportedError);
  EXPECT_EQ(stream.Size(), 0u);
  file = ByteList(whole.begin(), whole.begin() + 33);
  EXPECT_THROW(ReadPngHeader(file), FormatError);
  EXPECT_THROW(ReadPngHeader({}), FormatError);
  for (size_t length = 0; length < whole.size(); length++) {
    try {
      ReadPngHeader(std::span(whole).first(length));
      EXPECT_GT(length, 8u + 25u);
    } catch (const FormatError&) {
    }
  }
}

TEST(PngPicture, InflatedTexts_Should_BeLimited) {
  const ByteList packed = detail::DeflateBytes(ByteList(detail::kMostInflatedBytes + 1, 'a'));
  const ByteList chunk = PngChunk("zTXt", ByteList{'A', 0, 0} + packed);
  EXPECT_LT(chunk.size(), 100000u);
  const PictureHeader header = ReadPngHeader(PngFile(1, 1, 8, 0, {7}, chunk));
  EXPECT_THAT(header.metadata.texts, IsEmpty());
  EXPECT_THAT(header.warnings, ElementsAre("PNG: a text (zTXt) is damaged or too long"));
}

}  // namespace
}  // namespace rasterkit::test
