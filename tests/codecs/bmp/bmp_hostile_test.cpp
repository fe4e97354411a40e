// Damaged, truncated and exaggerating files: they give a picture with a warning, or an error with
// the reason.

#include <limits>

#include <gmock/gmock.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/codecs/bmp/bmp_test_support.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();

/// 2 x 3 pixels of 8 bits; row y holds y + 1.
BmpFile ThreeRows() {
  return {.width = 2,
          .height = 3,
          .bits = 8,
          .colorsUsed = 4,
          .palette = {0, 1, 2, 3},
          .pixels = {3, 3, 0, 0, 2, 2, 0, 0, 1, 1, 0, 0}};
}

/// The reason of the error that decoding must end with.
template <typename Expected>
std::string Refusal(const std::vector<uint8_t>& bytes) {
  try {
    DecodeBytes(bytes);
  } catch (const Expected& error) {
    return error.Reason();
  }
  ADD_FAILURE() << "was not refused";
  return {};
}

template <typename Expected>
std::string Refusal(const BmpFile& file) {
  return Refusal<Expected>(file.Bytes());
}

class PictureLimit {
 public:
  explicit PictureLimit(uint64_t bytes) { SetPictureMemoryLimit(bytes); }
  ~PictureLimit() { SetPictureMemoryLimit(before_); }

 private:
  uint64_t before_ = PictureMemoryLimit();
};

TEST(HostileBmp, Should_Refuse_When_ThereAreNoData) {
  EXPECT_THAT(Refusal<FormatError>(std::vector<uint8_t>{}), HasSubstr("no data"));
}

TEST(HostileBmp, Should_RefuseOrDecode_When_CutAnywhere) {
  for (const BmpFile& file : {ThreeRows(), BmpFile{.headerBytes = 124,
                                           .bits = 32,
                                           .compression = 3,
                                           .masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000},
                                           .pixels = {1, 2, 3, 4},
                                           .profile = {1, 2, 3}}}) {
    const std::vector<uint8_t> whole = file.Bytes();
    for (size_t size = 0; size < whole.size(); ++size) {
      SCOPED_TRACE(size);
      const std::vector<uint8_t> bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
      try {
        EXPECT_EQ(DecodeBytes(bytes).Width(), file.width);
      } catch (const FormatError&) {
        EXPECT_LT(size, whole.size() - 3);
      }
    }
  }
}

TEST(HostileBmp, Should_Refuse_When_MarkIsNotBM) {
  std::vector<uint8_t> bytes = ThreeRows().Bytes();
  bytes[1] = 'A';
  EXPECT_THAT(Refusal<FormatError>(bytes), HasSubstr("does not start"));
}

TEST(HostileBmp, Should_Refuse_When_HeaderSizeIsUnknown) {
  for (const uint32_t size : {0u, 11u, 13u, 15u, 65u, 107u, 125u, 0x80000000u, 0xFFFFFFFFu}) {
    std::vector<uint8_t> bytes = ThreeRows().Bytes();
    for (size_t i = 0; i < 4; ++i) bytes[14 + i] = static_cast<uint8_t>(size >> (8 * i));
    EXPECT_THAT(Refusal<FormatError>(bytes), HasSubstr(std::to_string(size)));
  }
}

TEST(HostileBmp, Should_Refuse_When_SizeIsZeroOrWidthNegative) {
  for (const auto& [width, height] : std::vector<std::pair<int32_t, int32_t>>{
           {0, 3}, {2, 0}, {0, 0}, {-2, 3}, {kLowest, 3}, {-1, kLowest}}) {
    BmpFile file = ThreeRows();
    file.width = width;
    file.height = height;
    EXPECT_THAT(Refusal<FormatError>(file), HasSubstr("not possible"));
  }
}

TEST(HostileBmp, Should_Refuse_When_HeightIsTheLowestInteger) {
  BmpFile file = ThreeRows();
  file.height = kLowest;
  EXPECT_THAT(Refusal<FormatError>(file), HasSubstr("-2147483648"));
}

TEST(HostileBmp, Should_NameLimitAndNeed_When_SizeIsHighest) {
  BmpFile file{.width = kHighest, .height = kHighest, .bits = 32, .pixels = {1, 2, 3, 4}};
  // 2^31 - 1 rows of (2^31 - 1) * 4 bytes each: just below 2^64.
  EXPECT_THAT(Refusal<LimitError>(file),
              testing::AllOf(HasSubstr("18446744056529682436"), HasSubstr("4294967296"),
                             HasSubstr("2147483647 x 2147483647")));
  file.height = kLowest + 1;
  Refusal<LimitError>(file);
}

TEST(HostileBmp, Should_Refuse_When_300BytesClaim65535x65535) {
  for (const uint16_t bits : {1, 2, 4, 8, 16, 24, 32}) {
    SCOPED_TRACE(bits);
    BmpFile file{.width = 65535, .height = 65535, .bits = bits, .colorsUsed = 1};
    if (bits <= 8) file.palette = {0};
    file.pixels.resize(300 - file.Bytes().size());
    ASSERT_EQ(file.Bytes().size(), 300u);
    Refusal<Error>(file);
  }
  for (const uint32_t compression : {1u, 2u}) {
    BmpFile file{.width = 65535, .height = 65535, .compression = compression, .palette = {0, 0}};
    file.bits = compression == 1 ? 8 : 4;
    file.colorsUsed = 2;
    file.pixels.assign(300 - file.Bytes().size(), 255);
    EXPECT_THAT(Refusal<FormatError>(file), HasSubstr("first of 65535 rows"));
  }
}

TEST(HostileBmp, Should_KeepToTheBudget_When_ItIsLowered) {
  const PictureLimit limit(11);
  EXPECT_THAT(Refusal<LimitError>(ThreeRows()), testing::AllOf(HasSubstr("12"), HasSubstr("11")));
}

TEST(HostileBmp, Should_GiveRowsThatAreThere_When_DataEndEarly) {
  std::vector<uint8_t> bytes = ThreeRows().Bytes();
  bytes.resize(bytes.size() - 6);  // the second row lacks its padding only
  CodecReport report;
  const Raster raster = DecodeBytes(bytes, &report);
  EXPECT_THAT(Indexes(raster, 2), ElementsAre(3, 3));
  EXPECT_THAT(Indexes(raster, 1), ElementsAre(2, 2));
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(0, 0));
  EXPECT_TRUE(PaddingIsZero(raster));
  EXPECT_THAT(report.warnings, ElementsAre("BMP: premature end of data, 2 of 3 rows are complete"));
}

TEST(HostileBmp, Should_BeOpaqueWhereRowsAreMissing_When_32BitDataEndEarly) {
  BmpFile file{.width = 1, .height = 3, .bits = 32, .pixels = {1, 2, 3, 4, 5, 6}};
  CodecReport report;
  const Raster raster = DecodeBytes(file, &report);
  EXPECT_EQ(PixelAt(raster, 0, 2), 0xFF030201u);
  EXPECT_EQ(PixelAt(raster, 0, 1), 0xFF000605u);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0xFF000000u);
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("1 of 3 rows")));
}

TEST(HostileBmp, Should_FillRest_When_ConvertedDataEndEarly) {
  BmpFile file{.width = 1,
               .height = 3,
               .bits = 16,
               .compression = 3,
               .masks = {0xF00, 0xF0, 0xF},
               .pixels = {0xFF, 0x0F, 0, 0, 0xFF}};
  CodecReport report;
  const Raster raster = DecodeBytes(file, &report);
  EXPECT_EQ(PixelAt(raster, 0, 2), 0xFFFFFFu);
  EXPECT_EQ(PixelAt(raster, 0, 1), 0x00FFFFu);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0u);
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("1 of 3 rows")));
}

TEST(HostileBmp, Should_NotWarn_When_OnlyTheLastPaddingIsMissing) {
  std::vector<uint8_t> bytes = ThreeRows().Bytes();
  bytes.resize(bytes.size() - 2);
  CodecReport report;
  EXPECT_THAT(Indexes(DecodeBytes(bytes, &report), 0), ElementsAre(1, 1));
  EXPECT_THAT(report.warnings, ElementsAre());
}

TEST(HostileBmp, Should_Refuse_When_NotOneRowIsThere) {
  std::vector<uint8_t> bytes = ThreeRows().Bytes();
  bytes.resize(bytes.size() - 11);
  EXPECT_THAT(Refusal<FormatError>(bytes), HasSubstr("first of 3 rows"));
}

TEST(HostileBmp, Should_Refuse_When_PixelOffsetLiesBeyondTheFile) {
  for (const uint32_t offset : {82u, 1000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    BmpFile file = ThreeRows();
    file.pixelOffset = offset;
    EXPECT_THAT(Refusal<FormatError>(file), HasSubstr("beyond the end"));
  }
}

TEST(HostileBmp, Should_FindPixels_When_OffsetLiesInsideTheHeader) {
  for (const uint32_t offset : {0u, 14u, 53u, 54u}) {
    BmpFile file = ThreeRows();
    file.pixelOffset = offset;
    CodecReport report;
    EXPECT_THAT(Indexes(DecodeBytes(file, &report), 0), ElementsAre(1, 1));
    EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("offset")));
  }
}

TEST(HostileBmp, Should_FindPixels_When_ThereIsAGapBeforeThem) {
  BmpFile file = ThreeRows();
  file.pixels.insert(file.pixels.begin(), 100, 0xEE);
  file.pixelOffset = 14 + 40 + 16 + 100;
  EXPECT_THAT(Indexes(DecodeBytes(file), 0), ElementsAre(1, 1));
}

TEST(HostileBmp, Should_ShortenPalette_When_PixelsFollowEarlier) {
  BmpFile file = ThreeRows();
  file.colorsUsed = 0;  // states 256
  CodecReport report;
  const Raster raster = DecodeBytes(file, &report);
  EXPECT_EQ(raster.palette.Count(), 4);
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(1, 1));
  EXPECT_THAT(report.warnings, ElementsAre());
}

TEST(HostileBmp, Should_ShortenPalette_When_CoreFileHasFewerEntries) {
  BmpFile file = ThreeRows();
  file.headerBytes = 12;
  EXPECT_EQ(DecodeBytes(file).palette.Count(), 4);
}

TEST(HostileBmp, Should_ClampPalette_When_MoreIsStatedThanBitsCanSay) {
  BmpFile file{.bits = 1, .colorsUsed = 5, .palette = {1, 2, 3, 4, 5}, .pixels = {0x80, 0, 0, 0}};
  const Raster raster = DecodeBytes(file);
  EXPECT_EQ(raster.palette.Count(), 2);
  EXPECT_EQ(Indexes(raster, 0), std::vector<int>{1});
}

TEST(HostileBmp, Should_Refuse_When_PaletteIsAbsurd) {
  for (const uint32_t count : {257u, 300u, 0x12345678u, 0xFFFFFFFFu}) {
    BmpFile file = ThreeRows();
    file.colorsUsed = count;
    EXPECT_THAT(Refusal<FormatError>(file), HasSubstr(std::to_string(count)));
  }
}

TEST(HostileBmp, Should_IgnorePaletteCount_When_PixelsAreTrueColor) {
  EXPECT_EQ(PixelAt(DecodeBytes(BmpFile{.colorsUsed = 0xFFFFFFFF, .pixels = {1, 2, 3, 0}}), 0, 0),
            0x030201u);
}

TEST(HostileBmp, Should_Refuse_When_DepthIsImpossible) {
  for (const uint16_t bits : {0, 3, 5, 15, 31, 33, 64, 65535}) {
    BmpFile file = ThreeRows();
    file.bits = bits;
    EXPECT_THAT(Refusal<FormatError>(file), HasSubstr(std::to_string(bits) + " bits"));
  }
}

TEST(HostileBmp, Should_SayUnsupported_When_CompressionIsNotRead) {
  BmpFile file{.headerBytes = 64, .bits = 1, .compression = 3, .pixels = {1, 2, 3, 4}};
  EXPECT_THAT(Refusal<UnsupportedError>(file), HasSubstr("Huffman"));
  file.compression = 4;
  file.bits = 24;
  EXPECT_THAT(Refusal<UnsupportedError>(file), HasSubstr("run lengths"));
  file.headerBytes = 40;
  for (const uint32_t compression : {7u, 11u, 0xFFFFFFFFu}) {
    file.compression = compression;
    EXPECT_THAT(Refusal<UnsupportedError>(file), HasSubstr(std::to_string(compression)));
  }
}

TEST(HostileBmp, Should_RefuseCleanly_When_EmbeddedPictureIsNone) {
  BmpFile file{.width = 0, .height = 0, .bits = 0, .compression = 4, .pixels = {1, 2, 3, 4}};
  Refusal<Error>(file);
  file.compression = 5;
  Refusal<Error>(file);
}

TEST(HostileBmp, Should_DropProfile_When_ItLiesBeyondTheFile) {
  for (const auto& [offset, bytes] : std::vector<std::pair<uint32_t, uint32_t>>{
           {5000, 3}, {0, 5000}, {0xFFFFFFFF, 0xFFFFFFFF}, {130, 0xFFFFFFFF}}) {
    BmpFile file{.headerBytes = 124, .pixels = {1, 2, 3, 0}, .profile = {1, 2, 3}};
    file.profileOffset = offset;
    file.profileBytes = bytes;
    CodecReport report;
    const Raster raster = DecodeBytes(file, &report);
    EXPECT_FALSE(raster.profile);
    EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("profile")));
  }
}

}  // namespace
}  // namespace rasterkit::test
