#include <cstdint>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

#include <rasterkit/runtime/memory/page_release.h>

namespace rasterkit {
namespace {

/// From here on, new pages for the bytes that are used cost less than writing all of them.
constexpr size_t kReleasedFrom = size_t{2} << 20;

/// The whole pages within a range.
struct Pages {
  uint8_t* begin = nullptr;
  size_t bytes = 0;
};

Pages PagesOf(void* data, size_t bytes) {
  static const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = reinterpret_cast<uintptr_t>(data);
  const uintptr_t first = (begin + page - 1) / page * page;
  const uintptr_t last = (begin + bytes) / page * page;
  if (first >= last) return {};
  return {static_cast<uint8_t*>(data) + (first - begin), last - first};
}

/// The pages of private memory without a file read as 0 afterwards.
bool Release(const Pages& pages) {
  return pages.bytes == 0 || madvise(pages.begin, pages.bytes, MADV_DONTNEED) == 0;
}

}  // namespace

void ReleasePages(void* data, size_t bytes) {
  Release(PagesOf(data, bytes));
}

void ClearMemory(void* data, size_t bytes) {
  const Pages pages = PagesOf(data, bytes);
  if (bytes < kReleasedFrom || pages.bytes == 0 || !Release(pages)) {
    std::memset(data, 0, bytes);
    return;
  }
  auto* begin = static_cast<uint8_t*>(data);
  uint8_t* const end = pages.begin + pages.bytes;
  std::memset(begin, 0, static_cast<size_t>(pages.begin - begin));
  std::memset(end, 0, static_cast<size_t>(begin + bytes - end));
}

}  // namespace rasterkit
