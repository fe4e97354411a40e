#include <limits>

#include <sys/resource.h>

#include <rasterkit/runtime/files/open_files.h>

namespace rasterkit::detail {

size_t MostOpenFiles() {
  rlimit limit{};
  // The smallest number that a system may allow.
  constexpr size_t kLeast = 20;
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return kLeast;
  if (limit.rlim_cur == RLIM_INFINITY) return std::numeric_limits<size_t>::max();
  return static_cast<size_t>(limit.rlim_cur);
}

}  // namespace rasterkit::detail
