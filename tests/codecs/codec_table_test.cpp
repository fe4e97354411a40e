#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

TEST(CodecTable, Types_Should_EachHaveOneRow) {
  std::set<PictureType> types;
  for (const Codec& codec : CodecTable()) {
    EXPECT_TRUE(types.insert(codec.type).second) << codec.name;
    EXPECT_EQ(FindCodec(codec.type), &codec) << codec.name;
  }
  // A new enumerator is missing here until it has a row.
  EXPECT_EQ(types.size(), static_cast<size_t>(kLastPictureType));
  EXPECT_EQ(types.count(PictureType::unknown), 0u);
  EXPECT_EQ(FindCodec(PictureType::unknown), nullptr);
}

TEST(CodecTable, Rows_Should_BeComplete) {
  std::set<std::string> names, extensions;
  for (const Codec& codec : CodecTable()) {
    EXPECT_TRUE(names.insert(codec.name).second) << codec.name;
    EXPECT_NE(codec.matches, nullptr) << codec.name;
    EXPECT_FALSE(codec.extensions.front().empty()) << codec.name;
    for (const std::string_view extension : codec.extensions)
      EXPECT_TRUE(extension.empty() || extensions.insert(std::string(extension)).second)
          << extension;
    const int decoders = (codec.decodeBytes != nullptr) + (codec.decodeStream != nullptr) +
                         (codec.decodeFrame != nullptr);
    EXPECT_LE(decoders, 1) << codec.name;
    EXPECT_EQ(codec.IsDecoded(), decoders == 1) << codec.name;
    EXPECT_TRUE(codec.IsDecoded() || codec.encode == nullptr) << codec.name;
  }
}

TEST(CodecTable, Pdf_Should_BeTheLastRow_When_ItsHeaderMayFollowAnyBytes) {
  EXPECT_EQ(CodecTable().back().type, PictureType::pdf);
}

TEST(FindCodecOfExtension, Should_IgnoreCaseAndDot) {
  const Codec* jpeg = FindCodec(PictureType::jpeg);
  for (const char* extension : {"jpg", ".jpg", "JPEG", ".Jpeg"})
    EXPECT_EQ(FindCodecOfExtension(extension), jpeg) << extension;
  for (const char* extension : {"", ".", "jp", ".jpgx", "..jpg", "ico"})
    EXPECT_EQ(FindCodecOfExtension(extension), nullptr) << extension;
}

/// What comes back after the row's own encoder and signature.
Raster WriteAndRead(const Codec& codec, const Raster& raster, const EncodeOptions& options = {}) {
  TMemoryStream stream;
  codec.encode(raster, stream, options);
  const std::vector<uint8_t> file = stream.TakeBytes();
  EXPECT_EQ(SniffPictureType(file), codec.type);
  TSpanStream input(file);
  return PictureOfFrame(DecodeFrame(input));
}

TEST(CodecTable, Encoders_Should_TakeEveryPixelFormat) {
  for (const Codec& codec : CodecTable()) {
    if (codec.encode == nullptr) continue;
    for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
      SCOPED_TRACE(testing::Message() << codec.name << " " << format);
      const Raster again = WriteAndRead(codec, GradientRaster(format, 21, 9));
      EXPECT_EQ(again.Width(), 21);
      EXPECT_EQ(again.Height(), 9);
    }
  }
}

TEST(CodecTable, Alpha_Should_SurviveWhereTheRowSaysSo) {
  Raster raster = GradientRaster(pf32bit, 5, 3);
  raster.alphaFormat = afDefined;
  for (int x = 0; x < 5; ++x) raster.Row(1)[4 * x + 3] = static_cast<uint8_t>(40 * x + 20);
  for (const Codec& codec : CodecTable()) {
    if (codec.encode == nullptr) continue;
    const Raster again = WriteAndRead(codec, raster);
    const bool hasAlpha = again.Format() == pf32bit && again.alphaFormat == afDefined;
    EXPECT_EQ(hasAlpha, codec.keepsAlpha) << codec.name;
    if (hasAlpha) {
      EXPECT_EQ(again.Row(1)[4 * 2 + 3], 100) << codec.name;
    }
  }
}

TEST(CodecTable, TransparentColor_Should_SurviveWhereTheRowSaysSo) {
  Raster raster = GradientRaster(pf24bit, 5, 3);
  raster.transparentColor = RGB(1, 2, 3);
  for (const Codec& codec : CodecTable()) {
    if (codec.encode == nullptr) continue;
    const Raster again = WriteAndRead(codec, raster);
    EXPECT_EQ(again.transparentColor.has_value(), codec.keepsTransparentColor) << codec.name;
  }
}

TEST(CodecTable, Options_Should_ReachTheEncoder) {
  const Raster raster = GradientRaster(pf24bit, 64, 64);
  const auto size = [&](PictureType type, const EncodeOptions& options) {
    TMemoryStream stream;
    FindCodec(type)->encode(raster, stream, options);
    return stream.Size();
  };
  EncodeOptions other;
  other.quality = 5;
  other.tiff.compression = TiffCompression::none;
  EXPECT_LT(size(PictureType::jpeg, other), size(PictureType::jpeg, {}));
  EXPECT_GT(size(PictureType::tiff, other), size(PictureType::tiff, {}));
}

TEST(DecodePicture, Memory_Should_DecodeAsAStreamDoes) {
  for (const Codec& codec : CodecTable()) {
    if (codec.encode == nullptr || codec.decodeFrame != nullptr) continue;
    TMemoryStream stream;
    codec.encode(GradientRaster(pf24bit, 13, 7), stream, {});
    stream.SetPosition(0);
    const Raster fromStream = DecodePicture(stream);
    const Raster fromMemory = DecodePicture(stream.Bytes());
    ASSERT_EQ(fromMemory.Height(), fromStream.Height()) << codec.name;
    for (int y = 0; y < fromStream.Height(); ++y)
      EXPECT_TRUE(
          std::equal(fromStream.Row(y), fromStream.Row(y) + fromStream.Stride(), fromMemory.Row(y)))
          << codec.name;
  }
}

TEST(DecodePicture, Memory_Should_BeRefused_When_NoRowDecodesIt) {
  const std::vector<uint8_t> pdf = {'%', 'P', 'D', 'F', '-', '1'}, text = {'a', 'b'};
  EXPECT_THROW(DecodePicture(pdf), UnsupportedError);
  EXPECT_THROW(DecodePicture(text), FormatError);
  EXPECT_THROW(DecodePicture(std::span<const uint8_t>()), FormatError);
}

}  // namespace
}  // namespace rasterkit::test
