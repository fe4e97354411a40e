// HEIF files are read through `Picture`, in a worker process alone. The samples were encoded once
// from a picture of this project; see tests/pictures/heif.

#include <filesystem>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/heif/heif_picture.h>
#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/isolated_pixels.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/pictures/peer_programs.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string Sample(const std::string& name) {
  return std::string(RASTERKIT_HEIF_SAMPLES) + "/" + name;
}

/// Asks the worker: this process must not open the library.
bool HasLibrary() {
  try {
    Picture::Open(Sample("turn-1.heic"));
    return true;
  } catch (const UnsupportedError& error) {
    EXPECT_THAT(error.Reason(), HasSubstr("HEIC files need libheif (Debian: libheif1)"));
    return false;
  }
}

PictureHeader HeaderOf(const std::string& file) {
  PictureType type = PictureType::unknown;
  PictureHeader header = detail::ReadHeaderIsolated(detail::OpenForWorker(file), type, {});
  EXPECT_EQ(type, PictureType::heif);
  return header;
}

class HeifPicture : public testing::Test {
 protected:
  HeifPicture() { detail::SetWorkerProgram(RASTERKIT_WORKER); }
  ~HeifPicture() override { detail::SetWorkerProgram({}); }
  void SetUp() override {
    if (!HasLibrary()) GTEST_SKIP() << "libheif is not installed";
  }

  const TempFolder folder_;
};

/// The picture of the file as the library's steps turn the one without a turn.
Picture Turned(int orientation) {
  Picture picture = Picture::Open(Sample("turn-1.heic"));
  const bool mirrors = orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
  if (mirrors) picture.Mirror(MirrorAxis::leftRight);
  const int degrees[] = {0, 0, 0, 180, 180, 90, 270, 270, 90};
  if (degrees[orientation] != 0) picture.Rotate(degrees[orientation]);
  return picture;
}

TEST_F(HeifPicture, Turns_Should_BeThoseOfTheBoxes) {
  const auto plain = Picture::Open(Sample("turn-1.heic")).Bitmap();
  EXPECT_EQ(plain->Width(), 64);
  EXPECT_EQ(plain->Height(), 48);
  for (int orientation = 2; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    const Picture picture = Picture::Open(Sample(fmt::format("turn-{}.heic", orientation)));
    EXPECT_EQ(picture.Width(), orientation >= 5 ? 48 : 64);
    const auto bitmap = picture.Bitmap();
    EXPECT_FALSE(SamePixels(*plain, *bitmap));
    EXPECT_TRUE(SamePixels(*Turned(orientation).Bitmap(), *bitmap));
  }
}

uint32_t OrientationIn(const std::string& file) {
  const Picture picture = Picture::Open(file);
  const ExifBlock block(picture.GetMetadata().exif);
  return block.Number(ExifDirectoryId::main, 274).value_or(0);
}

TEST_F(HeifPicture, Orientation_Should_NotCountAgain_When_ExifStatesTheTurnOfTheBoxes) {
  const Picture picture = Picture::Open(Sample("photo.heic"));
  EXPECT_TRUE(SamePixels(*Picture::Open(Sample("turn-6.heic")).Bitmap(), *picture.Bitmap()));
  for (const char* name : {"out.jpg", "out.png", "out.tif"}) {
    SCOPED_TRACE(name);
    const std::string target = folder_ / name;
    const Report report = picture.Save(target);
    for (const Loss& loss : report.losses) EXPECT_EQ(loss.kind, LossKind::chroma) << loss.what;
    const Picture written = Picture::Open(target);
    EXPECT_EQ(written.Width(), 48);
    EXPECT_EQ(written.Height(), 64);
    EXPECT_EQ(OrientationIn(target), 1u);
    EXPECT_THAT(written.GetMetadata().xmp, HasSubstr("tiff:Orientation=\"1\""));
  }
}

TEST_F(HeifPicture, Orientation_Should_NotTurn_When_ExifAloneStatesIt) {
  const Picture picture = Picture::Open(Sample("stated.heic"));
  EXPECT_EQ(picture.Width(), 64);
  EXPECT_TRUE(SamePixels(*Picture::Open(Sample("turn-1.heic")).Bitmap(), *picture.Bitmap()));
  EXPECT_EQ(HeaderOf(Sample("stated.heic")).orientation, std::nullopt);
  picture.Save(folder_ / "out.jpg");
  EXPECT_EQ(OrientationIn(folder_ / "out.jpg"), 1u);
}

TEST_F(HeifPicture, Metadata_Should_GoAlong) {
  const Picture picture = Picture::Open(Sample("photo.heic"));
  for (const char* name : {"out.jpg", "out.png", "out.tif"}) {
    SCOPED_TRACE(name);
    picture.Save(folder_ / name);
    const Metadata metadata = Picture::Open(folder_ / name).GetMetadata();
    const ExifBlock block(metadata.exif);
    EXPECT_EQ(block.Text(ExifDirectoryId::main, 271), "Rasterkit");
    EXPECT_EQ(block.Text(ExifDirectoryId::exif, 36867), "2019:07:04 13:05:09");
    EXPECT_THAT(block.Numbers(ExifDirectoryId::gps, 2), ElementsAre(48, 30, 0));
    // The sides of the upright picture.
    EXPECT_EQ(block.Number(ExifDirectoryId::exif, 40962), 48u);
    EXPECT_EQ(block.Number(ExifDirectoryId::exif, 40963), 64u);
    EXPECT_THAT(metadata.xmp, HasSubstr("Scene"));
    ASSERT_NE(metadata.profile, nullptr);
    EXPECT_EQ(*metadata.profile, *picture.GetMetadata().profile);
    EXPECT_EQ(metadata.resolution, (Resolution{300, 300}));
  }
}

TEST_F(HeifPicture, FurtherPictures_Should_BeNamed) {
  const PictureHeader header = HeaderOf(Sample("several.heic"));
  EXPECT_EQ(header.frames, 2);
  EXPECT_THAT(header.hiddenCopies, ElementsAre("a thumbnail of the HEIF file"));
  const Report report = Picture::Open(Sample("several.heic")).Plan(folder_ / "out.png");
  ASSERT_EQ(report.losses.size(), 1u);
  EXPECT_EQ(report.losses[0].kind, LossKind::frames);
  EXPECT_EQ(report.losses[0].what, "1 of 2 frames");
}

TEST_F(HeifPicture, Alpha_Should_StayOpacity) {
  const Picture picture = Picture::Open(Sample("alpha.heic"));
  EXPECT_EQ(picture.Layout().alpha, AlphaKind::straight);
  const auto bitmap = picture.Bitmap();
  ASSERT_EQ(bitmap->PixelFormat(), pf32bit);
  EXPECT_EQ(bitmap->Content().alphaFormat, afDefined);
  EXPECT_LT(bitmap->Content().Row(20)[3], 20);
  EXPECT_GT(bitmap->Content().Row(20)[4 * 63 + 3], 230);
}

TEST_F(HeifPicture, TenBits_Should_StayNumbers) {
  const Picture picture = Picture::Open(Sample("deep.heic"));
  EXPECT_EQ(picture.Layout().type, NumberType::uint16);
  EXPECT_EQ(picture.Layout().bits, 10);
  picture.Save(folder_ / "out.png");
  const Picture written = Picture::Open(folder_ / "out.png");
  EXPECT_EQ(written.Layout().bits, 16);
  const Samples before = picture.Numbers(), after = written.Numbers();
  for (int y = 0; y < before.Height(); ++y) {
    const auto* const from = reinterpret_cast<const uint16_t*>(before.Row(y));
    const auto* const to = reinterpret_cast<const uint16_t*>(after.Row(y));
    for (int i = 0; i < 3 * before.Width(); ++i) {
      ASSERT_LE(from[i], 1023);
      ASSERT_EQ(to[i], (from[i] * 65535U + 511) / 1023) << i << " " << y;
    }
  }
}

TEST_F(HeifPicture, Pixels_Should_EqualThoseOfThePeer) {
  if (!HasPeer("heif-convert")) GTEST_SKIP() << "heif-convert is not installed";
  for (const char* name : {"turn-6.heic", "photo.heic", "alpha.heic"}) {
    SCOPED_TRACE(name);
    const std::string peer = folder_ / "peer.png";
    OutputOfPeer("heif-convert " + InQuotes(Sample(name)) + " " + InQuotes(peer));
    ASSERT_TRUE(std::filesystem::exists(peer));
    TFileStream stream(peer);
    const Pixels expected = DecodePixels(stream, PictureType::png);
    EXPECT_TRUE(
        SamePixels(std::get<Raster>(expected), Picture::Open(Sample(name)).Bitmap()->Content()));
  }
}

TEST_F(HeifPicture, Avif_Should_BeReadOrRefusedInWords) {
  try {
    EXPECT_EQ(Picture::Open(Sample("picture.avif")).Bitmap()->Width(), 64);
  } catch (const UnsupportedError& error) {
    EXPECT_THAT(error.Reason(), HasSubstr("HEIF: "));
  }
}

TEST_F(HeifPicture, Bytes_Should_GiveTheSame_When_TheyAreInMemory) {
  const std::string content = ReadFile(Sample("turn-6.heic"));
  const Picture picture = Picture::Open(std::vector<uint8_t>(content.begin(), content.end()));
  EXPECT_TRUE(SamePixels(*Picture::Open(Sample("turn-6.heic")).Bitmap(), *picture.Bitmap()));
}

TEST_F(HeifPicture, CutFiles_Should_BeAnError) {
  const std::string whole = ReadFile(Sample("photo.heic"));
  for (size_t size = 64; size < whole.size(); size += 367) {
    SCOPED_TRACE(size);
    const std::string file = folder_.Write("cut.heic", whole.substr(0, size));
    EXPECT_THROW(Picture::Open(file).Bitmap(), FormatError);
  }
}

TEST_F(HeifPicture, DamagedFiles_Should_GiveAPictureOrAnError) {
  const std::string whole = ReadFile(Sample("several.heic"));
  for (size_t i = 0; i < 24; ++i) {
    SCOPED_TRACE(i);
    std::string damaged = whole;
    damaged[40 + i * 29] = static_cast<char>(0xA5 ^ damaged[40 + i * 29]);
    const std::string file = folder_.Write("damaged.heic", damaged);
    try {
      Picture::Open(file).Bitmap();
    } catch (const Error& error) {
      EXPECT_EQ(error.File(), file);
    }
  }
}

TEST_F(HeifPicture, Limits_Should_Hold) {
  Limits limits;
  limits.side = 40;
  const LimitsScope scope(limits);
  EXPECT_THROW(Picture::Open(Sample("photo.heic")), LimitError);
}

TEST_F(HeifPicture, Type_Should_NotBeWritten) {
  const Picture picture = Picture::Open(Sample("photo.heic"));
  for (const char* name : {"out.heic", "out.jp2"}) {
    try {
      picture.Save(folder_ / name);
      ADD_FAILURE() << name;
    } catch (const UnsupportedError& error) {
      EXPECT_THAT(error.Reason(), HasSubstr("cannot be written"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder_ / name));
  }
}

/// This process never opens the library.
TEST(HeifLibrary, Host_Should_NotReadHeif) {
  TFileStream stream(Sample("photo.heic"));
  ASSERT_EQ(SniffPictureType(stream), PictureType::heif);
  EXPECT_THROW(ReadPictureHeader(stream, PictureType::heif), UnsupportedError);
  const std::string libraries = ReadFile("/proc/self/maps");
  for (const char* name : {"libheif", "libx265"}) {
    EXPECT_EQ(libraries.find(name), std::string::npos) << name;
  }
}

TEST(HeifLibrary, Worker_Should_SayWhy_When_TheLibraryCannotBeLoaded) {
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  const TempFolder folder;
  folder.Write("libheif.so.1", std::string_view("no library"));
  setenv("LD_LIBRARY_PATH", folder.Path().c_str(), 1);
  try {
    Picture::Open(Sample("photo.heic"));
    ADD_FAILURE() << "it was read";
  } catch (const Error& error) {
    EXPECT_THAT(error.Reason(), HasSubstr("libheif.so.1 cannot be loaded"));
  }
  unsetenv("LD_LIBRARY_PATH");
  detail::SetWorkerProgram({});
}

}  // namespace
}  // namespace rasterkit::test
