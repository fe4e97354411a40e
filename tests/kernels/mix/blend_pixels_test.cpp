#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/mix/blend_pixels.h>

#include "tests/reference/blend.h"
#include "tests/support/full_run.h"
#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t kGuard = 64;
constexpr uint8_t kPaint = 0x88;

/// The target after the kernel, which must not touch what is around it.
Bytes Blended(const Bytes& source, Opacity opacity, const Bytes& target, size_t targetBytes) {
  Bytes painted(target.size() + 2 * kGuard, kPaint);
  std::copy(target.begin(), target.end(), painted.begin() + kGuard);
  const auto kernel = targetBytes == 3 ? Blend32Over24 : Blend32Over32;
  kernel(source.data(), source.size() / 4, opacity, painted.data() + kGuard);
  const auto isPaint = [](uint8_t byte) { return byte == kPaint; };
  EXPECT_TRUE(std::all_of(painted.begin(), painted.begin() + kGuard, isPaint)) << "before";
  EXPECT_TRUE(std::all_of(painted.end() - kGuard, painted.end(), isPaint)) << "behind";
  return {painted.begin() + kGuard, painted.end() - kGuard};
}

void ExpectAsReference(const Bytes& source, Opacity opacity, const Bytes& target,
                       size_t targetBytes, const char* what) {
  const Bytes expected =
      reference::BlendedRow(source, opacity.constant, opacity.pixelAlpha, target, targetBytes);
  test::ForEachSimdTarget([&](int64_t simd) {
    ASSERT_EQ(Blended(source, opacity, target, targetBytes), expected)
        << what << ", " << hwy::TargetName(simd) << ", constant " << int{opacity.constant}
        << (opacity.pixelAlpha ? " times alpha" : "") << ", " << source.size() / 4
        << " pixels over " << targetBytes << " bytes";
  });
}

Bytes RandomBytes(size_t count, std::mt19937& random) {
  Bytes bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

TEST(BlendPixels, Should_EqualTheReference_ForEveryLengthUpTo200) {
  constexpr unsigned kSeed = 21;
  std::mt19937 random(kSeed);
  for (size_t width = 0; width <= 200; ++width) {
    for (const size_t targetBytes : {3, 4}) {
      const Bytes source = RandomBytes(4 * width, random);
      const Bytes target = RandomBytes(targetBytes * width, random);
      for (const Opacity opacity : {Opacity{255, true}, Opacity{255, false}, Opacity{93, false},
                                    Opacity{93, true}, Opacity{0, true}})
        ExpectAsReference(source, opacity, target, targetBytes, "random, seed 21");
    }
  }
}

/// All pairs of a source and a target byte, for one opacity.
TEST(BlendPixels, Should_EqualTheReference_ForEveryByteOverEveryByte_AndEveryOpacity) {
  Bytes source, target;
  for (int pair = 0; pair < 65536; ++pair) {
    source.insert(source.end(), {static_cast<uint8_t>(pair), static_cast<uint8_t>(pair >> 8),
                                 static_cast<uint8_t>(pair * 7), 0});
    target.insert(target.end(), {static_cast<uint8_t>(pair >> 8), static_cast<uint8_t>(pair), 9});
  }
  for (int alpha = 0; alpha < 256; alpha += test::IsFullRun() ? 1 : 15) {
    const auto value = static_cast<uint8_t>(alpha);
    for (size_t i = 3; i < source.size(); i += 4) source[i] = value;
    ExpectAsReference(source, {255, true}, target, 3, "all pairs");
    ExpectAsReference(source, {value, false}, target, 3, "all pairs");
  }
}

/// Products of alpha and constant have a divisor of their own: sums right at its multiples and
/// beside them are what a hasty division gets wrong.
TEST(BlendPixels, Should_EqualTheReference_ForProducts_NearEveryRoundingBorder) {
  constexpr unsigned kSeed = 65025;
  std::mt19937 random(kSeed);
  Bytes source, target;
  const auto add = [&](int s, int t, int alpha) {
    source.insert(source.end(), 3, static_cast<uint8_t>(s));
    source.push_back(static_cast<uint8_t>(alpha));
    target.insert(target.end(), 4, static_cast<uint8_t>(t));
  };
  for (const int constant : {1, 3, 50, 127, 128, 200, 253, 254}) {
    source.clear();
    target.clear();
    for (int i = 0; i < (test::IsFullRun() ? 3000000 : 300000); ++i) {
      const int s = static_cast<int>(random() % 256), t = static_cast<int>(random() % 256);
      const int alpha = static_cast<int>(random() % 256);
      const int sum = s * alpha * constant + t * (65025 - alpha * constant) + 32512;
      if (i < 3000 || sum % 65025 < 300 || sum % 65025 > 64725) add(s, t, alpha);
    }
    ExpectAsReference(source, {static_cast<uint8_t>(constant), true}, target, 4, "seed 65025");
  }
}

TEST(BlendPixels, Should_LeaveTheTarget_When_NothingIsOpaque) {
  std::mt19937 random(8);
  Bytes source = RandomBytes(4 * 150, random);
  const Bytes target = RandomBytes(3 * 150, random);
  ExpectAsReference(source, {0, false}, target, 3, "constant 0");
  for (size_t i = 3; i < source.size(); i += 4) source[i] = 0;
  for (const uint8_t constant : {255, 77})
    EXPECT_EQ(reference::BlendedRow(source, constant, true, target, 3), target);
  ExpectAsReference(source, {255, true}, target, 3, "alpha 0");
  ExpectAsReference(source, {77, true}, target, 3, "alpha 0");
}

}  // namespace
}  // namespace rasterkit::kernels
