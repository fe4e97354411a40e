#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/palette/index_rows.h>

#include "tests/kernels/rows/row_cases.h"

namespace rasterkit::kernels {
namespace {

using test::ExpectInPlace;
using test::ForEachTargetAndWidth;
using test::RandomBytes;

/// `before` with `change` applied to each byte behind `offset`.
template <class Change>
std::vector<uint8_t> Changed(std::vector<uint8_t> before, size_t offset, Change change) {
  for (size_t i = offset; i < before.size(); ++i) before[i] = change(before[i]);
  return before;
}

TEST(IndexSet, Should_HaveWhatWasAddedOnly) {
  std::array<bool, 256> added{};
  IndexSet set;
  for (int round = 0; round < 256; ++round) {
    for (int i = 0; i < 256; ++i)
      ASSERT_EQ(set.Has(static_cast<uint8_t>(i)), added[static_cast<size_t>(i)]);
    const auto next = static_cast<uint8_t>(round * 77);
    set.Add(next);
    added[next] = true;
  }
}

TEST(ReplaceIndexes, Should_ReplaceTheMembersOfTheSetOnly) {
  ForEachTargetAndWidth(234, [](size_t width, std::mt19937& random) {
    const size_t offset = width % 7;
    const auto before = RandomBytes(offset + width, random);
    IndexSet set;
    const auto rarity = 1 + random() % 5;
    for (int i = 0; i < 256; ++i)
      if (random() % rarity == 0) set.Add(static_cast<uint8_t>(i));
    const auto index = static_cast<uint8_t>(random());
    ExpectInPlace(before,
                  Changed(before, offset, [&](uint8_t i) { return set.Has(i) ? index : i; }),
                  offset, [&](uint8_t* row) { ReplaceIndexes(row, width, set, index); });
  });
}

TEST(ReplaceIndexes, Should_KnowEachOfThe256Indexes) {
  std::vector<uint8_t> all(256);
  for (size_t i = 0; i < 256; ++i) all[i] = static_cast<uint8_t>(i);
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    for (size_t i = 0; i < 256; ++i) {
      IndexSet set;
      set.Add(static_cast<uint8_t>(i));
      std::vector<uint8_t> after = all;
      after[i] = static_cast<uint8_t>(i + 1);
      ExpectInPlace(all, after, 0, [&](uint8_t* row) {
        ReplaceIndexes(row, 256, set, static_cast<uint8_t>(i + 1));
      });
    }
  });
}

TEST(SwapIndexes, Should_ExchangeTheTwoOnly) {
  ForEachTargetAndWidth(235, [](size_t width, std::mt19937& random) {
    const size_t offset = width % 7;
    auto before = RandomBytes(offset + width, random);
    const auto a = static_cast<uint8_t>(random()), b = static_cast<uint8_t>(random());
    for (uint8_t& byte : before) {
      const auto choice = random() % 4;
      if (choice == 0) byte = a;
      if (choice == 1) byte = b;
    }
    const auto swapped = [=](uint8_t i) { return i == a ? b : i == b ? a : i; };
    ExpectInPlace(before, Changed(before, offset, swapped), offset,
                  [&](uint8_t* row) { SwapIndexes(row, width, a, b); });
  });
}

TEST(SwapIndexes, Should_ChangeNothing_For_AnIndexWithItself) {
  const std::vector<uint8_t> before(100, 7);
  test::ForEachSimdTarget([&](int64_t) {
    ExpectInPlace(before, before, 0, [](uint8_t* row) { SwapIndexes(row, 100, 7, 7); });
  });
}

TEST(MapNibblePairs, Should_MapTheHighNibbleTwice_AndSkipZeroBytes) {
  ForEachTargetAndWidth(236, [](size_t width, std::mt19937& random) {
    const size_t offset = width % 7;
    auto before = RandomBytes(offset + width, random);
    for (uint8_t& byte : before)
      if (random() % 3 == 0) byte &= 15;
    for (uint8_t& byte : before)
      if (random() % 5 == 0) byte = 0;
    std::array<uint8_t, 16> map;
    for (uint8_t& entry : map) entry = random() % 16;
    const auto mapped = [&](uint8_t pair) {
      const uint8_t part = map[pair >> 4];
      return pair == 0 ? uint8_t{0} : static_cast<uint8_t>(part << 4 | part);
    };
    ExpectInPlace(before, Changed(before, offset, mapped), offset,
                  [&](uint8_t* row) { MapNibblePairs(row, width, map); });
  });
}

}  // namespace
}  // namespace rasterkit::kernels
