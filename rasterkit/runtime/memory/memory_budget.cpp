#include <algorithm>
#include <atomic>
#include <limits>
#include <string>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/memory/picture_memory_scope.h>

namespace rasterkit {
namespace {

std::atomic<uint64_t> limit{uint64_t{4} << 30};
thread_local uint64_t limitOfThread = std::numeric_limits<uint64_t>::max();

}  // namespace

uint64_t PictureMemoryLimit() {
  return std::min(limit.load(std::memory_order_relaxed), limitOfThread);
}

void SetPictureMemoryLimit(uint64_t bytes) {
  limit.store(bytes, std::memory_order_relaxed);
}

PictureMemoryScope::PictureMemoryScope(uint64_t bytes) : before_(limitOfThread) {
  limitOfThread = std::min(limitOfThread, bytes);
}

PictureMemoryScope::~PictureMemoryScope() {
  limitOfThread = before_;
}

void RequirePictureMemory(uint64_t bytes, std::string_view what) {
  const uint64_t allowed = PictureMemoryLimit();
  if (bytes <= allowed) return;
  throw LimitError(std::string(what) + " needs " + std::to_string(bytes) + " bytes, the limit is " +
                   std::to_string(allowed) + " bytes");
}

}  // namespace rasterkit
