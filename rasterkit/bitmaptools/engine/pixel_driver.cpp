#include <utility>
#include <vector>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_driver.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit::detail {
namespace {

void WaitUntilRunning(const TManageThreads& manager, int32_t count) {
  while (manager.AnzThreads > count) ThreadQueue::Current().WaitAndDispatch();
}

}  // namespace

void RunPixelWorkers(TManageThreads& manager, const MakePixelWorker& makeWorker) {
  const int32_t count = manager.AnzThreads;
  std::vector<ThreadPtr<TPixelThread>> workers;
  workers.reserve(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) workers.push_back(makeWorker(i));

  int32_t started = 0;
  try {
    for (ThreadPtr<TPixelThread>& worker : workers) {
      TThread::StartAndFree(ThreadPtr<TThread>(worker.release()));
      ++started;
    }
  } catch (...) {
    // Running workers use the manager and the bitmaps until their end is counted.
    WaitUntilRunning(manager, count - started);
    throw;
  }
  WaitUntilRunning(manager, 0);
  manager.RethrowProgressError();
  // A worker keeps its errors to itself.
  RequireTime();
}

}  // namespace rasterkit::detail
