// Highway's library measures the resolution of the processor's timer whenever it is loaded, for
// benchmarks that do not run here. That takes 3 ms, half the start of a program. This definition
// takes its place: a program's symbols precede those of its libraries.

#include <hwy/nanobenchmark.h>

namespace hwy::platform {

/// In ticks of the timer.
__attribute__((visibility("default"))) uint64_t TimerResolution() {
  return 1;
}

}  // namespace hwy::platform
