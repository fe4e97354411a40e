#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>

namespace rasterkit {
namespace {

constexpr int kFactor = 4;

/// White as 1, of a raster of 1 bit or of 8 bits.
double GrayAt(const Raster& rows, int x, int y) {
  constexpr double kMost = 255;
  const int index =
      rows.Format() == pf1bit ? rows.Row(y)[x / 8] >> (7 - x % 8) & 1 : rows.Row(y)[x];
  return rows.palette.Entry(index).peRed / kMost;
}

/// The share of white in the square of the plan that becomes one pixel.
double MeanAt(const Raster& plan, int x, int y) {
  double sum = 0;
  for (int row = y * kFactor; row < (y + 1) * kFactor; ++row) {
    for (int column = x * kFactor; column < (x + 1) * kFactor; ++column) {
      sum += GrayAt(plan, column, row);
    }
  }
  return sum / (kFactor * kFactor);
}

/// The root of the mean squared difference of a shrunk plan from the exact shares of white.
double ErrorOf(const Raster& plan, const Raster& small) {
  double sum = 0;
  for (int y = 0; y < small.Height(); ++y) {
    for (int x = 0; x < small.Width(); ++x) {
      const double difference = GrayAt(small, x, y) - MeanAt(plan, x, y);
      sum += difference * difference;
    }
  }
  return std::sqrt(sum / (static_cast<double>(small.Width()) * small.Height()));
}

TEST(ShrunkPlan, IsGrayAsThePlanIsOnTheMean) {
  const Picture plan = Picture::Open(std::string(RASTERKIT_SAMPLES "/plan.png"));
  const auto rows = plan.Bitmap();
  ASSERT_EQ(rows->PixelFormat(), pf1bit);
  ASSERT_EQ(rows->Width() % kFactor + rows->Height() % kFactor, 0);
  const auto shrunk = [&](Filter filter) {
    Picture small = plan;
    ResizeOptions options;
    options.filter = filter;
    return small.Resize(plan.Width() / kFactor, plan.Height() / kFactor, options).Bitmap();
  };
  const auto usual = shrunk(Filter::automatic), nearest = shrunk(Filter::nearest);
  EXPECT_EQ(usual->PixelFormat(), pf8bit);
  EXPECT_EQ(nearest->PixelFormat(), pf1bit);
  // Half a step of 256 grays is the most that rounding takes.
  EXPECT_LT(ErrorOf(rows->Content(), usual->Content()), 0.5 / 255);
  EXPECT_GT(ErrorOf(rows->Content(), nearest->Content()), 0.05);
}

}  // namespace
}  // namespace rasterkit
