#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/gif/gif_picture.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/codecs/webp/webp_picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"
#include "tests/support/gif_file.h"
#include "tests/support/profiles.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ByteList = std::vector<uint8_t>;

ByteList operator+(ByteList a, const ByteList& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

ByteList BytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

/// Blocks of an application: its name, then `content` with lengths, or as it is.
ByteList Application(const std::string& name, const ByteList& content) {
  ByteList blocks = {0x21, 0xFF, 11};
  return blocks + BytesOf(name) + content;
}

ByteList XmpBlock(const std::string& packet) {
  ByteList content = BytesOf(packet) + ByteList{1};
  for (int value = 255; value >= 0; value--) content.push_back(static_cast<uint8_t>(value));
  content.push_back(0);
  return Application("XMP DataXMP", content);
}

ByteList Blocks(const ByteList& content) {
  ByteList blocks;
  for (size_t at = 0; at < content.size(); at += 255) {
    const size_t length = std::min<size_t>(255, content.size() - at);
    blocks.push_back(static_cast<uint8_t>(length));
    const auto first = content.begin() + static_cast<long>(at);
    blocks.insert(blocks.end(), first, first + static_cast<long>(length));
  }
  blocks.push_back(0);
  return blocks;
}

TEST(GifHeader, Should_HoldWhatTheFileStates) {
  GifFile file = PlainGif(19, 7, 4);
  file.pictures[0].transparent = 3;
  file.pictures.push_back(file.pictures[0]);
  const ByteList profile = *RgbProfile();
  // Longer than one block, with bytes that are no lengths.
  const std::string packet = "<x:xmpmeta>" + std::string(700, 'a') + "\xC3\xBC</x:xmpmeta>";
  file.extensions = ByteList{0x21, 0xFE} + Blocks(BytesOf("a comment" + std::string(300, '.'))) +
                    XmpBlock(packet) + Application("ICCRGBG1012", Blocks(profile)) +
                    Application("OTHERAPP1.0", Blocks({1, 2}));
  const PictureHeader header = ReadGifHeader(file.Bytes());
  EXPECT_EQ(header.width, 19);
  EXPECT_EQ(header.height, 7);
  EXPECT_EQ(header.frames, 2);
  EXPECT_EQ(header.layout.model, ColorModel::palette);
  EXPECT_EQ(header.layout.alpha, AlphaKind::transparentColor);
  EXPECT_EQ(header.layout.palette, DecodeGif(file.Bytes()).palette);
  EXPECT_THAT(header.metadata.comments, ElementsAre("a comment" + std::string(300, '.')));
  EXPECT_EQ(header.metadata.xmp, packet);
  ASSERT_TRUE(header.metadata.profile);
  EXPECT_EQ(*header.metadata.profile, profile);
  EXPECT_THAT(header.hiddenOthers, ElementsAre("an application block of 4 bytes"));
  EXPECT_THAT(header.warnings, IsEmpty());
}

TEST(GifHeader, EveryCut_Should_BeAWarningOrAnError) {
  GifFile file = PlainGif(19, 7, 4);
  file.extensions = XmpBlock("<x/>");
  const ByteList whole = file.Bytes();
  for (size_t length = 0; length < whole.size(); length++) {
    try {
      EXPECT_THAT(ReadGifHeader(std::span(whole).first(length)).warnings,
                  ElementsAre("GIF: the file is cut off"));
    } catch (const FormatError&) {
      EXPECT_LT(length, whole.size() - 10);
    }
  }
  EXPECT_THAT(ReadGifHeader(whole + ByteList{1, 2, 3}).hiddenOthers,
              ElementsAre("3 bytes after the end of the picture"));
}

TEST(WebpHeader, Should_HoldWhatTheFileStates) {
  const Raster raster = GradientRaster(pf24bit, 20, 18);
  const ByteList profile = *RgbProfile();
  const ByteList exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3,
                         0,   1,   0,  0, 0, 5, 0, 0, 0, 0, 0,    0, 0};
  const ByteList file = WebpFile(WebpHeaderChunk(webpProfile | webpExif | webpXmp, 20, 18) +
                                 WebpChunk("ICCP", profile) + ChunksOfWebp(LossyWebp(raster)) +
                                 WebpChunk("EXIF", BytesOf(std::string("Exif\0\0", 6)) + exif) +
                                 WebpChunk("XMP ", BytesOf("<x/>")));
  const PictureHeader header = ReadWebpHeader(file);
  EXPECT_EQ(header.width, 20);
  EXPECT_EQ(header.height, 18);
  EXPECT_EQ(header.layout.bands, 3);
  EXPECT_EQ(header.orientation, 5);
  EXPECT_EQ(header.metadata.exif, exif);
  EXPECT_EQ(header.metadata.xmp, "<x/>");
  ASSERT_TRUE(header.metadata.profile);
  EXPECT_EQ(*header.metadata.profile, profile);
  EXPECT_THAT(header.warnings, IsEmpty());
  EXPECT_THAT(ReadWebpHeader(file + ByteList{1, 2, 3}).hiddenOthers,
              ElementsAre("3 bytes after the end of the picture"));
  EXPECT_THAT(ReadWebpHeader(std::span(file).first(file.size() - 3)).warnings,
              ElementsAre("WebP: the file is cut off"));
  EXPECT_THROW(ReadWebpHeader(std::span(file).first(20)), FormatError);
}

TEST(WebpHeader, Frames_Should_BeCounted) {
  const Raster raster = GradientRaster(pf24bit, 20, 18);
  const ByteList frame = WebpFrameChunk(0, 0, 20, 18, ChunksOfWebp(LossyWebp(raster)));
  const PictureHeader header = ReadWebpHeader(
      WebpFile(WebpHeaderChunk(webpAnimation | webpAlpha, 40, 30) +
               WebpChunk("ANIM", {255, 255, 255, 255, 0, 0}) + frame + frame + frame));
  EXPECT_EQ(header.frames, 3);
  EXPECT_EQ(header.width, 40);
  EXPECT_EQ(header.height, 30);
  EXPECT_EQ(header.layout.alpha, AlphaKind::straight);
}

TEST(GifWebpHeaderCorpus, Should_AgreeWithTheDecoder) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int count = 0;
  for (const CorpusEntry& entry : CorpusEntries()) {
    const std::string& path = entry.at("path");
    const bool isGif = path.ends_with(".gif") || path.find("_is_gif.") != std::string::npos;
    const bool isWebp = path.ends_with(".webp") || path.find("_is_webp.") != std::string::npos;
    if (!isGif && !isWebp) continue;
    SCOPED_TRACE(path);
    count++;
    const ByteList file = BytesOf(ReadFile((CorpusFolder() / path).string()));
    const Raster raster = isGif ? DecodeGif(file) : DecodeWebp(file);
    const PictureHeader header = isGif ? ReadGifHeader(file) : ReadWebpHeader(file);
    EXPECT_EQ(header.width, raster.Width());
    EXPECT_EQ(header.height, raster.Height());
    EXPECT_EQ(header.layout.BitsPerPixel(), StoredBitsPerPixel(raster.Format()));
    if (isGif) {
      EXPECT_EQ(header.layout.palette, raster.palette);
      EXPECT_EQ(header.layout.alpha == AlphaKind::transparentColor,
                raster.transparentColor.has_value());
    }
    EXPECT_EQ(header.metadata.profile != nullptr, raster.profile != nullptr);
  }
  EXPECT_GE(count, 21);
}

}  // namespace
}  // namespace rasterkit::test
