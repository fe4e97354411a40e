#include <algorithm>

#include <sys/resource.h>

#include <rasterkit/runtime/worker/worker_answers.h>

namespace rasterkit::detail {

WorkerAnswers::~WorkerAnswers() = default;

void AllowWorkerMemory(uint64_t bytes) {
  rlimit limit{};
  if (getrlimit(RLIMIT_DATA, &limit) != 0 || limit.rlim_max == RLIM_INFINITY) return;
  limit.rlim_cur = static_cast<rlim_t>(std::min<uint64_t>(bytes, limit.rlim_max));
  setrlimit(RLIMIT_DATA, &limit);
}

}  // namespace rasterkit::detail
