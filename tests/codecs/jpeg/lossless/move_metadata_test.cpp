#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/lossless/dc_picture.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/raster/stretch/halftone.h>

#include "tests/codecs/jpeg/jpeg_segments_of_tests.h"
#include "tests/codecs/jpeg/lossless/moved_file.h"
#include "tests/support/test_pictures.h"
#include "tests/support/thumbnail_exif.h"

namespace rasterkit::test {
namespace {

using std::string_view_literals::operator""sv;
using testing::IsEmpty;

/// A file of 1400 x 1000 pixels or smaller, with thumbnails of something else in EXIF and
/// Photoshop's resources.
std::vector<uint8_t> FileWithThumbnails(const std::vector<uint8_t>& file) {
  const std::vector<uint8_t> old = EncodeJpeg(GrayRaster(16, 12), 50);
  const ThumbnailExif exif = ExifWithThumbnail(std::string(old.begin(), old.end()));
  std::vector<uint8_t> resource(28, 0);
  resource.insert(resource.end(), old.begin(), old.end());
  ImageResources resources;
  resources.Set(image_resource::kThumbnail, resource);
  const auto photoshop = Joined(BytesOfText("Photoshop 3.0\0"sv), resources.Bytes());
  return WithHead(file, Joined(Segment(0xE1, exif.content), Segment(0xED, photoshop)));
}

PictureWriting WritingOf(std::span<const uint8_t> file, int bits) {
  const PictureHeader header = ReadJpegHeader(file);
  PictureWriting writing;
  writing.metadata = header.metadata;
  const auto part = MovableJpegPart(std::get<JpegForm>(header.form), header.width, header.height,
                                    TurnOf(bits, 0, 0, header.width, header.height));
  if (!part) ADD_FAILURE() << "nothing can be moved";
  writing.move = part;
  writing.makesThumbnail = true;
  return writing;
}

double MeanDifference(const Raster& a, const Raster& b) {
  double sum = 0;
  for (int y = 0; y < a.Height(); y++) {
    for (int i = 0; i < 3 * a.Width(); i++) sum += std::abs(a.Row(y)[i] - b.Row(y)[i]);
  }
  return sum / (3.0 * a.Width() * a.Height());
}

void ExpectThumbnailOf(std::span<const uint8_t> file, std::span<const uint8_t> thumbnail) {
  const Raster picture = DecodeJpeg(file);
  const Raster small = DecodeJpeg(thumbnail);
  EXPECT_EQ(std::max(small.Width(), small.Height()),
            std::min(160, std::max(picture.Width(), picture.Height())));
  ASSERT_EQ(small.Format(), pf24bit);
  Raster expected(pf24bit, small.Width(), small.Height());
  BlitHalftone(expected, {0, 0, small.Width(), small.Height()}, picture);
  EXPECT_LT(MeanDifference(small, expected), 4);
}

std::vector<uint8_t> ExifThumbnailOf(std::span<const uint8_t> file) {
  const ExifBlock exif(ReadJpegHeader(file).metadata.exif);
  const auto thumbnail = exif.Thumbnail();
  return {thumbnail.begin(), thumbnail.end()};
}

std::vector<uint8_t> Gradients(int width, int height, J_COLOR_SPACE space, J_COLOR_SPACE coded,
                               int components, bool progressive = false) {
  JpegRecipe recipe{
      .width = width, .height = height, .pixels = space, .file = coded, .components = components};
  recipe.progressive = progressive;
  return MakeJpeg(recipe);
}

TEST(MoveJpegThumbnail, Should_ShowTheMovedPicture) {
  for (const auto& [width, height] : {std::pair{1400, 1000}, {1290, 1283}, {300, 203}, {90, 160}}) {
    const auto file =
        FileWithThumbnails(Gradients(width, height, JCS_RGB, JCS_YCbCr, 3, width == 1290));
    for (int bits = 0; bits < 8; bits++) {
      SCOPED_TRACE(testing::Message() << width << " x " << height << ", turn " << bits);
      const MovedFile moved = MovedWith(file, WritingOf(file, bits));
      EXPECT_THAT(moved.written.changes.losses, IsEmpty());
      const auto thumbnail = ExifThumbnailOf(moved.bytes);
      ExpectThumbnailOf(moved.bytes, thumbnail);
      const ImageResources resources(ReadJpegHeader(moved.bytes).metadata.photoshop);
      const auto* resource = resources.Find(image_resource::kThumbnail);
      ASSERT_NE(resource, nullptr);
      EXPECT_TRUE(std::equal(resource->bytes.begin() + 28, resource->bytes.end(), thumbnail.begin(),
                             thumbnail.end()));
    }
  }
}

TEST(MoveJpegThumbnail, Should_HaveTheColorsOfTheFile) {
  struct Case {
    J_COLOR_SPACE pixels, coded;
    int components;
  };
  for (const Case& one : {Case{JCS_GRAYSCALE, JCS_GRAYSCALE, 1}, Case{JCS_RGB, JCS_RGB, 3},
                          Case{JCS_CMYK, JCS_CMYK, 4}, Case{JCS_CMYK, JCS_YCCK, 4}}) {
    for (const int width : {200, 1360}) {
      SCOPED_TRACE(testing::Message() << "components " << one.components << ", space " << one.coded
                                      << ", width " << width);
      const auto file =
          FileWithThumbnails(Gradients(width, 200, one.pixels, one.coded, one.components));
      const MovedFile moved = MovedWith(file, WritingOf(file, 4));
      ExpectThumbnailOf(moved.bytes, ExifThumbnailOf(moved.bytes));
    }
  }
}

TEST(MoveJpegThumbnail, Should_BeLost_When_ThePictureCannotBeShown) {
  // Unknown colors; a sampling with fractions, which the library does not decode.
  for (const BareJpeg& source : {RandomBare(64, 64, JCS_UNKNOWN, {{1, 1}, {1, 1}}, 2),
                                 RandomBare(64, 64, JCS_YCbCr, {{3, 1}, {2, 1}, {1, 1}}, 2)}) {
    const auto file = FileWithThumbnails(WriteBare(source));
    const MovedFile moved = MovedWith(file, WritingOf(file, kQuarterTurn));
    ASSERT_EQ(moved.written.changes.losses.size(), 2u);
    EXPECT_EQ(moved.written.changes.losses[0].kind, LossKind::thumbnail);
    EXPECT_THAT(ExifThumbnailOf(moved.bytes), IsEmpty());
    EXPECT_EQ(DifferenceOf(ReadBare(moved.bytes), MovedBare(source, TurnOf(kQuarterTurn, source))),
              "");
  }
}

TEST(MoveJpegThumbnail, Should_NotBeMade_When_ThereWasNoneOrNoneIsWanted) {
  const auto plain = WithHead(Gradients(64, 64, JCS_RGB, JCS_YCbCr, 3), ExifSegment(SmallExif()));
  const MovedFile moved = MovedWith(plain, WritingOf(plain, kQuarterTurn));
  EXPECT_THAT(ExifThumbnailOf(moved.bytes), IsEmpty());
  const auto file = FileWithThumbnails(Gradients(64, 64, JCS_RGB, JCS_YCbCr, 3));
  PictureWriting writing = WritingOf(file, kQuarterTurn);
  writing.makesThumbnail = false;
  EXPECT_EQ(ExifThumbnailOf(MovedWith(file, writing).bytes), ExifThumbnailOf(file));
}

/// Each pixel is what the library makes of a block at an eighth of the size.
TEST(JpegEighth, Should_EqualTheScaledDecoding) {
  for (const auto& [pixels, coded, components] :
       {std::tuple{JCS_GRAYSCALE, JCS_GRAYSCALE, 1}, {JCS_RGB, JCS_RGB, 3}}) {
    for (const auto& [width, height] : {std::pair{80, 64}, {81, 63}, {7, 3}}) {
      const auto file = Gradients(width, height, pixels, coded, components);
      const Raster eighth = DecodeJpegEighth(file);
      jpeg_decompress_struct codec{};
      jpeg_error_mgr errors{};
      codec.err = jpeg_std_error(&errors);
      jpeg_create_decompress(&codec);
      jpeg_mem_src(&codec, file.data(), static_cast<unsigned long>(file.size()));
      jpeg_read_header(&codec, TRUE);
      codec.scale_denom = 8;
      if (components == 3) codec.out_color_space = JCS_EXT_BGR;
      jpeg_start_decompress(&codec);
      ASSERT_EQ(static_cast<int>(codec.output_width), eighth.Width());
      ASSERT_EQ(static_cast<int>(codec.output_height), eighth.Height());
      std::vector<uint8_t> row(codec.output_width * static_cast<size_t>(components));
      for (int y = 0; y < eighth.Height(); y++) {
        JSAMPROW rows[] = {row.data()};
        jpeg_read_scanlines(&codec, rows, 1);
        EXPECT_TRUE(std::equal(row.begin(), row.end(), eighth.Row(y))) << y;
      }
      jpeg_destroy_decompress(&codec);
    }
  }
}

/// Full chroma, by the formulas in floating point.
TEST(JpegEighth, Colors_Should_BeThoseOfTheFormulas) {
  const BareJpeg source = RandomBare(100, 60, JCS_YCbCr, {{1, 1}, {1, 1}, {1, 1}}, 12);
  const Raster eighth = DecodeJpegEighth(WriteBare(source));
  for (int y = 0; y < eighth.Height(); y++) {
    for (int x = 0; x < eighth.Width(); x++) {
      const auto mean = [&](size_t i) {
        const BareComponent& component = source.components[i];
        const double value = std::floor(component.At(x, y)[0] * component.steps[0] / 8.0 + 0.5);
        return std::clamp(value + 128, 0.0, 255.0);
      };
      const double luma = mean(0), cb = mean(1) - 128, cr = mean(2) - 128;
      const double colors[] = {luma + 1.772 * cb, luma - 0.34414 * cb - 0.71414 * cr,
                               luma + 1.402 * cr};
      for (size_t i = 0; i < 3; i++) {
        EXPECT_NEAR(eighth.Row(y)[3 * x + static_cast<int>(i)], std::clamp(colors[i], 0.0, 255.0),
                    0.51);
      }
    }
  }
}

TEST(JpegEighth, ReducedChroma_Should_StandForItsPixels) {
  BareJpeg halved = RandomBare(100, 60, JCS_YCbCr, kHalvedChroma, 12);
  BareJpeg full = RandomBare(100, 60, JCS_YCbCr, {{1, 1}, {1, 1}, {1, 1}}, 13);
  full.components[0].blocks = halved.components[0].blocks;
  for (size_t i = 1; i < 3; i++) {
    BareComponent& component = full.components[i];
    for (int y = 0; y < component.rows; y++) {
      for (int x = 0; x < component.columns; x++) {
        component.blocks[static_cast<size_t>(y * component.columns + x)] =
            halved.components[i].At(x / 2, y / 2);
      }
    }
  }
  const Raster a = DecodeJpegEighth(WriteBare(halved)), b = DecodeJpegEighth(WriteBare(full));
  EXPECT_EQ(MeanDifference(a, b), 0);
}

TEST(MoveJpegHead, PixelShape_Should_TurnWithThePicture) {
  const auto file = MakeJpeg({.width = 32, .height = 16, .densityX = 1, .densityY = 2});
  const auto densities = [](const std::vector<uint8_t>& bytes) {
    return std::vector<int>{bytes[13], bytes[14] << 8 | bytes[15], bytes[16] << 8 | bytes[17]};
  };
  ASSERT_EQ(densities(file), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(densities(Moved(file, TurnOf(kQuarterTurn, 0, 0, 32, 16)).bytes),
            (std::vector<int>{0, 2, 1}));
  EXPECT_EQ(densities(Moved(file, TurnOf(3, 0, 0, 32, 16)).bytes), (std::vector<int>{0, 1, 2}));
}

TEST(MoveJpegHead, Metadata_Should_BeThoseThatAreGiven) {
  auto file = WithHead(MakeJpeg({.width = 32, .height = 16}), ExifSegment(SmallExif()));
  file = WithHead(file, Segment(0xE5, "of the camera"sv));
  PictureWriting writing;
  writing.metadata = ReadJpegHeader(file).metadata;
  writing.metadata.comments = {"new"};
  writing.metadata.xmp = "<x:xmpmeta/>";
  writing.metadata.resolution = {300, 150};
  writing.move = TurnOf(kQuarterTurn, 0, 0, 32, 16);
  const Metadata again = ReadJpegHeader(MovedWith(file, writing).bytes).metadata;
  EXPECT_EQ(again.comments, writing.metadata.comments);
  EXPECT_EQ(again.xmp, writing.metadata.xmp);
  EXPECT_EQ(again.jpegSegments, writing.metadata.jpegSegments);
  EXPECT_EQ(again.resolution, writing.metadata.resolution);
}

TEST(MoveJpegHead, CopiesOfThePicture_Should_Go) {
  const auto whole = MakeJpeg({.width = 32, .height = 16});
  // A JFIF header with a thumbnail of 2 x 1 pixels, an extension, and a picture after the end.
  std::vector<uint8_t> file(whole.begin(), whole.begin() + 2);
  const std::vector<uint8_t> jfif = {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1,
                                     0,   1,   2,   1,   9, 8, 7, 6, 5, 4};
  file = Joined(file, Segment(0xE0, jfif));
  file = Joined(file, Segment(0xE0, "JFXX\0\x10thumbnail"sv));
  file.insert(file.end(), whole.begin() + 20, whole.end());
  file = Joined(file, whole);
  const PictureHeader before = ReadJpegHeader(file);
  EXPECT_EQ(before.hiddenCopies.size(), 2u);
  EXPECT_EQ(before.hiddenOthers.size(), 1u);
  const MovedFile moved = Moved(file, TurnOf(kQuarterTurn, 0, 0, 32, 16));
  const PictureHeader after = ReadJpegHeader(moved.bytes);
  EXPECT_THAT(after.hiddenCopies, IsEmpty());
  EXPECT_THAT(after.hiddenOthers, IsEmpty());
  EXPECT_EQ(after.trailerAt, 0u);
  EXPECT_TRUE(after.metadata.hasJfif);
}

}  // namespace
}  // namespace rasterkit::test
