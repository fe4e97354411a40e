#pragma once

#include <cstdint>
#include <functional>

#include <hwy/targets.h>

namespace rasterkit::test {

/// Runs `body` once for every SIMD target that was compiled and that this processor supports, each
/// forced in turn, and restores the free choice. A failure inside names the target through
/// `hwy::TargetName(target)`.
inline void ForEachSimdTarget(const std::function<void(int64_t target)>& body) {
  for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    body(target);
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
}

}  // namespace rasterkit::test
