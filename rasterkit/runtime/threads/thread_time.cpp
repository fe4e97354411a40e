#include <ctime>

#include <pthread.h>

#include <rasterkit/runtime/threads/thread_time.h>

namespace rasterkit {

double ProcessorSeconds(std::thread& thread) {
  clockid_t clock{};
  timespec time{};
  if (pthread_getcpuclockid(thread.native_handle(), &clock) != 0) return 0;
  if (clock_gettime(clock, &time) != 0) return 0;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace rasterkit
