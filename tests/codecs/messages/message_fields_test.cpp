#include <algorithm>
#include <functional>

#include <gtest/gtest.h>

#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/tiff_fields.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/support/test_pictures.h"

/// What a decoder gives comes back from a message as it was written. A property or a fact that is
/// added does not compile here before it is listed, and fails here until it is written.
namespace rasterkit::detail {
namespace {

Raster SampleRaster(TPixelFormat format = pf8bit) {
  Raster raster = test::GradientRaster(format, 17, 9);
  auto& [palette, resolution, profile, alphaFormat, transparentColor] = raster.Properties();
  palette = GrayPalette(17);
  resolution = {300, 150.5};
  profile = std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{1, 2, 3});
  alphaFormat = afDefined;
  transparentColor = RGB(9, 8, 7);
  return raster;
}

void ExpectSame(const Raster& expected, const Raster& actual) {
  const auto& [palette, resolution, profile, alphaFormat, transparentColor] = expected.Properties();
  const auto& [palette2, resolution2, profile2, alphaFormat2, transparentColor2] =
      actual.Properties();
  EXPECT_EQ(palette2, palette);
  EXPECT_EQ(resolution2, resolution);
  ASSERT_EQ(profile2 == nullptr, profile == nullptr);
  if (profile) {
    EXPECT_EQ(*profile2, *profile);
  }
  EXPECT_EQ(alphaFormat2, alphaFormat);
  EXPECT_EQ(transparentColor2, transparentColor);
  EXPECT_EQ(actual.Format(), expected.Format());
  EXPECT_EQ(actual.Width(), expected.Width());
  EXPECT_EQ(actual.Height(), expected.Height());
  const auto rows = RowsOf(expected), rows2 = RowsOf(actual);
  EXPECT_TRUE(std::equal(rows.begin(), rows.end(), rows2.begin(), rows2.end()));
}

Raster BuildRaster(const RasterHead& head, std::span<const uint8_t> rows) {
  Raster raster = NewRaster(head, rows.size());
  std::copy(rows.begin(), rows.end(), RowsOf(raster).begin());
  raster.ClearPadding();
  return raster;
}

Raster ThroughMessage(const Raster& raster) {
  FieldWriter fields;
  WriteRaster(fields, raster);
  FieldReader reader(fields.Written());
  const RasterHead head = ReadRasterHead(reader);
  reader.RequireEnd();
  return BuildRaster(head, RowsOf(raster));
}

TEST(MessageFields, Raster_Should_ComeBack_InEveryFormat) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    const Raster raster = SampleRaster(format);
    ExpectSame(raster, ThroughMessage(raster));
  }
}

TEST(MessageFields, Raster_Should_ComeBack_WithoutPropertiesAndPixels) {
  const Raster plain = test::GradientRaster(pf24bit, 3, 2);
  ExpectSame(plain, ThroughMessage(plain));
  ExpectSame(Raster(), ThroughMessage(Raster()));
}

/// Padding is zero in every raster, whatever the sender put there.
TEST(MessageFields, Raster_Should_HaveZeroPadding) {
  const Raster raster = test::GradientRaster(pf24bit, 3, 1);
  FieldWriter fields;
  WriteRaster(fields, raster);
  FieldReader reader(fields.Written());
  const std::vector<uint8_t> rows(12, 0xFF);
  const Raster back = BuildRaster(ReadRasterHead(reader), rows);
  EXPECT_EQ(back.Row(0)[8], 0xFF);
  EXPECT_EQ(back.Row(0)[9], 0);
  EXPECT_EQ(back.Row(0)[11], 0);
}

RasterHead HeadOf(const std::function<void(FieldWriter&)>& write) {
  FieldWriter fields;
  write(fields);
  FieldReader reader(fields.Written());
  return ReadRasterHead(reader);
}

void WriteHead(FieldWriter& fields, int format, int width, int height, uint32_t entries = 0,
               int alphaFormat = 0, int color = 0) {
  fields.I32(format);
  fields.I32(width);
  fields.I32(height);
  fields.U32(entries);
  for (uint32_t i = 0; i < entries; ++i) fields.U32(i);
  fields.F64(0);
  fields.F64(0);
  fields.Bool(false);
  fields.I32(alphaFormat);
  fields.Bool(true);
  fields.I32(color);
}

TEST(MessageFields, Raster_Should_BeRefused_WhenImpossible) {
  EXPECT_EQ(HeadOf([](FieldWriter& fields) { WriteHead(fields, pf8bit, 2, 2, 256); }).width, 2);
  const std::function<void(FieldWriter&)> impossible[] = {
      [](FieldWriter& fields) { WriteHead(fields, pfDevice, 2, 2); },
      [](FieldWriter& fields) { WriteHead(fields, pfCustom, 2, 2); },
      [](FieldWriter& fields) { WriteHead(fields, -1, 2, 2); },
      [](FieldWriter& fields) { WriteHead(fields, pf8bit, -1, 2); },
      [](FieldWriter& fields) { WriteHead(fields, pf8bit, 2, -1); },
      [](FieldWriter& fields) { WriteHead(fields, pf8bit, 2, 2, 257); },
      [](FieldWriter& fields) { WriteHead(fields, pf8bit, 2, 2, 0, 2); },
      [](FieldWriter& fields) { WriteHead(fields, pf8bit, 2, 2, 0, 0, -1); },
      [](FieldWriter& fields) { WriteHead(fields, pf8bit, 2, 2, 0, 0, 0x1000000); },
  };
  for (const auto& write : impossible) EXPECT_THROW(HeadOf(write), FormatError);
}

TEST(MessageFields, Raster_Should_BeRefused_WithOtherRows) {
  RasterHead head;
  head.format = pf24bit;
  head.width = 3;
  head.height = 2;
  const std::vector<uint8_t> rows(24);
  EXPECT_EQ(BuildRaster(head, rows).Width(), 3);
  EXPECT_THROW(BuildRaster(head, std::span(rows).first(23)), FormatError);
  head.height = 1;
  EXPECT_THROW(BuildRaster(head, rows), FormatError);
  head.width = head.height = 0x7FFFFFFF;
  EXPECT_THROW(BuildRaster(head, rows), FormatError);
}

TEST(MessageFields, Raster_Should_KeepTheLimitsOfTheHost) {
  Limits limits;
  limits.pictureBytes = 23;
  const LimitsScope scope(limits);
  RasterHead head;
  head.format = pf24bit;
  head.width = 3;
  head.height = 2;
  EXPECT_THROW(BuildRaster(head, std::vector<uint8_t>(24)), LimitError);
}

TEST(MessageFields, Frame_Should_ComeBack) {
  ImagingFrame frame;
  auto& [format, rows, isConverted] = frame;
  format = GUID_WICPixelFormat16bppGrayHalf;
  rows = SampleRaster(pf16bit);
  isConverted = true;
  FieldWriter fields;
  WriteFrame(fields, frame);
  FieldReader reader(fields.Written());
  const FrameHead head = ReadFrameHead(reader);
  reader.RequireEnd();
  ImagingFrame back = NewFrame(head, RowsOf(rows).size());
  back.rows = BuildRaster(head.rows, RowsOf(std::as_const(rows)));
  EXPECT_EQ(back.format, format);
  EXPECT_EQ(back.isConverted, isConverted);
  ExpectSame(rows, back.rows);
}

TEST(MessageFields, Frame_Should_BeRefused_WhenItsRowsHaveOtherBits) {
  ImagingFrame frame;
  frame.format = GUID_WICPixelFormat32bppGrayFloat;
  frame.rows = SampleRaster(pf8bit);
  FieldWriter fields;
  WriteFrame(fields, frame);
  FieldReader reader(fields.Written());
  EXPECT_THROW(ReadFrameHead(reader), FormatError);
}

TEST(MessageFields, Warnings_Should_ComeBack) {
  const std::vector<std::string> warnings = {"", "JPEG: 3 of 4 rows", "caf\xE9"};
  FieldWriter fields;
  WriteWarnings(fields, warnings);
  FieldReader reader(fields.Written());
  EXPECT_EQ(ReadWarnings(reader), warnings);
}

TiffFacts SampleFacts() {
  TiffFacts facts;
  auto& [width, height, bitsPerSample, samples, sampleFormat, compression, photometric, isTiled,
         isPlanar, isBigTiff, isBigEndian, orientation, pages, secondaryPages, pixelScale,
         tiePoints, transformation, rasterType, hasCoordinateSystem, noData, metadata] = facts;
  width = 4000000000;
  height = 2;
  bitsPerSample = 3;
  samples = 4;
  sampleFormat = 5;
  compression = 6;
  photometric = 65535;
  isTiled = isPlanar = isBigTiff = isBigEndian = true;
  orientation = 8;
  pages = 9;
  secondaryPages = 7;
  pixelScale = {1, 2, 3};
  tiePoints = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  transformation.assign(16, 0.5);
  rasterType = 2;
  hasCoordinateSystem = true;
  noData = "-9999\xFF";
  metadata = {MetadataKind::exif, MetadataKind::noData};
  return facts;
}

TEST(MessageFields, TiffFacts_Should_ComeBack) {
  FieldWriter fields;
  WriteTiffFacts(fields, SampleFacts());
  FieldReader reader(fields.Written());
  const TiffFacts back = ReadTiffFacts(reader);
  reader.RequireEnd();
  const auto& [width, height, bitsPerSample, samples, sampleFormat, compression, photometric,
               isTiled, isPlanar, isBigTiff, isBigEndian, orientation, pages, secondaryPages,
               pixelScale, tiePoints, transformation, rasterType, hasCoordinateSystem, noData,
               metadata] = back;
  EXPECT_EQ(width, 4000000000);
  EXPECT_EQ(height, 2u);
  EXPECT_EQ(bitsPerSample, 3);
  EXPECT_EQ(samples, 4);
  EXPECT_EQ(sampleFormat, 5);
  EXPECT_EQ(compression, 6);
  EXPECT_EQ(photometric, 65535);
  EXPECT_TRUE(isTiled && isPlanar && isBigTiff && isBigEndian);
  EXPECT_EQ(orientation, 8);
  EXPECT_EQ(pages, 9);
  EXPECT_EQ(secondaryPages, 7);
  EXPECT_EQ(pixelScale, SampleFacts().pixelScale);
  EXPECT_EQ(tiePoints, SampleFacts().tiePoints);
  EXPECT_EQ(transformation, SampleFacts().transformation);
  EXPECT_EQ(rasterType, 2);
  EXPECT_TRUE(hasCoordinateSystem);
  EXPECT_EQ(noData, "-9999\xFF");
  EXPECT_EQ(metadata, SampleFacts().metadata);
}

TEST(MessageFields, TiffFacts_Should_BeRefused_WhenImpossible) {
  const std::function<void(TiffFacts&)> impossible[] = {
      [](TiffFacts& facts) { facts.bitsPerSample = 65536; },
      [](TiffFacts& facts) { facts.orientation = 9; },
      [](TiffFacts& facts) { facts.orientation = 0; },
      [](TiffFacts& facts) { facts.pages = -1; },
      [](TiffFacts& facts) { facts.secondaryPages = 10; },
      [](TiffFacts& facts) {
        facts.pixelScale = {1, 2};
      },
      [](TiffFacts& facts) { facts.tiePoints.pop_back(); },
      [](TiffFacts& facts) { facts.transformation.resize(32); },
      [](TiffFacts& facts) { facts.metadata.push_back(static_cast<MetadataKind>(99)); },
  };
  for (const auto& change : impossible) {
    TiffFacts facts = SampleFacts();
    change(facts);
    FieldWriter fields;
    WriteTiffFacts(fields, facts);
    FieldReader reader(fields.Written());
    EXPECT_THROW(ReadTiffFacts(reader), FormatError);
  }
}

}  // namespace
}  // namespace rasterkit::detail
