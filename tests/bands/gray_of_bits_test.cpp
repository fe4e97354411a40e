#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/stages.h>

#include "tests/bands/band_pictures.h"

namespace rasterkit {
namespace {

using test::SidesOf;

Raster RandomBits(std::mt19937& random, int width, int height) {
  Raster raster(pf1bit, width, height);
  for (int y = 0; y < height; ++y) {
    for (size_t i = 0; i < raster.Stride(); ++i) {
      raster.Row(y)[i] = static_cast<uint8_t>(random() % 3 == 0 ? random() : 0);
    }
  }
  raster.ClearPadding();
  raster.resolution = {300, 200};
  return raster;
}

/// The same picture, brought to bytes first, gives the same rows and properties.
TEST(GrayOfBitsTest, EqualsTheMeansOfBytes) {
  constexpr unsigned kSeed = 41;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  for (const Filter filter : {Filter::automatic, Filter::area, Filter::linear}) {
    for (const Sides from : {Sides{64, 40}, {70, 33}, {401, 97}, {1000, 13}}) {
      for (const Sides to : {Sides{16, 10}, {35, 11}, {100, 24}, {401, 12}, {63, 80}, {1, 1}}) {
        if (filter == Filter::automatic && to.width > from.width && to.height > from.height)
          continue;
        Raster bits = RandomBits(random, from.width, from.height);
        if (random() % 2 == 0) {
          const tagPALETTEENTRY grays[] = {{255, 255, 255, 0}, {48, 48, 48, 0}};
          bits.palette = HPALETTE(grays);
        }
        Raster bytes = bits.Clone();
        detail::BringToForm(bytes, detail::AveragedForm::gray);
        Changes changes;
        const auto stage = ResizeStage(from, to, filter);
        const Pixels made = stage->Make(std::move(bits), {3, {}}, changes);
        const Pixels expected = stage->Make(std::move(bytes), {1, {}}, changes);
        ASSERT_EQ(SidesOf(made), to);
        const auto &a = std::get<Raster>(made), &b = std::get<Raster>(expected);
        ASSERT_EQ(a.Format(), pf8bit);
        ASSERT_EQ(a.resolution.x, b.resolution.x);
        ASSERT_EQ(a.resolution.y, b.resolution.y);
        for (int y = 0; y < to.height; ++y) {
          ASSERT_TRUE(std::equal(a.Row(y), a.Row(y) + a.Stride(), b.Row(y)))
              << y << ": " << from.width << " x " << from.height << " to " << to.width << " x "
              << to.height;
        }
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit
