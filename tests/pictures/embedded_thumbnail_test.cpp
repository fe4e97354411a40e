// The small picture inside of the metadata.

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/reading/embedded_thumbnail.h>

#include "tests/support/profiles.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes Small(int width, int height) {
  return EncodeJpeg(test::GradientRaster(pf24bit, width, height), 90);
}

Bytes ExifWith(const Bytes& thumbnail, uint16_t orientation = 1) {
  ExifBlock exif;
  exif.SetWords(ExifDirectoryId::main, 274, std::array{orientation});
  if (!thumbnail.empty()) exif.SetThumbnail(thumbnail);
  return exif.TakeBytes();
}

Bytes ResourcesWith(const Bytes& thumbnail, uint8_t format) {
  Bytes bytes(28);
  bytes[3] = format;
  bytes.insert(bytes.end(), thumbnail.begin(), thumbnail.end());
  ImageResources resources;
  resources.Set(image_resource::kThumbnail, bytes);
  return resources.Bytes();
}

Picture PictureWith(const Metadata& metadata, PictureType type = PictureType::jpeg) {
  PictureWriting writing;
  writing.metadata = metadata;
  TMemoryStream stream;
  WritePicture(type, test::GradientRaster(pf24bit, 96, 64), writing, stream);
  return Picture::Open(stream.TakeBytes());
}

TEST(EmbeddedThumbnail, IsThatOfExifElseOfTheResources) {
  const Bytes first = Small(30, 20), second = Small(24, 16);
  Metadata metadata;
  EXPECT_TRUE(EmbeddedThumbnail(metadata).empty());
  metadata.exif = ExifWith({});
  EXPECT_TRUE(EmbeddedThumbnail(metadata).empty());
  metadata.photoshop = ResourcesWith(second, 0);
  EXPECT_TRUE(EmbeddedThumbnail(metadata).empty()) << "plain pixels";
  metadata.photoshop = ResourcesWith(second, 1);
  EXPECT_EQ(EmbeddedThumbnail(metadata), second);
  metadata.exif = ExifWith(first);
  EXPECT_EQ(EmbeddedThumbnail(metadata), first);
  metadata.photoshop.resize(30);
  metadata.exif.clear();
  EXPECT_TRUE(EmbeddedThumbnail(metadata).empty()) << "a resource that is cut off";
}

TEST(EmbeddedThumbnail, IsUprightWithTheProfileOfThePicture) {
  // A profile states when it was made.
  const ColorProfile profile = test::RgbProfile();
  for (const PictureType type : {PictureType::jpeg, PictureType::png}) {
    Metadata metadata;
    metadata.exif = ExifWith(Small(30, 20), 6);
    metadata.profile = profile;
    Picture picture = PictureWith(metadata, type);
    picture.Crop({0, 0, 10, 10}).Resize(3, 3);
    const auto thumbnail = picture.EmbeddedThumbnail();
    ASSERT_TRUE(thumbnail.has_value()) << PictureTypeName(type);
    EXPECT_EQ(thumbnail->Width(), 20);
    EXPECT_EQ(thumbnail->Height(), 30);
    ASSERT_NE(thumbnail->GetMetadata().profile, nullptr);
    EXPECT_EQ(*thumbnail->GetMetadata().profile, *profile);
    EXPECT_EQ(thumbnail->Bitmap()->Width(), 20);
  }
}

TEST(EmbeddedThumbnail, IsNothingIfItCannotBeRead) {
  Metadata metadata;
  EXPECT_FALSE(PictureWith(metadata).EmbeddedThumbnail());
  for (const Bytes& bytes : {Bytes(50, 'x'), Bytes{0xFF, 0xD8, 0xFF, 0xD9}}) {
    metadata.exif = ExifWith(bytes);
    EXPECT_FALSE(PictureWith(metadata).EmbeddedThumbnail());
  }
  EXPECT_FALSE(Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf24bit, 9, 9)))
                   .EmbeddedThumbnail());
}

}  // namespace
}  // namespace rasterkit
