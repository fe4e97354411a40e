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

}  // namespace
}  // namespace rasterkit::detail
