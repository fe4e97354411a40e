// The main function of the benchmarks. `RASTERKIT_BENCH_TARGET=AVX2` (any name that Highway gives
// to an instruction set) makes the kernels use that one instead of the best of the machine.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <benchmark/benchmark.h>
#include <hwy/targets.h>

namespace {

/// False when this machine or this build does not have it.
bool ForceTarget(const char* name) {
  for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
    if (std::strcmp(hwy::TargetName(target), name) != 0) continue;
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const char* target = std::getenv("RASTERKIT_BENCH_TARGET");
  if (target != nullptr && !ForceTarget(target)) {
    std::fprintf(stderr, "There is no instruction set %s here.\n", target);
    return 2;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
