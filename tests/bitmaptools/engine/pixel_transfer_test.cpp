#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/mixing.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>

#include "tests/reference/pixel_transfer_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"

namespace rasterkit {
namespace {

using test::PaddingIsZero;
using test::PaperBitmap;
using test::SamePixels;

constexpr TPixelFormat kFormats[] = {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit};
constexpr TPixelMode kModes[] = {pmOverwrite, pmTransparent, pmShadow};

struct Case {
  TPixelFormat targetFormat, sourceFormat;
  int targetWidth, targetHeight, sourceWidth, sourceHeight;
  TRect targetRect, sourceRect;
  TPixelMode mode = pmOverwrite;
  int32_t percent = 0;
  bool useGray = false;
  uint32_t seed = 1;
};

std::string Describe(const Case& c, int threads) {
  const auto rect = [](const TRect& r) {
    return "(" + std::to_string(r.Left) + "," + std::to_string(r.Top) + "," +
           std::to_string(r.Right) + "," + std::to_string(r.Bottom) + ")";
  };
  return "formats " + std::to_string(c.targetFormat) + " <- " + std::to_string(c.sourceFormat) +
         ", target " + std::to_string(c.targetWidth) + "x" + std::to_string(c.targetHeight) +
         rect(c.targetRect) + ", source " + std::to_string(c.sourceWidth) + "x" +
         std::to_string(c.sourceHeight) + rect(c.sourceRect) + ", mode " + std::to_string(c.mode) +
         ", percent " + std::to_string(c.percent) + ", gray " + std::to_string(c.useGray) +
         ", seed " + std::to_string(c.seed) + ", threads " + std::to_string(threads);
}

struct Pair {
  TBitmap target, source;
};

Pair Pictures(const Case& c) {
  std::mt19937 random(c.seed);
  Pair pair{PaperBitmap(c.targetFormat, c.targetWidth, c.targetHeight, random),
            PaperBitmap(c.sourceFormat, c.sourceWidth, c.sourceHeight, random)};
  if (random() % 2 == 0) pair.target.SetTransparent(true);
  if (random() % 2 == 0) pair.target.SetTransparentColor(random() % 2 == 0 ? clWhite : clBlack);
  return pair;
}

bool WritesTheSource(const Case& c, bool isPart) {
  return c.targetFormat >= pf24bit && c.sourceFormat >= pf24bit &&
         c.targetFormat != c.sourceFormat && (!isPart || c.mode == pmOverwrite);
}

/// True when no two bands show the same source row, so that workers cannot meet there. The products
/// are extended, as the workers' are: near a half the shorter ones would name another row.
bool BandsKeepApart(const Case& c, int threads, bool isPart) {
  std::vector<int> owner(static_cast<size_t>(c.sourceHeight), -1);
  const double scale = static_cast<double>(c.sourceRect.Bottom - c.sourceRect.Top) /
                       (c.targetRect.Bottom - c.targetRect.Top);
  int band = 0;
  for (const auto& [first, end] :
       reference::BandsOf(threads, c.targetRect.Bottom - c.targetRect.Top)) {
    const int top = isPart ? 0 : c.targetRect.Top;
    for (int64_t y = first + top; y < end + top; ++y) {
      const int64_t row = reference::RoundEven(reference::Extended(y - c.targetRect.Top) * scale) +
                          c.sourceRect.Top;
      if (row < 0 || row >= c.sourceHeight) continue;
      int& who = owner[static_cast<size_t>(row)];
      if (who >= 0 && who != band) return false;
      who = band;
    }
    ++band;
  }
  return true;
}

testing::AssertionResult BothAreSame(const Pair& expected, const Pair& actual) {
  testing::AssertionResult target = SamePixels(expected.target, actual.target);
  if (!target) return target << " (target)";
  testing::AssertionResult source = SamePixels(expected.source, actual.source);
  if (!source) return source << " (source)";
  return PaddingIsZero(actual.target);
}

void CheckPart(const Case& c, int threads) {
  if (WritesTheSource(c, true) && !BandsKeepApart(c, threads, true)) return;
  Pair expected = Pictures(c), actual = Pictures(c);
  reference::Transfer({expected.target, expected.source, c.targetRect, c.sourceRect, ptAssignPart,
                       c.mode, c.percent, c.useGray},
                      reference::BandsOf(threads, c.targetRect.Bottom - c.targetRect.Top));
  AssignPartBitmap(&actual.target, &actual.source, c.targetRect, c.sourceRect, threads, nullptr,
                   c.mode, c.percent, c.useGray, false);
  ASSERT_TRUE(BothAreSame(expected, actual)) << "part: " << Describe(c, threads);
}

void CheckInWhite(const Case& c, int threads, uint8_t limit) {
  if (WritesTheSource(c, false) && !BandsKeepApart(c, threads, false)) return;
  Pair expected = Pictures(c), actual = Pictures(c);
  reference::AssignInWhite(expected.target, expected.source, c.targetRect, c.sourceRect, limit,
                           reference::BandsOf(threads, c.targetRect.Bottom - c.targetRect.Top));
  AssignInWhite(&actual.target, &actual.source, c.targetRect, c.sourceRect, limit, threads,
                nullptr);
  ASSERT_TRUE(BothAreSame(expected, actual))
      << "in white, limit " << int{limit} << ": " << Describe(c, threads);
}

int Between(std::mt19937& random, int low, int high) {
  return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
}

int32_t SomePercent(std::mt19937& random) {
  constexpr int32_t kEdges[] = {0,   1,   25,  50,  75,   99,      100,     -1,      -25,
                                -50, -99, 101, 150, 1000, INT_MAX, INT_MIN, -100000, -100};
  const uint32_t which = random() % 40;
  if (which < std::size(kEdges)) return kEdges[which];
  return Between(random, 0, 100);
}

/// A rectangle of at least one pixel (two columns or rows where it is a source), which may leave
/// the picture.
TRect SomeRect(int width, int height, std::mt19937& random, bool mayMirror) {
  TRect rect{0, 0, width, height};
  switch (random() % 4) {
    case 0:  // whole, in the way of those who count the last pixel
      rect = {0, 0, std::max(width - 1, 1), std::max(height - 1, 1)};
      break;
    case 1:
      break;
    case 2: {
      rect.Left = Between(random, 0, width - 1);
      rect.Top = Between(random, 0, height - 1);
      rect.Right = Between(random, rect.Left + 1, width + 1);
      rect.Bottom = Between(random, rect.Top + 1, height + 1);
      break;
    }
    default:
      rect.Left = Between(random, -9, width);
      rect.Top = Between(random, -9, height);
      rect.Right = rect.Left + Between(random, 1, width + 20);
      rect.Bottom = rect.Top + Between(random, 1, height + 20);
  }
  if (mayMirror && random() % 12 == 0) std::swap(rect.Left, rect.Right);
  if (mayMirror && random() % 12 == 0) std::swap(rect.Top, rect.Bottom);
  return rect;
}

Case SomeCase(TPixelFormat target, TPixelFormat source, std::mt19937& random, int largest) {
  Case c{target,
         source,
         Between(random, 1, largest),
         Between(random, 1, std::min(largest, 40)),
         Between(random, 1, largest),
         Between(random, 1, std::min(largest, 40)),
         {},
         {}};
  c.targetRect = SomeRect(c.targetWidth, c.targetHeight, random, false);
  c.sourceRect = SomeRect(c.sourceWidth, c.sourceHeight, random, true);
  if (random() % 3 == 0) {  // one to one
    c.sourceRect.Right = c.sourceRect.Left + c.targetRect.Right - c.targetRect.Left;
    c.sourceRect.Bottom = c.sourceRect.Top + c.targetRect.Bottom - c.targetRect.Top;
  }
  c.mode = kModes[random() % 3];
  c.percent = SomePercent(random);
  c.useGray = random() % 2 == 0;
  c.seed = static_cast<uint32_t>(random());
  return c;
}

/// A number of threads that the rows suffice for.
int SomeThreads(const Case& c, std::mt19937& random) {
  const int rows = c.targetRect.Bottom - c.targetRect.Top;
  return rows < 3 ? 1 + static_cast<int>(random() % 4) % (2 * rows) : Between(random, 1, 7);
}

class PixelTransferTest : public testing::TestWithParam<TPixelFormat> {};

TEST_P(PixelTransferTest, EqualsTheReferenceForEverySourceFormatModeScaleAndOneToSevenThreads) {
  const int rounds = test::IsFullRun() ? 6000 : 250;
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    std::mt19937 random(300 + static_cast<unsigned>(GetParam()));
    for (TPixelFormat source : kFormats)
      for (int round = 0; round < rounds; ++round) {
        const bool isLarge = test::IsFullRun() && round % 100 == 0;
        const Case c = SomeCase(GetParam(), source, random, isLarge ? 1500 : 70);
        const int threads = SomeThreads(c, random);
        CheckPart(c, threads);
        CheckInWhite(c, threads, random() % 2 == 0 ? 255 : 254);
        if (testing::Test::HasFatalFailure()) return;
      }
  });
}

TEST_P(PixelTransferTest, EqualsTheReferenceAtEveryWidthUpTo70OneToOne) {
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    for (TPixelFormat source : kFormats)
      for (int width = 1; width <= 70; ++width) {
        Case c{GetParam(), source, width, 5, width, 5, {0, 0, width, 5}, {0, 0, width, 5}};
        c.mode = kModes[width % 3];
        c.percent = width * 7 % 101;
        c.useGray = width % 2 == 0;
        c.seed = static_cast<uint32_t>(width);
        CheckPart(c, 1 + width % 3);
        CheckInWhite(c, 1 + width % 3, 255);
        if (testing::Test::HasFatalFailure()) return;
      }
  });
}

TEST_P(PixelTransferTest, EqualsTheReferenceInRowsThatAreWorkedOnInSeveralParts) {
  constexpr int kWidth = 2 * 1024 + 77;
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    uint32_t seed = 900;
    for (TPixelFormat source : kFormats)
      for (TPixelMode mode : kModes)
        for (int sourceWidth : {kWidth, kWidth / 3}) {
          Case c{GetParam(),
                 source,
                 kWidth,
                 2,
                 sourceWidth,
                 2,
                 {0, 0, kWidth, 2},
                 {0, 0, sourceWidth, 2}};
          c.mode = mode;
          c.percent = 35;
          c.useGray = seed % 2 == 0;
          c.seed = seed++;
          CheckPart(c, 1);
          CheckInWhite(c, 1, 255);
          if (testing::Test::HasFatalFailure()) return;
        }
  });
}

INSTANTIATE_TEST_SUITE_P(Formats, PixelTransferTest, testing::ValuesIn(kFormats),
                         [](const auto& info) {
                           return "Onto" + std::to_string(StoredBitsPerPixel(info.param)) + "Bit";
                         });

TBitmap Filled(TPixelFormat format, int width, int height, RGBrec color, uint8_t alpha = 9) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, width, height);
  const int bytes = bitmap.StoredBits() / 8;
  for (int y = 0; y < height; ++y) {
    std::fill_n(bitmap.ScanLine(y), bitmap.Stride(), uint8_t{0});
    for (int x = 0; x < width; ++x) {
      uint8_t* pixel = bitmap.ScanLine(y) + x * bytes;
      pixel[0] = color.b;
      pixel[1] = color.g;
      pixel[2] = color.r;
      if (bytes == 4) pixel[3] = alpha;
    }
  }
  return bitmap;
}

TColor PartOf(TPixelFormat target, RGBrec t, TPixelFormat source, RGBrec s, TPixelMode mode,
              int32_t percent, bool useGray = false) {
  TBitmap to = Filled(target, 1, 1, t), from = Filled(source, 1, 1, s);
  AssignPartBitmap(&to, &from, {0, 0, 1, 1}, {0, 0, 1, 1}, 1, nullptr, mode, percent, useGray,
                   false);
  return to.PixelColor(0, 0);
}

TEST(AssignPartBitmapTest, NearWhiteSourcePixelsAreSkippedAnd250IsNotNearWhite) {
  const RGBrec paper{10, 20, 30};
  EXPECT_EQ(PartOf(pf24bit, paper, pf24bit, {251, 251, 251}, pmOverwrite, 0), RGB(30, 20, 10));
  EXPECT_EQ(PartOf(pf24bit, paper, pf24bit, {255, 255, 250}, pmOverwrite, 0), RGB(250, 255, 255));
}

TEST(AssignPartBitmapTest, Equal24BitFormatsAreMixedInTransparentMode) {
  EXPECT_EQ(PartOf(pf24bit, {100, 100, 100}, pf24bit, {200, 50, 0}, pmTransparent, 50),
            RGB(50, 75, 150));
}

TEST(AssignPartBitmapTest, TransparentAt100LeavesTheTargetAndAt0TakesTheSource) {
  EXPECT_EQ(PartOf(pf24bit, {1, 2, 3}, pf32bit, {200, 50, 7}, pmTransparent, 100), RGB(3, 2, 1));
  EXPECT_EQ(PartOf(pf24bit, {1, 2, 3}, pf32bit, {200, 50, 7}, pmTransparent, 0), RGB(7, 50, 200));
}

TEST(AssignPartBitmapTest, ShadowAt0IsAMultiplication) {
  EXPECT_EQ(PartOf(pf24bit, {128, 255, 0}, pf24bit, {100, 77, 99}, pmShadow, 0), RGB(0, 77, 50));
}

TEST(AssignPartBitmapTest, ShadesAreRoundedForEveryPairOfBytes) {
  for (int pair = 0; pair < 65536; ++pair) {
    const auto source = static_cast<uint8_t>(pair), shade = static_cast<uint8_t>(pair >> 8);
    const uint8_t shaded = detail::Shaded(source, shade);
    ASSERT_EQ(shaded, reference::Shaded(source, shade, false)) << pair;
    ASSERT_EQ(shaded, reference::Shaded(source, shade, true)) << pair;
  }
}

TEST(AssignPartBitmapTest, PercentagesOutOfRangeKeepTheLowByteInTransparentMode) {
  // At -100 percent the source counts twice and the target is taken off: 400 - 10 = 390.
  EXPECT_EQ(PartOf(pf24bit, {10, 10, 10}, pf24bit, {200, 200, 200}, pmTransparent, -100),
            RGB(390 & 255, 390 & 255, 390 & 255));
}

TEST(AssignPartBitmapTest, OverwriteBetweenFormatsChangesTheSourceAndKeepsTheTarget) {
  TBitmap target = Filled(pf24bit, 3, 2, {1, 2, 3}), source = Filled(pf32bit, 3, 2, {9, 8, 7}, 77);
  AssignPartBitmap(&target, &source, {0, 0, 3, 2}, {0, 0, 3, 2}, 1, nullptr, pmOverwrite, 0, false,
                   false);
  EXPECT_TRUE(SamePixels(Filled(pf24bit, 3, 2, {1, 2, 3}), target));
  EXPECT_TRUE(SamePixels(Filled(pf32bit, 3, 2, {1, 2, 3}, 77), source));
}

TEST(AssignPartBitmapTest, CopiesAlphaBetweenEqual32BitFormatsAndKeepsItWhereColorsAreMixed) {
  for (TPixelMode mode : {pmOverwrite, pmTransparent}) {
    TBitmap target = Filled(pf32bit, 1, 1, {1, 2, 3}, 40),
            source = Filled(pf32bit, 1, 1, {9, 8, 7}, 77);
    AssignPartBitmap(&target, &source, {0, 0, 1, 1}, {0, 0, 1, 1}, 1, nullptr, mode, 0, false,
                     false);
    EXPECT_EQ(target.PixelColor(0, 0), RGB(7, 8, 9));
    EXPECT_EQ(target.ScanLine(0)[3], mode == pmOverwrite ? 77 : 40);
  }
}

TEST(AssignPartBitmapTest, TheTopOfTheTargetRectangleIsLeftOutOfTheBands) {
  TBitmap target = Filled(pf24bit, 1, 6, {1, 1, 1}), source = Filled(pf24bit, 1, 6, {2, 2, 2});
  AssignPartBitmap(&target, &source, {0, 2, 1, 6}, {0, 0, 1, 4}, 1, nullptr, pmOverwrite, 0, false,
                   false);
  // Rows 0 to 3 are worked on; 0 and 1 would show source rows -2 and -1; 4 and 5 are not reached.
  for (int y = 0; y < 6; ++y) EXPECT_EQ(target.ScanLine(y)[0], y == 2 || y == 3 ? 2 : 1) << y;
}

TEST(AssignPartBitmapTest, TheColumnOfTheRightEdgeIsWrittenAndTheRowOfTheBottomIsNot) {
  TBitmap target = Filled(pf24bit, 5, 5, {1, 1, 1}), source = Filled(pf24bit, 5, 5, {2, 2, 2});
  AssignPartBitmap(&target, &source, {0, 0, 3, 3}, {0, 0, 3, 3}, 1, nullptr, pmOverwrite, 0, false,
                   false);
  EXPECT_EQ(target.ScanLine(0)[9], 2);
  EXPECT_EQ(target.ScanLine(0)[12], 1);
  EXPECT_EQ(target.ScanLine(3)[0], 1);
}

TEST(AssignPartBitmapTest, SixThreadsForNineRowsWriteTheTenthWhereItExists) {
  for (int height : {9, 10}) {
    TBitmap target = Filled(pf24bit, 2, height, {1, 1, 1}),
            source = Filled(pf24bit, 2, 12, {2, 2, 2});
    AssignPartBitmap(&target, &source, {0, 0, 2, 9}, {0, 0, 2, 9}, 6, nullptr, pmOverwrite, 0,
                     false, false);
    for (int y = 0; y < height; ++y) EXPECT_EQ(target.ScanLine(y)[0], 2) << y;
  }
}

TEST(AssignPartBitmapTest, RectanglesThatLeaveTheTargetAreCutAndKeepTheirScale) {
  TBitmap target = Filled(pf24bit, 4, 4, {1, 1, 1}), source = Filled(pf24bit, 8, 8, {2, 2, 2});
  for (int x = 0; x < 8; ++x)
    for (int y = 0; y < 8; ++y) source.ScanLine(y)[3 * x] = static_cast<uint8_t>(10 * y + x);
  AssignInWhite(&target, &source, {-2, -2, 6, 6}, {0, 0, 8, 8}, 0, 1, nullptr);
  EXPECT_EQ(target.ScanLine(0)[0], 1) << "the target is not white";
  AssignPartBitmap(&target, &source, {-2, 0, 1000000, 1000000}, {0, 0, 1000002, 1000000}, 1,
                   nullptr, pmOverwrite, 0, false, false);
  for (int x = 0; x < 4; ++x)
    for (int y = 0; y < 4; ++y) EXPECT_EQ(target.ScanLine(y)[3 * x], 10 * y + x + 2);
}

TEST(AssignPartBitmapTest, BitsOfAScaledSourceAreReadFromTheLastByteThatWasLoaded) {
  TBitmap target, source;
  target.ResetPixels(pf24bit, 3, 1);
  source.ResetPixels(pf1bit, 24, 1);
  std::fill_n(target.ScanLine(0), target.Stride(), uint8_t{0});
  for (int i = 0; i < 9; ++i) target.ScanLine(0)[i] = 200;
  const uint8_t bits[4] = {0xF0, 0x00, 0xFF, 0};
  std::copy_n(bits, 4, source.ScanLine(0));
  // Columns 0, 9 and 18: only the first loads a byte, so the others read bits 1 and 2 of 0xF0.
  AssignPartBitmap(&target, &source, {0, 0, 2, 1}, {0, 0, 18, 1}, 1, nullptr, pmOverwrite, 0, false,
                   false);
  EXPECT_EQ(target.PixelColor(0, 0), RGB(200, 200, 200));
  EXPECT_EQ(target.PixelColor(1, 0), RGB(200, 200, 200));
  EXPECT_EQ(target.PixelColor(2, 0), RGB(200, 200, 200));
}

TEST(AssignPartBitmapTest, BitsBeforeTheFirstWholeByteComeFromTheRowBeforeAndAreZeroInABandsFirst) {
  for (int threads : {1, 2}) {
    TBitmap target = Filled(pf24bit, 9, 8, {200, 200, 200}), source;
    source.ResetPixels(pf1bit, 16, 8);
    for (int y = 0; y < 8; ++y) std::fill_n(source.ScanLine(y), 2, uint8_t{0xFF});
    // Columns 4 to 12: a byte is read at 8. All of the source is white, but not what a worker has
    // in hand before its first byte.
    AssignPartBitmap(&target, &source, {0, 0, 8, 8}, {4, 0, 12, 8}, threads, nullptr, pmOverwrite,
                     0, false, false);
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 9; ++x) {
        const bool isFirst = y == 0 || (threads == 2 && y == 4);
        EXPECT_EQ(target.PixelColor(x, y), isFirst && x < 4 ? RGB(0, 0, 0) : RGB(200, 200, 200))
            << x << ", " << y << ", threads " << threads;
      }
  }
}

TEST(AssignInWhiteTest, WithLimit255ATransparentTargetGivesUpItsTransparentColorAlone) {
  for (int limit : {255, 254}) {
    TBitmap target = Filled(pf24bit, 3, 1, {251, 252, 253});
    target.SetTransparent(true);
    target.SetTransparentColor(RGB(5, 6, 7));
    target.ScanLine(0)[3] = 7;
    target.ScanLine(0)[4] = 6;
    target.ScanLine(0)[5] = 5;
    TBitmap source = Filled(pf24bit, 3, 1, {9, 9, 9});
    AssignInWhite(&target, &source, {0, 0, 3, 1}, {0, 0, 3, 1}, static_cast<uint8_t>(limit), 1,
                  nullptr);
    EXPECT_EQ(target.PixelColor(1, 0), limit == 255 ? RGB(9, 9, 9) : RGB(5, 6, 7));
    EXPECT_EQ(target.PixelColor(0, 0), limit == 255 ? RGB(253, 252, 251) : RGB(9, 9, 9));
  }
}

TEST(AssignInWhiteTest, ASystemColorAsTransparentColorCountsAsBlack) {
  TBitmap target = Filled(pf24bit, 2, 1, {255, 255, 255}),
          source = Filled(pf24bit, 2, 1, {9, 9, 9});
  std::fill_n(target.ScanLine(0), 3, uint8_t{0});
  target.SetTransparent(true);
  target.SetTransparentColor(static_cast<TColor>(0x80000005u));  // the window's, which is white
  AssignInWhite(&target, &source, {0, 0, 2, 1}, {0, 0, 2, 1}, 255, 1, nullptr);
  EXPECT_EQ(target.PixelColor(0, 0), RGB(9, 9, 9));
  EXPECT_EQ(target.PixelColor(1, 0), clWhite);
}

TEST(AssignInWhiteTest, TheAutomaticTransparentColorIsReadBeforeThePixelsChange) {
  // The bottom-left pixel is itself replaced, by the worker that comes last.
  TBitmap target = Filled(pf24bit, 4, 8, {1, 2, 3}), source = Filled(pf24bit, 4, 8, {9, 9, 9});
  target.SetTransparent(true);
  AssignInWhite(&target, &source, {0, 0, 4, 8}, {0, 0, 4, 8}, 255, 4, nullptr);
  EXPECT_TRUE(SamePixels(source, target));
}

TEST(AssignInWhiteTest, FourBitPairsWhoseFirstPixelIs0BecomeTheSourcesFirstPixelTwice) {
  TBitmap target, source;
  target.ResetPixels(pf4bit, 5, 1);
  source.ResetPixels(pf4bit, 5, 1);
  const uint8_t before[4] = {0x0F, 0x30, 0x00, 0}, from[4] = {0x12, 0x34, 0x50, 0};
  std::copy_n(before, 4, target.ScanLine(0));
  std::copy_n(from, 4, source.ScanLine(0));
  AssignInWhite(&target, &source, {0, 0, 4, 1}, {0, 0, 4, 1}, 0, 1, nullptr);
  EXPECT_EQ(target.ScanLine(0)[0], 0x11);
  EXPECT_EQ(target.ScanLine(0)[1], 0x30);
  EXPECT_EQ(target.ScanLine(0)[2], 0x50) << "no pixel after the last one";
}

TEST(AssignInWhiteTest, EightBitIndexesAreMappedAndOtherIndexedSourcesGiveBlack) {
  TBitmap target, source;
  target.ResetPixels(pf8bit, 1, 1);
  source.ResetPixels(pf8bit, 1, 1);
  const tagPALETTEENTRY to[] = {{255, 255, 255, 0}, {10, 10, 10, 0}, {3, 4, 5, 0}};
  const tagPALETTEENTRY from[] = {{9, 9, 9, 0}};
  target.SetPalette(HPALETTE(to));
  source.SetPalette(HPALETTE(from));
  target.ScanLine(0)[0] = 0;
  source.ScanLine(0)[0] = 0;
  AssignInWhite(&target, &source, {0, 0, 1, 1}, {0, 0, 1, 1}, 0, 1, nullptr);
  EXPECT_EQ(target.ScanLine(0)[0], 1);
  target.ScanLine(0)[0] = 0;
  TBitmap mono;
  mono.ResetPixels(pf1bit, 1, 1);
  AssignInWhite(&target, &mono, {0, 0, 1, 1}, {0, 0, 1, 1}, 0, 1, nullptr);
  EXPECT_EQ(target.ScanLine(0)[0], 2) << "the entry nearest to black";
}

TEST(PixelTransferRulesTest, NullAndEmptyBitmapsAndRectanglesWithoutAreaChangeNothing) {
  TBitmap target = Filled(pf24bit, 3, 3, {255, 255, 255}),
          source = Filled(pf24bit, 3, 3, {2, 2, 2}), empty;
  const TRect whole{0, 0, 3, 3};
  const auto both = [&](TBitmap* to, TBitmap* from, const TRect& a, const TRect& b) {
    AssignPartBitmap(to, from, a, b, 0, nullptr, pmOverwrite, 0, false, true);
    AssignInWhite(to, from, a, b, 0, 0, nullptr);
  };
  both(nullptr, &source, whole, whole);
  both(&target, nullptr, whole, whole);
  both(&empty, &source, whole, whole);
  both(&target, &empty, whole, whole);
  for (const TRect& none : {TRect{0, 0, 0, 3}, TRect{0, 0, 3, 0}, TRect{1, 1, 1, 1}}) {
    both(&target, &source, none, whole);
    both(&target, &source, whole, none);
  }
  both(&target, &source, {3, 0, 0, 3}, whole);
  both(&target, &source, {INT_MIN, 0, INT_MAX, 3}, whole);
  EXPECT_TRUE(SamePixels(Filled(pf24bit, 3, 3, {255, 255, 255}), target));
}

TEST(PixelTransferRulesTest, ImpossibleFormatsChangeNothing) {
  for (TPixelFormat to : test::kEveryFormat)
    for (TPixelFormat from : test::kEveryFormat) {
      std::mt19937 random(5);
      Pair expected{PaperBitmap(to, 9, 9, random), PaperBitmap(from, 9, 9, random)};
      if (reference::TransferWorker::IsPossible(expected.target, expected.source)) continue;
      random.seed(5);
      Pair actual{PaperBitmap(to, 9, 9, random), PaperBitmap(from, 9, 9, random)};
      AssignPartBitmap(&actual.target, &actual.source, {0, 0, 9, 9}, {0, 0, 9, 9}, 2, nullptr,
                       pmShadow, 0, false, false);
      AssignInWhite(&actual.target, &actual.source, {0, 0, 9, 9}, {0, 0, 9, 9}, 0, 2, nullptr);
      EXPECT_TRUE(BothAreSame(expected, actual)) << to << " <- " << from;
    }
}

TEST(PixelTransferRulesTest, BitmapsWithoutANamedFormatAreTakenAsWhatTheyAreStoredIn) {
  struct Unnamed {
    TPixelFormat format, stored;
  };
  constexpr Unnamed kUnnamed[] = {{pfDevice, pf32bit}, {pfCustom, pf32bit}, {pfCustom, pf24bit}};
  const TRect whole{0, 0, 9, 5};
  for (const Unnamed& unnamed : kUnnamed)
    for (const bool isTarget : {false, true})
      for (const TPixelMode mode : kModes) {
        const Case c{isTarget ? unnamed.stored : pf24bit,
                     isTarget ? pf24bit : unnamed.stored,
                     9,
                     5,
                     9,
                     5,
                     whole,
                     whole};
        Pair expected = Pictures(c), actual = Pictures(c);
        (isTarget ? actual.target : actual.source).SetPixelFormat(unnamed.format);
        for (Pair* pair : {&expected, &actual})
          AssignPartBitmap(&pair->target, &pair->source, whole, whole, 1, nullptr, mode, 30, false,
                           false);
        EXPECT_TRUE(BothAreSame(expected, actual))
            << unnamed.format << " of " << unnamed.stored << (isTarget ? ", target" : ", source");
      }
}

TEST(PixelTransferRulesTest, TooFewRowsForTheThreadsThrow) {
  TBitmap target = Filled(pf24bit, 3, 3, {1, 1, 1}), source = Filled(pf24bit, 3, 3, {2, 2, 2});
  for (int threads : {0, -1, 8})
    EXPECT_THROW(AssignPartBitmap(&target, &source, {0, 0, 3, 1}, {0, 0, 3, 1}, threads, nullptr,
                                  pmOverwrite, 0, false, false),
                 DivisionByZeroError);
  EXPECT_TRUE(SamePixels(Filled(pf24bit, 3, 3, {1, 1, 1}), target));
}

TEST(PixelTransferRulesTest, FarTooManyThreadsAreCutToAQuarterOfTheRows) {
  for (int threads : {1000, INT_MAX}) {
    TBitmap target = Filled(pf24bit, 3, 90, {1, 1, 1}), source = Filled(pf24bit, 3, 90, {2, 2, 2});
    AssignPartBitmap(&target, &source, {0, 0, 3, 90}, {0, 0, 3, 90}, threads, nullptr, pmOverwrite,
                     0, false, false);
    EXPECT_TRUE(SamePixels(source, target)) << threads;
  }
}

TEST(PixelTransferRulesTest, OneBitmapMayBeSourceAndTarget) {
  for (TPixelFormat format : kFormats) {
    std::mt19937 random(77);
    TBitmap expected = PaperBitmap(format, 33, 20, random);
    random.seed(77);
    TBitmap actual = PaperBitmap(format, 33, 20, random);
    const TRect to{3, 0, 20, 11}, from{0, 0, 30, 19};
    reference::Transfer({expected, expected, to, from, ptAssignPart, pmShadow, 20, false},
                        reference::BandsOf(1, 11));
    AssignPartBitmap(&actual, &actual, to, from, 1, nullptr, pmShadow, 20, false, false);
    EXPECT_TRUE(SamePixels(expected, actual)) << format;
    // Workers meet here; nothing is promised but that they do no harm.
    AssignPartBitmap(&actual, &actual, to, from, 3, nullptr, pmShadow, 20, false, false);
  }
}

TEST(PixelTransferRulesTest, WorkersMayMeetInTheSourceThatTheyOverwrite) {
  TBitmap target = Filled(pf24bit, 9, 64, {1, 2, 3}), source = Filled(pf32bit, 9, 4, {9, 8, 7}, 77);
  AssignPartBitmap(&target, &source, {0, 0, 9, 64}, {0, 0, 9, 4}, 7, nullptr, pmOverwrite, 0, false,
                   false);
  EXPECT_TRUE(SamePixels(Filled(pf32bit, 9, 4, {1, 2, 3}, 77), source));
}

TEST(PixelTransferRulesTest, TheCallbackIsUsedFrom1001RowsOn) {
  for (int rows : {1000, 1001}) {
    TBitmap target = Filled(pf24bit, 1, rows, {1, 1, 1}), source = Filled(pf24bit, 1, 1, {2, 2, 2});
    std::atomic<int> calls{0};
    std::atomic<float> most{0};
    AssignPartBitmap(
        &target, &source, {0, 0, 1, rows}, {0, 0, 1, 1}, 2,
        [&](float percent) {
          ++calls;
          float seen = most;
          while (seen < percent && !most.compare_exchange_weak(seen, percent)) {
          }
        },
        pmOverwrite, 0, false, false);
    EXPECT_EQ(calls >= 2, rows == 1001);
    EXPECT_EQ(most.load(), rows == 1001 ? 100.0f : 0.0f);
  }
}

}  // namespace
}  // namespace rasterkit
