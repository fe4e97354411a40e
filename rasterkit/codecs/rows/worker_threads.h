#pragma once

#include <functional>

namespace rasterkit::detail {

/// Runs `own` on this thread and `other` on `threads - 1` further ones, or on as many as the system
/// has. Throws the first error after all have ended. A function that fails must end the others.
void RunOnThreads(int threads, const std::function<void()>& own,
                  const std::function<void()>& other);

}  // namespace rasterkit::detail
