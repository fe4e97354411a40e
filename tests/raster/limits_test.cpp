// Sizes of new rasters, and the time of what works on rows.

#include <functional>

#include <gtest/gtest.h>

#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/halftone.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::test {
namespace {

TEST(RasterLimits, SizesAreExact) {
  const LimitsScope scope({.pixels = 150, .side = 50});
  EXPECT_NO_THROW(Raster(pf8bit, 3, 50));
  EXPECT_THROW(Raster(pf8bit, 2, 51), LimitError);
  EXPECT_THROW(Raster(pf8bit, 51, 2), LimitError);
  EXPECT_THROW(Raster(pf8bit, 8, 19), LimitError) << "152 pixels";
  EXPECT_NO_THROW(Raster(pf8bit, 0, 50));
}

TEST(RasterLimits, BytesAreExact) {
  const LimitsScope scope({.pictureBytes = 1000});
  EXPECT_NO_THROW(Raster(pf32bit, 5, 50));
  EXPECT_THROW(Raster(pf32bit, 5, 51), LimitError);
}

Raster ManyColors() {
  Raster raster(pf24bit, 40, 40);
  for (int y = 0; y < 40; ++y) {
    for (int i = 0; i < 120; ++i) raster.Row(y)[i] = static_cast<uint8_t>(y * 5 + i * i);
  }
  return raster;
}

TEST(RasterLimits, TimeIsCheckedInEveryStep) {
  const Raster colors = ManyColors();
  const Raster gray(pf8bit, 40, 40);
  Raster target24(pf24bit, 10, 10), target32(pf32bit, 10, 10);
  const std::function<void()> steps[] = {[&] { ConvertRaster(colors, pf32bit); },
                                         [&] { ConvertRaster(gray, pf24bit); },
                                         [&] { ConvertRaster(colors, pf8bit); },
                                         [&] { ConvertRaster(colors, pf4bit); },
                                         [&] {
                                           BlitStretched(target24, {0, 0, 10, 10}, colors);
                                         },
                                         [&] {
                                           BlitHalftone(target24, {0, 0, 10, 10}, colors);
                                         },
                                         [&] {
                                           CopyHalftone(target32, {0, 0, 10, 10}, colors);
                                         }};
  int number = 0;
  for (const auto& step : steps) {
    SCOPED_TRACE(number++);
    EXPECT_NO_THROW(step());
    const LimitsScope scope({.seconds = 0});
    EXPECT_THROW(step(), TimeLimitError);
  }
}

}  // namespace
}  // namespace rasterkit::test
