// Plans of 1 bit reduced to 8-bit gray: rows of bits to rows of gray, one thread. Leptonica takes
// turns with them where it is installed: processor time, the least of all rounds.

#include <ctime>

#include <benchmark/benchmark.h>

#include <rasterkit/bands/gray_of_bits.h>
#include <rasterkit/kernels/halftone/halftone_axis.h>

#include "bench/support/bit_plans.h"

#ifdef RASTERKIT_BENCH_LEPTONICA
#include <leptonica/allheaders.h>
#endif

namespace {

using namespace rasterkit;

constexpr int kRounds = 9;

double ProcessorTime() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

const Band& Plan() {
  static const Band plan{bench::BitPlan(18724, 13243), 0, 0};
  return plan;
}

#ifdef RASTERKIT_BENCH_LEPTONICA
PIX* PeerPlan() {
  static PIX* const plan = [] {
    const auto& rows = std::get<Raster>(Plan().pixels);
    PIX* pix = pixCreate(rows.Width(), rows.Height(), 1);
    for (int y = 0; y < rows.Height(); y++) {
      auto* line = reinterpret_cast<uint8_t*>(pixGetData(pix) + y * pixGetWpl(pix));
      // Words are in the order of the processor.
      for (int i = 0; i < static_cast<int>(rows.RowBytes()); i++) line[i ^ 3] = rows.Row(y)[i];
    }
    return pix;
  }();
  return plan;
}

PIX* ScaledByPeer(int width) {
  switch (18724 / width) {
    case 2:
      return pixScaleToGray2(PeerPlan());
    case 4:
      return width == 4681 ? pixScaleToGray4(PeerPlan())
                           : pixScaleToGray(PeerPlan(), static_cast<float>(width) / 18724);
    case 8:
      return pixScaleToGray8(PeerPlan());
    default:
      return pixScaleToGray(PeerPlan(), static_cast<float>(width) / 18724);
  }
}
#endif

void ToGray(benchmark::State& state) {
  const int width = static_cast<int>(state.range(0));
  const auto& source = std::get<Raster>(Plan().pixels);
  const int height = (13243 * width + 18724 / 2) / 18724;
  Band target{Raster(pf8bit, width, height), 0, 0};
  double least = 1e9, leastOfPeer = 1e9;
  for (auto _ : state) {
    double start = ProcessorTime();
    const auto columns = kernels::MakeHalftoneAxis(width, source.Width(), 0, width, false);
    const auto rows = kernels::MakeHalftoneAxis(height, source.Height(), 0, height, false);
    detail::MakeGrayOfBits(Plan(), {columns, rows}, target, {0, height});
    benchmark::ClobberMemory();
    least = std::min(least, ProcessorTime() - start);
#ifdef RASTERKIT_BENCH_LEPTONICA
    PeerPlan();
    start = ProcessorTime();
    PIX* scaled = ScaledByPeer(width);
    leastOfPeer = std::min(leastOfPeer, ProcessorTime() - start);
    pixDestroy(&scaled);
#endif
  }
  const double nanoseconds = 1e9 / (18724.0 * 13243.0);
  state.counters["ns_per_source_pixel"] = least * nanoseconds;
  if (leastOfPeer < 1e9) {
    state.counters["leptonica"] = leastOfPeer * nanoseconds;
    state.counters["ratio"] = least / leastOfPeer;
  }
}

BENCHMARK(ToGray)->Arg(9362)->Arg(4681)->Arg(2340)->Arg(4000)->Arg(1200)->Iterations(kRounds)->Unit(
    benchmark::kMillisecond);

}  // namespace
