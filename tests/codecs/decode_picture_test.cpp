// By content, regardless of the name.

#include <algorithm>
#include <string>

#include <gmock/gmock.h>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/bmp/bmp_test_support.h"
#include "tests/support/corpus.h"
#include "tests/support/pipe_stream.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

std::vector<uint8_t> Png(const Raster& raster) {
  TMemoryStream stream;
  EncodePng(raster, stream);
  return stream.TakeBytes();
}

TEST(DecodePicture, Should_Decode_When_KindIsKnown) {
  const Raster picture = GradientRaster(pf24bit, 47, 33);
  for (const std::vector<uint8_t>& bytes :
       {EncodeToBytes(picture), EncodeJpeg(picture, 90), Png(picture), LossyWebp(picture)}) {
    TMemoryStream stream(bytes);
    const Raster raster = DecodePicture(stream);
    EXPECT_EQ(raster.Format(), pf24bit);
    EXPECT_EQ(raster.Width(), 47);
    EXPECT_EQ(raster.Height(), 33);
    PipeStream pipe(bytes);
    EXPECT_TRUE(SamePixels(raster, DecodePicture(pipe)));
  }
}

TEST(DecodePicture, Should_StartAtPosition_When_StreamHoldsMoreBefore) {
  const Raster picture = GradientRaster(pf24bit, 7, 5);
  for (const std::vector<uint8_t>& file : {EncodeToBytes(picture), Png(picture)}) {
    std::vector<uint8_t> bytes = {'B', 'M', 0xFF};
    bytes.insert(bytes.end(), file.begin(), file.end());
    TMemoryStream stream(bytes);
    stream.SetPosition(3);
    EXPECT_TRUE(SamePixels(picture, DecodePicture(stream)));
  }
}

TEST(DecodePicture, Should_PassWarningsOn_When_DataEndEarly) {
  std::vector<uint8_t> bytes = EncodeToBytes(GradientRaster(pf24bit, 47, 33));
  bytes.resize(bytes.size() / 2);
  TMemoryStream stream(bytes);
  CodecReport report;
  DecodePicture(stream, &report);
  EXPECT_THAT(report.warnings, testing::ElementsAre(HasSubstr("of 33 rows are complete")));
}

std::string UnsupportedReason(const std::string& start) {
  std::vector<uint8_t> bytes(start.begin(), start.end());
  bytes.resize(100);
  TMemoryStream stream(bytes);
  try {
    DecodePicture(stream);
  } catch (const UnsupportedError& error) {
    return error.Reason();
  }
  return "";
}

TEST(DecodePicture, Should_NameTheKind_When_ItIsKnownButNotDecoded) {
  using namespace std::string_literals;
  EXPECT_THAT(UnsupportedReason("II*\0"s), HasSubstr("tiff"));
  EXPECT_THAT(UnsupportedReason("%PDF-1.7"s), HasSubstr("pdf"));
  EXPECT_THAT(UnsupportedReason("\xD7\xCD\xC6\x9A"s), HasSubstr("wmf"));
  EXPECT_THAT(UnsupportedReason("\1\0\0\0"s + std::string(36, '\0') + " EMF"), HasSubstr("emf"));
}

TEST(DecodePicture, Should_SayUnknown_When_DataAreNoPicture) {
  for (const std::string text :
       {"", "B", "10000 0 0 -10000", "BM is not enough of a bitmap file"}) {
    TMemoryStream stream(std::vector<uint8_t>(text.begin(), text.end()));
    EXPECT_THROW(DecodePicture(stream), FormatError);
  }
}

TEST(DecodePicture, Should_StopReading_When_AnEndlessDeviceIsNoPicture) {
  EndlessStream stream;
  EXPECT_THROW(DecodePicture(stream), FormatError);
}

TEST(DecodePicture, Should_DecodeEmbeddedPicture_When_BitmapFileHoldsOne) {
  const Raster picture = GradientRaster(pf24bit, 47, 33);
  for (const uint32_t compression : {4u, 5u}) {
    BmpFile file{.width = 47, .height = 33, .bits = 0, .compression = compression};
    file.pixels = compression == 4 ? EncodeJpeg(picture, 90) : Png(picture);
    file.pixelsPerMeterX = file.pixelsPerMeterY = 11811;
    TMemoryStream stream(file.Bytes());
    const Raster raster = DecodePicture(stream);
    EXPECT_EQ(raster.Width(), 47);
    EXPECT_EQ(raster.Height(), 33);
    if (compression == 5) {
      EXPECT_TRUE(SamePixels(picture, raster));
    }
    EXPECT_DOUBLE_EQ(raster.resolution.x, 11811 * 0.0254);
  }
}

/// Supported files have their stated size; all others give an error.
void ExpectContentDecides(CorpusEntry entry) {
  const std::string path = entry["path"];
  const bool isDecoded =
      path.find("_is_bmp") != std::string::npos || path.find("_is_jpeg") != std::string::npos ||
      path.find("_is_png") != std::string::npos || path.find("_is_gif") != std::string::npos ||
      path.find("_is_webp") != std::string::npos;
  TFileStream stream((CorpusFolder() / path).string());
  if (!isDecoded) {
    EXPECT_THROW(DecodePicture(stream), Error);
    return;
  }
  const Raster raster = DecodePicture(stream);
  EXPECT_EQ(raster.Width(), std::stoi(entry["width"]));
  EXPECT_EQ(raster.Height(), std::stoi(entry["height"]));
}

TEST(DecodePicture, Should_GoByContent_When_ExtensionsAreWrong) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no corpus";
  int files = 0;
  for (const CorpusEntry& entry : CorpusEntries("wrongext")) {
    SCOPED_TRACE(entry.at("path"));
    ASSERT_NO_THROW(ExpectContentDecides(entry));
    ++files;
  }
  EXPECT_GT(files, 0);
}

}  // namespace
}  // namespace rasterkit::test
