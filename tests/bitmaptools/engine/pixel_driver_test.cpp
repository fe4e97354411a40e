#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_driver.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/host/graphics/bitmap.h>

#include "tests/support/sleeping_thread.h"

namespace rasterkit {
namespace {

class GatedPixelThread : public TPixelThread {
 public:
  GatedPixelThread(TManageThreads& manager, int32_t iThread, test::Gate& gate)
      : TPixelThread(manager, iThread, ptAssignPart), gate_(gate) {}

 protected:
  void Execute() override { gate_.Pass(); }

 private:
  test::Gate& gate_;
};

TEST(PixelDriverTest, SleepsWhileItsWorkersWorkAndReturnsAfterTheLastOne) {
  constexpr int kWorkers = 3;
  test::Gate gate;
  std::atomic<pid_t> number{0};
  std::atomic<bool> returned{false};
  std::thread driver([&] {
    TBitmap target, source;
    for (TBitmap* bitmap : {&target, &source}) bitmap->ResetPixels(pf24bit, 5, 100);
    TManageThreads manager(kWorkers, 100, nullptr);
    ASSERT_TRUE(manager.InitByteBits(target, source));
    number = test::ThisThread();
    detail::RunPixelWorkers(manager, [&](int32_t i) -> ThreadPtr<TPixelThread> {
      return MakeThread<GatedPixelThread>(manager, i, gate);
    });
    EXPECT_EQ(manager.AnzThreads, 0);
    returned = true;
  });
  while (number == 0) std::this_thread::yield();
  for (int i = 0; i < kWorkers; ++i) {
    EXPECT_TRUE(test::FallsAsleep(number));
    EXPECT_FALSE(returned);
    gate.Open();
  }
  driver.join();
  EXPECT_TRUE(returned);
}

}  // namespace
}  // namespace rasterkit
