// JPEG 2000 files are read through `Picture`; the exported routines know neither them nor HEIF.

#include <cstring>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/list_metadata.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/pictures/load_bitmap.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/codecs/jp2/jp2_files.h"
#include "tests/pictures/peer_programs.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uint32_t kSrgb = 16;

ByteList LabelOfGml() {
  const std::string_view label = "gml.data";
  return BoxOfJp2("asoc", BoxOfJp2("lbl ", ByteList(label.begin(), label.end())));
}

TagValue Doubles(uint16_t tag, const std::vector<double>& numbers) {
  TagValue value{tag, 12, numbers.size(), {}};
  value.bytes.resize(8 * numbers.size());
  std::memcpy(value.bytes.data(), numbers.data(), value.bytes.size());
  return value;
}

TagValue Words(uint16_t tag, const std::vector<uint16_t>& numbers) {
  TagValue value{tag, 3, numbers.size(), {}};
  value.bytes.resize(2 * numbers.size());
  std::memcpy(value.bytes.data(), numbers.data(), value.bytes.size());
  return value;
}

/// EPSG:25832, half a meter per pixel.
ByteList GeoTiff() {
  ExifBlock block;
  block.Set(ExifDirectoryId::main, Doubles(33550, {0.5, 0.5, 0}));
  block.Set(ExifDirectoryId::main, Doubles(33922, {0, 0, 0, 500000, 5600000, 0}));
  block.Set(ExifDirectoryId::main,
            Words(34735, {1, 1, 0, 3, 1024, 0, 1, 1, 1025, 0, 1, 1, 3072, 0, 1, 25832}));
  return block.Bytes();
}

ByteList Everything() {
  ExifBlock exif;
  exif.SetText(ExifDirectoryId::main, 271, "Rasterkit");
  const std::string_view xmp =
      "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
      "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'/></x:xmpmeta>";
  CodestreamOfJp2 picture;
  picture.mixesColors = true;
  picture.tileWidth = picture.tileHeight = 16;
  const ByteList resolution = BoxOfJp2(
      "res ",
      BoxOfJp2(
          "resc",
          Join({BigEndian16(11811), BigEndian16(1), BigEndian16(11811), BigEndian16(1), {0, 0}})));
  return FileOfJp2(
      EncodeCodestream(picture), Join({ColorBox(kSrgb), ProfileBox(*RgbProfile()), resolution}),
      Join({UuidBox(kExifUuid, exif.Bytes()), UuidBox(kXmpUuid, ByteList(xmp.begin(), xmp.end())),
            UuidBox(kGeoTiffUuid, GeoTiff())}));
}

TEST(Jp2Picture, Everything_Should_GoAlong) {
  const TempFolder folder;
  const Picture picture = Picture::Open(folder.Write("map.jp2", Everything()));
  const auto before = picture.Bitmap();
  for (const char* name : {"out.png", "out.tif", "out.jpg"}) {
    SCOPED_TRACE(name);
    const Report report = picture.Save(folder / name);
    const Picture written = Picture::Open(folder / name);
    const Metadata metadata = written.GetMetadata();
    EXPECT_EQ(ExifBlock(metadata.exif).Text(ExifDirectoryId::main, 271), "Rasterkit");
    EXPECT_THAT(metadata.xmp, HasSubstr("xmpmeta"));
    ASSERT_NE(metadata.profile, nullptr);
    EXPECT_EQ(*metadata.profile, *picture.GetMetadata().profile);
    EXPECT_EQ(metadata.resolution, (Resolution{300, 300}));
    ASSERT_TRUE(written.GetPlacement().affine.has_value());
    EXPECT_EQ(*written.GetPlacement().affine, *picture.GetPlacement().affine);
    if (name != std::string("out.jpg")) {
      EXPECT_TRUE(SameColors(*before, *written.Bitmap()));
    }
    if (name == std::string("out.tif")) {
      EXPECT_THAT(report.losses, IsEmpty());
      EXPECT_EQ(written.GetPlacement().system.Description(),
                picture.GetPlacement().system.Description());
    }
  }
}

TEST(Jp2Picture, Position_Should_BeLost_When_GmlAloneStatesIt) {
  const TempFolder folder;
  const std::string file =
      folder.Write("gml.jp2", FileOfJp2(EncodeCodestream({}), ColorBox(kSrgb), LabelOfGml()));
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  for (const Isolation isolation : {Isolation::none, Isolation::process}) {
    OpenOptions options;
    options.isolation = isolation;
    const Report report = Picture::Open(file, options).Save(folder / "out.tif");
    ASSERT_EQ(report.losses.size(), 1u);
    EXPECT_EQ(report.losses[0].kind, LossKind::position);
    EXPECT_THAT(report.losses[0].what, HasSubstr("GML"));
  }
  detail::SetWorkerProgram({});
  // A world file states it, too.
  folder.Write("gml.j2w", std::string_view("2\n0\n0\n-2\n1001\n1999\n"));
  EXPECT_THAT(Picture::Open(file).Save(folder / "out.tif").losses, IsEmpty());
}

TEST(Jp2Picture, Position_Should_BeThatOfTheWorldFile) {
  const TempFolder folder;
  const ByteList file = FileOfJp2(EncodeCodestream({}), ColorBox(kSrgb));
  for (const char* name : {"a.jp2", "b.j2k", "c.jpx"}) {
    SCOPED_TRACE(name);
    folder.Write(name, file);
    folder.Write(std::string(name, 2) + "j2w", std::string_view("2\n0\n0\n-2\n1001\n1999\n"));
    const auto affine = Picture::Open(folder / name).GetPlacement().affine;
    ASSERT_TRUE(affine.has_value());
  }
}

TEST(Jp2Picture, Pixels_Should_BeTheSame_When_AWorkerReadsThem) {
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  const TempFolder folder;
  const std::string file = folder.Write("map.jp2", Everything());
  OpenOptions isolated;
  isolated.isolation = Isolation::process;
  const Picture there = Picture::Open(file, isolated), here = Picture::Open(file);
  EXPECT_TRUE(SamePixels(*here.Bitmap(), *there.Bitmap()));
  // Profiles are shared, and compared by their address.
  Metadata expected = here.GetMetadata(), actual = there.GetMetadata();
  ASSERT_TRUE(expected.profile && actual.profile);
  EXPECT_EQ(*expected.profile, *actual.profile);
  expected.profile = actual.profile = nullptr;
  EXPECT_EQ(expected, actual);
  detail::SetWorkerProgram({});
}

TEST(Jp2Picture, Damage_Should_BeALoss) {
  const TempFolder folder;
  ByteList file = Everything();
  file.resize(file.size() - 500);
  const Report report = Picture::Open(folder.Write("cut.jp2", file)).Save(folder / "out.png");
  ASSERT_FALSE(report.losses.empty());
  EXPECT_EQ(report.losses.front().kind, LossKind::damage);
}

TEST(Jp2Picture, Statistics_Should_EqualThoseOfThePeer) {
  if (!HasPeer("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  const TempFolder folder;
  for (const int bits : {8, 12, 16}) {
    CodestreamOfJp2 picture;
    picture.planes = {{bits, false}};
    picture.tileWidth = picture.tileHeight = 20;
    const std::string file =
        folder.Write("a.jp2", FileOfJp2(EncodeCodestream(picture), ColorBox(17)));
    Picture::Open(file).Save(folder / "a.tif");
    const auto checksum = [](const std::string& name) {
      const std::string text = OutputOfPeer("gdalinfo -checksum " + InQuotes(name));
      const size_t at = text.find("Checksum=");
      return at == std::string::npos ? std::string() : text.substr(at, text.find('\n', at) - at);
    };
    EXPECT_THAT(checksum(file), testing::StartsWith("Checksum="));
    EXPECT_EQ(checksum(file), checksum(folder / "a.tif")) << bits;
  }
}

// --- Exported routines -------------------------------------------------------------------------

struct Unknown {
  const char* name;
  ByteList bytes;
};

std::vector<Unknown> Files() {
  const std::string heic = ReadFile(std::string(RASTERKIT_HEIF_SAMPLES) + "/photo.heic");
  return {{"a.jp2", Everything()},
          {"a.j2k", EncodeCodestream({})},
          {"a.heic", ByteList(heic.begin(), heic.end())}};
}

template <class Reading>
std::string ErrorOf(const Reading& reading) {
  try {
    reading();
    return "none";
  } catch (const FormatError& error) {
    return "format: " + error.Reason();
  } catch (const std::exception& error) {
    return error.what();
  }
}

TEST(ExportedRoutines, Frames_Should_BeUnknown_When_OnlyPicturesReadThem) {
  for (const Unknown& file : Files()) {
    SCOPED_TRACE(file.name);
    // A text instead of them: what is said about it is said about them.
    const ByteList text = {'t', 'e', 'x', 't'};
    const auto frame = [](const ByteList& bytes) {
      return ErrorOf([&] {
        TSpanStream stream(bytes);
        DecodeFrame(stream);
      });
    };
    EXPECT_EQ(frame(file.bytes), frame(text));
    EXPECT_EQ(frame(file.bytes), "format: Invalid image");
    const auto picture = [](const ByteList& bytes) {
      return ErrorOf([&] { DecodePicture(bytes); });
    };
    EXPECT_EQ(picture(file.bytes), picture(text));
    EXPECT_THAT(ReadMetadata(file.bytes).kinds, IsEmpty());
  }
}

TEST(ExportedRoutines, Files_Should_BeUnknown_When_OnlyPicturesReadThem) {
  const TempFolder folder;
  for (const Unknown& file : Files()) {
    SCOPED_TRACE(file.name);
    const std::string name = folder.Write(file.name, file.bytes);
    EXPECT_EQ(GetGraphicsType(std::filesystem::path(file.name).extension().string()), gtNone);
    EXPECT_FALSE(CanLoadBitmap(name));
    EXPECT_THROW(TPicture().LoadFromFile(name), Error);
    // Under the name of a type that is known, the imaging codec reads by content.
    for (const char* extension : {".tif", ".bmp", ".jpg", ".png"}) {
      const std::string disguised = folder.Write(std::string("b") + extension, file.bytes);
      EXPECT_THROW(TWICBitmap().LoadFromFile(disguised), Error) << extension;
      EXPECT_EQ(LoadGraphic(disguised), nullptr) << extension;
    }
  }
}

TEST(ExportedRoutines, Rows_Should_NotDecodeFrames) {
  for (const PictureType type : {PictureType::jp2, PictureType::heif}) {
    const Codec* codec = FindCodec(type);
    ASSERT_NE(codec, nullptr);
    EXPECT_TRUE(codec->IsForPicturesOnly());
    EXPECT_EQ(FindFrameCodec(type), nullptr);
    EXPECT_EQ(codec->encode, nullptr);
    EXPECT_EQ(codec->write, nullptr);
    EXPECT_EQ(codec->copy, nullptr);
  }
  EXPECT_EQ(FindFrameCodec(PictureType::png), FindCodec(PictureType::png));
  EXPECT_EQ(FindFrameCodec(PictureType::pdf), FindCodec(PictureType::pdf));
}

}  // namespace
}  // namespace rasterkit::test
