#include <atomic>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/runtime/errors.h>

#include "tests/reference/combine_reference.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::PaddingIsZero;
using test::SamePixels;

using Formats = std::pair<TPixelFormat, TPixelFormat>;

TBitmap PaperBitmap(TPixelFormat format, int width, int height, std::mt19937& random) {
  return test::WithoutUnusedBits(test::PaperBitmap(format, width, height, random));
}
TBitmap RandomBitmap(TPixelFormat format, int width, int height, std::mt19937& random) {
  return test::WithoutUnusedBits(test::RandomBitmap(format, width, height, random));
}

std::string Describe(const TBitmap& target, const TBitmap& source) {
  const auto one = [](const TBitmap& bitmap) {
    return "format " + std::to_string(bitmap.PixelFormat()) + " " + std::to_string(bitmap.Width()) +
           "x" + std::to_string(bitmap.Height());
  };
  return one(target) + " under " + one(source);
}

void CheckDrawBlended(const TBitmap& canvas, TBitmap& source, const TRect& rect, uint8_t alpha) {
  const Raster expected = reference::DrawBlendedBitmap(
      canvas, {rect.Left, rect.Top, rect.Right, rect.Bottom}, source, alpha);
  const std::unique_ptr<TBitmap> actual = canvas.Clone();
  DrawBlendedBitmap(&source, actual->Canvas(), rect, alpha);
  ASSERT_TRUE(SamePixels(expected, actual->Content()))
      << Describe(canvas, source) << ", alpha " << int{alpha};
}

void CheckCombine(const TBitmap& target, const TBitmap& source, uint8_t alpha, int threads) {
  const std::unique_ptr<TBitmap> actual = target.Clone(), from = source.Clone();
  const std::unique_ptr<TBitmap> expected = target.Clone(), expectedFrom = source.Clone();
  CombineBitmapsTransparent(actual.get(), from.get(), alpha, threads, nullptr);
  const Raster wanted =
      reference::CombineBitmapsTransparent(*expected, *expectedFrom, alpha, threads);
  ASSERT_TRUE(SamePixels(wanted, actual->Content()))
      << Describe(target, source) << ", alpha " << int{alpha} << ", threads " << threads;
  ASSERT_TRUE(SamePixels(*expectedFrom, *from)) << "source, " << Describe(target, source);
  ASSERT_TRUE(PaddingIsZero(*actual));
}

void CheckGeo(const TBitmap& target, const TBitmap& source, int percent, bool useGray,
              int threads) {
  for (const TPixelMode mode : {pmTransparent, pmShadow}) {
    const std::unique_ptr<TBitmap> actual = target.Clone(), from = source.Clone();
    const std::unique_ptr<TBitmap> expected = target.Clone(), expectedFrom = source.Clone();
    const auto combine = mode == pmTransparent ? CombineGeoResTrans : CombineGeoResFix;
    combine(actual.get(), from.get(), percent, useGray, threads, nullptr);
    reference::TransferOver(*expected, *expectedFrom, mode, percent, useGray, threads);
    ASSERT_TRUE(SamePixels(*expected, *actual))
        << Describe(target, source) << ", mode " << mode << ", percent " << percent << ", gray "
        << useGray << ", threads " << threads;
    ASSERT_TRUE(SamePixels(*expectedFrom, *from));
  }
}

TEST(DrawBlendedBitmapTest, EveryPairOfFormats_EqualTheReference) {
  constexpr unsigned kSeed = 12;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat canvas : test::kEveryFormat) {
    for (const TPixelFormat format : test::kEveryFormat) {
      const TBitmap target = RandomBitmap(canvas, 23, 13, random);
      TBitmap source = RandomBitmap(format, 9, 7, random);
      for (const uint8_t alpha : {0, 1, 128, 254, 255}) {
        for (const TRect& rect : {TRect{3, 2, 12, 9}, TRect{-4, -3, 30, 20}, TRect{5, 5, 9, 7}})
          ASSERT_NO_FATAL_FAILURE(CheckDrawBlended(target, source, rect, alpha));
      }
    }
  }
}

TEST(DrawBlendedBitmapTest, EveryWidthAndTarget_EqualTheReference) {
  test::ForEachSimdTarget([&](int64_t simd) {
    SCOPED_TRACE(hwy::TargetName(simd));
    std::mt19937 random(13);
    for (const Formats& formats : {Formats{pf24bit, pf32bit}, Formats{pf32bit, pf32bit},
                                   Formats{pf24bit, pf24bit}, Formats{pf32bit, pf24bit}}) {
      for (int width = 0; width <= 70; ++width) {
        const TBitmap target = RandomBitmap(formats.first, width, 2, random);
        TBitmap source = RandomBitmap(formats.second, width, 2, random);
        const auto alpha = static_cast<uint8_t>(random());
        ASSERT_NO_FATAL_FAILURE(CheckDrawBlended(target, source, {0, 0, width, 2}, alpha));
      }
    }
  });
}

TEST(DrawBlendedBitmapTest, Pf32bit_Should_BlendItsPixelsEvenWhereItsAlphaIsIgnored) {
  TBitmap source = test::GradientBitmap(pf32bit, 2, 1);
  source.ScanLine(0)[3] = 0;
  source.ScanLine(0)[7] = 255;
  TBitmap target = test::GradientBitmap(pf24bit, 2, 1);
  const TColor before = target.PixelColor(0, 0);
  DrawBlendedBitmap(&source, target.Canvas(), {0, 0, 2, 1}, 255);
  EXPECT_EQ(target.PixelColor(0, 0), before);
  EXPECT_EQ(target.PixelColor(1, 0), source.PixelColor(1, 0));
}

TEST(DrawBlendedBitmapTest, NullAndZeroSizes_Should_DrawNothing) {
  TBitmap target = test::GradientBitmap(pf24bit, 5, 5);
  const std::unique_ptr<TBitmap> before = target.Clone();
  TBitmap empty, source = test::GradientBitmap(pf24bit, 3, 3);
  DrawBlendedBitmap(nullptr, target.Canvas(), {0, 0, 5, 5}, 255);
  DrawBlendedBitmap(&empty, target.Canvas(), {0, 0, 5, 5}, 255);
  DrawBlendedBitmap(&source, target.Canvas(), {2, 2, 2, 4}, 255);
  EXPECT_TRUE(SamePixels(*before, target));
}

TEST(CombineBitmapsTransparentTest, EveryPairOfFormats_EqualTheReference) {
  constexpr unsigned kSeed = 14;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat targetFormat : test::kEveryFormat) {
    for (const TPixelFormat sourceFormat : test::kEveryFormat) {
      for (const auto& [width, height] : {std::pair{21, 13}, std::pair{10, 20}}) {
        const TBitmap target = PaperBitmap(targetFormat, 21, 13, random);
        const TBitmap source = PaperBitmap(sourceFormat, width, height, random);
        for (const uint8_t alpha : {0, 77, 254, 255})
          ASSERT_NO_FATAL_FAILURE(CheckCombine(target, source, alpha, 1));
      }
    }
  }
}

TEST(CombineBitmapsTransparentTest, DrawingsOfEveryWidthAndNumberOfThreads_EqualTheReference) {
  std::mt19937 random(15);
  for (const TPixelFormat format : test::kEveryFormat) {
    for (int width = 0; width <= 70; ++width) {
      const TBitmap target = PaperBitmap(format, width, 30, random);
      const TBitmap source = PaperBitmap(pf1bit, width, 30, random);
      ASSERT_NO_FATAL_FAILURE(CheckCombine(target, source, 255, 1 + width % 7));
    }
  }
}

TEST(CombineBitmapsTransparentTest, Alpha254_Should_BlendAndNotLeaveWhiteOut) {
  TBitmap target = test::GradientBitmap(pf32bit, 4, 4),
          drawing = test::GradientBitmap(pf1bit, 4, 4);
  for (int y = 0; y < 4; ++y) drawing.ScanLine(y)[0] = 0xF0;
  const std::unique_ptr<TBitmap> keyed = target.Clone();
  CombineBitmapsTransparent(&target, &drawing, 254, 1, nullptr);
  CombineBitmapsTransparent(keyed.get(), &drawing, 255, 1, nullptr);
  EXPECT_EQ(target.PixelColor(0, 0) & 0xFF, 254) << "white at 254 / 255 over red 0";
  EXPECT_TRUE(SamePixels(test::GradientBitmap(pf32bit, 4, 4), *keyed));
}

TEST(CombineBitmapsTransparentTest, DrawingOn24Bit_Should_LeaveTheLastRow) {
  TBitmap target = test::GradientBitmap(pf24bit, 5, 3),
          drawing = test::GradientBitmap(pf1bit, 5, 3);
  for (int y = 0; y < 3; ++y) drawing.ScanLine(y)[0] = 0;
  const std::unique_ptr<TBitmap> before = target.Clone();
  CombineBitmapsTransparent(&target, &drawing, 255, 1, nullptr);
  for (int x = 0; x < 5; ++x) {
    EXPECT_EQ(target.PixelColor(x, 0), clBlack) << "the last column too";
    EXPECT_EQ(target.PixelColor(x, 1), clBlack);
    EXPECT_EQ(target.PixelColor(x, 2), before->PixelColor(x, 2));
  }
}

TEST(CombineBitmapsTransparentTest, DrawingOn32Bit_Should_BeStretchedOntoTheWhole) {
  TBitmap target = test::GradientBitmap(pf32bit, 4, 6),
          drawing = test::GradientBitmap(pf1bit, 2, 2);
  drawing.ScanLine(0)[0] = 0x40;
  drawing.ScanLine(1)[0] = 0xC0;
  const std::unique_ptr<TBitmap> before = target.Clone();
  CombineBitmapsTransparent(&target, &drawing, 255, 1, nullptr);
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 4; ++x) {
      const bool isBlack = x < 2 && y < 3;
      ASSERT_EQ(target.PixelColor(x, y), isBlack ? clBlack : before->PixelColor(x, y));
    }
  }
}

TEST(CombineBitmapsTransparentTest, NullAndZeroSizes_Should_ChangeNothing) {
  TBitmap empty, empty1;
  empty1.SetPixelFormat(pf1bit);
  TBitmap drawing = test::GradientBitmap(pf1bit, 3, 3);
  CombineBitmapsTransparent(nullptr, &drawing, 255, 1, nullptr);
  CombineBitmapsTransparent(&empty, &drawing, 255, 1, nullptr);
  CombineBitmapsTransparent(&empty, &empty1, 9, 1, nullptr);
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap target = test::GradientBitmap(format, 5, 5);
    const std::unique_ptr<TBitmap> before = target.Clone();
    for (TBitmap* source : {static_cast<TBitmap*>(nullptr), &empty, &empty1})
      for (const uint8_t alpha : {100, 255})
        CombineBitmapsTransparent(&target, source, alpha, 1, nullptr);
    EXPECT_TRUE(SamePixels(*before, target)) << "format " << format;
  }
}

TEST(CombineGeoTest, EveryPairOfFormats_EqualTheReference) {
  constexpr unsigned kSeed = 16;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat targetFormat : test::kEveryFormat) {
    for (const TPixelFormat sourceFormat : test::kEveryFormat) {
      for (const auto& [width, height] : {std::pair{21, 13}, std::pair{15, 9}}) {
        const TBitmap target = PaperBitmap(targetFormat, 21, 13, random);
        const TBitmap source = PaperBitmap(sourceFormat, width, height, random);
        for (const int percent : {0, 35, 100})
          for (const bool useGray : {false, true})
            ASSERT_NO_FATAL_FAILURE(CheckGeo(target, source, percent, useGray, 1));
      }
    }
  }
}

TEST(CombineGeoTest, EveryWidthAndTargetAndNumberOfThreads_EqualTheReference) {
  test::ForEachSimdTarget([&](int64_t simd) {
    SCOPED_TRACE(hwy::TargetName(simd));
    std::mt19937 random(17);
    for (const TPixelFormat format : {pf24bit, pf32bit}) {
      for (int width = 0; width <= 70; ++width) {
        const TBitmap target = PaperBitmap(format, width, 30, random);
        const TBitmap source = PaperBitmap(width % 2 == 0 ? pf24bit : pf32bit, width, 30, random);
        ASSERT_NO_FATAL_FAILURE(CheckGeo(target, source, static_cast<int>(random() % 101),
                                         width % 3 == 0, 1 + width % 7));
      }
    }
  });
}

TEST(CombineGeoTest, LastRow_Should_StayAndLastColumnShouldNot) {
  for (const auto combine : {CombineGeoResTrans, CombineGeoResFix}) {
    TBitmap target = test::GradientBitmap(pf24bit, 5, 4),
            source = test::GradientBitmap(pf24bit, 5, 4);
    for (int y = 0; y < 4; ++y) {
      std::fill_n(target.ScanLine(y), 15, uint8_t{200});
      std::fill_n(source.ScanLine(y), 15, uint8_t{100});
    }
    combine(&target, &source, 50, false, 1, nullptr);
    EXPECT_NE(target.PixelColor(0, 0), RGB(200, 200, 200));
    EXPECT_NE(target.PixelColor(4, 2), RGB(200, 200, 200)) << "last column";
    EXPECT_EQ(target.PixelColor(0, 3), RGB(200, 200, 200)) << "last row";
  }
}

TEST(CombineGeoTest, Progress_Should_BeReportedAbove1000Rows) {
  TBitmap target = test::GradientBitmap(pf24bit, 3, 1100),
          source = test::GradientBitmap(pf24bit, 3, 1100);
  std::atomic<int> calls{0};
  CombineGeoResTrans(&target, &source, 50, false, 2, [&](float) { ++calls; });
  EXPECT_GE(calls, 2) << "each worker reports at its end";
}

TEST(CombineGeoTest, TooFewRowsForTheThreads_Should_FailAsTheEngineDoes) {
  TBitmap target = test::GradientBitmap(pf24bit, 5, 2),
          source = test::GradientBitmap(pf24bit, 5, 2);
  EXPECT_THROW(CombineGeoResTrans(&target, &source, 50, false, 8, nullptr), DivisionByZeroError);
}

TEST(CombineGeoTest, NullAndZeroSizes_Should_ChangeNothing) {
  TBitmap empty, target = test::GradientBitmap(pf24bit, 5, 5);
  const std::unique_ptr<TBitmap> before = target.Clone();
  for (const auto combine : {CombineGeoResTrans, CombineGeoResFix}) {
    combine(nullptr, &target, 50, false, 1, nullptr);
    combine(&target, nullptr, 50, false, 1, nullptr);
    combine(&target, &empty, 50, false, 1, nullptr);
    combine(&empty, &target, 50, false, 1, nullptr);
  }
  EXPECT_TRUE(SamePixels(*before, target));
}

}  // namespace
}  // namespace rasterkit
