#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/codecs/jpeg/jpeg_files.h"

namespace rasterkit::test {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint8_t kBaselineFrame = 0xC0, kProgressiveFrame = 0xC2, kScan = 0xDA;

std::vector<uint8_t> SmallFile(bool progressive = false) {
  JpegRecipe recipe{.width = 40, .height = 50};
  recipe.progressive = progressive;
  return MakeJpeg(recipe);
}

/// A picture or one of our errors; anything else fails.
void ExpectSurvival(Bytes bytes, const std::string& what) {
  try {
    const Raster raster = DecodeJpeg(bytes);
    EXPECT_GT(raster.Width(), 0) << what;
  } catch (const Error& error) {
    EXPECT_FALSE(error.Reason().empty()) << what;
  } catch (const std::exception& error) {
    ADD_FAILURE() << what << ": " << error.what();
  }
}

TEST(JpegDamage, Should_GiveAPictureOrAnError_When_CutAnywhere) {
  for (const bool arithmetic : {false, true}) {
    for (const bool progressive : {false, true}) {
      JpegRecipe recipe{.width = 40, .height = 50};
      recipe.progressive = progressive;
      recipe.arithmetic = arithmetic;
      recipe.restartRows = 1;
      const auto bytes = MakeJpeg(recipe);
      for (size_t size = 0; size < bytes.size(); size++) {
        ExpectSurvival(Bytes(bytes).first(size), "cut at " + std::to_string(size));
      }
    }
  }
}

TEST(JpegDamage, Should_GiveTheRowsThatAreThereAndWhite_When_Truncated) {
  JpegRecipe recipe{.width = 160, .height = 200};
  recipe.file = JCS_YCbCr;
  const auto bytes = MakeJpeg(recipe);
  const Raster whole = DecodeJpeg(bytes);
  CodecReport report;
  const Raster cut = DecodeJpeg(Bytes(bytes).first(bytes.size() * 2 / 3), &report);
  ASSERT_EQ(cut.Height(), 200);
  ASSERT_THAT(report.warnings, testing::Contains(testing::HasSubstr("of 200 rows are complete")));
  int same = 0, white = 0;
  const auto rowIs = [&](int y, auto&& test) {
    return std::all_of(cut.Row(y), cut.Row(y) + cut.RowBytes(), test);
  };
  while (same < 200 && std::equal(cut.Row(same), cut.Row(same) + cut.RowBytes(), whole.Row(same)))
    same++;
  while (white < 200 && rowIs(199 - white, [](uint8_t value) { return value == 255; })) white++;
  // Between them lies the row of blocks in which the data end, and the row whose colors lean on
  // it.
  EXPECT_GT(same, 40);
  EXPECT_GT(white, 30);
  EXPECT_LE(200 - same - white, 17);
}

TEST(JpegDamage, Should_Refuse_When_NoWholeRowIsThere) {
  const auto bytes = SmallFile();
  const size_t scan = FindMarker(bytes, kScan);
  EXPECT_THROW(DecodeJpeg(Bytes(bytes).first(scan + 12)), FormatError);
  EXPECT_THROW(DecodeJpeg(Bytes(bytes).first(scan + 16)), FormatError);
}

TEST(JpegDamage, Should_GiveACoarsePicture_When_AProgressiveFileIsCut) {
  JpegRecipe recipe{.width = 160, .height = 200};
  recipe.progressive = true;
  const auto bytes = MakeJpeg(recipe);
  const Raster whole = DecodeJpeg(bytes);
  CodecReport report;
  const Raster cut = DecodeJpeg(Bytes(bytes).first(bytes.size() * 3 / 4), &report);
  EXPECT_THAT(report.warnings, testing::Not(testing::IsEmpty()));
  int64_t difference = 0;
  for (int y = 0; y < 200; y++) {
    for (size_t i = 0; i < cut.RowBytes(); i++)
      difference += std::abs(cut.Row(y)[i] - whole.Row(y)[i]);
  }
  EXPECT_LT(difference / (200 * static_cast<int64_t>(cut.RowBytes())), 8);
}

TEST(JpegDamage, Should_Survive_When_BytesAreChanged) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const bool progressive : {false, true}) {
    const auto original = SmallFile(progressive);
    for (int round = 0; round < 1500; round++) {
      auto bytes = original;
      for (int change = 0; change < 1 + round % 7; change++) {
        // Half of the changes hit the headers' first part.
        const size_t range = change % 2 == 0 ? bytes.size() : std::min<size_t>(bytes.size(), 300);
        bytes[random() % range] = static_cast<uint8_t>(random());
      }
      ExpectSurvival(bytes, "round " + std::to_string(round));
    }
  }
}

TEST(JpegDamage, Should_RefuseClearly_When_TheKindIsNotSupported) {
  const auto patched = [](size_t offset, uint8_t value, bool marker = false) {
    auto bytes = SmallFile();
    const size_t frame = FindMarker(bytes, kBaselineFrame);
    bytes[marker ? frame - 1 : frame + offset] = value;
    return bytes;
  };
  EXPECT_THROW(DecodeJpeg(patched(2, 12)), UnsupportedError);          // 12 bits per sample
  EXPECT_THROW(DecodeJpeg(patched(2, 16)), UnsupportedError);          // 16
  EXPECT_THROW(DecodeJpeg(patched(0, 0xC3, true)), UnsupportedError);  // lossless
  EXPECT_THROW(DecodeJpeg(patched(0, 0xCB, true)), UnsupportedError);  // lossless, arithmetic
  EXPECT_THROW(DecodeJpeg(patched(0, 0xC5, true)), UnsupportedError);  // hierarchical
  EXPECT_THROW(DecodeJpeg(patched(7, 2)), UnsupportedError);           // two components
  EXPECT_THROW(DecodeJpeg(patched(7, 5)), UnsupportedError);
  EXPECT_TRUE(ReadJpegFrame(patched(0, 0xC3, true)).lossless);
  EXPECT_EQ(ReadJpegFrame(patched(2, 12)).bits, 12);
}

std::vector<uint8_t> WithSize(std::vector<uint8_t> bytes, uint8_t frameMarker, int width,
                              int height) {
  const size_t frame = FindMarker(bytes, frameMarker);
  bytes[frame + 3] = static_cast<uint8_t>(height >> 8);
  bytes[frame + 4] = static_cast<uint8_t>(height);
  bytes[frame + 5] = static_cast<uint8_t>(width >> 8);
  bytes[frame + 6] = static_cast<uint8_t>(width);
  return bytes;
}

TEST(JpegDamage, Should_RefuseByTheBudget_When_AFewBytesClaimAHugePicture) {
  EXPECT_THROW(DecodeJpeg(WithSize(SmallFile(), kBaselineFrame, 65535, 65535)), LimitError);
  EXPECT_THROW(DecodeJpeg(WithSize(SmallFile(), kBaselineFrame, 65500, 65500)), LimitError);
  // Within the budget, but nothing of the first rows is there.
  const int height = sizeof(size_t) < 8 ? 5000 : 20000;  // 1 or 4 GB: what can be addressed
  EXPECT_THROW(DecodeJpeg(WithSize(SmallFile(), kBaselineFrame, 65500, height)), FormatError);
  EXPECT_THROW(DecodeJpeg(WithSize(SmallFile(), kBaselineFrame, 40, 0)), FormatError);
  EXPECT_THROW(DecodeJpeg(WithSize(SmallFile(), kBaselineFrame, 0, 50)), FormatError);
}

TEST(JpegDamage, Should_CountTheCoefficients_When_Progressive) {
  // Rows alone would fit: 30000 x 30000 x 3 bytes; with the coefficients the need is twice that.
  try {
    DecodeJpeg(WithSize(SmallFile(true), kProgressiveFrame, 30000, 30000));
    FAIL();
  } catch (const LimitError& error) {
    EXPECT_THAT(error.Reason(), testing::HasSubstr("30000 x 30000"));
    EXPECT_THAT(error.Reason(), testing::HasSubstr(std::to_string(PictureMemoryLimit())));
  }
}

TEST(JpegDamage, Should_GiveUp_When_AProgressiveFileHasEndlessScans) {
  JpegRecipe recipe{.width = 8, .height = 8, .pixels = JCS_GRAYSCALE, .components = 1};
  recipe.progressive = true;
  auto bytes = MakeJpeg(recipe);
  const size_t start = FindMarker(bytes, kScan) - 2;
  // One scan of the first coefficient: header of 10 bytes and a byte of data.
  const std::vector<uint8_t> scan(bytes.begin() + static_cast<long>(start),
                                  bytes.begin() + static_cast<long>(start) + 11);
  bytes.resize(start);
  for (int i = 0; i < 300'000; i++) bytes.insert(bytes.end(), scan.begin(), scan.end());
  bytes.insert(bytes.end(), {0xFF, 0xD9});
  EXPECT_THROW(DecodeJpeg(bytes), LimitError);
}

TEST(JpegDamage, Should_RefuseWithAFormatError_When_ThereIsNoPicture) {
  EXPECT_THROW(DecodeJpeg({}), FormatError);
  const std::vector<uint8_t> text(500, 'x');
  EXPECT_THROW(DecodeJpeg(text), FormatError);
  const std::vector<uint8_t> empty = {0xFF, 0xD8, 0xFF, 0xD9};
  EXPECT_THROW(DecodeJpeg(empty), FormatError);
  EXPECT_THROW(ReadJpegFrame(empty), FormatError);
  const auto bytes = SmallFile();
  EXPECT_THROW(DecodeJpeg(Bytes(bytes).first(FindMarker(bytes, kBaselineFrame) + 4)), FormatError);
}

TEST(JpegDamage, Should_GiveThePicture_When_TheEndMarkerIsMissingOrFollowedByOtherBytes) {
  const auto bytes = SmallFile();
  const Raster whole = DecodeJpeg(bytes);
  const Raster withoutEnd = DecodeJpeg(Bytes(bytes).first(bytes.size() - 2));
  EXPECT_TRUE(std::equal(whole.Row(0), whole.Row(0) + whole.Stride() * 50, withoutEnd.Row(0)));
  auto longer = bytes;
  longer.resize(longer.size() + 5000, 0xFF);
  const Raster withTail = DecodeJpeg(longer);
  EXPECT_TRUE(std::equal(whole.Row(0), whole.Row(0) + whole.Stride() * 50, withTail.Row(0)));
}

TEST(JpegDamage, Should_LowerTheNeed_When_TheBudgetIsSet) {
  const uint64_t before = PictureMemoryLimit();
  SetPictureMemoryLimit(40 * 3 * 50 - 1);
  EXPECT_THROW(DecodeJpeg(SmallFile()), LimitError);
  SetPictureMemoryLimit(40 * 3 * 50);
  EXPECT_NO_THROW(DecodeJpeg(SmallFile()));
  EXPECT_THROW(DecodeJpeg(SmallFile(true)), LimitError);
  SetPictureMemoryLimit(before);
}

}  // namespace
}  // namespace rasterkit::test
