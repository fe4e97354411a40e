#pragma once

#include <functional>

namespace rasterkit::detail {

/// Runs `own` here and `other` on `threads - 1` further threads, or as many as the system has; the
/// first error of any is thrown after all have ended. Whoever fails must make the others end.
void RunOnThreads(int threads, const std::function<void()>& own,
                  const std::function<void()>& other);

}  // namespace rasterkit::detail
