#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/runtime/worker/worker_slots.h>

namespace rasterkit::detail {
namespace {

struct Holder : WorkerHolder {
  void GiveUpWorker() override { ++givenUp; }
  int givenUp = 0;
};

/// Calls on another thread, which uses no worker of its own.
template <class Call>
auto Elsewhere(Call call) {
  decltype(call()) result{};
  std::thread([&] { result = call(); }).join();
  return result;
}

TEST(WorkerSlotsTest, TryUse_Should_GiveNoPlace_When_AllAreUsed) {
  WorkerSlots slots(1);
  Holder first, second;
  EXPECT_TRUE(slots.TryUse(first));
  EXPECT_FALSE(Elsewhere([&] { return slots.TryUse(second); }));
  EXPECT_EQ(first.givenUp, 0);
  slots.Leave(first);
  EXPECT_TRUE(Elsewhere([&] {
    const bool isUsed = slots.TryUse(second);
    slots.Leave(second);
    return isUsed;
  }));
}

TEST(WorkerSlotsTest, TryUse_Should_TakeTheOldestIdlePlace_When_AllAreTaken) {
  WorkerSlots slots(2);
  Holder first, second, third;
  for (Holder* holder : {&first, &second}) {
    EXPECT_TRUE(slots.TryUse(*holder));
    slots.Rest(*holder);
  }
  // Used again, so the other one is idle for a longer time.
  EXPECT_TRUE(slots.TryUse(first));
  slots.Rest(first);
  EXPECT_TRUE(slots.TryUse(third));
  EXPECT_EQ(first.givenUp, 0);
  EXPECT_EQ(second.givenUp, 1);
  slots.Leave(third);
}

TEST(WorkerSlotsTest, TryUse_Should_GiveAPlaceAtOnce_When_TheThreadUsesOne) {
  WorkerSlots slots(1);
  Holder first, second;
  EXPECT_TRUE(slots.TryUse(first));
  EXPECT_TRUE(slots.TryUse(second));
  slots.Leave(second);
  slots.Leave(first);
}

TEST(WorkerSlotsTest, SetPlaces_Should_CountForTheNextPlace) {
  WorkerSlots slots(1);
  Holder first, second;
  EXPECT_TRUE(slots.TryUse(first));
  slots.SetPlaces(2);
  EXPECT_EQ(slots.Places(), 2U);
  EXPECT_TRUE(Elsewhere([&] {
    const bool isUsed = slots.TryUse(second);
    slots.Leave(second);
    return isUsed;
  }));
  slots.Leave(first);
}

TEST(WorkerSlotsTest, LimitsOfWorker_Should_ShareTheMemoryOfTheProcess) {
  const auto share = [](uint64_t processBytes, size_t most) {
    Limits limits;
    limits.processBytes = processBytes;
    return LimitsOfWorker(limits, most).processBytes;
  };
  constexpr uint64_t kMiB = uint64_t{1} << 20;
  EXPECT_EQ(share(kNoLimit, 8), kNoLimit);
  EXPECT_EQ(share(1024 * kMiB, 1), 1024 * kMiB);
  EXPECT_EQ(share(1024 * kMiB, 8), 128 * kMiB);
  EXPECT_EQ(share(1024 * kMiB, 64), 64 * kMiB);
  EXPECT_EQ(share(1000, 8), 1000U);
  Limits limits;
  limits.pixels = 7;
  EXPECT_EQ(LimitsOfWorker(limits, 8), limits);
}

}  // namespace
}  // namespace rasterkit::detail
