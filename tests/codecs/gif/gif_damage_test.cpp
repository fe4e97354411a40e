// Files that are truncated, damaged, or claim more than they hold.

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/support/gif_file.h"
#include "tests/support/memory_limit.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string ErrorOf(std::span<const uint8_t> bytes) {
  try {
    DecodeGif(bytes);
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

bool RowIs(const Raster& raster, int y, const GifPicture& picture, int pictureRow) {
  for (int x = 0; x < raster.Width(); x++)
    if (raster.Row(y)[x] != picture.At(x, pictureRow)) return false;
  return true;
}

/// The number in "..., N of M rows are complete".
int RowsOf(const CodecReport& report) {
  const std::string& warning = report.warnings.front();
  return std::stoi(warning.substr(warning.find(", ") + 2));
}

TEST(GifDamage, Should_GiveTheRowsThatAreThere_When_CutOffAnywhere) {
  const GifFile file = PlainGif(37, 29);
  const std::vector<uint8_t> bytes = file.Bytes();
  const int white = NearestEntry(file.palette.Entries(), clWhite);
  int lastRows = 0, pictures = 0;
  for (size_t size = 0; size + 1 < bytes.size(); size++) {
    SCOPED_TRACE(size);
    CodecReport report;
    Raster raster;
    try {
      raster = DecodeGif(std::span(bytes).first(size), &report);
    } catch (const FormatError& error) {
      EXPECT_EQ(pictures, 0) << "a shorter file gave rows";
      EXPECT_TRUE(error.Reason().starts_with("GIF: ")) << error.Reason();
      continue;
    }
    pictures++;
    const bool isWhole = report.warnings == std::vector<std::string>{"GIF: the file is cut off"};
    if (!isWhole && report.warnings.empty()) break;  // only the mark of the end is missing
    const int rows = isWhole ? 29 : RowsOf(report);
    EXPECT_GE(rows, lastRows);
    lastRows = rows;
    for (int y = 0; y < 29; y++) {
      if (y < rows) {
        EXPECT_TRUE(RowIs(raster, y, file.pictures[0], y)) << y;
      } else {
        EXPECT_EQ(raster.Row(y)[7], white) << y;
      }
    }
  }
  EXPECT_GE(lastRows, 28);
  EXPECT_GT(pictures, 900) << "rows are given from the first one on";
}

TEST(GifDamage, Should_SayNothing_When_OnlyTheLastMarkIsMissing) {
  const GifFile file = PlainGif(37, 29);
  std::vector<uint8_t> bytes = file.Bytes();
  bytes.pop_back();
  CodecReport report;
  DecodeGif(bytes, &report);
  EXPECT_THAT(report.warnings, IsEmpty());
}

TEST(GifDamage, Should_GiveACoarsePicture_When_AnInterlacedFileEndsEarly) {
  GifFile file = PlainGif(37, 29);
  file.pictures[0].interlaced = true;
  // Rows 0, 8, 16, 24, then 4, 12.
  file.pictures[0].stopAfter = 6 * 37 + 5;
  CodecReport report;
  const Raster raster = DecodeGif(file.Bytes(), &report);
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("6 of 29 rows are complete")));
  const int shown[] = {0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12, 16, 16, 16};
  for (int y = 0; y < 19; y++) EXPECT_TRUE(RowIs(raster, y, file.pictures[0], shown[y])) << y;
  EXPECT_TRUE(RowIs(raster, 28, file.pictures[0], 24));
}

TEST(GifDamage, Should_BeWhiteBelow_When_AnInterlacedFileEndsInItsFirstPass) {
  GifFile file = PlainGif(37, 29);
  file.pictures[0].interlaced = true;
  file.pictures[0].stopAfter = 2 * 37;
  const Raster raster = DecodeGif(file.Bytes());
  const int white = NearestEntry(file.palette.Entries(), clWhite);
  EXPECT_TRUE(RowIs(raster, 15, file.pictures[0], 8));
  for (int y = 16; y < 29; y++) EXPECT_EQ(raster.Row(y)[3], white) << y;
}

TEST(GifDamage, Should_GiveTheRowsBefore_When_TheDataEndThemselves) {
  GifFile file = PlainGif(37, 29);
  file.pictures[0].stopAfter = 10 * 37 + 36;
  CodecReport report;
  const Raster raster = DecodeGif(file.Bytes(), &report);
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("10 of 29 rows are complete")));
  EXPECT_TRUE(RowIs(raster, 9, file.pictures[0], 9));
}

TEST(GifDamage, Should_KeepWhatLiesAround_When_ASmallPictureEndsEarly) {
  GifFile file = PlainGif(9, 6, 4);
  file.screenWidth = 20;
  file.screenHeight = 10;
  file.background = 5;
  file.pictures[0].stopAfter = 2 * 9;
  const Raster raster = DecodeGif(file.Bytes());
  const int white = NearestEntry(file.palette.Entries(), clWhite);
  EXPECT_EQ(raster.Row(3)[8], white);
  EXPECT_EQ(raster.Row(3)[9], 5);
  EXPECT_EQ(raster.Row(7)[0], 5);
}

TEST(GifDamage, Should_RefuseOrGiveTheSame_When_BytesAreWrong) {
  constexpr uint32_t kSeed = 20240517;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  GifFile file = PlainGif(37, 29);
  int pictures = 0;
  for (int i = 0; i < 4000; i++) {
    file.pictures[0].interlaced = i % 2 == 0;
    std::vector<uint8_t> bytes = file.Bytes();
    for (int changes = 1 + i % 3; changes > 0; changes--)
      bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
    const MemoryLimit limit(16 << 20);
    CodecReport first, second;
    Raster raster;
    try {
      raster = DecodeGif(bytes, &first);
    } catch (const Error&) {
      continue;
    }
    pictures++;
    ASSERT_TRUE(SamePixels(raster, DecodeGif(bytes, &second)));
    ASSERT_EQ(first.warnings, second.warnings);
  }
  EXPECT_GT(pictures, 1000);
}

TEST(GifDamage, Should_Refuse_When_ThereIsNoPicture) {
  EXPECT_THAT(ErrorOf({}), HasSubstr("GIF"));
  EXPECT_THAT(ErrorOf(std::vector<uint8_t>(300, 'x')), HasSubstr("GIF"));
  GifFile file = PlainGif(5, 5);
  file.pictures.clear();
  EXPECT_THAT(ErrorOf(file.Bytes()), HasSubstr("holds no picture"));
  file = PlainGif(5, 5);
  file.pictures[0].stopAfter = 0;
  EXPECT_NE(ErrorOf(file.Bytes()), "none");
  for (const bool isWide : {true, false}) {
    file = PlainGif(isWide ? 5 : 0, isWide ? 0 : 5);
    file.screenWidth = file.screenHeight = 5;
    EXPECT_THAT(ErrorOf(file.Bytes()), HasSubstr("no size"));
  }
  std::vector<uint8_t> bytes = PlainGif(5, 5, 1).Bytes();
  bytes[13 + 6 + 10] = 12;  // bits of an index, behind two palette entries and the picture's head
  EXPECT_NE(ErrorOf(bytes), "none");
}

TEST(GifDamage, Should_RefuseBeforeTakingMemory_When_AFewBytesClaimAHugePicture) {
  GifFile file = PlainGif(5, 5);
  file.screenWidth = file.screenHeight = 65535;
  EXPECT_THAT(ErrorOf(file.Bytes()), HasSubstr("65535 x 65535 pixels: the file is far too small"));
  file.pictures[0].left = file.pictures[0].top = 65535;
  EXPECT_THAT(ErrorOf(file.Bytes()), HasSubstr(std::to_string(PictureMemoryLimit())));
  EXPECT_THROW(DecodeGif(file.Bytes()), LimitError);
  const MemoryLimit limit(1000);
  EXPECT_NO_THROW(DecodeGif(PlainGif(40, 25).Bytes()));
  EXPECT_THROW(DecodeGif(PlainGif(40, 26).Bytes()), LimitError);
}

TEST(GifDamage, Should_Load_When_TheScreenIsLargeAndEmpty) {
  GifFile file = PlainGif(5, 5);
  file.screenWidth = 4001;
  file.screenHeight = 3001;
  EXPECT_EQ(DecodeGif(file.Bytes()).Width(), 4001);
}

}  // namespace
}  // namespace rasterkit::test
