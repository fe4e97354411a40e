#include <algorithm>
#include <cstdlib>
#include <tuple>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/pictures/picture.h>

#include "tests/pictures/peer_programs.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::TempFolder;
using namespace std::string_literals;

using Bytes = std::vector<uint8_t>;

Bytes Jpeg(int width, int height) {
  return EncodeJpeg(test::GradientRaster(pf24bit, width, height), 90);
}

Bytes Segment(uint8_t marker, const std::string& text) {
  const size_t size = text.size() + 2;
  Bytes bytes(size + 2);
  bytes[0] = 0xFF;
  bytes[1] = marker;
  bytes[2] = static_cast<uint8_t>(size >> 8);
  bytes[3] = static_cast<uint8_t>(size);
  std::copy(text.begin(), text.end(), bytes.begin() + 4);
  return bytes;
}

Bytes Joined(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

/// Inserts a segment after the first one, which is the file header.
Bytes With(Bytes file, const Bytes& segment) {
  const size_t at = 4 + (size_t{file[4]} << 8 | file[5]);
  file.insert(file.begin() + static_cast<std::ptrdiff_t>(at), segment.begin(), segment.end());
  return file;
}

struct Indexed {
  uint32_t attributes = 0;
  Bytes bytes;
};

/// The index of a picture and of further ones behind it; `first` are the bytes of the picture with
/// the index, `end` leads from the index to its end.
Bytes Index(uint32_t first, uint32_t end, const std::vector<Indexed>& pictures) {
  std::string text = "MPF\0MM"s;
  const auto add = [&](uint64_t value, int count) {
    for (int i = count; i-- > 0;) text.push_back(static_cast<char>(value >> 8 * i));
  };
  const auto count = static_cast<uint32_t>(pictures.size()) + 1;
  add(42, 2);
  add(8, 4);
  add(3, 2);
  constexpr uint32_t kDirectoryBytes = 2 + 3 * 12 + 4;
  add(0xB000, 2), add(7, 2), add(4, 4), text += "0100";
  add(0xB001, 2), add(4, 2), add(1, 4), add(count, 4);
  add(0xB002, 2), add(7, 2), add(16 * count, 4), add(8 + kDirectoryBytes, 4);
  add(0, 4);
  add(0x030000, 4), add(first, 4), add(0, 4), add(0, 4);
  for (const Indexed& picture : pictures) {
    add(picture.attributes, 4), add(picture.bytes.size(), 4), add(end, 4), add(0, 4);
    end += static_cast<uint32_t>(picture.bytes.size());
  }
  return Segment(0xE2, text);
}

Bytes WithIndex(const Bytes& plain, const std::vector<Indexed>& pictures) {
  const auto indexBytes = static_cast<uint32_t>(Index(0, 0, pictures).size());
  const auto first = static_cast<uint32_t>(plain.size()) + indexBytes;
  // Places count from the byte-order mark of the index.
  const uint32_t mark = 4 + static_cast<uint32_t>(plain[4] << 8 | plain[5]) + 8;
  Bytes file = With(plain, Index(first, first - mark, pictures));
  for (const Indexed& picture : pictures) file = Joined(std::move(file), picture.bytes);
  return file;
}

const std::string kVideo =
    "\0\0\0\x18"
    "ftypmp42\0\0\0\0mp42isom"s +
    std::string(3000, 'v');

/// A photograph with a preview, a gain map and a video behind its end.
Bytes WithAll() {
  const Bytes gainMap =
      With(Jpeg(40, 30), Segment(0xE1, "http://ns.adobe.com/xap/1.0/\0hdrgm:Version=\"1.0\""s));
  const Bytes file = WithIndex(Jpeg(160, 120), {{0x010001, Jpeg(80, 60)}, {0x000000, gainMap}});
  return Joined(file, {kVideo.begin(), kVideo.end()});
}

bool Has(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

std::vector<std::string> LossesIn(const Report& report) {
  std::vector<std::string> losses;
  for (const Loss& loss : report.losses) {
    losses.push_back(std::string(LossKindName(loss.kind)) + ": " + loss.what);
  }
  std::sort(losses.begin(), losses.end());
  return losses;
}

std::string Extracted(const std::string& file, const std::string& tag) {
  return test::OutputOfPeer("exiftool -q -q -b -" + tag + " " + test::InQuotes(file));
}

TEST(HiddenCopies, StayToTheByte_When_NoPixelChanged) {
  const TempFolder folder;
  const std::string in = folder.Write("in.jpg", WithAll());
  Picture picture = Picture::Open(in);
  MetadataEdit edit;
  edit.resolution = Resolution{300, 300};
  const Report report = picture.Edit(edit).Save(folder / "out.jpg");
  EXPECT_TRUE(report.isCopied);
  EXPECT_TRUE(report.losses.empty());
  EXPECT_EQ(Picture::Open(folder / "out.jpg").GetMetadata().resolution, (Resolution{300, 300}));
  const std::string before = test::ReadFile(in), after = test::ReadFile(folder / "out.jpg");
  EXPECT_TRUE(before != after);
  EXPECT_TRUE(after.ends_with(kVideo));
  if (!test::HasPeer("exiftool")) GTEST_SKIP() << "exiftool is not installed";
  EXPECT_EQ(Extracted(folder / "out.jpg", "XResolution"), "300");
  for (const char* tag : {"PreviewImage", "MPImage3"}) {
    const std::string old = Extracted(in, tag);
    EXPECT_GT(old.size(), 100U) << tag;
    EXPECT_TRUE(Extracted(folder / "out.jpg", tag) == old) << tag;
  }
}

/// A preview is a file of its own, with a position of its own.
TEST(HiddenCopies, Go_When_MetadataAreRemoved) {
  const TempFolder folder;
  const std::string in = folder.Write("in.jpg", WithAll());
  MetadataEdit gps, all;
  gps.stripGps = true;
  all.stripAll = true;
  for (const MetadataEdit& edit : {gps, all}) {
    Picture picture = Picture::Open(in);
    const Report report = picture.Edit(edit).Save(folder / "out.jpg");
    EXPECT_TRUE(report.isCopied);
    EXPECT_FALSE(report.losses.empty()) << "a video and a gain map are no mere copies";
    const std::string after = test::ReadFile(folder / "out.jpg");
    EXPECT_EQ(after.find("ftypmp42"), std::string::npos);
    EXPECT_EQ(after.find("hdrgm:Version"), std::string::npos);
    EXPECT_TRUE(after.ends_with("\xFF\xD9")) << "nothing stands after the picture";
  }
}

TEST(HiddenCopies, GoAndAreNamed_When_PixelsChanged) {
  const TempFolder folder;
  const std::string in = folder.Write("in.jpg", WithAll());
  Picture picture = Picture::Open(in);
  picture.Crop(CropStep{10, 10, 100, 40});
  const Report plan = picture.Plan(folder / "out.jpg");
  const Report report = picture.Save(folder / "out.jpg");
  EXPECT_EQ(LossesIn(plan), LossesIn(report));
  const std::vector<std::string> losses = {"hidden-pictures: gain map of 40 x 30 pixels",
                                           "hidden-pictures: video of 3.0 kB"};
  EXPECT_EQ(LossesIn(report), losses);
  EXPECT_TRUE(
      Has(report.notes, "preview of 80 x 60 pixels is not written: it is a copy of the picture"));
  const std::string after = test::ReadFile(folder / "out.jpg");
  EXPECT_EQ(after.find("MPF"), std::string::npos);
  EXPECT_EQ(after.find("ftyp"), std::string::npos);
  EXPECT_EQ(after.find("\xFF\xD8", 2), std::string::npos);
  if (!test::HasPeer("exiftool")) GTEST_SKIP() << "exiftool is not installed";
  EXPECT_EQ(Extracted(folder / "out.jpg", "PreviewImage"), "");
  EXPECT_GT(Extracted(in, "PreviewImage").size(), 100U);
}

TEST(HiddenCopies, AreALossOfThosePicturesThatAreNone_When_TheFormChanges) {
  const TempFolder folder;
  const std::string in = folder.Write("in.jpg", WithAll());
  SaveOptions options;
  options.quality = 70;
  for (const char* name : {"out.jpg", "out.png"}) {
    const Report report = Picture::Open(in).Save(folder / name, options);
    EXPECT_FALSE(report.isCopied);
    EXPECT_TRUE(Has(LossesIn(report), "hidden-pictures: gain map of 40 x 30 pixels")) << name;
    EXPECT_EQ(test::ReadFile(folder / name).find("MPF"), std::string::npos) << name;
  }
}

// --- Thumbnails ----------------------------------------------------------------------------

constexpr char kXmp[] =
    "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
    "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
    "xmlns:xmp='http://ns.adobe.com/xap/1.0/' "
    "xmlns:g='http://ns.adobe.com/xap/1.0/g/img/' xmp:Rating='4'><xmp:Thumbnails><rdf:Alt><rdf:li "
    "rdf:parseType='Resource'><g:width>80</g:width><g:height>60</g:height><g:format>JPEG</g:format>"
    "<g:image>/9j/</g:image></rdf:li></rdf:Alt></xmp:Thumbnails></rdf:Description></rdf:RDF>"
    "</x:xmpmeta>";

/// A photograph with a thumbnail in each of the places; `hasExif` also in EXIF.
std::string WithThumbnails(const TempFolder& folder, bool hasExif, uint16_t resource) {
  PictureWriting writing;
  if (hasExif) {
    const Picture sample = Picture::Open(std::string(RASTERKIT_SAMPLES "/orientation-1.jpg"));
    writing.metadata.exif = sample.GetMetadata().exif;
    ExifBlock exif(writing.metadata.exif);
    exif.SetThumbnail(Jpeg(80, 60));
    writing.metadata.exif = exif.TakeBytes();
  }
  ImageResources resources;
  resources.Set(resource, Joined(Bytes(28), Jpeg(80, 60)));
  writing.metadata.photoshop = resources.Bytes();
  writing.metadata.xmp = kXmp;
  TMemoryStream stream;
  WritePicture(PictureType::jpeg, Pixels(test::GradientRaster(pf24bit, 240, 180)), writing, stream);
  return folder.Write("in.jpg", stream.Bytes());
}

/// Both sides within half a pixel of the shape of `width` x `height`.
void ExpectShape(const Raster& thumbnail, int width, int height) {
  EXPECT_NEAR(static_cast<double>(thumbnail.Width()) * height / width, thumbnail.Height(), 0.51);
}

TEST(Thumbnails, ShowTheNewPictureEverywhere) {
  const TempFolder folder;
  for (const bool hasExif : {false, true}) {
    for (const uint16_t resource : {image_resource::kThumbnail, image_resource::kOldThumbnail}) {
      SCOPED_TRACE(resource);
      const std::string in = WithThumbnails(folder, hasExif, resource);
      Picture picture = Picture::Open(in);
      const Report report = picture.Crop(CropStep{20, 10, 200, 50}).Save(folder / "out.jpg");
      EXPECT_EQ(LossesIn(report), std::vector<std::string>());
      EXPECT_TRUE(Has(report.notes, "thumbnail in XMP removed"));
      const Metadata after = Picture::Open(folder / "out.jpg").GetMetadata();
      if (hasExif) {
        const ExifBlock block(after.exif);
        const auto thumbnail = block.Thumbnail();
        ExpectShape(DecodeJpeg(thumbnail), 200, 50);
      }
      const ImageResources resources(after.photoshop);
      EXPECT_EQ(resources.Find(image_resource::kOldThumbnail), nullptr);
      ASSERT_NE(resources.Find(image_resource::kThumbnail), nullptr);
      const Bytes& made = resources.Find(image_resource::kThumbnail)->bytes;
      ExpectShape(DecodeJpeg(Bytes(made.begin() + 28, made.end())), 200, 50);
      EXPECT_EQ(after.xmp.find("Thumbnails"), std::string::npos);
      EXPECT_NE(after.xmp.find("Rating"), std::string::npos);
      if (!test::HasPeer("exiftool")) continue;
      EXPECT_TRUE(Extracted(folder / "out.jpg", "PhotoshopThumbnail") ==
                  std::string(made.begin() + 28, made.end()));
      EXPECT_EQ(Extracted(folder / "out.jpg", "PhotoshopBGRThumbnail"), "");
      EXPECT_EQ(Extracted(folder / "out.jpg", "XMP:ThumbnailsImage"), "");
    }
  }
}

TEST(Thumbnails, AreStrippedEverywhere) {
  const TempFolder folder;
  const std::string in = WithThumbnails(folder, true, image_resource::kThumbnail);
  for (const bool isCropped : {false, true}) {
    Picture picture = Picture::Open(in);
    MetadataEdit edit;
    edit.stripThumbnail = true;
    picture.Edit(edit);
    if (isCropped) picture.Crop(CropStep{20, 10, 200, 50});
    const Report report = picture.Save(folder / "out.jpg");
    EXPECT_EQ(LossesIn(report), std::vector<std::string>());
    const Metadata after = Picture::Open(folder / "out.jpg").GetMetadata();
    EXPECT_FALSE(ExifBlock(after.exif).HasThumbnail());
    EXPECT_EQ(ImageResources(after.photoshop).Find(image_resource::kThumbnail), nullptr);
    EXPECT_EQ(after.xmp.find("Thumbnails"), std::string::npos);
  }
}

}  // namespace
}  // namespace rasterkit
