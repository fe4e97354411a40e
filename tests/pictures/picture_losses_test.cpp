#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// What each format cannot hold is said, and nothing else.
namespace rasterkit {
namespace {

using test::GradientRaster;
using test::GrayRaster;
using test::TempFolder;

Picture PictureOf(Raster rows) {
  return Picture::Of(std::make_unique<TBitmap>(std::move(rows)));
}

/// Kinds of losses by name, sorted.
std::vector<std::string> KindsIn(const Report& report) {
  std::vector<std::string> kinds;
  for (const Loss& loss : report.losses) {
    EXPECT_FALSE(loss.what.empty());
    EXPECT_FALSE(loss.why.empty());
    kinds.emplace_back(LossKindName(loss.kind));
  }
  std::sort(kinds.begin(), kinds.end());
  return kinds;
}

using Kinds = std::vector<std::string>;

struct Targets {
  Kinds jpeg, png, tiff, bmp;
};

void ExpectLosses(const Picture& picture, const Targets& expected) {
  const TempFolder folder;
  SaveOptions full;
  full.chromaX = full.chromaY = 1;
  const auto save = [&](const char* name) { return KindsIn(picture.Save(folder / name, full)); };
  EXPECT_EQ(save("a.jpg"), expected.jpeg) << "JPEG";
  EXPECT_EQ(save("a.png"), expected.png) << "PNG";
  EXPECT_EQ(save("a.tif"), expected.tiff) << "TIFF";
  EXPECT_EQ(save("a.bmp"), expected.bmp) << "BMP";
}

TEST(PictureLosses, OfColorsThatEveryFormatHolds) {
  ExpectLosses(PictureOf(GradientRaster(pf24bit, 20, 10)), {});
  ExpectLosses(PictureOf(GrayRaster(20, 10)), {});
}

TEST(PictureLosses, OfOpacity) {
  Raster rows = GradientRaster(pf32bit, 20, 10);
  rows.alphaFormat = afDefined;
  ExpectLosses(PictureOf(std::move(rows)), {.jpeg = {"alpha"}});
}

TEST(PictureLosses, OfATransparentColor) {
  Raster rows = GradientRaster(pf24bit, 20, 10);
  rows.transparentColor = rows.PixelColor(0, 0);
  const Picture picture = PictureOf(std::move(rows));
  const TempFolder folder;
  EXPECT_EQ(KindsIn(picture.Save(folder / "a.png")), Kinds());
  const Kinds jpeg = KindsIn(picture.Save(folder / "a.jpg"));
  EXPECT_TRUE(std::count(jpeg.begin(), jpeg.end(), "transparent-color") == 1);
  EXPECT_EQ(KindsIn(picture.Save(folder / "a.bmp")), Kinds{"transparent-color"});
}

TEST(PictureLosses, OfNumbers) {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.bands = 3;
  Samples words(layout, 20, 10);
  for (int y = 0; y < 10; ++y) std::fill_n(words.Row(y), words.Stride(), static_cast<uint8_t>(y));
  ExpectLosses(Picture::Of(std::move(words)), {.jpeg = {"bits"}, .bmp = {"bits"}});

  layout.type = NumberType::float32;
  layout.bits = 32;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples floats(layout, 20, 10);
  for (int y = 0; y < 10; ++y) std::fill_n(floats.Row(y), floats.Stride(), static_cast<uint8_t>(y));
  ExpectLosses(Picture::Of(std::move(floats)),
               {.jpeg = {"bits"}, .png = {"bits"}, .bmp = {"bits"}});
}

TEST(PictureLosses, OfNumbersWhoseLeastIsWhite) {
  for (const int bits : {10, 16}) {
    PixelLayout layout;
    layout.type = NumberType::uint16;
    layout.bits = bits;
    layout.bands = 1;
    layout.model = ColorModel::grayWhiteIsZero;
    Samples words(layout, 20, 1);
    auto* const row = reinterpret_cast<uint16_t*>(words.Row(0));
    for (int x = 0; x < 20; ++x) row[x] = static_cast<uint16_t>(50 * x + 1);
    const TempFolder folder;
    const Picture picture = Picture::Of(std::move(words));
    EXPECT_EQ(KindsIn(picture.Save(folder / "a.png")), Kinds());
    const std::string file = test::ReadFile(folder / "a.png");
    const Pixels saved =
        DecodePngPixels({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
    const auto& numbers = std::get<Samples>(saved);
    EXPECT_EQ(numbers.Layout().bits, 16);
    EXPECT_EQ(numbers.Layout().model, ColorModel::gray);
    const int most = (1 << bits) - 1;
    for (int x = 0; x < 20; ++x) {
      const double black = (50 * x + 1) * 65535.0 / most;
      EXPECT_EQ(reinterpret_cast<const uint16_t*>(numbers.Row(0))[x], std::lround(65535 - black));
    }
  }
}

TEST(PictureLosses, OfChroma) {
  const TempFolder folder;
  const Picture picture = PictureOf(GradientRaster(pf24bit, 20, 10));
  EXPECT_EQ(KindsIn(picture.Save(folder / "a.jpg")), Kinds{"chroma"});
  SaveOptions options;
  options.quality = 95;
  EXPECT_EQ(KindsIn(picture.Save(folder / "a.jpg", options)), Kinds());
  options.quality = 80;
  options.chromaX = options.chromaY = 2;
  EXPECT_EQ(KindsIn(picture.Save(folder / "b.jpg", options)), Kinds());
  // Sampled like its source: nothing more is lost.
  EXPECT_EQ(KindsIn(Picture::Open(folder / "b.jpg").Turn(1).Save(folder / "c.jpg")), Kinds());
}

TEST(PictureLosses, OfAPosition) {
  const TempFolder folder;
  const std::string file = folder / "placed.png";
  PictureOf(GradientRaster(pf24bit, 20, 10)).Save(file);
  folder.Write("placed.pgw", WorldFileText({2, 0, 0, -2, 100, 200}));
  const Picture picture = Picture::Open(file);
  ExpectLosses(picture, {});
  // No file lies beside a stream.
  TMemoryStream stream;
  EXPECT_EQ(KindsIn(picture.Save(stream)), Kinds{"position"});
  SaveOptions options;
  options.type = PictureType::tiff;
  TMemoryStream tiff;
  EXPECT_EQ(KindsIn(picture.Save(tiff, options)), Kinds());
}

TEST(PictureLosses, OfDamageThatIsReadAround) {
  const TempFolder folder;
  PictureOf(GradientRaster(pf24bit, 200, 100)).Save(folder / "whole.png");
  std::string bytes = test::ReadFile(folder / "whole.png");
  bytes.resize(bytes.size() * 2 / 3);
  const std::string file = folder.Write("cut.png", bytes);
  for (const char* name : {"a.png", "a.bmp"}) {
    SCOPED_TRACE(name);
    const Report report = Picture::Open(file).Save(folder / name);
    EXPECT_EQ(KindsIn(report), Kinds{"damage"});
    EXPECT_FALSE(report.isCopied);
    EXPECT_FALSE(report.warnings.empty());
  }
}

TEST(PictureLosses, NameWhatIsStrippedOnRequestNotAtAll) {
  const TempFolder folder;
  Picture picture = Picture::Open(RASTERKIT_SAMPLES "/orientation-6.jpg");
  ASSERT_FALSE(picture.GetMetadata().exif.empty());
  EXPECT_NE(KindsIn(picture.Save(folder / "a.bmp")), Kinds());
  MetadataEdit edit;
  edit.stripAll = true;
  picture.Edit(edit);
  EXPECT_TRUE(picture.GetMetadata().exif.empty());
  EXPECT_EQ(KindsIn(picture.Save(folder / "b.bmp")), Kinds());
}

TEST(PictureLosses, OfGpsAloneOnRequest) {
  const TempFolder folder;
  Picture picture = Picture::Open(RASTERKIT_SAMPLES "/orientation-6.jpg");
  ExifBlock before(picture.GetMetadata().exif);
  ASSERT_FALSE(before.All(ExifDirectoryId::gps).empty());
  MetadataEdit edit;
  edit.stripGps = true;
  picture.Edit(edit).Save(folder / "a.jpg");
  const ExifBlock after(Picture::Open(folder / "a.jpg").GetMetadata().exif);
  EXPECT_TRUE(after.All(ExifDirectoryId::gps).empty());
  EXPECT_EQ(after.All(ExifDirectoryId::exif).size(), before.All(ExifDirectoryId::exif).size());
}

TEST(PictureLosses, OfGpsInXmpOnRequest) {
  const TempFolder folder;
  PictureWriting writing;
  writing.metadata.xmp =
      "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
      "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
      "xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" exif:GPSLatitude=\"48,8.232N\" "
      "exif:PixelXDimension=\"20\"/></rdf:RDF></x:xmpmeta>";
  TMemoryStream stream;
  WritePicture(PictureType::png, Pixels(GradientRaster(pf24bit, 20, 10)), writing, stream);
  Picture picture = Picture::Open(folder.Write("a.png", stream.Bytes()));
  ASSERT_NE(picture.GetMetadata().xmp.find("48,8.232N"), std::string::npos);
  MetadataEdit edit;
  edit.stripGps = true;
  picture.Edit(edit).Save(folder / "b.png");
  const std::string after = Picture::Open(folder / "b.png").GetMetadata().xmp;
  EXPECT_EQ(after.find("GPSLatitude"), std::string::npos);
  EXPECT_NE(after.find("PixelXDimension"), std::string::npos);
}

TEST(PictureThumbnails, ShowTheNewPixels) {
  const TempFolder folder;
  // A white picture whose old thumbnail is black.
  Raster black(pf24bit, 16, 12);
  for (int y = 0; y < 12; ++y) std::fill_n(black.Row(y), black.Stride(), uint8_t{0});
  ExifBlock exif;
  exif.SetThumbnail(EncodeJpeg(black, 90));
  Raster white(pf24bit, 400, 300);
  for (int y = 0; y < 300; ++y) std::fill_n(white.Row(y), white.Stride(), uint8_t{255});
  PictureWriting writing;
  writing.metadata.exif = exif.TakeBytes();
  TMemoryStream stream;
  WritePicture(PictureType::jpeg, Pixels(std::move(white)), writing, stream);
  const std::string file = folder.Write("a.jpg", stream.Bytes());

  const auto thumbnailOf = [&](const char* name) {
    const ExifBlock block(Picture::Open(folder / name).GetMetadata().exif);
    const auto bytes = block.Thumbnail();
    return Picture::Open(std::vector<uint8_t>(bytes.begin(), bytes.end())).Bitmap();
  };
  Picture picture = Picture::Open(file);
  EXPECT_TRUE(picture.Save(folder / "copied.jpg").losses.empty());
  EXPECT_EQ(thumbnailOf("copied.jpg")->PixelColor(5, 5), clBlack);
  for (const char* name : {"turned.jpg", "turned.png"}) {
    SCOPED_TRACE(name);
    Picture turned = picture;
    EXPECT_TRUE(turned.Turn(1).Save(folder / name).losses.empty());
    const auto thumbnail = thumbnailOf(name);
    EXPECT_EQ(thumbnail->Width(), 120);
    EXPECT_EQ(thumbnail->Height(), 160);
    EXPECT_EQ(thumbnail->PixelColor(60, 80), clWhite);
  }
  MetadataEdit edit;
  edit.stripThumbnail = true;
  picture.Edit(edit).Turn(1).Save(folder / "none.jpg");
  EXPECT_FALSE(ExifBlock(Picture::Open(folder / "none.jpg").GetMetadata().exif).HasThumbnail());
}

}  // namespace
}  // namespace rasterkit
