#include <functional>

#include <gtest/gtest.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/test_pictures.h"

/// The facts of a file come back from a message as they were written. A fact that is added does not
/// compile here before it is listed, and fails here until it is written.
namespace rasterkit::detail {
namespace {

PhotoFacts SamplePhoto() {
  PhotoFacts facts;
  auto& [orientation, rotation, gps, date, make, model, warnings] = facts;
  orientation = 6;
  rotation = 270;
  gps.emplace();
  auto& [latitude, longitude, altitude] = *gps;
  latitude = -1.5;
  longitude = 179.25;
  altitude = -3;
  date = "2019-07-04T13:05:09";
  make = "Maker";
  model = "Model \xFF";
  warnings = {"EXIF: \xFF"};
  return facts;
}

void ExpectSame(const PhotoFacts& expected, const PhotoFacts& actual) {
  const auto& [orientation, rotation, gps, date, make, model, warnings] = actual;
  EXPECT_EQ(orientation, expected.orientation);
  EXPECT_EQ(rotation, expected.rotation);
  ASSERT_EQ(gps.has_value(), expected.gps.has_value());
  if (gps) {
    const auto& [latitude, longitude, altitude] = *gps;
    EXPECT_EQ(latitude, expected.gps->latitude);
    EXPECT_EQ(longitude, expected.gps->longitude);
    EXPECT_EQ(altitude, expected.gps->altitude);
  }
  EXPECT_EQ(date, expected.date);
  EXPECT_EQ(make, expected.make);
  EXPECT_EQ(model, expected.model);
  EXPECT_EQ(warnings, expected.warnings);
}

MetafileFacts SampleMetafile() {
  MetafileFacts facts;
  auto& [kind, bounds, boundsAreDrawn, frame, deviceWidth, deviceHeight, deviceWidthMm,
         deviceHeightMm, unitsPerInch, width, height, widthMm100, heightMm100, records, hasEmfPlus,
         isEmfPlusOnly, program, title, warnings] = facts;
  kind = MetafileKind::emf;
  bounds = {-1, -2, 3, 4};
  boundsAreDrawn = true;
  frame = {5, 6, 7, 8};
  deviceWidth = 9;
  deviceHeight = 10;
  deviceWidthMm = 11.5;
  deviceHeightMm = 12.5;
  unitsPerInch = 13.5;
  width = 14;
  height = 15;
  widthMm100 = 16;
  heightMm100 = 17;
  records = 18;
  hasEmfPlus = isEmfPlusOnly = true;
  program = "program";
  title = "title";
  warnings = {"a", "b"};
  return facts;
}

void ExpectSame(const MetafileFacts::Box& expected, const MetafileFacts::Box& actual) {
  const auto& [left, top, right, bottom] = actual;
  EXPECT_EQ(left, expected.left);
  EXPECT_EQ(top, expected.top);
  EXPECT_EQ(right, expected.right);
  EXPECT_EQ(bottom, expected.bottom);
}

void ExpectSame(const MetafileFacts& expected, const MetafileFacts& actual) {
  const auto& [kind, bounds, boundsAreDrawn, frame, deviceWidth, deviceHeight, deviceWidthMm,
               deviceHeightMm, unitsPerInch, width, height, widthMm100, heightMm100, records,
               hasEmfPlus, isEmfPlusOnly, program, title, warnings] = actual;
  EXPECT_EQ(kind, expected.kind);
  ExpectSame(expected.bounds, bounds);
  EXPECT_EQ(boundsAreDrawn, expected.boundsAreDrawn);
  ExpectSame(expected.frame, frame);
  EXPECT_EQ(deviceWidth, expected.deviceWidth);
  EXPECT_EQ(deviceHeight, expected.deviceHeight);
  EXPECT_EQ(deviceWidthMm, expected.deviceWidthMm);
  EXPECT_EQ(deviceHeightMm, expected.deviceHeightMm);
  EXPECT_EQ(unitsPerInch, expected.unitsPerInch);
  EXPECT_EQ(width, expected.width);
  EXPECT_EQ(height, expected.height);
  EXPECT_EQ(widthMm100, expected.widthMm100);
  EXPECT_EQ(heightMm100, expected.heightMm100);
  EXPECT_EQ(records, expected.records);
  EXPECT_EQ(hasEmfPlus, expected.hasEmfPlus);
  EXPECT_EQ(isEmfPlusOnly, expected.isEmfPlusOnly);
  EXPECT_EQ(program, expected.program);
  EXPECT_EQ(title, expected.title);
  EXPECT_EQ(warnings, expected.warnings);
}

LoadedFrame SamplePicture() {
  LoadedFrame picture;
  auto& [type, photo, metadata, warnings, bytes, tiff, grid, metafile, frames] =
      static_cast<PictureFile&>(picture);
  type = PictureType::tiff;
  photo = SamplePhoto();
  metadata = {MetadataKind::xmp, MetadataKind::gps};
  warnings = {"one", "two"};
  bytes = uint64_t{1} << 40;
  tiff.emplace();
  tiff->pages = 3;
  grid = GridType::float16;
  metafile = SampleMetafile();
  frames = 7;
  picture.frame.format = GUID_WICPixelFormat16bppGrayHalf;
  picture.frame.rows = test::GradientRaster(pf16bit, 5, 3);
  return picture;
}

FrameHead ThroughMessage(const LoadedFrame& picture, PictureFile& back) {
  FieldWriter fields;
  WritePicture(fields, picture);
  FieldReader reader(fields.Written());
  FrameHead head = ReadPictureHead(reader, back);
  reader.RequireEnd();
  return head;
}

TEST(PictureFields, Picture_Should_ComeBack) {
  const LoadedFrame expected = SamplePicture();
  PictureFile back;
  const FrameHead head = ThroughMessage(expected, back);
  const auto& [type, photo, metadata, warnings, bytes, tiff, grid, metafile, frames] = back;
  EXPECT_EQ(type, expected.type);
  ExpectSame(expected.photo, photo);
  EXPECT_EQ(metadata, expected.metadata);
  EXPECT_EQ(warnings, expected.warnings);
  EXPECT_EQ(bytes, expected.bytes);
  ASSERT_TRUE(tiff);
  EXPECT_EQ(tiff->pages, 3);
  EXPECT_EQ(grid, expected.grid);
  ASSERT_TRUE(metafile);
  ExpectSame(*expected.metafile, *metafile);
  EXPECT_EQ(frames, expected.frames);
  EXPECT_EQ(head.format, GUID_WICPixelFormat16bppGrayHalf);
  EXPECT_EQ(head.rows.width, 5);
}

TEST(PictureFields, Picture_Should_ComeBack_WithoutFacts) {
  PictureFile back = SamplePicture();
  ThroughMessage(LoadedFrame(), back);
  EXPECT_EQ(back.type, PictureType::unknown);
  EXPECT_FALSE(back.tiff || back.grid || back.metafile || back.photo.orientation ||
               back.photo.rotation || back.photo.gps);
  EXPECT_EQ(back.frames, 1);
}

TEST(PictureFields, Type_Should_ComeBack_ForEveryFormat) {
  for (const Codec& codec : CodecTable()) {
    LoadedFrame picture;
    picture.type = codec.type;
    PictureFile back;
    ThroughMessage(picture, back);
    EXPECT_EQ(back.type, codec.type) << codec.name;
  }
}

TEST(PictureFields, Picture_Should_BeRefused_WhenImpossible) {
  const std::function<void(LoadedFrame&)> impossible[] = {
      [](LoadedFrame& picture) { picture.type = static_cast<PictureType>(99); },
      [](LoadedFrame& picture) { picture.photo.orientation = 0; },
      [](LoadedFrame& picture) { picture.photo.rotation = 45; },
      [](LoadedFrame& picture) { picture.photo.rotation = 360; },
      [](LoadedFrame& picture) { picture.metafile->bounds.left = int64_t{1} << 41; },
      [](LoadedFrame& picture) { picture.metafile->width = -1; },
      [](LoadedFrame& picture) { picture.metafile->kind = static_cast<MetafileKind>(3); },
      [](LoadedFrame& picture) { picture.frames = -1; },
      [](LoadedFrame& picture) { picture.grid = GridType::float32; },
      [](LoadedFrame& picture) { picture.grid.reset(); },
      [](LoadedFrame& picture) { picture.frame.format = GUID_WICPixelFormat24bppBGR; },
  };
  for (const auto& change : impossible) {
    LoadedFrame picture = SamplePicture();
    change(picture);
    PictureFile back;
    EXPECT_THROW(ThroughMessage(picture, back), FormatError);
  }
}

TEST(PictureFields, Reports_Should_TellDamageFromWarnings) {
  CodecReport report;
  report.warnings.emplace_back("a tag is ignored");
  report.AddDamage("5 of 7 rows are complete");
  FieldWriter fields;
  WriteReport(fields, report);
  const std::vector<uint8_t> bytes = fields.Take();
  FieldReader reader(bytes);
  const CodecReport back = ReadReport(reader);
  reader.RequireEnd();
  EXPECT_EQ(back.warnings,
            (std::vector<std::string>{"a tag is ignored", "5 of 7 rows are complete"}));
  EXPECT_EQ(back.damage, (std::vector<std::string>{"5 of 7 rows are complete"}));
}

TEST(PictureFields, Warnings_Should_BeAThousandAtMost) {
  FieldWriter many;
  WriteWarnings(many, std::vector<std::string>(1500, "a"));
  FieldReader first(many.Written());
  EXPECT_EQ(ReadWarnings(first).size(), 1000u);
  FieldWriter tooMany;
  tooMany.Count(1001);
  for (int i = 0; i < 1001; ++i) tooMany.ByteText("a");
  FieldReader reader(tooMany.Written());
  EXPECT_THROW(ReadWarnings(reader), FormatError);
}

TEST(PictureFields, Reading_Should_ComeBack) {
  PictureReading reading;
  {
    auto& [threads, drawing, isolation, withPixels, keepGoing] = reading;
    auto& [dpi, size, background, isForFacts] = drawing;
    threads = 7;
    dpi = 72.5;
    size = {800, 600};
    background = RGB(1, 2, 3);
    isForFacts = true;
    isolation = Isolation::process;
    withPixels = false;
  }
  FieldWriter fields;
  WriteReading(fields, reading);
  FieldReader reader(fields.Written());
  const PictureReading back = ReadReading(reader);
  reader.RequireEnd();
  EXPECT_EQ(back.threads, 7);
  EXPECT_EQ(back.drawing.dpi, 72.5);
  EXPECT_EQ(back.drawing.size.width, 800);
  EXPECT_EQ(back.drawing.size.height, 600);
  EXPECT_EQ(back.drawing.background, RGB(1, 2, 3));
  EXPECT_TRUE(back.drawing.isForFacts);
  EXPECT_FALSE(back.withPixels);
  EXPECT_EQ(back.isolation, Isolation::none) << "a worker starts no worker";
}

}  // namespace
}  // namespace rasterkit::detail
