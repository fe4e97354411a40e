// Files that are too small for the pictures that they state.

#include <cstring>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/codecs/webp/webp_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_share.h>

#include "tests/codecs/jpeg/jpeg_files.h"
#include "tests/support/oversized/oversized_files.h"
#include "tests/support/webp_file.h"

namespace rasterkit::test {
namespace {

using detail::kAlwaysPlausible;
using detail::RequirePlausible;
using testing::HasSubstr;

using ByteList = std::vector<uint8_t>;

constexpr uint64_t kLarge = kAlwaysPlausible + 1;

TEST(PlausibleSize, SmallPictures_AlwaysPass) {
  EXPECT_NO_THROW(RequirePlausible({kAlwaysPlausible, 1000, 0, 1}, "a picture"));
  EXPECT_THROW(RequirePlausible({kLarge, 1000, 0, 1}, "a picture"), FormatError);
}

TEST(PlausibleSize, RatioIsExact) {
  EXPECT_NO_THROW(RequirePlausible({kLarge, 1000, 10, 100}, "a picture"));
  EXPECT_THROW(RequirePlausible({kLarge, 1001, 10, 100}, "a picture"), FormatError);
  EXPECT_THROW(RequirePlausible({kLarge, 1000, 9, 100}, "a picture"), FormatError);
  EXPECT_NO_THROW(RequirePlausible({kLarge, kNoLimit, kNoLimit / 2, 100}, "a picture"));
}

TEST(PlausibleSize, ErrorNamesBothSizes) {
  try {
    RequirePlausible({kLarge, 1001, 9, 100}, "PNG picture of 5 x 6 pixels");
    FAIL();
  } catch (const FormatError& error) {
    EXPECT_EQ(error.Reason(),
              "PNG picture of 5 x 6 pixels: the file is far too small to hold it: 9 bytes of data "
              "instead of at least 11");
  }
}

TEST(PlausibleSize, SmallLimit_MovesTheThreshold) {
  const LimitsScope scope({.pictureBytes = 50});
  EXPECT_NO_THROW(RequirePlausible({50, 1000, 0, 1}, "a picture"));
  EXPECT_THROW(RequirePlausible({51, 1000, 0, 1}, "a picture"), FormatError);
}

TEST(PlausibleSize, CanBeAllowed) {
  const LimitsScope scope({.refuseImplausible = false});
  EXPECT_NO_THROW(RequirePlausible({kLarge, 1000, 0, 1}, "a picture"));
}

/// What became of a file, with little memory: a file that passes the check of its size fails then,
/// as nothing of its size can be allocated.
enum class Verdict { implausible, passed };

Verdict VerdictOf(const ByteList& file, const std::function<void(const ByteList&)>& decode) {
  const LimitsScope scope({.processBytes = ProcessPictureBytes() + 1000});
  try {
    decode(file);
  } catch (const LimitError& error) {
    EXPECT_EQ(error.Kind(), LimitKind::processBytes) << error.what();
    return Verdict::passed;
  } catch (const FormatError& error) {
    EXPECT_THAT(error.Reason(), HasSubstr("far too small to hold it"));
    return Verdict::implausible;
  }
  ADD_FAILURE() << "a picture in 1000 bytes";
  return Verdict::passed;
}

void FromPng(const ByteList& file) {
  DecodePng(file);
}
void FromJpeg(const ByteList& file) {
  DecodeJpeg(file);
}
void FromGif(const ByteList& file) {
  DecodeGif(file);
}
void FromWebp(const ByteList& file) {
  DecodeWebp(file);
}
void FromBmp(const ByteList& file) {
  TSpanStream stream(file);
  DecodeBmp(stream);
}

/// The last size that is refused, and the first that passes.
void ExpectLeast(uint64_t least, const ByteList& file,
                 const std::function<void(const ByteList&)>& decode) {
  ASSERT_LT(file.size(), least);
  EXPECT_EQ(VerdictOf(file, decode), Verdict::implausible);
  EXPECT_EQ(VerdictOf(Padded(file, least - 1), decode), Verdict::implausible);
  EXPECT_EQ(VerdictOf(Padded(file, least), decode), Verdict::passed);
}

TEST(PlausibleSize, Png_NeedsAByteFor2064) {
  ExpectLeast(30000 * 20000 / 2064 + 1, OversizedPng(30000, 20000, 1), FromPng);
}

TEST(PlausibleSize, PngUpTo256MiB_AlwaysPasses) {
  EXPECT_EQ(VerdictOf(OversizedPng(1 << 14, 1 << 14, 1), FromPng), Verdict::passed);
  EXPECT_EQ(VerdictOf(OversizedPng(1 << 14, (1 << 14) + 1, 1), FromPng), Verdict::implausible);
}

TEST(PlausibleSize, Jpeg_NeedsHalfABitPerBlock) {
  // Blocks of luma, and of two colors with a quarter of the samples.
  constexpr uint64_t kBlocks = 1250 * 1250 + 2 * 625 * 625;
  ExpectLeast((kBlocks + 15) / 16, OversizedJpeg(10000, 10000, 8), FromJpeg);
}

/// Where the height stands.
void PatchJpegHeight(ByteList& file, uint8_t marker, uint16_t height) {
  const size_t at = FindMarker(file, marker) + 3;
  file[at] = static_cast<uint8_t>(height >> 8);
  file[at + 1] = static_cast<uint8_t>(height);
}

TEST(PlausibleSize, ProgressiveJpeg_NeedsTheSame) {
  ByteList file = MakeJpeg({.width = 10000, .height = 8, .progressive = true});
  PatchJpegHeight(file, 0xC2, 10000);
  constexpr uint64_t kBlocks = 1250 * 1250 + 2 * 625 * 625;
  ExpectLeast((kBlocks + 15) / 16, file, FromJpeg);
}

TEST(PlausibleSize, ArithmeticJpeg_MayBeOfAnySize) {
  ByteList file = MakeJpeg({.width = 10000, .height = 8, .arithmetic = true});
  PatchJpegHeight(file, 0xC9, 10000);
  EXPECT_EQ(VerdictOf(file, FromJpeg), Verdict::passed);
}

TEST(PlausibleSize, RleBitmap_NeedsAByteFor255Pixels) {
  constexpr uint64_t kHead = 14 + 40 + 1024;
  ExpectLeast(kHead + (uint64_t{30000} * 20000 + 254) / 255, OversizedRleBmp(30000, 20000, 1),
              FromBmp);
}

TEST(PlausibleSize, PlainBitmap_NeedsOneRowOf64) {
  constexpr uint64_t kHead = 14 + 40 + 1024;
  ExpectLeast(kHead + uint64_t{30000} * 20000 / 64, OversizedPlainBmp(30000, 20000, 1), FromBmp);
}

TEST(PlausibleSize, Gif_NeedsAByteFor5456Pixels) {
  ExpectLeast(uint64_t{30000} * 20000 / 5456 + 1, OversizedGif(30000, 20000, 0), FromGif);
}

TEST(PlausibleSize, LossyWebp_NeedsHalfABitPerMacroblock) {
  const ByteList file = OversizedWebp(16000, 16000, 16);
  EXPECT_EQ(VerdictOf(file, FromWebp), Verdict::implausible);
  EXPECT_EQ(VerdictOf(Padded(file, 1000 * 1000 / 16 - 1), FromWebp), Verdict::implausible);
  EXPECT_EQ(VerdictOf(Padded(file, 1000 * 1000 / 16), FromWebp), Verdict::passed);
}

TEST(PlausibleSize, LosslessWebp_MayBeOfAnySize) {
  ByteList file = LosslessWebp(Raster(pf24bit, 16, 16));
  // Behind the heads of the file and of the chunk and the mark: 14 bits of the width, and of the
  // height.
  constexpr size_t kSize = 21;
  ASSERT_EQ(file[kSize - 1], 0x2F);
  constexpr uint32_t kSide = 16000 - 1, kFlags = 0;
  const uint32_t sizes = kSide | kSide << 14 | kFlags;
  for (int i = 0; i < 4; ++i) file[kSize + i] = static_cast<uint8_t>(sizes >> (8 * i));
  EXPECT_EQ(VerdictOf(file, FromWebp), Verdict::passed);
}

TEST(PlausibleSize, TightestFile_IsRead) {
  // The densest PNG: a black picture above 256 MiB. It is read to its end.
  constexpr uint32_t kSide = 17000;
  const ByteList file = OversizedPng(kSide, kSide, kSide);
  ASSERT_GT(uint64_t{kSide} * kSide / file.size(), 1000u) << "close to the largest ratio";
  CodecReport report;
  EXPECT_EQ(DecodePng(file, &report).Height(), static_cast<int>(kSide));
  EXPECT_TRUE(report.warnings.empty());
}

TEST(PlausibleSize, AllowedCutFile_IsReadAsFarAsItGoes) {
  constexpr uint32_t kSide = 17000;
  CodecReport report;
  const Raster raster = DecodePng(OversizedPng(kSide, kSide, kSide * 6 / 10), &report);
  ASSERT_FALSE(report.warnings.empty());
  EXPECT_THAT(report.warnings[0], HasSubstr("10200 of 17000 rows are complete"));
  EXPECT_EQ(raster.Row(0)[0], 0);
  EXPECT_EQ(raster.Row(16999)[16999], 0xFF);
}

}  // namespace
}  // namespace rasterkit::test
