#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/test_pictures.h"

/// A header comes back from a message as it was written, and a message that was changed by a
/// hostile process is refused or gives a header with possible values.
namespace rasterkit::detail {
namespace {

std::vector<uint8_t> FieldsOf(const PictureHeader& header) {
  FieldWriter fields;
  WriteHeader(fields, header);
  return fields.Take();
}

/// Every member differs from its default, so that a forgotten one shows.
PictureHeader FullHeader(const Form& form) {
  PictureHeader header;
  header.width = 17;
  header.height = 9;
  header.layout = {NumberType::uint16,
                   16,
                   4,
                   ColorModel::cmyk,
                   AlphaKind::associated,
                   1,
                   GrayPalette(3),
                   std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{7, 8})};
  header.form = form;
  Metadata& metadata = header.metadata;
  metadata.exif = {'I', 'I', 42, 0};
  metadata.xmp = "<x/>";
  metadata.extendedXmp = "\xFF not UTF-8";
  metadata.iptc = {0x1C, 2};
  metadata.photoshop = {'8', 'B', 'I', 'M'};
  metadata.profile = std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{1, 2, 3});
  metadata.comments = {"one", ""};
  metadata.texts = {{"Title", "A title", "de", "Titel", true, true}, {}};
  metadata.resolution = {300, 150.5};
  metadata.tiffTags = {{42112, 2, 3, {1, 2, 3}}};
  metadata.jpegSegments = {{0xE5, {9}}};
  metadata.pngChunks = {{0x61624364, {}}};
  metadata.hasJfif = true;
  header.orientation = 6;
  header.pages = 3;
  header.lostPages = "ends in damage";
  header.directoryTags = {400, 65000};
  header.frames = 4;
  header.smallerCopies = 5;
  header.masks = 6;
  header.positionTags = {{33550, 12, 3, std::vector<uint8_t>(24, 1)}};
  header.hiddenCopies = {"preview"};
  header.hiddenOthers = {"video"};
  header.unreadPosition = "words";
  header.trailerAt = 12345678901;
  header.warnings = {"damaged"};
  return header;
}

JpegForm FullJpegForm() {
  JpegForm form;
  form.components = {{1, 2, 1, 0}, {34, 1, 1, 3}};
  form.tables[0].emplace().fill(65535);
  form.tables[3].emplace().fill(1);
  form.progressive = form.arithmetic = true;
  form.restartInterval = 77;
  form.adobeTransform = 2;
  return form;
}

constexpr TiffForm kFullTiffForm = {8, 2, 6, 2, 11, 256, 128, true, true, true, 75, 2, 4};

std::vector<Form> EveryForm() {
  return {std::monostate(), FullJpegForm(), PngForm{16, 6, true}, kFullTiffForm};
}

TEST(HeaderFields, Header_Should_ComeBack_WithEveryMember) {
  for (const Form& form : EveryForm()) {
    const std::vector<uint8_t> bytes = FieldsOf(FullHeader(form));
    FieldReader fields(bytes);
    const PictureHeader back = ReadHeader(fields);
    fields.RequireEnd();
    EXPECT_EQ(FieldsOf(back), bytes);
    EXPECT_EQ(back.form, form);
    EXPECT_EQ(back.layout.bands, 4);
    EXPECT_EQ(back.metadata.texts, FullHeader(form).metadata.texts);
    EXPECT_EQ(back.metadata.resolution, (Resolution{300, 150.5}));
    EXPECT_EQ(back.lostPages, "ends in damage");
    EXPECT_EQ(back.directoryTags, (std::vector<uint16_t>{400, 65000}));
    EXPECT_EQ(back.trailerAt, 12345678901u);
    EXPECT_EQ(back.hiddenOthers, std::vector<std::string>{"video"});
    EXPECT_EQ(back.unreadPosition, "words");
  }
}

TEST(HeaderFields, Header_Should_BeRefused_WhenCutOff) {
  for (const Form& form : EveryForm()) {
    const std::vector<uint8_t> bytes = FieldsOf(FullHeader(form));
    for (size_t size = 0; size < bytes.size(); ++size) {
      FieldReader fields(std::span<const uint8_t>(bytes).first(size));
      EXPECT_THROW(ReadHeader(fields), FormatError) << size;
    }
  }
}

TEST(HeaderFields, Header_Should_BePossible_WhenChanged) {
  constexpr uint32_t kSeed = 20;
  std::mt19937 random(kSeed);
  const std::vector<Form> forms = EveryForm();
  int accepted = 0;
  for (int round = 0; round < 20000; ++round) {
    std::vector<uint8_t> bytes = FieldsOf(FullHeader(forms[random() % forms.size()]));
    bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
    FieldReader fields(bytes);
    try {
      const PictureHeader header = ReadHeader(fields);
      ++accepted;
      EXPECT_GE(header.width, 0);
      EXPECT_GE(header.layout.bands, 1);
      EXPECT_LE(header.layout.bits, 64);
      EXPECT_GE(header.orientation.value_or(1), 1);
      EXPECT_LE(header.orientation.value_or(8), 8);
    } catch (const FormatError&) {
    }
  }
  EXPECT_GT(accepted, 0) << "seed " << kSeed;
}

Pixels ThroughMessage(const Pixels& pixels) {
  FieldWriter fields;
  WritePixels(fields, pixels);
  FieldReader reader(fields.Written());
  Pixels back = ReadPixels(reader, BytesOf(pixels).size());
  reader.RequireEnd();
  const auto from = BytesOf(pixels);
  std::copy(from.begin(), from.end(), BytesOf(back).begin());
  return back;
}

Samples RandomSamples(NumberType type, int bands, bool inPlanes) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(BytesOf(type)) * 8;
  layout.bands = bands;
  layout.model = ColorModel::other;
  Samples samples(layout, 5, 3, inPlanes);
  samples.resolution = {72, 36};
  std::mt19937 random(7);
  Pixels pixels = std::move(samples);
  for (uint8_t& byte : BytesOf(pixels)) byte = static_cast<uint8_t>(random());
  return std::get<Samples>(std::move(pixels));
}

TEST(HeaderFields, Pixels_Should_ComeBack) {
  const Pixels raster = test::GradientRaster(pf24bit, 7, 4);
  const Pixels back = ThroughMessage(raster);
  ASSERT_TRUE(std::holds_alternative<Raster>(back));
  EXPECT_TRUE(std::ranges::equal(BytesOf(back), BytesOf(raster)));
  for (const NumberType type : {NumberType::int8, NumberType::uint16, NumberType::float64}) {
    for (const bool inPlanes : {false, true}) {
      const Pixels samples = RandomSamples(type, 3, inPlanes);
      const Pixels same = ThroughMessage(samples);
      EXPECT_TRUE(std::ranges::equal(BytesOf(same), BytesOf(samples)));
      EXPECT_EQ(std::get<Samples>(same).Planes(), inPlanes ? 3 : 1);
      EXPECT_EQ(std::get<Samples>(same).Layout().type, type);
      EXPECT_EQ(std::get<Samples>(same).resolution, (Resolution{72, 36}));
    }
  }
}

TEST(HeaderFields, Pixels_Should_BeRefused_WhenTheirBytesDoNotFit) {
  for (const bool inPlanes : {false, true}) {
    const Pixels samples = RandomSamples(NumberType::uint16, 3, inPlanes);
    FieldWriter fields;
    WritePixels(fields, samples);
    const size_t bytes = BytesOf(samples).size();
    for (const size_t size : {size_t{0}, bytes - 1, bytes + 1, 2 * bytes}) {
      FieldReader reader(fields.Written());
      EXPECT_THROW(ReadPixels(reader, size), FormatError) << size;
    }
  }
}

}  // namespace
}  // namespace rasterkit::detail
