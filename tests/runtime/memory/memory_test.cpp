#include <cstdint>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/block_pool.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/memory/picture_memory_scope.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit {
namespace {

constexpr size_t kMiB = size_t{1} << 20;

#if defined(__SANITIZE_ADDRESS__)
#define RASTERKIT_NO_POOL 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define RASTERKIT_NO_POOL 1
#endif
#endif
#ifdef RASTERKIT_NO_POOL
#define SKIP_WITHOUT_POOL() GTEST_SKIP() << "no pool under the address sanitizer"
#else
#define SKIP_WITHOUT_POOL() static_cast<void>(0)
#endif

class MemoryBudgetTest : public testing::Test {
 protected:
  void TearDown() override { SetPictureMemoryLimit(uint64_t{4} << 30); }
};

TEST_F(MemoryBudgetTest, Limit_IsFourGibibytesUnlessSet) {
  EXPECT_EQ(PictureMemoryLimit(), 4294967296u);
  SetPictureMemoryLimit(1000);
  EXPECT_EQ(PictureMemoryLimit(), 1000u);
}

TEST_F(MemoryBudgetTest, Require_AllowsTheLimitItself) {
  SetPictureMemoryLimit(1000);
  EXPECT_NO_THROW(RequirePictureMemory(1000, "a picture"));
  EXPECT_THROW(RequirePictureMemory(1001, "a picture"), LimitError);
  EXPECT_NO_THROW(RequirePictureMemory(0, "a picture"));
}

TEST_F(MemoryBudgetTest, Scope_KeepsItsThreadToLess) {
  SetPictureMemoryLimit(1000);
  {
    const PictureMemoryScope wide(2000);
    EXPECT_EQ(PictureMemoryLimit(), 1000u);
    const PictureMemoryScope narrow(100);
    const PictureMemoryScope notWidened(500);
    EXPECT_EQ(PictureMemoryLimit(), 100u);
    EXPECT_THROW(RequirePictureMemory(101, "a picture"), LimitError);
    std::thread([] { EXPECT_EQ(PictureMemoryLimit(), 1000u); }).join();
  }
  EXPECT_EQ(PictureMemoryLimit(), 1000u);
}

TEST_F(MemoryBudgetTest, Require_NamesLimitAndNeed) {
  SetPictureMemoryLimit(1000);
  try {
    RequirePictureMemory(12884705280, "PNG picture of 65535 x 65535 pixels");
    FAIL();
  } catch (const LimitError& error) {
    EXPECT_STREQ(
        error.what(),
        "PNG picture of 65535 x 65535 pixels needs 12884705280 bytes, the limit is 1000 bytes");
  }
}

class PixelMemoryTest : public testing::Test {
 protected:
  void SetUp() override { PixelMemory::Trim(); }
  void TearDown() override { PixelMemory::Trim(); }
};

bool IsAligned(const PixelMemory& memory, size_t alignment) {
  return reinterpret_cast<uintptr_t>(memory.Data()) % alignment == 0;
}

TEST_F(PixelMemoryTest, Default_IsEmpty) {
  const PixelMemory memory;
  EXPECT_EQ(memory.Data(), nullptr);
  EXPECT_EQ(memory.Size(), 0u);
  EXPECT_EQ(PixelMemory(0).Data(), nullptr);
}

TEST_F(PixelMemoryTest, EverySize_IsAlignedAndWritable) {
  for (const size_t size : {size_t{1}, size_t{63}, size_t{64}, size_t{4097}, kMiB - 1, kMiB,
                            kMiB + 1, 2 * kMiB, 2 * kMiB + 1, 5 * kMiB + 3}) {
    PixelMemory memory(size);
    EXPECT_EQ(memory.Size(), size);
    EXPECT_TRUE(IsAligned(memory, 64)) << size;
    std::memset(memory.Data(), 0xA5, size);
    EXPECT_EQ(memory.Data()[size - 1], 0xA5);
  }
}

TEST_F(PixelMemoryTest, LargeBlock_IsAlignedToHugePages) {
  SKIP_WITHOUT_POOL();
  EXPECT_TRUE(IsAligned(PixelMemory(3 * kMiB), 2 * kMiB));
}

TEST_F(PixelMemoryTest, AbsurdSize_ThrowsAndNamesIt) {
  const size_t most = std::numeric_limits<size_t>::max();
  EXPECT_THROW(PixelMemory{most}, LimitError);
  EXPECT_THROW(PixelMemory{most - 4 * kMiB}, LimitError);
  const size_t nearlyAll = most / 16 * 15;  // a half is there where addresses have 32 bits
  try {
    PixelMemory{nearlyAll};
    FAIL();
  } catch (const LimitError& error) {
    EXPECT_NE(std::string(error.what()).find(std::to_string(nearlyAll)), std::string::npos);
  }
}

TEST_F(PixelMemoryTest, Move_HandsTheBlockOver) {
  PixelMemory first(100);
  const uint8_t* data = first.Data();
  PixelMemory second(std::move(first));
  EXPECT_EQ(second.Data(), data);
  EXPECT_EQ(second.Size(), 100u);
  PixelMemory third(3 * kMiB);
  third = std::move(second);
  EXPECT_EQ(third.Data(), data);
  PixelMemory& same = third;
  third = std::move(same);
  EXPECT_EQ(third.Data(), data) << "a move onto itself changes nothing";
}

TEST_F(PixelMemoryTest, FreedLargeBlock_ServesTheNextPictureOfThatSize) {
  SKIP_WITHOUT_POOL();
  const uint8_t* data = PixelMemory(8 * kMiB).Data();
  EXPECT_EQ(detail::KeptLargeBytes(), 8 * kMiB);
  const PixelMemory next(7 * kMiB);
  EXPECT_EQ(next.Data(), data);
  EXPECT_EQ(detail::KeptLargeBytes(), 0u);
}

TEST_F(PixelMemoryTest, BestFittingBlock_IsTaken) {
  SKIP_WITHOUT_POOL();
  {
    const PixelMemory large(20 * kMiB);
    const PixelMemory fitting(18 * kMiB);
    const PixelMemory small(8 * kMiB);
  }
  const PixelMemory next(17 * kMiB);
  EXPECT_EQ(detail::KeptLargeBytes(), 28 * kMiB);
}

TEST_F(PixelMemoryTest, BlockThatWouldWasteMoreThanAQuarter_IsNotTaken) {
  SKIP_WITHOUT_POOL();
  { const PixelMemory large(64 * kMiB); }
  { const PixelMemory small(2 * kMiB); }
  EXPECT_LE(detail::KeptLargeBytes(), 2 * kMiB) << "the large block went instead";
}

TEST_F(PixelMemoryTest, FreshBlock_FirstGivesKeptOnesBack) {
  SKIP_WITHOUT_POOL();
  { const PixelMemory first(100 * kMiB); }
  const PixelMemory larger(101 * kMiB + kMiB);
  EXPECT_EQ(detail::KeptLargeBytes(), 0u);
}

TEST_F(PixelMemoryTest, KeptBlocks_StayWithinTheirBound) {
  SKIP_WITHOUT_POOL();
  {
    std::vector<PixelMemory> many;
    for (int i = 0; i < 10; ++i) many.emplace_back(50 * kMiB);
  }
  EXPECT_EQ(detail::KeptLargeBytes(), 250 * kMiB);
  { const PixelMemory tooLarge(300 * kMiB); }
  EXPECT_LE(detail::KeptLargeBytes(), 256 * kMiB);
}

TEST_F(PixelMemoryTest, Trim_KeepsNothing) {
  { const PixelMemory memory(8 * kMiB); }
  PixelMemory::Trim();
  EXPECT_EQ(detail::KeptLargeBytes(), 0u);
}

TEST_F(PixelMemoryTest, ManyThreads_NeverShareABlock) {
  const auto work = [](uint8_t mark) {
    for (int i = 0; i < 50; ++i) {
      PixelMemory memory((1 + i % 3) * 2 * kMiB);
      memory.Data()[0] = mark;
      memory.Data()[memory.Size() - 1] = mark;
      std::this_thread::yield();
      ASSERT_EQ(memory.Data()[0], mark);
      ASSERT_EQ(memory.Data()[memory.Size() - 1], mark);
    }
  };
  std::vector<std::thread> threads;
  for (uint8_t mark = 1; mark <= 4; ++mark) threads.emplace_back(work, mark);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace rasterkit
