#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/simd_targets.h"

/// What the tests of kernels that change rows in place share.
namespace rasterkit::test {

/// Bytes in a block of exactly their size, so that the address sanitizer sees a step outside.
inline std::vector<uint8_t> RandomBytes(size_t count, std::mt19937& random) {
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

/// Runs `kernel` on the bytes behind `offset` of a copy of `before`, and compares all bytes with
/// `after`.
inline void ExpectInPlace(const std::vector<uint8_t>& before, const std::vector<uint8_t>& after,
                          size_t offset, const std::function<void(uint8_t*)>& kernel) {
  std::vector<uint8_t> bytes = before;
  kernel(bytes.data() + offset);
  EXPECT_TRUE(bytes == after);
}

/// Runs the body for every target and every width from 0 to 300.
inline void ForEachTargetAndWidth(
    unsigned seed, const std::function<void(size_t width, std::mt19937& random)>& body) {
  ForEachSimdTarget([&](int64_t target) {
    std::mt19937 random(seed);
    for (size_t width = 0; width <= 300; ++width) {
      SCOPED_TRACE(testing::Message()
                   << hwy::TargetName(target) << ", width " << width << ", seed " << seed);
      body(width, random);
    }
  });
}

}  // namespace rasterkit::test
