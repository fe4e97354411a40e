// Which pixel format the codec gives the pictures of each kind of file.

#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/pipe_stream.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

std::string ErrorOf(TStream& stream) {
  try {
    DecodeFrame(stream);
  } catch (const FormatError& error) {
    return error.what();
  }
  return "none";
}

TEST(DecodeFrame, PixelFormat_Should_SayWhatTheRowsAre) {
  const std::pair<TPixelFormat, WICPixelFormat> cases[] = {
      {pf1bit, GUID_WICPixelFormat1bppIndexed},  {pf4bit, GUID_WICPixelFormat4bppIndexed},
      {pf8bit, GUID_WICPixelFormat8bppIndexed},  {pf15bit, GUID_WICPixelFormat16bppBGR555},
      {pf16bit, GUID_WICPixelFormat16bppBGR565}, {pf24bit, GUID_WICPixelFormat24bppBGR},
      {pf32bit, GUID_WICPixelFormat32bppBGR}};
  std::mt19937 random(6);
  for (const auto& [stored, format] : cases) {
    const Raster source = RandomRaster(stored, 13, 7, random);
    TMemoryStream stream;
    EncodeBmp(source, stream, BmpProfile::embed);
    stream.SetPosition(0);
    const ImagingFrame frame = DecodeFrame(stream);
    EXPECT_EQ(frame.format, format);
    EXPECT_FALSE(frame.isConverted);
    EXPECT_EQ(frame.rows.Format(), stored);
    // Bits without meaning are not kept.
    EXPECT_TRUE(SameColors(source, frame.rows)) << stored;
  }
}

TEST(DecodeFrame, PixelFormat_Should_HaveAlpha_When_ThePictureHas) {
  Raster source = GradientRaster(pf32bit, 13, 7);
  source.alphaFormat = afDefined;
  TMemoryStream stream;
  EncodeBmp(source, stream, BmpProfile::embed);
  stream.SetPosition(0);
  EXPECT_EQ(DecodeFrame(stream).format, GUID_WICPixelFormat32bppBGRA);
}

TEST(DecodeFrame, File_Should_BeRead_When_ItComesThroughAPipe) {
  const Raster source = GradientRaster(pf24bit, 67, 41);
  TMemoryStream tiff, png;
  EncodeTiff(source, tiff);
  EncodePng(source, png);
  for (TMemoryStream* file : {&tiff, &png}) {
    PipeStream pipe(file->TakeBytes());
    EXPECT_TRUE(SamePixels(source, DecodeFrame(pipe).rows));
  }
}

TEST(DecodeFrame, UnknownBytes_Should_BeAnInvalidImage) {
  for (const std::string text : {"", "B", "10000 0 0 -10000"}) {
    TMemoryStream stream(std::vector<uint8_t>(text.begin(), text.end()));
    EXPECT_EQ(ErrorOf(stream), "Invalid image") << text;
  }
  EndlessStream device;
  EXPECT_EQ(ErrorOf(device), "Invalid image");
}

}  // namespace
}  // namespace rasterkit::test
