#pragma once

#include <functional>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Calls `work`, which takes long and cannot look at the time, on a thread of its own and waits.
/// When the call of the calling thread is over or canceled, the error of RequireTime leaves within
/// 20 ms or so; `work` goes on and is destroyed on its thread when it is done. It may thus use only
/// what it owns, and nothing that is destroyed when the process ends. Memory that it owns stays
/// counted until then. Passes on what `work` throws. Calls it directly where no thread can be
/// started.
RASTERKIT_EXPORT void CallOrLeave(std::function<void()> work);

}  // namespace rasterkit::detail
