#pragma once

#include <cstdint>
#include <functional>

#include <rasterkit/runtime/threads/thread.h>

namespace rasterkit {

class TManageThreads;
class TPixelThread;

namespace detail {

/// Creates the worker of a band and sets it up.
using MakePixelWorker = std::function<ThreadPtr<TPixelThread>(int32_t iThread)>;

/// Creates all workers of the manager, starts them, and dispatches the calling thread's queue until
/// all have ended. Errors of creating or starting a worker, and an exception of the progress
/// callback, pass to the caller after the running workers have ended.
void RunPixelWorkers(TManageThreads& manager, const MakePixelWorker& makeWorker);

/// Pictures with at most this number of rows are finished before a progress bar would be useful.
inline constexpr int32_t kMostRowsWithoutProgress = 1000;

}  // namespace detail
}  // namespace rasterkit
