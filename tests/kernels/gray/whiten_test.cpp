#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/gray/whiten.h>

#include "tests/reference/whiten_reference.h"
#include "tests/support/simd_targets.h"

namespace rasterkit {
namespace {

// The row at every address of a cache line, guarded at both ends.
void CompareRow(const std::vector<uint8_t>& row) {
  const std::vector<uint8_t> expected = reference::Whitened(row);
  test::ForEachSimdTarget([&](int64_t simd) {
    for (size_t address = 0; address < 64; address += 7) {
      std::vector<uint8_t> memory(address + row.size() + 8, 0x88);
      std::copy(row.begin(), row.end(), memory.begin() + static_cast<ptrdiff_t>(address));
      kernels::WhitenTransparentPixels(memory.data() + address, row.size() / 4);
      std::vector<uint8_t> whole(memory.size(), 0x88);
      std::copy(expected.begin(), expected.end(), whole.begin() + static_cast<ptrdiff_t>(address));
      ASSERT_EQ(memory, whole) << row.size() / 4 << " pixels at " << address << ", "
                               << hwy::TargetName(simd);
    }
  });
}

std::vector<uint8_t> RandomRow(size_t count, unsigned alphas, std::mt19937& random) {
  std::vector<uint8_t> row(4 * count);
  for (uint8_t& byte : row) byte = static_cast<uint8_t>(random());
  for (size_t i = 3; i < row.size(); i += 4) row[i] = static_cast<uint8_t>(random() % alphas);
  return row;
}

TEST(WhitenTest, EqualsTheReferenceForEveryLength) {
  std::mt19937 random(95);
  for (size_t count = 0; count <= 70 && !testing::Test::HasFatalFailure(); ++count)
    for (unsigned alphas : {1u, 2u, 256u}) CompareRow(RandomRow(count, alphas, random));
}

TEST(WhitenTest, EqualsTheReferenceForEveryAlpha) {
  std::vector<uint8_t> row;
  for (int alpha = 0; alpha < 256; ++alpha)
    for (uint8_t color : {0, 1, 127, 128, 255})
      row.insert(row.end(), {color, color, color, static_cast<uint8_t>(alpha)});
  CompareRow(row);
}

}  // namespace
}  // namespace rasterkit
