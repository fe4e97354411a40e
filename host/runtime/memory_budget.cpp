#include <atomic>
#include <string>

#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/host/runtime/memory_budget.h>

namespace rasterkit {
namespace {

std::atomic<uint64_t> limit{uint64_t{4} << 30};

}  // namespace

uint64_t PictureMemoryLimit() {
  return limit.load(std::memory_order_relaxed);
}

void SetPictureMemoryLimit(uint64_t bytes) {
  limit.store(bytes, std::memory_order_relaxed);
}

void RequirePictureMemory(uint64_t bytes, std::string_view what) {
  const uint64_t allowed = PictureMemoryLimit();
  if (bytes <= allowed) return;
  throw LimitError(std::string(what) + " needs " + std::to_string(bytes) + " bytes, the limit is " +
                   std::to_string(allowed) + " bytes");
}

}  // namespace rasterkit
