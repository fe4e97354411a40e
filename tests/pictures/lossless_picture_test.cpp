// JPEG files are turned, mirrored and cropped without being compressed again.

#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/reading/embedded_thumbnail.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/pictures/coefficient_picture.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::CoefficientPicture;
using test::CoefficientsOf;
using test::TempFolder;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

using Bytes = std::vector<uint8_t>;

constexpr const char* kMovedNote = "the pixels are moved without recompression";

struct Photo {
  int width = 96, height = 64, orientation = 1;
  int h = 2, v = 2;
  bool isGray = false, isProgressive = false, isArithmetic = false;
  int restartInterval = 0;
  bool hasThumbnail = true, hasResourceThumbnail = false;
};

Bytes ExifOf(const Photo& photo, const Bytes& thumbnail) {
  ExifBlock exif;
  exif.SetWords(ExifDirectoryId::main, 274, std::array{static_cast<uint16_t>(photo.orientation)});
  exif.SetText(ExifDirectoryId::main, 271, "Some Camera");
  if (photo.hasThumbnail) exif.SetThumbnail(thumbnail);
  return exif.TakeBytes();
}

Bytes ResourceOf(const Bytes& jpeg) {
  Bytes bytes(28);
  bytes[3] = 1;
  bytes.insert(bytes.end(), jpeg.begin(), jpeg.end());
  ImageResources resources;
  resources.Set(image_resource::kThumbnail, bytes);
  return resources.Bytes();
}

/// Smooth colors that differ in all corners, with detail.
Raster Scene(int width, int height, bool isGray) {
  if (isGray) return test::GrayRaster(width, height);
  std::mt19937 random(7);
  const Raster detail = test::FewColorsRaster(pf24bit, width, height, 30, random);
  Raster scene = test::GradientRaster(pf24bit, width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < 3 * width; ++x) {
      scene.Row(y)[x] = static_cast<uint8_t>((3 * scene.Row(y)[x] + detail.Row(y)[x]) / 4);
    }
  }
  return scene;
}

Bytes JpegOf(const Photo& photo) {
  JpegForm form;
  form.components = {{1, photo.h, photo.v, 0}};
  if (!photo.isGray) {
    form.components.push_back({2, 1, 1, 1});
    form.components.push_back({3, 1, 1, 1});
  }
  for (size_t table = 0; table < 2; ++table) {
    std::array<uint16_t, 64> steps{};
    for (size_t i = 0; i < 64; ++i) steps[i] = static_cast<uint16_t>(3 + table + i / 8 * 2 + i % 8);
    form.tables[table] = steps;
  }
  form.progressive = photo.isProgressive;
  form.arithmetic = photo.isArithmetic;
  form.restartInterval = photo.restartInterval;
  PictureWriting writing;
  writing.form = form;
  const Bytes thumbnail = EncodeJpeg(Scene(24, 16, false), 80);
  writing.metadata.exif = ExifOf(photo, thumbnail);
  writing.metadata.resolution = {300, 200};
  if (photo.hasResourceThumbnail) writing.metadata.photoshop = ResourceOf(thumbnail);
  TMemoryStream stream;
  WriteJpeg(Scene(photo.width, photo.height, photo.isGray), writing, stream);
  return stream.TakeBytes();
}

struct Saved {
  Report report;
  Bytes bytes;
};

Saved Save(const Picture& picture, const SaveOptions& options = {}) {
  TMemoryStream stream;
  Saved saved;
  saved.report = picture.Save(stream, options);
  saved.bytes = stream.TakeBytes();
  return saved;
}

/// The plan says what the save did.
void ExpectForetold(const Picture& picture, const Saved& saved, SaveOptions options = {}) {
  options.type = PictureType::jpeg;
  const TempFolder folder;
  const Report plan = picture.Plan(folder / "a.jpg", options);
  EXPECT_EQ(plan.isMoved, saved.report.isMoved);
  EXPECT_EQ(plan.isCopied, saved.report.isCopied);
  EXPECT_EQ(plan.width, saved.report.width);
  EXPECT_EQ(plan.height, saved.report.height);
  EXPECT_EQ(plan.moveNote, saved.report.moveNote);
  EXPECT_EQ(plan.notes, saved.report.notes);
  EXPECT_EQ(plan.layout.bits, saved.report.layout.bits);
  EXPECT_EQ(plan.layout.bands, saved.report.layout.bands);
  EXPECT_EQ(plan.layout.model, saved.report.layout.model);
  EXPECT_TRUE(plan.form == saved.report.form);
  EXPECT_EQ(plan.losses.size(), saved.report.losses.size());
  EXPECT_GE(plan.bytes, saved.bytes.size());
  EXPECT_GE(plan.memory, saved.bytes.size());
}

Raster Shrunk(const Bytes& jpeg, int width, int height) {
  Picture picture = Picture::Open(jpeg);
  picture.Resize(width, height, {Filter::area}).Change(SetBits{24});
  return picture.Bitmap()->Content().Clone();
}

/// The mean difference of two pictures after both are shrunk.
double Difference(const Bytes& a, const Bytes& b) {
  constexpr int kSide = 6;
  const Raster first = Shrunk(a, kSide, kSide), second = Shrunk(b, kSide, kSide);
  int sum = 0;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < 3 * kSide; ++x) sum += std::abs(first.Row(y)[x] - second.Row(y)[x]);
  }
  return sum / (3.0 * kSide * kSide);
}

/// The thumbnails show the picture of the file.
void ExpectTrueThumbnails(const Bytes& jpeg, const Photo& photo) {
  const Metadata metadata = Picture::Open(jpeg).GetMetadata();
  const ExifBlock exif(metadata.exif);
  const auto inExif = exif.Thumbnail();
  ASSERT_EQ(!inExif.empty(), photo.hasThumbnail);
  if (photo.hasThumbnail) EXPECT_LT(Difference({inExif.begin(), inExif.end()}, jpeg), 4);
  const ImageResources resources(metadata.photoshop);
  const ImageResource* const resource = resources.Find(image_resource::kThumbnail);
  ASSERT_EQ(resource != nullptr, photo.hasResourceThumbnail);
  if (resource == nullptr) return;
  EXPECT_LT(Difference({resource->bytes.begin() + 28, resource->bytes.end()}, jpeg), 4);
}

TEST(LosslessPicture, MakesEveryOrientationUpright) {
  const Photo kinds[] = {{},
                         {.h = 1, .v = 1},
                         {.h = 2, .v = 1, .isProgressive = true},
                         {.h = 1, .v = 2, .restartInterval = 2},
                         {.h = 1, .v = 1, .isGray = true},
                         {.width = 480, .height = 320, .hasResourceThumbnail = true}};
  for (Photo photo : kinds) {
    for (photo.orientation = 1; photo.orientation <= 8; ++photo.orientation) {
      SCOPED_TRACE(testing::Message()
                   << photo.width << " wide, " << photo.h << " x " << photo.v << ", gray "
                   << photo.isGray << ", orientation " << photo.orientation);
      const Bytes jpeg = JpegOf(photo);
      const CoefficientPicture before = CoefficientsOf(jpeg);
      ASSERT_EQ(before.isProgressive, photo.isProgressive);
      ASSERT_EQ(before.restartInterval, photo.restartInterval);
      const Picture picture = Picture::Open(jpeg);
      const Saved saved = Save(picture);
      EXPECT_EQ(saved.report.isMoved, photo.orientation != 1);
      EXPECT_EQ(saved.report.isCopied, photo.orientation == 1);
      EXPECT_TRUE(saved.report.losses.empty());
      EXPECT_EQ(saved.report.moveNote, "");
      EXPECT_TRUE(CoefficientsOf(saved.bytes) == test::Upright(before, photo.orientation));
      ExpectForetold(picture, saved);

      const Picture after = Picture::Open(saved.bytes);
      EXPECT_EQ(after.Width(), picture.Width());
      EXPECT_EQ(after.Height(), picture.Height());
      EXPECT_TRUE(after.Steps().empty()) << "orientation 1";
      EXPECT_TRUE(after.GetMetadata().resolution == picture.GetMetadata().resolution);
      EXPECT_TRUE(after.GetMetadata().resolution ==
                  (photo.orientation < 5 ? Resolution{300, 200} : Resolution{200, 300}));
      if (saved.report.isMoved) ExpectTrueThumbnails(saved.bytes, photo);
    }
  }
}

/// Random turns, mirrors and crops on the borders of blocks, one after the other, give what the
/// same operations give on the blocks, one after the other.
TEST(LosslessPicture, FollowsAnySequenceOfMoves) {
  for (unsigned seed = 0; seed < 150; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto below = [&](int count) {
      return std::uniform_int_distribution<int>(0, count - 1)(random);
    };
    Photo photo{.width = 16 * (3 + below(4)), .height = 16 * (3 + below(4))};
    photo.orientation = 1 + below(8);
    photo.h = 1 + below(2);
    photo.v = 1 + below(2);
    photo.isProgressive = below(3) == 0;
    photo.hasThumbnail = false;
    const Bytes jpeg = JpegOf(photo);
    Picture picture = Picture::Open(jpeg);
    CoefficientPicture expected = test::Upright(CoefficientsOf(jpeg), photo.orientation);
    for (int i = 0; i < 4; ++i) {
      const int quarters = below(8) - 4;
      switch (below(5)) {
        case 0:
          picture.Turn(quarters);
          expected = test::Turned(expected, quarters);
          break;
        case 1:
          picture.Rotate(90.0 * quarters);
          expected = test::Turned(expected, quarters);
          break;
        case 2:
          picture.Mirror(MirrorAxis::leftRight);
          expected = test::Mirrored(expected);
          break;
        case 3:
          picture.Mirror(MirrorAxis::topBottom);
          expected = test::Flipped(expected);
          break;
        default: {
          const int left = 16 * below(expected.width / 16), top = 16 * below(expected.height / 16);
          const int width = 16 * (1 + below((expected.width - left) / 16));
          const int height = 16 * (1 + below((expected.height - top) / 16));
          picture.Crop({left, top, width, height});
          expected = test::Cropped(expected, left, top, width, height);
        }
      }
    }
    const Saved saved = Save(picture);
    EXPECT_NE(saved.report.isMoved, saved.report.isCopied);
    EXPECT_TRUE(CoefficientsOf(saved.bytes) == expected);
    ExpectForetold(picture, saved);
  }
}

TEST(LosslessPicture, KeepsPartialBlocksAtTheFarEdges) {
  const Photo photo{.width = 93, .height = 61};
  const Bytes jpeg = JpegOf(photo);
  const CoefficientPicture before = CoefficientsOf(jpeg);
  Picture part = Picture::Open(jpeg);
  part.Crop({16, 32, 70, 27});
  Saved saved = Save(part);
  EXPECT_TRUE(saved.report.isMoved);
  EXPECT_TRUE(CoefficientsOf(saved.bytes) == test::Cropped(before, 16, 32, 70, 27));
  Picture transposed = Picture::Open(jpeg);
  transposed.Turn(1).Mirror(MirrorAxis::topBottom);
  saved = Save(transposed);
  EXPECT_TRUE(saved.report.isMoved);
  EXPECT_TRUE(CoefficientsOf(saved.bytes) == test::Transposed(before));
}

TEST(LosslessPicture, IsCompressedAgainWithItsTablesWhereAMoveIsNotExact) {
  const Photo photo{.width = 93, .height = 61};
  const Bytes jpeg = JpegOf(photo);
  struct Case {
    Step step;
    std::string note;
  };
  const Case cases[] = {
      {MirrorStep{MirrorAxis::leftRight},
       "the pixels are compressed again: the new left edge is not on the border of a block "
       "(trimming would drop 13 columns at the left edge)"},
      {TurnStep{1},
       "the pixels are compressed again: the new top edge is not on the border of a block "
       "(trimming would drop 13 rows at the top edge)"},
      {CropStep{16, 3, 40, 40},
       "the pixels are compressed again: the new top edge is not on the border of a block "
       "(trimming would drop 13 rows at the top edge)"},
      {CropStep{15, 31, 40, 20},
       "the pixels are compressed again: the new left and top edges are not on the borders of "
       "blocks (trimming would drop 1 column at the left edge and 1 row at the top edge)"},
      {CropStep{1, 0, 9, 9}, "the pixels are compressed again: no whole block would be left"}};
  for (const Case& one : cases) {
    SCOPED_TRACE(one.note);
    Picture picture = Picture::Open(jpeg);
    picture.Apply(one.step);
    const Saved saved = Save(picture);
    EXPECT_FALSE(saved.report.isMoved);
    EXPECT_EQ(saved.report.moveNote, one.note);
    EXPECT_THAT(saved.report.notes, Contains(one.note));
    EXPECT_THAT(saved.report.notes, Not(Contains(kMovedNote)));
    EXPECT_EQ(saved.report.width, picture.Width());
    EXPECT_EQ(saved.report.height, picture.Height());
    ExpectForetold(picture, saved);
    const JpegForm old = std::get<JpegForm>(picture.SourceForm());
    const bool isTurned = std::holds_alternative<TurnStep>(one.step);
    const JpegForm& form = std::get<JpegForm>(saved.report.form);
    EXPECT_TRUE(form.tables == (isTurned ? Transposed(old) : old).tables);
  }
}

TEST(LosslessPicture, DropsPixelsOnlyWhereThatIsAskedFor) {
  const Photo photo{.width = 93, .height = 61};
  const Bytes jpeg = JpegOf(photo);
  const CoefficientPicture before = CoefficientsOf(jpeg);
  SaveOptions trim;
  trim.lossless = Lossless::trim;

  Picture mirrored = Picture::Open(jpeg);
  mirrored.Mirror(MirrorAxis::leftRight);
  Saved saved = Save(mirrored, trim);
  EXPECT_TRUE(saved.report.isMoved);
  EXPECT_EQ(saved.report.moveNote,
            "13 columns at the left edge dropped, so that nothing is compressed again");
  EXPECT_EQ(saved.report.width, 80);
  EXPECT_EQ(saved.report.height, 61);
  EXPECT_TRUE(CoefficientsOf(saved.bytes) == test::Mirrored(test::Cropped(before, 0, 0, 80, 61)));
  ExpectForetold(mirrored, saved, trim);
  ExpectTrueThumbnails(saved.bytes, photo);

  Picture turned = Picture::Open(jpeg);
  turned.Turn(2);
  saved = Save(turned, trim);
  EXPECT_TRUE(saved.report.isMoved);
  EXPECT_EQ(saved.report.moveNote,
            "13 columns at the left edge and 13 rows at the top edge dropped, so that nothing is "
            "compressed again");
  EXPECT_TRUE(CoefficientsOf(saved.bytes) == test::Turned(test::Cropped(before, 0, 0, 80, 48), 2));
  ExpectForetold(turned, saved, trim);

  Picture part = Picture::Open(jpeg);
  part.Crop({3, 20, 50, 41});
  saved = Save(part, trim);
  EXPECT_TRUE(saved.report.isMoved);
  EXPECT_TRUE(CoefficientsOf(saved.bytes) == test::Cropped(before, 16, 32, 37, 29));

  Picture whole = Picture::Open(jpeg);
  whole.Turn(3).Mirror(MirrorAxis::leftRight);
  saved = Save(whole, trim);
  EXPECT_TRUE(saved.report.isMoved);
  EXPECT_EQ(saved.report.moveNote, "") << "nothing needs to be dropped";
  EXPECT_TRUE(CoefficientsOf(saved.bytes) == test::Transposed(before));

  Picture tiny = Picture::Open(jpeg);
  tiny.Crop({1, 0, 9, 9});
  saved = Save(tiny, trim);
  EXPECT_FALSE(saved.report.isMoved);
  EXPECT_EQ(saved.report.width, 9);
  EXPECT_EQ(saved.report.moveNote, "the pixels are compressed again: no whole block would be left");
}

TEST(LosslessPicture, IsCompressedAgainOnRequestWithoutANote) {
  Picture picture = Picture::Open(JpegOf({}));
  picture.Turn(1);
  SaveOptions off, quality, sampling;
  off.lossless = Lossless::off;
  quality.quality = 70;
  sampling.chromaX = sampling.chromaY = 1;
  for (const SaveOptions& options : {off, quality, sampling}) {
    const Saved saved = Save(picture, options);
    EXPECT_FALSE(saved.report.isMoved);
    EXPECT_FALSE(saved.report.isCopied);
    EXPECT_EQ(saved.report.moveNote, "");
    ExpectForetold(picture, saved, options);
  }
  EXPECT_TRUE(Save(picture).report.isMoved);
}

TEST(LosslessPicture, IsCompressedAgainWhereAStepChangesPixels) {
  const Bytes jpeg = JpegOf({});
  const Step changes[] = {Step(ResizeStep{48, 32, {}}), Step(RotateStep{3, {}}),
                          Step(ChangeStep{MakeGray{}})};
  for (const Step& change : changes) {
    Picture picture = Picture::Open(jpeg);
    picture.Turn(1).Apply(change).Turn(1);
    EXPECT_FALSE(Save(picture).report.isMoved) << change.index();
  }
  // Both changes of size together are none, but pixels were lost between them.
  Picture picture = Picture::Open(jpeg);
  picture.Resize(48, 32, {Filter::nearest}).Resize(96, 64, {Filter::nearest});
  EXPECT_FALSE(Save(picture).report.isMoved);
  Picture png = Picture::Open(jpeg);
  png.Turn(1);
  SaveOptions asPng;
  asPng.type = PictureType::png;
  const Saved saved = Save(png, asPng);
  EXPECT_FALSE(saved.report.isMoved);
  EXPECT_EQ(saved.report.moveNote, "");
}

TEST(LosslessPicture, IsMovedWhereADepthChangesNothing) {
  for (const bool isGray : {true, false}) {
    const int bits = isGray ? 8 : 24;
    Picture picture = Picture::Open(JpegOf({.isGray = isGray}));
    EXPECT_TRUE(Save(Picture(picture).Change(SetBits{bits})).report.isCopied) << bits;
    EXPECT_TRUE(Save(Picture(picture).Turn(1).Change(SetBits{bits})).report.isMoved) << bits;
    EXPECT_FALSE(Save(Picture(picture).Turn(1).Change(SetBits{1})).report.isMoved) << bits;
    EXPECT_THROW(picture.Change(SetBits{7}), RangeError);
  }
}

TEST(LosslessPicture, SaysThatArithmeticCodingIsNotMoved) {
  const Photo photo{.orientation = 6, .isArithmetic = true};
  const Picture picture = Picture::Open(JpegOf(photo));
  ASSERT_TRUE(std::get<JpegForm>(picture.SourceForm()).arithmetic);
  const Saved saved = Save(picture);
  EXPECT_FALSE(saved.report.isMoved);
  EXPECT_EQ(saved.report.moveNote,
            "the pixels are compressed again: blocks with arithmetic coding are not moved");
  ExpectForetold(picture, saved);
}

Bytes WithShortScan(Bytes jpeg) {
  size_t at = jpeg.size();
  while (!(jpeg[at - 2] == 0xFF && jpeg[at - 1] == 0xDA)) --at;
  jpeg.resize(at + (jpeg.size() - at) / 2);
  jpeg.insert(jpeg.end(), {0xFF, 0xD9});
  return jpeg;
}

TEST(LosslessPicture, IsNeverMovedWhenDamaged) {
  const Photo photo{.width = 93, .height = 61};
  const Bytes whole = JpegOf(photo), damaged = WithShortScan(whole);
  Picture picture = Picture::Open(damaged);
  picture.Turn(2);
  for (const Lossless lossless : {Lossless::exact, Lossless::trim}) {
    for (const int top : {0, 16}) {
      Picture part = picture;
      part.Crop({13, 13 + top, 60, 30});
      SaveOptions options;
      options.lossless = lossless;
      const Saved saved = Save(part, options);
      EXPECT_FALSE(saved.report.isMoved);
      EXPECT_THAT(saved.report.moveNote, HasSubstr("the pixels are compressed again: "));
      ASSERT_FALSE(saved.report.losses.empty());
      EXPECT_EQ(saved.report.losses.front().kind, LossKind::damage);
      EXPECT_EQ(saved.report.width, 60);
      EXPECT_EQ(saved.report.height, 30);
      EXPECT_NO_THROW(CoefficientsOf(saved.bytes));
    }
  }
  // What would be trimmed of a whole picture is there.
  SaveOptions trim;
  trim.lossless = Lossless::trim;
  const TempFolder folder;
  folder.Write("a.jpg", damaged);
  folder.Write("a.jgw", std::string("2\n0\n0\n-2\n1000\n5000\n"));
  Picture placed = Picture::Open(folder / "a.jpg");
  placed.Mirror(MirrorAxis::leftRight);
  EXPECT_EQ(placed.Plan(folder / "b.jpg", trim).width, 80) << "the headers are whole";
  const Report report = placed.Save(folder / "b.jpg", trim);
  EXPECT_FALSE(report.isMoved);
  EXPECT_EQ(report.width, 93);
  EXPECT_TRUE(Picture::Open(folder / "b.jpg").GetPlacement().affine ==
              placed.GetPlacement().affine);
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.jgw", "a.jpg", "b.jgw", "b.jpg"}));
}

/// The file with the end marker in place of its last scan.
Bytes WithoutLastScan(Bytes jpeg) {
  size_t at = jpeg.size();
  while (!(jpeg[at - 2] == 0xFF && jpeg[at - 1] == 0xDA)) --at;
  jpeg.resize(at - 2);
  jpeg.insert(jpeg.end(), {0xFF, 0xD9});
  return jpeg;
}

TEST(LosslessPicture, SaysThatScansAreMissingHoweverItIsSaved) {
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  const Bytes whole = JpegOf({.width = 93, .height = 61, .isProgressive = true});
  SaveOptions asPng;
  asPng.type = PictureType::png;
  EXPECT_TRUE(Save(Picture::Open(whole), asPng).report.losses.empty());
  const Loss missing{LossKind::damage, "JPEG: scans of component 1 are missing",
                     "the file of the picture is damaged"};
  const auto expectMissing = [&](const Saved& saved) {
    EXPECT_FALSE(saved.report.isMoved);
    ASSERT_EQ(saved.report.losses.size(), 1u);
    EXPECT_EQ(saved.report.losses[0].kind, missing.kind);
    EXPECT_EQ(saved.report.losses[0].what, missing.what);
    EXPECT_EQ(saved.report.losses[0].why, missing.why);
  };
  for (const Isolation isolation : {Isolation::none, Isolation::process}) {
    SCOPED_TRACE(isolation == Isolation::none ? "here" : "in a worker");
    OpenOptions options;
    options.isolation = isolation;
    const Picture picture = Picture::Open(WithoutLastScan(whole), options);
    expectMissing(Save(picture, asPng));
    Picture turned = picture;
    turned.Turn(2).Crop({13, 13, 64, 32});
    const Saved saved = Save(turned);
    EXPECT_EQ(saved.report.moveNote, "the pixels are compressed again: " + missing.what);
    expectMissing(saved);
    Picture part = picture;
    part.Crop({1, 1, 60, 30});
    expectMissing(Save(part));
  }
}

TEST(LosslessPicture, ThatHasTooManyScansIsAtFaultItself) {
  Bytes jpeg = JpegOf({.width = 1024, .height = 1024, .isGray = true, .isProgressive = true});
  jpeg.resize(jpeg.size() - 2);
  const Bytes scan = {0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 0, 0x10};
  for (int i = 0; i < 20000; ++i) jpeg.insert(jpeg.end(), scan.begin(), scan.end());
  jpeg.insert(jpeg.end(), {0xFF, 0xD9});
  const TempFolder folder;
  Picture picture = Picture::Open(folder.Write("a.jpg", jpeg));
  picture.Turn(2);
  try {
    picture.Save(folder / "b.jpg");
    ADD_FAILURE() << "all scans were read";
  } catch (const LimitError& error) {
    EXPECT_THAT(error.Reason(), HasSubstr("too many scans"));
    EXPECT_EQ(error.File(), folder / "a.jpg");
  }
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.jpg"}));
}

TEST(LosslessPicture, StaysAtItsPlaceOnTheMapWhenTrimmed) {
  const TempFolder folder;
  folder.Write("a.jpg", JpegOf({.width = 93, .height = 61}));
  folder.Write("a.jgw", std::string("2\n0\n0\n-2\n1000\n5000\n"));
  SaveOptions trim;
  trim.lossless = Lossless::trim;
  Picture picture = Picture::Open(folder / "a.jpg");
  picture.Turn(1);
  const Report report = picture.Save(folder / "b.jpg", trim);
  EXPECT_TRUE(report.isMoved);
  const Picture saved = Picture::Open(folder / "b.jpg");
  EXPECT_EQ(saved.Width(), 61);
  EXPECT_EQ(saved.Height(), 80);
  ASSERT_TRUE(saved.GetPlacement().affine.has_value());
  // The pixel at the left end of the bottom row was the first one.
  const MapPoint first = saved.GetPlacement().affine->At(0, 79);
  EXPECT_EQ(first.x, 1000);
  EXPECT_EQ(first.y, 5000);
  const MapPoint last = saved.GetPlacement().affine->At(60, 0);
  EXPECT_EQ(last.x, 1000 + 2 * 79);
  EXPECT_EQ(last.y, 5000 - 2 * 60);
}

TEST(LosslessPicture, IsTheSameFromAWorker) {
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  OpenOptions isolated;
  isolated.isolation = Isolation::process;
  for (int orientation = 2; orientation <= 8; ++orientation) {
    const Bytes jpeg = JpegOf({.width = 96, .height = 96, .orientation = orientation});
    const Saved here = Save(Picture::Open(jpeg)), there = Save(Picture::Open(jpeg, isolated));
    EXPECT_TRUE(there.report.isMoved);
    EXPECT_EQ(there.report.notes, here.report.notes);
    EXPECT_TRUE(there.bytes == here.bytes) << orientation;
  }
  const Bytes damaged = WithShortScan(JpegOf({.orientation = 3}));
  const Saved here = Save(Picture::Open(damaged)), there = Save(Picture::Open(damaged, isolated));
  EXPECT_FALSE(there.report.isMoved);
  EXPECT_EQ(there.report.moveNote, here.report.moveNote);
  EXPECT_EQ(there.report.losses.size(), here.report.losses.size());
  EXPECT_TRUE(there.bytes == here.bytes);
  detail::SetWorkerProgram({});
}

TEST(LosslessPicture, ThatIsCanceledLeavesNoFile) {
  const TempFolder folder;
  const std::string file = folder.Write("a.jpg", JpegOf({.width = 1600, .height = 1200}));
  for (const double from : {-1.0, 0.0, 0.3, 0.6}) {
    SCOPED_TRACE(from);
    std::stop_source stop;
    rasterkit::Run run;
    run.cancel = stop.get_token();
    if (from < 0) stop.request_stop();
    double last = -1;
    run.progress = [&](double value) {
      EXPECT_GE(value, last);
      last = value;
      if (value >= from) stop.request_stop();
    };
    EXPECT_THROW(Picture::Open(file).Turn(1).Save(folder / "b.jpg", {}, run), CanceledError);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.jpg"}));
  }
}

TEST(LosslessPicture, IsCopiedWhereOnlyMetadataChange) {
  Picture picture = Picture::Open(JpegOf({}));
  MetadataEdit edit;
  edit.stripAll = true;
  picture.Edit(edit);
  const Saved saved = Save(picture);
  EXPECT_TRUE(saved.report.isCopied);
  EXPECT_FALSE(saved.report.isMoved);
}

TEST(LosslessPicture, LosesThumbnailAndMetadataThatAreToBeRemoved) {
  Picture picture = Picture::Open(JpegOf({.orientation = 6, .hasResourceThumbnail = true}));
  MetadataEdit edit;
  edit.stripThumbnail = true;
  picture.Edit(edit);
  Saved saved = Save(picture);
  EXPECT_TRUE(saved.report.isMoved);
  EXPECT_TRUE(EmbeddedThumbnail(Picture::Open(saved.bytes).GetMetadata()).empty());
  EXPECT_TRUE(saved.report.losses.empty());
  edit.stripAll = true;
  picture.Edit(edit);
  saved = Save(picture);
  EXPECT_TRUE(saved.report.isMoved);
  const ExifBlock left(Picture::Open(saved.bytes).GetMetadata().exif);
  EXPECT_FALSE(left.Has(ExifDirectoryId::main, 271)) << "the resolution alone has a place there";
  EXPECT_FALSE(left.HasThumbnail());
}

}  // namespace
}  // namespace rasterkit
