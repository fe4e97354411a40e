#include <algorithm>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/turn/turn_blocks.h>

#include "tests/reference/turn_blocks_reference.h"
#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

using reference::Block;
using reference::BlockPixels;
using test::ForEachSimdTarget;

constexpr int16_t kLeast = std::numeric_limits<int16_t>::min();
constexpr int16_t kMost = std::numeric_limits<int16_t>::max();

std::vector<BlockTurn> AllTurns() {
  std::vector<BlockTurn> turns;
  for (int bits = 0; bits < 8; bits++) {
    turns.push_back({(bits & 4) != 0, (bits & 2) != 0, (bits & 1) != 0});
  }
  return turns;
}

Block Reference(const Block& block, const BlockTurn& turn) {
  return reference::TurnedBlock(block, turn.exchangesAxes, turn.reversesColumns, turn.reversesRows);
}

/// Turns blocks that lie far apart, in reverse order, into a framed place that is not aligned.
std::vector<Block> Turned(const std::vector<Block>& blocks, const BlockTurn& turn) {
  constexpr size_t kFrame = 3;
  constexpr int16_t kPaint = 0x5C5C;
  std::vector<int16_t> source(kFrame, kPaint);
  std::vector<size_t> places(blocks.size());
  for (size_t i = blocks.size(); i-- > 0;) {
    places[i] = source.size();
    source.insert(source.end(), blocks[i].begin(), blocks[i].end());
    source.push_back(kPaint);
  }
  std::vector<const int16_t*> pointers;
  for (const size_t place : places) pointers.push_back(source.data() + place);
  std::vector<int16_t> target(blocks.size() * kBlockCoefficients + 2 * kFrame, kPaint);
  TurnBlocks(pointers.data(), blocks.size(), turn, target.data() + kFrame);
  for (size_t i = 0; i < kFrame; i++) {
    EXPECT_EQ(target[i], kPaint);
    EXPECT_EQ(target[target.size() - 1 - i], kPaint);
  }
  std::vector<Block> turned(blocks.size());
  for (size_t i = 0; i < blocks.size(); i++) {
    std::copy_n(target.begin() + static_cast<ptrdiff_t>(kFrame + i * kBlockCoefficients),
                kBlockCoefficients, turned[i].begin());
  }
  return turned;
}

void ExpectTurned(const std::vector<Block>& blocks) {
  for (const BlockTurn& turn : AllTurns()) {
    std::vector<Block> expected;
    for (const Block& block : blocks) expected.push_back(Reference(block, turn));
    ForEachSimdTarget([&](int64_t target) {
      ASSERT_EQ(Turned(blocks, turn), expected) << "target " << target << " " << turn.exchangesAxes
                                                << turn.reversesColumns << turn.reversesRows;
    });
  }
}

TEST(TurnBlocksTest, MovesEachCoefficientByItself) {
  std::vector<Block> blocks;
  for (size_t place = 0; place < kBlockCoefficients; place++) {
    for (const int16_t value : {kLeast, int16_t{-1}, int16_t{1}, kMost}) {
      Block block{};
      block[place] = value;
      blocks.push_back(block);
    }
  }
  ExpectTurned(blocks);
}

TEST(TurnBlocksTest, WalksAllValuesInAllPlaces) {
  // Block by block every place passes through all values, each from another one on.
  std::vector<Block> blocks(65536);
  for (size_t i = 0; i < blocks.size(); i++) {
    for (size_t place = 0; place < kBlockCoefficients; place++) {
      blocks[i][place] = static_cast<int16_t>(static_cast<uint16_t>(i + 1021 * place));
    }
  }
  ExpectTurned(blocks);
}

TEST(TurnBlocksTest, TurnsRandomBlocksOfAnyNumber) {
  constexpr unsigned kSeed = 20;
  std::mt19937 random(kSeed);
  for (size_t count = 0; count < 40; count++) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", blocks " << count);
    std::vector<Block> blocks(count);
    for (Block& block : blocks) {
      for (int16_t& coefficient : block) coefficient = static_cast<int16_t>(random());
    }
    ExpectTurned(blocks);
  }
}

TEST(TurnBlocksTest, AllExtremesStay) {
  for (const int16_t value : {kLeast, kMost}) {
    Block block;
    block.fill(value);
    ExpectTurned({block});
  }
}

/// What the rule is for: the pixels of the turned block are those of the block, moved.
TEST(TurnBlocksReference, TurnsThePixels) {
  constexpr unsigned kSeed = 8;
  std::mt19937 random(kSeed);
  for (int round = 0; round < 4; round++) {
    Block block;
    for (int16_t& coefficient : block) coefficient = static_cast<int16_t>(random() % 2048 - 1024);
    const BlockPixels pixels = reference::PixelsOfBlock(block);
    for (const BlockTurn& turn : AllTurns()) {
      const BlockPixels turned = reference::PixelsOfBlock(Reference(block, turn));
      for (size_t y = 0; y < 8; y++) {
        for (size_t x = 0; x < 8; x++) {
          const size_t column = turn.reversesColumns ? 7 - x : x;
          const size_t row = turn.reversesRows ? 7 - y : y;
          const size_t from = turn.exchangesAxes ? 8 * column + row : 8 * row + column;
          EXPECT_NEAR(static_cast<double>(turned[8 * y + x]), static_cast<double>(pixels[from]),
                      1e-9)
              << "seed " << kSeed;
        }
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit::kernels
