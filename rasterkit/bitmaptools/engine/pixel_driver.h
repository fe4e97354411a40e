#pragma once

#include <cstdint>
#include <functional>

#include <rasterkit/runtime/threads/thread.h>

namespace rasterkit {

class TManageThreads;
class TPixelThread;

namespace detail {

/// Makes the worker of a band and sets it up.
using MakePixelWorker = std::function<ThreadPtr<TPixelThread>(int32_t iThread)>;

/// Makes all workers of the manager, starts them, and dispatches the calling thread's queue until
/// all have ended. Throws what making or starting a worker throws, after those that run have ended.
void RunPixelWorkers(TManageThreads& manager, const MakePixelWorker& makeWorker);

/// Pictures of so few rows are done before anybody would look at a progress bar.
inline constexpr int32_t kMostRowsWithoutProgress = 1000;

}  // namespace detail
}  // namespace rasterkit
