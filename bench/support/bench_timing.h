#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

#include <benchmark/benchmark.h>

/// Timing of work that needs a fresh picture each time. Register with `UseManualTime()`.
namespace rasterkit::bench {

/// Measures `work()`, with `prepare()` before it outside the clock: nanoseconds per pixel, on
/// average and in the fastest pass, as that is what other programs on the machine disturb least.
template <class Prepare, class Work>
void MeasurePrepared(benchmark::State& state, int64_t pixels, Prepare prepare, Work work) {
  double least = 1e9, sum = 0;
  for (auto _ : state) {
    prepare();
    benchmark::ClobberMemory();
    const auto start = std::chrono::steady_clock::now();
    work();
    benchmark::ClobberMemory();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(taken.count());
    least = std::min(least, taken.count());
    sum += taken.count();
  }
  const double nanoseconds = 1e9 / static_cast<double>(pixels);
  state.SetItemsProcessed(state.iterations() * pixels);
  state.counters["ns/px"] = sum / static_cast<double>(state.iterations()) * nanoseconds;
  state.counters["least_ns_per_pixel"] = least * nanoseconds;
}

}  // namespace rasterkit::bench
