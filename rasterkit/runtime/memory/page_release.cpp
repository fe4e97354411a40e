#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

#include <rasterkit/runtime/memory/page_release.h>

namespace rasterkit {

void ReleasePages(void* data, size_t bytes) {
  static const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = reinterpret_cast<uintptr_t>(data);
  const uintptr_t first = (begin + page - 1) / page * page;
  const uintptr_t last = (begin + bytes) / page * page;
  if (first < last) madvise(reinterpret_cast<void*>(first), last - first, MADV_DONTNEED);
}

}  // namespace rasterkit
