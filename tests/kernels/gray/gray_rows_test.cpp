#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <rasterkit/kernels/gray/gray.h>

#include "tests/reference/gray.h"

namespace rasterkit::kernels {
namespace {

constexpr uint8_t kPaint = 0x88;
constexpr size_t kGuard = 64;

/// Runs each case once for every SIMD target of this machine, forced in turn.
class GrayRows : public testing::TestWithParam<int64_t> {
 protected:
  void SetUp() override { Choose(GetParam()); }
  void TearDown() override { Choose(0); }

 private:
  static void Choose(int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
};

INSTANTIATE_TEST_SUITE_P(EveryTarget, GrayRows,
                         testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& info) { return std::string(hwy::TargetName(info.param)); });

/// Does the three-byte pixels in place too, in a block of exactly their size, and compares.
void ExpectSameInPlace(const uint8_t* pixels, const std::vector<uint8_t>& grays) {
  std::vector<uint8_t> threeTimes;
  for (const uint8_t gray : grays) threeTimes.insert(threeTimes.end(), 3, gray);
  std::vector<uint8_t> inPlace(pixels, pixels + 3 * grays.size());
  GrayInPlace24(inPlace.data(), grays.size());
  EXPECT_TRUE(inPlace == threeTimes) << "in place, " << grays.size() << " pixels";
}

/// Gray values of `count` pixels of 3 or 4 bytes; also checks that nothing around the result was
/// written.
std::vector<uint8_t> GraysOf(const uint8_t* pixels, size_t count, int bytesPerPixel) {
  std::vector<uint8_t> painted(count + 2 * kGuard, kPaint);
  const auto kernel = bytesPerPixel == 3 ? GrayOfRow24 : GrayOfRow32;
  kernel(pixels, count, painted.data() + kGuard);
  const auto isPaint = [](uint8_t byte) { return byte == kPaint; };
  EXPECT_TRUE(std::all_of(painted.begin(), painted.begin() + kGuard, isPaint)) << "before the row";
  EXPECT_TRUE(std::all_of(painted.end() - kGuard, painted.end(), isPaint)) << "after the row";
  std::vector<uint8_t> grays(painted.begin() + kGuard, painted.end() - kGuard);
  if (bytesPerPixel == 3) ExpectSameInPlace(pixels, grays);
  return grays;
}

std::vector<uint8_t> ReferenceOf(const uint8_t* pixels, size_t count, int bytesPerPixel) {
  std::vector<uint8_t> grays(count);
  for (size_t i = 0; i < count; ++i, pixels += bytesPerPixel)
    grays[i] = reference::GrayInWholeNumbers(pixels[2], pixels[1], pixels[0]);
  return grays;
}

/// All colors of one red: green runs slowly, blue fast.
std::vector<uint8_t> ColorsOfRed(int red, int bytesPerPixel) {
  std::vector<uint8_t> pixels;
  for (int greenAndBlue = 0; greenAndBlue < 65536; ++greenAndBlue) {
    pixels.push_back(static_cast<uint8_t>(greenAndBlue));
    pixels.push_back(static_cast<uint8_t>(greenAndBlue >> 8));
    pixels.push_back(static_cast<uint8_t>(red));
    if (bytesPerPixel == 4) pixels.push_back(static_cast<uint8_t>(greenAndBlue * 7));
  }
  return pixels;
}

TEST_P(GrayRows, Should_EqualTheReference_For_EveryColor) {
  for (int red = 0; red < 256; ++red) {
    const auto three = ColorsOfRed(red, 3);
    const auto four = ColorsOfRed(red, 4);
    const auto expected = ReferenceOf(three.data(), 65536, 3);
    ASSERT_EQ(GraysOf(three.data(), 65536, 3), expected) << "24 bits, red " << red;
    ASSERT_EQ(GraysOf(four.data(), 65536, 4), expected) << "32 bits, red " << red;
  }
}

TEST_P(GrayRows, Should_EqualTheReference_AndStayInsideTheRow_For_LengthsAndPlacesUpTo300) {
  constexpr unsigned kSeed = 297589114;
  std::mt19937 random(kSeed);
  for (const int bytesPerPixel : {3, 4}) {
    for (size_t count = 0; count <= 300; ++count) {
      // The exact size of the block lets the address sanitizer see a read beyond it.
      const size_t offset = count % 5;
      std::vector<uint8_t> bytes(offset + count * bytesPerPixel);
      for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
      const uint8_t* pixels = bytes.data() + offset;
      ASSERT_EQ(GraysOf(pixels, count, bytesPerPixel), ReferenceOf(pixels, count, bytesPerPixel))
          << count << " pixels of " << bytesPerPixel << " bytes, seed " << kSeed;
    }
  }
}

/// Rows that take the rare ways: pixels whose exact sum is whole, in runs of one color and mixed,
/// with neutral ones.
TEST_P(GrayRows, Should_EqualTheReference_When_ExactSumsAreWhole) {
  std::vector<uint8_t> whole;
  for (int r = 0; r < 256; ++r) {
    for (int g = 0; g < 256; ++g) {
      for (int b = 0; b < 256; ++b) {
        if ((297 * r + 589 * g + 114 * b) % 1000 != 0) continue;
        for (const int channel : {b, g, r}) whole.push_back(static_cast<uint8_t>(channel));
      }
    }
  }
  const size_t colors = whole.size() / 3;
  ASSERT_EQ(GraysOf(whole.data(), colors, 3), ReferenceOf(whole.data(), colors, 3)) << "mixed";
  for (size_t i = 0; i < colors; ++i) {
    const uint8_t* color = whole.data() + i * 3;
    for (const int bytesPerPixel : {3, 4}) {
      std::vector<uint8_t> flat;
      for (int pixel = 0; pixel < 70; ++pixel) {
        flat.insert(flat.end(), color, color + 3);
        if (bytesPerPixel == 4) flat.push_back(static_cast<uint8_t>(pixel));
      }
      ASSERT_EQ(GraysOf(flat.data(), 70, bytesPerPixel),
                ReferenceOf(flat.data(), 70, bytesPerPixel))
          << "flat, color " << i;
      std::fill_n(flat.begin() + 33 * bytesPerPixel, 3, 89);
      ASSERT_EQ(GraysOf(flat.data(), 70, bytesPerPixel),
                ReferenceOf(flat.data(), 70, bytesPerPixel))
          << "with 89, color " << i;
    }
  }
}

/// Scans: neutral levels, whose exact sums are all whole, alone and with some tinted pixels.
TEST_P(GrayRows, Should_EqualTheReference_For_NeutralColors_AloneAndMixed) {
  constexpr unsigned kSeed = 89178;
  std::mt19937 random(kSeed);
  for (int round = 0; round < 2000; ++round) {
    const unsigned tintedOf100 = round % 4 * 10;
    for (const int bytesPerPixel : {3, 4}) {
      std::vector<uint8_t> pixels;
      for (int i = 0; i < 150; ++i) {
        const uint8_t levels[] = {89, 178, static_cast<uint8_t>(random())};
        pixels.insert(pixels.end(), 3, levels[random() % 3]);
        if (random() % 100 < tintedOf100) pixels.back() = static_cast<uint8_t>(random());
        if (bytesPerPixel == 4) pixels.push_back(static_cast<uint8_t>(random()));
      }
      ASSERT_EQ(GraysOf(pixels.data(), 150, bytesPerPixel),
                ReferenceOf(pixels.data(), 150, bytesPerPixel))
          << "round " << round << ", seed " << kSeed;
    }
  }
}

TEST_P(GrayRows, Should_GiveTheChannel_ForNeutralColors_But88And177For89And178) {
  for (int level = 0; level < 256; ++level) {
    const std::vector<uint8_t> pixels(70 * 3, static_cast<uint8_t>(level));
    const int gray = level == 89 || level == 178 ? level - 1 : level;
    EXPECT_EQ(GraysOf(pixels.data(), 70, 3), std::vector<uint8_t>(70, static_cast<uint8_t>(gray)));
  }
}

}  // namespace
}  // namespace rasterkit::kernels
