// Operations on several threads end with the time of their call.

#include <memory>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

TEST(TimeLimit, EndsATransferOnAnyNumberOfThreads) {
  TBitmap target, source;
  for (TBitmap* bitmap : {&target, &source}) bitmap->ResetPixels(pf24bit, 50, 100);
  const auto transfer = [&](int32_t threads) {
    AssignPartBitmap(&target, &source, {0, 0, 50, 100}, {0, 0, 50, 100}, threads, nullptr,
                     pmOverwrite, 0, false, false);
  };
  for (const int32_t threads : {1, 4}) {
    EXPECT_NO_THROW(transfer(threads));
    const LimitsScope scope({.seconds = 0});
    EXPECT_THROW(transfer(threads), TimeLimitError) << threads;
  }
}

TEST(TimeLimit, EndsContrastAndBrightnessOnAnyNumberOfThreads) {
  for (const auto change : {Kontrast, Helligkeit}) {
    for (const int32_t threads : {1, 4}) {
      TBitmap bitmap(GradientRaster(pf24bit, 50, 100));
      const std::unique_ptr<TBitmap> before = bitmap.Clone();
      const LimitsScope scope({.seconds = 0});
      EXPECT_THROW(change(&bitmap, 20, threads, nullptr), TimeLimitError) << threads;
      EXPECT_TRUE(SamePixels(*before, bitmap)) << "no row is begun";
    }
  }
}

TEST(TimeLimit, EndsARotationOnAnyNumberOfThreads) {
  auto bitmap = std::make_unique<TBitmap>();
  bitmap->ResetPixels(pf24bit, 50, 100);
  const TBitmap* const before = bitmap.get();
  for (const int32_t threads : {1, 4}) {
    const LimitsScope scope({.seconds = 0});
    EXPECT_FALSE(RotateBitmap(10, bitmap, clWhite, threads, nullptr)) << threads;
    EXPECT_EQ(bitmap.get(), before);
  }
  EXPECT_TRUE(RotateBitmap(10, bitmap, clWhite, 4, nullptr));
}

}  // namespace
}  // namespace rasterkit::test
