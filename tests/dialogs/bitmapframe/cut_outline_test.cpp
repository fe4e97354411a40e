#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/cut_outline.h>

namespace rasterkit::test {
namespace {

constexpr TRect kClient{0, 0, 60, 50};

/// How often each pixel of the client area is painted.
std::vector<int> Painted(const TRect& rect, int width) {
  std::vector<int> counts(60 * 50);
  for (const TRect& strip : OutlineStrips(rect, width, kClient))
    for (int y = strip.Top; y < strip.Bottom; ++y)
      for (int x = strip.Left; x < strip.Right; ++x) ++counts[y * 60 + x];
  return counts;
}

/// A pen of this width drawn along the line from corner to corner.
bool IsOnLine(const TRect& rect, int width, int x, int y) {
  const auto near = [&](int at, int line) {
    return at >= line - width / 2 && at < line - width / 2 + width;
  };
  const bool besideX = x >= rect.Left - width / 2 && x < rect.Right - width / 2 + width;
  const bool besideY = y >= rect.Top - width / 2 && y < rect.Bottom - width / 2 + width;
  return (besideY && (near(x, rect.Left) || near(x, rect.Right))) ||
         (besideX && (near(y, rect.Top) || near(y, rect.Bottom)));
}

TEST(OutlineStrips, Should_PaintEveryPixelOfTheLineOnce_InAnySize) {
  for (const int width : {1, 2, 3, 5})
    for (const TRect& rect : {TRect{10, 12, 40, 33},
                              {10, 12, 10, 12},
                              {10, 12, 11, 33},
                              {10, 12, 14, 13},
                              {-20, -5, 90, 70},
                              {30, 20, 200, 21}}) {
      const std::vector<int> counts = Painted(rect, width);
      for (int y = 0; y < 50; ++y)
        for (int x = 0; x < 60; ++x)
          ASSERT_EQ(counts[y * 60 + x], IsOnLine(rect, width, x, y) ? 1 : 0)
              << x << "," << y << " width " << width << " rect " << rect.Left << " " << rect.Right;
    }
}

TEST(OutlineStrips, Should_BeClipped_When_TheRectangleIsAsFarAsNumbersGo) {
  EXPECT_TRUE(OutlineStrips({-(1 << 30), -(1 << 30), 1 << 30, 1 << 30}, 2, kClient).empty());
}

}  // namespace
}  // namespace rasterkit::test
